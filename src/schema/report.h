// Reports: a second definition of a loaded table or view, whose fields are copies of the
// source's, switched off for the add, view, edit and search pages that a report doesn't have.
#pragma once

#include "automation/string.h"
#include "model/tyx.h"

namespace qv {

// True when the report was made; otherwise ProjErr tells why.
bool LoadReport(Tyx& tyx, StringView table_name, StringView from_table_name);

}  // namespace qv
