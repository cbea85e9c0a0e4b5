// What a backend reports when a call fails: one record per diagnostic, as ADO's Errors
// collection lists them. Backends throw ProviderError; Connection copies the records into its
// Errors and raises the qv::Error that scripts and readers see.
#pragma once

#include <cstdint>
#include <exception>
#include <vector>

#include "automation/error.h"
#include "automation/string.h"

namespace qv::data {

struct ErrorRecord {
  int32_t number = 0;        // ADO/OLE DB number, e.g. kErrLoginFailed
  int32_t native_error = 0;  // the server's or library's own code
  String description;
  String source;
  String sql_state;  // five characters where the backend has them
};

class ProviderError : public std::exception {
 public:
  explicit ProviderError(std::vector<ErrorRecord> records) : records_(std::move(records)) {}
  ProviderError(int32_t number, String description, String source, String sql_state = {},
                int32_t native_error = 0);

  const std::vector<ErrorRecord>& records() const noexcept { return records_; }
  const char* what() const noexcept override { return "data provider error"; }
  // The qv::Error of the first record: its number, words and source.
  Error ToError() const;

 private:
  std::vector<ErrorRecord> records_;
};

// ADO's Errors collection: the records of the last failed call on a connection.
class Errors {
 public:
  int32_t Count() const noexcept { return static_cast<int32_t>(records_.size()); }
  // From 0; raises kErrItemNotFound outside the range.
  const ErrorRecord& Item(int32_t index) const;
  void Clear() noexcept { records_.clear(); }
  void Assign(std::vector<ErrorRecord> records) { records_ = std::move(records); }
  auto begin() const { return records_.begin(); }
  auto end() const { return records_.end(); }

 private:
  std::vector<ErrorRecord> records_;
};

// The error ADO raises for a name that a collection does not hold.
Error ItemNotFound(StringView name);

}  // namespace qv::data
