// CheckDB, SynchronizeDB, the custom view and report steps and the load-time comparison over
// real SQLite files that change between two loads: the counts, what each item keeps and
// renews, and the questions asked.
#include <filesystem>
#include <string>

#include "automation/convert.h"
#include "platform/data/data_test_support.h"
#include "sync/custom_sync.h"
#include "sync/difference_check.h"
#include "sync/sync_dialogs.h"
#include "sync/sync_fixture.h"
#include "sync/table_sync.h"

namespace qv {
namespace {

constexpr const char* kShop = R"sql(
CREATE TABLE customers (id INTEGER PRIMARY KEY, name VARCHAR(40) NOT NULL, city VARCHAR(30),
  born DATE);
CREATE TABLE orders (id INTEGER PRIMARY KEY, customer_id INTEGER NOT NULL, total NUMERIC);
CREATE TABLE lines (order_id INTEGER NOT NULL, line_no INTEGER NOT NULL, qty INTEGER,
  PRIMARY KEY (order_id, line_no));
CREATE VIEW big_orders AS SELECT id, total FROM orders WHERE total > 100;
)sql";

class SqliteSyncTest : public sync_testing::SyncTest {
 protected:
  void SetUp() override {
    SyncTest::SetUp();
    file_ = home_.root() / "shop.db";
    Exec(kShop);
    Load(*tyx_, ConnStr());
  }
  String ConnStr() const {
    return u"Provider=SQLite;Data Source=" + String::FromUtf8(file_.string());
  }
  void Exec(const char* sql) { data::testing::ExecSqlite(file_, sql); }
  int16_t Check(DifferenceList* found = nullptr) { return CheckDB(*tyx_, found); }

  std::filesystem::path file_;
};

TEST_F(SqliteSyncTest, CheckCountsEachKindOfChange) {
  EXPECT_EQ(Check(), 0);
  EXPECT_EQ(tyx_->ProjErr().ToUtf8(), "");

  // A key listed in another order is the same key.
  Table(u"lines")->SetTblKey(u"line_no,order_id");
  EXPECT_EQ(Check(), 0);

  // One new column: new, unmatched and a changed table.
  Exec("ALTER TABLE customers ADD COLUMN email TEXT");
  DifferenceList found;
  EXPECT_EQ(Check(&found), 3);
  ASSERT_EQ(found.size(), 1u);
  EXPECT_EQ(found[0].kind, SchemaDifference::kFieldAdded);
  EXPECT_EQ(found[0].field, u"email");

  // A dropped column shows only as a changed table, and the listing names it.
  Exec("ALTER TABLE customers DROP COLUMN email; ALTER TABLE customers DROP COLUMN born");
  found.clear();
  EXPECT_EQ(Check(&found), 1);
  ASSERT_EQ(found.size(), 1u);
  EXPECT_EQ(found[0].kind, SchemaDifference::kFieldRemoved);
  EXPECT_EQ(found[0].field, u"born");

  // A table that wasn't loaded is of no interest, whatever changed in it.
  Table(u"customers")->SetTblLoaded(false);
  EXPECT_EQ(Check(), 0);
  Table(u"customers")->SetTblLoaded(true);
  Exec("ALTER TABLE customers ADD COLUMN born DATE");

  // A view that became a table: one new table with its 2 fields counted twice over, one
  // deleted view whose 2 fields go unmatched.
  Exec("DROP VIEW big_orders; CREATE TABLE big_orders (id INTEGER, total NUMERIC)");
  EXPECT_EQ(Check(), 1 + 2 + 1 + 2);

  // An unreadable source: -1 and the reader's words; nothing else changes.
  Exec("DROP TABLE big_orders; CREATE VIEW big_orders AS SELECT id, total FROM orders");
  Db().SetDBConnstr(u"Provider=SQLite;Data Source=" + String::FromUtf8(file_.string()) +
                    u".missing");
  EXPECT_EQ(Check(), -1);
  EXPECT_NE(tyx_->ProjErr().ToUtf8(), "");
  EXPECT_EQ(Db().Tables().Count(), 4);
}

TEST_F(SqliteSyncTest, SynchronizeKeepsSettingsAndRenewsWhatTheSchemaSays) {
  Field(u"customers", u"name")->SetFldCaption(u"Full name");
  Field(u"customers", u"city")->SetFldCaption(u"Town");
  Field(u"customers", u"born")->SetFldCaption(u"Birthday");
  Table(u"orders")->SetTblCaption(u"Purchases");
  Table(u"lines")->SetTblCaption(u"Order lines");
  const int16_t born_seq = Field(u"customers", u"born")->FldSeq();

  // name grows, city changes type, born stays; orders loses total; lines changes its key;
  // a table comes and one goes.
  Exec(R"sql(
    CREATE TABLE c2 (id INTEGER PRIMARY KEY, name VARCHAR(80) NOT NULL, city INTEGER, born DATE);
    DROP TABLE customers; ALTER TABLE c2 RENAME TO customers;
    DROP VIEW big_orders;
    ALTER TABLE orders DROP COLUMN total;
    CREATE TABLE l2 (order_id INTEGER NOT NULL, line_no INTEGER NOT NULL, qty INTEGER,
      PRIMARY KEY (order_id));
    DROP TABLE lines; ALTER TABLE l2 RENAME TO lines;
    CREATE TABLE suppliers (sid INTEGER PRIMARY KEY, label TEXT);
    CREATE VIEW big_orders AS SELECT id FROM orders;
  )sql");
  Answer({u"Keep"});
  SynchronizeDB(*tyx_);
  EXPECT_EQ(tyx_->ProjErr().ToUtf8(), "");

  TyxField* name = Field(u"customers", u"name");
  ASSERT_NE(name, nullptr);
  EXPECT_EQ(name->FldCaption(), u"Full name");  // kept
  EXPECT_EQ(name->FldSize(), 80);               // renewed
  TyxField* city = Field(u"customers", u"city");
  ASSERT_NE(city, nullptr);
  EXPECT_EQ(city->FldCaption(), u"city");  // another type: back to the defaults
  EXPECT_EQ(city->FldType(), 3);
  EXPECT_EQ(Field(u"customers", u"born")->FldCaption(), u"Birthday");
  EXPECT_EQ(Field(u"customers", u"born")->FldSeq(), born_seq);

  EXPECT_EQ(Field(u"orders", u"total"), nullptr);  // dropped field deleted
  EXPECT_EQ(Table(u"orders")->TblCaption(), u"Purchases");
  EXPECT_EQ(Table(u"orders")->Fields().Count(), 2);

  // The key question was asked once, for the table, and "Keep" kept the old key.
  ASSERT_EQ(asked_.size(), 1u);
  EXPECT_EQ(asked_[0].text,
            u"Primary key for \"lines\" has been modified. Keep/Update primary Key?");
  EXPECT_EQ(Table(u"lines")->TblKey(), u"line_no,order_id");
  EXPECT_EQ(Table(u"lines")->TblCaption(), u"Order lines");

  ASSERT_NE(Table(u"suppliers"), nullptr);  // new, with defaults
  EXPECT_TRUE(Table(u"suppliers")->TblLoaded());
  EXPECT_EQ(Table(u"suppliers")->TblKey(), u"sid");
  EXPECT_TRUE(Field(u"suppliers", u"sid")->FldIsPrimaryKey());
  EXPECT_EQ(Field(u"suppliers", u"label")->FldCaption(), u"label");

  EXPECT_EQ(Table(u"big_orders")->Fields().Count(), 1);
  EXPECT_EQ(Check(), 1);  // in step now, apart from the key the user kept
}

TEST_F(SqliteSyncTest, RenamesAreAskedForAndMappedOrDropped) {
  Table(u"orders")->SetTblCaption(u"Purchases");
  Field(u"orders", u"total")->SetFldCaption(u"Sum");
  Field(u"customers", u"city")->SetFldCaption(u"Town");
  Exec(R"sql(
    ALTER TABLE orders RENAME TO purchases;
    ALTER TABLE customers RENAME COLUMN city TO town;
    ALTER TABLE lines RENAME TO order_lines;
  )sql");
  // Tables first, new ones in schema order and old ones in list order; then the fields.
  Answer({u",orders", u"city"});
  SynchronizeDB(*tyx_);
  ASSERT_EQ(asked_.size(), 2u);
  EXPECT_EQ(asked_[0].new_names, (std::vector<String>{u"order_lines", u"purchases"}));
  EXPECT_EQ(asked_[0].names, (std::vector<String>{u"lines", u"orders"}));
  EXPECT_EQ(asked_[0].title, u"New table found in schema");
  EXPECT_EQ(asked_[0].text,
            u"To use old settings, please select the old table(s) which you would like to map "
            u"to the new table(s)");
  EXPECT_EQ(asked_[0].new_caption, u"New table");
  EXPECT_EQ(asked_[0].old_caption, u"Old table");
  EXPECT_EQ(asked_[1].title, u"Table: customers - New fields found in schema");
  EXPECT_EQ(asked_[1].new_caption, u"New field");

  ASSERT_NE(Table(u"purchases"), nullptr);
  EXPECT_EQ(Table(u"purchases")->TblCaption(), u"Purchases");
  EXPECT_EQ(Field(u"purchases", u"total")->FldCaption(), u"Sum");
  EXPECT_EQ(Table(u"orders"), nullptr);
  EXPECT_EQ(Table(u"lines"), nullptr);  // mapped to nothing: gone, and the new one has defaults
  EXPECT_EQ(Table(u"order_lines")->TblCaption(), u"order lines");
  EXPECT_EQ(Field(u"customers", u"town")->FldCaption(), u"Town");
  EXPECT_EQ(Field(u"customers", u"city"), nullptr);

  // A table dropped with nothing new: deleted without a question.
  Exec("DROP TABLE order_lines");
  Answer({});
  SynchronizeDB(*tyx_);
  EXPECT_TRUE(asked_.empty());
  EXPECT_EQ(Table(u"order_lines"), nullptr);

  // With DynamicLoadDB a new table only appears in the list.
  tyx_->SetDynamicLoadDB(true);
  Exec("CREATE TABLE notes (id INTEGER, body TEXT)");
  SynchronizeDB(*tyx_);
  ASSERT_NE(Table(u"notes"), nullptr);
  EXPECT_FALSE(Table(u"notes")->TblLoaded());
  EXPECT_EQ(Table(u"notes")->Fields().Count(), 0);
}

TEST_F(SqliteSyncTest, CustomViewsAndReportsFollowTheirSources) {
  tyx_->Services().LoadCustomView(*tyx_, Variant(String(u"rich")),
                                  Variant(String(u"SELECT id, name AS who FROM customers")),
                                  Variant(false));
  ASSERT_EQ(tyx_->ProjErr().ToUtf8(), "");
  ASSERT_TRUE(tyx_->Services().LoadReport(*tyx_, Variant(String(u"order_report")),
                                          Variant(String(u"orders"))));
  ASSERT_TRUE(tyx_->Services().LoadReport(*tyx_, Variant(String(u"rich_report")),
                                          Variant(String(u"rich"))));
  Field(u"rich", u"who")->SetFldCaption(u"Customer");
  EXPECT_EQ(Check(), 0);

  // The view's SQL no longer runs: the error stays on it, it counts 0, it keeps its fields.
  Exec("ALTER TABLE customers RENAME COLUMN name TO full_name");
  DifferenceList found;
  const int16_t n = Check(&found);
  EXPECT_GE(n, 1);  // the customers table itself changed
  EXPECT_NE(Table(u"rich")->TblCustomError().ToUtf8(), "");
  SyncCustom(*tyx_, u"rich");
  EXPECT_EQ(tyx_->ProjErr().ToUtf8(), "");
  EXPECT_NE(Table(u"rich")->TblCustomError().ToUtf8(), "");
  EXPECT_EQ(Field(u"rich", u"who")->FldCaption(), u"Customer");

  // A report on a view in error can't follow it.
  SyncReport(*tyx_, u"rich_report");
  EXPECT_EQ(Table(u"rich_report")->TblCustomError(), u"Quorvex: Source Table Error");

  // A report field whose source field was dropped goes; the others keep their settings.
  Field(u"order_report", u"customer_id")->SetFldCaption(u"Buyer");
  Exec("DROP VIEW big_orders; ALTER TABLE orders DROP COLUMN total");
  Answer({});
  SynchronizeDB(*tyx_);
  EXPECT_EQ(Field(u"order_report", u"total"), nullptr);
  EXPECT_EQ(Field(u"order_report", u"customer_id")->FldCaption(), u"Buyer");
  EXPECT_FALSE(Field(u"order_report", u"customer_id")->FldAdd());  // still a report's field
  EXPECT_EQ(Table(u"order_report")->TblCustomError(), u"");

  // The source is gone: the check says so in ProjErr and counts on.
  Exec("DROP TABLE orders");
  Table(u"orders")->SetTblName(u"orders");
  Db().Tables().Delete(u"orders");
  EXPECT_GE(Check(), 0);
  EXPECT_EQ(tyx_->ProjErr(), u"Quorvex: Source Table not found");
  EXPECT_EQ(Table(u"order_report")->TblCustomError(), u"Quorvex: Source Table not found");
}

TEST_F(SqliteSyncTest, LoadComparesAndSynchronisesOnRequest) {
  Field(u"customers", u"name")->SetFldCaption(u"Full name");
  const std::string project = (home_.root() / "shop.qvp").string();
  tyx_->Save(String::FromUtf8(project));
  Exec("ALTER TABLE customers ADD COLUMN email TEXT");

  // Keep: the question is asked, nothing is merged.
  Answer({u"Keep"});
  Ref<Tyx> kept = CreateTyx();
  kept->Load(String::FromUtf8(project));
  EXPECT_EQ(kept->ProjErr().ToUtf8(), "");
  ASSERT_EQ(asked_.size(), 1u);
  EXPECT_EQ(asked_[0].text, kSyncDefaultMessage);
  EXPECT_EQ(kept->db()->Tables().list().ByName(u"customers")->Fields().Count(), 4);

  // Nobody to answer means update.
  Answer({});
  Ref<Tyx> updated = CreateTyx();
  updated->Load(String::FromUtf8(project));
  TyxTable* customers = updated->db()->Tables().list().ByName(u"customers");
  EXPECT_EQ(customers->Fields().Count(), 5);
  EXPECT_EQ(customers->Fields().list().ByName(u"name")->FldCaption(), u"Full name");

  // An unreachable database: the message, the reader's words, the project as read.
  std::filesystem::rename(file_, file_.string() + ".away");
  Answer({});
  Ref<Tyx> lost = CreateTyx();
  lost->Load(String::FromUtf8(project));
  ASSERT_EQ(asked_.size(), 1u);
  EXPECT_TRUE(asked_[0].text.view().starts_with(u"Unable to load database information! Reason: "));
  EXPECT_TRUE(asked_[0].text.view().ends_with(u". Please check if correct database is in use."));
  EXPECT_NE(lost->ProjErr().ToUtf8(), "");
  EXPECT_EQ(lost->db()->Tables().Count(), 4);
}

// Loading an Access file and checking it must read the file the same way: a fresh project,
// and a custom view over it, agree with the file. Northwind's "Invoices" names two columns
// "CompanyName" and "Invoices Filter" can't be run by mdbtools: both once made a fresh project
// differ from its own file.
using AccessSyncTest = sync_testing::SyncTest;
TEST_F(AccessSyncTest, AFreshProjectAgreesWithItsFile) {
  const String file = String::FromUtf8(data::testing::SharedData("access/nwind.mdb"));
  std::vector<Variant> args = {Variant(String()),
                               Variant(String(u"ACCESS")),
                               Variant(String(u"nwind.mdb")),
                               Variant(file),
                               Variant(false),
                               Variant(String()),
                               Variant(String()),
                               Variant(String()),
                               Variant(String())};
  tyx_->Services().LoadDB(*tyx_, args);
  ASSERT_EQ(tyx_->ProjErr().ToUtf8(), "");
  tyx_->Services().LoadCustomView(
      *tyx_, Variant(String(u"cheap")),
      Variant(String(u"SELECT ProductID, ProductName FROM Products WHERE UnitPrice < 10")),
      Variant(false));
  ASSERT_EQ(tyx_->ProjErr().ToUtf8(), "");
  DifferenceList found;
  EXPECT_EQ(CheckDB(*tyx_, &found), 0);
  for (const SchemaDifference& d : found) {
    EXPECT_EQ(d.kind, SchemaDifference::kUnreadable) << d.table.ToUtf8();
  }
  EXPECT_EQ(Table(u"Invoices")->Fields().Count(), 25);
}

TEST(SyncDialogs, AnswersOfTheForms) {
  testing::ScratchHome home;
  SharedStatus().SetMode(StatusMode::kQuiet);
  std::vector<Prompt> asked;
  const auto answer = [&](std::vector<String> answers) {
    asked.clear();
    SetCurrentPrompter(
        std::make_unique<sync_testing::RecordingPrompter>(asked, std::move(answers)));
  };
  answer({u"cancel", u"b,"});
  // A cancelled mapping gives back the old list as it came in.
  EXPECT_EQ(ShowMapDialog(u"t", u"x", u"New", u"Old", u"n1,n2", u"a,b,c", true), u"a,b,c");
  EXPECT_EQ(ShowMapDialog(u"t", u"x", u"New", u"Old", u"n1,n2", u"a,b,c", true), u"b,");
  // frmSync: nobody answering means update.
  EXPECT_FALSE(AskKeepDefinition(u""));
  EXPECT_EQ(asked.back().text, kSyncDefaultMessage);
  EXPECT_EQ(asked.back().buttons, (std::vector<String>{u"Update", u"Keep"}));

  answer({u"b", u"skip"});
  EXPECT_EQ(SelectTableForm(u"new_t", u"a,b"), u"b");
  EXPECT_EQ(asked.back().title, u"Quorvex - New table found");
  EXPECT_EQ(SelectFieldForm(u"t", u"f", u"x,y"), u"");  // cmdSkip
  EXPECT_EQ(asked.back().title, u"Quorvex - New field found");
}

}  // namespace
}  // namespace qv
