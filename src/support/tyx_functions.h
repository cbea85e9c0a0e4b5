// The shared functions that live beside the shared variables: identifiers from names, the
// class of a column type, the kind of a DBMS, and the quoting of SQL names and script texts.
// Generated code depends on their exact results.
#pragma once

#include <cstdint>

#include "automation/string.h"

namespace qv {

// The kinds that DatabaseKind tells apart; every DBMS-specific branch switches on them.
enum DatabaseKindCode : int32_t {
  kDbAccess = 1,
  kDbSqlServer = 2,
  kDbMySql = 3,
  kDbOracle = 4,
  kDbOther = 5,
};

// The classes of FieldTypeClass.
enum FieldTypeClassCode : int16_t {
  kFieldClassNumber = 1,
  kFieldClassDate = 2,
  kFieldClassText = 3,
  kFieldClassBoolean = 4,
  kFieldClassGuid = 5,
  kFieldClassOther = 6,
};

// A script variable name from a column or table name: `prefix`, then the name with every
// character outside letters, digits, blank and "_" written as its hexadecimal code, blanks
// as "_", and an "x" in front when the name does not start with a letter.
// "Order ID" -> "Order_ID", "2nd" -> "x2nd", "Cost%" -> "Cost25".
String ToVarName(StringView name, StringView prefix);

// The class of an ADO data type number (DataTypeEnum): 1 number, 2 date, 3 text, 4 Boolean,
// 5 GUID, 6 other.
int16_t FieldTypeClass(int32_t ado_type);

// 1 Access ("MS Jet" or "ACCESS" exactly), 2 SQL Server, 3 MySQL, 4 Oracle (any name holding
// "ora"), 5 other.
int32_t DatabaseKind(StringView dbms);

// Fills both quote pairs of the shared variables from SqlQuoteStyle, or, when the style names
// no pair, from the kind of `dbms`.
void SetQuoteChars(StringView dbms);
// name inside the table quote pair.
String QuoteSqlName(StringView name);
// name inside the database quote pair.
String QuoteDbName(StringView name);

// Trims the text, strips matching outer quotes (" or ') as often as they come, and for a
// level above 0 returns it as a script literal with `level` quote marks around it.
String QuoteScriptText(StringView value, int32_t level);

// A VBScript string expression that yields `text`: its lines joined by &vbCrLf (and by
// &`indent` when an indent variable is given). An empty text gives an empty expression.
String QuoteLiteral(StringView text, StringView indent);

}  // namespace qv
