// Rows of text lined up in columns for a terminal. Columns are measured by the width a terminal
// gives each character, not by bytes or UTF-16 units, so that "Umsätze" or "日本語" in a name
// leaves the next column where it belongs.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace qv::cli {

// The number of terminal columns a UTF-8 text takes: two for wide East Asian characters, none
// for combining marks, one for each byte that is no valid UTF-8.
size_t DisplayWidth(std::string_view utf8);

// The rows as lines, each column padded to its widest cell plus two spaces; the last column is
// not padded. Rows may have fewer cells than others.
std::string FormatColumns(const std::vector<std::vector<std::string>>& rows);

}  // namespace qv::cli
