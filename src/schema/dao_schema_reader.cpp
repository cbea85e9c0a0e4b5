// TyxSchema.ReadDaoSchema: the one reader of an Access file. Its tables, then the select
// queries that ADOX lists, become plain records with their fields, captions, defaults and index
// marks. The difference check compares the project with them, and LoadDAODB builds the
// project's tables from them, so the two can't read a file two ways. The loaded marker goes up
// as soon as the file is open, so a failure after that still counts as a load.
#include <memory>

#include "automation/convert.h"
#include "platform/data/access_database.h"
#include "platform/data/data_types.h"
#include "schema/dao_indexes.h"
#include "schema/dao_loader.h"
#include "schema/field_types.h"
#include "schema/tyx_schema.h"
#include "schema/view_analysis.h"
#include "support/common.h"
#include "support/status.h"
#include "support/tyx_functions.h"
#include "support/tyx_vars.h"

namespace qv {

namespace {

void ReadFieldRecord(TySchemaField& record, const data::DaoField& column, int16_t seq) {
  record.FldSeq = seq;
  record.FldName = column.name;
  SetSchemaFieldTypeDao(record, column.type);
  record.FldSize = column.size;
  record.FldUniqueIdx = false;
  record.FldAttribute = MapDaoAttributes(column);
  record.FldAutoIncrement = (column.attributes & data::dbAutoIncrField) != 0;
  record.FldDefault = column.default_value.is_empty() ? Variant(String()) : column.default_value;
  record.FldZeroLen = column.allow_zero_length;
  record.FldReq = column.required;
  try {
    const Variant caption = column.Properties(u"Caption");
    if (!caption.is_null()) record.FldCaption = ToString(caption);
  } catch (const Error&) {
    // No caption: the record keeps it empty.
  }
}

// The columns the definition lists. mdbtools names two columns of a query by their bare
// name ("CompanyName" of two tables): the first stays and the repeat is passed over, as the
// project's fields can hold only one, so that a fresh load and a check agree. The file's
// definition is the whole truth about the columns: the record counts as read even with none.
void ReadFieldRecords(TySchemaTable& table, const std::vector<data::DaoField>& columns) {
  table.columns_read = true;
  if (columns.empty()) {
    table.read_error = u"the database names none of its columns";
    return;
  }
  table.TblGen = true;
  table.TblUpdatable = true;
  table.TblFields.fld.assign(columns.size(), TySchemaField());
  int16_t kept = 0;
  for (const data::DaoField& column : columns) {
    table.TblFldCnt = kept;  // FindField looks only at the columns kept so far
    if (table.FindField(column.name)) continue;
    TySchemaField& record = table.TblFields.fld[static_cast<size_t>(kept)];
    ++kept;
    ReadFieldRecord(record, column, kept);
  }
  table.TblFldCnt = kept;
}

// A table without an index named "PrimaryKey" leaves TblKey empty: the project's table then
// keeps the key it had.
void ReadIndexes(TySchemaTable& table, const std::vector<data::DaoIndex>& indexes) {
  const DaoIndexFacts facts = ReadDaoIndexes(indexes);
  for (const String& name : facts.key_columns) {
    if (TySchemaField* f = table.FindField(name)) f->FldIsPrimaryKey = true;
  }
  if (facts.key) table.TblKey = *facts.key;
  for (const String& name : facts.unique_columns) {
    if (TySchemaField* f = table.FindField(name)) f->FldUniqueIdx = true;
  }
}

}  // namespace

int16_t TyxSchema::ReadDaoSchema(StringView path, StringView phy_path, bool use_server_map_path,
                                 StringView uid, StringView pwd) {
  if (phy_path.empty()) return 0;
  TyxStatus& status = SharedStatus();
  // A read of one table is part of a load that showed its progress already.
  const bool whole = scope_.only_table.empty();
  const auto wanted = [&](const String& name) { return whole || name == scope_.only_table; };
  try {
    const Variant views = CollectDaoViewNames(phy_path, pwd);
    if (whole) status.DispStatus(Variant(String(u"Loading Database Tables...")));
    const std::unique_ptr<data::AccessDatabase> file = OpenDaoDatabase(phy_path, pwd);
    db_.DBType = u"ACCESS";
    db_.DBPath = path;
    db_.DBUseServerMapPath = use_server_map_path;
    db_.DBPhyPath = phy_path;
    db_.DBUID = uid;
    db_.DBPwd = pwd;
    db_.DBADOVer = data::AccessDatabase::EngineVersion();
    db_.DBDBMSName = u"ACCESS";
    db_.DBDBMSVer = file->Version();
    db_.DBOLEDBVer = u"N.A.";
    db_.DBProviderName = u"N.A.";
    db_.DBProviderVer = u"N.A.";
    DbmsNameUpper = u"ACCESS";
    kind_ = kDbAccess;
    SetQuoteChars(u"ACCESS");
    ++loaded_;

    std::vector<TySchemaTable>& tables = db_.tables.Tbl;
    const double total = static_cast<double>(file->TableDefs().size() + file->QueryDefs().size());
    double done = 0;
    auto count = [&] {
      ++done;
      if (whole) status.SetStatus(Variant(PercentOf(done, total)));
    };
    auto add = [&](const String& name, StringView type, StringView word) -> TySchemaTable& {
      if (whole) status.DispStatus(Variant(u"Loading " + String(word) + u" " + name + u"..."));
      TySchemaTable& table = tables.emplace_back();
      table.TblSeq = static_cast<int16_t>(tables.size());
      table.TblName = name;
      table.TblType = String(type);
      return table;
    };
    for (const data::DaoTableDef& table_def : file->TableDefs()) {
      if (IsLoadableTableDef(table_def) && wanted(table_def.name)) {
        TySchemaTable& table = add(table_def.name, u"TABLE", u"Table");
        ReadFieldRecords(table, table_def.fields);
        if (table.TblFldCnt > 0) ReadIndexes(table, table_def.indexes);
      }
      count();
    }
    if (whole) status.DispStatus(Variant(String(u"Loading Database Views...")));
    for (const data::DaoQueryDef& query_def : file->QueryDefs()) {
      if (IsInList(views, Variant(query_def.name)) && wanted(query_def.name)) {
        TySchemaTable& view = add(query_def.name, u"VIEW", u"View");
        view.TblUpdatable = true;
        ReadFieldRecords(view, query_def.fields);
        view.TblSQL = query_def.sql;
        // A project weighs its view against its own tables, loaded before or not (LoadDAODB);
        // a record against the records read so far.
        if (!scope_.for_project) AnalyseViewSql(tables, view, query_def.sql);
      }
      count();
    }
    db_.DBTblCnt = static_cast<int16_t>(tables.size());
    return 0;
  } catch (const Error& failure) {
    Vars().ProjErr = DaoErrorText(failure);
    return 1;
  }
}

}  // namespace qv
