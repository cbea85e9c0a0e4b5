// Synchronisation against PostgreSQL and MariaDB: each test makes a database of its own on the
// test servers (never touching the shared one), changes its schema between two loads, and
// checks the counts, what is kept, what is renewed and what is asked. A test skips when its
// server isn't up.
#include <unistd.h>

#include <string>

#include "automation/convert.h"
#include "platform/data/connection.h"
#include "platform/data/recordset.h"
#include "schema/schema_test_support.h"
#include "sync/difference_check.h"
#include "sync/sync_fixture.h"
#include "sync/table_sync.h"

namespace qv {
namespace {

struct Server {
  const char* name;
  const char* marker;
  // The administrator's connection (over the server's local socket) and the user's, both
  // with "%s" for the database.
  std::string admin;
  std::string user;
  const char* create;  // with %s for the database and the user's grant
  const char* quote_style;
};

std::string Format(const std::string& pattern, const std::string& db) {
  std::string text = pattern;
  for (size_t at; (at = text.find("%s")) != std::string::npos;)
    text.replace(at, 2, db);
  return text;
}

Server Postgres() {
  const std::string dir = schema_testing::ServerDir().string();
  return {"PostgreSQL",
          "pg.ok",
          "DSN=qv_pg;Servername=" + dir + "/pg;UID=postgres;PWD=;Database=postgres",
          "DSN=qv_pg;UID=qv;PWD=qv;Database=%s",
          "CREATE DATABASE %s OWNER qv",
          "Double Quote"};
}

Server Maria() {
  const std::string dir = schema_testing::ServerDir().string();
  return {"MariaDB",
          "maria.ok",
          "Driver=MariaDB Unicode;Socket=" + dir + "/maria/mysqld.sock;User=root;Database=mysql",
          "DSN=qv_maria;UID=qv;PWD=qv;Database=%s",
          "CREATE DATABASE %s; GRANT ALL ON %s.* TO 'qv'@'127.0.0.1'",
          "Backquote"};
}

// Maps notes to old_notes in the mapping dialog, gives the safe answer to all else, and keeps
// what it was asked.
class MapByName : public Prompter {
 public:
  explicit MapByName(std::vector<Prompt>& asked) : asked_(asked) {}
  Reply Ask(const Prompt& prompt) override {
    asked_.push_back(prompt);
    Reply reply;
    for (const String& name : prompt.new_names) {
      std::optional<size_t> pick;
      for (size_t i = 0; i < prompt.names.size(); ++i) {
        if (name == u"notes" && prompt.names[i] == u"old_notes") pick = i;
      }
      reply.map.push_back(pick);
    }
    return reply;
  }

 private:
  std::vector<Prompt>& asked_;
};

class ServerSyncTest : public sync_testing::SyncTest,
                       public ::testing::WithParamInterface<Server (*)()> {
 protected:
  void SetUp() override {
    schema_testing::UseServerOdbcIni();
    server_ = GetParam()();
    if (!schema_testing::ServerUp(server_.marker)) {
      GTEST_SKIP() << server_.name << " is not running here; skipping";
    }
    SyncTest::SetUp();
    db_ = "qv_sync_" + std::to_string(::getpid());
    Admin("DROP DATABASE IF EXISTS " + db_);
    for (const std::string& statement : Split(Format(server_.create, db_)))
      Admin(statement);
    created_ = true;
  }
  void TearDown() override {
    if (created_) Admin("DROP DATABASE IF EXISTS " + db_);
    SyncTest::TearDown();
  }
  static std::vector<std::string> Split(const std::string& script) {
    std::vector<std::string> parts;
    size_t start = 0;
    for (size_t semi; (semi = script.find(';', start)) != std::string::npos; start = semi + 1) {
      parts.push_back(script.substr(start, semi - start));
    }
    parts.push_back(script.substr(start));
    return parts;
  }
  void Admin(const std::string& sql) {
    data::Connection cn;
    cn.Open(String::FromUtf8(server_.admin));
    cn.Execute(String::FromUtf8(sql));
    cn.Close();
  }
  // Runs statements separated by ";" as the user, in the test's database.
  void Exec(const std::string& script) {
    data::Connection cn;
    cn.Open(UserConnStr());
    for (const std::string& statement : Split(script)) {
      if (statement.find_first_not_of(" \n") != std::string::npos) {
        cn.Execute(String::FromUtf8(statement));
      }
    }
    cn.Close();
  }
  String UserConnStr() const { return String::FromUtf8(Format(server_.user, db_)); }
  std::string Q(const std::string& name) const {
    return server_.quote_style == std::string("Backquote") ? "`" + name + "`" : "\"" + name + "\"";
  }

  Server server_;
  std::string db_;
  bool created_ = false;
};

TEST_P(ServerSyncTest, SchemaChangesRoundTripWithTheUsersSettings) {
  Exec(
      "CREATE TABLE customers (id INTEGER PRIMARY KEY, name VARCHAR(20) NOT NULL, "
      "city VARCHAR(30), score INTEGER);"
      "CREATE TABLE " +
      Q("user") +
      " (id INTEGER PRIMARY KEY, login VARCHAR(20));"
      "CREATE TABLE " +
      Q("Order Lines") +
      " (order_id INTEGER NOT NULL, line_no INTEGER NOT "
      "NULL, qty INTEGER, PRIMARY KEY (order_id, line_no));"
      "CREATE TABLE old_notes (id INTEGER, body VARCHAR(50));"
      "CREATE VIEW city_list AS SELECT id, city FROM customers");
  tyx_->SetSQLQuote(String::FromUtf8(server_.quote_style));
  Load(*tyx_, UserConnStr());
  // Names like keywords and mixed case with blanks are read with the DBMS's quotes.
  ASSERT_NE(Table(u"user"), nullptr);
  EXPECT_EQ(Table(u"user")->Fields().Count(), 2);
  ASSERT_NE(Table(u"Order Lines"), nullptr);
  EXPECT_EQ(Table(u"Order Lines")->TblKey(), u"line_no,order_id");
  EXPECT_EQ(CheckDB(*tyx_), 0);

  Field(u"customers", u"name")->SetFldCaption(u"Full name");
  Field(u"customers", u"city")->SetFldCaption(u"Town");
  Field(u"customers", u"score")->SetFldCaption(u"Points");
  Table(u"user")->SetTblCaption(u"Members");
  Table(u"old_notes")->SetTblCaption(u"Notes");
  Table(u"old_notes")->Fields().list().ByName(u"body")->SetFldCaption(u"Text");

  // Size, nullability and type change; a column goes and one comes; a key changes; a table is
  // renamed; a view becomes a table.
  const bool pg = server_.name == std::string("PostgreSQL");
  Exec(std::string(pg ? "ALTER TABLE customers ALTER COLUMN name TYPE VARCHAR(60);"
                        "ALTER TABLE customers ALTER COLUMN city SET NOT NULL;"
                        "ALTER TABLE customers ALTER COLUMN score TYPE VARCHAR(10);"
                      : "ALTER TABLE customers MODIFY name VARCHAR(60) NOT NULL;"
                        "ALTER TABLE customers MODIFY city VARCHAR(30) NOT NULL;"
                        "ALTER TABLE customers MODIFY score VARCHAR(10);") +
       "ALTER TABLE customers ADD email VARCHAR(80);"
       "ALTER TABLE " +
       Q("user") + " DROP COLUMN login;" +
       (pg ? "ALTER TABLE \"Order Lines\" DROP CONSTRAINT \"Order Lines_pkey\";"
           : "ALTER TABLE `Order Lines` DROP PRIMARY KEY;") +
       "ALTER TABLE " + Q("Order Lines") + " ADD PRIMARY KEY (order_id);" +
       (pg ? "ALTER TABLE old_notes RENAME TO notes;" : "RENAME TABLE old_notes TO notes;") +
       "DROP VIEW city_list;"
       "CREATE TABLE city_list (id INTEGER, city VARCHAR(30))");

  DifferenceList found;
  EXPECT_GT(CheckDB(*tyx_, &found), 0);
  bool size_listed = false;
  for (const SchemaDifference& d : found) {
    if (d.kind == SchemaDifference::kFieldChanged && d.field == u"name") size_listed = true;
  }
  EXPECT_TRUE(size_listed);

  // notes maps to old_notes; the key change is updated (nobody answers: the default).
  std::vector<Prompt> asked;
  SetCurrentPrompter(std::make_unique<MapByName>(asked));
  SynchronizeDB(*tyx_);
  ASSERT_EQ(asked.size(), 2u);
  EXPECT_EQ(asked[1].text,
            u"Primary key for \"Order Lines\" has been modified. Keep/Update primary Key?");
  ASSERT_EQ(tyx_->ProjErr().ToUtf8(), "");
  EXPECT_EQ(Field(u"customers", u"name")->FldCaption(), u"Full name");
  EXPECT_EQ(Field(u"customers", u"name")->FldSize(), 60);
  EXPECT_TRUE(Field(u"customers", u"city")->FldReq());
  EXPECT_EQ(Field(u"customers", u"city")->FldCaption(), u"Town");
  EXPECT_EQ(Field(u"customers", u"score")->FldCaption(), u"score");  // new type: defaults
  ASSERT_NE(Field(u"customers", u"email"), nullptr);
  EXPECT_EQ(Field(u"user", u"login"), nullptr);
  EXPECT_EQ(Table(u"user")->TblCaption(), u"Members");
  EXPECT_EQ(Table(u"Order Lines")->TblKey(), u"order_id");
  EXPECT_FALSE(Field(u"Order Lines", u"line_no")->FldIsPrimaryKey());
  ASSERT_NE(Table(u"notes"), nullptr);
  EXPECT_EQ(Table(u"notes")->TblCaption(), u"Notes");
  EXPECT_EQ(Field(u"notes", u"body")->FldCaption(), u"Text");
  EXPECT_EQ(Table(u"old_notes"), nullptr);
  EXPECT_EQ(Table(u"city_list")->TblType(), u"TABLE");
  EXPECT_EQ(CheckDB(*tyx_), 0);
}

INSTANTIATE_TEST_SUITE_P(Servers, ServerSyncTest, ::testing::Values(&Postgres, &Maria),
                         [](const auto& info) {
                           return std::string(info.index == 0 ? "PostgreSQL" : "MariaDB");
                         });

}  // namespace
}  // namespace qv
