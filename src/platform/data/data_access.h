// The data access layer in one include, and how the schema readers use it.
//
// ADO side (ReadAdoSchema, LoadADODB, custom views):
//   Connection cn;  cn.Open(text)              Connection.Open; raises qv::Error, fills Errors
//   cn.State() == adStateOpen                  State
//   cn.Version()                               Version ("2.8")
//   cn.Properties(u"DBMS Name")                Properties(name).Value; 3265 when missing
//   cn.GetErrors().Count() / .Item(i)          Errors: number, native_error, description,
//                                              source, sql_state
//   cn.OpenSchema(adSchemaTables)              OpenSchema(20) and 28, 4, 12 with restrictions
//   Recordset rs; rs.Open(sql, cn)             Recordset.Open(source, connection)
//   rs.Eof() / MoveFirst() / MoveNext()        EOF, MoveFirst, MoveNext
//   rs.Fields().Count(), rs.Fields(i|name)     Fields.Count, Fields(index), Fields(name)
//   field.Name() Type() DefinedSize()          Name, Type (DataTypeEnum), DefinedSize,
//   field.Attributes() Value()                 Attributes, Value
//   field.Properties(u"ISAUTOINCREMENT")       Properties("ISAUTOINCREMENT")
//
// DAO side (ReadDaoSchema, LoadDAODB):
//   auto db = AccessDatabase::Open(path[, read_only, connect])   DBEngine.OpenDatabase
//   AccessDatabase::EngineVersion(), db->Version()               DBEngine.Version, Version
//   db->TableDefs(), db->QueryDefs()                             TableDefs, QueryDefs
//   DaoTableDef{name, attributes, fields, indexes}               TableDef
//   DaoField{name, type, size, attributes, default_value, allow_zero_length, required}
//   field.Properties(u"Caption")                                 raises 3270 when missing
//   DaoIndex{name, primary, unique, fields}                      Index
//   DaoQueryDef{name, type, sql, fields}                         QueryDef
//   db->Views()                                                  ADOX Catalog.Views
//
// Data source definitions: ReadOdbcIniValue(dsn, u"Server") stands for the registry values
// under Software\ODBC\ODBC.INI. Connection strings: ConnectionString, ExpandShortUrl.
// Tests drive DBMS-specific branches with RegisterScriptedSource and
// "Provider=Scripted;Data Source=<name>".
#pragma once

#include "platform/data/access_database.h"
#include "platform/data/connection.h"
#include "platform/data/connection_string.h"
#include "platform/data/data_types.h"
#include "platform/data/odbc_ini.h"
#include "platform/data/provider_error.h"
#include "platform/data/recordset.h"
#include "platform/data/scripted_backend.h"
