// Conversions between script values and ADO column types.
#include "ado/values.h"

#include <cmath>
#include <optional>

#include "automation/convert.h"
#include "automation/error.h"
#include "automation/safe_array.h"
#include "platform/data/data_types.h"
#include "platform/data/type_mapping.h"

namespace qv::ado {

using namespace qv::data;

bool IsTextType(int32_t type) {
  return type == adBSTR || type == adChar || type == adVarChar || type == adLongVarChar ||
         IsWideTextType(type);
}

bool IsWideTextType(int32_t type) {
  return type == adWChar || type == adVarWChar || type == adLongVarWChar;
}

bool IsBinaryType(int32_t type) {
  return type == adBinary || type == adVarBinary || type == adLongVarBinary;
}

bool IsDateType(int32_t type) {
  return type == adDate || type == adDBDate || type == adDBTime || type == adDBTimeStamp;
}

int32_t FixedSize(int32_t type) {
  switch (type) {
    case adTinyInt:
    case adUnsignedTinyInt:
      return 1;
    case adSmallInt:
    case adUnsignedSmallInt:
    case adBoolean:
      return 2;
    case adInteger:
    case adUnsignedInt:
    case adSingle:
      return 4;
    case adBigInt:
    case adUnsignedBigInt:
    case adDouble:
    case adCurrency:
    case adDate:
      return 8;
    case adDBDate:
      return 6;
    case adDBTime:
      return 6;
    case adDBTimeStamp:
      return 16;
    case adDecimal:
    case adNumeric:
    case adVariant:
    case adGUID:
      return 16;
    default:
      return 0;
  }
}

Variant BytesFromText(StringView text) {
  std::vector<uint8_t> bytes;
  bytes.reserve(text.size() * 2);
  for (const Char c : text) {
    bytes.push_back(static_cast<uint8_t>(c & 0xFF));
    bytes.push_back(static_cast<uint8_t>(c >> 8));
  }
  return ByteArray(bytes);
}

namespace {

// Text that Currency holds exactly: digits with at most four decimals, within its range.
std::optional<Variant> ExactCurrencyText(StringView text) {
  const StringView t = TrimBlanks(text);
  size_t i = !t.empty() && (t[0] == u'-' || t[0] == u'+') ? 1 : 0;
  size_t digits = 0, decimals = 0;
  bool point = false;
  for (; i < t.size(); ++i) {
    if (t[i] == u'.' && !point) {
      point = true;
    } else if (t[i] >= u'0' && t[i] <= u'9') {
      ++(point ? decimals : digits);
    } else {
      return std::nullopt;
    }
  }
  if (digits + decimals == 0 || decimals > 4 || digits > 15) return std::nullopt;
  return CurrencyFromText(t);
}

// An exact number as the exact subtype when that loses nothing, else as Double.
Variant ExactNumber(const Variant& value) {
  if (value.type() == VarType::Currency) return value;
  if (value.is_string()) {
    if (auto money = ExactCurrencyText(value.as_string())) return *money;
  }
  return Variant(ToDouble(value));
}

}  // namespace

Variant ConvertToColumn(const Variant& given, const data::ColumnInfo& column) {
  const bool exact = column.type == adNumeric || column.type == adDecimal;
  if (!exact || column.numeric_scale > 4) return ConvertToType(given, column.type);
  const Variant value = given.is_object() ? ValueOf(given) : given;
  if (value.is_null() || value.is_empty()) return value;
  try {
    return Variant::Currency(ToCurrency(value));
  } catch (const Error&) {
    return ConvertToType(value, column.type);  // beyond Currency's range
  }
}

Variant ConvertToType(const Variant& given, int32_t type) {
  const Variant value = given.is_object() ? ValueOf(given) : given;
  if (value.is_null() || value.is_empty()) return value;
  switch (type) {
    case adBoolean:
      return Variant(ToBool(value));
    case adTinyInt:
    case adSmallInt:
      return Variant(ToInteger(value));
    case adUnsignedTinyInt:
      return Variant(ToByte(value));
    case adInteger:
    case adUnsignedSmallInt:
      return Variant(ToLong(value));
    case adUnsignedInt:
    case adBigInt:
    case adUnsignedBigInt: {
      const double number = RoundHalfEven(ToDouble(value));
      if (std::fabs(number) > 9.2e18) throw Error(kErrOverflow);
      return IntegerValue(static_cast<int64_t>(number));
    }
    case adSingle:
      return Variant(ToSingle(value));
    case adDouble:
      return Variant(ToDouble(value));
    case adDecimal:
    case adNumeric:
    case adVarNumeric:
      return ExactNumber(value);
    case adCurrency:
      return Variant::Currency(ToCurrency(value));
    case adDate:
    case adDBDate:
    case adDBTime:
    case adDBTimeStamp:
      return Variant::Date(ToDate(value));
    case adBinary:
    case adVarBinary:
    case adLongVarBinary:
      if (BytesOf(value)) return value;
      if (value.is_string()) return BytesFromText(value.as_string());
      throw Error(kErrTypeMismatch);
    case adVariant:
    case adEmpty:
      return value;
    default:
      if (IsTextType(type) || type == adGUID) return Variant(ToString(value));
      return value;
  }
}

}  // namespace qv::ado
