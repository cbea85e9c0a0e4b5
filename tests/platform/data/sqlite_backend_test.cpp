// The data access layer over real SQLite files: catalogue rowsets, probing statements, values,
// and the errors of bad input.
#include <gtest/gtest.h>

#include "automation/convert.h"
#include "automation/error.h"
#include "automation/safe_array.h"
#include "data_test_support.h"
#include "platform/data/connection.h"
#include "platform/data/connection_pool.h"
#include "platform/data/data_types.h"
#include "platform/data/recordset.h"

namespace qv::data {
namespace {

using testing::MakeSqliteFile;
using testing::ScratchDir;
using testing::SqliteConnectionString;

constexpr const char* kShopSql = R"sql(
CREATE TABLE customers (id INTEGER PRIMARY KEY, name VARCHAR(40) NOT NULL, email TEXT,
  joined DATE, vip BOOLEAN DEFAULT 0, balance MONEY);
CREATE TABLE orders (id INTEGER PRIMARY KEY AUTOINCREMENT, customer_id INTEGER NOT NULL,
  placed DATETIME, total DECIMAL(10,2), code CHAR(8), picture BLOB, memo NVARCHAR(200));
CREATE TABLE order_lines (order_id INTEGER NOT NULL, line_no INTEGER NOT NULL, qty SMALLINT,
  PRIMARY KEY (line_no, order_id));
CREATE UNIQUE INDEX ux_customers_email ON customers (email);
CREATE UNIQUE INDEX ux_lines_pair ON order_lines (order_id, qty);
CREATE INDEX ix_orders_customer ON orders (customer_id);
CREATE TABLE "order notes" ("note id" INTEGER, "note text" TEXT);
CREATE VIEW big_orders AS SELECT id, total FROM orders WHERE total > 100;
INSERT INTO customers VALUES (1, 'Ann', 'ann@example.com', '2024-02-29', 1, 12.3456);
INSERT INTO customers VALUES (2, 'Bob', NULL, NULL, 0, NULL);
INSERT INTO orders VALUES (NULL, 1, '2024-03-01 13:45:30', 250.5, 'A-1', X'0001FF', 'first');
)sql";

std::vector<String> Column(Recordset& rs, StringView name) {
  std::vector<String> values;
  for (rs.MoveFirst(); !rs.Eof(); rs.MoveNext())
    values.push_back(ToString(rs.Fields(name).Value()));
  return values;
}

class SqliteBackendTest : public ::testing::Test {
 protected:
  void SetUp() override {
    dir_ = ScratchDir("sqlite");
    file_ = MakeSqliteFile(dir_ / "shop.db", kShopSql);
    cn_.Open(SqliteConnectionString(file_));
  }
  std::filesystem::path dir_;
  std::filesystem::path file_;
  Connection cn_;
};

TEST_F(SqliteBackendTest, ConnectionReportsItsProviderAndVersion) {
  EXPECT_EQ(cn_.State(), adStateOpen);
  EXPECT_EQ(ToString(cn_.Properties(u"DBMS Name")), u"SQLite");
  EXPECT_FALSE(ToString(cn_.Properties(u"dbms version")).empty());
  EXPECT_FALSE(ToString(cn_.Properties(u"Provider Name")).empty());
  EXPECT_EQ(cn_.Version(), u"2.8");
  try {
    cn_.Properties(u"OLE DB Version");
    FAIL() << "a missing property must raise";
  } catch (const Error& e) {
    EXPECT_EQ(e.number(), kErrItemNotFound);
  }
  cn_.Close();
  EXPECT_EQ(cn_.State(), adStateClosed);
  EXPECT_THROW(cn_.OpenSchema(adSchemaTables), Error);
}

TEST_F(SqliteBackendTest, TablesRowsetListsTablesThenViewsAndNarrowsByRestriction) {
  auto rs = cn_.OpenSchema(adSchemaTables);
  EXPECT_EQ(Column(*rs, u"TABLE_NAME"),
            (std::vector<String>{u"customers", u"order notes", u"order_lines", u"orders",
                                 u"sqlite_sequence", u"big_orders"}));
  EXPECT_EQ(Column(*rs, u"TABLE_TYPE"), (std::vector<String>{u"TABLE", u"TABLE", u"TABLE", u"TABLE",
                                                             u"SYSTEM TABLE", u"VIEW"}));
  rs->MoveFirst();
  EXPECT_TRUE(rs->Fields(u"TABLE_SCHEMA").Value().is_null());
  auto views = cn_.OpenSchema(adSchemaTables, {Variant(), Variant(), Variant(), String(u"VIEW")});
  EXPECT_EQ(Column(*views, u"TABLE_NAME"), std::vector<String>{u"big_orders"});
}

TEST_F(SqliteBackendTest, KeysColumnsAndIndexesOfOneTable) {
  const std::vector<Variant> lines = {Variant(), Variant(), String(u"order_lines")};
  auto keys = cn_.OpenSchema(adSchemaPrimaryKeys, lines);
  // Key order, not column order.
  EXPECT_EQ(Column(*keys, u"COLUMN_NAME"), (std::vector<String>{u"line_no", u"order_id"}));

  auto columns = cn_.OpenSchema(adSchemaColumns, {Variant(), Variant(), String(u"customers")});
  EXPECT_EQ(Column(*columns, u"COLUMN_NAME"),
            (std::vector<String>{u"id", u"name", u"email", u"joined", u"vip", u"balance"}));
  // The rowid key and NOT NULL columns are not nullable.
  EXPECT_EQ(Column(*columns, u"IS_NULLABLE"),
            (std::vector<String>{u"False", u"False", u"True", u"True", u"True", u"True"}));
  EXPECT_EQ(Column(*columns, u"DATA_TYPE"),
            (std::vector<String>{u"3", u"202", u"203", u"133", u"11", u"6"}));

  // Index rows as the readers walk them: lower-case names find the columns too.
  auto indexes = cn_.OpenSchema(adSchemaIndexes,
                                {Variant(), Variant(), Variant(), Variant(), String(u"customers")});
  std::vector<String> seen;
  for (; !indexes->Eof(); indexes->MoveNext()) {
    seen.push_back(ToString(indexes->Fields(u"index_name").Value()) + u"|" +
                   ToString(indexes->Fields(u"Unique").Value()) + u"|" +
                   ToString(indexes->Fields(u"PRIMARY_KEY").Value()) + u"|" +
                   ToString(indexes->Fields(u"COLUMN_NAME").Value()));
  }
  EXPECT_EQ(seen, (std::vector<String>{u"pk_customers|True|True|id",
                                       u"ux_customers_email|True|False|email"}));

  auto pair = cn_.OpenSchema(adSchemaIndexes, {Variant(), Variant(), String(u"ux_lines_pair"),
                                               Variant(), String(u"order_lines")});
  EXPECT_EQ(Column(*pair, u"COLUMN_NAME"), (std::vector<String>{u"order_id", u"qty"}));
  auto composite_key = cn_.OpenSchema(
      adSchemaIndexes, {Variant(), Variant(), Variant(), Variant(), String(u"order_lines")});
  EXPECT_EQ(Column(*composite_key, u"PRIMARY_KEY"),
            (std::vector<String>{u"False", u"False", u"True", u"True"}));
  EXPECT_THROW(cn_.OpenSchema(99), Error);
}

TEST_F(SqliteBackendTest, ProbingStatementDescribesColumnsWithoutRows) {
  Recordset rs;
  rs.Open(u"SELECT * FROM \"orders\" WHERE 0=1", cn_);
  EXPECT_TRUE(rs.Eof());
  const auto& fields = rs.Fields();
  ASSERT_EQ(fields.Count(), 7);
  struct Expected {
    const Char* name;
    int32_t type;
    int32_t size;
    bool nullable;
    bool auto_increment;
  };
  const Expected expected[] = {
      {u"id", adInteger, 4, false, true},
      {u"customer_id", adInteger, 4, false, false},
      {u"placed", adDBTimeStamp, 16, true, false},
      {u"total", adNumeric, 19, true, false},
      {u"code", adWChar, 8, true, false},
      {u"picture", adLongVarBinary, kLongFieldSize, true, false},
      {u"memo", adVarWChar, 200, true, false},
  };
  for (int i = 0; i < fields.Count(); ++i) {
    const Field& f = rs.Fields(i);
    SCOPED_TRACE(f.Name().ToUtf8());
    EXPECT_EQ(f.Name(), expected[i].name);
    EXPECT_EQ(f.Type(), expected[i].type);
    EXPECT_EQ(f.DefinedSize(), expected[i].size);
    EXPECT_EQ((f.Attributes() & adFldIsNullable) != 0, expected[i].nullable);
    EXPECT_EQ(ToBool(f.Properties(u"ISAUTOINCREMENT")), expected[i].auto_increment);
  }
  // The rowid alias of a plain INTEGER PRIMARY KEY counts as auto-increment as well; a key
  // of two INTEGER columns does not.
  rs.Open(u"SELECT * FROM customers WHERE 0=1", cn_);
  EXPECT_TRUE(ToBool(rs.Fields(u"ID").Properties(u"isautoincrement")));
  rs.Open(u"order_lines", cn_);
  EXPECT_FALSE(ToBool(rs.Fields(u"order_id").Properties(u"ISAUTOINCREMENT")));
  // An expression column has no table behind it.
  rs.Open(u"SELECT 1 + 1 AS two", cn_);
  EXPECT_EQ(rs.Fields(u"two").Type(), adVarWChar);
  EXPECT_EQ(ToLong(rs.Fields(0).Value()), 2);
}

TEST_F(SqliteBackendTest, ValuesArriveAsVariantsOfTheColumnKind) {
  Recordset rs;
  rs.Open(u"SELECT * FROM customers ORDER BY id", cn_);
  EXPECT_EQ(rs.RecordCount(), 2);
  EXPECT_EQ(rs.Fields(u"id").Value().type(), VarType::Long);
  EXPECT_EQ(ToString(rs.Fields(u"name").Value()), u"Ann");
  const Variant joined = rs.Fields(u"joined").Value();
  ASSERT_EQ(joined.type(), VarType::Date);
  EXPECT_EQ(ToString(joined), u"2/29/2024");
  EXPECT_EQ(rs.Fields(u"vip").Value().type(), VarType::Boolean);
  EXPECT_TRUE(rs.Fields(u"vip").Value().as_bool());
  ASSERT_EQ(rs.Fields(u"balance").Value().type(), VarType::Currency);
  EXPECT_EQ(rs.Fields(u"balance").Value().as_currency(), 123456);
  rs.MoveNext();
  EXPECT_TRUE(rs.Fields(u"email").Value().is_null());
  EXPECT_FALSE(rs.Fields(u"vip").Value().as_bool());
  rs.MoveNext();
  EXPECT_TRUE(rs.Eof());
  EXPECT_THROW(rs.Fields(u"id").Value(), Error);
  EXPECT_THROW(rs.MoveNext(), Error);
  rs.MoveFirst();
  EXPECT_EQ(ToString(rs.Fields(u"name").Value()), u"Ann");

  rs.Open(u"SELECT placed, picture, total FROM orders", cn_);
  EXPECT_EQ(ToString(rs.Fields(u"placed").Value()), u"3/1/2024 1:45:30 PM");
  const Variant picture = rs.Fields(u"picture").Value();
  ASSERT_TRUE(picture.is_array());
  EXPECT_EQ(picture.VarTypeCode(), 8209);
  ASSERT_EQ(picture.as_array()->size(), 3u);
  EXPECT_EQ((*picture.as_array())[2].as_byte(), 0xFF);
  EXPECT_DOUBLE_EQ(ToDouble(rs.Fields(u"total").Value()), 250.5);
  EXPECT_THROW(rs.Fields(u"nope"), Error);
  EXPECT_THROW(rs.Fields(7), Error);

  // A table opened by a name with a blank.
  rs.Open(u"[order notes]", cn_);
  EXPECT_EQ(rs.Fields(1).Name(), u"note text");
  rs.Close();
  EXPECT_EQ(rs.State(), adStateClosed);
  EXPECT_THROW(rs.Fields(), Error);
}

TEST_F(SqliteBackendTest, StatementErrorsCarryNumbersAndFillErrors) {
  Recordset rs;
  rs.Open(u"customers", cn_);
  try {
    rs.Open(u"SELECT * FROM missing_table WHERE 0=1", cn_);
    FAIL() << "a missing table must raise";
  } catch (const Error& e) {
    EXPECT_EQ(e.number(), kErrNoSuchTable);
    EXPECT_NE(e.description().ToUtf8().find("missing_table"), std::string::npos);
  }
  // The failed open leaves the recordset closed, not showing the customers any more.
  EXPECT_EQ(rs.State(), adStateClosed);
  ASSERT_EQ(cn_.GetErrors().Count(), 1);
  EXPECT_EQ(cn_.GetErrors().Item(0).number, kErrNoSuchTable);
  EXPECT_FALSE(cn_.GetErrors().Item(0).source.empty());
  EXPECT_THROW(cn_.GetErrors().Item(1), Error);
  try {
    cn_.Execute(u"SELEC nonsense");
    FAIL();
  } catch (const Error& e) {
    EXPECT_EQ(e.number(), kErrSyntax);
  }
  // A blank in a name fails the probe when it is not quoted, as the readers expect.
  EXPECT_THROW(cn_.Execute(u"SELECT * FROM order notes WHERE 0=1"), Error);
  // A good call clears the errors of the last one.
  cn_.Execute(u"SELECT 1");
  EXPECT_EQ(cn_.GetErrors().Count(), 0);
}

TEST(SqliteOpenTest, BadFilesEndInClearErrors) {
  const auto dir = ScratchDir("sqlite-bad");
  struct Case {
    const char* what;
    std::string file;
    const char* words;
  };
  testing::WriteFile(dir / "notes.txt", std::string(4096, 'x'));
  // A real database with its pages cut off after the header.
  MakeSqliteFile(dir / "damaged.db", "CREATE TABLE t (a); INSERT INTO t VALUES (1);");
  std::filesystem::resize_file(dir / "damaged.db", 100);
  const Case cases[] = {
      {"missing", (dir / "nowhere.db").string(), "does not exist"},
      {"not a database", (dir / "notes.txt").string(), "not a database"},
      {"damaged", (dir / "damaged.db").string(), "damaged.db"},
      {"no file named", "", "Data Source"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    Connection cn;
    try {
      cn.Open(u"Provider=SQLite;Data Source=" + String::FromUtf8(c.file));
      // A truncated file may still open; reading its catalogue must then fail cleanly.
      cn.OpenSchema(adSchemaTables);
      cn.Execute(u"SELECT * FROM t");
      FAIL() << "expected an error";
    } catch (const Error& e) {
      EXPECT_NE(e.description().ToUtf8().find(c.words), std::string::npos)
          << e.description().ToUtf8();
      EXPECT_NE(e.number(), 0);
    }
  }
  EXPECT_FALSE(std::filesystem::exists(dir / "nowhere.db")) << "opening must never create a file";
}

TEST(SqlitePoolTest, OnlyConnectionsBackInTheirOpeningStateAreReused) {
  const auto dir = ScratchDir("pool");
  const auto file =
      MakeSqliteFile(dir / "a.db", "CREATE TABLE t (v TEXT); INSERT INTO t VALUES ('a');");
  const String source = SqliteConnectionString(file);
  ConnectionPool pool;
  auto value = [&](Connection& cn) {
    auto rs = cn.Execute(u"SELECT v FROM t");
    return ToString(rs->Fields(u"v").Value());
  };
  {
    Connection cn;  // closed by its destructor: back to the pool as well
    cn.SetPool(&pool);
    cn.Open(source);
    EXPECT_EQ(value(cn), u"a");
  }
  EXPECT_EQ(pool.IdleCount(), 1u);

  // Left inside a transaction or with a statement still streaming: closed for real.
  Connection cn;
  cn.SetPool(&pool);
  cn.Open(source);
  EXPECT_EQ(pool.IdleCount(), 0u);
  cn.BeginTransaction();
  cn.Close();
  EXPECT_EQ(pool.IdleCount(), 0u);
  cn.Open(source);
  StatementResult streaming = cn.Run(u"SELECT v FROM t");
  cn.Close();
  EXPECT_EQ(pool.IdleCount(), 0u);
  streaming = {};

  // Another login is another key.
  cn.Open(source, u"someone", u"secret");
  cn.Close();
  cn.Open(source);
  EXPECT_EQ(pool.IdleCount(), 1u);
  cn.Close();
  EXPECT_EQ(pool.IdleCount(), 2u);

  // A file replaced on disk is opened afresh; a database in memory starts empty every time.
  MakeSqliteFile(dir / "b.db", "CREATE TABLE t (v TEXT); INSERT INTO t VALUES ('b');");
  std::filesystem::rename(dir / "b.db", file);
  cn.Open(source);
  EXPECT_EQ(value(cn), u"b");
  cn.Close();
  const String memory = u"Provider=SQLite;Data Source=:memory:";
  cn.Open(memory);
  cn.Execute(u"CREATE TABLE t (v TEXT)");
  cn.Close();
  cn.Open(memory);
  EXPECT_THROW(cn.Execute(u"SELECT v FROM t"), Error);
}

}  // namespace
}  // namespace qv::data
