// The load-time comparison.
#include "sync/load_check.h"

#include "platform/prompter.h"
#include "support/status.h"
#include "support/tyx_vars.h"
#include "sync/custom_sync.h"
#include "sync/difference_check.h"
#include "sync/live_schema.h"
#include "sync/sync_dialogs.h"
#include "sync/table_sync.h"

namespace qv {

void CheckOnLoad(Tyx& tyx) {
  TyxVars& vars = Vars();
  TyxSchema schema;
  if (!ReadLiveSchema(tyx, schema, vars.ProductTitle + u" - Database Synchronization Check...")) {
    SharedStatus().SuspendLine();
    CurrentPrompter().ShowMessage(vars.ProductTitle,
                                  u"Unable to load database information! Reason: " + vars.ProjErr +
                                      u". Please check if correct database is in use.",
                                  PromptIcon::kExclamation);
    return;
  }
  const int32_t differences = CheckTables(tyx, schema, nullptr) + CheckCustomViews(tyx, nullptr) +
                              CheckReports(tyx, nullptr);
  const bool keep = differences > 0 ? AskKeepDefinition(kSyncDefaultMessage) : true;
  if (keep) return;
  MapRenames(tyx, schema);
  SyncTables(tyx, schema);
  SyncCustomViews(tyx);
  SyncReports(tyx);
}

}  // namespace qv
