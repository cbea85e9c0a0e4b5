// CustomSqlParser: for the SELECT text of a custom view and the kind of its DBMS, tells per
// result column the expression or name as written, the table it comes from (table aliases
// resolved), the column, and whether an alias names it. Computed columns have no table.
//
//   CustomSqlParser p;
//   if (p.Parse(u"SELECT c.name AS who FROM customers c", 5)) {
//     String name, table, field; bool alias = false;
//     p.FieldOrigin(u"who", name, table, field, alias);  // "c.name", "customers", "name", true
//   }
#pragma once

#include <vector>

#include "automation/string.h"
#include "schema/sql_select.h"

namespace qv {

class CustomSqlParser {
 public:
  // True when the text could be analysed. `kind` is DatabaseKind's number, which sets the
  // quoting: [..] for 1 and 2, `..` for 3, "..." for the others.
  bool Parse(StringView sql, int kind);

  // The origin of the result column `column` (any case). A column the text doesn't explain
  // gets empty texts and no alias.
  void FieldOrigin(StringView column, String& source_name, String& source_table,
                   String& source_field, bool& alias) const;

 private:
  struct Column {
    String output;  // the name a provider gives the column
    String source_name;
    String table;
    String field;
    bool alias = false;
    bool star = false;  // "*" or "t.*": stands for the columns of `table`
  };

  void ReadItem(const SqlSelect& select, StringView sql, size_t begin, size_t end);
  static bool ReadAlias(const std::vector<SqlToken>& tokens, size_t begin, size_t& end,
                        String& alias);

  std::vector<Column> columns_;
};

}  // namespace qv
