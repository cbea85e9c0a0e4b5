// The engine's text type: UTF-16 code units, one per character as VBScript counts them,
// in a shared immutable buffer. Copies only bump a count; a holder that is alone with its
// buffer may append in place, which keeps `s = s & x` loops linear.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

namespace qv {

using Char = char16_t;
using StringView = std::u16string_view;

class String {
 public:
  String() noexcept = default;
  String(StringView text);  // NOLINT(google-explicit-constructor): text literals convert freely
  String(const Char* text) : String(StringView(text)) {}  // NOLINT(google-explicit-constructor)
  String(size_t count, Char fill);
  // Copies and releases are inline: the script engine makes them on every value it moves.
  String(const String& other) noexcept : rep_(other.rep_) {
    if (rep_) ++rep_->refs;
  }
  String(String&& other) noexcept : rep_(other.rep_) { other.rep_ = nullptr; }
  String& operator=(const String& other) noexcept {
    if (other.rep_) ++other.rep_->refs;
    Release();
    rep_ = other.rep_;
    return *this;
  }
  String& operator=(String&& other) noexcept {
    if (this != &other) {
      Release();
      rep_ = other.rep_;
      other.rep_ = nullptr;
    }
    return *this;
  }
  ~String() { Release(); }

  // Conversions at the edges of the engine. Invalid UTF-8 bytes become U+FFFD.
  static String FromUtf8(std::string_view utf8);
  std::string ToUtf8() const;
  static std::string ToUtf8(StringView text);

  size_t size() const noexcept { return rep_ ? rep_->size : 0; }
  bool empty() const noexcept { return size() == 0; }
  const Char* data() const noexcept { return rep_ ? rep_->data : kEmpty; }
  Char operator[](size_t i) const noexcept { return rep_->data[i]; }
  StringView view() const noexcept { return StringView(data(), size()); }
  operator StringView() const noexcept { return view(); }  // NOLINT(google-explicit-constructor)
  const Char* begin() const noexcept { return data(); }
  const Char* end() const noexcept { return data() + size(); }

  // Appends in place when this holder is alone with a buffer that has room; otherwise
  // moves to a new buffer with room to grow, so repeated appends cost amortised O(1).
  void Append(StringView text);
  void Append(Char c) { Append(StringView(&c, 1)); }
  void Reserve(size_t capacity);
  void Clear() noexcept { Release(); }

  // Text of an odd number of bytes, which the byte functions of scripts can make (LeftB,
  // ChrB), keeps its last byte apart from the characters: every character operation sees the
  // whole characters only; the byte functions and joining texts see the byte too.
  static String FromBytes(const uint8_t* bytes, size_t count);
  bool odd_byte() const noexcept { return rep_ && rep_->odd; }
  uint8_t last_byte() const noexcept { return odd_byte() ? rep_->half : 0; }
  size_t byte_size() const noexcept { return size() * 2 + (odd_byte() ? 1 : 0); }
  // Appends `other` byte for byte: an odd byte here pairs with the first byte of `other`.
  void AppendBytes(const String& other);

  // True when no other String shares this buffer (the empty string counts as unique).
  bool IsUnique() const noexcept { return !rep_ || rep_->refs == 1; }
  // Identity of the buffer, for tests that prove copies share storage.
  const void* BufferId() const noexcept { return rep_; }

  friend bool operator==(const String& a, const String& b) noexcept { return a.view() == b.view(); }
  friend bool operator==(const String& a, StringView b) noexcept { return a.view() == b; }
  friend bool operator==(const String& a, const Char* b) noexcept {
    return a.view() == StringView(b);
  }
  friend auto operator<=>(const String& a, const String& b) noexcept {
    return a.view() <=> b.view();
  }

  String& operator+=(StringView text) {
    Append(text);
    return *this;
  }

 private:
  struct Rep {
    uint32_t refs;
    uint32_t size;
    uint32_t capacity;
    uint8_t odd;  // 1 when `half` holds a byte past the last whole character
    uint8_t half;
    Char data[1];
  };
  static constexpr Char kEmpty[1] = {0};
  static Rep* Allocate(size_t capacity);
  void Release() noexcept {
    if (rep_ && --rep_->refs == 0) std::free(rep_);
    rep_ = nullptr;
  }

  Rep* rep_ = nullptr;
};

String operator+(StringView a, StringView b);
inline String operator+(const String& a, StringView b) {
  return a.view() + b;
}
inline String operator+(const String& a, const String& b) {
  return a.view() + b.view();
}
inline String operator+(const String& a, const Char* b) {
  return a.view() + StringView(b);
}
inline String operator+(const Char* a, const String& b) {
  return StringView(a) + b.view();
}

// Shorthand for text that starts out as UTF-8 in the source or the outside world.
inline String Str(std::string_view utf8) {
  return String::FromUtf8(utf8);
}

// Case rules shared by every case-insensitive comparison in the system. Letters of the whole
// Basic Multilingual Plane fold by the Unicode simple case mapping.
Char ToLowerChar(Char c) noexcept;
Char ToUpperChar(Char c) noexcept;
String ToLower(StringView text);
String ToUpper(StringView text);
bool EqualsNoCase(StringView a, StringView b) noexcept;
// Orders by the lower-case fold of each unit: the one text order of the system, so that keys
// sorted by it are found again by it.
int CompareNoCase(StringView a, StringView b) noexcept;
int CompareBinary(StringView a, StringView b) noexcept;

// Hash consistent with EqualsNoCase, for case-insensitive name tables.
size_t HashNoCase(StringView text) noexcept;

struct NoCaseHash {
  using is_transparent = void;
  size_t operator()(StringView s) const noexcept { return HashNoCase(s); }
};
struct NoCaseEqual {
  using is_transparent = void;
  bool operator()(StringView a, StringView b) const noexcept { return EqualsNoCase(a, b); }
};

// Trims blanks (U+0020 only, as VBScript's Trim does).
StringView TrimBlanks(StringView text) noexcept;

// Formats a whole number as decimal text.
String NumberText(int64_t value);

}  // namespace qv

template <>
struct std::hash<qv::String> {
  size_t operator()(const qv::String& s) const noexcept {
    return std::hash<std::u16string_view>()(s.view());
  }
};
