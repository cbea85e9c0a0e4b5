// The ADO field loader.
#include "schema/field_loader.h"

#include "schema/column_facts.h"

namespace qv {

void LoadFld_ADO(TyxField& field,
                 const data::Field& column) {  // NOLINT(readability-identifier-naming)
  ApplyToField(ReadColumnFacts(column), field);
}

}  // namespace qv
