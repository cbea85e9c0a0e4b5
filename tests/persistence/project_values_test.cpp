// The value rules shared by the writer and the reader: the four-character escape, the on-disk
// text of each kind of value, the version comparison that refuses old files, and the
// conversion of attribute text by DataType, in both of its forms.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "automation/convert.h"
#include "automation/error.h"
#include "persistence/project_values.h"

namespace qv {
namespace {

TEST(ProjectValues, XmlEscapeReplacesFourCharactersAmpersandFirst) {
  EXPECT_EQ(XmlEscape(u"plain text"), u"plain text");
  EXPECT_EQ(XmlEscape(u"a&b<c>d\"e'f"), u"a&amp;b&lt;c&gt;d&quot;e'f");
  // Text that already looks escaped is escaped again: "&" goes first.
  EXPECT_EQ(XmlEscape(u"&lt;&amp;"), u"&amp;lt;&amp;amp;");
  EXPECT_EQ(XmlEscape(u""), u"");
}

TEST(ProjectValues, AttributeTextByKindOfValue) {
  EXPECT_EQ(AttributeText(u"Name", u"String", Variant()), u"");
  EXPECT_EQ(AttributeText(u"Name", u"String", Variant::Null()), u"");
  EXPECT_EQ(AttributeText(u"N", u"Integer", Variant(int16_t{-2})), u"-2");
  EXPECT_EQ(AttributeText(u"N", u"Long", Variant(int32_t{2000000})), u"2000000");
  EXPECT_EQ(AttributeText(u"N", u"Variant", Variant(2.5)), u"2.5");
  // A Boolean in a property of another type is written as the platform writes it.
  EXPECT_EQ(AttributeText(u"N", u"String", Variant(true)), u"True");
  EXPECT_EQ(AttributeText(u"N", u"String", Variant(u"<a & \"b\">")),
            u"&lt;a &amp; &quot;b&quot;&gt;");

  // A "Boolean" property is always "1" or "0", whatever form its value has.
  EXPECT_EQ(AttributeText(u"B", u"Boolean", Variant(true)), u"1");
  EXPECT_EQ(AttributeText(u"B", u"Boolean", Variant(false)), u"0");
  EXPECT_EQ(AttributeText(u"B", u"Boolean", Variant()), u"0");
  EXPECT_EQ(AttributeText(u"B", u"Boolean", Variant(u"True")), u"1");
  EXPECT_EQ(AttributeText(u"B", u"Boolean", Variant(int16_t{-1})), u"1");
  EXPECT_EQ(AttributeText(u"B", u"Boolean", Variant(u"0")), u"0");
  // The type word is compared exactly: "boolean" is just text.
  EXPECT_EQ(AttributeText(u"B", u"boolean", Variant(true)), u"True");
  try {
    AttributeText(u"B", u"Boolean", Variant(u"maybe"));
    ADD_FAILURE() << "no error for a Boolean that is no Boolean";
  } catch (const Error& e) {
    EXPECT_EQ(e.number(), kErrTypeMismatch);
  }

  // Only FldTagValues, in any case, has its line breaks turned into bars; a lone CR or LF
  // stays, and other properties keep their line breaks raw.
  EXPECT_EQ(AttributeText(u"FldTagValues", u"String", Variant(u"\"1\",\"Yes\"\r\n\"0\",\"No\"")),
            u"&quot;1&quot;,&quot;Yes&quot;|&quot;0&quot;,&quot;No&quot;");
  EXPECT_EQ(AttributeText(u"fldtagvalues", u"String", Variant(u"a\r\nb\nc\rd")), u"a|b\nc\rd");
  EXPECT_EQ(AttributeText(u"FldErrMsg", u"String", Variant(u"a\r\nb")), u"a\r\nb");
}

TEST(ProjectValues, VersionGreaterComparesAtMostThreeNumbers) {
  struct Case {
    const char16_t* a;
    const char16_t* b;
    bool greater;
  };
  const std::vector<Case> cases = {
      {u"5.0", u"4.9.0.0", true},   // an older file
      {u"5.0", u"5.0.0.0", false},  // equal as far as the shorter goes
      {u"5.0", u"5.3.0.7", false},  // newer
      {u"5.0", u"5", false},        // only one number is compared
      {u"5.0", u"4", true},
      {u"5.0", u"", false},  // no parts at all
      {u"", u"4.0", false},
      {u"10.0", u"9.9", true},          // numbers, not texts
      {u"5.0.0.9", u"5.0.0.1", false},  // the fourth number never counts
      {u"5.1.2", u"5.1.1.99", true},
      {u"5.0", u"x.y", false},  // a part that is no number ends the comparison
      {u"5.0", u"4.x", true},   // ... but only once it is reached
  };
  for (const Case& c : cases) {
    EXPECT_EQ(VersionGreater(c.a, c.b), c.greater)
        << String(c.a).ToUtf8() << " > " << String(c.b).ToUtf8();
  }
}

TEST(ProjectValues, ToPropertyValueConvertsByExactTypeAndNeverRaises) {
  struct Case {
    const char* text;
    const char16_t* type;
    Variant expected;
  };
  const std::vector<Case> cases = {
      {"1", u"Boolean", Variant(true)},
      {"0", u"Boolean", Variant(false)},
      {"True", u"Boolean", Variant(true)},
      {"false", u"Boolean", Variant(false)},
      {"-1", u"Boolean", Variant(true)},
      {"Yes", u"Boolean", Variant()},
      {"", u"Boolean", Variant()},
      {"12", u"Integer", Variant(int16_t{12})},
      {"-32768", u"Integer", Variant(int16_t{-32768})},
      {"32768", u"Integer", Variant()},          // does not fit 16 bits
      {"2.5", u"Integer", Variant(int16_t{2})},  // half to even
      {" 7 ", u"Integer", Variant(int16_t{7})},
      {"abc", u"Integer", Variant()},
      {"", u"Integer", Variant()},
      {"2000000", u"Long", Variant(int32_t{2000000})},
      {"-2147483648", u"Long", Variant(int32_t{INT32_MIN})},
      {"2147483648", u"Long", Variant()},
      {"1e3", u"Long", Variant(int32_t{1000})},
      {"007", u"String", Variant(u"007")},
      {"1", u"Variant", Variant(u"1")},
      {"1", u"boolean", Variant(u"1")},  // the type word is compared exactly
      {"caf\xC3\xA9", u"String", Variant(u"caf\u00e9")},
  };
  for (const Case& c : cases) {
    const Variant from_utf8 = ToPropertyValue(std::string_view(c.text), c.type);
    const Variant from_text = ToPropertyValue(String::FromUtf8(c.text), c.type);
    for (const Variant* got : {&from_utf8, &from_text}) {
      EXPECT_EQ(got->type(), c.expected.type()) << c.text;
      if (got->type() == c.expected.type() && !got->is_empty()) {
        EXPECT_EQ(Compare(*got, c.expected), Comparison::Equal) << c.text;
      }
    }
  }
}

}  // namespace
}  // namespace qv
