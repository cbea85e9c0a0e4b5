// Output names from the naming rule, and paths below the destination and the application root.
#include "generation/output_paths.h"

#include <filesystem>

#include "generation/output_test_support.h"

namespace qv {
namespace {

using testing::OutputTest;

TEST_F(OutputTest, NamingRuleJoinsTablePartAndPagePart) {
  struct Case {
    const char16_t* type;
    const char16_t* text;
    bool lower;
    const char16_t* base;
    const char16_t* field;
    const char16_t* expected;
  };
  const Case cases[] = {
      {u"suffix", u"", false, u"cust", u"", u"custlist.asp"},
      {u"prefix", u"x", false, u"cust", u"", u"xcustlist.asp"},
      {u"prefix", u"x", false, u"", u"", u"xlist.asp"},  // prefix even without a table
      {u"infix", u"_", false, u"cust", u"", u"cust_list.asp"},
      {u"infix", u"_", false, u"", u"", u"list.asp"},  // infix only between two parts
      {u"SUFFIX", u"-x", false, u"cust", u"", u"custlist-x.asp"},
      {u"other", u"_", false, u"cust", u"", u"custlist.asp"},
      {u"infix", u"", false, u"cust", u"x_id", u"cust_idlist.asp"},  // "x_" of FldVar goes
      {u"infix", u"", true, u"Cust", u"x_ID", u"cust_idlist.asp"},
  };
  for (const Case& c : cases) {
    tyx_->SetOutputNameType(c.type);
    tyx_->SetOutputNameExt(c.text);
    tyx_->SetOutputNameLCase(c.lower);
    EXPECT_EQ(MakeOutputName(*tyx_, c.base, c.field, u"list", ResolveExt(u"*")), c.expected)
        << String(c.type).ToUtf8() << " " << String(c.base).ToUtf8();
  }
  EXPECT_EQ(ResolveExt(u"htm"), u"htm");
  EXPECT_EQ(WithTrailingSlash(u" a/b "), u"a/b/");
  EXPECT_EQ(WithTrailingSlash(u"a\\"), u"a\\");
  EXPECT_EQ(WithTrailingSlash(u"  "), u"");
}

TEST_F(OutputTest, PathsLieBelowDestinationOrAppRootAndNeverOutside) {
  const String dest = Dest() + u"/";
  tyx_->SetDestination(dest);  // a trailing "/" is kept, not doubled
  EXPECT_EQ(ResolveOutputPath(*tyx_, u"", u"a.asp", false), dest + u"a.asp");
  EXPECT_FALSE(std::filesystem::exists(scratch_.path() / "site"));  // the root isn't made here

  EXPECT_EQ(ResolveOutputPath(*tyx_, u"images/", u"a.gif", true), dest + u"images/a.gif");
  EXPECT_FALSE(std::filesystem::exists(scratch_.path() / "site/images"));  // nor in check mode
  EXPECT_EQ(ResolveOutputPath(*tyx_, u"images\\x", u"a.gif", false), dest + u"images/x/a.gif");
  EXPECT_TRUE(std::filesystem::is_directory(scratch_.path() / "site/images/x"));

  // "~/" is the application root; without one it is the destination, never the working folder.
  EXPECT_EQ(ResolveOutputPath(*tyx_, u"~/up", u"f", true), dest + u"up/f");
  tyx_->SetAppRootFolder(scratch_.Path("root"));
  EXPECT_EQ(ResolveOutputPath(*tyx_, u"~\\up", u"f", false), scratch_.Path("root") + u"/up/f");
  EXPECT_TRUE(std::filesystem::is_directory(scratch_.path() / "root/up"));
  EXPECT_EQ(Vars().ProjErr, u"");

  // Names that climb out of their root are refused, with the path in the words.
  for (const auto& [folder, file] : {std::pair<StringView, StringView>{u"../", u"x.asp"},
                                     {u"", u"../../x.asp"},
                                     {u"a/../../", u"x.asp"},
                                     {u"~/../", u"x.asp"}}) {
    Vars().ProjErr.Clear();
    EXPECT_EQ(ResolveOutputPath(*tyx_, folder, file, false), u"") << String(folder).ToUtf8();
    EXPECT_NE(Vars().ProjErr.view().find(u"lies outside the folder"), StringView::npos);
  }
  EXPECT_FALSE(std::filesystem::exists(scratch_.path() / "x.asp"));
  Vars().ProjErr.Clear();
  EXPECT_EQ(ResolveOutputPath(*tyx_, u"a/../b/", u"x.asp", true), dest + u"a/../b/x.asp");
}

}  // namespace
}  // namespace qv
