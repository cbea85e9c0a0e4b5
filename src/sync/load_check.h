// The comparison that Load runs on a reopened project when AutoSync is on: read the live
// schema, count the differences, ask whether to keep the old definition, and synchronise when
// the user chose to update. The facade hands it to the project file reader.
#pragma once

#include "model/tyx.h"

namespace qv {

// Never raises for an unreachable database: the "Unable to load database information!"
// message is shown, the words stay in ProjErr and the project stays as the file had it.
void CheckOnLoad(Tyx& tyx);

}  // namespace qv
