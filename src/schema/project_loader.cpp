// Tyx.LoadDB, LoadTable, UnLoadTable, UnLoadDB and the extensions of the registry.
#include "schema/project_loader.h"

#include <vector>

#include "automation/convert.h"
#include "schema/dao_loader.h"
#include "schema/database_loader.h"
#include "support/common.h"
#include "support/registry.h"
#include "support/status.h"
#include "support/tyx_functions.h"
#include "support/tyx_vars.h"

namespace qv {

namespace {

String ArgText(Args args, size_t i) {
  if (!HasArg(args, i)) return String();
  const Variant& v = args[i];
  return v.is_null() || v.is_empty() ? String() : ToString(v);
}

// The file name part of a path; either separator counts, as input paths may use both.
String FileNamePart(StringView path) {
  const size_t slash = path.find_last_of(u"/\\");
  return String(slash == StringView::npos ? path : path.substr(slash + 1));
}

// The shared copy of defaultDateFormat: the setting when it is a number, else 0.
int16_t DateFormatCopy(const Tyx& tyx) {
  try {
    return tyx.defaultDateFormat();
  } catch (const Error&) {
    return 0;
  }
}

}  // namespace

void ShareProjectSettings(const Tyx& tyx) {
  TyxVars& v = Vars();
  v.SqlQuoteStyle = tyx.SQLQuote();
  v.DefaultDateFormat = DateFormatCopy(tyx);
  v.DynamicLoadDB = tyx.DynamicLoadDB();
  v.RptIndent = tyx.RptIndent();
  v.RecPerPage = tyx.RecPerPage();
  v.RecPerPageList = tyx.RecPerPageList();
  v.ExportHtml = tyx.ExportHtml();
  v.ExportWord = tyx.ExportWord();
  v.ExportExcel = tyx.ExportExcel();
  v.ExportXml = tyx.ExportXml();
  v.ExportCsv = tyx.ExportCsv();
  v.RecPerRow = tyx.RecPerRow();
  v.MultiDelete = tyx.MultiDelete();
  v.SortType = tyx.SortType();
  v.PagerStyle = tyx.PagerStyle();
  v.TopPageLink = tyx.TopPageLink();
  v.LinkOnLeft = tyx.LinkOnLeft();
  v.InlineDelete = tyx.InlineDelete();
  v.RepeatColumns = tyx.RepeatColumns();
}

namespace {

void RefreshQuoteAndDateSettings(const Tyx& tyx) {
  Vars().SqlQuoteStyle = tyx.SQLQuote();
  Vars().DefaultDateFormat = DateFormatCopy(tyx);
}

int16_t RunReader(TyxDatabase& db, const LoadDbRequest& request, StringView table_name) {
  if (request.db_type == u"ACCESS") {
    return LoadDAODB(db, DaoLoadRequest{request.path, request.phy_path, request.use_server_map_path,
                                        request.uid, request.pwd, String(table_name)});
  }
  if (request.db_type != u"ODBC" && request.db_type != u"CONNECTIONSTRING") return 0;
  AdoLoadRequest ado{request.db_type,  request.db_name,    request.uid,   request.pwd,
                     request.conn_str, String(table_name), request.schema};
  return LoadADODB(db, ado);
}

// The project's one database: under CurrentDbName, or the only entry when that name is no
// key (an empty data source name is stored without one).
TyxDatabase* TheDatabase(const Tyx& tyx) {
  TyxDatabases& list = tyx.Databases();
  if (TyxDatabase* db = list.Find(tyx.CurrentDbName)) return db;
  if (list.Count() != 1) return nullptr;
  const Variant v = list.collection().Item(Variant(list.collection().BaseIndex()));
  return v.is_object() ? static_cast<TyxDatabase*>(v.as_object()) : nullptr;
}

void DropTheDatabase(const Tyx& tyx) {
  TyxDatabases& list = tyx.Databases();
  if (list.Find(tyx.CurrentDbName)) {
    list.Delete(Variant(tyx.CurrentDbName));
  } else if (list.Count() == 1) {
    list.Delete(Variant(list.collection().BaseIndex()));
  }
}

// The table of that exact name, walked by position as the original did; nullptr when there
// is none. ProjErr tells which of the two checks failed.
TyxTable* FindLoadedTable(Tyx& tyx, StringView table_name) {
  TyxVars& vars = Vars();
  TyxDatabase* db = TheDatabase(tyx);
  if (!db) {
    vars.ProjErr = vars.ProductTitle + u": Database not loaded!";
    return nullptr;
  }
  TyxTables& tables = db->Tables();
  for (int32_t i = 1; i <= tables.Count(); ++i) {
    TyxTable* table = tables.list().AtPosition(i);
    if (table && table->TblName() == table_name) return table;
  }
  vars.ProjErr = vars.ProductTitle + u": Table " + table_name + u" not found!";
  return nullptr;
}

}  // namespace

void LoadDB(Tyx& tyx, const LoadDbRequest& request) {
  TyxVars& vars = Vars();
  vars.StatusTitle = vars.ProductTitle + u" - Loading Database...";
  if (tyx.Databases().Count() != 0) {
    vars.ProjErr = u"database already loaded!";
    return;
  }
  if (request.db_type == u"ACCESS") {
    if (request.phy_path.empty()) {
      vars.ProjErr = u"invalid database path!";
      return;
    }
    tyx.CurrentDbName = FileNamePart(request.phy_path);
  } else if (request.db_type == u"ODBC") {
    if (request.db_name.empty()) vars.ProjErr = u"invalid DBName specified!";
    tyx.CurrentDbName = request.db_name;
  } else if (request.db_type == u"CONNECTIONSTRING") {
    if (request.conn_str.empty()) vars.ProjErr = u"invalid connection string specified!";
    tyx.CurrentDbName = u"DB";
  }
  LoadDbRequest effective = request;
  if (request.db_type == u"CONNECTIONSTRING") effective.db_name = u"DB";

  TyxStatus& status = SharedStatus();
  status.ShowStatus(Variant(tyx.hwnd()), Variant(LengthMarked(vars.StatusTitle)));
  tyx.Databases().Add(tyx.CurrentDbName);
  ShareProjectSettings(tyx);
  int16_t result = 1;
  if (TyxDatabase* db = TheDatabase(tyx)) result = RunReader(*db, effective, u"");
  status.CloseStatus();
  if (result != 0) {
    DropTheDatabase(tyx);  // back to no database, so that the load can be tried again
    if (vars.ProjErr.empty()) vars.ProjErr = u"Load Database failed!";
    return;
  }
  LoadExtensionsFromRegistry(tyx);
  vars.ProjErr = String();
}

void LoadDB(Tyx& tyx, Args args) {
  LoadDbRequest request;
  request.db_name = ArgText(args, 0);
  request.db_type = ArgText(args, 1);
  request.path = ArgText(args, 2);
  request.phy_path = ArgText(args, 3);
  request.use_server_map_path =
      HasArg(args, 4) && !args[4].is_empty() && !args[4].is_null() && ToBool(args[4]);
  request.uid = ArgText(args, 5);
  request.pwd = ArgText(args, 6);
  request.conn_str = ArgText(args, 7);
  request.schema = ArgText(args, 8);
  LoadDB(tyx, request);
  // sDBName is passed by reference and becomes "DB" for a connection string.
  if (request.db_type == u"CONNECTIONSTRING" && HasArg(args, 0)) args[0] = Variant(String(u"DB"));
}

void LoadTable(Tyx& tyx, StringView table_name) {
  TyxVars& vars = Vars();
  TyxTable* table = FindLoadedTable(tyx, table_name);
  if (!table) return;
  if (table->TblLoaded()) {
    vars.ProjErr = vars.ProductTitle + u": Table " + table_name + u" already loaded!";
    return;
  }
  RefreshQuoteAndDateSettings(tyx);
  TyxDatabase& db = *TheDatabase(tyx);
  LoadDbRequest request;
  request.db_type = db.DBType();
  request.db_name = db.DBName();
  request.path = db.DBPath();
  request.phy_path = db.DBPhyPath();
  request.use_server_map_path = db.DBUseServerMapPath();
  request.uid = db.DBUID();
  request.pwd = db.DBPwd();
  request.conn_str = db.DBConnstr();
  const int16_t result = RunReader(db, request, table_name);
  if (result != 0) {
    if (vars.ProjErr.empty()) vars.ProjErr = u"Load Database failed!";
    return;
  }
  vars.ProjErr = String();
}

void ShowTableStatus(const Tyx& tyx, StringView step, StringView table_name) {
  TyxVars& vars = Vars();
  vars.StatusTitle = vars.ProductTitle + u" - " + step + u" " + table_name + u"...";
  TyxStatus& status = SharedStatus();
  status.ShowStatus2(Variant(tyx.hwnd()), Variant(LengthMarked(vars.StatusTitle)));
  status.DispStatus(Variant(String(u"Please wait...")));
}

void UnLoadTable(Tyx& tyx, StringView table_name) {
  TyxVars& vars = Vars();
  TyxTable* table = FindLoadedTable(tyx, table_name);
  if (!table) return;
  if (!table->TblLoaded()) {
    vars.ProjErr = vars.ProductTitle + u": Table " + table_name + u" not loaded!";
    return;
  }
  TyxStatus& status = SharedStatus();
  ShowTableStatus(tyx, u"Unloading", table_name);
  std::vector<String> names;
  table->Fields().list().ForEach([&](TyxField& f) { names.push_back(f.FldName()); });
  for (const String& name : names)
    table->Fields().Delete(name);
  table->SetTblLoaded(false);
  table->SetTblGen(false);
  status.CloseStatus();
  vars.ProjErr = String();
}

void UnLoadDB(Tyx& tyx) {
  TyxVars& vars = Vars();
  TyxDatabase* db = TheDatabase(tyx);
  if (!db) return;
  const int32_t threshold = tyx.UnloadThresholdCount < 1 ? 20 : tyx.UnloadThresholdCount;
  if (db->Tables().Count() > threshold) {
    vars.StatusTitle = vars.ProductTitle + u" - Unloading Database...";
  }
  DropTheDatabase(tyx);
  TyxExtensions& extensions = tyx.Extensions();
  for (int32_t i = extensions.Count(); i >= 1; --i) {
    Ref<TyxExtension> extension = extensions.Item(Variant(i));
    if (extension) tyx.DeleteExtension(extension->Name());
  }
  vars.ProjErr = String();
  tyx.SetSecTbl(u"");
  tyx.SetSecLoginIDFld(u"");
  tyx.SetSecPasswdFld(u"");
}

void LoadExtensionsFromRegistry(Tyx& tyx) {
  cRegistry reg;
  reg.ClassKey = kHkeyCurrentUser;
  reg.SectionKey = Vars().ExtensionsKey;
  std::vector<String> names;
  int32_t count = 0;
  reg.EnumerateValues(names, count);
  for (const String& name : names) {
    reg.ValueKey = name;
    const Variant value = reg.Value();
    tyx.AddExtension(name, value.is_string() ? value.as_string() : ToString(value));
  }
}

}  // namespace qv
