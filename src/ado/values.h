// ADO's column types on the Variant side: what subtype each type holds, how a value a script
// assigns is converted to it, and the sizes ADO reports for the fixed types.
#pragma once

#include <cstdint>

#include "automation/variant.h"
#include "platform/data/rowset.h"

namespace qv::ado {

bool IsTextType(int32_t type);
bool IsWideTextType(int32_t type);
bool IsBinaryType(int32_t type);
bool IsDateType(int32_t type);

// The DefinedSize of a fixed-size type (4 for adInteger, 8 for adDouble, ...); 0 for the
// variable types.
int32_t FixedSize(int32_t type);

// The value in the subtype a column of `type` holds: Long for adInteger, Currency for
// adCurrency, Date for the date types, Boolean for adBoolean, String for text, a Byte array for
// binaries; an exact number (adNumeric, adDecimal) stays Currency, or becomes it when it is text
// that Currency holds exactly, and is a Double otherwise. Null and Empty pass through. Raises
// VBScript's conversion errors (13, 6) for a value that does not convert.
Variant ConvertToType(const Variant& value, int32_t type);

// As ConvertToType for a column, whose scale decides the subtype of an exact number: Currency
// for at most four decimals (what money columns hold, without a Double's rounding), Double
// for more.
Variant ConvertToColumn(const Variant& value, const data::ColumnInfo& column);

// Byte arrays and text as the bytes they hold (text as UTF-16), for binary columns and streams.
Variant BytesFromText(StringView text);

}  // namespace qv::ado
