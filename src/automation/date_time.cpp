// Date arithmetic on the OLE day count, and the 1033 texts of dates and times.
#include "automation/date_time.h"

#include <cmath>
#include <ctime>
#include <vector>

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

bool IsLeap(int y) {
  return (y % 4 == 0 && y % 100 != 0) || y % 400 == 0;
}

int DaysInMonth(int y, int m) {
  static constexpr int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  return m == 2 && IsLeap(y) ? 29 : kDays[m - 1];
}

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
  AppendNumber(out, p->year, 4);
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

namespace {

struct DateToken {
  enum Kind { Number, Month, Weekday, Meridiem, Colon, Separator } kind;
  int value = 0;
  int digits = 0;
  double fraction = 0;  // seconds' fraction after a decimal point
};

// Matches a word against month names: the whole name or its first three letters or more.
int MatchName(StringView word, const char16_t* const* names, int count) {
  if (word.size() < 3) return 0;
  for (int i = 0; i < count; ++i) {
    StringView name(names[i]);
    if (word.size() <= name.size() && EqualsNoCase(word, name.substr(0, word.size()))) return i + 1;
  }
  return 0;
}

bool Tokenize(StringView text, std::vector<DateToken>& out) {
  size_t i = 0;
  while (i < text.size()) {
    const Char c = text[i];
    if (c >= u'0' && c <= u'9') {
      DateToken t{DateToken::Number};
      while (i < text.size() && text[i] >= u'0' && text[i] <= u'9') {
        if (t.digits < 9) t.value = t.value * 10 + (text[i] - u'0');
        ++t.digits;
        ++i;
      }
      out.push_back(t);
      continue;
    }
    if ((c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z')) {
      size_t j = i;
      while (j < text.size() &&
             ((text[j] >= u'a' && text[j] <= u'z') || (text[j] >= u'A' && text[j] <= u'Z'))) {
        ++j;
      }
      StringView word = text.substr(i, j - i);
      i = j;
      if (EqualsNoCase(word, u"am") || EqualsNoCase(word, u"a")) {
        out.push_back({DateToken::Meridiem, 0});
      } else if (EqualsNoCase(word, u"pm") || EqualsNoCase(word, u"p")) {
        out.push_back({DateToken::Meridiem, 1});
      } else if (int m = MatchName(word, kMonths, 12)) {
        out.push_back({DateToken::Month, m});
      } else if (MatchName(word, kWeekdays, 7)) {
        out.push_back({DateToken::Weekday, 0});
      } else {
        return false;
      }
      continue;
    }
    if (c == u':') {
      out.push_back({DateToken::Colon});
    } else if (c == u'/' || c == u'-' || c == u',' || c == u'.') {
      out.push_back({DateToken::Separator, static_cast<int>(c)});
    } else if (c != u' ' && c != u'\t') {
      return false;
    }
    ++i;
  }
  return true;
}

}  // namespace

std::optional<double> ParseDateText(StringView text) {
  std::vector<DateToken> tokens;
  if (!Tokenize(text, tokens) || tokens.empty()) return std::nullopt;

  // Pull out the time: a number followed by ':' starts it; a number followed by AM/PM is an hour.
  bool has_time = false;
  int hour = 0, minute = 0, second = 0, meridiem = -1;
  std::vector<DateToken> rest;
  for (size_t i = 0; i < tokens.size(); ++i) {
    const DateToken& t = tokens[i];
    const bool starts_time =
        t.kind == DateToken::Number && !has_time && i + 1 < tokens.size() &&
        (tokens[i + 1].kind == DateToken::Colon || tokens[i + 1].kind == DateToken::Meridiem);
    if (starts_time) {
      has_time = true;
      hour = t.value;
      size_t j = i + 1;
      int parts = 1;
      while (j + 1 < tokens.size() && tokens[j].kind == DateToken::Colon &&
             tokens[j + 1].kind == DateToken::Number && parts < 3) {
        (parts == 1 ? minute : second) = tokens[j + 1].value;
        ++parts;
        j += 2;
      }
      // A decimal fraction of the seconds is accepted and rounded away.
      if (parts == 3 && j + 1 < tokens.size() && tokens[j].kind == DateToken::Separator &&
          tokens[j].value == u'.' && tokens[j + 1].kind == DateToken::Number) {
        j += 2;
      }
      if (j < tokens.size() && tokens[j].kind == DateToken::Meridiem) {
        meridiem = tokens[j].value;
        ++j;
      }
      if (parts == 1 && meridiem < 0) return std::nullopt;
      i = j - 1;
      continue;
    }
    if (t.kind == DateToken::Colon || t.kind == DateToken::Meridiem) return std::nullopt;
    rest.push_back(t);
  }
  if (has_time) {
    if (minute > 59 || second > 59) return std::nullopt;
    if (meridiem >= 0) {
      if (hour > 12) return std::nullopt;
      if (hour == 12) hour = 0;
      if (meridiem == 1) hour += 12;
    } else if (hour > 23) {
      return std::nullopt;
    }
  }

  std::vector<DateToken> numbers;
  int month_name = 0;
  for (const DateToken& t : rest) {
    if (t.kind == DateToken::Number) {
      numbers.push_back(t);
    } else if (t.kind == DateToken::Month) {
      if (month_name) return std::nullopt;
      month_name = t.value;
    }
  }
  const double time = has_time ? TimeFromParts(hour, minute, second) : 0.0;
  if (numbers.empty() && !month_name) {
    return has_time ? std::optional<double>(time) : std::nullopt;
  }

  int year = -1, month = 0, day = 0;
  auto is_year = [](const DateToken& t) { return t.digits >= 3 || t.value > 31; };
  std::tm local{};
  const std::time_t now = std::time(nullptr);
  localtime_r(&now, &local);
  const int this_year = local.tm_year + 1900;

  if (month_name) {
    month = month_name;
    if (numbers.size() == 1) {
      if (is_year(numbers[0])) {
        year = numbers[0].value;
        day = 1;
      } else {
        day = numbers[0].value;
        year = this_year;
      }
    } else if (numbers.size() == 2) {
      if (is_year(numbers[0])) {
        year = numbers[0].value;
        day = numbers[1].value;
      } else {
        day = numbers[0].value;
        year = numbers[1].value;
        if (numbers[1].digits <= 2) year = ExpandYear(year);
      }
    } else {
      return std::nullopt;
    }
  } else if (numbers.size() == 3) {
    if (is_year(numbers[0])) {
      year = numbers[0].value;
      month = numbers[1].value;
      day = numbers[2].value;
    } else {
      month = numbers[0].value;
      day = numbers[1].value;
      year = numbers[2].value;
      if (numbers[2].digits <= 2) year = ExpandYear(year);
      if (month > 12 && day <= 12) std::swap(month, day);
    }
  } else if (numbers.size() == 2) {
    if (is_year(numbers[0])) {
      year = numbers[0].value;
      month = numbers[1].value;
      day = 1;
    } else if (is_year(numbers[1])) {
      month = numbers[0].value;
      year = numbers[1].value;
      day = 1;
    } else {
      month = numbers[0].value;
      day = numbers[1].value;
      year = this_year;
      if (month > 12 && day <= 12) std::swap(month, day);
    }
  } else {
    return std::nullopt;
  }
  if (month < 1 || month > 12 || year < 100 || year > 9999) return std::nullopt;
  if (day < 1 || day > DaysInMonth(year, month)) return std::nullopt;
  const auto date = DateFromParts(year, month, day);
  if (!date) return std::nullopt;
  return CombineDateTime(*date, time);
}

}  // namespace qv
