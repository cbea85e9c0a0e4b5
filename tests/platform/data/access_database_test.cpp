// Access files through mdbtools: the DAO-shaped reader on the Northwind sample and a Jet 4 file,
// ADO over the same files, and what happens to files that are missing, foreign or damaged.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>

#include "automation/convert.h"
#include "automation/error.h"
#include "data_test_support.h"
#include "platform/data/access_database.h"
#include "platform/data/connection.h"
#include "platform/data/data_types.h"
#include "platform/data/recordset.h"

namespace qv::data {
namespace {

using testing::SharedData;

String Nwind() {
  return String::FromUtf8(SharedData("access/nwind.mdb"));
}

const DaoField& FieldNamed(const std::vector<DaoField>& fields, StringView name) {
  const auto it =
      std::find_if(fields.begin(), fields.end(), [&](const DaoField& f) { return f.name == name; });
  if (it == fields.end()) throw std::runtime_error("no field " + String::ToUtf8(name));
  return *it;
}

TEST(AccessDatabaseTest, NorthwindTablesFieldsAndIndexes) {
  const auto db = AccessDatabase::Open(Nwind());
  EXPECT_EQ(db->Version(), u"3.0");
  EXPECT_EQ(AccessDatabase::EngineVersion(), u"3.6");

  std::vector<String> user_tables;
  int system_tables = 0;
  for (const DaoTableDef& table : db->TableDefs()) {
    if ((table.attributes & dbSystemObject) == 0 && (table.attributes & dbHiddenObject) == 0) {
      user_tables.push_back(table.name);
    } else if (table.name.view().starts_with(u"MSys")) {
      ++system_tables;
    }
  }
  std::sort(user_tables.begin(), user_tables.end());
  EXPECT_EQ(user_tables, (std::vector<String>{u"Categories", u"Customers", u"Employees",
                                              u"Order Details", u"Orders", u"Products", u"Shippers",
                                              u"Suppliers", u"Ums\u00e4tze"}));
  EXPECT_GE(system_tables, 4);

  const DaoTableDef* products = db->FindTable(u"products");
  ASSERT_NE(products, nullptr);
  const DaoField& id = FieldNamed(products->fields, u"ProductID");
  EXPECT_EQ(id.type, dbLong);
  EXPECT_EQ(id.size, 4);
  EXPECT_EQ(id.attributes & (dbAutoIncrField | dbFixedField), dbAutoIncrField | dbFixedField);
  EXPECT_EQ(ToString(id.Properties(u"Caption")), u"Product ID");
  const DaoField& name = FieldNamed(products->fields, u"ProductName");
  EXPECT_EQ(name.type, dbText);
  EXPECT_EQ(name.size, 40);
  EXPECT_EQ(name.attributes & dbVariableField, dbVariableField);
  EXPECT_TRUE(name.required);
  EXPECT_FALSE(name.allow_zero_length);
  EXPECT_EQ(FieldNamed(products->fields, u"UnitPrice").type, dbCurrency);
  EXPECT_EQ(FieldNamed(products->fields, u"Discontinued").type, dbBoolean);

  const DaoTableDef* details = db->FindTable(u"Order Details");
  ASSERT_NE(details, nullptr);
  EXPECT_EQ(ToString(FieldNamed(details->fields, u"Quantity").default_value), u"1");
  try {
    FieldNamed(details->fields, u"Discount").Properties(u"Caption");
    FAIL() << "a column without a caption must raise";
  } catch (const Error& e) {
    EXPECT_EQ(e.number(), 3270);
  }
  const auto key = std::find_if(details->indexes.begin(), details->indexes.end(),
                                [](const DaoIndex& i) { return i.name == u"PrimaryKey"; });
  ASSERT_NE(key, details->indexes.end());
  EXPECT_TRUE(key->primary);
  EXPECT_TRUE(key->unique);
  ASSERT_EQ(key->fields.size(), 2u);
  EXPECT_EQ(key->fields[0].name, u"OrderID");
  EXPECT_EQ(key->fields[1].name, u"ProductID");
  for (const DaoIndex& index : details->indexes) {
    if (index.name != u"PrimaryKey") {
      EXPECT_FALSE(index.primary) << index.name.ToUtf8();
    }
  }
}

TEST(AccessDatabaseTest, NorthwindQueriesAndViews) {
  const auto db = AccessDatabase::Open(Nwind());
  EXPECT_GE(db->QueryDefs().size(), 20u);

  const DaoQueryDef* alphabetical = db->FindQuery(u"Alphabetical List of Products");
  ASSERT_NE(alphabetical, nullptr);
  EXPECT_EQ(alphabetical->type, dbQSelect);
  EXPECT_EQ(
      alphabetical->sql,
      u"SELECT DISTINCTROW Products.*, Categories.CategoryName\r\n"
      u"FROM Categories INNER JOIN Products ON Categories.CategoryID = Products.CategoryID\r\n"
      u"WHERE (((Products.Discontinued)=No));");
  // Products.* expands to the table's columns, which keep their types.
  EXPECT_EQ(FieldNamed(alphabetical->fields, u"ProductID").type, dbLong);
  EXPECT_EQ(FieldNamed(alphabetical->fields, u"CategoryName").type, dbText);

  const DaoQueryDef* top = db->FindQuery(u"Ten Most Expensive Products");
  ASSERT_NE(top, nullptr);
  EXPECT_NE(top->sql.ToUtf8().find("SELECT DISTINCTROW TOP 10 "), std::string::npos)
      << top->sql.ToUtf8();
  EXPECT_NE(top->sql.ToUtf8().find("ORDER BY Products.UnitPrice DESC;"), std::string::npos);

  const DaoQueryDef* by_city = db->FindQuery(u"Customers and Suppliers by City");
  ASSERT_NE(by_city, nullptr);
  EXPECT_EQ(by_city->type, dbQSetOperation);
  EXPECT_NE(by_city->sql.ToUtf8().find("\r\nUNION SELECT City"), std::string::npos)
      << by_city->sql.ToUtf8();

  const DaoQueryDef* crosstab = db->FindQuery(u"Quarterly Orders by Product");
  ASSERT_NE(crosstab, nullptr);
  EXPECT_EQ(crosstab->type, dbQCrosstab);
  EXPECT_TRUE(crosstab->sql.view().starts_with(u"TRANSFORM Sum("));
  EXPECT_NE(crosstab->sql.ToUtf8().find("\r\nPIVOT "), std::string::npos);

  const DaoQueryDef* parameters = db->FindQuery(u"Employee Sales by Country");
  ASSERT_NE(parameters, nullptr);
  ASSERT_EQ(parameters->parameters.size(), 2u);
  EXPECT_TRUE(parameters->sql.view().starts_with(
      u"PARAMETERS [Beginning Date] DateTime, [Ending Date] DateTime;\r\n"));

  const DaoQueryDef* sales = db->FindQuery(u"Category Sales for 1995");
  ASSERT_NE(sales, nullptr);
  ASSERT_EQ(sales->fields.size(), 2u);
  EXPECT_EQ(sales->fields[0].name, u"CategoryName");
  EXPECT_EQ(sales->fields[1].name, u"CategorySales");
  for (const DaoQueryDef& query : db->QueryDefs()) {
    EXPECT_TRUE(query.sql.view().ends_with(u";")) << query.name.ToUtf8();
    for (const DaoField& field : query.fields) {
      EXPECT_FALSE(field.name.empty()) << query.name.ToUtf8();
    }
  }

  // The ADOX views: plain select queries only.
  const auto views = db->Views();
  auto has = [&](StringView name) {
    return std::find(views.begin(), views.end(), name) != views.end();
  };
  EXPECT_TRUE(has(u"Alphabetical List of Products"));
  EXPECT_TRUE(has(u"Ten Most Expensive Products"));
  EXPECT_FALSE(has(u"Customers and Suppliers by City"));
  EXPECT_FALSE(has(u"Quarterly Orders by Product"));
  EXPECT_FALSE(has(u"Employee Sales by Country"));
}

TEST(AccessDatabaseTest, Jet4FileAndItsRows) {
  // The DAO form with a password opens read-only; mdbtools does not check the password.
  const auto db = AccessDatabase::Open(String::FromUtf8(SharedData("access/DateTestDatabase.mdb")),
                                       false, true, u"MS Access;PWD=secret;");
  EXPECT_EQ(db->Version(), u"4.0");
  const DaoTableDef* table = db->FindTable(u"DateTest");
  ASSERT_NE(table, nullptr);
  EXPECT_EQ(FieldNamed(table->fields, u"ShortTextCol").size, 255);
  EXPECT_EQ(FieldNamed(table->fields, u"LongTextCol").type, dbMemo);
  const Rowset rows = db->ReadTable(u"DateTest");
  ASSERT_FALSE(rows.rows.empty());
  const size_t date_col = *rows.ColumnIndex(u"DateTimeCol");
  EXPECT_EQ(rows.columns[date_col].type, adDate);
  bool saw_date = false;
  for (const auto& row : rows.rows)
    saw_date |= row[date_col].type() == VarType::Date;
  EXPECT_TRUE(saw_date);
  EXPECT_THROW(db->ReadTable(u"Nope"), Error);
}

TEST(AccessDatabaseTest, AdoOverAnAccessFile) {
  Connection cn;
  cn.Open(u"Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + Nwind() + u";");
  EXPECT_EQ(ToString(cn.Properties(u"DBMS Name")), u"MS Jet");
  auto tables = cn.OpenSchema(adSchemaTables, {Variant(), Variant(), Variant(), String(u"TABLE")});
  EXPECT_EQ(tables->RecordCount(), 9);
  auto keys = cn.OpenSchema(adSchemaPrimaryKeys, {Variant(), Variant(), String(u"Order Details")});
  ASSERT_EQ(keys->RecordCount(), 2);
  EXPECT_EQ(ToString(keys->Fields(u"PK_NAME").Value()), u"PrimaryKey");

  Recordset rs;
  rs.Open(u"SELECT * FROM [Shippers] WHERE 0=1", cn);
  EXPECT_TRUE(rs.Eof());
  EXPECT_TRUE(ToBool(rs.Fields(u"ShipperID").Properties(u"ISAUTOINCREMENT")));
  EXPECT_EQ(rs.Fields(u"CompanyName").Type(), adVarWChar);
  rs.Open(u"Shippers", cn);
  EXPECT_EQ(rs.RecordCount(), 3);
  EXPECT_EQ(rs.Fields(u"ShipperID").Value().type(), VarType::Long);
  EXPECT_FALSE(ToString(rs.Fields(u"CompanyName").Value()).empty());
  rs.Open(u"SELECT * FROM [Ums\u00e4tze] WHERE 0=1", cn);
  EXPECT_GT(rs.Fields().Count(), 0);
  rs.Open(u"SELECT * FROM [Current Product List] WHERE 0=1", cn);
  EXPECT_EQ(rs.Fields(u"ProductID").Type(), adInteger);

  // Other statements go to mdbtools' SQL engine: one table, a column list and a filter.
  rs.Open(u"SELECT CompanyName, ShipperID FROM Shippers WHERE ShipperID > 1", cn);
  EXPECT_EQ(rs.RecordCount(), 2);
  EXPECT_EQ(rs.Fields(0).Name(), u"CompanyName");
  EXPECT_EQ(rs.Fields(u"ShipperID").Type(), adInteger);
  EXPECT_EQ(rs.Fields(u"ShipperID").Value().type(), VarType::Long);
  try {
    rs.Open(
        u"SELECT Orders.OrderID FROM Orders INNER JOIN Customers ON Orders.CustomerID = "
        u"Customers.CustomerID",
        cn);
    FAIL() << "joins are beyond mdbtools";
  } catch (const Error& e) {
    EXPECT_EQ(e.number(), kErrSyntax);
    EXPECT_NE(e.description().ToUtf8().find("mdbtools cannot run"), std::string::npos);
  }
  EXPECT_THROW(rs.Open(u"SELECT * FROM Nowhere WHERE 0=1", cn), Error);

  // The command line's short form opens the same file.
  Connection short_form;
  short_form.Open(u"access:" + Nwind());
  EXPECT_EQ(short_form.State(), adStateOpen);
}

TEST(AccessDatabaseTest, BadFilesEndInClearErrors) {
  const auto dir = testing::ScratchDir("access-bad");
  testing::WriteFile(dir / "notes.mdb", std::string(8192, 'x'));
  {
    std::ifstream in(SharedData("access/nwind.mdb"), std::ios::binary);
    std::string head(40960 + 1000, '\0');
    in.read(head.data(), static_cast<std::streamsize>(head.size()));
    testing::WriteFile(dir / "damaged.mdb", head);
  }
  try {
    AccessDatabase::Open(String::FromUtf8((dir / "missing.mdb").string()));
    FAIL();
  } catch (const Error& e) {
    EXPECT_EQ(e.number(), 3024);
    EXPECT_NE(e.description().ToUtf8().find("missing.mdb"), std::string::npos);
  }
  try {
    AccessDatabase::Open(String::FromUtf8((dir / "notes.mdb").string()));
    FAIL();
  } catch (const Error& e) {
    EXPECT_EQ(e.number(), 3343);
  }
  // A file cut short is refused before the library reads it (it could spend minutes there).
  try {
    AccessDatabase::Open(String::FromUtf8((dir / "damaged.mdb").string()));
    FAIL();
  } catch (const Error& e) {
    EXPECT_EQ(e.number(), 3343);
    EXPECT_NE(e.description().ToUtf8().find("damaged"), std::string::npos);
  }
  // A file with a few bytes overwritten in the middle opens or fails, but never crashes.
  {
    std::ifstream in(SharedData("access/nwind.mdb"), std::ios::binary);
    std::string bytes((std::istreambuf_iterator<char>(in)), {});
    for (size_t i = 0; i < 64; ++i)
      bytes[(i * 2654435761u) % bytes.size()] ^= 0x5A;
    testing::WriteFile(dir / "scrambled.mdb", bytes);
  }
  try {
    const auto db = AccessDatabase::Open(String::FromUtf8((dir / "scrambled.mdb").string()));
    for (const auto& table : db->TableDefs()) {
      try {
        db->ReadTable(table.name);
      } catch (const Error&) {
      }
    }
  } catch (const Error& e) {
    EXPECT_FALSE(e.description().empty());
  }
  // ACE files are read only partly by mdbtools: either the tables come, or clear words do.
  try {
    const auto db =
        AccessDatabase::Open(String::FromUtf8(SharedData("access/ASampleDatabase.accdb")));
    EXPECT_EQ(db->Version(), u"12.0");
    ASSERT_NE(db->FindTable(u"Asset Items"), nullptr);
    EXPECT_EQ(db->ReadTable(u"Asset Items").rows.size(), 65u);
  } catch (const Error& e) {
    EXPECT_NE(e.description().ToUtf8().find("ASampleDatabase.accdb"), std::string::npos);
  }
  // Through ADO the same failures carry the provider's words and fill Errors.
  Connection cn;
  try {
    cn.Open(u"access:" + String::FromUtf8((dir / "missing.mdb").string()));
    FAIL();
  } catch (const Error& e) {
    EXPECT_NE(e.description().ToUtf8().find("Could not find file"), std::string::npos);
    EXPECT_EQ(cn.GetErrors().Count(), 1);
  }
}

}  // namespace
}  // namespace qv::data
