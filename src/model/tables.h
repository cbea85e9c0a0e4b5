// TyxTables: the tables, views, custom views and reports of the database, with a current
// table; Change derives TblVar with no prefix.
#pragma once

#include "model/named_list.h"
#include "model/table.h"

namespace qv {

class TyxTables final : public TyxList<TyxTables, TyxTable, kTableListRules> {};

}  // namespace qv
