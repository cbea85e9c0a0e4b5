// VBScript's conversion and comparison rules for Variants.
#include "automation/convert.h"

#include <cfloat>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "automation/collation.h"
#include "automation/date_time.h"
#include "automation/error.h"
#include "automation/object.h"
#include "automation/safe_array.h"

namespace qv {

namespace {

[[noreturn]] void Mismatch() {
  throw Error(kErrTypeMismatch);
}
[[noreturn]] void Overflow() {
  throw Error(kErrOverflow);
}
[[noreturn]] void NullUse() {
  throw Error(kErrInvalidUseOfNull);
}

bool IsBlank(Char c) {
  return c == u' ' || c == u'\t' || c == u'\r' || c == u'\n';
}

StringView TrimWhite(StringView s) {
  size_t b = 0, e = s.size();
  while (b < e && IsBlank(s[b]))
    ++b;
  while (e > b && IsBlank(s[e - 1]))
    --e;
  return s.substr(b, e - b);
}

// The bits of "&H..." / "&O..." text, at most 32 of them.
std::optional<uint32_t> RadixBits(StringView digits, int radix) {
  if (digits.empty()) return std::nullopt;
  uint64_t value = 0;
  for (Char c : digits) {
    int d;
    if (c >= u'0' && c <= u'9') {
      d = c - u'0';
    } else if (radix == 16 && c >= u'a' && c <= u'f') {
      d = c - u'a' + 10;
    } else if (radix == 16 && c >= u'A' && c <= u'F') {
      d = c - u'A' + 10;
    } else {
      return std::nullopt;
    }
    if (d >= radix) return std::nullopt;
    value = value * radix + d;
    if (value > 0xFFFFFFFFull) return std::nullopt;
  }
  return static_cast<uint32_t>(value);
}

// Hex or octal text: the bits of "&H...", "&O..." after blanks, or nothing for other text.
std::optional<uint32_t> RadixTextBits(StringView text) {
  const StringView s = TrimWhite(text);
  if (s.size() < 2 || s[0] != u'&') return std::nullopt;
  if (s[1] == u'H' || s[1] == u'h') return RadixBits(s.substr(2), 16);
  if (s[1] == u'O' || s[1] == u'o') return RadixBits(s.substr(2), 8);
  return std::nullopt;
}

double NumberOf(const Variant& v);

// The numeric value of a value already known to be numeric.
double NumericPayload(const Variant& v) {
  switch (v.type()) {
    case VarType::Empty:
      return 0;
    case VarType::Boolean:
      return v.as_bool() ? -1 : 0;
    case VarType::Byte:
      return v.as_byte();
    case VarType::Integer:
      return v.as_integer();
    case VarType::Long:
      return v.as_long();
    case VarType::Single:
      return v.as_single();
    case VarType::Double:
      return v.as_double();
    case VarType::Currency:
      return static_cast<double>(v.as_currency()) / 10000.0;
    case VarType::Date:
      return v.as_date();
    default:
      return NumberOf(v);
  }
}

// Any value as a double, with VBScript's errors.
double NumberOf(const Variant& v) {
  switch (v.type()) {
    case VarType::Null:
      NullUse();
    case VarType::String: {
      const auto n = ParseNumberText(v.as_string(), CurrentLocale());
      if (!n) Mismatch();
      return *n;
    }
    case VarType::Object:
      return NumberOf(ValueOf(v));
    case VarType::Error:
    case VarType::Array:
      Mismatch();
    default:
      return NumericPayload(v);
  }
}

int64_t WholeNumber(const Variant& v, double lo, double hi) {
  if (v.type() == VarType::Currency) {
    // Exact banker's rounding of the ten-thousandths.
    const int64_t c = v.as_currency();
    int64_t q = c / 10000, r = c % 10000;
    if (r > 5000 || (r == 5000 && (q & 1))) ++q;
    if (r < -5000 || (r == -5000 && (q & 1))) --q;
    if (q < lo || q > hi) Overflow();
    return q;
  }
  const double d = RoundHalfEven(NumberOf(v));
  if (!(d >= lo && d <= hi)) Overflow();
  return static_cast<int64_t>(d);
}

}  // namespace

double RoundHalfEven(double value) {
  return std::nearbyint(value);
}

namespace {

// Whether `c` separates groups of digits: the locale's separator, and a plain space where
// that is a no-break space, since nobody types one.
bool IsGroupSeparator(Char c, const Locale& locale) {
  return c == locale.group || (c == u' ' && locale.group == 0x00A0);
}

// Decimal text as VBScript reads it, reduced to "digits[.digits][e[sign]digits]" in `clean`.
// False for text that is no decimal number (hex and octal text included).
bool ReadDecimalText(StringView text, std::string& clean, bool& negative, const Locale& locale) {
  StringView s = TrimWhite(text);
  bool parens = false;
  negative = false;
  if (!s.empty() && s[0] == u'(' && s.back() == u')') {
    parens = true;
    s = TrimWhite(s.substr(1, s.size() - 2));
  }
  // The symbol may lead, and may follow where the locale writes it after the amount.
  const StringView currency = locale.currency;
  const bool symbol_after = locale.currency_positive % 2 == 1;
  auto skip_currency = [&] {
    if (currency.empty()) return;
    if (s.starts_with(currency)) s = TrimWhite(s.substr(currency.size()));
    if (symbol_after && s.ends_with(currency))
      s = TrimWhite(s.substr(0, s.size() - currency.size()));
  };
  skip_currency();
  bool signed_ = false;
  if (!s.empty() && (s[0] == u'+' || s[0] == u'-')) {
    negative = s[0] == u'-';
    signed_ = true;
    s = TrimWhite(s.substr(1));
  }
  skip_currency();
  // The sign may also follow the number ("5-"), but only one sign in all.
  if (!signed_ && !s.empty() && (s.back() == u'+' || s.back() == u'-')) {
    negative = s.back() == u'-';
    signed_ = true;
    s = TrimWhite(s.substr(0, s.size() - 1));
  }
  if (parens && signed_) return false;
  negative = negative || parens;
  clean.clear();
  clean.reserve(s.size());
  size_t i = 0;
  int digits = 0;
  while (i < s.size() &&
         ((s[i] >= u'0' && s[i] <= u'9') || (digits > 0 && IsGroupSeparator(s[i], locale)))) {
    if (s[i] >= u'0' && s[i] <= u'9') {
      clean.push_back(static_cast<char>(s[i]));
      ++digits;
    }
    ++i;
  }
  if (i < s.size() && s[i] == locale.decimal) {
    clean.push_back('.');
    ++i;
    while (i < s.size() && s[i] >= u'0' && s[i] <= u'9') {
      clean.push_back(static_cast<char>(s[i]));
      ++digits;
      ++i;
    }
  }
  if (digits == 0) return false;
  if (i < s.size() && (s[i] == u'e' || s[i] == u'E' || s[i] == u'd' || s[i] == u'D')) {
    size_t j = i + 1;
    std::string exponent = "e";
    if (j < s.size() && (s[j] == u'+' || s[j] == u'-'))
      exponent.push_back(static_cast<char>(s[j++]));
    const size_t first = j;
    while (j < s.size() && s[j] >= u'0' && s[j] <= u'9')
      exponent.push_back(static_cast<char>(s[j++]));
    if (j == first) return false;
    clean += exponent;
    i = j;
  }
  return i == s.size();
}

// Ten-thousandths of a decimal text, exactly and rounded half to even, as a Currency
// conversion of text reads it; nothing when it does not fit.
std::optional<int64_t> ScaledDecimal(const std::string& clean, bool negative) {
  std::string mantissa;
  int64_t exponent = 4;  // ten-thousandths
  size_t i = 0;
  bool fraction = false;
  for (; i < clean.size() && clean[i] != 'e'; ++i) {
    if (clean[i] == '.') {
      fraction = true;
      continue;
    }
    if (!(mantissa.empty() && clean[i] == '0')) mantissa.push_back(clean[i]);
    if (fraction) --exponent;
  }
  if (i < clean.size()) {
    const long long e = std::strtoll(clean.c_str() + i + 1, nullptr, 10);
    if (e > 100 || e < -100) {
      if (e > 0 && !mantissa.empty()) return std::nullopt;
      return int64_t{0};
    }
    exponent += e;
  }
  if (mantissa.empty()) return int64_t{0};
  // Keep the digits above the unit, round on the ones dropped.
  const int64_t dropped = exponent < 0 ? -exponent : 0;
  const int64_t kept_count = static_cast<int64_t>(mantissa.size()) - dropped;
  if (kept_count + (exponent > 0 ? exponent : 0) > 19) return std::nullopt;
  unsigned __int128 value = 0;
  for (int64_t k = 0; k < kept_count; ++k)
    value = value * 10 + static_cast<unsigned>(mantissa[k] - '0');
  for (int64_t k = 0; k < exponent; ++k)
    value *= 10;
  if (dropped > 0) {
    const std::string rest =
        kept_count >= 0 ? mantissa.substr(kept_count) : std::string(-kept_count, '0') + mantissa;
    const std::string half = "5" + std::string(rest.size() - 1, '0');
    const int c = rest.compare(half);
    if (c > 0 || (c == 0 && (value & 1))) ++value;
  }
  const unsigned __int128 limit =
      negative ? (unsigned __int128)1 << 63 : ((unsigned __int128)1 << 63) - 1;
  if (value > limit) return std::nullopt;
  return negative ? static_cast<int64_t>(-static_cast<__int128>(value))
                  : static_cast<int64_t>(value);
}

}  // namespace

std::optional<double> ParseNumberText(StringView text, const Locale& locale) {
  const StringView s = TrimWhite(text);
  if (!s.empty() && s[0] == u'&') {
    // Unlike a literal, hex text is read as 32 bits: "&HFFFF" is 65535, "&HFFFFFFFF" is -1.
    const auto bits = RadixTextBits(s);
    if (!bits) return std::nullopt;
    return static_cast<double>(static_cast<int32_t>(*bits));
  }
  std::string clean;
  bool negative = false;
  if (!ReadDecimalText(s, clean, negative, locale)) return std::nullopt;
  double value = std::strtod(clean.c_str(), nullptr);
  if (!std::isfinite(value)) return std::nullopt;
  return negative ? -value : value;
}

std::optional<bool> ParseBoolText(StringView text, const Locale& locale) {
  const StringView s = TrimWhite(text);
  // The names in any case, also in the #...# form a Boolean literal takes in other languages.
  if (EqualsNoCase(s, u"true") || EqualsNoCase(s, u"#true#")) return true;
  if (EqualsNoCase(s, u"false") || EqualsNoCase(s, u"#false#")) return false;
  const auto n = ParseNumberText(s, locale);
  if (!n) return std::nullopt;
  return *n != 0;
}

Variant ValueOf(const Variant& v) {
  if (!v.is_object()) return v;
  Variant current = v;
  for (int depth = 0; current.is_object() && depth < 16; ++depth) {
    Object* object = current.as_object();
    if (!object) throw Error(kErrObjectNotSet);
    current = object->DefaultValue();
  }
  if (current.is_object()) throw Error(kErrNotSupported);
  return current;
}

bool ToBool(const Variant& v) {
  switch (v.type()) {
    case VarType::Boolean:
      return v.as_bool();
    case VarType::String: {
      const auto b = ParseBoolText(v.as_string(), CurrentLocale());
      if (!b) Mismatch();
      return *b;
    }
    case VarType::Object:
      return ToBool(ValueOf(v));
    default:
      return NumberOf(v) != 0;
  }
}

uint8_t ToByte(const Variant& v) {
  // True is -1, whose low byte is 255: CByte(True) gives 255, not an overflow.
  if (v.type() == VarType::Boolean) return v.as_bool() ? 255 : 0;
  return static_cast<uint8_t>(WholeNumber(v, 0, 255));
}

int16_t ToInteger(const Variant& v) {
  if (v.type() == VarType::Integer) return v.as_integer();
  if (v.type() == VarType::String) {
    // Hex text that fits 16 bits wraps as an Integer literal does: CInt("&HFFFF") is -1.
    const auto bits = RadixTextBits(v.as_string());
    if (bits && *bits <= 0xFFFF) return static_cast<int16_t>(static_cast<uint16_t>(*bits));
  }
  return static_cast<int16_t>(WholeNumber(v, -32768, 32767));
}

int32_t ToLong(const Variant& v) {
  if (v.type() == VarType::Long) return v.as_long();
  return static_cast<int32_t>(WholeNumber(v, -2147483648.0, 2147483647.0));
}

float ToSingle(const Variant& v) {
  const double d = NumberOf(v);
  if (std::fabs(d) > FLT_MAX) Overflow();
  return static_cast<float>(d);
}

double ToDouble(const Variant& v) {
  return NumberOf(v);
}

int64_t ToCurrency(const Variant& v) {
  if (v.type() == VarType::Currency) return v.as_currency();
  if (v.type() == VarType::String && !TrimWhite(v.as_string()).starts_with(u"&")) {
    // Text converts digit by digit: "922337203685477.5807" is exact, as no Double can be.
    std::string clean;
    bool negative = false;
    if (!ReadDecimalText(v.as_string(), clean, negative, CurrentLocale())) Mismatch();
    const auto scaled = ScaledDecimal(clean, negative);
    if (!scaled) Overflow();
    return *scaled;
  }
  const double scaled = RoundHalfEven(NumberOf(v) * 10000.0);
  if (!(std::fabs(scaled) < 9.2233720368547758e18)) Overflow();
  return static_cast<int64_t>(scaled);
}

double ToDate(const Variant& v) {
  double d;
  switch (v.type()) {
    case VarType::Date:
      return v.as_date();
    case VarType::String: {
      const Locale& locale = CurrentLocale();
      if (const auto parsed = ParseDateText(v.as_string(), locale)) return *parsed;
      // Text that is no date but a number ("1", "-2.5") counts days, as a number would.
      const auto n = ParseNumberText(v.as_string(), locale);
      if (!n) Mismatch();
      d = *n;
      break;
    }
    case VarType::Object:
      return ToDate(ValueOf(v));
    default:
      d = NumberOf(v);
  }
  // Any time of 1/1/100 through 12/31/9999, whichever side of the epoch.
  if (!InDateRange(d)) Overflow();
  return d;
}

namespace {

// printf's text of a number with the locale's decimal separator; its own locale stays "C".
String NumberWithDecimal(const char* text, const Locale& locale) {
  String out = String::FromUtf8(text);
  if (locale.decimal == u'.') return out;
  std::u16string local(out.view());
  for (Char& c : local) {
    if (c == u'.') c = locale.decimal;
  }
  return String(StringView(local));
}

}  // namespace

String DoubleText(double value, const Locale& locale) {
  if (value == 0) return u"0";
  char buf[40];
  std::snprintf(buf, sizeof buf, "%.15G", value);
  return NumberWithDecimal(buf, locale);
}

String SingleText(float value, const Locale& locale) {
  if (value == 0) return u"0";
  char buf[40];
  std::snprintf(buf, sizeof buf, "%.7G", static_cast<double>(value));
  return NumberWithDecimal(buf, locale);
}

String CurrencyText(int64_t scaled, const Locale& locale) {
  const bool negative = scaled < 0;
  const uint64_t magnitude = negative ? 0 - static_cast<uint64_t>(scaled) : scaled;
  String out = NumberText(static_cast<int64_t>(magnitude / 10000));
  uint64_t fraction = magnitude % 10000;
  if (fraction) {
    Char digits[5] = {locale.decimal, 0, 0, 0, 0};
    for (int i = 4; i >= 1; --i) {
      digits[i] = static_cast<Char>(u'0' + fraction % 10);
      fraction /= 10;
    }
    size_t n = 5;
    while (digits[n - 1] == u'0')
      --n;
    out.Append(StringView(digits, n));
  }
  return negative ? u"-" + out : out;
}

namespace {

// A one-dimensional Byte array (what Request.BinaryRead and a binary Stream give) is its bytes
// as a byte string, as the conversion to text treats it on Windows: upload pages find and
// cut the parts of a multipart body with InStrB and MidB on it. Other arrays are no text.
String ByteArrayText(const Variant& v) {
  const SafeArray* array = v.as_array();
  if (!array || array->element_type() != VarType::Byte || array->dimensions() != 1) Mismatch();
  std::vector<uint8_t> bytes;
  bytes.reserve(array->size());
  for (size_t i = 0; i < array->size(); ++i) {
    const Variant& element = (*array)[i];
    bytes.push_back(element.type() == VarType::Byte ? element.as_byte() : 0);
  }
  return String::FromBytes(bytes.data(), bytes.size());
}

}  // namespace

String ToString(const Variant& v) {
  switch (v.type()) {
    case VarType::Empty:
      return {};
    case VarType::Null:
      NullUse();
    case VarType::Boolean:
      return v.as_bool() ? u"True" : u"False";
    case VarType::Byte:
      return NumberText(v.as_byte());
    case VarType::Integer:
      return NumberText(v.as_integer());
    case VarType::Long:
      return NumberText(v.as_long());
    case VarType::Single:
      return SingleText(v.as_single(), CurrentLocale());
    case VarType::Double:
      return DoubleText(v.as_double(), CurrentLocale());
    case VarType::Currency:
      return CurrencyText(v.as_currency(), CurrentLocale());
    case VarType::Date:
      return DateText(v.as_date(), CurrentLocale());
    case VarType::String:
      return v.as_string();
    case VarType::Object:
      return ToString(ValueOf(v));
    case VarType::Error:
      return u"Error " + NumberText(v.as_error() & 0xFFFF);
    case VarType::Array:
      return ByteArrayText(v);
    default:
      Mismatch();
  }
}

namespace {

Comparison FromInt(int c) {
  return c < 0 ? Comparison::Less : (c > 0 ? Comparison::Greater : Comparison::Equal);
}

Comparison CompareNumbers(const Variant& a, const Variant& b) {
  if (a.type() == VarType::Currency && b.type() == VarType::Currency) {
    return FromInt(a.as_currency() < b.as_currency() ? -1 : a.as_currency() > b.as_currency());
  }
  // A Single against a Double compares at the Single's precision: CSng(0.1) = 0.1 holds.
  const bool mixed_single = (a.type() == VarType::Single && b.type() == VarType::Double) ||
                            (a.type() == VarType::Double && b.type() == VarType::Single);
  if (mixed_single && std::fabs(NumericPayload(a)) <= FLT_MAX &&
      std::fabs(NumericPayload(b)) <= FLT_MAX) {
    const float x = static_cast<float>(NumericPayload(a)),
                y = static_cast<float>(NumericPayload(b));
    return FromInt(x < y ? -1 : (x > y ? 1 : 0));
  }
  const double x = NumericPayload(a), y = NumericPayload(b);
  return FromInt(x < y ? -1 : (x > y ? 1 : 0));
}

Comparison CompareTexts(StringView a, StringView b, bool text_compare) {
  return FromInt(text_compare ? CompareText(a, b) : CompareBinary(a, b));
}

}  // namespace

Comparison Compare(const Variant& left, const Variant& right, bool text_compare, uint8_t hints) {
  const Variant a = ValueOf(left);
  const Variant b = ValueOf(right);
  if (a.is_null() || b.is_null()) return Comparison::Null;
  if (a.is_array() || b.is_array() || a.is_error() || b.is_error()) Mismatch();
  const bool a_num = a.is_numeric_type(), b_num = b.is_numeric_type();
  if (a.is_empty() && b.is_empty()) return Comparison::Equal;
  if (a.is_empty())
    return b.is_string() ? CompareTexts(u"", b.as_string(), text_compare)
                         : CompareNumbers(Variant(int16_t{0}), b);
  if (b.is_empty())
    return a.is_string() ? CompareTexts(a.as_string(), u"", text_compare)
                         : CompareNumbers(a, Variant(int16_t{0}));
  if (a_num && b_num) return CompareNumbers(a, b);
  if (a.is_string() && b.is_string())
    return CompareTexts(a.as_string(), b.as_string(), text_compare);
  // One number, one string.
  const bool number_is_left = a_num;
  const Variant& number = number_is_left ? a : b;
  const Variant& text = number_is_left ? b : a;
  const bool number_literal = hints & (number_is_left ? kLeftIsLiteral : kRightIsLiteral);
  const bool text_literal = hints & (number_is_left ? kRightIsLiteral : kLeftIsLiteral);
  Comparison c;
  if (number_literal && number.type() == VarType::Date) {
    // The text turns into the literal's type: for a date, it is read as a date.
    c = CompareNumbers(number, Variant(ToDate(text)));
  } else if (number_literal) {
    const auto n = ParseNumberText(text.as_string(), CurrentLocale());
    if (!n) Mismatch();
    c = CompareNumbers(number, Variant(*n));
  } else if (text_literal) {
    c = CompareTexts(ToString(number), text.as_string(), text_compare);
  } else {
    c = Comparison::Less;  // a number is less than a string
  }
  if (!number_is_left && c != Comparison::Equal) {
    c = c == Comparison::Less ? Comparison::Greater : Comparison::Less;
  }
  return c;
}

String TypeNameOf(const Variant& v) {
  switch (v.type()) {
    case VarType::Empty:
      return u"Empty";
    case VarType::Null:
      return u"Null";
    case VarType::Integer:
      return u"Integer";
    case VarType::Long:
      return u"Long";
    case VarType::Single:
      return u"Single";
    case VarType::Double:
      return u"Double";
    case VarType::Currency:
      return u"Currency";
    case VarType::Date:
      return u"Date";
    case VarType::String:
      return u"String";
    case VarType::Boolean:
      return u"Boolean";
    case VarType::Byte:
      return u"Byte";
    case VarType::Error:
      return u"Error";
    case VarType::Object:
      return v.as_object() ? v.as_object()->TypeName() : String(u"Nothing");
    case VarType::Array: {
      switch (v.as_array()->element_type()) {
        case VarType::Byte:
          return u"Byte()";
        case VarType::String:
          return u"String()";
        case VarType::Integer:
          return u"Integer()";
        case VarType::Long:
          return u"Long()";
        case VarType::Double:
          return u"Double()";
        case VarType::Object:
          return u"Object()";
        default:
          return u"Variant()";
      }
    }
    default:
      return u"Unknown";
  }
}

}  // namespace qv
