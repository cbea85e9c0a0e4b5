// Access files loaded into the project: Northwind's tables with their keys, captions and
// defaults, its select queries as views with the key decision of their SQL, the dynamic load,
// and files that are not Access databases or are damaged.
#include <gtest/gtest.h>

#include <fstream>

#include "automation/convert.h"
#include "automation/safe_array.h"
#include "model/tyx.h"
#include "platform/data/data_types.h"
#include "schema/dao_loader.h"
#include "schema/field_types.h"
#include "schema/project_loader.h"
#include "schema_test_support.h"
#include "support/scratch_home.h"
#include "support/tyx_vars.h"

namespace qv {
namespace {

using data::testing::SharedData;

// Remembers every question, answers each with its safe default.
class RecordingPrompter : public Prompter {
 public:
  explicit RecordingPrompter(std::vector<Prompt>& asked) : asked_(asked) {}
  Reply Ask(const Prompt& prompt) override {
    asked_.push_back(prompt);
    return Reply{};
  }

 private:
  std::vector<Prompt>& asked_;
};

LoadDbRequest Access(const std::string& file) {
  LoadDbRequest request;
  request.db_type = u"ACCESS";
  request.path = u"nwind.mdb";
  request.phy_path = String::FromUtf8(file);
  return request;
}

class DaoLoaderTest : public schema_testing::SchemaTest {
 protected:
  void SetUp() override {
    SchemaTest::SetUp();
    tyx_ = MakeRef<Tyx>();
    tyx_->PrepareRoot();
    SetCurrentPrompter(std::make_unique<RecordingPrompter>(asked_));
  }
  TyxDatabase* Db() const { return tyx_->Databases().Find(tyx_->CurrentDbName); }
  TyxTable& Table(StringView name) const {
    TyxTable* t = Db() ? Db()->Tables().list().ByName(name) : nullptr;
    if (!t) throw std::runtime_error("no table " + String::ToUtf8(name));
    return *t;
  }
  TyxField& Field(StringView table, StringView name) const {
    TyxField* f = Table(table).Fields().list().ByName(name);
    if (!f) throw std::runtime_error("no field " + String::ToUtf8(name));
    return *f;
  }

  testing::ScratchHome home_;
  Ref<Tyx> tyx_;
  std::vector<Prompt> asked_;
};

TEST_F(DaoLoaderTest, NorthwindTablesKeysCaptionsAndDefaults) {
  LoadDB(*tyx_, Access(SharedData("access/nwind.mdb")));
  ASSERT_EQ(Vars().ProjErr, u"");
  EXPECT_TRUE(asked_.empty());
  ASSERT_NE(Db(), nullptr);
  EXPECT_EQ(tyx_->CurrentDbName, u"nwind.mdb");
  EXPECT_EQ(Db()->DBType(), u"ACCESS");
  EXPECT_EQ(Db()->DBDBMSName(), u"ACCESS");
  EXPECT_EQ(Db()->DBDBMSVer(), u"3.0");
  EXPECT_EQ(Db()->DBADOVer(), u"3.6");
  EXPECT_EQ(Db()->DBOLEDBVer(), u"N.A.");
  EXPECT_EQ(Db()->DBProviderName(), u"N.A.");
  EXPECT_EQ(Db()->DBPath(), u"nwind.mdb");
  EXPECT_EQ(Db()->DBQuoteS(), u"[");
  EXPECT_EQ(Db()->DBQuoteE(), u"]");

  // Nine tables, no system table, then the views; tables stand before every query.
  int tables = 0;
  bool views_started = false;
  Db()->Tables().list().ForEach([&](TyxTable& t) {
    if (t.TblType() == u"TABLE") {
      EXPECT_FALSE(views_started) << t.TblName().ToUtf8();
      ++tables;
      EXPECT_FALSE(t.TblName().view().starts_with(u"MSys")) << t.TblName().ToUtf8();
    } else {
      views_started = true;
    }
  });
  EXPECT_EQ(tables, 9);
  EXPECT_TRUE(Table(u"Ums\u00e4tze").TblLoaded());

  EXPECT_EQ(Table(u"Order Details").TblKey(), u"OrderID,ProductID");
  EXPECT_TRUE(Field(u"Order Details", u"OrderID").FldIsPrimaryKey());
  EXPECT_TRUE(Field(u"Order Details", u"ProductID").FldIsPrimaryKey());
  EXPECT_FALSE(Field(u"Order Details", u"Quantity").FldIsPrimaryKey());
  EXPECT_EQ(ToString(Field(u"Order Details", u"Quantity").FldDefault()), u"1");
  EXPECT_EQ(Table(u"Products").TblKey(), u"ProductID");
  EXPECT_TRUE(Table(u"Products").TblGen());
  EXPECT_TRUE(Table(u"Products").TblLoaded());

  TyxField& id = Field(u"Products", u"ProductID");
  EXPECT_EQ(id.FldCaption(), u"Product ID");
  EXPECT_EQ(id.FldType(), data::adInteger);
  EXPECT_TRUE(id.FldAutoIncrement());
  EXPECT_EQ(id.FldAttribute() & (16 | 4), 16 | 4);
  TyxField& name = Field(u"Products", u"ProductName");
  EXPECT_EQ(name.FldType(), data::adVarWChar);
  EXPECT_EQ(name.FldSize(), 40);
  EXPECT_TRUE(name.FldReq());
  EXPECT_FALSE(name.FldZeroLen());
  EXPECT_EQ(name.FldAttribute() & 32, 0);  // required: not nullable
  EXPECT_EQ(name.FldQuoteS(), u"'");
  EXPECT_EQ(Field(u"Products", u"UnitPrice").FldType(), data::adCurrency);
  EXPECT_EQ(Field(u"Products", u"Discontinued").FldType(), data::adBoolean);
  EXPECT_EQ(Field(u"Orders", u"OrderDate").FldQuoteS(), u"#");
  // A column without a caption gets the defaults' caption from its name.
  EXPECT_FALSE(Field(u"Order Details", u"Discount").FldCaption().empty());
}

TEST_F(DaoLoaderTest, SelectQueriesBecomeViewsWithTheirKeys) {
  LoadDB(*tyx_, Access(SharedData("access/nwind.mdb")));
  ASSERT_EQ(Vars().ProjErr, u"");

  // Categories INNER JOIN Products on the parent's key: the child's key, which Products.*
  // brings into the view.
  TyxTable& alphabetical = Table(u"Alphabetical List of Products");
  EXPECT_EQ(alphabetical.TblType(), u"VIEW");
  EXPECT_TRUE(alphabetical.TblSQL().view().starts_with(u"SELECT DISTINCTROW Products.*"));
  EXPECT_TRUE(alphabetical.TblUpdatable());
  EXPECT_EQ(alphabetical.TblKey(), u"ProductID");
  EXPECT_TRUE(alphabetical.TblView());
  EXPECT_TRUE(alphabetical.TblLoaded());
  EXPECT_EQ(Field(u"Alphabetical List of Products", u"CategoryName").FldType(), data::adVarWChar);

  // One table: updatable, but the table's key isn't inherited.
  TyxTable& top = Table(u"Ten Most Expensive Products");
  EXPECT_TRUE(top.TblUpdatable());
  EXPECT_EQ(top.TblKey(), u"");

  // Only what ADOX lists: no union, crosstab or parameter query.
  for (StringView name :
       {StringView(u"Customers and Suppliers by City"), StringView(u"Quarterly Orders by Product"),
        StringView(u"Employee Sales by Country")}) {
    EXPECT_EQ(Db()->Tables().list().ByName(name), nullptr) << String::ToUtf8(name);
  }
  // Every view's decision is one of the analyser's: a grouped query is read-only.
  int read_only = 0;
  Db()->Tables().list().ForEach([&](TyxTable& t) {
    if (t.TblType() == u"VIEW" && !t.TblUpdatable()) ++read_only;
  });
  EXPECT_GT(read_only, 0);
}

TEST_F(DaoLoaderTest, DynamicLoadListsThenLoadsOneTable) {
  tyx_->SetDynamicLoadDB(true);
  LoadDB(*tyx_, Access(SharedData("access/nwind.mdb")));
  ASSERT_EQ(Vars().ProjErr, u"");
  TyxTable& products = Table(u"Products");
  EXPECT_FALSE(products.TblLoaded());
  EXPECT_FALSE(products.TblGen());
  EXPECT_EQ(products.Fields().Count(), 0);
  const String version = Db()->DBDBMSVer();

  LoadTable(*tyx_, u"Products");
  ASSERT_EQ(Vars().ProjErr, u"");
  EXPECT_TRUE(products.TblLoaded());
  EXPECT_EQ(products.TblKey(), u"ProductID");
  EXPECT_EQ(Field(u"Products", u"ProductID").FldCaption(), u"Product ID");
  EXPECT_EQ(Db()->DBDBMSVer(), version);
  LoadTable(*tyx_, u"Alphabetical List of Products");
  ASSERT_EQ(Vars().ProjErr, u"");
  EXPECT_TRUE(Table(u"Alphabetical List of Products").TblLoaded());
  EXPECT_FALSE(Table(u"Orders").TblLoaded());
}

TEST_F(DaoLoaderTest, ForeignAndDamagedFilesFailCleanly) {
  const auto dir = data::testing::ScratchDir("dao-bad");
  data::testing::WriteFile(dir / "notes.mdb", std::string(8192, 'x'));
  LoadDB(*tyx_, Access((dir / "notes.mdb").string()));
  std::string err = Vars().ProjErr.ToUtf8();
  EXPECT_EQ(err.rfind("\r\nError # ", 0), 0u) << err;
  EXPECT_NE(err.find("\r\nDescription  "), std::string::npos) << err;
  EXPECT_EQ(tyx_->Databases().Count(), 0);
  // ADOX failed first: one message box, in the reader's words.
  ASSERT_EQ(asked_.size(), 1u);
  EXPECT_EQ(asked_[0].text.ToUtf8().rfind("Queries not loaded due to ADOX Error: ", 0), 0u);

  {
    std::ifstream in(SharedData("access/nwind.mdb"), std::ios::binary);
    std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    bytes.resize(bytes.size() / 3);
    data::testing::WriteFile(dir / "cut.mdb", bytes);
  }
  LoadDB(*tyx_, Access((dir / "cut.mdb").string()));
  EXPECT_FALSE(Vars().ProjErr.empty());
  EXPECT_EQ(tyx_->Databases().Count(), 0);

  LoadDB(*tyx_, Access((dir / "missing.mdb").string()));
  EXPECT_NE(Vars().ProjErr.ToUtf8().find("Error # "), std::string::npos);
  EXPECT_EQ(tyx_->Databases().Count(), 0);

  // After the failures the real file loads.
  LoadDB(*tyx_, Access(SharedData("access/nwind.mdb")));
  EXPECT_EQ(Vars().ProjErr, u"");
}

TEST(DaoRulesTest, TablesTakenListsAndAttributes) {
  data::DaoTableDef t;
  t.name = u"Switchboard Items";
  EXPECT_FALSE(IsLoadableTableDef(t));
  t.name = u"switchboard items";
  EXPECT_TRUE(IsLoadableTableDef(t));
  t.attributes = data::dbHiddenObject;
  EXPECT_FALSE(IsLoadableTableDef(t));
  t.attributes = static_cast<int32_t>(0x80000000);  // one bit of the system mask is enough
  EXPECT_FALSE(IsLoadableTableDef(t));

  EXPECT_FALSE(IsInList(Variant(String(u"a")), Variant(String(u"a"))));
  const Variant list(SafeArray::FromValues(
      {Variant(String(u"zero")), Variant(String(u"one")), Variant(String(u"Two"))}));
  EXPECT_FALSE(IsInList(list, Variant(String(u"zero"))));  // index 0 is never looked at
  EXPECT_TRUE(IsInList(list, Variant(String(u"Two"))));
  EXPECT_FALSE(IsInList(list, Variant(String(u"two"))));

  data::DaoField f;
  f.attributes = data::dbFixedField | data::dbAutoIncrField;
  f.required = true;
  EXPECT_EQ(MapDaoAttributes(f), 16 | 4);
  f.attributes = 0;
  f.required = false;
  EXPECT_EQ(MapDaoAttributes(f), 32);

  // The DAO types in the ADO vocabulary, as records and project fields both take them.
  TySchemaField r;
  SetSchemaFieldTypeDao(r, data::dbDate);
  EXPECT_EQ(r.FldType, data::adDBTimeStamp);
  EXPECT_EQ(r.FldQuoteS, u"#");
  SetSchemaFieldTypeDao(r, data::dbLongBinary);  // a long binary has no quotes on this path
  EXPECT_EQ(r.FldType, data::adLongVarBinary);
  EXPECT_TRUE(r.FldSupport);
  EXPECT_EQ(r.FldQuoteS, u"");
  SetSchemaFieldTypeDao(r, data::dbText);
  SetSchemaFieldTypeDao(r, 17);  // unknown: -1, and the quotes keep what they held
  EXPECT_EQ(r.FldType, -1);
  EXPECT_FALSE(r.FldSupport);
  EXPECT_EQ(r.FldQuoteS, u"'");
  SetSchemaFieldTypeDao(r, data::dbBinary);
  EXPECT_EQ(r.FldType, data::adBinary);
  EXPECT_FALSE(r.FldSupport);

  EXPECT_EQ(JetConnectionString(u"/a/b.mdb", u""),
            u"Provider=Microsoft.Jet.OLEDB.4.0;Data Source=/a/b.mdb;");
  EXPECT_EQ(JetConnectionString(u"/a/b.mdb", u"pw"),
            u"Provider=Microsoft.Jet.OLEDB.4.0;Data Source=/a/b.mdb;Jet OLEDB:Database "
            u"Password=pw;");
}

}  // namespace
}  // namespace qv
