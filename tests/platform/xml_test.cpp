// The XML layer on real files: declared encodings, entity and character references,
// attribute-value normalisation, node names, silent failures, refused external entities, and
// writer output that reads back to the same values.
#include "platform/xml.h"

#include <gtest/gtest.h>

#include "templates/scratch_folder.h"

namespace qv {
namespace {

using testing::ScratchFolder;

std::vector<XmlNode> Elements(const XmlNode& node) {
  std::vector<XmlNode> out;
  for (const XmlNode& child : node.childNodes()) {
    if (child.IsElement()) out.push_back(child);
  }
  return out;
}

TEST(XmlRead, DeclaredEncodingsAreHonoured) {
  ScratchFolder scratch;
  struct Case {
    const char* name;
    std::string bytes;
  } cases[] = {
      {"cp1252.xml", "<?xml version=\"1.0\" encoding=\"windows-1252\"?><r v=\"\x80\xE9\"/>"},
      {"latin1.xml", "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><r v=\"\xA4\xE9\"/>"},
      {"bom.xml", "\xEF\xBB\xBF<r v=\"\xE2\x82\xAC\xC3\xA9\"/>"},
      {"utf16.xml", std::string("\xFF\xFE<\0r\0 \0v\0=\0\"\0\xAC\x20\xE9\0\"\0/\0>\0", 24)},
  };
  const char16_t* expected[] = {u"\u20ac\u00e9", u"\u00a4\u00e9", u"\u20ac\u00e9", u"\u20ac\u00e9"};
  for (size_t i = 0; i < std::size(cases); ++i) {
    XmlDocument doc;
    ASSERT_TRUE(doc.Load(scratch.Write(cases[i].name, cases[i].bytes)))
        << cases[i].name << ": " << doc.error().ToUtf8();
    EXPECT_EQ(doc.documentElement().getAttribute(u"v").value(), expected[i]) << cases[i].name;
  }
}

TEST(XmlRead, NodesAttributesAndReferences) {
  XmlDocument doc;
  ASSERT_TRUE(
      doc.LoadXml("<?xml version=\"1.0\"?>\n"
                  "<!DOCTYPE q:Root [<!ENTITY co \"Quorvex &amp; Co\">]>\n"
                  "<q:Root xmlns:q=\"urn:q\" b=\"&co;\" a=\"x&#233;&#x20AC;&lt;\" t=\"1\t2\n3\">\n"
                  "  <!-- note -->\n"
                  "  <Control id=\"c1\">text<![CDATA[<raw>]]></Control>\n"
                  "  <q:session/>\n"
                  "</q:Root>"));
  const XmlNode root = doc.documentElement();
  EXPECT_EQ(root.nodeName(), u"q:Root");
  EXPECT_EQ(root.baseName(), u"Root");
  const std::vector<XmlAttribute> attributes = root.attributes();
  ASSERT_EQ(attributes.size(), 3u);  // namespace declarations are no attributes here
  EXPECT_EQ(attributes[0].nodeName, u"b");
  EXPECT_EQ(attributes[0].nodeValue, u"Quorvex & Co");
  EXPECT_EQ(attributes[1].nodeValue, u"x\u00e9\u20ac<");
  EXPECT_EQ(attributes[2].nodeValue, u"1 2 3");       // tab and line feed normalised to blanks
  EXPECT_FALSE(root.getAttribute(u"B").has_value());  // exact names only
  EXPECT_FALSE(root.getAttribute(u"missing").has_value());

  std::vector<String> names;
  for (const XmlNode& child : root.childNodes())
    names.push_back(child.nodeName());
  const std::vector<String> expected = {u"#text", u"#comment",  u"#text", u"Control",
                                        u"#text", u"q:session", u"#text"};
  EXPECT_EQ(names, expected);
  EXPECT_EQ(root.childNodes()[1].nodeValue(), u" note ");
  const std::vector<XmlNode> elements = Elements(root);
  ASSERT_EQ(elements.size(), 2u);
  EXPECT_EQ(elements[1].baseName(), u"session");
  const std::vector<XmlNode> inner = elements[0].childNodes();
  ASSERT_EQ(inner.size(), 2u);
  EXPECT_EQ(inner[0].nodeValue(), u"text");
  EXPECT_EQ(inner[1].nodeName(), u"#cdata-section");
  EXPECT_EQ(inner[1].nodeValue(), u"<raw>");
  EXPECT_EQ(elements[0].nodeValue(), u"");
  EXPECT_TRUE(inner[0].attributes().empty());

  // Nodes keep the document alive after it is gone.
  XmlNode kept;
  {
    XmlDocument scoped;
    ASSERT_TRUE(scoped.LoadXml("<a><b k=\"v\"/></a>"));
    kept = Elements(scoped.documentElement())[0];
  }
  EXPECT_EQ(kept.getAttribute(u"k").value(), u"v");
  EXPECT_FALSE(XmlNode());
  EXPECT_TRUE(XmlNode().childNodes().empty());
}

TEST(XmlRead, FailuresAreResultsAndSilent) {
  ScratchFolder scratch;
  const std::string inputs[] = {"",
                                "not xml",
                                "<a><b></a>",
                                "<a x=\"1\" x=\"2\"/>",
                                "<?xml version=\"1.0\" encoding=\"no-such-set\"?><a/>",
                                "<a>&undefined;</a>",
                                std::string("<a>\0</a>", 8)};
  ::testing::internal::CaptureStderr();
  for (const std::string& input : inputs) {
    XmlDocument doc;
    EXPECT_FALSE(doc.LoadXml(input)) << input;
    EXPECT_FALSE(doc.error().empty()) << input;
    EXPECT_FALSE(doc.documentElement());
  }
  XmlDocument missing;
  EXPECT_FALSE(missing.Load(scratch.Path("none.xml")));
  EXPECT_FALSE(missing.Load(scratch.Path()));
  // A failed load drops what an earlier load held.
  XmlDocument reused;
  ASSERT_TRUE(reused.LoadXml("<ok/>"));
  EXPECT_FALSE(reused.LoadXml("<broken"));
  EXPECT_FALSE(reused.documentElement());
  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");

  // An external entity is never read, whatever the file names.
  const String secret = scratch.Write("secret.txt", "SECRET");
  XmlDocument doc;
  const std::string external = "<!DOCTYPE a [<!ENTITY x SYSTEM \"file://" +
                               scratch.Native("secret.txt") + "\">]><a v=\"1\">&x;</a>";
  ::testing::internal::CaptureStderr();
  if (doc.LoadXml(external)) {
    const std::vector<XmlNode> children = doc.documentElement().childNodes();
    for (const XmlNode& child : children)
      EXPECT_EQ(child.nodeValue().view().find(u"SECRET"), StringView::npos);
  }
  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
}

TEST(XmlWrite, EscapesAndReadsBack) {
  XmlWriter writer;
  writer.Declaration(u"utf-8");
  writer.Start(u"Quorvex");
  writer.Attribute(u"v", u"a\"b<c>&d\r\ne\tf \u20ac");
  writer.Start(u"Empty");
  writer.End();
  writer.Start(u"Text");
  writer.Text(u"x < y & \"z\"\r\n");
  writer.End();
  const String text = writer.Finish();
  EXPECT_EQ(text,
            u"<?xml version=\"1.0\" encoding=\"utf-8\"?>\r\n"
            u"<Quorvex v=\"a&quot;b&lt;c&gt;&amp;d&#13;&#10;e&#9;f \u20ac\">\r\n"
            u"  <Empty/>\r\n"
            u"  <Text>x &lt; y &amp; \"z\"&#13;\n</Text>\r\n"
            u"</Quorvex>");
  XmlDocument doc;
  ASSERT_TRUE(doc.LoadXml(text.ToUtf8())) << doc.error().ToUtf8();
  const XmlNode root = doc.documentElement();
  EXPECT_EQ(root.getAttribute(u"v").value(), u"a\"b<c>&d\r\ne\tf \u20ac");
  EXPECT_EQ(Elements(root)[1].childNodes()[0].nodeValue(), u"x < y & \"z\"\r\n");
}

}  // namespace
}  // namespace qv
