// Captions, key lists, percentages, fixed texts, folders and character sets.
#include "support/common.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "automation/date_time.h"
#include "automation/error.h"
#include "scratch_home.h"
#include "support/tyx_vars.h"

namespace qv {
namespace {

TEST(ToCaptionTest, SplitsWordsAsTheExamplesShow) {
  EXPECT_EQ(ToCaption(u"CustomerID"), u"Customer ID");
  EXPECT_EQ(ToCaption(u"order_date"), u"order date");
  EXPECT_EQ(ToCaption(u"ABCName"), u"ABCName");
  EXPECT_EQ(ToCaption(u"Item2"), u"Item 2");
  EXPECT_EQ(ToCaption(u""), u"");
  // A trailing separator leaves a trailing blank; a leading one leaves nothing.
  EXPECT_EQ(ToCaption(u"name_"), u"name ");
  EXPECT_EQ(ToCaption(u"_name"), u"name");
  // After a separator the next capital starts no second word: one blank only.
  EXPECT_EQ(ToCaption(u"a_B"), u"a B");
  EXPECT_EQ(ToCaption(u"unitPrice"), u"unit Price");
  // Digits and signs count as upper case; case itself is never changed.
  EXPECT_EQ(ToCaption(u"ab12cd"), u"ab 12cd");
  EXPECT_EQ(ToCaption(u"Cost$"), u"Cost $");
  EXPECT_EQ(ToCaption(u"caf\u00e9Cr\u00e8me"), u"caf\u00e9 Cr\u00e8me");
}

TEST(CleanNameTest, DropsSlashesAndBlanks) {
  EXPECT_EQ(CleanName(u"a / b c"), u"abc");
  EXPECT_EQ(CleanName(u"x\\y"), u"x\\y");
  EXPECT_EQ(CleanName(u""), u"");
  EXPECT_EQ(CleanName(u"tab\tstays"), u"tab\tstays");
}

TEST(SortKeyListTest, BubbleSortKeepsBlanksOfUnmovedElements) {
  EXPECT_EQ(SortKeyList(u"b,a"), u"a,b");
  EXPECT_EQ(SortKeyList(u"a, b"), u"a, b");
  EXPECT_EQ(SortKeyList(u""), u"");
  EXPECT_EQ(SortKeyList(u"   "), u"");
  EXPECT_EQ(SortKeyList(u" single "), u" single ");
  // Swapped elements are stored trimmed.
  EXPECT_EQ(SortKeyList(u" b , a "), u"a,b");
  EXPECT_EQ(SortKeyList(u"c,b,a"), u"a,b,c");
  // By character code: upper case before lower case, "10" before "9".
  EXPECT_EQ(SortKeyList(u"b,B,a,A"), u"A,B,a,b");
  EXPECT_EQ(SortKeyList(u"9,10"), u"10,9");
  // Equal elements are not swapped, so they keep their blanks.
  EXPECT_EQ(SortKeyList(u"a ,a"), u"a ,a");
  // Empty elements sort first.
  EXPECT_EQ(SortKeyList(u"b,,a"), u",a,b");
  // The untouched first element keeps its blanks, the moved ones lose theirs.
  EXPECT_EQ(SortKeyList(u" a, c, b"), u" a,b,c");
}

TEST(PercentOfTest, RoundsHalfToEvenAndClampsToTheWhole) {
  EXPECT_EQ(PercentOf(5, 0), 100);
  EXPECT_EQ(PercentOf(0, 0), 0);
  EXPECT_EQ(PercentOf(11, 10), 100);
  EXPECT_EQ(PercentOf(1, 3), 33);
  EXPECT_EQ(PercentOf(2, 3), 67);
  EXPECT_EQ(PercentOf(1, 8), 12);   // 12.5 goes to the even 12
  EXPECT_EQ(PercentOf(3, 8), 38);   // 37.5 goes to the even 38
  EXPECT_EQ(PercentOf(3, 400), 1);  // 0.75 -> 1
  EXPECT_EQ(PercentOf(-1, 4), -25);
  try {
    PercentOf(-1000, 1);
  } catch (const Error& e) {
    EXPECT_EQ(e.number(), kErrOverflow);
  }
}

TEST(ZeroPadTest, PadsOrRefuses) {
  EXPECT_EQ(ZeroPad(Variant(int32_t{7}), 2), u"07");
  EXPECT_EQ(ZeroPad(Variant(int32_t{2006}), 4), u"2006");
  EXPECT_EQ(ZeroPad(Variant(String(u"ab")), 5), u"000ab");
  EXPECT_EQ(ZeroPad(Variant(), 3), u"000");
  EXPECT_EQ(ZeroPad(Variant(String(u"")), 0), u"");
  try {
    ZeroPad(Variant(int32_t{123}), 2);
    FAIL() << "a text longer than the width must raise";
  } catch (const Error& e) {
    EXPECT_EQ(e.number(), kErrInvalidCall);
  }
}

TEST(DateStampTest, FixedFormOrTheValueUnchanged) {
  const double date = CombineDateTime(*DateFromParts(2006, 3, 7), TimeFromParts(9, 5, 1));
  EXPECT_EQ(DateStamp(Variant::Date(date)), u"2006/03/07 09:05:01");
  EXPECT_EQ(DateStamp(Variant(String(u"2006-03-07 9:05:01"))), u"2006/03/07 09:05:01");
  EXPECT_EQ(DateStamp(Variant::Date(0)), u"1899/12/30 00:00:00");
  EXPECT_EQ(DateStamp(Variant(String(u"not a date"))), u"not a date");
  EXPECT_EQ(DateStamp(Variant(String(u""))), u"");
  EXPECT_EQ(DateStamp(Variant::Null()), u"");
  const double early = *DateFromParts(100, 1, 1);
  EXPECT_EQ(DateStamp(Variant::Date(early)), u"0100/01/01 00:00:00");
}

TEST(CharsetOfCodePageTest, EveryCharsetAndTheCleaning) {
  // One page of each charset (the table itself is data, not logic), and the pages of the
  // old Mac and ISCII sets that have no charset.
  const std::pair<int32_t, const char16_t*> rows[] = {
      {1252, u"iso-8859-1"},  {437, u"iso-8859-1"},    {1250, u"iso-8859-2"},
      {28593, u"iso-8859-3"}, {1257, u"iso-8859-4"},   {1251, u"iso-8859-5"},
      {1256, u"iso-8859-6"},  {1253, u"iso-8859-7"},   {1255, u"iso-8859-8"},
      {1254, u"iso-8859-9"},  {28605, u"iso-8859-15"}, {936, u"gb2312"},
      {950, u"big5"},         {932, u"shift_jis"},     {949, u"euc-kr"},
      {874, u"windows-874"},  {1258, u"windows-1258"}, {1201, u"utf-16"},
      {65000, u"utf-7"},      {65001, u"utf-8"},       {57006, u""}};
  for (const auto& [page, charset] : rows)
    EXPECT_EQ(CharsetOfCodePage(Variant(page)), charset) << page;
  // Text with NULs and blanks around is cleaned first.
  EXPECT_EQ(CharsetOfCodePage(Variant(String(u" 1252 "))), u"iso-8859-1");
  EXPECT_EQ(CharsetOfCodePage(Variant(String(std::u16string_view(u"932\0\0", 5)))), u"shift_jis");
  EXPECT_EQ(CharsetOfCodePage(Variant(int16_t{850})), u"iso-8859-1");
  // Unlisted numbers and other texts give "".
  EXPECT_EQ(CharsetOfCodePage(Variant(int32_t{1234})), u"");
  EXPECT_EQ(CharsetOfCodePage(Variant(String(u"01252"))), u"");
  EXPECT_EQ(CharsetOfCodePage(Variant(String(u"utf-8"))), u"");
  EXPECT_EQ(CharsetOfCodePage(Variant()), u"");
  EXPECT_EQ(CharsetOfCodePage(Variant::Null()), u"");
}

TEST(LoadSystemCharsetTest, TheSystemIsUtf8) {
  ResetVars();
  LoadSystemCharset();
  ASSERT_TRUE(Vars().SystemCodePage.is_string());
  EXPECT_EQ(Vars().SystemCodePage.as_string(), u"65001");
  EXPECT_EQ(Vars().SystemCharset, u"utf-8");
  ResetVars();
}

TEST(SpecialFolderTest, DocumentsFolderIsCreatedAndNeverEmpty) {
  testing::ScratchHome home;
  const std::filesystem::path documents = home.root() / "Documents";
  ASSERT_FALSE(std::filesystem::exists(documents));
  const String folder = SpecialFolder(0, 5);
  EXPECT_EQ(folder.ToUtf8(), documents.string());
  EXPECT_TRUE(std::filesystem::is_directory(documents));
  EXPECT_EQ(SpecialFolder(0, 12), folder);

  const std::filesystem::path xdg = home.root() / "My Files" / "docs";
  ::setenv("XDG_DOCUMENTS_DIR", (xdg.string() + "/").c_str(), 1);
  EXPECT_EQ(SpecialFolder(0, 5).ToUtf8(), xdg.string());
  EXPECT_TRUE(std::filesystem::is_directory(xdg));

  // A relative XDG value is no valid setting: the default is used.
  ::setenv("XDG_DOCUMENTS_DIR", "relative/docs", 1);
  EXPECT_EQ(SpecialFolder(0, 5).ToUtf8(), documents.string());

  ::unsetenv("XDG_DOCUMENTS_DIR");
  EXPECT_EQ(SpecialFolder(0, 40).ToUtf8(), home.root().string());
  EXPECT_EQ(SpecialFolder(0, 26).ToUtf8(), (home.root() / ".config").string());
  EXPECT_EQ(SpecialFolder(0, 99), u"");
}

}  // namespace
}  // namespace qv
