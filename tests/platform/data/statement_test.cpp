// Statements on SQLite: placeholders that must match their values, several statements in one
// text, and cursors that outlive their connection.
#include <gtest/gtest.h>

#include <memory>

#include "automation/convert.h"
#include "automation/error.h"
#include "automation/error_of.h"
#include "data_test_support.h"
#include "platform/data/connection.h"
#include "platform/data/data_types.h"

namespace qv::data {
namespace {

using testing::MakeSqliteFile;
using testing::ScratchDir;
using testing::SqliteConnectionString;

std::vector<std::vector<Variant>> AllRows(Cursor& cursor) {
  std::vector<std::vector<Variant>> rows;
  std::vector<Variant> row;
  while (cursor.Fetch(row))
    rows.push_back(row);
  return rows;
}

TEST(Statements, PlaceholdersAndSeveralStatements) {
  const auto file = MakeSqliteFile(ScratchDir("statements") / "s.db",
                                   "CREATE TABLE t (id INTEGER PRIMARY KEY, name TEXT);");
  Connection cn;
  cn.Open(SqliteConnectionString(file));
  // How each kind of value travels through a parameter, keys, counts and transactions are
  // the ADO scripts' (types.vbs, crud.vbs, transactions.vbs); here, what they can't reach.
  const Variant first[] = {Variant(u"a")};
  EXPECT_EQ(cn.Run(u"INSERT INTO t (name) VALUES (?)", first).rows_affected, 1);
  // Placeholders and values must match in number; nothing runs when they do not.
  EXPECT_EQ(ErrorOf([&] { cn.Run(u"INSERT INTO t (name) VALUES (?)", {}); }), kErrProviderFailure);
  const Variant two[] = {Variant(u"a"), Variant(u"b")};
  EXPECT_EQ(ErrorOf([&] { cn.Run(u"INSERT INTO t (name) VALUES (?)", two); }), kErrProviderFailure);
  EXPECT_GE(cn.GetErrors().Count(), 1);
  EXPECT_EQ(ToLong(AllRows(*cn.Run(u"SELECT COUNT(*) FROM t").rows)[0][0]), 1);

  // Several statements run in order; each takes its own placeholders' values.
  const Variant names[] = {Variant(u"b"), Variant(u"c")};
  const auto result =
      cn.Run(u"INSERT INTO t (name) VALUES (?); UPDATE t SET name = ? WHERE id = 1", names);
  EXPECT_EQ(result.rows_affected, 1);
  const auto rows = AllRows(*cn.Run(u"SELECT name FROM t WHERE id IN (1, (SELECT MAX(id) FROM t)) "
                                    u"ORDER BY id")
                                 .rows);
  ASSERT_EQ(rows.size(), 2u);
  EXPECT_EQ(ToString(rows[0][0]) + ToString(rows[1][0]), u"cb");
  EXPECT_EQ(cn.ParameterCount(u"SELECT * FROM t WHERE id = ? AND name = ?"), 2);

  EXPECT_EQ(cn.Run(u"CREATE TABLE u (x)").rows_affected, -1);
}

// A cursor keeps what it reads from alive: closing the connection first must not free it.
TEST(Statements, CursorOutlivesItsConnection) {
  const auto file = MakeSqliteFile(ScratchDir("outlive") / "o.db",
                                   "CREATE TABLE t (n INTEGER); INSERT INTO t VALUES (1), (2);");
  auto cn = std::make_unique<Connection>();
  cn->Open(SqliteConnectionString(file));
  auto result = cn->Run(u"SELECT n FROM t ORDER BY n");
  cn->Close();
  cn.reset();
  const auto rows = AllRows(*result.rows);
  ASSERT_EQ(rows.size(), 2u);
  EXPECT_EQ(ToLong(rows[1][0]), 2);
}

}  // namespace
}  // namespace qv::data
