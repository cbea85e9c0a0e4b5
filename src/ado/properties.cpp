// Properties and Property.
#include "ado/properties.h"

#include "ado/ado_errors.h"
#include "automation/convert.h"

namespace qv::ado {

std::optional<int32_t> ItemOrdinal(const Variant& given) {
  const Variant index = given.is_object() ? ValueOf(given) : given;
  if (index.is_string()) return std::nullopt;
  if (!index.is_numeric_type()) throw AdoError(adErrItemNotFound, u"ADODB.Properties");
  return ToLong(index);
}

const DispatchTable<PropertyObject>& PropertyObject::Table() {
  static const auto table =
      DispatchTable<PropertyObject>(u"Property")
          .Property(u"Value", [](PropertyObject& p, Args) { return p.value_; })
          .Property(u"Name", [](PropertyObject& p, Args) { return Variant(p.name_); })
          .Property(u"Type",
                    [](PropertyObject& p, Args) {
                      return Variant(
                          static_cast<int32_t>(p.value_.is_string() ? 8 : p.value_.VarTypeCode()));
                    })
          .Property(u"Attributes", [](PropertyObject&, Args) { return Variant(int32_t{0x200}); })
          .Default(u"Value");
  return table;
}

PropertiesObject::PropertiesObject(std::vector<std::pair<String, Variant>> entries) {
  for (auto& [name, value] : entries)
    items_.push_back(MakeRef<PropertyObject>(std::move(name), std::move(value)));
}

Ref<PropertyObject> PropertiesObject::Item(const Variant& index) {
  if (const auto ordinal = ItemOrdinal(index)) {
    if (*ordinal < 0 || static_cast<size_t>(*ordinal) >= items_.size()) {
      throw AdoError(adErrItemNotFound, u"ADODB.Properties");
    }
    return items_[static_cast<size_t>(*ordinal)];
  }
  const String name = ToString(index);
  for (const auto& item : items_) {
    if (EqualsNoCase(item->name_, name)) return item;
  }
  throw AdoError(adErrItemNotFound, u"ADODB.Properties");
}

Ref<Enumerator> PropertiesObject::NewEnum() {
  std::vector<Variant> items(items_.begin(), items_.end());
  return MakeRef<ListEnumerator>(std::move(items));
}

const DispatchTable<PropertiesObject>& PropertiesObject::Table() {
  static const auto table =
      DispatchTable<PropertiesObject>(u"Properties")
          .Property(u"Item",
                    [](PropertiesObject& p, Args args) {
                      CheckArgCount(args, 1, 1);
                      return Variant(p.Item(args[0]));
                    })
          .Property(u"Count", [](PropertiesObject& p,
                                 Args) { return Variant(static_cast<int32_t>(p.items_.size())); })
          .Method(u"Refresh", [](PropertiesObject&, Args) { return Variant(); })
          .Default(u"Item");
  return table;
}

}  // namespace qv::ado
