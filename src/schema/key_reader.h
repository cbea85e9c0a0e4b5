// The key and index phase of the ADO readers for one table: the primary key, the columns that
// refuse null and the one-column unique indexes, each from the source that the kind of DBMS
// trusts. Every rowset failure is cleared and only loses what that rowset would have told.
// The readers differ in where the flags land, so the findings go to a sink.
#pragma once

#include <cstdint>
#include <optional>

#include "automation/string.h"
#include "platform/data/connection.h"

namespace qv {

class KeySink {
 public:
  virtual ~KeySink() = default;
  // Each names a column by the source's spelling; a name that matches no kept column marks
  // nothing.
  virtual void MarkPrimaryKey(StringView column) = 0;
  virtual void MarkRequired(StringView column) = 0;
  virtual void MarkUnique(StringView column) = 0;
};

// Reads the keys of `table` (kind as DatabaseKind gives it). Returns the new TblKey in
// SortKeyList order, or nothing when the table's key is to be left as it is (Access with no
// key index found).
std::optional<String> ReadTableKeys(data::Connection& cn, StringView table, int32_t kind,
                                    KeySink& sink);

}  // namespace qv
