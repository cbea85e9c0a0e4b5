// VBScript's lexical rules. Line ends are CR, LF or CR LF; a '_' that ends a line joins it
// to the next; ':' separates statements like a line end.
#include "vbscript/lexer.h"

#include <cmath>
#include <unordered_map>

#include "automation/date_time.h"
#include "vbscript/errors.h"

namespace qv::vbs {
namespace {

constexpr size_t kMaxIdentifier = 255;

const std::unordered_map<String, Tok, NoCaseHash, NoCaseEqual>& Keywords() {
  static const std::unordered_map<String, Tok, NoCaseHash, NoCaseEqual> table = {
      {u"And", Tok::And},         {u"ByRef", Tok::ByRef},
      {u"ByVal", Tok::ByVal},     {u"Call", Tok::Call},
      {u"Case", Tok::Case},       {u"Class", Tok::Class},
      {u"Const", Tok::Const},     {u"Dim", Tok::Dim},
      {u"Do", Tok::Do},           {u"Each", Tok::Each},
      {u"Else", Tok::Else},       {u"ElseIf", Tok::ElseIf},
      {u"Empty", Tok::Empty},     {u"End", Tok::End_},
      {u"Eqv", Tok::Eqv},         {u"Erase", Tok::Erase},
      {u"Exit", Tok::Exit},       {u"False", Tok::False},
      {u"For", Tok::For},         {u"Function", Tok::Function},
      {u"GoTo", Tok::GoTo},       {u"If", Tok::If},
      {u"Imp", Tok::Imp},         {u"In", Tok::In},
      {u"Is", Tok::Is},           {u"Let", Tok::Let},
      {u"Loop", Tok::Loop},       {u"Me", Tok::Me},
      {u"Mod", Tok::Mod},         {u"New", Tok::New},
      {u"Next", Tok::Next},       {u"Not", Tok::Not},
      {u"Nothing", Tok::Nothing}, {u"Null", Tok::Null},
      {u"On", Tok::On},           {u"Option", Tok::Option},
      {u"Or", Tok::Or},           {u"Private", Tok::Private},
      {u"Public", Tok::Public},   {u"ReDim", Tok::ReDim},
      {u"Resume", Tok::Resume},   {u"Select", Tok::Select},
      {u"Set", Tok::Set},         {u"Sub", Tok::Sub},
      {u"Then", Tok::Then},       {u"To", Tok::To},
      {u"True", Tok::True},       {u"Until", Tok::Until},
      {u"WEnd", Tok::Wend},       {u"While", Tok::While},
      {u"With", Tok::With},       {u"Xor", Tok::Xor},
  };
  return table;
}

bool IsLetter(Char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= 0xC0 && c != 0xD7 && c != 0xF7);
}
bool IsDigit(Char c) {
  return c >= '0' && c <= '9';
}
bool IsBlank(Char c) {
  return c == ' ' || c == '\t' || c == 0xA0 || c == 0x0B || c == 0x0C;
}
bool IsLineEnd(Char c) {
  return c == '\r' || c == '\n';
}

class Lexer {
 public:
  explicit Lexer(StringView src) : src_(src) {}

  std::vector<Token> Run() {
    std::vector<Token> out;
    bool space = false;
    bool joined = false;  // a continuation came since the last token
    while (pos_ < src_.size()) {
      const Char c = src_[pos_];
      if (IsBlank(c)) {
        ++pos_;
        space = true;
        continue;
      }
      if (IsLineEnd(c)) {
        Push(out, Tok::NewLine, space);
        NewLine();
        space = false;
        continue;
      }
      if (c == '\'') {
        SkipComment();
        continue;
      }
      if (c == '_' && ContinuesLine()) {
        space = true;
        joined = true;
        continue;
      }
      const bool bracketed = c == '[';
      Token t = Next(space);
      // `obj _` then `.Method` on the next line continues the member chain, as if written on
      // one line; a blank before a dot otherwise marks a With member passed as an argument.
      if (joined && t.kind == Tok::Dot) t.space_before = false;
      joined = false;
      const bool after_dot = !out.empty() && out.back().kind == Tok::Dot;
      if (t.kind == Tok::Ident && !after_dot && !bracketed && EqualsNoCase(t.text, u"Rem")) {
        SkipComment();
        space = false;
        continue;
      }
      out.push_back(std::move(t));
      space = false;
    }
    Push(out, Tok::NewLine, space);
    Push(out, Tok::End, false);
    return out;
  }

 private:
  [[noreturn]] void Fail(int32_t number, size_t at) const {
    throw CompileError(number, line_, static_cast<int32_t>(at - line_start_) + 1);
  }

  void Push(std::vector<Token>& out, Tok kind, bool space) {
    Token t;
    t.kind = kind;
    t.space_before = space;
    t.line = line_;
    t.column = static_cast<int32_t>(pos_ - line_start_) + 1;
    out.push_back(std::move(t));
  }

  void NewLine() {
    if (src_[pos_] == '\r' && pos_ + 1 < src_.size() && src_[pos_ + 1] == '\n') ++pos_;
    ++pos_;
    ++line_;
    line_start_ = pos_;
  }

  void SkipComment() {
    while (pos_ < src_.size() && !IsLineEnd(src_[pos_]))
      ++pos_;
  }

  // A '_' followed by blanks and a line end joins the two lines.
  bool ContinuesLine() {
    size_t p = pos_ + 1;
    while (p < src_.size() && IsBlank(src_[p]))
      ++p;
    if (p < src_.size() && !IsLineEnd(src_[p])) return false;
    pos_ = p;
    if (pos_ < src_.size()) NewLine();
    return true;
  }

  Token Next(bool space) {
    Token t;
    t.space_before = space;
    t.line = line_;
    t.column = static_cast<int32_t>(pos_ - line_start_) + 1;
    const Char c = src_[pos_];
    if (IsLetter(c)) {
      ReadIdentifier(t);
    } else if (IsDigit(c) || (c == '.' && pos_ + 1 < src_.size() && IsDigit(src_[pos_ + 1]))) {
      ReadNumber(t);
    } else if (c == '"') {
      ReadString(t);
    } else if (c == '#') {
      ReadDate(t);
    } else if (c == '[') {
      ReadBracketed(t);
    } else if (c == '&' && StartsRadixNumber()) {
      ReadRadixNumber(t);
    } else {
      ReadOperator(t);
    }
    return t;
  }

  void ReadIdentifier(Token& t) {
    const size_t start = pos_;
    while (pos_ < src_.size() && (IsLetter(src_[pos_]) || IsDigit(src_[pos_]) || src_[pos_] == '_'))
      ++pos_;
    if (pos_ - start > kMaxIdentifier) Fail(kCeIdentifierTooLong, start);
    t.text = String(src_.substr(start, pos_ - start));
    t.kind = KeywordKind(t.text);
  }

  void ReadBracketed(Token& t) {
    const size_t start = ++pos_;
    while (pos_ < src_.size() && src_[pos_] != ']' && !IsLineEnd(src_[pos_]))
      ++pos_;
    if (pos_ >= src_.size() || src_[pos_] != ']') Fail(kCeExpectedRBracket, pos_);
    if (pos_ - start > kMaxIdentifier) Fail(kCeIdentifierTooLong, start);
    t.text = String(src_.substr(start, pos_ - start));
    t.kind = Tok::Ident;
    ++pos_;
  }

  void ReadNumber(Token& t) {
    const size_t start = pos_;
    bool is_float = false;
    while (pos_ < src_.size() && IsDigit(src_[pos_]))
      ++pos_;
    if (pos_ < src_.size() && src_[pos_] == '.') {
      is_float = true;
      ++pos_;
      while (pos_ < src_.size() && IsDigit(src_[pos_]))
        ++pos_;
    }
    if (pos_ < src_.size() && (src_[pos_] == 'e' || src_[pos_] == 'E')) {
      size_t p = pos_ + 1;
      if (p < src_.size() && (src_[p] == '+' || src_[p] == '-')) ++p;
      if (p < src_.size() && IsDigit(src_[p])) {
        is_float = true;
        pos_ = p;
        while (pos_ < src_.size() && IsDigit(src_[pos_]))
          ++pos_;
      } else {
        Fail(kCeInvalidNumber, start);
      }
    }
    if (pos_ < src_.size() && (IsLetter(src_[pos_]) || src_[pos_] == '_'))
      Fail(kCeExpectedEndOfStatement, pos_);
    const std::string digits = String::ToUtf8(src_.substr(start, pos_ - start));
    const double value = std::strtod(digits.c_str(), nullptr);
    if (!std::isfinite(value)) Fail(kCeInvalidNumber, start);
    t.kind = Tok::Number;
    if (!is_float && value <= 32767) {
      t.value = Variant(static_cast<int16_t>(value));
    } else if (!is_float && value <= 2147483647.0) {
      t.value = Variant(static_cast<int32_t>(value));
    } else {
      t.value = Variant(value);
    }
  }

  // `&h1F` is a number, `"a" &hx` a concatenation with the variable hx: a radix prefix needs a
  // digit of its base right after it.
  bool StartsRadixNumber() const {
    if (pos_ + 1 >= src_.size()) return false;
    const Char p = src_[pos_ + 1];
    if (IsDigit(p)) return true;
    if (pos_ + 2 >= src_.size()) return false;
    const Char d = src_[pos_ + 2];
    if (p == 'h' || p == 'H') return IsDigit(d) || (d >= 'a' && d <= 'f') || (d >= 'A' && d <= 'F');
    if (p == 'o' || p == 'O') return d >= '0' && d <= '7';
    return false;
  }

  // &Hxxxx, &Oxxx and &xxx (octal); a trailing '&' reads the digits as 32 bits.
  void ReadRadixNumber(Token& t) {
    const size_t start = pos_;
    ++pos_;
    int base = 8;
    if (src_[pos_] == 'h' || src_[pos_] == 'H') {
      base = 16;
      ++pos_;
    } else if (src_[pos_] == 'o' || src_[pos_] == 'O') {
      ++pos_;
    }
    uint64_t value = 0;
    size_t count = 0;
    while (pos_ < src_.size()) {
      const Char c = src_[pos_];
      int d = -1;
      if (IsDigit(c)) d = c - '0';
      if (c >= 'a' && c <= 'f') d = c - 'a' + 10;
      if (c >= 'A' && c <= 'F') d = c - 'A' + 10;
      if (d < 0 || d >= base) break;
      value = value * base + d;
      if (value > 0xFFFFFFFFull) Fail(kCeInvalidNumber, start);
      ++pos_;
      ++count;
    }
    if (count == 0) Fail(kCeSyntax, start);
    bool force_long = false;
    if (pos_ < src_.size() && src_[pos_] == '&') {
      force_long = true;
      ++pos_;
    }
    t.kind = Tok::Number;
    // Four digits or fewer read as 16 bits, sign and all; the value then picks the type, so
    // &h10& and &hFFFFFFFF& (-1) are Integers too. -32768 alone is typed Long: the literal
    // rule takes an Integer only where its negation is one as well (&h8000 is a Long).
    const auto as_long = !force_long && value <= 0xFFFF
                             ? int32_t{static_cast<int16_t>(static_cast<uint16_t>(value))}
                             : static_cast<int32_t>(static_cast<uint32_t>(value));
    if (as_long > -32768 && as_long <= 32767) {
      t.value = Variant(static_cast<int16_t>(as_long));
    } else {
      t.value = Variant(as_long);
    }
  }

  void ReadString(Token& t) {
    const size_t start = pos_++;
    String text;
    for (;;) {
      if (pos_ >= src_.size() || IsLineEnd(src_[pos_])) Fail(kCeUnterminatedString, start);
      const Char c = src_[pos_++];
      if (c == '"') {
        if (pos_ < src_.size() && src_[pos_] == '"') {
          text.Append(u'"');
          ++pos_;
          continue;
        }
        break;
      }
      text.Append(c);
    }
    t.kind = Tok::Text;
    t.text = std::move(text);
  }

  void ReadDate(Token& t) {
    const size_t start = pos_++;
    while (pos_ < src_.size() && src_[pos_] != '#' && !IsLineEnd(src_[pos_]))
      ++pos_;
    if (pos_ >= src_.size() || src_[pos_] != '#') Fail(kCeSyntax, start);
    const auto date = ParseDateText(src_.substr(start + 1, pos_ - start - 1));
    if (!date) Fail(kCeSyntax, start);
    ++pos_;
    t.kind = Tok::DateLit;
    t.value = Variant::Date(*date);
  }

  void ReadOperator(Token& t) {
    const Char c = src_[pos_];
    const Char n = pos_ + 1 < src_.size() ? src_[pos_ + 1] : 0;
    auto one = [&](Tok k) {
      t.kind = k;
      ++pos_;
    };
    auto two = [&](Tok k) {
      t.kind = k;
      pos_ += 2;
    };
    switch (c) {
      case '.':
        return one(Tok::Dot);
      case ',':
        return one(Tok::Comma);
      case '(':
        return one(Tok::LParen);
      case ')':
        return one(Tok::RParen);
      case '+':
        return one(Tok::Plus);
      case '-':
        return one(Tok::Minus);
      case '*':
        return one(Tok::Star);
      case '/':
        return one(Tok::Slash);
      case '\\':
        return one(Tok::Backslash);
      case '^':
        return one(Tok::Caret);
      case '&':
        return one(Tok::Amp);
      case ':':
        t.text = String(u":");
        return one(Tok::NewLine);
      // VBScript also takes the operators' older spellings =<, => and ><.
      case '=':
        if (n == '<') return two(Tok::Le);
        if (n == '>') return two(Tok::Ge);
        return one(Tok::Eq);
      case '<':
        if (n == '>') return two(Tok::Ne);
        if (n == '=') return two(Tok::Le);
        return one(Tok::Lt);
      case '>':
        if (n == '=') return two(Tok::Ge);
        if (n == '<') return two(Tok::Ne);
        return one(Tok::Gt);
      default:
        Fail(kCeInvalidCharacter, pos_);
    }
  }

  StringView src_;
  size_t pos_ = 0;
  size_t line_start_ = 0;
  int32_t line_ = 1;
};

}  // namespace

Tok KeywordKind(StringView word) {
  const auto& table = Keywords();
  const auto it = table.find(word);
  return it == table.end() ? Tok::Ident : it->second;
}

std::vector<Token> Tokenize(StringView source) {
  return Lexer(source).Run();
}

}  // namespace qv::vbs
