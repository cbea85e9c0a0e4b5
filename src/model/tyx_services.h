// TyxServices: the entry points of the root that other subsystems implement. The model sits
// below persistence, schema, sync, script and generation, so the root object only forwards
// these members to an implementation that the facade (src/root) installs. Every entry that
// an implementation leaves alone raises "Quorvex: <name> is not available in this build".
#pragma once

#include <cstdint>

#include "automation/object.h"

namespace qv {

class Tyx;

class TyxServices {
 public:
  virtual ~TyxServices() = default;

  // Project file.
  virtual void Load(Tyx& tyx, const String& project_file);
  virtual void Save(Tyx& tyx, const String& project_file);
  // Saved defaults.
  virtual void LoadDefault(Tyx& tyx);
  virtual void SaveDefault(Tyx& tyx);
  // Loading the database. LoadDB takes sDBName, sDBType, sPath, sPhyPath,
  // bDBUseServerMapPath, sUID, sPwd, sConnStr and sSchema, each by reference.
  virtual void LoadDB(Tyx& tyx, Args args);
  virtual void LoadTable(Tyx& tyx, const Variant& table_name);
  virtual void UnLoadTable(Tyx& tyx, const Variant& table_name);
  virtual void UnLoadDB(Tyx& tyx);
  // Custom views and reports.
  virtual Variant CustomViewConnStr(Tyx& tyx);
  virtual void LoadCustomView(Tyx& tyx, const Variant& table_name, const Variant& sql,
                              const Variant& copy_fields);
  virtual bool LoadReport(Tyx& tyx, const Variant& table_name, const Variant& from_table);
  // Difference check and synchronisation.
  virtual int16_t CheckDB(Tyx& tyx);
  virtual void SynchronizeDB(Tyx& tyx);
  virtual void SyncCustom(Tyx& tyx, const Variant& table_name);
  virtual void SyncReport(Tyx& tyx, const Variant& table_name);
  virtual void SyncProperties(Tyx& tyx, const Variant& source, const Variant& target);
  // Expressions.
  virtual String Parse(Tyx& tyx, const Variant& text);
  virtual String FldSrchOprs(Tyx& tyx, int16_t ado_type);
  // Generation.
  virtual int16_t GenCheck(Tyx& tyx);
  virtual void GenScript(Tyx& tyx);

 protected:
  // Raises the hard failure for an entry this build does not provide.
  [[noreturn]] static void Unavailable(StringView name);
};

}  // namespace qv
