// The translation from VBScript's pattern language to PCRE2's. Every literal character is
// written as \x{...}, so nothing PCRE2 would read specially can slip through; "." and the
// anchors are spelled out, so PCRE2's newline and multiline options play no part.
#include "vbscript/regexp_pattern.h"

#include <algorithm>
#include <vector>

#include "automation/error.h"

namespace qv::vbs {

namespace {

constexpr int32_t kErrQuantifier = 5018;
constexpr int32_t kErrBracket = 5019;
constexpr int32_t kErrParen = 5020;
constexpr int32_t kErrRange = 5021;

bool IsDigit(Char c) {
  return c >= u'0' && c <= u'9';
}
bool IsOctal(Char c) {
  return c >= u'0' && c <= u'7';
}
int HexValue(Char c) {
  if (c >= u'0' && c <= u'9') return c - u'0';
  if (c >= u'a' && c <= u'f') return c - u'a' + 10;
  if (c >= u'A' && c <= u'F') return c - u'A' + 10;
  return -1;
}
bool IsAsciiLetter(Char c) {
  return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z');
}

// The case a character is compared under: its upper case, unless that would take a
// character from beyond ASCII into it.
Char Canonical(Char c) {
  const Char upper = ToUpperChar(c);
  return (c >= 0x80 && upper < 0x80) ? c : upper;
}

// The characters that compare equal to `c` without regard to case (c first).
std::vector<Char> CaseVariants(Char c) {
  std::vector<Char> out{c};
  const Char canon = Canonical(c);
  for (const Char x : {ToUpperChar(c), ToLowerChar(c), ToLowerChar(ToUpperChar(c))}) {
    if (Canonical(x) == canon && std::find(out.begin(), out.end(), x) == out.end())
      out.push_back(x);
  }
  return out;
}

void AppendHex(std::u16string& out, uint32_t c) {
  static const char digits[] = "0123456789abcdef";
  out += u"\\x{";
  char buf[8];
  int n = 0;
  do {
    buf[n++] = digits[c & 15];
    c >>= 4;
  } while (c != 0);
  while (n > 0)
    out += static_cast<char16_t>(buf[--n]);
  out += u'}';
}

// One character as PCRE2 reads it literally, inside a class or out.
void AppendChar(std::u16string& out, Char c) {
  if (c < 0x80 && (IsAsciiLetter(c) || IsDigit(c))) {
    out += c;
    return;
  }
  AppendHex(out, c);
}

class Translator {
 public:
  Translator(StringView pattern, bool ignore_case, bool multiline)
      : p_(pattern), ignore_case_(ignore_case), multiline_(multiline) {}

  PatternTranslation Run() {
    groups_ = CountGroups();
    PatternTranslation result;
    result.error = Translate();
    if (result.error == 0) result.pcre = std::move(out_);
    return result;
  }

 private:
  // Capturing groups in the whole pattern: a back reference may name one that comes later.
  size_t CountGroups() const {
    size_t count = 0;
    bool in_class = false;
    for (size_t i = 0; i < p_.size(); ++i) {
      const Char c = p_[i];
      if (c == u'\\') {
        ++i;
      } else if (in_class) {
        if (c == u']') in_class = false;
      } else if (c == u'[') {
        in_class = true;
      } else if (c == u'(' && (i + 1 >= p_.size() || p_[i + 1] != u'?')) {
        ++count;
      }
    }
    return count;
  }

  int32_t Translate() {
    int depth = 0;
    bool can_repeat = false;  // the last thing written is an atom a quantifier may follow
    while (at_ < p_.size()) {
      const Char c = p_[at_];
      switch (c) {
        case u'\\': {
          const int32_t error = Escape(can_repeat);
          if (error) return error;
          break;
        }
        case u'.':
          out_ += u"[^\\n]";
          ++at_;
          can_repeat = true;
          break;
        case u'^':
          out_ += multiline_ ? u"(?:\\A|(?<=[\\n\\r]))" : u"\\A";
          ++at_;
          can_repeat = false;
          break;
        case u'$':
          out_ += multiline_ ? u"(?:\\z|(?=[\\n\\r]))" : u"\\z";
          ++at_;
          can_repeat = false;
          break;
        case u'|':
          out_ += u'|';
          ++at_;
          can_repeat = false;
          break;
        case u'(': {
          if (at_ + 1 < p_.size() && p_[at_ + 1] == u'?') {
            // Only the plain group and the two look-aheads exist in VBScript.
            const Char kind = at_ + 2 < p_.size() ? p_[at_ + 2] : 0;
            if (kind != u':' && kind != u'=' && kind != u'!') return kErrRegExpSyntax;
            out_ += u"(?";
            out_ += kind;
            at_ += 3;
          } else {
            out_ += u'(';
            ++at_;
          }
          ++depth;
          can_repeat = false;
          break;
        }
        case u')':
          if (depth == 0) return kErrRegExpSyntax;
          --depth;
          out_ += u')';
          ++at_;
          can_repeat = true;
          break;
        case u'[': {
          const int32_t error = Class();
          if (error) return error;
          can_repeat = true;
          break;
        }
        case u'*':
        case u'+':
        case u'?':
          if (!can_repeat) return kErrQuantifier;
          out_ += c;
          ++at_;
          Lazy();
          can_repeat = false;
          break;
        case u'{': {
          const int32_t error = Braces(can_repeat);
          if (error) return error;
          break;
        }
        default:
          Literal(c);
          ++at_;
          can_repeat = true;
          break;
      }
    }
    return depth != 0 ? kErrParen : 0;
  }

  void Lazy() {
    if (at_ < p_.size() && p_[at_] == u'?') {
      out_ += u'?';
      ++at_;
    }
  }

  // "{n}", "{n,}" or "{n,m}" is a quantifier; any other brace is the character itself.
  int32_t Braces(bool& can_repeat) {
    size_t i = at_ + 1;
    const size_t min_start = i;
    while (i < p_.size() && IsDigit(p_[i]))
      ++i;
    const size_t min_end = i;
    size_t max_start = 0, max_end = 0;
    bool comma = false;
    if (min_end > min_start && i < p_.size() && p_[i] == u',') {
      comma = true;
      max_start = ++i;
      while (i < p_.size() && IsDigit(p_[i]))
        ++i;
      max_end = i;
    }
    if (min_end == min_start || i >= p_.size() || p_[i] != u'}') {
      Literal(u'{');
      ++at_;
      can_repeat = true;
      return 0;
    }
    if (!can_repeat) return kErrQuantifier;
    const auto number = [&](size_t from, size_t to) {
      uint64_t n = 0;
      for (size_t k = from; k < to && n <= 0xFFFFFFFF; ++k)
        n = n * 10 + (p_[k] - u'0');
      return n;
    };
    const uint64_t min = number(min_start, min_end);
    const bool has_max = comma && max_end > max_start;
    if (has_max && number(max_start, max_end) < min) return kErrRegExpSyntax;
    out_.append(p_.data() + at_, i + 1 - at_);
    at_ = i + 1;
    Lazy();
    can_repeat = false;
    return 0;
  }

  void Literal(Char c) {
    if (!ignore_case_ || c < 0x80) {
      AppendChar(out_, c);
      return;
    }
    const std::vector<Char> variants = CaseVariants(c);
    if (variants.size() == 1) {
      AppendChar(out_, c);
      return;
    }
    out_ += u'[';
    for (const Char v : variants)
      AppendChar(out_, v);
    out_ += u']';
  }

  // An escape outside a class: assertions, class shorthands, back references, or one
  // character.
  int32_t Escape(bool& can_repeat) {
    if (at_ + 1 >= p_.size()) return kErrRegExpSyntax;
    const Char e = p_[at_ + 1];
    if (e == u'b' || e == u'B') {
      out_ += u'\\';
      out_ += e;
      at_ += 2;
      can_repeat = false;
      return 0;
    }
    can_repeat = true;
    if (e == u'd' || e == u'D' || e == u'w' || e == u'W' || e == u's' || e == u'S') {
      out_ += u'\\';
      out_ += e;
      at_ += 2;
      return 0;
    }
    if (e >= u'1' && e <= u'9') {
      // Two digits name a group when there are that many, else one digit when there are
      // that many; otherwise the digits are an octal character code.
      const bool two = at_ + 2 < p_.size() && IsDigit(p_[at_ + 2]);
      const size_t n2 = two ? (e - u'0') * 10 + (p_[at_ + 2] - u'0') : 0;
      const size_t n1 = e - u'0';
      size_t group = 0;
      if (two && n2 <= groups_) {
        group = n2;
        at_ += 3;
      } else if (n1 <= groups_) {
        group = n1;
        at_ += 2;
      }
      if (group != 0) {
        out_ += u"(?:\\g{";
        for (const char d : std::to_string(group))
          out_ += static_cast<char16_t>(d);
        out_ += u"})";
        return 0;
      }
    }
    ++at_;  // past the backslash
    Literal(EscapedChar());
    return 0;
  }

  // The character an escape stands for (also inside a class); `at_` is just past the
  // backslash and moves past the escape.
  Char EscapedChar() {
    const Char e = p_[at_];
    switch (e) {
      case u'f':
        ++at_;
        return u'\f';
      case u'n':
        ++at_;
        return u'\n';
      case u'r':
        ++at_;
        return u'\r';
      case u't':
        ++at_;
        return u'\t';
      case u'v':
        ++at_;
        return u'\v';
      case u'c':
        if (at_ + 1 < p_.size() && IsAsciiLetter(p_[at_ + 1])) {
          at_ += 2;
          return p_[at_ - 1] % 32;
        }
        return u'\\';  // "\c" without a letter is a backslash, then "c" as it stands
      case u'x':
      case u'u': {
        const size_t digits = e == u'x' ? 2 : 4;
        uint32_t value = 0;
        size_t k = 0;
        for (; k < digits && at_ + 1 + k < p_.size(); ++k) {
          const int h = HexValue(p_[at_ + 1 + k]);
          if (h < 0) break;
          value = value * 16 + h;
        }
        if (k < digits) break;  // not a code: the letter itself
        at_ += 1 + digits;
        return static_cast<Char>(value);
      }
      default:
        if (IsOctal(e)) return Octal();
        break;
    }
    ++at_;
    return e;
  }

  // Up to three octal digits (two when the first is above 3), so the code stays below 256.
  Char Octal() {
    const size_t limit = p_[at_] <= u'3' ? 3 : 2;
    uint32_t value = 0;
    for (size_t k = 0; k < limit && at_ < p_.size() && IsOctal(p_[at_]); ++k, ++at_)
      value = value * 8 + (p_[at_] - u'0');
    return static_cast<Char>(value);
  }

  // One member of a class: a character, or a shorthand (\d, \w, \s and their opposites),
  // which is kept in `shorthand`.
  bool ClassAtom(Char& c, Char& shorthand) {
    shorthand = 0;
    if (p_[at_] != u'\\') {
      c = p_[at_++];
      return true;
    }
    if (at_ + 1 >= p_.size()) return false;
    const Char e = p_[at_ + 1];
    if (e == u'd' || e == u'D' || e == u'w' || e == u'W' || e == u's' || e == u'S') {
      shorthand = e;
      at_ += 2;
      return true;
    }
    ++at_;
    if (e == u'b') {
      ++at_;
      c = u'\b';
      return true;
    }
    c = EscapedChar();
    return true;
  }

  // Adds the other cases of the letters beyond ASCII in lo..hi that fall outside it; ranges
  // too wide to walk are left to the ASCII folding alone.
  void ClassCaseVariants(std::u16string& body, Char lo, Char hi) const {
    if (!ignore_case_ || hi < 0x80 || hi - lo > 4096) return;
    for (uint32_t c = std::max<uint32_t>(lo, 0x80); c <= hi; ++c) {
      for (const Char v : CaseVariants(static_cast<Char>(c))) {
        if (v < lo || v > hi) AppendChar(body, v);
      }
    }
  }

  int32_t Class() {
    ++at_;  // '['
    bool negated = false;
    if (at_ < p_.size() && p_[at_] == u'^') {
      negated = true;
      ++at_;
    }
    std::u16string body;
    while (true) {
      if (at_ >= p_.size()) return kErrBracket;
      if (p_[at_] == u']') break;
      Char lo = 0, lo_short = 0;
      if (!ClassAtom(lo, lo_short)) return kErrBracket;
      const bool range = at_ + 1 < p_.size() && p_[at_] == u'-' && p_[at_ + 1] != u']';
      if (!range) {
        AppendClassMember(body, lo, lo_short);
        continue;
      }
      ++at_;  // '-'
      Char hi = 0, hi_short = 0;
      if (!ClassAtom(hi, hi_short)) return kErrBracket;
      // A shorthand cannot end a range.
      if (lo_short || hi_short) return kErrRange;
      if (lo > hi) return kErrRange;
      AppendChar(body, lo);
      body += u'-';
      AppendChar(body, hi);
      ClassCaseVariants(body, lo, hi);
    }
    ++at_;  // ']'
    if (body.empty()) {
      // "[]" matches nothing and "[^]" any character.
      out_ += negated ? u"[\\x{0}-\\x{ffff}]" : u"(?!)";
      return 0;
    }
    out_ += negated ? u"[^" : u"[";
    out_ += body;
    out_ += u']';
    return 0;
  }

  void AppendClassMember(std::u16string& body, Char c, Char shorthand) const {
    if (shorthand) {
      body += u'\\';
      body += shorthand;
      return;
    }
    AppendChar(body, c);
    ClassCaseVariants(body, c, c);
  }

  StringView p_;
  bool ignore_case_;
  bool multiline_;
  size_t at_ = 0;
  size_t groups_ = 0;
  std::u16string out_;
};

}  // namespace

PatternTranslation TranslatePattern(StringView pattern, bool ignore_case, bool multiline) {
  return Translator(pattern, ignore_case, multiline).Run();
}

}  // namespace qv::vbs
