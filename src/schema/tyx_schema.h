// TyxSchema: reads a whole data source into plain records (TySchemaDB and below) and touches
// nothing in the project: no defaults, no collections. Synchronisation compares the project
// with what it reads. Success and failure are told through ProjErr only.
//
//   TyxSchema schema;
//   schema.LoadDB(name, u"CONNECTIONSTRING", {}, {}, false, {}, {}, u"Provider=SQLite;...", {});
//   if (Vars().ProjErr.empty()) for (int16_t i = 1; i <= schema.tblcnt(); ++i) schema.Tbl(i)...
#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "automation/string.h"
#include "automation/variant.h"
#include "platform/data/connection.h"
#include "schema/schema_records.h"

namespace qv {

// How much of a source a read takes in, and for whom. The defaults are the difference
// check's: every table and view with its columns and keys.
struct SchemaReadScope {
  // False: the names and types only, as a dynamic load lists its tables.
  bool columns = true;
  // Not empty: only the table or view of this exact name, without the source's own facts or
  // the progress of a whole read.
  String only_table;
  // The read fills a project (LoadDB): the provider's DBMS name is taken as it stands and
  // kept for the field defaults, and any failure outside a probe or a key ends the read.
  bool for_project = false;
};

class TyxSchema {
 public:
  TyxSchema() = default;
  explicit TyxSchema(SchemaReadScope scope) : scope_(std::move(scope)) {}

  int16_t tblcnt() const { return db_.DBTblCnt; }
  // A copy of table i, from 1 to tblcnt(); any other index raises 9.
  TySchemaTable Tbl(int16_t i) const;
  const TySchemaDB& db() const { return db_; }
  bool loaded() const { return loaded_ == 1; }
  // DatabaseKind of the source, once a read has connected.
  int32_t kind() const { return kind_; }

  // Reads the whole data source of the type "ODBC" or "CONNECTIONSTRING" ("ACCESS" belongs to
  // the DAO reader). `db_name` becomes "DB" for a connection string.
  void LoadDB(Variant& db_name, const Variant& db_type, const Variant& path,
              const Variant& phy_path, const Variant& use_server_map_path, const Variant& uid,
              const Variant& pwd, const Variant& conn_str, const Variant& schema);

  // The ADO reader: 0 when the whole run went through, 1 when the connection was not open
  // after Open, 3 when the connection error handler ran.
  int16_t ReadAdoSchema(StringView db_type, StringView db_name, StringView uid, StringView pwd,
                        StringView conn_str, StringView schema);

  // The DAO reader of an Access file: 0 success (also for an empty physical path), 1 when its
  // error handler ran. The object counts as loaded from the moment the file is open.
  int16_t ReadDaoSchema(StringView path, StringView phy_path, bool use_server_map_path,
                        StringView uid, StringView pwd);

  // The columns of a custom view as one record, for the comparison of synchronisation: 0 (a
  // failing SQL text leaves its words in ProjErr and TblGen False), 1 the connection was not
  // open, 3 the connection error handler ran.
  int16_t LoadADOCustomView(StringView conn_str, StringView table_name, StringView sql);

 private:
  int16_t ReadTablesAndKeys(data::Connection& cn, StringView uid, StringView schema);
  void ReadColumns(data::Connection& cn, TySchemaTable& table, StringView owner);
  void ReadKeys(data::Connection& cn, TySchemaTable& table);

  SchemaReadScope scope_;
  TySchemaDB db_;
  String DbmsNameUpper;
  Variant OdbcDatabase;
  String OdbcServer;
  bool OdbcTrusted = false;
  Variant CurrentSchema;
  std::vector<String> SchemaList;
  String OracleServer;
  int16_t loaded_ = 0;
  int32_t kind_ = 5;
};

}  // namespace qv
