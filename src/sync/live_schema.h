// What the check, the synchronisation and the load-time comparison share: reading the live
// schema of the project's database with its stored connection settings, the progress window
// of each step, and the shared defaults that new tables and fields take.
#pragma once

#include <vector>

#include "automation/string.h"
#include "model/database.h"
#include "model/tyx.h"
#include "schema/tyx_schema.h"

namespace qv {

// The project's current database, or nullptr.
TyxDatabase* CurrentDatabase(Tyx& tyx);

// The names of the database's tables of one TblType, in list order: the steps that visit
// them may add and delete tables on the way.
std::vector<String> TableNamesOfType(TyxDatabase& db, StringView type);

// Reads the schema of the current database into `schema` from its DBName, DBType, DBUID,
// DBPwd, DBPath, DBPhyPath, DBUseServerMapPath, DBConnstr and DBSchema, under the status title
// `title`. True when it was read; otherwise ProjErr holds the reader's words (or "Database not
// loaded!" when the project has no database).
bool ReadLiveSchema(Tyx& tyx, TyxSchema& schema, StringView title);

// The date format and security default that new tables and fields inherit, refreshed from
// the project and its database.
void FillSharedDefaults(Tyx& tyx);

// Opens the progress window titled ProductName + `suffix` with "Please wait..."; closes it
// when it goes out of scope.
class ProgressWindow {
 public:
  ProgressWindow(Tyx& tyx, StringView suffix);
  ~ProgressWindow();
  ProgressWindow(const ProgressWindow&) = delete;
  ProgressWindow& operator=(const ProgressWindow&) = delete;
};

}  // namespace qv
