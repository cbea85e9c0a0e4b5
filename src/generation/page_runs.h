// The pages of one table and of one field: every control of the list that applies, its output
// name and path, and the page written through the file writer. LoadCurrentTable is the step in
// front of a table's pages; it switches off the edit pages of a table without a key, in the
// project itself.
#pragma once

#include <cstdint>

namespace qv {

class Tyx;
class TyxField;
class TyxTable;

void LoadCurrentTable(TyxTable* table);

// In check mode the number of pages that exist already; 0 in a real run.
int16_t RunTablePages(Tyx& tyx, TyxTable& table, bool check_only);
int16_t RunFieldPages(Tyx& tyx, TyxField& field, bool check_only);

}  // namespace qv
