// Template preparation on real folders: the working folders, file checks against the cache,
// include names, the rebuild decision of a control, merging extension control files, and the
// clean-up helpers.
#include "generation/preparation.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "automation/error.h"
#include "generation/cache.h"
#include "generation/extension_merge.h"
#include "generation/run_state.h"
#include "generation_fixture.h"
#include "platform/fs.h"

namespace qv {
namespace {

namespace sfs = std::filesystem;

class PreparationTest : public testing::GenerationFixture {
 protected:
  void SetUp() override {
    GenerationFixture::SetUp();
    tyx_ = MakeRef<Tyx>();
    Vars().TemplateName = u"My Pack.zip";
  }
  void TearDown() override {
    tyx_.reset();
    GenerationFixture::TearDown();
  }
  sfs::path Work() const { return documents() / "Quorvex" / "Templates" / "MyPack.zip"; }
  sfs::path Script() const { return Work() / "Script"; }
  // Prepares the folders and a fresh cache, as a run does before its checks.
  void StartRun() {
    EnsureFolders(*tyx_, u"Script");
    Vars().TheCache = MakeRef<TyxCache>();
  }
  // Marks the control's temp file as translated now, in the cache and on disk.
  void Translated(const TyxControl& control) {
    const String temp = TempFilePath(control);
    Write(fs::ToNative(temp), "Function qvScriptEngine()");
    RunCache()->AddCache(u"temp", fs::FileNameOf(temp), Variant::Date(fs::DateLastModified(temp)),
                         Variant(1.0));
  }
  // The words of the hard failure of ControlNeedsBuild ("" when it didn't fail).
  std::string Failure(TyxControl& control) {
    try {
      ControlNeedsBuild(control);
      return "";
    } catch (const Error& e) {
      EXPECT_EQ(e.number(), -1);
      EXPECT_EQ(e.description(), Vars().ProjErr);
      return e.description().ToUtf8();
    }
  }

  Ref<Tyx> tyx_;
};

TEST_F(PreparationTest, FoldersFilesAndSettingsPaths) {
  tyx_->AddExtension(u"Charts", u"charts.zip");
  tyx_->AddExtension(u"Audit", u"audit.zip");
  StartRun();
  const TyxVars& v = Vars();
  EXPECT_EQ(v.WorkFolder, String::FromUtf8(Work().string()));
  EXPECT_EQ(v.TemplateFolder, String::FromUtf8(Script().string()));
  EXPECT_EQ(v.ExtensionsFolder, String::FromUtf8((Work() / "extensions").string()));
  EXPECT_EQ(v.TempFolder, String::FromUtf8((Work() / "temp").string()));
  for (const char* folder : {"Script", "temp", "extensions/Charts", "extensions/Audit"}) {
    EXPECT_TRUE(sfs::is_directory(Work() / folder)) << folder;
  }
  EnsureFolders(*tyx_, u"Tmp");  // a second call only adds what is missing
  EXPECT_TRUE(sfs::is_directory(Work() / "Tmp"));

  Ref<TyxControl> control = MakeRef<TyxControl>();
  control->CtrlID = u"list";
  control->CtrlTagExt = u"_csv";
  EXPECT_EQ(TempFilePath(*control), String::FromUtf8((Work() / "temp" / "list_csv.tmp").string()));

  // File checks against the cache.
  const sfs::path file = Script() / "control.xml";
  EXPECT_EQ(CheckFileCache(u"control", u"control", u""), -1);
  EXPECT_EQ(CheckFileCache(u"control", u"control", String::FromUtf8(file.string())), -1);
  Write(file, "<x/>");
  const String path = String::FromUtf8(file.string());
  EXPECT_EQ(CheckFileCache(u"control", u"control", path), 2);
  RunCache()->AddCache(u"control", u"control", Variant::Date(fs::DateLastModified(path)),
                       Variant(4.0));
  EXPECT_EQ(CheckFileCache(u"Control", u"CONTROL", path), 0);
  Write(file, "<xy/>");
  EXPECT_EQ(CheckFileCache(u"control", u"control", path), 1);

  // Settings that name files of the data folder.
  const String data_folder = String::FromUtf8(data().string());
  EXPECT_EQ(DataFolderPath(u"templates/default.zip"), data_folder + u"/templates/default.zip");
  EXPECT_EQ(DataFolderPath(u"templates\\x.zip"), data_folder + u"/templates/x.zip");
  EXPECT_EQ(DataFolderPath(u"/abs/t.zip"), u"/abs/t.zip");
  EXPECT_EQ(DataFolderPath(u""), u"");
  tyx_->Language = u"German";
  EXPECT_EQ(DefaultLangFile(*tyx_), data_folder + u"/languages/German.xml");
}

TEST_F(PreparationTest, IncludeNamesAndCleanUp) {
  EXPECT_EQ(ExtractIncludeNames(u""), u"");
  EXPECT_EQ(ExtractIncludeNames(u"<!--##include a.htm/head##-->x<!--##INCLUDE  sub/b.htm/s ##-->"
                                u"<!--##include c.htm##--><!--##include a.htm/foot##-->"),
            u"a.htm,sub/b.htm,c.htm,a.htm");
  // An include without its end is passed over; the search goes on behind it.
  EXPECT_EQ(ExtractIncludeNames(u"<!--##include x.htm/s <!--##include y.htm/t##-->"),
            u"x.htm/s <!--##include y.htm");
  EXPECT_EQ(ExtractIncludeNames(u"<!--##include z.htm/s"), u"");

  const sfs::path folder = root() / "temp";
  for (const char* name : {"a.tmp", "B.TMP", "~tmp.temp", "cache.xml", "noext", "x.tmp.bak"}) {
    Write(folder / name, "x");
  }
  DeleteFilesByExt(String::FromUtf8(folder.string()), u"tmp");
  std::vector<std::string> left;
  for (const auto& e : sfs::directory_iterator(folder))
    left.push_back(e.path().filename());
  std::sort(left.begin(), left.end());
  EXPECT_EQ(left, (std::vector<std::string>{"cache.xml", "noext", "x.tmp.bak", "~tmp.temp"}));

  Write(folder / "deep" / "er" / "f.txt", "x");
  DeleteFolderIfExists(String::FromUtf8(folder.string()));
  EXPECT_FALSE(sfs::exists(folder));
  DeleteFolderIfExists(String::FromUtf8(folder.string()));  // gone already: nothing happens
  DeleteFolderIfExists(u"");
}

TEST_F(PreparationTest, WhenAControlNeedsTranslating) {
  StartRun();
  Write(Script() / "list.htm", "<!--##include inc/common.htm/head##-->body");
  Write(Script() / "inc" / "common.htm", "<!--##session head##-->x<!--##/session##-->");
  Write(Script() / "extra.htm", "extra");
  Write(Script() / "img" / "logo.gif", "gif");
  Write(Script() / "sess.htm", "session file");
  for (const char* name : {"list.htm", "inc/common.htm", "extra.htm", "sess.htm"}) {
    Age(Script() / name, -60);
  }
  Ref<TyxControl> control = MakeRef<TyxControl>();
  control->CtrlID = u"list";
  control->CtrlIFiles = u"list.htm, extra.htm";
  control->CtrlIFolder = u"img/";

  // Not in the cache yet, then a temp file that is up to date.
  EXPECT_TRUE(ControlNeedsBuild(*control));
  EXPECT_TRUE(control->CtrlGen);
  Translated(*control);
  EXPECT_FALSE(ControlNeedsBuild(*control));
  EXPECT_FALSE(control->CtrlGen);

  // A file named only in an include tag rebuilds the script when it changes.
  Age(Script() / "inc" / "common.htm", 60);
  EXPECT_TRUE(ControlNeedsBuild(*control));
  // An older file in place of a newer one doesn't.
  Age(Script() / "inc" / "common.htm", -120);
  EXPECT_FALSE(ControlNeedsBuild(*control));
  // A temp file deleted by hand rebuilds that control.
  sfs::remove(fs::ToNative(TempFilePath(*control)));
  EXPECT_TRUE(ControlNeedsBuild(*control));
  Translated(*control);

  // A session file of a "key" session counts; sessions of other kinds don't.
  Ref<TyxSession> session = MakeRef<TyxSession>();
  session->SessType = u"key";
  session->SessValue = u"s";
  session->SessIFile = u"sess.htm";
  control->Sessions().AddSession(*session, u"", u"");
  EXPECT_FALSE(ControlNeedsBuild(*control));
  Age(Script() / "sess.htm", 60);
  EXPECT_TRUE(ControlNeedsBuild(*control));
  // A control without input files of its own ends the check before its sessions.
  control->CtrlIFiles = u"";
  EXPECT_FALSE(ControlNeedsBuild(*control));
  control->CtrlIFiles = u"list.htm";

  // Missing names end the run, naming the template folder, even when they were looked for in
  // an extension's folder. The folder check comes before the temp file's.
  const std::string folder = Script().string();
  control->Sessions().Item(1)->SessIFile = u"gone.htm";
  EXPECT_EQ(Failure(*control),
            "Missing \"gone.htm\" in template folder \"" + folder + "\". Generation aborted.");
  control->Sessions().DeleteSession(u"s");
  sfs::remove(Script() / "inc" / "common.htm");
  EXPECT_EQ(Failure(*control), "Missing \"inc/common.htm\" in template folder \"" + folder +
                                   "\". Generation aborted.");
  control->CtrlIFolder = u"pictures/";
  EXPECT_EQ(Failure(*control),
            "Missing \"pictures/\" in template folder \"" + folder + "\". Generation aborted.");
  control->CtrlIFolder = u"";
  control->CtrlExt = u"Charts";  // names are now looked for in extensions/Charts
  EXPECT_EQ(Failure(*control),
            "Missing \"list.htm\" in template folder \"" + folder + "\". Generation aborted.");
}

class RecordingPrompter : public Prompter {
 public:
  explicit RecordingPrompter(std::vector<std::string>* log) : log_(log) {}
  Reply Ask(const Prompt& prompt) override {
    log_->push_back(prompt.text.ToUtf8());
    return Reply{};
  }

 private:
  std::vector<std::string>* log_;
};

TEST_F(PreparationTest, MergingExtensionControlFiles) {
  tyx_->AddExtension(u"Charts", u"charts.zip");
  tyx_->AddExtension(u"Broken", u"broken.zip");
  StartRun();
  const char* head = "<QuorvexControl date=\"d\" version=\"5.3\" desc=\"x\" author=\"a\">";
  Write(Script() / "control.xml",
        std::string(head) +
            "<control id=\"list\" type=\"table\" ifiles=\"list.htm\" ofile=\"list\">"
            "<session type=\"key\" value=\"head\"/><session type=\"key\" value=\"body\"/>"
            "<session type=\"key\" value=\"foot\"/></control>"
            "<control id=\"view\" type=\"table\"/><control id=\"css\" type=\"copy\"/>"
            "</QuorvexControl>");
  Write(Work() / "extensions" / "Charts" / "control.xml",
        std::string(head) +
            "<control id=\"chart\" type=\"table\" action=\"add\" ifiles=\"chart.htm\"/>"
            "<control id=\"list\" action=\"change\" ofile=\"ignored\">"
            "<session value=\"body\" action=\"change\" ifile=\"chartbody.htm\" cond=\"c\"/>"
            "<session value=\"foot\" action=\"delete\"/>"
            "<session type=\"key\" value=\"extra\" action=\"add\" location=\"body\" "
            "loctype=\"after\"/>"
            "<session value=\"nope\" action=\"change\" ifile=\"x\"/></control>"
            "<control id=\"ghost\" action=\"change\"><session value=\"s\" action=\"add\"/>"
            "</control>"
            "<control id=\"css\" action=\"delete\"/><control id=\"view\" action=\"other\"/>"
            "</QuorvexControl>");
  Write(Work() / "extensions" / "Broken" / "control.xml", "<QuorvexControl");
  TyxControls& controls = RunControlList();
  ASSERT_TRUE(controls.LoadControls(String::FromUtf8((Script() / "control.xml").string())));

  std::vector<std::string> messages;
  SetCurrentPrompter(std::make_unique<RecordingPrompter>(&messages));
  MergeExtension(u"Audit");  // no control file: nothing happens
  MergeExtension(u"Charts");
  MergeExtension(u"Broken");
  ASSERT_EQ(messages.size(), 1u);
  EXPECT_EQ(messages[0], "Quorvex: Load extension control file " +
                             (Work() / "extensions" / "Broken" / "control.xml").string() +
                             " failed. Processing skipped!");

  std::vector<std::string> ids;
  for (int32_t i = 1; i <= controls.Count(); ++i)
    ids.push_back(controls.Item(i)->CtrlID.ToUtf8());
  EXPECT_EQ(ids, (std::vector<std::string>{"list", "view", "chart"}));
  EXPECT_EQ(controls.Item(3)->CtrlExt, u"Charts");
  const Ref<TyxControl> list = controls.Item(1);
  EXPECT_EQ(list->CtrlOFile, u"list");  // only sessions change
  TyxSessions& sessions = list->Sessions();
  std::vector<std::string> values;
  for (int32_t i = 1; i <= sessions.Count(); ++i) {
    values.push_back(sessions.Item(i)->SessValue.ToUtf8());
  }
  EXPECT_EQ(values, (std::vector<std::string>{"head", "body", "extra"}));
  const Ref<TyxSession> body = sessions.Item(2);
  EXPECT_EQ(body->SessIFile, u"chartbody.htm");
  EXPECT_EQ(body->SessCond, u"c");
  EXPECT_EQ(body->SessExt, u"Charts");
  EXPECT_EQ(sessions.Item(3)->SessExt, u"Charts");
}

}  // namespace
}  // namespace qv
