// The ADO table loader: a project table from its schema record.
#include "schema/table_loader.h"

#include "schema/column_facts.h"
#include "support/tyx_functions.h"
#include "support/tyx_vars.h"

namespace qv {

namespace {

// The fields built from the record's columns, with their defaults; a repeated name leaves its
// words in TblError, the last repeat's words standing.
void LoadFields(TyxTable& table, const TySchemaTable& record) {
  const auto repeated = [&table](StringView name) {
    table.SetTblGen(false);
    table.SetTblError(DuplicateColumnText(name));
  };
  ApplyToTable(ColumnFactsOf(record), table, repeated);
  if (!record.repeated_column.empty()) repeated(record.repeated_column);
}

// The key, required and unique marks the record's key rowsets gave, set after the fields'
// defaults as the rowsets were always read: a mark isn't undone by a default.
void MarkKeys(TyxFields& fields, const TySchemaTable& record) {
  for (int16_t i = 0; i < record.TblFldCnt; ++i) {
    const TySchemaField& column = record.TblFields.fld[static_cast<size_t>(i)];
    TyxField* field = fields.list().ByName(column.FldName);
    if (!field) continue;
    if (column.FldIsPrimaryKey) field->SetFldIsPrimaryKey(true);
    if (column.FldReq) {
      field->SetFldReq(true);
      field->SetFldRequired(true);
    }
    if (column.FldUniqueIdx) field->SetFldUniqueIdx(true);
  }
}

}  // namespace

String DuplicateColumnText(StringView column) {
  return Vars().ProductTitle + u": Duplicate Column Name - " + column +
         u" found! ASP scripts may not be generated correctly! Please rename duplicated field "
         u"names to ensure correct generation!";
}

void Load_ADO(TyxTable& table, const TySchemaTable& record, bool load_all,  // NOLINT
              int32_t kind) {
  table.SetTblName(record.TblName);
  table.SetTblType(record.TblType);
  if (load_all && Vars().DynamicLoadDB) {
    table.SetTblGen(false);
    table.SetTblLoaded(false);
    return;
  }
  table.SetTblGen(true);
  if (record.columns_read) {
    LoadFields(table, record);
    table.SetTblLoaded(true);
  } else {
    table.SetTblGen(false);
  }
  if (table.TblType() == u"TABLE") {
    MarkKeys(table.Fields(), record);
    // Access's key comes from its indexes, and a table without one keeps the key it had.
    if (kind != kDbAccess || !record.TblKey.empty()) table.SetTblKey(record.TblKey);
  }
  table.LoadTableDefault();
}

}  // namespace qv
