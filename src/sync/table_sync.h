// SynchronizeDB: brings the project in step with the live schema and keeps the user's work.
// A table or field that still exists keeps its settings and takes only what the schema says
// of it; a new one gets defaults; one that has gone is removed. The user is asked about what
// looks like a rename (MapRenames) and about a changed primary key.
#pragma once

#include "model/field.h"
#include "model/table.h"
#include "model/tyx.h"
#include "schema/tyx_schema.h"

namespace qv {

// The whole run: read the schema, MapRenames, SyncTables, SyncCustomViews, SyncReports,
// RebuildTableKeys. A schema that can't be read leaves its words in ProjErr and the project
// untouched.
void SynchronizeDB(Tyx& tyx);
// The same from a schema already read, the one a CheckDB before it compared.
void SynchronizeDB(Tyx& tyx, const TyxSchema& schema);

// The steps, for the load-time comparison that has its schema read already.
void MapRenames(Tyx& tyx, const TyxSchema& schema);
void SyncTables(Tyx& tyx, const TyxSchema& schema);

// What one item takes from the schema (isNew: the item was just made and gets defaults).
void SyncTableFromRecord(TyxTable& table, const TySchemaTable& record, bool is_new);
void SyncFieldFromRecord(TyxField& field, const TySchemaField& record, bool is_new);
// The same from a second definition, for reports.
void SyncTableFromTable(TyxTable& table, const TyxTable& source, bool is_new);
void SyncFieldFromField(TyxField& field, const TyxField& source, bool is_new);

// Matches the columns of `record` with the table's unmarked fields: same name and type keep
// their settings; a new name, or a known name with another type, starts from the defaults.
// Every field matched is marked (FldSync).
void SyncFieldsFromRecord(TyxTable& table, const TySchemaTable& record);
// Deletes the fields left unmarked.
void DeleteUnmarkedFields(TyxTable& table);

// Each field's FldIsPrimaryKey from the table's TblKey.
void UpdateFieldKeys(TyxTable& table);

}  // namespace qv
