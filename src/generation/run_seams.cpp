// The driver's side of the page runs.
#include "generation/run_seams.h"

#include "platform/fs.h"
#include "support/tyx_vars.h"
#include "templates/control.h"

namespace qv {

bool ControlConditionHolds(Tyx&, StringView) {
  // A condition that can't be evaluated counts as true; the condition language is not part of
  // this build yet.
  return true;
}

String StoredScriptPath(const TyxControl& control) {
  return fs::JoinPath(Vars().TempFolder, control.CtrlID + control.CtrlTagExt + u".tmp");
}

}  // namespace qv
