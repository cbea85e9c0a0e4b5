// Locale 1033 text order: the order words take, and agreement between the plain-ASCII pass
// and the full comparison it hands over to.
#include "automation/collation.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

namespace qv {
namespace {

TEST(Collation, SortsWordsAsWindowsDoes) {
  // Each entry sorts strictly before the next.
  const std::vector<std::u16string> ordered = {
      u"",   u"\t",     u" ",       u"!",  u"_",       u"~",      u"+",      u"=",       u"0",
      u"10", u"9",      u"a",       u"A1", u"ab",      u"a-b",    u"abc",    u"co-op",   u"cop",
      u"e",  u"\u00e9", u"\u00e9a", u"eb", u"\u00e9b", u"f",      u"oe",     u"\u0153f", u"of",
      u"sr", u"\u00df", u"st",      u"z",  u"\u00fe",  u"\u03b1", u"\u0416",
  };
  for (size_t i = 0; i + 1 < ordered.size(); ++i) {
    EXPECT_EQ(CompareText(ordered[i], ordered[i + 1]), -1) << i;
    EXPECT_EQ(CompareText(ordered[i + 1], ordered[i]), 1) << i;
  }
  std::vector<std::u16string> shuffled(ordered.rbegin(), ordered.rend());
  std::sort(shuffled.begin(), shuffled.end(),
            [](const auto& x, const auto& y) { return CompareText(x, y) < 0; });
  EXPECT_EQ(shuffled, ordered);
}

TEST(Collation, PlainPassAgreesWithTheFullComparison) {
  // Every pair from a set mixing plain ASCII with the characters that need the full
  // comparison: the answers must be antisymmetric and consistent with one order.
  const std::vector<std::u16string> words = {
      u"abc", u"ab",  u"ab-", u"a'b", u"abd", u"ABC", u"ab\x01", u"ab\u00e9", u"abe", u"abd-",
      u"a b", u"a_b", u"a-",  u"-a",  u"b",   u"",    u"\u00e9", u"E",        u"e-",  u"1"};
  for (const auto& x : words) {
    for (const auto& y : words) {
      EXPECT_EQ(CompareText(x, y), -CompareText(y, x));
      for (const auto& z : words) {
        if (CompareText(x, y) <= 0 && CompareText(y, z) <= 0) {
          EXPECT_LE(CompareText(x, z), 0);
        }
      }
    }
  }
}

TEST(Collation, RandomTextsSortConsistently) {
  // Texts drawn from characters that take every path: plain ASCII, word-sort and ignorable
  // characters, accents precomposed and combining, expansions, full width, other scripts.
  const std::u16string alphabet =
      u"aAbBzZ09 "
      u"_-'\x01\t\u00e9\u00c9\u00df\u00e6\u0153\u0301\uff41\u0416\u4e00\xd800\u00ad\u00b2\u0107";
  std::mt19937 random(20261122);
  std::vector<std::u16string> texts;
  for (int i = 0; i < 400; ++i) {
    std::u16string t;
    const int length = static_cast<int>(random() % 6);
    for (int k = 0; k < length; ++k)
      t.push_back(alphabet[random() % alphabet.size()]);
    texts.push_back(t);
  }
  std::sort(texts.begin(), texts.end(),
            [](const auto& x, const auto& y) { return CompareText(x, y) < 0; });
  for (size_t i = 0; i < texts.size(); ++i) {
    EXPECT_EQ(CompareText(texts[i], texts[i]), 0);
    for (size_t j = i + 1; j < texts.size(); ++j) {
      ASSERT_LE(CompareText(texts[i], texts[j]), 0) << i << " " << j;
      ASSERT_GE(CompareText(texts[j], texts[i]), 0) << i << " " << j;
    }
  }
}

}  // namespace
}  // namespace qv
