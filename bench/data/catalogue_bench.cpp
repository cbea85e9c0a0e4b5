// The cost of reading a full catalogue the way the schema readers do: the table rowset, then
// per table one probing statement and the key, column and index rowsets. The SQLite database
// has 1,000 tables of 20 columns (a key, a unique index and a plain index each); the
// PostgreSQL one (through ODBC, when scripts/db/start.sh has the server running) has 200.
#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "automation/convert.h"
#include "platform/data/connection.h"
#include "platform/data/data_types.h"
#include "platform/data/recordset.h"

namespace {

using qv::String;
using qv::Variant;
using namespace qv::data;

std::string CreateTableSql(const std::string& table, int columns) {
  std::string sql = "CREATE TABLE " + table + " (id INTEGER PRIMARY KEY";
  const char* types[] = {"VARCHAR(40)", "INTEGER", "DATE", "MONEY", "BOOLEAN", "TEXT", "REAL"};
  for (int c = 1; c < columns; ++c) {
    sql += ", c" + std::to_string(c) + " " + types[c % 7] + (c % 3 == 0 ? " NOT NULL" : "");
  }
  sql += ");\nCREATE UNIQUE INDEX ux_" + table + " ON " + table + " (c1);\n";
  sql += "CREATE INDEX ix_" + table + " ON " + table + " (c2, c3);\n";
  return sql;
}

std::filesystem::path SqliteCatalogue(int tables, int columns) {
  const auto file = std::filesystem::temp_directory_path() /
                    ("qv-bench-catalogue-" + std::to_string(tables) + ".db");
  if (std::filesystem::exists(file)) return file;
  sqlite3* db = nullptr;
  sqlite3_open(file.c_str(), &db);
  std::string sql = "BEGIN;\n";
  for (int t = 0; t < tables; ++t)
    sql += CreateTableSql("t" + std::to_string(t), columns);
  sql += "COMMIT;";
  sqlite3_exec(db, sql.c_str(), nullptr, nullptr, nullptr);
  sqlite3_close(db);
  return file;
}

// What ReadAdoSchema asks of the layer, without its bookkeeping. Returns the column count.
int64_t ReadCatalogue(Connection& cn, const Variant& schema) {
  int64_t columns = 0;
  auto tables = cn.OpenSchema(adSchemaTables, {Variant(), schema, Variant(), String(u"TABLE")});
  for (; !tables->Eof(); tables->MoveNext()) {
    const String name = qv::ToString(tables->Fields(u"TABLE_NAME").Value());
    const String prefix = schema.is_empty() ? String() : qv::ToString(schema) + u".";
    Recordset probe;
    probe.Open(u"SELECT * FROM " + prefix + u"\"" + name + u"\" WHERE 0=1", cn);
    for (const Field& field : probe.Fields()) {
      benchmark::DoNotOptimize(field.Type());
      benchmark::DoNotOptimize(field.Properties(u"ISAUTOINCREMENT"));
      ++columns;
    }
    const std::vector<Variant> restriction = {Variant(), schema, name};
    auto keys = cn.OpenSchema(adSchemaPrimaryKeys, restriction);
    auto nullable = cn.OpenSchema(adSchemaColumns, restriction);
    auto indexes = cn.OpenSchema(adSchemaIndexes, {Variant(), schema, Variant(), Variant(), name});
    benchmark::DoNotOptimize(keys->RecordCount() + nullable->RecordCount() +
                             indexes->RecordCount());
  }
  return columns;
}

void BM_SqliteCatalogue1000x20(benchmark::State& state) {
  const auto file = SqliteCatalogue(1000, 20);
  int64_t columns = 0;
  for (auto _ : state) {
    Connection cn;
    cn.Open(u"Provider=SQLite;Data Source=" + String::FromUtf8(file.string()));
    columns = ReadCatalogue(cn, Variant());
  }
  state.counters["columns"] = static_cast<double>(columns);
}
BENCHMARK(BM_SqliteCatalogue1000x20)->Unit(benchmark::kMillisecond);

bool PostgresRunning(std::string& dir) {
  const char* env = std::getenv("QV_DB_DIR");
  dir = env ? env : "/tmp/quorvex-db";
  return std::filesystem::exists(dir + "/pg.ok");
}

void BM_PostgresOdbcCatalogue200x20(benchmark::State& state) {
  std::string dir;
  if (!PostgresRunning(dir)) {
    state.SkipWithError("PostgreSQL is not running: start it with scripts/db/start.sh");
    return;
  }
  setenv("ODBCSYSINI", dir.c_str(), 1);
  setenv("ODBCINI", (dir + "/odbc.ini").c_str(), 1);
  Connection setup;
  setup.Open(u"DSN=qv_pg");
  // The tables live in a schema of their own so that the tests' schema stays as it is.
  setup.Execute(u"DROP SCHEMA IF EXISTS qvbench CASCADE");
  setup.Execute(u"CREATE SCHEMA qvbench");
  std::string sql;
  for (int t = 0; t < 200; ++t) {
    std::string create = CreateTableSql("qvbench.t" + std::to_string(t), 20);
    // PostgreSQL names an index without its schema.
    for (const char* prefix : {"ux_qvbench.", "ix_qvbench."}) {
      const auto at = create.find(prefix);
      create.replace(at, std::string(prefix).size(), std::string(prefix).substr(0, 3) + "qvbench_");
    }
    sql += create;
  }
  setup.Execute(String::FromUtf8(sql));
  int64_t columns = 0;
  for (auto _ : state) {
    Connection cn;
    cn.Open(u"DSN=qv_pg");
    columns = ReadCatalogue(cn, Variant(String(u"qvbench")));
  }
  state.counters["columns"] = static_cast<double>(columns);
  setup.Execute(u"DROP SCHEMA qvbench CASCADE");
}
BENCHMARK(BM_PostgresOdbcCatalogue200x20)->Unit(benchmark::kMillisecond)->Iterations(3);

}  // namespace
