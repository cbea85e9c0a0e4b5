// The scripted backend, as the schema readers' tests will use it: an Oracle-like catalogue with
// schemas, a MySQL-like index rowset without PRIMARY_KEY, missing properties and failures.
#include <gtest/gtest.h>

#include "automation/convert.h"
#include "automation/error.h"
#include "platform/data/connection.h"
#include "platform/data/data_types.h"
#include "platform/data/recordset.h"
#include "platform/data/scripted_backend.h"

namespace qv::data {
namespace {

std::shared_ptr<ScriptedSource> OracleLike() {
  auto source = std::make_shared<ScriptedSource>();
  source->properties[u"DBMS Name"] = String(u"Oracle");
  source->properties[u"DBMS Version"] = String(u"19.0");
  ScriptedTable emp;
  emp.name = u"EMP";
  emp.schema = u"SCOTT";
  emp.columns = {{u"EMPNO", adNumeric, 19, false, std::nullopt}, {u"ENAME", adVarWChar, 10}};
  emp.key = {u"EMPNO"};
  emp.indexes = {{u"PK_EMP", true, Variant::Null(), {u"EMPNO", u"EMPNO"}}};
  emp.rows = {{Variant(int32_t{7369}), Variant(String(u"SMITH"))}};
  ScriptedTable other = emp;
  other.schema = u"HR";
  ScriptedTable synonym;
  synonym.name = u"EMPS";
  synonym.type = u"SYNONYM";
  source->tables = {emp, other, synonym};
  return source;
}

TEST(ScriptedBackendTest, CatalogueRestrictionsAndProbes) {
  auto source = OracleLike();
  RegisterScriptedSource(u"oracle", source);
  Connection cn;
  cn.Open(u"Provider=Scripted;Data Source=oracle");
  EXPECT_EQ(ToString(cn.Properties(u"dbms name")), u"Oracle");
  EXPECT_THROW(cn.Properties(u"Provider Name"), Error);

  auto tables = cn.OpenSchema(adSchemaTables);
  EXPECT_EQ(tables->RecordCount(), 3);
  EXPECT_EQ(ToString(tables->Fields(u"TABLE_SCHEMA").Value()), u"SCOTT");
  auto hr = cn.OpenSchema(adSchemaTables, {Variant(), String(u"HR")});
  EXPECT_EQ(hr->RecordCount(), 1);
  // The key restriction names the table only: both schemas' keys come back.
  auto keys = cn.OpenSchema(adSchemaPrimaryKeys, {Variant(), Variant(), String(u"EMP")});
  EXPECT_EQ(keys->RecordCount(), 2);
  auto indexes =
      cn.OpenSchema(adSchemaIndexes, {Variant(), Variant(), Variant(), Variant(), String(u"EMP")});
  ASSERT_EQ(indexes->RecordCount(), 4);
  EXPECT_TRUE(indexes->Fields(u"PRIMARY_KEY").Value().is_null());

  Recordset rs;
  rs.Open(u"SELECT * FROM \"SCOTT\".\"EMP\" WHERE 0=1", cn);
  EXPECT_TRUE(rs.Eof());
  EXPECT_EQ(rs.Fields().Count(), 2);
  EXPECT_EQ(rs.Fields(u"EMPNO").Attributes() & adFldIsNullable, 0);
  EXPECT_THROW(rs.Fields(u"EMPNO").Properties(u"ISAUTOINCREMENT"), Error);
  EXPECT_FALSE(ToBool(rs.Fields(u"ENAME").Properties(u"ISAUTOINCREMENT")));
  rs.Open(u"SELECT * FROM [EMP]", cn);
  EXPECT_EQ(rs.RecordCount(), 1);
  EXPECT_EQ(source->executed.back(), u"SELECT * FROM [EMP]");
  UnregisterScriptedSource(u"oracle");
  Connection gone;
  EXPECT_THROW(gone.Open(u"Provider=Scripted;Data Source=oracle"), Error);
}

TEST(ScriptedBackendTest, DescribedFailuresReachErrors) {
  auto source = std::make_shared<ScriptedSource>();
  source->properties[u"DBMS Name"] = String(u"MySQL");
  ScriptedTable table;
  table.name = u"order items";
  table.probe_fails = true;
  source->tables = {table};
  source->index_needs_exact_name = true;
  source->schema_failures[adSchemaPrimaryKeys] = {
      {kErrProviderFailure, 1146, u"Key rowset unavailable", u"MySQL ODBC", u"HY000"}};
  RegisterScriptedSource(u"mysql", source);
  Connection cn;
  cn.Open(u"Provider=Scripted;Data Source=mysql");
  EXPECT_THROW(cn.OpenSchema(adSchemaPrimaryKeys), Error);
  ASSERT_EQ(cn.GetErrors().Count(), 1);
  EXPECT_EQ(cn.GetErrors().Item(0).native_error, 1146);
  EXPECT_EQ(cn.GetErrors().Item(0).sql_state, u"HY000");
  // The exact name passes; a quoted one fails, as the MySQL retry rule expects.
  EXPECT_NO_THROW(cn.OpenSchema(
      adSchemaIndexes, {Variant(), Variant(), Variant(), Variant(), String(u"order items")}));
  EXPECT_THROW(cn.OpenSchema(adSchemaIndexes, {Variant(), Variant(), Variant(), Variant(),
                                               String(u"`order items`")}),
               Error);
  EXPECT_THROW(cn.Execute(u"SELECT * FROM `order items` WHERE 0=1"), Error);
  EXPECT_EQ(cn.GetErrors().Item(0).number, kErrNoSuchTable);

  source->open_failure =
      std::vector<ErrorRecord>{{kErrProviderFailure, 0, u"first", u"x", u"08001"},
                               {kErrLoginFailed, 0, u"login", u"x", u"28000"}};
  Connection refused;
  try {
    refused.Open(u"Provider=Scripted;Data Source=mysql");
    FAIL();
  } catch (const Error& e) {
    EXPECT_EQ(e.description(), u"first");
  }
  ASSERT_EQ(refused.GetErrors().Count(), 2);
  EXPECT_EQ(refused.GetErrors().Item(1).number, kErrLoginFailed);
  UnregisterScriptedSource(u"mysql");
}

}  // namespace
}  // namespace qv::data
