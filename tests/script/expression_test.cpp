// Template text to function code (TranslateText; the generation suite pins whole translated
// pages), Parse on the project root with its owned or shared script host, FldSrchOprs, and
// `quorvex eval` on a saved project.
#include <sys/wait.h>

#include "root/create_tyx.h"
#include "script/expression.h"
#include "script/script_fixture.h"
#include "script/translator.h"
#include "vbscript/engine.h"

namespace qv {
namespace {

using Translate = ScriptFixture;
using ParseText = ScriptFixture;

TEST_F(Translate, OutputGoesThroughAUserFunctionOnlyWhenNoSystemFunctionHasThePlainName) {
  ScriptSettings settings;
  settings.USERCODE = Write("user.vbs",
                            "Function USER_Foo_Bar(v) : USER_Foo_Bar = v : End Function\r\n"
                            "Function USER_qvQuoteSQL(v) : USER_qvQuoteSQL = v : End Function\r\n");
  Ref<TyScript> script = Start(settings);
  Vars().TheScript = script;
  TranslatorState state;
  TranslateText(state, u"<!--##=Foo.Bar##--><!--##=qvQuoteSQL##--><!--##~Foo.Bar##-->");
  EXPECT_EQ(state.ScriptCode,
            u"qvOut = qvOut & USER_Foo_Bar(Foo.Bar) & qvQuoteSQL\r\nqvIndentWrk = \"\"\r\n");
  EXPECT_EQ(state.PendingExpr, u" & USER_Foo_Bar(Foo.Bar)");
  Vars().TheScript = nullptr;
}

TEST_F(ParseText, EvaluatesTagsWithAHostOfItsOwnOrTheRunningOne) {
  EXPECT_EQ(tyx_->Services().Parse(*tyx_, Variant(u"<!--##=1+1##-->")), u"2");
  EXPECT_EQ(Vars().TheScript, nullptr);
  EXPECT_EQ(tyx_->Services().Parse(*tyx_, Variant(u"")), u"");
  EXPECT_EQ(tyx_->Services().Parse(*tyx_, Variant(u"plain \"text\"\r\nline 2")),
            u"plain \"text\"\r\nline 2");
  // Text typed on Linux: a lone LF is a line end as CR LF is, in page text and in tags.
  EXPECT_EQ(
      tyx_->Services().Parse(*tyx_, Variant(u"a\nb<!--## x = 1\ny = 2 ##-->\n<!--##=x+y##-->")),
      u"a\r\nb\r\n3");
  tyx_->SetProjName(u"Shop");
  EXPECT_EQ(tyx_->Services().Parse(*tyx_, Variant(u"/apps/<!--##=LCase(PROJ.ProjName)##-->/")),
            u"/apps/shop/");
  EXPECT_EQ(tyx_->Services().Parse(
                *tyx_, Variant(u"<!--## For i = 1 To 3 ##-->[<!--##=i##-->]<!--## Next ##-->")),
            u"[1][2][3]");
  EXPECT_EQ(ProjErr(), "");

  // A text that can't be cut into blocks comes back as it was.
  EXPECT_EQ(tyx_->Services().Parse(*tyx_, Variant(u"<!--##=1+1")), u"<!--##=1+1");
  EXPECT_EQ(ProjErr(), "***Incomplete Block at line 1 column 1! Generation failed!");
  EXPECT_EQ(Vars().TheScript, nullptr);
  // So does any text while ProjErr stands.
  EXPECT_EQ(tyx_->Services().Parse(*tyx_, Variant(u"<!--##=2##-->")), u"<!--##=2##-->");
  Vars().ProjErr = String();

  // Errors are not ignored in an expression: a failing piece fails the whole.
  EXPECT_EQ(tyx_->Services().Parse(*tyx_, Variant(u"a<!--##=1/0##-->b")), u"");
  EXPECT_EQ(ProjErr().rfind("VBScript Runtime error \r\nDivision by zero\r\n", 0), 0u);
  Vars().ProjErr = String();

  // During a run Parse shares the running host and leaves it running.
  Ref<TyScript> running = Start();
  Vars().TheScript = running;
  running->engine().ModuleAt(1).AddCode(u"Dim qvMark\r\nqvMark = \"run\"");
  EXPECT_EQ(tyx_->Services().Parse(*tyx_, Variant(u"<!--##=qvMark##-->")), u"run");
  EXPECT_EQ(Vars().TheScript.get(), running.get());
  EXPECT_TRUE(running->IsInitialized());
  Vars().TheScript = nullptr;
}

TEST_F(ParseText, SearchOperatorsFollowTheClassOfTheType) {
  auto lines = [&](int16_t type) {
    const String list = tyx_->Services().FldSrchOprs(*tyx_, type);
    return list.ToUtf8();
  };
  EXPECT_EQ(lines(11), "USER SELECT\r\n=\r\n<>");
  EXPECT_EQ(lines(202),
            "USER SELECT\r\n=\r\n<>\r\n<\r\n<=\r\n>\r\n>=\r\nBETWEEN\r\nLIKE\r\nNOT LIKE\r\n"
            "STARTS WITH");
  EXPECT_EQ(lines(3), "USER SELECT\r\n=\r\n<>\r\n<\r\n<=\r\n>\r\n>=\r\nBETWEEN");
  EXPECT_EQ(lines(72), lines(3));
}

TEST_F(ParseText, EvalCommandPrintsTheResultOrFailsWithTheWords) {
  const std::string quorvex = QV_BINARY_DIR "/src/cli/quorvex";
  auto run = [&](const std::string& args) {
    const std::string cmd = "cd " + dir_.string() + " && HOME=" + (dir_ / "home").string() +
                            " XDG_CONFIG_HOME= " + quorvex + " --quiet " + args +
                            " >out.txt 2>err.txt </dev/null";
    const int raw = std::system(cmd.c_str());
    return WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
  };
  ASSERT_EQ(run("new shop.qvp --db sqlite:" QV_SHARED_DATA "/sqlite/chinook.sqlite"), 0)
      << Read("err.txt");
  EXPECT_EQ(run("eval shop.qvp '<!--##=DB.Tables.Count##--> tables in <!--##=PROJ.ProjName##-->'"),
            0)
      << Read("err.txt");
  EXPECT_EQ(Read("out.txt"), "11 tables in shop\n");
  EXPECT_EQ(run("eval shop.qvp '<!--##=1+##-->'"), 1);
  EXPECT_EQ(Read("out.txt"), "");
  EXPECT_EQ(Read("err.txt").rfind("VBScript Runtime error \r\n", 0), 0u) << Read("err.txt");
  EXPECT_EQ(run("eval missing.qvp 'x'"), 1);
  EXPECT_NE(Read("err.txt"), "");
}

}  // namespace
}  // namespace qv
