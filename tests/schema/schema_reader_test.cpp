// TyxSchema over real SQLite files: the records of tables, views and columns, keys of one and
// two columns, unique flags only for one-column indexes, names that need quotes, and the
// failures of LoadDB with their words.
#include <gtest/gtest.h>

#include "automation/convert.h"
#include "schema/tyx_schema.h"
#include "schema_test_support.h"
#include "support/tyx_vars.h"

namespace qv {
namespace {

using schema_testing::MakeSqliteFile;
using schema_testing::Scratch;
using schema_testing::SqliteConnectionString;

constexpr const char* kShopSql = R"sql(
CREATE TABLE customers (id INTEGER PRIMARY KEY, name VARCHAR(40) NOT NULL, email TEXT,
  picture BLOB, joined DATE);
CREATE UNIQUE INDEX ux_customers_email ON customers (email);
CREATE TABLE order_lines (order_id INTEGER NOT NULL, line_no INTEGER NOT NULL, qty SMALLINT,
  PRIMARY KEY (line_no, order_id));
CREATE UNIQUE INDEX ux_lines_pair ON order_lines (order_id, qty);
CREATE INDEX ix_lines_qty ON order_lines (qty);
CREATE TABLE "order notes" ("note id" INTEGER NOT NULL, "note text" TEXT);
CREATE TABLE plain (a TEXT, b REAL);
CREATE VIEW big_lines AS SELECT order_id, line_no, qty FROM order_lines WHERE qty > 1;
)sql";

// Loads a connection string into a new TyxSchema; ProjErr tells the outcome.
void Load(TyxSchema& schema, StringView conn_str, Variant& db_name) {
  schema.LoadDB(db_name, Variant(String(u"CONNECTIONSTRING")), Variant(), Variant(), Variant(false),
                Variant(), Variant(), Variant(String(conn_str)), Variant());
}

const TySchemaTable* FindTable(const TyxSchema& schema, StringView name) {
  for (const TySchemaTable& t : schema.db().tables.Tbl) {
    if (t.TblName == name) return &t;
  }
  return nullptr;
}

class SchemaReaderTest : public schema_testing::SchemaTest {
 protected:
  void SetUp() override {
    SchemaTest::SetUp();
    file_ = MakeSqliteFile(Scratch("reader") / "shop.db", kShopSql);
  }
  String ConnStr() const { return SqliteConnectionString(file_); }
  std::filesystem::path file_;
};

TEST_F(SchemaReaderTest, TablesViewsColumnsAndKeysBecomeRecords) {
  TyxSchema schema;
  Variant name(String(u"anything"));
  Load(schema, ConnStr(), name);
  ASSERT_EQ(Vars().ProjErr, u"");
  EXPECT_TRUE(schema.loaded());
  EXPECT_EQ(ToString(name), u"DB");  // a connection string's source is always called "DB"

  const TySchemaDB& db = schema.db();
  EXPECT_EQ(db.DBName, u"DB");
  EXPECT_EQ(db.DBType, u"ODBC");  // the ADO path stores "ODBC" whatever it was given
  EXPECT_EQ(db.DBConnstr, ConnStr());
  EXPECT_EQ(db.DBUID, u"");
  EXPECT_EQ(db.DBDBMSName, u"SQLite");
  EXPECT_FALSE(db.DBADOVer.empty());
  EXPECT_EQ(db.DBSchema, u"");
  ASSERT_EQ(schema.tblcnt(), 5);
  for (int16_t i = 1; i <= schema.tblcnt(); ++i) {
    EXPECT_EQ(schema.Tbl(i).TblSeq, i);
    EXPECT_TRUE(schema.Tbl(i).TblUpdatable);
    EXPECT_FALSE(schema.Tbl(i).TblSync);
  }

  const TySchemaTable* customers = FindTable(schema, u"customers");
  ASSERT_NE(customers, nullptr);
  EXPECT_EQ(customers->TblType, u"TABLE");
  EXPECT_TRUE(customers->TblGen);
  EXPECT_EQ(customers->TblKey, u"id");
  ASSERT_EQ(customers->TblFldCnt, 5);
  const auto& f = customers->TblFields.fld;
  EXPECT_EQ(f[0].FldName, u"id");
  EXPECT_EQ(f[0].FldSeq, 1);
  EXPECT_TRUE(f[0].FldIsPrimaryKey);
  EXPECT_TRUE(f[0].FldAutoIncrement);
  // The key's own index is unique and has one column: it counts like any other.
  EXPECT_TRUE(f[0].FldUniqueIdx);
  EXPECT_TRUE(f[0].FldReq);
  EXPECT_EQ(f[1].FldName, u"name");
  EXPECT_TRUE(f[1].FldReq);
  EXPECT_FALSE(f[1].FldUniqueIdx);
  EXPECT_EQ(f[1].FldType, 202);
  EXPECT_EQ(f[1].FldSize, 40);
  EXPECT_EQ(f[1].FldQuoteS, u"'");
  EXPECT_TRUE(f[1].FldZeroLen);
  EXPECT_TRUE(f[2].FldUniqueIdx);  // email
  EXPECT_FALSE(f[2].FldReq);
  EXPECT_FALSE(f[2].FldIsPrimaryKey);
  EXPECT_EQ(f[3].FldType, 205);  // a blob is supported and quoted on the ADO path
  EXPECT_TRUE(f[3].FldSupport);
  EXPECT_EQ(f[4].FldQuoteS, u"'");  // dates are "'" on the record path, whatever the DBMS
  EXPECT_TRUE(f[4].FldDefault.is_empty());

  // Two key columns come out sorted; an index of two unique columns together flags neither.
  const TySchemaTable* lines = FindTable(schema, u"order_lines");
  ASSERT_NE(lines, nullptr);
  EXPECT_EQ(lines->TblKey, u"line_no,order_id");
  for (int i = 0; i < lines->TblFldCnt; ++i) {
    SCOPED_TRACE(lines->TblFields.fld[i].FldName.ToUtf8());
    EXPECT_FALSE(lines->TblFields.fld[i].FldUniqueIdx);
    EXPECT_EQ(lines->TblFields.fld[i].FldIsPrimaryKey, i < 2);
  }

  // A view has columns but no key and no required flags.
  const TySchemaTable* view = FindTable(schema, u"big_lines");
  ASSERT_NE(view, nullptr);
  EXPECT_EQ(view->TblType, u"VIEW");
  EXPECT_TRUE(view->TblGen);
  EXPECT_EQ(view->TblKey, u"");
  ASSERT_EQ(view->TblFldCnt, 3);
  for (int i = 0; i < 3; ++i) {
    EXPECT_FALSE(view->TblFields.fld[i].FldReq);
    EXPECT_FALSE(view->TblFields.fld[i].FldIsPrimaryKey);
  }

  // A table with no key: TblKey stays empty and nothing is flagged.
  const TySchemaTable* plain = FindTable(schema, u"plain");
  ASSERT_NE(plain, nullptr);
  EXPECT_EQ(plain->TblKey, u"");
  EXPECT_FALSE(plain->TblFields.fld[0].FldIsPrimaryKey);
  EXPECT_FALSE(plain->TblFields.fld[0].FldAutoIncrement);

  // Tbl hands out copies; an index out of bounds raises.
  TySchemaTable copy = schema.Tbl(1);
  copy.TblName = u"changed";
  EXPECT_NE(schema.Tbl(1).TblName, u"changed");
  EXPECT_THROW(schema.Tbl(0), Error);
  EXPECT_THROW(schema.Tbl(6), Error);
}

TEST_F(SchemaReaderTest, NamesWithBlanksNeedTheChosenQuotes) {
  {
    // SQLite has no quote characters of its own kind: the probe of "order notes" fails.
    TyxSchema schema;
    Variant name;
    Load(schema, ConnStr(), name);
    ASSERT_EQ(Vars().ProjErr, u"");
    const TySchemaTable* notes = FindTable(schema, u"order notes");
    ASSERT_NE(notes, nullptr);
    EXPECT_FALSE(notes->TblGen);
    EXPECT_EQ(notes->TblFldCnt, 0);
    // The key phase still runs for it.
    EXPECT_EQ(notes->TblKey, u"");
  }
  {
    Vars().SqlQuoteStyle = u"Double Quote";
    TyxSchema schema;
    Variant name;
    Load(schema, ConnStr(), name);
    const TySchemaTable* notes = FindTable(schema, u"order notes");
    ASSERT_NE(notes, nullptr);
    EXPECT_TRUE(notes->TblGen);
    ASSERT_EQ(notes->TblFldCnt, 2);
    EXPECT_EQ(notes->TblFields.fld[0].FldName, u"note id");
    EXPECT_TRUE(notes->TblFields.fld[0].FldReq);
  }
}

TEST_F(SchemaReaderTest, LoadDbFailuresAndRepeats) {
  const auto dir = Scratch("reader-bad");
  {
    // A missing file: the provider's words behind the product name; nothing is marked loaded,
    // so the call can be made again.
    TyxSchema schema;
    Variant name;
    Load(schema, u"Provider=SQLite;Data Source=" + String::FromUtf8((dir / "none.db").string()),
         name);
    const std::string err = Vars().ProjErr.ToUtf8();
    EXPECT_EQ(err.rfind("Quorvex: \r\nError #1:\r\n   ADO Error   #", 0), 0u) << err;
    EXPECT_NE(err.find("\r\n   Description  "), std::string::npos) << err;
    EXPECT_NE(err.find("does not exist"), std::string::npos) << err;
    EXPECT_NE(err.find("\r\n   Source       "), std::string::npos) << err;
    EXPECT_FALSE(schema.loaded());
    EXPECT_EQ(schema.tblcnt(), 0);
    EXPECT_FALSE(std::filesystem::exists(dir / "none.db"));
    Load(schema, ConnStr(), name);
    EXPECT_EQ(Vars().ProjErr, u"");
    EXPECT_TRUE(schema.loaded());
    // A second load of a loaded schema changes nothing.
    Load(schema, ConnStr(), name);
    EXPECT_EQ(Vars().ProjErr, u"database already loaded!");
    EXPECT_EQ(schema.tblcnt(), 5);
  }
  {
    // An unknown type reaches no reader: success with no tables.
    TyxSchema schema;
    Variant name;
    Vars().ProjErr = u"left over";
    schema.LoadDB(name, Variant(String(u"FOXPRO")), Variant(), Variant(), Variant(false), Variant(),
                  Variant(), Variant(), Variant());
    EXPECT_EQ(Vars().ProjErr, u"");
    EXPECT_TRUE(schema.loaded());
    EXPECT_EQ(schema.tblcnt(), 0);
  }
  {
    // An empty connection string still tries, and the reader's words replace the check's.
    TyxSchema schema;
    Variant name;
    Load(schema, u"", name);
    EXPECT_NE(Vars().ProjErr, u"invalid connection string specified!");
    EXPECT_EQ(Vars().ProjErr.ToUtf8().rfind("Quorvex: ", 0), 0u) << Vars().ProjErr.ToUtf8();
    EXPECT_FALSE(schema.loaded());
  }
  {
    // An empty database: no tables, and success.
    TyxSchema schema;
    Variant name;
    const auto empty = MakeSqliteFile(dir / "empty.db", "PRAGMA user_version = 1;");
    Load(schema, SqliteConnectionString(empty), name);
    EXPECT_EQ(Vars().ProjErr, u"");
    EXPECT_EQ(schema.tblcnt(), 0);
  }
}

}  // namespace
}  // namespace qv
