// The formatting family of the runtime library: FormatNumber, FormatCurrency, FormatPercent
// and FormatDateTime under the engine's locale (under 1033: "1,234.57", "($1,234.57)",
// "12.50%", "Tuesday, March 7, 2006"), with their tri-state arguments (-2 the locale's
// default, -1 true, 0 false).
#include <algorithm>
#include <charconv>
#include <cmath>
#include <string>

#include "automation/date_time.h"
#include "vbscript/format_lib.h"
#include "vbscript/runtime_lib.h"

namespace qv::vbs {

namespace {

constexpr int32_t kTriTrue = -1;
constexpr int32_t kTriFalse = 0;
constexpr int32_t kTriDefault = -2;

// A tri-state argument: true, false, or the locale default when left out or -2.
bool TriState(Args a, size_t i, bool locale_default) {
  const int32_t n = OptionalLong(a, i, kTriDefault);
  if (n == kTriDefault) return locale_default;
  if (n == kTriTrue) return true;
  if (n == kTriFalse) return false;
  // Windows reads any other number as true.
  return true;
}

// The decimal digits of a value: `digits` holds the whole part then the fraction, with
// `whole` digits before the decimal point.
struct Decimal {
  bool negative = false;
  std::string digits;
  int whole = 0;
};

// The digits a number prints with in VBScript (fifteen significant for a Double, seven for a
// Single); rounding for display then works on that text, half away from zero, as Windows does.
Decimal DecimalOfDouble(double value, int significant = 15) {
  Decimal d;
  d.negative = std::signbit(value) && value != 0;
  char buf[48];
  const auto end = std::to_chars(buf, buf + sizeof buf, std::fabs(value),
                                 std::chars_format::scientific, significant - 1)
                       .ptr;
  // "d.ddddddddddddddde[+-]xx"
  const char* e = std::find(buf, end, 'e');
  d.digits.assign(1, buf[0]);
  d.digits.append(buf + 2, static_cast<size_t>(e - (buf + 2)));
  int exponent = 0;
  std::from_chars(e + (e[1] == '+' ? 2 : 1), end, exponent);
  d.whole = value == 0 ? 1 : exponent + 1;
  return d;
}

Decimal DecimalOfCurrency(int64_t scaled) {
  Decimal d;
  d.negative = scaled < 0;
  const uint64_t magnitude = d.negative ? 0 - static_cast<uint64_t>(scaled) : scaled;
  std::string text = std::to_string(magnitude);
  while (text.size() < 5)
    text.insert(text.begin(), '0');
  d.digits = text;
  d.whole = static_cast<int>(text.size()) - 4;
  return d;
}

// Whole-part digits (at least "0") and exactly `places` fraction digits, rounded half up.
void RoundDecimal(const Decimal& d, int places, std::string& whole, std::string& fraction) {
  // Digit i counts from d.digits[0], the digit of the place 10^(whole-1).
  auto digit_at = [&](int i) -> int {
    if (i < 0 || i >= static_cast<int>(d.digits.size())) return 0;
    return d.digits[i] - '0';
  };
  const int keep = d.whole + places;  // digits kept, counted from d.digits[0]
  std::string kept;
  if (keep > 0) {
    for (int i = 0; i < keep; ++i)
      kept.push_back(static_cast<char>('0' + digit_at(i)));
  }
  const bool round_up = keep >= 0 && digit_at(keep) >= 5;
  if (round_up) {
    int i = static_cast<int>(kept.size()) - 1;
    while (i >= 0 && kept[i] == '9') {
      kept[i] = '0';
      --i;
    }
    if (i >= 0) {
      ++kept[i];
    } else {
      kept.insert(kept.begin(), '1');
    }
  }
  // Split `kept` into the whole part and the fraction.
  const int fraction_len = places;
  while (static_cast<int>(kept.size()) < fraction_len)
    kept.insert(kept.begin(), '0');
  whole = kept.substr(0, kept.size() - fraction_len);
  fraction = kept.substr(kept.size() - fraction_len);
  const size_t nonzero = whole.find_first_not_of('0');
  whole = nonzero == std::string::npos ? std::string() : whole.substr(nonzero);
}

Decimal DecimalOf(const Variant& v) {
  if (v.type() == VarType::Currency) return DecimalOfCurrency(v.as_currency());
  const double d = ToDouble(v);
  if (!std::isfinite(d)) Raise(kErrOverflow);
  return DecimalOfDouble(d, v.type() == VarType::Single ? 7 : 15);
}

int32_t PlacesArg(Args a, size_t i, int locale_default) {
  const int32_t places = OptionalLong(a, i, -1);
  if (places < -1 || places > 255) Raise(kErrInvalidCall);
  return places == -1 ? locale_default : places;
}

enum class Style { Number, Currency, Percent };

// Windows' currency patterns: "$" stands for the symbol, "n" for the amount.
constexpr std::u16string_view kPositiveCurrency[] = {u"$n", u"n$", u"$ n", u"n $"};
constexpr std::u16string_view kNegativeCurrency[] = {
    u"($n)", u"-$n",  u"$-n",  u"$n-",  u"(n$)", u"-n$",  u"n-$",   u"n$-",
    u"-n $", u"-$ n", u"n $-", u"$ n-", u"$ -n", u"n- $", u"($ n)", u"(n $)"};

bool PatternHasParentheses(int negative_pattern) {
  return kNegativeCurrency[negative_pattern][0] == u'(';
}

String FillCurrency(std::u16string_view pattern, StringView symbol, StringView amount) {
  std::u16string out;
  out.reserve(pattern.size() + symbol.size() + amount.size());
  for (const Char c : pattern) {
    if (c == u'$') {
      out.append(symbol);
    } else if (c == u'n') {
      out.append(amount);
    } else {
      out.push_back(c);
    }
  }
  return String(StringView(out));
}

// An amount laid out by the locale's currency patterns. Parentheses asked for where the
// pattern has none wrap the positive form; refused where it has them, a minus sign leads.
String CurrencyText(const Decimal& d, NumberStyle style, const Locale& locale) {
  const bool parentheses = style.parentheses;
  style.parentheses = false;
  const String amount = FormatDecimal(false, d.digits, d.whole, style, u"", u"");
  const int positive = locale.currency_positive & 3;
  const int negative = locale.currency_negative & 15;
  const String plain = FillCurrency(kPositiveCurrency[positive], locale.currency, amount);
  if (!d.negative) return plain;
  if (parentheses) {
    if (PatternHasParentheses(negative))
      return FillCurrency(kNegativeCurrency[negative], locale.currency, amount);
    return u"(" + plain + u")";
  }
  if (PatternHasParentheses(negative)) return u"-" + plain;
  return FillCurrency(kNegativeCurrency[negative], locale.currency, amount);
}

Variant FormatWith(Args a, Style style) {
  const Locale& locale = CurrentLocale();
  const Variant v = ValueOf(a[0]);
  const int32_t places = PlacesArg(a, 1, style == Style::Currency ? locale.currency_digits : 2);
  const bool parentheses_default =
      style == Style::Currency && PatternHasParentheses(locale.currency_negative & 15);
  const NumberStyle ns{places,
                       TriState(a, 2, true),
                       TriState(a, 3, parentheses_default),
                       TriState(a, 4, true),
                       locale.decimal,
                       locale.group};
  // Unlike most of the library these do not pass Null through: a Null value is a type
  // mismatch, and a Null among the options (read first) is an invalid use of Null.
  if (v.is_null()) Raise(kErrTypeMismatch);
  Decimal d = DecimalOf(v);
  switch (style) {
    case Style::Percent:
      d.whole += 2;  // times 100, exactly, on the digits
      return FormatDecimal(d.negative, d.digits, d.whole, ns, u"", u"%");
    case Style::Currency:
      return CurrencyText(d, ns, locale);
    default:
      return FormatDecimal(d.negative, d.digits, d.whole, ns, u"", u"");
  }
}

Variant FormatNumber(RuntimeState&, Args a) {
  return FormatWith(a, Style::Number);
}
Variant FormatCurrency(RuntimeState&, Args a) {
  return FormatWith(a, Style::Currency);
}
Variant FormatPercent(RuntimeState&, Args a) {
  return FormatWith(a, Style::Percent);
}

String ShortTimeText(double date) {
  const auto p = SplitDate(date);
  if (!p) return {};
  Char text[5] = {static_cast<Char>(u'0' + p->hour / 10), static_cast<Char>(u'0' + p->hour % 10),
                  u':', static_cast<Char>(u'0' + p->minute / 10),
                  static_cast<Char>(u'0' + p->minute % 10)};
  return String(StringView(text, 5));
}

Variant FormatDateTime(RuntimeState&, Args a) {
  const Variant v = ValueOf(a[0]);
  const int32_t kind = OptionalLong(a, 1, 0);
  if (kind < 0 || kind > 4) Raise(kErrInvalidCall);
  if (v.is_null()) Raise(kErrTypeMismatch);
  const double d = ToDate(v);
  const Locale& locale = CurrentLocale();
  switch (kind) {
    case 1:
      return LongDateText(d, locale);
    case 2:
      return ShortDateText(d, locale);
    case 3:
      return LongTimeText(d, locale);
    case 4:
      return ShortTimeText(d);
    default:
      return DateText(d, locale);
  }
}

constexpr BuiltinFunction kFormatFunctions[] = {
    {u"FormatCurrency", FormatCurrency, 1, 5},
    {u"FormatDateTime", FormatDateTime, 1, 2},
    {u"FormatNumber", FormatNumber, 1, 5},
    {u"FormatPercent", FormatPercent, 1, 5},
};

}  // namespace

String FormatDecimal(bool negative, const std::string& digits, int whole_digits,
                     const NumberStyle& style, StringView prefix, StringView suffix) {
  Decimal d{negative, digits, whole_digits};
  std::string whole, fraction;
  RoundDecimal(d, style.places, whole, fraction);
  // A negative value keeps its sign even when it rounds to zero ("-0.00", "($0.00)"), as the
  // Windows number formats do.
  const bool minus = negative;
  std::u16string out;
  out.reserve(whole.size() * 4 / 3 + fraction.size() + prefix.size() + suffix.size() + 4);
  if (minus) out.push_back(style.parentheses ? u'(' : u'-');
  out.append(prefix);
  if (whole.empty()) {
    if (style.leading_digit || style.places == 0) out.push_back(u'0');
  } else {
    const size_t n = whole.size();
    for (size_t i = 0; i < n; ++i) {
      if (style.group_digits && i > 0 && (n - i) % 3 == 0) out.push_back(style.group);
      out.push_back(static_cast<Char>(whole[i]));
    }
  }
  if (style.places > 0) {
    out.push_back(style.decimal);
    out.append(fraction.begin(), fraction.end());
  }
  out.append(suffix);
  if (minus && style.parentheses) out.push_back(u')');
  return String(StringView(out));
}

String FormatNumberText(double value, int places) {
  const Decimal d = DecimalOfDouble(value);
  return FormatDecimal(d.negative, d.digits, d.whole, NumberStyle{places, true, false, true}, u"",
                       u"");
}

std::span<const BuiltinFunction> FormatFunctions() {
  return kFormatFunctions;
}

}  // namespace qv::vbs
