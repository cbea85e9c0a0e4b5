// The connection steps shared by the ADO readers.
#include "schema/ado_source.h"

#include "automation/convert.h"
#include "platform/data/data_types.h"
#include "platform/data/odbc_ini.h"
#include "support/status.h"
#include "support/tyx_functions.h"
#include "support/tyx_vars.h"

namespace qv {

namespace {

// A provider property, or "" when the provider lacks it: a missing property never stops a load.
String PropertyOrEmpty(const data::Connection& cn, StringView name) {
  try {
    return ToString(cn.Properties(name));
  } catch (const Error&) {
    return String();
  }
}

void ReadProviderFacts(const data::Connection& cn, AdoSourceFacts& facts) {
  try {
    facts.ado_version = cn.Version();
  } catch (const Error&) {
  }
  facts.dbms_name = NormalizeDbmsName(PropertyOrEmpty(cn, u"DBMS Name"));
  facts.dbms_version = PropertyOrEmpty(cn, u"DBMS Version");
  facts.oledb_version = PropertyOrEmpty(cn, u"OLE DB Version");
  facts.provider_name = PropertyOrEmpty(cn, u"Provider Name");
  facts.provider_version = PropertyOrEmpty(cn, u"Provider Version");
}

String SqlServerConnectionString(const AdoSourceRequest& request, const AdoSourceFacts& facts) {
  if (facts.odbc_trusted) {
    return u"Provider=SQLOLEDB;Initial Catalog=" + facts.odbc_database + u";Data Source=" +
           facts.odbc_server + u";Integrated Security=SSPI;";
  }
  return u"Provider=SQLOLEDB;User ID=" + request.uid + u";Password=" + request.pwd +
         u";Initial Catalog=" + facts.odbc_database + u";Data Source=" + facts.odbc_server + u";";
}

// An ODBC source that is SQL Server is read through the native provider instead. Nothing in
// this step counts as a connection error: whatever ends up open is read.
void SwitchToNativeSqlServer(data::Connection& cn, const AdoSourceRequest& request,
                             AdoSourceFacts& facts) {
  facts.odbc_database = data::ReadOdbcIniValue(request.db_name, u"Database");
  facts.odbc_server = data::ReadOdbcIniValue(request.db_name, u"Server");
  facts.odbc_trusted = data::ReadOdbcIniValue(request.db_name, u"Trusted_Connection") == u"Yes";
  cn.Close();
  try {
    cn.Open(SqlServerConnectionString(request, facts));
  } catch (const Error&) {
  }
  if (cn.State() == data::adStateOpen) return;
  try {
    cn.Open(OdbcDsnConnectionString(request.db_name, request.uid, request.pwd));
  } catch (const Error&) {
  }
}

void BuildOracleForm(const AdoSourceRequest& request, AdoSourceFacts& facts) {
  facts.oracle_server = data::ReadOdbcIniValue(request.db_name, u"ServerName");
  if (facts.oracle_server.empty()) {
    facts.oracle_server = data::ReadOdbcIniValue(request.db_name, u"Server");
  }
  facts.oracle_conn_str = u"Provider=OraOLEDB.Oracle.1;Password=" + request.pwd + u";User ID=" +
                          request.uid + u";Data Source=" + facts.oracle_server;
  if (!request.record_reader) facts.oracle_conn_str += u";";
  Vars().OracleConnStr = facts.oracle_conn_str;
}

}  // namespace

String OdbcDsnConnectionString(StringView dsn, StringView uid, StringView pwd) {
  return String(u"dsn=") + dsn + u";uid=" + uid + u";pwd=" + pwd;
}

String NormalizeDbmsName(StringView name) {
  if (ToUpper(name).view().find(u"INTERBASE") != StringView::npos) return u"Interbase Server";
  return String(name);
}

bool OpenAdoSource(data::Connection& cn, const AdoSourceRequest& request, AdoSourceFacts& facts) {
  SharedStatus().DispStatus(Variant(String(u"Connecting to Data Source...")));
  const bool odbc = request.db_type == u"ODBC";
  const String source =
      odbc ? OdbcDsnConnectionString(request.db_name, request.uid, request.pwd) : request.conn_str;
  cn.Open(source);
  if (cn.State() != data::adStateOpen) return false;

  ReadProviderFacts(cn, facts);
  facts.kind_name = request.record_reader ? ToUpper(facts.dbms_name) : facts.dbms_name;
  facts.kind = DatabaseKind(facts.kind_name);
  if (!request.record_reader) Vars().CurrentDbmsName = facts.dbms_name;

  if (facts.kind == kDbSqlServer && odbc) SwitchToNativeSqlServer(cn, request, facts);
  if (!request.full_load) return true;
  if (facts.kind == kDbOracle && odbc) BuildOracleForm(request, facts);
  SetQuoteChars(facts.kind_name);
  return true;
}

}  // namespace qv
