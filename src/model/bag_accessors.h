// The macros that turn one registration list into a class's registration lines, its index
// constants and its typed accessors. A list is a macro X(Name, Type, Registry, File, Sync):
// Type is String, Long, Integer, Boolean or Variant; Registry is 0 (not saved), 1 (saved as
// text) or 4 (saved as a 32-bit number); File and Sync are 0 or 1.
#pragma once

#include <cstdint>

#include "automation/convert.h"
#include "automation/variant.h"

namespace qv {

namespace bag_types {
using Boolean = bool;
using Integer = int16_t;
using Long = int32_t;
using String = ::qv::String;
using Variant = ::qv::Variant;
}  // namespace bag_types

// Reads a stored value as an accessor of its type does: Empty reads as "", 0 or False, and a
// value that does not fit raises 13 or 6.
template <class T>
T BagRead(const Variant& v);
template <>
inline bool BagRead<bool>(const Variant& v) {
  return v.type() == VarType::Boolean ? v.as_bool() : ToBool(v);
}
template <>
inline int16_t BagRead<int16_t>(const Variant& v) {
  return ToInteger(v);
}
template <>
inline int32_t BagRead<int32_t>(const Variant& v) {
  return ToLong(v);
}
template <>
inline String BagRead<String>(const Variant& v) {
  return v.is_string() ? v.as_string() : ToString(v);
}
template <>
inline Variant BagRead<Variant>(const Variant& v) {
  return v;
}

}  // namespace qv

// Registry formats of the lists.
#define QV_REG_NONE 0
#define QV_REG_TEXT 1
#define QV_REG_NUMBER 4

#define QV_BAG_INDEX(name, ...) k##name,
#define QV_BAG_SPEC(name, type, reg, file, sync) \
  {u"" #name, u"" #type, (reg) != 0, (reg), (file) != 0, (sync) != 0},
// Accessors forward to the bag entry; the class provides Entry(index) and AfterSet(index).
#define QV_BAG_ACCESSORS(name, type, ...)                                \
  ::qv::bag_types::type name() const {                                   \
    return ::qv::BagRead<::qv::bag_types::type>(Entry(k##name).Value()); \
  }                                                                      \
  void Set##name(const ::qv::bag_types::type& value) {                   \
    Entry(k##name).SetValue(::qv::Variant(value));                       \
    AfterSet(k##name);                                                   \
  }
