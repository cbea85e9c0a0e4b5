// The regional settings that VBScript's conversions read: how numbers, currency and dates are
// written and read under a Windows locale id (LCID). 1033, English (United States), is built
// in and is what every conversion uses unless a script engine makes another locale current on
// its thread while it runs; the others come from ICU's locale data, corrected where Windows
// writes differently.
//
//   const Locale* german = FindLocale(1031);
//   LocaleScope scope(german);              // this thread converts as German until it ends
//   ToString(Variant(1.5));                 // "1,5"
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>

#include "automation/string.h"

namespace qv {

enum class DateOrder : uint8_t { MonthDayYear, DayMonthYear, YearMonthDay };

// Read-only once built, and shared by every thread that uses the locale. Texts are plain
// std::u16string rather than String because String's shared buffers count their holders
// without atomics: callers copy what they hand out.
struct Locale {
  int32_t id = 1033;
  std::u16string name = u"en-US";

  // Numbers: one character each, as Windows allows.
  Char decimal = u'.';
  Char group = u',';

  // Currency: the symbol, the digits after the point, and Windows' pattern numbers for
  // positive (0 "$n", 1 "n$", 2 "$ n", 3 "n $") and negative amounts (0 "($n)" through
  // 15 "(n $)").
  std::u16string currency = u"$";
  int8_t currency_digits = 2;
  int8_t currency_positive = 0;
  int8_t currency_negative = 0;

  // Dates, as Windows pictures ("M/d/yyyy", "dddd, MMMM d, yyyy", "h:mm:ss tt"), and the
  // order in which the numbers of a short date are read.
  std::u16string short_date = u"M/d/yyyy";
  std::u16string long_date = u"dddd, MMMM d, yyyy";
  std::u16string long_time = u"h:mm:ss tt";
  DateOrder date_order = DateOrder::MonthDayYear;
  Char date_separator = u'/';
  std::u16string am = u"AM";
  std::u16string pm = u"PM";
  int8_t first_day = 1;   // vbSunday (1) .. vbSaturday (7)
  int8_t first_week = 1;  // vbFirstJan1 (1), vbFirstFourDays (2), vbFirstFullWeek (3)

  // Names as MonthName and WeekdayName give them (Sunday first), and the month names that a
  // date picture writes beside a day number (a genitive in some languages).
  std::array<std::u16string, 12> months;
  std::array<std::u16string, 12> month_abbreviations;
  std::array<std::u16string, 12> months_in_dates;
  std::array<std::u16string, 7> days;
  std::array<std::u16string, 7> day_abbreviations;
};

// 1033, English (United States).
const Locale& DefaultLocale();

// The locale of a Windows id, built on first use and kept for the life of the process;
// nullptr for an id that names no country's locale (a bare language, or nothing at all).
const Locale* FindLocale(int32_t id);

// The id of a locale name such as "de-DE", "en-gb" or "fr" (a language alone stands for its
// main country); nothing for a name no locale has.
std::optional<int32_t> LocaleIdOfName(StringView name);

// The locale this thread converts under: the one a running script engine made current, or
// 1033 when none did.
const Locale& CurrentLocale();

// Makes a locale current on this thread until the scope ends, then restores the one before,
// so an engine called from inside another converts under its own locale and hands the outer
// one back. nullptr means 1033.
class LocaleScope {
 public:
  explicit LocaleScope(const Locale* locale);
  ~LocaleScope();
  LocaleScope(const LocaleScope&) = delete;
  LocaleScope& operator=(const LocaleScope&) = delete;

 private:
  const Locale* previous_;
};

// Changes the current locale of this thread inside a LocaleScope, for SetLocale in a running
// script; the scope's end still restores what was current before it. Outside every scope it
// does nothing, so a library function called on its own leaves the thread at 1033.
void SetCurrentLocale(const Locale* locale);

}  // namespace qv
