// Database, stylesheet and template file copying.
#include "generation/copy_actions.h"

#include <filesystem>

#include "automation/convert.h"
#include "automation/error.h"
#include "generation/file_writer.h"
#include "generation/output_paths.h"
#include "generation/preparation.h"
#include "generation/run_state.h"
#include "generation/translation.h"
#include "model/tyx.h"
#include "platform/atomic_file.h"
#include "platform/data/connection_string.h"
#include "platform/fs.h"
#include "platform/prompter.h"
#include "platform/text_file.h"
#include "support/common.h"
#include "support/data_folder.h"
#include "support/status.h"
#include "support/tyx_vars.h"
#include "templates/controls.h"

namespace qv {

namespace {

String Absolute(StringView path) {
  std::error_code ec;
  const auto full = std::filesystem::absolute(fs::ToNative(path), ec).lexically_normal();
  return ec ? String(path) : fs::FromNative(full);
}

bool EndsWithNoCase(StringView text, StringView tail) {
  return text.size() >= tail.size() && EqualsNoCase(text.substr(text.size() - tail.size()), tail);
}

size_t FindNoCase(StringView text, StringView what, size_t from = 0) {
  return ToLower(text).view().find(ToLower(what).view(), from);
}

// Why a folder could not be made when a file stands at its place or at one of its parents'
// (the destination given as a file, most often): " (... is a file)", else "".
String FileInTheWay(StringView path) {
  std::error_code ec;
  for (std::filesystem::path at = std::filesystem::absolute(fs::ToNative(path), ec);
       !ec && at.has_relative_path(); at = at.parent_path()) {
    if (at.filename().empty()) continue;  // the trailing "/" of a folder's path
    const auto status = std::filesystem::status(at, ec);
    if (ec) {
      ec.clear();
      continue;
    }
    if (status.type() == std::filesystem::file_type::directory) return String();
    return u" (" + fs::FromNative(at) + u" is a file)";
  }
  return String();
}

// Creates a folder the generated application expects (uploads, audit trail) below the root,
// unless its name would climb out of the root; gives its path, or "" when none was made.
String CreateAppFolder(StringView app_root, StringView setting) {
  StringView name = TrimBlanks(setting);
  if (name.starts_with(u"~")) name.remove_prefix(1);
  if (name.empty()) return String();
  const String path = String(app_root) + fs::NormalizeSeparators(name);
  if (!PathIsInside(app_root.empty() ? StringView(u".") : app_root, path)) return String();
  // The run stops here, with the folder named: a bare "Path not found" would leave the user
  // guessing which of the application's folders could not be made. The platform's call, not
  // generation's, which keeps quiet about failures (a refused permission among them).
  String failure;
  try {
    fs::CreateFolders(path);
    if (!fs::FolderExists(path)) failure = StandardErrorText(kErrPathNotFound);
  } catch (const Error& e) {
    failure = e.description();
  }
  if (failure.empty()) return path;
  Vars().ProjErr = Vars().ProductTitle + u": Creating folder \"" + Absolute(path) + u"\" failed! " +
                   failure + FileInTheWay(path);
  return String();
}

// The folder the pages store a field's uploads in, from the application's root: the rule of
// the script library's qvUploadDir, which the package's pages follow. It drops empty, "~", "."
// and ".." parts rather than resolving them, and falls back to "upload/" when nothing is left,
// so a setting with no name of its own ("", "~/", "..") still has a folder, and it is that
// folder, not the setting's literal path, that must carry the marker.
String PageUploadFolder(StringView setting) {
  String out;
  size_t from = 0;
  const StringView path = TrimBlanks(setting);
  while (from <= path.size()) {
    size_t end = from;
    while (end < path.size() && path[end] != u'/' && path[end] != u'\\')
      ++end;
    const StringView part = path.substr(from, end - from);
    if (!part.empty() && part != u"~" && part != u"." && part != u"..") {
      out.Append(part);
      out.Append(u"/");
    }
    from = end + 1;
  }
  return out.empty() ? String(u"upload/") : out;
}

// An upload folder, marked as one: a script that lands in it (by whatever way) is never run
// as a page. The root itself is never marked, which would stop every page.
void CreateUploadFolder(StringView app_root, StringView setting) {
  const String path = CreateAppFolder(app_root, PageUploadFolder(setting));
  if (path.empty() ||
      fs::ToNative(path).lexically_normal() ==
          fs::ToNative(app_root.empty() ? StringView(u".") : app_root).lexically_normal())
    return;
  const String marker = fs::JoinPath(path, String::FromUtf8(kUploadFolderMarker));
  if (fs::FileExists(marker)) return;
  try {
    WriteTextFile(marker, u"quorvex serve runs no page in this folder: it holds uploads.\r\n");
  } catch (const Error& e) {
    Vars().ProjErr =
        Vars().ProductTitle + u": Writing file \"" + marker + u"\" failed! " + e.description();
  }
}

// The database file a generated application needs beside it: an Access file, the data file of
// a SQL Server Express database attached by file name, or an embedded SQLite file. "" when the
// data lives in a server.
String DatabaseSource(const TyxDatabase& db) {
  if (db.DBType() == u"ACCESS") return db.DBPhyPath();
  const String connstr = db.DBConnstr();
  if (connstr.empty()) return String();
  const size_t at = FindNoCase(connstr, u"AttachDbFilename");
  if (at != StringView::npos && FindNoCase(connstr, u"\\SQLExpress") != StringView::npos) {
    const size_t eq = connstr.view().find(u'=', at);
    if (eq == StringView::npos) return String();
    const size_t semi = connstr.view().find(u';', at);
    return String(
        connstr.view().substr(eq + 1, semi == StringView::npos ? StringView::npos : semi - eq - 1));
  }
  const data::ConnectionString parsed = data::ConnectionString::Parse(connstr);
  if (parsed.Kind() == data::ProviderKind::Sqlite) {
    if (auto file = parsed.GetAny({u"Data Source", u"DataSource", u"Database"})) return *file;
  }
  return String();
}

enum class CopyDecision { kCopy, kSkip };

// Whether an existing database copy may be replaced. A standing answer of the host (skip all,
// overwrite all) is taken as the answer to this question too.
CopyDecision DecideDatabaseOverwrite(Tyx& tyx, StringView target) {
  const TyxVars& vars = Vars();
  if (!tyx.OtherOverwrite() || vars.OverwriteChoice == u"S") return CopyDecision::kSkip;
  if (!tyx.PromptOnOverwrite() || vars.OverwriteChoice == u"O") return CopyDecision::kCopy;
  SharedStatus().SuspendLine();
  const YesNoCancel answer = CurrentPrompter().AskYesNoCancel(
      vars.ProductTitle, u"Database \"" + Absolute(target) + u"\" already exists! Overwrite?",
      YesNoCancel::kNo);
  if (answer == YesNoCancel::kCancel) RaiseCancelled();
  return answer == YesNoCancel::kYes ? CopyDecision::kCopy : CopyDecision::kSkip;
}

void CopyOneFile(StringView source, StringView target) {
  fs::CopyFileAtomically(source, target);
  ++Vars().FilesCopied;
}

std::vector<String> SplitList(StringView list) {
  std::vector<String> items;
  size_t from = 0;
  for (;;) {
    const size_t comma = list.find(u',', from);
    items.emplace_back(
        list.substr(from, comma == StringView::npos ? StringView::npos : comma - from));
    if (comma == StringView::npos) return items;
    from = comma + 1;
  }
}

}  // namespace

int16_t CopyDatabase(Tyx& tyx, bool check_only) {
  TyxVars& vars = Vars();
  const Ref<TyxDatabase> db = FirstDatabase(tyx);
  if (!db) return 0;
  const String app_root = WithTrailingSlash(AppRootOf(tyx));
  // A dry run leaves the disk alone, these two folders included.
  if (!check_only) {
    // The folder the setting names, as the project asks; then the one the pages store in,
    // which differs when the setting has odd parts or none.
    CreateAppFolder(app_root, tyx.UploadPath());
    if (vars.ProjErr.empty()) CreateUploadFolder(app_root, tyx.UploadPath());
    for (int16_t t = 1; t <= db->Tables().Count() && vars.ProjErr.empty(); ++t) {
      const Ref<TyxTable> table = db->Tables().Seq(t);
      for (int16_t f = 1; table && f <= table->Fields().Count(); ++f) {
        const Ref<TyxField> field = table->Fields().Seq(f);
        if (field && !TrimBlanks(field->FldUploadPath()).empty())
          CreateUploadFolder(app_root, field->FldUploadPath());
      }
    }
    if (vars.ProjErr.empty()) CreateAppFolder(app_root, tyx.AuditTrailPath());
    if (!vars.ProjErr.empty()) return 0;
  }

  StringView db_path = TrimBlanks(db->DBPath());
  String dest_folder = app_root;
  if (db_path.starts_with(u"~")) db_path.remove_prefix(1);
  if (db_path.starts_with(u"/") || db_path.starts_with(u"\\")) db_path.remove_prefix(1);
  if (TrimBlanks(db->DBPath()).empty()) dest_folder = WithTrailingSlash(tyx.Destination());

  const String source = fs::NormalizeSeparators(DatabaseSource(*db));
  if (source.empty()) return 0;
  if (!db_path.empty())
    dest_folder = dest_folder + WithTrailingSlash(fs::NormalizeSeparators(db_path));
  const String target = dest_folder + fs::FileNameOf(source);
  if (!PathIsInside(app_root.empty() ? String(u".") : app_root, target) &&
      !PathIsInside(WithTrailingSlash(tyx.Destination()), target)) {
    vars.ProjErr = vars.ProductTitle + u": Output path \"" + target +
                   u"\" lies outside the folder \"" + app_root + u"\"! Generation aborted!";
    return 0;
  }
  if (!fs::FileExists(source)) return 0;

  bool copy = true;
  if (!fs::FolderExists(dest_folder)) {
    SharedStatus().SuspendLine();
    // Nobody to ask: the folder lies in our own output tree, so making it is what a user who
    // asked for the database copy wants.
    const YesNoCancel answer = CurrentPrompter().AskYesNoCancel(
        vars.ProductTitle,
        u"Folder \"" + Absolute(dest_folder) + u"\" does not exist! Do you want to create it?",
        YesNoCancel::kYes);
    if (answer == YesNoCancel::kCancel) RaiseCancelled();
    if (answer == YesNoCancel::kYes) {
      if (!check_only) CreateFolders(dest_folder);
    } else {
      CurrentPrompter().ShowMessage(
          vars.ProductTitle,
          u"Database Folder \"" + Absolute(dest_folder) +
              u"\" not created! Database will not be copied. Make sure you set up the correct "
              u"database path for the " +
              vars.ScriptLanguageName + u" scripts to work correctly!",
          PromptIcon::kExclamation);
      copy = false;
    }
  }
  if (fs::FolderExists(dest_folder)) {
    if (Absolute(source) == Absolute(target)) {
      copy = false;
    } else if (fs::FileExists(target)) {
      if (check_only) return 1;
      if (copy && DecideDatabaseOverwrite(tyx, target) == CopyDecision::kSkip) {
        ++vars.FilesSkipped;
        copy = false;
      }
    }
  }
  if (!copy || check_only) return 0;
  try {
    CopyOneFile(source, target);
    if (EndsWithNoCase(source, u".mdf")) {
      const auto log_of = [](StringView path) {
        return String(path.substr(0, path.size() - 4)) + u"_log.ldf";
      };
      if (fs::FileExists(log_of(source))) CopyOneFile(log_of(source), log_of(target));
    }
  } catch (const Error& e) {
    vars.ProjErr = u"Copying to file \"" + target + u"\" failed! Error = " + e.description();
  }
  return 0;
}

String StylesheetTemplatePath() {
  const Variant setting = ReadRegValue(u"HKCU", Vars().SettingsKey, u"CssFile");
  const String path = fs::NormalizeSeparators(setting.is_empty() ? String() : ToString(setting));
  if (path.empty() || path.view().starts_with(u"/")) return path;
  return fs::JoinPath(fs::FromNative(DataFolder()), path);
}

int16_t CopyCss(Tyx& tyx, bool check_only) {
  const String project_name = tyx.ProjName() + u".css";
  const String name = tyx.OutputNameLCase() ? ToLower(project_name) : project_name;
  const String path = ResolveOutputPath(tyx, u"", name, check_only);
  if (path.empty()) return 0;
  const bool ok =
      PrepareOverwriteFile(tyx, path, tyx.OtherOverwrite(), tyx.PromptOnOverwrite(), check_only);
  if (!check_only && ok) {
    // Each step stands alone: a missing or broken stylesheet template still leaves the
    // project's own styles in the file.
    String text;
    try {
      const String source = ReadSourceFile(StylesheetTemplatePath());
      text.Append(tyx.Services().Parse(tyx, Variant(source)));
    } catch (const Error&) {
    }
    try {
      text.Append(tyx.CssStyles());
    } catch (const Error&) {
    }
    try {
      const String folder = fs::ParentFolderOf(path);
      if (!folder.empty()) CreateFolders(folder);
      fs::WriteFileAtomically(path, EncodeText(text, LineEnds::kCrLf));
      ++Vars().FilesWritten;
    } catch (const Error& e) {
      Vars().ProjErr =
          Vars().ProductTitle + u": Writing file \"" + path + u"\" failed! " + e.description();
      RaiseGenError();
    }
  }
  const String own = tyx.CSS();
  if (!check_only && !own.empty()) {
    const String path2 = ResolveOutputPath(tyx, u"", fs::FileNameOf(own), check_only);
    if (path2.empty()) return 0;
    if (path2 != fs::NormalizeSeparators(own) &&
        PrepareOverwriteFile(tyx, path2, tyx.OtherOverwrite(), tyx.PromptOnOverwrite(),
                             check_only)) {
      SharedStatus().DispStatus(Variant(String(u"copying css...")));
      try {
        if (fs::FileExists(own)) CopyOneFile(own, path2);
      } catch (const Error&) {
      }
    }
  }
  return check_only && ok ? 1 : 0;
}

int16_t RunCopyActions(Tyx& tyx, bool check_only) {
  TyxVars& vars = Vars();
  TyxControls& controls = RunControlList();
  int16_t count = 0;
  for (int32_t i = 1; i <= controls.Count(); ++i) {
    const Ref<TyxControl> control = controls.Item(i);
    if (!control || control->CtrlType != u"copy") continue;
    const String base = control->CtrlExt.empty()
                            ? vars.TemplateFolder
                            : fs::JoinPath(vars.ExtensionsFolder, control->CtrlExt);
    const bool overwrite = control->CtrlOverwrite && tyx.OtherOverwrite();
    if (!control->CtrlIFiles.empty()) {
      for (const String& name : SplitList(control->CtrlIFiles)) {
        const String source = ResolveSource(base, name);
        if (source.empty()) {
          vars.ProjErr = vars.ProductTitle + u": Source file does not exist - \"" + name +
                         u"\"! Check if correct template.";
          return count;
        }
        const String target = ResolveOutputPath(tyx, control->CtrlOFolder, name, check_only);
        if (target.empty()) return count;
        if (!PrepareOverwriteFile(tyx, target, overwrite, tyx.PromptOnOverwrite(), check_only))
          continue;
        if (check_only) {
          ++count;
          continue;
        }
        SharedStatus().DispStatus(Variant(u"Copying file " + name + u"..."));
        try {
          const String folder = fs::ParentFolderOf(target);
          if (!folder.empty()) CreateFolders(folder);
          CopyOneFile(source, target);
        } catch (const Error&) {
          vars.ProjErr = u"Copying to file \"" + target + u"\" failed!";
          return count;
        }
      }
    } else if (!control->CtrlIFolder.empty()) {
      String source = ResolveSource(base, control->CtrlIFolder);
      if (source.empty()) {
        vars.ProjErr = vars.ProductTitle + u": Source folder does not exist - \"" +
                       control->CtrlIFolder + u"\"! Check if correct template.";
        return count;
      }
      const String& folder_name =
          control->CtrlOFolder.empty() ? control->CtrlIFolder : control->CtrlOFolder;
      // Resolved without making the folder: the copy makes it, and a folder made here would
      // count as an existing one to overwrite.
      String target = ResolveOutputPath(tyx, folder_name, u"", true);
      if (target.empty()) return count;
      // Both end in the "/" that control folders carry.
      source = String(source.view().substr(0, source.size() - 1));
      target = String(target.view().substr(0, target.size() - 1));
      if (!PrepareOverwriteFolder(tyx, target, overwrite, tyx.PromptOnOverwrite(), check_only))
        continue;
      if (check_only) {
        ++count;
        continue;
      }
      const StringView shown = control->CtrlIFolder.view();
      SharedStatus().DispStatus(
          Variant(u"Copying folder " + String(shown.substr(0, shown.size() - 1)) + u"..."));
      try {
        fs::CopyFolderAtomically(source, target);
        ++vars.FilesCopied;
      } catch (const Error&) {
        vars.ProjErr = u"Copying to folder \"" + target + u"\" failed!";
        return count;
      }
    }
  }
  return count;
}

}  // namespace qv
