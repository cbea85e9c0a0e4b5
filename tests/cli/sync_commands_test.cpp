// `quorvex check` and `quorvex sync` end to end on a SQLite project whose database changes:
// the listing and exit status of the check, the answers sync takes from its options, a --map
// that names nothing (refused before anything changes), --dry-run, and an unreachable
// database. Also `quorvex new` on names that need quotes.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "cli/run_quorvex.h"
#include "platform/data/data_test_support.h"

namespace qv {
namespace {

using cli_testing::FreshDir;
using cli_testing::Has;
using cli_testing::Quorvex;
using cli_testing::Slurp;
constexpr auto Exec = data::testing::ExecSqlite;

TEST(SyncCommands, CheckListsAndSyncMerges) {
  const auto dir = FreshDir("sync");
  Exec(dir / "shop.db",
       "CREATE TABLE customers (id INTEGER PRIMARY KEY, name VARCHAR(20), city TEXT);"
       "CREATE TABLE \"select\" (id INTEGER PRIMARY KEY, \"b c\" TEXT);"
       "CREATE TABLE \"v\"\"q\" (x INTEGER);"
       "CREATE TABLE \"<script>alert(1)</script>\" (y INTEGER);"
       "CREATE TABLE old_orders (id INTEGER PRIMARY KEY, total NUMERIC)");
  const auto made = Quorvex(dir, {"new", "shop.qvp", "--db", "sqlite:shop.db"});
  ASSERT_EQ(made.status, 0) << made.err;
  EXPECT_FALSE(Has(made.out, "could not read")) << made.out;  // every odd name was read
  ASSERT_EQ(Quorvex(dir, {"check", "shop.qvp"}).status, 0);
  // The file named by a relative path is found from any folder.
  EXPECT_EQ(Quorvex(dir / "home", {"check", "../shop.qvp"}, "HOME=.").status, 0);
  ASSERT_EQ(Quorvex(dir, {"set", "shop.qvp", "--table", "old_orders", "TblCaption=Orders"}).status,
            0);
  ASSERT_EQ(Quorvex(dir, {"set", "shop.qvp", "--table", "customers", "--field", "name",
                          "FldCaption=Full name"})
                .status,
            0);
  ASSERT_EQ(Quorvex(dir, {"set", "shop.qvp", "--table", "old_orders", "--field", "total",
                          "FldCaption=Sum due"})
                .status,
            0);

  Exec(dir / "shop.db",
       "ALTER TABLE customers ADD COLUMN email TEXT; ALTER TABLE customers DROP COLUMN city;"
       "ALTER TABLE old_orders RENAME COLUMN total TO amount;"
       "ALTER TABLE old_orders RENAME TO orders");
  const auto check = Quorvex(dir, {"check", "shop.qvp"});
  EXPECT_EQ(check.status, 1) << check.err;
  EXPECT_TRUE(Has(check.out, "+ field customers.email")) << check.out;
  EXPECT_TRUE(Has(check.out, "- field customers.city")) << check.out;
  EXPECT_TRUE(Has(check.out, "+ table orders")) << check.out;
  EXPECT_TRUE(Has(check.out, "- table old_orders")) << check.out;
  // The summary counts the lines, not the check's weights (a new field weighs three).
  EXPECT_TRUE(Has(check.out, "shop.qvp: 4 differences, listed above one per line")) << check.out;

  // A --map that names nothing is refused and the file stays as it was.
  const std::string before = Slurp(dir / "shop.qvp");
  const auto wrong = Quorvex(dir, {"sync", "shop.qvp", "--map", "orderz=old_orders"});
  EXPECT_EQ(wrong.status, 1);
  EXPECT_TRUE(Has(wrong.err, "orderz")) << wrong.err;
  const auto dry = Quorvex(dir, {"sync", "shop.qvp", "--map", "orders=old_orders", "--dry-run"});
  EXPECT_EQ(dry.status, 0) << dry.err;
  EXPECT_EQ(Slurp(dir / "shop.qvp"), before);

  // A field of a renamed table maps by the table's new name (given before or after it).
  const auto no_field = Quorvex(dir, {"sync", "shop.qvp", "--map", "orders.amount=sum", "--map",
                                      "orders=old_orders", "--dry-run"});
  EXPECT_EQ(no_field.status, 1);
  EXPECT_TRUE(Has(no_field.err, "table old_orders has no field sum")) << no_field.err;
  const auto sync = Quorvex(
      dir, {"sync", "shop.qvp", "--map", "orders.amount=total", "--map", "orders=old_orders"});
  ASSERT_EQ(sync.status, 0) << sync.err;
  EXPECT_TRUE(Has(sync.out,
                  "= old_orders renamed to orders (its settings kept)\n"
                  "= field orders.total renamed to amount (its settings kept)\n"))
      << sync.out;
  EXPECT_EQ(Quorvex(dir, {"check", "shop.qvp"}).status, 0);
  EXPECT_TRUE(Has(Quorvex(dir, {"show", "shop.qvp", "orders"}).out, "Orders"));
  EXPECT_TRUE(Has(Quorvex(dir, {"show", "shop.qvp", "orders", "amount"}).out, "Sum due"));
  EXPECT_TRUE(Has(Quorvex(dir, {"show", "shop.qvp", "customers", "name"}).out, "Full name"));
  EXPECT_FALSE(std::filesystem::exists(dir / "shop.qvp.saving"));

  // A custom view whose SQL no longer runs is listed, and the check fails for it.
  ASSERT_EQ(
      Quorvex(dir, {"customview", "shop.qvp", "Named", "--sql", "SELECT id, name FROM customers"})
          .status,
      0);
  Exec(dir / "shop.db", "ALTER TABLE customers RENAME COLUMN name TO full_name");
  ASSERT_EQ(Quorvex(dir, {"sync", "shop.qvp"}).status, 0);
  const auto broken = Quorvex(dir, {"check", "shop.qvp"});
  EXPECT_EQ(broken.status, 1);
  EXPECT_TRUE(Has(broken.out, "! custom view Named no longer runs")) << broken.out;

  // An unreachable database: exit 2 with the reader's words, the file untouched.
  std::filesystem::rename(dir / "shop.db", dir / "away.db");
  const std::string kept = Slurp(dir / "shop.qvp");
  const auto lost = Quorvex(dir, {"check", "shop.qvp"});
  EXPECT_EQ(lost.status, 2);
  EXPECT_TRUE(Has(lost.err, "shop.db")) << lost.err;
  EXPECT_EQ(Quorvex(dir, {"sync", "shop.qvp"}).status, 2);
  EXPECT_EQ(Slurp(dir / "shop.qvp"), kept);

  // Without quotes names like these can't be probed, and new says which.
  Exec(dir / "other.db", "CREATE TABLE \"select\" (a INTEGER); CREATE TABLE plain (b INTEGER)");
  const auto bare = Quorvex(dir, {"new", "bare.qvp", "--db", "sqlite:other.db", "--quote", "None"});
  ASSERT_EQ(bare.status, 0) << bare.err;
  EXPECT_TRUE(Has(bare.out, "could not read table select")) << bare.out;
  EXPECT_FALSE(Has(bare.out, "plain")) << bare.out;
  // The check gives the database's own words for it.
  const auto unread = Quorvex(dir, {"check", "bare.qvp"});
  EXPECT_TRUE(Has(unread.out, "table select could not be read: near \"select\": syntax error"))
      << unread.out;
  EXPECT_EQ(Quorvex(dir, {"new", "x.qvp", "--db", "sqlite:other.db", "--quote", "Curly"}).status,
            1);
}

// The forms of synchronisation from a host script, answered from the command line or, with
// nobody to answer, taking their safe choice.
TEST(SyncCommands, FormsFromAHostScript) {
  const auto dir = FreshDir("sync-forms");
  {
    std::ofstream script(dir / "forms.vbs");
    script << "Set f = CreateObject(\"TyxClass.TyxSyncForms\")\n"
              "WScript.Echo \"[\" & f.frmSyncSelectTable(\"Orders\", \"Old1,Old2\") & \"]\"\n"
              "WScript.Echo \"[\" & f.frmSyncSelectField(\"Orders\", \"Total\", \"Sum,Amount\") & "
              "\"]\"\n"
              "WScript.Echo \"[\" & f.frmSyncRenameTable(\"Old1\", \"Orders,Invoices\") & \"]\"\n"
              "WScript.Echo f.frmSync(\"Keep it?\")\n"
              "WScript.Echo \"[\" & f.ShowMapDialog(\"T\", \"x\", \"New\", \"Old\", \"a,b\", "
              "\"c,d\") & \"]\"\n";
  }
  const auto answered =
      Quorvex(dir, {"--quiet", "--answer", "Old2", "--answer", "2", "--answer", "skip", "--answer",
                    "Keep", "--answer", "d,c", "script", "forms.vbs"});
  ASSERT_EQ(answered.status, 0) << answered.err;
  EXPECT_EQ(answered.out, "[Old2]\n[Amount]\n[]\nTrue\n[d,c]\n");
  const auto alone = Quorvex(dir, {"--quiet", "--no-input", "script", "forms.vbs"});
  ASSERT_EQ(alone.status, 0) << alone.err;
  EXPECT_EQ(alone.out, "[]\n[]\n[]\nFalse\n[c,d]\n");
}

}  // namespace
}  // namespace qv
