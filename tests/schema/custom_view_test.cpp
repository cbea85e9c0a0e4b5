// Custom views and reports on real files: a SQLite shop with a join and computed columns, the
// copy of source settings, SQL that fails, Access files through mdbtools, and reports that
// copy a loaded table.
#include <gtest/gtest.h>

#include "automation/convert.h"
#include "model/tyx.h"
#include "schema/custom_view.h"
#include "schema/project_loader.h"
#include "schema/report.h"
#include "schema/tyx_schema.h"
#include "schema_test_support.h"
#include "support/scratch_home.h"
#include "support/tyx_vars.h"

namespace qv {
namespace {

using data::testing::SharedData;
using schema_testing::MakeSqliteFile;
using schema_testing::Scratch;
using schema_testing::SqliteConnectionString;

constexpr const char* kShopSql = R"sql(
CREATE TABLE customers (id INTEGER PRIMARY KEY, name VARCHAR(40) NOT NULL, city TEXT);
CREATE TABLE orders (id INTEGER PRIMARY KEY, customer_id INTEGER NOT NULL, total DOUBLE,
  placed DATE);
INSERT INTO customers VALUES (1, 'Ann', 'Oslo'), (2, 'Bo', 'Rome');
INSERT INTO orders VALUES (10, 1, 5.5, '2024-01-02'), (11, 2, 7.25, '2024-02-03');
)sql";

constexpr const char16_t* kJoinSql =
    u"SELECT c.name AS who, o.total, o.total * 2 AS twice, upper(c.city) -- town\n"
    u"FROM customers c INNER JOIN orders AS o ON o.customer_id = c.id";

class CustomViewTest : public schema_testing::SchemaTest {
 protected:
  void SetUp() override {
    SchemaTest::SetUp();
    tyx_ = MakeRef<Tyx>();
    tyx_->PrepareRoot();
  }
  void LoadShop() {
    const auto file = MakeSqliteFile(Scratch("custom") / "shop.db", kShopSql);
    LoadDbRequest request;
    request.db_type = u"CONNECTIONSTRING";
    request.conn_str = SqliteConnectionString(file);
    LoadDB(*tyx_, request);
    ASSERT_EQ(Vars().ProjErr, u"");
  }
  void LoadNwind() {
    LoadDbRequest request;
    request.db_type = u"ACCESS";
    request.phy_path = String::FromUtf8(SharedData("access/nwind.mdb"));
    LoadDB(*tyx_, request);
    ASSERT_EQ(Vars().ProjErr, u"");
  }
  TyxDatabase& Db() const { return *tyx_->Databases().Find(tyx_->CurrentDbName); }
  TyxTable* Table(StringView name) const { return Db().Tables().list().ByName(name); }
  TyxField& Field(StringView table, StringView name) const {
    TyxField* f = Table(table) ? Table(table)->Fields().list().ByName(name) : nullptr;
    if (!f) throw std::runtime_error("no field " + String::ToUtf8(name));
    return *f;
  }

  testing::ScratchHome home_;
  Ref<Tyx> tyx_;
};

TEST_F(CustomViewTest, ColumnsCarryTheirOriginsAndCanTakeTheSourceSettings) {
  LoadShop();
  EXPECT_EQ(ToString(CustomViewConnStr(*tyx_)), Db().DBConnstr());
  Field(u"customers", u"name").SetFldCaption(u"Customer name");

  LoadCustomView(*tyx_, u"plain", kJoinSql, false);
  ASSERT_EQ(Vars().ProjErr, u"");
  TyxTable* plain = Table(u"plain");
  ASSERT_NE(plain, nullptr);
  EXPECT_EQ(plain->TblType(), u"CUSTOMVIEW");
  EXPECT_EQ(plain->TblCustomSQL(), kJoinSql);
  EXPECT_TRUE(plain->TblGen());
  EXPECT_TRUE(plain->TblLoaded());
  EXPECT_EQ(plain->TblCustomError(), u"");
  EXPECT_EQ(plain->Fields().Count(), 4);
  TyxField& who = Field(u"plain", u"who");
  EXPECT_TRUE(who.FldAlias());
  EXPECT_EQ(who.FldSourceName(), u"c.name");
  EXPECT_EQ(who.FldSourceTable(), u"customers");
  EXPECT_EQ(who.FldSourceField(), u"name");
  EXPECT_NE(who.FldCaption(), u"Customer name");  // no copy asked for
  TyxField& total = Field(u"plain", u"total");
  EXPECT_FALSE(total.FldAlias());
  EXPECT_EQ(total.FldSourceTable(), u"orders");
  EXPECT_EQ(Field(u"plain", u"twice").FldSourceTable(), u"");
  EXPECT_EQ(Field(u"plain", u"twice").FldSourceName(), u"o.total * 2");

  LoadCustomView(*tyx_, u"copied", kJoinSql, true);
  ASSERT_EQ(Vars().ProjErr, u"");
  EXPECT_EQ(Field(u"copied", u"who").FldCaption(), u"Customer name");
  EXPECT_EQ(Field(u"copied", u"who").FldName(), u"who");
  EXPECT_EQ(Field(u"copied", u"who").FldSourceTable(), u"customers");

  // Names in use, bad SQL, no database: the words, and no table left behind.
  const int32_t count = Db().Tables().Count();
  LoadCustomView(*tyx_, u"customers", u"SELECT 1", false);
  EXPECT_EQ(Vars().ProjErr, u"Quorvex: Table/View customers already exists!");
  LoadCustomView(*tyx_, u"broken", u"SELECT nope FROM nowhere", false);
  EXPECT_NE(Vars().ProjErr.ToUtf8().find("nowhere"), std::string::npos) << Vars().ProjErr.ToUtf8();
  EXPECT_EQ(Table(u"broken"), nullptr);
  LoadCustomView(*tyx_, u"dup", u"SELECT id, id FROM customers", false);
  EXPECT_EQ(Vars().ProjErr, u"");
  EXPECT_FALSE(Table(u"dup")->TblGen());  // a repeated column: not generated, and no words
  EXPECT_EQ(Table(u"dup")->TblCustomError(), u"");
  EXPECT_EQ(Db().Tables().Count(), count + 1);

  UnLoadDB(*tyx_);
  LoadCustomView(*tyx_, u"late", u"SELECT 1", false);
  EXPECT_EQ(Vars().ProjErr, u"Quorvex: Database not loaded!");
  EXPECT_EQ(ToString(CustomViewConnStr(*tyx_)), u"");
}

TEST_F(CustomViewTest, AccessFilesRunWhatMdbtoolsCanRun) {
  LoadNwind();
  EXPECT_TRUE(ToString(CustomViewConnStr(*tyx_))
                  .view()
                  .starts_with(u"Provider=Microsoft.Jet.OLEDB.4.0;Data Source="));
  LoadCustomView(*tyx_, u"Shipper names", u"SELECT CompanyName, ShipperID FROM Shippers", true);
  ASSERT_EQ(Vars().ProjErr, u"");
  TyxField& name = Field(u"Shipper names", u"CompanyName");
  EXPECT_EQ(name.FldSourceTable(), u"Shippers");
  EXPECT_EQ(name.FldCaption(), Field(u"Shippers", u"CompanyName").FldCaption());
  // A join is beyond mdbtools: its words, and no table.
  LoadCustomView(*tyx_, u"Joined",
                 u"SELECT Orders.OrderID FROM Orders INNER JOIN Customers ON Orders.CustomerID "
                 u"= Customers.CustomerID",
                 false);
  EXPECT_NE(Vars().ProjErr.ToUtf8().find("mdbtools cannot run"), std::string::npos)
      << Vars().ProjErr.ToUtf8();
  EXPECT_EQ(Table(u"Joined"), nullptr);
}

TEST_F(CustomViewTest, OracleNamesWithBlanksAndPasswordedAccessFiles) {
  LoadShop();
  // On Oracle a view named with a blank stays, not generated, without fields or words.
  Vars().CurrentDbmsName = u"Oracle";
  LoadCustomView(*tyx_, u"my view", u"SELECT id FROM customers", false);
  EXPECT_EQ(Vars().ProjErr, u"");
  ASSERT_NE(Table(u"my view"), nullptr);
  EXPECT_FALSE(Table(u"my view")->TblGen());
  EXPECT_EQ(Table(u"my view")->Fields().Count(), 0);
  EXPECT_EQ(Table(u"my view")->TblCustomError(),
            u"Quorvex: Oracle Table/View Name [my view] contain spaces,table not loaded!");
  // The record of synchronisation follows the same rule, in its own words.
  TyxSchema record;
  EXPECT_EQ(record.LoadADOCustomView(Db().DBConnstr(), u"my view", u"SELECT id FROM customers"), 0);
  EXPECT_EQ(Vars().ProjErr, u"Quorvex: Invalid Oracle Custom View Name");
  EXPECT_FALSE(record.Tbl(1).TblGen);
  UnLoadDB(*tyx_);

  // A password goes into both connection forms; the file is read all the same.
  LoadDbRequest request;
  request.db_type = u"ACCESS";
  request.phy_path = String::FromUtf8(SharedData("access/nwind.mdb"));
  request.pwd = u"secret";
  LoadDB(*tyx_, request);
  ASSERT_EQ(Vars().ProjErr, u"");
  EXPECT_EQ(Db().DBPwd(), u"secret");
  EXPECT_NE(
      ToString(CustomViewConnStr(*tyx_)).ToUtf8().find(";Jet OLEDB:Database Password=secret;"),
      std::string::npos);
  EXPECT_NE(Table(u"Alphabetical List of Products"), nullptr);  // ADOX read the views too
}

TEST_F(CustomViewTest, ReportsCopyALoadedSource) {
  LoadShop();
  Field(u"customers", u"city").SetFldCaption(u"Town");
  ASSERT_TRUE(LoadReport(*tyx_, u"customer report", u"customers"));
  EXPECT_EQ(Vars().ProjErr, u"");
  TyxTable* report = Table(u"customer report");
  ASSERT_NE(report, nullptr);
  EXPECT_EQ(report->TblType(), u"REPORT");
  EXPECT_EQ(report->TblRptSrc(), u"customers");
  EXPECT_TRUE(report->TblLoaded());
  EXPECT_TRUE(report->TblGen());
  ASSERT_EQ(report->Fields().Count(), Table(u"customers")->Fields().Count());
  TyxField& city = Field(u"customer report", u"city");
  EXPECT_EQ(city.FldName(), u"city");
  EXPECT_EQ(city.FldCaption(), u"Town");
  EXPECT_EQ(city.FldType(), Field(u"customers", u"city").FldType());
  EXPECT_TRUE(Field(u"customer report", u"id").FldIsPrimaryKey());
  report->Fields().list().ForEach([](TyxField& f) {
    EXPECT_FALSE(f.FldAdd() || f.FldView() || f.FldEdit() || f.FldSearch() || f.FldBasicSearch() ||
                 f.FldExtendedBasicSearch() || f.FldRegister())
        << f.FldName().ToUtf8();
  });

  EXPECT_FALSE(LoadReport(*tyx_, u"customer report", u"orders"));
  EXPECT_EQ(Vars().ProjErr, u"Quorvex: Table/View customer report already exists!");
  EXPECT_FALSE(LoadReport(*tyx_, u"r2", u"nothing"));
  EXPECT_EQ(Vars().ProjErr, u"Quorvex: Table/View nothing not exist or loaded!");
  // A source that is only listed is no source.
  UnLoadTable(*tyx_, u"orders");
  EXPECT_FALSE(LoadReport(*tyx_, u"r3", u"orders"));
  EXPECT_EQ(Vars().ProjErr, u"Quorvex: Table/View orders not exist or loaded!");
  EXPECT_EQ(Table(u"r3"), nullptr);
  UnLoadDB(*tyx_);
  EXPECT_FALSE(LoadReport(*tyx_, u"r4", u"customers"));
  EXPECT_EQ(Vars().ProjErr, u"Quorvex: Database not loaded!");
}

}  // namespace
}  // namespace qv
