// Helpers shared by the data access tests: scratch files, SQLite files built from SQL text,
// and the folder of the test servers.
#pragma once

#include <sqlite3.h>

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include <gtest/gtest.h>

#include "automation/string.h"

namespace qv::data::testing {

// A fresh folder of this process: CTest runs each test case as its own process, two at a time, so
// a folder shared between processes would be emptied under another test's feet.
inline std::filesystem::path ScratchDir(const std::string& name) {
  const char* root = std::getenv("QV_TEST_SCRATCH");
  std::filesystem::path dir = root ? root : std::filesystem::temp_directory_path() / "qv-test";
  dir /= "data-" + name + "-" + std::to_string(::getpid());
  std::filesystem::remove_all(dir);
  std::filesystem::create_directories(dir);
  return dir;
}

// Runs a script on a SQLite file (made if missing) through the real library.
inline void ExecSqlite(const std::filesystem::path& file, const char* sql) {
  sqlite3* db = nullptr;
  EXPECT_EQ(sqlite3_open(file.c_str(), &db), SQLITE_OK);
  char* message = nullptr;
  const int rc = sqlite3_exec(db, sql, nullptr, nullptr, &message);
  EXPECT_EQ(rc, SQLITE_OK) << (message ? message : "");
  sqlite3_free(message);
  sqlite3_close(db);
}

// Builds a SQLite file anew from a script.
inline std::filesystem::path MakeSqliteFile(const std::filesystem::path& file, const char* sql) {
  std::filesystem::remove(file);
  ExecSqlite(file, sql);
  return file;
}

inline void WriteFile(const std::filesystem::path& file, const std::string& bytes) {
  std::ofstream out(file, std::ios::binary);
  out << bytes;
}

inline String SqliteConnectionString(const std::filesystem::path& file) {
  return u"Provider=SQLite;Data Source=" + String::FromUtf8(file.string());
}

inline std::string SharedData(const std::string& relative) {
  return std::string(QV_SHARED_DATA) + "/" + relative;
}

}  // namespace qv::data::testing
