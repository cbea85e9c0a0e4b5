// The numeric vocabulary of data access: ADO's column types, FieldAttributeEnum, schema ids and
// error numbers, and DAO's type and attribute codes. The values are the published ones, because
// project files and templates store them as plain numbers.
#pragma once

#include <cstdint>

#include "support/column_types.h"

namespace qv::data {

// ADO DataTypeEnum, shared with the model, which stores these numbers in FldType.
using ::qv::AdoType;
using enum ::qv::AdoType;

// ADO FieldAttributeEnum bits.
enum AdoFieldAttribute : int32_t {
  adFldMayDefer = 0x2,
  adFldUpdatable = 0x4,
  adFldUnknownUpdatable = 0x8,
  adFldFixed = 0x10,
  adFldIsNullable = 0x20,
  adFldMayBeNull = 0x40,
  adFldLong = 0x80,
  adFldRowID = 0x100,
  adFldKeyColumn = 0x8000,
};

// The schema rowsets of OpenSchema.
enum SchemaId : int32_t {
  adSchemaColumns = 4,
  adSchemaIndexes = 12,
  adSchemaTables = 20,
  adSchemaPrimaryKeys = 28,
};

// ObjectStateEnum.
inline constexpr int32_t adStateClosed = 0;
inline constexpr int32_t adStateOpen = 1;

// Error numbers, as ADO and OLE DB report them.
inline constexpr int32_t kErrProviderFailure = static_cast<int32_t>(0x80004005);  // E_FAIL
inline constexpr int32_t kErrLoginFailed = static_cast<int32_t>(0x80040E4D);
inline constexpr int32_t kErrSyntax = static_cast<int32_t>(0x80040E14);
inline constexpr int32_t kErrNoSuchTable = static_cast<int32_t>(0x80040E37);
inline constexpr int32_t kErrIntegrityViolation = static_cast<int32_t>(0x80040E2F);
inline constexpr int32_t kErrTimeout = static_cast<int32_t>(0x80040E31);
inline constexpr int32_t kErrProviderNotFound = static_cast<int32_t>(0x800A0E7A);  // 3706
inline constexpr int32_t kErrItemNotFound = static_cast<int32_t>(0x800A0CC1);      // 3265
inline constexpr int32_t kErrObjectClosed = static_cast<int32_t>(0x800A0E78);      // 3704
inline constexpr int32_t kErrBofOrEof = static_cast<int32_t>(0x800A0BCD);          // 3021
inline constexpr int32_t kErrNotSupported = static_cast<int32_t>(0x800A0CB3);      // 3251
inline constexpr int32_t kErrDataConversion = static_cast<int32_t>(0x800A0D5D);    // 3421

// DAO DataTypeEnum.
enum DaoType : int32_t {
  dbBoolean = 1,
  dbByte = 2,
  dbInteger = 3,
  dbLong = 4,
  dbCurrency = 5,
  dbSingle = 6,
  dbDouble = 7,
  dbDate = 8,
  dbBinary = 9,
  dbText = 10,
  dbLongBinary = 11,
  dbMemo = 12,
  dbGUID = 15,
  dbBigInt = 16,
  dbVarBinary = 17,
  dbChar = 18,
  dbNumeric = 19,
  dbDecimal = 20,
  dbFloat = 21,
  dbTime = 22,
  dbTimeStamp = 23,
};

// DAO FieldAttributeEnum and TableDefAttributeEnum bits.
enum DaoAttribute : int32_t {
  dbFixedField = 0x1,
  dbVariableField = 0x2,
  dbAutoIncrField = 0x10,
  dbUpdatableField = 0x20,
  dbDescending = 0x1,
  dbHiddenObject = 0x1,
  dbSystemObject = static_cast<int32_t>(0x80000002),
  dbAttachedTable = 0x40000000,
};

// DAO QueryDefTypeEnum.
enum DaoQueryType : int32_t {
  dbQSelect = 0,
  dbQCrosstab = 16,
  dbQDelete = 32,
  dbQUpdate = 48,
  dbQAppend = 64,
  dbQMakeTable = 80,
  dbQDDL = 96,
  dbQSQLPassThrough = 112,
  dbQSetOperation = 128,
  dbQAction = 240,
};

// The largest DefinedSize ADO reports, used for long texts and binaries.
inline constexpr int32_t kLongFieldSize = 1073741823;

}  // namespace qv::data
