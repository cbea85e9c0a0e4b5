// Custom view and report synchronisation.
#include "sync/custom_sync.h"

#include <vector>

#include "automation/convert.h"
#include "schema/custom_view.h"
#include "schema/tyx_schema.h"
#include "support/tyx_vars.h"
#include "sync/live_schema.h"
#include "sync/table_sync.h"

namespace qv {

namespace {

// Runs `sync` on every table of one TblType under its progress window, then numbers the
// tables afresh.
void SyncEach(Tyx& tyx, StringView type, StringView progress_suffix,
              void (*sync)(Tyx&, StringView)) {
  TyxDatabase* db = CurrentDatabase(tyx);
  if (!db) return;
  FillSharedDefaults(tyx);
  ProgressWindow progress(tyx, progress_suffix);
  for (const String& name : TableNamesOfType(*db, type))
    sync(tyx, name);
  db->Tables().SetSeq(1);
}

}  // namespace

void SyncCustomViews(Tyx& tyx) {
  SyncEach(tyx, u"CUSTOMVIEW", u" - Synchronizing Custom Views...", &SyncCustom);
}

void SyncCustom(Tyx& tyx, StringView table_name) {
  TyxDatabase* db = CurrentDatabase(tyx);
  if (!db) return;
  const Ref<TyxTable> table(db->Tables().list().ByName(table_name));
  if (!table) return;
  TyxVars& vars = Vars();
  if (vars.CurrentDbmsName.empty()) vars.CurrentDbmsName = db->DBDBMSName();
  TyxSchema schema;
  const int16_t result = schema.LoadADOCustomView(ToString(CustomViewConnStr(tyx)),
                                                  table->TblName(), table->TblCustomSQL());
  if (result != 0 || !vars.ProjErr.empty()) {
    // The view keeps its fields; the words stay with it and generation of the rest goes on.
    table->SetTblCustomError(vars.ProjErr);
    vars.ProjErr = String();
    return;
  }
  table->SetTblCustomError(u"");
  table->Fields().list().ForEach([](TyxField& f) { f.SetFldSync(false); });
  const TySchemaTable& record = schema.db().tables.Tbl.front();
  SyncTableFromRecord(*table, record, false);
  SyncFieldsFromRecord(*table, record);
  DeleteUnmarkedFields(*table);
  if (!table->TblKey().empty()) UpdateFieldKeys(*table);
  ParseCustomSql(*table);
  table->Fields().SetSeq(1);
}

void SyncReports(Tyx& tyx) {
  SyncEach(tyx, u"REPORT", u" - Synchronizing Reports...", &SyncReport);
}

void SyncReport(Tyx& tyx, StringView table_name) {
  TyxDatabase* db = CurrentDatabase(tyx);
  if (!db) return;
  const Ref<TyxTable> report(db->Tables().list().ByName(table_name));
  if (!report) return;
  const String source_name = report->TblRptSrc();
  Ref<TyxTable> source;
  db->Tables().list().ForEach([&](TyxTable& t) {
    if (!source && t.TblName() == source_name) source = Ref<TyxTable>(&t);
  });
  TyxVars& vars = Vars();
  if (source && !source->TblCustomError().empty()) {
    report->SetTblCustomError(vars.ProductName + u": Source Table Error");
    return;
  }
  if (!source) {
    report->SetTblCustomError(vars.ProductName + u": Source Table not found");
    return;
  }
  SyncTableFromTable(*report, *source, false);
  report->Fields().list().ForEach([](TyxField& f) { f.SetFldSync(false); });
  source->Fields().list().ForEach([](TyxField& f) { f.SetFldSync(false); });
  TyxFields& fields = report->Fields();
  source->Fields().list().ForEach([&](TyxField& from) {
    TyxField* field = fields.list().ByName(from.FldName());
    if (!field || field->FldSync() || field->FldType() != from.FldType()) return;
    field->SetFldSync(true);
    from.SetFldSync(true);
    SyncFieldFromField(*field, from, false);
  });
  source->Fields().list().ForEach([&](TyxField& from) {
    if (from.FldSync()) return;
    // A report field of this name that is still here has another type: it starts again from
    // the defaults, as a new field would.
    TyxField* field = fields.list().ByName(from.FldName());
    if (!field && fields.Add(from.FldName())) field = fields.list().ByName(from.FldName());
    if (!field) return;
    field->SetFldSync(true);
    from.SetFldSync(true);
    SyncFieldFromField(*field, from, true);
  });
  DeleteUnmarkedFields(*report);
  fields.SetSeq(1);
  report->SetTblCustomError(u"");
}

void SyncProperties(const TyProperties& source, TyProperties& target) {
  source.CopySyncedTo(target);
}

}  // namespace qv
