// TyxTable: one table, view, custom view or report of the project with its fields and the
// choices the user makes for it. All of its data lives in its bag; LoadTableDefault gives a
// freshly read table its defaults, mostly inherited from the project's shared copies.
#pragma once

#include "model/bag_object.h"
#include "model/fields.h"
#include "model/table_properties.h"

namespace qv {

class TyxTable : public BagObject<TyxTable> {
 public:
  enum PropertyIndex : int32_t { QV_TABLE_PROPERTIES(QV_BAG_INDEX) kPropertyCount };
  static constexpr int32_t kNameIndex = kTblName;
  static constexpr int32_t kSeqIndex = kTblSeq;
  static constexpr int32_t kVarIndex = kTblVar;

  TyxTable();
  static const DispatchTable<TyxTable>& Table();
  static const PropertyLayout& Layout();

  TyProperties& Properties() const { return *properties_; }
  TyxFields& Fields() const { return *fields_; }
  TyProperty& Entry(int32_t index) const { return properties_->Entry(Layout(), index); }
  void AfterSet(int32_t) {}

  QV_TABLE_PROPERTIES(QV_BAG_ACCESSORS)

  String Key() const { return TblName(); }
  void SetKey(const String& key) { SetTblName(key); }

  // Caption, variable name, page switches, paging and export defaults, security; run after
  // the name and type are set. An earlier caption and security are replaced.
  void LoadTableDefault();

 private:
  Ref<TyProperties> properties_;
  Ref<TyxFields> fields_;
};

}  // namespace qv
