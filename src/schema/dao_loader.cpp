// The DAO loaders. One handler covers the whole of LoadDAODB: any failure after the view list
// ends the load with result 1, whatever was added so far stays for the caller to drop.
#include "schema/dao_loader.h"

#include <memory>

#include "automation/convert.h"
#include "automation/safe_array.h"
#include "platform/data/connection.h"
#include "platform/data/data_types.h"
#include "platform/data/recordset.h"
#include "platform/prompter.h"
#include "schema/dao_indexes.h"
#include "schema/view_analysis.h"
#include "support/common.h"
#include "support/status.h"
#include "support/tyx_functions.h"
#include "support/tyx_vars.h"

namespace qv {

namespace {

constexpr int32_t kAttrFixed = 16;     // adFldFixed
constexpr int32_t kAttrAutoIncr = 4;   // the bit the original used for an auto-increment
constexpr int32_t kAttrNullable = 32;  // adFldIsNullable

bool FieldsAreRead(bool load_all) {
  return !load_all || !Vars().DynamicLoadDB;
}

void WriteDatabaseProperties(TyxDatabase& db, const DaoLoadRequest& request,
                             const data::AccessDatabase& file) {
  db.SetDBType(u"ACCESS");
  db.SetDBPath(request.path);
  db.SetDBUseServerMapPath(request.use_server_map_path);
  db.SetDBPhyPath(request.phy_path);
  db.SetDBUID(request.uid);
  db.SetDBPwd(request.pwd);
  db.SetDBADOVer(data::AccessDatabase::EngineVersion());
  db.SetDBDBMSName(u"ACCESS");
  db.SetDBDBMSVer(file.Version());
  db.SetDBOLEDBVer(u"N.A.");
  db.SetDBProviderName(u"N.A.");
  db.SetDBProviderVer(u"N.A.");
  SetQuoteChars(u"ACCESS");
  db.SetDBQuoteS(ToString(Vars().DbQuoteOpen));
  db.SetDBQuoteE(ToString(Vars().DbQuoteClose));
}

// OpenDatabase(name, exclusive, read-only, connect) where the layer takes DAO's four
// arguments; its older form had no exclusive flag.
template <class Db>
std::unique_ptr<Db> OpenReadOnly(StringView path, StringView connect) {
  if constexpr (requires { Db::Open(path, false, true, connect); }) {
    return Db::Open(path, /*exclusive=*/false, /*read_only=*/true, connect);
  } else {
    return Db::Open(path, /*read_only=*/true, connect);
  }
}

}  // namespace

std::unique_ptr<data::AccessDatabase> OpenDaoDatabase(StringView phy_path, StringView pwd) {
  if (pwd.empty()) return data::AccessDatabase::Open(phy_path);
  const String connect = u"MS Access;PWD=" + String(pwd) + u";";
  return OpenReadOnly<data::AccessDatabase>(phy_path, connect);
}

namespace {

// A new table of the list, marked as not loaded; nullptr when the name was refused.
TyxTable* AddListed(TyxTables& tables, StringView name, StringView type) {
  if (!tables.Add(name)) return nullptr;
  TyxTable* table = tables.list().ByName(name);
  if (!table) return nullptr;
  table->SetTblType(String(type));
  table->SetTblLoaded(false);
  return table;
}

class DaoProjectLoad {
 public:
  DaoProjectLoad(TyxDatabase& db, const DaoLoadRequest& request)
      : db_(db), request_(request), full_(request.table_name.empty()) {}

  void Run() {
    const Variant views = CollectDaoViewNames(request_.phy_path, request_.pwd);
    if (full_) Status().DispStatus(Variant(String(u"Loading Database Tables...")));
    const std::unique_ptr<data::AccessDatabase> file =
        OpenDaoDatabase(request_.phy_path, request_.pwd);
    if (full_) WriteDatabaseProperties(db_, request_, *file);
    Vars().CurrentDbmsName = db_.DBDBMSName();
    total_ = static_cast<double>(file->TableDefs().size() + file->QueryDefs().size());
    for (const data::DaoTableDef& table_def : file->TableDefs()) {
      if (IsLoadableTableDef(table_def)) LoadTable(table_def);
      Count();
    }
    if (full_) Status().DispStatus(Variant(String(u"Loading Database Views...")));
    for (const data::DaoQueryDef& query_def : file->QueryDefs()) {
      if (IsInList(views, Variant(query_def.name))) LoadView(query_def);
      Count();
    }
  }

 private:
  static TyxStatus& Status() { return SharedStatus(); }

  void Count() {
    ++done_;
    if (full_) Status().SetStatus(Variant(PercentOf(done_, total_)));
  }

  void LoadTable(const data::DaoTableDef& table_def) {
    TyxTables& tables = db_.Tables();
    if (full_) {
      Status().DispStatus(Variant(u"Loading Table " + table_def.name + u"..."));
      TyxTable* added = AddListed(tables, table_def.name, u"TABLE");
      if (added && !table_def.fields.empty()) LoadTbl_DAO(*added, table_def, true);
      return;
    }
    if (table_def.name != request_.table_name || table_def.fields.empty()) return;
    if (TyxTable* table = tables.list().ByName(table_def.name))
      LoadTbl_DAO(*table, table_def, false);
  }

  void LoadView(const data::DaoQueryDef& query_def) {
    TyxTables& tables = db_.Tables();
    if (full_) {
      Status().DispStatus(Variant(u"Loading View " + query_def.name + u"..."));
      if (TyxTable* added = AddListed(tables, query_def.name, u"VIEW"))
        LoadView_DAO(*added, query_def, true);
    } else if (query_def.name == request_.table_name) {
      if (TyxTable* table = tables.list().ByName(query_def.name))
        LoadView_DAO(*table, query_def, false);
    } else {
      return;
    }
    TyxTable* view = tables.list().ByName(query_def.name);
    if (!view) return;
    view->SetTblSQL(query_def.sql);
    AnalyseViewSql(db_, *view, query_def.sql);
  }

  TyxDatabase& db_;
  const DaoLoadRequest& request_;
  const bool full_;
  double total_ = 0;
  double done_ = 0;
};

}  // namespace

String JetConnectionString(StringView file, StringView pwd) {
  String text = u"Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + String(file) + u";";
  if (!pwd.empty()) text = text + u"Jet OLEDB:Database Password=" + String(pwd) + u";";
  return text;
}

Variant CollectDaoViewNames(StringView phy_path, StringView pwd) {
  std::vector<Variant> names{Variant()};  // index 0 stays empty: the list runs from 1
  try {
    data::Connection cn;
    cn.Open(JetConnectionString(phy_path, pwd));
    std::unique_ptr<data::Recordset> rs = cn.OpenSchema(
        data::adSchemaTables, {Variant(), Variant(), Variant(), Variant(String(u"VIEW"))});
    for (; !rs->Eof(); rs->MoveNext())
      names.push_back(Variant(ToString(rs->Fields(u"TABLE_NAME").Value())));
    rs->Close();
    cn.Close();
  } catch (const Error& e) {
    // The load goes on with tables only; the user learns why the queries are missing.
    CurrentPrompter().ShowMessage(Vars().ProductTitle,
                                  u"Queries not loaded due to ADOX Error: " + e.description(),
                                  PromptIcon::kExclamation);
    names.assign(1, Variant());
  }
  return Variant(SafeArray::FromValues(std::move(names)));
}

bool IsLoadableTableDef(const data::DaoTableDef& table_def) {
  if ((table_def.attributes & data::dbSystemObject) != 0) return false;
  if ((table_def.attributes & data::dbHiddenObject) != 0) return false;
  return table_def.name != u"Switchboard Items";
}

String DaoErrorText(const Error& failure) {
  return u"\r\nError # " + ToString(Variant(failure.number())) + u"\r\nGenerated by " +
         failure.source() + u"\r\nDescription  " + failure.description() + u"\r\n";
}

int16_t LoadDAODB(TyxDatabase& db, const DaoLoadRequest& request) {  // NOLINT
  if (request.phy_path.empty()) return 0;
  try {
    DaoProjectLoad(db, request).Run();
    return 0;
  } catch (const Error& failure) {
    Vars().ProjErr = DaoErrorText(failure);
    return 1;
  }
}

void LoadTbl_DAO(TyxTable& table, const data::DaoTableDef& table_def, bool load_all) {  // NOLINT
  table.SetTblName(table_def.name);
  table.SetTblType(u"TABLE");
  if (!FieldsAreRead(load_all)) {
    table.SetTblGen(false);
    table.SetTblLoaded(false);
    return;
  }
  TyxFields& fields = table.Fields();
  for (const data::DaoField& column : table_def.fields) {
    if (!fields.Add(column.name)) continue;
    if (TyxField* field = fields.list().ByName(column.name)) LoadFld_DAO(*field, column);
  }
  const DaoIndexFacts indexes = ReadDaoIndexes(table_def.indexes);
  for (const String& name : indexes.key_columns) {
    if (TyxField* field = fields.list().ByName(name)) field->SetFldIsPrimaryKey(true);
  }
  if (indexes.key) table.SetTblKey(*indexes.key);
  for (const String& name : indexes.unique_columns) {
    if (TyxField* field = fields.list().ByName(name)) field->SetFldUniqueIdx(true);
  }
  table.SetTblGen(true);
  table.LoadTableDefault();
  table.SetTblLoaded(true);
}

void LoadView_DAO(TyxTable& table, const data::DaoQueryDef& query_def, bool load_all) {  // NOLINT
  table.SetTblName(query_def.name);
  table.SetTblType(u"VIEW");
  if (!FieldsAreRead(load_all)) {
    table.SetTblGen(false);
    table.SetTblLoaded(false);
    return;
  }
  TyxFields& fields = table.Fields();
  for (const data::DaoField& column : query_def.fields) {
    if (!fields.Add(column.name)) continue;
    if (TyxField* field = fields.list().ByName(column.name)) LoadFld_DAO(*field, column);
  }
  table.SetTblGen(true);
  table.LoadTableDefault();
  table.SetTblLoaded(true);
}

int32_t MapDaoAttributes(const data::DaoField& column) {
  int32_t bits = 0;
  if ((column.attributes & data::dbFixedField) != 0) bits |= kAttrFixed;
  if ((column.attributes & data::dbAutoIncrField) != 0) bits |= kAttrAutoIncr;
  if (!column.required) bits |= kAttrNullable;
  return bits;
}

void LoadFld_DAO(TyxField& field, const data::DaoField& column) {  // NOLINT
  field.SetFldName(column.name);
  field.SetFieldSupportDao(static_cast<int16_t>(column.type));
  field.SetFldSize(column.size);
  field.SetFldUniqueIdx(false);
  field.SetFldAttribute(MapDaoAttributes(column));
  field.SetFldAutoIncrement((column.attributes & data::dbAutoIncrField) != 0);
  field.SetFldDefault(column.default_value.is_empty() ? Variant(String()) : column.default_value);
  field.SetFldZeroLen(column.allow_zero_length);
  field.SetFldReq(column.required);
  try {
    const Variant caption = column.Properties(u"Caption");
    const String text = caption.is_null() ? String() : ToString(caption);
    if (!text.empty()) field.SetFldCaption(text);
  } catch (const Error&) {
    // A column without a caption keeps FldCaption empty until the defaults fill it.
  }
  field.LoadFldDefault();
}

bool IsInList(const Variant& list, const Variant& value) {
  if (!list.is_array() || list.as_array()->dimensions() != 1) return false;
  const SafeArray& array = *list.as_array();
  const int64_t upper = array.bound(1).upper();
  for (int64_t i = 1; i <= upper; ++i) {
    const int32_t index = static_cast<int32_t>(i);
    if (i < array.bound(1).lower) continue;
    if (Compare(array.At(std::span<const int32_t>(&index, 1)), value) == Comparison::Equal)
      return true;
  }
  return false;
}

}  // namespace qv
