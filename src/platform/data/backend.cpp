// What every backend shares: the in-memory cursor, and the defaults of the statement and
// transaction operations for backends that only read.
#include "platform/data/backend.h"

#include "platform/data/data_types.h"
#include "platform/data/provider_error.h"

namespace qv::data {
namespace {

[[noreturn]] void NotSupported(StringView what) {
  throw ProviderError(kErrNotSupported, String(what) + u" is not supported by this provider.",
                      u"Quorvex data access");
}

}  // namespace

RowsetCursor::RowsetCursor(Rowset rowset) : rows_(std::move(rowset.rows)) {
  columns_ = std::move(rowset.columns);
}

bool RowsetCursor::Fetch(std::vector<Variant>& row) {
  if (next_ >= rows_.size()) return false;
  row = std::move(rows_[next_++]);
  return true;
}

StatementResult Backend::Run(StringView sql, std::span<const Variant> params) {
  if (!params.empty()) NotSupported(u"A statement with parameters");
  StatementResult result;
  Rowset rowset = Execute(sql);
  if (!rowset.columns.empty()) result.rows = std::make_unique<RowsetCursor>(std::move(rowset));
  return result;
}

StatementResult Backend::Call(StringView sql, std::span<CallParameter> params) {
  std::vector<Variant> values;
  for (const CallParameter& p : params) {
    if (p.Receives()) NotSupported(u"An output parameter");
    values.push_back(p.value);
  }
  return Run(sql, values);
}

std::optional<int32_t> Backend::ParameterCount(StringView) {
  return std::nullopt;
}

void Backend::BeginTransaction() {
  NotSupported(u"A transaction");
}
void Backend::CommitTransaction() {
  NotSupported(u"A transaction");
}
void Backend::RollbackTransaction() {
  NotSupported(u"A transaction");
}

}  // namespace qv::data
