// The errors ADO raises of its own (3021, 3265, 3704, ...) with the English texts Windows gives
// them, and the turning of a data layer failure into the number a script's Err shows.
#pragma once

#include <cstdint>

#include "automation/error.h"
#include "automation/string.h"

namespace qv::ado {

// ADO's ErrorValueEnum, as VBScript's Err.Number shows them.
enum AdoErrorNumber : int32_t {
  adErrInvalidArgument = 3001,
  adErrNoCurrentRecord = 3021,
  adErrIllegalOperation = 3219,
  adErrFeatureNotAvailable = 3251,
  adErrItemNotFound = 3265,
  adErrObjectInCollection = 3367,
  adErrDataConversion = 3421,
  adErrObjectClosed = 3704,
  adErrObjectOpen = 3705,
  adErrProviderNotFound = 3706,
  adErrInvalidConnection = 3709,
  adErrNotReentrant = 3710,
  adErrUnsafeOperation = 3716,
};

// OLE DB failures that ADO passes through unchanged.
inline constexpr int32_t kErrMultipleStep = static_cast<int32_t>(0x80040E21);
inline constexpr int32_t kErrRowNotFound = static_cast<int32_t>(0x80040E38);
inline constexpr int32_t kErrCannotFetchBackward = static_cast<int32_t>(0x80040E24);

// An ADO error of `number` with its standard text, raised by the object `source`
// ("ADODB.Recordset", ...).
Error AdoError(int32_t number, StringView source);
// The same with words of its own, for the numbers ADO uses with more than one text.
Error AdoError(int32_t number, StringView source, StringView text);

// 3251 as ADO raises it for an operation the cursor cannot do (not for updating).
inline constexpr StringView kNotCapableText =
    u"Object or provider is not capable of performing requested operation.";

// The text Windows gives an ADO error number; empty for numbers it does not know.
String AdoErrorText(int32_t number);

// A failure of the data layer as a script sees it: ADO's own codes (0x800Axxxx) come back
// under their short number, the provider's codes as they are.
Error ScriptError(const Error& failure);

}  // namespace qv::ado
