// The DBMS-specific branches of the record reader that no server here reaches, on scripted
// sources: the Oracle owner choice through frmSchema, the connection error texts, the upper
// case DBMS name, the Interbase rule, duplicate columns, a provider that can't tell
// ISAUTOINCREMENT, and key or index rowsets that fail.
#include <gtest/gtest.h>

#include "platform/data/data_types.h"
#include "schema/ado_source.h"
#include "schema/tyx_schema.h"
#include "schema_test_support.h"
#include "support/tyx_vars.h"

namespace qv {
namespace {

using data::ErrorRecord;
using data::ScriptedColumn;
using data::ScriptedIndex;
using data::ScriptedSource;
using data::ScriptedTable;

std::shared_ptr<ScriptedSource> Source(StringView dbms) {
  auto source = std::make_shared<ScriptedSource>();
  source->properties[u"DBMS Name"] = Variant(String(dbms));
  source->properties[u"DBMS Version"] = Variant(String(u"1.0"));
  return source;
}

ScriptedTable Table(StringView name, std::vector<StringView> columns, StringView schema = u"") {
  ScriptedTable t;
  t.name = name;
  t.schema = schema;
  for (StringView c : columns)
    t.columns.push_back(ScriptedColumn{String(c)});
  return t;
}

class ScriptedBranchesTest : public schema_testing::SchemaTest {
 protected:
  // Reads a scripted source as an ODBC user would (the user name matters to Oracle).
  TyxSchema Read(StringView name, std::shared_ptr<ScriptedSource> source, StringView uid = u"",
                 StringView schema = u"") {
    TyxSchema reader;
    Variant db_name;
    reader.LoadDB(db_name, Variant(String(u"CONNECTIONSTRING")), Variant(), Variant(),
                  Variant(false), Variant(String(uid)), Variant(), Variant(Scripted(name, source)),
                  Variant(String(schema)));
    return reader;
  }
};

std::vector<String> Names(const TyxSchema& schema) {
  std::vector<String> names;
  for (const TySchemaTable& t : schema.db().tables.Tbl)
    names.push_back(t.TblName);
  return names;
}

TEST_F(ScriptedBranchesTest, OracleKeepsTheTablesOfOneOwner) {
  auto source = Source(u"Oracle");
  source->tables = {Table(u"EMP", {u"EMPNO"}, u"SCOTT"), Table(u"JOBS", {u"JOB_ID"}, u"HR"),
                    Table(u"DEPT", {u"DEPTNO"}, u"SCOTT"), Table(u"REGIONS", {u"ID"}, u"HR")};
  source->tables[3].type = u"VIEW";

  // The user's own owner, in upper case, when it owns tables: nobody is asked.
  TyxSchema own = Read(u"ora1", source, u"scott");
  ASSERT_EQ(Vars().ProjErr, u"");
  EXPECT_EQ(own.db().DBSchema, u"SCOTT");
  EXPECT_EQ(Names(own), (std::vector<String>{u"EMP", u"DEPT"}));
  EXPECT_TRUE(own.Tbl(1).TblGen);  // probed as SCOTT.EMP

  // An owner given by the caller wins, views included.
  TyxSchema given = Read(u"ora2", source, u"scott", u"HR");
  EXPECT_EQ(Names(given), (std::vector<String>{u"JOBS", u"REGIONS"}));

  // A user who owns no tables picks from the owners of tables, by name.
  Answer({u"HR"});
  TyxSchema picked = Read(u"ora3", source, u"system");
  EXPECT_EQ(picked.db().DBSchema, u"HR");
  EXPECT_EQ(Names(picked), (std::vector<String>{u"JOBS", u"REGIONS"}));

  // frmSchema insists: a choice left empty is asked again until one comes.
  Answer({u"skip", u"HR"});
  TyxSchema insisted = Read(u"ora5", source, u"system");
  EXPECT_EQ(insisted.db().DBSchema, u"HR");

  // Only when no answer can come any more does it end without an owner; no table matches.
  Answer({u"skip"});
  TyxSchema skipped = Read(u"ora4", source, u"system");
  EXPECT_EQ(Vars().ProjErr, u"");
  EXPECT_EQ(skipped.db().DBSchema, u"");
  EXPECT_EQ(skipped.tblcnt(), 0);
}

TEST_F(ScriptedBranchesTest, ConnectionFailuresHaveFixedWords) {
  auto refused = Source(u"Microsoft SQL Server");
  refused->open_failure = std::vector<ErrorRecord>{
      {data::kErrProviderFailure, 17, u"Server not found.", u"Microsoft OLE DB Provider", u"08001"},
      {-2147467259, 0, u"Login timeout expired", u"ODBC Driver", u"HYT00"}};
  Read(u"down", refused);
  EXPECT_EQ(
      Vars().ProjErr,
      u"Quorvex: \r\nError #1:\r\n   ADO Error   #-2147467259\r\n   Description  Server not "
      u"found.\r\n   Source       Microsoft OLE DB Provider\r\nError #2:\r\n   ADO Error   "
      u"#-2147467259\r\n   Description  Login timeout expired\r\n   Source       ODBC Driver");

  // A login failure anywhere in the list drops everything else the provider said.
  auto login = Source(u"PostgreSQL");
  login->open_failure = std::vector<ErrorRecord>{
      {data::kErrProviderFailure, 0, u"first", u"x", u""},
      {data::kErrLoginFailed, 0, u"password authentication failed", u"y", u""}};
  Read(u"login", login);
  EXPECT_EQ(Vars().ProjErr,
            u"Quorvex: Unable to connect to Data Source! User ID / Password not valid!");

  // The table rowset failing before any probe runs the same handler.
  auto no_tables = Source(u"PostgreSQL");
  no_tables->schema_failures[data::adSchemaTables] = {
      {data::kErrNotSupported, 0, u"Tables rowset not supported", u"z", u""}};
  TyxSchema reader = Read(u"norowset", no_tables);
  EXPECT_EQ(Vars().ProjErr.ToUtf8().rfind("Quorvex: \r\nError #1:", 0), 0u);
  EXPECT_FALSE(reader.loaded());

  // An unregistered scripted source: the provider's own words.
  TyxSchema missing;
  Variant name;
  missing.LoadDB(name, Variant(String(u"CONNECTIONSTRING")), Variant(), Variant(), Variant(),
                 Variant(), Variant(), Variant(String(u"Provider=Scripted;Data Source=nothing")),
                 Variant());
  EXPECT_NE(Vars().ProjErr.ToUtf8().find("nothing"), std::string::npos);
}

TEST_F(ScriptedBranchesTest, ProviderNamesAndKinds) {
  EXPECT_EQ(NormalizeDbmsName(u"Interbase Server 6"), u"Interbase Server");
  EXPECT_EQ(NormalizeDbmsName(u"INTERBASE"), u"Interbase Server");
  EXPECT_EQ(NormalizeDbmsName(u"Firebird"), u"Firebird");
  EXPECT_EQ(OdbcDsnConnectionString(u"shop", u"ann", u"pw"), u"dsn=shop;uid=ann;pwd=pw");

  // "MS Jet" becomes "MS JET" on this path: kind 5, so the key comes from the key rowset
  // and the index named "PrimaryKey" plays no part.
  auto jet = Source(u"MS Jet");
  ScriptedTable t = Table(u"Orders", {u"b", u"a", u"c"});
  t.key = {u"c"};
  t.indexes = {ScriptedIndex{u"PrimaryKey", true, Variant::Null(), {u"b", u"a"}}};
  jet->tables = {t};
  jet->properties.erase(u"DBMS Version");  // a missing property doesn't stop the load
  TyxSchema reader = Read(u"jet", jet);
  ASSERT_EQ(Vars().ProjErr, u"");
  EXPECT_EQ(reader.db().DBDBMSName, u"MS Jet");
  EXPECT_EQ(reader.db().DBDBMSVer, u"");
  EXPECT_EQ(reader.Tbl(1).TblKey, u"c");
  EXPECT_FALSE(reader.Tbl(1).TblFields.fld[0].FldIsPrimaryKey);
  EXPECT_TRUE(reader.Tbl(1).TblFields.fld[2].FldIsPrimaryKey);
  EXPECT_TRUE(reader.Tbl(1).TblFields.fld[2].FldReq == false);

  // A provider that calls itself "Access" in any case is kind 1 here: the key comes from the
  // index named "PrimaryKey", sorted, and no column is marked required.
  auto access = Source(u"Access");
  t.columns[0].nullable = false;
  access->tables = {t};
  TyxSchema by_index = Read(u"access", access);
  ASSERT_EQ(Vars().ProjErr, u"");
  EXPECT_EQ(by_index.Tbl(1).TblKey, u"a,b");
  EXPECT_TRUE(by_index.Tbl(1).TblFields.fld[0].FldIsPrimaryKey);
  EXPECT_FALSE(by_index.Tbl(1).TblFields.fld[0].FldReq);
  EXPECT_FALSE(by_index.Tbl(1).TblFields.fld[2].FldIsPrimaryKey);
}

TEST_F(ScriptedBranchesTest, ColumnQuirksOfTheRecordReader) {
  auto source = Source(u"PostgreSQL");
  ScriptedTable dup = Table(u"dup", {u"id", u"name", u"id", u"Name"});
  dup.columns[1].auto_increment = std::nullopt;  // the provider can't tell
  ScriptedTable broken = Table(u"broken", {u"k"});
  broken.probe_fails = true;
  broken.key = {u"k"};
  ScriptedTable idx = Table(u"idx", {u"a", u"b", u"c", u"d"});
  idx.indexes = {ScriptedIndex{u"two", true, false, {u"a", u"b"}},
                 ScriptedIndex{u"twice", true, false, {u"c", u"c"}},
                 ScriptedIndex{u"plain", false, false, {u"a"}},
                 ScriptedIndex{u"last", true, false, {u"d"}}};
  source->tables = {dup, broken, idx};
  TyxSchema reader = Read(u"quirks", source);
  ASSERT_EQ(Vars().ProjErr, u"");

  // The second "id" is dropped; names that differ in case are different columns here.
  const TySchemaTable d = reader.Tbl(1);
  EXPECT_FALSE(d.TblGen);
  EXPECT_EQ(d.TblFldCnt, 3);
  EXPECT_EQ(d.TblFields.fld.size(), 4u);
  EXPECT_EQ(d.TblFields.fld[2].FldName, u"Name");
  EXPECT_EQ(d.TblFields.fld[2].FldSeq, 3);
  // A provider that can't tell ISAUTOINCREMENT makes the column auto-incrementing.
  EXPECT_TRUE(d.TblFields.fld[1].FldAutoIncrement);
  EXPECT_FALSE(d.TblFields.fld[0].FldAutoIncrement);

  // A failed probe keeps the table without columns, and its key is still read.
  const TySchemaTable b = reader.Tbl(2);
  EXPECT_FALSE(b.TblGen);
  EXPECT_EQ(b.TblFldCnt, 0);
  EXPECT_EQ(b.TblKey, u"k");

  // Unique flags: only an index of one column, a repeated column counting once, and the
  // last index of the table honoured after the walk.
  const TySchemaTable i = reader.Tbl(3);
  EXPECT_FALSE(i.TblFields.fld[0].FldUniqueIdx);
  EXPECT_FALSE(i.TblFields.fld[1].FldUniqueIdx);
  EXPECT_TRUE(i.TblFields.fld[2].FldUniqueIdx);
  EXPECT_TRUE(i.TblFields.fld[3].FldUniqueIdx);
}

TEST_F(ScriptedBranchesTest, FailingKeyRowsetsOnlyLoseWhatTheyWouldTell) {
  auto source = Source(u"PostgreSQL");
  ScriptedTable t = Table(u"t", {u"id", u"name"});
  t.columns[1].nullable = false;
  t.key = {u"id"};
  t.indexes = {ScriptedIndex{u"pk", true, true, {u"id"}}};
  source->tables = {t};
  const ErrorRecord failure{data::kErrProviderFailure, 0, u"not supported", u"s", u""};
  source->schema_failures[data::adSchemaPrimaryKeys] = {failure};
  source->schema_failures[data::adSchemaColumns] = {failure};
  TyxSchema reader = Read(u"nokeys", source);
  ASSERT_EQ(Vars().ProjErr, u"");
  const TySchemaTable r = reader.Tbl(1);
  EXPECT_TRUE(r.TblGen);
  EXPECT_EQ(r.TblKey, u"");
  EXPECT_FALSE(r.TblFields.fld[0].FldIsPrimaryKey);
  EXPECT_FALSE(r.TblFields.fld[1].FldReq);
  EXPECT_TRUE(r.TblFields.fld[0].FldUniqueIdx);  // the index rowset still answered

  source->schema_failures.erase(data::adSchemaPrimaryKeys);
  source->schema_failures.erase(data::adSchemaColumns);
  source->schema_failures[data::adSchemaIndexes] = {failure};
  TyxSchema second = Read(u"noindexes", source);
  const TySchemaTable s = second.Tbl(1);
  EXPECT_EQ(s.TblKey, u"id");
  EXPECT_TRUE(s.TblFields.fld[1].FldReq);
  EXPECT_FALSE(s.TblFields.fld[0].FldUniqueIdx);
}

}  // namespace
}  // namespace qv
