// AnalyseViewSql: from the SQL text of an Access query, decides whether the view can be
// updated and which key it carries. A query over one table doesn't inherit that table's key;
// a query of one inner join takes the key of the side that isn't the parent, when that column
// stands in the view. The project path and the record path share the decision.
#pragma once

#include <vector>

#include "automation/string.h"
#include "model/database.h"
#include "model/table.h"
#include "schema/schema_records.h"

namespace qv {

// "[table].[field]" with one pair of brackets dropped from each, and a qualified field cut to
// its part after the first ".".
String QualifyColumn(StringView table, StringView field);

// The project's view, with the database's already loaded tables; writes TblUpdatable, TblKey
// and TblView.
void AnalyseViewSql(TyxDatabase& db, TyxTable& view, StringView sql);
// The record twin over the tables read so far; writes TblUpdatable and TblKey.
void AnalyseViewSql(const std::vector<TySchemaTable>& tables, TySchemaTable& view, StringView sql);

}  // namespace qv
