// Copying the database file, the stylesheet and the project's own stylesheet.
#include "generation/copy_actions.h"

#include <filesystem>

#include "generation/output_test_support.h"
#include "model/database.h"
#include "support/common.h"
#include "support/registry.h"

namespace qv {
namespace {

class CopyActionsTest : public testing::OutputTest {
 protected:
  void SetUp() override {
    OutputTest::SetUp();
    tyx_->Databases().Add(u"db");
    tyx_->CurrentDbName = u"db";
    db_ = tyx_->db();
  }
  Ref<TyxDatabase> db_;
};

TEST_F(CopyActionsTest, DatabaseFilesTravelWithTheApplication) {
  const String sqlite = scratch_.Write("data/shop.sqlite", "sqlite bytes");
  db_->SetDBType(u"CONNECTIONSTRING");
  db_->SetDBConnstr(u"Provider=SQLite;Data Source=" + sqlite);
  db_->SetDBPath(u"~/db");
  tyx_->SetAppRootFolder(scratch_.Path("root"));
  // The folder doesn't exist: "No" leaves the copy out with a warning.
  Answer({u"no", u"ok"});
  EXPECT_EQ(CopyDatabase(*tyx_, false), 0);
  EXPECT_FALSE(std::filesystem::exists(scratch_.Native("root/db/shop.sqlite")));
  Answer({u"yes"});
  EXPECT_EQ(CopyDatabase(*tyx_, false), 0);
  EXPECT_EQ(scratch_.Read("root/db/shop.sqlite"), "sqlite bytes");
  EXPECT_EQ(CopyDatabase(*tyx_, true), 1);

  // An existing copy: asked when the project wants questions, kept on "No".
  scratch_.Write("data/shop.sqlite", "changed");
  tyx_->SetPromptOnOverwrite(true);
  Answer({u"no"});
  CopyDatabase(*tyx_, false);
  EXPECT_EQ(scratch_.Read("root/db/shop.sqlite"), "sqlite bytes");
  tyx_->SetOtherOverwrite(false);
  Answer({});
  CopyDatabase(*tyx_, false);
  EXPECT_EQ(scratch_.Read("root/db/shop.sqlite"), "sqlite bytes");
  tyx_->SetOtherOverwrite(true);
  tyx_->SetPromptOnOverwrite(false);
  CopyDatabase(*tyx_, false);
  EXPECT_EQ(scratch_.Read("root/db/shop.sqlite"), "changed");

  // A database that already is its own copy is left alone, without a question.
  db_->SetDBConnstr(u"Provider=SQLite;Data Source=" + scratch_.Path("root/db/shop.sqlite"));
  tyx_->SetPromptOnOverwrite(true);
  Answer({u"cancel"});
  EXPECT_EQ(CopyDatabase(*tyx_, false), 0);

  // SQL Server Express by file name: data and log; a server database is never copied.
  scratch_.Write("data/big.mdf", "mdf");
  scratch_.Write("data/big_log.ldf", "ldf");
  db_->SetDBPath(u"");
  db_->SetDBConnstr(u"Driver={SQL Server};Server=.\\SQLExpress;AttachDbFilename=" +
                    scratch_.Path("data/big.mdf") + u";Trusted_Connection=Yes");
  tyx_->SetPromptOnOverwrite(false);
  std::filesystem::create_directories(scratch_.Native("site"));
  CopyDatabase(*tyx_, false);
  EXPECT_EQ(Out("big.mdf"), "mdf");
  EXPECT_EQ(Out("big_log.ldf"), "ldf");
  db_->SetDBConnstr(u"Driver={SQL Server};Server=db1;AttachDbFilename=" +
                    scratch_.Path("data/other.mdf"));
  scratch_.Write("data/other.mdf", "x");
  CopyDatabase(*tyx_, false);
  EXPECT_FALSE(OutExists("other.mdf"));
  EXPECT_EQ(Vars().ProjErr, u"");
}

// The marker goes where the pages will store, which the setting's literal path need not be:
// no name of its own falls back to "upload/", and odd parts are dropped, not resolved.
TEST_F(CopyActionsTest, UploadFoldersAreMarkedWhereThePagesStore) {
  ASSERT_TRUE(db_->Tables().Add(u"t"));
  TyxTable& table = *db_->Tables().Item(Variant(String(u"t")));
  ASSERT_TRUE(table.Fields().Add(u"pic"));
  table.Fields().Item(Variant(String(u"pic")))->SetFldUploadPath(u" pics/../docs\\ ");
  for (const char16_t* setting : {u"", u"~/", u" .. "}) {
    std::filesystem::remove_all(scratch_.Native("site"));
    tyx_->SetUploadPath(setting);
    EXPECT_EQ(CopyDatabase(*tyx_, false), 0);
    EXPECT_TRUE(OutExists("upload/.quorvex-uploads")) << String(setting).ToUtf8();
    EXPECT_TRUE(OutExists("pics/docs/.quorvex-uploads"));
    EXPECT_FALSE(OutExists(".quorvex-uploads"));  // never the root: no page would run
  }
  tyx_->SetUploadPath(u"~/files/");
  CopyDatabase(*tyx_, false);
  EXPECT_TRUE(OutExists("files/.quorvex-uploads"));
  EXPECT_EQ(Vars().ProjErr, u"");
}

TEST_F(CopyActionsTest, StylesheetComesFromTheTemplateAndTheProject) {
  // The setting names the stylesheet template; a relative path is taken from the data folder.
  WriteRegValue(u"HKCU", Vars().SettingsKey, u"CssFile", 1, Variant(scratch_.Path("t.css")));
  EXPECT_EQ(StylesheetTemplatePath(), scratch_.Path("t.css"));
  scratch_.Write("t.css", "body {}\n");
  tyx_->SetCssStyles(u".mine {}");
  tyx_->SetOutputNameLCase(true);
  tyx_->SetProjName(u"Shop");
  tyx_->SetCSS(scratch_.Write("own/extra.css", "own"));
  EXPECT_EQ(CopyCss(*tyx_, true), 0);
  EXPECT_EQ(CopyCss(*tyx_, false), 0);
  // Parse isn't there in a bare project: the template's line is passed over, the styles stay.
  EXPECT_EQ(Out("shop.css"), ".mine {}");
  EXPECT_EQ(Out("extra.css"), "own");
  EXPECT_EQ(CopyCss(*tyx_, true), 1);
  // The project's own stylesheet is not copied onto itself.
  tyx_->SetCSS(scratch_.Path("site/extra.css"));
  EXPECT_EQ(CopyCss(*tyx_, false), 0);
  EXPECT_EQ(Out("extra.css"), "own");

  WriteRegValue(u"HKCU", Vars().SettingsKey, u"CssFile", 1, Variant(String(u"styles/x.css")));
  EXPECT_TRUE(StylesheetTemplatePath().view().ends_with(u"/styles/x.css"));

  // A settings store seeded before the option existed lacks it: the shipped default holds.
  cRegistry reg;
  reg.SectionKey = Vars().SettingsKey;
  reg.ValueKey = u"CssFile";
  reg.DeleteValue();
  EXPECT_TRUE(StylesheetTemplatePath().view().ends_with(u"/styles/default.css"));
}

}  // namespace
}  // namespace qv
