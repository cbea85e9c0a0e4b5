// VBScript's conversion and comparison rules.
#include "automation/convert.h"

#include <gtest/gtest.h>

#include "automation/date_time.h"
#include "automation/error.h"

namespace qv {
namespace {

int ErrorOf(auto&& f) {
  try {
    f();
  } catch (const Error& e) {
    return e.number();
  }
  return 0;
}

TEST(Convert, WholeNumbersRoundHalfToEvenAndOverflow) {
  EXPECT_EQ(ToInteger(Variant(2.5)), 2);
  EXPECT_EQ(ToInteger(Variant(3.5)), 4);
  EXPECT_EQ(ToInteger(Variant(-2.5)), -2);
  EXPECT_EQ(ToLong(Variant(u" 12 ")), 12);
  EXPECT_EQ(ToLong(Variant(u"1,000")), 1000);
  EXPECT_EQ(ToLong(Variant(u"&H10")), 16);
  EXPECT_EQ(ToInteger(Variant(u"&HFFFF")), -1);
  EXPECT_EQ(ToLong(Variant(true)), -1);
  EXPECT_EQ(ToLong(Variant()), 0);
  EXPECT_EQ(ToInteger(Variant::Currency(25000)), 2);
  EXPECT_EQ(ToInteger(Variant::Currency(35000)), 4);
  EXPECT_EQ(ErrorOf([] { ToInteger(Variant(32767.5)); }), 6);
  EXPECT_EQ(ErrorOf([] { ToByte(Variant(-1)); }), 6);
  EXPECT_EQ(ErrorOf([] { ToLong(Variant(u"abc")); }), 13);
  EXPECT_EQ(ErrorOf([] { ToDouble(Variant(u"")); }), 13);
  EXPECT_EQ(ErrorOf([] { ToLong(Variant::Null()); }), 94);
  EXPECT_DOUBLE_EQ(ToDouble(Variant(u"(5)")), -5);
  EXPECT_DOUBLE_EQ(ToDouble(Variant(u"$1,234.5")), 1234.5);
  EXPECT_DOUBLE_EQ(ToDouble(Variant(u"1.5e3")), 1500);
  EXPECT_FALSE(ParseNumberText(u"1e"));
  EXPECT_FALSE(ParseNumberText(u",5"));
  EXPECT_FALSE(ParseNumberText(u"12abc"));
}

TEST(Convert, BooleansFromTextAndNumbers) {
  EXPECT_TRUE(ToBool(Variant(u"TRUE")));
  EXPECT_FALSE(ToBool(Variant(u"false")));
  EXPECT_TRUE(ToBool(Variant(u"-1")));
  EXPECT_FALSE(ToBool(Variant(u"0")));
  EXPECT_TRUE(ToBool(Variant(0.5)));
  EXPECT_FALSE(ToBool(Variant()));
  EXPECT_EQ(ErrorOf([] { ToBool(Variant(u"yes")); }), 13);
}

TEST(Convert, ComparisonFollowsVBScriptTyping) {
  EXPECT_EQ(Compare(Variant(1), Variant(1.0)), Comparison::Equal);
  EXPECT_EQ(Compare(Variant(u"a"), Variant(u"B")), Comparison::Greater);
  EXPECT_EQ(Compare(Variant(u"a"), Variant(u"B"), true), Comparison::Less);
  EXPECT_EQ(Compare(Variant(), Variant(0)), Comparison::Equal);
  EXPECT_EQ(Compare(Variant(), Variant(u"")), Comparison::Equal);
  EXPECT_EQ(Compare(Variant::Null(), Variant(1)), Comparison::Null);
  // Two variables: a number is less than any string.
  EXPECT_EQ(Compare(Variant(10), Variant(u"10")), Comparison::Less);
  EXPECT_EQ(Compare(Variant(u"10"), Variant(10)), Comparison::Greater);
  // A literal number makes the string a number; a literal string makes the number text.
  EXPECT_EQ(Compare(Variant(u"10"), Variant(10), false, kRightIsLiteral), Comparison::Equal);
  EXPECT_EQ(Compare(Variant(10), Variant(u"10"), false, kRightIsLiteral), Comparison::Equal);
  EXPECT_EQ(Compare(Variant(true), Variant(-1)), Comparison::Equal);
  // Text order is the locale's, not the code units': accents after their letter, "_" first.
  EXPECT_EQ(Compare(Variant(u"\u00e9"), Variant(u"f"), true), Comparison::Less);
  EXPECT_EQ(Compare(Variant(u"_"), Variant(u"a"), true), Comparison::Less);
  EXPECT_EQ(Compare(Variant(u"_"), Variant(u"a")), Comparison::Less);
  EXPECT_EQ(Compare(Variant(u"_"), Variant(u"A")), Comparison::Greater);
  // A Single meets a Double at the Single's precision; huge Doubles still compare.
  EXPECT_EQ(Compare(Variant(0.1f), Variant(0.1)), Comparison::Equal);
  EXPECT_EQ(Compare(Variant(1e300), Variant(3.0f)), Comparison::Greater);
  EXPECT_EQ(Compare(Variant(1.5f), Variant(1.25)), Comparison::Greater);
}

TEST(Convert, NumberTextInAllItsForms) {
  EXPECT_EQ(ParseNumberText(u" 5- "), -5.0);
  EXPECT_EQ(ParseNumberText(u"+5"), 5.0);
  EXPECT_EQ(ParseNumberText(u"(1,234.5)"), -1234.5);
  EXPECT_EQ(ParseNumberText(u"$2"), 2.0);
  EXPECT_EQ(ParseNumberText(u"&HFFFF"), 65535.0);
  EXPECT_EQ(ParseNumberText(u"&HFFFFFFFF"), -1.0);
  EXPECT_EQ(ParseNumberText(u"&O777"), 511.0);
  for (const char16_t* bad :
       {u"-5-", u"(5-)", u"", u"-", u"1e", u"&H", u"&H1G", u"1.2.3", u"1e400"})
    EXPECT_FALSE(ParseNumberText(bad).has_value()) << String(bad).ToUtf8();
  EXPECT_EQ(ToInteger(Variant(u"&HFFFF")), -1);
  EXPECT_EQ(ToLong(Variant(u"&HFFFF")), 65535);
  EXPECT_EQ(ErrorOf([] { ToInteger(Variant(u"&H10000")); }), 6);
}

TEST(Convert, CurrencyFromTextIsExact) {
  EXPECT_EQ(ToCurrency(Variant(u"922337203685477.5807")), INT64_MAX);
  EXPECT_EQ(ToCurrency(Variant(u"-922337203685477.5808")), INT64_MIN);
  EXPECT_EQ(ToCurrency(Variant(u"0.00015")), 2);
  EXPECT_EQ(ToCurrency(Variant(u"0.00025")), 2);
  EXPECT_EQ(ToCurrency(Variant(u"0.000250001")), 3);
  EXPECT_EQ(ToCurrency(Variant(u"1.5e-2")), 150);
  EXPECT_EQ(ToCurrency(Variant(u"12e3")), 120000000);
  EXPECT_EQ(ToCurrency(Variant(u"0e999")), 0);
  EXPECT_EQ(ToCurrency(Variant(u"&H10")), 160000);
  EXPECT_EQ(ErrorOf([] { ToCurrency(Variant(u"922337203685477.5808")); }), 6);
  EXPECT_EQ(ErrorOf([] { ToCurrency(Variant(u"1e20")); }), 6);
  EXPECT_EQ(ErrorOf([] { ToCurrency(Variant(u"1,2x")); }), 13);
}

}  // namespace
}  // namespace qv
