// TyScript: the script host of generation. It owns one VBScript engine, gives it the project's
// objects (PROJ, DB, Controls, LANG, SCRPT), loads the system, validation and user script
// texts into the modules "System", "Validate" and "$User", runs generated page functions and
// system functions, and turns every script failure into words in ProjErr.
//
//   Ref<TyScript> script = MakeRef<TyScript>();       // reads the six script settings
//   script->Initialize(tyx, db, controls, lang);      // ProjErr says whether it worked
//   String page = script->BuildNewCode(code, 2, Vars().ScriptEngineTimeout);
//   script->Reset();
#pragma once

#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

#include "automation/dispatch.h"
#include "script/user_script.h"

namespace qv {

namespace vbs {
class Engine;
class ScriptModule;
}  // namespace vbs

// The six settings that replace a built-in script source with files. Empty is their normal
// state.
struct ScriptSettings {
  String SYSCODE;        // an XML list of files that make the system text
  String SYSCODEPREFIX;  // a script file put before each function of that list
  String SYSCODESUFFIX;  // a script file put after each function of that list
  String USERCODE;       // the user's script file
  String COMMONCODE;     // a script file in place of the built-in common code
  String VALIDATECODE;   // an XML list of files that make the validation text
};

// Reads the six settings from the user's settings tree.
ScriptSettings LoadScriptSettings();

class TyScript : public DispatchObject<TyScript> {
 public:
  static const DispatchTable<TyScript>& Table();

  // Creates the engine and reads the script settings.
  TyScript();
  // The same with the settings given, for hosts and tests that don't take them from the
  // settings store.
  explicit TyScript(ScriptSettings settings);
  ~TyScript() override;

  // Sets the engine up: the objects, then the system, validation and user modules. Failures
  // of the system and user texts end in ProjErr; a broken validation text raises. A second
  // call without Reset raises 457, since the objects are there already.
  void Initialize(Ref<Object> proj, Ref<Object> db, Ref<Object> controls, Ref<Object> lang);
  // True from the start of Initialize until Reset.
  bool IsInitialized() const { return initialized_; }
  // Drops all code, modules and objects.
  void Reset();

  // Adds a further user script file (an extension's or the template package's usercode.vbs).
  void AddUserCode(StringView file);
  // Whether a system function, or a user function, of that name exists (ignoring case).
  bool ModuleExist(StringView name) const;
  bool UserModuleExist(StringView name) const;

  // Runs every validation function; False, with words in ProjErr, at the first that fails.
  bool Validate();
  // Runs the system function `module` and yields its value; `str` when ProjErr is already set
  // or no system function has that name. A failure sets ProjErr and raises.
  Variant BuildCode(StringView module, const Variant& str);
  // Adds `code` (which defines the function qvScriptEngine) to the System module, binds CTRL,
  // TABLE and FIELD as `init_type` asks (0 none, 1 the control, 2 all three) and returns what
  // qvScriptEngine returns. `timeout_ms` bounds the run. A failure sets ProjErr and gives "".
  String BuildNewCode(const String& code, int16_t init_type, int32_t timeout_ms);

  // The text of a stored page function (a translated control in the temp folder). Pages of
  // one control come back to the same file thousands of times in a run: the text is read
  // once and kept while the file keeps its size and time, and the same buffer each time lets
  // the engine find its compiled form without hashing the text again. Raises as
  // ReadSourceFile does.
  const String& StoredCode(StringView path);

  // Sets the system library's four database-kind flags (qvDbAccess, qvDbSqlServer, qvDbMySql,
  // qvDbOracle) for a kind of DatabaseKind: 1 to 4 switch their one flag on, 5 leaves all off.
  void SetDatabaseKind(int32_t kind);

  const ScriptSettings& settings() const { return settings_; }
  TyUserScript& UserScript();
  vbs::Engine& engine() { return *engine_; }

 private:
  void LoadSystemModule(StringView lang);
  void LoadSysCodeList();
  void LoadValidateModule();
  void LoadValidateList();
  void LoadUserModule(StringView name);
  void CollectUserProcedures();
  void ReportSyntaxError(StringView source);
  String RuntimeErrorText() const;
  String CurrentTableAndField();

  struct StoredText {
    String text;
    int64_t size = -1;
    int64_t mtime_ns = 0;
  };

  Ref<TyUserScript> user_script_;
  std::unordered_map<String, StoredText> stored_;
  std::unique_ptr<vbs::Engine> engine_;
  vbs::ScriptModule* system_ = nullptr;
  vbs::ScriptModule* user_ = nullptr;
  vbs::ScriptModule* validate_ = nullptr;
  String code_;  // the working code of the loader at hand
  String syscode_prefix_;
  String syscode_suffix_;
  String user_code_;
  String common_code_;
  Variant last_result_;  // the last result of BuildCode
  ScriptSettings settings_;
  String validate_code_;
  bool initialized_ = false;
  // Slot 0 of each list stays empty, as the system's other lists do.
  std::vector<String> user_functions_{String()};
  std::vector<String> system_functions_{String()};
  std::vector<String> validate_functions_{String()};
};

// The running script host (Vars().TheScript), or null between runs.
TyScript* CurrentScript();

// Resets the host in the shared slot and empties the slot: its code, modules and objects go,
// and with them its hold on the project. Nothing when the slot is empty.
void DropScriptHost() noexcept;

// A host that a failed generation run leaves in the slot for the next run still holds the
// project, and through it the host program's objects. Left to the slot's own end it would go
// among the process's last destructors, after parts of the engine it needs. This makes sure
// it goes at exit before any of them: call it once for each host left behind.
void KeepScriptHostUntilExit();

// The built-in common code: the module-level CTRL, TABLE and FIELD and the function
// LoadCurrent(bInitType) that binds them.
String BuildCommonCode();

// Reads a script file whole. A missing file is told to the user ("<product>: Script file ...
// not found! Content not loaded!") and gives "": generation goes on without it.
String ReadScriptFile(StringView path);

// A system text of the syscode list mode: the content of `code` as statements that add to the
// variable `name` (or as bare expressions when `name` is ""). ProjErr tells of a broken text,
// which then comes back unchanged.
String TranslateSysCode(StringView code, bool multiline, bool indent, StringView name);

}  // namespace qv
