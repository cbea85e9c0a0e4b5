// The record readers' failures: TyxSchema.LoadDB of a file that is no Access database, and
// TyxSchema's custom view over SQLite. Northwind's records are the synchronisation test's
// (a fresh project must check clean against them).
#include <gtest/gtest.h>

#include "automation/convert.h"
#include "schema/tyx_schema.h"
#include "schema_test_support.h"
#include "support/tyx_vars.h"

namespace qv {
namespace {

using data::testing::SharedData;

class DaoSchemaReaderTest : public schema_testing::SchemaTest {
 protected:
  void LoadAccess(TyxSchema& schema, const std::string& file) {
    Variant name;
    schema.LoadDB(name, Variant(String(u"ACCESS")), Variant(String(u"nw.mdb")),
                  Variant(String::FromUtf8(file)), Variant(false), {}, {}, {}, {});
  }
};

TEST_F(DaoSchemaReaderTest, ForeignFilesAndCustomViews) {
  const auto dir = data::testing::ScratchDir("dao-schema-bad");
  data::testing::WriteFile(dir / "plain.mdb", "not an Access file at all");
  TyxSchema bad;
  LoadAccess(bad, (dir / "plain.mdb").string());
  EXPECT_EQ(Vars().ProjErr.ToUtf8().rfind("\r\nError # ", 0), 0u) << Vars().ProjErr.ToUtf8();
  EXPECT_FALSE(bad.loaded());  // the file never opened
  EXPECT_EQ(bad.tblcnt(), 0);

  const auto file = data::testing::MakeSqliteFile(
      dir / "cv.db", "CREATE TABLE t (id INTEGER PRIMARY KEY, name TEXT);");
  const String conn = data::testing::SqliteConnectionString(file);
  TyxSchema schema;
  EXPECT_EQ(schema.LoadADOCustomView(conn, u"names", u"SELECT name AS n, id, id FROM t"), 0);
  EXPECT_EQ(Vars().ProjErr, u"");
  ASSERT_EQ(schema.tblcnt(), 1);
  const TySchemaTable view = schema.Tbl(1);
  EXPECT_EQ(view.TblType, u"CUSTOMVIEW");
  EXPECT_EQ(view.TblFldCnt, 2);
  EXPECT_FALSE(view.TblGen);  // "id" twice
  EXPECT_EQ(view.TblFields.fld[0].FldName, u"n");

  EXPECT_EQ(schema.LoadADOCustomView(conn, u"bad", u"SELECT * FROM nowhere"), 0);
  EXPECT_EQ(Vars().ProjErr.ToUtf8().rfind("Quorvex: ", 0), 0u);
  EXPECT_FALSE(schema.Tbl(1).TblGen);
  EXPECT_EQ(schema.LoadADOCustomView(
                u"Provider=SQLite;Data Source=" + String::FromUtf8((dir / "no" / "x.db").string()),
                u"v", u"SELECT 1"),
            3);
  EXPECT_EQ(Vars().ProjErr.ToUtf8().rfind("Quorvex: ", 0), 0u);
}

}  // namespace
}  // namespace qv
