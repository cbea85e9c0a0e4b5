// Type words of properties and the conversion that every typed accessor applies.
#include "model/property_descriptor.h"

#include "automation/convert.h"

namespace qv {

PropType PropTypeOf(StringView data_type) {
  if (EqualsNoCase(data_type, u"String")) return PropType::String;
  if (EqualsNoCase(data_type, u"Long")) return PropType::Long;
  if (EqualsNoCase(data_type, u"Integer")) return PropType::Integer;
  if (EqualsNoCase(data_type, u"Boolean")) return PropType::Boolean;
  return PropType::Variant;
}

Variant ConvertToPropType(const Variant& value, PropType type) {
  switch (type) {
    case PropType::String:
      return value.is_string() ? value : Variant(ToString(value));
    case PropType::Long:
      return Variant(ToLong(value));
    case PropType::Integer:
      return Variant(ToInteger(value));
    case PropType::Boolean:
      return Variant(ToBool(value));
    case PropType::Variant:
      return value;
  }
  return value;
}

}  // namespace qv
