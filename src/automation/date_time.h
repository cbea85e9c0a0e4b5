// Dates as VBScript holds them: a double counting days from 1899-12-30, the time of day as the
// fraction (for days before that date the fraction still counts forward from midnight). Splitting,
// building, printing and reading them under locale 1033.
#pragma once

#include <cstdint>
#include <optional>

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
String DateText(double date);
String ShortDateText(double date);  // "3/7/2006"
String LongTimeText(double date);   // "9:05:01 AM"

// Reads a date or time the way VBScript's CDate and IsDate do under 1033: numbers separated by
// "/", "-", spaces or commas (month/day/year first, then year/month/day, then day/month/year;
// two numbers are month and day of this year, or month and year), month names and their
// abbreviations, weekday names (ignored), times with ":" or "." and AM/PM. Two-digit years
// 00-29 are 2000-2029, 30-99 are 1930-1999. Returns nothing for text that is no date.
std::optional<double> ParseDateText(StringView text);

// English month and weekday names (1-based); abbreviations are the first three letters.
String MonthNameText(int month, bool abbreviate);
String WeekdayNameText(int weekday, bool abbreviate);

// The current local date and time as a date value.
double NowAsDate();

}  // namespace qv
