// What the generated application needs besides its pages: a copy of a file-based database
// (Access, a SQL Server Express ".mdf" with its log, an SQLite file), the stylesheet, and the
// files and folders that "copy" controls bring along from the template and its extensions.
// In check mode each says whether its target exists instead of writing.
#pragma once

#include <cstdint>

#include "automation/string.h"

namespace qv {

class Tyx;

// Copies the database file below the application root (the database's DBPath) and creates
// the upload and audit folders. In check mode 1 when the copy exists already.
int16_t CopyDatabase(Tyx& tyx, bool check_only);

// Writes <ProjName>.css from the stylesheet template named by the setting CssFile and the
// project's CssStyles, and copies the project's own stylesheet (CSS) beside it.
int16_t CopyCss(Tyx& tyx, bool check_only);

// Runs the controls of type "copy" in list order. In check mode the number of targets that
// exist.
int16_t RunCopyActions(Tyx& tyx, bool check_only);

// The file that the setting CssFile names; a relative path is taken from the data folder.
String StylesheetTemplatePath();

}  // namespace qv
