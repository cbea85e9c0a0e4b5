// The date family of the runtime library: the clock, the parts of a date, names of months
// and weekdays, and calendar arithmetic (DateAdd, DateDiff, DatePart with their first day of
// the week and first week of the year).
#include <cmath>

#include "automation/date_time.h"
#include "vbscript/runtime_lib.h"

namespace qv::vbs {

namespace {

// Dates hold days before 1899-12-30 with the time counting forward from midnight, so -1.25
// is 12/29/1899 6:00 AM. Time arithmetic works on a linear count, where -0.75 is that time.
double ToLinear(double date) {
  const double day = std::trunc(date);
  return day + std::fabs(date - day);
}

// The argument as a date; nothing for Null, which the part functions hand back as Null.
std::optional<double> DateArg(const Variant& raw) {
  const Variant v = ValueOf(raw);
  if (v.is_null()) return std::nullopt;
  return ToDate(v);
}

DateParts PartsOf(double date) {
  const auto p = SplitDate(date);
  if (!p) Raise(kErrInvalidCall);
  return *p;
}

template <class PartFn>
Variant DatePartOf(const Variant& raw, PartFn part) {
  const auto d = DateArg(raw);
  if (!d) return Variant::Null();
  return Variant(static_cast<int16_t>(part(PartsOf(*d))));
}

Variant Now(RuntimeState&, Args) {
  return Variant::Date(NowAsDate());
}

Variant DateFn(RuntimeState&, Args) {
  return Variant::Date(std::trunc(NowAsDate()));
}

Variant Time(RuntimeState&, Args) {
  const double now = NowAsDate();
  return Variant::Date(now - std::trunc(now));
}

Variant Timer(RuntimeState&, Args) {
  // Windows reports hundredths of a second.
  return Variant(static_cast<float>(std::floor(TimerSeconds() * 100.0) / 100.0));
}

Variant Year(RuntimeState&, Args a) {
  return DatePartOf(a[0], [](const DateParts& p) { return p.year; });
}
Variant Month(RuntimeState&, Args a) {
  return DatePartOf(a[0], [](const DateParts& p) { return p.month; });
}
Variant Day(RuntimeState&, Args a) {
  return DatePartOf(a[0], [](const DateParts& p) { return p.day; });
}
Variant Hour(RuntimeState&, Args a) {
  return DatePartOf(a[0], [](const DateParts& p) { return p.hour; });
}
Variant Minute(RuntimeState&, Args a) {
  return DatePartOf(a[0], [](const DateParts& p) { return p.minute; });
}
Variant Second(RuntimeState&, Args a) {
  return DatePartOf(a[0], [](const DateParts& p) { return p.second; });
}

// vbUseSystemDayOfWeek (0) is the locale's first day (Sunday under 1033, Monday under
// 1031); anything outside 0..7 raises 5. Left out, the first day is Sunday under every locale,
// for WeekdayName as for Weekday: both share the one optional-argument rule of the Windows
// library, so a page written under 1033 names the same day after a SetLocale.
int FirstDayArg(Args a, size_t i) {
  const int32_t n = OptionalLong(a, i, 1);
  if (n < 0 || n > 7) Raise(kErrInvalidCall);
  return n == 0 ? CurrentLocale().first_day : n;
}

// vbUseSystem (0) is the locale's rule for the first week of the year.
int FirstWeekArg(Args a, size_t i) {
  const int32_t n = OptionalLong(a, i, 1);
  if (n < 0 || n > 3) Raise(kErrInvalidCall);
  return n == 0 ? CurrentLocale().first_week : n;
}

int WeekdayFrom(int weekday, int first_day) {
  return (weekday - first_day + 7) % 7 + 1;
}

Variant Weekday(RuntimeState&, Args a) {
  const int first = FirstDayArg(a, 1);
  return DatePartOf(a[0], [first](const DateParts& p) { return WeekdayFrom(p.weekday, first); });
}

// The optional arguments are read before the first, so a Null among them raises 94 even
// when the first is no number.
bool AbbreviateArg(Args a, size_t i) {
  if (!Given(a, i)) return false;
  const Variant v = ValueOf(a[i]);
  if (v.is_null()) Raise(kErrInvalidUseOfNull);
  return ToBool(v);
}

Variant WeekdayName(RuntimeState&, Args a) {
  const int first = FirstDayArg(a, 2);
  const bool abbreviate = AbbreviateArg(a, 1);
  const int32_t n = OptionalLong(a, 0, 0);
  if (n < 1 || n > 7) Raise(kErrInvalidCall);
  return WeekdayNameText((n + first - 2) % 7 + 1, abbreviate, CurrentLocale());
}

Variant MonthName(RuntimeState&, Args a) {
  const bool abbreviate = AbbreviateArg(a, 1);
  const int32_t n = OptionalLong(a, 0, 0);
  if (n < 1 || n > 12) Raise(kErrInvalidCall);
  return MonthNameText(n, abbreviate, CurrentLocale());
}

enum class Interval { Year, Quarter, Month, DayOfYear, Day, Weekday, Week, Hour, Minute, Second };

Interval IntervalArg(const Variant& raw) {
  const Variant v = ValueOf(raw);
  if (v.is_null()) Raise(kErrInvalidUseOfNull);
  const String s = ToString(v);
  static constexpr std::pair<std::u16string_view, Interval> kNames[] = {
      {u"yyyy", Interval::Year},   {u"q", Interval::Quarter}, {u"m", Interval::Month},
      {u"y", Interval::DayOfYear}, {u"d", Interval::Day},     {u"w", Interval::Weekday},
      {u"ww", Interval::Week},     {u"h", Interval::Hour},    {u"n", Interval::Minute},
      {u"s", Interval::Second},
  };
  for (const auto& [name, interval] : kNames) {
    if (EqualsNoCase(s, name)) return interval;
  }
  Raise(kErrInvalidCall);
}

double CheckedDate(std::optional<double> d) {
  if (!d || !InDateRange(*d)) Raise(kErrInvalidCall);
  return *d;
}

double AddMonths(double date, double months) {
  const DateParts p = PartsOf(date);
  const double total = p.year * 12.0 + (p.month - 1) + months;
  if (!(total >= 100 * 12.0 && total < 10000 * 12.0)) Raise(kErrInvalidCall);
  const int year = static_cast<int>(std::floor(total / 12));
  const int month = static_cast<int>(total - year * 12.0) + 1;
  // The day stays, short months clip it: Jan 31 plus a month is Feb 28 or 29.
  const double first = CheckedDate(DateFromParts(year, month, 1));
  const double next = CheckedDate(DateFromParts(year, month + 1, 1));
  const int last_day = static_cast<int>(next - first);
  const int day = p.day < last_day ? p.day : last_day;
  const double time = std::fabs(date - std::trunc(date));
  return CombineDateTime(first + day - 1, time);
}

double AddSeconds(double date, double seconds) {
  // Whole seconds on a linear count keep the sum exact across midnight and the epoch.
  const double linear = ToLinear(date);
  const double day = std::floor(linear);
  const double second_of_day = std::round((linear - day) * 86400.0);
  const double total = day * 86400.0 + second_of_day + seconds;
  const double new_day = std::floor(total / 86400.0);
  return CombineDateTime(new_day, (total - new_day * 86400.0) / 86400.0);
}

Variant DateAdd(RuntimeState&, Args a) {
  const Interval interval = IntervalArg(a[0]);
  const Variant count_arg = ValueOf(a[1]);
  if (count_arg.is_null()) Raise(kErrInvalidUseOfNull);
  // A fractional count is rounded as CLng rounds it, half to even, before it is applied.
  const double count = RoundHalfEven(ToDouble(count_arg));
  const auto d = DateArg(a[2]);
  if (!d) return Variant::Null();
  double result = 0;
  switch (interval) {
    case Interval::Year:
      result = AddMonths(*d, count * 12);
      break;
    case Interval::Quarter:
      result = AddMonths(*d, count * 3);
      break;
    case Interval::Month:
      result = AddMonths(*d, count);
      break;
    case Interval::DayOfYear:
    case Interval::Day:
    case Interval::Weekday:
      result = AddSeconds(*d, count * 86400.0);
      break;
    case Interval::Week:
      result = AddSeconds(*d, count * 7 * 86400.0);
      break;
    case Interval::Hour:
      result = AddSeconds(*d, count * 3600.0);
      break;
    case Interval::Minute:
      result = AddSeconds(*d, count * 60.0);
      break;
    case Interval::Second:
      result = AddSeconds(*d, count);
      break;
  }
  return Variant::Date(CheckedDate(result));
}

// The day number (linear, whole) a date falls on.
double DayNumber(double date) {
  const DateParts p = PartsOf(date);
  return *DateFromParts(p.year, p.month, p.day);
}

double WeekStart(double date, int first_day) {
  const DateParts p = PartsOf(date);
  return DayNumber(date) - (WeekdayFrom(p.weekday, first_day) - 1);
}

double SecondNumber(double date) {
  const DateParts p = PartsOf(date);
  return DayNumber(date) * 86400.0 + p.hour * 3600.0 + p.minute * 60.0 + p.second;
}

Variant DateDiff(RuntimeState&, Args a) {
  const Interval interval = IntervalArg(a[0]);
  const int first_day = FirstDayArg(a, 3);
  FirstWeekArg(a, 4);
  const auto d1 = DateArg(a[1]);
  const auto d2 = DateArg(a[2]);
  if (!d1 || !d2) return Variant::Null();
  const DateParts p1 = PartsOf(*d1), p2 = PartsOf(*d2);
  double diff = 0;
  switch (interval) {
    case Interval::Year:
      diff = p2.year - p1.year;
      break;
    case Interval::Quarter:
      diff = (p2.year * 4 + (p2.month - 1) / 3) - (p1.year * 4 + (p1.month - 1) / 3);
      break;
    case Interval::Month:
      diff = (p2.year * 12 + p2.month) - (p1.year * 12 + p1.month);
      break;
    case Interval::DayOfYear:
    case Interval::Day:
      diff = DayNumber(*d2) - DayNumber(*d1);
      break;
    case Interval::Weekday:
      diff = std::trunc((DayNumber(*d2) - DayNumber(*d1)) / 7);
      break;
    case Interval::Week:
      diff = (WeekStart(*d2, first_day) - WeekStart(*d1, first_day)) / 7;
      break;
    case Interval::Hour:
      diff = (DayNumber(*d2) * 24 + p2.hour) - (DayNumber(*d1) * 24 + p1.hour);
      break;
    case Interval::Minute:
      diff = (DayNumber(*d2) * 1440 + p2.hour * 60 + p2.minute) -
             (DayNumber(*d1) * 1440 + p1.hour * 60 + p1.minute);
      break;
    case Interval::Second:
      diff = SecondNumber(*d2) - SecondNumber(*d1);
      break;
  }
  if (!(diff <= INT32_MAX && diff >= INT32_MIN)) Raise(kErrOverflow);
  return Variant(static_cast<int32_t>(diff));
}

// The first day of week 1 of a year under the first-week rule.
double FirstWeekStart(int year, int first_day, int first_week) {
  const double jan1 = *DateFromParts(year, 1, 1);
  const int offset = WeekdayFrom(PartsOf(jan1).weekday, first_day) - 1;
  switch (first_week) {
    case 2:  // the first week with four days or more in the new year
      return offset <= 3 ? jan1 - offset : jan1 - offset + 7;
    case 3:  // the first full week
      return offset == 0 ? jan1 : jan1 - offset + 7;
    default:  // the week of January 1
      return jan1 - offset;
  }
}

// Week of the year. Days before week 1 count in the previous year's last week. Under
// vbFirstFourDays the last days of December can already be week 1 of the next year (Tuesday
// 12/30/2003 under vbMonday); under the other rules the next year's week 1 never starts in
// December, or (vbFirstJan1) the year keeps its days to the end, giving weeks 53 and 54.
int WeekOfYear(double date, int first_day, int first_week) {
  const DateParts p = PartsOf(date);
  const double day = DayNumber(date);
  double start = FirstWeekStart(p.year, first_day, first_week);
  if (day < start && p.year > 100) start = FirstWeekStart(p.year - 1, first_day, first_week);
  if (first_week == 2 && p.month == 12 && p.year < 9999 &&
      day >= FirstWeekStart(p.year + 1, first_day, first_week)) {
    return 1;
  }
  return static_cast<int>(std::floor((day - start) / 7)) + 1;
}

Variant DatePart(RuntimeState&, Args a) {
  const Interval interval = IntervalArg(a[0]);
  const int first_day = FirstDayArg(a, 2);
  const int first_week = FirstWeekArg(a, 3);
  const auto d = DateArg(a[1]);
  if (!d) return Variant::Null();
  const DateParts p = PartsOf(*d);
  int part = 0;
  switch (interval) {
    case Interval::Year:
      part = p.year;
      break;
    case Interval::Quarter:
      part = (p.month - 1) / 3 + 1;
      break;
    case Interval::Month:
      part = p.month;
      break;
    case Interval::DayOfYear:
      part = p.day_of_year;
      break;
    case Interval::Day:
      part = p.day;
      break;
    case Interval::Weekday:
      part = WeekdayFrom(p.weekday, first_day);
      break;
    case Interval::Week:
      part = WeekOfYear(*d, first_day, first_week);
      break;
    case Interval::Hour:
      part = p.hour;
      break;
    case Interval::Minute:
      part = p.minute;
      break;
    case Interval::Second:
      part = p.second;
      break;
  }
  return Variant(static_cast<int16_t>(part));
}

int SerialPart(const Variant& raw) {
  const Variant v = ValueOf(raw);
  if (v.is_null()) Raise(kErrInvalidUseOfNull);
  const double d = RoundHalfEven(ToDouble(v));
  if (!(d >= -2147483648.0 && d <= 2147483647.0)) Raise(kErrOverflow);
  return static_cast<int>(d);
}

Variant DateSerial(RuntimeState&, Args a) {
  const int year = SerialPart(a[0]), month = SerialPart(a[1]), day = SerialPart(a[2]);
  return Variant::Date(CheckedDate(DateFromParts(year, month, day)));
}

Variant TimeSerial(RuntimeState&, Args a) {
  const double t = TimeFromParts(SerialPart(a[0]), SerialPart(a[1]), SerialPart(a[2]));
  return Variant::Date(CheckedDate(t));
}

// DateValue and TimeValue read a date from text or take a date as it is; a number is no date
// text, and Null is refused rather than passed through.
double DateTextArg(const Variant& raw) {
  const Variant v = ValueOf(raw);
  if (v.is_null()) Raise(kErrInvalidUseOfNull);
  if (v.is_numeric_type() && v.type() != VarType::Date) Raise(kErrTypeMismatch);
  return ToDate(v);
}

Variant DateValue(RuntimeState&, Args a) {
  return Variant::Date(std::trunc(DateTextArg(a[0])));
}

Variant TimeValue(RuntimeState&, Args a) {
  const std::optional<double> d = DateTextArg(a[0]);
  // Rebuilt from whole seconds: the fraction of a date far from the epoch carries the rounding
  // of the date part, and the time must compare equal to the same time written alone.
  double seconds = std::round(std::fabs(*d - std::trunc(*d)) * 86400.0);
  if (seconds >= 86400.0) seconds = 0;
  return Variant::Date(seconds / 86400.0);
}

constexpr BuiltinFunction kDateFunctions[] = {
    {u"Date", DateFn, 0, 0},
    {u"DateAdd", DateAdd, 3, 3},
    {u"DateDiff", DateDiff, 3, 5},
    {u"DatePart", DatePart, 2, 4},
    {u"DateSerial", DateSerial, 3, 3},
    {u"DateValue", DateValue, 1, 1},
    {u"Day", Day, 1, 1},
    {u"Hour", Hour, 1, 1},
    {u"Minute", Minute, 1, 1},
    {u"Month", Month, 1, 1},
    {u"MonthName", MonthName, 1, 2},
    {u"Now", Now, 0, 0},
    {u"Second", Second, 1, 1},
    {u"Time", Time, 0, 0},
    {u"Timer", Timer, 0, 0},
    {u"TimeSerial", TimeSerial, 3, 3},
    {u"TimeValue", TimeValue, 1, 1},
    {u"Weekday", Weekday, 1, 2},
    {u"WeekdayName", WeekdayName, 1, 3},
    {u"Year", Year, 1, 1},
};

}  // namespace

std::span<const BuiltinFunction> DateFunctions() {
  return kDateFunctions;
}

}  // namespace qv::vbs
