// Save: the file pinned byte for byte on a small project, the order of objects by sequence
// number, the declaration's encoding name and its value in the settings store, and the
// failures that reach the host as raised errors.
#include <gtest/gtest.h>

#include <fstream>
#include <string>

#include "automation/error.h"
#include "persistence/project_file.h"
#include "project_fixture.h"
#include "support/common.h"
#include "support/registry.h"

namespace qv::testing {
namespace {

using SaveTest = ProjectFileTest;

std::string Golden(const std::string& name, const String& version) {
  std::string text =
      ScratchHome::Read(std::string(QV_SOURCE_DIR) + "/tests/persistence/data/" + name);
  const std::string mark = "@ENGINE_VERSION@";
  const size_t at = text.find(mark);
  if (at != std::string::npos) text.replace(at, mark.size(), version.ToUtf8());
  return text;
}

TEST_F(SaveTest, SmallProjectMatchesTheGoldenFileByteForByte) {
  BuildSmallProject(*tyx_);
  const String path = PathOf("small.qvp");
  SaveProjectFile(*tyx_, path);
  const std::string written = Bytes(path);
  EXPECT_EQ(FirstDifference(written, Golden("small_project.xml", tyx_->EngineVersion())), "");

  // Spot checks of the rules the golden file encodes, so that a failure says which one broke.
  EXPECT_EQ(written.rfind("<?xml version=\"1.0\" encoding=\"utf-8\" standalone=\"yes\"?>\r\n", 0),
            0u);
  EXPECT_NE(written.find("<Project Version=\"" + tyx_->EngineVersion().ToUtf8() +
                         "\" ProjName=\"Shop &amp; &lt;Co&gt; &quot;Online&quot;\" "),
            std::string::npos);
  EXPECT_LT(written.find("Name=\"Audit\""), written.find("Name=\"Charts\""));
  EXPECT_LT(written.find("TblName=\"Customers\""), written.find("TblName=\"Order Details\""));
  EXPECT_LT(written.find("FldName=\"Active\""), written.find("FldName=\"CustomerID\""));
  EXPECT_NE(
      written.find("FldTagValues=\"&quot;1&quot;,&quot;Yes&quot;|&quot;0&quot;,&quot;No&quot;\" "),
      std::string::npos);
  EXPECT_NE(written.find("FldErrMsg=\"Needs &lt;b&gt;&amp;&lt;/b&gt; &quot;quotes&quot;\" "),
            std::string::npos);
  EXPECT_NE(written.find("FldAutoIncrement=\"1\" "), std::string::npos);
  EXPECT_NE(written.find("FldName=\"Note &quot;A&amp;B&quot;\" "), std::string::npos);
  EXPECT_EQ(written.find("FldVar="), std::string::npos);
  EXPECT_EQ(written.find("TblVar="), std::string::npos);
  for (size_t at = written.find('\n'); at != std::string::npos; at = written.find('\n', at + 1)) {
    ASSERT_EQ(written[at - 1], '\r') << "a line that does not end in CR LF at byte " << at;
  }
  EXPECT_EQ(written.substr(written.size() - 12), "</Project>\r\n");
}

TEST_F(SaveTest, ProjectWithoutDatabaseHoldsProjectAndExtensionsOnly) {
  tyx_->AddProj(u"Empty");
  tyx_->AddExtension(u"Charts", u"c.zip");
  const String path = PathOf("empty.qvp");
  SaveProjectFile(*tyx_, path);
  const std::string written = Bytes(path);
  size_t lines = 0;
  for (size_t at = written.find("\r\n"); at != std::string::npos; at = written.find("\r\n", at + 2))
    ++lines;
  EXPECT_EQ(lines, 4u);
  EXPECT_NE(written.find("\r\n<Extension Seq=\"1\" Name=\"Charts\" Template=\"c.zip\" />\r\n"
                         "</Project>\r\n"),
            std::string::npos);
  EXPECT_EQ(written.find("<Database"), std::string::npos);

  // Such a file loads its settings and extensions, then ends with the missing database.
  const Ref<Tyx> reopened = FreshRoot();
  LoadProjectFile(*reopened, path);
  EXPECT_EQ(reopened->ProjErr().ToUtf8(), "Quorvex: No Database Information in Project File!");
  EXPECT_EQ(reopened->ProjName(), u"Empty");
  EXPECT_EQ(reopened->Extensions().Count(), 1);
}

TEST_F(SaveTest, EncodingNameComesFromTheUserSettingsAndIsWrittenBack) {
  tyx_->AddProj(u"Enc");
  const TyxVars& vars = Vars();
  const String path = PathOf("enc.qvp");

  SaveProjectFile(*tyx_, path);
  EXPECT_EQ(ToString(ReadRegValue(u"HKCU", vars.SettingsKey, u"XMLEncodeCharSet")), u"utf-8");
  EXPECT_EQ(vars.RegValueType, kRegSz);

  WriteRegValue(u"HKCU", vars.SettingsKey, u"XMLEncodeCharSet", kRegSz, Variant(u"iso-8859-1"));
  SaveProjectFile(*tyx_, path);
  EXPECT_EQ(Bytes(path).rfind(
                "<?xml version=\"1.0\" encoding=\"iso-8859-1\" standalone=\"yes\"?>\r\n", 0),
            0u);
  EXPECT_EQ(ToString(ReadRegValue(u"HKCU", vars.SettingsKey, u"XMLEncodeCharSet")), u"iso-8859-1");

  // An empty value falls back to the system's name.
  WriteRegValue(u"HKCU", vars.SettingsKey, u"XMLEncodeCharSet", kRegSz, Variant(u""));
  SaveProjectFile(*tyx_, path);
  EXPECT_EQ(Bytes(path).rfind("<?xml version=\"1.0\" encoding=\"utf-8\" standalone=\"yes\"?>", 0),
            0u);
  EXPECT_EQ(ToString(ReadRegValue(u"HKCU", vars.SettingsKey, u"XMLEncodeCharSet")), u"utf-8");
}

TEST_F(SaveTest, FailuresRaiseAndKeepWhatWasWritten) {
  BuildSmallProject(*tyx_);
  // A folder that does not exist, and a folder in place of the file.
  try {
    SaveProjectFile(*tyx_, PathOf("missing/folder/p.qvp"));
    ADD_FAILURE() << "no error for a missing folder";
  } catch (const Error& e) {
    EXPECT_EQ(e.number(), kErrPathNotFound);
  }
  std::filesystem::create_directories(home_.root() / "afolder");
  EXPECT_THROW(SaveProjectFile(*tyx_, PathOf("afolder")), Error);

  // A Boolean property holding text that is no Boolean stops the save part-way.
  const String path = PathOf("partial.qvp");
  WriteBytes(path, "old content");
  tyx_->db()
      ->Tables()
      .Item(Variant(u"Order Details"))
      ->Fields()
      .Item(Variant(u"OrderID"))
      ->Entry(TyxField::kFldBold)
      .SetValue(Variant(u"maybe"));
  try {
    SaveProjectFile(*tyx_, path);
    ADD_FAILURE() << "no error for a Boolean that is no Boolean";
  } catch (const Error& e) {
    EXPECT_EQ(e.number(), kErrTypeMismatch);
  }
  const std::string partial = Bytes(path);
  EXPECT_EQ(partial.rfind("<?xml", 0), 0u);
  EXPECT_NE(partial.find("TblName=\"Customers\""), std::string::npos);
  EXPECT_EQ(partial.find("</Project>"), std::string::npos);

  // A sequence number that no table holds: the table for that place is missing.
  tyx_->db()
      ->Tables()
      .Item(Variant(u"Order Details"))
      ->Fields()
      .Item(Variant(u"OrderID"))
      ->SetFldBold(false);
  tyx_->db()->Tables().Item(Variant(u"Customers"))->SetTblSeq(7);
  try {
    SaveProjectFile(*tyx_, path);
    ADD_FAILURE() << "no error for a gap in the sequence numbers";
  } catch (const Error& e) {
    EXPECT_EQ(e.number(), kErrObjectRequired);
  }
}

}  // namespace
}  // namespace qv::testing
