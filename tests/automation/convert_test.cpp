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

TEST(Convert, NumbersPrintAsCStrDoes) {
  EXPECT_EQ(ToString(Variant(1.5)), u"1.5");
  EXPECT_EQ(ToString(Variant(0.1 + 0.2)), u"0.3");
  EXPECT_EQ(ToString(Variant(1.0 / 3.0)), u"0.333333333333333");
  EXPECT_EQ(ToString(Variant(1e20)), u"1E+20");
  EXPECT_EQ(ToString(Variant(1e-5)), u"1E-05");
  EXPECT_EQ(ToString(Variant(123456789012345.0)), u"123456789012345");
  EXPECT_EQ(ToString(Variant(1234567890123456.0)), u"1.23456789012346E+15");
  EXPECT_EQ(ToString(Variant(-0.0)), u"0");
  EXPECT_EQ(ToString(Variant(1.1f)), u"1.1");
  EXPECT_EQ(ToString(Variant::Currency(-15000)), u"-1.5");
  EXPECT_EQ(ToString(Variant::Currency(12345)), u"1.2345");
  EXPECT_EQ(ToString(Variant(true)), u"True");
  EXPECT_EQ(ToString(Variant()), u"");
  EXPECT_EQ(ErrorOf([] { ToString(Variant::Null()); }), 94);
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
}

TEST(Convert, TypeNamesAsVBScriptShowsThem) {
  EXPECT_EQ(TypeNameOf(Variant()), u"Empty");
  EXPECT_EQ(TypeNameOf(Variant(int16_t{1})), u"Integer");
  EXPECT_EQ(TypeNameOf(Variant::Nothing()), u"Nothing");
  EXPECT_EQ(TypeNameOf(Variant::Date(0)), u"Date");
}

}  // namespace
}  // namespace qv
