// The embedded backend: a SQLite file through libsqlite3, opened by
// "Provider=SQLite;Data Source=<file>". Tables and views come from the catalogue, columns and
// keys from PRAGMA table_info, indexes from PRAGMA index_list/index_info; an INTEGER PRIMARY
// KEY column (the rowid) and an AUTOINCREMENT column count as auto-increment.
#pragma once

#include <memory>

#include "automation/string.h"
#include "platform/data/backend.h"

namespace qv::data {

// Opens an existing file (never creates one); a missing, unreadable or damaged file raises a
// ProviderError that names the file.
std::unique_ptr<Backend> OpenSqliteBackend(StringView path);

}  // namespace qv::data
