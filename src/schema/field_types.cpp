// The ADO and DAO type tables of the records.
#include "schema/field_types.h"

#include <optional>

#include "platform/data/data_types.h"

namespace qv {

namespace {

using namespace data;  // NOLINT(google-build-using-namespace): the type codes read as in ADO

// The quote of a literal of a supported ADO type: "" for numbers and Booleans, "'" for
// everything else that is supported; nothing for an unsupported type.
std::optional<StringView> AdoQuote(int32_t type) {
  switch (type) {
    case adBigInt:
    case adBoolean:
    case adCurrency:
    case adDecimal:
    case adDouble:
    case adInteger:
    case adNumeric:
    case adSingle:
    case adSmallInt:
    case adTinyInt:
    case adUnsignedBigInt:
    case adUnsignedInt:
    case adUnsignedSmallInt:
    case adUnsignedTinyInt:
    case adVarNumeric:
      return u"";
    case adBSTR:
    case adChar:
    case adDate:
    case adDBDate:
    case adDBTime:
    case adDBTimeStamp:
    case adLongVarChar:
    case adLongVarWChar:
    case adVarChar:
    case adVarWChar:
    case adWChar:
    case adGUID:
    case adLongVarBinary:
      return u"'";
    default:
      return std::nullopt;
  }
}

struct DaoMapping {
  int16_t ado_type;
  bool support;
  StringView quote;  // unused when not supported
};

std::optional<DaoMapping> MapDao(int32_t type) {
  switch (type) {
    case dbBoolean:
      return DaoMapping{adBoolean, true, u""};
    case dbByte:
      return DaoMapping{adUnsignedTinyInt, true, u""};
    case dbInteger:
      return DaoMapping{adSmallInt, true, u""};
    case dbLong:
      return DaoMapping{adInteger, true, u""};
    case dbCurrency:
      return DaoMapping{adCurrency, true, u""};
    case dbSingle:
      return DaoMapping{adSingle, true, u""};
    case dbDouble:
      return DaoMapping{adDouble, true, u""};
    case dbDate:
      return DaoMapping{adDBTimeStamp, true, u"#"};
    case dbBinary:
      return DaoMapping{adBinary, false, u""};
    case dbText:
      return DaoMapping{adVarWChar, true, u"'"};
    // A long binary through DAO carries no quotes, unlike the same column through ADO.
    case dbLongBinary:
      return DaoMapping{adLongVarBinary, true, u""};
    case dbMemo:
      return DaoMapping{adLongVarWChar, true, u"'"};
    case dbGUID:
      return DaoMapping{adGUID, true, u"'"};
    case dbBigInt:
      return DaoMapping{adBigInt, true, u""};
    case dbChar:
      return DaoMapping{adChar, true, u"'"};
    case dbNumeric:
      return DaoMapping{adNumeric, true, u""};
    case dbDecimal:
      return DaoMapping{adNumeric, true, u""};
    case dbFloat:
      return DaoMapping{adDouble, true, u""};
    case dbTime:
      return DaoMapping{adDBTimeStamp, true, u"#"};
    case dbTimeStamp:
      return DaoMapping{adDBTimeStamp, true, u"#"};
    default:
      return std::nullopt;
  }
}

}  // namespace

void SetSchemaFieldTypeAdo(TySchemaField& field, int32_t ado_type) {
  field.FldType = static_cast<int16_t>(ado_type);
  const std::optional<StringView> quote = AdoQuote(ado_type);
  field.FldSupport = quote.has_value();
  if (!quote) return;  // the quotes keep what they held
  field.FldQuoteS = *quote;
  field.FldQuoteE = *quote;
}

void SetSchemaFieldTypeDao(TySchemaField& field, int32_t dao_type) {
  const std::optional<DaoMapping> mapping = MapDao(dao_type);
  if (!mapping) {
    field.FldType = -1;
    field.FldSupport = false;
    return;
  }
  field.FldType = mapping->ado_type;
  field.FldSupport = mapping->support;
  if (!mapping->support) return;
  field.FldQuoteS = mapping->quote;
  field.FldQuoteE = mapping->quote;
}

}  // namespace qv
