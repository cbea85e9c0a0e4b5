// ADO over an Access file: schema rowsets from the DAO-shaped reader, and whole-table reads.
#include "platform/data/access_backend.h"

#include "automation/error.h"
#include "platform/data/access_database.h"
#include "platform/data/data_types.h"
#include "platform/data/provider_error.h"

namespace qv::data {
namespace {

constexpr StringView kSource = u"Quorvex Access (mdbtools)";

String TrimText(StringView text) {
  while (!text.empty() &&
         (text.front() == u' ' || text.front() == u'\r' || text.front() == u'\n')) {
    text.remove_prefix(1);
  }
  while (!text.empty() && (text.back() == u' ' || text.back() == u';' || text.back() == u'\r' ||
                           text.back() == u'\n')) {
    text.remove_suffix(1);
  }
  return String(text);
}

// The parts of "SELECT * FROM <name> [WHERE 0=1]": the name, and whether rows are wanted.
std::optional<std::pair<String, bool>> ParseWholeTableSelect(StringView sql) {
  const String text = TrimText(sql);
  const String upper = ToUpper(text);
  constexpr StringView kHead = u"SELECT * FROM ";
  if (!upper.view().starts_with(kHead)) return std::nullopt;
  StringView rest = text.view().substr(kHead.size());
  bool rows = true;
  const size_t where = ToUpper(rest).view().rfind(u" WHERE ");
  if (where != StringView::npos) {
    const String condition = ToUpper(TrimText(rest.substr(where + 7)));
    if (condition != u"0=1" && condition != u"1=0") return std::nullopt;
    rows = false;
    rest = rest.substr(0, where);
  }
  String name = TrimText(rest);
  if (name.size() >= 2 && ((name[0] == u'[' && name.view().back() == u']') ||
                           (name[0] == u'"' && name.view().back() == u'"') ||
                           (name[0] == u'`' && name.view().back() == u'`'))) {
    name = String(name.view().substr(1, name.size() - 2));
  } else if (name.view().find(u' ') != StringView::npos) {
    return std::nullopt;
  }
  return std::make_pair(name, rows);
}

class AccessBackend final : public Backend {
 public:
  explicit AccessBackend(std::unique_ptr<AccessDatabase> db) : db_(std::move(db)) {}

  std::optional<Variant> Property(StringView name) override {
    if (EqualsNoCase(name, u"DBMS Name")) return Variant(String(u"MS Jet"));
    if (EqualsNoCase(name, u"DBMS Version")) return Variant(db_->Version());
    if (EqualsNoCase(name, u"Provider Name")) return Variant(String(kSource));
    if (EqualsNoCase(name, u"Provider Version")) return Variant(String(u"1.0"));
    if (EqualsNoCase(name, u"Data Source")) return Variant(db_->Name());
    return std::nullopt;
  }

  std::vector<String> PropertyNames() override {
    return {u"DBMS Name", u"DBMS Version", u"Provider Name", u"Provider Version", u"Data Source"};
  }

  std::pair<String, String> NameQuotes() const override { return {u"[", u"]"}; }

  Rowset OpenSchema(int32_t schema_id, const std::vector<Variant>&) override {
    Rowset rowset = MakeSchemaRowset(schema_id);
    if (schema_id == adSchemaTables) {
      for (const DaoTableDef& table : db_->TableDefs()) {
        auto& row = rowset.AddRow();
        rowset.Set(row, u"TABLE_NAME", table.name);
        const bool system = (table.attributes & dbSystemObject) != 0;
        const bool hidden = (table.attributes & dbHiddenObject) != 0;
        rowset.Set(row, u"TABLE_TYPE",
                   String(system   ? u"SYSTEM TABLE"
                          : hidden ? u"ACCESS TABLE"
                                   : u"TABLE"));
      }
      for (const String& view : db_->Views()) {
        auto& row = rowset.AddRow();
        rowset.Set(row, u"TABLE_NAME", view);
        rowset.Set(row, u"TABLE_TYPE", String(u"VIEW"));
      }
      return rowset;
    }
    for (const DaoTableDef& table : db_->TableDefs()) {
      if (schema_id == adSchemaColumns) {
        for (size_t i = 0; i < table.fields.size(); ++i) {
          const DaoField& field = table.fields[i];
          auto& row = rowset.AddRow();
          rowset.Set(row, u"TABLE_NAME", table.name);
          rowset.Set(row, u"COLUMN_NAME", field.name);
          rowset.Set(row, u"ORDINAL_POSITION", static_cast<int32_t>(i + 1));
          rowset.Set(row, u"IS_NULLABLE", !field.required);
          rowset.Set(row, u"DATA_TYPE", AdoTypeOfDaoType(field.type));
          rowset.Set(row, u"CHARACTER_MAXIMUM_LENGTH", field.size);
          if (!field.default_value.is_empty()) {
            rowset.Set(row, u"COLUMN_HASDEFAULT", true);
            rowset.Set(row, u"COLUMN_DEFAULT", field.default_value);
          }
        }
        continue;
      }
      for (const DaoIndex& index : table.indexes) {
        if (schema_id == adSchemaPrimaryKeys && !index.primary) continue;
        for (size_t i = 0; i < index.fields.size(); ++i) {
          auto& row = rowset.AddRow();
          rowset.Set(row, u"TABLE_NAME", table.name);
          rowset.Set(row, u"COLUMN_NAME", index.fields[i].name);
          if (schema_id == adSchemaPrimaryKeys) {
            rowset.Set(row, u"ORDINAL", static_cast<int32_t>(i + 1));
            rowset.Set(row, u"PK_NAME", index.name);
            continue;
          }
          rowset.Set(row, u"INDEX_NAME", index.name);
          rowset.Set(row, u"PRIMARY_KEY", index.primary);
          rowset.Set(row, u"UNIQUE", index.unique);
          rowset.Set(row, u"ORDINAL_POSITION", static_cast<int32_t>(i + 1));
        }
      }
    }
    return rowset;
  }

  Rowset Execute(StringView sql) override {
    const auto parsed = ParseWholeTableSelect(sql);
    if (!parsed) {
      try {
        return db_->Query(sql);
      } catch (const Error& e) {
        throw ProviderError(e.number(), e.description(), String(kSource));
      }
    }
    const auto& [name, rows] = *parsed;
    try {
      if (db_->FindTable(name)) {
        Rowset rowset = db_->ReadTable(name);
        if (!rows) rowset.rows.clear();
        return rowset;
      }
      if (const DaoQueryDef* query = db_->FindQuery(name)) {
        if (rows) {
          throw ProviderError(kErrNotSupported,
                              u"The rows of the stored query '" + name +
                                  u"' cannot be computed here; only its columns can be read.",
                              String(kSource));
        }
        Rowset rowset;
        for (const DaoField& field : query->fields) {
          const size_t i = rowset.AddColumn(field.name, AdoTypeOfDaoType(field.type), field.size);
          rowset.columns[i].auto_increment = (field.attributes & dbAutoIncrField) != 0;
        }
        return rowset;
      }
    } catch (const Error& e) {
      throw ProviderError(kErrProviderFailure, e.description(), String(kSource));
    }
    throw ProviderError(
        kErrNoSuchTable,
        u"The Microsoft Jet database engine cannot find the input table or query '" + name + u"'.",
        String(kSource));
  }

 private:
  std::unique_ptr<AccessDatabase> db_;
};

}  // namespace

std::unique_ptr<Backend> OpenAccessBackend(StringView path) {
  try {
    return std::make_unique<AccessBackend>(AccessDatabase::Open(path));
  } catch (const Error& e) {
    throw ProviderError(kErrProviderFailure, e.description(), String(kSource));
  }
}

}  // namespace qv::data
