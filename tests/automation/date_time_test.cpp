// Date values where the conformance scripts don't already pin them (dates.vbs reads, builds and
// prints dates through CDate, DateSerial and CStr): 1900 is no leap year, and the text forms
// that only a host's data brings.
#include "automation/date_time.h"

#include <gtest/gtest.h>

namespace qv {
namespace {

double Date(int y, int m, int d, int h = 0, int n = 0, int s = 0) {
  return CombineDateTime(*DateFromParts(y, m, d), TimeFromParts(h, n, s));
}

TEST(DateTime, CalendarAndTextFormsBeyondTheScripts) {
  EXPECT_DOUBLE_EQ(*DateFromParts(1900, 3, 0), *DateFromParts(1900, 2, 28));
  EXPECT_DOUBLE_EQ(Date(1899, 12, 29, 6), -1.25);  // the fraction counts forward
  EXPECT_EQ(SplitDate(0)->weekday, 7);             // 12/30/1899 was a Saturday
  EXPECT_DOUBLE_EQ(*ParseDateText(u"6/30/2011 01:20:34 PM"), Date(2011, 6, 30, 13, 20, 34));
  EXPECT_DOUBLE_EQ(*ParseDateText(u"00:00 p"), 0.5);
  for (const char16_t* bad : {u"0:60", u"24.00", u"3/7/2006-", u"1.2.3.4", u"(1:2)"})
    EXPECT_FALSE(ParseDateText(bad)) << String(bad).ToUtf8();
}

}  // namespace
}  // namespace qv
