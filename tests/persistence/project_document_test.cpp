// Parsing project files: every declared encoding, entity and character references, attribute
// normalisation, the shape of the tree the reader walks, files far larger than libxml2 takes
// as one buffer, and input that must fail cleanly (nothing read, a reason given).
#include <gtest/gtest.h>

#include <string>

#include "persistence/project_document.h"
#include "support/scratch_home.h"

namespace qv {
namespace {

String ValueOf(const ProjectDocument& doc, int32_t element, StringView name) {
  const std::optional<std::string_view> v = doc.attribute(element, name);
  return v ? String::FromUtf8(*v) : String(u"<absent>");
}

// Declared single-byte encodings are the reader's test, through whole project files.
TEST(ProjectDocument, Utf16WithAByteOrderMarkNeedsNoDeclaration) {
  const std::u16string text = u"\ufeff<Project Version=\"5.3\" A=\"\u00e9\u4e2d\"/>";
  const std::string utf16(reinterpret_cast<const char*>(text.data()), text.size() * 2);
  ProjectDocument doc;
  ASSERT_TRUE(doc.LoadBytes(utf16)) << doc.error().ToUtf8();
  EXPECT_EQ(ValueOf(doc, doc.root(), u"A"), u"\u00e9\u4e2d");
}

TEST(ProjectDocument, ReferencesDecodeAndAttributeValuesAreNormalised) {
  const std::string bytes =
      "<?xml version=\"1.0\"?>\n"
      "<!DOCTYPE Project [ <!ENTITY co \"Quorvex &amp; Co\"> ]>\n"
      "<Project Version=\"5.3.0.0\" Esc=\"&amp;&lt;&gt;&quot;&apos;\" Chars=\"&#233;&#x20AC;\"\n"
      "  Breaks=\"a\r\nb\tc\nd\" Kept=\"a&#13;&#10;b\" Ent=\"&co;\" Spaces=\"  x  y  \"/>";
  ProjectDocument doc;
  ASSERT_TRUE(doc.LoadBytes(bytes)) << doc.error().ToUtf8();
  const int32_t root = doc.root();
  EXPECT_EQ(ValueOf(doc, root, u"Esc"), u"&<>\"'");
  EXPECT_EQ(ValueOf(doc, root, u"Chars"), u"\u00e9\u20ac");
  // Literal line breaks and tabs become blanks (CR LF counts once); references keep them.
  EXPECT_EQ(ValueOf(doc, root, u"Breaks"), u"a b c d");
  EXPECT_EQ(ValueOf(doc, root, u"Kept"), u"a\r\nb");
  EXPECT_EQ(ValueOf(doc, root, u"Ent"), u"Quorvex & Co");
  EXPECT_EQ(ValueOf(doc, root, u"Spaces"), u"  x  y  ");  // CDATA attributes keep their blanks
  EXPECT_EQ(ValueOf(doc, root, u"Missing"), u"<absent>");
}

TEST(ProjectDocument, TreeKeepsElementsInDocumentOrder) {
  const std::string bytes =
      "<Project Version=\"5.3\"><!-- note --><Extension Name=\"e\"/>text"
      "<Database DBName=\"d\"><Table TblName=\"a\"><Field FldName=\"f\"/></Table>"
      "<?pi data?><Table TblName=\"b\"/></Database><q:Table xmlns:q=\"urn:q\" q:TblName=\"c\"/>"
      "</Project>";
  ProjectDocument doc;
  ASSERT_TRUE(doc.LoadBytes(bytes)) << doc.error().ToUtf8();
  const int32_t root = doc.root();
  EXPECT_EQ(doc.name(doc.element(root).name), u"Project");
  EXPECT_EQ(doc.ChildCount(root), 3);  // comments, text and instructions are no elements

  const int32_t db = doc.FirstChildNamed(root, u"Database");
  ASSERT_NE(db, ProjectDocument::kNone);
  EXPECT_EQ(doc.ChildCount(db), 2);
  const int32_t a = doc.element(db).first_child;
  const int32_t b = doc.element(a).next_sibling;
  EXPECT_EQ(ValueOf(doc, a, u"TblName"), u"a");
  EXPECT_EQ(ValueOf(doc, b, u"TblName"), u"b");
  EXPECT_EQ(doc.element(b).next_sibling, ProjectDocument::kNone);
  EXPECT_EQ(ValueOf(doc, doc.element(a).first_child, u"FldName"), u"f");

  // A prefixed element keeps its qualified name, and so does its attribute.
  const int32_t c = doc.element(db).next_sibling;
  EXPECT_EQ(doc.name(doc.element(c).name), u"q:Table");
  EXPECT_EQ(ValueOf(doc, c, u"q:TblName"), u"c");
  EXPECT_EQ(ValueOf(doc, c, u"TblName"), u"<absent>");
  EXPECT_EQ(doc.FirstChildNamed(root, u"Table"), ProjectDocument::kNone);
}

TEST(ProjectDocument, FilesAboveTenMegabytesParse) {
  std::string bytes = "<Project Version=\"5.3\"><Database DBName=\"d\">";
  const std::string table = "<Table TblName=\"t\" Filler=\"" + std::string(1000, 'x') + "\"/>\r\n";
  for (int i = 0; i < 12000; ++i)
    bytes += table;
  bytes += "</Database></Project>";
  ASSERT_GT(bytes.size(), 12u * 1000 * 1000);
  ProjectDocument doc;
  ASSERT_TRUE(doc.LoadBytes(bytes)) << doc.error().ToUtf8();
  EXPECT_EQ(doc.ChildCount(doc.FirstChildNamed(doc.root(), u"Database")), 12000);
}

TEST(ProjectDocument, BadInputFailsWithAReasonAndLeavesNothing) {
  const std::string bad[] = {
      "",                                                      // empty
      "just some text",                                        // not XML
      "<Project Version=\"5.3\"><Database DBName=\"d\"><Tab",  // truncated
      "<Project Version=\"5.3\"></Database>",                  // mismatched tags
      "<Project A=\"1\" A=\"2\"/>",                            // duplicate attribute
      "<Project A=\"&undefined;\"/>",                          // unknown entity
      "<Project/><Second/>",                                   // two roots
      "<Project A=\"<\"/>",                                    // a raw "<" in a value
      std::string("<Project A=\"\xFF\xFE\"/>"),                // bytes that are no UTF-8
  };
  for (const std::string& bytes : bad) {
    ProjectDocument doc;
    EXPECT_FALSE(doc.LoadBytes(bytes)) << bytes;
    EXPECT_FALSE(doc.error().empty()) << bytes;
    EXPECT_FALSE(doc.loaded()) << bytes;
    EXPECT_EQ(doc.root(), ProjectDocument::kNone) << bytes;
  }

  // Entity expansion is bounded: a "billion laughs" file fails quickly instead of filling
  // memory.
  std::string laughs = "<?xml version=\"1.0\"?><!DOCTYPE P [<!ENTITY a0 \"lol\">";
  for (int i = 1; i <= 12; ++i) {
    laughs += "<!ENTITY a" + std::to_string(i) + " \"";
    for (int j = 0; j < 10; ++j)
      laughs += "&a" + std::to_string(i - 1) + ";";
    laughs += "\">";
  }
  laughs += "]><P A=\"&a12;\"/>";
  ProjectDocument doc;
  EXPECT_FALSE(doc.LoadBytes(laughs));
}

TEST(ProjectDocument, FilesOnDiskAndExternalEntities) {
  testing::ScratchHome home;
  const std::string secret = (home.root() / "secret.txt").string();
  testing::ScratchHome::Write(secret, "top secret");
  const std::string path = (home.root() / "p.xml").string();

  // An external entity is never read: referring to one fails the parse.
  ProjectDocument doc;
  testing::ScratchHome::Write(
      path, "<?xml version=\"1.0\"?><!DOCTYPE P [<!ENTITY s SYSTEM \"file://" + secret +
                "\">]><P A=\"&s;\"/>");
  EXPECT_FALSE(doc.Load(String::FromUtf8(path)));

  testing::ScratchHome::Write(path, "<P A=\"1\"/>");
  ASSERT_TRUE(doc.Load(String::FromUtf8(path)));
  EXPECT_EQ(ValueOf(doc, doc.root(), u"A"), u"1");

  EXPECT_FALSE(doc.Load(String::FromUtf8((home.root() / "none.xml").string())));
  EXPECT_FALSE(doc.error().empty());
  EXPECT_FALSE(doc.loaded());
  EXPECT_FALSE(doc.Load(String::FromUtf8(home.root().string())));  // a folder
}

}  // namespace
}  // namespace qv
