// TyxField: one column of a table or view with everything the user decides about it. All of
// its data lives in its bag; the accessors below forward to the bag entries of their names.
// LoadFldDefault turns a bare column (name, type, size, flags) into a complete definition.
#pragma once

#include "model/bag_object.h"
#include "model/field_properties.h"
#include "support/column_types.h"

namespace qv {

class TyxField : public BagObject<TyxField> {
 public:
  enum PropertyIndex : int32_t { QV_FIELD_PROPERTIES(QV_BAG_INDEX) kPropertyCount };
  static constexpr int32_t kNameIndex = kFldName;
  static constexpr int32_t kSeqIndex = kFldSeq;
  static constexpr int32_t kVarIndex = kFldVar;

  TyxField();
  static const DispatchTable<TyxField>& Table();
  static const PropertyLayout& Layout();

  TyProperties& Properties() const { return *properties_; }
  TyProperty& Entry(int32_t index) const { return properties_->Entry(Layout(), index); }
  void AfterSet(int32_t) {}

  QV_FIELD_PROPERTIES(QV_BAG_ACCESSORS)

  // The key of the field in its list: its name.
  String Key() const { return FldName(); }
  void SetKey(const String& key) { SetFldName(key); }

  // Derives the control, search, validation and page defaults from the column's facts
  // (FldName, FldType, FldSize, FldReq, FldAutoIncrement, FldSupport), with the shared
  // DBMS name, date format and RepeatColumns copy.
  void LoadFldDefault();
  // Stores an ADO type in FldType and sets FldSupport and the quote pair from it.
  void SetFieldSupport(int16_t ado_type);

 private:
  void SetFieldTagDefaults();
  void SetFieldValidateDefaults();
  void SetFieldSearchOperator();
  void SetFieldBasicSearch();

  Ref<TyProperties> properties_;
};

}  // namespace qv
