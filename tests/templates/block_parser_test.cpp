// The block list of representative templates, both error texts with their positions, the
// indent rules, the cursor, and the enclosing-function quirks.
#include "templates/block_parser.h"

#include <gtest/gtest.h>

#include "automation/error.h"
#include "support/tyx_vars.h"
#include "templates/scratch_folder.h"

namespace qv {
namespace {

struct Block {
  int32_t type;
  String name;
  String value;
  String indent;
  bool operator==(const Block&) const = default;
  friend void PrintTo(const Block& b, std::ostream* os) {
    *os << "{" << b.type << ", " << b.name.ToUtf8() << ", " << b.value.ToUtf8() << ", "
        << b.indent.ToUtf8() << "}";
  }
};

std::vector<Block> Blocks(TyParser& parser) {
  std::vector<Block> out;
  for (int32_t i = 1; i <= parser.Count(); ++i) {
    parser.SetBlockID(i);
    out.push_back(
        {parser.BlockType(), parser.BlockName(), parser.BlockValue(), parser.BlockIndent()});
  }
  return out;
}

std::vector<Block> ParseAll(StringView text) {
  Vars().ProjErr = String();
  TyParser parser;
  parser.Parse(String(text));
  EXPECT_EQ(Vars().ProjErr, u"") << String(text).ToUtf8();
  return Blocks(parser);
}

String ErrorOf(StringView text, std::vector<Block>* kept = nullptr) {
  Vars().ProjErr = u"earlier text";
  TyParser parser;
  parser.Parse(String(text));
  if (kept) *kept = Blocks(parser);
  return Vars().ProjErr;
}

constexpr int32_t kS = tyc_Block_Script, kF = tyc_Block_Function, kI = tyc_Block_FunctionIndent,
                  kL = tyc_Block_Language, kD = tyc_Block_LanguageDynamic, kC = tyc_Block_Content;

TEST(BlockParser, RepresentativeTemplate) {
  const StringView page =
      u"<html>\r\n"
      u"<!--##\r\n  Dim x\r\n##-->\r\n"
      u"<title><!--##@ PageTitle ##--></title>\r\n"
      u"\t\t <!--##~ ShowFields(\"list\") ##-->\r\n"
      u"<p><!--##=TABLE.TblName##--><!--##$ \"Msg\" & n ##--></p>\r\n"
      u"<!--## =x##--><!--##=##-->tail";
  const std::vector<Block> expected = {
      {kC, u"", u"<html>\r\n", u""},
      {kS, u"", u"\r\n  Dim x\r\n", u""},
      {kC, u"", u"\r\n<title>", u""},
      {kL, u"PageTitle", u" PageTitle ", u""},
      {kC, u"", u"</title>\r\n\t\t ", u""},
      {kI, u"ShowFields(\"list\")", u" ShowFields(\"list\") ", u"\t\t "},
      {kC, u"", u"\r\n<p>", u""},
      {kF, u"TABLE.TblName", u"TABLE.TblName", u""},
      {kD, u"\"Msg\" & n", u" \"Msg\" & n ", u""},
      {kC, u"", u"</p>\r\n", u""},
      {kS, u"", u" =x", u""},  // a blank before the sign makes a script block
      {kF, u"", u"", u""},
      {kC, u"", u"tail", u""},
  };
  EXPECT_EQ(ParseAll(page), expected);
}

TEST(BlockParser, ContentAndTagBoundaries) {
  EXPECT_TRUE(ParseAll(u"").empty());
  EXPECT_EQ(ParseAll(u"just text ##--> here"),
            (std::vector<Block>{{kC, u"", u"just text ##--> here", u""}}));
  EXPECT_EQ(ParseAll(u"<!--##=a##-->"), (std::vector<Block>{{kF, u"a", u"a", u""}}));
  EXPECT_EQ(ParseAll(u"<!--##=a##--><!--##b##-->x<!--##@c##-->"),
            (std::vector<Block>{{kF, u"a", u"a", u""},
                                {kS, u"", u"b", u""},
                                {kC, u"", u"x", u""},
                                {kL, u"c", u"c", u""}}));
  // Only blanks are trimmed from names: tabs and line breaks stay.
  EXPECT_EQ(ParseAll(u"<!--##=\t a\r\n b \t##-->"),
            (std::vector<Block>{{kF, u"\t a\r\n b \t", u"\t a\r\n b \t", u""}}));
  // Delimiters are found whatever stands around them; session and include tags are scripts.
  EXPECT_EQ(ParseAll(u"<!--##session x##--><!--##INCLUDE a/b##-->"),
            (std::vector<Block>{{kS, u"", u"session x", u""}, {kS, u"", u"INCLUDE a/b", u""}}));
}

TEST(BlockParser, ErrorTextsWithPositions) {
  EXPECT_EQ(ErrorOf(u"<!--##a<!--##b##-->"),
            u"***Nested Blocks found at line 1 column 8! Generation failed!");
  EXPECT_EQ(ErrorOf(u"x\r\n<!--##a"),
            u"***Incomplete Block at line 2 column 1! Generation failed!");
  // The incomplete test comes first, and names the outer tag.
  EXPECT_EQ(ErrorOf(u"ab<!--##a<!--##b"),
            u"***Incomplete Block at line 1 column 3! Generation failed!");
  // Lone LF and CR are no line ends; a tab is one column.
  EXPECT_EQ(ErrorOf(u"a\nb\rc\r\n\r\n\tx<!--##=1##--><!--##"),
            u"***Incomplete Block at line 3 column 16! Generation failed!");
  EXPECT_EQ(ErrorOf(u"<!--##=1##-->\r\n  <!--##=a\r\n <!--##b##-->"),
            u"***Nested Blocks found at line 3 column 2! Generation failed!");
  // Blocks before the fault stay in the list, and so does the content before the bad tag.
  std::vector<Block> kept;
  ErrorOf(u"a<!--##=b##-->c<!--##d<!--##e##-->", &kept);
  EXPECT_EQ(kept, (std::vector<Block>{
                      {kC, u"", u"a", u""}, {kF, u"b", u"b", u""}, {kC, u"", u"c", u""}}));
  // A good parse leaves ProjErr alone.
  Vars().ProjErr = u"kept";
  TyParser parser;
  parser.Parse(u"<!--##=x##-->");
  EXPECT_EQ(Vars().ProjErr, u"kept");
  Vars().ProjErr = String();
  // "<!--##-->" closes inside its own opening delimiter: the negative length is refused.
  try {
    parser.Parse(u"a<!--##-->");
    FAIL() << "no error";
  } catch (const Error& e) {
    EXPECT_EQ(e.number(), kErrInvalidCall);
  }
}

TEST(BlockParser, IndentRules) {
  auto indent_of_last = [](StringView text) { return ParseAll(text).back().indent; };
  EXPECT_EQ(indent_of_last(u"x\r\n\t\t <!--##~a##-->"), u"\t\t ");
  EXPECT_EQ(indent_of_last(u"\t \t<!--##~a##-->"), u"\t \t");  // the whole text if only blanks
  EXPECT_EQ(indent_of_last(u"x\r\n<!--##~a##-->"), u"");
  EXPECT_EQ(indent_of_last(u"x <!--##~a##-->"), u" ");  // only the run at the end counts
  EXPECT_EQ(indent_of_last(u"\t<!--##=a##--><!--##~b##-->"), u"");  // behind another tag
  EXPECT_EQ(indent_of_last(u"<!--##~b##-->"), u"");
  EXPECT_EQ(ParseAll(u" <!--##=a##-->").back().indent, u"");  // "=" keeps no indent

  // The walk counts in 16 bits: a longer content block overflows, even at a line start.
  const String limit = String(32765, u'x') + u"\r\n";
  EXPECT_EQ(indent_of_last((limit + u"<!--##~a##-->").view()), u"");
  TyParser parser;
  try {
    parser.Parse(limit + u"y<!--##~a##-->");
    FAIL() << "no overflow";
  } catch (const Error& e) {
    EXPECT_EQ(e.number(), kErrOverflow);
  }
  EXPECT_EQ(parser.Count(), 1);             // the content block before the tag was already there
  parser.Parse(limit + u"y<!--##=a##-->");  // other signs don't walk
  EXPECT_EQ(parser.Count(), 2);
}

TEST(BlockParser, Cursor) {
  TyParser parser;
  auto error_of = [&](auto read) {
    try {
      read();
    } catch (const Error& e) {
      return e.number();
    }
    return 0;
  };
  EXPECT_EQ(error_of([&] { parser.Count(); }), kErrSubscript);
  EXPECT_EQ(error_of([&] { parser.BlockValue(); }), kErrSubscript);
  EXPECT_EQ(error_of([&] { parser.BlockType(); }), kErrSubscript);

  parser.Parse(u"a<!--##=b##-->c");
  EXPECT_EQ(parser.Count(), 3);
  EXPECT_EQ(parser.BlockID(), 3);  // on the last block after Parse
  EXPECT_EQ(parser.BlockValue(), u"c");
  parser.SetBlockID(2);
  parser.SetBlockID(0);
  parser.SetBlockID(4);
  parser.SetBlockID(-1);
  EXPECT_EQ(parser.BlockID(), 2);
  EXPECT_EQ(parser.BlockName(), u"b");

  parser.Parse(u"");
  EXPECT_EQ(parser.Count(), 0);
  EXPECT_EQ(parser.BlockID(), 0);
  EXPECT_EQ(parser.BlockType(), 0);
  EXPECT_EQ(parser.BlockValue(), u"");
  parser.SetBlockID(1);
  EXPECT_EQ(parser.BlockID(), 0);

  // The script surface: members by name without regard to case.
  Ref<TyParser> scripted = MakeRef<TyParser>();
  scripted->Call(u"parse", {Variant(u"<!--##@x##-->y")});
  EXPECT_EQ(scripted->Get(u"COUNT").as_long(), 2);
  scripted->Let(u"BlockID", Variant(int16_t{1}));
  EXPECT_EQ(scripted->Get(u"BlockType").as_long(), tyc_Block_Language);
  EXPECT_EQ(scripted->Get(u"BlockName").as_string(), u"x");
}

TEST(BlockParser, EnclosingFunction) {
  auto name_of = [](StringView text) { return ParseAll(text).back().name; };
  EXPECT_EQ(name_of(u"<!--##\r\nFunction Foo (x)\r\n  Dim y\r\n##-->"), u"Foo");
  EXPECT_EQ(name_of(u"<!--##\r\n  function  Bar(x)##-->"), u"Bar");
  EXPECT_EQ(name_of(u"<!--##\r\nFunction Foo(x)\r\nEnd Function ##-->"), u"");
  // The word needs its blank: "End Function" at a line end doesn't close anything.
  EXPECT_EQ(name_of(u"<!--##\r\nFunction Foo(x)\r\nEnd Function\r\n##-->"), u"Foo");
  EXPECT_EQ(name_of(u"<!--##Function Foo(x)\r\n##-->"), u"");  // on the tag's own line
  EXPECT_EQ(name_of(u"<!--##\r\nPublic Function Foo(x)##-->"), u"");
  EXPECT_EQ(name_of(u"<!--##\r\nFunction NoParen##-->"), u"");
  // A commented or longer word is skipped and the search goes on further up.
  EXPECT_EQ(name_of(u"<!--##\r\nFunction Foo(x)\r\n' Function Bar(y)\r\n##-->"), u"Foo");
  EXPECT_EQ(name_of(u"<!--##\r\nFunction Foo(x)\r\nx = MyFunction (1)\r\n##-->"), u"Foo");
  EXPECT_EQ(name_of(u"<!--##\r\nFunction Foo(x)\r\n  a = xFunction 1 + yFunction (2)\r\n##-->"),
            u"Foo");
  EXPECT_EQ(name_of(u"<!--##\r\nFunction Foo(x)\r\n  a = 1 ' Function z(\r\n##-->"), u"");
  // A tab is no blank: a tab-indented function never counts.
  EXPECT_EQ(name_of(u"<!--##\r\n\tFunction Foo(x)\r\n##-->"), u"");
  // After a skipped occurrence the search cuts the whole text, not the block: here it finds a
  // function that stands in the page text before the tag.
  const StringView quirk =
      u"\r\nFunction Outside(a)\r\n<!--##\r\n                              ' Function In(x)##-->";
  EXPECT_EQ(name_of(quirk), u"Outside");

  // A block full of skipped occurrences on long lines ends in one pass over the text (a
  // quadratic walk would not finish here).
  String crowded = u"\r\nFunction Far(x)\r\n<!--##\r\n";
  for (int i = 0; i < 100000; ++i)
    crowded += u"xFunction ";
  crowded += u"\r\n";
  crowded += String(200000, u' ');
  for (int i = 0; i < 100000; ++i)
    crowded += u"'Function ";
  crowded += u"##-->";
  EXPECT_EQ(name_of(crowded.view()), u"Far");
}

}  // namespace
}  // namespace qv
