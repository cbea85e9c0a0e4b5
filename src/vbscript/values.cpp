// The cold side of the value helpers: conversions and errors the inline paths of values.h
// hand over to, kept out of line so that the dispatch loop stays small.
#include "vbscript/values.h"

#include "vbscript/operators.h"

namespace qv::vbs {
namespace {
constexpr int32_t kErrForNotInitialized = 92;
}  // namespace

[[noreturn]] void RaiseNamed(int32_t number, StringView name) {
  String text = StandardErrorText(number);
  text.Append(u": '");
  text.Append(name);
  text.Append(u"'");
  throw Error(number, std::move(text));
}

bool SlowTruth(const Variant& v) {
  if (v.is_null()) return false;
  return ToBool(v.is_object() ? ValueOf(v) : v);
}

int32_t IndexValue(const Variant& v) {
  if (v.type() == VarType::Integer) return v.as_integer();
  if (v.type() == VarType::Long) return v.as_long();
  const Variant plain = v.is_object() ? ValueOf(v) : v;
  if (plain.is_null()) Raise(kErrInvalidUseOfNull);
  return ToLong(plain);
}

void StepCounter(Variant& var, const Variant& step) {
  // A header that failed under On Error Resume Next left no step to count with.
  if (step.is_empty()) Raise(kErrForNotInitialized);
  var = OpAdd(var, step);
}

Variant ForOperand(Variant v) {
  if (v.is_object()) v = ValueOf(v);
  if (v.is_null()) Raise(kErrInvalidUseOfNull);
  if (v.is_string()) {
    const auto n = ParseNumberText(v.as_string(), CurrentLocale());
    if (!n) Raise(kErrTypeMismatch);
    return Variant(*n);
  }
  if (v.is_empty()) return Variant(int16_t{0});
  if (!v.is_numeric_type()) Raise(kErrTypeMismatch);
  return v;
}

Variant LetValue(Variant v) {
  if (v.is_object()) return ValueOf(v);
  return v;
}

void CheckSetValue(const Variant& v) {
  if (!v.is_object()) Raise(kErrObjectRequired);
}

}  // namespace qv::vbs
