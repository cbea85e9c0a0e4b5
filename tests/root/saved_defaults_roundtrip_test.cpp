// Saved defaults through the real settings files: a user's first run copies the machine tree,
// an existing user tree is left alone, values come back in their setting's type without their
// quotes, five settings never come back, and the shipped machine tree gives every saved
// setting a value.
#include <gtest/gtest.h>

#include <string>

#include "automation/convert.h"
#include "root/create_tyx.h"
#include "root/root_fixture.h"
#include "support/common.h"
#include "support/registry.h"

namespace qv {
namespace {

using SavedDefaults = RootFixture;

const char* const kMachine = R"([Software\Quorvex\5.3\Settings]
Language = "Deutsch"
BodyFont = "'Arial'"
RecPerPage = dword:15
ExportCsv = "True"
defaultDateFormat = "6"
ScriptEngineTimeout = dword:45000
MaxUploadSize = dword:4096
[Software\Quorvex\5.3\Settings\Fonts]
Mono = "Courier"
[Software\Quorvex\5.3\Extensions]
Charts = "charts.zip"
)";

TEST_F(SavedDefaults, FirstRunCopiesTheMachineTree) {
  WriteMachineTree(kMachine);
  Ref<Tyx> tyx = CreateTyx();
  EXPECT_EQ(tyx->Language, u"Deutsch");
  EXPECT_EQ(tyx->BodyFont(), u"Arial");
  EXPECT_EQ(tyx->RecPerPage(), 15);
  EXPECT_EQ(tyx->Properties().Find(u"RecPerPage")->Value().type(), VarType::Integer);
  EXPECT_TRUE(tyx->ExportCsv());
  EXPECT_EQ(tyx->defaultDateFormat(), 6);
  EXPECT_EQ(Vars().DefaultDateFormat, 6);
  EXPECT_EQ(Vars().ScriptEngineTimeout, 45000);
  // Subkeys and extensions are copied too; extensions are read only when a database loads.
  EXPECT_EQ(ToString(ReadRegValue(u"HKCU", u"Software\\Quorvex\\5.3\\Settings\\Fonts", u"Mono")),
            u"Courier");
  EXPECT_EQ(ToString(ReadRegValue(u"HKCU", Vars().ExtensionsKey, u"Charts")), u"charts.zip");
  EXPECT_EQ(tyx->Extensions().Count(), 0);
  // The database's saved setting is read when a database is there.
  tyx->Databases().Add(u"DB");
  tyx->LoadDefault();
  EXPECT_EQ(tyx->Databases().Find(u"DB")->MaxUploadSize(), 4096);
}

TEST_F(SavedDefaults, AUserWithALanguageIsNotSeededAgain) {
  WriteMachineTree(kMachine);
  WriteUserTree("[Software\\Quorvex\\5.3\\Settings]\nLanguage = \"English\"\n");
  Ref<Tyx> tyx = CreateTyx();
  EXPECT_EQ(tyx->Language, u"English");
  EXPECT_TRUE(ReadRegValue(u"HKCU", Vars().ExtensionsKey, u"Charts").is_empty());
  // The settings this user's tree lacks (it may come from an older version) read as shipped.
  EXPECT_EQ(tyx->BodyFont(), u"Arial");
  EXPECT_EQ(tyx->RecPerPage(), 15);
  EXPECT_EQ(Vars().ScriptEngineTimeout, 45000);
}

TEST_F(SavedDefaults, RoundTripKeepsValuesButNotTheFixedFive) {
  Ref<Tyx> tyx = CreateTyx();
  tyx->AddProj(u"Shop");
  tyx->SetBodyFont(u"Tahoma");
  tyx->SetRecPerPage(30);
  tyx->SetSmtpServerPort(2525);
  tyx->SetTblAltColor(true);
  tyx->SetPagerStyle(3);
  tyx->SetMultiDelete(true);
  tyx->SetTopPageLink(true);
  tyx->SetLinkOnLeft(true);
  tyx->SetSessTimeOut(45);
  tyx->Language = u"English";
  tyx->BackupFile = true;
  tyx->USERCODE = u"/home/me/user.vbs";
  Vars().ScriptEngineTimeout = 12000;
  tyx->AddExtension(u"Audit", u"audit.zip");
  tyx->AddExtension(u"Charts", u"charts.zip");
  tyx->SaveDefault();
  EXPECT_NE(UserTree().find("TblAltColor = \"True\""), std::string::npos) << UserTree();
  EXPECT_NE(UserTree().find("SmtpServerPort = dword:2525"), std::string::npos);

  ResetVars();
  Vars().Status = MakeRef<TyxStatus>(StatusMode::kQuiet);
  Ref<Tyx> again = CreateTyx();
  EXPECT_EQ(again->BodyFont(), u"Tahoma");
  EXPECT_EQ(again->RecPerPage(), 30);
  EXPECT_EQ(again->SmtpServerPort(), 2525);
  EXPECT_TRUE(again->TblAltColor());
  EXPECT_TRUE(again->BackupFile);
  EXPECT_EQ(again->USERCODE, u"/home/me/user.vbs");
  EXPECT_EQ(Vars().ScriptEngineTimeout, 12000);
  EXPECT_EQ(again->PagerStyle(), 2);
  EXPECT_FALSE(again->MultiDelete());
  EXPECT_FALSE(again->TopPageLink());
  EXPECT_FALSE(again->LinkOnLeft());
  EXPECT_EQ(again->SessTimeOut(), 0);
  EXPECT_EQ(ToString(ReadRegValue(u"HKCU", Vars().ExtensionsKey, u"Charts")), u"charts.zip");

  // A deleted extension is not removed from the store: SaveDefault only adds and replaces.
  tyx->DeleteExtension(u"Audit");
  tyx->SaveDefault();
  EXPECT_EQ(ToString(ReadRegValue(u"HKCU", Vars().ExtensionsKey, u"Audit")), u"audit.zip");
}

TEST_F(SavedDefaults, UnloadThresholdAndEmptyNumbers) {
  WriteUserTree(
      "[Software\\Quorvex\\5.3\\Settings]\nLanguage = \"English\"\nUnloadThresholdCount = "
      "dword:0\n");
  EXPECT_EQ(CreateTyx()->UnloadThresholdCount, 20);
  WriteUserTree(
      "[Software\\Quorvex\\5.3\\Settings]\nLanguage = \"English\"\nUnloadThresholdCount = "
      "dword:5\nRecPerPage = \"many\"\n");
  Ref<Tyx> tyx = CreateTyx();
  EXPECT_EQ(tyx->UnloadThresholdCount, 5);
  // A value that does not convert reads as empty, without an error.
  EXPECT_TRUE(tyx->Properties().Find(u"RecPerPage")->Value().is_empty());

  // Right after DeleteProj every number is empty, and the store refuses an empty number.
  tyx->DeleteProj();
  try {
    tyx->SaveDefault();
    FAIL();
  } catch (const Error& e) {
    EXPECT_EQ(e.number(), kRegistryErrorNumber);
  }
}

TEST_F(SavedDefaults, ShippedMachineTreeGivesEverySavedSettingAValue) {
  UseShippedMachineTree();
  Ref<Tyx> tyx = CreateTyx();
  tyx->Databases().Add(u"DB");
  tyx->AddProj(u"Shop");
  auto check = [](const TyProperties& bag) {
    bag.ForEach([](TyProperty& p) {
      if (!p.RegSave()) return;
      const Variant stored = ReadRegValue(u"HKCU", Vars().SettingsKey, p.Name());
      EXPECT_FALSE(stored.is_empty()) << p.Name().ToUtf8() << " has no shipped default";
      if (p.RegFormat() == 4) {
        EXPECT_EQ(stored.type(), VarType::Long) << p.Name().ToUtf8();
      }
      if (p.Type() == PropType::Boolean) {
        EXPECT_TRUE(stored.as_string() == u"True" || stored.as_string() == u"False")
            << p.Name().ToUtf8();
      }
    });
  };
  check(tyx->Properties());
  check(tyx->Databases().Find(u"DB")->Properties());
  EXPECT_EQ(tyx->SmtpServer(), u"localhost");
  EXPECT_EQ(tyx->SmtpServerPort(), 25);
  EXPECT_GT(tyx->RecPerPage(), 0);
  EXPECT_FALSE(tyx->Template().empty());
  EXPECT_FALSE(tyx->BodyFont().empty());
  EXPECT_EQ(tyx->defaultDateFormat(), 5);
  EXPECT_GE(Vars().ScriptEngineTimeout, 10000);  // milliseconds
  EXPECT_EQ(tyx->Databases().Find(u"DB")->MaxUploadSize(), 2000000);
  EXPECT_FALSE(tyx->Language.empty());
}

}  // namespace
}  // namespace qv
