// The record reader against the PostgreSQL and MariaDB servers of scripts/db through ODBC: the
// test schema's keys, unique and required columns and names that need quotes. The project's
// side and a wrong password are the `quorvex new` test's, a server that is down the ODBC
// layer's. Each test skips when its server isn't up.
#include <gtest/gtest.h>

#include "schema/tyx_schema.h"
#include "schema_test_support.h"
#include "support/tyx_vars.h"

namespace qv {
namespace {

struct Server {
  const char* name;
  const char* marker;
  const Char* dsn;
  const Char* quote_style;  // the SQLQuote that lets a name with blanks be probed
  bool own_quotes;          // whether its kind quotes names without a SQLQuote
};

// PostgreSQL is of the "other" kind, with no quotes of its own; MariaDB's driver reports
// "MariaDB", of the MySQL kind, which quotes with backquotes.
const Server kPostgres = {"PostgreSQL", "pg.ok", u"qv_pg", u"Double Quote", false};
const Server kMaria = {"MariaDB", "maria.ok", u"qv_maria", u"Backquote", true};

class ServerSchemaTest : public schema_testing::SchemaTest,
                         public ::testing::WithParamInterface<Server> {
 protected:
  void SetUp() override {
    schema_testing::UseServerOdbcIni();
    SchemaTest::SetUp();
    if (!schema_testing::ServerUp(GetParam().marker)) {
      GTEST_SKIP() << GetParam().name << " is not running here (scripts/db/start.sh could not "
                   << "start it); skipping";
    }
  }
  TyxSchema Read(StringView pwd) {
    TyxSchema schema;
    Variant name(String(GetParam().dsn));
    schema.LoadDB(name, Variant(String(u"ODBC")), Variant(), Variant(), Variant(false),
                  Variant(String(u"qv")), Variant(String(pwd)), Variant(), Variant());
    return schema;
  }
};

const TySchemaTable* Find(const TyxSchema& schema, StringView name) {
  for (const TySchemaTable& t : schema.db().tables.Tbl) {
    if (t.TblName == name) return &t;
  }
  return nullptr;
}

TEST_P(ServerSchemaTest, RecordsOfTheTestSchema) {
  TyxSchema schema = Read(u"qv");
  ASSERT_EQ(Vars().ProjErr, u"") << Vars().ProjErr.ToUtf8();
  EXPECT_EQ(schema.db().DBName, GetParam().dsn);
  EXPECT_EQ(schema.db().DBUID, u"qv");
  EXPECT_NE(schema.db().DBDBMSName.ToUtf8().find(
                GetParam().name == std::string("MariaDB") ? "MariaDB" : "PostgreSQL"),
            std::string::npos);

  const TySchemaTable* categories = Find(schema, u"categories");
  ASSERT_NE(categories, nullptr);
  EXPECT_EQ(categories->TblKey, u"category_id");
  EXPECT_TRUE(categories->TblGen);
  ASSERT_EQ(categories->TblFldCnt, 3);
  EXPECT_TRUE(categories->TblFields.fld[0].FldIsPrimaryKey);
  EXPECT_TRUE(categories->TblFields.fld[1].FldUniqueIdx);  // ux_categories_name
  EXPECT_TRUE(categories->TblFields.fld[1].FldReq);
  EXPECT_FALSE(categories->TblFields.fld[2].FldReq);

  const TySchemaTable* lines = Find(schema, u"order_lines");
  ASSERT_NE(lines, nullptr);
  EXPECT_EQ(lines->TblKey, u"line_no,order_id");
  for (int i = 0; i < lines->TblFldCnt; ++i) {
    EXPECT_FALSE(lines->TblFields.fld[i].FldUniqueIdx) << lines->TblFields.fld[i].FldName.ToUtf8();
  }

  const TySchemaTable* products = Find(schema, u"products");
  ASSERT_NE(products, nullptr);
  EXPECT_EQ(products->TblKey, u"product_id");
  EXPECT_TRUE(products->TblFields.fld[0].FldAutoIncrement);
  EXPECT_FALSE(products->TblFields.fld[1].FldAutoIncrement);

  const TySchemaTable* view = Find(schema, u"product_list");
  ASSERT_NE(view, nullptr);
  EXPECT_EQ(view->TblType, u"VIEW");
  EXPECT_EQ(view->TblFldCnt, 3);
  EXPECT_EQ(view->TblKey, u"");

  const TySchemaTable* notes = Find(schema, u"order notes");
  ASSERT_NE(notes, nullptr);
  EXPECT_EQ(notes->TblGen, GetParam().own_quotes);
  EXPECT_EQ(notes->TblFldCnt, GetParam().own_quotes ? 2 : 0);
  EXPECT_EQ(notes->TblKey, u"note id");  // the key rowset needs no quotes

  Vars().SqlQuoteStyle = GetParam().quote_style;
  TyxSchema quoted = Read(u"qv");
  notes = Find(quoted, u"order notes");
  ASSERT_NE(notes, nullptr);
  EXPECT_TRUE(notes->TblGen);
  ASSERT_EQ(notes->TblFldCnt, 2);
  EXPECT_TRUE(notes->TblFields.fld[0].FldIsPrimaryKey);
}

INSTANTIATE_TEST_SUITE_P(Servers, ServerSchemaTest, ::testing::Values(kPostgres, kMaria),
                         [](const auto& info) { return std::string(info.param.name); });

}  // namespace
}  // namespace qv
