// Locale and engine information: GetLocale and SetLocale (every text rule of the library is
// that of 1033, English (United States); other locales are remembered but read as 1033) and
// the ScriptEngine* functions.
#include "vbscript/runtime_lib.h"

namespace qv::vbs {

namespace {

constexpr int32_t kEnglishUnitedStates = 1033;

Variant GetLocale(RuntimeState& state, Args) {
  return Variant(state.locale);
}

// A locale given by name ("en-us") or number; 0 and names we do not know mean 1033.
int32_t LocaleId(const Variant& v) {
  if (v.is_string()) {
    const auto number = ParseNumberText(v.as_string());
    if (!number) return kEnglishUnitedStates;
    return static_cast<int32_t>(*number);
  }
  return ToLong(v);
}

Variant SetLocale(RuntimeState& state, Args a) {
  const int32_t previous = state.locale;
  const Variant v = ArgValue(a, 0);
  if (v.is_null()) Raise(kErrInvalidUseOfNull);
  const int32_t id = Given(a, 0) ? LocaleId(v) : 0;
  if (id < 0) Raise(kErrInvalidCall);
  state.locale = id == 0 ? kEnglishUnitedStates : id;
  return Variant(previous);
}

Variant ScriptEngine(RuntimeState&, Args) {
  return String(u"VBScript");
}
Variant ScriptEngineMajorVersion(RuntimeState&, Args) {
  return Variant(int32_t{5});
}
Variant ScriptEngineMinorVersion(RuntimeState&, Args) {
  return Variant(int32_t{8});
}
Variant ScriptEngineBuildVersion(RuntimeState&, Args) {
  return Variant(int32_t{16384});
}

constexpr BuiltinFunction kInfoFunctions[] = {
    {u"GetLocale", GetLocale, 0, 0},
    {u"SetLocale", SetLocale, 0, 1},
    {u"ScriptEngine", ScriptEngine, 0, 0},
    {u"ScriptEngineBuildVersion", ScriptEngineBuildVersion, 0, 0},
    {u"ScriptEngineMajorVersion", ScriptEngineMajorVersion, 0, 0},
    {u"ScriptEngineMinorVersion", ScriptEngineMinorVersion, 0, 0},
};

}  // namespace

std::span<const BuiltinFunction> InfoFunctions() {
  return kInfoFunctions;
}

}  // namespace qv::vbs
