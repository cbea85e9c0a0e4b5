// Load_ADO and Load_DAO: one table or view of a schema read turned into a project table: its
// name and type, then (unless a dynamic full load only lists it) its fields with their
// defaults, its key, required and unique columns, and its own defaults. Nothing here ends the
// load: a table whose probe failed stays without fields and with TblGen False.
#pragma once

#include <cstdint>

#include "model/table.h"
#include "schema/schema_records.h"

namespace qv {

// `load_all` is True on a full load, False when exactly this table is wanted; `kind` is the
// DatabaseKind of the source.
void Load_ADO(TyxTable& table, const TySchemaTable& record, bool load_all,  // NOLINT
              int32_t kind);

// An Access table or query: its fields take the facts only an Access file has (default,
// zero length, required, caption), and a repeated name is passed over.
void Load_DAO(TyxTable& table, const TySchemaTable& record, bool load_all);  // NOLINT
// One column of an Access record turned into a project field with all its defaults.
void LoadFld_DAO(TyxField& field, const TySchemaField& column);  // NOLINT

// The text of TblError for a column name that a table repeats.
String DuplicateColumnText(StringView column);

}  // namespace qv
