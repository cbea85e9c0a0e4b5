// Dates as VBScript holds them: a double counting days from 1899-12-30, the time of day as the
// fraction (for days before that date the fraction still counts forward from midnight). Splitting,
// building, printing and reading them under a locale (1033 unless told otherwise).
#pragma once

#include <cstdint>
#include <optional>

#include "automation/locale.h"
#include "automation/string.h"

namespace qv {

inline constexpr double kMinDate = -657434.0;         // 1/1/100
inline constexpr double kMaxDate = 2958465.99999999;  // 12/31/9999 23:59:59

// Whether a value is some time of 1/1/100 through 12/31/9999. Before the epoch the fraction
// counts forward from midnight, so the first day's times run from -657434 down to -657435.
constexpr bool InDateRange(double date) {
  return date > kMinDate - 1 && date < 2958466.0;
}

struct DateParts {
  int year = 1899;
  int month = 12;
  int day = 30;
  int hour = 0;
  int minute = 0;
  int second = 0;
  int weekday = 7;  // 1 = Sunday ... 7 = Saturday
  int day_of_year = 364;
};

// Splits a date value, rounding the time to the nearest second as VBScript does.
// Returns nothing outside the valid range.
std::optional<DateParts> SplitDate(double date);

// DateSerial's arithmetic: months and days out of range roll over into the neighbouring
// months and years. Years 0..29 mean 2000..2029 and 30..99 mean 1930..1999. Returns nothing
// when the result lies outside 1/1/100..12/31/9999.
std::optional<double> DateFromParts(int year, int month, int day);
// TimeSerial's arithmetic: a fraction of a day, negative values and overflow roll over.
double TimeFromParts(int hour, int minute, int second);
// Joins a whole day number and a time of day the way dates hold them.
double CombineDateTime(double day_number, double time_fraction);

// VBScript's CStr of a date: "3/7/2006 9:05:01 AM"; the date alone at midnight, the time alone
// on day 0.
String DateText(double date, const Locale& locale = DefaultLocale());
String ShortDateText(double date, const Locale& locale = DefaultLocale());  // "3/7/2006"
String LongDateText(double date,
                    const Locale& locale = DefaultLocale());  // "Tuesday, March 7, 2006"
String LongTimeText(double date, const Locale& locale = DefaultLocale());  // "9:05:01 AM"
// A date written by a Windows picture: d, dd, ddd, dddd, M, MM, MMM, MMMM, y, yy, yyyy, h, hh,
// H, HH, m, mm, s, ss, t, tt, and text in single quotes.
String PictureText(double date, StringView picture, const Locale& locale);

// Reads a date or time the way VBScript's CDate and IsDate do: numbers separated by "/", "-",
// spaces, commas or the locale's date separator (the locale's order first, here
// month/day/year, then year/month/day, then day/month/year; two numbers are month and day of
// this year, or month and year), month names and their abbreviations (the locale's and
// English), weekday names (ignored), times with ":" (or "." where dates do not use it) and
// AM/PM. Two-digit years 00-29 are 2000-2029, 30-99 are 1930-1999. Returns nothing for text
// that is no date.
std::optional<double> ParseDateText(StringView text, const Locale& locale = DefaultLocale());

// Month and weekday names (1-based, Sunday first) as MonthName and WeekdayName give them.
String MonthNameText(int month, bool abbreviate, const Locale& locale = DefaultLocale());
String WeekdayNameText(int weekday, bool abbreviate, const Locale& locale = DefaultLocale());

// The current local date and time as a date value.
double NowAsDate();

}  // namespace qv
