// Template preparation: the working folders of a template, the checks of source files against
// the cache, and the decision whether a control's translated script can be used again.
//
// A control's script (its "temp file", CtrlID + CtrlTagExt + ".tmp" in TempFolder) is reused
// when the cache knows it and no input file of the control, no session file and no file that
// those include is newer than the cached date.
#pragma once

#include <cstdint>

#include "model/tyx.h"
#include "templates/control.h"

namespace qv {

// Creates what is missing of the product folder, Templates, WorkFolder, ExtensionsFolder, one
// folder per extension of the project, TempFolder and TemplateFolder (WorkFolder + "/" + sub),
// and sets these folders in Vars().
void EnsureFolders(const Tyx& tyx, StringView sub);

// -1 the file is missing; else what the run's cache says of its date and size (0 the same,
// 1 changed, 2 unknown).
int16_t CheckFileCache(const Variant& group, const Variant& key, StringView path);

// The translated script of a control: TempFolder + "/" + CtrlID + CtrlTagExt + ".tmp".
String TempFilePath(const TyxControl& control);

// The file names of the include tags of a template text, joined by ",": of
// "<!--##include x/y##-->" the part before the last "/", trimmed. Duplicates stay.
String ExtractIncludeNames(StringView text);

// Sets and returns CtrlGen: true when the control's script has to be translated. A name the
// control needs that isn't in the template folder ends the run (RaiseGenError) with
// 'Missing "name" in template folder "..."'.
bool ControlNeedsBuild(TyxControl& control);

// Deletes the files of `folder` whose extension (behind the last ".") is `ext`, any case.
void DeleteFilesByExt(StringView folder, StringView ext);

// Deletes the folder with all it holds; a missing folder, or one that can't go, is left alone.
void DeleteFolderIfExists(StringView folder);

// ---- Paths of the settings ----

// A path of the settings: a relative one is taken from the data folder (the shipped defaults
// name "templates/default.zip"), an absolute one as it stands; "" stays "".
String DataFolderPath(StringView path);

// The language file of the setting Language: the data folder's languages/<Language>.xml.
String DefaultLangFile(const Tyx& tyx);

// Ends the run hard: closes the status window and raises -1 with ProjErr as its words.
[[noreturn]] void RaiseGenError();

}  // namespace qv
