// Tables and databases: registration orders, LoadTableDefault per table type and from the
// shared copies, the table list's differences from the field list, the one-database rule, and
// the database's end, which unloads its tables under the status window.
#include <gtest/gtest.h>

#include <string>

#include "model/databases.h"
#include "support/status.h"
#include "support/temp_file.h"
#include "support/tyx_vars.h"

namespace qv {
namespace {

class TableTest : public ::testing::Test {
 protected:
  void SetUp() override { ResetVars(); }
  void TearDown() override { ResetVars(); }

  static Ref<TyxTable> Loaded(StringView name, StringView type) {
    Ref<TyxTable> t = MakeRef<TyxTable>();
    t->SetTblName(String(name));
    t->SetTblType(String(type));
    t->LoadTableDefault();
    return t;
  }
};

TEST_F(TableTest, RegistrationOrders) {
  Ref<TyxTable> t = MakeRef<TyxTable>();
  ASSERT_EQ(t->Properties().Count(), 58);
  std::vector<std::string> not_saved;
  t->Properties().ForEach([&](TyProperty& p) {
    if (!p.FileSave()) not_saved.push_back(p.Name().ToUtf8());
  });
  EXPECT_EQ(not_saved, (std::vector<std::string>{"TblSync", "TblVar", "TblError", "TblSysGenUnits",
                                                 "TblSysGenOption", "TblUserGenOption"}));
  EXPECT_EQ(t->Properties().Find(u"TblRecPerPage")->RegFormat(), 4);
  EXPECT_FALSE(t->Properties().Find(u"TblInlineDelete")->RegSave());

  Ref<TyxDatabase> db = MakeRef<TyxDatabase>();
  ASSERT_EQ(db->Properties().Count(), 31);
  EXPECT_EQ(db->MaxUploadSize(), 2000000);
  int reg = 0;
  db->Properties().ForEach([&](TyProperty& p) { reg += p.RegSave() ? 1 : 0; });
  EXPECT_EQ(reg, 1);
}

TEST_F(TableTest, DefaultsPerTableType) {
  TyxVars& v = Vars();
  v.SortType = 2;
  v.RecPerPage = 25;
  v.RecPerPageList = u"10,25,50";
  v.ExportCsv = true;
  v.PagerStyle = 2;
  v.SecDefault = u"Default";
  Ref<TyxTable> table = Loaded(u"Order Details", u"TABLE");
  EXPECT_EQ(table->TblCaption(), u"Order Details");
  EXPECT_EQ(table->TblVar(), u"Order_Details");
  EXPECT_TRUE(table->TblAdd() && table->TblEdit() && table->TblView() && table->TblDelete() &&
              table->TblCopy() && table->TblList());
  EXPECT_EQ(table->TblSortType(), 2);
  EXPECT_EQ(table->TblRecPerPage(), 25);
  EXPECT_EQ(table->TblRecPerPageList(), u"10,25,50");
  EXPECT_TRUE(table->TblExportCsv());
  EXPECT_FALSE(table->TblExportXml());
  EXPECT_TRUE(table->TblOverwrite());
  EXPECT_TRUE(table->TblUpdatable());
  EXPECT_EQ(table->TblSrchType(), u"BASIC");
  EXPECT_EQ(table->TblSecurity(), u"Default");

  Ref<TyxTable> view = MakeRef<TyxTable>();
  view->SetTblName(u"Sales");
  view->SetTblType(u"VIEW");
  view->SetTblSQL(u"SELECT 1");
  view->LoadTableDefault();
  EXPECT_TRUE(view->TblList());
  EXPECT_FALSE(view->TblAdd() || view->TblEdit() || view->TblView() || view->TblDelete());
  EXPECT_TRUE(view->TblUpdatable());
  EXPECT_EQ(view->TblSrchType(), u"BASIC");
  EXPECT_EQ(view->TblSQL(), u"SELECT 1");

  Ref<TyxTable> report = Loaded(u"Totals", u"REPORT");
  EXPECT_FALSE(report->TblUpdatable());
  EXPECT_EQ(report->TblSrchType(), u"NONE");

  // A second run replaces the user's caption and security.
  table->SetTblCaption(u"Lines");
  table->SetTblSecurity(u"Admin");
  table->LoadTableDefault();
  EXPECT_EQ(table->TblCaption(), u"Order Details");
  EXPECT_EQ(table->TblSecurity(), u"Default");
}

TEST_F(TableTest, TableListDiffersFromFieldList) {
  Ref<TyxTables> tables = MakeRef<TyxTables>();
  for (auto* n : {u"A", u"B", u"C"})
    EXPECT_TRUE(tables->Add(n));
  EXPECT_FALSE(tables->Add(u"B"));
  EXPECT_TRUE(tables->Change(u"A", u"Order Details"));
  EXPECT_EQ(tables->Item(Variant(u"Order Details"))->TblVar(), u"Order_Details");
  EXPECT_TRUE(tables->Delete(u"B"));
  EXPECT_EQ(tables->Seq(1)->TblName(), u"Order Details");
  EXPECT_EQ(tables->Seq(2)->TblName(), u"C");
  EXPECT_FALSE(tables->Seq(3));
  // A position fetch sets both current values.
  EXPECT_EQ(tables->Item(Variant(int16_t{2}))->TblName(), u"C");
  EXPECT_EQ(tables->curName(), u"C");
  EXPECT_EQ(ToInteger(tables->curSeq()), 2);
  EXPECT_TRUE(tables->Exist(Variant(u"C")));
  EXPECT_FALSE(tables->Exist(Variant(u"c")));
}

TEST_F(TableTest, OneDatabaseOnlyAndProjErr) {
  Ref<TyxDatabases> dbs = MakeRef<TyxDatabases>();
  Vars().ProjErr = u"old failure";
  dbs->Add(u"Shop");
  EXPECT_EQ(Vars().ProjErr, u"");
  EXPECT_EQ(dbs->Count(), 1);
  EXPECT_EQ(dbs->curName(), u"Shop");
  dbs->Add(u"Shop");
  EXPECT_EQ(Vars().ProjErr, u"support 1 db only!");
  EXPECT_EQ(dbs->Count(), 1);
  EXPECT_EQ(dbs->Item(Variant(u"shop"))->DBName(), u"Shop");
  EXPECT_EQ(dbs->curSeq(), u"1");
  try {
    dbs->Item(Variant(u"Other"));
    FAIL();
  } catch (const Error& e) {
    EXPECT_EQ(e.number(), kErrObjectRequired);
  }
  try {
    dbs->Delete(Variant(u"Other"));
    FAIL();
  } catch (const Error& e) {
    EXPECT_EQ(e.description(), u"Key not found.");
  }
  // Setting SecDefault refreshes the shared copy new tables take.
  dbs->Item(Variant(u"Shop"))->SetSecDefault(u"Users");
  EXPECT_EQ(Vars().SecDefault, u"Users");
  dbs->Delete(Variant(u"Shop"));
  EXPECT_EQ(dbs->Count(), 0);
}

TEST_F(TableTest, DatabaseEndUnloadsTablesUnderTheStatusWindow) {
  testing::TempFile out;
  Vars().Status = MakeRef<TyxStatus>(StatusMode::kPlain, out.get());
  Ref<TyxTable> kept;
  {
    Ref<TyxDatabase> db = MakeRef<TyxDatabase>();
    db->Tables().Add(u"Orders");
    db->Tables().Item(Variant(u"Orders"))->SetTblType(u"TABLE");
    db->Tables().Add(u"Totals");
    db->Tables().Item(Variant(u"Totals"))->SetTblType(u"REPORT");
    kept = db->Tables().Item(Variant(u"Orders"));
  }
  const std::string shown = out.Text();
  EXPECT_NE(shown.find("Quorvex - Unloading Database..."), std::string::npos) << shown;
  EXPECT_NE(shown.find("Unloading TABLE Orders..."), std::string::npos) << shown;
  EXPECT_NE(shown.find("Unloading REPORT Totals..."), std::string::npos) << shown;
  EXPECT_EQ(SharedStatus().handle(), 0);
  EXPECT_EQ(kept->TblName(), u"Orders");  // a table held elsewhere outlives its list

  // A database without tables still opens and closes the window.
  testing::TempFile empty_out;
  Vars().Status = MakeRef<TyxStatus>(StatusMode::kPlain, empty_out.get());
  MakeRef<TyxDatabase>();
  EXPECT_NE(empty_out.Text().find("Unloading Database"), std::string::npos);
  EXPECT_EQ(SharedStatus().handle(), 0);
  Vars().Status = nullptr;
}

}  // namespace
}  // namespace qv
