// Look-ups on the schema records.
#include "schema/schema_records.h"

#include <algorithm>

namespace qv {

TySchemaField* TySchemaTable::FindField(StringView name) {
  const size_t count =
      std::min<size_t>(static_cast<size_t>(std::max<int16_t>(TblFldCnt, 0)), TblFields.fld.size());
  for (size_t i = 0; i < count; ++i) {
    if (TblFields.fld[i].FldName == name) return &TblFields.fld[i];
  }
  return nullptr;
}

}  // namespace qv
