// ADODB.Fields and ADODB.Field: the columns of a recordset and their values in the current
// record. They belong to their recordset, which tells them when it goes: a script that keeps a
// field longer gets 3704 rather than a dangling object.
#pragma once

#include "automation/dispatch.h"

namespace qv::ado {

class RecordsetObject;

class FieldObject : public DispatchObject<FieldObject> {
 public:
  static const DispatchTable<FieldObject>& Table();
  FieldObject(RecordsetObject* owner, size_t column) : owner_(owner), column_(column) {}
  void Detach() { owner_ = nullptr; }
  void SetColumn(size_t column) { column_ = column; }
  RecordsetObject& Owner() const;
  size_t column() const { return column_; }

 private:
  RecordsetObject* owner_;
  size_t column_;
};

class FieldsObject : public DispatchObject<FieldsObject> {
 public:
  static const DispatchTable<FieldsObject>& Table();
  explicit FieldsObject(RecordsetObject* owner) : owner_(owner) {}
  void Detach() { owner_ = nullptr; }
  RecordsetObject& Owner() const;
  // By position from 0 or by name; raises 3265.
  size_t ColumnOf(const Variant& index) const;
  Ref<Enumerator> NewEnum() override;
  void Append(Args args);

 private:
  RecordsetObject* owner_;
};

}  // namespace qv::ado
