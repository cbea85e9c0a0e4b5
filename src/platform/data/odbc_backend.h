// The ODBC backend through unixODBC: any driver the system has (PostgreSQL, MariaDB/MySQL,
// SQL Server, ...). Catalogue from SQLTables, SQLColumns, SQLPrimaryKeys and SQLStatistics;
// "DBMS Name"/"DBMS Version" from SQLGetInfo, the driver's file name and version as
// "Provider Name"/"Provider Version"; each diagnostic record becomes an ErrorRecord, and a
// refused login (SQLSTATE 28000, or the server's "authentication failed" words) carries
// kErrLoginFailed.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include "automation/string.h"
#include "platform/data/backend.h"

namespace qv::data {

struct OdbcTimeouts {
  int32_t login_seconds = 15;    // ADO's ConnectionTimeout
  int32_t command_seconds = 30;  // ADO's CommandTimeout; 0 waits for ever
};

// Connects with SQLDriverConnect, never prompting. user and password, when given, are added
// as UID and PWD. The login and each statement time out as given, so a server that is down
// or silent ends in an error rather than a hang. MariaDB's driver ignores the login timeout
// attribute while it waits for a silent server's greeting, so it gets CONN_TIMEOUT in the
// string as well, unless the string sets one.
std::unique_ptr<Backend> OpenOdbcBackend(StringView connection_string, StringView user,
                                         StringView password, const OdbcTimeouts& timeouts);

// The first installed driver (odbcinst.ini) whose name contains the text, any case.
std::optional<String> FindOdbcDriver(StringView name_part);

}  // namespace qv::data
