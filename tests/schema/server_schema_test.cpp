// Both readers against the PostgreSQL and MariaDB servers of scripts/db through ODBC: the test
// schema's keys, unique and required columns, names that need quotes, and the words of a
// wrong password and of a server that is down. Each test skips when its server isn't up.
#include <gtest/gtest.h>

#include "model/tyx.h"
#include "schema/project_loader.h"
#include "schema/tyx_schema.h"
#include "schema_test_support.h"
#include "support/scratch_home.h"
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

TEST_P(ServerSchemaTest, ProjectLoadOfTheTestSchema) {
  testing::ScratchHome home;
  schema_testing::UseServerOdbcIni();
  SharedStatus().SetMode(StatusMode::kQuiet);
  Ref<Tyx> tyx = MakeRef<Tyx>();
  tyx->PrepareRoot();
  LoadDbRequest request;
  request.db_type = u"ODBC";
  request.db_name = GetParam().dsn;
  request.uid = u"qv";
  request.pwd = u"qv";
  LoadDB(*tyx, request);
  ASSERT_EQ(Vars().ProjErr, u"") << Vars().ProjErr.ToUtf8();
  TyxDatabase* db = tyx->Databases().Find(GetParam().dsn);
  ASSERT_NE(db, nullptr);
  EXPECT_EQ(db->DBType(), u"ODBC");
  EXPECT_EQ(db->DBUID(), u"qv");
  EXPECT_EQ(db->DBConnstr(), u"");
  TyxTable* categories = db->Tables().list().ByName(u"categories");
  ASSERT_NE(categories, nullptr);
  EXPECT_EQ(categories->TblKey(), u"category_id");
  EXPECT_EQ(categories->TblCaption(), u"categories");
  TyxField* name = categories->Fields().list().ByName(u"name");
  ASSERT_NE(name, nullptr);
  EXPECT_TRUE(name->FldRequired());
  EXPECT_TRUE(name->FldUniqueIdx());
  EXPECT_EQ(name->FldQuoteS(), u"'");
  TyxTable* lines = db->Tables().list().ByName(u"order_lines");
  ASSERT_NE(lines, nullptr);
  EXPECT_EQ(lines->TblKey(), u"line_no,order_id");
  EXPECT_EQ(lines->TblCaption(), u"order lines");
}

TEST_P(ServerSchemaTest, WrongPasswordAndServerDown) {
  TyxSchema refused = Read(u"wrong");
  EXPECT_EQ(Vars().ProjErr,
            u"Quorvex: Unable to connect to Data Source! User ID / Password not valid!");
  EXPECT_FALSE(refused.loaded());

  testing::ScratchHome home;
  schema_testing::UseServerOdbcIni();
  SharedStatus().SetMode(StatusMode::kQuiet);
  Ref<Tyx> tyx = MakeRef<Tyx>();
  tyx->PrepareRoot();
  LoadDbRequest down;
  down.db_type = u"ODBC";
  down.db_name = u"qv_down";
  down.uid = u"qv";
  down.pwd = u"qv";
  LoadDB(*tyx, down);
  const std::string err = Vars().ProjErr.ToUtf8();
  EXPECT_EQ(err.rfind("Quorvex: \r\nError #1:\r\n   ADO Error   #", 0), 0u) << err;
  EXPECT_EQ(tyx->Databases().Count(), 0);
}

INSTANTIATE_TEST_SUITE_P(Servers, ServerSchemaTest, ::testing::Values(kPostgres, kMaria),
                         [](const auto& info) { return std::string(info.param.name); });

}  // namespace
}  // namespace qv
