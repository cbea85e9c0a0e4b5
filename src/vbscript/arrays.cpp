// The array family of the runtime library: building arrays (Array, Split), reading their
// bounds, and turning them back into text (Join) or narrowing them (Filter).
#include <vector>

#include "automation/safe_array.h"
#include "vbscript/runtime_lib.h"
#include "vbscript/strings_lib.h"

namespace qv::vbs {

namespace {

Variant ArrayFn(RuntimeState&, Args a) {
  std::vector<Variant> values(a.begin(), a.end());
  return Variant(SafeArray::FromValues(std::move(values)));
}

const SafeArray& ArrayArg(const Variant& v) {
  if (!v.is_array() || !v.as_array()) Raise(kErrTypeMismatch);
  return *v.as_array();
}

const ArrayBound& BoundOf(Args a, Variant& held) {
  // An object stands for its default value: Nothing, no default member or one that needs
  // arguments fail as reading that value does; a default member returning an array works.
  held = a[0].is_object() ? ValueOf(a[0]) : a[0];
  const SafeArray& array = ArrayArg(held);
  const int32_t dimension = OptionalLong(a, 1, 1);
  if (dimension < 1 || dimension > array.dimensions()) Raise(kErrSubscript);
  return array.bound(dimension);
}

Variant UBound(RuntimeState&, Args a) {
  Variant held;
  return Variant(static_cast<int32_t>(BoundOf(a, held).upper()));
}

Variant LBound(RuntimeState&, Args a) {
  Variant held;
  return Variant(BoundOf(a, held).lower);
}

Variant StringArray(std::vector<Variant> items) {
  return Variant(SafeArray::FromValues(std::move(items)));
}

Variant Split(RuntimeState&, Args a) {
  const Variant expr = ValueOf(a[0]);
  const Variant delimiter_arg = ArgValue(a, 1);
  const int32_t limit = OptionalLong(a, 2, -1);
  const bool text = TextCompareArg(a, 3);
  if (limit < -1) Raise(kErrInvalidCall);
  if (expr.is_null() || delimiter_arg.is_null()) Raise(kErrInvalidUseOfNull);
  const String s = ToString(expr);
  const String delimiter = Given(a, 1) ? ToString(delimiter_arg) : String(u" ");
  std::vector<Variant> parts;
  if (s.empty() || limit == 0) return StringArray(std::move(parts));
  if (delimiter.empty()) {
    parts.emplace_back(s);
    return StringArray(std::move(parts));
  }
  const String hay_store = text ? ToLower(s) : String();
  const String needle_store = text ? ToLower(delimiter) : String();
  const StringView hay = text ? hay_store.view() : s.view();
  const StringView needle = text ? needle_store.view() : delimiter.view();
  size_t from = 0;
  while (limit < 0 || parts.size() + 1 < static_cast<size_t>(limit)) {
    const size_t at = FindText(hay, needle, from);
    if (at == StringView::npos) break;
    parts.emplace_back(String(s.view().substr(from, at - from)));
    from = at + needle.size();
  }
  parts.emplace_back(String(s.view().substr(from)));
  return StringArray(std::move(parts));
}

Variant Join(RuntimeState&, Args a) {
  if (a[0].is_null()) Raise(kErrInvalidUseOfNull);
  // An object is asked for its default value, so one without it fails as a missing member.
  const Variant list = a[0].is_object() ? ValueOf(a[0]) : a[0];
  const SafeArray& array = ArrayArg(list);
  if (array.dimensions() != 1) Raise(kErrTypeMismatch);
  const Variant delimiter_arg = ArgValue(a, 1);
  if (delimiter_arg.is_null()) Raise(kErrInvalidUseOfNull);
  const String delimiter = Given(a, 1) ? ToString(delimiter_arg) : String(u" ");
  String out;
  bool first = true;
  for (const Variant& item : array.elements()) {
    if (!first) out.Append(delimiter);
    first = false;
    // A Null element is a wrong type here, not an invalid use of Null.
    if (item.is_null()) Raise(kErrTypeMismatch);
    out.Append(ToString(item));
  }
  return out;
}

Variant Filter(RuntimeState&, Args a) {
  if (a[0].is_null()) Raise(kErrInvalidUseOfNull);
  const SafeArray& array = ArrayArg(a[0]);
  if (array.dimensions() != 1) Raise(kErrTypeMismatch);
  const Variant match_arg = ValueOf(a[1]);
  if (match_arg.is_null()) Raise(kErrInvalidUseOfNull);
  const bool include = Given(a, 2) ? ToBool(ValueOf(a[2])) : true;
  const bool text = TextCompareArg(a, 3);
  const String match = ToString(match_arg);
  const String folded_match = text ? ToLower(match) : match;
  std::vector<Variant> kept;
  for (const Variant& item : array.elements()) {
    const String s = ToString(item);
    const bool found = text ? ToLower(s).view().find(folded_match.view()) != StringView::npos
                            : s.view().find(match.view()) != StringView::npos;
    if (found == include) kept.emplace_back(s);
  }
  return StringArray(std::move(kept));
}

constexpr BuiltinFunction kArrayFunctions[] = {
    {u"Array", ArrayFn, 0, 255}, {u"Filter", Filter, 2, 4}, {u"Join", Join, 1, 2},
    {u"LBound", LBound, 1, 2},   {u"Split", Split, 1, 4},   {u"UBound", UBound, 1, 2},
};

}  // namespace

std::span<const BuiltinFunction> ArrayFunctions() {
  return kArrayFunctions;
}

}  // namespace qv::vbs
