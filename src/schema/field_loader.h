// LoadFld_ADO: one column of a probe turned into a project field with all its defaults. It has
// no error handling of its own: a failure (a provider that can't tell ISAUTOINCREMENT) goes
// back to the table loader, which passes over it, and the field then lacks its defaults.
#pragma once

#include "model/field.h"
#include "platform/data/recordset.h"

namespace qv {

void LoadFld_ADO(TyxField& field,
                 const data::Field& column);  // NOLINT(readability-identifier-naming)

}  // namespace qv
