// Custom views into the project.
#include "schema/custom_view.h"

#include <vector>

#include "automation/convert.h"
#include "platform/data/data_types.h"
#include "platform/data/recordset.h"
#include "schema/column_facts.h"
#include "schema/connection_error.h"
#include "schema/custom_sql_parser.h"
#include "schema/dao_loader.h"
#include "schema/project_loader.h"
#include "schema/table_loader.h"
#include "support/status.h"
#include "support/tyx_functions.h"
#include "support/tyx_vars.h"

namespace qv {

namespace {

void RefreshQuoteAndDateSettings(const Tyx& tyx) {
  Vars().SqlQuoteStyle = tyx.SQLQuote();
  try {
    Vars().DefaultDateFormat = tyx.defaultDateFormat();
  } catch (const Error&) {
    Vars().DefaultDateFormat = 0;
  }
}

bool TableNameInUse(const TyxDatabase& db, StringView name) {
  TyxTables& tables = db.Tables();
  for (int32_t i = 1; i <= tables.Count(); ++i) {
    TyxTable* table = tables.list().AtPosition(i);
    if (table && table->TblName() == name) return true;
  }
  return false;
}

// The settings of each field's source column, where the source is a loaded table.
void CopySourceSettings(const TyxDatabase& db, TyxTable& view) {
  view.Fields().list().ForEach([&](TyxField& field) {
    if (field.FldSourceTable().empty() || field.FldSourceField().empty()) return;
    TyxTable* source = db.Tables().list().ByName(field.FldSourceTable());
    if (!source || !source->TblLoaded()) return;
    TyxField* column = source->Fields().list().ByName(field.FldSourceField());
    if (!column) return;
    column->Properties().CopySyncedTo(field.Properties());
  });
}

}  // namespace

Variant CustomViewConnStr(const Tyx& tyx) {
  TyxDatabase* db = tyx.Databases().Find(tyx.CurrentDbName);
  if (!db) return Variant(String());
  const String type = db->DBType();
  if (type == u"ACCESS") return Variant(JetConnectionString(db->DBPhyPath(), db->DBPwd()));
  if (type == u"ODBC") {
    return Variant(u"dsn=" + db->DBName() + u";uid=" + db->DBUID() + u";pwd=" + db->DBPwd());
  }
  if (type == u"CONNECTIONSTRING") return Variant(db->DBConnstr());
  return Variant(String());
}

void LoadCustomView(Tyx& tyx, StringView table_name, StringView sql, bool copy_fields) {
  TyxVars& vars = Vars();
  vars.ProjErr = String();
  TyxDatabase* db = tyx.Databases().Find(tyx.CurrentDbName);
  if (!db) {
    vars.ProjErr = vars.ProductTitle + u": Database not loaded!";
    return;
  }
  if (TableNameInUse(*db, table_name)) {
    vars.ProjErr = vars.ProductTitle + u": Table/View " + table_name + u" already exists!";
    return;
  }
  TyxStatus& status = SharedStatus();
  ShowTableStatus(tyx, u"Loading", table_name);
  RefreshQuoteAndDateSettings(tyx);
  // A project opened from its file has not read the database: its kind comes from the file.
  if (vars.CurrentDbmsName.empty()) vars.CurrentDbmsName = db->DBDBMSName();
  const int16_t result = LoadADOCustomView(*db, ToString(CustomViewConnStr(tyx)), table_name, sql);
  if (result == 0 && copy_fields) {
    if (TyxTable* view = db->Tables().list().ByName(table_name)) CopySourceSettings(*db, *view);
  }
  status.CloseStatus();
  if (result != 0) {
    if (vars.ProjErr.empty()) vars.ProjErr = u"Load Database failed!";
    return;
  }
  vars.ProjErr = String();
}

CustomViewRun RunCustomViewSql(data::Connection& cn, StringView sql) {
  CustomViewRun run;
  data::Recordset rs;
  try {
    rs.Open(sql, cn);
  } catch (const Error& e) {
    run.error = e.description();
    return run;
  }
  run.ran = true;
  run.columns = ReadColumnFacts(rs);
  rs.Close();
  return run;
}

bool CustomViewNameRefused(StringView table_name) {
  return DatabaseKind(Vars().CurrentDbmsName) == kDbOracle &&
         table_name.find(u' ') != StringView::npos;
}

int16_t LoadADOCustomView(TyxDatabase& db, StringView conn_str, StringView table_name,  // NOLINT
                          StringView sql) {
  TyxTables& tables = db.Tables();
  bool added = false;
  data::Connection cn;
  const int16_t result = UnderConnectionHandler(
      cn,
      [&]() -> int16_t {
        cn.Open(conn_str);
        if (cn.State() != data::adStateOpen) return 1;
        added = tables.Add(table_name);
        TyxTable* table = added ? tables.list().ByName(table_name) : nullptr;
        if (!table) return 1;
        table->SetTblLoaded(false);
        Load_ADOCustomView(*table, cn, table_name, sql);
        return Vars().ProjErr.empty() ? 0 : 1;
      },
      /*numbered=*/false);
  // A view that failed leaves no table behind.
  if (result != 0 && added && tables.list().ByName(table_name)) tables.Delete(table_name);
  return result;
}

void Load_ADOCustomView(TyxTable& table, data::Connection& cn, StringView table_name,  // NOLINT
                        StringView sql) {
  TyxVars& vars = Vars();
  table.SetTblName(String(table_name));
  table.SetTblType(u"CUSTOMVIEW");
  table.SetTblCustomSQL(String(sql));
  table.SetTblLoaded(true);
  table.SetTblGen(true);
  if (CustomViewNameRefused(table_name)) {
    table.SetTblCustomError(vars.ProductTitle + u": Oracle Table/View Name [" + table_name +
                            u"] contain spaces,table not loaded!");
    table.SetTblGen(false);
    return;
  }
  const CustomViewRun run = RunCustomViewSql(cn, sql);
  if (!run.ran) {
    // The project's view keeps the database's words bare; a record's carry the product's
    // name (TyxSchema::LoadADOCustomView).
    table.SetTblGen(false);
    table.SetTblCustomError(run.error);
    vars.ProjErr = run.error;
    table.LoadTableDefault();
    return;
  }
  ApplyToTable(run.columns, table,
               [&](const String& name) { table.SetTblCustomError(DuplicateColumnText(name)); });
  ParseCustomSql(table);
  table.SetTblCustomError(u"");
  table.LoadTableDefault();
}

void ParseCustomSql(TyxTable& table) {
  int32_t kind = DatabaseKind(Vars().CurrentDbmsName);
  if (kind < 1 || kind >= 5) kind = 1;
  CustomSqlParser parser;
  if (!parser.Parse(table.TblCustomSQL(), kind)) return;
  table.Fields().list().ForEach([&](TyxField& field) {
    String name, source_table, source_field;
    bool alias = false;
    parser.FieldOrigin(field.FldName(), name, source_table, source_field, alias);
    field.SetFldAlias(alias);
    field.SetFldSourceName(name);
    field.SetFldSourceTable(source_table);
    field.SetFldSourceField(source_field);
  });
}

}  // namespace qv
