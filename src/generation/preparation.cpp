// Template preparation: folders, file checks, the rebuild decision and clean-up.
#include "generation/preparation.h"

#include <filesystem>

#include "automation/convert.h"
#include "generation/cache.h"
#include "generation/run_state.h"
#include "generation/split.h"
#include "platform/fs.h"
#include "platform/text_file.h"
#include "support/common.h"
#include "support/data_folder.h"
#include "support/status.h"
#include "support/tyx_vars.h"

namespace qv {

namespace {

// A failure goes on to the host with its number, and with the folder in its words: the
// platform's text alone ("Path not found") leaves the user to guess which of the work folders
// below the documents folder could not be made.
void EnsureFolder(StringView folder) {
  if (fs::FolderExists(folder)) return;
  try {
    fs::CreateFolder(folder);
  } catch (Error& e) {
    e.set_description(e.description() + u": " + folder);
    throw;
  }
}

// A file's date as the cache writes it.
String FileStamp(StringView path) {
  return TyxCache::NormalizeDate(Variant::Date(fs::DateLastModified(path)));
}

[[noreturn]] void ReportMissing(StringView name) {
  Vars().ProjErr = u"Missing \"" + String(name) + u"\" in template folder \"" +
                   Vars().TemplateFolder + u"\". Generation aborted.";
  RaiseGenError();
}

// The folder a control's (or session's) names are found in.
String BaseFolder(StringView ext) {
  const TyxVars& vars = Vars();
  if (ext.empty()) return vars.TemplateFolder;
  return fs::JoinPath(vars.ExtensionsFolder, ext);
}

String Resolved(StringView base, StringView name) {
  return fs::WithTrailingSlash(base) + fs::NormalizeSeparators(TrimBlanks(name));
}

// True when `name` (or a file it includes) is newer than `cached`; a missing file ends the run.
bool NewerThan(StringView base, StringView name, StringView cached) {
  const String path = Resolved(base, name);
  if (!fs::FileExists(path)) ReportMissing(name);
  if (FileStamp(path).view() > cached) return true;
  const String includes = ExtractIncludeNames(ReadSourceFile(path));
  for (StringView included : SplitAt(includes, u',')) {
    if (included.empty()) continue;
    const String included_path = Resolved(base, included);
    if (!fs::FileExists(included_path)) ReportMissing(included);
    if (FileStamp(included_path).view() > cached) return true;
  }
  return false;
}

}  // namespace

void RaiseGenError() {
  SharedStatus().CloseStatus();
  throw Error::Failure(Vars().ProjErr);
}

void EnsureFolders(const Tyx& tyx, StringView sub) {
  TyxVars& vars = Vars();
  const String product = fs::JoinPath(DocumentsFolder(), CleanName(vars.ProductName));
  const String templates = fs::JoinPath(product, u"Templates");
  vars.WorkFolder = fs::JoinPath(templates, CleanName(vars.TemplateName));
  vars.ExtensionsFolder = fs::JoinPath(vars.WorkFolder, u"extensions");
  vars.TempFolder = fs::JoinPath(vars.WorkFolder, u"temp");
  vars.TemplateFolder = fs::JoinPath(vars.WorkFolder, sub);
  EnsureFolder(product);
  EnsureFolder(templates);
  EnsureFolder(vars.WorkFolder);
  EnsureFolder(vars.ExtensionsFolder);
  for (const Ref<TyxExtension>& extension : ExtensionsInOrder(tyx)) {
    EnsureFolder(fs::JoinPath(vars.ExtensionsFolder, extension->Name()));
  }
  EnsureFolder(vars.TempFolder);
  EnsureFolder(vars.TemplateFolder);
}

int16_t CheckFileCache(const Variant& group, const Variant& key, StringView path) {
  if (path.empty() || !fs::FileExists(path)) return -1;
  TyxCache* cache = RunCache();
  if (!cache) return 2;
  return cache->CheckCache(group, key, Variant::Date(fs::DateLastModified(path)),
                           Variant(static_cast<double>(fs::FileSize(path))));
}

String TempFilePath(const TyxControl& control) {
  return fs::JoinPath(Vars().TempFolder, control.CtrlID + control.CtrlTagExt + u".tmp");
}

String ExtractIncludeNames(StringView text) {
  static constexpr StringView kOpen = u"<!--##include";
  static constexpr StringView kClose = u"##-->";
  // Lower case keeps every position, so the search runs once over a lowered copy.
  const String lowered = ToLower(text);
  const StringView lower = lowered;
  String names;
  bool first = true;
  size_t from = 0;
  for (;;) {
    const size_t open = lower.find(kOpen, from);
    if (open == StringView::npos) return names;
    const size_t close = lower.find(kClose, open);
    if (close == StringView::npos) {
      from = open + 1;
      continue;
    }
    StringView inner;
    if (close >= open + kOpen.size()) {
      inner = text.substr(open + kOpen.size(), close - open - kOpen.size());
    }
    const size_t slash = inner.rfind(u'/');
    const StringView name = TrimBlanks(slash == StringView::npos ? inner : inner.substr(0, slash));
    names = first ? String(name) : names + u"," + name;
    first = false;
    from = close + kClose.size();
  }
}

bool ControlNeedsBuild(TyxControl& control) {
  control.CtrlGen = false;
  const String base = BaseFolder(control.CtrlExt);
  if (!control.CtrlIFolder.empty() && !fs::FolderExists(Resolved(base, control.CtrlIFolder))) {
    ReportMissing(control.CtrlIFolder);
  }
  TyxCache* cache = RunCache();
  const String temp_file = TempFilePath(control);
  const Variant cached =
      cache ? cache->GetCacheDate(u"temp", fs::FileNameOf(temp_file)) : Variant::Date(0.0);
  if (cached.type() == VarType::Date || !fs::FileExists(temp_file)) {
    control.CtrlGen = true;
    return true;
  }
  if (control.CtrlIFiles.empty()) return false;
  const String cached_text = ToString(cached);
  for (StringView name : SplitAt(control.CtrlIFiles, u',')) {
    if (NewerThan(base, name, cached_text)) return control.CtrlGen = true;
  }
  TyxSessions& sessions = control.Sessions();
  for (int32_t i = 1; i <= sessions.Count(); ++i) {
    const Ref<TyxSession> session = sessions.Item(i);
    if (session->SessType != u"key" || session->SessIFile.empty()) continue;
    if (NewerThan(BaseFolder(session->SessExt), session->SessIFile, cached_text)) {
      return control.CtrlGen = true;
    }
  }
  return false;
}

void DeleteFilesByExt(StringView folder, StringView ext) {
  if (!fs::FolderExists(folder)) return;
  for (const String& file : fs::ListFiles(folder)) {
    if (EqualsNoCase(fs::ExtensionOf(file), ext)) fs::DeleteFile(file);
  }
}

void DeleteFolderIfExists(StringView folder) {
  std::error_code ignored;
  if (folder.empty()) return;
  std::filesystem::remove_all(fs::ToNative(folder), ignored);
}

String DataFolderPath(StringView path) {
  if (path.empty()) return String();
  const String normal = fs::NormalizeSeparators(path);
  if (normal.view().front() == u'/') return normal;
  if (normal.view().starts_with(u"~/")) {
    return fs::JoinPath(fs::FromNative(HomeFolder()), normal.view().substr(2));
  }
  return fs::JoinPath(fs::FromNative(DataFolder()), normal);
}

String DefaultLangFile(const Tyx& tyx) {
  const String language = tyx.Language.empty() ? String(u"English") : tyx.Language;
  return fs::JoinPath(fs::JoinPath(fs::FromNative(DataFolder()), u"languages"), language + u".xml");
}

}  // namespace qv
