// `quorvex new` on the PostgreSQL and MariaDB test servers through ODBC data sources, and the
// words of a wrong password. Skips when a server is not up.
#include <gtest/gtest.h>

#include <filesystem>

#include "cli/run_quorvex.h"

namespace qv {
namespace {

using cli_testing::FreshDir;
using cli_testing::Has;
using cli_testing::Quorvex;

std::filesystem::path ServerDir() {
  const char* dir = std::getenv("QV_DB_DIR");
  return dir ? dir : "/tmp/quorvex-db";
}

std::string OdbcEnv() {
  const std::string dir = ServerDir().string();
  return "ODBCSYSINI=" + dir + " ODBCINI=" + dir + "/odbc.ini";
}

struct Server {
  const char* name;
  const char* marker;
  const char* dsn;
};

class ServerCommands : public ::testing::TestWithParam<Server> {};

TEST_P(ServerCommands, NewProjectAndWrongPassword) {
  if (!std::filesystem::exists(ServerDir() / GetParam().marker)) {
    GTEST_SKIP() << GetParam().name << " is not running here; skipping";
  }
  const auto dir = FreshDir(std::string("db-") + GetParam().name);
  const std::string db = std::string("odbc:") + GetParam().dsn;
  const auto made =
      Quorvex(dir, {"new", "app.qvp", "--db", db, "--user", "qv", "--password", "qv"}, OdbcEnv());
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

  const auto refused = Quorvex(
      dir, {"new", "bad.qvp", "--db", db, "--user", "qv", "--password", "wrong"}, OdbcEnv());
  EXPECT_NE(refused.status, 0);
  EXPECT_EQ(refused.err.substr(refused.err.rfind("Quorvex: ")),
            "Quorvex: Unable to connect to Data Source! User ID / Password not valid!\n");
  EXPECT_FALSE(std::filesystem::exists(dir / "bad.qvp"));
}

INSTANTIATE_TEST_SUITE_P(Servers, ServerCommands,
                         ::testing::Values(Server{"PostgreSQL", "pg.ok", "qv_pg"},
                                           Server{"MariaDB", "maria.ok", "qv_maria"}),
                         [](const auto& info) { return std::string(info.param.name); });

}  // namespace
}  // namespace qv
