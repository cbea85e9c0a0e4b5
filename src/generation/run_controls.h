// Control execution: the order in which a run produces its output. A counting pass over the
// tables, the database copy, each table's pages and its fields' pages, the stylesheet, the
// other and simple pages, the copy actions. The same walk in check mode tells whether any of
// that output exists already.
#pragma once

#include <cstdint>

#include "automation/string.h"
#include "model/tyx.h"

namespace qv {

// Runs every control of RunControlList() over the project of `tyx`. With `check_only` nothing
// is written and the result counts the output items that exist already (a check stops at its
// first table with a hit); a real run gives 0. A failure leaves its words in ProjErr and ends
// the loop; a cancel raises.
int16_t RunControls(Tyx& tyx, bool check_only);

// Whether the control makes a page for the table: the table is switched on (or names the
// control among its TblSysGenUnits), the control's type fits the table's, and its condition
// passes.
bool ControlAppliesToTable(Tyx& tyx, TyxTable& table, StringView ctrl_id, StringView ctrl_type,
                           StringView ctrl_cond);

// The pages of no table whose control type is in the comma-separated `type_list`.
int16_t RunOtherPages(Tyx& tyx, bool check_only, StringView type_list, bool overwrite);

// Clears the overwrite choice of the last run (or sets the host's standing answer) and sets
// the database-kind flags that the system code reads.
void ResetRunState(Tyx& tyx);

}  // namespace qv
