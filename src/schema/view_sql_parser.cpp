// Updatability follows Jet's rules as far as the text shows them: grouping, DISTINCT (but not
// DISTINCTROW), aggregates, set operations, subqueries in FROM and comma-listed tables make
// a query read-only; joins alone do not.
#include "schema/view_sql_parser.h"

namespace qv {

void ViewSqlParser::SetSql(StringView sql) {
  analysed_ = false;
  updatable_ = false;
  table_name_ = String();
  joins_.clear();
  current_ = 0;
  std::optional<SqlSelect> select = ParseSelect(sql, QuotingOfKind(1));
  if (!select || select->tables.empty()) return;
  analysed_ = true;
  joins_ = select->joins;
  if (joins_.empty() && select->tables.size() == 1 && !select->tables[0].subquery) {
    table_name_ = select->tables[0].name;
  }
  bool has_subquery = false;
  for (const SqlTableRef& t : select->tables)
    has_subquery |= t.subquery;
  updatable_ = !select->distinct && !select->grouped && !select->set_operation &&
               !select->comma_list && !has_subquery && !SelectListAggregates(*select);
}

bool ViewSqlParser::SelectListAggregates(const SqlSelect& select) {
  for (size_t i = select.list_begin; i + 1 < select.list_end; ++i) {
    const SqlToken& t = select.tokens[i];
    if (t.kind == SqlToken::kWord && IsAggregateName(t.text) && select.tokens[i + 1].IsSymbol(u'('))
      return true;
  }
  return false;
}

const SqlJoin& ViewSqlParser::Current() const {
  static const SqlJoin kNone;
  return current_ < joins_.size() ? joins_[current_] : kNone;
}

}  // namespace qv
