// Date arithmetic on the OLE day count, and the 1033 texts of dates and times.
#include "automation/date_time.h"

#include <cmath>
#include <ctime>

namespace qv {

namespace {

// Days from 1970-01-01 to a proleptic Gregorian date (Howard Hinnant's algorithm).
int64_t DaysFromCivil(int64_t y, int m, int d) {
  y -= m <= 2;
  const int64_t era = (y >= 0 ? y : y - 399) / 400;
  const int64_t yoe = y - era * 400;
  const int64_t doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
  const int64_t doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
  return era * 146097 + doe - 719468;
}

void CivilFromDays(int64_t z, int& y, int& m, int& d) {
  z += 719468;
  const int64_t era = (z >= 0 ? z : z - 146096) / 146097;
  const int64_t doe = z - era * 146097;
  const int64_t yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
  const int64_t doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
  const int64_t mp = (5 * doy + 2) / 153;
  d = static_cast<int>(doy - (153 * mp + 2) / 5 + 1);
  m = static_cast<int>(mp < 10 ? mp + 3 : mp - 9);
  y = static_cast<int>(yoe + era * 400 + (m <= 2));
}

const int64_t kEpochDays = DaysFromCivil(1899, 12, 30);

int ExpandYear(int year) {
  if (year >= 0 && year < 30) return year + 2000;
  if (year >= 30 && year < 100) return year + 1900;
  return year;
}

constexpr const char16_t* kMonths[] = {u"January",   u"February", u"March",    u"April",
                                       u"May",       u"June",     u"July",     u"August",
                                       u"September", u"October",  u"November", u"December"};
constexpr const char16_t* kWeekdays[] = {u"Sunday",   u"Monday", u"Tuesday", u"Wednesday",
                                         u"Thursday", u"Friday", u"Saturday"};

void AppendNumber(String& out, int value, int width) {
  String digits = NumberText(value);
  for (int i = static_cast<int>(digits.size()); i < width; ++i)
    out.Append(u'0');
  out.Append(digits);
}

}  // namespace

std::optional<DateParts> SplitDate(double date) {
  if (!(date >= kMinDate - 1) || !(date <= kMaxDate + 1)) return std::nullopt;
  double day_part = std::trunc(date);
  const double fraction = std::fabs(date - day_part);
  int64_t seconds = std::llround(fraction * 86400.0);
  int64_t day = static_cast<int64_t>(day_part);
  if (seconds >= 86400) {
    seconds -= 86400;
    day += 1;
  }
  DateParts p;
  CivilFromDays(kEpochDays + day, p.year, p.month, p.day);
  if (p.year < 100 || p.year > 9999) return std::nullopt;
  p.hour = static_cast<int>(seconds / 3600);
  p.minute = static_cast<int>(seconds / 60 % 60);
  p.second = static_cast<int>(seconds % 60);
  p.weekday = static_cast<int>(((day % 7) + 7 + 6) % 7) + 1;
  p.day_of_year = static_cast<int>(kEpochDays + day - DaysFromCivil(p.year, 1, 1)) + 1;
  return p;
}

std::optional<double> DateFromParts(int year, int month, int day) {
  int64_t y = ExpandYear(year);
  int64_t m = month;
  // Months roll over into years in both directions.
  y += (m - 1 >= 0) ? (m - 1) / 12 : -((12 - m) / 12);
  m = ((m - 1) % 12 + 12) % 12 + 1;
  if (y < -100000 || y > 100000) return std::nullopt;
  const int64_t days = DaysFromCivil(y, static_cast<int>(m), 1) + (int64_t{day} - 1) - kEpochDays;
  const double value = static_cast<double>(days);
  if (value < kMinDate || value > kMaxDate) return std::nullopt;
  return value;
}

double TimeFromParts(int hour, int minute, int second) {
  const double linear = (double(hour) * 3600.0 + double(minute) * 60.0 + double(second)) / 86400.0;
  if (linear >= 0) return linear;
  const double day = std::floor(linear);
  return CombineDateTime(day, linear - day);
}

double CombineDateTime(double day_number, double time_fraction) {
  return day_number >= 0 ? day_number + time_fraction : day_number - time_fraction;
}

String ShortDateText(double date) {
  const auto p = SplitDate(date);
  if (!p) return {};
  String out;
  AppendNumber(out, p->month, 1);
  out.Append(u'/');
  AppendNumber(out, p->day, 1);
  out.Append(u'/');
  AppendNumber(out, p->year, 1);
  return out;
}

String LongTimeText(double date) {
  const auto p = SplitDate(date);
  if (!p) return {};
  String out;
  const int h12 = p->hour % 12 == 0 ? 12 : p->hour % 12;
  AppendNumber(out, h12, 1);
  out.Append(u':');
  AppendNumber(out, p->minute, 2);
  out.Append(u':');
  AppendNumber(out, p->second, 2);
  out.Append(p->hour < 12 ? u" AM" : u" PM");
  return out;
}

String DateText(double date) {
  const auto p = SplitDate(date);
  if (!p) return {};
  const bool midnight = p->hour == 0 && p->minute == 0 && p->second == 0;
  const bool day_zero = p->year == 1899 && p->month == 12 && p->day == 30;
  if (day_zero) return LongTimeText(date);
  if (midnight) return ShortDateText(date);
  return ShortDateText(date) + u" " + LongTimeText(date);
}

String MonthNameText(int month, bool abbreviate) {
  if (month < 1 || month > 12) return {};
  StringView name(kMonths[month - 1]);
  return String(abbreviate ? name.substr(0, 3) : name);
}

String WeekdayNameText(int weekday, bool abbreviate) {
  if (weekday < 1 || weekday > 7) return {};
  StringView name(kWeekdays[weekday - 1]);
  return String(abbreviate ? name.substr(0, 3) : name);
}

double NowAsDate() {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  const double day = *DateFromParts(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday);
  return day + TimeFromParts(local.tm_hour, local.tm_min, local.tm_sec);
}

}  // namespace qv
