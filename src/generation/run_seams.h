// The two things the page runs take from the driver's side of the run: the condition of a
// control and the file of its stored script.
#pragma once

#include "automation/string.h"

namespace qv {

class Tyx;
class TyxControl;

// Whether a control's condition passes for the table and field of the moment.
bool ControlConditionHolds(Tyx& tyx, StringView condition);

// Where the translation stored the control's script: TempFolder, CtrlID, CtrlTagExt, ".tmp".
String StoredScriptPath(const TyxControl& control);

}  // namespace qv
