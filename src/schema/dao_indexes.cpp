// Reading the indexes of an Access table.
#include "schema/dao_indexes.h"

#include "support/common.h"

namespace qv {

DaoIndexFacts ReadDaoIndexes(const std::vector<data::DaoIndex>& indexes) {
  DaoIndexFacts facts;
  for (const data::DaoIndex& index : indexes) {
    const bool primary = index.name == u"PrimaryKey";
    String list;
    for (const data::DaoIndexField& column : index.fields) {
      if (!list.empty()) list.Append(u',');
      list.Append(column.name);
      if (primary) facts.key_columns.push_back(column.name);
    }
    if (primary) facts.key = SortKeyList(list);
    if (index.unique && index.fields.size() == 1) facts.unique_columns.push_back(list);
  }
  return facts;
}

}  // namespace qv
