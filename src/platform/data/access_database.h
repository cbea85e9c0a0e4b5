// Access files through mdbtools, shaped like DAO: DBEngine.OpenDatabase gives a Database with
// its Version, TableDefs (attributes, Fields, Indexes) and QueryDefs (type, SQL text rebuilt
// from the stored query definition, output Fields), plus the list ADOX shows as Views (the
// stored select queries without parameters). Everything is read when the file is opened;
// the objects are plain values afterwards.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <vector>

#include "automation/string.h"
#include "automation/variant.h"
#include "platform/data/rowset.h"

namespace qv::data {

struct DaoField {
  String name;
  int32_t type = 0;        // DaoType
  int32_t size = 0;        // characters for text, bytes for numbers, 0 for memo and OLE
  int32_t attributes = 0;  // dbFixedField / dbVariableField / dbAutoIncrField / dbUpdatableField
  Variant default_value;   // the DefaultValue text, Empty when none
  bool allow_zero_length = false;
  bool required = false;
  // Column properties as stored ("Caption", "Description", "Format", ...), all as text.
  std::map<String, String> properties;

  // Properties(name): the stored text; raises kErrItemNotFound (3265, "Property not found")
  // when the column lacks it, as DAO does for a missing "Caption".
  Variant Properties(StringView name) const;
};

struct DaoIndexField {
  String name;
  bool descending = false;
};

struct DaoIndex {
  String name;
  bool primary = false;
  bool unique = false;
  bool required = false;
  bool ignore_nulls = false;
  std::vector<DaoIndexField> fields;
};

struct DaoTableDef {
  String name;
  int32_t attributes = 0;  // dbSystemObject, dbHiddenObject bits
  std::vector<DaoField> fields;
  // Relationship indexes (those behind foreign keys) are not listed: the file does not name
  // their columns in a form this reader can follow.
  std::vector<DaoIndex> indexes;
};

struct DaoParameter {
  String name;
  int32_t type = 0;  // DaoType
};

struct DaoQueryDef {
  String name;
  int32_t type = 0;  // DaoQueryType
  String sql;        // rebuilt in Access's own layout, lines ended by CR LF, closed by ";"
  // Output columns. An expression without an alias is named as Access names it (Expr1000,
  // Expr1001, ...); an expression that names no column reads as dbText.
  std::vector<DaoField> fields;
  std::vector<DaoParameter> parameters;
  bool hidden = false;
  std::map<String, String> aliases;  // name used in the query -> table or query it stands for
};

class AccessDatabase {
 public:
  // DBEngine.OpenDatabase(name[, exclusive, read_only, connect]). The connect text may carry
  // "PWD=...": mdbtools reads files without checking the database password, so it is
  // accepted and ignored. Raises qv::Error (3024 "Could not find file", 3343 "Unrecognized
  // database format") with the file named in the words.
  static std::unique_ptr<AccessDatabase> Open(StringView path, bool exclusive = false,
                                              bool read_only = false, StringView connect = {});
  ~AccessDatabase();
  AccessDatabase(const AccessDatabase&) = delete;
  AccessDatabase& operator=(const AccessDatabase&) = delete;

  // DBEngine.Version: the DAO revision whose interface this offers.
  static String EngineVersion() { return u"3.6"; }
  // Database.Version: "3.0" Jet 3, "4.0" Jet 4, "12.0" and later for ACE files.
  const String& Version() const noexcept { return version_; }
  const String& Name() const noexcept { return path_; }

  const std::vector<DaoTableDef>& TableDefs() const noexcept { return tables_; }
  const std::vector<DaoQueryDef>& QueryDefs() const noexcept { return queries_; }
  // ADOX Catalog.Views: the names of stored select queries that take no parameters.
  std::vector<String> Views() const;

  const DaoTableDef* FindTable(StringView name) const;
  const DaoQueryDef* FindQuery(StringView name) const;

  // All rows of a table, typed as ADO sees them (ADO types in the columns, values as
  // Variants). Raises kErrNoSuchTable for an unknown name.
  Rowset ReadTable(StringView name) const;
  // A SELECT on one table in mdbtools' SQL dialect (column list, WHERE with AND/OR/NOT,
  // comparisons and LIKE, LIMIT), for custom views on Access files. Joins and expressions are
  // beyond that dialect: such a statement raises kErrSyntax with the parser's words.
  Rowset Query(StringView sql) const;

 private:
  struct Handle;
  AccessDatabase() = default;
  void Load();
  void ResolveQueryFields();

  std::unique_ptr<Handle> handle_;
  String path_;
  String version_;
  std::vector<DaoTableDef> tables_;
  std::vector<DaoQueryDef> queries_;
};

// The ADO type the Jet provider gives a DAO type (dbText adVarWChar, dbLong adInteger, ...).
int32_t AdoTypeOfDaoType(int32_t dao_type);

}  // namespace qv::data
