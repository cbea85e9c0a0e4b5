// A property's members as scripts see them; a change of name, type or flags gives the
// property a descriptor of its own, leaving the shared one untouched.
#include "model/property.h"

#include "automation/convert.h"

#include <new>

namespace qv {

// The block index sits in the tail of the reference count's word, so an entry is five words.
static_assert(sizeof(TyProperty) == 40);

std::vector<Variant> TyProperty::MakeBlock(
    const std::vector<Ref<PropertyDescriptor>>& descriptors) {
  const size_t count = descriptors.size();
  std::vector<Variant> out;
  if (count == 0) return out;
  static_assert(sizeof(BlockHeader) % alignof(TyProperty) == 0);
  void* memory = ::operator new(sizeof(BlockHeader) + count * sizeof(TyProperty));
  auto* header =
      new (memory) BlockHeader{static_cast<uint32_t>(count), static_cast<uint32_t>(count)};
  auto* first = reinterpret_cast<TyProperty*>(header + 1);
  out.reserve(count);
  for (size_t i = 0; i < count; ++i) {
    TyProperty* p = new (first + i) TyProperty(descriptors[i]);
    p->block_index_ = static_cast<uint32_t>(i);
    out.emplace_back(p);
  }
  return out;
}

void TyProperty::Destroy() noexcept {
  if (block_index_ == kStandalone) {
    delete this;
    return;
  }
  TyProperty* first = this - block_index_;
  BlockHeader* header = reinterpret_cast<BlockHeader*>(first) - 1;
  this->~TyProperty();
  if (--header->live == 0) {
    header->~BlockHeader();
    ::operator delete(static_cast<void*>(header));
  }
}

PropertyDescriptor& TyProperty::Own() {
  if (descriptor_->RefCount() > 1) {
    Ref<PropertyDescriptor> own = MakeRef<PropertyDescriptor>();
    const PropertyDescriptor& d = *descriptor_;
    own->Key = d.Key;
    own->Name = d.Name;
    own->DataType = d.DataType;
    own->Type = d.Type;
    own->RegSave = d.RegSave;
    own->RegFormat = d.RegFormat;
    own->FileSave = d.FileSave;
    own->Sync = d.Sync;
    descriptor_ = std::move(own);
  }
  return *descriptor_;
}

void TyProperty::SetDataType(String data_type) {
  PropertyDescriptor& d = Own();
  d.Type = PropTypeOf(data_type);
  d.DataType = std::move(data_type);
}

const DispatchTable<TyProperty>& TyProperty::Table() {
  using P = TyProperty;
  static const auto table = DispatchTable<P>(u"TyProperty")
                                .Property<&P::Value, &P::SetValue, &P::SetValue>(u"Value")
                                .Default(u"Value")
                                .Property<&P::Key, &P::SetKey>(u"Key")
                                .Property<&P::Name, &P::SetName>(u"Name")
                                .Property<&P::DataType, &P::SetDataType>(u"DataType")
                                .Property<&P::RegSave, &P::SetRegSave>(u"RegSave")
                                .Property<&P::RegFormat, &P::SetRegFormat>(u"RegFormat")
                                .Property<&P::FileSave, &P::SetFileSave>(u"FileSave")
                                .Property<&P::Sync, &P::SetSync>(u"Sync");
  return table;
}

}  // namespace qv
