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
  static const auto table =
      DispatchTable<P>(u"TyProperty")
          .Property(
              u"Value", [](P& p, Args) { return p.Value(); },
              [](P& p, Args, const Variant& v) { p.SetValue(v); },
              [](P& p, Args, const Variant& v) { p.SetValue(v); })
          .Default(u"Value")
          .Property(
              u"Key", [](P& p, Args) { return Variant(p.Key()); },
              [](P& p, Args, const Variant& v) { p.SetKey(ToString(v)); })
          .Property(
              u"Name", [](P& p, Args) { return Variant(p.Name()); },
              [](P& p, Args, const Variant& v) { p.SetName(ToString(v)); })
          .Property(
              u"DataType", [](P& p, Args) { return Variant(p.DataType()); },
              [](P& p, Args, const Variant& v) { p.SetDataType(ToString(v)); })
          .Property(
              u"RegSave", [](P& p, Args) { return Variant(p.RegSave()); },
              [](P& p, Args, const Variant& v) { p.SetRegSave(ToBool(v)); })
          .Property(
              u"RegFormat", [](P& p, Args) { return Variant(p.RegFormat()); },
              [](P& p, Args, const Variant& v) { p.SetRegFormat(ToLong(v)); })
          .Property(
              u"FileSave", [](P& p, Args) { return Variant(p.FileSave()); },
              [](P& p, Args, const Variant& v) { p.SetFileSave(ToBool(v)); })
          .Property(
              u"Sync", [](P& p, Args) { return Variant(p.Sync()); },
              [](P& p, Args, const Variant& v) { p.SetSync(ToBool(v)); });
  return table;
}

}  // namespace qv
