// The shape of one SELECT statement as both SQL analysers need it: where its select list and
// its FROM clause stand, the clauses that make it read-only, and the tables and joins of its
// FROM clause with their aliases. Anything it cannot follow makes the whole text unanalysed.
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "automation/string.h"
#include "schema/sql_lexer.h"

namespace qv {

struct SqlTableRef {
  String name;   // the table's own name, unquoted; empty for a subquery
  String alias;  // the name the statement uses for it, empty when none
  bool subquery = false;
};

struct SqlJoin {
  String type;  // "INNER", "LEFT", "RIGHT", "FULL" or "CROSS"
  // The first equality of the ON clause, ordered so that the left column belongs to the
  // left side of the join. Empty when the ON clause compares no two columns.
  String left_table;
  String left_field;
  String right_table;
  String right_field;
};

struct SqlSelect {
  std::vector<SqlToken> tokens;
  size_t list_begin = 0;  // tokens of the select list: [list_begin, list_end)
  size_t list_end = 0;
  bool distinct = false;       // DISTINCT, not Access's DISTINCTROW
  bool grouped = false;        // GROUP BY or HAVING
  bool set_operation = false;  // UNION, INTERSECT, EXCEPT, MINUS
  std::vector<SqlTableRef> tables;
  std::vector<SqlJoin> joins;
  bool comma_list = false;  // FROM a, b

  // The table that `qualifier` (a table name or an alias, any case) stands for; the
  // qualifier itself when the FROM clause doesn't know it.
  String Resolve(StringView qualifier) const;
};

// Analyses `text`; nothing when it is no SELECT that these rules can follow.
std::optional<SqlSelect> ParseSelect(StringView text, const SqlQuoting& quoting);

// True for the functions that turn rows into one value (Sum, Count, ...).
bool IsAggregateName(StringView word);

}  // namespace qv
