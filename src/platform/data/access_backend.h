// ADO over an Access file: what a Jet or ACE provider string opens. The catalogue comes from
// the DAO-shaped AccessDatabase (tables, stored select queries as views, columns, keys from
// the "PrimaryKey" index, indexes); statements are the probing and reading forms
// "SELECT * FROM [name]" (a WHERE clause of 0=1 or 1=0 returns no rows) over a table or a
// stored query (whose rows are not read here: only its columns), and
// nothing else: other statements are refused with words that say so.
#pragma once

#include <memory>

#include "automation/string.h"
#include "platform/data/backend.h"

namespace qv::data {

std::unique_ptr<Backend> OpenAccessBackend(StringView path);

}  // namespace qv::data
