// Merging an extension's control file into the run's control list: its controls are added,
// change the sessions of a control of the same CtrlID, or delete one.
#pragma once

#include "templates/control.h"

namespace qv {

// Merges ExtensionsFolder/<name>/control.xml into RunControlList(). An extension without a
// control file changes nothing; one whose file doesn't load is told to the user and skipped.
void MergeExtension(StringView name);

// Adds, changes or deletes sessions of `target` as the sessions of `source` ask (SessAction),
// marking each of them with the source's CtrlExt.
void MergeSessions(TyxControl& target, TyxControl& source);

}  // namespace qv
