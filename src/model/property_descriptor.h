// What a property is, apart from its value: name, type and the flags that decide where it
// travels. Thousands of bags register the same properties, so a descriptor is shared between
// them and copied only when one property's flags are changed.
#pragma once

#include <cstdint>

#include "automation/ref.h"
#include "automation/string.h"
#include "automation/variant.h"

namespace qv {

// The declared type of a property, from its DataType word.
enum class PropType : uint8_t { String, Long, Integer, Boolean, Variant };

// "String", "Long", "Integer" and "Boolean" in any case; every other word is Variant.
PropType PropTypeOf(StringView data_type);

// Converts a value to a property's type as its accessors do: Empty reads as "", 0 or False,
// and a value that does not fit raises 13 or 6.
Variant ConvertToPropType(const Variant& value, PropType type);

struct PropertyDescriptor : RefCounted {
  String Key;
  String Name;
  String DataType;
  PropType Type = PropType::String;
  bool RegSave = false;
  int32_t RegFormat = 0;
  bool FileSave = true;
  bool Sync = true;
};

}  // namespace qv
