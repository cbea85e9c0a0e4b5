// The engine's opinion of how a database column should look in a generated application:
// LoadFldDefault and the type mappings that decide whether code can be generated for a
// column at all and how its literals are quoted.
#include "model/field.h"

#include "support/common.h"
#include "support/tyx_functions.h"
#include "support/tyx_vars.h"

namespace qv {

namespace {

bool IsOneOf(int16_t type, std::initializer_list<int16_t> list) {
  for (int16_t t : list) {
    if (t == type) return true;
  }
  return false;
}

bool IsAccess() {
  return DatabaseKind(Vars().CurrentDbmsName) == kDbAccess;
}

bool IsDateType(int16_t type) {
  return IsOneOf(type, {adDate, adDBDate, adDBTimeStamp});
}

}  // namespace

void TyxField::LoadFldDefault() {
  SetFldBold(false);
  SetFldItalic(false);
  SetFldGroupByShowSummary(false);
  SetFldRequired(false);
  SetFldPopCalendar(false);
  SetFldHtmlTagReadOnly(false);
  SetFldColumnWrap(true);
  SetFldAlign(u"");
  SetFldSrchOpr2(u"");
  SetFldOrder(u"");
  SetFldNumDigits(0);
  SetFldMemoMaxLength(0);
  SetFldOrderBy(0);
  SetFldGroupBy(0);
  SetFldPageIndex(1);
  SetFldFmtType(u"None");
  SetFldIncLeadDigit(-2);
  SetFldUseParen(-2);
  SetFldGpDigits(-2);
  SetFldSelectType(u"Values");
  SetFldViewTag(u"FORMATTED TEXT");
  SetFldTagAPrefix(u"None");

  const bool support = FldSupport();
  const int16_t type = FldType();
  SetFldGenerate(support);
  SetFldVar(ToVarName(FldName(), u"x_"));
  SetFldList(support && !IsOneOf(type, {adLongVarWChar, adLongVarChar, adLongVarBinary}));
  SetFldEdit(support);
  SetFldAdd(FldAutoIncrement() ? false : support);
  SetFldView(support);
  SetFieldTagDefaults();
  SetFieldValidateDefaults();
  SetFieldSearchOperator();
  SetFldSearch(type != adLongVarBinary && support);
  SetFieldBasicSearch();
  if (FldCaption().empty()) SetFldCaption(ToCaption(FldName()));
  SetFldRepeatColumns(Vars().RepeatColumns);
}

void TyxField::SetFieldTagDefaults() {
  if (FldAutoIncrement()) {
    SetFldHtmlTag(u"NO");
    return;
  }
  const int16_t type = FldType();
  if (type == adBoolean) {
    SetFldHtmlTag(u"RADIO");
    SetFldTagValues(IsAccess() ? u"\"Yes\",\"Yes\"\r\n\"No\",\"No\""
                               : u"\"1\",\"Yes\"\r\n\"0\",\"No\"");
  } else if (IsOneOf(type, {adLongVarChar, adLongVarWChar})) {
    SetFldHtmlTag(u"TEXTAREA");
    SetFldTagCols(35);
    SetFldTagRows(4);
  } else if (IsOneOf(type, {adVarChar, adVarWChar})) {
    SetFldHtmlTag(u"TEXT");
    SetFldTagSize(30);
    SetFldTagMaxLength(FldSize());
  } else if (IsDateType(type)) {
    SetFldHtmlTag(u"TEXT");
    const int16_t format = Vars().DefaultDateFormat;
    if (format >= 5 && format <= 7) {
      SetFldFmtType(u"Date/Time");
      SetFldDtFormat(format);
    }
  } else if (type == adGUID) {
    SetFldHtmlTag(u"TEXT");
    SetFldTagSize(38);
    SetFldTagMaxLength(38);
  } else if (type == adLongVarBinary) {
    SetFldHtmlTag(u"FILE");
    SetFldTagSize(30);
    SetFldHrefFld(FldName());
  } else {
    SetFldHtmlTag(u"TEXT");
    SetFldTagSize(30);
  }
}

void TyxField::SetFieldValidateDefaults() {
  if (FldReq()) SetFldRequired(true);
  const int16_t type = FldType();
  if (IsOneOf(type, {adBigInt, adInteger, adSmallInt, adTinyInt, adUnsignedBigInt, adUnsignedInt,
                     adUnsignedSmallInt, adUnsignedTinyInt})) {
    SetFldValidate(u"INTEGER");
  } else if (IsOneOf(type, {adCurrency, adDecimal, adDouble, adNumeric, adSingle})) {
    SetFldValidate(u"FLOAT");
  } else if (IsDateType(type)) {
    switch (Vars().DefaultDateFormat) {
      case 5:
        SetFldValidate(u"DATE");
        break;
      case 6:
        SetFldValidate(u"USDATE");
        break;
      case 7:
        SetFldValidate(u"EURODATE");
        break;
      default:
        break;
    }
  } else if (type == adDBTime) {
    SetFldValidate(u"TIME");
  } else if (type == adGUID) {
    SetFldValidate(u"GUID");
  }
}

void TyxField::SetFieldSearchOperator() {
  const int16_t type = FldType();
  if (IsOneOf(type, {adBigInt, adCurrency, adDecimal, adDouble, adInteger, adNumeric, adSingle,
                     adSmallInt, adTinyInt, adUnsignedBigInt, adUnsignedInt, adUnsignedSmallInt,
                     adUnsignedTinyInt, adVarNumeric, adBoolean, adDate, adDBDate, adDBTime,
                     adDBTimeStamp})) {
    SetFldSrchOpr(u"=");
  } else if (IsOneOf(type, {adBSTR, adChar, adLongVarChar, adLongVarWChar, adVarChar, adVarWChar,
                            adWChar})) {
    SetFldSrchOpr(u"LIKE");
  }
}

void TyxField::SetFieldBasicSearch() {
  const int16_t type = FldType();
  const bool text =
      IsOneOf(type, {adLongVarChar, adLongVarWChar, adVarChar, adVarWChar, adChar, adWChar});
  if (text && FldSupport()) {
    const String tag = FldHtmlTag();
    const bool choice = tag == u"SELECT" || tag == u"RADIO" || tag == u"CHECKBOX";
    SetFldBasicSearch(!choice);
    SetFldExtendedBasicSearch(choice);
    return;
  }
  SetFldBasicSearch(false);
  SetFldExtendedBasicSearch(false);
}

void TyxField::SetFieldSupport(int16_t ado_type) {
  SetFldType(ado_type);
  if (IsOneOf(ado_type, {adBigInt, adBoolean, adCurrency, adDecimal, adDouble, adInteger, adNumeric,
                         adSingle, adSmallInt, adTinyInt, adUnsignedBigInt, adUnsignedInt,
                         adUnsignedSmallInt, adUnsignedTinyInt, adVarNumeric})) {
    SetFldSupport(true);
    SetFldQuoteS(u"");
    SetFldQuoteE(u"");
    return;
  }
  if (IsOneOf(ado_type,
              {adBSTR, adChar, adDate, adDBDate, adDBTime, adDBTimeStamp, adLongVarChar,
               adLongVarWChar, adVarChar, adVarWChar, adWChar, adGUID, adLongVarBinary})) {
    SetFldSupport(true);
    const bool hash = IsAccess() && IsOneOf(ado_type, {adDate, adDBDate, adDBTime, adDBTimeStamp});
    SetFldQuoteS(hash ? u"#" : u"'");
    SetFldQuoteE(hash ? u"#" : u"'");
    return;
  }
  SetFldSupport(false);
}

void TyxField::SetFieldSupportDao(int16_t dao_type) {
  struct DaoMapping {
    int16_t dao;
    int16_t ado;
    bool support;
    const char16_t* quote;  // nullptr: the quotes stay as they were
  };
  static constexpr DaoMapping kMappings[] = {
      {1, adBoolean, true, u""},        {2, adUnsignedTinyInt, true, u""},
      {3, adSmallInt, true, u""},       {4, adInteger, true, u""},
      {5, adCurrency, true, u""},       {6, adSingle, true, u""},
      {7, adDouble, true, u""},         {8, adDBTimeStamp, true, u"#"},
      {9, adBinary, false, nullptr},    {10, adVarWChar, true, u"'"},
      {11, adLongVarBinary, true, u""}, {12, adLongVarWChar, true, u"'"},
      {15, adGUID, true, u"'"},         {16, adBigInt, true, u""},
      {18, adChar, true, u"'"},         {19, adNumeric, true, u""},
      {20, adNumeric, true, u""},       {21, adDouble, true, u""},
      {22, adDBTimeStamp, true, u"#"},  {23, adDBTimeStamp, true, u"#"},
  };
  for (const DaoMapping& m : kMappings) {
    if (m.dao != dao_type) continue;
    SetFldType(m.ado);
    SetFldSupport(m.support);
    if (m.quote) {
      SetFldQuoteS(m.quote);
      SetFldQuoteE(m.quote);
    }
    return;
  }
  SetFldType(-1);
  SetFldSupport(false);
}

}  // namespace qv
