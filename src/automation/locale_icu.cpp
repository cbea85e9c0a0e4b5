// Locales from ICU: separators, currency, month and day names, date and time patterns and the
// calendar's week rules of a Windows locale id, with the corrections for what Windows writes
// differently from ICU's (CLDR's) data.
#include <unicode/calendar.h>
#include <unicode/dcfmtsym.h>
#include <unicode/decimfmt.h>
#include <unicode/dtfmtsym.h>
#include <unicode/locid.h>
#include <unicode/smpdtfmt.h>
#include <unicode/ucurr.h>
#include <unicode/uloc.h>

#include <memory>
#include <string>

#include "automation/locale_data.h"

namespace qv {

namespace {

std::u16string Text(const icu::UnicodeString& s) {
  return std::u16string(s.getBuffer(), static_cast<size_t>(s.length()));
}

// What Windows writes where its data and ICU's differ, for the locales generated
// applications use most. Windows writes four-digit years in short dates where CLDR often
// writes two, orders and spaces currency its own way (Italian, Dutch and Brazilian amounts
// put the symbol first), gives Japanese currency no decimals and the half-width yen sign, and
// groups French digits with a no-break space where ICU has a narrow one.
struct WindowsValues {
  int32_t id;
  const char16_t* short_date;
  const char16_t* long_date;
  const char16_t* long_time;
  int8_t currency_positive;
  int8_t currency_negative;
  int8_t currency_digits = -1;         // -1: ICU's
  const char16_t* currency = nullptr;  // nullptr: ICU's
};

constexpr WindowsValues kWindowsValues[] = {
    {2057, u"dd/MM/yyyy", u"dd MMMM yyyy", u"HH:mm:ss", 0, 1},
    {1031, u"dd.MM.yyyy", u"dddd, d. MMMM yyyy", u"HH:mm:ss", 3, 8},
    {1036, u"dd/MM/yyyy", u"dddd d MMMM yyyy", u"HH:mm:ss", 3, 8},
    {3082, u"dd/MM/yyyy", u"dddd, d' de 'MMMM' de 'yyyy", u"H:mm:ss", 3, 8},
    {1040, u"dd/MM/yyyy", u"dddd d MMMM yyyy", u"HH:mm:ss", 2, 9},
    {1043, u"d-M-yyyy", u"dddd d MMMM yyyy", u"HH:mm:ss", 2, 12},
    {1046, u"dd/MM/yyyy", u"dddd, d' de 'MMMM' de 'yyyy", u"HH:mm:ss", 2, 9},
    {1041, u"yyyy/MM/dd", u"yyyy'\u5E74'M'\u6708'd'\u65E5'", u"H:mm:ss", 0, 1, 0, u"\u00A5"},
    {2052, u"yyyy/M/d", u"yyyy'\u5E74'M'\u6708'd'\u65E5'", u"H:mm:ss", 0, 2, -1, u"\u00A5"},
};

const WindowsValues* WindowsValuesOf(int32_t id) {
  for (const WindowsValues& w : kWindowsValues) {
    if (w.id == id) return &w;
  }
  return nullptr;
}

// ICU's no-break spaces become the ones Windows uses: U+202F (narrow) is unknown to Windows'
// locale data, which has U+00A0 or a plain space.
Char WindowsSpace(Char c, Char narrow_becomes) {
  return c == 0x202F ? narrow_becomes : c;
}

// An ICU date pattern ("dd.MM.yy", "EEEE, d. MMMM y", "h:mm:ss a") as a Windows picture
// ("dd.MM.yyyy", "dddd, d. MMMM yyyy", "h:mm:ss tt"). Windows pictures always show the
// century; fields Windows has no letter for (eras, zones) are left out.
std::u16string WindowsPicture(const icu::UnicodeString& pattern) {
  const std::u16string p = Text(pattern);
  std::u16string out;
  size_t i = 0;
  while (i < p.size()) {
    const Char c = p[i];
    if (c == u'\'') {
      const size_t end = p.find(u'\'', i + 1);
      const size_t stop = end == std::u16string::npos ? p.size() : end + 1;
      out.append(p, i, stop - i);
      i = stop;
      continue;
    }
    const bool letter = (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z');
    if (!letter) {
      out.push_back(WindowsSpace(c, u' '));
      ++i;
      continue;
    }
    size_t n = 1;
    while (i + n < p.size() && p[i + n] == c)
      ++n;
    i += n;
    const size_t width = n;
    switch (c) {
      case u'y':
      case u'u':
      case u'Y':
        out += u"yyyy";
        break;
      case u'M':
      case u'L':
        out.append(width > 4 ? 4 : width, u'M');
        break;
      case u'd':
        out.append(width > 2 ? 2 : width, u'd');
        break;
      case u'E':
      case u'c':
      case u'e':
        out += width >= 4 ? u"dddd" : u"ddd";
        break;
      case u'H':
      case u'k':
        out.append(width > 2 ? 2 : width, u'H');
        break;
      case u'h':
      case u'K':
        out.append(width > 2 ? 2 : width, u'h');
        break;
      case u'm':
      case u's':
        out.append(width > 2 ? 2 : width, c);
        break;
      case u'a':
      case u'b':
      case u'B':
        out += u"tt";
        break;
      default:
        break;
    }
  }
  // A field that was dropped may leave its separator behind.
  while (!out.empty() && (out.back() == u' ' || out.back() == u','))
    out.pop_back();
  return out;
}

std::u16string DatePattern(const icu::Locale& where, icu::DateFormat::EStyle date,
                           icu::DateFormat::EStyle time) {
  std::unique_ptr<icu::DateFormat> format(date == icu::DateFormat::kNone
                                              ? icu::DateFormat::createTimeInstance(time, where)
                                              : icu::DateFormat::createDateInstance(date, where));
  auto* simple = dynamic_cast<icu::SimpleDateFormat*>(format.get());
  if (!simple) return {};
  icu::UnicodeString pattern;
  simple->toPattern(pattern);
  return WindowsPicture(pattern);
}

// The order of day, month and year in a short date picture, and the character between them.
void ReadShortDate(Locale& l) {
  const size_t d = l.short_date.find(u'd'), m = l.short_date.find(u'M'),
               y = l.short_date.find(u'y');
  if (y < m && m < d) {
    l.date_order = DateOrder::YearMonthDay;
  } else if (d < m) {
    l.date_order = DateOrder::DayMonthYear;
  } else {
    l.date_order = DateOrder::MonthDayYear;
  }
  for (const Char c : l.short_date) {
    if (c != u'd' && c != u'M' && c != u'y') {
      l.date_separator = c;
      break;
    }
  }
}

void ReadNumbers(const icu::Locale& where, Locale& l) {
  UErrorCode status = U_ZERO_ERROR;
  const icu::DecimalFormatSymbols symbols(where, status);
  if (U_FAILURE(status)) return;
  const icu::UnicodeString decimal =
      symbols.getSymbol(icu::DecimalFormatSymbols::kDecimalSeparatorSymbol);
  const icu::UnicodeString group =
      symbols.getSymbol(icu::DecimalFormatSymbols::kGroupingSeparatorSymbol);
  if (decimal.length() == 1) l.decimal = decimal[0];
  if (group.length() == 1) l.group = WindowsSpace(group[0], 0x00A0);
  l.currency = Text(symbols.getSymbol(icu::DecimalFormatSymbols::kCurrencySymbol));

  // Where the symbol stands in the currency pattern, and whether a space parts it from the
  // digits, gives Windows' pattern numbers; the negative one puts a minus sign in front.
  std::unique_ptr<icu::NumberFormat> format(
      icu::NumberFormat::createCurrencyInstance(where, status));
  auto* decimal_format = dynamic_cast<icu::DecimalFormat*>(format.get());
  if (U_SUCCESS(status) && decimal_format) {
    icu::UnicodeString pattern;
    decimal_format->toPattern(pattern);
    const std::u16string p = Text(pattern).substr(0, Text(pattern).find(u';'));
    const size_t symbol = p.find(u'\u00A4');
    const size_t digits = p.find_first_of(u"#0");
    if (symbol != std::u16string::npos && digits != std::u16string::npos) {
      const bool after = symbol > digits;
      const size_t gap_at = after ? p.find_last_of(u"#0") + 1 : symbol + 1;
      const bool spaced =
          gap_at < p.size() && (p[gap_at] == u' ' || p[gap_at] == 0x00A0 || p[gap_at] == 0x202F);
      l.currency_positive = static_cast<int8_t>((after ? 1 : 0) + (spaced ? 2 : 0));
      static constexpr int8_t kNegativeOf[] = {1, 5, 9, 8};
      l.currency_negative = kNegativeOf[l.currency_positive];
    }
  }
  UChar iso[4] = {};
  UErrorCode code_status = U_ZERO_ERROR;
  if (ucurr_forLocale(where.getName(), iso, 4, &code_status) == 3 && U_SUCCESS(code_status)) {
    const int32_t digits = ucurr_getDefaultFractionDigits(iso, &code_status);
    if (U_SUCCESS(code_status) && digits >= 0 && digits <= 4)
      l.currency_digits = static_cast<int8_t>(digits);
  }
}

void ReadNames(const icu::Locale& where, Locale& l) {
  UErrorCode status = U_ZERO_ERROR;
  const icu::DateFormatSymbols symbols(where, status);
  if (U_FAILURE(status)) return;
  using Symbols = icu::DateFormatSymbols;
  // ICU counts weekdays from 1 (Sunday), leaving index 0 empty.
  auto copy = [](const icu::UnicodeString* names, int32_t count, int32_t first, auto& into) {
    for (size_t i = 0; i < into.size() && first + static_cast<int32_t>(i) < count; ++i)
      into[i] = Text(names[first + i]);
  };
  int32_t count = 0;
  const icu::UnicodeString* names = symbols.getMonths(count, Symbols::STANDALONE, Symbols::WIDE);
  copy(names, count, 0, l.months);
  names = symbols.getMonths(count, Symbols::STANDALONE, Symbols::ABBREVIATED);
  copy(names, count, 0, l.month_abbreviations);
  names = symbols.getMonths(count, Symbols::FORMAT, Symbols::WIDE);
  copy(names, count, 0, l.months_in_dates);
  names = symbols.getWeekdays(count, Symbols::STANDALONE, Symbols::WIDE);
  copy(names, count, 1, l.days);
  names = symbols.getWeekdays(count, Symbols::STANDALONE, Symbols::ABBREVIATED);
  copy(names, count, 1, l.day_abbreviations);
  const icu::UnicodeString* am_pm = symbols.getAmPmStrings(count);
  if (count >= 2) {
    l.am = Text(am_pm[0]);
    l.pm = Text(am_pm[1]);
  }
}

void ReadCalendar(const icu::Locale& where, Locale& l) {
  UErrorCode status = U_ZERO_ERROR;
  std::unique_ptr<icu::Calendar> calendar(icu::Calendar::createInstance(where, status));
  if (U_FAILURE(status)) return;
  l.first_day = static_cast<int8_t>(calendar->getFirstDayOfWeek(status));
  const uint8_t days = calendar->getMinimalDaysInFirstWeek();
  l.first_week = days >= 7 ? 3 : (days >= 4 ? 2 : 1);
}

}  // namespace

std::unique_ptr<const Locale> BuildLocale(int32_t id) {
  if (id <= 0) return nullptr;
  char name[ULOC_FULLNAME_CAPACITY] = {};
  UErrorCode status = U_ZERO_ERROR;
  uloc_getLocaleForLCID(static_cast<uint32_t>(id), name, sizeof name, &status);
  if (U_FAILURE(status) || name[0] == 0) return nullptr;
  const icu::Locale where(name);
  // A bare language ("de", id 7) is no locale Windows formats under.
  if (where.getCountry()[0] == 0 || where.isBogus()) return nullptr;

  auto l = std::make_unique<Locale>();
  l->id = id;
  char tag[ULOC_FULLNAME_CAPACITY] = {};
  status = U_ZERO_ERROR;
  uloc_toLanguageTag(where.getBaseName(), tag, sizeof tag, false, &status);
  l->name = Text(icu::UnicodeString::fromUTF8(tag));
  ReadNumbers(where, *l);
  ReadNames(where, *l);
  ReadCalendar(where, *l);
  l->short_date = DatePattern(where, icu::DateFormat::kShort, icu::DateFormat::kNone);
  l->long_date = DatePattern(where, icu::DateFormat::kFull, icu::DateFormat::kNone);
  l->long_time = DatePattern(where, icu::DateFormat::kNone, icu::DateFormat::kMedium);
  if (const WindowsValues* w = WindowsValuesOf(id)) {
    l->short_date = w->short_date;
    l->long_date = w->long_date;
    l->long_time = w->long_time;
    l->currency_positive = w->currency_positive;
    l->currency_negative = w->currency_negative;
    if (w->currency_digits >= 0) l->currency_digits = w->currency_digits;
    if (w->currency) l->currency = w->currency;
  }
  ReadShortDate(*l);
  return l;
}

std::optional<int32_t> LocaleIdOfName(StringView name) {
  const std::string text = String::ToUtf8(name);
  if (text.empty() || text.size() > 64) return std::nullopt;
  char parsed[ULOC_FULLNAME_CAPACITY] = {};
  int32_t used = 0;
  UErrorCode status = U_ZERO_ERROR;
  uloc_forLanguageTag(text.c_str(), parsed, sizeof parsed, &used, &status);
  if (U_FAILURE(status) || used != static_cast<int32_t>(text.size()) || parsed[0] == 0)
    return std::nullopt;
  // A language alone stands for the country where it is most spoken ("fr" is fr-FR).
  char full[ULOC_FULLNAME_CAPACITY] = {};
  status = U_ZERO_ERROR;
  uloc_addLikelySubtags(parsed, full, sizeof full, &status);
  if (U_FAILURE(status)) return std::nullopt;
  const icu::Locale likely(full);
  const icu::Locale given(parsed);
  const std::string with_script =
      std::string(likely.getLanguage()) + "_" + likely.getScript() + "_" + likely.getCountry();
  const std::string plain = std::string(likely.getLanguage()) + "_" + likely.getCountry();
  // Keep a script the name asked for (sr-Latn-RS); otherwise the plain form names the
  // country's usual script, which is what Windows' id stands for.
  const bool script_given = given.getScript()[0] != 0;
  for (const std::string& candidate : {script_given ? with_script : plain, with_script}) {
    const uint32_t id = uloc_getLCID(candidate.c_str());
    if (id != 0 && FindLocale(static_cast<int32_t>(id))) return static_cast<int32_t>(id);
  }
  return std::nullopt;
}

}  // namespace qv
