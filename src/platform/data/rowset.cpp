// Rowset helpers and the column layout of the four schema rowsets that OpenSchema answers.
#include "platform/data/rowset.h"

#include <algorithm>

#include "automation/convert.h"
#include "automation/error.h"
#include "platform/data/data_types.h"

namespace qv::data {
namespace {

struct SchemaColumn {
  const Char* name;
  int32_t type;
};

// The columns each schema rowset carries, in OLE DB's order (GUID and property-id columns,
// which nothing here can fill, are left out).
const std::vector<SchemaColumn>& SchemaColumns(int32_t schema_id) {
  static const std::vector<SchemaColumn> tables = {
      {u"TABLE_CATALOG", adVarWChar}, {u"TABLE_SCHEMA", adVarWChar}, {u"TABLE_NAME", adVarWChar},
      {u"TABLE_TYPE", adVarWChar},    {u"DESCRIPTION", adVarWChar},
  };
  static const std::vector<SchemaColumn> columns = {
      {u"TABLE_CATALOG", adVarWChar},
      {u"TABLE_SCHEMA", adVarWChar},
      {u"TABLE_NAME", adVarWChar},
      {u"COLUMN_NAME", adVarWChar},
      {u"ORDINAL_POSITION", adUnsignedInt},
      {u"COLUMN_HASDEFAULT", adBoolean},
      {u"COLUMN_DEFAULT", adVarWChar},
      {u"COLUMN_FLAGS", adUnsignedInt},
      {u"IS_NULLABLE", adBoolean},
      {u"DATA_TYPE", adUnsignedSmallInt},
      {u"CHARACTER_MAXIMUM_LENGTH", adUnsignedInt},
      {u"NUMERIC_PRECISION", adUnsignedSmallInt},
      {u"NUMERIC_SCALE", adSmallInt},
      {u"DESCRIPTION", adVarWChar},
  };
  static const std::vector<SchemaColumn> indexes = {
      {u"TABLE_CATALOG", adVarWChar}, {u"TABLE_SCHEMA", adVarWChar},
      {u"TABLE_NAME", adVarWChar},    {u"INDEX_CATALOG", adVarWChar},
      {u"INDEX_SCHEMA", adVarWChar},  {u"INDEX_NAME", adVarWChar},
      {u"PRIMARY_KEY", adBoolean},    {u"UNIQUE", adBoolean},
      {u"CLUSTERED", adBoolean},      {u"TYPE", adUnsignedSmallInt},
      {u"NULLS", adInteger},          {u"ORDINAL_POSITION", adUnsignedInt},
      {u"COLUMN_NAME", adVarWChar},   {u"COLLATION", adSmallInt},
  };
  static const std::vector<SchemaColumn> keys = {
      {u"TABLE_CATALOG", adVarWChar}, {u"TABLE_SCHEMA", adVarWChar}, {u"TABLE_NAME", adVarWChar},
      {u"COLUMN_NAME", adVarWChar},   {u"ORDINAL", adUnsignedInt},   {u"PK_NAME", adVarWChar},
  };
  switch (schema_id) {
    case adSchemaTables:
      return tables;
    case adSchemaColumns:
      return columns;
    case adSchemaIndexes:
      return indexes;
    case adSchemaPrimaryKeys:
      return keys;
    default:
      throw Error(kErrNotSupported,
                  u"Object or provider is not capable of performing requested operation. "
                  u"(schema rowset " +
                      ToString(Variant(schema_id)) + u" is not available)");
  }
}

}  // namespace

std::optional<size_t> Rowset::ColumnIndex(StringView name) const {
  for (size_t i = 0; i < columns.size(); ++i) {
    if (EqualsNoCase(columns[i].name, name)) return i;
  }
  return std::nullopt;
}

size_t Rowset::AddColumn(String name, int32_t type, int32_t defined_size) {
  ColumnInfo column;
  column.name = std::move(name);
  column.type = type;
  column.defined_size = defined_size;
  column.attributes = adFldIsNullable | adFldMayBeNull;
  columns.push_back(std::move(column));
  return columns.size() - 1;
}

std::vector<Variant>& Rowset::AddRow() {
  rows.emplace_back(columns.size(), Variant::Null());
  return rows.back();
}

void Rowset::Set(std::vector<Variant>& row, StringView column, Variant value) const {
  const auto index = ColumnIndex(column);
  if (index) row[*index] = std::move(value);
}

Rowset MakeSchemaRowset(int32_t schema_id) {
  Rowset rowset;
  for (const auto& column : SchemaColumns(schema_id)) {
    rowset.AddColumn(column.name, column.type, column.type == adVarWChar ? 128 : 0);
  }
  return rowset;
}

std::vector<StringView> RestrictionColumns(int32_t schema_id) {
  switch (schema_id) {
    case adSchemaTables:
      return {u"TABLE_CATALOG", u"TABLE_SCHEMA", u"TABLE_NAME", u"TABLE_TYPE"};
    case adSchemaColumns:
      return {u"TABLE_CATALOG", u"TABLE_SCHEMA", u"TABLE_NAME", u"COLUMN_NAME"};
    case adSchemaIndexes:
      return {u"TABLE_CATALOG", u"TABLE_SCHEMA", u"INDEX_NAME", u"TYPE", u"TABLE_NAME"};
    case adSchemaPrimaryKeys:
      return {u"TABLE_CATALOG", u"TABLE_SCHEMA", u"TABLE_NAME"};
    default:
      SchemaColumns(schema_id);
      return {};
  }
}

std::optional<String> RestrictionText(const std::vector<Variant>& restrictions, size_t index) {
  if (index >= restrictions.size()) return std::nullopt;
  const Variant& value = restrictions[index];
  if (value.is_empty() || value.is_missing() || value.is_null()) return std::nullopt;
  return ToString(value);
}

void ApplyRestrictions(Rowset& rowset, int32_t schema_id,
                       const std::vector<Variant>& restrictions) {
  const auto names = RestrictionColumns(schema_id);
  for (size_t i = 0; i < names.size(); ++i) {
    const auto wanted = RestrictionText(restrictions, i);
    const auto column = rowset.ColumnIndex(names[i]);
    if (!wanted || !column) continue;
    std::erase_if(rowset.rows, [&](const std::vector<Variant>& row) {
      const Variant& value = row[*column];
      return value.is_null() || value.is_empty() || ToString(value) != *wanted;
    });
  }
}

}  // namespace qv::data
