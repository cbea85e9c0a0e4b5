// Runs the ADO scripts of tests/ado/scripts on a VBScript engine with the ADODB classes, against
// one database: the script sees the connection string and the database's spelling of a few
// column types as constants, so one script covers SQLite, PostgreSQL and MariaDB.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "ado/classes.h"
#include "automation/convert.h"
#include "vbscript/engine.h"

namespace qv::ado::testing {

struct Dialect {
  std::string kind;  // "sqlite", "pg", "maria"
  std::string connection;
  std::string key_column;  // an auto-numbered integer primary key named id
  std::string blob_type;
  std::string date_type;
  std::string bool_type;
  std::string money_type;
  std::string table_prefix;   // tables of a run are unique on the shared servers
  std::string table_options;  // after the column list of CREATE TABLE
};

inline std::string ReadText(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::stringstream text;
  text << in.rdbuf();
  return text.str();
}

inline std::string Quoted(const std::string& text) {
  std::string quoted = "\"";
  for (const char c : text) {
    quoted += c;
    if (c == '"') quoted += '"';
  }
  return quoted + "\"";
}

// The script's failures, one per line; empty when every check held.
inline std::string RunAdoScript(const std::string& name, const Dialect& d) {
  const std::string dir = std::string(QV_SOURCE_DIR) + "/tests/ado/scripts/";
  // The server tests may be the first to run in a fresh build, before anything made the folder.
  const char* root = std::getenv("QV_TEST_SCRATCH");
  const std::string scratch = root ? root : "/tmp";
  std::filesystem::create_directories(scratch);
  std::string code =
      "Const CONN = " + Quoted(d.connection) + "\r\nConst DBKIND = " + Quoted(d.kind) +
      "\r\nConst KEYCOL = " + Quoted(d.key_column) + "\r\nConst BLOBTYPE = " + Quoted(d.blob_type) +
      "\r\nConst DATETYPE = " + Quoted(d.date_type) +
      "\r\nConst BOOLTYPE = " + Quoted(d.bool_type) +
      "\r\nConst MONEYTYPE = " + Quoted(d.money_type) +
      "\r\nConst TBL = " + Quoted(d.table_prefix) +
      "\r\nConst TABLEOPTS = " + Quoted(d.table_options) +
      "\r\nConst SCRATCH = " + Quoted(scratch) + "\r\n";
  code += ReadText(std::string(QV_SOURCE_DIR) + "/tests/vbscript/conformance/support/prelude.vbs") +
          "\r\nqvWholeNumbersAlike = True\r\n" +
          ReadText(std::string(QV_SOURCE_DIR) + "/tests/ado/ado_prelude.vbs") +
          ReadText(dir + name);
  vbs::Engine engine;
  RegisterAdoClasses(engine.Registry());
  try {
    engine.AddCode(String::FromUtf8(code));
  } catch (const Error& failure) {
    // Read the error before Eval runs anything: a new call clears it.
    const auto& e = engine.Error();
    const String words = e.Description().empty() ? failure.description() : e.Description();
    const std::string report = "script stopped at line " + std::to_string(e.Line()) + ": " +
                               words.ToUtf8() + " (" +
                               std::to_string(e.Number() ? e.Number() : failure.number()) + ")\n";
    return report + ToString(engine.Eval(u"Failures")).ToUtf8();
  }
  return ToString(engine.Eval(u"Failures")).ToUtf8();
}

}  // namespace qv::ado::testing
