// The stand-in for the load-time database check (see load_sync_check.h).
#include "persistence/load_sync_check.h"

#include "model/tyx.h"
#include "support/tyx_vars.h"

namespace qv {

void CheckWithoutSchema(Tyx&) {
  TyxVars& vars = Vars();
  vars.StatusTitle = vars.ProductTitle + u" - Database Synchronization Check...";
}

}  // namespace qv
