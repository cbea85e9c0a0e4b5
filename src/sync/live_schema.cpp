// Reading the live schema for synchronisation.
#include "sync/live_schema.h"

#include "automation/convert.h"
#include "support/status.h"
#include "support/tyx_vars.h"

namespace qv {

TyxDatabase* CurrentDatabase(Tyx& tyx) {
  if (tyx.Databases().Count() < 1) return nullptr;
  if (TyxDatabase* db = tyx.Databases().Find(tyx.CurrentDbName)) return db;
  return tyx.db().get();
}

std::vector<String> TableNamesOfType(TyxDatabase& db, StringView type) {
  std::vector<String> names;
  db.Tables().list().ForEach([&](TyxTable& t) {
    if (t.TblType() == type) names.push_back(t.TblName());
  });
  return names;
}

bool ReadLiveSchema(Tyx& tyx, TyxSchema& schema, StringView title) {
  TyxVars& vars = Vars();
  TyxDatabase* db = CurrentDatabase(tyx);
  if (!db) {
    vars.ProjErr = vars.ProductTitle + u": Database not loaded!";
    return false;
  }
  vars.StatusTitle = String(title);
  // A project read from its file has not connected yet: the DBMS it names decides the kind.
  if (vars.CurrentDbmsName.empty()) vars.CurrentDbmsName = db->DBDBMSName();
  Variant name(db->DBName());
  schema.LoadDB(name, Variant(db->DBType()), Variant(db->DBPath()), Variant(db->DBPhyPath()),
                Variant(db->DBUseServerMapPath()), Variant(db->DBUID()), Variant(db->DBPwd()),
                Variant(db->DBConnstr()), Variant(db->DBSchema()));
  return vars.ProjErr.empty();
}

void FillSharedDefaults(Tyx& tyx) {
  TyxVars& vars = Vars();
  try {
    vars.DefaultDateFormat = ToInteger(tyx.Entry(Tyx::kdefaultDateFormat).Value());
  } catch (const Error&) {
    vars.DefaultDateFormat = 0;  // not numeric
  }
  if (TyxDatabase* db = CurrentDatabase(tyx)) vars.SecDefault = db->SecDefault();
}

ProgressWindow::ProgressWindow(Tyx& tyx, StringView suffix) {
  TyxVars& vars = Vars();
  vars.StatusTitle = vars.ProductName + suffix;
  TyxStatus& status = SharedStatus();
  status.ShowStatus3(Variant(tyx.hwnd()), Variant(LengthMarked(vars.StatusTitle)));
  status.DispStatus(Variant(String(u"Please wait...")));
}

ProgressWindow::~ProgressWindow() {
  SharedStatus().CloseStatus();
}

}  // namespace qv
