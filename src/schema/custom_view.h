// Custom views: a named SELECT text of the user's, run against the project's database to
// learn its columns, each column traced back by CustomSqlParser to the table column it comes
// from, whose settings it can take over. Failures are told through ProjErr, and a view whose
// SQL fails leaves no table behind.
#pragma once

#include <cstdint>
#include <vector>

#include "automation/string.h"
#include "automation/variant.h"
#include "model/database.h"
#include "model/table.h"
#include "model/tyx.h"
#include "platform/data/connection.h"
#include "schema/column_facts.h"

namespace qv {

// The connection string of the loaded database: the Jet form for "ACCESS", the ODBC form,
// the stored string, or empty.
Variant CustomViewConnStr(const Tyx& tyx);

void LoadCustomView(Tyx& tyx, StringView table_name, StringView sql, bool copy_fields);

// The one run of a custom view's SQL that both the project's custom view and the record of
// synchronisation are made from: its columns, or the database's words on why it didn't run.
struct CustomViewRun {
  bool ran = false;
  String error;
  std::vector<ColumnFacts> columns;
};
CustomViewRun RunCustomViewSql(data::Connection& cn, StringView sql);

// True when the database can't take the name for a custom view (Oracle's can't hold a space);
// the view's SQL is then never run.
bool CustomViewNameRefused(StringView table_name);

// TyxDatabase.LoadADOCustomView: 0 success, 1 the connection wasn't open or the name was
// refused (or the SQL failed, whose words are in ProjErr), 3 the connection error handler ran.
int16_t LoadADOCustomView(TyxDatabase& db, StringView conn_str, StringView table_name,  // NOLINT
                          StringView sql);

// TyxTable.Load_ADOCustomView and ParseCustomSql.
void Load_ADOCustomView(TyxTable& table, data::Connection& cn, StringView table_name,  // NOLINT
                        StringView sql);
void ParseCustomSql(TyxTable& table);

}  // namespace qv
