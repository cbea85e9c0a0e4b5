// Load_ADO: one table or view of the ADO table rowset loaded into a project table: its name
// and type, then (unless a dynamic full load only lists it) its fields through a probe, its
// key, required and unique columns, and its defaults. Nothing here ends the load: a probe that
// fails leaves the table without fields and TblGen False.
#pragma once

#include "model/table.h"
#include "platform/data/connection.h"
#include "platform/data/recordset.h"

namespace qv {

// `rs` stands on the table's row; `load_all` is True on a full load, False when exactly this
// table is wanted. The owner of the row is the shared CurrentTableSchema.
void Load_ADO(TyxTable& table, data::Connection& cn, const data::Recordset& rs,  // NOLINT
              bool load_all);

// The text of TblError for a column name that a table repeats.
String DuplicateColumnText(StringView column);

}  // namespace qv
