// The ADO database loader. Failures before the tables are walked, and failures of the table
// rowset itself, end the load through the connection error handler; each table's own probing
// and key reading never does (see table_loader.h).
#include "schema/database_loader.h"

#include <memory>

#include "automation/convert.h"
#include "platform/data/data_types.h"
#include "platform/data/recordset.h"
#include "schema/ado_source.h"
#include "schema/connection_error.h"
#include "schema/oracle_schema.h"
#include "schema/table_loader.h"
#include "support/common.h"
#include "support/status.h"
#include "support/tyx_functions.h"
#include "support/tyx_vars.h"

namespace qv {

namespace {

String TextOf(const data::Recordset& rs, StringView column) {
  const Variant& v = rs.Fields(column).Value();
  return v.is_null() || v.is_empty() ? String() : ToString(v);
}

void WriteSourceProperties(TyxDatabase& db, const AdoLoadRequest& request,
                           const AdoSourceFacts& facts) {
  const bool odbc = request.db_type == u"ODBC";
  db.SetDBType(request.db_type);
  db.SetDBPath(u"");
  db.SetDBUseServerMapPath(false);
  db.SetDBPhyPath(u"");
  if (odbc) {
    db.SetDBUID(request.uid);
    db.SetDBPwd(request.pwd);
  }
  if (request.db_type == u"CONNECTIONSTRING") db.SetDBConnstr(request.conn_str);
  db.SetDBADOVer(facts.ado_version);
  db.SetDBDBMSName(facts.dbms_name);
  db.SetDBDBMSVer(facts.dbms_version);
  db.SetDBOLEDBVer(facts.oledb_version);
  db.SetDBProviderName(facts.provider_name);
  db.SetDBProviderVer(facts.provider_version);
  db.SetDBQuoteS(ToString(Vars().DbQuoteOpen));
  db.SetDBQuoteE(ToString(Vars().DbQuoteClose));
  if (facts.kind == kDbOracle && odbc) db.SetDBConnstrOra(facts.oracle_conn_str);
}

// The rows of the table rowset, loaded into the project.
void LoadTables(TyxDatabase& db, data::Connection& cn, data::Recordset& rs,
                const AdoLoadRequest& request, int32_t kind) {
  TyxVars& vars = Vars();
  TyxStatus& status = SharedStatus();
  const bool full = request.table_name.empty();
  const int32_t total = rs.RecordCount();
  int32_t done = 0;
  TyxTables& tables = db.Tables();
  for (; !rs.Eof(); rs.MoveNext()) {
    vars.CurrentTableSchema = TextOf(rs, u"TABLE_SCHEMA");
    const String type = TextOf(rs, u"TABLE_TYPE");
    const String name = TextOf(rs, u"TABLE_NAME");
    const bool kept = (type == u"TABLE" || type == u"VIEW") &&
                      (kind != kDbOracle || vars.CurrentTableSchema == db.CurrentSchema());
    if (kept && (full || name == request.table_name)) {
      if (full) {
        status.DispStatus(Variant(u"Loading " + type + u" " + name + u"..."));
        if (tables.Add(name)) {
          if (TyxTable* added = tables.list().ByName(name)) added->SetTblLoaded(false);
        }
      }
      if (TyxTable* table = tables.list().ByName(name)) Load_ADO(*table, cn, rs, full);
    }
    ++done;
    if (full) status.SetStatus(Variant(PercentOf(done, total)));
  }
}

int16_t ReadSource(TyxDatabase& db, data::Connection& cn, const AdoLoadRequest& request) {
  const bool full = request.table_name.empty();
  AdoSourceRequest source{request.db_type,  request.db_name,         request.uid, request.pwd,
                          request.conn_str, /*record_reader=*/false, full};
  AdoSourceFacts facts;
  if (!OpenAdoSource(cn, source, facts)) return 1;
  if (full) WriteSourceProperties(db, request, facts);

  if (full) SharedStatus().DispStatus(Variant(String(u"Loading Database Tables/Views...")));
  std::unique_ptr<data::Recordset> rs = cn.OpenSchema(data::adSchemaTables);
  if (facts.kind == kDbOracle && full) {
    String current = request.schema;
    if (current.empty()) {
      current = db.CurrentSchema();
      std::vector<String> schema_list;
      ChooseOracleSchema(*rs, request.uid, current, schema_list);
    }
    db.SetCurrentSchema(current);
    db.SetDBSchema(current);
  }
  LoadTables(db, cn, *rs, request, facts.kind);
  rs->Close();
  return 0;
}

}  // namespace

int16_t LoadADODB(TyxDatabase& db, const AdoLoadRequest& request) {  // NOLINT
  data::Connection cn;
  return UnderConnectionHandler(cn, [&] { return ReadSource(db, cn, request); });
}

}  // namespace qv
