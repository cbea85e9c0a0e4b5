// The overwrite rules under each answer of the question, backups, and pages written whole.
#include "generation/file_writer.h"

#include <sys/stat.h>

#include <filesystem>

#include "generation/output_test_support.h"
#include "model/table.h"
#include "templates/control.h"

namespace qv {
namespace {

class FileWriterTest : public testing::OutputTest {
 protected:
  void SetUp() override {
    OutputTest::SetUp();
    tyx_->Databases().Add(u"db");
    tyx_->CurrentDbName = u"db";
    tyx_->SetPromptOnOverwrite(true);
    tyx_->BackupFile = true;
    a_ = scratch_.Write("site/a.asp", "old a");
    b_ = scratch_.Write("site/b.asp", "old b");
  }
  bool Prepare(const String& path, bool overwrite = true) {
    return PrepareOverwriteFile(*tyx_, path, overwrite, tyx_->PromptOnOverwrite(), false);
  }
  bool Prompted(size_t before) const { return answers_left() < before; }
  size_t answers_left() const {
    return static_cast<ScriptedPrompter&>(CurrentPrompter()).remaining();
  }

  String a_, b_;
};

TEST_F(FileWriterTest, EachAnswerOfTheQuestionHoldsAsItSays) {
  const String fresh = scratch_.Path("site/new.asp");
  // Overwrite: the old file goes to ".bak"; the question comes again for the next file.
  Answer({u"overwrite", u"skip"});
  EXPECT_TRUE(Prepare(a_));
  EXPECT_EQ(scratch_.Read("site/a.asp.bak"), "old a");
  EXPECT_FALSE(Prepare(b_));  // Skip: kept, no backup
  EXPECT_FALSE(std::filesystem::exists(scratch_.Native("site/b.asp.bak")));
  EXPECT_EQ(answers_left(), 0u);

  // Skip all: every later existing file is kept without a question; new files still come.
  std::filesystem::remove(scratch_.Native("site/a.asp.bak"));
  Answer({u"skip all", u"overwrite"});
  EXPECT_FALSE(Prepare(a_));
  EXPECT_FALSE(Prepare(b_));
  EXPECT_TRUE(Prepare(fresh));
  EXPECT_EQ(answers_left(), 1u);
  EXPECT_EQ(Vars().OverwriteChoice, u"S");

  // Overwrite all: the rest is replaced without a question, but never where the control or
  // table forbids it.
  Vars().OverwriteChoice.Clear();
  Answer({u"overwrite all", u"skip"});
  EXPECT_TRUE(Prepare(a_));
  EXPECT_TRUE(Prepare(b_));
  EXPECT_FALSE(Prepare(b_, false));
  EXPECT_EQ(answers_left(), 1u);

  // Cancel: the run ends with the cancel words; nothing is replaced.
  Vars().OverwriteChoice.Clear();
  Answer({u"cancel"});
  try {
    Prepare(a_);
    ADD_FAILURE() << "no cancel";
  } catch (const Error& e) {
    EXPECT_EQ(e.number(), -1);
    EXPECT_EQ(e.description(), u"Generation cancelled by user!");
  }
  EXPECT_EQ(scratch_.Read("site/a.asp"), "old a");

  // No question when overwriting isn't allowed, or when the project doesn't want one.
  Vars().OverwriteChoice.Clear();
  Answer({u"overwrite"});
  EXPECT_FALSE(Prepare(a_, false));
  tyx_->SetPromptOnOverwrite(false);
  EXPECT_TRUE(Prepare(a_));
  EXPECT_EQ(answers_left(), 1u);
  // Check mode only looks.
  EXPECT_TRUE(PrepareOverwriteFile(*tyx_, a_, false, true, true));
  EXPECT_FALSE(PrepareOverwriteFile(*tyx_, fresh, true, true, true));
}

TEST_F(FileWriterTest, FailingBackupSkipsTheFileWithAWarning) {
  tyx_->SetPromptOnOverwrite(false);
  std::filesystem::create_directories(scratch_.Native("site/a.asp.bak/x"));
  Answer({});
  EXPECT_FALSE(Prepare(a_));
  EXPECT_EQ(scratch_.Read("site/a.asp"), "old a");
  EXPECT_EQ(Vars().ProjErr, u"");  // the run goes on

  // Folders: an older ".bak" folder is replaced as a whole.
  scratch_.Write("site/js/new.js", "new");
  scratch_.Write("site/js.bak/stale.js", "stale");
  EXPECT_TRUE(PrepareOverwriteFolder(*tyx_, scratch_.Path("site/js"), true, false, false));
  EXPECT_EQ(scratch_.Read("site/js.bak/new.js"), "new");
  EXPECT_FALSE(std::filesystem::exists(scratch_.Native("site/js.bak/stale.js")));
}

TEST_F(FileWriterTest, PageIsWrittenWholeOrNotAtAll) {
  tyx_->SetPromptOnOverwrite(false);
  tyx_->BackupFile = false;
  StartScript();
  const String script = scratch_.Write(
      "temp/p.tmp", "Function qvScriptEngine()\r\nqvScriptEngine = \"new\" & vbLf\r\nEnd Function");
  TyxControl control;
  control.CtrlSpace = false;
  control.CtrlOverwrite = true;
  WriteOtherPage(*tyx_, script, a_, true, control);
  EXPECT_EQ(scratch_.Read("site/a.asp"), "new\r\n");  // lone LFs are written as CR LF

  // A destination that is a file: the run ends with the path in its words, the file stays
  // whole and no temporary file is left beside it.
  try {
    WriteOtherPage(*tyx_, script, a_ + u"/x.asp", true, control);
    ADD_FAILURE() << "no failure";
  } catch (const Error& e) {
    EXPECT_EQ(e.number(), -1);
    EXPECT_EQ(e.description(),
              u"Quorvex: Writing file \"" + a_ + u"/x.asp\" failed! Path not found");
  }
  EXPECT_EQ(scratch_.Read("site/a.asp"), "new\r\n");

  // A folder that may not be written (root may write anywhere, so only as another user).
  ::chmod(scratch_.Native("site").c_str(), 0555);
  const bool enforced = ::access(scratch_.Native("site").c_str(), W_OK) != 0;
  if (enforced) {
    EXPECT_THROW(WriteOtherPage(*tyx_, script, b_, true, control), Error);
  }
  ::chmod(scratch_.Native("site").c_str(), 0755);
  EXPECT_EQ(scratch_.Read("site/b.asp"), "old b");
  size_t entries = 0;
  for ([[maybe_unused]] const auto& e :
       std::filesystem::directory_iterator(scratch_.path() / "site"))
    ++entries;
  EXPECT_EQ(entries, 2u);
}

}  // namespace
}  // namespace qv
