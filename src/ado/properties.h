// ADO's Properties collection and Property object: name and value pairs that a connection or a
// field describes itself with ("DBMS Name", "ISAUTOINCREMENT", ...), read-only for scripts.
#pragma once

#include <optional>
#include <utility>
#include <vector>

#include "automation/dispatch.h"
#include "automation/list_enumerator.h"

namespace qv::ado {

class PropertyObject : public DispatchObject<PropertyObject> {
 public:
  static const DispatchTable<PropertyObject>& Table();
  PropertyObject(String name, Variant value) : name_(std::move(name)), value_(std::move(value)) {}
  String name_;
  Variant value_;
};

class PropertiesObject : public DispatchObject<PropertiesObject> {
 public:
  static const DispatchTable<PropertiesObject>& Table();
  explicit PropertiesObject(std::vector<std::pair<String, Variant>> entries);
  Ref<Enumerator> NewEnum() override;
  // By position from 0 or by name; raises 3265.
  Ref<PropertyObject> Item(const Variant& index);
  std::vector<Ref<PropertyObject>> items_;
};

// The position a script names an item by: a number from 0, or nothing when it is a name.
std::optional<int32_t> ItemOrdinal(const Variant& index);

}  // namespace qv::ado
