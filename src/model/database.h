// TyxDatabase: the project's connection to one data source, what the engine learned about
// it, and the user-level settings of the generated site. Its end does visible work: dropping
// a database of many tables takes time, so it unloads table by table under a status window.
#pragma once

#include "model/bag_object.h"
#include "model/database_properties.h"
#include "model/tables.h"

namespace qv {

class TyxDatabase : public BagObject<TyxDatabase> {
 public:
  enum PropertyIndex : int32_t { QV_DATABASE_PROPERTIES(QV_BAG_INDEX) kPropertyCount };

  TyxDatabase();
  static const DispatchTable<TyxDatabase>& Table();
  static const PropertyLayout& Layout();

  TyProperties& Properties() const { return *properties_; }
  TyxTables& Tables() const { return *tables_; }
  TyProperty& Entry(int32_t index) const { return properties_->Entry(Layout(), index); }
  // Setting SecDefault also refreshes the shared copy that new tables take.
  void AfterSet(int32_t index);

  QV_DATABASE_PROPERTIES(QV_BAG_ACCESSORS)

  String Key() const { return DBName(); }
  void SetKey(const String& key) { SetDBName(key); }

  // The owner or schema chosen on a full load; one-table loads of the same run reuse it.
  const String& CurrentSchema() const { return current_schema_; }
  void SetCurrentSchema(String schema) { current_schema_ = std::move(schema); }

 protected:
  // Unloads every table under the status window, then ends the object.
  void Destroy() noexcept override;

 private:
  void UnloadTables();

  Ref<TyProperties> properties_;
  Ref<TyxTables> tables_;
  String current_schema_;
};

}  // namespace qv
