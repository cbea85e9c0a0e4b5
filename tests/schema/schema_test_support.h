// What the schema tests share: a quiet status surface, fresh shared variables, SQLite files
// built from SQL text, scripted sources for the DBMS branches no server here reaches, and the
// test servers of scripts/db.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "platform/data/data_test_support.h"
#include "platform/data/scripted_backend.h"
#include "platform/prompter.h"
#include "support/status.h"
#include "support/tyx_vars.h"

namespace qv::schema_testing {

using data::testing::MakeSqliteFile;
using data::testing::SqliteConnectionString;

inline std::filesystem::path Scratch(const std::string& name) {
  return data::testing::ScratchDir("schema-" + name);
}

// Every test starts from the shared variables of a new process, with no status output and a
// prompter that answers from `answers`.
class SchemaTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ResetVars();
    SharedStatus().SetMode(StatusMode::kQuiet);
    SetCurrentPrompter(std::make_unique<ScriptedPrompter>(std::vector<String>{}, nullptr));
  }
  void TearDown() override {
    for (const String& name : scripted_)
      data::UnregisterScriptedSource(name);
  }
  void Answer(std::vector<String> answers) {
    SetCurrentPrompter(std::make_unique<ScriptedPrompter>(std::move(answers), nullptr));
  }
  // Registers a scripted source and returns its connection string.
  String Scripted(StringView name, std::shared_ptr<data::ScriptedSource> source) {
    data::RegisterScriptedSource(name, std::move(source));
    scripted_.emplace_back(name);
    return String(u"Provider=Scripted;Data Source=") + name;
  }

 private:
  std::vector<String> scripted_;
};

// The servers that scripts/db/start.sh brings up, and the odbc.ini it writes.
inline std::filesystem::path ServerDir() {
  const char* dir = std::getenv("QV_DB_DIR");
  return dir ? dir : "/tmp/quorvex-db";
}

inline void UseServerOdbcIni() {
  const std::string dir = ServerDir().string();
  setenv("ODBCSYSINI", dir.c_str(), 1);
  setenv("ODBCINI", (dir + "/odbc.ini").c_str(), 1);
}

inline bool ServerUp(const char* marker) {
  return std::filesystem::exists(ServerDir() / marker);
}

}  // namespace qv::schema_testing
