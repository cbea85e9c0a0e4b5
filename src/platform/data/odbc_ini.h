// The stored definitions of ODBC data sources (odbc.ini, user and system), read through
// unixODBC's installer API: what Windows keeps under Software\ODBC\ODBC.INI.
#pragma once

#include <vector>

#include "automation/string.h"

namespace qv::data {

// The value `name` of the data source `dsn` ("Server", "Database", "Trusted_Connection",
// "ServerName", ...), exactly as stored; empty when the source or the value is not there.
String ReadOdbcIniValue(StringView dsn, StringView name);

// The names of all defined data sources, user ones first.
std::vector<String> OdbcDataSourceNames();

}  // namespace qv::data
