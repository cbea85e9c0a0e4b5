// The shared objects of a generation run, typed. TyxVars keeps them as plain object slots
// because it sits below the template and script subsystems; the run and the page loops reach
// them through these helpers instead of casting at every use.
//
// What a run leaves for the page loops: Vars() holds the folders (TemplateFolder, TempFolder,
// ExtensionsFolder), LangFile, ScriptEngineTimeout and the page counters; Tyx holds BackupFile,
// CurTable and CurField; the slots below hold the control list, the phrases, the cache and the
// script host (Vars().TheScript, null in GenCheck).
#pragma once

#include <vector>

#include "model/database.h"
#include "model/extension.h"
#include "model/tyx.h"
#include "templates/controls.h"
#include "templates/language.h"

namespace qv {

class TyxCache;

// The control list of the run (Vars().TheControls), created empty when there is none yet.
TyxControls& RunControlList();
// Replaces the control list of the run.
void SetRunControlList(Ref<TyxControls> controls);

// The phrases of the run (Vars().TheLang), created empty when there are none yet.
TyxLanguage& RunLanguage();
void SetRunLanguage(Ref<TyxLanguage> lang);

// The cache of the run (Vars().TheCache), or null outside a run.
TyxCache* RunCache();

// The first database of the project: the one under its database name, else the first in the
// list; null when the project has none.
Ref<TyxDatabase> FirstDatabase(const Tyx& tyx);

// The user's documents folder, below which every template has its working folder: the root's
// PersonalFolder, or the system's when no root has set it.
String DocumentsFolder();

// The project's extensions in Seq order, 1 to Count; a gap in Seq is passed over.
std::vector<Ref<TyxExtension>> ExtensionsInOrder(const Tyx& tyx);

}  // namespace qv
