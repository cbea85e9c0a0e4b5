// Date arithmetic on the OLE day count, and the texts of dates and times under a locale.
#include "automation/date_time.h"

#include <algorithm>
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

String ShortDateText(double date, const Locale& locale) {
  if (&locale != &DefaultLocale()) return PictureText(date, locale.short_date, locale);
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

String LongDateText(double date, const Locale& locale) {
  return PictureText(date, locale.long_date, locale);
}

String LongTimeText(double date, const Locale& locale) {
  if (&locale != &DefaultLocale()) return PictureText(date, locale.long_time, locale);
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

String DateText(double date, const Locale& locale) {
  const auto p = SplitDate(date);
  if (!p) return {};
  const bool midnight = p->hour == 0 && p->minute == 0 && p->second == 0;
  const bool day_zero = p->year == 1899 && p->month == 12 && p->day == 30;
  if (day_zero) return LongTimeText(date, locale);
  if (midnight) return ShortDateText(date, locale);
  return ShortDateText(date, locale) + u" " + LongTimeText(date, locale);
}

String PictureText(double date, StringView picture, const Locale& locale) {
  const auto p = SplitDate(date);
  if (!p) return {};
  String out;
  size_t i = 0;
  while (i < picture.size()) {
    const Char c = picture[i];
    if (c == u'\'') {
      size_t end = picture.find(u'\'', i + 1);
      if (end == StringView::npos) end = picture.size();
      out.Append(picture.substr(i + 1, end - i - 1));
      i = end + 1;
      continue;
    }
    size_t n = 1;
    while (i + n < picture.size() && picture[i + n] == c)
      ++n;
    i += n;
    const int width = static_cast<int>(n);
    switch (c) {
      case u'd':
        if (n <= 2) {
          AppendNumber(out, p->day, width);
        } else {
          out.Append(n == 3 ? locale.day_abbreviations[p->weekday - 1]
                            : locale.days[p->weekday - 1]);
        }
        break;
      case u'M':
        if (n <= 2) {
          AppendNumber(out, p->month, width);
        } else {
          out.Append(n == 3 ? locale.month_abbreviations[p->month - 1]
                            : locale.months_in_dates[p->month - 1]);
        }
        break;
      case u'y':
        if (n <= 2) {
          AppendNumber(out, p->year % 100, width);
        } else {
          AppendNumber(out, p->year, 1);
        }
        break;
      case u'h':
        AppendNumber(out, p->hour % 12 == 0 ? 12 : p->hour % 12, std::min(width, 2));
        break;
      case u'H':
        AppendNumber(out, p->hour, std::min(width, 2));
        break;
      case u'm':
        AppendNumber(out, p->minute, std::min(width, 2));
        break;
      case u's':
        AppendNumber(out, p->second, std::min(width, 2));
        break;
      case u't': {
        const std::u16string& mark = p->hour < 12 ? locale.am : locale.pm;
        out.Append(n == 1 ? StringView(mark).substr(0, 1) : StringView(mark));
        break;
      }
      default:
        for (size_t k = 0; k < n; ++k)
          out.Append(c);
    }
  }
  return out;
}

String MonthNameText(int month, bool abbreviate, const Locale& locale) {
  if (month < 1 || month > 12) return {};
  return String(abbreviate ? locale.month_abbreviations[month - 1] : locale.months[month - 1]);
}

String WeekdayNameText(int weekday, bool abbreviate, const Locale& locale) {
  if (weekday < 1 || weekday > 7) return {};
  return String(abbreviate ? locale.day_abbreviations[weekday - 1] : locale.days[weekday - 1]);
}

double NowAsDate() {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  const double day = *DateFromParts(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday);
  return day + TimeFromParts(local.tm_hour, local.tm_min, local.tm_sec);
}

}  // namespace qv
