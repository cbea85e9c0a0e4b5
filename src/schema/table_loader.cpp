// The table loaders: a project table from its schema record, with the fields made in the way
// of the record's source.
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

// The steps of every table built from its record: `load_fields` adds the fields with their
// defaults, in the way of the record's source.
template <class LoadFields>
void LoadFromRecord(TyxTable& table, const TySchemaTable& record, bool load_all, int32_t kind,
                    LoadFields&& load_fields) {
  table.SetTblName(record.TblName);
  table.SetTblType(record.TblType);
  if (load_all && Vars().DynamicLoadDB) {
    table.SetTblGen(false);
    table.SetTblLoaded(false);
    return;
  }
  table.SetTblGen(true);
  if (record.columns_read) {
    load_fields();
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

}  // namespace

String DuplicateColumnText(StringView column) {
  return Vars().ProductTitle + u": Duplicate Column Name - " + column +
         u" found! ASP scripts may not be generated correctly! Please rename duplicated field "
         u"names to ensure correct generation!";
}

void Load_ADO(TyxTable& table, const TySchemaTable& record, bool load_all,  // NOLINT
              int32_t kind) {
  LoadFromRecord(table, record, load_all, kind, [&] { LoadFields(table, record); });
}

void Load_DAO(TyxTable& table, const TySchemaTable& record, bool load_all) {  // NOLINT
  LoadFromRecord(table, record, load_all, kDbAccess, [&] {
    TyxFields& fields = table.Fields();
    for (int16_t i = 0; i < record.TblFldCnt; ++i) {
      const TySchemaField& column = record.TblFields.fld[static_cast<size_t>(i)];
      // A name already taken is passed over without a word: Access can't hold two.
      if (!fields.Add(column.FldName)) continue;
      if (TyxField* field = fields.list().ByName(column.FldName)) LoadFld_DAO(*field, column);
    }
  });
}

void LoadFld_DAO(TyxField& field, const TySchemaField& column) {  // NOLINT
  field.SetFldName(column.FldName);
  field.SetFldType(column.FldType);
  field.SetFldSupport(column.FldSupport);
  // A type without code keeps the quotes the field had.
  if (column.FldSupport) {
    field.SetFldQuoteS(column.FldQuoteS);
    field.SetFldQuoteE(column.FldQuoteE);
  }
  field.SetFldSize(column.FldSize);
  field.SetFldUniqueIdx(false);
  field.SetFldAttribute(column.FldAttribute);
  field.SetFldAutoIncrement(column.FldAutoIncrement);
  field.SetFldDefault(column.FldDefault);
  field.SetFldZeroLen(column.FldZeroLen);
  field.SetFldReq(column.FldReq);
  // A column without a caption keeps FldCaption empty until the defaults fill it.
  if (!column.FldCaption.empty()) field.SetFldCaption(column.FldCaption);
  field.LoadFldDefault();
}

}  // namespace qv
