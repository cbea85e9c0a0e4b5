// The default template package on the PostgreSQL and MariaDB test servers through ODBC: every
// page answers, a record with a key of two columns, a decimal and a date goes through add, a
// refused edit, edit and delete, and the audit trail names the key the server made for an
// added record. Skips when a server is not up.
#include <gtest/gtest.h>

#include "package/served_app.h"
#include "platform/data/db_servers.h"

namespace qv::package_testing {
namespace {

namespace sfs = std::filesystem;
using cli_testing::Has;

using db_testing::Server;

class PackageOnServer : public ::testing::TestWithParam<Server> {};

TEST_P(PackageOnServer, EveryPageAnswersAndARecordGoesRound) {
  QV_SKIP_WITHOUT(GetParam());
  // The pages open their connection in this process, and the command in a child of it, through
  // the data sources that the server fixture points this process at.
  const auto dir = cli_testing::FreshDir(std::string("package-") + GetParam().name);
  const std::string dsn = std::string(GetParam().dsn).substr(4);  // "DSN=qv_pg" -> "qv_pg"
  using cli_testing::Quorvex;
  ASSERT_EQ(Quorvex(dir, {"new", "app.qvp", "--db", "odbc:" + dsn}).status, 0);
  ASSERT_EQ(Quorvex(dir, {"set", "app.qvp", "--table", "products", "TblAuditTrail=True"}).status,
            0);
  const cli_testing::Run run =
      Quorvex(dir, {"generate", "app.qvp", "--dest", "site", "--overwrite", "all"});
  ASSERT_EQ(run.status, 0) << run.err;
  ServedApp app(dir / "site");

  size_t visited = 0;
  const std::vector<std::string> failures = Crawl(app, visited);
  EXPECT_TRUE(failures.empty()) << failures.size() << " failed, first: " << failures.front();
  EXPECT_GT(visited, 40u);

  // A key no other test uses, removed first in case an earlier run stopped half way.
  const std::string key = "99" + std::to_string(getpid() % 900 + 100) + ",7";
  const std::string token = TokenOf(app.Get("/order_linesadd.asp").body);
  ASSERT_FALSE(token.empty());
  app.Post("/order_linesdelete.asp", "qvtoken=" + token + "&qvconfirm=1&key=" + key);
  const std::string order = key.substr(0, key.find(','));
  Reply r = app.Post("/order_linesadd.asp", "qvtoken=" + token + "&x_order_id=" + order +
                                                "&x_line_no=7&x_product_id=5&x_quantity=3"
                                                "&x_unit_price=12.5&x_shipped=2024/02/29");
  ASSERT_EQ(r.status, 302) << r.body;
  r = app.Get("/order_linesview.asp?key=" + key);
  EXPECT_TRUE(Has(r.body, ">12.5<")) << r.body;
  EXPECT_TRUE(Has(r.body, ">2024/02/29<"));

  // Out of its column's range, and no date: refused, and nothing changes.
  r = app.Post("/order_linesedit.asp", "qvtoken=" + token + "&key=" + key +
                                           "&x_product_id=6&x_quantity=70000&x_unit_price=1"
                                           "&x_shipped=2024/02/30");
  EXPECT_TRUE(Has(r.body, "Quantity must be a whole number.")) << r.body;
  EXPECT_TRUE(Has(r.body, "Shipped must be a date (yyyy/mm/dd)."));
  r = app.Post("/order_linesedit.asp", "qvtoken=" + token + "&key=" + key +
                                           "&x_product_id=6&x_quantity=4&x_unit_price=1.25"
                                           "&x_shipped=");
  EXPECT_EQ(r.status, 302) << r.body;
  r = app.Get("/order_linesview.asp?key=" + key);
  EXPECT_TRUE(Has(r.body, ">1.25<"));

  r = app.Post("/order_linesdelete.asp", "qvtoken=" + token + "&qvconfirm=1&key=" + key);
  EXPECT_EQ(r.status, 302);
  EXPECT_EQ(app.Get("/order_linesview.asp?key=" + key).status, 404);

  // The audit trail names the key the server gave an added product.
  const std::string name = "Audit " + std::to_string(getpid());
  r = app.Post("/productsadd.asp",
               "qvtoken=" + token + "&x_discontinued=0&x_name=Audit+" + std::to_string(getpid()));
  ASSERT_EQ(r.status, 302) << r.body;
  std::string trail;
  for (const auto& entry : sfs::directory_iterator(dir / "site/audit"))
    trail += cli_testing::Slurp(entry.path());
  std::smatch m;
  ASSERT_TRUE(std::regex_search(trail, m, std::regex("\tproducts\tadd\t(\\d+)\tname=" + name)))
      << trail;
  EXPECT_TRUE(Has(app.Get("/productsview.asp?key=" + m[1].str()).body, name));
  app.Post("/productsdelete.asp", "qvtoken=" + token + "&qvconfirm=1&key=" + m[1].str());
}

INSTANTIATE_TEST_SUITE_P(Servers, PackageOnServer,
                         ::testing::Values(db_testing::kPostgres, db_testing::kMaria),
                         [](const auto& info) { return std::string(info.param.name); });

}  // namespace
}  // namespace qv::package_testing
