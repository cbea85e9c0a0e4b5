// The script host as generation drives it: the built-in setup, page functions with their
// bindings, failures in every form the host reports, the time limit, system functions through
// BuildCode, validation and the user's overrides.
#include <chrono>

#include "automation/error_of.h"
#include "schema/project_loader.h"
#include "script/script_fixture.h"
#include "script/system_library.h"
#include "support/tyx_functions.h"
#include "templates/control.h"
#include "vbscript/engine.h"

namespace qv {
namespace {

using ScriptHost = ScriptFixture;

String Page(StringView body) {
  return u"Function qvScriptEngine()\r\n" + String(body) + u"\r\nEnd Function\r\n";
}

TEST_F(ScriptHost, BuiltInSetupListsEveryProcedureAndRefusesASecondInitialize) {
  Ref<TyScript> script = Start();
  EXPECT_EQ(ProjErr(), "");
  EXPECT_TRUE(script->IsInitialized());
  vbs::Engine& engine = script->engine();
  ASSERT_EQ(engine.ModuleCount(), 4u);
  EXPECT_EQ(engine.ModuleAt(1).Name(), u"System");
  EXPECT_EQ(engine.ModuleAt(2).Name(), u"Validate");
  EXPECT_EQ(engine.ModuleAt(3).Name(), u"$User");
  // Every procedure of the System module counts, the common code's and the start-up's too.
  EXPECT_TRUE(script->ModuleExist(u"LOADCURRENT"));
  EXPECT_TRUE(script->ModuleExist(u"qvsetlocale"));
  EXPECT_TRUE(script->ModuleExist(u"Include_File"));
  EXPECT_FALSE(script->ModuleExist(u""));
  EXPECT_FALSE(script->ModuleExist(u"Nothing_Like_It"));
  // The default user text is a comment: no user functions at all.
  EXPECT_FALSE(script->UserModuleExist(u"USER_Foo"));
  EXPECT_FALSE(script->UserModuleExist(u""));

  const String seen = script->BuildNewCode(
      Page(u"qvScriptEngine = TypeName(PROJ) & TypeName(SCRPT) & TypeName(LANG) & "
           u"TypeName(controls) & TypeName(db) & GetLocale()"),
      0, 1000);
  EXPECT_EQ(ProjErr(), "");
  EXPECT_EQ(seen, u"TyxTyUserScriptTyxLanguageTyxControlsNothing1033");

  // A second Initialize without Reset: the engine refuses the objects it holds already, and
  // the host keeps working as it was.
  EXPECT_EQ(ErrorOf([&] {
              script->Initialize(Ref<Object>(tyx_.get()), nullptr, MakeRef<TyxControls>(),
                                 MakeRef<TyxLanguage>());
            }),
            kErrKeyExists);
  EXPECT_EQ(script->BuildNewCode(Page(u"qvScriptEngine = 40 + 2"), 0, 1000), u"42");

  script->Reset();
  EXPECT_FALSE(script->IsInitialized());
  script->Initialize(Ref<Object>(tyx_.get()), nullptr, MakeRef<TyxControls>(),
                     MakeRef<TyxLanguage>());
  EXPECT_EQ(ProjErr(), "");
  EXPECT_EQ(script->BuildNewCode(Page(u"qvScriptEngine = \"again\""), 0, 1000), u"again");
}

TEST_F(ScriptHost, PageFunctionsBindTheCurrentObjectsAndReportFailuresInTheRunTimeForm) {
  const String chinook = String::FromUtf8(QV_SHARED_DATA "/sqlite/chinook.sqlite");
  LoadDbRequest request;
  request.db_name = u"chinook";
  request.db_type = u"CONNECTIONSTRING";
  request.conn_str = u"Provider=SQLite;Data Source=" + chinook;
  LoadDB(*tyx_, request);
  ASSERT_EQ(ProjErr(), "");
  Ref<TyxControls> controls = MakeRef<TyxControls>();
  Ref<TyxControl> control = MakeRef<TyxControl>();
  control->CtrlID = u"list";
  controls->AddControl(*control);
  controls->Item(1);
  Ref<TyScript> script = MakeRef<TyScript>(ScriptSettings{});
  script->Initialize(Ref<Object>(tyx_.get()), Ref<Object>(tyx_->db().get()), controls,
                     MakeRef<TyxLanguage>());
  ASSERT_EQ(ProjErr(), "");

  // bInitType 2 binds the control, the table and the field the collections point at.
  EXPECT_EQ(script->BuildNewCode(Page(u"db.Tables(\"Album\").Fields(\"Title\")\r\n"
                                      u"qvScriptEngine = \"x\""),
                                 0, 1000),
            u"x");
  EXPECT_EQ(
      script->BuildNewCode(
          Page(u"qvScriptEngine = CTRL.CtrlID & \":\" & TABLE.TblName & \".\" & FIELD.FldName"), 2,
          1000),
      u"list:Album.Title");
  // bInitType 1 binds the control alone; 0 leaves all three as the last page left them.
  EXPECT_EQ(script->BuildNewCode(Page(u"qvScriptEngine = CTRL.CtrlID"), 1, 1000), u"list");
  EXPECT_EQ(script->BuildNewCode(Page(u"qvScriptEngine = FIELD.FldName"), 0, 1000), u"Title");
  EXPECT_EQ(ProjErr(), "");

  // A syntax error is reported in the run-time form, which replaces the syntax form.
  EXPECT_EQ(
      script->BuildNewCode(u"Function qvScriptEngine()\r\nIf 1 Then\r\nEnd Function\r\n", 0, 1000),
      u"");
  EXPECT_EQ(ProjErr().rfind("VBScript Runtime error \r\n", 0), 0u) << ProjErr();
  EXPECT_EQ(ProjErr().find("Syntax"), std::string::npos);
  Vars().ProjErr = String();

  EXPECT_EQ(script->BuildNewCode(Page(u"x = 1\r\nqvScriptEngine = x / 0"), 0, 1000), u"");
  EXPECT_EQ(ProjErr(), "VBScript Runtime error \r\nDivision by zero\r\nqvScriptEngine = x / 0\r\n");
  Vars().ProjErr = String();

  // A function that never ends is stopped by the time limit; the host stays usable.
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(script->BuildNewCode(Page(u"Do\r\nLoop"), 0, 200), u"");
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
  EXPECT_EQ(ProjErr().rfind("VBScript Runtime error \r\n", 0), 0u);
  Vars().ProjErr = String();
  EXPECT_EQ(script->BuildNewCode(Page(u"qvScriptEngine = Null"), 0, 200), u"");
  EXPECT_EQ(script->BuildNewCode(Page(u"Set qvScriptEngine = PROJ"), 0, 200), u"");
  EXPECT_EQ(ProjErr(), "");
}

TEST_F(ScriptHost, BuildCodeRunsSystemFunctionsAndRaisesWithTheTableAndFieldOfTheMoment) {
  const String chinook = String::FromUtf8(QV_SHARED_DATA "/sqlite/chinook.sqlite");
  LoadDbRequest request;
  request.db_name = u"chinook";
  request.db_type = u"CONNECTIONSTRING";
  request.conn_str = u"Provider=SQLite;Data Source=" + chinook;
  LoadDB(*tyx_, request);
  ScriptSettings settings;
  settings.COMMONCODE =
      Write("common.vbs", BuildCommonCode().ToUtf8() +
                              "Dim runs\r\n"
                              "Function IsAlbum() : runs = runs + 1 : "
                              "IsAlbum = (TABLE.TblName = \"Album\") : End Function\r\n"
                              "Function Broken() : Broken = 1 / 0 : End Function\r\n");
  Ref<TyScript> script = MakeRef<TyScript>(settings);
  script->Initialize(Ref<Object>(tyx_.get()), Ref<Object>(tyx_->db().get()), MakeRef<TyxControls>(),
                     MakeRef<TyxLanguage>());
  ASSERT_EQ(ProjErr(), "");
  script->BuildNewCode(Page(u"db.Tables(\"Album\").Fields(\"Title\")"), 0, 1000);
  script->BuildNewCode(Page(u""), 2, 1000);

  EXPECT_TRUE(ToBool(script->BuildCode(u"isalbum", Variant(u"kept"))));
  // No such system function: the value given comes back and nothing runs.
  EXPECT_EQ(ToString(script->BuildCode(u"NoSuch", Variant(u"kept"))), u"kept");

  EXPECT_EQ(ErrorOf([&] { script->BuildCode(u"Broken", Variant()); }), kErrObjectRequired);
  EXPECT_EQ(ProjErr(),
            "Quorvex: VBScript Runtime error in module \"Broken\"\r\nDivision by zero\r\n"
            "Function Broken() : Broken = 1 / 0 : End Function\r\n"
            "Please check setting for Table \"Album\" Field \"Title\"");
  // With ProjErr standing nothing runs.
  EXPECT_EQ(ToString(script->BuildCode(u"IsAlbum", Variant(u"kept"))), u"kept");
  Vars().ProjErr = String();
  EXPECT_EQ(ToString(script->engine().ModuleAt(1).Eval(u"runs")), u"1");

  // Without a table of the moment the report names none.
  script->Reset();
  script->Initialize(Ref<Object>(tyx_.get()), nullptr, MakeRef<TyxControls>(),
                     MakeRef<TyxLanguage>());
  EXPECT_EQ(ErrorOf([&] { script->BuildCode(u"Broken", Variant()); }), kErrObjectRequired);
  EXPECT_EQ(ProjErr().rfind("Quorvex: VBScript Runtime error in module \"Broken\"\r\n", 0), 0u);
  EXPECT_EQ(ProjErr().find("Please check"), std::string::npos) << ProjErr();
}

TEST_F(ScriptHost, ValidationRunsInOrderAndStopsAtTheFirstFailure) {
  Write("v/list.xml",
        "<validate><file value='a.vbs'/><file/><file value='b.vbs'/><FILE value='c.vbs'/>"
        "</validate>");
  Write("v/a.vbs", "Dim ran\r\nFunction V1() : ran = ran & \"1\" : V1 = True : End Function\r\n");
  Write("v/b.vbs",
        "Function V2() : ran = ran & \"2\" : V2 = (PROJ.ProjName = \"ok\") : End Function\r\n");
  Write("v/c.vbs", "Function V3() : ran = ran & \"3\" : V3 = 1 / 0 : End Function\r\n");
  ScriptSettings settings;
  settings.VALIDATECODE = Path("v/list.xml");
  Ref<TyScript> script = Start(settings);
  ASSERT_EQ(ProjErr(), "");
  // The list's texts, each behind a line end, in the dump file.
  EXPECT_EQ(Read("out/validatecode.txt"),
            "\r\n" + Read("v/a.vbs") + "\r\n" + Read("v/b.vbs") + "\r\n" + Read("v/c.vbs"));
  vbs::ScriptModule& validate = script->engine().ModuleAt(2);

  // False with ProjErr empty: the words name the function and leave the details empty.
  EXPECT_FALSE(script->Validate());
  EXPECT_EQ(ProjErr(), "Quorvex: Validation VBScript Runtime error in module \"V2\"\r\n\r\n\r\n");
  EXPECT_EQ(ToString(validate.Eval(u"ran")), u"12");
  // With ProjErr standing nothing runs.
  EXPECT_FALSE(script->Validate());
  EXPECT_EQ(ToString(validate.Eval(u"ran")), u"12");

  Vars().ProjErr = String();
  tyx_->SetProjName(u"ok");
  EXPECT_FALSE(script->Validate());
  EXPECT_EQ(ProjErr(),
            "Quorvex: Validation VBScript Runtime error in module \"V3\"\r\nDivision by zero\r\n"
            "Function V3() : ran = ran & \"3\" : V3 = 1 / 0 : End Function\r\n");

  // A function that says why itself keeps its words.
  Vars().ProjErr = String();
  validate.AddCode(u"Function V3() : PROJ.ProjErr = \"mine\" : V3 = False : End Function");
  EXPECT_FALSE(script->Validate());
  EXPECT_EQ(ProjErr(), "mine");
}

TEST_F(ScriptHost, BuiltInValidationNamesWhatTheProjectLacks) {
  Ref<TyScript> script = Start();
  tyx_->SetDestination(u"");
  EXPECT_FALSE(script->Validate());
  EXPECT_NE(ProjErr().find("destination folder"), std::string::npos) << ProjErr();
  Vars().ProjErr = String();
  tyx_->SetDestination(u"/srv/www/app");
  tyx_->SetTemplate(u"");
  EXPECT_FALSE(script->Validate());
  EXPECT_NE(ProjErr().find("template package"), std::string::npos) << ProjErr();
  Vars().ProjErr = String();
  tyx_->SetTemplate(u"templates/default.zip");
  EXPECT_FALSE(script->Validate());  // no database, so no table to generate
  EXPECT_NE(ProjErr().find("No table to generate"), std::string::npos) << ProjErr();
}

TEST_F(ScriptHost, BrokenOrMissingTextsEndInTheirOwnWords) {
  // A broken validation text leaves Initialize as an exception, with the syntax words.
  Write("v/list.xml", "<v><file value='bad.vbs'/></v>");
  Write("v/bad.vbs", "Function V()\r\nIf True Then\r\nEnd Function\r\n");
  ScriptSettings broken_validation;
  broken_validation.VALIDATECODE = Path("v/list.xml");
  EXPECT_NE(ErrorOf([&] { Start(broken_validation); }), 0);
  EXPECT_EQ(ProjErr().rfind("(bad.vbs) : VBScript Syntax Error\r\n", 0), 0u) << ProjErr();
  Vars().ProjErr = String();

  ScriptSettings not_xml;
  not_xml.VALIDATECODE = Write("v/not.xml", "this is no XML");
  Start(not_xml);
  EXPECT_EQ(ProjErr(), "Load validate file " + Path("v/not.xml").ToUtf8() + " failed!");
  Vars().ProjErr = String();

  // A broken common code is reported under the product's name.
  ScriptSettings broken_common;
  broken_common.COMMONCODE = Write("common.vbs", "Sub X(\r\n");
  Start(broken_common);
  EXPECT_EQ(ProjErr(),
            "Quorvex : VBScript Syntax Error\r\nExpected identifier\r\nIn line 1: \r\nSub X(");
  Vars().ProjErr = String();

  // A broken user text is reported under its path; the System module doesn't get it.
  ScriptSettings broken_user;
  broken_user.USERCODE = Write("user.vbs", "Function USER_A(v)\r\nUSER_A = (v\r\nEnd Function\r\n");
  Ref<TyScript> script = Start(broken_user);
  EXPECT_EQ(ProjErr().rfind("(" + Path("user.vbs").ToUtf8() + ") : VBScript Syntax Error\r\n", 0),
            0u)
      << ProjErr();
  EXPECT_NE(ProjErr().find("In line 2: \r\nUSER_A = (v"), std::string::npos) << ProjErr();
  EXPECT_FALSE(script->UserModuleExist(u"USER_A"));
  Vars().ProjErr = String();

  // A missing user file is told to the user and loads as nothing; the run goes on.
  ScriptSettings missing_user;
  missing_user.USERCODE = Path("nowhere.vbs");
  Start(missing_user);
  EXPECT_EQ(ProjErr(), "");
  EXPECT_NE(Messages().find("Quorvex: Script file " + Path("nowhere.vbs").ToUtf8() +
                            " not found! Content not loaded!"),
            std::string::npos)
      << Messages();
}

TEST_F(ScriptHost, UserFunctionsOverrideThroughScrptAndAddUserCodeAddsMore) {
  ScriptSettings settings;
  settings.USERCODE =
      Write("user.vbs", "Function USER_Foo(v)\nUSER_Foo = \"[\" & v & \"]\"\nEnd Function\n");
  Ref<TyScript> script = Start(settings);
  ASSERT_EQ(ProjErr(), "");
  EXPECT_TRUE(script->UserModuleExist(u"user_foo"));
  EXPECT_FALSE(script->ModuleExist(u"USER_Foo"));
  // User functions run from page code (they are in the System module too) and SCRPT knows them.
  EXPECT_EQ(script->BuildNewCode(Page(u"qvScriptEngine = SCRPT.UserModuleExist(\"USER_FOO\") & "
                                      u"USER_Foo(1) & SCRPT.UserModuleExist(\"USER_Bar\")"),
                                 0, 1000),
            u"True[1]False");

  script->AddUserCode(Write("more.vbs", "Function USER_Bar(v) : USER_Bar = v & v : End Function"));
  EXPECT_EQ(ProjErr(), "");
  EXPECT_TRUE(script->UserModuleExist(u"USER_Bar"));
  EXPECT_EQ(script->BuildNewCode(Page(u"qvScriptEngine = USER_Bar(\"ab\") & "
                                      u"SCRPT.UserModuleExist(\"USER_Bar\")"),
                                 0, 1000),
            u"ababTrue");
  script->AddUserCode(Write("broken.vbs", "Function (\r\n"));
  EXPECT_EQ(ProjErr().rfind("(" + Path("broken.vbs").ToUtf8() + ") : VBScript Syntax Error", 0),
            0u);
}

TEST_F(ScriptHost, LibraryHelpersQuoteAndClassifyAsTheEngineDoes) {
  Ref<TyScript> script = Start();
  vbs::ScriptModule& system = script->engine().ModuleAt(1);
  auto eval = [&](StringView expression) { return ToString(system.Eval(expression)); };
  EXPECT_EQ(eval(u"qvQuoteVBS(\"say \"\"hi\"\"\" & vbCrLf & \"x\")"),
            u"\"say \"\"hi\"\"\" & vbCrLf & \"x\"");
  EXPECT_EQ(eval(u"Eval(qvQuoteVBS(\"a\"\"\" & vbCrLf & \"b\"))"), u"a\"\r\nb");
  EXPECT_EQ(eval(u"qvHtmlEncode(\"<a href=\"\"x\"\">&</a>\")"),
            u"&lt;a href=&quot;x&quot;&gt;&amp;&lt;/a&gt;");
  EXPECT_EQ(eval(u"qvHtmlEncode(Null) & qvQuoteSQL(Null) & qvQuoteSQL(\"O'Brien\")"),
            u"NULL'O''Brien'");
  EXPECT_EQ(eval(u"qvQuoteJS(\"a\"\"\\</script>\" & vbLf)"), u"\"a\\\"\\\\<\\/script>\\n\"");
  EXPECT_EQ(eval(u"Include_File(\"inc/db.asp\", \"\") & Include_File(\"/x.asp\", \" Virtual \")"),
            u"<!--#include file=\"inc/db.asp\"-->\r\n<!--#include virtual=\"/x.asp\"-->\r\n");
  EXPECT_EQ(eval(u"qvIndentLines(\"a\" & vbCrLf & \"b\")"), u"a\r\nb");
  // Page functions set the indent without declaring it; the library's declaration is what
  // makes it reach the helpers.
  EXPECT_EQ(script->BuildNewCode(u"Function qvScriptEngine()\r\nqvIndentWrk = \"  \"\r\n"
                                 u"qvScriptEngine = qvIndentLines(\"a\" & vbCrLf & \"b\")\r\n"
                                 u"End Function\r\n",
                                 0, 1000),
            u"a\r\n  b");

  // The four flags follow the database kind, and the name quoting follows them.
  const std::pair<int32_t, StringView> kinds[] = {
      {1, u"[a]]b]"}, {2, u"[a]]b]"}, {3, u"`a]b`"}, {4, u"\"a]b\""}, {5, u"\"a]b\""}};
  for (const auto& [kind, quoted] : kinds) {
    script->SetDatabaseKind(kind);
    EXPECT_EQ(eval(u"-qvDbAccess - 2*qvDbSqlServer - 3*qvDbMySql - 4*qvDbOracle"),
              kind == 5 ? u"0" : ToString(Variant(kind)));
    EXPECT_EQ(eval(u"qvQuoteSQLName(\"a]b\")"), quoted);
  }

  // The script's type classes are the engine's, for every type number.
  for (int32_t type = 0; type <= 205; ++type) {
    const Variant arg(type);
    Variant args[] = {arg};
    EXPECT_EQ(ToLong(system.Run(u"qvFieldTypeClass", args)), FieldTypeClass(type)) << type;
  }
}

}  // namespace
}  // namespace qv
