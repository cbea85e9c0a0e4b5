// Language and keyword files: root-name checks, later files overriding earlier phrases in the
// order of first appearance, case-blind look-ups; and the filter object, which stays empty.
#include "templates/language.h"

#include <gtest/gtest.h>

#include "templates/filter.h"
#include "templates/keyword.h"
#include "templates/scratch_folder.h"

namespace qv {
namespace {

using testing::ScratchFolder;

TEST(Language, LaterFilesOverrideEarlierPhrases) {
  ScratchFolder scratch;
  const String base = scratch.Write("lang.xml", R"(<?xml version="1.0" encoding="utf-8"?>
<quorvex.language>
  <phrase id="abc" value="First"/>
  <PHRASE ID="Save" VALUE="Save &amp; close"/>
  <phrase id="novalue"/>
  <phrase id="ABC" value="Second"/>
  <!-- comment --><other id="x" value="ignored"/>
</quorvex.language>)");
  const String local =
      scratch.Write("local.xml",
                    "<?xml version=\"1.0\" encoding=\"iso-8859-1\"?>"
                    "<QUORVEX.LANGUAGE><phrase id=\"SAVE\" value=\"Sichern \xFC\"/>"
                    "<phrase id=\"new\" value=\"N\"/></QUORVEX.LANGUAGE>");
  TyxLanguage lang;
  EXPECT_EQ(lang.curIndex(), 0);
  ASSERT_TRUE(lang.Load(base));
  EXPECT_EQ(lang.Count(), 3);
  EXPECT_EQ(lang.Phrase(u"abc"), u"Second");  // one entry, the text of the later element
  EXPECT_EQ(lang.Phrase(u"ABC"), u"Second");
  EXPECT_EQ(lang.Phrase(u"save"), u"Save & close");
  EXPECT_EQ(lang.Phrase(u"novalue"), u"");
  EXPECT_EQ(lang.Phrase(u"unknown"), u"");

  ASSERT_TRUE(lang.Load(local));
  EXPECT_EQ(lang.Count(), 4);
  EXPECT_EQ(lang.Phrase(u"Save"), u"Sichern \u00fc");
  EXPECT_EQ(lang.Phrase(u"abc"), u"Second");  // the rest stays
  EXPECT_EQ(lang.Phrase(u"NEW"), u"N");

  // Files that fail leave the list as it was.
  ::testing::internal::CaptureStderr();
  EXPECT_FALSE(lang.Load(scratch.Write("bad.xml", "<quorvex.language><phrase")));
  EXPECT_FALSE(lang.Load(scratch.Path("missing.xml")));
  EXPECT_FALSE(lang.Load(scratch.Write(
      "root.xml", "<quorvexlanguage><phrase id=\"a\" value=\"b\"/></quorvexlanguage>")));
  EXPECT_FALSE(lang.Load(scratch.Write("kw.xml", "<quorvex.keyword/>")));
  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
  EXPECT_EQ(lang.Count(), 4);
  EXPECT_TRUE(lang.Load(scratch.Write("empty.xml", "<q:Quorvex.Language xmlns:q=\"u\"/>")));
  EXPECT_EQ(lang.Count(), 4);

  // Scripts see the same object as LANG.
  Ref<TyxLanguage> scripted = MakeRef<TyxLanguage>();
  EXPECT_TRUE(scripted->Call(u"Load", {Variant(base)}).as_bool());
  EXPECT_EQ(scripted->Call(u"phrase", {Variant(u"SAVE")}).as_string(), u"Save & close");
  EXPECT_EQ(scripted->Get(u"Count").as_long(), 3);
  EXPECT_EQ(scripted->Get(u"curIndex").as_integer(), 0);
}

TEST(Keyword, PairsMatchWithoutRegardToCase) {
  ScratchFolder scratch;
  TyxKeyword words;
  ASSERT_TRUE(words.Load(scratch.Write("kw.xml",
                                       "<Quorvex.Keyword>"
                                       "<keyword lang=\"VB\" value=\"select\"/>"
                                       "<KEYWORD LANG=\"sql\" VALUE=\"Select\"/>"
                                       "<keyword lang=\"vb\" value=\"SELECT\"/>"
                                       "<keyword value=\"nolang\"/>"
                                       "</Quorvex.Keyword>")));
  EXPECT_EQ(words.Count(), 3);
  EXPECT_TRUE(words.IsKeyword(u"vb", u"SELECT"));
  EXPECT_TRUE(words.IsKeyword(u"SQL", u"select"));
  EXPECT_TRUE(words.IsKeyword(u"", u"NOLANG"));
  EXPECT_FALSE(words.IsKeyword(u"js", u"select"));
  EXPECT_FALSE(words.IsKeyword(u"vb", u"selec"));
  EXPECT_FALSE(words.Load(scratch.Write("lang.xml", "<quorvex.language/>")));
  EXPECT_FALSE(words.Load(scratch.Write("bad.xml", "keyword")));
  EXPECT_EQ(words.Count(), 3);
  EXPECT_EQ(words.curIndex(), 0);
}

TEST(Filter, StaysEmpty) {
  Ref<TyxFilter> filter = MakeRef<TyxFilter>();
  filter->Load();
  EXPECT_EQ(filter->GroupCount(), 0);
  EXPECT_EQ(filter->GroupName(1), u"");
  EXPECT_EQ(filter->OptionCount(u"any"), 0);
  EXPECT_EQ(filter->OptionName(u"any", 1), u"");
  EXPECT_EQ(filter->Expression(u"any", 1), u"");
  filter->Call(u"Load");
  EXPECT_EQ(filter->Get(u"OptionCount", {Variant(u"g")}).as_long(), 0);
  EXPECT_EQ(filter->Get(u"Expression", {Variant(u"g"), Variant(int16_t{1})}).as_string(), u"");
}

}  // namespace
}  // namespace qv
