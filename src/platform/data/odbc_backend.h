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

// Connects with SQLDriverConnect, never prompting. user and password, when given, are added
// as UID and PWD. Logins and the connection itself time out after the given seconds, so an
// unreachable server ends in an error rather than a hang.
std::unique_ptr<Backend> OpenOdbcBackend(StringView connection_string, StringView user,
                                         StringView password, int32_t timeout_seconds);

// The first installed driver (odbcinst.ini) whose name contains the text, any case.
std::optional<String> FindOdbcDriver(StringView name_part);

}  // namespace qv::data
