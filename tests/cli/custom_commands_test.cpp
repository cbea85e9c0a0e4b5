// `quorvex customview` and `quorvex report` end to end on a project made from the Chinook
// sample: the project file gains the view and the report, and failures exit non-zero with the
// engine's words on stderr and leave the file as it was.
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "cli/run_quorvex.h"

namespace qv {
namespace {

using cli_testing::FreshDir;
using cli_testing::Has;
using cli_testing::Quorvex;

std::string ReadAll(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

TEST(CustomCommands, CustomViewsAndReportsOnAProject) {
  const auto dir = FreshDir("custom");
  const auto made =
      Quorvex(dir, {"new", "app.qvp", "--db",
                    std::string("sqlite:") + QV_SHARED_DATA + "/sqlite/chinook.sqlite"});
  ASSERT_EQ(made.status, 0) << made.err;

  const auto view = Quorvex(dir, {"customview", "app.qvp", "Sales", "--copy-fields", "--sql",
                                  "SELECT i.InvoiceId, c.LastName AS Buyer, i.Total FROM Invoice i "
                                  "INNER JOIN Customer c ON c.CustomerId = i.CustomerId"});
  ASSERT_EQ(view.status, 0) << view.err;
  EXPECT_TRUE(Has(view.out, "custom view Sales with 3 fields")) << view.out;
  const auto listed = Quorvex(dir, {"tables", "app.qvp"});
  EXPECT_TRUE(Has(listed.out, "CUSTOMVIEW")) << listed.out;
  const auto buyer = Quorvex(dir, {"show", "app.qvp", "Sales", "Buyer"});
  ASSERT_EQ(buyer.status, 0) << buyer.err;
  EXPECT_TRUE(Has(buyer.out, "= Customer\n")) << buyer.out;  // FldSourceTable
  EXPECT_TRUE(Has(buyer.out, "= LastName\n")) << buyer.out;  // FldSourceField

  const auto report = Quorvex(dir, {"report", "app.qvp", "Invoice report", "--from", "Invoice"});
  ASSERT_EQ(report.status, 0) << report.err;
  EXPECT_TRUE(Has(Quorvex(dir, {"tables", "app.qvp"}).out, "REPORT")) << report.out;
  // Both start from the project's table defaults, as the loaded tables did.
  const auto line_of = [&dir](const char* table, const std::string& name) {
    const std::string out = Quorvex(dir, {"show", "app.qvp", table}).out;
    const size_t at = out.find("\n" + name + " ");
    return at == std::string::npos ? std::string() : out.substr(at, out.find('\n', at + 1) - at);
  };
  for (const char* setting : {"TblRecPerPage", "TblPagerStyle", "TblExportCsv", "TblRptIndent"}) {
    EXPECT_EQ(line_of("Sales", setting), line_of("Invoice", setting)) << setting;
    EXPECT_EQ(line_of("Invoice report", setting), line_of("Invoice", setting)) << setting;
  }

  // Failures: the words on stderr, a non-zero exit, the file untouched.
  const std::string before = ReadAll(dir / "app.qvp");
  const auto taken = Quorvex(dir, {"customview", "app.qvp", "Sales", "--sql", "SELECT 1"});
  EXPECT_NE(taken.status, 0);
  EXPECT_TRUE(Has(taken.err, "Quorvex: Table/View Sales already exists!")) << taken.err;
  const auto broken =
      Quorvex(dir, {"customview", "app.qvp", "Broken", "--sql", "SELECT x FROM nowhere"});
  EXPECT_NE(broken.status, 0);
  EXPECT_TRUE(Has(broken.err, "nowhere")) << broken.err;
  const auto no_source = Quorvex(dir, {"report", "app.qvp", "R", "--from", "Nothing"});
  EXPECT_NE(no_source.status, 0);
  EXPECT_TRUE(Has(no_source.err, "Quorvex: Table/View Nothing not exist or loaded!"))
      << no_source.err;
  const auto blank = Quorvex(dir, {"report", "app.qvp", "  ", "--from", "Invoice"});
  EXPECT_EQ(blank.err, "Quorvex: A report needs a name!\n");
  EXPECT_EQ(ReadAll(dir / "app.qvp"), before);
  const auto missing_sql = Quorvex(dir, {"customview", "app.qvp", "NoSql"});
  EXPECT_NE(missing_sql.status, 0);
  EXPECT_TRUE(Has(Quorvex(dir, {"report", "--help"}).out, "--from")) << "help";
}

}  // namespace
}  // namespace qv
