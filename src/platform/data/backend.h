// The seam between Connection and a concrete data source. A backend is created open by
// OpenBackend (connection.cpp) and answers properties, schema rowsets and statements; every
// failure is a ProviderError carrying the diagnostic records.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "automation/string.h"
#include "automation/variant.h"
#include "platform/data/rowset.h"

namespace qv::data {

// The rows of one statement, fetched one at a time, so that a forward-only reader of a huge
// result holds a single row. A cursor keeps what it needs of its connection alive by itself:
// it stays safe to use (and to destroy) after the connection has been closed.
class Cursor {
 public:
  virtual ~Cursor() = default;
  const std::vector<ColumnInfo>& Columns() const noexcept { return columns_; }
  // Fills `row` (resized to the columns) with the next row; false after the last one.
  virtual bool Fetch(std::vector<Variant>& row) = 0;

 protected:
  std::vector<ColumnInfo> columns_;
};

// What running a statement gives: its rows when it returns any, else the count of the rows it
// changed (-1 when the backend cannot tell).
struct StatementResult {
  std::unique_ptr<Cursor> rows;
  int64_t rows_affected = -1;
};

// A parameter of a procedure call. Input parameters carry `value` in; output, input-output and
// return-value parameters get what the statement leaves in them back in `value`, as text of
// at most `size` characters (0 for the default) that the caller converts to its type.
struct CallParameter {
  enum Direction : uint8_t { kInput = 1, kOutput = 2, kInputOutput = 3, kReturnValue = 4 };
  Variant value;
  Direction direction = kInput;
  int32_t size = 0;
  bool Receives() const { return direction != kInput; }
};

// A cursor over rows already in memory.
class RowsetCursor final : public Cursor {
 public:
  explicit RowsetCursor(Rowset rowset);
  bool Fetch(std::vector<Variant>& row) override;

 private:
  std::vector<std::vector<Variant>> rows_;
  size_t next_ = 0;
};

class Backend {
 public:
  virtual ~Backend() = default;

  // A provider property such as "DBMS Name", "DBMS Version", "Provider Name",
  // "Provider Version"; nothing when this backend does not know it.
  virtual std::optional<Variant> Property(StringView name) = 0;
  // Names of the properties Property answers, for listing.
  virtual std::vector<String> PropertyNames() = 0;
  // One of the four schema rowsets. The restrictions may be used to narrow the work;
  // Connection filters the result by them again, so a backend may ignore them.
  virtual Rowset OpenSchema(int32_t schema_id, const std::vector<Variant>& restrictions) = 0;
  // Runs a statement and returns its columns and all its rows.
  virtual Rowset Execute(StringView sql) = 0;
  // The characters that quote a name in this backend's SQL, for opening a table by name.
  virtual std::pair<String, String> NameQuotes() const { return {u"\"", u"\""}; }

  // Runs a statement whose `?` placeholders take `params` in order, each bound by the type of
  // its Variant (Null, Boolean, the numbers, Currency, Date, String, Byte arrays), never pasted
  // into the text. The default serves read-only backends: no parameters, rows from Execute.
  virtual StatementResult Run(StringView sql, std::span<const Variant> params);
  // Runs a call whose placeholders take `params` in order and fills the values of those that
  // receive one. The default serves backends without procedures: inputs only, through Run.
  virtual StatementResult Call(StringView sql, std::span<CallParameter> params);
  // How many placeholders a statement has, when the backend can tell.
  virtual std::optional<int32_t> ParameterCount(StringView sql);
  // The key the last INSERT generated on this connection; Empty when there is none to tell.
  virtual Variant LastInsertKey() { return Variant(); }
  // Seconds a statement may run (0 for no limit), where the backend can stop one.
  virtual void SetCommandTimeout(int32_t) noexcept {}
  // One transaction at a time; the defaults raise kErrNotSupported.
  virtual void BeginTransaction();
  virtual void CommitTransaction();
  virtual void RollbackTransaction();
  // True when the next user could take this open connection over as if freshly opened: no
  // statement or transaction left open, and the data source still the one it opened. Only such
  // connections go back to a ConnectionPool.
  virtual bool Reusable() { return false; }
};

}  // namespace qv::data
