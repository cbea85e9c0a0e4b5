// The tokens of a SELECT text for the two SQL analysers. Comments are dropped, literals and
// quoted names are single tokens, and every token remembers where it stands in the text, so
// that an expression can be given back exactly as it was written.
#pragma once

#include <cstddef>
#include <initializer_list>
#include <optional>
#include <vector>

#include "automation/string.h"

namespace qv {

struct SqlToken {
  enum Kind { kWord, kQuotedName, kString, kNumber, kDate, kSymbol };
  Kind kind = kWord;
  String text;  // a quoted name without its quotes; anything else as written
  size_t begin = 0;
  size_t end = 0;

  bool IsWord(StringView word) const { return kind == kWord && EqualsNoCase(text, word); }
  bool IsAnyWord(std::initializer_list<StringView> words) const {
    for (StringView w : words) {
      if (IsWord(w)) return true;
    }
    return false;
  }
  bool IsSymbol(char16_t c) const { return kind == kSymbol && text.size() == 1 && text[0] == c; }
  // A name: a plain word or a quoted one.
  bool IsName() const { return kind == kWord || kind == kQuotedName; }
};

// How a dialect quotes names and what "..." means in it.
struct SqlQuoting {
  bool brackets = false;        // [name]
  bool backticks = false;       // `name`
  bool double_is_name = false;  // "name"; otherwise "..." is a string literal
  bool hash_dates = false;      // #1/2/2003# date literals
};

// The quoting of a DBMS kind: [..] for Access (1) and SQL Server (2), `..` for MySQL (3),
// "..." for the others. Access also has #date# literals; SQL Server accepts "..." too.
SqlQuoting QuotingOfKind(int kind);

// The tokens of `text`, or nothing when a literal, quoted name or comment isn't closed.
std::optional<std::vector<SqlToken>> TokenizeSql(StringView text, const SqlQuoting& quoting);

}  // namespace qv
