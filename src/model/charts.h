// TyxCharts: a list of charts with a current entry. Adding an existing name counts as success
// and makes it current, as for extensions; renaming works as for tables.
#pragma once

#include "model/chart.h"
#include "model/named_list.h"

namespace qv {

class TyxCharts : public DispatchObject<TyxCharts> {
 public:
  static const DispatchTable<TyxCharts>& Table();

  const String& curName() const { return list_.cur_name(); }
  int16_t curSeq() const { return list_.cur_seq(); }
  // False only for an empty name; a new chart also gets ChartVar.
  bool Add(StringView name);
  bool Change(StringView old_name, StringView new_name);
  int32_t Count() const { return list_.Count(); }
  bool Delete(StringView name);
  bool ChartExist(const Variant& index) const;
  Ref<TyxChart> Item(const Variant& index);
  Ref<TyxChart> Seq(int16_t seq) const;
  Ref<Enumerator> NewEnum() override { return list_.collection().NewEnum(); }

  NamedList<TyxChart>& list() { return list_; }

 private:
  NamedList<TyxChart> list_;
};

}  // namespace qv
