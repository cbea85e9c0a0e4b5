// The record readers of this issue: TyxSchema.LoadDB of an Access file (records with keys,
// captions and analysed views, the loaded marker, foreign files) and TyxSchema's custom view.
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
  static const TySchemaTable* Find(const TyxSchema& schema, StringView name) {
    for (const TySchemaTable& t : schema.db().tables.Tbl) {
      if (t.TblName == name) return &t;
    }
    return nullptr;
  }
};

TEST_F(DaoSchemaReaderTest, NorthwindRecords) {
  TyxSchema schema;
  LoadAccess(schema, SharedData("access/nwind.mdb"));
  ASSERT_EQ(Vars().ProjErr, u"");
  EXPECT_TRUE(schema.loaded());
  EXPECT_EQ(schema.db().DBDBMSName, u"ACCESS");
  EXPECT_EQ(schema.db().DBType, u"ACCESS");
  EXPECT_EQ(schema.db().DBPath, u"nw.mdb");
  EXPECT_EQ(schema.tblcnt(), static_cast<int16_t>(schema.db().tables.Tbl.size()));

  // Keys, types and the tables read are the project's (a fresh project checks clean against
  // these records); what the check doesn't compare is here.
  const TySchemaTable* products = Find(schema, u"Products");
  ASSERT_NE(products, nullptr);
  EXPECT_TRUE(products->TblUpdatable);
  const TySchemaField& id = products->TblFields.fld[0];
  EXPECT_EQ(id.FldSeq, 1);
  EXPECT_EQ(id.FldName, u"ProductID");
  EXPECT_EQ(id.FldCaption, u"Product ID");
  EXPECT_TRUE(id.FldIsPrimaryKey);

  // A record's view is weighed against the records, the project's against its tables.
  const TySchemaTable* view = Find(schema, u"Alphabetical List of Products");
  ASSERT_NE(view, nullptr);
  EXPECT_TRUE(view->TblUpdatable);
  EXPECT_EQ(view->TblKey, u"ProductID");

  // A second load of the same object is refused.
  LoadAccess(schema, SharedData("access/nwind.mdb"));
  EXPECT_EQ(Vars().ProjErr, u"database already loaded!");
}

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
