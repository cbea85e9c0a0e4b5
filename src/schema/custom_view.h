// Custom views: a named SELECT text of the user's, run against the project's database to
// learn its columns, each column traced back by CustomSqlParser to the table column it comes
// from, whose settings it can take over. Failures are told through ProjErr, and a view whose
// SQL fails leaves no table behind.
#pragma once

#include <cstdint>

#include "automation/string.h"
#include "automation/variant.h"
#include "model/database.h"
#include "model/table.h"
#include "model/tyx.h"
#include "platform/data/connection.h"

namespace qv {

// The connection string of the loaded database: the Jet form for "ACCESS", the ODBC form,
// the stored string, or empty.
Variant CustomViewConnStr(const Tyx& tyx);

void LoadCustomView(Tyx& tyx, StringView table_name, StringView sql, bool copy_fields);

// TyxDatabase.LoadADOCustomView: 0 success, 1 the connection wasn't open or the name was
// refused (or the SQL failed, whose words are in ProjErr), 3 the connection error handler ran.
int16_t LoadADOCustomView(TyxDatabase& db, StringView conn_str, StringView table_name,  // NOLINT
                          StringView sql);

// TyxTable.Load_ADOCustomView and ParseCustomSql.
void Load_ADOCustomView(TyxTable& table, data::Connection& cn, StringView table_name,  // NOLINT
                        StringView sql);
void ParseCustomSql(TyxTable& table);

}  // namespace qv
