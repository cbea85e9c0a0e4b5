// The SQL text of a stored Access query, put together the way Access shows it in SQL view:
// clauses on their own lines (CR LF), joins nested left to right, a closing ";".
//
// Attribute codes of the query table: 1 query type (flag), 2 parameter, 3 options (flag bits:
// 2 DISTINCT, 8 DISTINCTROW, 16 TOP n in name1, 32 PERCENT), 5 input table or, for unions,
// a part's SQL, 6 output column, 7 join (flag 1 inner, 2 left, 3 right), 8 WHERE, 9 GROUP BY,
// 10 HAVING, 11 ORDER BY (name1 "D" for descending). In a crosstab the output flag tells the
// TRANSFORM value (0), the PIVOT heading (1) and the row headings (2).
#include "platform/data/access_query_text.h"

#include <algorithm>

#include "platform/data/data_types.h"

namespace qv::data {
namespace {

constexpr StringView kLineEnd = u"\r\n";

int32_t DaoTypeOfStoredType(int32_t stored) {
  switch (stored) {
    case 1:
      return dbQSelect;
    case 2:
      return dbQMakeTable;
    case 3:
      return dbQAppend;
    case 4:
      return dbQUpdate;
    case 5:
      return dbQDelete;
    case 6:
      return dbQCrosstab;
    case 7:
      return dbQDDL;
    case 8:
      return dbQSQLPassThrough;
    case 9:
      return dbQSetOperation;
    default:
      return dbQSelect;
  }
}

// Access SQL's names of parameter types.
StringView ParameterTypeName(int32_t dao_type) {
  switch (dao_type) {
    case dbBoolean:
      return u"Bit";
    case dbByte:
      return u"Byte";
    case dbInteger:
      return u"Short";
    case dbLong:
      return u"Long";
    case dbCurrency:
      return u"Currency";
    case dbSingle:
      return u"IEEESingle";
    case dbDouble:
      return u"IEEEDouble";
    case dbDate:
      return u"DateTime";
    case dbBinary:
      return u"Binary";
    case dbLongBinary:
      return u"LongBinary";
    case dbMemo:
      return u"Memo";
    case dbGUID:
      return u"Guid";
    default:
      return u"Text ( 255 )";
  }
}

String Join(const std::vector<String>& parts, StringView separator) {
  String text;
  for (size_t i = 0; i < parts.size(); ++i) {
    if (i) text.Append(separator);
    text.Append(parts[i]);
  }
  return text;
}

std::vector<const StoredQueryRow*> RowsOf(const std::vector<StoredQueryRow>& rows,
                                          int32_t attribute) {
  std::vector<const StoredQueryRow*> found;
  for (const auto& row : rows) {
    if (row.attribute == attribute) found.push_back(&row);
  }
  return found;
}

String OutputText(const StoredQueryRow& row) {
  if (row.name1.empty()) return row.expression;
  if (row.expression.empty()) return BracketName(row.name1);
  return row.expression + u" AS " + BracketName(row.name1);
}

String TableReference(const StoredQueryRow& row) {
  String text = row.name1.empty() && !row.expression.empty() ? u"(" + row.expression + u")"
                                                             : BracketName(row.name1);
  if (!row.name2.empty()) text += u" AS " + BracketName(row.name2);
  return text;
}

// The name a join row uses for a table: its alias when it has one.
String ReferenceName(const StoredQueryRow& row) {
  return row.name2.empty() ? row.name1 : row.name2;
}

String FromClause(const std::vector<StoredQueryRow>& rows) {
  const auto tables = RowsOf(rows, 5);
  const auto joins = RowsOf(rows, 7);
  auto reference = [&](const String& name) -> String {
    for (const auto* table : tables) {
      if (ReferenceName(*table) == name) return TableReference(*table);
    }
    return BracketName(name);
  };
  std::vector<String> used;
  auto is_used = [&](const String& name) {
    return std::find(used.begin(), used.end(), name) != used.end();
  };
  String clause;
  for (const auto* join : joins) {
    const StringView kind = join->flag == 2   ? u" LEFT JOIN "
                            : join->flag == 3 ? u" RIGHT JOIN "
                                              : u" INNER JOIN ";
    const String on = u" ON " + join->expression;
    if (clause.empty()) {
      clause = reference(join->name1) + kind + reference(join->name2) + on;
      used = {join->name1, join->name2};
    } else if (is_used(join->name1) && is_used(join->name2)) {
      clause = clause + u" AND " + join->expression;
    } else if (is_used(join->name1)) {
      clause = u"(" + clause + u")" + kind + reference(join->name2) + on;
      used.push_back(join->name2);
    } else if (is_used(join->name2)) {
      clause = reference(join->name1) + kind + u"(" + clause + u")" + on;
      used.push_back(join->name1);
    } else {
      clause = clause + u", " + reference(join->name1) + kind + reference(join->name2) + on;
      used.push_back(join->name1);
      used.push_back(join->name2);
    }
  }
  std::vector<String> parts;
  if (!clause.empty()) parts.push_back(clause);
  for (const auto* table : tables) {
    if (!is_used(ReferenceName(*table))) parts.push_back(TableReference(*table));
  }
  return Join(parts, u", ");
}

String ExpressionList(const std::vector<StoredQueryRow>& rows, int32_t attribute,
                      bool skip_pivot = false) {
  std::vector<String> parts;
  for (const auto* row : RowsOf(rows, attribute)) {
    if (skip_pivot && row->flag == 1) continue;
    String text = row->expression;
    if (attribute == 11 && EqualsNoCase(row->name1, u"D")) text += u" DESC";
    parts.push_back(std::move(text));
  }
  return Join(parts, u", ");
}

void AppendClause(String& sql, StringView keyword, const String& body) {
  if (body.empty()) return;
  sql.Append(kLineEnd);
  sql.Append(keyword);
  sql.Append(body);
}

// WHERE, GROUP BY, HAVING and ORDER BY after the FROM clause.
void AppendTail(String& sql, const std::vector<StoredQueryRow>& rows, bool crosstab) {
  if (const auto where = RowsOf(rows, 8); !where.empty())
    AppendClause(sql, u"WHERE ", where[0]->expression);
  AppendClause(sql, u"GROUP BY ", ExpressionList(rows, 9, crosstab));
  if (const auto having = RowsOf(rows, 10); !having.empty()) {
    AppendClause(sql, u"HAVING ", having[0]->expression);
  }
  AppendClause(sql, u"ORDER BY ", ExpressionList(rows, 11));
}

String SelectHead(const std::vector<StoredQueryRow>& rows) {
  String head = u"SELECT ";
  const auto options = RowsOf(rows, 3);
  const int32_t flags = options.empty() ? 0 : options[0]->flag;
  if (flags & 2) head += u"DISTINCT ";
  if (flags & 8) head += u"DISTINCTROW ";
  if (flags & 16 && !options.empty()) {
    head += u"TOP " + options[0]->name1 + ((flags & 32) ? u" PERCENT " : u" ");
  }
  return head;
}

String TargetTable(const std::vector<StoredQueryRow>& rows) {
  for (const int32_t attribute : {1, 0}) {
    for (const auto* row : RowsOf(rows, attribute)) {
      if (!row->name1.empty()) return BracketName(row->name1);
    }
  }
  return {};
}

}  // namespace

String BracketName(StringView name) {
  const bool plain = !name.empty() && !(name[0] >= u'0' && name[0] <= u'9') &&
                     std::all_of(name.begin(), name.end(), [](Char c) {
                       return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') ||
                              (c >= u'0' && c <= u'9') || c == u'_' || c > 0x7f;
                     });
  if (plain) return String(name);
  return u"[" + String(name) + u"]";
}

StoredQuery RebuildStoredQuery(const std::vector<StoredQueryRow>& rows) {
  StoredQuery query;
  const auto type_rows = RowsOf(rows, 1);
  query.dao_type = DaoTypeOfStoredType(type_rows.empty() ? 1 : type_rows[0]->flag);
  for (const auto* row : RowsOf(rows, 5)) {
    if (!row->name1.empty()) query.inputs.push_back({row->name1, row->name2});
  }
  for (const auto* row : RowsOf(rows, 2))
    query.parameters.push_back({row->name1, row->flag});
  const bool crosstab = query.dao_type == dbQCrosstab;
  for (const auto* row : RowsOf(rows, 6)) {
    if (crosstab && row->flag != 2) continue;
    query.outputs.push_back({row->expression, row->name1});
  }

  String sql;
  if (!query.parameters.empty()) {
    std::vector<String> declared;
    for (const auto& p : query.parameters) {
      declared.push_back(BracketName(p.name) + u" " + String(ParameterTypeName(p.dao_type)));
    }
    sql = u"PARAMETERS " + Join(declared, u", ") + u";" + String(kLineEnd);
  }

  std::vector<String> columns;
  for (const auto* row : RowsOf(rows, 6)) {
    if (crosstab && row->flag != 2) continue;
    if (query.dao_type == dbQUpdate) continue;
    columns.push_back(OutputText(*row));
  }
  const String from = FromClause(rows);

  switch (query.dao_type) {
    case dbQSetOperation: {
      std::vector<String> parts;
      for (const auto* row : RowsOf(rows, 5)) {
        String part = row->expression;
        while (!part.empty() && (part.view().back() == u'\n' || part.view().back() == u'\r' ||
                                 part.view().back() == u' ')) {
          part = String(part.view().substr(0, part.size() - 1));
        }
        parts.push_back(std::move(part));
      }
      sql += Join(parts, u"\r\nUNION ");
      AppendClause(sql, u"ORDER BY ", ExpressionList(rows, 11));
      break;
    }
    case dbQCrosstab: {
      String value;
      String pivot;
      for (const auto* row : RowsOf(rows, 6)) {
        if (row->flag == 0) value = OutputText(*row);
        if (row->flag == 1) pivot = row->expression;
      }
      sql += u"TRANSFORM " + value + String(kLineEnd) + u"SELECT " + Join(columns, u", ");
      AppendClause(sql, u"FROM ", from);
      AppendTail(sql, rows, true);
      AppendClause(sql, u"PIVOT ", pivot);
      break;
    }
    case dbQUpdate: {
      std::vector<String> sets;
      for (const auto* row : RowsOf(rows, 6))
        sets.push_back(row->name1 + u" = " + row->expression);
      sql += u"UPDATE " + from + String(kLineEnd) + u"SET " + Join(sets, u", ");
      AppendTail(sql, rows, false);
      break;
    }
    case dbQDelete:
      sql += u"DELETE " + Join(columns, u", ");
      AppendClause(sql, u"FROM ", from);
      AppendTail(sql, rows, false);
      break;
    case dbQAppend:
      sql += u"INSERT INTO " + TargetTable(rows) + String(kLineEnd) + SelectHead(rows) +
             Join(columns, u", ");
      AppendClause(sql, u"FROM ", from);
      AppendTail(sql, rows, false);
      break;
    case dbQMakeTable:
      sql += SelectHead(rows) + Join(columns, u", ") + u" INTO " + TargetTable(rows);
      AppendClause(sql, u"FROM ", from);
      AppendTail(sql, rows, false);
      break;
    default: {
      const auto options = RowsOf(rows, 3);
      const bool all_fields = !options.empty() && (options[0]->flag & 1);
      if (all_fields) columns.insert(columns.begin(), u"*");
      sql += SelectHead(rows) + Join(columns, u", ");
      AppendClause(sql, u"FROM ", from);
      AppendTail(sql, rows, false);
      break;
    }
  }
  sql += u";";
  query.sql = std::move(sql);
  return query;
}

}  // namespace qv::data
