// The ADO field loader.
#include "schema/field_loader.h"

#include "automation/convert.h"

namespace qv {

void LoadFld_ADO(TyxField& field,
                 const data::Field& column) {  // NOLINT(readability-identifier-naming)
  field.SetFldName(column.Name());
  field.SetFieldSupport(static_cast<int16_t>(column.Type()));
  field.SetFldSize(column.DefinedSize());
  field.SetFldZeroLen(true);
  field.SetFldReq(false);
  field.SetFldUniqueIdx(false);
  field.SetFldAttribute(column.Attributes());
  field.SetFldAutoIncrement(ToBool(column.Properties(u"ISAUTOINCREMENT")));
  field.LoadFldDefault();
}

}  // namespace qv
