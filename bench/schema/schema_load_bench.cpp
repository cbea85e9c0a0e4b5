// How long loading a large database takes: LoadDB of a SQLite file of 1,000 tables with 20
// columns each (every field read, and the list-only DynamicLoadDB load), the record reader on
// the same file, and LoadDB of 200 such tables on the PostgreSQL test server through ODBC
// (skipped when scripts/db/start.sh has not brought it up).
#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "model/tyx.h"
#include "schema/project_loader.h"
#include "schema/tyx_schema.h"
#include "support/status.h"
#include "support/tyx_vars.h"

namespace {

namespace fs = std::filesystem;
using qv::String;

// CREATE TABLE statements of `tables` tables of 20 columns: a key, texts, numbers and dates,
// a NOT NULL column and a unique index, so that every phase of the reader has work.
std::string WideSchemaSql(int tables) {
  std::string sql;
  for (int t = 1; t <= tables; ++t) {
    const std::string name = "t" + std::to_string(t);
    sql += "CREATE TABLE " + name + " (id INTEGER PRIMARY KEY, code VARCHAR(20) NOT NULL";
    for (int c = 3; c <= 20; ++c) {
      const char* type = c % 3 == 0 ? "VARCHAR(50)" : c % 3 == 1 ? "INTEGER" : "DATE";
      sql += ", c" + std::to_string(c) + " " + type;
    }
    sql += ");\nCREATE UNIQUE INDEX ux_" + name + " ON " + name + " (code);\n";
  }
  return sql;
}

fs::path SqliteFile() {
  static const fs::path file = [] {
    const fs::path dir = fs::temp_directory_path() / "qv-bench-schema";
    fs::create_directories(dir);
    const fs::path path = dir / "wide.db";
    fs::remove(path);
    sqlite3* db = nullptr;
    sqlite3_open(path.c_str(), &db);
    const std::string sql = "BEGIN;\n" + WideSchemaSql(1000) + "COMMIT;";
    sqlite3_exec(db, sql.c_str(), nullptr, nullptr, nullptr);
    sqlite3_close(db);
    return path;
  }();
  return file;
}

void Quiet() {
  qv::ResetVars();
  qv::SharedStatus().SetMode(qv::StatusMode::kQuiet);
}

void RunLoad(benchmark::State& state, const String& conn_str, bool dynamic, int expected) {
  Quiet();
  for (auto _ : state) {
    state.PauseTiming();
    qv::Ref<qv::Tyx> tyx = qv::MakeRef<qv::Tyx>();
    tyx->SetDynamicLoadDB(dynamic);
    qv::LoadDbRequest request;
    request.db_type = u"CONNECTIONSTRING";
    request.conn_str = conn_str;
    state.ResumeTiming();
    qv::LoadDB(*tyx, request);
    state.PauseTiming();
    const int loaded = tyx->Databases().Count() ? tyx->db()->Tables().Count() : 0;
    if (!qv::Vars().ProjErr.empty() || loaded != expected) {
      state.SkipWithError(("load failed: " + qv::Vars().ProjErr.ToUtf8()).c_str());
    }
    tyx = nullptr;  // unloading is not part of the figure
    state.ResumeTiming();
  }
}

String SqliteConnStr() {
  return u"Provider=SQLite;Data Source=" + String::FromUtf8(SqliteFile().string());
}

void BM_LoadDB_Sqlite1000Tables(benchmark::State& state) {
  RunLoad(state, SqliteConnStr(), false, 1000);
}
BENCHMARK(BM_LoadDB_Sqlite1000Tables)->Unit(benchmark::kMillisecond)->Iterations(3);

void BM_LoadDB_Sqlite1000Tables_Dynamic(benchmark::State& state) {
  RunLoad(state, SqliteConnStr(), true, 1000);
}
BENCHMARK(BM_LoadDB_Sqlite1000Tables_Dynamic)->Unit(benchmark::kMillisecond)->Iterations(5);

void BM_TyxSchema_Sqlite1000Tables(benchmark::State& state) {
  Quiet();
  const String conn_str = SqliteConnStr();
  for (auto _ : state) {
    qv::TyxSchema schema;
    qv::Variant name;
    schema.LoadDB(name, qv::Variant(String(u"CONNECTIONSTRING")), {}, {}, qv::Variant(false), {},
                  {}, qv::Variant(conn_str), {});
    if (schema.tblcnt() != 1000) state.SkipWithError("read failed");
  }
}
BENCHMARK(BM_TyxSchema_Sqlite1000Tables)->Unit(benchmark::kMillisecond)->Iterations(3);

// The PostgreSQL test server: a database of its own, so that the test schema stays as the
// tests expect it. Created once through psql on the server's socket.
bool PreparePostgres(std::string& error) {
  const char* env = std::getenv("QV_DB_DIR");
  const fs::path dir = env ? env : "/tmp/quorvex-db";
  if (!fs::exists(dir / "pg.ok")) {
    error = "PostgreSQL test server is not running (scripts/db/start.sh)";
    return false;
  }
  setenv("ODBCSYSINI", dir.c_str(), 1);
  setenv("ODBCINI", (dir / "odbc.ini").c_str(), 1);
  const std::string psql = "psql -q -h " + (dir / "pg").string() +
                           " -p 55432 -U postgres -v ON_ERROR_STOP=1 >/dev/null 2>&1";
  if (std::system((psql + " -d qvbench -c 'select 1'").c_str()) == 0) return true;
  const fs::path script = fs::temp_directory_path() / "qv-bench-schema" / "pg200.sql";
  fs::create_directories(script.parent_path());
  FILE* out = std::fopen(script.c_str(), "w");
  const std::string sql = "BEGIN;\n" + WideSchemaSql(200) + "COMMIT;\n";
  std::fwrite(sql.data(), 1, sql.size(), out);
  std::fclose(out);
  if (std::system((psql + " -d postgres -c 'create database qvbench owner qv'").c_str()) != 0 ||
      std::system(("psql -q -h " + (dir / "pg").string() +
                   " -p 55432 -U qv -d qvbench -v ON_ERROR_STOP=1 -f " + script.string() +
                   " >/dev/null 2>&1")
                      .c_str()) != 0) {
    error = "could not create the benchmark database on the PostgreSQL test server";
    return false;
  }
  return true;
}

void BM_LoadDB_Postgres200Tables(benchmark::State& state) {
  std::string error;
  if (!PreparePostgres(error)) {
    state.SkipWithError(error.c_str());
    for (auto _ : state) {
    }
    return;
  }
  RunLoad(state,
          u"Driver=PostgreSQL Unicode;Servername=127.0.0.1;Port=55432;Database=qvbench;"
          u"Username=qv;Password=qv",
          false, 200);
}
BENCHMARK(BM_LoadDB_Postgres200Tables)->Unit(benchmark::kMillisecond)->Iterations(2);

}  // namespace

BENCHMARK_MAIN();
