// Control execution over the Chinook database: which pages come out for which tables and
// fields, the order and names of the output tree, check mode, and how a run ends on a script
// error, a cancel, a missing script or copy source, and a name that leaves the destination.
#include "generation/run_controls.h"

#include <csignal>
#include <filesystem>

#include "generation/output_test_support.h"
#include "generation/page_runs.h"
#include "generation/run_state.h"
#include "schema/project_loader.h"

namespace qv {
namespace {

constexpr const char* kControls = R"(<QuorvexControl date="d" version="5.3" desc="t" author="a">
  <control id="list" type="table" ofile="list" oext="*"/>
  <control id="rpt" type="report" ofile="rpt" oext="*"/>
  <control id="edit" type="table" ofile="edit" oext="*" ofolder="\edit\" space="false"/>
  <control id="fld" type="field" ofile="fld" oext="*" tagext="f"/>
  <control id="home" type="other" ofile="default" oext="*"/>
  <control id="cfg" type="simple" ofile="web" oext="config"/>
  <control id="img" type="copy" ifiles="images/logo.gif,notes.txt" ofolder="~/static"/>
  <control id="js" type="copy" ifolder="js"/>
</QuorvexControl>)";

class RunControlsTest : public testing::OutputTest {
 protected:
  void SetUp() override {
    OutputTest::SetUp();
    LoadDbRequest request;
    request.db_type = u"CONNECTIONSTRING";
    request.conn_str = u"Provider=SQLite;Data Source=" + Chinook();
    LoadDB(*tyx_, request);
    ASSERT_EQ(Vars().ProjErr, u"");
    tyx_->SetOutputNameExt(u"_");
    tyx_->SetUploadPath(u"~upload/");
    tyx_->SetAuditTrailPath(u"audit/");
    Vars().TemplateFolder = scratch_.Path("template");
    Vars().TempFolder = scratch_.Path("temp");
    scratch_.Write("template/images/logo.gif", "GIF89a");
    scratch_.Write("template/notes.txt", "notes");
    scratch_.Write("template/js/app.js", "alert(1)");
    scratch_.Write("template/js/lib/x.js", "x");
    Script("list", "\"<html><head></head>\" & vbCrLf & vbCrLf & \"list of \" & TABLE.TblName");
    Script("rpt", "\"report\"");
    Script("edit", "vbCrLf & \"  edit \" & TABLE.TblName & vbCrLf & vbCrLf");
    Script("fldf", "FIELD.FldName");
    Script("home", "\"<head></head>home\"");
    Script("cfg", "\"<config/>\"");
    Ref<TyxControls> controls = MakeRef<TyxControls>();
    ASSERT_TRUE(controls->LoadControls(scratch_.Write("template/control.xml", kControls)));
    SetRunControlList(controls);
    StartScript();
    // Album gets everything, Artist only its list page, every other table nothing.
    TyxTables& tables = Tables();
    for (int16_t seq = 1; seq <= tables.Count(); ++seq)
      tables.Seq(seq)->SetTblGen(false);
    Table(u"Album").SetTblGen(true);
    Table(u"Artist").SetTblSysGenUnits(u"list,rpt");
  }

  static String Chinook() {
    return String::FromUtf8(std::string(QV_SHARED_DATA) + "/sqlite/chinook.sqlite");
  }
  void Script(const char* id, const std::string& expression) {
    scratch_.Write(
        std::string("temp/") + id + ".tmp",
        "Function qvScriptEngine()\r\nqvScriptEngine = " + expression + "\r\nEnd Function\r\n");
  }
  TyxTables& Tables() { return tyx_->db()->Tables(); }
  TyxTable& Table(StringView name) { return *Tables().Item(Variant(String(name))); }
};

TEST_F(RunControlsTest, WritesTheTreeInOrderAndCheckModeFindsIt) {
  EXPECT_EQ(RunControls(*tyx_, true), 0);  // nothing there yet, and nothing written
  EXPECT_FALSE(OutExists(""));

  EXPECT_EQ(RunControls(*tyx_, false), 0);
  ASSERT_EQ(Vars().ProjErr, u"");
  // What each kind of page holds, and the copies, are the `quorvex generate` test's; here,
  // which pages each table gets.
  EXPECT_TRUE(OutExists("Album_list.asp"));
  EXPECT_TRUE(OutExists("Artist_list.asp"));
  EXPECT_TRUE(OutExists("edit/Album_edit.asp"));
  EXPECT_FALSE(OutExists("Artist_edit.asp"));  // not among Artist's system pages
  EXPECT_FALSE(OutExists("Album_rpt.asp"));    // report controls are for reports only
  EXPECT_FALSE(OutExists("Genre_list.asp"));
  // A field page per generated field of Album, none for Artist, whose TblGen is off.
  EXPECT_EQ(Out("Album_AlbumId_fld.asp"), "AlbumId\r\n");
  EXPECT_FALSE(OutExists("Artist_ArtistId_fld.asp"));
  EXPECT_TRUE(OutExists("static/notes.txt"));
  EXPECT_TRUE(OutExists("js/lib/x.js"));
  EXPECT_TRUE(OutExists("audit"));
  EXPECT_EQ(Vars().PagesTotal, 3);
  EXPECT_EQ(Vars().PagesDone, 3);
  EXPECT_EQ(Vars().FilesWritten, 3 + 3 + 2 + 1);  // table, field, other and simple pages, css
  EXPECT_EQ(Vars().FilesSkipped, 0);
  EXPECT_EQ(tyx_->CurTable.get(), nullptr);

  // A check stops at the first table with a page that exists: the database copy, then
  // Album's two pages.
  EXPECT_EQ(RunControls(*tyx_, true), 3);

  // With OtherGen off only table and field pages come out.
  std::filesystem::remove_all(scratch_.path() / "site");
  tyx_->SetOtherGen(false);
  EXPECT_EQ(RunControls(*tyx_, false), 0);
  EXPECT_TRUE(OutExists("Album_list.asp"));
  EXPECT_FALSE(OutExists("default.asp"));
  EXPECT_FALSE(OutExists("chinook.sqlite"));
  EXPECT_FALSE(OutExists("js"));
}

TEST_F(RunControlsTest, TablesLoseWhatTheyCannotHave) {
  TyxTable& genre = Table(u"Genre");
  genre.SetTblGen(true);
  genre.SetTblKey(u"");
  genre.SetTblEdit(true);
  genre.SetTblAdd(true);
  genre.SetTblView(true);
  Table(u"Album").Fields().Item(Variant(String(u"Title")))->SetFldHtmlTag(u"FILE");
  TyxTable& artist = Table(u"Artist");
  artist.SetTblGen(true);
  artist.SetTblCustomError(u"broken");
  artist.SetTblSysGenUnits(u"");
  ASSERT_EQ(RunControls(*tyx_, false), 0);
  // Without a key the record pages are switched off in the project; a broken custom view
  // loses TblGen for good.
  EXPECT_FALSE(genre.TblEdit());
  EXPECT_FALSE(genre.TblAdd());
  EXPECT_FALSE(genre.TblView());
  EXPECT_TRUE(genre.TblGen());
  EXPECT_TRUE(Table(u"Album").TblBlob());
  EXPECT_FALSE(artist.TblGen());
  EXPECT_FALSE(OutExists("Artist_list.asp"));
  EXPECT_TRUE(OutExists("Genre_list.asp"));

  // A report gets report controls only.
  TyxTable& album = Table(u"Album");
  album.SetTblType(u"REPORT");
  std::filesystem::remove_all(scratch_.path() / "site");
  ASSERT_EQ(RunControls(*tyx_, false), 0);
  EXPECT_TRUE(OutExists("Album_rpt.asp"));
  EXPECT_FALSE(OutExists("Album_list.asp"));
}

TEST_F(RunControlsTest, FailuresStopTheRunAndKeepWhatWasWritten) {
  // A script error: the prefix names table and control, the page is still written.
  Script("list", "1 / 0");
  RunControls(*tyx_, false);
  EXPECT_TRUE(
      Vars().ProjErr.view().starts_with(u"Quorvex: Generate Table Album list page "
                                        u"error\r\nVBScript Runtime error \r\nDivision by zero"))
      << Vars().ProjErr.ToUtf8();
  EXPECT_EQ(Out("Album_list.asp"), "");
  EXPECT_FALSE(OutExists("Artist_list.asp"));

  // A field page error names the field.
  Script("list", "\"ok\"");
  Script("fldf", "FIELD.NoSuchMember");
  Vars().ProjErr.Clear();
  RunControls(*tyx_, false);
  EXPECT_TRUE(Vars().ProjErr.view().starts_with(
      u"Quorvex: Generate Table Album Field AlbumId page error\r\n"))
      << Vars().ProjErr.ToUtf8();
  EXPECT_EQ(Out("Album_list.asp"), "ok\r\n");

  // A missing stored script is a hard failure.
  Script("fldf", "\"f\"");
  std::filesystem::remove(scratch_.path() / "temp/home.tmp");
  Vars().ProjErr.Clear();
  try {
    RunControls(*tyx_, false);
    ADD_FAILURE() << "no failure";
  } catch (const Error& e) {
    EXPECT_EQ(e.number(), -1);
    EXPECT_EQ(e.description(),
              u"File " + scratch_.Path("temp/home.tmp") + u" not found. Generation aborted.");
  }
  EXPECT_EQ(Out("Album_AlbumId_fld.asp"), "f\r\n");

  // A missing copy source.
  Script("home", "\"h\"");
  std::filesystem::remove(scratch_.path() / "template/notes.txt");
  Vars().ProjErr.Clear();
  RunControls(*tyx_, false);
  EXPECT_EQ(Vars().ProjErr,
            u"Quorvex: Source file does not exist - \"notes.txt\"! Check if correct template.");

  // A name that would leave the destination is refused before anything is written there.
  Vars().ProjErr.Clear();
  Table(u"Album").SetTblVar(u"../../escape");
  RunControls(*tyx_, false);
  EXPECT_NE(Vars().ProjErr.view().find(u"lies outside the folder"), StringView::npos);
  EXPECT_FALSE(std::filesystem::exists(scratch_.path().parent_path() / "escape_list.asp"));
}

TEST_F(RunControlsTest, CancelTakesEffectBeforeTheNextTablePage) {
  SharedStatus().ShowStatus3(Variant(0), Variant(String(u"run")));
  std::raise(SIGINT);
  try {
    RunControls(*tyx_, false);
    ADD_FAILURE() << "no cancel";
  } catch (const Error& e) {
    EXPECT_EQ(e.number(), -1);
    EXPECT_EQ(e.description(), u"Generation cancelled by user!");
  }
  SharedStatus().ClearCancel();
  EXPECT_EQ(Vars().ProjErr, u"Generation cancelled by user!");
  EXPECT_FALSE(OutExists("Album_list.asp"));
  EXPECT_TRUE(OutExists("chinook.sqlite"));  // the database comes before any page
}

TEST_F(RunControlsTest, ResetRunStateSetsTheDatabaseKind) {
  const auto flags = [] {
    return CurrentScript()->BuildNewCode(
        u"Function qvScriptEngine()\r\nqvScriptEngine = CStr(qvDbAccess) & CStr(qvDbSqlServer) & "
        u"CStr(qvDbMySql) & CStr(qvDbOracle)\r\nEnd Function",
        0, 0);
  };
  Vars().OverwriteChoice = u"C";
  ResetRunState(*tyx_);  // SQLite is none of the four
  EXPECT_EQ(Vars().OverwriteChoice, u"");
  EXPECT_EQ(flags(), u"FalseFalseFalseFalse");
  const std::pair<const char16_t*, const char16_t*> kinds[] = {
      {u"ACCESS", u"TrueFalseFalseFalse"},
      {u"Microsoft SQL Server", u"FalseTrueFalseFalse"},
      {u"MySQL", u"FalseFalseTrueFalse"},
      {u"ORACLE", u"FalseFalseFalseTrue"}};
  for (const auto& [name, expected] : kinds) {
    tyx_->db()->SetDBDBMSName(name);
    ResetRunState(*tyx_);
    EXPECT_EQ(flags(), expected) << String(name).ToUtf8();
  }
  Vars().OverwritePreset = u"S";
  ResetRunState(*tyx_);
  EXPECT_EQ(Vars().OverwriteChoice, u"S");
}

}  // namespace
}  // namespace qv
