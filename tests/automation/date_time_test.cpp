// Date values: splitting, building and the 1033 texts.
#include "automation/date_time.h"

#include <gtest/gtest.h>

namespace qv {
namespace {

double Date(int y, int m, int d, int h = 0, int n = 0, int s = 0) {
  return CombineDateTime(*DateFromParts(y, m, d), TimeFromParts(h, n, s));
}

TEST(DateTime, PrintsAsCStrUnderUsEnglish) {
  EXPECT_EQ(DateText(Date(2006, 3, 7, 9, 5, 1)), u"3/7/2006 9:05:01 AM");
  EXPECT_EQ(DateText(Date(2006, 3, 7)), u"3/7/2006");
  EXPECT_EQ(DateText(TimeFromParts(13, 0, 0)), u"1:00:00 PM");
  EXPECT_EQ(DateText(0), u"12:00:00 AM");
  EXPECT_EQ(DateText(Date(1899, 12, 29, 6)), u"12/29/1899 6:00:00 AM");
  EXPECT_DOUBLE_EQ(Date(1899, 12, 29, 6), -1.25);  // the fraction counts forward
}

TEST(DateTime, SerialArithmeticRollsOverAndKnowsLeapYears) {
  EXPECT_DOUBLE_EQ(*DateFromParts(2000, 1, 0), *DateFromParts(1999, 12, 31));
  EXPECT_DOUBLE_EQ(*DateFromParts(2000, 14, 1), *DateFromParts(2001, 2, 1));
  EXPECT_DOUBLE_EQ(*DateFromParts(2000, 0, 1), *DateFromParts(1999, 12, 1));
  EXPECT_DOUBLE_EQ(*DateFromParts(2000, 3, 0), *DateFromParts(2000, 2, 29));
  EXPECT_DOUBLE_EQ(*DateFromParts(1900, 3, 0), *DateFromParts(1900, 2, 28));
  EXPECT_DOUBLE_EQ(*DateFromParts(29, 1, 1), *DateFromParts(2029, 1, 1));
  EXPECT_DOUBLE_EQ(*DateFromParts(30, 1, 1), *DateFromParts(1930, 1, 1));
  EXPECT_FALSE(DateFromParts(10000, 1, 1));
  const auto p = SplitDate(Date(2006, 3, 7, 23, 59, 59));
  ASSERT_TRUE(p);
  EXPECT_EQ(p->weekday, 3);  // a Tuesday
  EXPECT_EQ(p->day_of_year, 66);
  EXPECT_EQ(SplitDate(0)->weekday, 7);  // 12/30/1899 was a Saturday
}

TEST(DateTime, ReadsTheCommonUsForms) {
  const double d = Date(2006, 3, 7);
  EXPECT_DOUBLE_EQ(*ParseDateText(u"3/7/2006"), d);
  EXPECT_DOUBLE_EQ(*ParseDateText(u"2006-03-07"), d);
  EXPECT_DOUBLE_EQ(*ParseDateText(u"March 7, 2006"), d);
  EXPECT_DOUBLE_EQ(*ParseDateText(u"7 Mar 2006"), d);
  EXPECT_DOUBLE_EQ(*ParseDateText(u"Tuesday, March 07, 2006"), d);
  EXPECT_DOUBLE_EQ(*ParseDateText(u"13/1/2006"), Date(2006, 1, 13));
  EXPECT_DOUBLE_EQ(*ParseDateText(u"3/7/06"), d);
  EXPECT_DOUBLE_EQ(*ParseDateText(u"3/7/2006 9:05:01 PM"), Date(2006, 3, 7, 21, 5, 1));
  EXPECT_DOUBLE_EQ(*ParseDateText(u"12:00 AM"), 0);
  EXPECT_DOUBLE_EQ(*ParseDateText(u"9 PM"), TimeFromParts(21, 0, 0));
  EXPECT_FALSE(ParseDateText(u"2/30/2006"));
  EXPECT_FALSE(ParseDateText(u"hello"));
  EXPECT_FALSE(ParseDateText(u"25:00"));
  EXPECT_FALSE(ParseDateText(u"12"));
  EXPECT_FALSE(ParseDateText(u""));
}

TEST(DateTime, ResolvesAmbiguousNumbersAndTimesLikeWindows) {
  // Year/month/day is tried before day/month/year; a number past 31 can only be a year.
  EXPECT_DOUBLE_EQ(*ParseDateText(u"14 2 3"), Date(2014, 2, 3));
  EXPECT_DOUBLE_EQ(*ParseDateText(u"32 2 3"), Date(1932, 2, 3));
  EXPECT_DOUBLE_EQ(*ParseDateText(u"1 2 30"), Date(1930, 1, 2));
  EXPECT_DOUBLE_EQ(*ParseDateText(u"30 2"), Date(1930, 2, 1));
  EXPECT_DOUBLE_EQ(*ParseDateText(u"Jan 35"), Date(1935, 1, 1));
  // '.' separates a time as ':' does; AM/PM only matters up to 12 o'clock.
  EXPECT_DOUBLE_EQ(*ParseDateText(u"2.5"), TimeFromParts(2, 5, 0));
  EXPECT_DOUBLE_EQ(*ParseDateText(u"13:00 AM"), TimeFromParts(13, 0, 0));
  EXPECT_DOUBLE_EQ(*ParseDateText(u"00:00 p"), 0.5);
  EXPECT_DOUBLE_EQ(*ParseDateText(u"1 2 3 4.5"), Date(2003, 1, 2, 4, 5));
  EXPECT_DOUBLE_EQ(*ParseDateText(u"6/30/2011 01:20:34 PM"), Date(2011, 6, 30, 13, 20, 34));
  // A time between the parts of a date, fractions of a second, and stray separators fail.
  for (const char16_t* bad :
       {u"1 2.3 4", u"2013-05-14 02:04:12.017", u"0:60", u"24.00", u"1 2 am", u"3//7/2006",
        u"-3/7/2006", u"3/7/2006-", u"Sept 5", u"1.2.3.4", u"(1:2)"}) {
    EXPECT_FALSE(ParseDateText(bad)) << String(bad).ToUtf8();
  }
}

}  // namespace
}  // namespace qv
