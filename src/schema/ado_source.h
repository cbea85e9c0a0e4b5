// Opening an ADO data source the way both readers do: the connection string of the type, the
// provider's facts ("DBMS Name" with the Interbase rule, versions), the kind of DBMS, the
// native SQL Server switch for an ODBC source, the Oracle connection form for generated code,
// and the quote characters. TyxSchema and TyxDatabase differ in a few points, which the
// request names.
#pragma once

#include <cstdint>

#include "automation/string.h"
#include "platform/data/connection.h"

namespace qv {

struct AdoSourceRequest {
  String db_type;  // "ODBC" or "CONNECTIONSTRING"
  String db_name;  // the ODBC data source name
  String uid;
  String pwd;
  String conn_str;
  // The record reader: the kind comes from the DBMS name in upper case, and its Oracle form
  // lacks the closing ";". The project loader asks with the name as reported.
  bool record_reader = false;
  // False for the project loader's one-table loads: the Oracle form and the quote characters
  // are left as the full load set them.
  bool full_load = true;
};

struct AdoSourceFacts {
  String ado_version;
  String dbms_name;  // "DBMS Name" after the Interbase rule
  String dbms_version;
  String oledb_version;
  String provider_name;
  String provider_version;
  String kind_name;  // the name DatabaseKind was asked about
  int32_t kind = 5;
  // From the stored definition of the ODBC source (SQL Server and Oracle only).
  String odbc_database;
  String odbc_server;
  bool odbc_trusted = false;
  String oracle_server;
  String oracle_conn_str;  // the Oracle form, for generated code; empty unless built
};

// The "dsn=...;uid=...;pwd=..." form of an ODBC source.
String OdbcDsnConnectionString(StringView dsn, StringView uid, StringView pwd);

// "Interbase Server" for any name holding "Interbase" in any case; others stand as they are.
String NormalizeDbmsName(StringView name);

// Opens `cn` and learns the facts. False when the connection is not open after Open; a failure
// of Open itself raises, with the provider's records in cn.GetErrors().
bool OpenAdoSource(data::Connection& cn, const AdoSourceRequest& request, AdoSourceFacts& facts);

}  // namespace qv
