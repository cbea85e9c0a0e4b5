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
  EXPECT_EQ(ToCaption(u"a__b"), u"a b");
  EXPECT_EQ(ToCaption(u"Item2"), u"Item 2");
  EXPECT_EQ(ToCaption(u""), u"");
  // A trailing separator leaves a trailing blank; a leading one leaves nothing.
  EXPECT_EQ(ToCaption(u"name_"), u"name ");
  EXPECT_EQ(ToCaption(u"_name"), u"name");
  EXPECT_EQ(ToCaption(u"first-last name"), u"first last name");
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
  EXPECT_EQ(SortKeyList(u"single"), u"single");
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
  EXPECT_EQ(PercentOf(10, 10), 100);
  EXPECT_EQ(PercentOf(11, 10), 100);
  EXPECT_EQ(PercentOf(1, 3), 33);
  EXPECT_EQ(PercentOf(2, 3), 67);
  EXPECT_EQ(PercentOf(1, 8), 12);   // 12.5 goes to the even 12
  EXPECT_EQ(PercentOf(3, 8), 38);   // 37.5 goes to the even 38
  EXPECT_EQ(PercentOf(5, 8), 62);   // 62.5 -> 62
  EXPECT_EQ(PercentOf(1, 16), 6);   // 6.25 -> 6
  EXPECT_EQ(PercentOf(3, 400), 1);  // 0.75 -> 1
  EXPECT_EQ(PercentOf(-1, 4), -25);
  EXPECT_THROW(PercentOf(-1000, 1), Error);
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

TEST(CharsetOfCodePageTest, FullTable) {
  struct Row {
    const char16_t* charset;
    std::vector<int32_t> pages;
  };
  const std::vector<Row> rows = {
      {u"iso-8859-1", {29001, 20106, 20277, 1142,  20278, 1143,  1147,  20273, 1141, 20871, 1149,
                       1148,  20280, 1144,  20284, 1145,  20285, 1146,  37,    1140, 861,   10079,
                       20108, 437,   20107, 20127, 850,   20105, 28591, 10000, 1252}},
      {u"iso-8859-2", {852, 28592, 10029, 1250, 870}},
      {u"iso-8859-3", {28593}},
      {u"iso-8859-4", {775, 28594, 1257}},
      {u"iso-8859-5", {866, 28595, 20866, 21866, 10007, 1251, 20880, 21025, 1026}},
      {u"iso-8859-6", {708, 720, 28596, 10004, 1256, 20420}},
      {u"iso-8859-7", {737, 28597, 10006, 1253, 869, 875, 20423}},
      {u"iso-8859-8", {862, 38598, 28598, 10005, 1255, 20424}},
      {u"iso-8859-9", {20905, 857, 28599, 10081, 1254}},
      {u"iso-8859-15", {28605}},
      {u"gb2312", {51936, 936, 52936, 10008, 50935}},
      {u"big5", {950, 20000, 20002, 10002, 50937}},
      {u"shift_jis", {50930, 20290, 50931, 51932, 50220, 50222, 50221, 10001, 932, 50939}},
      {u"euc-kr", {50933, 20833, 949, 51949, 50225, 1361, 10003}},
      {u"windows-874", {20838, 874}},
      {u"windows-1258", {1258}},
      {u"utf-16", {1200, 1201}},
      {u"utf-7", {65000}},
      {u"utf-8", {65001}},
      {u"", {57006, 57003, 57002, 57010, 57008, 57009, 57007, 57011, 57004, 57005}},
  };
  size_t count = 0;
  for (const Row& row : rows) {
    for (const int32_t page : row.pages) {
      EXPECT_EQ(CharsetOfCodePage(Variant(page)), row.charset) << page;
      ++count;
    }
  }
  EXPECT_EQ(count, 118u);
  // Text with NULs and blanks around is cleaned first.
  EXPECT_EQ(CharsetOfCodePage(Variant(String(u" 1252 "))), u"iso-8859-1");
  EXPECT_EQ(CharsetOfCodePage(Variant(String(std::u16string_view(u"932\0\0", 5)))), u"shift_jis");
  EXPECT_EQ(CharsetOfCodePage(Variant(int16_t{437})), u"iso-8859-1");
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
