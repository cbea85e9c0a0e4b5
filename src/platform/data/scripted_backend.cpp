// The scripted backend: answers from a ScriptedSource held in a registry by name.
#include "platform/data/scripted_backend.h"

#include <mutex>

#include "platform/data/data_types.h"

namespace qv::data {
namespace {

constexpr StringView kSource = u"Quorvex scripted source";

// The registry is the one piece of shared state of this layer; it is filled by tests only.
struct Registry {
  std::mutex lock;
  std::map<String, std::shared_ptr<ScriptedSource>> sources;
};

Registry& TheRegistry() {
  static Registry registry;
  return registry;
}

// The table name a statement ends with after FROM: unquoted, without its schema.
String TargetOf(StringView sql) {
  const String upper = ToUpper(sql);
  const size_t from = upper.view().find(u" FROM ");
  if (from == StringView::npos) return {};
  StringView rest = sql.substr(from + 6);
  const String rest_upper = ToUpper(rest);
  const size_t where = rest_upper.view().find(u" WHERE ");
  if (where != StringView::npos) rest = rest.substr(0, where);
  while (!rest.empty() && rest.back() == u' ')
    rest.remove_suffix(1);
  // The last dotted part, outside quotes, names the table.
  size_t dot = StringView::npos;
  Char quote = 0;
  for (size_t i = 0; i < rest.size(); ++i) {
    const Char c = rest[i];
    if (quote) {
      if (c == quote) quote = 0;
    } else if (c == u'"' || c == u'`') {
      quote = c;
    } else if (c == u'[') {
      quote = u']';
    } else if (c == u'.') {
      dot = i;
    }
  }
  if (dot != StringView::npos) rest = rest.substr(dot + 1);
  if (rest.size() >= 2 && (rest.front() == u'"' || rest.front() == u'`' || rest.front() == u'[')) {
    rest = rest.substr(1, rest.size() - 2);
  }
  return String(rest);
}

class ScriptedBackend final : public Backend {
 public:
  explicit ScriptedBackend(std::shared_ptr<ScriptedSource> source) : source_(std::move(source)) {}

  std::optional<Variant> Property(StringView name) override {
    for (const auto& [key, value] : source_->properties) {
      if (EqualsNoCase(key, name)) return value;
    }
    return std::nullopt;
  }

  std::vector<String> PropertyNames() override {
    std::vector<String> names;
    for (const auto& entry : source_->properties)
      names.push_back(entry.first);
    return names;
  }

  Rowset OpenSchema(int32_t schema_id, const std::vector<Variant>& restrictions) override {
    if (auto failure = source_->schema_failures.find(schema_id);
        failure != source_->schema_failures.end()) {
      throw ProviderError(failure->second);
    }
    Rowset rowset = MakeSchemaRowset(schema_id);
    if (schema_id == adSchemaIndexes && source_->index_needs_exact_name) {
      const auto table = RestrictionText(restrictions, 4);
      if (table && !Find(*table)) {
        throw ProviderError(kErrProviderFailure, u"Table '" + *table + u"' doesn't exist",
                            String(kSource));
      }
    }
    for (const ScriptedTable& table : source_->tables)
      Fill(rowset, schema_id, table);
    return rowset;
  }

  Rowset Execute(StringView sql) override {
    source_->executed.emplace_back(sql);
    if (auto found = source_->statements.find(String(sql)); found != source_->statements.end()) {
      return found->second;
    }
    const ScriptedTable* table = Find(TargetOf(sql));
    if (!table || table->probe_fails) {
      throw ProviderError(kErrNoSuchTable, u"Invalid object name '" + TargetOf(sql) + u"'.",
                          String(kSource), u"42S02");
    }
    Rowset rowset;
    for (const ScriptedColumn& column : table->columns) {
      const size_t i = rowset.AddColumn(column.name, column.type, column.size);
      rowset.columns[i].auto_increment = column.auto_increment;
      if (!column.nullable) rowset.columns[i].attributes &= ~(adFldIsNullable | adFldMayBeNull);
    }
    const String upper = ToUpper(sql);
    const bool probe = upper.view().find(u"WHERE 0=1") != StringView::npos ||
                       upper.view().find(u"WHERE 1=0") != StringView::npos;
    if (!probe) rowset.rows = table->rows;
    return rowset;
  }

 private:
  const ScriptedTable* Find(StringView name) const {
    for (const ScriptedTable& table : source_->tables) {
      if (table.name == name) return &table;
    }
    return nullptr;
  }

  static void Common(const Rowset& rowset, std::vector<Variant>& row, const ScriptedTable& table) {
    if (!table.schema.empty()) rowset.Set(row, u"TABLE_SCHEMA", table.schema);
    rowset.Set(row, u"TABLE_NAME", table.name);
  }

  static void Fill(Rowset& rowset, int32_t schema_id, const ScriptedTable& table) {
    switch (schema_id) {
      case adSchemaTables: {
        auto& row = rowset.AddRow();
        Common(rowset, row, table);
        rowset.Set(row, u"TABLE_TYPE", table.type);
        break;
      }
      case adSchemaColumns:
        for (size_t i = 0; i < table.columns.size(); ++i) {
          auto& row = rowset.AddRow();
          Common(rowset, row, table);
          rowset.Set(row, u"COLUMN_NAME", table.columns[i].name);
          rowset.Set(row, u"ORDINAL_POSITION", static_cast<int32_t>(i + 1));
          rowset.Set(row, u"IS_NULLABLE", table.columns[i].nullable);
          rowset.Set(row, u"DATA_TYPE", table.columns[i].type);
          rowset.Set(row, u"CHARACTER_MAXIMUM_LENGTH", table.columns[i].size);
        }
        break;
      case adSchemaPrimaryKeys:
        for (size_t i = 0; i < table.key.size(); ++i) {
          auto& row = rowset.AddRow();
          Common(rowset, row, table);
          rowset.Set(row, u"COLUMN_NAME", table.key[i]);
          rowset.Set(row, u"ORDINAL", static_cast<int32_t>(i + 1));
        }
        break;
      case adSchemaIndexes:
        for (const ScriptedIndex& index : table.indexes) {
          for (size_t i = 0; i < index.columns.size(); ++i) {
            auto& row = rowset.AddRow();
            Common(rowset, row, table);
            rowset.Set(row, u"INDEX_NAME", index.name);
            rowset.Set(row, u"UNIQUE", index.unique);
            rowset.Set(row, u"PRIMARY_KEY", index.primary_key);
            rowset.Set(row, u"ORDINAL_POSITION", static_cast<int32_t>(i + 1));
            rowset.Set(row, u"COLUMN_NAME", index.columns[i]);
          }
        }
        break;
    }
  }

  std::shared_ptr<ScriptedSource> source_;
};

}  // namespace

void RegisterScriptedSource(StringView name, std::shared_ptr<ScriptedSource> source) {
  Registry& registry = TheRegistry();
  std::lock_guard guard(registry.lock);
  registry.sources[String(name)] = std::move(source);
}

void UnregisterScriptedSource(StringView name) {
  Registry& registry = TheRegistry();
  std::lock_guard guard(registry.lock);
  registry.sources.erase(String(name));
}

std::unique_ptr<Backend> OpenScriptedBackend(StringView name) {
  std::shared_ptr<ScriptedSource> source;
  {
    Registry& registry = TheRegistry();
    std::lock_guard guard(registry.lock);
    if (auto found = registry.sources.find(String(name)); found != registry.sources.end()) {
      source = found->second;
    }
  }
  if (!source) {
    throw ProviderError(kErrProviderFailure,
                        u"No scripted data source is registered as \"" + String(name) + u"\".",
                        String(kSource));
  }
  if (source->open_failure) throw ProviderError(*source->open_failure);
  return std::make_unique<ScriptedBackend>(std::move(source));
}

}  // namespace qv::data
