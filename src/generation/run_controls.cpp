// Control execution.
#include "generation/run_controls.h"

#include <vector>

#include "generation/conditions.h"
#include "generation/copy_actions.h"
#include "generation/file_writer.h"
#include "generation/output_paths.h"
#include "generation/page_runs.h"
#include "generation/preparation.h"
#include "generation/run_state.h"
#include "model/tyx.h"
#include "script/script_host.h"
#include "support/status.h"
#include "support/tyx_functions.h"
#include "support/tyx_vars.h"
#include "templates/controls.h"

namespace qv {

namespace {

std::vector<String> SplitAtComma(StringView list) {
  std::vector<String> items;
  size_t from = 0;
  for (;;) {
    const size_t comma = list.find(u',', from);
    items.emplace_back(
        list.substr(from, comma == StringView::npos ? StringView::npos : comma - from));
    if (comma == StringView::npos) return items;
    from = comma + 1;
  }
}

// Counts the table pages to come, so that the bar can show how far the run is. A table that
// can't give pages (no fields, a broken custom view) is switched off here for good.
void CountTablePages(Tyx& tyx, TyxTables& tables) {
  TyxControls& controls = RunControlList();
  TyxVars& vars = Vars();
  vars.PagesTotal = 0;
  tables.list().ForEach([&](TyxTable& table) {
    if (table.Fields().Count() == 0) table.SetTblGen(false);
    if (!table.TblCustomError().empty()) table.SetTblGen(false);
    tyx.CurTable = Ref<TyxTable>(&table);
    LoadCurrentTable(&table);
    for (int32_t i = 1; i <= controls.Count(); ++i) {
      const Ref<TyxControl> control = controls.Item(i);
      if (!control || (control->CtrlType != u"report" && control->CtrlType != u"table")) continue;
      if (ControlAppliesToTable(tyx, table, control->CtrlID, control->CtrlType, control->CtrlCond))
        ++vars.PagesTotal;
    }
  });
  vars.PagesDone = 0;
  tyx.CurTable = nullptr;
  tyx.CurField = nullptr;
}

// The field pages of one table; the error of a page gets the names of table and field.
int16_t RunTableFields(Tyx& tyx, TyxTables& tables, TyxTable& table, bool check_only) {
  TyxVars& vars = Vars();
  int16_t count = 0;
  TyxFields& fields = table.Fields();
  for (int16_t seq = 1; seq <= fields.Count(); ++seq) {
    const Ref<TyxField> field = fields.Seq(seq);
    if (!field || !field->FldGenerate()) continue;
    tables.Item(Variant(table.TblName()));
    fields.SetItem(Variant(field->FldName()));
    tyx.CurTable = Ref<TyxTable>(&table);
    tyx.CurField = field;
    count += RunFieldPages(tyx, *field, check_only);
    if (!vars.ProjErr.empty()) {
      vars.ProjErr = vars.ProductTitle + u": Generate Table " + table.TblName() + u" Field " +
                     field->FldName() + u" page error" + u"\r\n" + vars.ProjErr;
      return count;
    }
  }
  return count;
}

}  // namespace

void ResetRunState(Tyx& tyx) {
  TyxVars& vars = Vars();
  vars.OverwriteChoice = vars.OverwritePreset;
  vars.OverwriteThis = false;
  vars.FilesWritten = vars.FilesCopied = vars.FilesSkipped = vars.FilesBackedUp = 0;
  const Ref<TyxDatabase> db = FirstDatabase(tyx);
  vars.CurrentDbmsName = db ? db->DBDBMSName() : String();
  // A check runs no scripts, so only a real run has flags to set.
  if (TyScript* script = CurrentScript())
    script->SetDatabaseKind(DatabaseKind(vars.CurrentDbmsName));
}

bool ControlAppliesToTable(Tyx& tyx, TyxTable& table, StringView ctrl_id, StringView ctrl_type,
                           StringView ctrl_cond) {
  bool applies = table.TblGen();
  const String units = table.TblSysGenUnits();
  if (!units.empty()) {
    for (const String& unit : SplitAtComma(units))
      if (unit == ctrl_id) applies = true;
  }
  if (!applies) return false;
  const String type = table.TblType();
  const bool fits =
      ((type == u"CUSTOMVIEW" || type == u"VIEW" || type == u"TABLE") && ctrl_type == u"table") ||
      (type == u"REPORT" && ctrl_type == u"report");
  return fits && EvalCondition(tyx, Variant(String(ctrl_cond)));
}

int16_t RunOtherPages(Tyx& tyx, bool check_only, StringView type_list, bool overwrite) {
  TyxVars& vars = Vars();
  TyxControls& controls = RunControlList();
  std::vector<String> types;
  for (const String& item : SplitAtComma(type_list))
    types.push_back(ToLower(TrimBlanks(item)));
  int16_t count = 0;
  for (int32_t i = 1; i <= controls.Count(); ++i) {
    const Ref<TyxControl> control = controls.Item(i);
    if (!control) continue;
    const String type = ToLower(control->CtrlType);
    bool taken = false;
    for (const String& t : types)
      taken = taken || t == type;
    if (!taken || !EvalCondition(tyx, Variant(control->CtrlCond))) continue;
    const String ext = ResolveExt(control->CtrlOExt);
    const String name = type == u"simple" || type == u"web.config"
                            ? control->CtrlOFile + u"." + ext
                            : MakeOutputName(tyx, u"", u"", control->CtrlOFile, ext);
    if (check_only) {
      const String path = ResolveOutputPath(tyx, control->CtrlOFolder, name, true);
      if (path.empty()) return count;
      if (PrepareOverwriteFile(tyx, path, true, true, true)) ++count;
      continue;
    }
    SharedStatus().DispStatus(Variant(u"Generating " + name + u"..."));
    const String path = ResolveOutputPath(tyx, control->CtrlOFolder, name, false);
    if (!path.empty()) WriteOtherPage(tyx, TempFilePath(*control), path, overwrite, *control);
    if (!vars.ProjErr.empty()) {
      vars.ProjErr = vars.ProductTitle + u": Generate " + control->CtrlID + u" page error" +
                     u"\r\n" + vars.ProjErr;
      break;
    }
  }
  return count;
}

int16_t RunControls(Tyx& tyx, bool check_only) {
  TyxVars& vars = Vars();
  ResetRunState(tyx);
  const Ref<TyxDatabase> db = FirstDatabase(tyx);
  if (!db) return 0;
  TyxTables& tables = db->Tables();
  CountTablePages(tyx, tables);

  int16_t count = 0;
  const bool other_gen = tyx.OtherGen();
  if (other_gen) {
    count += CopyDatabase(tyx, check_only);
    if (!vars.ProjErr.empty()) return count;
  }
  for (int16_t seq = 1; seq <= tables.Count(); ++seq) {
    const Ref<TyxTable> table = tables.Seq(seq);
    if (!table) continue;
    if (table->TblGen() || !table->TblSysGenUnits().empty()) {
      tyx.CurTable = table;
      LoadCurrentTable(table.get());
      count += RunTablePages(tyx, *table, check_only);
      if (count > 0 || !vars.ProjErr.empty()) return count;
    }
    if (table->TblGen()) {
      count += RunTableFields(tyx, tables, *table, check_only);
      if (!vars.ProjErr.empty()) return count;
    }
  }
  tyx.CurField = nullptr;
  if (!other_gen) return count;
  tyx.CurTable = nullptr;
  count += CopyCss(tyx, check_only);
  if (!vars.ProjErr.empty()) return count;
  count += RunOtherPages(tyx, check_only, u"other,simple", tyx.OtherOverwrite());
  if (!vars.ProjErr.empty()) return count;
  count += RunCopyActions(tyx, check_only);
  return count;
}

}  // namespace qv
