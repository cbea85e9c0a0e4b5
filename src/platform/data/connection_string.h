// Connection strings: "key=value;..." parsing, the provider a string names, and the short
// forms of the command line (sqlite:path, odbc:DSN, access:path.mdb).
#pragma once

#include <optional>
#include <utility>
#include <vector>

#include "automation/string.h"

namespace qv::data {

// The backend a connection string leads to.
enum class ProviderKind {
  Odbc,       // DSN=..., Driver=..., or Provider=MSDASQL
  Sqlite,     // Provider=SQLite
  Jet,        // Provider=Microsoft.Jet.OLEDB.* or Microsoft.ACE.OLEDB.*: an Access file
  SqlServer,  // Provider=SQLOLEDB / SQLNCLI* / MSOLEDBSQL: through an ODBC driver
  Oracle,     // Provider=OraOLEDB.* / MSDAORA: through an ODBC driver
  Scripted,   // Provider=Scripted: a catalogue described in code (tests)
  Unknown,    // any other Provider=
};

class ConnectionString {
 public:
  // Splits "a=1;b={x;y};c='q'" into pairs. Keys keep their spelling; values are unquoted.
  static ConnectionString Parse(StringView text);

  // The value of a key, found without regard to case; the last one wins, as in ODBC.
  std::optional<String> Get(StringView key) const;
  // The first key of the list that is present.
  std::optional<String> GetAny(std::initializer_list<StringView> keys) const;
  bool Has(StringView key) const { return Get(key).has_value(); }
  void Set(StringView key, StringView value);
  void Remove(StringView key);
  const std::vector<std::pair<String, String>>& Pairs() const noexcept { return pairs_; }

  ProviderKind Kind() const;
  // The Provider= value, or empty.
  String Provider() const;
  // Back to text; values holding ';', '{' or blanks at the ends are wrapped in braces.
  String ToText() const;

 private:
  std::vector<std::pair<String, String>> pairs_;
};

// The command line's short forms: "sqlite:path" gives "Provider=SQLite;Data Source=path",
// "odbc:DSN" gives "DSN=DSN", "access:file.mdb" gives the Jet provider string of the file.
// Any other text is returned unchanged, so full connection strings pass straight through.
String ExpandShortUrl(StringView text);

}  // namespace qv::data
