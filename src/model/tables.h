// TyxTables: the tables of the database, with a current table. The rules are those of the
// field list, with TblName and TblSeq, except that Change derives TblVar with no prefix.
#pragma once

#include "model/named_list.h"
#include "model/table.h"

namespace qv {

class TyxTables : public DispatchObject<TyxTables> {
 public:
  static const DispatchTable<TyxTables>& Table();

  const String& curName() const { return list_.cur_name(); }
  int16_t curSeq() const { return list_.cur_seq(); }
  // False for an empty or existing name; otherwise appends and makes the table current.
  bool Add(StringView name);
  bool Change(StringView old_name, StringView new_name);
  int32_t Count() const { return list_.Count(); }
  bool Delete(StringView name);
  bool TableExist(const Variant& index) const;
  Ref<TyxTable> Item(const Variant& index);
  Ref<TyxTable> Seq(int16_t seq) const;
  void SetItem(const Variant& index);
  void SetSeq(int16_t seq);
  Ref<Enumerator> NewEnum() override { return list_.collection().NewEnum(); }

  NamedList<TyxTable>& list() { return list_; }
  const NamedList<TyxTable>& list() const { return list_; }

 private:
  NamedList<TyxTable> list_;
};

}  // namespace qv
