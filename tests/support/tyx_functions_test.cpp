// Identifiers, type classes, DBMS kinds and quoting: the exact texts generated code relies on.
#include "support/tyx_functions.h"

#include <gtest/gtest.h>

#include "support/tyx_vars.h"

namespace qv {
namespace {

TEST(ToVarNameTest, MakesIdentifiersFromAnyName) {
  EXPECT_EQ(ToVarName(u"Order ID", u""), u"Order_ID");
  EXPECT_EQ(ToVarName(u"2nd", u""), u"x2nd");
  EXPECT_EQ(ToVarName(u"_a", u""), u"x_a");
  EXPECT_EQ(ToVarName(u"Cost%", u""), u"Cost25");
  EXPECT_EQ(ToVarName(u"", u"x_"), u"x_x");
  EXPECT_EQ(ToVarName(u"Price", u"x_"), u"x_Price");
  // Upper-case hexadecimal without leading zeros, for any 16-bit code.
  EXPECT_EQ(ToVarName(u"#", u""), u"x23");
  EXPECT_EQ(ToVarName(u"caf\u00e9", u""), u"cafE9");
  EXPECT_EQ(ToVarName(u"a\u20acb", u""), u"a20ACb");
  EXPECT_EQ(ToVarName(std::u16string_view(u"a\0b", 3), u""), u"a0b");
  // Only ASCII letters count as letters at the start: an accented first letter gets the "x".
  EXPECT_EQ(ToVarName(u"\u00e9t\u00e9", u""), u"xE9tE9");
  EXPECT_EQ(ToVarName(u" lead", u""), u"x_lead");
}

TEST(FieldTypeClassTest, ClassifiesEveryListedAdoType) {
  for (int t : {20, 3, 2, 16, 4, 5, 131, 6})
    EXPECT_EQ(FieldTypeClass(t), 1) << t;
  for (int t : {7, 133, 134, 135})
    EXPECT_EQ(FieldTypeClass(t), 2) << t;
  for (int t : {201, 203, 129, 130, 200, 202})
    EXPECT_EQ(FieldTypeClass(t), 3) << t;
  EXPECT_EQ(FieldTypeClass(11), 4);
  EXPECT_EQ(FieldTypeClass(72), 5);
  for (int t : {0, 17, 128, 204, 205, 14, 64, -1, 100000})
    EXPECT_EQ(FieldTypeClass(t), 6) << t;
}

TEST(DatabaseKindTest, TestsInOrderWithExactAccessNames) {
  EXPECT_EQ(DatabaseKind(u"MS Jet"), 1);
  EXPECT_EQ(DatabaseKind(u"ACCESS"), 1);
  EXPECT_EQ(DatabaseKind(u"access"), 5);  // the first test is exact
  EXPECT_EQ(DatabaseKind(u"Microsoft Access"), 5);
  EXPECT_EQ(DatabaseKind(u"Microsoft SQL Server"), 2);
  EXPECT_EQ(DatabaseKind(u"microsoft sql server"), 2);
  EXPECT_EQ(DatabaseKind(u"SQL Server"), 5);  // needs "Microsoft" too
  EXPECT_EQ(DatabaseKind(u"mysql 8.0"), 3);
  EXPECT_EQ(DatabaseKind(u"MariaDB"), 3);  // what MariaDB's own driver reports
  EXPECT_EQ(DatabaseKind(u"Corazon"), 4);
  EXPECT_EQ(DatabaseKind(u"PostgreSQL"), 5);
  EXPECT_EQ(DatabaseKind(u""), 5);
  // MySQL wins over "ora" because it is tested first; SQL Server wins over both.
  EXPECT_EQ(DatabaseKind(u"MySQL on Oracle Linux"), 3);
  EXPECT_EQ(DatabaseKind(u"Microsoft SQL on ORA"), 2);
}

class QuoteTest : public ::testing::Test {
 protected:
  void SetUp() override { ResetVars(); }
  void TearDown() override { ResetVars(); }
  void Expect(StringView style, StringView dbms, StringView open, StringView close) {
    Vars().SqlQuoteStyle = String(style);
    SetQuoteChars(dbms);
    EXPECT_EQ(Vars().TableQuoteOpen, open) << String::ToUtf8(style) << "/" << String::ToUtf8(dbms);
    EXPECT_EQ(Vars().TableQuoteClose, close);
    ASSERT_TRUE(Vars().DbQuoteOpen.is_string());
    EXPECT_EQ(Vars().DbQuoteOpen.as_string(), open);
    EXPECT_EQ(Vars().DbQuoteClose.as_string(), close);
  }
};

TEST_F(QuoteTest, StyleDecidesFirstThenTheKind) {
  Expect(u"Square Bracket", u"MySQL", u"[", u"]");
  Expect(u"Double Quote", u"ACCESS", u"\"", u"\"");
  Expect(u"Single Quote", u"", u"'", u"'");
  Expect(u"Backquote", u"Oracle", u"`", u"`");
  Expect(u"None", u"ACCESS", u"", u"");
  Expect(u"", u"ACCESS", u"[", u"]");
  Expect(u"", u"MySQL", u"`", u"`");
  Expect(u"", u"Oracle", u"", u"");
  // The style is compared exactly: another spelling falls through to the kind.
  Expect(u"square bracket", u"MySQL", u"`", u"`");
}

TEST_F(QuoteTest, NamesGoInsideThePairs) {
  Vars().SqlQuoteStyle = u"";
  SetQuoteChars(u"ACCESS");
  EXPECT_EQ(QuoteSqlName(u"Order Details"), u"[Order Details]");
  EXPECT_EQ(QuoteDbName(u"nwind"), u"[nwind]");
  Vars().SqlQuoteStyle = u"None";
  SetQuoteChars(u"ACCESS");
  EXPECT_EQ(QuoteSqlName(u"t"), u"t");
  EXPECT_EQ(QuoteDbName(u"d"), u"d");
  // Before any SetQuoteChars the pairs are empty.
  ResetVars();
  EXPECT_EQ(QuoteSqlName(u"t"), u"t");
  EXPECT_EQ(QuoteDbName(u"d"), u"d");
}

TEST(QuoteScriptTextTest, StripsOuterQuotesAndQuotesAgain) {
  EXPECT_EQ(QuoteScriptText(u"'a'", 1), u"\"a\"");
  EXPECT_EQ(QuoteScriptText(u"'a'", 0), u"a");
  EXPECT_EQ(QuoteScriptText(u"\"", 0), u"\"");
  EXPECT_EQ(QuoteScriptText(u"\"", 1), u"\"\"\"\"");
  EXPECT_EQ(QuoteScriptText(u"  \" 'x' \"  ", 0), u"x");
  EXPECT_EQ(QuoteScriptText(u"'a\"", 0), u"'a\"");  // different ends stay
  EXPECT_EQ(QuoteScriptText(u"say \"hi\"", 1), u"\"say \"\"hi\"\"\"");
  EXPECT_EQ(QuoteScriptText(u"ab", 2), u"\"\"ab\"\"");
  EXPECT_EQ(QuoteScriptText(u"", 1), u"\"\"");
  EXPECT_EQ(QuoteScriptText(u"''", 0), u"");
  EXPECT_EQ(QuoteScriptText(u"x", -1), u"x");
}

TEST(QuoteLiteralTest, BuildsAStringExpression) {
  EXPECT_EQ(QuoteLiteral(u"", u""), u"");
  EXPECT_EQ(QuoteLiteral(u"", u"qvIndentWrk"), u"");
  EXPECT_EQ(QuoteLiteral(u"a", u""), u"\"a\"");
  EXPECT_EQ(QuoteLiteral(u"a\r\nb", u"qvIndentWrk"), u"\"a\"&vbCrLf&qvIndentWrk&\"b\"");
  EXPECT_EQ(QuoteLiteral(u"a\r\nb", u""), u"\"a\"&vbCrLf&\"b\"");
  EXPECT_EQ(QuoteLiteral(u"say \"x\"", u""), u"\"say \"\"x\"\"\"");
  // A trailing line end gives an empty last line; empty lines still get their quotes.
  EXPECT_EQ(QuoteLiteral(u"a\r\n", u""), u"\"a\"&vbCrLf&\"\"");
  EXPECT_EQ(QuoteLiteral(u"\r\n", u""), u"\"\"&vbCrLf&\"\"");
  // Only CR LF splits: a lone LF or CR stays inside the literal.
  EXPECT_EQ(QuoteLiteral(u"a\nb\rc", u""), u"\"a\nb\rc\"");
}

TEST(TyxVarsTest, ResetClearsTheRunButKeepsTheObject) {
  ResetVars();
  TyxVars& v = Vars();
  EXPECT_EQ(v.LibVersion, EngineVersionText());
  EXPECT_EQ(v.DefaultDateFormat, 5);
  v.ProjErr = u"boom";
  v.PagesDone = 7;
  ResetVars();
  EXPECT_TRUE(Vars().ProjErr.empty());
  EXPECT_EQ(Vars().PagesDone, 0);
  EXPECT_EQ(&Vars(), &v);
}

}  // namespace
}  // namespace qv
