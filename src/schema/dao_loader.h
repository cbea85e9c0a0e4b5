// TyxDatabase.LoadDAODB: an Access file read through the DAO-shaped layer of platform/data into
// the project, by way of the records of TyxSchema's DAO reader. Only this path knows the index
// named "PrimaryKey", DefaultValue, AllowZeroLength, Required and the column's "Caption". The
// stored queries that ADOX lists as views become views, with their SQL analysed for a key.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "automation/string.h"
#include "automation/variant.h"
#include "model/database.h"
#include "model/field.h"
#include "model/table.h"
#include "platform/data/access_database.h"

namespace qv {

struct DaoLoadRequest {
  String path;      // the file as the generated application names it
  String phy_path;  // the file this machine opens
  bool use_server_map_path = false;
  String uid;
  String pwd;
  String table_name;  // empty: a full load
};

// 0 success (also at once for an empty physical path), 1 the error handler ran; its words,
// with no product prefix, are in ProjErr.
int16_t LoadDAODB(TyxDatabase& db, const DaoLoadRequest& request);  // NOLINT

// ADO FieldAttributeEnum bits of a DAO column: fixed 16, auto-increment 4, nullable 32.
int32_t MapDaoAttributes(const data::DaoField& column);

// False when `list` is no array; else True when an entry from index 1 to the upper bound
// equals `value`.
bool IsInList(const Variant& list, const Variant& value);

// DBEngine.OpenDatabase of the file: read-write without a password, read-only with one.
std::unique_ptr<data::AccessDatabase> OpenDaoDatabase(StringView phy_path, StringView pwd);
// The Jet provider string for an Access file, with the password part when there is one.
String JetConnectionString(StringView file, StringView pwd);
// The views ADOX lists for the file, as a 1-based array; after a failure, which a message
// box reports, an empty one.
Variant CollectDaoViewNames(StringView phy_path, StringView pwd);
// True for a table the DAO readers take: no system or hidden object, not "Switchboard Items".
bool IsLoadableTableDef(const data::DaoTableDef& table_def);
// The text of the DAO readers' error handler.
String DaoErrorText(const Error& failure);

}  // namespace qv
