// The choice of the Oracle owner whose tables a reader keeps: the one asked for, else the
// user's own when it owns tables, else the user picks one in frmSchema (through the prompter).
#pragma once

#include <vector>

#include "automation/string.h"
#include "platform/data/recordset.h"

namespace qv {

// The words of frmSchema.
inline constexpr StringView kChooseSchemaText =
    u"Please choose a schema for the Oracle ODBC Connection so that only a subset of tables "
    u"will be loaded.";
inline constexpr StringView kChooseSchemaLabel = u"Choose a Schema";

// Settles `current_schema` from the table rowset `rs`, which it leaves rewound. `schema_list`
// receives the owners of tables in upper case, after one empty entry at index 0. An empty
// choice leaves `current_schema` empty, and then no table matches.
void ChooseOracleSchema(data::Recordset& rs, StringView uid, String& current_schema,
                        std::vector<String>& schema_list);

}  // namespace qv
