// Overwrite decisions, backups and the writing of pages.
#include "generation/file_writer.h"

#include "automation/convert.h"
#include "automation/error.h"
#include "generation/output_paths.h"
#include "generation/page_text.h"
#include "generation/preparation.h"
#include "generation/run_state.h"
#include "model/tyx.h"
#include "platform/atomic_file.h"
#include "platform/fs.h"
#include "platform/prompter.h"
#include "platform/text_file.h"
#include "script/script_host.h"
#include "support/common.h"
#include "support/status.h"
#include "support/tyx_vars.h"
#include "templates/control.h"

namespace qv {

namespace {

enum class PageKind { kTable, kField, kOther };

// The overwrite question. Its answer sets OverwriteThis and, with "All" or Cancel, the
// standing choice of the run.
void AskOverwrite(StringView path, bool is_folder) {
  TyxVars& vars = Vars();
  vars.PromptFile = is_folder ? String() : String(path);
  vars.PromptFolder = is_folder ? Variant(String(path)) : Variant(String());
  const String text = (is_folder ? u"Folder " : u"File ") + ShortPath(path) + u" already exists!";
  SharedStatus().SuspendLine();
  const OverwriteAnswer answer = CurrentPrompter().AskOverwrite(vars.ProductTitle, text);
  switch (answer.choice) {
    case OverwriteAnswer::kOverwrite:
      vars.OverwriteThis = true;
      if (answer.all) vars.OverwriteChoice = u"O";
      break;
    case OverwriteAnswer::kSkip:
      vars.OverwriteThis = false;
      if (answer.all) vars.OverwriteChoice = u"S";
      break;
    case OverwriteAnswer::kCancel:
      vars.OverwriteChoice = u"C";
      break;
  }
}

void BackUp(StringView path, bool is_folder) {
  const String backup = String(path) + u".bak";
  if (!is_folder) {
    fs::CopyFileAtomically(path, backup);
  } else {
    if (fs::FolderExists(backup)) fs::DeleteFolder(backup);
    fs::CopyFolderAtomically(path, backup);
  }
  ++Vars().FilesBackedUp;
}

bool PrepareOverwrite(Tyx& tyx, StringView path, bool overwrite, bool prompt, bool check_only,
                      bool is_folder) {
  const bool exists = is_folder ? fs::FolderExists(path) : fs::FileExists(path);
  if (check_only) return exists;
  TyxVars& vars = Vars();
  vars.OverwriteThis = false;
  if (!exists) return true;
  try {
    if (vars.OverwriteChoice == u"O") {
      vars.OverwriteThis = overwrite;
    } else if (vars.OverwriteChoice == u"S") {
      ++vars.FilesSkipped;
      return false;
    } else if (!prompt) {
      vars.OverwriteThis = overwrite;
    } else if (overwrite) {
      AskOverwrite(path, is_folder);
    }
    if (vars.OverwriteChoice == u"C") RaiseCancelled();
    if (!vars.OverwriteThis) {
      ++vars.FilesSkipped;
      return false;
    }
    if (tyx.BackupFile) BackUp(path, is_folder);
    return true;
  } catch (const Error& e) {
    if (e.number() == kErrCancelled) throw;
    SharedStatus().SuspendLine();
    CurrentPrompter().ShowMessage(
        vars.ProductTitle,
        u"Error in open \"" + String(path) + u"\", description:" + e.description(),
        PromptIcon::kExclamation);
    ++vars.FilesSkipped;
    return false;
  }
}

// Runs the stored function through the script host of the run. Without one there is nothing
// that could make the page.
String BuildPage(StringView temp_file, int16_t init_type) {
  TyxVars& vars = Vars();
  TyScript* script = CurrentScript();
  if (!script) {
    vars.ProjErr = vars.ProductTitle + u": Script engine not started! Generation aborted!";
    return String();
  }
  return script->BuildNewCode(script->StoredCode(temp_file), init_type, vars.ScriptEngineTimeout);
}

void WritePageFile(StringView path, const String& page) {
  const String folder = fs::ParentFolderOf(path);
  if (!folder.empty()) CreateFolders(folder);
  try {
    fs::WriteFileAtomically(path, EncodeText(page, LineEnds::kCrLf));
  } catch (const Error& e) {
    Vars().ProjErr = Vars().ProductTitle + u": Writing file \"" + String(path) + u"\" failed! " +
                     e.description();
    RaiseGenError();
  }
  ++Vars().FilesWritten;
}

void WritePage(Tyx& tyx, PageKind kind, TyxTable* table, TyxField* field, StringView temp_file,
               StringView path, bool overwrite, TyxControl& control) {
  TyxVars& vars = Vars();
  if (PrepareOverwriteFile(tyx, path, overwrite, tyx.PromptOnOverwrite(), false)) {
    if (!fs::FileExists(temp_file)) {
      vars.ProjErr = u"File " + String(temp_file) +
                     (kind == PageKind::kField ? u" not found. Generation aborted"
                                               : u" not found. Generation aborted.");
      RaiseGenError();
    }
    // The system code reads the table and field of the moment from the lists.
    if (kind == PageKind::kTable) {
      FirstDatabase(tyx)->Tables().Item(Variant(table->TblName()));
    } else if (kind == PageKind::kField) {
      TyxTables& tables = FirstDatabase(tyx)->Tables();
      if (Ref<TyxTable> current = tables.Item(Variant(tables.curName())))
        current->Fields().Item(Variant(field->FldName()));
    }
    String page = BuildPage(temp_file, kind == PageKind::kOther ? 1 : 2);
    page = control.CtrlSpace ? StripBlankLines(page) : TrimLeadingLines(page);
    WritePageFile(path, page);
  }
  if (kind == PageKind::kTable) {
    ++vars.PagesDone;
    SharedStatus().SetStatus(Variant(PercentOf(vars.PagesDone, vars.PagesTotal)));
  }
}

}  // namespace

bool PrepareOverwriteFile(Tyx& tyx, StringView path, bool overwrite, bool prompt, bool check_only) {
  return PrepareOverwrite(tyx, path, overwrite, prompt, check_only, false);
}

bool PrepareOverwriteFolder(Tyx& tyx, StringView path, bool overwrite, bool prompt,
                            bool check_only) {
  return PrepareOverwrite(tyx, path, overwrite, prompt, check_only, true);
}

void WriteTablePage(Tyx& tyx, TyxTable& table, StringView temp_file, StringView path,
                    TyxControl& control) {
  WritePage(tyx, PageKind::kTable, &table, nullptr, temp_file, path,
            control.CtrlOverwrite && table.TblOverwrite(), control);
}

void WriteFieldPage(Tyx& tyx, TyxField& field, StringView temp_file, StringView path,
                    TyxControl& control) {
  const bool table_overwrite = tyx.CurTable ? tyx.CurTable->TblOverwrite() : false;
  WritePage(tyx, PageKind::kField, nullptr, &field, temp_file, path,
            control.CtrlOverwrite && table_overwrite, control);
}

void WriteOtherPage(Tyx& tyx, StringView temp_file, StringView path, bool overwrite,
                    TyxControl& control) {
  WritePage(tyx, PageKind::kOther, nullptr, nullptr, temp_file, path,
            control.CtrlOverwrite && overwrite, control);
}

}  // namespace qv
