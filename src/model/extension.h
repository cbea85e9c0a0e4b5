// TyxExtension: a named addition to a template package, with its template path. Kept in the
// project file and in the saved defaults; the generator reads Template when it prepares a run.
#pragma once

#include "model/bag_object.h"
#include "model/extension_properties.h"

namespace qv {

class TyxExtension : public BagObject<TyxExtension> {
 public:
  enum PropertyIndex : int32_t { QV_EXTENSION_PROPERTIES(QV_BAG_INDEX) kPropertyCount };
  static constexpr int32_t kNameIndex = kName;
  static constexpr int32_t kSeqIndex = kSeq;

  TyxExtension();
  static const DispatchTable<TyxExtension>& Table();
  static const PropertyLayout& Layout();

  TyProperties& Properties() const { return *properties_; }
  TyProperty& Entry(int32_t index) const { return properties_->Entry(Layout(), index); }
  void AfterSet(int32_t) {}

  QV_EXTENSION_PROPERTIES(QV_BAG_ACCESSORS)

  String Key() const { return Name(); }
  void SetKey(const String& key) { SetName(key); }

 private:
  Ref<TyProperties> properties_;
};

}  // namespace qv
