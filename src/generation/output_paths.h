// Where generated output goes: the file name of a page from the naming rule of the project,
// and the path below the destination or the application root ("~/"). Every file the run writes
// or copies gets its path here, so this is also where a name that would climb out of those two
// folders ("..", an absolute part) is stopped.
#pragma once

#include "automation/string.h"

namespace qv {

class Tyx;

// baseName (the table's TblVar, "" for pages of no table), fieldVar (a FldVar: its "x_" prefix
// falls away), the control's page name and extension, joined by the project's OutputNameType
// ("prefix", "infix", "suffix") around its OutputNameExt, lower-cased with OutputNameLCase.
String MakeOutputName(const Tyx& tyx, StringView base_name, StringView field_var,
                      StringView page_name, StringView ext);

// The default extension for the mark "*", anything else as it is.
String ResolveExt(StringView ext);

// The path trimmed of blanks with a "/" behind it unless it already ends in "/" or "\".
// "" stays "".
String WithTrailingSlash(StringView path);

// The root that "~/" stands for: AppRootFolder, or the destination when that is empty, so
// that nothing lands in the working folder by accident.
String AppRootOf(const Tyx& tyx);

// folderSpec below the destination, or below the application root when it starts with "~/"
// (or "~\"), then the file name. The folder is created at once unless check_only. A result that
// would lie outside its root sets ProjErr and gives "": callers stop there.
String ResolveOutputPath(const Tyx& tyx, StringView folder_spec, StringView file_name,
                         bool check_only);

// Creates the folder and the folders above it; failures are ignored, as the writers find out
// soon enough when the file can't be created.
void CreateFolders(StringView path);

// True when `path` lies inside `root` once both are made absolute and their "." and ".."
// parts are resolved (lexically: links are not followed).
bool PathIsInside(StringView root, StringView path);

}  // namespace qv
