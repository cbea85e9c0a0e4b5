// CreateTyx: how a host gets the root object. It runs the creation steps in their order:
// the settings are registered, the documents folder and the engine version are asked for,
// the constants and key paths are set, a user's first run copies the machine's defaults into
// the user's tree, and LoadDefault fills the settings.
#pragma once

#include "model/tyx.h"

namespace qv {

// A new root with its entry points wired. A failure of LoadDefault raises to the caller.
Ref<Tyx> CreateTyx();

}  // namespace qv
