// Tyx.LoadReport.
#include "schema/report.h"

#include "schema/project_loader.h"
#include "support/status.h"
#include "support/tyx_vars.h"

namespace qv {

namespace {

void CopyField(const TyxField& from, TyxField& to) {
  from.Properties().ForEach([&](TyProperty& property) {
    if (property.Name() == u"FldName") return;
    if (TyProperty* target = to.Properties().Find(property.Name()))
      target->SetValue(property.Value());
  });
  to.SetFldAdd(false);
  to.SetFldView(false);
  to.SetFldEdit(false);
  to.SetFldSearch(false);
  to.SetFldBasicSearch(false);
  to.SetFldExtendedBasicSearch(false);
  to.SetFldRegister(false);
}

}  // namespace

bool LoadReport(Tyx& tyx, StringView table_name, StringView from_table_name) {
  TyxVars& vars = Vars();
  TyxDatabase* db = tyx.Databases().Find(tyx.CurrentDbName);
  if (!db) {
    vars.ProjErr = vars.ProductTitle + u": Database not loaded!";
    return false;
  }
  TyxTables& tables = db->Tables();
  bool name_taken = false;
  TyxTable* source = nullptr;
  for (int32_t i = 1; i <= tables.Count(); ++i) {
    TyxTable* table = tables.list().AtPosition(i);
    if (!table) continue;
    if (table->TblName() == table_name) name_taken = true;
    if (!source && table->TblName() == from_table_name && table->TblLoaded()) source = table;
  }
  if (name_taken) {
    vars.ProjErr = vars.ProductTitle + u": Table/View " + table_name + u" already exists!";
    return false;
  }
  if (!source) {
    vars.ProjErr =
        vars.ProductTitle + u": Table/View " + from_table_name + u" not exist or loaded!";
    return false;
  }
  TyxStatus& status = SharedStatus();
  ShowTableStatus(tyx, u"Loading", table_name);
  // The source stays alive across the Add, which may move the collection's storage.
  const Ref<TyxTable> keep(source);
  if (!tables.Add(table_name)) {
    status.CloseStatus();
    return false;
  }
  TyxTable* report = tables.list().ByName(table_name);
  report->SetTblType(u"REPORT");
  report->SetTblRptSrc(String(from_table_name));
  report->SetTblLoaded(true);
  report->SetTblGen(true);
  report->LoadTableDefault();
  source->Fields().list().ForEach([&](TyxField& from) {
    if (!report->Fields().Add(from.FldName())) return;
    if (TyxField* to = report->Fields().list().ByName(from.FldName())) CopyField(from, *to);
  });
  status.CloseStatus();
  vars.ProjErr = String();
  return true;
}

}  // namespace qv
