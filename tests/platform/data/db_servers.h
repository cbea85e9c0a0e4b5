// The PostgreSQL and MariaDB servers that scripts/db/start.sh starts for the `db` tests, and
// the odbc.ini it writes: the one fixture of every test binary that talks to them.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>

namespace qv::db_testing {

inline std::filesystem::path ServerDir() {
  const char* dir = std::getenv("QV_DB_DIR");
  return dir ? dir : QV_DB_DIR_DEFAULT;
}

struct Server {
  const char* name;    // as the DBMS names itself
  const char* marker;  // written by start.sh when the server is up
  const char* dsn;     // the connection string of the data source start.sh wrote for it
};

inline constexpr Server kPostgres = {"PostgreSQL", "pg.ok", "DSN=qv_pg"};
inline constexpr Server kMaria = {"MariaDB", "maria.ok", "DSN=qv_maria"};

inline bool ServerUp(const Server& server) {
  return std::filesystem::exists(ServerDir() / server.marker);
}

// Points unixODBC at the files the start script wrote, before any ODBC call.
class ServerEnvironment : public ::testing::Environment {
 public:
  void SetUp() override {
    const std::string dir = ServerDir().string();
    setenv("ODBCSYSINI", dir.c_str(), 1);
    setenv("ODBCINI", (dir + "/odbc.ini").c_str(), 1);
  }
};
inline const auto* const kServerEnvironment =
    ::testing::AddGlobalTestEnvironment(new ServerEnvironment);

}  // namespace qv::db_testing

#define QV_SKIP_WITHOUT(server)                                      \
  if (!::qv::db_testing::ServerUp(server))                           \
  GTEST_SKIP() << (server).name                                      \
               << " is not running here (scripts/db/start.sh could " \
                  "not start it); skipping"
