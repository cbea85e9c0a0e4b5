// The ADO scripts on SQLite files, on an Access file and in memory; the constants and the
// Windows connection string forms.
#include <sqlite3.h>
#include <unistd.h>

#include <filesystem>

#include "ado/connection.h"
#include "ado/constants.h"
#include "ado_script_support.h"

namespace qv::ado::testing {
namespace {

std::filesystem::path FreshSqliteFile(const std::string& name) {
  const char* root = std::getenv("QV_TEST_SCRATCH");
  std::filesystem::path dir = root ? root : std::filesystem::temp_directory_path();
  dir /= "ado-" + std::to_string(::getpid());
  std::filesystem::create_directories(dir);
  const auto file = dir / (name + ".db");
  std::filesystem::remove(file);
  sqlite3* db = nullptr;
  sqlite3_open(file.c_str(), &db);
  sqlite3_exec(db, "PRAGMA user_version = 1", nullptr, nullptr, nullptr);
  sqlite3_close(db);
  return file;
}

Dialect Sqlite(const std::string& name) {
  return {"sqlite",
          "Provider=SQLite;Data Source=" + FreshSqliteFile(name).string(),
          "id INTEGER PRIMARY KEY AUTOINCREMENT",
          "BLOB",
          "DATETIME",
          "BIT",
          "MONEY",
          "t_",
          ""};
}

TEST(AdoScripts, OnSqlite) {
  for (const char* script : {"crud.vbs", "batch.vbs", "paging.vbs", "types.vbs", "transactions.vbs",
                             "errors.vbs", "procedures.vbs"}) {
    EXPECT_EQ(RunAdoScript(script, Sqlite(script)), "") << script;
  }
}

TEST(AdoScripts, InMemoryRecordsetAndStream) {
  EXPECT_EQ(RunAdoScript("memory.vbs", Sqlite("memory")), "");
  EXPECT_EQ(RunAdoScript("stream.vbs", Sqlite("stream")), "");
}

TEST(AdoScripts, AccessFile) {
  Dialect access = Sqlite("access");
  access.connection =
      "Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + std::string(QV_SHARED_DATA) +
      "/access/nwind.mdb";
  EXPECT_EQ(RunAdoScript("access.vbs", access), "");
}

// The include a page carries must compile (no name twice) and give the same values as the
// table the type-library directive reads.
TEST(AdoConstants, IncludeAndLookupAgree) {
  String include = AdoConstantsInclude();
  ASSERT_TRUE(include.view().starts_with(u"<%\r\n"));
  const String code(include.view().substr(4, include.size() - 8));
  vbs::Engine engine;
  engine.AddCode(code);
  for (const AdoConstant& c : AdoConstants()) {
    EXPECT_EQ(ToLong(engine.Eval(c.name)), c.value) << String(c.name).ToUtf8();
  }
  EXPECT_EQ(FindAdoConstant(u"ADOPENSTATIC"), 3);
  EXPECT_EQ(FindAdoConstant(u"adCmdText"), 1);
  EXPECT_EQ(FindAdoConstant(u"adVarWChar"), 202);
  EXPECT_EQ(FindAdoConstant(u"adNoSuchThing"), std::nullopt);
  // The copy shipped for pages to include is the same text.
  EXPECT_EQ(ReadText(std::string(QV_SOURCE_DIR) + "/share/adovbs.inc"), include.ToUtf8());
}

TEST(AdoConnectionStrings, WindowsFormsReachTheirBackends) {
  EXPECT_EQ(TranslateConnectionString(u"Driver={Microsoft Access Driver (*.mdb)};DBQ=/d/x.mdb"),
            u"Provider=Microsoft.Jet.OLEDB.4.0;Data Source=/d/x.mdb");
  EXPECT_EQ(TranslateConnectionString(u"DRIVER=SQLite3 ODBC Driver;Database=/d/x.db"),
            u"Provider=SQLite;Data Source=/d/x.db");
  EXPECT_EQ(TranslateConnectionString(u"sqlite:/d/x.db"), u"Provider=SQLite;Data Source=/d/x.db");
  EXPECT_EQ(TranslateConnectionString(u"DSN=shop;UID=a"), u"DSN=shop;UID=a");
  EXPECT_EQ(TranslateConnectionString(u"Provider=Microsoft.ACE.OLEDB.12.0;Data Source=x.accdb"),
            u"Provider=Microsoft.ACE.OLEDB.12.0;Data Source=x.accdb");
}

}  // namespace
}  // namespace qv::ado::testing
