// Locale and engine information: GetLocale and SetLocale (the locale every conversion of the
// engine follows, by id or by name) and the ScriptEngine* functions.
#include "vbscript/runtime_lib.h"

namespace qv::vbs {

namespace {

constexpr int32_t kEnglishUnitedStates = 1033;

Variant GetLocale(RuntimeState& state, Args) {
  return Variant(state.locale);
}

// A locale given by name ("en-us", "de", any case) or number; 0 and blank text mean the
// default, 1033.
int32_t LocaleId(const Variant& v) {
  if (!v.is_string()) return ToLong(v);
  const StringView text = TrimBlanks(v.as_string());
  if (text.empty()) return 0;
  if (const auto number = ParseNumberText(text)) return static_cast<int32_t>(*number);
  const auto id = LocaleIdOfName(text);
  if (!id) Raise(kErrLocaleNotSupported);
  return *id;
}

Variant SetLocale(RuntimeState& state, Args a) {
  const Variant v = ArgValue(a, 0);
  if (v.is_null()) Raise(kErrInvalidUseOfNull);
  const int32_t id = Given(a, 0) ? LocaleId(v) : 0;
  if (id < 0) Raise(kErrInvalidCall);
  const int32_t previous = ChangeLocale(state, id == 0 ? kEnglishUnitedStates : id);
  // The script runs inside its engine's locale scope, which restores the caller's on return.
  SetCurrentLocale(state.locale_data);
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

int32_t ChangeLocale(RuntimeState& state, int32_t id) {
  const Locale* locale = FindLocale(id);
  if (!locale) Raise(kErrLocaleNotSupported);
  const int32_t previous = state.locale;
  state.locale = id;
  state.locale_data = id == kEnglishUnitedStates ? nullptr : locale;
  return previous;
}

std::span<const BuiltinFunction> InfoFunctions() {
  return kInfoFunctions;
}

}  // namespace qv::vbs
