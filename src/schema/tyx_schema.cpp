// TyxSchema's LoadDB and its ADO reader. Phase one lists tables and views and probes each for
// its columns with a statement that returns no row; phase two reads keys and indexes of the
// tables. Until the first probe every failure ends the run through the connection error
// handler; from then on failures are cleared and only lose what the failing call would have
// read.
#include "schema/tyx_schema.h"

#include <memory>

#include "automation/convert.h"
#include "platform/data/data_types.h"
#include "platform/data/recordset.h"
#include "schema/ado_source.h"
#include "schema/column_facts.h"
#include "schema/connection_error.h"
#include "schema/key_reader.h"
#include "schema/oracle_schema.h"
#include "schema/probe.h"
#include "support/common.h"
#include "support/status.h"
#include "support/tyx_functions.h"
#include "support/tyx_vars.h"

namespace qv {

namespace {

String TextOrEmpty(const Variant& v) {
  return v.is_null() || v.is_empty() ? String() : ToString(v);
}

class RecordKeySink : public KeySink {
 public:
  explicit RecordKeySink(TySchemaTable& table) : table_(table) {}
  void MarkPrimaryKey(StringView column) override {
    if (TySchemaField* f = table_.FindField(column)) f->FldIsPrimaryKey = true;
  }
  void MarkRequired(StringView column) override {
    if (TySchemaField* f = table_.FindField(column)) f->FldReq = true;
  }
  void MarkUnique(StringView column) override {
    if (TySchemaField* f = table_.FindField(column)) f->FldUniqueIdx = true;
  }

 private:
  TySchemaTable& table_;
};

}  // namespace

TySchemaTable TyxSchema::Tbl(int16_t i) const {
  if (i < 1 || i > db_.DBTblCnt || static_cast<size_t>(i) > db_.tables.Tbl.size()) {
    throw Error(kErrSubscript);
  }
  return db_.tables.Tbl[static_cast<size_t>(i) - 1];
}

void TyxSchema::LoadDB(Variant& db_name, const Variant& db_type, const Variant& path,
                       const Variant& phy_path, const Variant& use_server_map_path,
                       const Variant& uid, const Variant& pwd, const Variant& conn_str,
                       const Variant& schema) {
  TyxVars& vars = Vars();
  if (loaded_ == 1) {
    vars.ProjErr = u"database already loaded!";
    return;
  }
  const String type = TextOrEmpty(db_type);
  // These checks only leave words behind: the reader runs regardless and a success clears them.
  if (type == u"ACCESS" && TextOrEmpty(phy_path).empty()) vars.ProjErr = u"invalid database path!";
  if (type == u"ODBC" && TextOrEmpty(db_name).empty()) vars.ProjErr = u"invalid DBName specified!";
  if (type == u"CONNECTIONSTRING") {
    if (TextOrEmpty(conn_str).empty()) vars.ProjErr = u"invalid connection string specified!";
    db_name = Variant(String(u"DB"));
  }

  TyxStatus& status = SharedStatus();
  status.ShowStatus(Variant(int32_t{0}),
                    Variant(LengthMarked(vars.ProductTitle + u" - Checking Database Schema...")));
  int16_t result = 0;
  if (type == u"ACCESS") {
    result = ReadDaoSchema(TextOrEmpty(path), TextOrEmpty(phy_path),
                           !use_server_map_path.is_empty() && !use_server_map_path.is_null() &&
                               ToBool(use_server_map_path),
                           TextOrEmpty(uid), TextOrEmpty(pwd));
  } else if (type == u"ODBC" || type == u"CONNECTIONSTRING") {
    result = ReadAdoSchema(type, TextOrEmpty(db_name), TextOrEmpty(uid), TextOrEmpty(pwd),
                           TextOrEmpty(conn_str), TextOrEmpty(schema));
  }
  status.CloseStatus();
  if (result < 1) {
    vars.ProjErr = String();
    loaded_ = 1;
  } else if (vars.ProjErr.empty()) {
    vars.ProjErr = u"Load Database failed!";
  }
}

int16_t TyxSchema::ReadAdoSchema(StringView db_type, StringView db_name, StringView uid,
                                 StringView pwd, StringView conn_str, StringView schema) {
  data::Connection cn;
  return UnderConnectionHandler(cn, [&]() -> int16_t {
    AdoSourceRequest request{String(db_type),
                             String(db_name),
                             String(uid),
                             String(pwd),
                             String(conn_str),
                             /*record_reader=*/!scope_.for_project,
                             scope_.only_table.empty()};
    AdoSourceFacts facts;
    if (!OpenAdoSource(cn, request, facts)) return 1;
    db_.DBName = db_name;
    db_.DBType = u"ODBC";
    if (db_type == u"ODBC") {
      db_.DBUID = uid;
      db_.DBPwd = pwd;
    } else {
      db_.DBConnstr = conn_str;
    }
    db_.DBADOVer = facts.ado_version;
    db_.DBDBMSName = facts.dbms_name;
    db_.DBDBMSVer = facts.dbms_version;
    db_.DBOLEDBVer = facts.oledb_version;
    db_.DBProviderName = facts.provider_name;
    db_.DBProviderVer = facts.provider_version;
    DbmsNameUpper = facts.kind_name;
    OdbcDatabase = Variant(facts.odbc_database);
    OdbcServer = facts.odbc_server;
    OdbcTrusted = facts.odbc_trusted;
    OracleServer = facts.oracle_server;
    kind_ = facts.kind;
    return ReadTablesAndKeys(cn, uid, schema);
  });
}

int16_t TyxSchema::ReadTablesAndKeys(data::Connection& cn, StringView uid, StringView schema) {
  TyxStatus& status = SharedStatus();
  // A read of one table is part of a load that showed its progress already.
  const bool whole = scope_.only_table.empty();
  if (whole) status.DispStatus(Variant(String(u"Loading Database Tables/Views...")));
  std::unique_ptr<data::Recordset> rs = cn.OpenSchema(data::adSchemaTables);
  const int32_t total = rs->RecordCount();
  if (kind_ == kDbOracle) {
    String current = TextOrEmpty(CurrentSchema);
    if (!schema.empty()) {
      current = schema;
    } else if (whole) {
      ChooseOracleSchema(*rs, uid, current, SchemaList);
    }
    CurrentSchema = Variant(current);
    db_.DBSchema = current;
  }
  const String current_schema = TextOrEmpty(CurrentSchema);

  int32_t done = 0;
  int16_t count = 0;
  bool probing = false;  // from the first probe on, failures no longer end the run
  for (; !rs->Eof();) {
    try {
      (void)rs->Fields(u"TABLE_CATALOG").Value();
      const String owner = TextOrEmpty(rs->Fields(u"TABLE_SCHEMA").Value());
      const String name = TextOrEmpty(rs->Fields(u"TABLE_NAME").Value());
      const String type = TextOrEmpty(rs->Fields(u"TABLE_TYPE").Value());
      const bool kept = (type == u"TABLE" || type == u"VIEW") &&
                        (kind_ != kDbOracle || owner == current_schema) &&
                        (whole || name == scope_.only_table);
      if (kept) {
        ++count;
        TySchemaTable& table = db_.tables.Tbl.emplace_back();
        if (whole) status.DispStatus(Variant(u"Loading " + type + u" " + name + u"..."));
        table.TblSeq = count;
        table.TblGen = true;
        table.TblName = name;
        table.TblType = type;
        table.TblUpdatable = true;
        probing = true;
        Vars().CurrentTableSchema = owner;
        if (scope_.columns) ReadColumns(cn, table, owner);
      }
    } catch (const Error&) {
      if (!probing || scope_.for_project) throw;
    }
    ++done;
    if (whole) status.SetStatus(Variant(PercentOf(done, total)));
    try {
      rs->MoveNext();
    } catch (const Error&) {
      if (!probing || scope_.for_project) throw;
      break;
    }
  }
  rs->Close();
  db_.DBTblCnt = count;

  if (!scope_.columns) return 0;
  for (TySchemaTable& table : db_.tables.Tbl) {
    if (table.TblType == u"TABLE") ReadKeys(cn, table);
  }
  return 0;
}

void TyxSchema::ReadColumns(data::Connection& cn, TySchemaTable& table, StringView owner) {
  data::Recordset probe;
  try {
    probe.Open(ProbeStatement(owner, table.TblName), cn);
  } catch (const Error& e) {
    table.TblGen = false;
    table.read_error = e.description();
    return;
  }
  table.columns_read = true;
  ApplyToRecord(ReadColumnFacts(probe), table);
  probe.Close();
}

void TyxSchema::ReadKeys(data::Connection& cn, TySchemaTable& table) {
  RecordKeySink sink(table);
  if (std::optional<String> key = ReadTableKeys(cn, table.TblName, kind_, sink)) {
    table.TblKey = *key;
  }
}

}  // namespace qv
