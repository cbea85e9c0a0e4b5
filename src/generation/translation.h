// Template translation: the input text of a control (its files, or its sessions cut from them)
// becomes one VBScript function, qvScriptEngine, stored in the control's temp file:
//
//   Function qvScriptEngine()
//   On Error Resume Next
//   Dim qvAr(2)
//   Dim qvOut
//   qvAr(1) = "<table>"
//   qvAr(2) = "</table>"
//   qvOut = qvOut & qvAr(1) & TABLE.TblCaption & qvAr(2)
//   qvScriptEngine = qvOut
//   End Function
//
// The page runs add this function to the script host and call it once per page.
#pragma once

#include "model/tyx.h"
#include "templates/control.h"

namespace qv {

// `folder` + "/" + `name` when such a file or folder exists; else "", and the status window
// closes.
String ResolveSource(StringView folder, StringView name);

// The path of the input text of a control or session. `files` is a "," list of names in the
// template folder (or in extensions/<ext>); one name gives its path, several are joined into
// TempFolder/~tmp.temp. Names that aren't found are passed over.
String MergeInputFiles(StringView files, StringView ext);

// Writes the function of `control` to `tmp_file`. Unreadable input and broken template text end
// the run (RaiseGenError); broken text is then kept in `tmp_file` with the parser's words behind
// it, and ProjErr names the control's main input file.
void TranslateControl(Tyx& tyx, TyxControl& control, StringView tmp_file);

}  // namespace qv
