// A backend whose catalogue, properties and failures are described in code. It exists to drive
// the DBMS-specific branches of the schema readers that no server here can reach (an Oracle
// schema choice, the SQL Server switch, a provider that lacks a property or fails a rowset).
// A test registers a source under a name and opens "Provider=Scripted;Data Source=<name>".
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <vector>

#include "automation/string.h"
#include "automation/variant.h"
#include "platform/data/backend.h"
#include "platform/data/provider_error.h"
#include "platform/data/rowset.h"

namespace qv::data {

struct ScriptedColumn {
  String name;
  int32_t type = 202;  // adVarWChar
  int32_t size = 50;
  bool nullable = true;
  // ISAUTOINCREMENT; nothing makes the property missing, as some providers leave it out.
  std::optional<bool> auto_increment = false;
};

struct ScriptedIndex {
  String name;
  bool unique = false;
  // PRIMARY_KEY as reported: True, False, or Null for providers that leave it out.
  Variant primary_key = false;
  std::vector<String> columns;  // a name may repeat, as some providers report it
};

struct ScriptedTable {
  String name;
  String type = u"TABLE";  // "TABLE", "VIEW", "SYSTEM TABLE", "SYNONYM", ...
  String schema;           // empty: reported as Null
  std::vector<ScriptedColumn> columns;
  std::vector<String> key;  // primary key columns, in key order
  std::vector<ScriptedIndex> indexes;
  std::vector<std::vector<Variant>> rows;
  bool probe_fails = false;  // any statement on this table fails
};

struct ScriptedSource {
  std::map<String, Variant> properties;  // "DBMS Name", "DBMS Version", ...
  std::vector<ScriptedTable> tables;
  std::optional<std::vector<ErrorRecord>> open_failure;         // Open fails with these
  std::map<int32_t, std::vector<ErrorRecord>> schema_failures;  // OpenSchema(id) fails
  // An index request whose table restriction is not exactly a table's name fails (as
  // MySQL's provider does for names that need quoting) when this is set.
  bool index_needs_exact_name = false;
  std::map<String, Rowset> statements;  // results of other statements, by exact text
  std::vector<String> executed;         // every statement run, for tests to inspect
};

// Registers (or replaces) a source under a name; sources live until unregistered.
void RegisterScriptedSource(StringView name, std::shared_ptr<ScriptedSource> source);
void UnregisterScriptedSource(StringView name);

// Opens the registered source; an unknown name raises a ProviderError.
std::unique_ptr<Backend> OpenScriptedBackend(StringView name);

}  // namespace qv::data
