// The property bag's operations and its object interface.
#include "model/properties.h"

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
  static const auto table =
      DispatchTable<B>(u"TyProperties")
          .Property(u"Item",
                    [](B& b, Args a) {
                      CheckArgCount(a, 1, 1);
                      return b.Item(a[0]);
                    })
          .Default(u"Item")
          .Method(u"Add",
                  [](B& b, Args a) {
                    CheckArgCount(a, 1, 6);
                    return Variant(b.Add(
                        ToString(a[0]), HasArg(a, 1) ? ToString(a[1]) : String(u"String"),
                        HasArg(a, 2) && ToBool(a[2]), HasArg(a, 3) ? ToLong(a[3]) : 0,
                        HasArg(a, 4) ? ToBool(a[4]) : true, HasArg(a, 5) ? ToBool(a[5]) : true));
                  })
          .Property(u"Count", [](B& b, Args) { return Variant(b.Count()); })
          .Method(u"Delete",
                  [](B& b, Args a) {
                    CheckArgCount(a, 1, 1);
                    return b.Delete(a[0]);
                  })
          .Method(u"PropertyExist", [](B& b, Args a) {
            CheckArgCount(a, 1, 1);
            return Variant(b.PropertyExist(a[0]));
          });
  return table;
}

}  // namespace qv
