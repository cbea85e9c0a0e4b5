// The property bag's operations and its object interface.
#include "model/properties.h"

#include <optional>

#include "automation/convert.h"

namespace qv {

TyProperties::TyProperties() : collection_(MakeRef<CSuperCollection>()) {
  collection_->SetCompareMode(1);
}

TyProperty* TyProperties::AtSlot(int32_t slot) const {
  const Variant* v = collection_->SlotValue(slot);
  if (!v || !v->is_object()) return nullptr;
  return static_cast<TyProperty*>(v->as_object());
}

TyProperty& TyProperties::EntryByName(const PropertyLayout& layout, int32_t index) const {
  TyProperty* p = Find(layout.at(index)->Name);
  if (!p) throw Error(kErrObjectRequired);
  return *p;
}

bool TyProperties::Add(StringView name, StringView data_type, bool reg_save, int32_t reg_format,
                       bool file_save, bool sync) {
  if (name.empty() || PropertyExist(Variant(String(name)))) return false;
  Ref<PropertyDescriptor> d = MakeRef<PropertyDescriptor>();
  d->Name = String(name);
  d->DataType = String(data_type);
  d->Type = PropTypeOf(data_type);
  d->RegSave = reg_save;
  d->RegFormat = reg_format;
  d->FileSave = file_save;
  d->Sync = sync;
  Ref<TyProperty> p = MakeRef<TyProperty>(d);
  collection_->Add(Variant(p), name);
  layout_ = nullptr;
  return true;
}

void TyProperties::CopySyncedTo(TyProperties& target) const {
  ForEach([&](TyProperty& from) {
    if (!from.Sync()) return;
    if (TyProperty* to = target.Find(from.Name())) to->SetValue(from.Value());
  });
}

void TyProperties::Register(const PropertyLayout& layout) {
  if (Count() == 0) {
    std::vector<Variant> values = TyProperty::MakeBlock(layout.descriptors());
    collection_->Clear();
    collection_->AdoptLayout(layout.prototype(), std::move(values));
    layout_ = &layout;
    return;
  }
  for (int32_t i = 0; i < layout.size(); ++i) {
    const PropertyDescriptor& d = *layout.at(i);
    Add(d.Name, d.DataType, d.RegSave, d.RegFormat, d.FileSave, d.Sync);
  }
}

Variant TyProperties::Delete(const Variant& index) {
  if (index.is_string() && index.as_string().empty()) return Variant(false);
  if (!PropertyExist(index)) return Variant(false);
  collection_->Remove(index);
  layout_ = nullptr;
  return Variant(true);
}

bool TyProperties::PropertyExist(const Variant& index) const {
  const String name = ToString(index);
  bool found = false;
  ForEach([&](const TyProperty& p) {
    if (!found && p.Name() == name) found = true;
  });
  return found;
}

const DispatchTable<TyProperties>& TyProperties::Table() {
  using B = TyProperties;
  // Add's later arguments may be left out, each taking the default that C++ callers get.
  constexpr auto add = [](B& b, StringView name, std::optional<String> data_type,
                          std::optional<bool> reg_save, std::optional<int32_t> reg_format,
                          std::optional<bool> file_save, std::optional<bool> sync) {
    return b.Add(name, data_type.value_or(u"String"), reg_save.value_or(false),
                 reg_format.value_or(0), file_save.value_or(true), sync.value_or(true));
  };
  static const auto table = DispatchTable<B>(u"TyProperties")
                                .Property<&B::Item>(u"Item")
                                .Default(u"Item")
                                .Method<add>(u"Add")
                                .Property<&B::Count>(u"Count")
                                .Method<&B::Delete>(u"Delete")
                                .Method<&B::PropertyExist>(u"PropertyExist");
  return table;
}

}  // namespace qv
