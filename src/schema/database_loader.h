// TyxDatabase.LoadADODB: reads an ODBC source or a connection string into the project's one
// database. A full load writes what the provider reports into the database's properties and
// adds every table and view; a load of one table by name only refreshes that table.
#pragma once

#include <cstdint>

#include "automation/string.h"
#include "model/database.h"
#include "schema/schema_records.h"

namespace qv {

struct AdoLoadRequest {
  String db_type;  // "ODBC" or "CONNECTIONSTRING"
  String db_name;
  String uid;
  String pwd;
  String conn_str;
  String table_name;  // empty: a full load
  String schema;      // the Oracle owner to read; empty lets the reader settle it
};

// What every full load writes into the database from the source it read: the versions and
// names the provider reported, and the quotes of the DBMS (SetQuoteChars has run).
void WriteSourceFacts(TyxDatabase& db, const TySchemaDB& read);

// 0 success, 1 the connection was not open after Open, 3 the connection error handler ran
// (its words are in ProjErr).
int16_t LoadADODB(TyxDatabase& db, const AdoLoadRequest& request);  // NOLINT

}  // namespace qv
