// The demo's sample database: examples/shop.sql builds with the real SQLite library and reads
// back through the data access layer as the schema readers will read it.
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "automation/convert.h"
#include "data_test_support.h"
#include "platform/data/connection.h"
#include "platform/data/data_types.h"
#include "platform/data/recordset.h"

namespace qv::data {
namespace {

TEST(ShopExampleTest, BuildsAndReadsBackThroughTheLayer) {
  std::ifstream in(std::string(QV_SOURCE_DIR) + "/examples/shop.sql");
  ASSERT_TRUE(in) << "examples/shop.sql is missing";
  std::stringstream script;
  script << in.rdbuf();
  const auto file =
      testing::MakeSqliteFile(testing::ScratchDir("shop") / "shop.db", script.str().c_str());

  Connection cn;
  cn.Open(testing::SqliteConnectionString(file));
  auto tables = cn.OpenSchema(adSchemaTables, {Variant(), Variant(), Variant(), String(u"TABLE")});
  EXPECT_EQ(tables->RecordCount(), 12);
  auto views = cn.OpenSchema(adSchemaTables, {Variant(), Variant(), Variant(), String(u"VIEW")});
  EXPECT_EQ(views->RecordCount(), 1);

  // Every table and the view probe cleanly, and every table has a primary key.
  for (tables->MoveFirst(); !tables->Eof(); tables->MoveNext()) {
    const String name = ToString(tables->Fields(u"TABLE_NAME").Value());
    SCOPED_TRACE(name.ToUtf8());
    Recordset probe;
    probe.Open(u"SELECT * FROM \"" + name + u"\" WHERE 0=1", cn);
    EXPECT_GT(probe.Fields().Count(), 2);
    auto key = cn.OpenSchema(adSchemaPrimaryKeys, {Variant(), Variant(), name});
    EXPECT_FALSE(key->Eof());
  }
  Recordset rs;
  rs.Open(u"SELECT * FROM order_totals ORDER BY order_id", cn);
  ASSERT_EQ(rs.RecordCount(), 3);
  EXPECT_EQ(ToString(rs.Fields(u"customer").Value()), u"Anders, Maria");

  rs.Open(u"SELECT * FROM products WHERE 0=1", cn);
  EXPECT_EQ(rs.Fields(u"unit_price").Type(), adCurrency);
  EXPECT_EQ(rs.Fields(u"discontinued").Type(), adBoolean);
  EXPECT_EQ(rs.Fields(u"added_on").Type(), adDBDate);
  EXPECT_EQ(rs.Fields(u"details").Type(), adLongVarWChar);
  EXPECT_TRUE(ToBool(rs.Fields(u"product_id").Properties(u"ISAUTOINCREMENT")));
  rs.Open(u"SELECT * FROM categories WHERE category_id = 1", cn);
  EXPECT_TRUE(rs.Fields(u"picture").Value().is_array());
  rs.Open(u"SELECT ordered_at FROM orders WHERE order_id = 2", cn);
  EXPECT_EQ(ToString(rs.Fields(0).Value()), u"2/2/2024 2:05:45 PM");
  auto keys = cn.OpenSchema(adSchemaPrimaryKeys, {Variant(), Variant(), String(u"order_items")});
  EXPECT_EQ(keys->RecordCount(), 2);
}

}  // namespace
}  // namespace qv::data
