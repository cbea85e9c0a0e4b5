// The script-control surface of the VBScript engine, what hosts drive: Language, Reset,
// AddObject, named modules with AddCode/Run/Eval/ExecuteStatement/Procedures, Timeout and
// the error object (Number, Description, Source, Line, Column, Text).
//
//   vbs::Engine engine;
//   engine.AddObject(u"PROJ", project);
//   vbs::ScriptModule& system = engine.AddModule(u"System");
//   system.AddCode(u"Function F(x) : F = x * 2 : End Function");
//   Variant r = system.Run(u"F", args);      // throws qv::Error; engine.Error() has the details
#pragma once

#include <memory>
#include <span>
#include <unordered_map>
#include <vector>

#include "automation/object.h"
#include "vbscript/errors.h"
#include "vbscript/runtime.h"

namespace qv::vbs {

class Module;
class Vm;
class Engine;

struct ProcedureInfo {
  String Name;
  int32_t NumArgs = 0;
  bool HasReturnValue = false;
};

// The control's error object: the last error of AddCode, Run, Eval or ExecuteStatement.
class ScriptError {
 public:
  int32_t Number() const { return number_; }
  const String& Description() const { return description_; }
  const String& Source() const { return source_; }
  int32_t Line() const { return line_; }
  int32_t Column() const { return column_; }
  const String& Text() const { return text_; }
  // The whole text the error lies in, as AddCode or Eval took it: a host that added several
  // files tells by it which one to name.
  const String& Code() const { return code_; }
  void Clear() { *this = ScriptError(); }

 private:
  friend class Engine;
  int32_t number_ = 0;
  String description_;
  String source_;
  int32_t line_ = 0;
  int32_t column_ = 0;
  String text_;
  String code_;
};

// A module: the global one ("Global") or a named one ("System", "Validate", "$User"), each
// with its own procedures and variables; all see the objects the host added.
class ScriptModule {
 public:
  ScriptModule(Engine& engine, Ref<Module> module);
  ~ScriptModule();

  const String& Name() const;
  // Compiles and runs the code. A compile error adds nothing; a later definition of a
  // procedure replaces the earlier one.
  void AddCode(StringView code);
  // AddCode for a host that adds the same texts again and again (a generator adds one page
  // function per page): a text this module compiled before is made visible again from its
  // compiled form and its module-level code runs again, without parsing or compiling. A text
  // given as the very String added before (a shared buffer) is found without reading it.
  void AddCodeCached(const String& code);
  Variant Run(StringView procedure, std::span<Variant> args = {});
  Variant Eval(StringView expression);
  void ExecuteStatement(StringView code);
  std::vector<ProcedureInfo> Procedures() const;

  Module& module() const { return *module_; }

 private:
  struct CachedCode;
  struct TextHash {
    using is_transparent = void;
    size_t operator()(StringView text) const noexcept { return std::hash<StringView>()(text); }
  };
  bool StillValid(const CachedCode& cached) const;

  Engine& engine_;
  Ref<Module> module_;
  std::unordered_map<String, std::unique_ptr<CachedCode>, TextHash, std::equal_to<>> cache_;
  // The same entries by the buffer of their key: the keys keep their buffers alive and texts
  // never change in place, so a buffer seen again holds the same text.
  std::unordered_map<const Char*, CachedCode*> by_buffer_;
};

class Engine {
 public:
  Engine();
  ~Engine();
  Engine(const Engine&) = delete;
  Engine& operator=(const Engine&) = delete;

  String Language() const { return u"VBScript"; }
  // Only "VBScript" is known; any other name raises 5.
  void SetLanguage(StringView language);

  // Drops all code, modules and objects; Timeout and the class registry stay.
  void Reset();
  // Reset for a host that runs the same texts over and over (a web server runs one page per
  // request): the next run starts as clean, but the machine and the global module's compiled
  // texts (AddCodeCached) stay, so a text added again runs without being compiled again.
  // Named modules go as with Reset.
  void Recycle();
  // Adds a named object. With `add_members` its members are also global names. A name
  // already added raises 457.
  void AddObject(StringView name, Ref<Object> object, bool add_members = false);

  ScriptModule& GlobalModule() { return *modules_.front(); }
  // Adds a named module (457 when the name is taken).
  ScriptModule& AddModule(StringView name);
  // The module of that name, or null ("Global" names the global module).
  ScriptModule* FindModule(StringView name);
  // The module of that name; raises 9 when there is none.
  ScriptModule& Modules(StringView name);
  // The modules in the order they were added, the global one first.
  size_t ModuleCount() const { return modules_.size(); }
  ScriptModule& ModuleAt(size_t index) { return *modules_.at(index); }

  // Milliseconds a call may run; -1 or 0: no limit. The default is 10000.
  int32_t Timeout() const { return timeout_ms_; }
  void SetTimeout(int32_t milliseconds);

  ScriptError& Error() { return error_; }

  // The Windows locale id the engine formats and reads numbers and dates under, as the
  // script's GetLocale and SetLocale see it (1033 at the start). A host sets it before running
  // code (a page's Session.LCID); an id that is no country's locale raises 447 and changes
  // nothing. Reset and Recycle return it to 1033.
  int32_t LocaleId() const;
  void SetLocaleId(int32_t lcid);

  // The global module's operations.
  void AddCode(StringView code) { GlobalModule().AddCode(code); }
  Variant Run(StringView procedure, std::span<Variant> args = {}) {
    return GlobalModule().Run(procedure, args);
  }
  Variant Eval(StringView expression) { return GlobalModule().Eval(expression); }
  void ExecuteStatement(StringView code) { GlobalModule().ExecuteStatement(code); }
  std::vector<ProcedureInfo> Procedures() const { return modules_.front()->Procedures(); }

  // The classes CreateObject makes; hosts may register their own.
  ClassRegistry& Registry() { return registry_; }

  Vm& vm() { return *vm_; }

 private:
  friend class ScriptModule;
  template <class F>
  auto Guard(StringView code, F&& body) -> decltype(body());
  void Start();
  void Stop();

  Ref<Vm> vm_;
  std::vector<std::unique_ptr<ScriptModule>> modules_;
  std::vector<String> object_names_;
  ClassRegistry registry_;
  ScriptError error_;
  int32_t timeout_ms_ = 10000;
};

}  // namespace qv::vbs
