// SQLite backend: catalogue, schema rowsets and statements over one sqlite3 handle.
#include "platform/data/sqlite_backend.h"

#include <sqlite3.h>
#include <sys/stat.h>

#include <chrono>
#include <cstring>
#include <map>

#include "platform/data/data_types.h"
#include "platform/data/provider_error.h"
#include "platform/data/type_mapping.h"

namespace qv::data {
namespace {

constexpr StringView kSource = u"Quorvex SQLite";

String FromUtf8(const unsigned char* text) {
  return text ? String::FromUtf8(reinterpret_cast<const char*>(text)) : String();
}
String FromUtf8(const char* text) {
  return text ? String::FromUtf8(text) : String();
}

String QuoteName(StringView name) {
  String quoted(u"\"");
  for (const Char c : name) {
    quoted.Append(c);
    if (c == u'"') quoted.Append(c);
  }
  quoted.Append(u'"');
  return quoted;
}

// The error number a failed SQLite call maps to.
int32_t NumberFor(int code, StringView message) {
  if (message.find(u"no such table") != StringView::npos) return kErrNoSuchTable;
  if ((code & 0xff) == SQLITE_CONSTRAINT) return kErrIntegrityViolation;
  if ((code & 0xff) == SQLITE_ERROR) return kErrSyntax;
  return kErrProviderFailure;
}

class Statement {
 public:
  Statement(sqlite3* db, StringView sql) {
    const std::string text = String::ToUtf8(sql);
    const int rc =
        sqlite3_prepare_v2(db, text.c_str(), static_cast<int>(text.size()), &stmt_, nullptr);
    if (rc != SQLITE_OK) {
      const String message = FromUtf8(sqlite3_errmsg(db));
      throw ProviderError(NumberFor(rc, message), message, String(kSource), {},
                          sqlite3_extended_errcode(db));
    }
    if (!stmt_) {
      throw ProviderError(kErrSyntax, u"The statement is empty.", String(kSource));
    }
  }
  ~Statement() { sqlite3_finalize(stmt_); }
  Statement(const Statement&) = delete;
  Statement& operator=(const Statement&) = delete;

  // True while a row is there; a failure raises.
  bool Step() {
    const int rc = sqlite3_step(stmt_);
    if (rc == SQLITE_ROW) return true;
    if (rc == SQLITE_DONE) return false;
    sqlite3* db = sqlite3_db_handle(stmt_);
    const String message = FromUtf8(sqlite3_errmsg(db));
    throw ProviderError(NumberFor(rc, message), message, String(kSource), {},
                        sqlite3_extended_errcode(db));
  }
  String Text(int column) const { return FromUtf8(sqlite3_column_text(stmt_, column)); }
  int64_t Int(int column) const { return sqlite3_column_int64(stmt_, column); }
  bool IsNull(int column) const { return sqlite3_column_type(stmt_, column) == SQLITE_NULL; }
  sqlite3_stmt* get() const { return stmt_; }

 private:
  sqlite3_stmt* stmt_ = nullptr;
};

struct TableColumn {
  String name;
  String declared;
  bool not_null = false;
  int pk_position = 0;  // 1-based position in the primary key, 0 when not a key column
  Variant default_value;
};

struct TableShape {
  std::vector<TableColumn> columns;
  int key_columns = 0;
  // The column that aliases the rowid (INTEGER PRIMARY KEY), if any. AUTOINCREMENT is only
  // allowed on such a column, so this one test finds both kinds of auto-increment.
  std::optional<size_t> RowidColumn() const {
    if (key_columns != 1) return std::nullopt;
    for (size_t i = 0; i < columns.size(); ++i) {
      if (columns[i].pk_position == 1 && EqualsNoCase(columns[i].declared, u"INTEGER")) return i;
    }
    return std::nullopt;
  }
};

Variant ValueOf(sqlite3_stmt* stmt, int column, int32_t type) {
  switch (sqlite3_column_type(stmt, column)) {
    case SQLITE_NULL:
      return Variant::Null();
    case SQLITE_INTEGER: {
      const int64_t value = sqlite3_column_int64(stmt, column);
      switch (type) {
        case adBoolean:
          return Variant(value != 0);
        case adSmallInt:
          if (value >= INT16_MIN && value <= INT16_MAX) return Variant(static_cast<int16_t>(value));
          break;
        case adUnsignedTinyInt:
          if (value >= 0 && value <= 255) return Variant(static_cast<uint8_t>(value));
          break;
        case adCurrency:
          return Variant::Currency(value * 10000);
        case adDouble:
          return Variant(static_cast<double>(value));
        default:
          break;
      }
      return IntegerValue(value);
    }
    case SQLITE_FLOAT: {
      const double value = sqlite3_column_double(stmt, column);
      if (type == adCurrency) return *CurrencyFromText(String::FromUtf8(std::to_string(value)));
      // SQLite keeps REAL dates as Julian day numbers.
      if (type == adDBDate || type == adDBTimeStamp) return Variant::Date(value - 2415018.5);
      return Variant(value);
    }
    case SQLITE_TEXT: {
      const String text = FromUtf8(sqlite3_column_text(stmt, column));
      if (type == adDBDate || type == adDBTime || type == adDBTimeStamp || type == adDate) {
        if (auto date = ParseIsoDateTime(text)) return Variant::Date(*date);
      }
      if (type == adCurrency) {
        if (auto money = CurrencyFromText(text)) return *money;
      }
      return Variant(text);
    }
    default: {
      const auto* bytes = static_cast<const uint8_t*>(sqlite3_column_blob(stmt, column));
      const int size = sqlite3_column_bytes(stmt, column);
      return ByteArray(std::span<const uint8_t>(bytes, bytes ? static_cast<size_t>(size) : 0));
    }
  }
}

[[noreturn]] void FailOn(sqlite3* db, int rc) {
  const String message = FromUtf8(sqlite3_errmsg(db));
  throw ProviderError(NumberFor(rc, message), message, String(kSource), {},
                      sqlite3_extended_errcode(db));
}

void BindValue(sqlite3_stmt* stmt, int index, const Variant& value) {
  int rc = SQLITE_OK;
  switch (value.type()) {
    case VarType::Empty:
    case VarType::Null:
      rc = sqlite3_bind_null(stmt, index);
      break;
    case VarType::Boolean:
      rc = sqlite3_bind_int(stmt, index, value.as_bool() ? 1 : 0);
      break;
    case VarType::Byte:
      rc = sqlite3_bind_int(stmt, index, value.as_byte());
      break;
    case VarType::Integer:
      rc = sqlite3_bind_int(stmt, index, value.as_integer());
      break;
    case VarType::Long:
      rc = sqlite3_bind_int(stmt, index, value.as_long());
      break;
    case VarType::Single:
      rc = sqlite3_bind_double(stmt, index, value.as_single());
      break;
    case VarType::Double:
      rc = sqlite3_bind_double(stmt, index, value.as_double());
      break;
    case VarType::Currency:
      // Whole amounts stay integers so that they compare equal to integer literals in SQL.
      if (value.as_currency() % 10000 == 0) {
        rc = sqlite3_bind_int64(stmt, index, value.as_currency() / 10000);
      } else {
        rc = sqlite3_bind_double(stmt, index, static_cast<double>(value.as_currency()) / 10000.0);
      }
      break;
    case VarType::Date: {
      const auto text = IsoDateTimeText(value.as_date());
      if (!text)
        throw ProviderError(kErrDataConversion, u"The date is out of range.", String(kSource));
      const std::string utf8 = text->ToUtf8();
      rc = sqlite3_bind_text(stmt, index, utf8.data(), static_cast<int>(utf8.size()),
                             SQLITE_TRANSIENT);
      break;
    }
    case VarType::String: {
      const std::string utf8 = value.as_string().ToUtf8();
      rc = sqlite3_bind_text(stmt, index, utf8.data(), static_cast<int>(utf8.size()),
                             SQLITE_TRANSIENT);
      break;
    }
    default: {
      const auto bytes = BytesOf(value);
      if (!bytes) {
        throw ProviderError(kErrDataConversion,
                            u"Application uses a value of the wrong type for the current "
                            u"operation.",
                            String(kSource));
      }
      rc = sqlite3_bind_blob(stmt, index, bytes->data(), static_cast<int>(bytes->size()),
                             SQLITE_TRANSIENT);
      break;
    }
  }
  if (rc != SQLITE_OK) FailOn(sqlite3_db_handle(stmt), rc);
}

// The rows of one statement, stepped as they are read. The database handle is closed with
// sqlite3_close_v2, which waits for unfinalised statements, so this cursor may outlive it.
class SqliteCursor final : public Cursor {
 public:
  SqliteCursor(sqlite3_stmt* stmt, std::vector<ColumnInfo> columns, bool has_row)
      : stmt_(stmt), pending_(has_row), done_(!has_row) {
    columns_ = std::move(columns);
  }
  ~SqliteCursor() override { sqlite3_finalize(stmt_); }

  bool Fetch(std::vector<Variant>& row) override {
    if (!pending_) {
      if (done_) return false;
      const int rc = sqlite3_step(stmt_);
      if (rc == SQLITE_DONE) {
        done_ = true;
        return false;
      }
      if (rc != SQLITE_ROW) FailOn(sqlite3_db_handle(stmt_), rc);
    }
    pending_ = false;
    row.resize(columns_.size());
    for (size_t i = 0; i < columns_.size(); ++i) {
      row[i] = ValueOf(stmt_, static_cast<int>(i), columns_[i].type);
    }
    return true;
  }

 private:
  sqlite3_stmt* stmt_;
  bool pending_;
  bool done_;
};

bool IsBlank(const char* from, const char* end) {
  for (; from < end; ++from) {
    if (*from != ' ' && *from != '\t' && *from != '\r' && *from != '\n' && *from != ';')
      return false;
  }
  return true;
}

// Whether a statement changes rows, so that the count of changes means something for it.
bool ChangesRows(sqlite3_stmt* stmt) {
  const char* sql = sqlite3_sql(stmt);
  while (sql && (*sql == ' ' || *sql == '\t' || *sql == '\r' || *sql == '\n'))
    ++sql;
  if (!sql) return false;
  for (const char* verb : {"insert", "update", "delete", "replace", "with"}) {
    if (sqlite3_strnicmp(sql, verb, static_cast<int>(std::strlen(verb))) == 0) return true;
  }
  return false;
}

class SqliteBackend final : public Backend {
 public:
  SqliteBackend(sqlite3* db, String path) : db_(db), path_(std::move(path)) {
    identity_ = FileIdentity();
  }
  ~SqliteBackend() override { sqlite3_close_v2(db_); }

  bool Reusable() override {
    // A file replaced on disk (a restored backup) must be opened again to be seen.
    return identity_.second != 0 && sqlite3_get_autocommit(db_) != 0 &&
           !sqlite3_next_stmt(db_, nullptr) && FileIdentity() == identity_;
  }

  std::optional<Variant> Property(StringView name) override {
    if (EqualsNoCase(name, u"DBMS Name")) return Variant(String(u"SQLite"));
    if (EqualsNoCase(name, u"DBMS Version")) return Variant(FromUtf8(sqlite3_libversion()));
    if (EqualsNoCase(name, u"Provider Name")) return Variant(String(kSource));
    if (EqualsNoCase(name, u"Provider Version")) return Variant(FromUtf8(sqlite3_libversion()));
    if (EqualsNoCase(name, u"Data Source")) return Variant(path_);
    return std::nullopt;
  }

  std::vector<String> PropertyNames() override {
    return {u"DBMS Name", u"DBMS Version", u"Provider Name", u"Provider Version", u"Data Source"};
  }

  std::pair<String, String> NameQuotes() const override { return {u"\"", u"\""}; }

  Rowset OpenSchema(int32_t schema_id, const std::vector<Variant>& restrictions) override {
    Revalidate();
    Rowset rowset = MakeSchemaRowset(schema_id);
    if (schema_id == adSchemaTables) {
      FillTables(rowset);
      return rowset;
    }
    const auto table = RestrictionText(restrictions, schema_id == adSchemaIndexes ? 4 : 2);
    for (const String& name : table ? std::vector<String>{*table} : TableNames()) {
      if (schema_id == adSchemaColumns) FillColumns(rowset, name);
      if (schema_id == adSchemaPrimaryKeys) FillKeys(rowset, name);
      if (schema_id == adSchemaIndexes) FillIndexes(rowset, name);
    }
    return rowset;
  }

  static ProviderError TooManyValues() {
    return ProviderError(kErrProviderFailure,
                         u"The statement has fewer placeholders than the parameters given.",
                         String(kSource));
  }

  StatementResult Run(StringView sql, std::span<const Variant> params) override {
    Revalidate();
    const TimedWork timed(*this);
    const std::string text = String::ToUtf8(sql);
    const char* tail = text.c_str();
    const char* const end = tail + text.size();
    size_t next_param = 0;
    StatementResult result;
    // A text of several statements runs them in order; the last one's rows or count is the
    // answer, and each takes as many parameters as it has placeholders.
    while (!IsBlank(tail, end)) {
      sqlite3_stmt* raw = nullptr;
      const char* rest = nullptr;
      const int rc = sqlite3_prepare_v2(db_, tail, static_cast<int>(end - tail), &raw, &rest);
      if (rc != SQLITE_OK) FailOn(db_, rc);
      tail = rest;
      if (!raw) continue;
      std::unique_ptr<sqlite3_stmt, int (*)(sqlite3_stmt*)> stmt(raw, sqlite3_finalize);
      const int wanted = sqlite3_bind_parameter_count(raw);
      if (next_param + static_cast<size_t>(wanted) > params.size()) {
        throw ProviderError(kErrProviderFailure,
                            u"No value given for one or more required parameters.",
                            String(kSource));
      }
      // Values left over once the last statement has taken its own are refused before that
      // statement runs, so a one-statement text with too many values changes nothing.
      if (IsBlank(tail, end) && next_param + static_cast<size_t>(wanted) < params.size())
        throw TooManyValues();
      for (int i = 1; i <= wanted; ++i)
        BindValue(raw, i, params[next_param++]);
      result = StatementResult();
      const int count = sqlite3_column_count(raw);
      if (count > 0 && IsBlank(tail, end)) {
        std::vector<ColumnInfo> columns;
        for (int i = 0; i < count; ++i)
          columns.push_back(Describe(raw, i));
        const int step = Step(raw);
        result.rows =
            std::make_unique<SqliteCursor>(stmt.release(), std::move(columns), step == SQLITE_ROW);
        break;
      }
      while (Step(raw) == SQLITE_ROW) {
      }
      result.rows_affected = ChangesRows(raw) ? sqlite3_changes(db_) : -1;
    }
    if (next_param < params.size()) throw TooManyValues();
    return result;
  }

  std::optional<int32_t> ParameterCount(StringView sql) override {
    Statement stmt(db_, sql);
    return sqlite3_bind_parameter_count(stmt.get());
  }

  Variant LastInsertKey() override { return IntegerValue(sqlite3_last_insert_rowid(db_)); }

  void SetCommandTimeout(int32_t seconds) noexcept override { command_timeout_ = seconds; }

  void BeginTransaction() override { Exec("BEGIN"); }
  void CommitTransaction() override { Exec("COMMIT"); }
  void RollbackTransaction() override { Exec("ROLLBACK"); }

  Rowset Execute(StringView sql) override {
    Revalidate();
    Statement stmt(db_, sql);
    Rowset rowset;
    const int count = sqlite3_column_count(stmt.get());
    for (int i = 0; i < count; ++i)
      rowset.columns.push_back(Describe(stmt.get(), i));
    while (stmt.Step()) {
      auto& row = rowset.rows.emplace_back();
      row.reserve(static_cast<size_t>(count));
      for (int i = 0; i < count; ++i) {
        row.push_back(ValueOf(stmt.get(), i, rowset.columns[static_cast<size_t>(i)].type));
      }
    }
    return rowset;
  }

 private:
  void Exec(const char* sql) {
    const int rc = sqlite3_exec(db_, sql, nullptr, nullptr, nullptr);
    if (rc != SQLITE_OK) FailOn(db_, rc);
  }

  std::vector<String> TableNames() {
    std::vector<String> names;
    Statement stmt(db_, u"SELECT name FROM sqlite_master WHERE type IN ('table','view')");
    while (stmt.Step())
      names.push_back(stmt.Text(0));
    return names;
  }

  void FillTables(Rowset& rowset) {
    Statement stmt(db_,
                   u"SELECT name, type FROM sqlite_master WHERE type IN ('table','view') "
                   u"ORDER BY type, name");
    while (stmt.Step()) {
      const String name = stmt.Text(0);
      const bool system = ToLower(name).view().starts_with(u"sqlite_");
      auto& row = rowset.AddRow();
      rowset.Set(row, u"TABLE_NAME", name);
      const String type = stmt.Text(1) == u"view" ? u"VIEW" : system ? u"SYSTEM TABLE" : u"TABLE";
      rowset.Set(row, u"TABLE_TYPE", type);
    }
  }

  // Table shapes are kept until the schema changes (schema_version moves): a reader asks for
  // the same table four times.
  void Revalidate() {
    Statement version(db_, u"PRAGMA schema_version");
    const int64_t current = version.Step() ? version.Int(0) : -1;
    if (current == schema_version_) return;
    schema_version_ = current;
    shapes_.clear();
  }

  const TableShape& Shape(StringView table) {
    const String key(table);
    if (auto found = shapes_.find(key); found != shapes_.end()) return found->second;
    return shapes_.emplace(key, ReadShape(table)).first->second;
  }

  TableShape ReadShape(StringView table) {
    TableShape shape;
    Statement info(db_, u"PRAGMA table_info(" + QuoteName(table) + u")");
    while (info.Step()) {
      TableColumn column;
      column.name = info.Text(1);
      column.declared = info.Text(2);
      column.not_null = info.Int(3) != 0;
      if (!info.IsNull(4)) column.default_value = info.Text(4);
      column.pk_position = static_cast<int>(info.Int(5));
      if (column.pk_position > 0) ++shape.key_columns;
      shape.columns.push_back(std::move(column));
    }
    return shape;
  }

  void FillColumns(Rowset& rowset, const String& table) {
    const TableShape& shape = Shape(table);
    const auto rowid = shape.RowidColumn();
    for (size_t i = 0; i < shape.columns.size(); ++i) {
      const TableColumn& column = shape.columns[i];
      const MappedType mapped = MapSqliteDeclaredType(column.declared);
      const bool nullable = !column.not_null && rowid != i;
      auto& row = rowset.AddRow();
      rowset.Set(row, u"TABLE_NAME", table);
      rowset.Set(row, u"COLUMN_NAME", column.name);
      rowset.Set(row, u"ORDINAL_POSITION", static_cast<int32_t>(i + 1));
      rowset.Set(row, u"COLUMN_HASDEFAULT", !column.default_value.is_empty());
      if (!column.default_value.is_empty())
        rowset.Set(row, u"COLUMN_DEFAULT", column.default_value);
      rowset.Set(row, u"COLUMN_FLAGS", Attributes(mapped, nullable, true));
      rowset.Set(row, u"IS_NULLABLE", nullable);
      rowset.Set(row, u"DATA_TYPE", static_cast<int32_t>(mapped.type));
      if (IsText(mapped.type)) rowset.Set(row, u"CHARACTER_MAXIMUM_LENGTH", mapped.defined_size);
    }
  }

  void FillKeys(Rowset& rowset, const String& table) {
    const TableShape& shape = Shape(table);
    std::vector<const TableColumn*> keys(static_cast<size_t>(shape.key_columns), nullptr);
    for (const TableColumn& column : shape.columns) {
      if (column.pk_position > 0 && column.pk_position <= shape.key_columns) {
        keys[static_cast<size_t>(column.pk_position - 1)] = &column;
      }
    }
    for (size_t i = 0; i < keys.size(); ++i) {
      if (!keys[i]) continue;
      auto& row = rowset.AddRow();
      rowset.Set(row, u"TABLE_NAME", table);
      rowset.Set(row, u"COLUMN_NAME", keys[i]->name);
      rowset.Set(row, u"ORDINAL", static_cast<int32_t>(i + 1));
    }
  }

  void FillIndexes(Rowset& rowset, const String& table) {
    const TableShape& shape = Shape(table);
    // The rowid key has no index of its own in SQLite; it is listed as one, as other
    // databases list the index behind their primary key.
    if (const auto rowid = shape.RowidColumn()) {
      AddIndexRow(rowset, table, u"pk_" + table, true, true, 1, shape.columns[*rowid].name);
    }
    Statement list(db_, u"PRAGMA index_list(" + QuoteName(table) + u")");
    while (list.Step()) {
      const String name = list.Text(1);
      const bool unique = list.Int(2) != 0;
      const bool primary = list.Text(3) == u"pk";
      Statement info(db_, u"PRAGMA index_info(" + QuoteName(name) + u")");
      while (info.Step()) {
        AddIndexRow(rowset, table, name, primary, unique, static_cast<int32_t>(info.Int(0) + 1),
                    info.Text(2));
      }
    }
  }

  static void AddIndexRow(Rowset& rowset, const String& table, const String& index, bool primary,
                          bool unique, int32_t ordinal, const String& column) {
    auto& row = rowset.AddRow();
    rowset.Set(row, u"TABLE_NAME", table);
    rowset.Set(row, u"INDEX_NAME", index);
    rowset.Set(row, u"PRIMARY_KEY", primary);
    rowset.Set(row, u"UNIQUE", unique);
    rowset.Set(row, u"CLUSTERED", false);
    rowset.Set(row, u"TYPE", static_cast<int16_t>(1));
    rowset.Set(row, u"ORDINAL_POSITION", ordinal);
    rowset.Set(row, u"COLUMN_NAME", column);
  }

  static bool IsText(int32_t type) {
    return type == adWChar || type == adVarWChar || type == adLongVarWChar || type == adChar ||
           type == adVarChar || type == adLongVarChar;
  }

  static int32_t Attributes(const MappedType& mapped, bool nullable, bool updatable) {
    int32_t bits = 0;
    if (nullable) bits |= adFldIsNullable | adFldMayBeNull;
    if (updatable) bits |= adFldUpdatable;
    if (mapped.type == adLongVarWChar || mapped.type == adLongVarBinary) {
      bits |= adFldLong;
    } else if (!IsText(mapped.type)) {
      bits |= adFldFixed;
    }
    return bits;
  }

  // The digits ADO reports for the fixed numeric types.
  static void SetPrecision(ColumnInfo& info) {
    switch (info.type) {
      case adUnsignedTinyInt:
        info.precision = 3;
        break;
      case adSmallInt:
        info.precision = 5;
        break;
      case adInteger:
        info.precision = 10;
        break;
      case adBigInt:
        info.precision = 19;
        break;
      case adSingle:
        info.precision = 7;
        break;
      case adDouble:
        info.precision = 15;
        break;
      case adCurrency:
        info.precision = 19;
        break;
      case adNumeric:
        info.precision = 38;
        info.numeric_scale = 10;
        break;
      default:
        break;
    }
  }

  ColumnInfo Describe(sqlite3_stmt* stmt, int index) {
    ColumnInfo info;
    info.name = FromUtf8(sqlite3_column_name(stmt, index));
    const MappedType mapped = MapSqliteDeclaredType(FromUtf8(sqlite3_column_decltype(stmt, index)));
    info.type = mapped.type;
    info.defined_size = mapped.defined_size;
    info.auto_increment = false;
    SetPrecision(info);
    const char* table = sqlite3_column_table_name(stmt, index);
    const char* origin = sqlite3_column_origin_name(stmt, index);
    if (!table || !origin) {
      info.attributes = Attributes(mapped, true, false);
      return info;
    }
    info.base_table = FromUtf8(table);
    info.base_column = FromUtf8(origin);
    const TableShape& shape = Shape(info.base_table);
    const String column_name = FromUtf8(origin);
    const auto rowid = shape.RowidColumn();
    bool nullable = true;
    for (size_t i = 0; i < shape.columns.size(); ++i) {
      if (!EqualsNoCase(shape.columns[i].name, column_name)) continue;
      nullable = !shape.columns[i].not_null && rowid != i;
      info.auto_increment = rowid == i;
    }
    info.attributes = Attributes(mapped, nullable, true);
    return info;
  }

  // The command timeout, as a server applies its own: a statement that is still working when
  // it runs out is interrupted. It covers running a statement up to its first row; a
  // forward-only reader may then take its time over the rows.
  class TimedWork {
   public:
    explicit TimedWork(SqliteBackend& backend) : db_(backend.db_) {
      if (backend.command_timeout_ <= 0) return;
      deadline_ = std::chrono::steady_clock::now() + std::chrono::seconds(backend.command_timeout_);
      sqlite3_progress_handler(db_, kOpsPerCheck, &TimedWork::Expired, this);
    }
    ~TimedWork() {
      if (deadline_) sqlite3_progress_handler(db_, 0, nullptr, nullptr);
    }
    TimedWork(const TimedWork&) = delete;
    TimedWork& operator=(const TimedWork&) = delete;

   private:
    static constexpr int kOpsPerCheck = 10000;
    static int Expired(void* self) {
      const auto& work = *static_cast<const TimedWork*>(self);
      return std::chrono::steady_clock::now() > *work.deadline_ ? 1 : 0;
    }
    sqlite3* db_;
    std::optional<std::chrono::steady_clock::time_point> deadline_;
  };

  // One step of a running statement: a row, or done.
  int Step(sqlite3_stmt* stmt) {
    const int rc = sqlite3_step(stmt);
    if (rc == SQLITE_ROW || rc == SQLITE_DONE) return rc;
    if (rc == SQLITE_INTERRUPT) {
      throw ProviderError(kErrTimeout, u"Query timeout expired", String(kSource), {}, rc);
    }
    FailOn(db_, rc);
  }

  // The device and inode of the open file; zeros for a database in memory, which starts empty
  // on every open and so is never reused.
  std::pair<dev_t, ino_t> FileIdentity() const {
    const char* file = sqlite3_db_filename(db_, "main");
    struct stat st {};
    if (!file || !*file || ::stat(file, &st) != 0) return {0, 0};
    return {st.st_dev, st.st_ino};
  }

  sqlite3* db_;
  String path_;
  int32_t command_timeout_ = 30;
  std::pair<dev_t, ino_t> identity_;
  int64_t schema_version_ = -1;
  std::map<String, TableShape> shapes_;
};

}  // namespace

std::unique_ptr<Backend> OpenSqliteBackend(StringView path) {
  // SQLite keeps count of its memory under one process-wide mutex unless told not to, so that
  // the worker threads of a server queue on it at every allocation; nothing here reads those
  // counts. It takes the setting only before its first use, and refuses it harmlessly after.
  [[maybe_unused]] static const int uncounted = sqlite3_config(SQLITE_CONFIG_MEMSTATUS, 0);
  const String file(path);
  if (file.empty()) {
    throw ProviderError(kErrProviderFailure,
                        u"No SQLite file is named: give Data Source=<file> in the connection "
                        u"string.",
                        String(kSource));
  }
  const std::string utf8 = file.ToUtf8();
  sqlite3* db = nullptr;
  int rc = sqlite3_open_v2(utf8.c_str(), &db, SQLITE_OPEN_READWRITE | SQLITE_OPEN_URI, nullptr);
  if (rc != SQLITE_OK) {
    sqlite3_close_v2(db);
    db = nullptr;
    rc = sqlite3_open_v2(utf8.c_str(), &db, SQLITE_OPEN_READONLY | SQLITE_OPEN_URI, nullptr);
  }
  if (rc != SQLITE_OK) {
    const int code = sqlite3_extended_errcode(db);
    sqlite3_close_v2(db);
    throw ProviderError(kErrProviderFailure,
                        u"Cannot open the SQLite database \"" + file +
                            u"\": the file does not exist or cannot be read.",
                        String(kSource), {}, code);
  }
  sqlite3_busy_timeout(db, 5000);
  // Opening is lazy: reading the catalogue is what tells a database from any other file.
  rc = sqlite3_exec(db, "SELECT count(*) FROM sqlite_master", nullptr, nullptr, nullptr);
  if (rc != SQLITE_OK) {
    const String reason = FromUtf8(sqlite3_errmsg(db));
    const int code = sqlite3_extended_errcode(db);
    sqlite3_close_v2(db);
    throw ProviderError(kErrProviderFailure,
                        u"Cannot open the SQLite database \"" + file + u"\": " + reason + u".",
                        String(kSource), {}, code);
  }
  return std::make_unique<SqliteBackend>(db, file);
}

}  // namespace qv::data
