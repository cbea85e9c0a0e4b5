// ADO over an Access file: what a Jet or ACE provider string opens. The catalogue comes from
// the DAO-shaped AccessDatabase (tables, stored select queries as views, columns, keys from
// the "PrimaryKey" index, indexes); statements are the probing and reading forms
// "SELECT * FROM [name]" (a WHERE clause of 0=1 or 1=0 returns no rows) and, for anything
// else, mdbtools' own SQL engine.
#pragma once

#include <memory>

#include "automation/string.h"
#include "platform/data/backend.h"

namespace qv::data {

std::unique_ptr<Backend> OpenAccessBackend(StringView path);

}  // namespace qv::data
