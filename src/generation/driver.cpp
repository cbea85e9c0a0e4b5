// The generation run, stage by stage.
#include "generation/driver.h"

#include <exception>
#include <vector>

#include "automation/convert.h"
#include "generation/cache.h"
#include "generation/conditions.h"
#include "generation/extension_merge.h"
#include "generation/preparation.h"
#include "generation/run_controls.h"
#include "generation/run_state.h"
#include "generation/split.h"
#include "generation/translation.h"
#include "platform/fs.h"
#include "platform/prompter.h"
#include "platform/zip.h"
#include "script/script_host.h"
#include "support/common.h"
#include "support/data_folder.h"
#include "support/status.h"
#include "support/tyx_vars.h"
#include "vbscript/engine.h"

namespace qv {

namespace {

// What the stages before the script host decide and the later ones read.
struct RunFlags {
  bool template_kept = false;
  bool cache_keep_template = false;
  bool anything_changed = false;
  String template_file;
};

// Ends the run softly: the words, behind the product name, in ProjErr.
void Abort(StringView words) {
  Vars().ProjErr = Vars().ProductName + words;
}

Variant Title(StringView words) {
  return Variant(LengthMarked(Vars().ProductName + words));
}

void OpenStatus(const Tyx& tyx, StringView words, bool with_bar) {
  TyxStatus& status = SharedStatus();
  if (with_bar) {
    status.ShowStatus3(Variant(tyx.lhWnd), Title(words));
  } else {
    status.ShowStatus2(Variant(tyx.lhWnd), Title(words));
    status.DispStatus(Variant(u"Please wait..."));
  }
}

Variant FileDate(StringView path) {
  return Variant::Date(fs::DateLastModified(path));
}
Variant FileSizeOf(StringView path) {
  return Variant(static_cast<double>(fs::FileSize(path)));
}

// Unpacks a package; false with ProjErr set when the package is refused.
bool Unpack(StringView package, StringView folder) {
  try {
    const UnzipStats stats = UnpackZip(package, folder);
    Vars().FilesUnpacked += static_cast<int32_t>(stats.files);
    return true;
  } catch (const Error& e) {
    Abort(u": " + e.description() + u"! Generation aborted!");
    return false;
  }
}

// Stages 2 and 3: a project with tables, the template's folders and its cache.
bool LocateTemplate(Tyx& tyx, RunFlags& run) {
  TyxVars& vars = Vars();
  if (tyx.DBCnt() == 0) {
    Abort(u": Database not loaded! Generation aborted!");
    return false;
  }
  const Ref<TyxDatabase> db = FirstDatabase(tyx);
  if (!db || db->Tables().Count() == 0) {
    Abort(u": No tables found in the Database! Generation aborted!");
    return false;
  }
  run.template_file = TemplatePackagePath(tyx);
  if (run.template_file.view().find(u'/') != StringView::npos) {
    vars.TemplateName = fs::FileNameOf(run.template_file);
  }
  vars.TheCache = MakeRef<TyxCache>();
  EnsureFolders(tyx, u"Script");
  return true;
}

// Stages 4 and 5: the template package, unpacked unless the cache says it is unchanged or the
// user keeps what is in the folder.
bool PrepareTemplate(RunFlags& run) {
  const TyxVars& vars = Vars();
  const int16_t code = CheckFileCache(u"template", u"template", run.template_file);
  if (code == -1) {
    Abort(u": Template file not found! Generation aborted!");
    return false;
  }
  run.template_kept = code == 0;
  if (code == 1) {
    const size_t choice = CurrentPrompter().ChooseButton(
        vars.ProductName,
        u"Template version in zip file is different with that in the template folder. Do you "
        u"want to keep the existing files in the template folder or extract and overwrite from "
        u"the zip file?",
        u"Keep", u"Overwrite", 0);
    run.template_kept = choice == 0;
    run.cache_keep_template = run.template_kept;
  }
  if (run.template_kept) return true;
  return Unpack(run.template_file, vars.TemplateFolder);
}

// Stage 6: the extension packages that changed.
bool PrepareExtensions(const Tyx& tyx, RunFlags& run) {
  const TyxVars& vars = Vars();
  for (const Ref<TyxExtension>& extension : ExtensionsInOrder(tyx)) {
    const String name = extension->Name();
    const String package = ExtensionPackagePath(extension->Template());
    const int16_t code = CheckFileCache(u"extension", name, package);
    if (code == -1) {
      Abort(u": Extension " + name + u" template file not found! Generation aborted!");
      return false;
    }
    if (code == 0) continue;
    run.anything_changed = true;
    if (!Unpack(package, fs::JoinPath(vars.ExtensionsFolder, name))) return false;
  }
  return true;
}

// Stages 7 to 10: the user code, control and language files.
bool LoadSources(Tyx& tyx, RunFlags& run) {
  TyxVars& vars = Vars();
  // Without a user code file of its own the script host uses its built-in one, and there is
  // nothing to check.
  vars.UserCodeFile = DataFolderPath(tyx.USERCODE);
  if (!vars.UserCodeFile.empty()) {
    const int16_t code = CheckFileCache(u"usercode", u"usercode", vars.UserCodeFile);
    if (code == -1) {
      Abort(u": User code file not found! Generation aborted!");
      return false;
    }
    run.anything_changed |= code != 0;
  }

  const String control_file = fs::JoinPath(vars.TemplateFolder, u"control.xml");
  const int16_t control_code = CheckFileCache(u"control", u"control", control_file);
  if (control_code == -1) {
    Abort(u": control file not found! Generation aborted!");
    return false;
  }
  run.anything_changed |= control_code != 0;
  bool loaded = false;
  try {
    loaded = RunControlList().LoadControls(control_file);
  } catch (const Error&) {
    loaded = false;  // a missing or mistyped attribute: the file is as unusable as broken XML
  }
  if (!loaded) {
    if (vars.ProjErr.empty()) {
      Abort(u": Load Template Control File \"" + control_file + u"\" failed! Generation aborted!");
    }
    return false;
  }

  const String version = RunControlList().ProdVersion;
  if (VersionBelow(version, vars.MinTemplateVersion)) {
    Abort(u": Template version (" + version + u") older than minimum required (" +
          vars.MinTemplateVersion + u")! Generation aborted!");
    return false;
  }
  const String package_lang = fs::JoinPath(vars.TemplateFolder, u"lang.xml");
  vars.DefaultLangFile = DefaultLangFile(tyx);
  vars.LangFile = fs::FileExists(package_lang) ? package_lang : vars.DefaultLangFile;
  const int16_t lang_code = CheckFileCache(u"language", u"language", vars.LangFile);
  if (lang_code == -1) {
    Abort(u": language file not found! Generation aborted!");
    return false;
  }
  run.anything_changed |= lang_code != 0;
  if (!vars.TheScript) SetRunLanguage(MakeRef<TyxLanguage>());
  if (!RunLanguage().Load(vars.LangFile)) {
    Abort(u": Load Language File \"" + vars.LangFile + u"\" failed! Generation aborted!");
    return false;
  }
  return true;
}

// Stage 11: translated scripts are dropped whenever a source changed; the settings of the file
// writer and the script engine are read.
void DropStaleScripts(Tyx& tyx, const RunFlags& run) {
  TyxVars& vars = Vars();
  if (!run.template_kept || run.anything_changed) {
    DeleteFilesByExt(vars.TempFolder, u"tmp");
    RunCache()->DeleteCacheGroup(u"temp");
  }
  const Variant backup =
      ConvertValue(ReadRegValue(u"HKCU", vars.SettingsKey, u"BackupFile"), Variant(u"Boolean"));
  tyx.BackupFile = backup.is_empty() ? false : backup.as_bool();
  const Variant timeout = ConvertValue(
      ReadRegValue(u"HKCU", vars.SettingsKey, u"ScriptEngineTimeout"), Variant(u"Long"));
  vars.ScriptEngineTimeout = timeout.is_empty() ? 0 : timeout.as_long();
}

// Stages 12 to 14: the script host with the extensions' code and phrases, then validation.
void StartScriptHost(Tyx& tyx) {
  TyxVars& vars = Vars();
  OpenStatus(tyx, u" - Initializing VBScript Engine...", false);
  if (!vars.TheScript) {
    Ref<TyScript> host = MakeRef<TyScript>();
    vars.TheScript = host;
    host->Initialize(Ref<Object>(&tyx), Ref<Object>(FirstDatabase(tyx)),
                     Ref<Object>(&RunControlList()), Ref<Object>(&RunLanguage()));
    host->engine().AddObject(u"CHARTS", vars.HostCharts);
  }
  TyScript* script = CurrentScript();
  for (const Ref<TyxExtension>& extension : ExtensionsInOrder(tyx)) {
    const String folder = fs::JoinPath(vars.ExtensionsFolder, extension->Name());
    const String user_code = fs::JoinPath(folder, u"usercode.vbs");
    if (script && fs::FileExists(user_code)) script->AddUserCode(user_code);
    const String lang = fs::JoinPath(folder, u"lang.xml");
    if (fs::FileExists(lang)) RunLanguage().Load(lang);
  }
  SharedStatus().CloseStatus();
  if (!vars.ProjErr.empty()) return;
  OpenStatus(tyx, u" - Validating project settings...", false);
  if (script) script->Validate();
  SharedStatus().CloseStatus();
}

// Stages 15 to 17: the extensions' controls, then the translation of what is out of date.
void TranslateControls(Tyx& tyx) {
  TyxVars& vars = Vars();
  OpenStatus(tyx, u" - Merging extensions...", false);
  for (const Ref<TyxExtension>& extension : ExtensionsInOrder(tyx)) {
    MergeExtension(extension->Name());
  }
  SharedStatus().CloseStatus();

  OpenStatus(tyx, u" - Validating control.xml...", false);
  vars.SessionsDone = vars.SessionsTotal = 0;
  TyxControls& controls = RunControlList();
  for (int32_t i = 1; i <= controls.Count(); ++i) {
    const Ref<TyxControl> control = controls.Item(i);
    if (control->CtrlType == u"copy") continue;
    if (ControlNeedsBuild(*control)) vars.SessionsTotal += control->Sessions().Count();
  }
  SharedStatus().CloseStatus();
  if (vars.SessionsTotal < 1) return;

  OpenStatus(tyx, u" - Creating Script Files...", true);
  TyxStatus& status = SharedStatus();
  for (int32_t i = 1; i <= controls.Count(); ++i) {
    const Ref<TyxControl> control = controls.Item(i);
    if (control->CtrlType == u"copy") continue;
    if (status.StatusIsCancelled()) RaiseCancelled();
    if (!control->CtrlGen) continue;
    status.DispStatus(Variant(u"Loading " + control->CtrlID + u" script..."));
    TranslateControl(tyx, *control, TempFilePath(*control));
    ++vars.ControlsTranslated;
  }
  status.CloseStatus();
}

// Stages 18 and 19: the cache learns the run's sources and scripts and is written before any
// page, so that a failing page doesn't cost the next run its translations.
void SaveCache(const Tyx& tyx, const RunFlags& run) {
  const TyxVars& vars = Vars();
  TyxCache& cache = *RunCache();
  const auto add = [&cache](StringView group, StringView key, StringView path) {
    if (!fs::FileExists(path)) return;
    cache.AddCache(Variant(group), Variant(key), FileDate(path), FileSizeOf(path));
  };
  if (!run.cache_keep_template) add(u"template", u"template", run.template_file);
  for (const Ref<TyxExtension>& extension : ExtensionsInOrder(tyx)) {
    add(u"extension", extension->Name(), ExtensionPackagePath(extension->Template()));
  }
  if (!vars.UserCodeFile.empty()) add(u"usercode", u"usercode", vars.UserCodeFile);
  add(u"control", u"control", fs::JoinPath(vars.TemplateFolder, u"control.xml"));
  add(u"language", u"language", vars.LangFile);
  for (const String& file : fs::ListFiles(vars.TempFolder)) {
    if (EqualsNoCase(fs::ExtensionOf(file), u"xml")) continue;
    add(u"temp", fs::FileNameOf(file), file);
  }
  cache.WriteCacheFile();
}

// What a run leaves however it ends. The cache lives from stage 3 to the run's end, so a cache
// in place at the start means GenScript was called from a page function of a run under way
// (a script may do that): such a run works in the outer run's host and leaves the host, and
// the clean-up, to the outer run. A run that ends by an exception keeps its script host for
// the next run, which takes it as it is; a host first left behind here is handed to
// KeepScriptHostUntilExit, so that it can never outlive the program that ran it.
class RunScope {
 public:
  RunScope()
      : nested_(static_cast<bool>(Vars().TheCache)),
        had_host_(static_cast<bool>(Vars().TheScript)),
        exceptions_(std::uncaught_exceptions()) {}
  RunScope(const RunScope&) = delete;
  RunScope& operator=(const RunScope&) = delete;
  ~RunScope() {
    if (nested_) return;
    TyxVars& vars = Vars();
    vars.TheCache.reset();
    const bool failed_hard = std::uncaught_exceptions() > exceptions_;
    if (failed_hard && vars.TheScript && !had_host_) KeepScriptHostUntilExit();
  }

  // Stage 22 of a run that got past its sources: the script host goes.
  void CleanUp() const {
    if (!nested_) DropScriptHost();
  }

 private:
  const bool nested_;
  const bool had_host_;
  const int exceptions_;
};

}  // namespace

String TemplatePackagePath(const Tyx& tyx) {
  return DataFolderPath(tyx.Template());
}

String ExtensionPackagePath(StringView template_path) {
  const String normal = fs::NormalizeSeparators(template_path);
  if (normal.empty() || normal.view().front() == u'/') return normal;
  const String extensions = fs::JoinPath(fs::FromNative(DataFolder()), u"extensions");
  return fs::JoinPath(extensions, normal);
}

bool VersionBelow(StringView version, StringView minimum) {
  const std::vector<StringView> have = SplitAt(version, u'.');
  const std::vector<StringView> need = SplitAt(minimum, u'.');
  const size_t count = std::min({have.size(), need.size(), size_t{3}});
  for (size_t i = 0; i < count; ++i) {
    // Val-like: a part that reads as no number counts as 0.
    const double h = ParseNumberText(have[i]).value_or(0.0);
    const double n = ParseNumberText(need[i]).value_or(0.0);
    if (h != n) return h < n;
  }
  return false;
}

void GenScript(Tyx& tyx) {
  TyxVars& vars = Vars();
  vars.ProjErr = String();
  vars.FilesUnpacked = 0;
  vars.ControlsTranslated = 0;
  RunFlags run;
  const RunScope scope;
  if (!LocateTemplate(tyx, run)) return;
  if (!PrepareTemplate(run)) return;
  if (!PrepareExtensions(tyx, run)) return;
  if (!LoadSources(tyx, run)) return;
  DropStaleScripts(tyx, run);
  StartScriptHost(tyx);
  if (vars.ProjErr.empty()) {
    TranslateControls(tyx);
    SaveCache(tyx, run);
    OpenStatus(tyx, u" - Generating " + vars.ScriptLanguageName + u" Scripts...", true);
    RunControls(tyx, false);
    SharedStatus().CloseStatus();
  }
  scope.CleanUp();
}

int16_t GenCheck(Tyx& tyx) {
  TyxVars& vars = Vars();
  vars.ProjErr = String();
  EnsureFolders(tyx, u"Tmp");
  const String template_file = TemplatePackagePath(tyx);
  if (!fs::FileExists(template_file)) {
    Abort(u": Template file not found! Generation aborted!");
    return 0;
  }
  if (!Unpack(template_file, vars.TemplateFolder)) return 0;
  const String control_file = fs::JoinPath(vars.TemplateFolder, u"control.xml");
  bool loaded = false;
  try {
    loaded = RunControlList().LoadControls(control_file);
  } catch (const Error&) {
    loaded = false;
  }
  if (!loaded) {
    vars.ProjErr = vars.ProductName + u": Load Template Control File \"" + control_file +
                   u"\" failed! Generation aborted!";
    return 0;
  }
  const int16_t count = RunControls(tyx, true);
  DeleteFolderIfExists(vars.TemplateFolder);
  return count;
}

}  // namespace qv
