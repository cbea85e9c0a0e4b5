// Mapping the types that backends report to ADO DataTypeEnum codes, and turning raw values
// into Variants of the matching kind (dates as OLE dates, money as Currency, blobs as Byte
// arrays).
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "automation/string.h"
#include "automation/variant.h"

namespace qv::data {

struct MappedType {
  int32_t type;
  int32_t defined_size;
};

// A SQLite declared type, by these rules, first match wins (case ignored):
//   empty                                   -> adVarWChar      (no declared type: any value)
//   contains BOOL / BIT                      -> adBoolean
//   contains BIGINT or INT8                  -> adBigInt
//   contains TINYINT                         -> adUnsignedTinyInt
//   contains SMALLINT or INT2                -> adSmallInt
//   contains INT                             -> adInteger
//   contains DATETIME or TIMESTAMP           -> adDBTimeStamp
//   contains DATE                            -> adDBDate
//   contains TIME                            -> adDBTime
//   contains MONEY or CURRENCY               -> adCurrency
//   contains GUID / UUID / UNIQUEIDENTIFIER  -> adGUID
//   contains CLOB, TEXT, MEMO                -> adLongVarWChar  (size kLongFieldSize)
//   contains CHAR: NCHAR(n)/CHAR(n) fixed    -> adWChar (n), else adVarWChar (n, or 255)
//   contains BLOB, BINARY, IMAGE             -> adLongVarBinary (size kLongFieldSize)
//   contains REAL, FLOA, DOUB                -> adDouble
//   contains SINGLE                          -> adSingle
//   anything else (DECIMAL, NUMERIC, ...)    -> adNumeric
MappedType MapSqliteDeclaredType(StringView declared);

// An ODBC SQL type code (SQL_INTEGER, SQL_WVARCHAR, ...), with the column size the driver
// reports, to the ADO code the OLE DB provider for ODBC gives it:
//   SQL_CHAR adChar, SQL_VARCHAR adVarChar, SQL_LONGVARCHAR adLongVarChar,
//   SQL_WCHAR adWChar, SQL_WVARCHAR adVarWChar, SQL_WLONGVARCHAR adLongVarWChar,
//   SQL_DECIMAL/SQL_NUMERIC adNumeric, SQL_SMALLINT adSmallInt, SQL_INTEGER adInteger,
//   SQL_REAL adSingle, SQL_FLOAT/SQL_DOUBLE adDouble, SQL_BIT adBoolean,
//   SQL_TINYINT adUnsignedTinyInt, SQL_BIGINT adBigInt, SQL_BINARY adBinary,
//   SQL_VARBINARY adVarBinary, SQL_LONGVARBINARY adLongVarBinary, SQL_TYPE_DATE adDBDate,
//   SQL_TYPE_TIME adDBTime, SQL_TYPE_TIMESTAMP adDBTimeStamp, SQL_GUID adGUID;
//   unknown codes become adVarWChar. A variable text wider than 8000 characters, or of
//   unbounded size, is reported as its long form, as ADO does.
MappedType MapOdbcType(int16_t sql_type, int64_t column_size);

// "YYYY-MM-DD", "YYYY-MM-DD HH:MM[:SS[.fff]]", "YYYY-MM-DDTHH:MM:SS" or "HH:MM[:SS]" to an
// OLE date; nothing for any other text.
std::optional<double> ParseIsoDateTime(StringView text);

// Decimal text ("12.3456", "-7") to Currency (ten-thousandths, rounded half even);
// nothing when it does not fit.
std::optional<Variant> CurrencyFromText(StringView text);

// A Byte array (VarType 8209) from 0 holding the bytes.
Variant ByteArray(std::span<const uint8_t> bytes);

// A date as "YYYY-MM-DD HH:MM:SS", or "YYYY-MM-DD" at midnight: the form every backend reads
// back as a date. Nothing outside the range of dates.
std::optional<String> IsoDateTimeText(double date);

// The bytes of a Byte array (or of an array of numbers 0..255); nothing for any other value.
std::optional<std::vector<uint8_t>> BytesOf(const Variant& value);

// A 64-bit integer as Long when it fits, else as Double (VBScript has no 64-bit type).
Variant IntegerValue(int64_t value);

}  // namespace qv::data
