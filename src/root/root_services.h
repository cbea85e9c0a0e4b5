// RootServices: the facade's implementation of the root's entry points, each delegating to
// the subsystem that owns it. Entries not listed here still raise "not available".
#pragma once

#include "model/tyx_services.h"

namespace qv {

class RootServices : public TyxServices {
 public:
  void Load(Tyx& tyx, const String& project_file) override;
  void Save(Tyx& tyx, const String& project_file) override;
  void LoadDefault(Tyx& tyx) override;
  void SaveDefault(Tyx& tyx) override;
  void LoadDB(Tyx& tyx, Args args) override;
  void LoadTable(Tyx& tyx, const Variant& table_name) override;
  void UnLoadTable(Tyx& tyx, const Variant& table_name) override;
  void UnLoadDB(Tyx& tyx) override;
  Variant CustomViewConnStr(Tyx& tyx) override;
  void LoadCustomView(Tyx& tyx, const Variant& table_name, const Variant& sql,
                      const Variant& copy_fields) override;
  bool LoadReport(Tyx& tyx, const Variant& table_name, const Variant& from_table) override;
  String Parse(Tyx& tyx, const Variant& text) override;
  String FldSrchOprs(Tyx& tyx, int16_t ado_type) override;
  int16_t GenCheck(Tyx& tyx) override;
  void GenScript(Tyx& tyx) override;
  int16_t CheckDB(Tyx& tyx) override;
  void SynchronizeDB(Tyx& tyx) override;
  void SyncCustom(Tyx& tyx, const Variant& table_name) override;
  void SyncReport(Tyx& tyx, const Variant& table_name) override;
  void SyncProperties(Tyx& tyx, const Variant& source, const Variant& target) override;
};

}  // namespace qv
