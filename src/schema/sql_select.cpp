// A recursive reader of the SELECT shape over the tokens of the lexer. It never throws: a
// text it cannot follow gives no result, which the analysers report as "not analysed".
#include "schema/sql_select.h"

namespace qv {

namespace {

// Words that end a FROM clause.
bool EndsFrom(const SqlToken& t) {
  return t.IsSymbol(u';') ||
         t.IsAnyWord({u"WHERE", u"GROUP", u"HAVING", u"ORDER", u"UNION", u"INTERSECT", u"EXCEPT",
                      u"MINUS", u"LIMIT", u"WITH", u"PIVOT", u"FETCH", u"OFFSET", u"WINDOW", u"FOR",
                      u"QUALIFY"});
}

// Words that can't be a table alias written without AS.
bool IsClauseWord(const SqlToken& t) {
  return EndsFrom(t) ||
         t.IsAnyWord({u"JOIN", u"INNER", u"LEFT", u"RIGHT", u"FULL", u"CROSS", u"OUTER", u"ON",
                      u"NATURAL", u"USING", u"AS", u"FROM", u"SELECT", u"STRAIGHT_JOIN"});
}

String UpperAscii(StringView word) {
  std::u16string upper(word);
  for (char16_t& c : upper) {
    if (c >= u'a' && c <= u'z') c = static_cast<char16_t>(c - u'a' + u'A');
  }
  return String(upper);
}

class SelectReader {
 public:
  explicit SelectReader(std::vector<SqlToken> tokens) { s_.tokens = std::move(tokens); }

  std::optional<SqlSelect> Run() {
    if (!MatchParentheses()) return std::nullopt;
    size_t i = 0;
    const size_t n = Size();
    if (i < n && At(i).IsWord(u"PARAMETERS")) {
      while (i < n && !At(i).IsSymbol(u';'))
        ++i;
      ++i;
    }
    if (i >= n || !At(i).IsWord(u"SELECT")) return std::nullopt;
    ++i;
    if (!ReadModifiers(i)) return std::nullopt;
    s_.list_begin = i;
    while (i < n && !At(i).IsWord(u"FROM") && !EndsFrom(At(i)))
      i = Step(i);
    s_.list_end = i;
    if (s_.list_end == s_.list_begin) return std::nullopt;
    if (i < n && At(i).IsWord(u"FROM")) {
      const size_t from_begin = ++i;
      while (i < n && !EndsFrom(At(i)))
        i = Step(i);
      size_t pos = from_begin;
      if (!ReadSource(pos, i) || pos != i) return std::nullopt;
    }
    for (; i < n; i = Step(i)) {
      const SqlToken& t = At(i);
      if (t.IsAnyWord({u"GROUP", u"HAVING"})) s_.grouped = true;
      if (t.IsAnyWord({u"UNION", u"INTERSECT", u"EXCEPT", u"MINUS"})) s_.set_operation = true;
    }
    return std::move(s_);
  }

 private:
  size_t Size() const { return s_.tokens.size(); }
  const SqlToken& At(size_t i) const { return s_.tokens[i]; }

  // Pairs every "(" with its ")"; False when they don't balance.
  bool MatchParentheses() {
    close_of_.assign(Size(), 0);
    std::vector<size_t> open;
    for (size_t i = 0; i < Size(); ++i) {
      if (At(i).IsSymbol(u'(')) {
        open.push_back(i);
      } else if (At(i).IsSymbol(u')')) {
        if (open.empty()) return false;
        close_of_[open.back()] = i;
        open.pop_back();
      }
    }
    return open.empty();
  }

  // The next token at the same depth: a "(" steps over its whole group.
  size_t Step(size_t i) const { return At(i).IsSymbol(u'(') ? close_of_[i] + 1 : i + 1; }

  bool ReadModifiers(size_t& i) {
    const size_t n = Size();
    while (i < n) {
      const SqlToken& t = At(i);
      if (t.IsWord(u"DISTINCT")) {
        s_.distinct = true;
        ++i;
      } else if (t.IsAnyWord({u"DISTINCTROW", u"ALL"})) {
        ++i;
      } else if (t.IsWord(u"TOP")) {
        ++i;
        if (i >= n) return false;
        i = Step(i);
        if (i < n && At(i).IsWord(u"PERCENT")) ++i;
        if (i < n && At(i).IsAnyWord({u"WITH"}) && i + 1 < n && At(i + 1).IsWord(u"TIES")) i += 2;
      } else {
        return true;
      }
    }
    return true;
  }

  // A dotted name: "a", "a.b", "s.a.b"; `last` and `before_last` get the final two pieces.
  bool ReadDottedName(size_t& i, size_t end, String& before_last, String& last) const {
    if (i >= end || !At(i).IsName()) return false;
    last = At(i).text;
    ++i;
    while (i + 1 < end && At(i).IsSymbol(u'.') && At(i + 1).IsName()) {
      before_last = last;
      last = At(i + 1).text;
      i += 2;
    }
    return true;
  }

  void ReadAlias(size_t& i, size_t end, String& alias) const {
    if (i < end && At(i).IsWord(u"AS")) {
      if (i + 1 < end && At(i + 1).IsName()) {
        alias = At(i + 1).text;
        i += 2;
      }
      return;
    }
    if (i < end && At(i).IsName() && !IsClauseWord(At(i))) {
      alias = At(i).text;
      ++i;
    }
  }

  // One table, a subquery or a parenthesised join.
  bool ReadPrimary(size_t& i, size_t end) {
    if (i >= end) return false;
    if (At(i).IsSymbol(u'(')) {
      // Joins nest one level per parenthesis: a text deeper than any real query is refused
      // rather than allowed to exhaust the stack.
      if (nesting_ >= kMaxNesting) return false;
      ++nesting_;
      const bool ok = ReadGroup(i, end);
      --nesting_;
      return ok;
    }
    SqlTableRef ref;
    String schema;
    if (!ReadDottedName(i, end, schema, ref.name)) return false;
    ReadAlias(i, end, ref.alias);
    s_.tables.push_back(std::move(ref));
    return true;
  }

  // A parenthesised subquery or join, `i` on its "(".
  bool ReadGroup(size_t& i, size_t end) {
    const size_t close = close_of_[i];
    if (close >= end) return false;
    if (i + 1 < close && At(i + 1).IsWord(u"SELECT")) {
      SqlTableRef ref;
      ref.subquery = true;
      i = close + 1;
      ReadAlias(i, end, ref.alias);
      s_.tables.push_back(std::move(ref));
      return true;
    }
    size_t inner = i + 1;
    if (!ReadSource(inner, close) || inner != close) return false;
    i = close + 1;
    return true;
  }

  // The join words at `i`, leaving `i` behind JOIN; the type when they are there.
  std::optional<String> ReadJoinWords(size_t& i, size_t end) const {
    size_t j = i;
    if (j < end && At(j).IsWord(u"NATURAL")) ++j;
    String type = u"INNER";
    if (j < end && At(j).IsAnyWord({u"INNER", u"LEFT", u"RIGHT", u"FULL", u"CROSS"})) {
      type = UpperAscii(At(j).text);
      ++j;
      if (j < end && At(j).IsWord(u"OUTER")) ++j;
    }
    if (j < end && (At(j).IsWord(u"JOIN") || At(j).IsWord(u"STRAIGHT_JOIN"))) {
      i = j + 1;
      return type;
    }
    return std::nullopt;
  }

  bool ReadSource(size_t& i, size_t end) {
    const size_t left_first = s_.tables.size();
    if (!ReadPrimary(i, end)) return false;
    while (i < end) {
      if (At(i).IsSymbol(u',')) {
        s_.comma_list = true;
        ++i;
        if (!ReadPrimary(i, end)) return false;
        continue;
      }
      const size_t right_first = s_.tables.size();
      std::optional<String> type = ReadJoinWords(i, end);
      if (!type) return false;
      if (!ReadPrimary(i, end)) return false;
      SqlJoin join;
      join.type = *type;
      if (i < end && At(i).IsWord(u"ON")) {
        const size_t cond_begin = ++i;
        while (i < end && !ReadJoinWordsAhead(i, end) && !At(i).IsSymbol(u','))
          i = Step(i);
        ReadCondition(cond_begin, i, left_first, right_first, join);
      } else if (i < end && At(i).IsWord(u"USING")) {
        ++i;
        if (i < end) i = Step(i);
      }
      s_.joins.push_back(std::move(join));
    }
    return true;
  }

  bool ReadJoinWordsAhead(size_t i, size_t end) const {
    size_t j = i;
    return ReadJoinWords(j, end).has_value();
  }

  // A column reference around an "=": qualifier and column, parentheses stepped over.
  struct ColumnRef {
    String table;
    String field;
  };

  std::optional<ColumnRef> RefBefore(size_t begin, size_t eq) const {
    size_t j = eq;
    while (j > begin && At(j - 1).IsSymbol(u')'))
      --j;
    if (j == begin || !At(j - 1).IsName()) return std::nullopt;
    ColumnRef ref;
    ref.field = At(j - 1).text;
    if (j - 1 >= begin + 2 && At(j - 2).IsSymbol(u'.') && At(j - 3).IsName()) {
      ref.table = At(j - 3).text;
    }
    return ref;
  }

  std::optional<ColumnRef> RefAfter(size_t eq, size_t end) const {
    size_t j = eq + 1;
    while (j < end && At(j).IsSymbol(u'('))
      ++j;
    if (j >= end || !At(j).IsName()) return std::nullopt;
    String before;
    ColumnRef ref;
    if (!ReadDottedName(j, end, before, ref.field)) return std::nullopt;
    ref.table = before;
    return ref;
  }

  bool NamesTableIn(StringView qualifier, size_t first, size_t last) const {
    for (size_t t = first; t < last && t < s_.tables.size(); ++t) {
      const SqlTableRef& ref = s_.tables[t];
      if (EqualsNoCase(ref.alias, qualifier)) return true;
      if (ref.alias.empty() && EqualsNoCase(ref.name, qualifier)) return true;
    }
    return false;
  }

  void ReadCondition(size_t begin, size_t end, size_t left_first, size_t right_first,
                     SqlJoin& join) const {
    size_t eq = begin;
    while (eq < end && !At(eq).IsSymbol(u'='))
      ++eq;
    if (eq >= end) return;
    std::optional<ColumnRef> a = RefBefore(begin, eq);
    std::optional<ColumnRef> b = RefAfter(eq, end);
    if (!a || !b) return;
    const size_t right_last = s_.tables.size();
    const bool a_right = !a->table.empty() && NamesTableIn(a->table, right_first, right_last);
    const bool b_left = !b->table.empty() && NamesTableIn(b->table, left_first, right_first);
    if (a_right || b_left) std::swap(a, b);
    join.left_table = a->table.empty() ? LastName(left_first, right_first) : s_.Resolve(a->table);
    join.left_field = a->field;
    join.right_table = b->table.empty() ? LastName(right_first, right_last) : s_.Resolve(b->table);
    join.right_field = b->field;
  }

  String LastName(size_t first, size_t last) const {
    for (size_t t = last; t > first; --t) {
      if (!s_.tables[t - 1].subquery) return s_.tables[t - 1].name;
    }
    return String();
  }

  static constexpr int kMaxNesting = 200;

  SqlSelect s_;
  std::vector<size_t> close_of_;
  int nesting_ = 0;
};

}  // namespace

String SqlSelect::Resolve(StringView qualifier) const {
  for (const SqlTableRef& ref : tables) {
    if (!ref.alias.empty() && EqualsNoCase(ref.alias, qualifier))
      return ref.subquery ? String() : ref.name;
  }
  for (const SqlTableRef& ref : tables) {
    if (EqualsNoCase(ref.name, qualifier)) return ref.name;
  }
  return String(qualifier);
}

std::optional<SqlSelect> ParseSelect(StringView text, const SqlQuoting& quoting) {
  std::optional<std::vector<SqlToken>> tokens = TokenizeSql(text, quoting);
  if (!tokens) return std::nullopt;
  return SelectReader(std::move(*tokens)).Run();
}

bool IsAggregateName(StringView word) {
  static constexpr StringView kNames[] = {
      u"SUM",        u"COUNT",     u"AVG",    u"MIN",      u"MAX",   u"FIRST",
      u"LAST",       u"STDEV",     u"STDEVP", u"VAR",      u"VARP",  u"GROUP_CONCAT",
      u"STRING_AGG", u"ARRAY_AGG", u"STDDEV", u"VARIANCE", u"TOTAL", u"LISTAGG"};
  for (StringView name : kNames) {
    if (EqualsNoCase(word, name)) return true;
  }
  return false;
}

}  // namespace qv
