// The file writer of the run: whether an existing file or folder may be replaced (the project's
// settings, the standing choice of the run, or the user through the overwrite question), the
// ".bak" backup before replacing, and the writing of one page from its stored script.
#pragma once

#include "automation/string.h"

namespace qv {

class Tyx;
class TyxControl;
class TyxField;
class TyxTable;

// True when the file at `path` may be written: it doesn't exist, or it exists and may be
// replaced (then it has been backed up to path + ".bak" when BackupFile is set). In check mode
// only whether the file exists. A Cancel answer raises the cancel of the run; a failing
// backup shows a warning and gives false.
bool PrepareOverwriteFile(Tyx& tyx, StringView path, bool overwrite, bool prompt, bool check_only);
// The same for a folder; its backup replaces an older path + ".bak" folder as a whole.
bool PrepareOverwriteFolder(Tyx& tyx, StringView path, bool overwrite, bool prompt,
                            bool check_only);

// One page each: run the control's stored script (tempFile) for the table, the field or no
// table at all, clean the text, and write it to `path` in one piece. A script error leaves its
// words in ProjErr (the page is written as the script left it); a missing stored script or a
// file that can't be written is a hard failure of the run.
void WriteTablePage(Tyx& tyx, TyxTable& table, StringView temp_file, StringView path,
                    TyxControl& control);
void WriteFieldPage(Tyx& tyx, TyxField& field, StringView temp_file, StringView path,
                    TyxControl& control);
void WriteOtherPage(Tyx& tyx, StringView temp_file, StringView path, bool overwrite,
                    TyxControl& control);

}  // namespace qv
