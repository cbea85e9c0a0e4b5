// The runtime library's name table and the text search under it.
#include "vbscript/runtime_test_helpers.h"
#include "vbscript/strings_lib.h"

namespace qv::vbs {
namespace {

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
