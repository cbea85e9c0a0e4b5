// `quorvex new` on the PostgreSQL and MariaDB test servers through ODBC data sources, and the
// words of a wrong password. Skips when a server is not up.
#include <gtest/gtest.h>

#include <filesystem>

#include "cli/run_quorvex.h"
#include "platform/data/db_servers.h"

namespace qv {
namespace {

using cli_testing::FreshDir;
using cli_testing::Has;
using cli_testing::Quorvex;

using db_testing::Server;

// The child inherits the data sources that the server fixture points this process at.
std::string OdbcName(const Server& server) {
  return "odbc:" + std::string(server.dsn).substr(4);  // "DSN=qv_pg" -> "odbc:qv_pg"
}

class ServerCommands : public ::testing::TestWithParam<Server> {};

TEST_P(ServerCommands, NewProjectAndWrongPassword) {
  QV_SKIP_WITHOUT(GetParam());
  const auto dir = FreshDir(std::string("db-") + GetParam().name);
  const std::string db = OdbcName(GetParam());
  const auto made =
      Quorvex(dir, {"new", "app.qvp", "--db", db, "--user", "qv", "--password", "qv"});
  ASSERT_EQ(made.status, 0) << made.err;
  const auto tables = Quorvex(dir, {"tables", "app.qvp"});
  ASSERT_EQ(tables.status, 0) << tables.err;
  EXPECT_TRUE(Has(tables.out, "line_no,order_id")) << tables.out;
  EXPECT_TRUE(Has(tables.out, "product_list")) << tables.out;
  // A table of another database on the same server (MariaDB's performance_schema).
  EXPECT_FALSE(Has(tables.out, "session_status")) << tables.out;
  const auto field = Quorvex(dir, {"show", "app.qvp", "categories", "name"});
  ASSERT_EQ(field.status, 0) << field.err;
  EXPECT_TRUE(Has(field.out, "FldUniqueIdx")) << field.out;

  const auto refused =
      Quorvex(dir, {"new", "bad.qvp", "--db", db, "--user", "qv", "--password", "wrong"});
  EXPECT_NE(refused.status, 0);
  EXPECT_EQ(refused.err.substr(refused.err.rfind("Quorvex: ")),
            "Quorvex: Unable to connect to Data Source! User ID / Password not valid!\n");
  EXPECT_FALSE(std::filesystem::exists(dir / "bad.qvp"));
}

INSTANTIATE_TEST_SUITE_P(Servers, ServerCommands,
                         ::testing::Values(db_testing::kPostgres, db_testing::kMaria),
                         [](const auto& info) { return std::string(info.param.name); });

}  // namespace
}  // namespace qv
