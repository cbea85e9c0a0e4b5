// How long the difference check and synchronisation take against a fresh load: a SQLite file
// of 1,000 tables with 20 columns each, loaded into a project, then changed in 5 % of its
// tables (a column added to 25, a column's type changed in 25). The goal: CheckDB and
// SynchronizeDB each within 1.5 times a fresh LoadDB of the changed file.
#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include <filesystem>
#include <string>
#include <vector>

#include "model/tyx.h"
#include "persistence/project_file.h"
#include "root/create_tyx.h"
#include "support/status.h"
#include "support/tyx_vars.h"
#include "sync/difference_check.h"
#include "sync/table_sync.h"

namespace {

namespace fs = std::filesystem;
using qv::String;
using qv::Variant;

void Exec(const fs::path& file, const std::string& sql) {
  sqlite3* db = nullptr;
  sqlite3_open(file.c_str(), &db);
  sqlite3_exec(db, sql.c_str(), nullptr, nullptr, nullptr);
  sqlite3_close(db);
}

std::string WideSchemaSql(int tables) {
  std::string sql = "BEGIN;\n";
  for (int t = 1; t <= tables; ++t) {
    const std::string name = "t" + std::to_string(t);
    sql += "CREATE TABLE " + name + " (id INTEGER PRIMARY KEY, code VARCHAR(20) NOT NULL";
    for (int c = 3; c <= 20; ++c) {
      const char* type = c % 3 == 0 ? "VARCHAR(50)" : c % 3 == 1 ? "INTEGER" : "DATE";
      sql += ", c" + std::to_string(c) + " " + type;
    }
    sql += ");\nCREATE UNIQUE INDEX ux_" + name + " ON " + name + " (code);\n";
  }
  return sql + "COMMIT;";
}

// 25 tables gain a column, 25 see c4 turn from INTEGER into text.
std::string ChangeSql() {
  std::string sql = "BEGIN;\n";
  for (int t = 1; t <= 1000; t += 40) {
    sql += "ALTER TABLE t" + std::to_string(t) + " ADD COLUMN extra VARCHAR(10);\n";
    const std::string other = "t" + std::to_string(t + 20);
    sql += "ALTER TABLE " + other + " DROP COLUMN c4;\nALTER TABLE " + other +
           " ADD COLUMN c4 TEXT;\n";
  }
  return sql + "COMMIT;";
}

struct Fixture {
  fs::path dir = fs::temp_directory_path() / "qv-bench-sync";
  fs::path db = dir / "wide.db";
  fs::path project = dir / "wide.qvp";
};

String ConnStr(const Fixture& f) {
  return u"Provider=SQLite;Data Source=" + String::FromUtf8(f.db.string());
}

void LoadInto(qv::Tyx& tyx, const String& conn_str) {
  std::vector<Variant> args = {Variant(String()), Variant(String(u"CONNECTIONSTRING")),
                               Variant(String()), Variant(String()),
                               Variant(false),    Variant(String()),
                               Variant(String()), Variant(conn_str),
                               Variant(String())};
  tyx.Services().LoadDB(tyx, args);
}

// The project of the unchanged file, saved with AutoSync off; the file is then changed.
const Fixture& Prepared() {
  static const Fixture fixture = [] {
    Fixture f;
    fs::create_directories(f.dir);
    fs::remove(f.db);
    Exec(f.db, WideSchemaSql(1000));
    qv::Ref<qv::Tyx> tyx = qv::CreateTyx();
    LoadInto(*tyx, ConnStr(f));
    tyx->SetAutoSync(false);
    qv::SaveProjectFile(*tyx, String::FromUtf8(f.project.string()));
    Exec(f.db, ChangeSql());
    return f;
  }();
  return fixture;
}

qv::Ref<qv::Tyx> OpenProject(const Fixture& f) {
  qv::Ref<qv::Tyx> tyx = qv::CreateTyx();
  qv::LoadProjectFile(*tyx, String::FromUtf8(f.project.string()));
  return tyx;
}

void Quiet() {
  qv::SharedStatus().SetMode(qv::StatusMode::kQuiet);
}

void BM_LoadDB_Changed1000Tables(benchmark::State& state) {
  Quiet();
  const Fixture& f = Prepared();
  for (auto _ : state) {
    state.PauseTiming();
    qv::Ref<qv::Tyx> tyx = qv::CreateTyx();
    state.ResumeTiming();
    LoadInto(*tyx, ConnStr(f));
    state.PauseTiming();
    if (!qv::Vars().ProjErr.empty()) state.SkipWithError("load failed");
    tyx = nullptr;
    state.ResumeTiming();
  }
}
BENCHMARK(BM_LoadDB_Changed1000Tables)->Unit(benchmark::kMillisecond)->Iterations(3);

void BM_CheckDB_1000Tables5PercentChanged(benchmark::State& state) {
  Quiet();
  const Fixture& f = Prepared();
  qv::Ref<qv::Tyx> tyx = OpenProject(f);
  for (auto _ : state) {
    const int16_t n = qv::CheckDB(*tyx);
    if (n <= 0) state.SkipWithError("no differences found");
  }
}
BENCHMARK(BM_CheckDB_1000Tables5PercentChanged)->Unit(benchmark::kMillisecond)->Iterations(3);

void BM_SynchronizeDB_1000Tables5PercentChanged(benchmark::State& state) {
  Quiet();
  const Fixture& f = Prepared();
  for (auto _ : state) {
    state.PauseTiming();
    qv::Ref<qv::Tyx> tyx = OpenProject(f);
    state.ResumeTiming();
    qv::SynchronizeDB(*tyx);
    state.PauseTiming();
    if (!qv::Vars().ProjErr.empty() || qv::CheckDB(*tyx) != 0) {
      state.SkipWithError("synchronisation left differences");
    }
    tyx = nullptr;
    state.ResumeTiming();
  }
}
BENCHMARK(BM_SynchronizeDB_1000Tables5PercentChanged)->Unit(benchmark::kMillisecond)->Iterations(3);

}  // namespace

BENCHMARK_MAIN();
