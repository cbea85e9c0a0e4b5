// Column types as ADO numbers them (DataTypeEnum). Data access reports them, the model keeps
// them in FldType and derives a field's defaults from them, and project files and templates
// store them as plain numbers, so the values are the published ones.
#pragma once

#include <cstdint>

namespace qv {

enum AdoType : int32_t {
  adEmpty = 0,
  adSmallInt = 2,
  adInteger = 3,
  adSingle = 4,
  adDouble = 5,
  adCurrency = 6,
  adDate = 7,
  adBSTR = 8,
  adBoolean = 11,
  adVariant = 12,
  adDecimal = 14,
  adTinyInt = 16,
  adUnsignedTinyInt = 17,
  adUnsignedSmallInt = 18,
  adUnsignedInt = 19,
  adBigInt = 20,
  adUnsignedBigInt = 21,
  adGUID = 72,
  adBinary = 128,
  adChar = 129,
  adWChar = 130,
  adNumeric = 131,
  adDBDate = 133,
  adDBTime = 134,
  adDBTimeStamp = 135,
  adVarNumeric = 139,
  adVarChar = 200,
  adLongVarChar = 201,
  adVarWChar = 202,
  adLongVarWChar = 203,
  adVarBinary = 204,
  adLongVarBinary = 205,
};

}  // namespace qv
