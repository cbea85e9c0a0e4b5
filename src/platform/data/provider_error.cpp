// Provider errors and the Errors collection.
#include "platform/data/provider_error.h"

#include "platform/data/data_types.h"

namespace qv::data {

ProviderError::ProviderError(int32_t number, String description, String source, String sql_state,
                             int32_t native_error) {
  ErrorRecord record;
  record.number = number;
  record.native_error = native_error;
  record.description = std::move(description);
  record.source = std::move(source);
  record.sql_state = std::move(sql_state);
  records_.push_back(std::move(record));
}

Error ProviderError::ToError() const {
  if (records_.empty()) return Error(kErrProviderFailure, u"Unspecified error");
  const ErrorRecord& first = records_.front();
  return Error(first.number, first.description, first.source);
}

const ErrorRecord& Errors::Item(int32_t index) const {
  if (index < 0 || index >= Count()) {
    throw Error(kErrItemNotFound,
                u"Item cannot be found in the collection corresponding to the requested name or "
                u"ordinal.",
                u"ADODB.Errors");
  }
  return records_[static_cast<size_t>(index)];
}

Error ItemNotFound(StringView name) {
  return Error(kErrItemNotFound,
               u"Item cannot be found in the collection corresponding to the requested name or "
               u"ordinal. (\"" +
                   String(name) + u"\")",
               u"ADODB.Properties");
}

}  // namespace qv::data
