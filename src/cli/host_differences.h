// The differences of a check as lines for a reader, shared by `quorvex check` and
// `quorvex sync`.
#pragma once

#include <cstdio>
#include <string>

#include "sync/difference_check.h"

namespace qv::cli {

// Exit status of `check` and `sync` when the database's schema could not be read.
inline constexpr int kExitSchemaUnreadable = 2;

// One line per difference, grouped as the check found them; tables the reader could not read
// come last, with the reason.
void PrintDifferences(const DifferenceList& found, std::FILE* out);

// How many lines PrintDifferences gives to differences: every line but the tables that could
// not be read, which are notes (the check can't tell whether they changed). The count of
// CheckDB weighs differences its own way (a new field counts twice) and is no measure for a
// reader of the list.
int CountListed(const DifferenceList& found);
// "1 difference" or "N differences".
std::string DifferencesText(int count);

}  // namespace qv::cli
