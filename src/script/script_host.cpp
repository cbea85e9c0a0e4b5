// The script host's life and its runs: creation, Initialize, Reset, the function lists,
// Validate, BuildCode and BuildNewCode, and the words of every script failure. The loaders of
// the three modules live in script_loaders.cpp.
#include "script/script_host.h"

#include <sys/stat.h>

#include <cassert>
#include <cstdlib>

#include "automation/convert.h"
#include "platform/fs.h"
#include "platform/prompter.h"
#include "platform/text_file.h"
#include "script/system_library.h"
#include "support/common.h"
#include "support/password_object.h"
#include "support/tyx_vars.h"
#include "vbscript/engine.h"

namespace qv {
namespace {

constexpr StringView kCrLf = u"\r\n";

bool InList(const std::vector<String>& list, StringView name) {
  // Slot 0 is empty and never matches a real name, so searching from 0 or 1 is the same.
  for (size_t i = 1; i < list.size(); ++i) {
    if (EqualsNoCase(list[i], name)) return true;
  }
  return false;
}

String SettingText(StringView name) {
  const Variant value = ReadRegValue(u"HKCU", Vars().SettingsKey, name);
  if (value.is_empty() || value.is_null()) return {};
  try {
    return ToString(value);
  } catch (const Error&) {
    return {};
  }
}

Ref<Object> ObjectOf(const Variant& v) {
  return v.is_object() ? Ref<Object>(v.as_object()) : Ref<Object>();
}

void CheckArgs(Args a, size_t count) {
  if (a.size() != count) throw Error(kErrWrongArgCount);
}

}  // namespace

const DispatchTable<TyScript>& TyScript::Table() {
  using T = TyScript;
  static const auto table =
      DispatchTable<T>(u"TyScript")
          .Method(u"Initialize",
                  [](T& s, Args a) {
                    CheckArgs(a, 4);
                    s.Initialize(ObjectOf(a[0]), ObjectOf(a[1]), ObjectOf(a[2]), ObjectOf(a[3]));
                    return Variant();
                  })
          .Method(u"IsInitialized",
                  [](T& s, Args a) {
                    CheckArgs(a, 0);
                    return Variant(s.IsInitialized());
                  })
          .Method(u"Reset",
                  [](T& s, Args a) {
                    CheckArgs(a, 0);
                    s.Reset();
                    return Variant();
                  })
          .Method(u"AddUserCode",
                  [](T& s, Args a) {
                    CheckArgs(a, 1);
                    s.AddUserCode(ToString(a[0]));
                    return Variant();
                  })
          .Method(u"ModuleExist",
                  [](T& s, Args a) {
                    CheckArgs(a, 1);
                    return Variant(s.ModuleExist(ToString(a[0])));
                  })
          .Method(u"UserModuleExist",
                  [](T& s, Args a) {
                    CheckArgs(a, 1);
                    return Variant(s.UserModuleExist(ToString(a[0])));
                  })
          .Method(u"Validate",
                  [](T& s, Args a) {
                    CheckArgs(a, 0);
                    return Variant(s.Validate());
                  })
          .Method(u"BuildCode",
                  [](T& s, Args a) {
                    CheckArgs(a, 2);
                    return s.BuildCode(ToString(a[0]), a[1]);
                  })
          .Method(u"BuildNewCode", [](T& s, Args a) {
            CheckArgs(a, 3);
            return Variant(s.BuildNewCode(ToString(a[0]), ToInteger(a[1]), ToLong(a[2])));
          });
  return table;
}

ScriptSettings LoadScriptSettings() {
  ScriptSettings s;
  s.SYSCODE = SettingText(u"SYSCODE");
  s.SYSCODEPREFIX = SettingText(u"SYSCODEPREFIX");
  s.SYSCODESUFFIX = SettingText(u"SYSCODESUFFIX");
  s.USERCODE = SettingText(u"USERCODE");
  s.COMMONCODE = SettingText(u"COMMONCODE");
  s.VALIDATECODE = SettingText(u"VALIDATECODE");
  return s;
}

TyScript* CurrentScript() {
  return dynamic_cast<TyScript*>(Vars().TheScript.get());
}

void DropScriptHost() noexcept {
  TyxVars& vars = Vars();
  const Ref<Object> host = std::move(vars.TheScript);
  vars.TheScript = nullptr;
  auto* script = dynamic_cast<TyScript*>(host.get());
  if (!script) return;
  try {
    script->Reset();
  } catch (...) {
    // Dropping code reports nothing anybody could still act on; the host goes anyway.
  }
}

void KeepScriptHostUntilExit() {
  // Handlers registered with atexit run before the destructors of every static that was
  // complete when they were registered: all that the host used while it ran.
  std::atexit([] { DropScriptHost(); });
}

String BuildCommonCode() {
  static constexpr StringView kLines[] = {
      u"Dim TABLE, FIELD, CTRL",
      u"Function LoadCurrent(bInitType)",
      u" Dim tablename, fieldname, index",
      u" If bInitType >= 1 Then",
      u"  index = controls.curIndex",
      u"  Set CTRL = controls(index)",
      u" End If",
      u" If bInitType >= 2 Then",
      u"  tablename = db.Tables.curName",
      u"  Set TABLE = db.Tables(tablename)",
      u"  fieldname = TABLE.Fields.curName",
      u"  Set FIELD = TABLE.Fields(fieldname)",
      u"  LoadCurrent = tablename & \",\" & fieldname",
      u" Else",
      u"  LoadCurrent = \"\"",
      u" End If",
      u"End Function",
  };
  String text;
  for (StringView line : kLines) {
    text.Append(line);
    text.Append(kCrLf);
  }
  return text;
}

String ReadScriptFile(StringView path) {
  if (!fs::FileExists(path)) {
    const TyxVars& vars = Vars();
    CurrentPrompter().ShowMessage(vars.ProductTitle, vars.ProductName + u": Script file " + path +
                                                         u" not found! Content not loaded!");
    return {};
  }
  try {
    return ReadSourceFile(path);
  } catch (const Error&) {
    // A folder or an unreadable file holds no script either.
    return {};
  }
}

// ---- Creation and end ----------------------------------------------------------------------

TyScript::TyScript() : TyScript(LoadScriptSettings()) {}

TyScript::TyScript(ScriptSettings settings)
    : engine_(std::make_unique<vbs::Engine>()), settings_(std::move(settings)) {
  // Templates hash what the generated application must not carry as itself (a password).
  if (PasswordHashesAvailable())
    engine_->Registry().Register(u"Quorvex.Password", NewPasswordObject);
  InstallSystemLibrary();
}

TyScript::~TyScript() {
  system_ = user_ = validate_ = nullptr;
  engine_->Reset();
}

TyUserScript& TyScript::UserScript() {
  if (!user_script_) user_script_ = MakeRef<TyUserScript>();
  return *user_script_;
}

void TyScript::Reset() {
  initialized_ = false;
  system_ = user_ = validate_ = nullptr;
  // The lists name procedures of the engine's modules; with the modules gone they would tell
  // of functions that no longer exist.
  system_functions_.assign(1, String());
  user_functions_.assign(1, String());
  validate_functions_.assign(1, String());
  engine_->Reset();
}

// ---- Initialize ------------------------------------------------------------------------------

void TyScript::Initialize(Ref<Object> proj, Ref<Object> db, Ref<Object> controls,
                          Ref<Object> lang) {
  // The engine starts afresh only on a host that isn't set up yet. A second Initialize without
  // Reset must not quietly throw away the code of a running host: the engine then refuses the
  // objects it holds already (457), and the host stays as it was.
  if (!initialized_) Reset();
  initialized_ = true;
  engine_->SetLanguage(u"VBScript");
  engine_->AddObject(u"PROJ", std::move(proj));
  engine_->AddObject(u"DB", std::move(db));
  engine_->AddObject(u"Controls", std::move(controls));
  engine_->AddObject(u"LANG", std::move(lang));
  engine_->AddObject(u"SCRPT", Ref<Object>(&UserScript()));
  LoadSystemModule(u"VB");
  if (Vars().ProjErr.empty()) LoadValidateModule();
  if (Vars().ProjErr.empty()) LoadUserModule(u"User");
}

bool TyScript::ModuleExist(StringView name) const {
  return InList(system_functions_, name);
}

bool TyScript::UserModuleExist(StringView name) const {
  return InList(user_functions_, name);
}

void TyScript::SetDatabaseKind(int32_t kind) {
  if (!system_) return;
  static constexpr StringView kFlags[] = {u"qvDbAccess", u"qvDbSqlServer", u"qvDbMySql",
                                          u"qvDbOracle"};
  String statement;
  for (int32_t i = 0; i < 4; ++i) {
    statement.Append(kFlags[i]);
    statement.Append(kind == i + 1 ? u" = True : " : u" = False : ");
  }
  statement.Append(u"qvDbKind = ");
  statement.Append(ToString(Variant(kind)));
  try {
    system_->ExecuteStatement(statement);
  } catch (const Error&) {
    // A system text of the user's own may lack the flags; the run needs none of them.
  }
}

// ---- Failure words ---------------------------------------------------------------------------

void TyScript::ReportSyntaxError(StringView source) {
  const vbs::ScriptError& e = engine_->Error();
  String text = source.empty() ? Vars().ProductName : u"(" + String(source) + u")";
  text.Append(u" : VBScript Syntax Error");
  text.Append(kCrLf);
  text.Append(e.Description());
  text.Append(kCrLf);
  text.Append(u"In line ");
  text.Append(ToString(Variant(e.Line())));
  text.Append(u": ");
  text.Append(kCrLf);
  text.Append(e.Text());
  Vars().ProjErr = std::move(text);
}

// The details every run-time report ends with: the description, then the engine's source
// line, each on a line of its own.
String TyScript::RuntimeErrorText() const {
  const vbs::ScriptError& e = engine_->Error();
  String text;
  text.Append(kCrLf);
  text.Append(e.Description());
  text.Append(kCrLf);
  text.Append(e.Text());
  text.Append(kCrLf);
  return text;
}

// ---- Validate --------------------------------------------------------------------------------

bool TyScript::Validate() {
  TyxVars& vars = Vars();
  if (!vars.ProjErr.empty()) return false;
  if (!validate_) return true;
  engine_->Error().Clear();
  for (size_t i = 1; i < validate_functions_.size(); ++i) {
    const String& name = validate_functions_[i];
    bool passed = false;
    try {
      passed = ToBool(validate_->Run(name));
    } catch (const Error&) {
      passed = false;
    }
    if (passed) continue;
    if (vars.ProjErr.empty()) {
      vars.ProjErr = vars.ProductName + u": Validation VBScript Runtime error in module \"" + name +
                     u"\"" + RuntimeErrorText();
    }
    return false;
  }
  return true;
}

// ---- BuildNewCode ----------------------------------------------------------------------------

const String& TyScript::StoredCode(StringView path) {
  StoredText& stored = stored_[String(path)];
  struct stat info {};
  if (::stat(fs::ToNative(path).c_str(), &info) == 0) {
    const int64_t mtime_ns = int64_t{info.st_mtim.tv_sec} * 1000000000 + info.st_mtim.tv_nsec;
    if (stored.size == info.st_size && stored.mtime_ns == mtime_ns) return stored.text;
    stored.size = info.st_size;
    stored.mtime_ns = mtime_ns;
  } else {
    stored.size = -1;  // let the read below say what is wrong with the file
  }
  stored.text = ReadSourceFile(path);
  return stored.text;
}

String TyScript::BuildNewCode(const String& code, int16_t init_type, int32_t timeout_ms) {
  TyxVars& vars = Vars();
  engine_->SetTimeout(timeout_ms);
  if (!system_) {
    // Not initialised: there is no System module to run in. Say so in the run-time form.
    vars.ProjErr = u"VBScript Runtime error " + String(kCrLf) +
                   u"The script host is not initialized" + kCrLf + kCrLf;
    return {};
  }
  Variant result;
  bool failed = false;
  try {
    system_->AddCodeCached(code);
  } catch (const Error&) {
    failed = true;
    const vbs::ScriptError& e = engine_->Error();
    vars.ProjErr = vars.ProductName + u": VBScript Syntax Error" + kCrLf + e.Description() + kCrLf +
                   u"In line " + ToString(Variant(e.Line())) + u": " + kCrLf + e.Text();
  }
  if (!failed) {
    try {
      Variant args[] = {Variant(init_type)};
      system_->Run(u"LoadCurrent", args);
      result = system_->Run(u"qvScriptEngine");
    } catch (const Error&) {
      failed = true;
    }
  }
  // A syntax error stands as well: its words above give way to the run-time form, which is
  // the one users of generation know.
  if (failed) {
    vars.ProjErr = u"VBScript Runtime error " + RuntimeErrorText();
    return {};
  }
  if (result.is_empty() || result.is_null()) return {};
  try {
    return ToString(result);
  } catch (const Error&) {
    return {};
  }
}

// ---- BuildCode -------------------------------------------------------------------------------

// The "table,field" of the moment for the report of a failed system function. BuildCode's
// LoadCurrent call binds nothing (see there), so the names are read from the same collections
// LoadCurrent would read; "" when there is no current table.
String TyScript::CurrentTableAndField() {
  try {
    const Variant v =
        system_->Eval(u"db.Tables.curName & \",\" & db.Tables(db.Tables.curName).Fields.curName");
    return ToString(v);
  } catch (const Error&) {
    return {};
  }
}

Variant TyScript::BuildCode(StringView module, const Variant& str) {
  TyxVars& vars = Vars();
  Variant result = str;
  if (!vars.ProjErr.empty()) return result;
  if (!system_ || !InList(system_functions_, module)) return result;
  try {
    // The common code's LoadCurrent takes one argument, and VBScript has none optional, so a
    // call without it could only fail. It gets 0 here: that binds nothing, so a custom
    // function sees CTRL, TABLE and FIELD as the page at hand left them, which is what a
    // condition about that page needs. The common code's text stays as it is.
    Variant args[] = {Variant(int16_t{0})};
    system_->Run(u"LoadCurrent", args);
    result = system_->Run(module);
    last_result_ = result;
    return result;
  } catch (const Error&) {
  }
  // The report. The original handler first read an object it never set, so a failure here
  // always leaves as an exception to the caller's own handler, "Object required"; the words
  // below are kept in ProjErr for that handler to show.
  String text = vars.ProductName + u": VBScript Runtime error in module \"" + module + u"\"" +
                RuntimeErrorText();
  const String where = CurrentTableAndField();
  const size_t comma = where.view().find(u',');
  if (comma != StringView::npos) {
    text.Append(u"Please check setting for Table \"");
    text.Append(where.view().substr(0, comma));
    text.Append(u"\" Field \"");
    StringView field = where.view().substr(comma + 1);
    field = field.substr(0, field.find(u','));
    text.Append(field);
    text.Append(u"\"");
  }
  vars.ProjErr = std::move(text);
  throw Error(kErrObjectRequired);
}

}  // namespace qv
