// TyxSchema.LoadADOCustomView: the columns of a custom view as one record, which the custom
// view comparison of synchronisation reads. No origin is worked out: the records have no
// place for one.
#include "automation/convert.h"
#include "platform/data/connection.h"
#include "platform/data/data_types.h"
#include "platform/data/recordset.h"
#include "schema/column_facts.h"
#include "schema/connection_error.h"
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

}  // namespace

int16_t TyxSchema::LoadADOCustomView(StringView conn_str, StringView table_name, StringView sql) {
  TyxVars& vars = Vars();
  vars.ProjErr = String();
  data::Connection cn;
  return UnderConnectionHandler(
      cn,
      [&]() -> int16_t {
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
        ApplyToRecord(ReadColumnFacts(rs), table);
        rs.Close();
        return 0;
      },
      /*numbered=*/false);
}

}  // namespace qv
