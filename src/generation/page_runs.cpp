// Table and field page runs.
#include "generation/page_runs.h"

#include "generation/conditions.h"
#include "generation/file_writer.h"
#include "generation/output_paths.h"
#include "generation/preparation.h"
#include "generation/run_controls.h"
#include "generation/run_state.h"
#include "model/tyx.h"
#include "support/status.h"
#include "support/tyx_vars.h"
#include "templates/controls.h"

namespace qv {

namespace {

void NoteControl(const TyxControl& control) {
  TyxVars& vars = Vars();
  vars.CurCtrlID = control.CtrlID;
  vars.CurTagExt = control.CtrlTagExt.empty() ? String() : control.CtrlTagExt + u"_";
}

}  // namespace

void LoadCurrentTable(TyxTable* table) {
  if (!table) return;
  if (table->TblKey().empty()) {
    // Without a key no record can be found again: the pages that change or show one record
    // can't work, and the conditions of the templates must see that.
    table->SetTblAdd(false);
    table->SetTblCopy(false);
    table->SetTblView(false);
    table->SetTblEdit(false);
    table->SetTblInlineEdit(false);
    table->SetTblDelete(false);
    return;
  }
  bool has_file = false;
  TyxFields& fields = table->Fields();
  for (int16_t seq = 1; seq <= fields.Count(); ++seq) {
    const Ref<TyxField> field = fields.Seq(seq);
    if (field && field->FldHtmlTag() == u"FILE") has_file = true;
  }
  table->SetTblBlob(has_file);
}

int16_t RunTablePages(Tyx& tyx, TyxTable& table, bool check_only) {
  TyxVars& vars = Vars();
  TyxControls& controls = RunControlList();
  int16_t count = 0;
  for (int32_t i = 1; i <= controls.Count(); ++i) {
    const Ref<TyxControl> control = controls.Item(i);
    if (!control ||
        !ControlAppliesToTable(tyx, table, control->CtrlID, control->CtrlType, control->CtrlCond))
      continue;
    vars.GeneratedFile =
        MakeOutputName(tyx, table.TblVar(), u"", control->CtrlOFile, ResolveExt(control->CtrlOExt));
    if (check_only) {
      const String path = ResolveOutputPath(tyx, control->CtrlOFolder, vars.GeneratedFile, true);
      if (path.empty()) return count;
      if (PrepareOverwriteFile(tyx, path, true, true, true)) ++count;
      continue;
    }
    NoteControl(*control);
    SharedStatus().DispStatus(Variant(u"Generating " + vars.GeneratedFile + u"..."));
    if (SharedStatus().StatusIsCancelled()) RaiseCancelled();
    const String path = ResolveOutputPath(tyx, control->CtrlOFolder, vars.GeneratedFile, false);
    if (!path.empty()) WriteTablePage(tyx, table, TempFilePath(*control), path, *control);
    if (!vars.ProjErr.empty()) {
      vars.ProjErr = vars.ProductTitle + u": Generate Table " + table.TblName() + u" " +
                     control->CtrlID + u" page error" + u"\r\n" + vars.ProjErr;
      break;
    }
  }
  return count;
}

int16_t RunFieldPages(Tyx& tyx, TyxField& field, bool check_only) {
  TyxVars& vars = Vars();
  TyxControls& controls = RunControlList();
  tyx.CurField = Ref<TyxField>(&field);
  if (!field.FldGenerate()) return 0;
  const String table_var = tyx.CurTable ? tyx.CurTable->TblVar() : String();
  int16_t count = 0;
  for (int32_t i = 1; i <= controls.Count(); ++i) {
    const Ref<TyxControl> control = controls.Item(i);
    if (!control || control->CtrlType != u"field") continue;
    if (!EvalCondition(tyx, Variant(control->CtrlCond))) continue;
    vars.GeneratedFile = MakeOutputName(tyx, table_var, field.FldVar(), control->CtrlOFile,
                                        ResolveExt(control->CtrlOExt));
    if (check_only) {
      const String path = ResolveOutputPath(tyx, control->CtrlOFolder, vars.GeneratedFile, true);
      if (path.empty()) return count;
      if (PrepareOverwriteFile(tyx, path, true, true, true)) ++count;
      continue;
    }
    NoteControl(*control);
    SharedStatus().DispStatus(Variant(u"Generating " + vars.GeneratedFile + u"..."));
    const String path = ResolveOutputPath(tyx, control->CtrlOFolder, vars.GeneratedFile, false);
    if (path.empty()) return count;
    WriteFieldPage(tyx, field, TempFilePath(*control), path, *control);
    if (!vars.ProjErr.empty()) return count;
  }
  return count;
}

}  // namespace qv
