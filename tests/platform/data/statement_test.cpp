// Statements with parameters, streamed rows, counts, keys and transactions on SQLite, and
// cursors that outlive their connection.
#include <gtest/gtest.h>

#include <functional>
#include <memory>

#include "automation/convert.h"
#include "automation/error.h"
#include "data_test_support.h"
#include "platform/data/connection.h"
#include "platform/data/data_types.h"
#include "platform/data/type_mapping.h"

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

int ErrorNumberOf(const std::function<void()>& call) {
  try {
    call();
  } catch (const Error& e) {
    return e.number();
  }
  return 0;
}

TEST(Statements, ParametersCountsKeysAndTransactions) {
  const auto file = MakeSqliteFile(ScratchDir("statements") / "s.db",
                                   "CREATE TABLE t (id INTEGER PRIMARY KEY, name TEXT, "
                                   "amount MONEY, at DATETIME, data BLOB, flag BOOLEAN);");
  Connection cn;
  cn.Open(SqliteConnectionString(file));
  const uint8_t bytes[] = {1, 0, 255};
  const Variant values[] = {Variant(u"it's -- ; \"x\""), Variant::Currency(12345),
                            Variant::Date(45000.5), ByteArray(bytes), Variant(true)};
  auto result =
      cn.Run(u"INSERT INTO t (name, amount, at, data, flag) VALUES (?, ?, ?, ?, ?)", values);
  EXPECT_EQ(result.rows_affected, 1);
  EXPECT_FALSE(result.rows);
  EXPECT_EQ(ToLong(cn.LastInsertKey()), 1);

  const Variant one[] = {Variant(1)};
  auto read = cn.Run(u"SELECT name, amount, at, data, flag FROM t WHERE id = ?", one);
  ASSERT_TRUE(read.rows);
  const auto rows = AllRows(*read.rows);
  ASSERT_EQ(rows.size(), 1u);
  EXPECT_EQ(ToString(rows[0][0]), u"it's -- ; \"x\"");
  EXPECT_EQ(rows[0][1].type(), VarType::Currency);
  EXPECT_EQ(rows[0][1].as_currency(), 12345);
  EXPECT_EQ(rows[0][2].type(), VarType::Date);
  EXPECT_DOUBLE_EQ(rows[0][2].as_date(), 45000.5);
  EXPECT_EQ(BytesOf(rows[0][3]), std::vector<uint8_t>(std::begin(bytes), std::end(bytes)));
  EXPECT_EQ(rows[0][4].type(), VarType::Boolean);

  // Placeholders and values must match in number; nothing runs when they do not.
  EXPECT_EQ(ErrorNumberOf([&] { cn.Run(u"INSERT INTO t (name) VALUES (?)", {}); }),
            kErrProviderFailure);
  const Variant two[] = {Variant(u"a"), Variant(u"b")};
  EXPECT_EQ(ErrorNumberOf([&] { cn.Run(u"INSERT INTO t (name) VALUES (?)", two); }),
            kErrProviderFailure);
  EXPECT_GE(cn.GetErrors().Count(), 1);

  // Several statements run in order; each takes its own placeholders' values.
  const Variant names[] = {Variant(u"b"), Variant(u"c")};
  result = cn.Run(u"INSERT INTO t (name) VALUES (?); UPDATE t SET name = ? WHERE id = 1", names);
  EXPECT_EQ(result.rows_affected, 1);
  EXPECT_EQ(cn.ParameterCount(u"SELECT * FROM t WHERE id = ? AND name = ?"), 2);

  cn.BeginTransaction();
  cn.Run(u"DELETE FROM t");
  cn.RollbackTransaction();
  auto count = cn.Run(u"SELECT COUNT(*) FROM t");
  EXPECT_EQ(ToLong(AllRows(*count.rows)[0][0]), 3);
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
