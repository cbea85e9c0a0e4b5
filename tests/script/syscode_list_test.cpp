// The system text from a list of files: translated bodies wrapped as functions with the
// prefix and suffix, the override statement, the dump files, and the failures of the list.
#include "script/script_fixture.h"
#include "vbscript/engine.h"

namespace qv {
namespace {

using SysCodeList = ScriptFixture;

String Page(StringView body) {
  return u"Function qvScriptEngine()\r\n" + String(body) + u"\r\nEnd Function\r\n";
}

TEST_F(SysCodeList, FilesBecomeFunctionsThatUsersOverrideAndTheTextIsDumped) {
  Write("sys/list.xml",
        "<syscode>\n"
        " <file value='title.txt' function='true' id=' Title ' parm=' a, b ' override='True'/>\n"
        " <file value='plain.vbs'/>\n"
        " <file function='true' id='NoFile'/>\n"
        " <note value='ignored.txt'/>\n"
        " <File value='lines.txt' function='1' id='Lines' parm='' multiline='true' indent='yes'/>\n"
        "</syscode>\n");
  Write("sys/title.txt", "<h1><!--##=a##--> & <!--##=b##--></h1>\r\n");
  // In this mode the list replaces the whole system library, the indent variable included.
  Write("sys/plain.vbs", "<!--## Dim qvPlain, qvIndentWrk : qvPlain = 7 ##-->");
  Write("sys/lines.txt", "one\r\ntwo");
  ScriptSettings settings;
  settings.SYSCODE = Path("sys/list.xml");
  settings.SYSCODEPREFIX = Write("prefix.vbs", "' <name> takes <parm>\r\n");
  settings.SYSCODESUFFIX = Write("suffix.vbs", "' end of <name>\r\n");
  settings.USERCODE =
      Write("user.vbs", "Function USER_Title(v) : USER_Title = UCase(v) : End Function");
  Ref<TyScript> script = Start(settings);
  ASSERT_EQ(ProjErr(), "");

  // Only functions that may be overridden count as system functions here.
  EXPECT_TRUE(script->ModuleExist(u"title"));
  EXPECT_FALSE(script->ModuleExist(u"Lines"));
  EXPECT_FALSE(script->ModuleExist(u"LoadCurrent"));

  const std::string title =
      "' Title takes a, b\r\n"
      "Function Title(a, b)\r\n"
      "Title=Title&\"<h1>\"\r\n"
      "Title=Title&a\r\n"
      "Title=Title&\" & \"\r\n"
      "Title=Title&b\r\n"
      "Title=Title&\"</h1>\"\r\n"
      "' end of Title\r\n"
      "\r\n"
      "If SCRPT.UserModuleExist(\"USER_Title\") Then Title=USER_Title(Title)\r\n"
      "End Function\r\n";
  const std::string plain = " Dim qvPlain, qvIndentWrk : qvPlain = 7 \r\n";
  const std::string lines =
      "' Lines takes \r\nFunction Lines()\r\n"
      "Lines=Lines&\"one\"&vbCrLf&qvIndentWrk&\"two\"\r\n"
      "' end of Lines\r\nEnd Function\r\n";
  EXPECT_EQ(Read("out//syscode.txt"), title + plain + lines);

  // The user's function replaces the system function's result.
  EXPECT_EQ(script->BuildNewCode(Page(u"qvIndentWrk = \"  \"\r\n"
                                      u"qvScriptEngine = Title(\"x\", \"y\") & \"|\" & Lines() & "
                                      u"\"|\" & qvPlain"),
                                 0, 1000),
            u"<H1>X & Y</H1>|one\r\n  two|7");
  EXPECT_EQ(ProjErr(), "");
}

TEST_F(SysCodeList, WithoutPrefixOrSuffixTheDumpSaysSo) {
  Write("sys/list.xml", "<s><file value='f.txt' function='true' id='F'/></s>");
  Write("sys/f.txt", "text");
  ScriptSettings settings;
  settings.SYSCODE = Path("sys/list.xml");
  settings.SYSCODEPREFIX = Write("prefix.vbs", "");
  Ref<TyScript> script = Start(settings);
  ASSERT_EQ(ProjErr(), "");
  EXPECT_EQ(Read("out//syscode.txt"), "'missing syscodeprefix or syscodesuffix");
  EXPECT_EQ(script->BuildNewCode(Page(u"qvScriptEngine = F()"), 0, 1000), u"text");
}

TEST_F(SysCodeList, BrokenListsAndFilesEndInTheirWordsAndLeaveTheirText) {
  // Not XML at all.
  ScriptSettings not_xml;
  not_xml.SYSCODE = Write("sys/list.xml", "<syscode><file value='a.txt'>");
  Start(not_xml);
  EXPECT_EQ(ProjErr(), "Load syscode file " + Path("sys/list.xml").ToUtf8() + " failed!");
  Vars().ProjErr = String();

  // A template text the parser refuses: its words, behind the file's name, and the working
  // code with them in the failure dump (the destination and the name joined as they stand).
  Write("sys/list.xml", "<s><file value='ok.vbs'/><file value='open.txt'/></s>");
  Write("sys/ok.vbs", "<!--## Dim qvOk ##-->");
  Write("sys/open.txt", "abc <!--##=x");
  ScriptSettings open_tag;
  open_tag.SYSCODE = Path("sys/list.xml");
  Start(open_tag);
  EXPECT_EQ(ProjErr(), "open.txt: ***Incomplete Block at line 1 column 5! Generation failed!");
  EXPECT_EQ(Read("out/open.txt"), "abc <!--##=x\r\n" + ProjErr());
  Vars().ProjErr = String();

  // Code the engine refuses: that file's code and the text collected so far are dumped.
  Write("sys/list.xml", "<s><file value='ok.vbs'/><file value='bad.vbs'/></s>");
  Write("sys/bad.vbs", "<!--## If x Then ##-->");
  ScriptSettings bad_code;
  bad_code.SYSCODE = Path("sys/list.xml");
  Start(bad_code);
  EXPECT_EQ(ProjErr().rfind("(bad.vbs) : VBScript Syntax Error\r\n", 0), 0u) << ProjErr();
  EXPECT_EQ(Read("out/bad.vbs"), " If x Then \r\n");
  EXPECT_EQ(Read("out/syscode.txt"), " Dim qvOk \r\n If x Then \r\n");
}

TEST_F(SysCodeList, TranslateSysCodeTurnsEveryBlockKindIntoAStatement) {
  Vars().TheLang = MakeRef<TyxLanguage>();
  const String text =
      u"a\"b\r\nc<!--##=Now##--><!--##~Indented##--><!--##@Phrase id##--><!--##$id & 1##-->"
      u"<!--## x = 1 ##-->";
  EXPECT_EQ(TranslateSysCode(text, false, false, u"F"),
            u"F=F&\"a\"\"bc\"\r\nF=F&Now\r\nF=F&LANG.Phrase(\"Phrase id\")\r\n"
            u"F=F&LANG.Phrase(id & 1)\r\n x = 1 \r\n");
  // Kept line ends, with the indent variable behind each; no name gives bare expressions.
  EXPECT_EQ(TranslateSysCode(u"a\r\nb", true, true, u""), u"\"a\"&vbCrLf&qvIndentWrk&\"b\"\r\n");
  EXPECT_EQ(TranslateSysCode(u"", true, true, u"F"), u"");
  EXPECT_EQ(ProjErr(), "");
  EXPECT_EQ(TranslateSysCode(u"x<!--##", true, true, u"F"), u"x<!--##");
  EXPECT_NE(ProjErr(), "");
}

}  // namespace
}  // namespace qv
