// The ODBC backend against real PostgreSQL and MariaDB servers started by scripts/db/start.sh,
// and the odbc.ini it writes. Each test skips with a clear message when its server could not
// start on this machine.
#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>

#include "automation/convert.h"
#include "automation/error.h"
#include "automation/safe_array.h"
#include "platform/data/connection.h"
#include "platform/data/data_types.h"
#include "platform/data/db_servers.h"
#include "platform/data/odbc_ini.h"
#include "platform/data/recordset.h"

namespace qv::data {
namespace {

using db_testing::kMaria;
using db_testing::kPostgres;
using db_testing::Server;

std::vector<String> Column(Recordset& rs, StringView name) {
  std::vector<String> values;
  for (rs.MoveFirst(); !rs.Eof(); rs.MoveNext())
    values.push_back(ToString(rs.Fields(name).Value()));
  return values;
}

std::vector<Variant> TableRestriction(StringView table) {
  return {Variant(), Variant(), String(table)};
}

class OdbcServerTest : public ::testing::TestWithParam<Server> {};

TEST_P(OdbcServerTest, CatalogueOfTheTestSchema) {
  const Server& server = GetParam();
  QV_SKIP_WITHOUT(server);
  Connection cn;
  cn.Open(String::FromUtf8(server.dsn));
  const String dbms = ToString(cn.Properties(u"DBMS Name"));
  EXPECT_NE(dbms.ToUtf8().find(server.name), std::string::npos) << dbms.ToUtf8();
  EXPECT_FALSE(ToString(cn.Properties(u"DBMS Version")).empty());
  EXPECT_FALSE(ToString(cn.Properties(u"Provider Name")).empty());
  EXPECT_FALSE(ToString(cn.Properties(u"Provider Version")).empty());

  auto tables = cn.OpenSchema(adSchemaTables);
  std::map<String, String> types;
  for (; !tables->Eof(); tables->MoveNext()) {
    types[ToString(tables->Fields(u"TABLE_NAME").Value())] =
        ToString(tables->Fields(u"TABLE_TYPE").Value());
  }
  EXPECT_EQ(types[u"categories"], u"TABLE");
  EXPECT_EQ(types[u"order_lines"], u"TABLE");
  EXPECT_EQ(types[u"order notes"], u"TABLE");
  EXPECT_EQ(types[u"products"], u"TABLE");
  EXPECT_EQ(types[u"product_list"], u"VIEW");

  // A key of two columns, in key order; "order_lines" holds an underscore, which catalogue
  // patterns would match against any character.
  auto keys = cn.OpenSchema(adSchemaPrimaryKeys, TableRestriction(u"order_lines"));
  EXPECT_EQ(Column(*keys, u"COLUMN_NAME"), (std::vector<String>{u"order_id", u"line_no"}));
  auto view_keys = cn.OpenSchema(adSchemaPrimaryKeys, TableRestriction(u"product_list"));
  EXPECT_TRUE(view_keys->Eof());

  auto columns = cn.OpenSchema(adSchemaColumns, TableRestriction(u"categories"));
  EXPECT_EQ(Column(*columns, u"COLUMN_NAME"),
            (std::vector<String>{u"category_id", u"name", u"description"}));
  EXPECT_EQ(Column(*columns, u"IS_NULLABLE"), (std::vector<String>{u"False", u"False", u"True"}));

  // Indexes: the unique one-column index, the two-column unique index, the key's index.
  auto indexes = cn.OpenSchema(
      adSchemaIndexes, {Variant(), Variant(), Variant(), Variant(), String(u"order_lines")});
  std::map<String, std::vector<String>> index_columns;
  std::map<String, String> flags;
  for (; !indexes->Eof(); indexes->MoveNext()) {
    const String name = ToString(indexes->Fields(u"index_name").Value());
    index_columns[name].push_back(ToString(indexes->Fields(u"COLUMN_NAME").Value()));
    flags[name] = ToString(indexes->Fields(u"Unique").Value()) + u"/" +
                  ToString(indexes->Fields(u"PRIMARY_KEY").Value());
  }
  EXPECT_EQ(index_columns[u"ux_order_lines_pair"],
            (std::vector<String>{u"order_id", u"product_id"}));
  EXPECT_EQ(flags[u"ux_order_lines_pair"], u"True/False");
  EXPECT_EQ(flags[u"ix_order_lines_product"], u"False/False");
  int primaries = 0;
  for (const auto& [name, flag] : flags)
    primaries += flag == u"True/True";
  EXPECT_EQ(primaries, 1);
}

TEST_P(OdbcServerTest, ProbeTypesAndValues) {
  const Server& server = GetParam();
  QV_SKIP_WITHOUT(server);
  Connection cn;
  cn.Open(String::FromUtf8(server.dsn));
  Recordset rs;
  rs.Open(u"SELECT * FROM products WHERE 0=1", cn);
  EXPECT_TRUE(rs.Eof());
  EXPECT_TRUE(ToBool(rs.Fields(u"product_id").Properties(u"ISAUTOINCREMENT")));
  EXPECT_FALSE(ToBool(rs.Fields(u"name").Properties(u"ISAUTOINCREMENT")));
  EXPECT_EQ(rs.Fields(u"product_id").Type(), adInteger);
  EXPECT_EQ(rs.Fields(u"added").Type(), adDBDate);
  EXPECT_EQ(rs.Fields(u"updated_at").Type(), adDBTimeStamp);
  EXPECT_EQ(rs.Fields(u"price").Type(), adNumeric);
  EXPECT_EQ(rs.Fields(u"picture").Type(), adLongVarBinary);
  // Long texts come as the long form of the driver's text kind (wide or narrow).
  EXPECT_TRUE(rs.Fields(u"notes").Type() == adLongVarWChar ||
              rs.Fields(u"notes").Type() == adLongVarChar)
      << rs.Fields(u"notes").Type();
  EXPECT_EQ(rs.Fields(u"name").DefinedSize(), 80);
  EXPECT_EQ(rs.Fields(u"name").Attributes() & adFldIsNullable, 0);
  EXPECT_NE(rs.Fields(u"price").Attributes() & adFldIsNullable, 0);

  rs.Open(u"SELECT * FROM products ORDER BY product_id", cn);
  ASSERT_EQ(rs.RecordCount(), 2);
  EXPECT_EQ(ToString(rs.Fields(u"name").Value()), u"Chai");
  EXPECT_EQ(ToString(rs.Fields(u"added").Value()), u"7/4/1996");
  EXPECT_EQ(ToString(rs.Fields(u"updated_at").Value()), u"7/4/1996 1:45:30 PM");
  EXPECT_DOUBLE_EQ(ToDouble(rs.Fields(u"price").Value()), 18.0);
  EXPECT_EQ(ToString(rs.Fields(u"notes").Value()), u"Ten boxes x 20 bags");
  const Variant picture = rs.Fields(u"picture").Value();
  ASSERT_TRUE(picture.is_array());
  ASSERT_EQ(picture.as_array()->size(), 4u);
  EXPECT_EQ((*picture.as_array())[0].as_byte(), 0x89);
  EXPECT_FALSE(ToBool(rs.Fields(u"discontinued").Value()));
  rs.MoveNext();
  EXPECT_TRUE(ToBool(rs.Fields(u"discontinued").Value()));
  EXPECT_TRUE(rs.Fields(u"added").Value().is_null());
  EXPECT_TRUE(rs.Fields(u"picture").Value().is_null());

  // A name with a blank opens with the server's own quotes.
  rs.Open(u"[order notes]", cn);
  EXPECT_EQ(ToString(rs.Fields(u"note text").Value()), u"Leave at the door");

  try {
    cn.Execute(u"SELECT * FROM no_such_table WHERE 0=1");
    FAIL();
  } catch (const Error& e) {
    EXPECT_NE(e.number(), 0);
    ASSERT_GE(cn.GetErrors().Count(), 1);
    EXPECT_EQ(cn.GetErrors().Item(0).sql_state.size(), 5u);
    EXPECT_FALSE(cn.GetErrors().Item(0).description.empty());
  }
}

TEST_P(OdbcServerTest, WrongPasswordIsTheLoginFailure) {
  const Server& server = GetParam();
  QV_SKIP_WITHOUT(server);
  Connection cn;
  try {
    cn.Open(String::FromUtf8(server.dsn) + u";uid=qv;pwd=wrong");
    FAIL() << "a wrong password must be refused";
  } catch (const Error& e) {
    EXPECT_EQ(e.number(), kErrLoginFailed) << e.description().ToUtf8();
  }
  EXPECT_EQ(cn.State(), adStateClosed);
  ASSERT_GE(cn.GetErrors().Count(), 1);
  EXPECT_EQ(cn.GetErrors().Item(0).number, kErrLoginFailed);
  // The readers' own form, with the login as arguments, works with the right password.
  cn.Open(String::FromUtf8(server.dsn), u"qv", u"qv");
  EXPECT_EQ(cn.State(), adStateOpen);
  // A DSN that stores its login is opened with empty uid and pwd, which must not override it.
  Connection stored;
  stored.Open(String::FromUtf8(server.dsn) + u";uid=;pwd=");
  EXPECT_EQ(stored.State(), adStateOpen);
}

// Forward-only results stream (PostgreSQL's through a server-side cursor, which holds a
// transaction): a result read to its last row lets go of the server at once, and a cursor
// still open when a transaction starts or ends keeps its rows.
TEST_P(OdbcServerTest, StreamedResultsLetGoOfTheServer) {
  const Server& server = GetParam();
  QV_SKIP_WITHOUT(server);
  const String table = u"stream" + String::FromUtf8(std::to_string(::getpid()));
  Connection reader;
  reader.Open(String::FromUtf8(server.dsn));
  reader.Run(u"CREATE TABLE " + table + u" (id INT PRIMARY KEY)");
  for (int id = 1; id <= 5; ++id)
    reader.Run(u"INSERT INTO " + table + u" VALUES (?)", std::vector<Variant>{Variant(id)});

  std::vector<Variant> row;
  auto count = reader.Run(u"SELECT COUNT(*) FROM " + table).rows;
  ASSERT_TRUE(count->Fetch(row));
  EXPECT_EQ(ToString(row[0]), u"5");

  auto ids = reader.Run(u"SELECT id FROM " + table + u" ORDER BY id").rows;
  ASSERT_TRUE(ids->Fetch(row));
  reader.BeginTransaction();
  reader.Run(u"DELETE FROM " + table + u" WHERE id = 5");
  reader.RollbackTransaction();
  std::vector<String> rest;
  while (ids->Fetch(row))
    rest.push_back(ToString(row[0]));
  EXPECT_EQ(rest, (std::vector<String>{u"2", u"3", u"4", u"5"}));

  // The COUNT(*) above is still alive; dropping the table must not wait for it.
  Connection other;
  other.SetCommandTimeout(5);
  other.Open(String::FromUtf8(server.dsn));
  EXPECT_NO_THROW(other.Run(u"DROP TABLE " + table));
}

INSTANTIATE_TEST_SUITE_P(Servers, OdbcServerTest, ::testing::Values(kPostgres, kMaria),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(OdbcFailureTest, DownServerUnknownDsnAndMissingDriverFailFast) {
  QV_SKIP_WITHOUT(kPostgres);
  const auto started = std::chrono::steady_clock::now();
  const Char* const bad[] = {
      u"DSN=qv_down;uid=qv;pwd=qv",         // nothing listens on that port
      u"DSN=qv_nowhere",                    // no such data source
      u"Driver={No Such Driver};Server=x",  // no such driver
  };
  for (const Char* text : bad) {
    Connection cn;
    try {
      cn.Open(text);
      FAIL() << String(text).ToUtf8();
    } catch (const Error& e) {
      EXPECT_FALSE(e.description().empty());
      EXPECT_NE(e.number(), kErrLoginFailed) << String(text).ToUtf8();
      EXPECT_GE(cn.GetErrors().Count(), 1);
    }
  }
  EXPECT_LT(std::chrono::steady_clock::now() - started, std::chrono::seconds(30));
}

// A server that takes the connection and then never says a word: only the login timeout
// ends the wait.
class SilentServer {
 public:
  SilentServer() {
    fd_ = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    bind(fd_, reinterpret_cast<sockaddr*>(&address), sizeof address);
    listen(fd_, 8);
    socklen_t length = sizeof address;
    getsockname(fd_, reinterpret_cast<sockaddr*>(&address), &length);
    port_ = ntohs(address.sin_port);
  }
  ~SilentServer() { close(fd_); }
  int port() const { return port_; }

 private:
  int fd_ = -1;
  int port_ = 0;
};

TEST(OdbcFailureTest, SilentServerEndsAtTheLoginTimeout) {
  QV_SKIP_WITHOUT(kPostgres);
  SilentServer silent;
  const String port = String::FromUtf8(std::to_string(silent.port()));
  const String forms[] = {
      u"Driver={PostgreSQL Unicode};Servername=127.0.0.1;Database=x;Port=" + port,
      u"Driver={MariaDB Unicode};Server=127.0.0.1;Database=x;Port=" + port,
  };
  for (const String& text : forms) {
    SCOPED_TRACE(text.ToUtf8());
    Connection cn;
    cn.SetConnectionTimeout(2);
    cn.SetCommandTimeout(2);
    const auto started = std::chrono::steady_clock::now();
    EXPECT_THROW(cn.Open(text, u"qv", u"qv"), Error);
    EXPECT_LT(std::chrono::steady_clock::now() - started, std::chrono::seconds(20));
  }
}

TEST(OdbcIniTest, DataSourceValuesComeFromOdbcIni) {
  QV_SKIP_WITHOUT(kPostgres);
  EXPECT_EQ(ReadOdbcIniValue(u"qv_sqlserver", u"Server"), u"sqlhost.example");
  EXPECT_EQ(ReadOdbcIniValue(u"qv_sqlserver", u"Database"), u"Shop");
  EXPECT_EQ(ReadOdbcIniValue(u"qv_sqlserver", u"Trusted_Connection"), u"Yes");
  EXPECT_EQ(ReadOdbcIniValue(u"qv_oracle", u"ServerName"), u"ORCL");
  EXPECT_EQ(ReadOdbcIniValue(u"qv_oracle", u"Nothing"), u"");
  EXPECT_EQ(ReadOdbcIniValue(u"qv_nowhere", u"Server"), u"");
  const auto names = OdbcDataSourceNames();
  EXPECT_NE(std::find(names.begin(), names.end(), String(u"qv_maria")), names.end());
}

}  // namespace
}  // namespace qv::data
