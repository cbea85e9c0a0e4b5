// The engine's opinion of how a database column should look in a generated application:
// LoadFldDefault and the type mappings that decide whether code can be generated for a
// column at all and how its literals are quoted.
#include "model/field.h"

#include "support/common.h"
#include "support/tyx_functions.h"
#include "support/tyx_vars.h"

namespace qv {

namespace {

// The texts that every field's defaults use, made once: a project sets them on tens of
// thousands of fields.
struct Texts {
  const String Equals{u"="};
  const String Date{u"DATE"};
  const String DateTime{u"Date/Time"};
  const String Eurodate{u"EURODATE"};
  const String File{u"FILE"};
  const String Float{u"FLOAT"};
  const String FormattedText{u"FORMATTED TEXT"};
  const String Guid{u"GUID"};
  const String Integer{u"INTEGER"};
  const String Like{u"LIKE"};
  const String No{u"NO"};
  const String None{u"None"};
  const String Radio{u"RADIO"};
  const String Text{u"TEXT"};
  const String Textarea{u"TEXTAREA"};
  const String Time{u"TIME"};
  const String Usdate{u"USDATE"};
  const String Values{u"Values"};
};

const Texts& T() {
  static const Texts* texts = new Texts();
  return *texts;
}

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
  SetFldFmtType(T().None);
  SetFldIncLeadDigit(-2);
  SetFldUseParen(-2);
  SetFldGpDigits(-2);
  SetFldSelectType(T().Values);
  SetFldViewTag(T().FormattedText);
  SetFldTagAPrefix(T().None);

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
    SetFldHtmlTag(T().No);
    return;
  }
  const int16_t type = FldType();
  if (type == adBoolean) {
    SetFldHtmlTag(T().Radio);
    SetFldTagValues(IsAccess() ? u"\"Yes\",\"Yes\"\r\n\"No\",\"No\""
                               : u"\"1\",\"Yes\"\r\n\"0\",\"No\"");
  } else if (IsOneOf(type, {adLongVarChar, adLongVarWChar})) {
    SetFldHtmlTag(T().Textarea);
    SetFldTagCols(35);
    SetFldTagRows(4);
  } else if (IsOneOf(type, {adVarChar, adVarWChar})) {
    SetFldHtmlTag(T().Text);
    SetFldTagSize(30);
    SetFldTagMaxLength(FldSize());
  } else if (IsDateType(type)) {
    SetFldHtmlTag(T().Text);
    const int16_t format = Vars().DefaultDateFormat;
    if (format >= 5 && format <= 7) {
      SetFldFmtType(T().DateTime);
      SetFldDtFormat(format);
    }
  } else if (type == adGUID) {
    SetFldHtmlTag(T().Text);
    SetFldTagSize(38);
    SetFldTagMaxLength(38);
  } else if (type == adLongVarBinary) {
    SetFldHtmlTag(T().File);
    SetFldTagSize(30);
    SetFldHrefFld(FldName());
  } else {
    SetFldHtmlTag(T().Text);
    SetFldTagSize(30);
  }
}

void TyxField::SetFieldValidateDefaults() {
  if (FldReq()) SetFldRequired(true);
  const int16_t type = FldType();
  if (IsOneOf(type, {adBigInt, adInteger, adSmallInt, adTinyInt, adUnsignedBigInt, adUnsignedInt,
                     adUnsignedSmallInt, adUnsignedTinyInt})) {
    SetFldValidate(T().Integer);
  } else if (IsOneOf(type, {adCurrency, adDecimal, adDouble, adNumeric, adSingle})) {
    SetFldValidate(T().Float);
  } else if (IsDateType(type)) {
    switch (Vars().DefaultDateFormat) {
      case 5:
        SetFldValidate(T().Date);
        break;
      case 6:
        SetFldValidate(T().Usdate);
        break;
      case 7:
        SetFldValidate(T().Eurodate);
        break;
      default:
        break;
    }
  } else if (type == adDBTime) {
    SetFldValidate(T().Time);
  } else if (type == adGUID) {
    SetFldValidate(T().Guid);
  }
}

void TyxField::SetFieldSearchOperator() {
  const int16_t type = FldType();
  if (IsOneOf(type, {adBigInt, adCurrency, adDecimal, adDouble, adInteger, adNumeric, adSingle,
                     adSmallInt, adTinyInt, adUnsignedBigInt, adUnsignedInt, adUnsignedSmallInt,
                     adUnsignedTinyInt, adVarNumeric, adBoolean, adDate, adDBDate, adDBTime,
                     adDBTimeStamp})) {
    SetFldSrchOpr(T().Equals);
  } else if (IsOneOf(type, {adBSTR, adChar, adLongVarChar, adLongVarWChar, adVarChar, adVarWChar,
                            adWChar})) {
    SetFldSrchOpr(T().Like);
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

}  // namespace qv
