// The second phase of the ADO readers, one table at a time.
#include "schema/key_reader.h"

#include <memory>
#include <vector>

#include "automation/convert.h"
#include "platform/data/data_types.h"
#include "platform/data/recordset.h"
#include "support/common.h"
#include "support/tyx_functions.h"

namespace qv {

namespace {

using RecordsetPtr = std::unique_ptr<data::Recordset>;

// OpenSchema with the failure cleared: nothing when the provider refused.
RecordsetPtr TryOpenSchema(data::Connection& cn, int32_t id, std::vector<Variant> restrictions) {
  try {
    return cn.OpenSchema(id, restrictions);
  } catch (const Error&) {
    return nullptr;
  }
}

std::vector<Variant> TableRestriction(size_t position, StringView table) {
  std::vector<Variant> restrictions(position + 1);
  restrictions[position] = Variant(String(table));
  return restrictions;
}

String TextOf(const data::Recordset& rs, StringView column) {
  const Variant& v = rs.Fields(column).Value();
  return v.is_null() || v.is_empty() ? String() : ToString(v);
}

void AppendToList(String& list, StringView name) {
  if (!list.empty()) list += u",";
  list += name;
}

bool ListHolds(StringView list, StringView name) {
  size_t start = 0;
  while (start <= list.size()) {
    const size_t comma = list.find(u',', start);
    const size_t end = comma == StringView::npos ? list.size() : comma;
    if (list.substr(start, end - start) == name) return true;
    if (comma == StringView::npos) break;
    start = comma + 1;
  }
  return false;
}

String ReadPrimaryKey(data::Connection& cn, StringView table, KeySink& sink) {
  String key;
  RecordsetPtr rs = TryOpenSchema(cn, data::adSchemaPrimaryKeys, TableRestriction(2, table));
  if (!rs) return key;
  try {
    for (rs->MoveFirst(); !rs->Eof(); rs->MoveNext()) {
      const String column = TextOf(*rs, u"COLUMN_NAME");
      AppendToList(key, column);
      sink.MarkPrimaryKey(column);
    }
  } catch (const Error&) {
    // A row that can't be read ends the walk; what was read stands.
  }
  return key;
}

// "IS_NULLABLE" false means the column refuses null. A value that isn't a Boolean at all says
// nothing.
bool RefusesNull(const Variant& nullable) {
  try {
    return !nullable.is_null() && !nullable.is_empty() && !ToBool(nullable);
  } catch (const Error&) {
    return false;
  }
}

void ReadRequiredColumns(data::Connection& cn, StringView table, KeySink& sink) {
  RecordsetPtr rs = TryOpenSchema(cn, data::adSchemaColumns, TableRestriction(2, table));
  if (!rs) return;
  try {
    for (; !rs->Eof(); rs->MoveNext()) {
      if (RefusesNull(rs->Fields(u"IS_NULLABLE").Value())) {
        sink.MarkRequired(TextOf(*rs, u"COLUMN_NAME"));
      }
    }
  } catch (const Error&) {
  }
}

// The walk over the index rowset: an index is finished when the name changes, and only an
// index of exactly one column marks that column unique.
class IndexWalk {
 public:
  IndexWalk(int32_t kind, KeySink& sink) : kind_(kind), sink_(sink) {}

  void Row(const data::Recordset& rs) {
    const Variant& name = rs.Fields(u"index_name").Value();
    if (name.is_null()) return;
    const String index = ToString(name);
    if (index != last_index_) {
      Finish();
      columns_ = String();
      column_count_ = 0;
      unique_ = false;
      last_index_ = index;
    }
    try {
      unique_ = ToBool(rs.Fields(u"Unique").Value());
    } catch (const Error&) {
      // An unreadable flag leaves the last one standing, as the original's ignored error did.
    }
    current_column_ = TextOf(rs, u"COLUMN_NAME");
    const bool primary = IsPrimary(rs.Fields(u"PRIMARY_KEY").Value(), index);
    if (!current_column_.empty() && !ListHolds(columns_, current_column_)) {
      AppendToList(columns_, current_column_);
      ++column_count_;
    }
    if (kind_ == kDbAccess && primary) {
      AppendToList(key_, current_column_);
      sink_.MarkPrimaryKey(current_column_);
    }
  }

  void Finish() {
    if (column_count_ == 1 && unique_) sink_.MarkUnique(current_column_);
  }

  const String& key() const { return key_; }

 private:
  bool IsPrimary(const Variant& flag, StringView index) const {
    if (!flag.is_null() && !flag.is_empty()) {
      try {
        return ToBool(flag);
      } catch (const Error&) {
        return false;
      }
    }
    // Providers that leave the flag out are known by the name they give the key's index. Only
    // Access takes its key from here; MySQL's name is worked out but never used.
    if (kind_ == kDbAccess) return index == u"PrimaryKey";
    if (kind_ == kDbMySql) return index == u"PRIMARY";
    return false;
  }

  int32_t kind_;
  KeySink& sink_;
  String columns_;
  int32_t column_count_ = 0;
  String last_index_;
  String current_column_;
  bool unique_ = false;
  String key_;
};

String ReadIndexes(data::Connection& cn, StringView table, int32_t kind, KeySink& sink) {
  RecordsetPtr rs = TryOpenSchema(cn, data::adSchemaIndexes, TableRestriction(4, table));
  // MySQL's provider wants the name quoted the way it quotes names.
  if (!rs && kind == kDbMySql) {
    rs = TryOpenSchema(cn, data::adSchemaIndexes, TableRestriction(4, QuoteDbName(table)));
  }
  IndexWalk walk(kind, sink);
  if (rs) {
    try {
      for (; !rs->Eof(); rs->MoveNext())
        walk.Row(*rs);
    } catch (const Error&) {
    }
  }
  walk.Finish();
  return walk.key();
}

}  // namespace

std::optional<String> ReadTableKeys(data::Connection& cn, StringView table, int32_t kind,
                                    KeySink& sink) {
  std::optional<String> table_key;
  if (kind != kDbAccess) {
    table_key = SortKeyList(ReadPrimaryKey(cn, table, sink));
    ReadRequiredColumns(cn, table, sink);
  }
  const String index_key = ReadIndexes(cn, table, kind, sink);
  if (kind == kDbAccess && !index_key.empty()) table_key = SortKeyList(index_key);
  return table_key;
}

}  // namespace qv
