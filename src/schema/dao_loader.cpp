// LoadDAODB and the steps the Access reader and loader share. The file is read whole into
// records first (dao_schema_reader.cpp), so a failure while reading leaves the project as it
// was; what fails while the tables are built leaves what was added for the caller to drop.
#include "schema/dao_loader.h"

#include <memory>

#include "automation/convert.h"
#include "automation/safe_array.h"
#include "platform/data/connection.h"
#include "platform/data/data_types.h"
#include "platform/data/recordset.h"
#include "platform/prompter.h"
#include "schema/database_loader.h"
#include "schema/table_loader.h"
#include "schema/tyx_schema.h"
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

void WriteDatabaseProperties(TyxDatabase& db, const DaoLoadRequest& request,
                             const TySchemaDB& read) {
  db.SetDBType(u"ACCESS");
  db.SetDBPath(request.path);
  db.SetDBUseServerMapPath(request.use_server_map_path);
  db.SetDBPhyPath(request.phy_path);
  db.SetDBUID(request.uid);
  db.SetDBPwd(request.pwd);
  WriteSourceFacts(db, read);
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

// A whole load adds each table and query it read; a load of one refreshes that one only. A
// table whose definition lists no column stays as listed, a query is loaded regardless.
void BuildTable(TyxDatabase& db, const TySchemaTable& record, bool full) {
  TyxTables& tables = db.Tables();
  const bool view = record.TblType == u"VIEW";
  if (!view && record.TblFldCnt == 0) {
    if (full) AddListed(tables, record.TblName, record.TblType);
    return;
  }
  TyxTable* table = full ? AddListed(tables, record.TblName, record.TblType)
                         : tables.list().ByName(record.TblName);
  if (table) Load_DAO(*table, record, full);
  if (!view) return;
  // The name may belong to a table the list had already, which then takes the query's SQL.
  table = tables.list().ByName(record.TblName);
  if (!table) return;
  table->SetTblSQL(record.TblSQL);
  AnalyseViewSql(db, *table, record.TblSQL);
}

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
  const bool full = request.table_name.empty();
  SchemaReadScope scope;
  scope.only_table = request.table_name;
  scope.for_project = true;
  TyxSchema schema(std::move(scope));
  const int16_t result = schema.ReadDaoSchema(
      request.path, request.phy_path, request.use_server_map_path, request.uid, request.pwd);
  if (result != 0) return result;
  try {
    if (full) WriteDatabaseProperties(db, request, schema.db());
    Vars().CurrentDbmsName = db.DBDBMSName();
    for (const TySchemaTable& record : schema.db().tables.Tbl)
      BuildTable(db, record, full);
    return 0;
  } catch (const Error& failure) {
    Vars().ProjErr = DaoErrorText(failure);
    return 1;
  }
}

int32_t MapDaoAttributes(const data::DaoField& column) {
  int32_t bits = 0;
  if ((column.attributes & data::dbFixedField) != 0) bits |= kAttrFixed;
  if ((column.attributes & data::dbAutoIncrField) != 0) bits |= kAttrAutoIncr;
  if (!column.required) bits |= kAttrNullable;
  return bits;
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
