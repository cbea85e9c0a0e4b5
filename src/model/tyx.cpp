// The root's own operations: creation steps, AddProj/DeleteProj and the extension calls.
#include "model/tyx.h"

#include "support/common.h"
#include "support/status.h"
#include "support/tyx_vars.h"

namespace qv {

namespace {
// Used while no implementation is installed: every entry raises.
TyxServices& NoServices() {
  static TyxServices* none = new TyxServices();
  return *none;
}
}  // namespace

Tyx::Tyx()
    : properties_(MakeRef<TyProperties>()),
      databases_(MakeRef<TyxDatabases>()),
      extensions_(MakeRef<TyxExtensions>()) {
  properties_->Register(Layout());
}

Tyx::~Tyx() = default;

const PropertyLayout& Tyx::Layout() {
  static const PropertyLayout* layout = new PropertyLayout({QV_PROJECT_SETTINGS(QV_BAG_SPEC)});
  return *layout;
}

void Tyx::AfterSet(int32_t index) {
  if (index == kDestination) Vars().Destination = Destination();
}

TyxServices& Tyx::Services() const {
  return services_ ? *services_ : NoServices();
}

void Tyx::PrepareRoot() {
  TyxVars& v = Vars();
  v.PersonalFolder = SpecialFolder(lhWnd, kFolderPersonal);

  TyxStatus& status = SharedStatus();
  status.GetVer(Variant(u"tyxclass.dll"));
  VersionMajor = status.mj1;
  VersionMinor = status.mj2;
  VersionRevision = status.mn1;
  VersionBuild = status.mn2;
  engine_version_ = NumberText(VersionMajor) + u"." + NumberText(VersionMinor) + u"." +
                    NumberText(VersionRevision) + u"." + NumberText(VersionBuild);

  ScriptModules.clear();
  v.TheScript = nullptr;
  v.TheCache = nullptr;

  proj_init_ = false;
  v.ProductType = u"ASP";
  v.ProductCode = u"ASP";
  v.ProductName = u"Quorvex";
  v.ProductTitle = v.ProductName;
  v.ProductVersion = u"5.3";
  v.MinVersion = u"5.0";
  v.DefaultExt = u"asp";
  v.DefaultPage = u"default." + v.DefaultExt;

  SetdefaultDateFormat(5);

  v.SettingsKey = u"Software\\" + v.ProductName + u"\\" + v.ProductVersion + u"\\Settings";
  v.ExtensionsKey = u"Software\\" + v.ProductName + u"\\" + v.ProductVersion + u"\\Extensions";
  v.OdbcIniKey = u"Software\\ODBC\\ODBC.INI";
}

Ref<TyxDatabase> Tyx::db() const {
  return databases_->Item(Variant(CurrentDbName));
}

String Tyx::ProjErr() const {
  return Vars().ProjErr;
}

void Tyx::SetProjErr(String text) {
  Vars().ProjErr = std::move(text);
}

void Tyx::AddProj(StringView name) {
  SetProjName(String(name));
  LoadDefault();
  proj_init_ = true;
}

void Tyx::ClearSettings() {
  std::vector<String> names;
  properties_->ForEach([&](TyProperty& p) { names.push_back(p.Name()); });
  for (const String& name : names)
    properties_->Delete(Variant(name));
}

void Tyx::DeleteProj() {
  ClearSettings();
  std::vector<String> names;
  const CSuperCollection& dbs = databases_->collection();
  for (int32_t p = dbs.BaseIndex(); p <= dbs.LastPosition(); ++p) {
    const Variant* v = dbs.SlotValue(dbs.SlotAt(p));
    if (v && v->is_object()) names.push_back(static_cast<TyxDatabase*>(v->as_object())->DBName());
  }
  for (const String& name : names)
    databases_->Delete(Variant(name));
  CurrentDbName = String();
  properties_->Register(Layout());
  proj_init_ = false;
}

bool Tyx::AddExtension(StringView name, StringView template_path) {
  if (!extensions_->Add(name)) return false;
  Ref<TyxExtension> extension = extensions_->Item(Variant(String(name)));
  if (!extension) return false;
  extension->SetTemplate(String(template_path));
  return true;
}

bool Tyx::DeleteExtension(StringView name) {
  return extensions_->Delete(name);
}

}  // namespace qv
