// Loading a data source into the project: Tyx's LoadDB, LoadTable, UnLoadTable and UnLoadDB
// over real SQLite files and scripted sources, with the tables, keys, captions and field
// defaults that a load leaves, the dynamic (list-only) load, and every failure's words.
#include <gtest/gtest.h>

#include "automation/convert.h"
#include "model/tyx.h"
#include "platform/data/data_types.h"
#include "schema/project_loader.h"
#include "schema/table_loader.h"
#include "schema_test_support.h"
#include "support/registry.h"
#include "support/scratch_home.h"
#include "support/tyx_vars.h"

namespace qv {
namespace {

using schema_testing::MakeSqliteFile;
using schema_testing::Scratch;
using schema_testing::SqliteConnectionString;

constexpr const char* kShopSql = R"sql(
CREATE TABLE customers (id INTEGER PRIMARY KEY, name VARCHAR(40) NOT NULL, email TEXT,
  joined DATE, vip BOOLEAN);
CREATE UNIQUE INDEX ux_customers_email ON customers (email);
CREATE TABLE order_lines (order_id INTEGER NOT NULL, line_no INTEGER NOT NULL, qty SMALLINT,
  PRIMARY KEY (line_no, order_id));
CREATE VIEW big_lines AS SELECT order_id, qty FROM order_lines WHERE qty > 1;
)sql";

LoadDbRequest ConnectionString(StringView text) {
  LoadDbRequest request;
  request.db_type = u"CONNECTIONSTRING";
  request.conn_str = text;
  return request;
}

class ProjectLoaderTest : public schema_testing::SchemaTest {
 protected:
  void SetUp() override {
    SchemaTest::SetUp();
    tyx_ = MakeRef<Tyx>();
    tyx_->PrepareRoot();
    SharedStatus().SetMode(StatusMode::kQuiet);
    file_ = MakeSqliteFile(Scratch("loader") / "shop.db", kShopSql);
  }
  TyxDatabase* Db() const { return tyx_->Databases().Find(tyx_->CurrentDbName); }
  TyxTable* TableNamed(StringView name) const {
    return Db() ? Db()->Tables().list().ByName(name) : nullptr;
  }
  TyxField* FieldOf(StringView table, StringView field) const {
    TyxTable* t = TableNamed(table);
    return t ? t->Fields().list().ByName(field) : nullptr;
  }
  void LoadShop() { LoadDB(*tyx_, ConnectionString(SqliteConnectionString(file_))); }

  testing::ScratchHome home_;
  Ref<Tyx> tyx_;
  std::filesystem::path file_;
};

TEST_F(ProjectLoaderTest, FullLoadFillsTablesFieldsAndDefaults) {
  tyx_->SetRecPerPage(25);
  LoadShop();
  ASSERT_EQ(Vars().ProjErr, u"");
  ASSERT_EQ(tyx_->CurrentDbName, u"DB");
  TyxDatabase* db = Db();
  ASSERT_NE(db, nullptr);
  EXPECT_EQ(db->DBName(), u"DB");
  EXPECT_EQ(db->DBType(), u"CONNECTIONSTRING");
  EXPECT_EQ(db->DBConnstr(), SqliteConnectionString(file_));
  EXPECT_EQ(db->DBUID(), u"");
  EXPECT_EQ(db->DBDBMSName(), u"SQLite");
  EXPECT_FALSE(db->DBDBMSVer().empty());
  EXPECT_FALSE(db->DBADOVer().empty());
  EXPECT_EQ(db->DBQuoteS(), u"");
  EXPECT_EQ(Vars().CurrentDbmsName, u"SQLite");
  ASSERT_EQ(db->Tables().Count(), 3);

  TyxTable* customers = TableNamed(u"customers");
  ASSERT_NE(customers, nullptr);
  EXPECT_EQ(customers->TblSeq(), 1);
  EXPECT_EQ(customers->TblType(), u"TABLE");
  EXPECT_EQ(customers->TblKey(), u"id");
  EXPECT_TRUE(customers->TblGen());
  EXPECT_TRUE(customers->TblLoaded());
  EXPECT_EQ(customers->TblError(), u"");
  EXPECT_TRUE(customers->TblAdd());           // LoadTableDefault ran
  EXPECT_EQ(customers->TblRecPerPage(), 25);  // from the shared copy of the settings
  ASSERT_EQ(customers->Fields().Count(), 5);

  TyxField* id = FieldOf(u"customers", u"id");
  ASSERT_NE(id, nullptr);
  EXPECT_TRUE(id->FldIsPrimaryKey());
  EXPECT_TRUE(id->FldAutoIncrement());
  EXPECT_FALSE(id->FldAdd());  // auto-increment columns are not typed in
  EXPECT_EQ(id->FldHtmlTag(), u"NO");
  TyxField* name = FieldOf(u"customers", u"name");
  ASSERT_NE(name, nullptr);
  // A column that refuses null is required in both senses; LoadFldDefault ran before that.
  EXPECT_TRUE(name->FldReq());
  EXPECT_TRUE(name->FldRequired());
  EXPECT_EQ(name->FldSize(), 40);
  EXPECT_EQ(name->FldCaption(), u"name");
  EXPECT_EQ(name->FldVar(), u"x_name");
  EXPECT_TRUE(name->FldGenerate());
  EXPECT_EQ(FieldOf(u"customers", u"email")->FldUniqueIdx(), true);
  EXPECT_EQ(FieldOf(u"customers", u"email")->FldRequired(), false);
  // A date quotes with "'" unless the DBMS is Access.
  EXPECT_EQ(FieldOf(u"customers", u"joined")->FldQuoteS(), u"'");

  // The facts of the read itself (keys, views, unique flags) are the schema reader's tests.
  EXPECT_EQ(TableNamed(u"order_lines")->TblCaption(), u"order lines");
  EXPECT_FALSE(TableNamed(u"big_lines")->TblAdd());
  EXPECT_FALSE(FieldOf(u"big_lines", u"order_id")->FldRequired());

  // The one database is loaded: a second LoadDB changes nothing.
  LoadShop();
  EXPECT_EQ(Vars().ProjErr, u"database already loaded!");
  EXPECT_EQ(tyx_->Databases().Count(), 1);
}

TEST_F(ProjectLoaderTest, DynamicLoadListsTablesAndLoadsThemOneByOne) {
  tyx_->SetDynamicLoadDB(true);
  LoadShop();
  ASSERT_EQ(Vars().ProjErr, u"");
  TyxTable* customers = TableNamed(u"customers");
  ASSERT_NE(customers, nullptr);
  EXPECT_EQ(customers->Fields().Count(), 0);
  EXPECT_FALSE(customers->TblGen());
  EXPECT_FALSE(customers->TblLoaded());
  EXPECT_EQ(customers->TblKey(), u"");

  Db()->SetDBDBMSVer(u"marker");  // a one-table load writes no database property
  LoadTable(*tyx_, u"customers");
  ASSERT_EQ(Vars().ProjErr, u"");
  EXPECT_EQ(customers->Fields().Count(), 5);
  EXPECT_TRUE(customers->TblGen());
  EXPECT_TRUE(customers->TblLoaded());
  EXPECT_EQ(customers->TblKey(), u"id");
  EXPECT_TRUE(FieldOf(u"customers", u"name")->FldRequired());
  EXPECT_EQ(Db()->DBDBMSVer(), u"marker");
  EXPECT_FALSE(TableNamed(u"order_lines")->TblLoaded());

  LoadTable(*tyx_, u"customers");
  EXPECT_EQ(Vars().ProjErr, u"Quorvex: Table customers already loaded!");
  LoadTable(*tyx_, u"Customers");  // names compare exactly
  EXPECT_EQ(Vars().ProjErr, u"Quorvex: Table Customers not found!");

  UnLoadTable(*tyx_, u"customers");
  EXPECT_EQ(Vars().ProjErr, u"");
  EXPECT_EQ(customers->Fields().Count(), 0);
  EXPECT_FALSE(customers->TblLoaded());
  EXPECT_FALSE(customers->TblGen());
  UnLoadTable(*tyx_, u"customers");
  EXPECT_EQ(Vars().ProjErr, u"Quorvex: Table customers not loaded!");

  // Without DynamicLoadDB everything is loaded at once.
  UnLoadDB(*tyx_);
  tyx_->SetDynamicLoadDB(false);
  LoadShop();
  LoadTable(*tyx_, u"order_lines");
  EXPECT_EQ(Vars().ProjErr, u"Quorvex: Table order_lines already loaded!");
}

TEST_F(ProjectLoaderTest, FailuresLeaveNoDatabaseBehind) {
  LoadTable(*tyx_, u"customers");
  EXPECT_EQ(Vars().ProjErr, u"Quorvex: Database not loaded!");
  UnLoadTable(*tyx_, u"customers");
  EXPECT_EQ(Vars().ProjErr, u"Quorvex: Database not loaded!");

  const auto missing = Scratch("loader-bad") / "missing.db";
  LoadDB(*tyx_, ConnectionString(SqliteConnectionString(missing)));
  const std::string err = Vars().ProjErr.ToUtf8();
  EXPECT_EQ(err.rfind("Quorvex: \r\nError #1:\r\n   ADO Error   #", 0), 0u) << err;
  EXPECT_NE(err.find("does not exist"), std::string::npos) << err;
  EXPECT_EQ(tyx_->Databases().Count(), 0);

  LoadDbRequest access;
  access.db_type = u"ACCESS";
  LoadDB(*tyx_, access);
  EXPECT_EQ(Vars().ProjErr, u"invalid database path!");
  EXPECT_EQ(tyx_->Databases().Count(), 0);

  // A data source name left empty still reaches the driver, whose words replace the check's.
  LoadDbRequest odbc;
  odbc.db_type = u"ODBC";
  LoadDB(*tyx_, odbc);
  EXPECT_EQ(Vars().ProjErr.ToUtf8().rfind("Quorvex: \r\nError #1:", 0), 0u)
      << Vars().ProjErr.ToUtf8();
  EXPECT_EQ(tyx_->Databases().Count(), 0);

  // After the failures a good load goes through.
  LoadShop();
  EXPECT_EQ(Vars().ProjErr, u"");
  EXPECT_EQ(Db()->Tables().Count(), 3);
}

TEST_F(ProjectLoaderTest, ScriptFormAndUnknownTypes) {
  // The script form takes nine Variants by reference; a connection string's name becomes "DB".
  std::vector<Variant> args = {Variant(String(u"mine")),
                               Variant(String(u"CONNECTIONSTRING")),
                               Variant(),
                               Variant(),
                               Variant(false),
                               Variant(),
                               Variant(),
                               Variant(SqliteConnectionString(file_)),
                               Variant()};
  LoadDB(*tyx_, Args(args));
  ASSERT_EQ(Vars().ProjErr, u"");
  EXPECT_EQ(ToString(args[0]), u"DB");
  EXPECT_EQ(Db()->Tables().Count(), 3);
  UnLoadDB(*tyx_);

  // A type that no reader knows loads nothing and reports nothing: the database stands empty.
  tyx_->CurrentDbName = u"old";
  LoadDbRequest unknown;
  unknown.db_type = u"FOXPRO";
  unknown.db_name = u"ignored";
  LoadDB(*tyx_, unknown);
  EXPECT_EQ(Vars().ProjErr, u"");
  ASSERT_EQ(tyx_->Databases().Count(), 1);
  EXPECT_EQ(tyx_->CurrentDbName, u"old");
  EXPECT_EQ(Db()->Tables().Count(), 0);
}

TEST_F(ProjectLoaderTest, UnloadDropsDatabaseExtensionsAndSecurityLinks) {
  tyx_->SetSecTbl(u"users");
  UnLoadDB(*tyx_);  // no database: nothing happens, the security settings stay
  EXPECT_EQ(tyx_->SecTbl(), u"users");

  // Extensions named in the user's tree come with a successful load.
  cRegistry reg;
  reg.SectionKey = Vars().ExtensionsKey;
  reg.ValueKey = u"Charts";
  reg.ValueType = kRegSz;
  reg.SetValue(Variant(String(u"/ext/charts.zip")));
  LoadShop();
  ASSERT_EQ(Vars().ProjErr, u"");
  ASSERT_EQ(tyx_->Extensions().Count(), 1);
  EXPECT_EQ(tyx_->Extensions().Item(Variant(int32_t{1}))->Template(), u"/ext/charts.zip");

  tyx_->SetSecLoginIDFld(u"login");
  Vars().ProjErr = u"left over";
  UnLoadDB(*tyx_);
  EXPECT_EQ(tyx_->Databases().Count(), 0);
  EXPECT_EQ(tyx_->Extensions().Count(), 0);
  EXPECT_EQ(tyx_->SecTbl(), u"");
  EXPECT_EQ(tyx_->SecLoginIDFld(), u"");
  EXPECT_EQ(Vars().ProjErr, u"");
}

TEST_F(ProjectLoaderTest, AccessKindAndColumnQuirksOnTheProjectPath) {
  auto jet = std::make_shared<data::ScriptedSource>();
  jet->properties[u"DBMS Name"] = Variant(String(u"MS Jet"));
  data::ScriptedTable orders;
  orders.name = u"Orders";
  orders.columns = {{u"b", data::adInteger, 4, false},
                    {u"a", data::adInteger, 4, false},
                    {u"placed", data::adDate, 8},
                    {u"b", data::adInteger},
                    {u"note"},
                    {u"note"}};
  orders.columns[2].auto_increment = std::nullopt;
  orders.key = {u"b"};
  orders.indexes = {data::ScriptedIndex{u"PrimaryKey", true, Variant::Null(), {u"b", u"a"}}};
  jet->tables = {orders};
  LoadDB(*tyx_, ConnectionString(Scripted(u"jet-project", jet)));
  ASSERT_EQ(Vars().ProjErr, u"");
  EXPECT_EQ(Db()->DBQuoteS(), u"[");
  TyxTable* t = TableNamed(u"Orders");
  ASSERT_NE(t, nullptr);
  // Access takes its key from the index named "PrimaryKey", sorted, and no column is required.
  EXPECT_EQ(t->TblKey(), u"a,b");
  EXPECT_TRUE(FieldOf(u"Orders", u"a")->FldIsPrimaryKey());
  EXPECT_FALSE(FieldOf(u"Orders", u"a")->FldReq());
  // Duplicates: the first column stays, the words name the last duplicate.
  EXPECT_FALSE(t->TblGen());
  EXPECT_EQ(t->Fields().Count(), 4);
  EXPECT_EQ(t->TblError(), DuplicateColumnText(u"note"));
  EXPECT_EQ(t->TblError(),
            u"Quorvex: Duplicate Column Name - note found! ASP scripts may not be generated "
            u"correctly! Please rename duplicated field names to ensure correct generation!");
  // A column whose ISAUTOINCREMENT can't be read is kept but gets no defaults.
  TyxField* placed = FieldOf(u"Orders", u"placed");
  ASSERT_NE(placed, nullptr);
  EXPECT_EQ(placed->FldType(), data::adDate);
  EXPECT_EQ(placed->FldQuoteS(), u"#");  // an Access date through ADO
  EXPECT_EQ(placed->FldCaption(), u"");
  EXPECT_EQ(FieldOf(u"Orders", u"note")->FldCaption(), u"note");
}

}  // namespace
}  // namespace qv
