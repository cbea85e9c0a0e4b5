// The default template package on the PostgreSQL and MariaDB test servers through ODBC: every
// page answers, and a record with a key of two columns, a decimal and a date goes through
// add, a refused edit, edit and delete. Skips when a server is not up.
#include <gtest/gtest.h>

#include <cstdlib>

#include "package/served_app.h"

namespace qv::package_testing {
namespace {

namespace sfs = std::filesystem;
using cli_testing::Has;

sfs::path ServerDir() {
  const char* dir = std::getenv("QV_DB_DIR");
  return dir ? dir : "/tmp/quorvex-db";
}

struct Server {
  const char* name;
  const char* marker;
  const char* dsn;
};

class PackageOnServer : public ::testing::TestWithParam<Server> {};

TEST_P(PackageOnServer, EveryPageAnswersAndARecordGoesRound) {
  if (!sfs::exists(ServerDir() / GetParam().marker)) {
    GTEST_SKIP() << GetParam().name << " is not running here; skipping";
  }
  const std::string odbc = ServerDir().string();
  // The pages open their connection in this process, through the same data sources.
  setenv("ODBCSYSINI", odbc.c_str(), 1);
  setenv("ODBCINI", (odbc + "/odbc.ini").c_str(), 1);
  const auto dir = cli_testing::FreshDir(std::string("package-") + GetParam().name);
  const cli_testing::Run run = Generate(dir, std::string("odbc:") + GetParam().dsn,
                                        "ODBCSYSINI=" + odbc + " ODBCINI=" + odbc + "/odbc.ini");
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
}

INSTANTIATE_TEST_SUITE_P(Servers, PackageOnServer,
                         ::testing::Values(Server{"PostgreSQL", "pg.ok", "qv_pg"},
                                           Server{"MariaDB", "maria.ok", "qv_maria"}),
                         [](const auto& info) { return std::string(info.param.name); });

}  // namespace
}  // namespace qv::package_testing
