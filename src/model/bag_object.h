// BagObject<T>: the object interface of a definition object. The members of T's own table
// come first; every other name is looked up in the object's bag and answers through the
// entry's type. The id of a bag entry is its slot number plus a base, and slot numbers never
// change for the life of an entry, so while the bag holds its class's layout unchanged every
// object of the class gives the same ids and a call site may cache them.
#pragma once

#include "automation/dispatch.h"
#include "model/properties.h"

namespace qv {

template <class T>
class BagObject : public DispatchObject<T> {
 public:
  static constexpr DispId kBagIdBase = 0x10000;

  DispId GetIdOfName(StringView name) override {
    const DispId id = T::Table().Find(name);
    if (id != kDispIdUnknown) return id;
    const int32_t slot = Self().Properties().SlotOf(name);
    return slot < 0 ? kDispIdUnknown : kBagIdBase + slot;
  }

  Variant Invoke(DispId id, uint16_t flags, Args args) override {
    if (id < kBagIdBase) return DispatchObject<T>::Invoke(id, flags, args);
    TyProperties& bag = Self().Properties();
    TyProperty* p = bag.AtSlot(id - kBagIdBase);
    if (!p) throw Error(kErrNotSupported);
    if (flags & (kInvokeLet | kInvokeSet)) {
      if (args.empty()) throw Error(kErrWrongArgCount);
      p->SetTypedValue(args.back());
      Self().AfterSet(IndexOf(bag, *p, id - kBagIdBase));
      return Variant();
    }
    return p->TypedValue();
  }

  const void* MemberCacheKey() const noexcept override {
    return static_cast<const T&>(*this).Properties().layout();
  }

 private:
  T& Self() { return static_cast<T&>(*this); }
  // The layout index of an entry: its slot while the layout is intact, else found by name.
  static int32_t IndexOf(const TyProperties& bag, const TyProperty& p, int32_t slot) {
    const PropertyLayout& layout = T::Layout();
    if (bag.layout() == &layout) return slot;
    for (int32_t i = 0; i < layout.size(); ++i) {
      if (EqualsNoCase(layout.at(i)->Name, p.Name())) return i;
    }
    return -1;
  }
};

}  // namespace qv
