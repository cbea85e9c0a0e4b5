// Type tables of the backends and the conversions of raw values into Variants.
#include "platform/data/type_mapping.h"

#include <sql.h>
#include <sqlext.h>

#include <cmath>
#include <cstdio>
#include <string>

#include "automation/date_time.h"
#include "automation/safe_array.h"
#include "platform/data/data_types.h"

namespace qv::data {
namespace {

bool Contains(const String& upper, StringView part) {
  return upper.view().find(part) != StringView::npos;
}

// The first number between parentheses: the n of CHAR(n).
std::optional<int32_t> LengthInParentheses(StringView text) {
  const size_t open = text.find(u'(');
  if (open == StringView::npos) return std::nullopt;
  int64_t value = 0;
  bool digits = false;
  for (size_t i = open + 1; i < text.size() && text[i] >= u'0' && text[i] <= u'9'; ++i) {
    value = value * 10 + (text[i] - u'0');
    digits = true;
    if (value > kLongFieldSize) return kLongFieldSize;
  }
  if (!digits) return std::nullopt;
  return static_cast<int32_t>(value);
}

// Reads a fixed count of digits at `pos`; -1 when they aren't all there.
int Digits(StringView text, size_t pos, size_t count) {
  if (pos + count > text.size()) return -1;
  int value = 0;
  for (size_t i = pos; i < pos + count; ++i) {
    if (text[i] < u'0' || text[i] > u'9') return -1;
    value = value * 10 + (text[i] - u'0');
  }
  return value;
}

// "HH:MM[:SS[.fff]]" from `pos` to the end of the text.
std::optional<double> ParseTimePart(StringView text, size_t pos) {
  const int hour = Digits(text, pos, 2);
  const int minute = Digits(text, pos + 3, 2);
  if (hour < 0 || minute < 0 || text[pos + 2] != u':' || hour > 23 || minute > 59) {
    return std::nullopt;
  }
  int second = 0;
  size_t end = pos + 5;
  if (end < text.size() && text[end] == u':') {
    second = Digits(text, end + 1, 2);
    if (second < 0 || second > 59) return std::nullopt;
    end += 3;
  }
  if (end < text.size() && text[end] == u'.') {
    ++end;
    while (end < text.size() && text[end] >= u'0' && text[end] <= u'9')
      ++end;
  }
  // A trailing zone ("+00") carries nothing a Date can hold.
  if (end < text.size() && text[end] != u'+' && text[end] != u'-' && text[end] != u'Z') {
    return std::nullopt;
  }
  return TimeFromParts(hour, minute, second);
}

}  // namespace

MappedType MapSqliteDeclaredType(StringView declared) {
  const String upper = ToUpper(declared);
  if (upper.empty()) return {adVarWChar, 0};
  if (Contains(upper, u"BOOL") || upper == u"BIT") return {adBoolean, 2};
  if (Contains(upper, u"BIGINT") || Contains(upper, u"INT8")) return {adBigInt, 8};
  if (Contains(upper, u"TINYINT")) return {adUnsignedTinyInt, 1};
  if (Contains(upper, u"SMALLINT") || Contains(upper, u"INT2")) return {adSmallInt, 2};
  if (Contains(upper, u"INT")) return {adInteger, 4};
  if (Contains(upper, u"DATETIME") || Contains(upper, u"TIMESTAMP")) return {adDBTimeStamp, 16};
  if (Contains(upper, u"DATE")) return {adDBDate, 6};
  if (Contains(upper, u"TIME")) return {adDBTime, 6};
  if (Contains(upper, u"MONEY") || Contains(upper, u"CURRENCY")) return {adCurrency, 8};
  if (Contains(upper, u"GUID") || Contains(upper, u"UUID") ||
      Contains(upper, u"UNIQUEIDENTIFIER")) {
    return {adGUID, 16};
  }
  if (Contains(upper, u"CLOB") || Contains(upper, u"TEXT") || Contains(upper, u"MEMO")) {
    return {adLongVarWChar, kLongFieldSize};
  }
  if (Contains(upper, u"CHAR")) {
    const auto length = LengthInParentheses(upper);
    const bool varying = Contains(upper, u"VAR") || Contains(upper, u"VARYING");
    if (!varying && length) return {adWChar, *length};
    return {adVarWChar, length.value_or(255)};
  }
  if (Contains(upper, u"BLOB") || Contains(upper, u"BINARY") || Contains(upper, u"IMAGE")) {
    return {adLongVarBinary, kLongFieldSize};
  }
  if (Contains(upper, u"REAL") || Contains(upper, u"FLOA") || Contains(upper, u"DOUB")) {
    return {adDouble, 8};
  }
  if (Contains(upper, u"SINGLE")) return {adSingle, 4};
  return {adNumeric, 19};
}

MappedType MapOdbcType(int16_t sql_type, int64_t column_size) {
  const int32_t size = column_size <= 0 || column_size > kLongFieldSize
                           ? kLongFieldSize
                           : static_cast<int32_t>(column_size);
  const bool long_text = column_size <= 0 || column_size > 8000;
  switch (sql_type) {
    case SQL_CHAR:
      return {adChar, size};
    case SQL_VARCHAR:
      return {long_text ? adLongVarChar : adVarChar, size};
    case SQL_LONGVARCHAR:
      return {adLongVarChar, size};
    case SQL_WCHAR:
      return {adWChar, size};
    case SQL_WVARCHAR:
      return {long_text ? adLongVarWChar : adVarWChar, size};
    case SQL_WLONGVARCHAR:
      return {adLongVarWChar, size};
    case SQL_DECIMAL:
    case SQL_NUMERIC:
      return {adNumeric, 19};
    case SQL_SMALLINT:
      return {adSmallInt, 2};
    case SQL_INTEGER:
      return {adInteger, 4};
    case SQL_REAL:
      return {adSingle, 4};
    case SQL_FLOAT:
    case SQL_DOUBLE:
      return {adDouble, 8};
    case SQL_BIT:
      return {adBoolean, 2};
    case SQL_TINYINT:
      return {adUnsignedTinyInt, 1};
    case SQL_BIGINT:
      return {adBigInt, 8};
    case SQL_BINARY:
      return {adBinary, size};
    case SQL_VARBINARY:
      return {long_text ? adLongVarBinary : adVarBinary, size};
    case SQL_LONGVARBINARY:
      return {adLongVarBinary, size};
    case SQL_TYPE_DATE:
    case SQL_DATE:
      return {adDBDate, 6};
    case SQL_TYPE_TIME:
    case SQL_TIME:
      return {adDBTime, 6};
    case SQL_TYPE_TIMESTAMP:
    case SQL_TIMESTAMP:
      return {adDBTimeStamp, 16};
    case SQL_GUID:
      return {adGUID, 16};
    default:
      return {adVarWChar, size};
  }
}

std::optional<double> ParseIsoDateTime(StringView text) {
  if (text.size() >= 5 && text[2] == u':') return ParseTimePart(text, 0);
  const int year = Digits(text, 0, 4);
  const int month = Digits(text, 5, 2);
  const int day = Digits(text, 8, 2);
  if (year < 100 || month < 1 || month > 12 || day < 1 || day > 31 || text[4] != u'-' ||
      text[7] != u'-') {
    return std::nullopt;
  }
  const auto date = DateFromParts(year, month, day);
  if (!date) return std::nullopt;
  if (text.size() == 10) return *date;
  if (text[10] != u' ' && text[10] != u'T') return std::nullopt;
  const auto time = ParseTimePart(text, 11);
  if (!time) return std::nullopt;
  return CombineDateTime(*date, *time);
}

std::optional<Variant> CurrencyFromText(StringView text) {
  const std::string narrow = String::ToUtf8(text);
  char* end = nullptr;
  const long double value = std::strtold(narrow.c_str(), &end);
  if (end == narrow.c_str() || *end != '\0') return std::nullopt;
  const long double scaled = std::nearbyint(value * 10000.0L);
  if (std::fabs(scaled) > 9.2e18L) return std::nullopt;
  return Variant::Currency(static_cast<int64_t>(scaled));
}

Variant ByteArray(std::span<const uint8_t> bytes) {
  std::vector<Variant> values;
  values.reserve(bytes.size());
  for (const uint8_t byte : bytes)
    values.emplace_back(byte);
  return Variant(SafeArray::FromValues(std::move(values), VarType::Byte));
}

std::optional<String> IsoDateTimeText(double date) {
  const auto parts = SplitDate(date);
  if (!parts) return std::nullopt;
  char text[32];
  if (parts->hour == 0 && parts->minute == 0 && parts->second == 0) {
    std::snprintf(text, sizeof text, "%04d-%02d-%02d", parts->year, parts->month, parts->day);
  } else {
    std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d", parts->year, parts->month,
                  parts->day, parts->hour, parts->minute, parts->second);
  }
  return String::FromUtf8(text);
}

std::optional<std::vector<uint8_t>> BytesOf(const Variant& value) {
  if (!value.is_array()) return std::nullopt;
  const SafeArray& array = *value.as_array();
  if (array.dimensions() != 1) return std::nullopt;
  std::vector<uint8_t> bytes;
  bytes.reserve(array.size());
  for (const Variant& element : array.elements()) {
    if (element.type() == VarType::Byte) {
      bytes.push_back(element.as_byte());
      continue;
    }
    if (!element.is_numeric_type()) return std::nullopt;
    const double number = element.type() == VarType::Integer ? element.as_integer()
                          : element.type() == VarType::Long  ? element.as_long()
                                                             : -1;
    if (number < 0 || number > 255) return std::nullopt;
    bytes.push_back(static_cast<uint8_t>(number));
  }
  return bytes;
}

Variant IntegerValue(int64_t value) {
  if (value >= INT32_MIN && value <= INT32_MAX) return Variant(static_cast<int32_t>(value));
  return Variant(static_cast<double>(value));
}

}  // namespace qv::data
