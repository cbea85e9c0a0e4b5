// The root object as a host meets it: creation in its steps, the 99 settings in file order
// with their flags, the project's lifecycle (AddProj, DeleteProj, the one database, the
// extension calls), settings by name through the object interface, and the entry points that
// this build does not provide yet.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "automation/convert.h"
#include "automation/error_of.h"
#include "root/create_tyx.h"
#include "root/root_fixture.h"

namespace qv {
namespace {

using TyxTest = RootFixture;

TEST_F(TyxTest, SettingsAreRegisteredInFileOrderWithTheirFlags) {
  Ref<Tyx> tyx = CreateTyx();
  std::vector<std::string> names;
  int reg_text = 0, reg_number = 0;
  tyx->Properties().ForEach([&](TyProperty& p) {
    names.push_back(p.Name().ToUtf8());
    EXPECT_TRUE(p.FileSave() && p.Sync()) << names.back();
    EXPECT_EQ(p.RegSave(), p.RegFormat() != 0) << names.back();
    reg_text += p.RegFormat() == 1;
    reg_number += p.RegFormat() == 4;
  });
  ASSERT_EQ(names.size(), 99u);
  EXPECT_EQ(names[0], "ProjName");
  EXPECT_EQ(names[3], "CodePage");
  EXPECT_EQ(names[33], "Template");
  EXPECT_EQ(names[34], "Destination");
  EXPECT_EQ(names[53], "defaultDateFormat");
  EXPECT_EQ(names[98], "AuditTrailPath");
  EXPECT_EQ(reg_text, 57);
  EXPECT_EQ(reg_number, 16);
  EXPECT_EQ(tyx->Properties().Find(u"defaultDateFormat")->RegFormat(), 1);
  EXPECT_EQ(tyx->Properties().Find(u"defaultDateFormat")->DataType(), u"Integer");
  EXPECT_EQ(tyx->Properties().Find(u"SmtpServerPort")->DataType(), u"Long");
}

TEST_F(TyxTest, CreationWithEmptyTreesGivesTypedEmptinessAndFixedValues) {
  Ref<Tyx> tyx = CreateTyx();
  const TyxVars& v = Vars();
  EXPECT_EQ(v.SettingsKey, u"Software\\Quorvex\\5.3\\Settings");
  EXPECT_EQ(v.ExtensionsKey, u"Software\\Quorvex\\5.3\\Extensions");
  EXPECT_EQ(v.DefaultPage, u"default.asp");
  EXPECT_FALSE(v.PersonalFolder.empty());
  const String version = tyx->EngineVersion();
  EXPECT_EQ(std::count(version.begin(), version.end(), u'.'), 3);
  EXPECT_EQ(version.view().substr(0, 4), u"5.3.");
  EXPECT_FALSE(tyx->ProjInit());

  EXPECT_EQ(tyx->BodyFont(), u"");
  EXPECT_EQ(tyx->Properties().Find(u"BodyFont")->Value().type(), VarType::String);
  EXPECT_EQ(tyx->RecPerPage(), 0);
  EXPECT_FALSE(tyx->ExportCsv());
  EXPECT_EQ(tyx->defaultDateFormat(), 0);
  EXPECT_EQ(v.DefaultDateFormat, 0);
  EXPECT_EQ(tyx->XMLEncoding(), u"utf-8");
  EXPECT_EQ(tyx->UnloadThresholdCount, 20);
  EXPECT_EQ(tyx->SecType(), u"None");
  EXPECT_TRUE(tyx->AutoSync());
  EXPECT_TRUE(tyx->OtherGen() && tyx->OtherOverwrite() && tyx->PromptOnOverwrite());
  EXPECT_EQ(tyx->PagerStyle(), 2);
  EXPECT_TRUE(tyx->Properties().Find(u"Destination")->Value().is_empty());
}

TEST_F(TyxTest, ProjectLifecycle) {
  Ref<Tyx> tyx = CreateTyx();
  EXPECT_EQ(tyx->DBCnt(), 0);
  EXPECT_NE(ErrorOf([&] { tyx->db(); }), 0);
  EXPECT_NE(ErrorOf([&] { tyx->Get(u"db"); }), 0);

  tyx->AddProj(u"Shop");
  EXPECT_TRUE(tyx->ProjInit());
  EXPECT_EQ(ToString(tyx->Get(u"PROJNAME")), u"Shop");
  tyx->Databases().Add(u"DB");
  tyx->CurrentDbName = u"DB";
  EXPECT_EQ(tyx->DBCnt(), 1);
  EXPECT_EQ(tyx->db()->DBName(), u"DB");
  tyx->db()->Tables().Add(u"Orders");
  tyx->AddExtension(u"Charts", u"charts.zip");

  tyx->DeleteProj();
  EXPECT_FALSE(tyx->ProjInit());
  EXPECT_EQ(tyx->DBCnt(), 0);
  EXPECT_EQ(tyx->CurrentDbName, u"");
  EXPECT_EQ(tyx->Properties().Count(), 99);
  tyx->Properties().ForEach(
      [](TyProperty& p) { EXPECT_TRUE(p.Value().is_empty()) << p.Name().ToUtf8(); });
  EXPECT_FALSE(tyx->AutoSync());
  EXPECT_EQ(tyx->SecType(), u"");
  EXPECT_EQ(tyx->Extensions().Count(), 1);  // the extension list stays
  // The settings still answer by name, and the member ids may be cached again.
  EXPECT_EQ(ToString(tyx->Get(u"ProjName")), u"");
  EXPECT_NE(tyx->MemberCacheKey(), nullptr);

  tyx->AddProj(u"Again");
  EXPECT_TRUE(tyx->AutoSync());
  EXPECT_EQ(tyx->SecType(), u"None");
}

TEST_F(TyxTest, MembersByNameForScripts) {
  Ref<Tyx> tyx = CreateTyx();
  tyx->Let(u"LHWND", Variant(int16_t{7}));
  EXPECT_EQ(tyx->hwnd(), 7);

  tyx->Let(u"sqlquote", Variant(u"Backquote"));
  EXPECT_EQ(tyx->SQLQuote(), u"Backquote");
  tyx->Let(u"codepage", Variant(u"65001"));
  EXPECT_EQ(tyx->Get(u"CodePage").type(), VarType::Long);
  tyx->Let(u"Destination", Variant(u"/srv/site"));
  EXPECT_EQ(Vars().Destination, u"/srv/site");
  tyx->SetDestination(u"/srv/other");
  EXPECT_EQ(Vars().Destination, u"/srv/other");
  EXPECT_EQ(ErrorOf([&] { tyx->Let(u"BodyLeftMargin", Variant(u"wide")); }), kErrTypeMismatch);

  tyx->Let(u"ProjErr", Variant(u"outside"));
  EXPECT_EQ(Vars().ProjErr, u"outside");
  Ref<Object> extensions(tyx->Get(u"Extensions").as_object());
  EXPECT_EQ(ToLong(extensions->Get(u"Count")), 0);

  tyx->Call(u"GenScript");  // a soft failure: the words come back through ProjErr
  EXPECT_EQ(ToString(tyx->Get(u"ProjErr")), u"Quorvex: Database not loaded! Generation aborted!");
  EXPECT_EQ(ErrorOf([&] { tyx->Call(u"LoadDB", {}); }), kErrWrongArgCount);
}

}  // namespace
}  // namespace qv
