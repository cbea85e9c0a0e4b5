// The conversion and type family of the runtime library: the C* conversions, Hex and Oct, and
// the Is* and type-name questions. The rules of each conversion live in automation/convert;
// this file adds what the functions themselves decide (Null handling, result types).
#include <cmath>

#include "automation/date_time.h"
#include "automation/object.h"
#include "automation/safe_array.h"
#include "vbscript/runtime_lib.h"

namespace qv::vbs {

namespace {

Variant CBool(RuntimeState&, Args a) {
  return Variant(ToBool(a[0]));
}
Variant CByte(RuntimeState&, Args a) {
  return Variant(ToByte(a[0]));
}
Variant CCur(RuntimeState&, Args a) {
  return Variant::Currency(ToCurrency(a[0]));
}
Variant CDate(RuntimeState&, Args a) {
  // A number past the calendar's last day would make a Date that no function can print.
  const double d = ToDate(a[0]);
  if (!InDateRange(d)) Raise(kErrOverflow);
  return Variant::Date(d);
}
Variant CDbl(RuntimeState&, Args a) {
  return Variant(ToDouble(a[0]));
}
Variant CInt(RuntimeState&, Args a) {
  return Variant(ToInteger(a[0]));
}
Variant CLng(RuntimeState&, Args a) {
  return Variant(ToLong(a[0]));
}
Variant CSng(RuntimeState&, Args a) {
  return Variant(ToSingle(a[0]));
}
Variant CStr(RuntimeState&, Args a) {
  return Variant(ToString(a[0]));
}

// Hex and Oct print the two's complement of negatives: 16 bits for the small types (so
// Hex(-1) is "FFFF"), 32 bits for everything else.
Variant RadixText(const Variant& raw, unsigned shift) {
  const Variant v = ValueOf(raw);
  if (v.is_null()) return Variant::Null();
  uint32_t bits;
  switch (v.type()) {
    case VarType::Empty:
      bits = 0;
      break;
    case VarType::Integer:
    case VarType::Boolean:
    case VarType::Byte:
      bits = static_cast<uint16_t>(ToInteger(v));
      break;
    default:
      bits = static_cast<uint32_t>(ToLong(v));
  }
  Char digits[16];
  size_t n = 0;
  const uint32_t mask = (1u << shift) - 1;
  do {
    digits[n++] = u"0123456789ABCDEF"[bits & mask];
    bits >>= shift;
  } while (bits);
  String out;
  out.Reserve(n);
  while (n)
    out.Append(digits[--n]);
  return out;
}

Variant Hex(RuntimeState&, Args a) {
  return RadixText(a[0], 4);
}
Variant Oct(RuntimeState&, Args a) {
  return RadixText(a[0], 3);
}

Variant IsArray(RuntimeState&, Args a) {
  return Variant(a[0].is_array());
}

Variant IsDate(RuntimeState&, Args a) {
  const Variant& v = a[0];
  if (v.type() == VarType::Date) return Variant(true);
  if (v.is_string()) return Variant(ParseDateText(v.as_string(), CurrentLocale()).has_value());
  return Variant(false);
}

// An object is tested by its default value, as pages test `IsNull(rs("Price"))` and
// `IsEmpty(Request.Form("x"))`; one without a default value is neither Empty nor Null.
Variant ValueOrObject(const Variant& v) {
  if (!v.is_object() || !v.as_object()) return v;
  try {
    return ValueOf(v);
  } catch (const Error&) {
    return v;
  }
}

Variant IsEmpty(RuntimeState&, Args a) {
  return Variant(ValueOrObject(a[0]).is_empty());
}

Variant IsNull(RuntimeState&, Args a) {
  return Variant(ValueOrObject(a[0]).is_null());
}

Variant IsNumeric(RuntimeState&, Args a) {
  Variant v = a[0];
  if (v.is_object() && v.as_object()) {
    try {
      v = ValueOf(v);
    } catch (const Error&) {
      return Variant(false);
    }
  }
  switch (v.type()) {
    case VarType::Empty:
    case VarType::Integer:
    case VarType::Long:
    case VarType::Single:
    case VarType::Double:
    case VarType::Currency:
    case VarType::Boolean:
    case VarType::Byte:
      return Variant(true);
    case VarType::String:
      return Variant(ParseNumberText(v.as_string(), CurrentLocale()).has_value());
    default:
      return Variant(false);
  }
}

Variant IsObject(RuntimeState&, Args a) {
  return Variant(a[0].is_object());
}

Variant TypeName(RuntimeState&, Args a) {
  return TypeNameOf(a[0]);
}

Variant VarTypeFn(RuntimeState&, Args a) {
  const Variant& v = a[0];
  // An object with a plain default value reports that value's type, as Windows does.
  if (v.is_object() && v.as_object()) {
    try {
      const Variant value = ValueOf(v);
      return Variant(static_cast<int16_t>(value.VarTypeCode()));
    } catch (const Error&) {
      return Variant(static_cast<int16_t>(VarType::Object));
    }
  }
  return Variant(static_cast<int16_t>(v.VarTypeCode()));
}

constexpr BuiltinFunction kConversionFunctions[] = {
    {u"CBool", CBool, 1, 1},
    {u"CByte", CByte, 1, 1, BuiltinUse::ValueOnly},
    {u"CCur", CCur, 1, 1, BuiltinUse::ValueOnly},
    {u"CDate", CDate, 1, 1, BuiltinUse::ValueOnly},
    {u"CDbl", CDbl, 1, 1, BuiltinUse::ValueOnly},
    {u"CInt", CInt, 1, 1, BuiltinUse::ValueOnly},
    {u"CLng", CLng, 1, 1, BuiltinUse::ValueOnly},
    {u"CSng", CSng, 1, 1, BuiltinUse::ValueOnly},
    {u"CStr", CStr, 1, 1},
    {u"Hex", Hex, 1, 1},
    {u"Oct", Oct, 1, 1},
    {u"IsArray", IsArray, 1, 1},
    {u"IsDate", IsDate, 1, 1},
    {u"IsEmpty", IsEmpty, 1, 1},
    {u"IsNull", IsNull, 1, 1},
    {u"IsNumeric", IsNumeric, 1, 1},
    {u"IsObject", IsObject, 1, 1},
    {u"TypeName", TypeName, 1, 1},
    {u"VarType", VarTypeFn, 1, 1},
};

}  // namespace

std::span<const BuiltinFunction> ConversionFunctions() {
  return kConversionFunctions;
}

}  // namespace qv::vbs
