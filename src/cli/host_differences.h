// The differences of a check as lines for a reader, shared by `quorvex check` and
// `quorvex sync`.
#pragma once

#include <cstdio>

#include "sync/difference_check.h"

namespace qv::cli {

// Exit status of `check` and `sync` when the database's schema could not be read.
inline constexpr int kExitSchemaUnreadable = 2;

// One line per difference, grouped as the check found them; tables the reader could not read
// come last, with the reason.
void PrintDifferences(const DifferenceList& found, std::FILE* out);

}  // namespace qv::cli
