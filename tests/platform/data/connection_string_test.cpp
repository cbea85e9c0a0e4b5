// Connection strings, the provider they lead to, the command line's short forms, and the
// words a connection gives for a provider that does not exist here.
#include <gtest/gtest.h>

#include "automation/error.h"
#include "platform/data/connection.h"
#include "platform/data/connection_string.h"
#include "platform/data/data_types.h"

namespace qv::data {
namespace {

TEST(ConnectionStringTest, ParsesQuotedBracedAndRepeatedValues) {
  const auto cs = ConnectionString::Parse(
      u" Driver={MariaDB Unicode};Server = db1 ;PWD={a;b}; Extended Properties=\"x=\"\"1\"\"\";"
      u"garbage;uid=ann;UID=bob;Data Source='C:\\shop.mdb'");
  EXPECT_EQ(*cs.Get(u"driver"), u"MariaDB Unicode");
  EXPECT_EQ(*cs.Get(u"SERVER"), u"db1");
  EXPECT_EQ(*cs.Get(u"pwd"), u"a;b");
  EXPECT_EQ(*cs.Get(u"Extended Properties"), u"x=\"1\"");
  EXPECT_EQ(*cs.Get(u"UID"), u"bob") << "the last of a repeated key wins";
  EXPECT_EQ(*cs.Get(u"data source"), u"C:\\shop.mdb");
  EXPECT_FALSE(cs.Get(u"garbage"));
  EXPECT_EQ(*cs.GetAny({u"Initial Catalog", u"Server"}), u"db1");

  // Printing keeps values that need it braced, so the text parses back to the same pairs.
  const auto again = ConnectionString::Parse(cs.ToText());
  EXPECT_EQ(*again.Get(u"PWD"), u"a;b");
  EXPECT_EQ(*again.Get(u"Driver"), u"MariaDB Unicode");
  EXPECT_TRUE(ConnectionString::Parse(u"").Pairs().empty());
  EXPECT_TRUE(ConnectionString::Parse(u";;=;").Pairs().empty());
}

TEST(ConnectionStringTest, ProviderKindsAndShortForms) {
  struct Case {
    const Char* text;
    ProviderKind kind;
  };
  const Case cases[] = {
      {u"dsn=shop;uid=sa;pwd=x", ProviderKind::Odbc},
      {u"Driver={PostgreSQL Unicode};Server=h", ProviderKind::Odbc},
      {u"Provider=MSDASQL.1;DSN=shop", ProviderKind::Odbc},
      {u"Provider=SQLite;Data Source=a.db", ProviderKind::Sqlite},
      {u"Provider=Microsoft.Jet.OLEDB.4.0;Data Source=a.mdb;", ProviderKind::Jet},
      {u"Provider=Microsoft.ACE.OLEDB.12.0;Data Source=a.accdb", ProviderKind::Jet},
      {u"Provider=SQLOLEDB;Initial Catalog=x;Data Source=h;Integrated Security=SSPI;",
       ProviderKind::SqlServer},
      {u"Provider=SQLNCLI11;Server=h", ProviderKind::SqlServer},
      {u"Provider=OraOLEDB.Oracle.1;Password=p;User ID=u;Data Source=orcl", ProviderKind::Oracle},
      {u"Provider=Scripted;Data Source=x", ProviderKind::Scripted},
      {u"Provider=Acme.Thing;Data Source=x", ProviderKind::Unknown},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(ConnectionString::Parse(c.text).Kind(), c.kind) << String(c.text).ToUtf8();
  }
  EXPECT_EQ(ExpandShortUrl(u"sqlite:/tmp/a b.db"), u"Provider=SQLite;Data Source=/tmp/a b.db");
  EXPECT_EQ(ExpandShortUrl(u"odbc:qv_pg"), u"DSN=qv_pg");
  EXPECT_EQ(ExpandShortUrl(u"ACCESS:/x/nwind.mdb"),
            u"Provider=Microsoft.Jet.OLEDB.4.0;Data Source=/x/nwind.mdb;");
  EXPECT_EQ(ExpandShortUrl(u"DSN=x"), u"DSN=x");
}

TEST(ConnectionStringTest, ProvidersThatDoNotExistHereSaySo) {
  struct Case {
    const Char* text;
    int32_t number;
    const char* words;
  };
  const Case cases[] = {
      {u"Provider=Acme.Thing;Data Source=x", kErrProviderNotFound, "Acme.Thing"},
      {u"Provider=SQLOLEDB;User ID=sa;Password=x;Initial Catalog=Shop;Data Source=h;",
       kErrProviderNotFound, "no ODBC driver for SQL Server"},
      {u"Provider=OraOLEDB.Oracle.1;Password=p;User ID=u;Data Source=orcl;", kErrProviderNotFound,
       "no ODBC driver for Oracle"},
      {u"Provider=Scripted;Data Source=never_registered", kErrProviderFailure, "never_registered"},
      {u"Server=h;Database=x", kErrProviderFailure, "names no data source"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(String(c.text).ToUtf8());
    Connection cn;
    try {
      cn.Open(c.text);
      FAIL() << "expected an error";
    } catch (const Error& e) {
      EXPECT_EQ(e.number(), c.number);
      EXPECT_NE(e.description().ToUtf8().find(c.words), std::string::npos)
          << e.description().ToUtf8();
    }
    EXPECT_EQ(cn.State(), adStateClosed);
    EXPECT_EQ(cn.GetErrors().Count(), 1);
  }
}

}  // namespace
}  // namespace qv::data
