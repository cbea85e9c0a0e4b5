// Reading an Access file with libmdb into DAO-shaped values: the catalogue, each table's
// columns, properties and indexes, and the stored queries from the query table.
#include "platform/data/access_database.h"

#include <mdbsql.h>
#include <mdbtools.h>

#include <filesystem>
#include <fstream>

#include "automation/error.h"
#include "platform/data/access_query_text.h"
#include "platform/data/data_types.h"
#include "platform/data/type_mapping.h"

namespace qv::data {
namespace {

constexpr StringView kSource = u"DAO.Database";
constexpr int32_t kErrFileNotFound = 3024;
constexpr int32_t kErrUnrecognizedFormat = 3343;
constexpr int32_t kErrPropertyNotFound = 3270;
constexpr int32_t kErrTableNotFound = 3078;

String Utf8(const char* text) {
  return text ? String::FromUtf8(text) : String();
}

std::string Narrow(StringView text) {
  return String::ToUtf8(text);
}

int32_t DaoTypeOfColumn(int col_type) {
  switch (col_type) {
    case MDB_NUMERIC:
      return dbDecimal;
    case MDB_COMPLEX:
      return 101;  // an attachment or multi-value column of ACE files
    default:
      return col_type;
  }
}

std::optional<String> Property(const MdbProperties* props, const char* key) {
  if (!props || !props->hash) return std::nullopt;
  const auto* value = static_cast<const char*>(g_hash_table_lookup(props->hash, key));
  if (!value) return std::nullopt;
  return Utf8(value);
}

std::map<String, String> AllProperties(const MdbProperties* props) {
  std::map<String, String> all;
  if (!props || !props->hash) return all;
  GHashTableIter iter;
  gpointer key = nullptr;
  gpointer value = nullptr;
  g_hash_table_iter_init(&iter, props->hash);
  while (g_hash_table_iter_next(&iter, &key, &value)) {
    all[Utf8(static_cast<const char*>(key))] = Utf8(static_cast<const char*>(value));
  }
  return all;
}

// A table definition read with its columns and indexes, freed on scope exit.
struct TableReader {
  MdbTableDef* table = nullptr;
  explicit TableReader(MdbTableDef* t) : table(t) {}
  ~TableReader() {
    if (table) mdb_free_tabledef(table);
  }
  TableReader(const TableReader&) = delete;
  TableReader& operator=(const TableReader&) = delete;
  MdbColumn* Column(unsigned i) const {
    return static_cast<MdbColumn*>(g_ptr_array_index(table->columns, i));
  }
};

DaoField FieldOf(const MdbColumn* col, bool jet3) {
  DaoField field;
  field.name = Utf8(col->name);
  field.type = DaoTypeOfColumn(col->col_type);
  field.size = col->col_size;
  // Jet 4 and later keep text in UCS-2: the stored size counts bytes.
  if (col->col_type == MDB_TEXT && !jet3) field.size /= 2;
  if (col->col_type == MDB_MEMO || col->col_type == MDB_OLE) field.size = 0;
  field.attributes = col->is_fixed ? dbFixedField : dbVariableField;
  if (col->is_long_auto) field.attributes |= dbAutoIncrField;
  field.properties = AllProperties(col->props);
  if (auto value = Property(col->props, "DefaultValue")) field.default_value = *value;
  field.required = Property(col->props, "Required").value_or(String()) == u"yes";
  field.allow_zero_length = Property(col->props, "AllowZeroLength").value_or(String()) == u"yes";
  return field;
}

// Bound text buffers for every column of a table, for row reading.
struct RowBuffers {
  std::vector<std::vector<char>> values;
  std::vector<int> lengths;
  RowBuffers(MdbTableDef* table, size_t bind_size) {
    values.resize(table->num_cols, std::vector<char>(bind_size + 1, 0));
    lengths.resize(table->num_cols, 0);
    for (unsigned i = 0; i < table->num_cols; ++i) {
      mdb_bind_column(table, static_cast<int>(i + 1), values[i].data(), &lengths[i]);
    }
  }
};

// The rows of the query table, grouped by the query they belong to (the low 24 bits of
// ObjectId are the catalogue id of the query). A file without the table has no queries.
std::map<long, std::vector<StoredQueryRow>> ReadQueryTable(MdbHandle* mdb) {
  std::map<long, std::vector<StoredQueryRow>> by_id;
  char name[] = "MSysQueries";
  TableReader reader(mdb_read_table_by_name(mdb, name, MDB_TABLE));
  if (!reader.table || !mdb_read_columns(reader.table)) return by_id;
  RowBuffers buffers(reader.table, mdb->bind_size);
  auto column = [&](const char* wanted) -> int {
    for (unsigned i = 0; i < reader.table->num_cols; ++i) {
      if (g_ascii_strcasecmp(reader.Column(i)->name, wanted) == 0) return static_cast<int>(i);
    }
    return -1;
  };
  const int id = column("ObjectId");
  const int attribute = column("Attribute");
  const int flag = column("Flag");
  const int name1 = column("Name1");
  const int name2 = column("Name2");
  const int expression = column("Expression");
  if (id < 0 || attribute < 0) return by_id;
  auto text = [&](int i) -> String {
    if (i < 0 || buffers.lengths[i] <= 0) return {};
    return Utf8(buffers.values[i].data());
  };
  mdb_rewind_table(reader.table);
  while (mdb_fetch_row(reader.table)) {
    StoredQueryRow row;
    row.attribute =
        static_cast<int32_t>(std::strtol(text(attribute).ToUtf8().c_str(), nullptr, 10));
    row.flag = static_cast<int32_t>(std::strtol(text(flag).ToUtf8().c_str(), nullptr, 10));
    row.name1 = text(name1);
    row.name2 = text(name2);
    row.expression = text(expression);
    const long object = std::strtol(text(id).ToUtf8().c_str(), nullptr, 10);
    by_id[object & 0x00FFFFFF].push_back(std::move(row));
  }
  return by_id;
}

// "[Order Details].[UnitPrice]" -> {"Order Details", "UnitPrice"}; a bare name has no table.
std::pair<String, String> SplitReference(StringView expression) {
  std::vector<String> parts;
  String current;
  bool bracket = false;
  for (const Char c : expression) {
    if (c == u'[') {
      bracket = true;
    } else if (c == u']') {
      bracket = false;
    } else if (c == u'.' && !bracket) {
      parts.push_back(current);
      current = String();
    } else {
      current.Append(c);
    }
  }
  parts.push_back(current);
  if (parts.size() == 1) return {String(), parts[0]};
  return {parts[parts.size() - 2], parts.back()};
}

bool IsPlainReference(StringView expression) {
  return expression.find_first_of(u"()&+-*/ \"'#") == StringView::npos ||
         (expression.find_first_of(u"()&+-*/\"'#") == StringView::npos &&
          expression.find(u'[') != StringView::npos);
}

// Refuses files that are no Jet/ACE database, or whose length is not a whole number of pages.
// libmdb trusts a file's page pointers: on a file cut short it can spend minutes decoding
// garbage, so a damaged file is stopped here, before the library sees it.
void CheckFileShape(const String& file) {
  std::ifstream in(Narrow(file), std::ios::binary);
  char header[32] = {};
  in.read(header, sizeof header);
  const std::string_view signature(header + 4, 15);
  const bool jet = in.gcount() == sizeof header && header[0] == 0 && header[1] == 1 &&
                   (signature == "Standard Jet DB" || signature == "Standard ACE DB");
  if (!jet) {
    throw Error(kErrUnrecognizedFormat,
                u"Unrecognized database format '" + file + u"': it is no Access database.",
                String(kSource));
  }
  const uintmax_t page = header[0x14] == 0 ? 2048 : 4096;
  std::error_code ec;
  const uintmax_t size = std::filesystem::file_size(Narrow(file), ec);
  if (ec || size < 2 * page || size % page != 0) {
    throw Error(kErrUnrecognizedFormat,
                u"Unrecognized database format '" + file +
                    u"': the file is damaged (it does not end on a page boundary).",
                String(kSource));
  }
}

}  // namespace

struct AccessDatabase::Handle {
  MdbHandle* mdb = nullptr;
  ~Handle() {
    if (mdb) mdb_close(mdb);
  }
};

Variant DaoField::Properties(StringView name) const {
  for (const auto& [key, value] : properties) {
    if (EqualsNoCase(key, name)) return value;
  }
  throw Error(kErrPropertyNotFound, u"Property not found.", String(kSource));
}

AccessDatabase::~AccessDatabase() = default;

// The database is only ever read here, whatever the options ask for.
std::unique_ptr<AccessDatabase> AccessDatabase::Open(StringView path, bool /*exclusive*/,
                                                     bool /*read_only*/, StringView /*connect*/) {
  const String file(path);
  std::error_code ec;
  if (file.empty() || !std::filesystem::is_regular_file(Narrow(file), ec)) {
    throw Error(kErrFileNotFound, u"Could not find file '" + file + u"'.", String(kSource));
  }
  CheckFileShape(file);
  std::unique_ptr<AccessDatabase> db(new AccessDatabase);
  db->path_ = file;
  db->handle_ = std::make_unique<Handle>();
  db->handle_->mdb = mdb_open(Narrow(file).c_str(), MDB_NOFLAGS);
  if (!db->handle_->mdb) {
    throw Error(kErrUnrecognizedFormat, u"Unrecognized database format '" + file + u"'.",
                String(kSource));
  }
  db->Load();
  return db;
}

void AccessDatabase::Load() {
  MdbHandle* mdb = handle_->mdb;
  // Finding the query table by name re-reads the catalogue for tables only, so it comes
  // first, and the full catalogue is read after it.
  std::map<long, std::vector<StoredQueryRow>> query_rows = ReadQueryTable(mdb);
  if (!mdb_read_catalog(mdb, MDB_ANY)) {
    throw Error(kErrUnrecognizedFormat,
                u"Unrecognized database format '" + path_ + u"': its catalogue cannot be read.",
                String(kSource));
  }
  mdb_set_date_fmt(mdb, "%Y-%m-%d %H:%M:%S");
  mdb_set_boolean_fmt_numbers(mdb);
  const bool jet3 = mdb->f->jet_version == MDB_VER_JET3;
  switch (mdb->f->jet_version) {
    case MDB_VER_JET3:
      version_ = u"3.0";
      break;
    case MDB_VER_JET4:
      version_ = u"4.0";
      break;
    case MDB_VER_ACCDB_2007:
      version_ = u"12.0";
      break;
    case MDB_VER_ACCDB_2010:
      version_ = u"14.0";
      break;
    default:
      version_ = u"16.0";
      break;
  }

  for (unsigned i = 0; i < mdb->num_catalog; ++i) {
    auto* entry = static_cast<MdbCatalogEntry*>(g_ptr_array_index(mdb->catalog, i));
    if (entry->object_type == MDB_QUERY) {
      DaoQueryDef query;
      query.name = Utf8(entry->object_name);
      const StoredQuery stored = RebuildStoredQuery(query_rows[static_cast<long>(entry->table_pg)]);
      query.type = stored.dao_type;
      query.sql = stored.sql;
      for (const auto& p : stored.parameters)
        query.parameters.push_back({p.name, p.dao_type});
      query.hidden = query.name.view().starts_with(u"~");
      for (const auto& output : stored.outputs) {
        DaoField field;
        field.name = output.alias;
        field.type = dbText;
        field.size = 255;
        field.attributes = dbVariableField;
        // The expression text stands in the field's properties until the columns are known.
        field.properties[u"Expression"] = output.expression;
        query.fields.push_back(std::move(field));
      }
      for (const auto& input : stored.inputs) {
        query.aliases[input.alias.empty() ? input.table : input.alias] = input.table;
      }
      queries_.push_back(std::move(query));
      continue;
    }
    if (entry->object_type != MDB_TABLE) continue;
    TableReader reader(mdb_read_table(entry));
    if (!reader.table || !mdb_read_columns(reader.table)) continue;
    mdb_read_indices(reader.table);
    DaoTableDef table;
    table.name = Utf8(entry->object_name);
    const auto flags = static_cast<uint32_t>(entry->flags);
    table.attributes =
        static_cast<int32_t>(flags & 0x80000002u) | ((flags & 0x8u) ? dbHiddenObject : 0);
    for (unsigned c = 0; c < reader.table->num_cols; ++c) {
      table.fields.push_back(FieldOf(reader.Column(c), jet3));
    }
    for (unsigned x = 0; reader.table->indices && x < reader.table->num_idxs; ++x) {
      auto* idx = static_cast<MdbIndex*>(g_ptr_array_index(reader.table->indices, x));
      if (idx->index_type == 2 || idx->num_keys == 0) continue;
      DaoIndex index;
      index.name = Utf8(idx->name);
      index.primary = idx->index_type == 1;
      index.unique = (idx->flags & 0x01) != 0 || index.primary;
      index.ignore_nulls = (idx->flags & 0x02) != 0;
      index.required = (idx->flags & 0x08) != 0;
      for (unsigned k = 0; k < idx->num_keys && k < MDB_MAX_IDX_COLS; ++k) {
        const int col = idx->key_col_num[k] - 1;
        if (col < 0 || static_cast<unsigned>(col) >= reader.table->num_cols) continue;
        index.fields.push_back(
            {Utf8(reader.Column(static_cast<unsigned>(col))->name), idx->key_col_order[k] != 0});
      }
      table.indexes.push_back(std::move(index));
    }
    tables_.push_back(std::move(table));
  }
  ResolveQueryFields();
}

// Gives each query's output fields their names and, where the expression names a column of
// a table or of another query, that column's type and size.
void AccessDatabase::ResolveQueryFields() {
  for (DaoQueryDef& query : queries_) {
    std::vector<DaoField> resolved;
    int unnamed = 0;
    for (DaoField& field : query.fields) {
      const String expression = field.properties[u"Expression"];
      field.properties.clear();
      auto [source, column] = SplitReference(expression);
      if (auto alias = query.aliases.find(source); alias != query.aliases.end()) {
        source = alias->second;
      } else if (source.empty() && query.aliases.size() == 1) {
        source = query.aliases.begin()->second;
      }
      if (column == u"*") {
        if (const DaoTableDef* table = FindTable(source)) {
          for (const DaoField& f : table->fields)
            resolved.push_back(f);
        }
        continue;
      }
      if (field.name.empty()) {
        field.name = IsPlainReference(expression)
                         ? column
                         : u"Expr" + String::FromUtf8(std::to_string(1000 + unnamed++));
      }
      if (IsPlainReference(expression)) {
        if (const DaoTableDef* table = FindTable(source)) {
          for (const DaoField& f : table->fields) {
            if (!EqualsNoCase(f.name, column)) continue;
            const String name = field.name;
            field = f;
            field.name = name;
          }
        }
      }
      resolved.push_back(std::move(field));
    }
    query.fields = std::move(resolved);
  }
}

std::vector<String> AccessDatabase::Views() const {
  std::vector<String> views;
  for (const DaoQueryDef& query : queries_) {
    if (query.type == dbQSelect && query.parameters.empty() && !query.hidden) {
      views.push_back(query.name);
    }
  }
  return views;
}

const DaoTableDef* AccessDatabase::FindTable(StringView name) const {
  for (const DaoTableDef& table : tables_) {
    if (EqualsNoCase(table.name, name)) return &table;
  }
  return nullptr;
}

const DaoQueryDef* AccessDatabase::FindQuery(StringView name) const {
  for (const DaoQueryDef& query : queries_) {
    if (EqualsNoCase(query.name, name)) return &query;
  }
  return nullptr;
}

int32_t AdoTypeOfDaoType(int32_t dao_type) {
  switch (dao_type) {
    case dbBoolean:
      return adBoolean;
    case dbByte:
      return adUnsignedTinyInt;
    case dbInteger:
      return adSmallInt;
    case dbLong:
      return adInteger;
    case dbCurrency:
      return adCurrency;
    case dbSingle:
      return adSingle;
    case dbDouble:
      return adDouble;
    case dbDate:
      return adDate;
    case dbBinary:
      return adBinary;
    case dbText:
      return adVarWChar;
    case dbLongBinary:
      return adLongVarBinary;
    case dbMemo:
      return adLongVarWChar;
    case dbGUID:
      return adGUID;
    case dbBigInt:
      return adBigInt;
    case dbDecimal:
    case dbNumeric:
      return adNumeric;
    default:
      return adVarWChar;
  }
}

namespace {

Variant ValueOfText(MdbHandle* mdb, MdbColumn* col, const char* text, int length) {
  if (length <= 0 && col->col_type != MDB_TEXT && col->col_type != MDB_MEMO) return Variant::Null();
  const String value = Utf8(text);
  switch (col->col_type) {
    case MDB_BOOL:
      return Variant(value != u"0" && !value.empty());
    case MDB_BYTE:
      return Variant(static_cast<uint8_t>(std::strtol(text, nullptr, 10)));
    case MDB_INT:
      return Variant(static_cast<int16_t>(std::strtol(text, nullptr, 10)));
    case MDB_LONGINT:
      return Variant(static_cast<int32_t>(std::strtol(text, nullptr, 10)));
    case MDB_MONEY:
      return CurrencyFromText(value).value_or(Variant::Null());
    case MDB_FLOAT:
      return Variant(std::strtof(text, nullptr));
    case MDB_DOUBLE:
    case MDB_NUMERIC:
      return Variant(std::strtod(text, nullptr));
    case MDB_DATETIME: {
      const auto date = ParseIsoDateTime(value);
      return date ? Variant::Date(*date) : Variant::Null();
    }
    case MDB_OLE: {
      size_t size = 0;
      void* bytes = mdb_ole_read_full(mdb, col, &size);
      if (!bytes) return Variant::Null();
      Variant result = ByteArray(std::span<const uint8_t>(static_cast<uint8_t*>(bytes), size));
      free(bytes);
      return result;
    }
    case MDB_TEXT:
    case MDB_MEMO:
      if (length <= 0) return Variant::Null();
      return value;
    default:
      return value;
  }
}

}  // namespace

Rowset AccessDatabase::ReadTable(StringView name) const {
  const DaoTableDef* def = FindTable(name);
  if (!def) {
    throw Error(kErrTableNotFound,
                u"The Microsoft Jet database engine cannot find the input table or query '" +
                    String(name) + u"'.",
                String(kSource));
  }
  MdbHandle* mdb = handle_->mdb;
  std::string narrow = Narrow(def->name);
  TableReader reader(mdb_read_table_by_name(mdb, narrow.data(), MDB_TABLE));
  if (!reader.table || !mdb_read_columns(reader.table)) {
    throw Error(kErrTableNotFound, u"The table '" + String(name) + u"' cannot be read.",
                String(kSource));
  }
  Rowset rowset;
  for (const DaoField& field : def->fields) {
    const size_t i = rowset.AddColumn(field.name, AdoTypeOfDaoType(field.type), field.size);
    ColumnInfo& info = rowset.columns[i];
    info.auto_increment = (field.attributes & dbAutoIncrField) != 0;
    if (field.required) info.attributes &= ~(adFldIsNullable | adFldMayBeNull);
    if (field.attributes & dbFixedField) info.attributes |= adFldFixed;
    if (field.type == dbMemo || field.type == dbLongBinary) info.attributes |= adFldLong;
    info.attributes |= adFldUpdatable;
  }
  RowBuffers buffers(reader.table, mdb->bind_size);
  mdb_rewind_table(reader.table);
  while (mdb_fetch_row(reader.table)) {
    auto& row = rowset.rows.emplace_back();
    for (unsigned i = 0; i < reader.table->num_cols && i < def->fields.size(); ++i) {
      row.push_back(
          ValueOfText(mdb, reader.Column(i), buffers.values[i].data(), buffers.lengths[i]));
    }
  }
  return rowset;
}

namespace {

// libmdbsql's session, closed on scope exit.
struct SqlSession {
  MdbSQL* sql = mdb_sql_init();
  ~SqlSession() {
    if (!sql) return;
    mdb_sql_reset(sql);
    mdb_sql_exit(sql);
  }
  SqlSession() = default;
  SqlSession(const SqlSession&) = delete;
  SqlSession& operator=(const SqlSession&) = delete;
};

MdbColumn* TableColumnNamed(MdbTableDef* table, const char* name) {
  for (unsigned i = 0; table && i < table->num_cols; ++i) {
    auto* col = static_cast<MdbColumn*>(g_ptr_array_index(table->columns, i));
    if (g_ascii_strcasecmp(col->name, name) == 0) return col;
  }
  return nullptr;
}

}  // namespace

Rowset AccessDatabase::Query(StringView sql) const {
  SqlSession session;
  std::string path = Narrow(path_);
  if (!session.sql || !mdb_sql_open(session.sql, path.data())) {
    throw Error(kErrUnrecognizedFormat, u"Unrecognized database format '" + path_ + u"'.",
                String(kSource));
  }
  mdb_set_date_fmt(session.sql->mdb, "%Y-%m-%d %H:%M:%S");
  mdb_set_boolean_fmt_numbers(session.sql->mdb);
  const std::string text = Narrow(sql);
  if (!mdb_sql_run_query(session.sql, text.c_str()) || mdb_sql_has_error(session.sql) ||
      !session.sql->cur_table) {
    const String reason = Utf8(session.sql->error_msg);
    throw Error(kErrSyntax,
                u"mdbtools cannot run this statement on an Access file" +
                    (reason.empty() ? String(u".") : u": " + reason),
                String(kSource));
  }
  MdbTableDef* table = session.sql->cur_table;
  const DaoTableDef* def = FindTable(Utf8(table->name));
  Rowset rowset;
  std::vector<MdbColumn*> sources;
  for (unsigned i = 0; i < session.sql->num_columns; ++i) {
    auto* column = static_cast<MdbSQLColumn*>(g_ptr_array_index(session.sql->columns, i));
    MdbColumn* source = TableColumnNamed(table, column->name);
    sources.push_back(source);
    DaoField field;
    field.type = dbText;
    if (def) {
      for (const DaoField& f : def->fields) {
        if (EqualsNoCase(f.name, Utf8(column->name))) field = f;
      }
    }
    const size_t index =
        rowset.AddColumn(Utf8(column->name), AdoTypeOfDaoType(field.type), field.size);
    rowset.columns[index].auto_increment = (field.attributes & dbAutoIncrField) != 0;
  }
  // Running the query has bound every selected column already; binding again would
  // leave the values in buffers that nothing fills.
  while (mdb_sql_fetch_row(session.sql, table)) {
    auto& row = rowset.rows.emplace_back();
    for (unsigned i = 0; i < session.sql->num_columns; ++i) {
      auto* column = static_cast<MdbSQLColumn*>(g_ptr_array_index(session.sql->columns, i));
      const char* value = static_cast<const char*>(g_ptr_array_index(session.sql->bound_values, i));
      const int length =
          column->bind_len ? *column->bind_len : (value ? static_cast<int>(strlen(value)) : 0);
      if (!sources[i]) {
        row.push_back(value ? Variant(Utf8(value)) : Variant::Null());
        continue;
      }
      row.push_back(ValueOfText(session.sql->mdb, sources[i], value ? value : "", length));
    }
  }
  return rowset;
}

}  // namespace qv::data
