// The type vocabulary of the records: an ADO DataTypeEnum code gives FldType, whether code can
// be generated for the column (FldSupport) and the quotes of its literals. DAO codes are
// translated into the same vocabulary first. The project's fields have their own twins
// (TyxField::SetFieldSupport); the records never quote an ADO date with "#".
#pragma once

#include <cstdint>

#include "schema/schema_records.h"

namespace qv {

void SetSchemaFieldTypeAdo(TySchemaField& field, int32_t ado_type);
void SetSchemaFieldTypeDao(TySchemaField& field, int32_t dao_type);

}  // namespace qv
