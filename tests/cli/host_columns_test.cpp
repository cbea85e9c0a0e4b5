// Columns line up by what a terminal shows, not by bytes: accented letters, wide East Asian
// characters and combining marks in a name keep the next column in place.
#include "cli/host_columns.h"

#include <gtest/gtest.h>

namespace qv::cli {
namespace {

TEST(HostColumns, AlignByDisplayWidth) {
  EXPECT_EQ(DisplayWidth("Orders"), 6u);
  EXPECT_EQ(DisplayWidth("Umsätze"), 7u);
  EXPECT_EQ(DisplayWidth("日本語"), 6u);
  EXPECT_EQ(DisplayWidth("e\xCC\x81"), 1u);  // e and a combining acute accent
  EXPECT_EQ(DisplayWidth("a\xFF"), 2u);      // a byte that is no UTF-8 still takes a column

  EXPECT_EQ(FormatColumns({{"Seq", "Name", "Type"},
                           {"1", "Umsätze", "TABLE"},
                           {"2", "日本語", "VIEW"},
                           {"3", "x"}}),
            "Seq  Name     Type\n"
            "1    Umsätze  TABLE\n"
            "2    日本語   VIEW\n"
            "3    x\n");
}

}  // namespace
}  // namespace qv::cli
