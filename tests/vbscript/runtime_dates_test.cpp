// The date family: parts, names, calendar arithmetic and the 1033 texts.
#include "vbscript/runtime_test_helpers.h"

#include <cmath>

#include "automation/date_time.h"

namespace qv::vbs {
namespace {

using testing::Call;
using testing::I;
using testing::L;
using testing::Show;

Variant D(const char16_t* text) {
  return Variant::Date(*ParseDateText(text));
}

TEST(RuntimeDates, PartsOfADate) {
  const Variant d = D(u"3/7/2006 9:05:01 PM");
  EXPECT_EQ(Show(u"Year", {d}), "2006");
  EXPECT_EQ(Show(u"Month", {d}), "3");
  EXPECT_EQ(Show(u"Day", {d}), "7");
  EXPECT_EQ(Show(u"Hour", {d}), "21");
  EXPECT_EQ(Show(u"Minute", {d}), "5");
  EXPECT_EQ(Show(u"Second", {d}), "1");
  EXPECT_EQ(Show(u"Weekday", {d}), "3");
  EXPECT_EQ(Show(u"Weekday", {d, I(2)}), "2");
  EXPECT_EQ(Show(u"Weekday", {d, I(8)}), "Err 5");
  EXPECT_EQ(Show(u"Year", {u"12/31/1999"}), "1999");
  EXPECT_EQ(Show(u"Year", {u"not a date"}), "Err 13");
  EXPECT_EQ(Show(u"Year", {I(0)}), "1899");
  EXPECT_EQ(Call(u"Year", {d}).type(), VarType::Integer);
  EXPECT_EQ(Show(u"WeekdayName", {I(1), Variant(true), I(2)}), "Mon");
  EXPECT_EQ(Show(u"WeekdayName", {I(7), Variant(false), I(2)}), "Sunday");
  EXPECT_EQ(Show(u"WeekdayName", {I(0)}), "Err 5");
}

TEST(RuntimeDates, SerialsRollOverAndExpandTwoDigitYears) {
  EXPECT_EQ(Show(u"DateSerial", {I(2006), I(3), I(7)}), "3/7/2006");
  EXPECT_EQ(Show(u"DateSerial", {I(2006), I(-1), I(1)}), "11/1/2005");
  EXPECT_EQ(Show(u"TimeSerial", {I(9), I(5), I(1)}), "9:05:01 AM");
  EXPECT_EQ(Show(u"DateValue", {u"3/7/2006 9:05:01 AM"}), "3/7/2006");
  EXPECT_EQ(Show(u"TimeValue", {u"3/7/2006 9:05:01 AM"}), "9:05:01 AM");
  EXPECT_EQ(Show(u"DateValue", {u"bogus"}), "Err 13");
}

TEST(RuntimeDates, DateAddClipsMonthEndsAndCarriesTime) {
  EXPECT_EQ(Show(u"DateAdd", {u"q", I(-1), D(u"5/31/2006 10:00 AM")}), "2/28/2006 10:00:00 AM");
  EXPECT_EQ(Show(u"DateAdd", {u"d", I(1), D(u"12/31/1999")}), "1/1/2000");
  EXPECT_EQ(Show(u"DateAdd", {u"ww", I(2), D(u"3/7/2006")}), "3/21/2006");
  EXPECT_EQ(Show(u"DateAdd", {u"h", I(3), D(u"3/7/2006 11:30 PM")}), "3/8/2006 2:30:00 AM");
  EXPECT_EQ(Show(u"DateAdd", {u"n", I(-90), D(u"3/7/2006 1:00 AM")}), "3/6/2006 11:30:00 PM");
  EXPECT_EQ(Show(u"DateAdd", {u"s", I(1), D(u"12/31/9999 11:59:59 PM")}), "Err 5");
  EXPECT_EQ(Show(u"DateAdd", {u"d", I(-1), Variant::Date(0.25)}), "12/29/1899 6:00:00 AM");
  EXPECT_EQ(Show(u"DateAdd", {u"x", I(1), D(u"3/7/2006")}), "Err 5");
}

TEST(RuntimeDates, DateDiffCountsBoundaries) {
  EXPECT_EQ(Show(u"DateDiff", {u"q", D(u"3/31/2006"), D(u"4/1/2006")}), "1");
  EXPECT_EQ(Show(u"DateDiff", {u"d", D(u"3/7/2006 11 PM"), D(u"3/8/2006 1 AM")}), "1");
  EXPECT_EQ(Show(u"DateDiff", {u"d", D(u"3/8/2006"), D(u"3/7/2006")}), "-1");
  EXPECT_EQ(Show(u"DateDiff", {u"h", D(u"3/7/2006 10:59 AM"), D(u"3/7/2006 11:00 AM")}), "1");
  EXPECT_EQ(Show(u"DateDiff", {u"n", D(u"3/7/2006 10:59:59 AM"), D(u"3/7/2006 11:00 AM")}), "1");
  // "w" counts whole weeks; "ww" counts week starts (Sundays by default) crossed.
  EXPECT_EQ(Show(u"DateDiff", {u"w", D(u"3/7/2006"), D(u"3/20/2006")}), "1");
  EXPECT_EQ(Show(u"DateDiff", {u"ww", D(u"3/11/2006"), D(u"3/12/2006"), I(2)}), "0");
  EXPECT_EQ(Show(u"DateDiff", {u"d", Variant::Null(), D(u"3/12/2006")}), "Null");
}

TEST(RuntimeDates, DatePartWeeksFollowTheFirstWeekRules) {
  EXPECT_EQ(Show(u"DatePart", {u"w", D(u"3/7/2006"), I(2)}), "2");
  EXPECT_EQ(Show(u"DatePart", {u"ww", D(u"1/1/2006")}), "1");
  // 1/1/2005 is a Saturday: under Monday / first four days it belongs to 2004's week 53.
  EXPECT_EQ(Show(u"DatePart", {u"ww", D(u"1/1/2005"), I(2), I(2)}), "53");
  EXPECT_EQ(Show(u"DatePart", {u"ww", D(u"1/3/2005"), I(2), I(2)}), "1");
  EXPECT_EQ(Show(u"DatePart", {u"ww", D(u"1/3/2005"), I(2), I(3)}), "1");
  EXPECT_EQ(Show(u"DatePart", {u"ww", D(u"1/2/2005"), I(2), I(3)}), "52");
  // Under first-four-days the week of 1/1/2004 (a Thursday) starts on Monday 12/29/2003; the
  // other rules keep late December in its own year.
  EXPECT_EQ(Show(u"DatePart", {u"ww", D(u"12/29/2003"), I(2), I(2)}), "1");
  EXPECT_EQ(Show(u"DatePart", {u"ww", D(u"12/31/2003"), I(2), I(2)}), "1");
  EXPECT_EQ(Show(u"DatePart", {u"ww", D(u"12/28/2003"), I(2), I(2)}), "52");
  EXPECT_EQ(Show(u"DatePart", {u"ww", D(u"12/31/2003"), I(2), I(3)}), "52");
  EXPECT_EQ(Show(u"DatePart", {u"ww", D(u"1/1/2006"), I(1), I(4)}), "Err 5");
}

TEST(RuntimeDates, FormatDateTimeUnder1033) {
  const Variant d = D(u"3/7/2006 9:05:01 PM");
  EXPECT_EQ(Show(u"FormatDateTime", {d}), "3/7/2006 9:05:01 PM");
  EXPECT_EQ(Show(u"FormatDateTime", {d, I(1)}), "Tuesday, March 7, 2006");
  EXPECT_EQ(Show(u"FormatDateTime", {d, I(2)}), "3/7/2006");
  EXPECT_EQ(Show(u"FormatDateTime", {d, I(3)}), "9:05:01 PM");
  EXPECT_EQ(Show(u"FormatDateTime", {d, I(4)}), "21:05");
  EXPECT_EQ(Show(u"FormatDateTime", {d, I(5)}), "Err 5");
  EXPECT_EQ(Show(u"FormatDateTime", {D(u"3/7/2006")}), "3/7/2006");
  EXPECT_EQ(Show(u"FormatDateTime", {Variant::Date(0.5)}), "12:00:00 PM");
  EXPECT_EQ(Show(u"FormatDateTime", {d, Variant::Null()}), "Err 94");
}

TEST(RuntimeDates, ClockFunctionsAgree) {
  const double now = Call(u"Now", {}).as_date();
  const double today = Call(u"Date", {}).as_date();
  const double time = Call(u"Time", {}).as_date();
  EXPECT_LE(std::fabs(today + time - now), 2.0 / 86400);
  EXPECT_EQ(today, std::trunc(today));
  const float timer = Call(u"Timer", {}).as_single();
  EXPECT_GE(timer, 0);
  EXPECT_LT(timer, 86400.5f);
}

}  // namespace
}  // namespace qv::vbs
