// What the indexes of an Access table say, read once for both DAO readers: the primary key
// (the index named "PrimaryKey") with its columns, and the columns that alone form a unique
// index. The record reader and the project loader each apply it to their own target.
#pragma once

#include <optional>
#include <vector>

#include "automation/string.h"
#include "platform/data/access_database.h"

namespace qv {

struct DaoIndexFacts {
  std::optional<String> key;           // the new TblKey in SortKeyList order; none: left alone
  std::vector<String> key_columns;     // FldIsPrimaryKey
  std::vector<String> unique_columns;  // FldUniqueIdx
};

DaoIndexFacts ReadDaoIndexes(const std::vector<data::DaoIndex>& indexes);

}  // namespace qv
