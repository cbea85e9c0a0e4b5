// TyxSchema.ReadDaoSchema: an Access file into plain records, by the same steps as LoadDAODB
// (tables, then the select queries that ADOX lists), without defaults. The loaded marker goes
// up as soon as the file is open, so a failure after that still counts as a load.
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

void ReadFieldRecords(TySchemaTable& table, const std::vector<data::DaoField>& columns) {
  table.TblGen = true;
  table.TblUpdatable = true;
  table.TblFields.fld.assign(columns.size(), TySchemaField());
  int16_t seq = 0;
  for (const data::DaoField& column : columns) {
    TySchemaField& record = table.TblFields.fld[static_cast<size_t>(seq)];
    ++seq;
    ReadFieldRecord(record, column, seq);
  }
  table.TblFldCnt = seq;
}

void ApplyIndexes(TySchemaTable& table, const std::vector<data::DaoIndex>& indexes) {
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
  try {
    const Variant views = CollectDaoViewNames(phy_path, pwd);
    status.DispStatus(Variant(String(u"Loading Database Tables...")));
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
      status.SetStatus(Variant(PercentOf(done, total)));
    };
    auto add = [&](const String& name, StringView type) -> TySchemaTable& {
      TySchemaTable& table = tables.emplace_back();
      table.TblSeq = static_cast<int16_t>(tables.size());
      table.TblName = name;
      table.TblType = String(type);
      return table;
    };
    for (const data::DaoTableDef& table_def : file->TableDefs()) {
      if (IsLoadableTableDef(table_def)) {
        status.DispStatus(Variant(u"Loading Table " + table_def.name + u"..."));
        TySchemaTable& table = add(table_def.name, u"TABLE");
        if (!table_def.fields.empty()) {
          ReadFieldRecords(table, table_def.fields);
          ApplyIndexes(table, table_def.indexes);
        }
      }
      count();
    }
    status.DispStatus(Variant(String(u"Loading Database Views...")));
    for (const data::DaoQueryDef& query_def : file->QueryDefs()) {
      if (IsInList(views, Variant(query_def.name))) {
        status.DispStatus(Variant(u"Loading View " + query_def.name + u"..."));
        TySchemaTable& view = add(query_def.name, u"VIEW");
        view.TblUpdatable = true;
        if (!query_def.fields.empty()) ReadFieldRecords(view, query_def.fields);
        view.TblSQL = query_def.sql;
        AnalyseViewSql(tables, view, query_def.sql);
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
