// The root's loading entry points: LoadDB connects the project's one database and fills it,
// LoadTable and UnLoadTable fill or empty one table afterwards (DynamicLoadDB), UnLoadDB takes
// the database away. Failures are told through ProjErr; a failed LoadDB leaves no database.
// The facade routes Tyx's entries here; C++ hosts may call them directly.
#pragma once

#include "automation/object.h"
#include "automation/string.h"
#include "automation/variant.h"
#include "model/tyx.h"

namespace qv {

struct LoadDbRequest {
  String db_name;
  String db_type;  // "ODBC", "CONNECTIONSTRING" or "ACCESS"
  String path;
  String phy_path;
  bool use_server_map_path = false;
  String uid;
  String pwd;
  String conn_str;
  String schema;
};

void LoadDB(Tyx& tyx, const LoadDbRequest& request);
// The script form: sDBName, sDBType, sPath, sPhyPath, bDBUseServerMapPath, sUID, sPwd,
// sConnStr, sSchema, each optional.
void LoadDB(Tyx& tyx, Args args);
void LoadTable(Tyx& tyx, StringView table_name);
void UnLoadTable(Tyx& tyx, StringView table_name);
void UnLoadDB(Tyx& tyx);
// Copies the project's settings that table and field defaults read into their shared copies,
// as LoadDB does before it reads. A host that adds tables to a project read from its file
// (custom views, reports, synchronised tables) calls this first: Load refreshes only the quote
// style and the date format, and new tables would otherwise start from empty copies.
void ShareProjectSettings(const Tyx& tyx);
// The status window of one step on one table: "<product> - <step> <table>..." over
// "Please wait...". Closed by the caller's CloseStatus.
void ShowTableStatus(const Tyx& tyx, StringView step, StringView table_name);
// Adds each extension named under ExtensionsKey in the user's tree, with its template path.
void LoadExtensionsFromRegistry(Tyx& tyx);

}  // namespace qv
