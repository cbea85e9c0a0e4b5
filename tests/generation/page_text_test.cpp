// Compacting page text, the generator tag, blank lines in front, and the short path.
#include "generation/page_text.h"

#include <gtest/gtest.h>

#include "support/tyx_vars.h"
#include "templates/scratch_folder.h"

namespace qv {
namespace {

TEST(PageText, StripBlankLinesKeepsCodeAndSpacesCommentBlocks) {
  // Blank and white lines go, CRs go, every line ends in CR LF.
  EXPECT_EQ(StripBlankLines(u"a\r\n  \r\n\t\nb\n  c  "), u"a\r\nb\r\n  c  \r\n");
  // One comment line gets an empty line before it; code behind a block of two or more
  // comment lines gets one too; an apostrophe behind code is no comment.
  EXPECT_EQ(StripBlankLines(u"x\n'one\ny\n"), u"x\r\n\r\n'one\r\ny\r\n");
  EXPECT_EQ(StripBlankLines(u"x\n  'a\n'b\ny = 'q'\n"), u"x\r\n\r\n  'a\r\n'b\r\n\r\ny = 'q'\r\n");
  EXPECT_EQ(StripBlankLines(u""), u"");
  EXPECT_EQ(StripBlankLines(u" \r\n\t"), u"");
}

TEST(PageText, GeneratorTagGoesBeforeEveryHeadEndOnly) {
  const String tag =
      u"<meta name=\"generator\" content=\"Quorvex v" + Vars().LibVersion + u"\" />\r\n";
  EXPECT_EQ(GeneratorTag(), tag);
  EXPECT_EQ(StripBlankLines(u"<HEAD></HEAD>\n<p>"), u"<HEAD>" + tag + u"</head>\r\n<p>\r\n");
  EXPECT_EQ(StripBlankLines(u"</head></Head>"), tag + u"</head>" + tag + u"</head>\r\n");
  EXPECT_EQ(StripBlankLines(u"<body></body>"), u"<body></body>\r\n");
  // Pages that keep their white space get no tag.
  EXPECT_EQ(TrimLeadingLines(u"</head>"), u"</head>");
}

TEST(PageText, TrimLeadingLinesKeepsIndentOfFirstLine) {
  EXPECT_EQ(TrimLeadingLines(u"\r\n \r\n  <%x%>\r\n\r\n"), u"  <%x%>\r\n\r\n");
  EXPECT_EQ(TrimLeadingLines(u"  a"), u"  a");
  EXPECT_EQ(TrimLeadingLines(u"\r\n  \t"), u"  \t");
  EXPECT_EQ(TrimLeadingLines(u""), u"");
}

TEST(PageText, ShortPathFitsFiftyFiveCharacters) {
  const String path = u"/srv/www/applications/customers/2024/reports/monthly/overview_list.asp";
  const String short_path = ShortPath(path);
  EXPECT_LE(short_path.size(), 55u);
  EXPECT_EQ(short_path, u"/.../customers/2024/reports/monthly/overview_list.asp");
  EXPECT_EQ(ShortPath(u"/a/b.asp"), u"/a/b.asp");
  EXPECT_EQ(ShortPath(u"C:/" + String(60, u'x')), u"C:/...");
}

}  // namespace
}  // namespace qv
