// The SQL tokenizer shared by the view and custom-view analysers.
#include "schema/sql_lexer.h"

namespace qv {

namespace {

bool IsWordStart(char16_t c) {
  return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || c == u'_' || c == u'@' ||
         c == u'$' || c >= 0x80;
}

bool IsWordPart(char16_t c) {
  return IsWordStart(c) || (c >= u'0' && c <= u'9');
}

bool IsDigit(char16_t c) {
  return c >= u'0' && c <= u'9';
}

bool IsSpace(char16_t c) {
  return c == u' ' || c == u'\t' || c == u'\r' || c == u'\n' || c == u'\f' || c == u'\v' ||
         c == 0xA0;
}

class Lexer {
 public:
  Lexer(StringView text, const SqlQuoting& quoting) : s_(text), q_(quoting) {}

  std::optional<std::vector<SqlToken>> Run() {
    while (pos_ < s_.size()) {
      const char16_t c = s_[pos_];
      if (IsSpace(c)) {
        ++pos_;
      } else if (c == u'-' && Next() == u'-') {
        SkipLine();
      } else if (c == u'/' && Next() == u'*') {
        if (!SkipBlockComment()) return std::nullopt;
      } else if (c == u'\'') {
        if (!Quoted(u'\'', u'\'', SqlToken::kString)) return std::nullopt;
      } else if (c == u'"') {
        if (!Quoted(u'"', u'"', q_.double_is_name ? SqlToken::kQuotedName : SqlToken::kString))
          return std::nullopt;
      } else if (c == u'[' && q_.brackets) {
        if (!Quoted(u'[', u']', SqlToken::kQuotedName)) return std::nullopt;
      } else if (c == u'`' && q_.backticks) {
        if (!Quoted(u'`', u'`', SqlToken::kQuotedName)) return std::nullopt;
      } else if (c == u'#' && q_.hash_dates) {
        if (!Quoted(u'#', u'#', SqlToken::kDate)) return std::nullopt;
      } else if (IsDigit(c) || (c == u'.' && IsDigit(Next()))) {
        Number();
      } else if (IsWordStart(c)) {
        Word();
      } else {
        Symbol();
      }
    }
    return std::move(tokens_);
  }

 private:
  char16_t Next() const { return pos_ + 1 < s_.size() ? s_[pos_ + 1] : u'\0'; }

  void Push(SqlToken::Kind kind, String text, size_t begin) {
    tokens_.push_back(SqlToken{kind, std::move(text), begin, pos_});
  }

  void SkipLine() {
    while (pos_ < s_.size() && s_[pos_] != u'\n')
      ++pos_;
  }

  bool SkipBlockComment() {
    const size_t close = s_.find(u"*/", pos_ + 2);
    if (close == StringView::npos) return false;
    pos_ = close + 2;
    return true;
  }

  // A literal or quoted name; a doubled closing character stands for itself.
  bool Quoted(char16_t open, char16_t close, SqlToken::Kind kind) {
    const size_t begin = pos_++;
    std::u16string inner;
    while (pos_ < s_.size()) {
      const char16_t c = s_[pos_++];
      if (c != close) {
        inner.push_back(c);
        continue;
      }
      if (pos_ < s_.size() && s_[pos_] == close && open == close) {
        inner.push_back(c);
        ++pos_;
        continue;
      }
      const bool keep_quotes = kind == SqlToken::kString || kind == SqlToken::kDate;
      Push(kind, keep_quotes ? String(s_.substr(begin, pos_ - begin)) : String(inner), begin);
      return true;
    }
    return false;
  }

  void Number() {
    const size_t begin = pos_;
    while (pos_ < s_.size() && (IsWordPart(s_[pos_]) || s_[pos_] == u'.'))
      ++pos_;
    Push(SqlToken::kNumber, String(s_.substr(begin, pos_ - begin)), begin);
  }

  void Word() {
    const size_t begin = pos_;
    while (pos_ < s_.size() && IsWordPart(s_[pos_]))
      ++pos_;
    Push(SqlToken::kWord, String(s_.substr(begin, pos_ - begin)), begin);
  }

  // Two-character operators stay together so that "<>" never reads as two comparisons.
  void Symbol() {
    const size_t begin = pos_;
    static constexpr StringView kPairs[] = {u"<>", u"<=", u">=", u"!=", u"||", u"::"};
    for (StringView pair : kPairs) {
      if (s_.substr(pos_, 2) == pair) {
        pos_ += 2;
        Push(SqlToken::kSymbol, String(pair), begin);
        return;
      }
    }
    ++pos_;
    Push(SqlToken::kSymbol, String(s_.substr(begin, 1)), begin);
  }

  StringView s_;
  SqlQuoting q_;
  size_t pos_ = 0;
  std::vector<SqlToken> tokens_;
};

}  // namespace

SqlQuoting QuotingOfKind(int kind) {
  SqlQuoting q;
  switch (kind) {
    case 1:
      q.brackets = true;
      q.hash_dates = true;
      break;
    case 2:
      q.brackets = true;
      q.double_is_name = true;
      break;
    case 3:
      q.backticks = true;
      break;
    default:
      q.double_is_name = true;
      break;
  }
  return q;
}

std::optional<std::vector<SqlToken>> TokenizeSql(StringView text, const SqlQuoting& quoting) {
  return Lexer(text, quoting).Run();
}

}  // namespace qv
