// TyProperties: the bag of tagged values under every definition object. Entries are
// TyProperty objects kept in a text-mode CSuperCollection under their names, in order of
// registration, which is also the order of attributes in the project file.
#pragma once

#include <cstdint>

#include "automation/dispatch.h"
#include "model/property.h"
#include "model/property_layout.h"
#include "model/super_collection.h"

namespace qv {

class TyProperties : public DispatchObject<TyProperties> {
 public:
  TyProperties();
  static const DispatchTable<TyProperties>& Table();

  // False for an empty name or one that PropertyExist finds; the bag is then unchanged.
  bool Add(StringView name, StringView data_type = u"String", bool reg_save = false,
           int32_t reg_format = 0, bool file_save = true, bool sync = true);
  // Registers every line of a layout, in order. An empty bag takes the layout over whole.
  void Register(const PropertyLayout& layout);
  // Gives each entry of `target` the value of this bag's entry of its name, where that entry
  // follows synchronisation (Sync): how a field takes over the settings of the column it
  // comes from.
  void CopySyncedTo(TyProperties& target) const;
  int32_t Count() const { return collection_->Count(); }
  // A Boolean: False for an empty text or a name that PropertyExist does not find.
  Variant Delete(const Variant& index);
  // Compares each entry's Name with the index, as text and exactly.
  bool PropertyExist(const Variant& index) const;
  // The entry, or Empty for an unknown name (the collection's Item).
  Variant Item(const Variant& index) const { return collection_->Item(index); }
  Ref<Enumerator> NewEnum() override { return collection_->NewEnum(); }

  // C++ access.
  // The entry under a name, found without regard to case; nullptr when there is none.
  TyProperty* Find(StringView name) const { return AtSlot(collection_->FindSlot(name)); }
  TyProperty* AtSlot(int32_t slot) const;
  int32_t SlotOf(StringView name) const { return collection_->FindSlot(name); }
  // Entry `index` of `layout`: by slot while the bag holds exactly that layout, else by name.
  // Raises 424 when the entry was deleted.
  TyProperty& Entry(const PropertyLayout& layout, int32_t index) const {
    if (layout_ == &layout) return *AtSlot(index);
    return EntryByName(layout, index);
  }
  // The layout the bag holds unchanged, or nullptr once entries were added or deleted.
  const PropertyLayout* layout() const { return layout_; }
  // Calls f(TyProperty&) for each entry in order of registration.
  template <class F>
  void ForEach(F&& f) const {
    const int32_t last = collection_->LastPosition();
    for (int32_t p = collection_->BaseIndex(); p <= last; ++p) {
      if (TyProperty* prop = AtSlot(collection_->SlotAt(p))) f(*prop);
    }
  }
  CSuperCollection& Collection() const { return *collection_; }

 private:
  TyProperty& EntryByName(const PropertyLayout& layout, int32_t index) const;

  Ref<CSuperCollection> collection_;
  const PropertyLayout* layout_ = nullptr;
};

}  // namespace qv
