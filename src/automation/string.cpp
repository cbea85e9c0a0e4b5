// The shared UTF-16 string, its UTF-8 edges, and the one case-folding rule of the system.
#include "automation/string.h"

#include <locale.h>
#include <algorithm>
#include <cassert>
#include <clocale>
#include <cstdlib>
#include <cstring>
#include <cwctype>
#include <new>
#include <vector>

#include "automation/error.h"

namespace qv {

namespace {

constexpr size_t kMaxLength = 0x7FFFFFF0;  // VBScript's strings stop short of 2^31 units

[[noreturn]] void ThrowOutOfMemory() {
  throw Error(kErrOutOfMemory);
}

}  // namespace

String::Rep* String::Allocate(size_t capacity) {
  if (capacity > kMaxLength) ThrowOutOfMemory();
  void* raw = std::malloc(offsetof(Rep, data) + (capacity + 1) * sizeof(Char));
  if (!raw) ThrowOutOfMemory();
  Rep* rep = static_cast<Rep*>(raw);
  rep->refs = 1;
  rep->size = 0;
  rep->capacity = static_cast<uint32_t>(capacity);
  rep->odd = 0;
  rep->half = 0;
  rep->data[0] = 0;
  return rep;
}

String::String(StringView text) {
  if (text.empty()) return;
  rep_ = Allocate(text.size());
  std::memcpy(rep_->data, text.data(), text.size() * sizeof(Char));
  rep_->size = static_cast<uint32_t>(text.size());
  rep_->data[text.size()] = 0;
}

String::String(size_t count, Char fill) {
  if (count == 0) return;
  rep_ = Allocate(count);
  for (size_t i = 0; i < count; ++i)
    rep_->data[i] = fill;
  rep_->size = static_cast<uint32_t>(count);
  rep_->data[count] = 0;
}

void String::Reserve(size_t capacity) {
  if (rep_ && rep_->refs == 1 && rep_->capacity >= capacity) return;
  const size_t n = size();
  if (capacity < n) capacity = n;
  Rep* fresh = Allocate(capacity);
  if (n) std::memcpy(fresh->data, rep_->data, n * sizeof(Char));
  fresh->size = static_cast<uint32_t>(n);
  fresh->data[n] = 0;
  if (rep_) {
    fresh->odd = rep_->odd;
    fresh->half = rep_->half;
  }
  Release();
  rep_ = fresh;
}

void String::Append(StringView text) {
  if (text.empty()) return;
  if (odd_byte()) {
    AppendBytes(String(text));
    return;
  }
  const size_t n = size();
  if (text.size() > kMaxLength - n) ThrowOutOfMemory();
  const size_t needed = n + text.size();
  if (!rep_ || rep_->refs != 1 || rep_->capacity < needed) {
    // The text may point into our own buffer, which stays alive until the copy is done.
    // A first append takes the exact size (most strings are built once); a string that is
    // appended to again is being built piece by piece and gets room to grow.
    size_t grown = n == 0 ? needed : std::max(needed, n + n / 2 + 16);
    if (grown < needed) grown = needed;
    if (grown > kMaxLength) grown = needed;
    Rep* fresh = Allocate(grown);
    if (n) std::memcpy(fresh->data, rep_->data, n * sizeof(Char));
    std::memcpy(fresh->data + n, text.data(), text.size() * sizeof(Char));
    fresh->size = static_cast<uint32_t>(needed);
    fresh->data[needed] = 0;
    Release();
    rep_ = fresh;
    return;
  }
  std::memmove(rep_->data + n, text.data(), text.size() * sizeof(Char));
  rep_->size = static_cast<uint32_t>(needed);
  rep_->data[needed] = 0;
}

String String::FromBytes(const uint8_t* bytes, size_t count) {
  String out;
  if (count == 0) return out;
  const size_t units = count / 2;
  out.rep_ = Allocate(units);
  for (size_t i = 0; i < units; ++i)
    out.rep_->data[i] = static_cast<Char>(bytes[2 * i] | (bytes[2 * i + 1] << 8));
  out.rep_->size = static_cast<uint32_t>(units);
  out.rep_->data[units] = 0;
  if (count % 2) {
    out.rep_->odd = 1;
    out.rep_->half = bytes[count - 1];
  }
  return out;
}

void String::AppendBytes(const String& other) {
  if (!odd_byte()) {
    Append(other.view());
    if (other.odd_byte()) {
      if (!rep_ || rep_->refs != 1) Reserve(size());
      rep_->odd = 1;
      rep_->half = other.rep_->half;
    }
    return;
  }
  // Joining after an odd byte shifts every following byte by one: rare, so done plainly.
  std::vector<uint8_t> bytes;
  bytes.reserve(byte_size() + other.byte_size());
  for (const String* s : {static_cast<const String*>(this), &other}) {
    for (const Char c : s->view()) {
      bytes.push_back(static_cast<uint8_t>(c & 0xFF));
      bytes.push_back(static_cast<uint8_t>(c >> 8));
    }
    if (s->odd_byte()) bytes.push_back(s->rep_->half);
  }
  *this = FromBytes(bytes.data(), bytes.size());
}

String operator+(StringView a, StringView b) {
  String out;
  out.Reserve(a.size() + b.size());
  out.Append(a);
  out.Append(b);
  return out;
}

String String::FromUtf8(std::string_view utf8) {
  String out;
  if (utf8.empty()) return out;
  // One UTF-16 unit per byte at most, so the buffer is sized once and written in place:
  // templates and generated pages pass through here whole.
  out.rep_ = Allocate(utf8.size());
  Char* put = out.rep_->data;
  const auto* p = reinterpret_cast<const unsigned char*>(utf8.data());
  const auto* end = p + utf8.size();
  while (p < end) {
    unsigned c = *p;
    if (c < 0x80) {
      *put++ = static_cast<Char>(c);
      ++p;
      continue;
    }
    int extra = c >= 0xF0 && c < 0xF8 ? 3 : c >= 0xE0 ? 2 : c >= 0xC2 && c < 0xE0 ? 1 : -1;
    if (c >= 0xF8) extra = -1;
    if (extra < 0 || end - p <= extra) {
      *put++ = 0xFFFD;
      ++p;
      continue;
    }
    uint32_t cp = c & (0x3F >> extra);
    bool ok = true;
    for (int i = 1; i <= extra; ++i) {
      if ((p[i] & 0xC0) != 0x80) {
        ok = false;
        break;
      }
      cp = (cp << 6) | (p[i] & 0x3F);
    }
    const bool overlong = (extra == 2 && cp < 0x800) || (extra == 3 && cp < 0x10000);
    if (!ok || overlong || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) {
      *put++ = 0xFFFD;
      ++p;
      continue;
    }
    p += extra + 1;
    if (cp >= 0x10000) {
      cp -= 0x10000;
      *put++ = static_cast<Char>(0xD800 + (cp >> 10));
      *put++ = static_cast<Char>(0xDC00 + (cp & 0x3FF));
    } else {
      *put++ = static_cast<Char>(cp);
    }
  }
  const size_t n = static_cast<size_t>(put - out.rep_->data);
  assert(n <= out.rep_->capacity);
  out.rep_->size = static_cast<uint32_t>(n);
  out.rep_->data[n] = 0;
  return out;
}

std::string String::ToUtf8(StringView text) {
  // Size once from an upper bound (a surrogate pair counts six for its four bytes), write
  // through a pointer, trim at the end.
  size_t bound = 0;
  for (const Char c : text)
    bound += c < 0x80 ? 1 : c < 0x800 ? 2 : 3;
  std::string out(bound, '\0');
  char* put = out.data();
  for (size_t i = 0; i < text.size(); ++i) {
    uint32_t cp = text[i];
    if (cp < 0x80) {
      *put++ = static_cast<char>(cp);
      continue;
    }
    if (cp >= 0xD800 && cp <= 0xDBFF && i + 1 < text.size() && text[i + 1] >= 0xDC00 &&
        text[i + 1] <= 0xDFFF) {
      cp = 0x10000 + ((cp - 0xD800) << 10) + (text[i + 1] - 0xDC00);
      ++i;
    } else if (cp >= 0xD800 && cp <= 0xDFFF) {
      cp = 0xFFFD;  // a lone surrogate has no UTF-8 form
    }
    if (cp < 0x800) {
      *put++ = static_cast<char>(0xC0 | (cp >> 6));
      *put++ = static_cast<char>(0x80 | (cp & 0x3F));
    } else if (cp < 0x10000) {
      *put++ = static_cast<char>(0xE0 | (cp >> 12));
      *put++ = static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
      *put++ = static_cast<char>(0x80 | (cp & 0x3F));
    } else {
      *put++ = static_cast<char>(0xF0 | (cp >> 18));
      *put++ = static_cast<char>(0x80 | ((cp >> 12) & 0x3F));
      *put++ = static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
      *put++ = static_cast<char>(0x80 | (cp & 0x3F));
    }
  }
  out.resize(static_cast<size_t>(put - out.data()));
  return out;
}

std::string String::ToUtf8() const {
  return ToUtf8(view());
}

namespace {

// Two tables of the whole plane, filled once from the C library's Unicode tables. Building them
// by hand would mean shipping our own copy of the Unicode case data; the C.UTF-8 locale has it.
struct CaseTables {
  std::vector<Char> lower;
  std::vector<Char> upper;
  CaseTables() : lower(0x10000), upper(0x10000) {
    locale_t loc = newlocale(LC_CTYPE_MASK, "C.UTF-8", static_cast<locale_t>(0));
    for (uint32_t c = 0; c < 0x10000; ++c) {
      Char lo = static_cast<Char>(c), up = static_cast<Char>(c);
      if (c < 0x80) {
        if (c >= 'A' && c <= 'Z') lo = static_cast<Char>(c + 32);
        if (c >= 'a' && c <= 'z') up = static_cast<Char>(c - 32);
      } else if (loc && (c < 0xD800 || c > 0xDFFF)) {
        const wint_t l = towlower_l(static_cast<wint_t>(c), loc);
        const wint_t u = towupper_l(static_cast<wint_t>(c), loc);
        if (l < 0x10000) lo = static_cast<Char>(l);
        if (u < 0x10000) up = static_cast<Char>(u);
      } else if (c >= 0xC0 && c <= 0xFE && c != 0xD7 && c != 0xF7) {
        if (c <= 0xDE) lo = static_cast<Char>(c + 32);
        if (c >= 0xE0) up = static_cast<Char>(c - 32);
      }
      lower[c] = lo;
      upper[c] = up;
    }
    if (loc) freelocale(loc);
  }
};

const CaseTables& Tables() {
  static const CaseTables tables;
  return tables;
}

}  // namespace

Char ToLowerChar(Char c) noexcept {
  if (c < 0x80) return (c >= 'A' && c <= 'Z') ? static_cast<Char>(c + 32) : c;
  return Tables().lower[c];
}

Char ToUpperChar(Char c) noexcept {
  if (c < 0x80) return (c >= 'a' && c <= 'z') ? static_cast<Char>(c - 32) : c;
  return Tables().upper[c];
}

String ToLower(StringView text) {
  String out(text);
  if (out.empty()) return out;
  Char* p = const_cast<Char*>(out.data());  // out is unique: freshly made
  for (size_t i = 0; i < out.size(); ++i)
    p[i] = ToLowerChar(p[i]);
  return out;
}

String ToUpper(StringView text) {
  String out(text);
  if (out.empty()) return out;
  Char* p = const_cast<Char*>(out.data());
  for (size_t i = 0; i < out.size(); ++i)
    p[i] = ToUpperChar(p[i]);
  return out;
}

bool EqualsNoCase(StringView a, StringView b) noexcept {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i) {
    if (a[i] != b[i] && ToLowerChar(a[i]) != ToLowerChar(b[i])) return false;
  }
  return true;
}

int CompareNoCase(StringView a, StringView b) noexcept {
  const size_t n = a.size() < b.size() ? a.size() : b.size();
  for (size_t i = 0; i < n; ++i) {
    if (a[i] == b[i]) continue;
    const Char x = ToLowerChar(a[i]), y = ToLowerChar(b[i]);
    if (x != y) return x < y ? -1 : 1;
  }
  return a.size() == b.size() ? 0 : (a.size() < b.size() ? -1 : 1);
}

int CompareBinary(StringView a, StringView b) noexcept {
  const int c = a.compare(b);
  return c < 0 ? -1 : (c > 0 ? 1 : 0);
}

size_t HashNoCase(StringView text) noexcept {
  uint64_t h = 1469598103934665603ull;  // FNV-1a over the folded units
  for (Char c : text) {
    h ^= ToLowerChar(c);
    h *= 1099511628211ull;
  }
  return static_cast<size_t>(h);
}

StringView TrimBlanks(StringView text) noexcept {
  size_t b = 0, e = text.size();
  while (b < e && text[b] == u' ')
    ++b;
  while (e > b && text[e - 1] == u' ')
    --e;
  return text.substr(b, e - b);
}

String NumberText(int64_t value) {
  Char buf[24];
  size_t pos = std::size(buf);
  const bool negative = value < 0;
  uint64_t v = negative ? 0 - static_cast<uint64_t>(value) : static_cast<uint64_t>(value);
  do {
    buf[--pos] = static_cast<Char>(u'0' + v % 10);
    v /= 10;
  } while (v);
  if (negative) buf[--pos] = u'-';
  return String(StringView(buf + pos, std::size(buf) - pos));
}

}  // namespace qv
