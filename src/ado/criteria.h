// The criteria of Recordset.Filter and Recordset.Find: "Name = 'Smith' AND (Age > 30 OR Age
// IS NULL)", "City LIKE 'Lon*'", "Born >= #1/1/1990#"; and the key list of Recordset.Sort,
// "Name ASC, Age DESC". Text compares without regard to case, as ADO's client cursor does.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "automation/string.h"
#include "automation/variant.h"

namespace qv::ado {

// The position of a column by name, or nothing when the recordset has no such column.
using ColumnLookup = std::function<std::optional<size_t>(StringView)>;

class Criteria {
 public:
  // Raises 3001 for text that is no criteria, 3265 for an unknown column.
  static Criteria Parse(StringView text, const ColumnLookup& lookup,
                        std::span<const int32_t> column_types);
  bool Matches(std::span<const Variant> values) const;

  struct Node;

 private:
  std::shared_ptr<const Node> root_;
};

struct SortKey {
  size_t column;
  bool descending;
};

// Raises 3001 for a bad list and 3265 for an unknown column.
std::vector<SortKey> ParseSort(StringView text, const ColumnLookup& lookup);

// Orders two values for Sort: Null first, then by VBScript's comparison, text without regard to
// case. Negative, zero or positive.
int CompareForSort(const Variant& a, const Variant& b);

}  // namespace qv::ado
