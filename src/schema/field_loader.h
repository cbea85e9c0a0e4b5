// LoadFld_ADO: one column of a probe turned into a project field with all its defaults. A
// provider that can't tell ISAUTOINCREMENT leaves the field's old flag and no defaults, as the
// loaders have always passed over that failure (see column_facts.h).
#pragma once

#include "model/field.h"
#include "platform/data/recordset.h"

namespace qv {

void LoadFld_ADO(TyxField& field,
                 const data::Field& column);  // NOLINT(readability-identifier-naming)

}  // namespace qv
