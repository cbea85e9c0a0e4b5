// The shared string: sharing, in-place appends, UTF-8 edges and case folding.
#include "automation/string.h"

#include <gtest/gtest.h>

namespace qv {
namespace {

TEST(String, CopiesShareOneBufferAndAppendsStayLinear) {
  String a(u"hello");
  String b = a;
  EXPECT_EQ(a.BufferId(), b.BufferId());
  EXPECT_FALSE(a.IsUnique());

  // Appending to a shared string must not change the other holder.
  b.Append(u" world");
  EXPECT_EQ(a, u"hello");
  EXPECT_EQ(b, u"hello world");

  // A lone holder grows in place: the buffer moves only a logarithmic number of times.
  String s;
  int moves = 0;
  const void* last = nullptr;
  for (int i = 0; i < 100000; ++i) {
    s.Append(u'x');
    if (s.BufferId() != last) ++moves;
    last = s.BufferId();
  }
  EXPECT_EQ(s.size(), 100000u);
  EXPECT_LT(moves, 40);

  // Appending a view of itself reads the old text before the buffer moves.
  String self(u"ab");
  self.Append(self.view());
  EXPECT_EQ(self, u"abab");
}

TEST(String, Utf8EdgesRoundTripAndRejectMalformedBytes) {
  const std::string text = "Caf\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x98\x80";
  const String s = String::FromUtf8(text);
  EXPECT_EQ(s.size(), 9u);  // the emoji takes two UTF-16 units, as VBScript's Len counts
  EXPECT_EQ(s[3], 0xE9);
  EXPECT_EQ(s.ToUtf8(), text);
  EXPECT_EQ(String::FromUtf8("a\xFF"
                             "b"),
            String(u"a\uFFFDb"));
  EXPECT_EQ(String::FromUtf8("\xC0\xAF"), String(u"\uFFFD\uFFFD"));  // overlong form
  EXPECT_EQ(String::FromUtf8("\xE2\x82"), String(u"\uFFFD\uFFFD"));  // truncated sequence
}

TEST(String, CaseFoldingCoversLettersBeyondAscii) {
  EXPECT_TRUE(EqualsNoCase(u"TblName", u"tblname"));
  EXPECT_TRUE(EqualsNoCase(u"ÉCOLE", u"école"));
  EXPECT_TRUE(EqualsNoCase(u"ΣΟΦΙΑ", u"σοφια"));
  EXPECT_FALSE(EqualsNoCase(u"a", u"ab"));
  EXPECT_EQ(ToUpper(u"straße"), String(u"STRAßE"));  // one unit per unit: no expansion
  EXPECT_EQ(HashNoCase(u"Field"), HashNoCase(u"FIELD"));
  // The text order puts "_" before letters, as the fold is to lower case.
  EXPECT_LT(CompareNoCase(u"_a", u"Ab"), 0);
  EXPECT_LT(CompareBinary(u"B", u"a"), 0);
  EXPECT_GT(CompareNoCase(u"B", u"a"), 0);
}

}  // namespace
}  // namespace qv
