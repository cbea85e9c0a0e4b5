// The type tables and value conversions that every backend relies on.
#include <gtest/gtest.h>

#include <sql.h>
#include <sqlext.h>

#include "automation/convert.h"
#include "automation/date_time.h"
#include "platform/data/data_types.h"
#include "platform/data/type_mapping.h"

namespace qv::data {
namespace {

TEST(TypeMappingTest, SqliteDeclaredTypes) {
  struct Case {
    const Char* declared;
    int32_t type;
    int32_t size;
  };
  const Case cases[] = {
      {u"", adVarWChar, 0},
      {u"integer", adInteger, 4},
      {u"INT", adInteger, 4},
      {u"BIGINT", adBigInt, 8},
      {u"smallint", adSmallInt, 2},
      {u"TINYINT", adUnsignedTinyInt, 1},
      {u"BOOLEAN", adBoolean, 2},
      {u"VARCHAR(40)", adVarWChar, 40},
      {u"NVARCHAR(200)", adVarWChar, 200},
      {u"CHARACTER VARYING(9)", adVarWChar, 9},
      {u"CHAR(8)", adWChar, 8},
      {u"NCHAR", adVarWChar, 255},
      {u"TEXT", adLongVarWChar, kLongFieldSize},
      {u"CLOB", adLongVarWChar, kLongFieldSize},
      {u"BLOB", adLongVarBinary, kLongFieldSize},
      {u"DATE", adDBDate, 6},
      {u"DATETIME", adDBTimeStamp, 16},
      {u"TIMESTAMP", adDBTimeStamp, 16},
      {u"TIME", adDBTime, 6},
      {u"MONEY", adCurrency, 8},
      {u"DECIMAL(10,2)", adNumeric, 19},
      {u"REAL", adDouble, 8},
      {u"DOUBLE PRECISION", adDouble, 8},
      {u"FLOAT", adDouble, 8},
      {u"UNIQUEIDENTIFIER", adGUID, 16},
      {u"VARCHAR(99999999999)", adVarWChar, kLongFieldSize},
  };
  for (const Case& c : cases) {
    const MappedType mapped = MapSqliteDeclaredType(c.declared);
    EXPECT_EQ(mapped.type, c.type) << String(c.declared).ToUtf8();
    EXPECT_EQ(mapped.defined_size, c.size) << String(c.declared).ToUtf8();
  }
}

TEST(TypeMappingTest, OdbcTypesIncludingLongForms) {
  EXPECT_EQ(MapOdbcType(SQL_WVARCHAR, 80).type, adVarWChar);
  EXPECT_EQ(MapOdbcType(SQL_WVARCHAR, 80).defined_size, 80);
  EXPECT_EQ(MapOdbcType(SQL_WVARCHAR, 0).type, adLongVarWChar);
  EXPECT_EQ(MapOdbcType(SQL_VARCHAR, 65535).type, adLongVarChar);
  EXPECT_EQ(MapOdbcType(SQL_WLONGVARCHAR, 2147483647).defined_size, kLongFieldSize);
  EXPECT_EQ(MapOdbcType(SQL_BIT, 1).type, adBoolean);
  EXPECT_EQ(MapOdbcType(SQL_TINYINT, 3).type, adUnsignedTinyInt);
  EXPECT_EQ(MapOdbcType(SQL_BIGINT, 19).type, adBigInt);
  EXPECT_EQ(MapOdbcType(SQL_DECIMAL, 19).type, adNumeric);
  EXPECT_EQ(MapOdbcType(SQL_REAL, 7).type, adSingle);
  EXPECT_EQ(MapOdbcType(SQL_FLOAT, 15).type, adDouble);
  EXPECT_EQ(MapOdbcType(SQL_TYPE_DATE, 10).type, adDBDate);
  EXPECT_EQ(MapOdbcType(SQL_TYPE_TIME, 8).type, adDBTime);
  EXPECT_EQ(MapOdbcType(SQL_TYPE_TIMESTAMP, 26).type, adDBTimeStamp);
  EXPECT_EQ(MapOdbcType(SQL_BINARY, 16).type, adBinary);
  EXPECT_EQ(MapOdbcType(SQL_VARBINARY, 255).type, adVarBinary);
  EXPECT_EQ(MapOdbcType(SQL_LONGVARBINARY, -1).type, adLongVarBinary);
  EXPECT_EQ(MapOdbcType(SQL_GUID, 36).type, adGUID);
  EXPECT_EQ(MapOdbcType(-150, 10).type, adVarWChar) << "unknown codes read as text";
}

TEST(TypeMappingTest, DatesMoneyAndIntegers) {
  EXPECT_EQ(ToString(Variant::Date(*ParseIsoDateTime(u"1996-07-04"))), u"7/4/1996");
  EXPECT_EQ(ToString(Variant::Date(*ParseIsoDateTime(u"2024-02-29 23:59:59.123"))),
            u"2/29/2024 11:59:59 PM");
  EXPECT_EQ(ToString(Variant::Date(*ParseIsoDateTime(u"2024-02-29T08:05:00+02"))),
            u"2/29/2024 8:05:00 AM");
  EXPECT_EQ(ToString(Variant::Date(*ParseIsoDateTime(u"13:45"))), u"1:45:00 PM");
  EXPECT_EQ(*ParseIsoDateTime(u"1899-12-30"), 0.0);
  for (const Char* bad : {u"", u"2024-13-01", u"2024-02-30x", u"07/04/1996", u"25:00", u"2024-1-1",
                          u"2024-02-29 1:00"}) {
    EXPECT_FALSE(ParseIsoDateTime(bad)) << String(bad).ToUtf8();
  }
  EXPECT_EQ(CurrencyFromText(u"12.3456")->as_currency(), 123456);
  EXPECT_EQ(CurrencyFromText(u"-7")->as_currency(), -70000);
  EXPECT_EQ(CurrencyFromText(u"0.00005")->as_currency(), 0) << "half to even";
  EXPECT_FALSE(CurrencyFromText(u"12 dollars"));
  EXPECT_FALSE(CurrencyFromText(u"1e300"));
  EXPECT_EQ(IntegerValue(2147483647).type(), VarType::Long);
  EXPECT_EQ(IntegerValue(2147483648LL).type(), VarType::Double);
  const uint8_t bytes[] = {1, 2, 255};
  EXPECT_EQ(ByteArray(bytes).VarTypeCode(), 8209);
}

}  // namespace
}  // namespace qv::data
