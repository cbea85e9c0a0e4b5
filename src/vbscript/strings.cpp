// The string family of the runtime library: lengths, slices, searching, replacing, case,
// trimming, repetition, character codes and JavaScript-style escaping. Null propagates where
// Windows lets it and raises 94 where Windows refuses it.
#include <algorithm>
#include <cmath>
#include <vector>
#ifdef __SSE2__
#include <emmintrin.h>
#endif

#include "automation/collation.h"
#include "vbscript/runtime_lib.h"
#include "vbscript/strings_lib.h"

namespace qv::vbs {

namespace {

// The longest text Space and String build; beyond it they report "Out of memory" rather than
// let one script call exhaust the process.
constexpr double kMaxBuiltLength = 1 << 28;

// A character count for Space and String: Null raises 94, negatives 5, absurd sizes 7.
size_t BuildCount(const Variant& raw) {
  const Variant v = ValueOf(raw);
  if (v.is_null()) Raise(kErrInvalidUseOfNull);
  const double n = RoundHalfEven(ToDouble(v));
  if (!(n >= 0)) Raise(kErrInvalidCall);
  if (n > kMaxBuiltLength) Raise(kErrOutOfMemory);
  return static_cast<size_t>(n);
}

// A length or position argument: Null raises 94, negatives raise 5.
int32_t CountArg(const Variant& raw) {
  const Variant v = ValueOf(raw);
  if (v.is_null()) Raise(kErrInvalidUseOfNull);
  const int32_t n = ToLong(v);
  if (n < 0) Raise(kErrInvalidCall);
  return n;
}

int32_t StartArg(const Variant& raw) {
  const int32_t n = CountArg(raw);
  if (n < 1) Raise(kErrInvalidCall);
  return n;
}

String FoldedCopy(StringView s) {
  return ToLower(s);
}

Variant Len(RuntimeState&, Args a) {
  const Variant v = ValueOf(a[0]);
  if (v.is_null()) return Variant::Null();
  if (v.is_string()) return Variant(static_cast<int32_t>(v.as_string().size()));
  return Variant(static_cast<int32_t>(ToString(v).size()));
}

Variant LenB(RuntimeState&, Args a) {
  const Variant v = ValueOf(a[0]);
  if (v.is_null()) return Variant::Null();
  return Variant(static_cast<int32_t>(ToString(v).byte_size()));
}

Variant Left(RuntimeState&, Args a) {
  const Variant v = ValueOf(a[0]);
  const size_t n = static_cast<size_t>(CountArg(a[1]));
  if (v.is_null()) return Variant::Null();
  const String s = ToString(v);
  if (n >= s.size()) return s;
  return String(s.view().substr(0, n));
}

Variant Right(RuntimeState&, Args a) {
  const Variant v = ValueOf(a[0]);
  const size_t n = static_cast<size_t>(CountArg(a[1]));
  if (v.is_null()) return Variant::Null();
  const String s = ToString(v);
  if (n >= s.size()) return s;
  return String(s.view().substr(s.size() - n));
}

Variant Mid(RuntimeState&, Args a) {
  const Variant v = ValueOf(a[0]);
  // A Null length is refused before the start is even read.
  if (Given(a, 2) && ValueOf(a[2]).is_null()) Raise(kErrInvalidUseOfNull);
  const size_t start = static_cast<size_t>(StartArg(a[1]));
  const bool has_length = Given(a, 2);
  const size_t length = has_length ? static_cast<size_t>(CountArg(a[2])) : SIZE_MAX;
  if (v.is_null()) return Variant::Null();
  const String s = ToString(v);
  if (start > s.size()) return String();
  if (start == 1 && length >= s.size()) return s;
  return String(s.view().substr(start - 1, length));
}

// Position (1-based) of `what` in `text` from `start` (1-based), 0 when absent.
int32_t FindForward(StringView text, StringView what, size_t start, bool text_compare) {
  if (start > text.size()) return 0;
  if (what.empty()) return static_cast<int32_t>(start);
  size_t at;
  if (text_compare) {
    at = FindText(FoldedCopy(text), FoldedCopy(what), start - 1);
  } else {
    at = FindText(text, what, start - 1);
  }
  return at == StringView::npos ? 0 : static_cast<int32_t>(at + 1);
}

Variant InStr(RuntimeState&, Args a) {
  // InStr(s1, s2) or InStr(start, s1, s2[, compare]).
  size_t start = 1;
  size_t first = 0;
  if (a.size() >= 3) {
    start = static_cast<size_t>(StartArg(a[0]));
    first = 1;
  }
  const bool text = a.size() >= 4 && TextCompareArg(a, 3);
  const Variant s1 = ValueOf(a[first]);
  const Variant s2 = ValueOf(a[first + 1]);
  if (s1.is_null() || s2.is_null()) return Variant::Null();
  return Variant(FindForward(ToString(s1), ToString(s2), start, text));
}

// The byte forms cut the text as the bytes of its characters, two to a character, low byte
// first; a cut may leave an odd byte, which the result keeps.
std::vector<uint8_t> BytesOf(const String& s) {
  std::vector<uint8_t> bytes;
  bytes.reserve(s.byte_size());
  for (const Char c : s) {
    bytes.push_back(static_cast<uint8_t>(c & 0xFF));
    bytes.push_back(static_cast<uint8_t>(c >> 8));
  }
  if (s.odd_byte()) bytes.push_back(s.last_byte());
  return bytes;
}

String ByteSlice(const String& s, size_t first, size_t count) {
  const std::vector<uint8_t> bytes = BytesOf(s);
  if (first >= bytes.size()) return String();
  count = std::min(count, bytes.size() - first);
  return String::FromBytes(bytes.data() + first, count);
}

Variant LeftB(RuntimeState&, Args a) {
  const Variant v = ValueOf(a[0]);
  const size_t n = static_cast<size_t>(CountArg(a[1]));
  if (v.is_null()) return Variant::Null();
  const String s = ToString(v);
  return n >= s.byte_size() ? s : ByteSlice(s, 0, n);
}

Variant RightB(RuntimeState&, Args a) {
  const Variant v = ValueOf(a[0]);
  const size_t n = static_cast<size_t>(CountArg(a[1]));
  if (v.is_null()) return Variant::Null();
  const String s = ToString(v);
  return n >= s.byte_size() ? s : ByteSlice(s, s.byte_size() - n, n);
}

Variant MidB(RuntimeState&, Args a) {
  const Variant v = ValueOf(a[0]);
  if (Given(a, 2) && ValueOf(a[2]).is_null()) Raise(kErrInvalidUseOfNull);
  const size_t first = static_cast<size_t>(StartArg(a[1])) - 1;
  const size_t length = Given(a, 2) ? static_cast<size_t>(CountArg(a[2])) : SIZE_MAX;
  if (v.is_null()) return Variant::Null();
  return ByteSlice(ToString(v), first, length);
}

Variant InStrB(RuntimeState&, Args a) {
  size_t start = 1;
  size_t first = 0;
  if (a.size() >= 3) {
    start = static_cast<size_t>(StartArg(a[0]));
    first = 1;
  }
  const bool text = a.size() >= 4 && TextCompareArg(a, 3);
  const Variant s1 = ValueOf(a[first]);
  const Variant s2 = ValueOf(a[first + 1]);
  if (s1.is_null() || s2.is_null()) return Variant::Null();
  if (text) {
    const int32_t at = FindForward(ToString(s1), ToString(s2), start / 2 + 1, text);
    return Variant(at == 0 ? 0 : at * 2 - 1);
  }
  // A binary search goes byte by byte, at any offset: an upload page looks for a boundary in
  // a body of bytes, where nothing lines up with characters.
  const std::vector<uint8_t> hay = BytesOf(ToString(s1)), needle = BytesOf(ToString(s2));
  if (start > hay.size()) return Variant(int32_t{0});
  if (needle.empty()) return Variant(static_cast<int32_t>(start));
  const auto at = std::search(hay.begin() + static_cast<ptrdiff_t>(start - 1), hay.end(),
                              needle.begin(), needle.end());
  return Variant(at == hay.end() ? 0 : static_cast<int32_t>(at - hay.begin() + 1));
}

Variant InStrRev(RuntimeState&, Args a) {
  const Variant s1 = ValueOf(a[0]);
  const Variant s2 = ValueOf(a[1]);
  const int32_t start = OptionalLong(a, 2, -1);
  const bool text = TextCompareArg(a, 3);
  if (start == 0 || start < -1) Raise(kErrInvalidCall);
  // Unlike InStr, InStrRev refuses Null text.
  if (s1.is_null() || s2.is_null()) Raise(kErrInvalidUseOfNull);
  const String hay = ToString(s1), needle = ToString(s2);
  const size_t end = start == -1 ? hay.size() : static_cast<size_t>(start);
  if (end > hay.size()) return Variant(int32_t{0});
  if (needle.empty()) return Variant(static_cast<int32_t>(end));
  if (needle.size() > end) return Variant(int32_t{0});
  const size_t last_start = end - needle.size();
  size_t at;
  if (text) {
    at = FoldedCopy(hay).view().rfind(FoldedCopy(needle).view(), last_start);
  } else {
    at = hay.view().rfind(needle.view(), last_start);
  }
  return Variant(at == StringView::npos ? int32_t{0} : static_cast<int32_t>(at + 1));
}

Variant Replace(RuntimeState&, Args a) {
  const Variant expr = ValueOf(a[0]);
  const Variant find = ValueOf(a[1]);
  const Variant with = ValueOf(a[2]);
  const int32_t start = Given(a, 3) ? StartArg(a[3]) : 1;
  const int32_t count = OptionalLong(a, 4, -1);
  const bool text = TextCompareArg(a, 5);
  if (count < -1) Raise(kErrInvalidCall);
  if (expr.is_null() || find.is_null() || with.is_null()) Raise(kErrInvalidUseOfNull);
  return ReplaceText(ToString(expr), ToString(find), ToString(with), start, count, text);
}

Variant LCase(RuntimeState&, Args a) {
  const Variant v = ValueOf(a[0]);
  if (v.is_null()) return Variant::Null();
  return ToLower(ToString(v));
}

Variant UCase(RuntimeState&, Args a) {
  const Variant v = ValueOf(a[0]);
  if (v.is_null()) return Variant::Null();
  return ToUpper(ToString(v));
}

enum TrimSides { kTrimLeft = 1, kTrimRight = 2 };

Variant TrimWith(Args a, int sides) {
  const Variant v = ValueOf(a[0]);
  if (v.is_null()) return Variant::Null();
  const String s = ToString(v);
  size_t b = 0, e = s.size();
  if (sides & kTrimLeft) {
    while (b < e && s[b] == u' ')
      ++b;
  }
  if (sides & kTrimRight) {
    while (e > b && s[e - 1] == u' ')
      --e;
  }
  if (b == 0 && e == s.size()) return s;
  return String(s.view().substr(b, e - b));
}

Variant LTrim(RuntimeState&, Args a) {
  return TrimWith(a, kTrimLeft);
}
Variant RTrim(RuntimeState&, Args a) {
  return TrimWith(a, kTrimRight);
}
Variant Trim(RuntimeState&, Args a) {
  return TrimWith(a, kTrimLeft | kTrimRight);
}

Variant Space(RuntimeState&, Args a) {
  return String(BuildCount(a[0]), u' ');
}

Variant StringFn(RuntimeState&, Args a) {
  const size_t n = BuildCount(a[0]);
  const Variant c = ValueOf(a[1]);
  if (c.is_null()) return Variant::Null();
  Char fill;
  if (c.is_string()) {
    if (c.as_string().empty()) Raise(kErrInvalidCall);
    fill = c.as_string()[0];
  } else {
    const int32_t code = ToLong(c);
    fill = AnsiToChar(static_cast<uint8_t>(((code % 256) + 256) % 256));
  }
  return String(n, fill);
}

Variant StrComp(RuntimeState&, Args a) {
  const Variant x = ValueOf(a[0]);
  const Variant y = ValueOf(a[1]);
  const bool text = TextCompareArg(a, 2);
  if (x.is_null() || y.is_null()) return Variant::Null();
  const String s = ToString(x), t = ToString(y);
  const int c = text ? CompareText(s, t) : CompareBinary(s, t);
  return Variant(static_cast<int16_t>(c < 0 ? -1 : (c > 0 ? 1 : 0)));
}

Variant StrReverse(RuntimeState&, Args a) {
  const Variant v = ValueOf(a[0]);
  if (v.is_null()) Raise(kErrInvalidUseOfNull);
  std::u16string s(ToString(v).view());
  std::reverse(s.begin(), s.end());
  return String(StringView(s));
}

Char FirstChar(const Variant& raw) {
  const Variant v = ValueOf(raw);
  if (v.is_null()) Raise(kErrInvalidUseOfNull);
  const String s = ToString(v);
  if (s.empty()) Raise(kErrInvalidCall);
  return s[0];
}

Variant Asc(RuntimeState&, Args a) {
  return Variant(static_cast<int16_t>(CharToAnsi(FirstChar(a[0]))));
}

Variant AscB(RuntimeState&, Args a) {
  const Variant v = ValueOf(a[0]);
  if (v.is_null()) Raise(kErrInvalidUseOfNull);
  const String s = ToString(v);
  if (s.byte_size() == 0) Raise(kErrInvalidCall);
  return Variant(static_cast<uint8_t>(s.empty() ? s.last_byte() : s[0] & 0xFF));
}

Variant AscW(RuntimeState&, Args a) {
  return Variant(static_cast<int16_t>(FirstChar(a[0])));
}

int32_t CodeArg(const Variant& raw) {
  const Variant v = ValueOf(raw);
  if (v.is_null()) Raise(kErrInvalidUseOfNull);
  return ToLong(v);
}

Variant Chr(RuntimeState&, Args a) {
  const int32_t code = CodeArg(a[0]);
  if (code < 0 || code > 255) Raise(kErrInvalidCall);
  return String(1, AnsiToChar(static_cast<uint8_t>(code)));
}

// ChrB makes text of one byte.
Variant ChrB(RuntimeState&, Args a) {
  const int32_t code = CodeArg(a[0]);
  // The code becomes a Byte first, so a code past 255 overflows rather than being refused.
  if (code < 0 || code > 255) Raise(kErrOverflow);
  const auto byte = static_cast<uint8_t>(code);
  return String::FromBytes(&byte, 1);
}

Variant ChrW(RuntimeState&, Args a) {
  const int32_t code = CodeArg(a[0]);
  if (code < -32768 || code > 65535) Raise(kErrInvalidCall);
  return String(1, static_cast<Char>(code < 0 ? code + 65536 : code));
}

constexpr char16_t kHex[] = u"0123456789ABCDEF";

bool KeptByEscape(Char c) {
  if ((c >= u'A' && c <= u'Z') || (c >= u'a' && c <= u'z') || (c >= u'0' && c <= u'9')) return true;
  return c == u'@' || c == u'*' || c == u'_' || c == u'+' || c == u'-' || c == u'.' || c == u'/';
}

Variant Escape(RuntimeState&, Args a) {
  const Variant v = ValueOf(a[0]);
  if (v.is_null()) Raise(kErrInvalidUseOfNull);
  const String s = ToString(v);
  String out;
  out.Reserve(s.size());
  for (const Char c : s) {
    if (KeptByEscape(c)) {
      out.Append(c);
    } else if (c < 256) {
      const Char code[] = {u'%', kHex[c >> 4], kHex[c & 15]};
      out.Append(StringView(code, 3));
    } else {
      const Char code[] = {
          u'%', u'u', kHex[c >> 12], kHex[(c >> 8) & 15], kHex[(c >> 4) & 15], kHex[c & 15]};
      out.Append(StringView(code, 6));
    }
  }
  return out;
}

int HexDigit(Char c) {
  if (c >= u'0' && c <= u'9') return c - u'0';
  if (c >= u'a' && c <= u'f') return c - u'a' + 10;
  if (c >= u'A' && c <= u'F') return c - u'A' + 10;
  return -1;
}

// The value of `count` hex digits at `at`, or -1 when any of them is no hex digit.
int HexRun(StringView s, size_t at, size_t count) {
  if (at + count > s.size()) return -1;
  int value = 0;
  for (size_t i = 0; i < count; ++i) {
    const int d = HexDigit(s[at + i]);
    if (d < 0) return -1;
    value = value * 16 + d;
  }
  return value;
}

Variant Unescape(RuntimeState&, Args a) {
  const Variant v = ValueOf(a[0]);
  if (v.is_null()) Raise(kErrInvalidUseOfNull);
  const String s = ToString(v);
  const StringView t = s.view();
  String out;
  out.Reserve(t.size());
  for (size_t i = 0; i < t.size(); ++i) {
    if (t[i] == u'%') {
      if (i + 1 < t.size() && t[i + 1] == u'u') {
        const int code = HexRun(t, i + 2, 4);
        if (code >= 0) {
          out.Append(static_cast<Char>(code));
          i += 5;
          continue;
        }
      }
      const int code = HexRun(t, i + 1, 2);
      if (code >= 0) {
        out.Append(static_cast<Char>(code));
        i += 2;
        continue;
      }
    }
    out.Append(t[i]);
  }
  return out;
}

constexpr BuiltinFunction kStringFunctions[] = {
    {u"Asc", Asc, 1, 1},           {u"AscB", AscB, 1, 1},
    {u"AscW", AscW, 1, 1},         {u"Chr", Chr, 1, 1},
    {u"ChrB", ChrB, 1, 1},         {u"ChrW", ChrW, 1, 1},
    {u"Escape", Escape, 1, 1},     {u"InStr", InStr, 2, 4},
    {u"InStrB", InStrB, 2, 4},     {u"LeftB", LeftB, 2, 2},
    {u"MidB", MidB, 2, 3},         {u"RightB", RightB, 2, 2},
    {u"InStrRev", InStrRev, 2, 4}, {u"LCase", LCase, 1, 1},
    {u"Left", Left, 2, 2},         {u"Len", Len, 1, 1},
    {u"LenB", LenB, 1, 1},         {u"LTrim", LTrim, 1, 1},
    {u"Mid", Mid, 2, 3},           {u"Replace", Replace, 3, 6},
    {u"Right", Right, 2, 2},       {u"RTrim", RTrim, 1, 1},
    {u"Space", Space, 1, 1},       {u"StrComp", StrComp, 2, 3},
    {u"String", StringFn, 2, 2},   {u"StrReverse", StrReverse, 1, 1},
    {u"Trim", Trim, 1, 1},         {u"UCase", UCase, 1, 1},
    {u"Unescape", Unescape, 1, 1},
};

}  // namespace

// Compares eight positions at a time on their first and last units (SSE2, which every x86-64
// has) and checks the rest only where both agree; far fewer branches than a unit-by-unit scan.
size_t FindText(StringView hay, StringView needle, size_t from) {
  const size_t m = needle.size();
  if (m == 0) return from <= hay.size() ? from : StringView::npos;
  if (from > hay.size() || hay.size() - from < m) return StringView::npos;
  const Char* h = hay.data();
  const Char* n = needle.data();
  size_t i = from;
#ifdef __SSE2__
  const __m128i first = _mm_set1_epi16(static_cast<int16_t>(n[0]));
  const __m128i last = _mm_set1_epi16(static_cast<int16_t>(n[m - 1]));
  for (; i + m - 1 + 8 <= hay.size(); i += 8) {
    const __m128i a = _mm_loadu_si128(reinterpret_cast<const __m128i*>(h + i));
    const __m128i b = _mm_loadu_si128(reinterpret_cast<const __m128i*>(h + i + m - 1));
    auto mask = static_cast<unsigned>(
        _mm_movemask_epi8(_mm_and_si128(_mm_cmpeq_epi16(a, first), _mm_cmpeq_epi16(b, last))));
    while (mask) {
      const int bit = __builtin_ctz(mask);
      const size_t at = i + bit / 2;
      if (m <= 2 || std::char_traits<Char>::compare(h + at + 1, n + 1, m - 2) == 0) return at;
      mask &= ~(3u << bit);
    }
  }
#endif
  for (; i + m <= hay.size(); ++i) {
    if (h[i] == n[0] && std::char_traits<Char>::compare(h + i, n, m) == 0) return i;
  }
  return StringView::npos;
}

String ReplaceText(StringView expr, StringView find, StringView with, int32_t start, int32_t count,
                   bool text_compare) {
  // Replace returns the text from `start` on: what lies before it is dropped.
  if (static_cast<size_t>(start) > expr.size()) return {};
  const StringView tail = expr.substr(start - 1);
  if (find.empty() || count == 0) return String(tail);
  String folded_tail, folded_find;
  StringView hay = tail, needle = find;
  if (text_compare) {
    folded_tail = FoldedCopy(tail);
    folded_find = FoldedCopy(find);
    hay = folded_tail;
    needle = folded_find;
  }
  size_t at = FindText(hay, needle, 0);
  if (at == StringView::npos) return String(tail);
  String out;
  out.Reserve(tail.size() + (with.size() > find.size() ? 16 * with.size() : 0));
  size_t from = 0;
  int32_t done = 0;
  while (at != StringView::npos && (count < 0 || done < count)) {
    out.Append(tail.substr(from, at - from));
    out.Append(with);
    from = at + needle.size();
    ++done;
    at = FindText(hay, needle, from);
  }
  out.Append(tail.substr(from));
  return out;
}

// Windows-1252, the ANSI code page of locale 1033: codes 0x80..0x9F differ from Latin-1.
constexpr char16_t kCp1252High[32] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

Char AnsiToChar(uint8_t code) {
  if (code >= 0x80 && code < 0xA0) return kCp1252High[code - 0x80];
  return code;
}

int CharToAnsi(Char c) {
  if (c < 0x80 || (c >= 0xA0 && c < 0x100)) return c;
  for (int i = 0; i < 32; ++i) {
    if (kCp1252High[i] == c) return 0x80 + i;
  }
  return u'?';
}

std::span<const BuiltinFunction> StringFunctions() {
  return kStringFunctions;
}

}  // namespace qv::vbs
