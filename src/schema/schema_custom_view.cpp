// TyxSchema.LoadADOCustomView: the columns of a custom view as one record, which the custom
// view comparison of synchronisation reads. No origin is worked out: the records have no
// place for one.
#include "automation/convert.h"
#include "platform/data/connection.h"
#include "platform/data/data_types.h"
#include "platform/data/recordset.h"
#include "schema/connection_error.h"
#include "schema/field_types.h"
#include "schema/tyx_schema.h"
#include "support/tyx_vars.h"

namespace qv {

namespace {

bool ContainsNoCase(StringView text, StringView part) {
  for (size_t i = 0; i + part.size() <= text.size(); ++i) {
    if (EqualsNoCase(text.substr(i, part.size()), part)) return true;
  }
  return false;
}

// The columns of an open statement, as the ADO reader records a table's probe.
void ReadColumnRecords(const data::Recordset& rs, TySchemaTable& table) {
  const data::FieldCollection& columns = rs.Fields();
  table.TblFields.fld.assign(static_cast<size_t>(columns.Count()), TySchemaField());
  int16_t kept = 0;
  for (const data::Field& column : columns) {
    table.TblFldCnt = kept;
    if (table.FindField(column.Name())) {
      table.TblGen = false;
      continue;
    }
    TySchemaField& field = table.TblFields.fld[static_cast<size_t>(kept)];
    ++kept;
    field.FldSeq = kept;
    field.FldName = column.Name();
    SetSchemaFieldTypeAdo(field, column.Type());
    field.FldSize = column.DefinedSize();
    field.FldZeroLen = true;
    field.FldReq = false;
    field.FldUniqueIdx = false;
    field.FldAttribute = column.Attributes();
    try {
      field.FldAutoIncrement = ToBool(column.Properties(u"ISAUTOINCREMENT"));
    } catch (const Error&) {
      field.FldAutoIncrement = true;  // as the ADO reader does for a provider that can't tell
    }
  }
  table.TblFldCnt = kept;
}

}  // namespace

int16_t TyxSchema::LoadADOCustomView(StringView conn_str, StringView table_name, StringView sql) {
  TyxVars& vars = Vars();
  vars.ProjErr = String();
  data::Connection cn;
  try {
    cn.Open(conn_str);
    if (cn.State() != data::adStateOpen) return 1;
    db_.tables.Tbl.assign(1, TySchemaTable());
    db_.DBTblCnt = 1;
    TySchemaTable& table = db_.tables.Tbl[0];
    table.TblSeq = 1;
    table.TblGen = true;
    table.TblName = table_name;
    table.TblType = u"CUSTOMVIEW";
    table.TblUpdatable = true;
    if (ContainsNoCase(DbmsNameUpper, u"ORA") && table_name.find(u' ') != StringView::npos) {
      table.TblGen = false;
      vars.ProjErr = vars.ProductTitle + u": Invalid Oracle Custom View Name";
    }
    if (!table.TblGen) return 0;
    data::Recordset rs;
    try {
      rs.Open(sql, cn);
    } catch (const Error& e) {
      table.TblGen = false;
      vars.ProjErr = vars.ProductTitle + u": " + e.description();
      return 0;
    }
    ReadColumnRecords(rs, table);
    rs.Close();
    cn.Close();
    return 0;
  } catch (const Error& failure) {
    vars.ProjErr = AdoConnectionErrorText(cn.GetErrors(), failure, /*numbered=*/false);
    cn.Close();
    return 3;
  }
}

}  // namespace qv
