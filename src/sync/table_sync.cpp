// Table and view synchronisation. The marks TblSync and FldSync are the working state of a
// run: false at the start of a pass, true once the item has met its schema record; whatever
// is still false at the end has gone from the schema.
#include "sync/table_sync.h"

#include <unordered_set>
#include <vector>

#include "automation/convert.h"
#include "persistence/project_file.h"
#include "support/common.h"
#include "support/status.h"
#include "support/tyx_vars.h"
#include "sync/custom_sync.h"
#include "sync/live_schema.h"
#include "sync/sync_dialogs.h"

namespace qv {

namespace {

bool IsTableOrView(StringView type) {
  return type == u"TABLE" || type == u"VIEW";
}

bool IsBlank(const Variant& v) {
  return v.is_empty() || v.is_null() || (v.is_string() && v.as_string().empty());
}

TyxTable* MatchTable(TyxDatabase& db, StringView name, StringView type) {
  TyxTable* table = db.Tables().list().ByName(name);
  return table && table->TblType() == type ? table : nullptr;
}

// What a table takes from a schema record or from a report's source.
struct TableFacts {
  bool updatable;
  String sql;
  String key;
  String type;
  bool gen;
};

// What a field takes from a schema record or from a report's source field.
struct ColumnFacts {
  int16_t type;
  bool primary_key;
  bool auto_increment;
  int32_t attribute;
  bool req;
  int32_t size;
  bool support;
  bool unique;
  bool zero_len;
  String quote_s;
  String quote_e;
  Variant default_value;
  String caption;
};

// An existing table keeps every setting but these; a new one also takes its kind and key, and
// then its defaults.
void ApplyTableFacts(TyxTable& table, const TableFacts& facts, bool is_new) {
  table.SetTblUpdatable(facts.updatable);
  table.SetTblSQL(facts.sql);
  if (table.TblKey().empty()) table.SetTblKey(facts.key);
  if (!is_new) return;
  table.SetTblType(facts.type);
  table.SetTblGen(facts.gen);
  table.SetTblLoaded(true);
  table.SetTblKey(facts.key);
  table.LoadTableDefault();
  if (table.TblKey().empty()) table.SetTblKey(facts.key);
}

// An existing field keeps its caption and every other choice of the user's; a new one is
// made from the column and then takes its defaults.
void ApplyColumnFacts(TyxField& field, const ColumnFacts& facts, bool is_new) {
  field.SetFldType(facts.type);
  field.SetFldIsPrimaryKey(facts.primary_key);
  field.SetFldAutoIncrement(facts.auto_increment);
  field.SetFldAttribute(facts.attribute);
  field.SetFldReq(facts.req);
  field.SetFldSize(facts.size);
  field.SetFldSupport(facts.support);
  field.SetFldUniqueIdx(facts.unique);
  field.SetFldZeroLen(facts.zero_len);
  field.SetFldQuoteS(facts.quote_s);
  field.SetFldQuoteE(facts.quote_e);
  if (IsBlank(field.FldDefault())) field.SetFldDefault(facts.default_value);
  if (!is_new) return;
  field.SetFldGenerate(facts.support);
  field.SetFldRequired(facts.req);
  field.SetFldDefault(facts.default_value);
  field.SetFldCaption(facts.caption);
  field.LoadFldDefault();
  if (IsBlank(field.FldDefault())) field.SetFldDefault(facts.default_value);
}

// The project tables of kind "TABLE" or "VIEW", in list order. The passes hold references:
// adding and deleting tables may move the list's storage.
std::vector<Ref<TyxTable>> TablesAndViews(TyxDatabase& db) {
  std::vector<Ref<TyxTable>> found;
  db.Tables().list().ForEach([&](TyxTable& t) {
    if (IsTableOrView(t.TblType())) found.emplace_back(&t);
  });
  return found;
}

void ClearFieldMarks(TyxTable& table) {
  table.Fields().list().ForEach([](TyxField& f) { f.SetFldSync(false); });
}

String Join(const std::vector<String>& names) {
  String list;
  for (const String& name : names) {
    if (!list.empty()) list.Append(u',');
    list.Append(name.view());
  }
  return list;
}

// Renames the tables of one kind that the user maps.
void MapTableRenames(TyxDatabase& db, const TyxSchema& schema, StringView type, StringView word) {
  std::vector<Ref<TyxTable>> tables;
  for (const Ref<TyxTable>& t : TablesAndViews(db)) {
    if (t->TblType() != type) continue;
    t->SetTblSync(false);
    ClearFieldMarks(*t);
    tables.push_back(t);
  }
  std::vector<String> new_names;
  for (int16_t i = 0; i < schema.tblcnt(); ++i) {
    const TySchemaTable& record = schema.db().tables.Tbl[static_cast<size_t>(i)];
    if (record.TblType != type) continue;
    if (TyxTable* table = MatchTable(db, record.TblName, type)) {
      table->SetTblSync(true);
    } else {
      new_names.push_back(record.TblName);
    }
  }
  std::vector<String> old_names;
  for (const Ref<TyxTable>& t : tables) {
    if (!t->TblSync()) old_names.push_back(t->TblName());
  }
  if (new_names.empty() || old_names.empty()) return;
  const String chosen = ShowMapDialog(
      u"New " + String(word) + u" found in schema",
      u"To use old settings, please select the old " + String(word) +
          u"(s) which you would like to map to the new " + String(word) + u"(s)",
      u"New " + String(word), u"Old " + String(word), Join(new_names), Join(old_names), false);
  const std::vector<String> picks = SplitListKeepingEmpty(chosen);
  for (size_t i = 0; i < new_names.size() && i < picks.size(); ++i) {
    if (!picks[i].empty()) db.Tables().Change(picks[i], new_names[i]);
  }
}

void MapFieldRenames(TyxTable& table, const TySchemaTable& record) {
  ClearFieldMarks(table);
  TyxFields& fields = table.Fields();
  std::vector<String> new_names;
  for (int16_t i = 0; i < record.TblFldCnt; ++i) {
    const TySchemaField& column = record.TblFields.fld[static_cast<size_t>(i)];
    if (TyxField* field = fields.list().ByName(column.FldName)) {
      field->SetFldSync(true);
    } else {
      new_names.push_back(column.FldName);
    }
  }
  std::vector<String> old_names;
  fields.list().ForEach([&](TyxField& f) {
    if (!f.FldSync()) old_names.push_back(f.FldName());
  });
  if (new_names.empty() || old_names.empty()) return;
  const String chosen = ShowMapDialog(
      u"Table: " + record.TblName + u" - New fields found in schema",
      u"To use old settings, please select the old fields which you would like to map to the "
      u"new fields",
      u"New field", u"Old field", Join(new_names), Join(old_names), false);
  const std::vector<String> picks = SplitListKeepingEmpty(chosen);
  for (size_t i = 0; i < new_names.size() && i < picks.size(); ++i) {
    if (!picks[i].empty()) fields.Change(picks[i], new_names[i]);
  }
}

// First pass, for a record whose table was found and is loaded.
void SyncLoadedTable(TyxTable& table, const TySchemaTable& record) {
  SyncTableFromRecord(table, record, false);
  SyncFieldsFromRecord(table, record);
  table.Fields().SetSeq(1);
  if (table.TblType() == u"TABLE" && SortKeyList(table.TblKey()) != SortKeyList(record.TblKey)) {
    const bool keep = AskKeepDefinition(u"Primary key for \"" + table.TblName() +
                                        u"\" has been modified. Keep/Update primary Key?");
    if (!keep) table.SetTblKey(record.TblKey);
  }
  UpdateFieldKeys(table);
}

// Second pass, for a record that found no table.
void SyncNewTable(TyxDatabase& db, const TySchemaTable& record) {
  TyxTables& tables = db.Tables();
  Ref<TyxTable> table(tables.list().ByName(record.TblName));
  if (table) {
    // The name is in use by a table of another kind: it starts again with no fields.
    std::vector<String> names;
    table->Fields().list().ForEach([&](TyxField& f) { names.push_back(f.FldName()); });
    for (const String& name : names)
      table->Fields().Delete(name);
  } else {
    if (!tables.Add(record.TblName)) {
      // Another spelling of the name (the key ignores case) belongs to a table the schema
      // lost: it makes way for the new one.
      TyxTable* clash = tables.list().ByKey(record.TblName);
      if (!clash || clash->TblSync()) return;
      tables.Delete(clash->TblName());
      if (!tables.Add(record.TblName)) return;
    }
    table = Ref<TyxTable>(tables.list().ByName(record.TblName));
    if (!table) return;
  }
  table->SetTblSync(true);
  table->SetTblType(record.TblType);
  if (Vars().DynamicLoadDB) {
    table->SetTblLoaded(false);
    table->SetTblGen(false);
    return;
  }
  SyncTableFromRecord(*table, record, true);
  TyxFields& fields = table->Fields();
  for (int16_t i = 0; i < record.TblFldCnt; ++i) {
    const TySchemaField& column = record.TblFields.fld[static_cast<size_t>(i)];
    if (!fields.Add(column.FldName)) continue;
    TyxField* field = fields.list().ByName(column.FldName);
    if (!field) continue;
    SyncFieldFromRecord(*field, column, true);
    field->SetFldSync(true);
  }
}

}  // namespace

void DeleteUnmarkedFields(TyxTable& table) {
  std::vector<String> gone;
  table.Fields().list().ForEach([&](TyxField& f) {
    if (!f.FldSync()) gone.push_back(f.FldName());
  });
  for (const String& name : gone)
    table.Fields().Delete(name);
}

void SyncFieldsFromRecord(TyxTable& table, const TySchemaTable& record) {
  TyxFields& fields = table.Fields();
  std::vector<bool> matched(static_cast<size_t>(record.TblFldCnt), false);
  for (int16_t i = 0; i < record.TblFldCnt; ++i) {
    const TySchemaField& column = record.TblFields.fld[static_cast<size_t>(i)];
    TyxField* field = fields.list().ByName(column.FldName);
    if (!field || field->FldSync() || field->FldType() != column.FldType) continue;
    field->SetFldSync(true);
    SyncFieldFromRecord(*field, column, false);
    matched[static_cast<size_t>(i)] = true;
  }
  for (int16_t i = 0; i < record.TblFldCnt; ++i) {
    if (matched[static_cast<size_t>(i)]) continue;
    const TySchemaField& column = record.TblFields.fld[static_cast<size_t>(i)];
    // A field of this name that is still here has another type: it starts again from the
    // defaults, as a new field would.
    TyxField* field = fields.list().ByName(column.FldName);
    if (!field && fields.Add(column.FldName)) field = fields.list().ByName(column.FldName);
    if (!field) continue;
    field->SetFldSync(true);
    SyncFieldFromRecord(*field, column, true);
  }
}

void SynchronizeDB(Tyx& tyx) {
  TyxSchema schema;
  if (!ReadLiveSchema(tyx, schema, Vars().ProductName + u" - Database Synchronization...")) {
    return;
  }
  SynchronizeDB(tyx, schema);
}

void SynchronizeDB(Tyx& tyx, const TyxSchema& schema) {
  MapRenames(tyx, schema);
  SyncTables(tyx, schema);
  SyncCustomViews(tyx);
  SyncReports(tyx);
  RebuildTableKeys(tyx);
}

void MapRenames(Tyx& tyx, const TyxSchema& schema) {
  TyxDatabase* db = CurrentDatabase(tyx);
  if (!db) return;
  MapTableRenames(*db, schema, u"TABLE", u"table");
  MapTableRenames(*db, schema, u"VIEW", u"view");
  for (int16_t i = 0; i < schema.tblcnt(); ++i) {
    const TySchemaTable& record = schema.db().tables.Tbl[static_cast<size_t>(i)];
    TyxTable* table = MatchTable(*db, record.TblName, record.TblType);
    if (table && table->TblLoaded()) MapFieldRenames(*table, record);
  }
}

void SyncTables(Tyx& tyx, const TyxSchema& schema) {
  TyxDatabase* db = CurrentDatabase(tyx);
  if (!db) return;
  FillSharedDefaults(tyx);
  Vars().DynamicLoadDB = tyx.DynamicLoadDB();
  ProgressWindow progress(tyx, u" - Synchronizing Tables and Views...");
  for (const Ref<TyxTable>& t : TablesAndViews(*db)) {
    t->SetTblSync(false);
    ClearFieldMarks(*t);
  }
  const std::vector<TySchemaTable>& records = schema.db().tables.Tbl;
  std::vector<bool> found(records.size(), false);
  for (int16_t i = 0; i < schema.tblcnt(); ++i) {
    const TySchemaTable& record = records[static_cast<size_t>(i)];
    TyxTable* table = MatchTable(*db, record.TblName, record.TblType);
    if (!table || table->TblSync()) continue;
    found[static_cast<size_t>(i)] = true;
    table->SetTblSync(true);
    if (table->TblLoaded()) SyncLoadedTable(*table, record);
  }
  for (int16_t i = 0; i < schema.tblcnt(); ++i) {
    if (!found[static_cast<size_t>(i)]) SyncNewTable(*db, records[static_cast<size_t>(i)]);
  }
  std::vector<String> gone;
  for (const Ref<TyxTable>& t : TablesAndViews(*db)) {
    if (t->TblSync()) {
      DeleteUnmarkedFields(*t);
    } else {
      gone.push_back(t->TblName());
    }
  }
  for (const String& name : gone)
    db->Tables().Delete(name);
  db->Tables().SetSeq(1);
}

void SyncTableFromRecord(TyxTable& table, const TySchemaTable& record, bool is_new) {
  ApplyTableFacts(
      table, {record.TblUpdatable, record.TblSQL, record.TblKey, record.TblType, record.TblGen},
      is_new);
}

void SyncFieldFromRecord(TyxField& field, const TySchemaField& record, bool is_new) {
  ApplyColumnFacts(
      field,
      {record.FldType, record.FldIsPrimaryKey, record.FldAutoIncrement, record.FldAttribute,
       record.FldReq, record.FldSize, record.FldSupport, record.FldUniqueIdx, record.FldZeroLen,
       record.FldQuoteS, record.FldQuoteE, record.FldDefault, record.FldCaption},
      is_new);
}

void SyncTableFromTable(TyxTable& table, const TyxTable& source, bool is_new) {
  ApplyTableFacts(
      table,
      {source.TblUpdatable(), source.TblSQL(), source.TblKey(), source.TblType(), source.TblGen()},
      is_new);
}

void SyncFieldFromField(TyxField& field, const TyxField& source, bool is_new) {
  ApplyColumnFacts(field,
                   {source.FldType(), source.FldIsPrimaryKey(), source.FldAutoIncrement(),
                    source.FldAttribute(), source.FldReq(), source.FldSize(), source.FldSupport(),
                    source.FldUniqueIdx(), source.FldZeroLen(), source.FldQuoteS(),
                    source.FldQuoteE(), source.FldDefault(), source.FldCaption()},
                   is_new);
}

void UpdateFieldKeys(TyxTable& table) {
  std::unordered_set<String> keys;
  for (const String& name : SplitListKeepingEmpty(table.TblKey()))
    keys.insert(name);
  table.Fields().list().ForEach(
      [&](TyxField& f) { f.SetFldIsPrimaryKey(keys.contains(f.FldName())); });
}

}  // namespace qv
