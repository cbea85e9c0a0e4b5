// The select list is cut at its top-level commas; each item is an expression with an optional
// alias. Only a bare (possibly qualified) column has a table and a column of origin; "*" items
// answer for any column the list doesn't name, when they stand for exactly one table.
#include "schema/custom_sql_parser.h"

namespace qv {

namespace {

// Words that end an expression or join its parts, and so can't be or precede an alias.
bool IsExpressionWord(const SqlToken& t) {
  return t.IsAnyWord({u"NULL", u"END",  u"TRUE",     u"FALSE",   u"IS",   u"NOT",    u"AND",
                      u"OR",   u"LIKE", u"IN",       u"BETWEEN", u"ELSE", u"THEN",   u"WHEN",
                      u"CASE", u"AS",   u"DISTINCT", u"MOD",     u"XOR",  u"ESCAPE", u"COLLATE"});
}

// The only table the FROM clause names, if it names one.
String SoleTable(const SqlSelect& select) {
  if (select.tables.size() != 1 || select.tables[0].subquery) return String();
  return select.tables[0].name;
}

}  // namespace

bool CustomSqlParser::Parse(StringView sql, int kind) {
  columns_.clear();
  std::optional<SqlSelect> select = ParseSelect(sql, QuotingOfKind(kind));
  if (!select) return false;
  const std::vector<SqlToken>& tokens = select->tokens;
  int depth = 0;
  size_t item_begin = select->list_begin;
  for (size_t i = select->list_begin; i < select->list_end; ++i) {
    const SqlToken& t = tokens[i];
    if (t.IsSymbol(u'(')) ++depth;
    if (t.IsSymbol(u')')) --depth;
    if (depth == 0 && t.IsSymbol(u',')) {
      if (i == item_begin) return false;
      ReadItem(*select, sql, item_begin, i);
      item_begin = i + 1;
    }
  }
  if (item_begin >= select->list_end) return false;
  ReadItem(*select, sql, item_begin, select->list_end);
  return true;
}

bool CustomSqlParser::ReadAlias(const std::vector<SqlToken>& tokens, size_t begin, size_t& end,
                                String& alias) {
  if (end - begin >= 3 && tokens[end - 2].IsWord(u"AS") &&
      (tokens[end - 1].IsName() || tokens[end - 1].kind == SqlToken::kString)) {
    const SqlToken& name = tokens[end - 1];
    alias = name.kind == SqlToken::kString
                ? String(name.text.view().substr(1, name.text.size() - 2))
                : name.text;
    end -= 2;
    return true;
  }
  if (end - begin < 2) return false;
  const SqlToken& last = tokens[end - 1];
  const SqlToken& before = tokens[end - 2];
  if (!last.IsName() || IsExpressionWord(last) || IsExpressionWord(before)) return false;
  const bool value_before = before.IsName() || before.kind == SqlToken::kNumber ||
                            before.kind == SqlToken::kString || before.kind == SqlToken::kDate ||
                            before.IsSymbol(u')');
  if (!value_before) return false;
  alias = last.text;
  end -= 1;
  return true;
}

void CustomSqlParser::ReadItem(const SqlSelect& select, StringView sql, size_t begin, size_t end) {
  const std::vector<SqlToken>& tokens = select.tokens;
  Column column;
  String alias;
  column.alias = ReadAlias(tokens, begin, end, alias);
  column.source_name =
      String(sql.substr(tokens[begin].begin, tokens[end - 1].end - tokens[begin].begin));

  // A bare column: name, qualifier.name or schema.table.name; "*" in the last place.
  const size_t count = end - begin;
  const SqlToken& last = tokens[end - 1];
  const bool last_is_star = last.IsSymbol(u'*');
  bool bare = (count % 2 == 1) && count <= 5 && (last.IsName() || last_is_star);
  for (size_t i = begin; bare && i + 1 < end; i += 2) {
    bare = tokens[i].IsName() && tokens[i + 1].IsSymbol(u'.');
  }
  if (bare) {
    const String qualifier = count >= 3 ? tokens[end - 3].text : String();
    column.table = qualifier.empty() ? SoleTable(select) : select.Resolve(qualifier);
    column.field = last_is_star ? String() : last.text;
    column.star = last_is_star;
  }
  column.output = column.alias ? alias : (bare ? column.field : column.source_name);
  columns_.push_back(std::move(column));
}

void CustomSqlParser::FieldOrigin(StringView name, String& source_name, String& source_table,
                                  String& source_field, bool& alias) const {
  source_name = source_table = source_field = String();
  alias = false;
  for (const Column& c : columns_) {
    if (c.star || !EqualsNoCase(c.output, name)) continue;
    source_name = c.source_name;
    source_table = c.table;
    source_field = c.field;
    alias = c.alias;
    return;
  }
  const Column* star = nullptr;
  for (const Column& c : columns_) {
    if (!c.star) continue;
    if (star) return;  // two "*" items: the column could come from either
    star = &c;
  }
  if (!star || star->table.empty()) return;
  source_name = String(name);
  source_table = star->table;
  source_field = String(name);
}

}  // namespace qv
