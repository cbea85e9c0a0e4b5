// TyxFields: the fields of one table, with a current field. Lookups by name compare exactly;
// the order a user sees is FldSeq, which Seq(1..Count) walks, never the list's own order.
#pragma once

#include "model/field.h"
#include "model/named_list.h"

namespace qv {

class TyxFields : public DispatchObject<TyxFields> {
 public:
  static const DispatchTable<TyxFields>& Table();

  const String& curName() const { return list_.cur_name(); }
  int16_t curSeq() const { return list_.cur_seq(); }
  // False for an empty or existing name; otherwise appends a field with FldName set and
  // FldSeq the new count, and makes it current.
  bool Add(StringView name);
  // Renames (457 when the new name is taken), sets FldVar, makes the field current.
  bool Change(StringView old_name, StringView new_name);
  int32_t Count() const { return list_.Count(); }
  // Removes a field and closes the gap in FldSeq.
  bool Delete(StringView name);
  bool FieldExist(const Variant& index) const;
  // By exact FldName (text) or by position (number); a hit becomes current. nullptr on a miss.
  Ref<TyxField> Item(const Variant& index);
  // By FldSeq, leaving the current field alone.
  Ref<TyxField> Seq(int16_t seq) const;
  void SetItem(const Variant& index);
  void SetSeq(int16_t seq);
  Ref<Enumerator> NewEnum() override { return list_.collection().NewEnum(); }

  NamedList<TyxField>& list() { return list_; }
  const NamedList<TyxField>& list() const { return list_; }

 private:
  NamedList<TyxField> list_;
};

}  // namespace qv
