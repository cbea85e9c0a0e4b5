// The ADO database loader. The source is read once into schema records, by the reader that
// the difference check and synchronisation use, and the project's database and tables are then
// built from those records: loading and synchronising can't read a schema two ways. Failures
// of the connection and of the table rowset end the load through the connection error handler;
// a table's own probe and keys never do (see table_loader.h).
#include "schema/database_loader.h"

#include "automation/convert.h"
#include "schema/table_loader.h"
#include "schema/tyx_schema.h"
#include "support/tyx_functions.h"
#include "support/tyx_vars.h"

namespace qv {

namespace {

void WriteSourceProperties(TyxDatabase& db, const AdoLoadRequest& request,
                           const TyxSchema& schema) {
  const bool odbc = request.db_type == u"ODBC";
  const TySchemaDB& read = schema.db();
  db.SetDBType(request.db_type);
  db.SetDBPath(u"");
  db.SetDBUseServerMapPath(false);
  db.SetDBPhyPath(u"");
  if (odbc) {
    db.SetDBUID(request.uid);
    db.SetDBPwd(request.pwd);
  }
  if (request.db_type == u"CONNECTIONSTRING") db.SetDBConnstr(request.conn_str);
  WriteSourceFacts(db, read);
  if (schema.kind() == kDbOracle && odbc) db.SetDBConnstrOra(Vars().OracleConnStr);
}

// A whole load adds each table it read; a load of one table refreshes that table only. Two
// records of one name (namesakes in two schemas) both go into the one table, as they always
// have: the second finds every column taken.
void BuildTables(TyxDatabase& db, const TyxSchema& schema, bool full) {
  TyxTables& tables = db.Tables();
  for (const TySchemaTable& record : schema.db().tables.Tbl) {
    if (full && tables.Add(record.TblName)) {
      if (TyxTable* added = tables.list().ByName(record.TblName)) added->SetTblLoaded(false);
    }
    if (TyxTable* table = tables.list().ByName(record.TblName)) {
      Load_ADO(*table, record, full, schema.kind());
    }
  }
}

}  // namespace

void WriteSourceFacts(TyxDatabase& db, const TySchemaDB& read) {
  db.SetDBADOVer(read.DBADOVer);
  db.SetDBDBMSName(read.DBDBMSName);
  db.SetDBDBMSVer(read.DBDBMSVer);
  db.SetDBOLEDBVer(read.DBOLEDBVer);
  db.SetDBProviderName(read.DBProviderName);
  db.SetDBProviderVer(read.DBProviderVer);
  db.SetDBQuoteS(ToString(Vars().DbQuoteOpen));
  db.SetDBQuoteE(ToString(Vars().DbQuoteClose));
}

int16_t LoadADODB(TyxDatabase& db, const AdoLoadRequest& request) {  // NOLINT
  const bool full = request.table_name.empty();
  SchemaReadScope scope;
  // A dynamic load lists its tables and reads their columns one table at a time, later.
  scope.columns = !full || !Vars().DynamicLoadDB;
  scope.only_table = request.table_name;
  scope.for_project = true;
  TyxSchema schema(std::move(scope));
  // One table is looked for in the schema that the whole load settled on.
  const String owner = full || !request.schema.empty() ? request.schema : db.CurrentSchema();
  const int16_t result = schema.ReadAdoSchema(request.db_type, request.db_name, request.uid,
                                              request.pwd, request.conn_str, owner);
  if (result != 0) return result;
  if (full) {
    WriteSourceProperties(db, request, schema);
    if (schema.kind() == kDbOracle) {
      db.SetCurrentSchema(schema.db().DBSchema);
      db.SetDBSchema(schema.db().DBSchema);
    }
  }
  BuildTables(db, schema, full);
  return 0;
}

}  // namespace qv
