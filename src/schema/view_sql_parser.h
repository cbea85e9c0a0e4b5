// ViewSqlParser: reads the SQL of an Access query and tells its single source table or its
// joins (kind and the two columns of each ON clause), and whether the query can be updated.
// A text it cannot follow is "not analysed": not updatable, no table, no join.
//
//   ViewSqlParser p;
//   p.SetSql(u"SELECT * FROM A INNER JOIN B ON A.id = B.a_id");
//   if (p.Updatable() && p.JoinCount() == 1) { p.FirstJoin(); p.LeftTable(); ... }
#pragma once

#include <cstdint>
#include <vector>

#include "automation/string.h"
#include "schema/sql_select.h"

namespace qv {

class ViewSqlParser {
 public:
  void SetSql(StringView sql);

  bool Analysed() const { return analysed_; }
  bool Updatable() const { return updatable_; }
  int16_t JoinCount() const { return static_cast<int16_t>(joins_.size()); }
  const String& TableName() const { return table_name_; }

  // The join cursor: FirstJoin, then NextJoin until JoinEOF.
  void FirstJoin() { current_ = 0; }
  void NextJoin() {
    if (current_ < joins_.size()) ++current_;
  }
  bool JoinEOF() const { return current_ >= joins_.size(); }

  const String& LeftTable() const { return Current().left_table; }
  const String& LeftField() const { return Current().left_field; }
  const String& RightTable() const { return Current().right_table; }
  const String& RightField() const { return Current().right_field; }
  const String& JoinType() const { return Current().type; }

 private:
  const SqlJoin& Current() const;
  static bool SelectListAggregates(const SqlSelect& select);

  bool analysed_ = false;
  bool updatable_ = false;
  String table_name_;
  std::vector<SqlJoin> joins_;
  size_t current_ = 0;
};

}  // namespace qv
