// The anchored search against a plain reference search, at every offset around the eight-
// character steps of the vector scan and with anchors that occur often and out of place.
#include "templates/text_search.h"

#include <gtest/gtest.h>

#include <string>

namespace qv::templates {
namespace {

TEST(TextSearch, AnchoredSearchAgreesWithPlainSearch) {
  const std::u16string patterns[] = {u"<!--##", u"##-->", u"#", u"abc", u"x##y"};
  const std::u16string noises[] = {u"..........", u"#-#<!--#-##", u"##########", u"\u0323#>"};
  for (const std::u16string& pattern : patterns) {
    const TextFinder finder(pattern);
    for (const std::u16string& noise : noises) {
      for (size_t offset = 0; offset < 40; ++offset) {
        std::u16string text;
        while (text.size() < offset)
          text += noise;
        text.resize(offset);
        text += pattern;
        text += noise;
        for (size_t from = 0; from <= text.size() + 1; from += 3) {
          const size_t expected = from <= text.size() ? text.find(pattern, from) : kNotFound;
          EXPECT_EQ(finder.Find(text, from), expected) << "offset " << offset << " from " << from;
        }
      }
    }
  }
  EXPECT_EQ(TextFinder(u"").Find(u"ab", 1), 1u);
  EXPECT_EQ(TextFinder(u"abc").Find(u"ab", 0), kNotFound);
}

TEST(TextSearch, CaseBlindHelpers) {
  const TextFinder open(u"<!--##");
  EXPECT_EQ(FindTagWord(u"<!--##x <!--##SeSsIoN a", open, u"session", 0), 8u);
  EXPECT_EQ(FindTagWord(u"<!--##sess", open, u"session", 0), kNotFound);
  EXPECT_EQ(FindLastNoCase(u"function a FUNCTION b", u"Function "), 11u);
  EXPECT_EQ(FindLastNoCase(u"Function", u"Function "), kNotFound);
  EXPECT_EQ(FindLastCrLf(u"a\r\nb\r\n"), 4u);
  EXPECT_EQ(FindLastCrLf(u"a\n\rb"), kNotFound);
}

}  // namespace
}  // namespace qv::templates
