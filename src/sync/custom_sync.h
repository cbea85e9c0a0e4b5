// Custom views and reports after a schema change: a custom view is re-derived by running its
// statement again, a report from its source table. A failure stays with the item, in
// TblCustomError, and doesn't stop the others.
#pragma once

#include "automation/string.h"
#include "model/properties.h"
#include "model/tyx.h"

namespace qv {

void SyncCustomViews(Tyx& tyx);
void SyncCustom(Tyx& tyx, StringView table_name);
void SyncReports(Tyx& tyx);
void SyncReport(Tyx& tyx, StringView table_name);

// Copies to `target` the value of each property of `source` whose Sync flag is set, by name;
// a name that `target` lacks is passed over.
void SyncProperties(const TyProperties& source, TyProperties& target);

}  // namespace qv
