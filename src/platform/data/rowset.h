// A materialised result: column descriptions and rows of Variants. Every backend answers a
// query or a schema request with one of these, and Recordset walks it; schema rowsets and
// probing statements are small, so holding them whole keeps rewinding (MoveFirst) trivial.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "automation/string.h"
#include "automation/variant.h"

namespace qv::data {

struct ColumnInfo {
  String name;
  int32_t type = 0;          // AdoType
  int32_t defined_size = 0;  // characters for text, bytes otherwise
  int32_t attributes = 0;    // AdoFieldAttribute bits
  uint8_t precision = 255;   // digits of a number; 255 where the notion does not apply
  uint8_t numeric_scale = 255;
  String base_table;   // the table a column comes from, when the backend knows it
  String base_column;  // its name in that table (a column given another name by AS), likewise
  // ISAUTOINCREMENT; empty when the backend cannot tell, and then the property is missing.
  std::optional<bool> auto_increment;
};

struct Rowset {
  std::vector<ColumnInfo> columns;
  std::vector<std::vector<Variant>> rows;

  // Position of a column by name, without regard to case, as ADO's Fields(name) finds it.
  std::optional<size_t> ColumnIndex(StringView name) const;
  // Appends a column and returns its position.
  size_t AddColumn(String name, int32_t type, int32_t defined_size = 0);
  // Appends an empty row (every value Null) sized to the columns; returns it for filling.
  std::vector<Variant>& AddRow();
  void Set(std::vector<Variant>& row, StringView column, Variant value) const;
};

// The empty rowset of a schema id with every column that rowset carries, in ADO's order.
Rowset MakeSchemaRowset(int32_t schema_id);

// Names of the restriction columns of a schema id, in the order of the restrictions array.
std::vector<StringView> RestrictionColumns(int32_t schema_id);

// Keeps the rows that match every restriction that is neither Empty nor missing; a
// restriction compares as text, exactly. Unknown schema ids raise kErrNotSupported.
void ApplyRestrictions(Rowset& rowset, int32_t schema_id, const std::vector<Variant>& restrictions);

// The text of restriction `index` when one is given, else nothing.
std::optional<String> RestrictionText(const std::vector<Variant>& restrictions, size_t index);

}  // namespace qv::data
