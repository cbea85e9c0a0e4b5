// Control execution: the last stage of a generation run and the body of the dry run. It writes
// the database copy, the table and field pages, the stylesheet, the other pages and the copy
// actions, in that order, from the translated scripts in TempFolder.
#pragma once

#include <cstdint>

#include "model/tyx.h"

namespace qv {

// Runs every control of RunControlList() over the project of `tyx`. With `check_only` nothing
// is written and the result counts the output items that exist already (a check stops at its
// first table with a hit); a real run gives 0. A failure leaves its words in ProjErr and ends
// the loop; a cancel raises.
int16_t RunControls(Tyx& tyx, bool check_only);

}  // namespace qv
