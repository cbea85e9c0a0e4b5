// TyxExtensions: the project's extensions, with a current entry. Unlike the table list,
// adding a name that is already there counts as success and only makes it current.
#pragma once

#include "model/extension.h"
#include "model/named_list.h"

namespace qv {

class TyxExtensions : public DispatchObject<TyxExtensions> {
 public:
  static const DispatchTable<TyxExtensions>& Table();

  const String& curName() const { return list_.cur_name(); }
  // The current entry's place, as text.
  String curSeq() const { return NumberText(list_.cur_seq()); }
  // False only for an empty name.
  bool Add(StringView name);
  int32_t Count() const { return list_.Count(); }
  // Removes an extension and closes the gap in Seq.
  bool Delete(StringView name);
  bool ExtensionExist(const Variant& index) const;
  // By exact Name (or a position); a hit becomes current; nullptr on a miss.
  Ref<TyxExtension> Item(const Variant& index);
  Ref<TyxExtension> Seq(int16_t seq) const;
  Ref<Enumerator> NewEnum() override { return list_.collection().NewEnum(); }

  NamedList<TyxExtension>& list() { return list_; }
  const NamedList<TyxExtension>& list() const { return list_; }

 private:
  NamedList<TyxExtension> list_;
};

}  // namespace qv
