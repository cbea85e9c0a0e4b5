// Reading columns once and applying them to records or to the project.
#include "schema/column_facts.h"

#include "automation/convert.h"
#include "schema/field_types.h"

namespace qv {

ColumnFacts ReadColumnFacts(const data::Field& column) {
  ColumnFacts facts;
  facts.name = column.Name();
  facts.type = column.Type();
  facts.defined_size = column.DefinedSize();
  facts.attributes = column.Attributes();
  try {
    facts.auto_increment = ToBool(column.Properties(u"ISAUTOINCREMENT"));
  } catch (const Error&) {
    // Left unknown: each target has its own rule for that (see column_facts.h).
  }
  return facts;
}

std::vector<ColumnFacts> ReadColumnFacts(const data::Recordset& rs) {
  const data::FieldCollection& fields = rs.Fields();
  std::vector<ColumnFacts> columns;
  columns.reserve(static_cast<size_t>(fields.Count()));
  for (const data::Field& column : fields)
    columns.push_back(ReadColumnFacts(column));
  return columns;
}

void ApplyToRecord(const std::vector<ColumnFacts>& columns, TySchemaTable& table) {
  table.TblFields.fld.assign(columns.size(), TySchemaField());
  int16_t kept = 0;
  for (const ColumnFacts& column : columns) {
    table.TblFldCnt = kept;  // FindField looks only at the columns kept so far
    if (table.FindField(column.name)) {
      table.TblGen = false;
      table.read_error = u"two of its columns are named " + column.name;
      table.repeated_column = column.name;
      continue;
    }
    TySchemaField& field = table.TblFields.fld[static_cast<size_t>(kept)];
    ++kept;
    field.FldSeq = kept;
    field.FldName = column.name;
    SetSchemaFieldTypeAdo(field, column.type);
    field.FldSize = column.defined_size;
    field.FldZeroLen = true;
    field.FldReq = false;
    field.FldUniqueIdx = false;
    field.FldAttribute = column.attributes;
    // Unknown means auto-incrementing here: the flag's test failed into its true branch in
    // the reader that projects were made with, and their checks rely on it.
    field.FldAutoIncrement = column.auto_increment.value_or(true);
    field.auto_increment_known = column.auto_increment.has_value();
  }
  table.TblFldCnt = kept;
}

bool ApplyToField(const ColumnFacts& column, TyxField& field) {
  field.SetFldName(column.name);
  field.SetFieldSupport(static_cast<int16_t>(column.type));
  field.SetFldSize(column.defined_size);
  field.SetFldZeroLen(true);
  field.SetFldReq(false);
  field.SetFldUniqueIdx(false);
  field.SetFldAttribute(column.attributes);
  if (!column.auto_increment) return false;  // the old flag stays, and so do the old defaults
  field.SetFldAutoIncrement(*column.auto_increment);
  field.LoadFldDefault();
  return true;
}

std::vector<ColumnFacts> ColumnFactsOf(const TySchemaTable& table) {
  std::vector<ColumnFacts> columns;
  columns.reserve(static_cast<size_t>(table.TblFldCnt));
  for (int16_t i = 0; i < table.TblFldCnt; ++i) {
    const TySchemaField& field = table.TblFields.fld[static_cast<size_t>(i)];
    ColumnFacts& column = columns.emplace_back();
    column.name = field.FldName;
    column.type = field.FldType;
    column.defined_size = field.FldSize;
    column.attributes = field.FldAttribute;
    if (field.auto_increment_known) column.auto_increment = field.FldAutoIncrement;
  }
  return columns;
}

void ApplyToTable(const std::vector<ColumnFacts>& columns, TyxTable& table,
                  const std::function<void(const String& name)>& repeated) {
  TyxFields& fields = table.Fields();
  for (const ColumnFacts& column : columns) {
    if (fields.list().ByName(column.name)) {
      table.SetTblGen(false);
      repeated(column.name);
      continue;
    }
    if (!fields.Add(column.name)) continue;
    TyxField* field = fields.list().ByName(column.name);
    if (!field) continue;
    try {
      ApplyToField(column, *field);
    } catch (const Error&) {
      // Passed over as the loaders always have: the field keeps what it got so far.
    }
  }
}

}  // namespace qv
