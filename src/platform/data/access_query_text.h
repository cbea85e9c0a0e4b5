// Rebuilding the SQL text of a stored Access query from its rows in the file's query table
// (MSysQueries): each row carries an attribute (what part of the statement it is), a flag,
// two names and an expression.
#pragma once

#include <cstdint>
#include <vector>

#include "automation/string.h"

namespace qv::data {

struct StoredQueryRow {
  int32_t attribute = 0;
  int32_t flag = 0;
  String name1;
  String name2;
  String expression;
};

struct StoredQuery {
  int32_t dao_type = 0;  // DaoQueryType
  String sql;
  struct Output {
    String expression;
    String alias;
  };
  std::vector<Output> outputs;  // the SELECT list, in order
  struct Input {
    String table;
    String alias;
  };
  std::vector<Input> inputs;  // the FROM tables and queries with their aliases
  struct Parameter {
    String name;
    int32_t dao_type;
  };
  std::vector<Parameter> parameters;
};

// Rows of one query in file order.
StoredQuery RebuildStoredQuery(const std::vector<StoredQueryRow>& rows);

// A name as Access writes it in SQL: bare when it is a plain identifier, else in brackets.
String BracketName(StringView name);

}  // namespace qv::data
