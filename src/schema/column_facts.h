// The one way the ADO readers learn the columns of a probe or a statement: each column is read
// once into ColumnFacts, and the facts are then applied either to a schema record or to a
// project field. Loading, the difference check and synchronisation thus see the same columns.
//
// The two targets differ on purpose in one point: a provider that can't tell whether a column
// auto-increments makes a record's column auto-incrementing, while a loaded field keeps its
// old flag and goes without its defaults. The difference check relies on that: such a column
// always counts as changed against a field loaded before.
#pragma once

#include <functional>
#include <optional>
#include <vector>

#include "automation/string.h"
#include "model/table.h"
#include "platform/data/recordset.h"
#include "schema/schema_records.h"

namespace qv {

struct ColumnFacts {
  String name;
  int32_t type = 0;  // ADO DataTypeEnum
  int32_t defined_size = 0;
  int32_t attributes = 0;
  std::optional<bool> auto_increment;  // nothing when the provider can't tell
};

ColumnFacts ReadColumnFacts(const data::Field& column);
// Every column of an open rowset, in order, repeated names included.
std::vector<ColumnFacts> ReadColumnFacts(const data::Recordset& rs);

// A table record's columns: the first of two columns of one exact name stays, and a repeat
// makes the record's TblGen False. TblFldCnt counts the columns kept.
void ApplyToRecord(const std::vector<ColumnFacts>& columns, TySchemaTable& table);

// The columns a record kept, as they were read: what a project table is built from.
std::vector<ColumnFacts> ColumnFactsOf(const TySchemaTable& table);

// A project field from one column (the body of LoadFld_ADO): name, type with its support and
// quotes, size, the fixed facts of the ADO path, and then its defaults. Returns False when the
// auto-increment flag couldn't be read: the field then keeps its old flag and lacks defaults.
bool ApplyToField(const ColumnFacts& column, TyxField& field);

// A project table's fields from the columns. A name already in the list is a repeat: the
// first stays, TblGen becomes False, and `repeated` is told the name (to leave words where
// the caller keeps them).
void ApplyToTable(const std::vector<ColumnFacts>& columns, TyxTable& table,
                  const std::function<void(const String& name)>& repeated);

}  // namespace qv
