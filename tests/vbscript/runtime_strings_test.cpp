// The string and conversion families, called by name as the engine calls them.
#include "vbscript/runtime_test_helpers.h"
#include "vbscript/strings_lib.h"

namespace qv::vbs {
namespace {

using testing::Call;
using testing::ErrorOf;
using testing::I;
using testing::L;
using testing::Show;

TEST(RuntimeStrings, LookupIgnoresCaseAndKnowsEveryFamily) {
  ASSERT_NE(FindBuiltin(u"mid"), nullptr);
  EXPECT_EQ(FindBuiltin(u"MID"), FindBuiltin(u"Mid"));
  EXPECT_EQ(FindBuiltin(u"NoSuchFunction"), nullptr);
  for (const auto* name : {u"Replace", u"CLng", u"Round", u"UBound", u"DateAdd", u"FormatNumber",
                           u"SetLocale", u"ScriptEngine"}) {
    EXPECT_NE(FindBuiltin(name), nullptr) << String(name).ToUtf8();
  }
  // No name twice in the table.
  for (const BuiltinFunction& f : BuiltinFunctions())
    EXPECT_EQ(FindBuiltin(f.name), &f) << String(f.name).ToUtf8();
}

TEST(RuntimeStrings, SlicesHandleNullEmptyAndBadLengths) {
  EXPECT_EQ(Show(u"Len", {u"héllo"}), "5");
  EXPECT_EQ(Show(u"Len", {I(-123)}), "4");
  EXPECT_EQ(Show(u"LenB", {u"abc"}), "6");
  EXPECT_EQ(Show(u"Left", {u"abcdef", I(3)}), "abc");
  EXPECT_EQ(Show(u"Left", {u"abc", I(-1)}), "Err 5");
  EXPECT_EQ(Show(u"Left", {u"abc", Variant::Null()}), "Err 94");
  EXPECT_EQ(Show(u"Right", {u"abc", I(0)}), "");
  EXPECT_EQ(Show(u"Mid", {u"abcdef", I(4)}), "def");
  EXPECT_EQ(Show(u"Mid", {u"abc", I(5)}), "");
  EXPECT_EQ(Show(u"Mid", {u"abc", I(0)}), "Err 5");
  EXPECT_EQ(Show(u"Mid", {u"abc", I(1), I(-1)}), "Err 5");
  EXPECT_EQ(Show(u"Left", {12345.5, I(3)}), "123");
}

TEST(RuntimeStrings, MidStatementOverwritesWithinTheText) {
  EXPECT_EQ(MidAssign(u"abcdef", I(2), Variant::Missing(), u"XY").ToUtf8(), "aXYdef");
  EXPECT_EQ(MidAssign(u"abcdef", I(2), I(1), u"XY").ToUtf8(), "aXcdef");
  EXPECT_EQ(MidAssign(u"abcdef", I(5), Variant::Missing(), u"WXYZ").ToUtf8(), "abcdWX");
  EXPECT_THROW(MidAssign(u"abc", I(4), Variant::Missing(), u"x"), Error);
  EXPECT_THROW(MidAssign(Variant::Null(), I(1), Variant::Missing(), u"x"), Error);
}

TEST(RuntimeStrings, SearchingForwardAndBackward) {
  EXPECT_EQ(Show(u"InStr", {I(5), u"abc", u""}), "0");
  EXPECT_EQ(Show(u"InStr", {I(0), u"abc", u"a"}), "Err 5");
  EXPECT_EQ(Show(u"InStr", {Variant::Null(), u"abc", u"a"}), "Err 94");
  EXPECT_EQ(Show(u"InStrRev", {u"abcabc", u"B", I(-1), I(1)}), "5");
  EXPECT_EQ(Show(u"InStrRev", {u"abc", u"c", I(2)}), "0");
  EXPECT_EQ(Show(u"InStrRev", {u"abc", u"", I(2)}), "2");
  EXPECT_EQ(Show(u"InStrRev", {u"abc", u"a", I(0)}), "Err 5");
  EXPECT_EQ(Show(u"InStrRev", {u"abc", u"a", I(9)}), "0");
}

TEST(RuntimeStrings, ReplaceHonoursStartCountAndCompare) {
  EXPECT_EQ(Show(u"Replace", {u"a.b.c", u".", u"--"}), "a--b--c");
  EXPECT_EQ(Show(u"Replace", {u"aXbxc", u"x", u"_", I(1), I(-1), I(1)}), "a_b_c");
  EXPECT_EQ(Show(u"Replace", {u"aXbxc", u"x", u"_"}), "aXb_c");
  // What lies before `start` is dropped from the result.
  EXPECT_EQ(Show(u"Replace", {u"aaaa", u"a", u"b", I(1), I(0)}), "aaaa");
  EXPECT_EQ(Show(u"Replace", {u"abc", u"b", u"x", I(9)}), "");
  EXPECT_EQ(Show(u"Replace", {Variant::Null(), u"a", u"b"}), "Err 94");
  EXPECT_EQ(Show(u"Replace", {u"abc", Variant::Null(), u"b"}), "Err 94");
  EXPECT_EQ(Show(u"Replace", {u"abc", u"a", u"b", I(0)}), "Err 5");
  EXPECT_EQ(Show(u"Replace", {u"abc", u"a", u"b", I(1), I(-2)}), "Err 5");
}

TEST(RuntimeStrings, CaseTrimAndRepetition) {
  EXPECT_EQ(Show(u"UCase", {u"abc é"}), "ABC É");
  EXPECT_EQ(Show(u"LCase", {u"ABC"}), "abc");
  EXPECT_EQ(Show(u"Trim", {u"  a b \t "}), "a b \t");
  EXPECT_EQ(Show(u"LTrim", {u"  x  "}), "x  ");
  EXPECT_EQ(Show(u"RTrim", {u"  x  "}), "  x");
  EXPECT_EQ(Show(u"Space", {2147483648.0}), "Err 7");
  EXPECT_EQ(Show(u"String", {I(3), u"xyz"}), "xxx");
  EXPECT_EQ(Show(u"String", {I(2), I(321)}), "AA");
  EXPECT_EQ(Show(u"String", {2147483648.0, u"x"}), "Err 7");
  EXPECT_EQ(Show(u"String", {I(2), u""}), "Err 5");
  EXPECT_EQ(Show(u"String", {I(2), Variant::Null()}), "Null");
}

TEST(RuntimeStrings, ComparisonAndCharacterCodes) {
  EXPECT_EQ(Call(u"StrComp", {u"a", u"b"}).type(), VarType::Integer);
  EXPECT_EQ(Show(u"Asc", {u"\u4e2d"}), "63");
  EXPECT_EQ(Show(u"Asc", {u""}), "Err 5");
  EXPECT_EQ(Show(u"Asc", {Variant::Null()}), "Err 94");
  EXPECT_EQ(Show(u"AscW", {u"\u4e2d"}), "20013");
  EXPECT_EQ(Show(u"AscW", {u"\uffff"}), "-1");
  EXPECT_EQ(Show(u"Chr", {I(128)}), "€");
  EXPECT_EQ(Show(u"ChrW", {L(20013)}), "中");
  EXPECT_EQ(Show(u"ChrW", {I(-1)}), "\uffff");
  EXPECT_EQ(Show(u"ChrW", {L(65536)}), "Err 5");
}

TEST(RuntimeStrings, EscapeRoundTripsEveryCharacter) {
  EXPECT_EQ(Show(u"Escape", {u"a b/c@d*_+-.é中"}), "a%20b/c@d*_+-.%E9%u4E2D");
  EXPECT_EQ(Show(u"Unescape", {u"a%20b%u4E2D%zz%u12"}), "a b中%zz%u12");
  std::u16string all;
  for (char16_t c = 1; c < 0x3000; c += 7)
    all.push_back(c);
  const Variant escaped = Call(u"Escape", {Variant(String(all))});
  EXPECT_EQ(Call(u"Unescape", {escaped}).as_string().view(), StringView(all));
}

TEST(RuntimeConversions, ConversionsAndTheirErrors) {
  EXPECT_EQ(Show(u"CInt", {32768.0}), "Err 6");
  EXPECT_EQ(Show(u"CLng", {u"1,234"}), "1234");
  EXPECT_EQ(Show(u"CLng", {u"abc"}), "Err 13");
  EXPECT_EQ(Show(u"CBool", {I(0)}), "False");
  EXPECT_EQ(Show(u"CDbl", {u"1e3"}), "1000");
  EXPECT_EQ(Show(u"CDate", {u"3/7/2006 9:05:01 AM"}), "3/7/2006 9:05:01 AM");
  EXPECT_EQ(Call(u"CSng", {1.5}).type(), VarType::Single);
  EXPECT_EQ(Show(u"Hex", {255.5}), "100");
  EXPECT_EQ(Show(u"Hex", {Variant()}), "0");
}

TEST(RuntimeConversions, TypeQuestions) {
  EXPECT_EQ(Show(u"IsNumeric", {u" 12.5 "}), "True");
  EXPECT_EQ(Show(u"IsNumeric", {u"&HFF"}), "True");
  EXPECT_EQ(Show(u"IsDate", {u"March 7, 2006"}), "True");
  EXPECT_EQ(Show(u"IsDate", {u"2/30/2006"}), "False");
  EXPECT_EQ(Show(u"IsDate", {I(1)}), "False");
  EXPECT_EQ(Show(u"IsNull", {Variant::Null()}), "True");
  EXPECT_EQ(Show(u"IsObject", {Variant::Nothing()}), "True");
  EXPECT_EQ(Show(u"IsArray", {Call(u"Array", {})}), "True");
  EXPECT_EQ(Show(u"TypeName", {Variant::Nothing()}), "Nothing");
  EXPECT_EQ(Show(u"TypeName", {Call(u"Array", {I(1)})}), "Variant()");
  EXPECT_EQ(Show(u"VarType", {u"x"}), "8");
  EXPECT_EQ(Show(u"VarType", {Call(u"Array", {})}), "8204");
}

}  // namespace
}  // namespace qv::vbs

namespace qv::vbs {
namespace {

// The vector search against the plain one, on texts of a small alphabet (many near misses),
// every length and start, and needles that share low bytes across the whole range of units.
TEST(RuntimeStrings, FastSearchAgreesWithPlainSearch) {
  uint32_t seed = 12345;
  auto next = [&seed] {
    seed = seed * 1103515245 + 12345;
    return (seed >> 16) & 0x7FFF;
  };
  const char16_t alphabet[] = {u'a', u'b', u'\u0161', u'\uff61'};
  for (int round = 0; round < 400; ++round) {
    std::u16string hay, needle;
    const size_t hay_len = next() % 70;
    const size_t needle_len = 1 + next() % 5;
    for (size_t i = 0; i < hay_len; ++i)
      hay.push_back(alphabet[next() % 4]);
    for (size_t i = 0; i < needle_len; ++i)
      needle.push_back(alphabet[next() % 4]);
    for (size_t from = 0; from <= hay.size() + 1; ++from) {
      ASSERT_EQ(FindText(hay, needle, from), StringView(hay).find(needle, from))
          << "round " << round << " from " << from;
    }
  }
  EXPECT_EQ(FindText(u"abc", u"", 3), 3u);
  EXPECT_EQ(FindText(u"abc", u"", 4), StringView::npos);
}

}  // namespace
}  // namespace qv::vbs
