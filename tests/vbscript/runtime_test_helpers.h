// Calls into the runtime library by name, as the engine does, for the runtime's test suites.
#pragma once

#include <gtest/gtest.h>

#include <initializer_list>
#include <vector>

#include "automation/convert.h"
#include "automation/error.h"
#include "vbscript/runtime.h"

namespace qv::vbs::testing {

// Runs the named function with the arguments, checking the table's argument counts first.
inline Variant Call(RuntimeState& state, StringView name, std::initializer_list<Variant> args) {
  const BuiltinFunction* f = FindBuiltin(name);
  if (!f) throw Error(kErrSubNotDefined);
  if (args.size() < f->min_args || args.size() > f->max_args) throw Error(kErrWrongArgCount);
  std::vector<Variant> list(args);
  return f->fn(state, Args(list));
}

inline Variant Call(StringView name, std::initializer_list<Variant> args) {
  RuntimeState state;
  return Call(state, name, args);
}

// The text form of a call's result, or "Err N" when it raises.
inline std::string Show(StringView name, std::initializer_list<Variant> args) {
  try {
    const Variant v = Call(name, args);
    if (v.is_null()) return "Null";
    return ToString(v).ToUtf8();
  } catch (const Error& e) {
    return "Err " + std::to_string(e.number());
  }
}

inline int ErrorOf(StringView name, std::initializer_list<Variant> args) {
  try {
    Call(name, args);
  } catch (const Error& e) {
    return e.number();
  }
  return 0;
}

inline Variant I(int16_t v) {
  return Variant(v);
}
inline Variant L(int32_t v) {
  return Variant(v);
}

}  // namespace qv::vbs::testing
