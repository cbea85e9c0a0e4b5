// The seam between Connection and a concrete data source. A backend is created open by
// OpenBackend (connection.cpp) and answers properties, schema rowsets and statements; every
// failure is a ProviderError carrying the diagnostic records.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "automation/string.h"
#include "automation/variant.h"
#include "platform/data/rowset.h"

namespace qv::data {

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
};

}  // namespace qv::data
