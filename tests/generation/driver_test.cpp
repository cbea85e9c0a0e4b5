// Whole runs of GenScript and GenCheck through the root's object interface, from a package the
// test zips to the stored scripts and cache.xml, and every way a run can end early.
#include "generation/driver.h"

#include <gtest/gtest.h>

#include <csignal>
#include <map>

#include "automation/convert.h"
#include "generation/cache.h"
#include "generation/run_state.h"
#include "generation_fixture.h"
#include "model/table.h"
#include "package_builder.h"
#include "platform/fs.h"
#include "root/create_tyx.h"
#include "script/script_host.h"
#include "support/common.h"

namespace qv {
namespace {

namespace sfs = std::filesystem;
using Files = std::map<std::string, std::string>;

// The pinned test package: a control without sessions that uses every kind of tag, one with
// every kind of session, and a copy control that translation passes over.
Files BasicPackage() {
  return {
      {"control.xml",
       "<?xml version=\"1.0\"?>\r\n"
       "<QuorvexControl date=\"2026/11/25\" version=\"5.3\" desc=\"Test\" author=\"Tests\">\r\n"
       "  <control id=\"list\" type=\"table\" ifiles=\"list.htm\" ofile=\"list\" oext=\"*\"/>\r\n"
       "  <control id=\"page\" type=\"table\" ifiles=\"page.htm\" tagext=\"_x\" ofile=\"p\">\r\n"
       "    <session type=\"key\" value=\"head\"/>\r\n"
       "    <session type=\"key\" value=\"body\" ifile=\"body.htm\" "
       "cond=\"proj/UseCss/eq/True\"/>\r\n"
       "    <session type=\"key\" value=\"never\" cond=\"proj/UseCss/eq/False\"/>\r\n"
       "    <session type=\"repeat\" value=\"again\"/>\r\n"
       "    <session type=\"include\" value=\"footer.htm\" parm=\"foot\"/>\r\n"
       "  </control>\r\n"
       "  <control id=\"css\" type=\"copy\" ifiles=\"style.css\"/>\r\n"
       "</QuorvexControl>\r\n"},
      {"list.htm",
       "<html>\"q\"\n<!--##=TABLE.TblName##--><!--##=Foo.Bar##-->\n"
       "<!--## If True Then ##-->x<!--## End If ##-->\n"
       "<!--##@Title##--> <!--##$\"Dyn\"##-->\n\t<!--##~Indent##-->\n"},
      {"page.htm",
       "<!--##session head##-->Head <!--##=1##--><!--##/session##-->\r\n"
       "<!--##session never##-->Never<!--##/session##-->\r\n"},
      {"body.htm", "<!--##session body##-->Body<!--##/session##-->"},
      {"lang.xml",
       "<quorvex.language><phrase id=\"Title\" value='Say \"hi\"'/></quorvex.language>"},
      {"style.css", "body {}"},
      {"sub/footer.htm", "<!--##session foot##-->Foot<!--##/session##-->"},
  };
}

constexpr const char* kListScript =
    "Function qvScriptEngine()\r\n"
    "On Error Resume Next\r\n"
    "Dim qvAr(7)\r\n"
    "Dim qvOut\r\n"
    "qvAr(1) = \"<html>\"\"q\"\"\"&vbCrLf&\"\"\r\n"
    "qvAr(2) = \"\"&vbCrLf&\"\"\r\n"
    "qvAr(3) = \"x\"\r\n"
    "qvAr(4) = \"\"&vbCrLf&\"\"\r\n"
    "qvAr(5) = \" \"\r\n"
    "qvAr(6) = \"\"&vbCrLf&\"\t\"\r\n"
    "qvAr(7) = \"\"&vbCrLf&\"\"\r\n"
    "qvOut = qvOut & qvAr(1) & TABLE.TblName & USER_Foo_Bar(Foo.Bar) & qvAr(2)\r\n"
    " If True Then \r\n"
    "qvOut = qvOut & qvAr(3)\r\n"
    " End If \r\n"
    "qvOut = qvOut & qvAr(4) & \"Say \"\"hi\"\"\" & qvAr(5) & LANG.Phrase(\"Dyn\") & qvAr(6)\r\n"
    "qvIndentWrk = \"\t\"\r\n"
    "qvOut = qvOut & Indent & qvAr(7)\r\n"
    "qvScriptEngine = qvOut\r\n"
    "End Function\r\n";

constexpr const char* kPageScript =
    "Function qvScriptEngine()\r\n"
    "On Error Resume Next\r\n"
    "Dim qvAr(4)\r\n"
    "Dim qvOut\r\n"
    "qvAr(1) = \"Head \"\r\n"
    "qvAr(2) = \"Body\"\r\n"
    "qvAr(3) = \"Body\"\r\n"
    "qvAr(4) = \"\"&vbCrLf&\"\"\r\n"
    "qvOut = qvOut & qvAr(1) & 1 & qvAr(2) & qvAr(3) & Include_File(\"footer.htm\",\"foot\") & "
    "qvAr(4)\r\n"
    "qvScriptEngine = qvOut\r\n"
    "End Function\r\n";

class DriverTest : public testing::GenerationFixture {
 protected:
  void SetUp() override {
    GenerationFixture::SetUp();
    Write(root() / "usercode.vbs",
          "Function USER_Foo_Bar(x)\r\nUSER_Foo_Bar = x\r\nEnd Function\r\n");
    WriteUserSettings("Language = \"English\"\nBackupFile = \"True\"\nUSERCODE = \"" +
                      (root() / "usercode.vbs").string() +
                      "\"\nScriptEngineTimeout = dword:5000\n");
    tyx_ = CreateTyx();
    tyx_->Databases().Add(u"shop");
    tyx_->CurrentDbName = u"shop";
    tyx_->db()->Tables().Add(u"Orders");
    Ref<TyxTable> orders = tyx_->db()->Tables().Item(Variant(u"Orders"));
    orders->SetTblType(u"TABLE");
    orders->SetTblGen(true);
    orders->Fields().Add(u"Total");
    tyx_->SetUseCss(true);
    tyx_->SetDestination(String::FromUtf8((root() / "site").string()));
    Pack(BasicPackage());
    tyx_->SetTemplate(String::FromUtf8(Package().string()));
  }
  void TearDown() override {
    tyx_.reset();
    GenerationFixture::TearDown();
  }

  sfs::path Package() const { return root() / "packs" / "Basic Pack.zip"; }
  sfs::path Work() const { return documents() / "Quorvex" / "Templates" / "BasicPack.zip"; }
  sfs::path Script() const { return Work() / "Script"; }
  sfs::path Temp() const { return Work() / "temp"; }

  // Zips the files into the package, with a file time that differs from the last one.
  void Pack(const Files& files, const sfs::path& zip = {}) {
    std::vector<testing::ZipEntry> entries;
    for (const auto& [name, text] : files)
      entries.push_back({name, text});
    const sfs::path file = zip.empty() ? Package() : zip;
    sfs::create_directories(file.parent_path());
    testing::WriteZip(file.string(), entries);
    Age(file, -3600 + static_cast<int>(++packs_));
  }
  void Run() { tyx_->Call(u"GenScript"); }
  std::string ProjErr() const { return Vars().ProjErr.ToUtf8(); }
  // The words of the hard failure that the run raised ("" when it didn't).
  std::string HardFailure() {
    try {
      Run();
    } catch (const Error& e) {
      EXPECT_EQ(e.number(), -1);
      EXPECT_EQ(e.description(), Vars().ProjErr);
      return e.description().ToUtf8();
    }
    return "";
  }
  static std::string Entry(const char* group, const std::string& key, const sfs::path& file) {
    const String path = String::FromUtf8(file.string());
    return "<CacheEntry Group=\"" + std::string(group) + "\" Key=\"" + key + "\" DateTime=\"" +
           DateStamp(Variant::Date(fs::DateLastModified(path))).ToUtf8() + "\" Size=\"" +
           std::to_string(sfs::file_size(file)) + "\" />\r\n";
  }

  Ref<Tyx> tyx_;
  int packs_ = 0;
};

TEST_F(DriverTest, FromPackageToStoredScripts) {
  Run();
  ASSERT_EQ(ProjErr(), "");
  EXPECT_EQ(Vars().FilesUnpacked, 7);
  EXPECT_EQ(Vars().ControlsTranslated, 2);
  for (const char* folder : {"Script/sub", "extensions", "temp"}) {
    EXPECT_TRUE(sfs::is_directory(Work() / folder)) << folder;
  }
  EXPECT_EQ(Read(Temp() / "list.tmp"), kListScript);
  EXPECT_EQ(Read(Temp() / "page_x.tmp"), kPageScript);
  EXPECT_FALSE(sfs::exists(Temp() / "css.tmp"));
  EXPECT_TRUE(tyx_->BackupFile);
  EXPECT_EQ(Vars().ScriptEngineTimeout, 5000);
  EXPECT_FALSE(Vars().TheScript);  // the host is gone after a run that ended normally
  EXPECT_FALSE(Vars().TheCache);
  EXPECT_EQ(Vars().LangFile, String::FromUtf8((Script() / "lang.xml").string()));

  const std::string cache = Read(Temp() / "cache.xml");
  EXPECT_EQ(cache,
            "<?xml version=\"1.0\" encoding=\"utf-8\" standalone=\"yes\"?>\r\n"
            "<Cache Product=\"Quorvex\" Version=\"5.3\" >\r\n" +
                Entry("template", "template", Package()) +
                Entry("usercode", "usercode", root() / "usercode.vbs") +
                Entry("control", "control", Script() / "control.xml") +
                Entry("language", "language", Script() / "lang.xml") +
                Entry("temp", "list.tmp", Temp() / "list.tmp") +
                Entry("temp", "page_x.tmp", Temp() / "page_x.tmp") + "</Cache>\r\n");

  // Nothing changed: nothing is unpacked or translated, and the scripts stay as they are.
  Write(Script() / "mine.txt", "a file of the user's");
  Run();
  ASSERT_EQ(ProjErr(), "");
  EXPECT_EQ(Vars().FilesUnpacked, 0);
  EXPECT_EQ(Vars().ControlsTranslated, 0);
  TyxControls& controls = RunControlList();
  for (int32_t i = 1; i <= controls.Count(); ++i)
    EXPECT_FALSE(controls.Item(i)->CtrlGen);
  EXPECT_EQ(Read(Temp() / "cache.xml"), cache);

  // A session file that changed rebuilds its control only.
  Age(Script() / "body.htm", 120);
  Run();
  EXPECT_EQ(Vars().ControlsTranslated, 1);
  EXPECT_TRUE(controls.Item(2)->CtrlGen);
  EXPECT_EQ(Read(Temp() / "page_x.tmp"), kPageScript);
  // A condition that now fails drops its session from the function.
  tyx_->SetUseCss(false);
  sfs::remove(Temp() / "page_x.tmp");
  Run();
  EXPECT_EQ(Read(Temp() / "page_x.tmp").find("Body"), std::string::npos);
  EXPECT_NE(Read(Temp() / "page_x.tmp").find("\"Never\""), std::string::npos);
}

TEST_F(DriverTest, ChangedPackagesAndTheTemplateQuestion) {
  Run();
  ASSERT_EQ(ProjErr(), "");
  // A changed package asks; Keep leaves the folder and the cache entry, and asks again.
  Files files = BasicPackage();
  files["list.htm"] = "changed";
  Pack(files);
  Answer({u"Keep"});
  Run();
  ASSERT_EQ(ProjErr(), "");
  EXPECT_EQ(Vars().FilesUnpacked, 0);
  EXPECT_EQ(Vars().ControlsTranslated, 0);
  EXPECT_EQ(Read(Temp() / "list.tmp"), kListScript);
  Answer({u"Overwrite"});
  Run();
  ASSERT_EQ(ProjErr(), "");
  EXPECT_EQ(Vars().FilesUnpacked, 7);
  EXPECT_EQ(Vars().ControlsTranslated, 2);  // a changed source drops every script
  EXPECT_NE(Read(Temp() / "list.tmp").find("qvAr(1) = \"changed\""), std::string::npos);
  Answer({});  // no question now: the cache knows the package
  Run();
  EXPECT_EQ(Vars().FilesUnpacked, 0);

  // A package that the cache doesn't know is unpacked without a question.
  sfs::remove(Temp() / "cache.xml");
  Answer({u"cancel-if-asked"});
  Run();
  ASSERT_EQ(ProjErr(), "");
  EXPECT_EQ(Vars().FilesUnpacked, 7);

  // A control file deleted by hand isn't brought back while the package is unchanged.
  sfs::remove(Script() / "control.xml");
  Run();
  EXPECT_EQ(ProjErr(), "Quorvex: control file not found! Generation aborted!");
}

TEST_F(DriverTest, RunsThatEndEarlyLeaveTheirWords) {
  // Checks of the project come before any folder.
  Ref<Tyx> empty = CreateTyx();
  empty->Call(u"GenScript");
  EXPECT_EQ(ProjErr(), "Quorvex: Database not loaded! Generation aborted!");
  EXPECT_FALSE(sfs::exists(documents() / "Quorvex"));
  empty->Databases().Add(u"x");
  empty->Call(u"GenScript");
  EXPECT_EQ(ProjErr(), "Quorvex: No tables found in the Database! Generation aborted!");

  tyx_->SetTemplate(String::FromUtf8((root() / "packs" / "none.zip").string()));
  Run();
  EXPECT_EQ(ProjErr(), "Quorvex: Template file not found! Generation aborted!");
  tyx_->SetTemplate(String::FromUtf8(Package().string()));

  // Hostile and damaged packages are refused before anything is written.
  testing::WriteZip(Package().string(), {{"control.xml", "x"}, {"../../evil.htm", "x"}});
  Run();
  EXPECT_NE(ProjErr().find("\"../../evil.htm\" points outside its folder! Generation aborted!"),
            std::string::npos)
      << ProjErr();
  EXPECT_FALSE(sfs::exists(Script() / "control.xml"));
  Write(Package(), "PK\x03\x04 damaged");
  Run();
  EXPECT_EQ(ProjErr().rfind("Quorvex: Package \"", 0), 0u) << ProjErr();

  const auto run_with = [this](const Files& files) {
    sfs::remove_all(Work());
    Pack(files);
    Run();
    return ProjErr();
  };
  Files files = BasicPackage();
  files["control.xml"] = "<QuorvexControl date=\"d\" version=\"4.9\" desc=\"\" author=\"\"/>";
  EXPECT_EQ(run_with(files),
            "Quorvex: Template version (4.9) older than minimum required (5.0)! Generation "
            "aborted!");
  files["control.xml"] = "<QuorvexControl date=\"d\" version=\"5\" desc=\"\" author=\"\"/>";
  EXPECT_EQ(run_with(files), "");
  files["control.xml"] = "<QuorvexControl date=\"d\" version=\"5.3\"/>";
  EXPECT_EQ(run_with(files), "Quorvex: Load Template Control File \"" +
                                 (Script() / "control.xml").string() +
                                 "\" failed! Generation aborted!");
  files["control.xml"] = "<Other/>";
  EXPECT_EQ(run_with(files),
            "Quorvex: Control file is invalid! Please check if the correct template file is in "
            "use!");
  files.erase("control.xml");
  EXPECT_EQ(run_with(files), "Quorvex: control file not found! Generation aborted!");

  files = BasicPackage();
  files["lang.xml"] = "<quorvex.language><phrase";
  EXPECT_EQ(run_with(files), "Quorvex: Load Language File \"" + (Script() / "lang.xml").string() +
                                 "\" failed! Generation aborted!");
  // Without a language file of its own the package takes the one of the setting Language.
  files.erase("lang.xml");
  EXPECT_EQ(run_with(files), "Quorvex: language file not found! Generation aborted!");
  Write(data() / "languages" / "English.xml", "<quorvex.language/>");
  EXPECT_EQ(run_with(files), "");
  EXPECT_EQ(Vars().LangFile, String::FromUtf8((data() / "languages" / "English.xml").string()));

  tyx_->AddExtension(u"Charts", u"charts.zip");
  EXPECT_EQ(run_with(files),
            "Quorvex: Extension Charts template file not found! Generation aborted!");
  tyx_->DeleteExtension(u"Charts");
  tyx_->USERCODE = String::FromUtf8((root() / "gone.vbs").string());
  EXPECT_EQ(run_with(files), "Quorvex: User code file not found! Generation aborted!");
}

TEST_F(DriverTest, BrokenTemplatesEndTheRunHard) {
  // A file named in an include tag of a cached control must be there.
  Run();
  ASSERT_EQ(ProjErr(), "");
  Write(Script() / "list.htm", "<!--##include inc/none.htm/x##-->");
  Age(Script() / "list.htm", -120);  // older than its script: its includes are looked at
  EXPECT_EQ(HardFailure(), "Missing \"inc/none.htm\" in template folder \"" + Script().string() +
                               "\". Generation aborted.");
  // The host stays for the next run, which takes it as it is: no second Initialize.
  const Object* const kept_host = Vars().TheScript.get();
  ASSERT_NE(kept_host, nullptr);
  EXPECT_TRUE(CurrentScript()->IsInitialized());

  Files files = BasicPackage();
  files["list.htm"] = "before <!--##=TABLE.TblName";
  Pack(files);
  Answer({u"Overwrite"});
  const std::string cache = Read(Temp() / "cache.xml");
  std::string words = HardFailure();
  const std::string main_file = (Script() / "list.htm").string();
  EXPECT_EQ(words.rfind(main_file + ": ", 0), 0u) << words;
  EXPECT_NE(words.find("Incomplete Block"), std::string::npos) << words;
  // The broken text stays in the temp file, with the parser's words behind it, and the cache
  // of the run isn't written.
  const std::string kept = Read(Temp() / "list.tmp");
  EXPECT_EQ(kept.rfind("before <!--##=TABLE.TblName\r\n", 0), 0u) << kept;
  EXPECT_EQ(Read(Temp() / "cache.xml"), cache);

  // A session file that is missing when its control is translated.
  files = BasicPackage();
  files["control.xml"].replace(files["control.xml"].find("ifile=\"body.htm\""), 16,
                               "ifile=\"gone.htm\"");
  Pack(files);
  Answer({u"Overwrite"});
  EXPECT_EQ(HardFailure(), "Error in merging gone.htm. Generation aborted.");
  EXPECT_EQ(Vars().TheScript.get(), kept_host);

  // The next run goes on in that host, translates what failed before, and ends it.
  Pack(BasicPackage());
  Answer({u"Overwrite"});
  Run();
  EXPECT_EQ(ProjErr(), "");
  EXPECT_EQ(Read(Temp() / "list.tmp"), kListScript);
  EXPECT_FALSE(Vars().TheScript);
}

TEST_F(DriverTest, ExtensionsAndTheDryRun) {
  sfs::create_directories(data() / "extensions");
  Pack(
      {{"control.xml",
        "<QuorvexControl date=\"d\" version=\"5.3\" desc=\"\" author=\"\">"
        "<control id=\"chart\" type=\"table\" action=\"add\" ifiles=\"chart.htm\" ofile=\"chart\"/>"
        "<control id=\"page\" action=\"change\">"
        "<session type=\"key\" value=\"chart\" ifile=\"cs.htm\" action=\"add\" location=\"head\" "
        "loctype=\"before\"/></control>"
        "<control id=\"css\" action=\"delete\"/></QuorvexControl>"},
       {"chart.htm", "<!--##@Chart##-->"},
       {"cs.htm", "<!--##session chart##-->C<!--##/session##-->"},
       {"lang.xml", "<quorvex.language><phrase id=\"Chart\" value=\"Bar\"/></quorvex.language>"}},
      data() / "extensions" / "charts.zip");
  tyx_->AddExtension(u"Charts", u"charts.zip");
  Run();
  ASSERT_EQ(ProjErr(), "");
  EXPECT_EQ(Vars().ControlsTranslated, 3);
  EXPECT_NE(Read(Temp() / "chart.tmp").find("qvOut = qvOut & \"Bar\""), std::string::npos);
  EXPECT_NE(Read(Temp() / "page_x.tmp").find(" = \"C\""), std::string::npos);
  EXPECT_NE(Read(Temp() / "cache.xml").find("Group=\"extension\" Key=\"Charts\""),
            std::string::npos);
  Run();
  EXPECT_EQ(Vars().FilesUnpacked, 0);
  EXPECT_EQ(Vars().ControlsTranslated, 0);

  // The dry run unpacks into Tmp, finds the pages of the runs above, and removes Tmp again.
  EXPECT_GE(ToInteger(tyx_->Call(u"GenCheck")), 1);
  EXPECT_EQ(ProjErr(), "");
  EXPECT_FALSE(sfs::exists(Work() / "Tmp"));
  tyx_->SetTemplate(String::FromUtf8((root() / "none.zip").string()));
  EXPECT_EQ(ToInteger(tyx_->Call(u"GenCheck")), 0);
  EXPECT_EQ(ProjErr(), "Quorvex: Template file not found! Generation aborted!");
}

TEST_F(DriverTest, CustomConditionsAskTheScriptHost) {
  // A system function of the host's own: the common code with one function more.
  Write(root() / "common.vbs", BuildCommonCode().ToUtf8() +
                                   "\r\nFunction TableKind()\r\nTableKind = \"wide\"\r\n"
                                   "End Function\r\n");
  WriteUserSettings("Language = \"English\"\nUSERCODE = \"" + (root() / "usercode.vbs").string() +
                    "\"\nCOMMONCODE = \"" + (root() / "common.vbs").string() + "\"\n");
  Files files = BasicPackage();
  std::string& control = files["control.xml"];
  control.replace(control.find("proj/UseCss/eq/True"), 19, "custom:TableKind/String/eq/'wide'");
  control.replace(control.find("proj/UseCss/eq/False"), 20, "custom: TableKind/String/in/NARROW");
  Pack(files);
  Run();
  ASSERT_EQ(ProjErr(), "");
  EXPECT_EQ(Read(Temp() / "page_x.tmp"), kPageScript);
  // A function the host doesn't have can't be judged: the session "never" now comes in.
  control.replace(control.find("TableKind/String/in"), 9, "NoSuchFn ");
  Pack(files);
  Answer({u"Overwrite"});
  Run();
  ASSERT_EQ(ProjErr(), "");
  EXPECT_NE(Read(Temp() / "page_x.tmp").find("\"Never\""), std::string::npos);
}

TEST_F(DriverTest, CancelStopsBeforeTheNextControl) {
  // Ctrl-C as the status surface hears it: its handler is in place once a window was open.
  TyxStatus& status = SharedStatus();
  status.ShowStatus2(Variant(int32_t{0}), Variant(LengthMarked(u"Quorvex")));
  status.CloseStatus();
  std::raise(SIGINT);
  EXPECT_EQ(HardFailure(), "Generation cancelled by user!");
  EXPECT_EQ(Vars().ControlsTranslated, 0);
  EXPECT_FALSE(sfs::exists(Temp() / "cache.xml"));
  EXPECT_FALSE(status.StatusIsCancelled());  // heard once
  Run();
  EXPECT_EQ(ProjErr(), "");
  EXPECT_EQ(Vars().ControlsTranslated, 2);
}

TEST(DriverHelpers, VersionsAndPackagePaths) {
  EXPECT_FALSE(VersionBelow(u"5.0", u"5.0"));
  EXPECT_TRUE(VersionBelow(u"4.9", u"5.0"));
  EXPECT_FALSE(VersionBelow(u"5", u"5.0"));
  EXPECT_FALSE(VersionBelow(u"5.3.1.9", u"5.3.2.0") == false);  // the third number decides
  EXPECT_FALSE(VersionBelow(u"5.3.2.0", u"5.3.2.9"));           // the fourth never counts
  EXPECT_FALSE(VersionBelow(u"10.0", u"5.0"));                  // numbers, not texts
  EXPECT_TRUE(VersionBelow(u"x.1", u"5.0"));
}

}  // namespace
}  // namespace qv
