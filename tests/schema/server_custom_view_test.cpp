// Custom views on the PostgreSQL and MariaDB servers of scripts/db: the columns of a join
// carry their tables through aliases, take the settings of their source columns, and a
// statement the server refuses leaves its words and no table. Skips a server that isn't up.
#include <gtest/gtest.h>

#include "automation/convert.h"
#include "model/tyx.h"
#include "schema/custom_view.h"
#include "schema/project_loader.h"
#include "schema_test_support.h"
#include "support/scratch_home.h"
#include "support/tyx_vars.h"

namespace qv {
namespace {

struct Server {
  const char* name;
  const char* marker;
  const Char* dsn;
};

class ServerCustomViewTest : public schema_testing::SchemaTest,
                             public ::testing::WithParamInterface<Server> {
 protected:
  void SetUp() override {
    schema_testing::UseServerOdbcIni();
    SchemaTest::SetUp();
    if (!schema_testing::ServerUp(GetParam().marker)) {
      GTEST_SKIP() << GetParam().name << " is not running here; skipping";
    }
    tyx_ = MakeRef<Tyx>();
    tyx_->PrepareRoot();
    LoadDbRequest request;
    request.db_type = u"ODBC";
    request.db_name = GetParam().dsn;
    request.uid = u"qv";
    request.pwd = u"qv";
    LoadDB(*tyx_, request);
    ASSERT_EQ(Vars().ProjErr, u"") << Vars().ProjErr.ToUtf8();
  }
  TyxTable* Table(StringView name) const {
    return tyx_->Databases().Find(tyx_->CurrentDbName)->Tables().list().ByName(name);
  }

  testing::ScratchHome home_;
  Ref<Tyx> tyx_;
};

TEST_P(ServerCustomViewTest, JoinColumnsCarryTheirOrigins) {
  EXPECT_EQ(ToString(CustomViewConnStr(*tyx_)),
            u"dsn=" + String(GetParam().dsn) + u";uid=qv;pwd=qv");
  Table(u"products")->Fields().list().ByName(u"price")->SetFldCaption(u"Unit price");
  LoadCustomView(*tyx_, u"priced",
                 u"SELECT p.name AS product, p.price, c.name, p.price * 2 AS doubled\n"
                 u"FROM products p INNER JOIN categories c ON c.category_id = p.category_id",
                 true);
  ASSERT_EQ(Vars().ProjErr, u"") << Vars().ProjErr.ToUtf8();
  TyxTable* view = Table(u"priced");
  ASSERT_NE(view, nullptr);
  ASSERT_EQ(view->Fields().Count(), 4);
  TyxField* product = view->Fields().list().ByName(u"product");
  ASSERT_NE(product, nullptr);
  EXPECT_TRUE(product->FldAlias());
  EXPECT_EQ(product->FldSourceTable(), u"products");
  EXPECT_EQ(product->FldSourceField(), u"name");
  TyxField* price = view->Fields().list().ByName(u"price");
  ASSERT_NE(price, nullptr);
  EXPECT_EQ(price->FldSourceTable(), u"products");
  EXPECT_EQ(price->FldCaption(), u"Unit price");  // copied from the source column
  TyxField* name = view->Fields().list().ByName(u"name");
  ASSERT_NE(name, nullptr);
  EXPECT_EQ(name->FldSourceTable(), u"categories");
  EXPECT_EQ(view->Fields().list().ByName(u"doubled")->FldSourceTable(), u"");

  LoadCustomView(*tyx_, u"refused", u"SELECT nothing FROM nowhere_at_all", false);
  EXPECT_NE(Vars().ProjErr.ToUtf8().find("nowhere_at_all"), std::string::npos)
      << Vars().ProjErr.ToUtf8();
  EXPECT_EQ(Table(u"refused"), nullptr);
}

INSTANTIATE_TEST_SUITE_P(Servers, ServerCustomViewTest,
                         ::testing::Values(Server{"PostgreSQL", "pg.ok", u"qv_pg"},
                                           Server{"MariaDB", "maria.ok", u"qv_maria"}),
                         [](const auto& info) { return std::string(info.param.name); });

}  // namespace
}  // namespace qv
