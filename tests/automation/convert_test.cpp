// VBScript's conversion and comparison rules where the conformance scripts can't reach them:
// Currency into whole numbers, the flags of a literal operand, and number text that no script
// case spells. What CInt, CLng, CBool, CCur and the operators do with script values is checked
// by tests/vbscript/conformance (conversions.vbs, operators.vbs).
#include "automation/convert.h"

#include <gtest/gtest.h>

#include "automation/date_time.h"
#include "automation/error.h"
#include "automation/error_of.h"

namespace qv {
namespace {

TEST(Convert, WholeNumbersFromCurrencyAndTextForms) {
  EXPECT_EQ(ToInteger(Variant::Currency(25000)), 2);  // 2.5 to the even 2
  EXPECT_EQ(ToInteger(Variant::Currency(35000)), 4);
  EXPECT_DOUBLE_EQ(ToDouble(Variant(u"(5)")), -5);
  EXPECT_EQ(ParseNumberText(u"&HFFFFFFFF"), -1.0);
  EXPECT_EQ(ParseNumberText(u"&O777"), 511.0);
  for (const char16_t* bad : {u"-", u"&H", u"&H1G", u"1.2.3", u",5", u"1e400"})
    EXPECT_FALSE(ParseNumberText(bad).has_value()) << String(bad).ToUtf8();
  EXPECT_EQ(ErrorOf([] { ToDouble(Variant(u"")); }), 13);
}

TEST(Convert, ALiteralOperandDecidesHowTextAndNumbersCompare) {
  // Two variables: a number is less than any string.
  EXPECT_EQ(Compare(Variant(10), Variant(u"10")), Comparison::Less);
  EXPECT_EQ(Compare(Variant(u"10"), Variant(10)), Comparison::Greater);
  // A literal number makes the string a number; a literal string makes the number text.
  EXPECT_EQ(Compare(Variant(u"10"), Variant(10), false, kRightIsLiteral), Comparison::Equal);
  EXPECT_EQ(Compare(Variant(10), Variant(u"10"), false, kRightIsLiteral), Comparison::Equal);
  EXPECT_EQ(Compare(Variant::Null(), Variant(1)), Comparison::Null);
  EXPECT_EQ(Compare(Variant(1e300), Variant(3.0f)), Comparison::Greater);
}

TEST(Convert, CurrencyFromTextIsExact) {
  EXPECT_EQ(ToCurrency(Variant(u"0.000250001")), 3);  // past the tie: up
  EXPECT_EQ(ToCurrency(Variant(u"12e3")), 120000000);
  EXPECT_EQ(ToCurrency(Variant(u"0e999")), 0);
  EXPECT_EQ(ToCurrency(Variant(u"&H10")), 160000);
  EXPECT_EQ(ErrorOf([] { ToCurrency(Variant(u"1e20")); }), 6);
  EXPECT_EQ(ErrorOf([] { ToCurrency(Variant(u"1,2x")); }), 13);
}

}  // namespace
}  // namespace qv
