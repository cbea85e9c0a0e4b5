// ADO over an Access file: what a Jet or ACE provider string opens. The catalogue comes from
// the DAO-shaped AccessDatabase (tables, stored select queries as views, columns, keys from
// the "PrimaryKey" index, indexes). "SELECT * FROM [name]" reads a whole table (with a WHERE
// clause of 0=1 or 1=0 only its columns) or a stored query's columns; any other statement
// goes to mdbtools' SQL engine, which runs single-table SELECTs and refuses the rest in words.
#pragma once

#include <memory>

#include "automation/string.h"
#include "platform/data/backend.h"

namespace qv::data {

std::unique_ptr<Backend> OpenAccessBackend(StringView path);

}  // namespace qv::data
