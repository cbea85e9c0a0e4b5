// ADODB.Fields and ADODB.Field: the columns of a recordset and their values in the current
// record. Each keeps its recordset alive, so cn.Execute(sql)(0) reads the value of a recordset
// that nothing else holds. They are made on each access (the recordset keeps none, which would
// be a cycle); a field made before the recordset was opened again answers 3704.
#pragma once

#include "ado/recordset.h"
#include "automation/dispatch.h"

namespace qv::ado {

class RecordsetObject;

class FieldObject : public DispatchObject<FieldObject> {
 public:
  static const DispatchTable<FieldObject>& Table();
  FieldObject(Ref<RecordsetObject> owner, size_t column, uint32_t generation)
      : owner_(std::move(owner)), column_(column), generation_(generation) {}
  RecordsetObject& Owner() const;
  size_t column() const { return column_; }

 private:
  Ref<RecordsetObject> owner_;
  size_t column_;
  uint32_t generation_;
};

class FieldsObject : public DispatchObject<FieldsObject> {
 public:
  static const DispatchTable<FieldsObject>& Table();
  explicit FieldsObject(Ref<RecordsetObject> owner) : owner_(std::move(owner)) {}
  RecordsetObject& Owner() const { return *owner_; }
  // By position from 0 or by name; raises 3265.
  size_t ColumnOf(const Variant& index) const;
  Ref<Enumerator> NewEnum() override;
  void Append(Args args);

 private:
  Ref<RecordsetObject> owner_;
};

}  // namespace qv::ado
