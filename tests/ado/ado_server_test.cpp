// The ADO scripts against the PostgreSQL and MariaDB servers that scripts/db/start.sh starts.
// Each run makes its own tables (named after the process) and drops them.
#include <unistd.h>

#include <cstdlib>
#include <filesystem>

#include "ado_script_support.h"
#include "platform/data/connection.h"
#include "platform/data/db_servers.h"

namespace qv::ado::testing {
namespace {

// A server and the spelling of the scripts' column types on it.
struct Server {
  db_testing::Server server;
  Dialect dialect;
};

std::string Prefix() {
  return "ado" + std::to_string(::getpid()) + "_";
}

Server Postgres() {
  // psqlODBC reports Booleans as text unless told otherwise.
  return {db_testing::kPostgres,
          {"pg", "DSN=qv_pg;BoolsAsChar=0", "id SERIAL PRIMARY KEY", "BYTEA", "TIMESTAMP",
           "BOOLEAN", "NUMERIC(19,4)", Prefix(), ""}};
}

Server Maria() {
  return {db_testing::kMaria,
          {"maria", "DSN=qv_maria", "id INT AUTO_INCREMENT PRIMARY KEY", "LONGBLOB", "DATETIME",
           "BIT", "DECIMAL(19,4)", Prefix(), " CHARACTER SET utf8mb4"}};
}

class AdoServerTest : public ::testing::TestWithParam<const char*> {};

TEST_P(AdoServerTest, Scripts) {
  const Server server = std::string(GetParam()) == "pg" ? Postgres() : Maria();
  QV_SKIP_WITHOUT(server.server);
  for (const char* script : {"crud.vbs", "batch.vbs", "paging.vbs", "types.vbs", "transactions.vbs",
                             "errors.vbs", "procedures.vbs"}) {
    EXPECT_EQ(RunAdoScript(script, server.dialect), "") << script;
  }
}

// A wrong password and a server that is down give the provider's failure, not a crash.
TEST_P(AdoServerTest, LoginFailures) {
  const Server server = std::string(GetParam()) == "pg" ? Postgres() : Maria();
  QV_SKIP_WITHOUT(server.server);
  Dialect d = server.dialect;
  d.connection += ";UID=qv;PWD=wrong";
  const std::string failures = RunAdoScript("login.vbs", d);
  EXPECT_EQ(failures, "");
}

// The driver's statement of an unread result is freed before the disconnect, however late the
// cursor goes.
TEST_P(AdoServerTest, CursorOutlivesItsConnection) {
  const Server server = std::string(GetParam()) == "pg" ? Postgres() : Maria();
  QV_SKIP_WITHOUT(server.server);
  auto cn = std::make_unique<data::Connection>();
  cn->Open(String::FromUtf8(server.dialect.connection));
  auto result = cn->Run(u"SELECT 1 AS n UNION ALL SELECT 2");
  cn->Close();
  cn.reset();
  std::vector<Variant> row;
  int count = 0;
  while (result.rows->Fetch(row))
    ++count;
  EXPECT_EQ(count, 2);
}

INSTANTIATE_TEST_SUITE_P(Servers, AdoServerTest, ::testing::Values("pg", "maria"));

}  // namespace
}  // namespace qv::ado::testing
