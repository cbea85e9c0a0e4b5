// GetSession and include expansion over real template files: first match, identifiers
// without regard to case, unclosed sessions, dropped includes, nesting, and the guard that
// turns a self-including file into an error instead of a stack overflow.
#include <gtest/gtest.h>

#include "automation/error.h"
#include "support/tyx_vars.h"
#include "templates/block_parser.h"
#include "templates/scratch_folder.h"

namespace qv {
namespace {

using testing::ScratchFolder;

TEST(Session, FindsTheFirstMatchingSession) {
  TyParser parser;
  const StringView file =
      u"head<!--##/session##-->"
      u"<!--##session list ##-->L1<!--##/session##-->"
      u"<!--##SESSION\tx##-->tab<!--##/session##-->"
      u"<!--##sessionx##-->X<!--##/SESSION##-->"
      u"<!--##session LIST##-->L2<!--##/session##-->"
      u"<!--##session open##-->never closed";
  EXPECT_EQ(parser.GetSession(file, u"LIST"), u"L1");
  EXPECT_EQ(parser.GetSession(file, u"x"), u"X");  // "sessionx" names "x"; tabs aren't trimmed
  EXPECT_EQ(parser.GetSession(file, u"\tx"), u"tab");
  EXPECT_EQ(parser.GetSession(file, u"open"), u"");
  EXPECT_EQ(parser.GetSession(file, u"none"), u"");
  EXPECT_EQ(parser.GetSession(u"<!--##session a", u"a"), u"");
  EXPECT_EQ(parser.GetSession(u"", u""), u"");
  // A session may be empty, and the closing tag found is the first one behind the opening.
  EXPECT_EQ(parser.GetSession(u"<!--##session e##--><!--##/session##-->", u"e"), u"");
  EXPECT_EQ(
      parser.GetSession(u"<!--##session a##-->1<!--##session b##-->2<!--##/session##-->", u"a"),
      u"1<!--##session b##-->2");

  // GetSession leaves the parser's own text, list and cursor alone, also before any Parse.
  parser.Parse(u"<!--##=a##-->b");
  parser.SetBlockID(1);
  parser.GetSession(file, u"list");
  EXPECT_EQ(parser.Count(), 2);
  EXPECT_EQ(parser.BlockID(), 1);
  EXPECT_EQ(parser.BlockValue(), u"a");
}

TEST(Session, IncludesAreExpandedFromTheTemplateFolder) {
  ScratchFolder scratch;
  scratch.Write("parts.txt",
                "<!--##session head##-->H\n<!--##include sub\\deep.txt / leaf ##-->"
                "<!--##/session##-->"
                "<!--##session foot##-->F<!--##/session##-->");
  scratch.Write("sub/deep.txt", "\xEF\xBB\xBF<!--##session LEAF##-->\xC3\xA9<!--##/session##-->");
  TyParser parser;
  parser.set_include_folder(scratch.Path());
  const StringView page =
      u"<!--##session page##-->"
      u"[<!--##include parts.txt/head##-->]"
      u"[<!--##INCLUDE  parts.txt / FOOT ##-->]"
      u"[<!--##include missing.txt/head##-->]"  // a missing file vanishes
      u"[<!--##include parts.txt##-->]"         // so does a tag without "/"
      u"[<!--##include a/b/c##-->]"             // and one with three parts
      u"[<!--##include parts.txt/none##-->]"    // a missing session gives nothing
      u"<!--##/session##-->";
  // Files are read with lone LF turned into CR LF, whatever their marks.
  EXPECT_EQ(parser.GetSession(page, u"page"), u"[H\r\n\u00e9][F][][][][]");
  // An include without its closing delimiter is kept as it stands, with the rest.
  EXPECT_EQ(parser.GetSession(
                u"<!--##session p##-->a<!--##include parts.txt/foot <!--##/session##-->", u"p"),
            u"a<!--##include parts.txt/foot ");
  // Include tags mean something only inside a session.
  EXPECT_EQ(parser.GetSession(u"<!--##include parts.txt/foot##-->", u"foot"), u"");

  // Without a folder of its own the parser reads from the run's template folder.
  TyParser plain;
  Vars().TemplateFolder = scratch.Path();
  EXPECT_EQ(plain.GetSession(
                u"<!--##session s##--><!--##include parts.txt/foot##--><!--##/session##-->", u"s"),
            u"F");
  Vars().TemplateFolder = String();
}

TEST(Session, IncludeLoopsEndWithAnError) {
  ScratchFolder scratch;
  scratch.Write("self.txt",
                "<!--##session s##-->x<!--##include self.txt/S##--><!--##/session##-->");
  scratch.Write("a.txt", "<!--##session a##--><!--##include b.txt/b##--><!--##/session##-->");
  scratch.Write("b.txt", "<!--##session b##--><!--##include a.txt/a##--><!--##/session##-->");
  // The same file twice under different sessions is no loop.
  scratch.Write("twice.txt",
                "<!--##session one##-->1<!--##include twice.txt/two##--><!--##/session##-->"
                "<!--##session two##-->2<!--##/session##-->");
  TyParser parser;
  parser.set_include_folder(scratch.Path());
  EXPECT_EQ(parser.GetSession(
                u"<!--##session p##--><!--##include twice.txt/one##--><!--##/session##-->", u"p"),
            u"12");
  for (const StringView start : {StringView(u"self.txt/s"), StringView(u"a.txt/a")}) {
    const String page =
        String(u"<!--##session p##--><!--##include ") + start + u"##--><!--##/session##-->";
    try {
      parser.GetSession(page, u"p");
      FAIL() << "no error for " << String(start).ToUtf8();
    } catch (const Error& e) {
      EXPECT_EQ(e.number(), kErrOutOfStack);
      EXPECT_NE(e.description().view().find(u"includes itself"), StringView::npos);
    }
  }
  // The parser is usable again afterwards.
  EXPECT_EQ(parser.GetSession(u"<!--##session p##-->ok<!--##/session##-->", u"p"), u"ok");
}

}  // namespace
}  // namespace qv
