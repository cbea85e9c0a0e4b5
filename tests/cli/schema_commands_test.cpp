// `quorvex new`, `tables` and `show` end to end on real SQLite files: a project made from the
// Chinook sample and its listings, and failures that exit non-zero with the engine's words on
// stderr and leave no project file.
#include <gtest/gtest.h>

#include <regex>

#include "cli/run_quorvex.h"

namespace qv {
namespace {

using cli_testing::FreshDir;
using cli_testing::Has;
using cli_testing::Quorvex;

std::string ChinookUrl() {
  return std::string("sqlite:") + QV_SHARED_DATA + "/sqlite/chinook.sqlite";
}

TEST(SchemaCommands, NewProjectFromChinookAndItsListings) {
  const auto dir = FreshDir("chinook");
  const auto made = Quorvex(dir, {"new", "app.qvp", "--db", ChinookUrl()});
  ASSERT_EQ(made.status, 0) << made.err;
  EXPECT_TRUE(std::filesystem::exists(dir / "app.qvp"));
  EXPECT_TRUE(Has(made.out, "11 tables and views from SQLite")) << made.out;

  const auto tables = Quorvex(dir, {"tables", "app.qvp"});
  ASSERT_EQ(tables.status, 0) << tables.err;
  EXPECT_TRUE(Has(tables.out, "PlaylistTrack")) << tables.out;
  EXPECT_TRUE(Has(tables.out, "PlaylistId,TrackId")) << tables.out;
  EXPECT_TRUE(Has(tables.out, "InvoiceLine")) << tables.out;
  EXPECT_EQ(std::count(tables.out.begin(), tables.out.end(), '\n'), 12) << tables.out;

  const auto project = Quorvex(dir, {"show", "app.qvp"});
  ASSERT_EQ(project.status, 0) << project.err;
  EXPECT_TRUE(Has(project.out, "ProjName")) << project.out;
  EXPECT_TRUE(Has(project.out, "= app\n")) << project.out;

  const auto table = Quorvex(dir, {"show", "app.qvp", "InvoiceLine"});
  ASSERT_EQ(table.status, 0) << table.err;
  EXPECT_TRUE(Has(table.out, "TblKey")) << table.out;
  EXPECT_TRUE(Has(table.out, "= InvoiceLineId\n")) << table.out;
  EXPECT_TRUE(Has(table.out, "= Invoice Line\n")) << table.out;

  const auto field = Quorvex(dir, {"show", "app.qvp", "Invoice", "InvoiceDate"});
  ASSERT_EQ(field.status, 0) << field.err;
  EXPECT_TRUE(Has(field.out, "= Invoice Date\n")) << field.out;
  EXPECT_TRUE(Has(field.out, "= 135\n")) << field.out;

  // A second `new` onto the same file is refused unless asked for.
  const auto again = Quorvex(dir, {"new", "app.qvp", "--db", ChinookUrl()});
  EXPECT_NE(again.status, 0);
  EXPECT_TRUE(Has(again.err, "already exists")) << again.err;
  const auto forced =
      Quorvex(dir, {"new", "app.qvp", "--db", ChinookUrl(), "--force", "--dynamic"});
  EXPECT_EQ(forced.status, 0) << forced.err;
}

TEST(SchemaCommands, NewProjectFromAnAccessFile) {
  const auto dir = FreshDir("access");
  const auto made = Quorvex(dir, {"new", "nw.qvp", "--db",
                                  std::string("access:") + QV_SHARED_DATA + "/access/nwind.mdb"});
  ASSERT_EQ(made.status, 0) << made.err;
  EXPECT_TRUE(Has(made.out, "from ACCESS")) << made.out;
  const auto tables = Quorvex(dir, {"tables", "nw.qvp"});
  ASSERT_EQ(tables.status, 0) << tables.err;
  EXPECT_TRUE(Has(tables.out, "Order Details")) << tables.out;
  EXPECT_TRUE(Has(tables.out, "OrderID,ProductID")) << tables.out;
  // mdbtools cannot run the file's saved queries: they stay, without pages, and `new` says so.
  EXPECT_TRUE(Has(made.out, "18 saved queries get no pages")) << made.out;
  EXPECT_TRUE(std::regex_search(tables.out, std::regex("Catalog +VIEW +7 +no\n"))) << tables.out;
  EXPECT_TRUE(std::regex_search(tables.out, std::regex("Orders +TABLE +OrderID +14 +yes\n")))
      << tables.out;
  // The file is read where it lies; the application finds its copy beside the pages.
  const std::string project = cli_testing::Slurp(dir / "nw.qvp");
  EXPECT_TRUE(Has(project, " DBPath=\"\" ")) << project.substr(0, 400);
  EXPECT_TRUE(Has(project, "/access/nwind.mdb\"")) << project.substr(0, 400);

  const auto missing =
      Quorvex(dir, {"new", "none.qvp", "--db", "access:" + (dir / "none.mdb").string()});
  EXPECT_NE(missing.status, 0);
  EXPECT_FALSE(missing.err.empty());
  EXPECT_FALSE(std::filesystem::exists(dir / "none.qvp"));
}

TEST(SchemaCommands, FailuresExitNonZeroWithTheirWords) {
  const auto dir = FreshDir("failures");
  const auto missing =
      Quorvex(dir, {"new", "app.qvp", "--db", "sqlite:" + (dir / "none.db").string()});
  EXPECT_NE(missing.status, 0);
  EXPECT_TRUE(Has(missing.err, "Quorvex: \r\nError #1:\r\n   ADO Error   #")) << missing.err;
  EXPECT_TRUE(Has(missing.err, "does not exist")) << missing.err;
  EXPECT_FALSE(std::filesystem::exists(dir / "app.qvp"));
  EXPECT_EQ(missing.out, "");

  const auto junk = Quorvex(dir, {"new", "app.qvp", "--db", "Provider=Nothing;Data Source=x"});
  EXPECT_NE(junk.status, 0);
  EXPECT_TRUE(Has(junk.err, "Quorvex: ")) << junk.err;
  EXPECT_FALSE(std::filesystem::exists(dir / "app.qvp"));

  const auto no_project = Quorvex(dir, {"tables", "nowhere.qvp"});
  EXPECT_NE(no_project.status, 0);
  EXPECT_FALSE(no_project.err.empty());

  ASSERT_EQ(Quorvex(dir, {"new", "ok.qvp", "--db",
                          std::string("sqlite:") + QV_SHARED_DATA + "/sqlite/chinook.sqlite"})
                .status,
            0);
  // A project file that can't be written is named, before the database is read.
  const auto no_folder = Quorvex(dir, {"new", "gone/x.qvp", "--db", "sqlite:none.db"});
  EXPECT_NE(no_folder.status, 0);
  EXPECT_EQ(no_folder.err, "Quorvex: Saving project file \"gone/x.qvp\" failed! Path not found\n");
  const auto no_table = Quorvex(dir, {"show", "ok.qvp", "Nope"});
  EXPECT_NE(no_table.status, 0);
  EXPECT_TRUE(Has(no_table.err, "Quorvex: Table Nope not found!")) << no_table.err;

  for (const char* command : {"new", "show", "tables"}) {
    const auto help = Quorvex(dir, {command, "--help"});
    EXPECT_EQ(help.status, 0) << command;
    EXPECT_TRUE(Has(help.out, "project-file")) << help.out;
  }
  const auto usage = Quorvex(dir, {"new", "x.qvp"});  // --db is required
  EXPECT_NE(usage.status, 0);
}

}  // namespace
}  // namespace qv
