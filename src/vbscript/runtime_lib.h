// Shared helpers of the runtime library's families: reading optional and tri-state arguments
// with VBScript's errors, and the tables each family file contributes to the builtin table.
#pragma once

#include <span>

#include "automation/convert.h"
#include "automation/error.h"
#include "automation/object.h"
#include "vbscript/runtime.h"

namespace qv::vbs {

// Each family file lists its functions; builtins.cpp joins them into one look-up table.
std::span<const BuiltinFunction> StringFunctions();
std::span<const BuiltinFunction> ConversionFunctions();
std::span<const BuiltinFunction> NumberFunctions();
std::span<const BuiltinFunction> ArrayFunctions();
std::span<const BuiltinFunction> DateFunctions();
std::span<const BuiltinFunction> FormatFunctions();
std::span<const BuiltinFunction> InfoFunctions();

// Seconds since local midnight with their fraction, what Timer reports.
double TimerSeconds();

[[noreturn]] inline void Raise(int32_t number) {
  throw Error(number);
}

// True when the argument was passed (not left out of the call).
inline bool Given(Args args, size_t i) {
  return HasArg(args, i);
}

// The argument as a plain value: objects give their default value.
inline Variant ArgValue(Args args, size_t i) {
  if (!Given(args, i)) return {};
  return ValueOf(args[i]);
}

// An optional whole-number argument; Null raises 94, as the library's functions do.
inline int32_t OptionalLong(Args args, size_t i, int32_t fallback) {
  if (!Given(args, i)) return fallback;
  const Variant v = ValueOf(args[i]);
  if (v.is_null()) Raise(kErrInvalidUseOfNull);
  return ToLong(v);
}

// vbBinaryCompare (0) or vbTextCompare (1); any other value, vbDatabaseCompare included,
// raises 5.
inline bool TextCompareArg(Args args, size_t i, int32_t state_default = 0) {
  const int32_t mode = OptionalLong(args, i, state_default);
  if (mode != 0 && mode != 1) Raise(kErrInvalidCall);
  return mode == 1;
}

// A property without parameters that a script reads with arguments, as in
// `m.SubMatches(0)`: the arguments go to the default member of what the property returns.
inline Variant ApplyArgs(const Variant& value, Args args) {
  if (args.empty()) return value;
  if (!value.is_object() || !value.as_object()) Raise(kErrWrongArgCount);
  return value.as_object()->Invoke(kDispIdValue, kInvokeGet | kInvokeMethod, args);
}

}  // namespace qv::vbs
