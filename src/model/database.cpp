// A database's registration, its end-of-life unloading and its object interface.
#include "model/database.h"

#include <vector>

#include "support/common.h"
#include "support/status.h"
#include "support/tyx_vars.h"

namespace qv {

TyxDatabase::TyxDatabase() : properties_(MakeRef<TyProperties>()), tables_(MakeRef<TyxTables>()) {
  properties_->Register(Layout());
  SetMaxUploadSize(2000000);
}

const PropertyLayout& TyxDatabase::Layout() {
  static const PropertyLayout* layout = new PropertyLayout({QV_DATABASE_PROPERTIES(QV_BAG_SPEC)});
  return *layout;
}

void TyxDatabase::AfterSet(int32_t index) {
  if (index == kSecDefault) Vars().SecDefault = SecDefault();
}

void TyxDatabase::UnloadTables() {
  TyxStatus& status = SharedStatus();
  const int32_t total = tables_->Count();
  int32_t count = total;
  const String title = Vars().ProductTitle + u" - Unloading Database...";
  Vars().StatusTitle = title;
  status.ShowStatus(Variant(int32_t{0}), Variant(LengthMarked(title)));
  std::vector<std::pair<String, String>> names;  // (type, name), in list order
  tables_->list().ForEach([&](TyxTable& t) { names.emplace_back(t.TblType(), t.TblName()); });
  for (const auto& [type, name] : names) {
    status.DispStatus(Variant(u"Unloading " + type + u" " + name + u"..."));
    tables_->Delete(name);
    --count;
    status.SetStatus(Variant(PercentOf(count, total)));
  }
  status.CloseStatus();
}

void TyxDatabase::Destroy() noexcept {
  try {
    UnloadTables();
  } catch (...) {
    // The object ends regardless; a failing status surface must not keep it alive.
  }
  delete this;
}

const DispatchTable<TyxDatabase>& TyxDatabase::Table() {
  using D = TyxDatabase;
  static const auto table = DispatchTable<D>(u"TyxDatabase")
                                .Property<&D::Properties>(u"Properties")
                                .Property<&D::Tables>(u"tables")
                                .Property<&D::Key, &D::SetKey>(u"Key")
                                // What the driver reports is written by the loaders through the
                                // bag only.
                                .Property<&D::DBADOVer>(u"DBADOVer")
                                .Property<&D::DBDBMSName>(u"DBDBMSName")
                                .Property<&D::DBDBMSVer>(u"DBDBMSVer")
                                .Property<&D::DBOLEDBVer>(u"DBOLEDBVer")
                                .Property<&D::DBProviderName>(u"DBProviderName")
                                .Property<&D::DBProviderVer>(u"DBProviderVer")
                                .Parameterless({u"Properties", u"tables"});
  return table;
}

}  // namespace qv
