// The two SQL analysers on the queries real databases hold: Access's own layout with nested
// joins and DISTINCTROW, comments, quoted names in every dialect, subqueries, and texts they
// must give up on without harm.
#include <gtest/gtest.h>

#include "schema/custom_sql_parser.h"
#include "schema/view_sql_parser.h"

namespace qv {
namespace {

TEST(ViewSqlParserTest, SingleTablesAndTheirUpdatability) {
  ViewSqlParser p;
  p.SetSql(
      u"SELECT DISTINCTROW TOP 10 Products.ProductName AS TenMostExpensiveProducts, "
      u"Products.UnitPrice\r\nFROM Products\r\nORDER BY Products.UnitPrice DESC;");
  EXPECT_TRUE(p.Analysed());
  EXPECT_TRUE(p.Updatable());
  EXPECT_EQ(p.JoinCount(), 0);
  EXPECT_EQ(p.TableName(), u"Products");

  p.SetSql(u"SELECT [Order Details].* FROM [Order Details] -- the lines\r\nWHERE Quantity > 1");
  EXPECT_EQ(p.TableName(), u"Order Details");
  EXPECT_TRUE(p.Updatable());

  // Each of these makes the query read-only.
  for (const char16_t* sql : {
           u"SELECT DISTINCT Country FROM Customers",
           u"SELECT Country, Count(*) FROM Customers GROUP BY Country",
           u"SELECT Sum(Freight) AS Total FROM Orders",
           u"SELECT City FROM Customers UNION SELECT City FROM Suppliers",
           u"SELECT * FROM (SELECT * FROM Orders) AS o",
           u"SELECT * FROM Orders, Customers WHERE Orders.CustomerID = Customers.CustomerID",
       }) {
    p.SetSql(sql);
    EXPECT_TRUE(p.Analysed()) << String::ToUtf8(sql);
    EXPECT_FALSE(p.Updatable()) << String::ToUtf8(sql);
  }
  // A parameter declaration goes before the statement; quotes and #dates# stay literals.
  p.SetSql(
      u"PARAMETERS [Beginning Date] DateTime;\r\nSELECT * FROM Orders WHERE "
      u"ShipName = 'O''Brien (FROM x)' AND OrderDate > #1/1/1995# /* GROUP BY */");
  EXPECT_TRUE(p.Updatable());
  EXPECT_EQ(p.TableName(), u"Orders");
}

TEST(ViewSqlParserTest, JoinsWithTheirSidesAndKinds) {
  ViewSqlParser p;
  // The ON clause names the right table first: the sides follow the join, not the "=".
  p.SetSql(
      u"SELECT DISTINCTROW Products.*, Categories.CategoryName\r\n"
      u"FROM Categories INNER JOIN Products ON Products.CategoryID = "
      u"Categories.CategoryID\r\nWHERE (((Products.Discontinued)=No));");
  ASSERT_EQ(p.JoinCount(), 1);
  EXPECT_TRUE(p.Updatable());
  EXPECT_TRUE(p.TableName().empty());
  p.FirstJoin();
  EXPECT_EQ(p.JoinType(), u"INNER");
  EXPECT_EQ(p.LeftTable(), u"Categories");
  EXPECT_EQ(p.LeftField(), u"CategoryID");
  EXPECT_EQ(p.RightTable(), u"Products");
  EXPECT_EQ(p.RightField(), u"CategoryID");

  // Aliases resolve to their tables; OUTER is optional; parentheses around the condition.
  p.SetSql(
      u"SELECT o.OrderID FROM Orders AS o LEFT OUTER JOIN [Order Details] d "
      u"ON (o.OrderID = d.OrderID)");
  ASSERT_EQ(p.JoinCount(), 1);
  p.FirstJoin();
  EXPECT_EQ(p.JoinType(), u"LEFT");
  EXPECT_EQ(p.LeftTable(), u"Orders");
  EXPECT_EQ(p.RightTable(), u"Order Details");
  EXPECT_EQ(p.RightField(), u"OrderID");

  // Access nests a second join in parentheses; the cursor walks both.
  p.SetSql(
      u"SELECT * FROM (Customers INNER JOIN Orders ON Customers.CustomerID = "
      u"Orders.CustomerID) INNER JOIN Employees ON Employees.EmployeeID = "
      u"Orders.EmployeeID");
  ASSERT_EQ(p.JoinCount(), 2);
  p.FirstJoin();
  EXPECT_EQ(p.LeftTable(), u"Customers");
  p.NextJoin();
  EXPECT_EQ(p.LeftTable(), u"Orders");
  EXPECT_EQ(p.LeftField(), u"EmployeeID");
  EXPECT_EQ(p.RightTable(), u"Employees");
  p.NextJoin();
  EXPECT_TRUE(p.JoinEOF());
  EXPECT_TRUE(p.JoinType().empty());
}

TEST(ViewSqlParserTest, TextsItCannotFollowAreNotAnalysed) {
  ViewSqlParser p;
  for (const char16_t* sql : {
           u"",
           u"UPDATE Orders SET Freight = 0",
           u"SELECT * FROM (Orders",
           u"SELECT 'open",
           u"SELECT [open FROM x",
           u"SELECT * FROM",
           u"TRANSFORM Sum(x) SELECT a FROM t PIVOT b",
           u"SELECT FROM Orders",
           u"SELECT * FROM a INNER JOIN",
           u"SELECT a FROM t /* open",
       }) {
    p.SetSql(u"SELECT * FROM Orders INNER JOIN Customers ON Orders.c = Customers.c");
    p.SetSql(sql);
    EXPECT_FALSE(p.Analysed()) << String::ToUtf8(sql);
    EXPECT_FALSE(p.Updatable()) << String::ToUtf8(sql);
    EXPECT_EQ(p.JoinCount(), 0) << String::ToUtf8(sql);
    EXPECT_TRUE(p.TableName().empty()) << String::ToUtf8(sql);
  }
  // Parentheses nested far deeper than any query are refused, not followed down the stack.
  std::u16string deep = u"SELECT * FROM ";
  deep.append(100000, u'(');
  deep += u"a";
  deep.append(100000, u')');
  p.SetSql(deep);
  EXPECT_FALSE(p.Analysed());
  CustomSqlParser c;
  EXPECT_FALSE(c.Parse(deep, 1));
}

struct Origin {
  String name, table, field;
  bool alias = false;
};

Origin OriginOf(const CustomSqlParser& p, StringView column) {
  Origin o;
  p.FieldOrigin(column, o.name, o.table, o.field, o.alias);
  return o;
}

TEST(CustomSqlParserTest, ColumnsWithTheirTablesAndAliases) {
  CustomSqlParser p;
  ASSERT_TRUE(
      p.Parse(u"SELECT c.name AS who, o.total, \"o\".\"placed on\" placed, "
              u"upper(c.city) AS town, o.total * 2, 'x, y' AS lit\n"
              u"FROM public.customers c JOIN orders AS o ON o.customer = c.id",
              5));
  Origin who = OriginOf(p, u"WHO");
  EXPECT_EQ(who.name, u"c.name");
  EXPECT_EQ(who.table, u"customers");
  EXPECT_EQ(who.field, u"name");
  EXPECT_TRUE(who.alias);
  Origin total = OriginOf(p, u"total");
  EXPECT_EQ(total.table, u"orders");
  EXPECT_EQ(total.field, u"total");
  EXPECT_FALSE(total.alias);
  Origin placed = OriginOf(p, u"placed");
  EXPECT_EQ(placed.field, u"placed on");
  EXPECT_EQ(placed.table, u"orders");
  EXPECT_TRUE(placed.alias);
  // Computed columns keep their text and have no table.
  Origin town = OriginOf(p, u"town");
  EXPECT_EQ(town.name, u"upper(c.city)");
  EXPECT_TRUE(town.table.empty());
  EXPECT_TRUE(town.alias);
  Origin twice = OriginOf(p, u"o.total * 2");
  EXPECT_EQ(twice.name, u"o.total * 2");
  EXPECT_TRUE(twice.field.empty());
  EXPECT_EQ(OriginOf(p, u"lit").name, u"'x, y'");
  Origin unknown = OriginOf(p, u"nothing");
  EXPECT_TRUE(unknown.name.empty() && unknown.table.empty() && !unknown.alias);
}

TEST(CustomSqlParserTest, QuotingFollowsTheKind) {
  CustomSqlParser p;
  ASSERT_TRUE(p.Parse(u"SELECT [Order Details].[Unit Price], Quantity FROM [Order Details]", 1));
  EXPECT_EQ(OriginOf(p, u"Unit Price").table, u"Order Details");
  EXPECT_EQ(OriginOf(p, u"Quantity").table, u"Order Details");
  ASSERT_TRUE(p.Parse(u"SELECT `t`.`a b` FROM `my t` AS `t`", 3));
  EXPECT_EQ(OriginOf(p, u"a b").table, u"my t");
  // In MySQL "..." is a string, so it names no column.
  ASSERT_TRUE(p.Parse(u"SELECT \"a\" AS s FROM t", 3));
  EXPECT_TRUE(OriginOf(p, u"s").field.empty());
  // A bracket means nothing to PostgreSQL: the text can't be read.
  EXPECT_FALSE(p.Parse(u"SELECT [a] FROM t", 5) && !OriginOf(p, u"a").field.empty());
}

TEST(CustomSqlParserTest, StarsSubqueriesAndFailures) {
  CustomSqlParser p;
  ASSERT_TRUE(
      p.Parse(u"SELECT DISTINCT TOP 5 p.*, (SELECT max(x) FROM y) AS m "
              u"FROM products p WHERE p.id IN (SELECT id FROM z) ORDER BY 1",
              2));
  Origin price = OriginOf(p, u"price");
  EXPECT_EQ(price.table, u"products");
  EXPECT_EQ(price.field, u"price");
  EXPECT_FALSE(price.alias);
  EXPECT_TRUE(OriginOf(p, u"m").table.empty());
  // Two stars: a column could come from either.
  ASSERT_TRUE(p.Parse(u"SELECT a.*, b.* FROM a, b", 5));
  EXPECT_TRUE(OriginOf(p, u"id").table.empty());
  // A column from a subquery in FROM has no table of its own.
  ASSERT_TRUE(p.Parse(u"SELECT s.n FROM (SELECT n FROM t) s", 5));
  EXPECT_TRUE(OriginOf(p, u"n").table.empty());
  EXPECT_EQ(OriginOf(p, u"n").field, u"n");
  for (const char16_t* sql :
       {u"", u"DELETE FROM t", u"SELECT a,, b FROM t", u"SELECT a FROM t WHERE (x", u"SELECT ,"}) {
    EXPECT_FALSE(p.Parse(sql, 5)) << String::ToUtf8(sql);
  }
}

}  // namespace
}  // namespace qv
