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

struct NamedLocale {
  const char16_t* name;
  int32_t id;
};

// The names scripts commonly pass, with a language alone standing for its main country.
constexpr NamedLocale kLocaleNames[] = {
    {u"en-us", 1033}, {u"en", 1033},    {u"en-gb", 2057}, {u"en-au", 3081}, {u"en-ca", 4105},
    {u"de-de", 1031}, {u"de", 1031},    {u"de-at", 3079}, {u"de-ch", 2055}, {u"fr-fr", 1036},
    {u"fr", 1036},    {u"fr-ca", 3084}, {u"fr-be", 2060}, {u"fr-ch", 4108}, {u"es-es", 3082},
    {u"es", 3082},    {u"es-mx", 2058}, {u"it-it", 1040}, {u"it", 1040},    {u"nl-nl", 1043},
    {u"nl", 1043},    {u"nl-be", 2067}, {u"pt-br", 1046}, {u"pt-pt", 2070}, {u"pt", 2070},
    {u"sv-se", 1053}, {u"sv", 1053},    {u"da-dk", 1030}, {u"da", 1030},    {u"nb-no", 1044},
    {u"fi-fi", 1035}, {u"fi", 1035},    {u"pl-pl", 1045}, {u"pl", 1045},    {u"cs-cz", 1029},
    {u"hu-hu", 1038}, {u"ru-ru", 1049}, {u"ru", 1049},    {u"tr-tr", 1055}, {u"el-gr", 1032},
    {u"ja-jp", 1041}, {u"ja", 1041},    {u"ko-kr", 1042}, {u"zh-cn", 2052}, {u"zh-tw", 1028},
};

// A locale given by name ("en-us", any case) or number; 0 and names we do not know mean 1033.
int32_t LocaleId(const Variant& v) {
  if (v.is_string()) {
    const StringView text = TrimBlanks(v.as_string());
    for (const NamedLocale& locale : kLocaleNames) {
      if (EqualsNoCase(text, locale.name)) return locale.id;
    }
    const auto number = ParseNumberText(text);
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
