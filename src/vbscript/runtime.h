// The meeting point of the VBScript virtual machine and its runtime library. The library's
// functions are plain functions over Variants, found by name without regard to case; the
// engine resolves a name to one of them when the script defines nothing of that name itself.
// Functions that need the engine's own machinery (Eval, Execute, ExecuteGlobal, GetRef,
// CreateObject, GetObject, the Err object, ScriptEngine...) live in the engine, not here.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string_view>
#include <unordered_map>

#include "automation/locale.h"
#include "automation/object.h"
#include "automation/variant.h"

namespace qv::vbs {

// State that the library keeps per engine: the locale of SetLocale/GetLocale and the state of
// VBScript's random number generator (Rnd and Randomize).
struct RuntimeState {
  int32_t locale = 1033;
  const Locale* locale_data = nullptr;  // the data of `locale`; nullptr for 1033
  uint32_t rnd_seed = 0x50000;          // VBScript's generator starts from this seed
  float last_rnd = 0;
};

using BuiltinFn = Variant (*)(RuntimeState& state, Args args);

// How a script may use what a function returns. Windows refuses a few uses: the numeric C*
// conversions called as a statement raise 458, and reading the value of Randomize raises 13.
enum class BuiltinUse : uint8_t { Any, ValueOnly, StatementOnly };
constexpr int32_t kErrUnsupportedAutomationType = 458;

struct BuiltinFunction {
  std::u16string_view name;
  BuiltinFn fn;
  uint8_t min_args;
  uint8_t max_args;
  BuiltinUse use = BuiltinUse::Any;
};

// Every function of the runtime library.
std::span<const BuiltinFunction> BuiltinFunctions();
// The function of that name, without regard to case; nullptr when the library has none.
const BuiltinFunction* FindBuiltin(StringView name);

// The value of a named constant of the language (vbCrLf, vbTextCompare, vbObjectError, ...);
// nothing when the name is no constant.
std::optional<Variant> FindConstant(StringView name);

// The classes that CreateObject can make, by ProgID (without regard to case). A host adds its
// own; the standard set holds Scripting.Dictionary, Scripting.FileSystemObject and
// VBScript.RegExp.
class ClassRegistry {
 public:
  using Factory = std::function<Ref<Object>()>;

  void Register(StringView prog_id, Factory factory);
  // A new object, or nullptr when no class has that ProgID.
  Ref<Object> Create(StringView prog_id) const;
  bool Has(StringView prog_id) const;

  static ClassRegistry WithStandardClasses();

 private:
  std::unordered_map<String, Factory, NoCaseHash, NoCaseEqual> factories_;
};

// Makes `id`, a Windows locale id of a country's locale, the locale of `state`; the engine
// converts under it from its next entry on. Returns the id it replaced; raises 447 for an id
// that is no such locale.
int32_t ChangeLocale(RuntimeState& state, int32_t id);

// The object behind `New RegExp`.
Ref<Object> NewRegExp();

}  // namespace qv::vbs
