// Tyx: the root object that the host creates. It holds the project's 99 settings (in its bag,
// read and written through the accessors below or by name through the object interface), the
// one database, the extension list and the failure text ProjErr, and it carries the host's
// operations. Entries that other subsystems implement are forwarded to TyxServices.
//
// C++ callers use the typed accessors: tyx.ProjName(), tyx.SetProjName(u"Shop"),
// tyx.RecPerPage(), tyx.SetExportCsv(true). A setting whose stored value does not fit its
// type raises 13 or 6, as scripts see it.
#pragma once

#include <memory>
#include <vector>

#include "model/bag_object.h"
#include "model/databases.h"
#include "model/extensions.h"
#include "model/project_settings.h"
#include "model/tyx_services.h"

namespace qv {

class Tyx : public BagObject<Tyx> {
 public:
  enum PropertyIndex : int32_t { QV_PROJECT_SETTINGS(QV_BAG_INDEX) kPropertyCount };

  // Registers the settings (the first creation step). The facade's CreateTyx runs the rest.
  Tyx();
  ~Tyx() override;
  static const DispatchTable<Tyx>& Table();
  static const PropertyLayout& Layout();

  TyProperties& Properties() const { return *properties_; }
  TyProperty& Entry(int32_t index) const { return properties_->Entry(Layout(), index); }
  // Destination also keeps the shared copy that the script host reads.
  void AfterSet(int32_t index);

  QV_PROJECT_SETTINGS(QV_BAG_ACCESSORS)

  // Creation steps 2 to 7: documents folder, engine version, cleared script and cache slots,
  // the product constants, defaultDateFormat 5, and the registry key paths.
  void PrepareRoot();

  // The host's window; hwnd is the same storage.
  int32_t lhWnd = 0;
  int32_t hwnd() const { return lhWnd; }
  void set_hwnd(int32_t value) { lhWnd = value; }

  bool ProjInit() const { return proj_init_; }
  // The database under CurrentDbName; raises 424 when there is none.
  Ref<TyxDatabase> db() const;
  int16_t DBCnt() const { return static_cast<int16_t>(databases_->Count()); }
  TyxDatabases& Databases() const { return *databases_; }
  TyxExtensions& Extensions() const { return *extensions_; }
  // The shared last-failure text.
  String ProjErr() const;
  void SetProjErr(String text);

  // Sets ProjName, runs LoadDefault, sets ProjInit. A second call simply overwrites.
  void AddProj(StringView name);
  // Clears every setting and every database and registers the settings again, empty. The
  // extension list stays.
  void DeleteProj();
  // Adds (or finds) the extension and sets its Template; False for an empty name.
  bool AddExtension(StringView name, StringView template_path);
  bool DeleteExtension(StringView name);

  // The engine version: the four numbers of the library's file version, joined by ".".
  const String& EngineVersion() const { return engine_version_; }
  int16_t VersionMajor = 0;
  int16_t VersionMinor = 0;
  int16_t VersionRevision = 0;
  int16_t VersionBuild = 0;

  // Private state of the project that the persistence and loading subsystems fill.
  String CurrentDbName;
  bool BackupFile = false;
  String Language;
  String USERCODE;
  int32_t UnloadThresholdCount = 0;
  // The table and field of the moment, read by conditions and scripts.
  Ref<TyxTable> CurTable;
  Ref<TyxField> CurField;
  // The root's script modules and the generator's zip component (kept here for a run).
  std::vector<String> ScriptModules;
  Ref<Object> ZipComponent;

  // The implementation of the entry points; none means every entry raises.
  void SetServices(std::shared_ptr<TyxServices> services) { services_ = std::move(services); }
  TyxServices& Services() const;

  // Entry points, forwarded to the services.
  void Load(const String& project_file) { Services().Load(*this, project_file); }
  void Save(const String& project_file) { Services().Save(*this, project_file); }
  void LoadDefault() { Services().LoadDefault(*this); }
  void SaveDefault() { Services().SaveDefault(*this); }

 private:
  void ClearSettings();

  Ref<TyProperties> properties_;
  Ref<TyxDatabases> databases_;
  Ref<TyxExtensions> extensions_;
  std::shared_ptr<TyxServices> services_;
  bool proj_init_ = false;
  String engine_version_;
};

}  // namespace qv
