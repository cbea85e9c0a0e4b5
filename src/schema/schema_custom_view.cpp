// TyxSchema.LoadADOCustomView: the columns of a custom view as one record, which the custom
// view comparison of synchronisation reads, from the same run of its SQL as a loaded custom
// view (custom_view.h). No origin is worked out here: the records have no place for one, and
// synchronisation traces the columns on the project's view afterwards.
#include "automation/convert.h"
#include "platform/data/connection.h"
#include "platform/data/data_types.h"
#include "schema/column_facts.h"
#include "schema/connection_error.h"
#include "schema/custom_view.h"
#include "schema/tyx_schema.h"
#include "support/tyx_vars.h"

namespace qv {

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
        if (CustomViewNameRefused(table_name)) {
          table.TblGen = false;
          vars.ProjErr = vars.ProductTitle + u": Invalid Oracle Custom View Name";
          return 0;
        }
        const CustomViewRun run = RunCustomViewSql(cn, sql);
        if (!run.ran) {
          table.TblGen = false;
          vars.ProjErr = vars.ProductTitle + u": " + run.error;
          return 0;
        }
        table.columns_read = true;
        ApplyToRecord(run.columns, table);
        return 0;
      },
      /*numbered=*/false);
}

}  // namespace qv
