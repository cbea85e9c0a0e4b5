// ODBC backend: handles, diagnostics, catalogue functions and result fetching over unixODBC's
// wide-character API (its SQLWCHAR is UTF-16, the engine's own text form).
#include "platform/data/odbc_backend.h"

#include <odbcinst.h>
#include <sql.h>
#include <sqlext.h>
#include <sqlucode.h>

#include <algorithm>
#include <cstring>
#include <deque>
#include <exception>
#include <map>
#include <set>
#include <utility>

#include "automation/convert.h"
#include "automation/date_time.h"
#include "platform/data/connection_string.h"
#include "platform/data/data_types.h"
#include "platform/data/odbc_ini.h"
#include "platform/data/provider_error.h"
#include "platform/data/type_mapping.h"

namespace qv::data {
namespace {

constexpr StringView kSource = u"Quorvex ODBC";

static_assert(sizeof(SQLWCHAR) == sizeof(Char), "unixODBC must use 16-bit SQLWCHAR");

SQLWCHAR* W(const String& text) {
  return reinterpret_cast<SQLWCHAR*>(const_cast<Char*>(text.data()));
}

String FromW(const SQLWCHAR* text, size_t length) {
  return String(StringView(reinterpret_cast<const Char*>(text), length));
}

bool Succeeded(SQLRETURN rc) {
  return rc == SQL_SUCCESS || rc == SQL_SUCCESS_WITH_INFO;
}

int32_t NumberForState(StringView state, StringView message) {
  const String lower = ToLower(message);
  if (state == u"28000" || lower.view().find(u"authentication failed") != StringView::npos ||
      lower.view().find(u"access denied for user") != StringView::npos) {
    return kErrLoginFailed;
  }
  if (state == u"42S02" || state == u"42P01") return kErrNoSuchTable;
  if (state.starts_with(u"23")) return kErrIntegrityViolation;
  if (state == u"HYT00" || state == u"HYT01" || state == u"57014") return kErrTimeout;
  if (state.starts_with(u"42")) return kErrSyntax;
  return kErrProviderFailure;
}

// All diagnostic records of a handle.
std::vector<ErrorRecord> Diagnostics(SQLSMALLINT type, SQLHANDLE handle) {
  std::vector<ErrorRecord> records;
  for (SQLSMALLINT i = 1; handle; ++i) {
    SQLWCHAR state[6] = {};
    SQLINTEGER native = 0;
    SQLWCHAR message[2048] = {};
    SQLSMALLINT length = 0;
    const SQLRETURN rc = SQLGetDiagRecW(type, handle, i, state, &native, message,
                                        static_cast<SQLSMALLINT>(std::size(message)), &length);
    if (!Succeeded(rc)) break;
    ErrorRecord record;
    record.sql_state = FromW(state, 5);
    const size_t shown = std::min<size_t>(static_cast<size_t>(std::max<SQLSMALLINT>(length, 0)),
                                          std::size(message) - 1);
    record.description = FromW(message, shown);
    record.native_error = native;
    record.source = String(kSource);
    record.number = NumberForState(record.sql_state, record.description);
    records.push_back(std::move(record));
  }
  return records;
}

[[noreturn]] void Fail(SQLSMALLINT type, SQLHANDLE handle, StringView what) {
  auto records = Diagnostics(type, handle);
  if (records.empty()) {
    records.push_back({kErrProviderFailure, 0, String(what) + u" failed.", String(kSource), {}});
  }
  // A login failure anywhere in the list decides the number of the error raised.
  for (const auto& record : records) {
    if (record.number == kErrLoginFailed) records.front().number = kErrLoginFailed;
  }
  throw ProviderError(std::move(records));
}

class Handle {
 public:
  Handle(SQLSMALLINT type, SQLHANDLE parent) : type_(type) {
    if (!Succeeded(SQLAllocHandle(type, parent, &handle_))) {
      handle_ = SQL_NULL_HANDLE;
      throw ProviderError(kErrProviderFailure,
                          u"The ODBC driver manager could not allocate a "
                          u"handle.",
                          String(kSource));
    }
  }
  ~Handle() {
    if (handle_) SQLFreeHandle(type_, handle_);
  }
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;
  SQLHANDLE get() const { return handle_; }
  void Check(SQLRETURN rc, StringView what) const {
    if (!Succeeded(rc)) Fail(type_, handle_, what);
  }

 private:
  SQLSMALLINT type_;
  SQLHANDLE handle_ = SQL_NULL_HANDLE;
};

// Reads column `column` of the current row as text; nothing when it is NULL.
std::optional<String> GetText(SQLHSTMT stmt, SQLUSMALLINT column) {
  String text;
  SQLWCHAR buffer[2048];
  for (;;) {
    SQLLEN indicator = 0;
    const SQLRETURN rc = SQLGetData(stmt, column, SQL_C_WCHAR, buffer, sizeof buffer, &indicator);
    if (rc == SQL_NO_DATA) break;
    if (!Succeeded(rc)) Fail(SQL_HANDLE_STMT, stmt, u"Reading a value");
    if (indicator == SQL_NULL_DATA) return std::nullopt;
    const size_t capacity = std::size(buffer) - 1;
    const size_t available =
        indicator == SQL_NO_TOTAL || indicator < 0
            ? capacity
            : std::min(capacity, static_cast<size_t>(indicator) / sizeof(SQLWCHAR));
    text.Append(StringView(reinterpret_cast<const Char*>(buffer), available));
    if (rc == SQL_SUCCESS) break;
  }
  return text;
}

std::optional<std::vector<uint8_t>> GetBytes(SQLHSTMT stmt, SQLUSMALLINT column) {
  std::vector<uint8_t> bytes;
  uint8_t buffer[8192];
  for (;;) {
    SQLLEN indicator = 0;
    const SQLRETURN rc = SQLGetData(stmt, column, SQL_C_BINARY, buffer, sizeof buffer, &indicator);
    if (rc == SQL_NO_DATA) break;
    if (!Succeeded(rc)) Fail(SQL_HANDLE_STMT, stmt, u"Reading a value");
    if (indicator == SQL_NULL_DATA) return std::nullopt;
    const size_t available = indicator == SQL_NO_TOTAL || indicator < 0
                                 ? sizeof buffer
                                 : std::min(sizeof buffer, static_cast<size_t>(indicator));
    bytes.insert(bytes.end(), buffer, buffer + available);
    if (rc == SQL_SUCCESS) break;
  }
  return bytes;
}

template <class T>
std::optional<T> GetFixed(SQLHSTMT stmt, SQLUSMALLINT column, SQLSMALLINT c_type) {
  T value{};
  SQLLEN indicator = 0;
  const SQLRETURN rc = SQLGetData(stmt, column, c_type, &value, sizeof value, &indicator);
  if (!Succeeded(rc)) Fail(SQL_HANDLE_STMT, stmt, u"Reading a value");
  if (indicator == SQL_NULL_DATA) return std::nullopt;
  return value;
}

// An exact number of at most four decimals comes as Currency, which holds it without loss (a
// Double would turn 0.10 + 0.20 money into 0.30000000000000004); wider scales and values
// beyond Currency's range come as Double, the nearest VBScript has.
Variant ReadExactNumber(SQLHSTMT stmt, SQLUSMALLINT column, const ColumnInfo& info) {
  if (info.numeric_scale > 4) {
    const auto v = GetFixed<double>(stmt, column, SQL_C_DOUBLE);
    return v ? Variant(*v) : Variant::Null();
  }
  const auto text = GetText(stmt, column);
  if (!text) return Variant::Null();
  if (auto money = CurrencyFromText(*text)) return *money;
  if (auto number = ParseNumberText(*text)) return Variant(*number);
  return Variant(*text);
}

Variant ReadValue(SQLHSTMT stmt, SQLUSMALLINT column, const ColumnInfo& info) {
  const int32_t type = info.type;
  switch (type) {
    case adBoolean: {
      const auto v = GetFixed<unsigned char>(stmt, column, SQL_C_BIT);
      return v ? Variant(*v != 0) : Variant::Null();
    }
    case adSmallInt: {
      const auto v = GetFixed<SQLSMALLINT>(stmt, column, SQL_C_SSHORT);
      return v ? Variant(static_cast<int16_t>(*v)) : Variant::Null();
    }
    case adUnsignedTinyInt: {
      const auto v = GetFixed<unsigned char>(stmt, column, SQL_C_UTINYINT);
      return v ? Variant(static_cast<uint8_t>(*v)) : Variant::Null();
    }
    case adInteger:
    case adBigInt: {
      const auto v = GetFixed<SQLBIGINT>(stmt, column, SQL_C_SBIGINT);
      return v ? IntegerValue(*v) : Variant::Null();
    }
    case adSingle: {
      const auto v = GetFixed<float>(stmt, column, SQL_C_FLOAT);
      return v ? Variant(*v) : Variant::Null();
    }
    case adDouble: {
      const auto v = GetFixed<double>(stmt, column, SQL_C_DOUBLE);
      return v ? Variant(*v) : Variant::Null();
    }
    case adNumeric:
    case adDecimal:
      return ReadExactNumber(stmt, column, info);
    case adDBDate:
    case adDBTime:
    case adDBTimeStamp: {
      const auto v = GetFixed<SQL_TIMESTAMP_STRUCT>(stmt, column, SQL_C_TYPE_TIMESTAMP);
      if (!v) return Variant::Null();
      const double time = TimeFromParts(v->hour, v->minute, v->second);
      if (type == adDBTime) return Variant::Date(time);
      const auto day = DateFromParts(v->year, v->month, v->day);
      return day ? Variant::Date(CombineDateTime(*day, time)) : Variant::Null();
    }
    case adBinary:
    case adVarBinary:
    case adLongVarBinary: {
      const auto bytes = GetBytes(stmt, column);
      return bytes ? ByteArray(*bytes) : Variant::Null();
    }
    default: {
      const auto text = GetText(stmt, column);
      return text ? Variant(*text) : Variant::Null();
    }
  }
}

// Walks a catalogue result set, handing each row's reader to `row`.
template <class F>
void ForEachRow(SQLHSTMT stmt, F&& row) {
  for (;;) {
    const SQLRETURN rc = SQLFetch(stmt);
    if (rc == SQL_NO_DATA) return;
    if (!Succeeded(rc)) Fail(SQL_HANDLE_STMT, stmt, u"Fetching a row");
    row();
  }
}

Variant TextOrNull(SQLHSTMT stmt, SQLUSMALLINT column) {
  const auto text = GetText(stmt, column);
  return text ? Variant(*text) : Variant::Null();
}

int64_t IntOr(SQLHSTMT stmt, SQLUSMALLINT column, int64_t fallback) {
  return GetFixed<SQLBIGINT>(stmt, column, SQL_C_SBIGINT).value_or(fallback);
}

class OdbcCursor;

// The environment and connection handles. Cursors share them with the backend, so a cursor
// left open when its connection closes still frees its statement before the disconnect.
struct OdbcLink {
  OdbcLink() : env(SQL_HANDLE_ENV, SQL_NULL_HANDLE) {
    SQLSetEnvAttr(env.get(), SQL_ATTR_ODBC_VERSION, reinterpret_cast<SQLPOINTER>(SQL_OV_ODBC3), 0);
    dbc = std::make_unique<Handle>(SQL_HANDLE_DBC, env.get());
  }
  ~OdbcLink() {
    if (connected) SQLDisconnect(dbc->get());
    dbc.reset();
  }
  Handle env;
  std::unique_ptr<Handle> dbc;
  bool connected = false;
  // The cursors whose statements are still open on this connection (not owned).
  std::vector<OdbcCursor*> open_cursors;
};

// One bound parameter's value, kept alive until the statement has run.
struct BoundValue {
  std::vector<uint8_t> data;
  SQLLEN indicator = 0;
};

template <class T>
void Store(BoundValue& bound, const T& value) {
  bound.data.resize(sizeof value);
  std::memcpy(bound.data.data(), &value, sizeof value);
  bound.indicator = sizeof value;
}

void BindParameter(SQLHSTMT stmt, SQLUSMALLINT index, const Variant& value, BoundValue& bound) {
  SQLSMALLINT c_type = SQL_C_CHAR;
  SQLSMALLINT sql_type = SQL_VARCHAR;
  SQLULEN size = 1;
  SQLSMALLINT digits = 0;
  switch (value.type()) {
    case VarType::Empty:
    case VarType::Null:
      bound.data.assign(1, 0);
      bound.indicator = SQL_NULL_DATA;
      break;
    case VarType::Boolean:
      Store(bound, static_cast<unsigned char>(value.as_bool() ? 1 : 0));
      c_type = SQL_C_BIT;
      sql_type = SQL_BIT;
      break;
    case VarType::Byte:
    case VarType::Integer:
    case VarType::Long: {
      const SQLINTEGER number = value.type() == VarType::Long      ? value.as_long()
                                : value.type() == VarType::Integer ? value.as_integer()
                                                                   : value.as_byte();
      Store(bound, number);
      c_type = SQL_C_SLONG;
      sql_type = SQL_INTEGER;
      size = 10;
      break;
    }
    case VarType::Single:
    case VarType::Double:
      Store(bound, value.type() == VarType::Single ? static_cast<double>(value.as_single())
                                                   : value.as_double());
      c_type = SQL_C_DOUBLE;
      sql_type = SQL_DOUBLE;
      size = 15;
      break;
    case VarType::Currency: {
      // Exact decimal text: a double would lose the ten-thousandths of large amounts.
      const std::string text = CurrencyText(value.as_currency()).ToUtf8();
      bound.data.assign(text.begin(), text.end());
      bound.indicator = static_cast<SQLLEN>(text.size());
      sql_type = SQL_DECIMAL;
      size = 19;
      digits = 4;
      break;
    }
    case VarType::Date: {
      const auto parts = SplitDate(value.as_date());
      if (!parts) {
        throw ProviderError(kErrDataConversion, u"The date is out of range.", String(kSource));
      }
      SQL_TIMESTAMP_STRUCT ts{};
      ts.year = static_cast<SQLSMALLINT>(parts->year);
      ts.month = static_cast<SQLUSMALLINT>(parts->month);
      ts.day = static_cast<SQLUSMALLINT>(parts->day);
      ts.hour = static_cast<SQLUSMALLINT>(parts->hour);
      ts.minute = static_cast<SQLUSMALLINT>(parts->minute);
      ts.second = static_cast<SQLUSMALLINT>(parts->second);
      Store(bound, ts);
      c_type = SQL_C_TYPE_TIMESTAMP;
      sql_type = SQL_TYPE_TIMESTAMP;
      size = 19;
      break;
    }
    case VarType::String: {
      const String& text = value.as_string();
      const size_t bytes = text.size() * sizeof(Char);
      bound.data.resize(bytes + sizeof(Char));
      if (bytes) std::memcpy(bound.data.data(), text.data(), bytes);
      bound.indicator = static_cast<SQLLEN>(bytes);
      c_type = SQL_C_WCHAR;
      sql_type = text.size() > 4000 ? SQL_WLONGVARCHAR : SQL_WVARCHAR;
      size = std::max<SQLULEN>(text.size(), 1);
      break;
    }
    default: {
      auto bytes = BytesOf(value);
      if (!bytes) {
        throw ProviderError(kErrDataConversion,
                            u"Application uses a value of the wrong type for the current "
                            u"operation.",
                            String(kSource));
      }
      bound.indicator = static_cast<SQLLEN>(bytes->size());
      size = std::max<SQLULEN>(bytes->size(), 1);
      bound.data = std::move(*bytes);
      if (bound.data.empty()) bound.data.push_back(0);
      c_type = SQL_C_BINARY;
      sql_type = size > 8000 ? SQL_LONGVARBINARY : SQL_VARBINARY;
      break;
    }
  }
  const SQLRETURN rc =
      SQLBindParameter(stmt, index, SQL_PARAM_INPUT, c_type, sql_type, size, digits,
                       bound.data.data(), static_cast<SQLLEN>(bound.data.size()), &bound.indicator);
  if (!Succeeded(rc)) Fail(SQL_HANDLE_STMT, stmt, u"Binding a parameter");
}

// `{? = call f(...)}` as `SELECT f(...)`, the form in which PostgreSQL and MariaDB give a
// function's value: neither driver takes the return-value call (psqlODBC only when it pastes
// the parameters into the text itself).
std::optional<String> ReturnCallAsSelect(StringView sql) {
  StringView t = TrimBlanks(sql);
  if (t.size() < 2 || t.front() != u'{' || t.back() != u'}') return std::nullopt;
  t = TrimBlanks(t.substr(1, t.size() - 2));
  if (t.empty() || t.front() != u'?') return std::nullopt;
  t = TrimBlanks(t.substr(1));
  if (t.empty() || t.front() != u'=') return std::nullopt;
  t = TrimBlanks(t.substr(1));
  if (t.size() < 5 || !EqualsNoCase(t.substr(0, 4), u"call") || t[4] != u' ') return std::nullopt;
  return u"SELECT " + String(TrimBlanks(t.substr(5)));
}

// A parameter that gets a value back: bound as wide text, which every driver converts its
// types to; an input-output parameter starts with its value's text.
void BindReceiver(SQLHSTMT stmt, SQLUSMALLINT index, const CallParameter& param,
                  BoundValue& bound) {
  const size_t chars = param.size > 0 ? static_cast<size_t>(param.size) : 4000;
  bound.data.assign((chars + 1) * sizeof(SQLWCHAR), 0);
  bound.indicator = SQL_NULL_DATA;
  if (param.direction == CallParameter::kInputOutput && !param.value.is_null() &&
      !param.value.is_empty()) {
    const String text = ToString(param.value);
    const size_t n = std::min(text.size(), chars);
    std::memcpy(bound.data.data(), text.data(), n * sizeof(SQLWCHAR));
    bound.indicator = static_cast<SQLLEN>(n * sizeof(SQLWCHAR));
  }
  const SQLSMALLINT io =
      param.direction == CallParameter::kInputOutput ? SQL_PARAM_INPUT_OUTPUT : SQL_PARAM_OUTPUT;
  const SQLRETURN rc =
      SQLBindParameter(stmt, index, io, SQL_C_WCHAR, SQL_WVARCHAR, chars, 0, bound.data.data(),
                       static_cast<SQLLEN>(bound.data.size()), &bound.indicator);
  if (!Succeeded(rc)) Fail(SQL_HANDLE_STMT, stmt, u"Binding a parameter");
}

// `narrow`: MariaDB's driver copies an output value in the connection's character set (UTF-8)
// whatever C type it was bound with.
Variant ReceivedValue(const BoundValue& bound, bool narrow) {
  if (bound.indicator == SQL_NULL_DATA || bound.indicator < 0) return Variant::Null();
  if (narrow) {
    const size_t bytes = std::min(static_cast<size_t>(bound.indicator), bound.data.size());
    return Variant(String::FromUtf8(
        std::string_view(reinterpret_cast<const char*>(bound.data.data()), bytes)));
  }
  const size_t capacity = bound.data.size() / sizeof(SQLWCHAR) - 1;
  const size_t chars = std::min(static_cast<size_t>(bound.indicator) / sizeof(SQLWCHAR), capacity);
  return Variant(FromW(reinterpret_cast<const SQLWCHAR*>(bound.data.data()), chars));
}

// The rows of one statement, fetched from the driver as they are read.
//
// PostgreSQL's driver reads through a server-side cursor that holds a transaction, and with
// it the locks on what it reads, until the statement is freed. Two things keep that from
// surprising a page: the cursor reads one row ahead, so that the statement is freed as soon
// as its last row has been handed out (a COUNT(*) left open blocks nobody), and a cursor that
// is still open when a transaction starts or ends reads the rest of its rows into memory
// first, since the server would close it with the transaction.
class OdbcCursor final : public Cursor {
 public:
  OdbcCursor(std::shared_ptr<OdbcLink> link, std::unique_ptr<Handle> stmt,
             std::vector<ColumnInfo> columns)
      : link_(std::move(link)), stmt_(std::move(stmt)) {
    columns_ = std::move(columns);
    link_->open_cursors.push_back(this);
  }
  ~OdbcCursor() override { Release(); }

  bool Fetch(std::vector<Variant>& row) override {
    if (!started_) {
      started_ = true;
      ReadAhead();
    }
    if (error_) std::rethrow_exception(std::exchange(error_, nullptr));
    if (ahead_.empty()) return false;
    row.swap(ahead_.front());
    ahead_.pop_front();
    if (ahead_.empty()) ReadAhead();
    return true;
  }

  // Reads every row that is left into memory and frees the statement.
  void Drain() {
    started_ = true;
    while (stmt_ && !error_)
      ReadAhead();
  }

 private:
  // Appends the driver's next row; frees the statement after the last one. A failure is
  // kept for the Fetch that would have read the row, so that the rows before it still come.
  void ReadAhead() {
    if (!stmt_) return;
    try {
      const SQLRETURN rc = SQLFetch(stmt_->get());
      if (rc == SQL_NO_DATA) {
        Release();
        return;
      }
      if (!Succeeded(rc)) Fail(SQL_HANDLE_STMT, stmt_->get(), u"Fetching a row");
      std::vector<Variant> row(columns_.size());
      for (size_t i = 0; i < columns_.size(); ++i) {
        row[i] = ReadValue(stmt_->get(), static_cast<SQLUSMALLINT>(i + 1), columns_[i]);
      }
      ahead_.push_back(std::move(row));
    } catch (...) {
      error_ = std::current_exception();
      Release();
    }
  }

  void Release() noexcept {
    if (!stmt_) return;
    stmt_.reset();
    std::erase(link_->open_cursors, this);
  }

  std::shared_ptr<OdbcLink> link_;  // declared first: it must outlive the statement
  std::unique_ptr<Handle> stmt_;
  std::deque<std::vector<Variant>> ahead_;
  std::exception_ptr error_;
  bool started_ = false;
};

class OdbcBackend final : public Backend {
 public:
  OdbcBackend() : link_(std::make_shared<OdbcLink>()) {}

  void Connect(const String& text, const OdbcTimeouts& timeouts) {
    command_timeout_ = timeouts.command_seconds;
    const auto seconds =
        reinterpret_cast<SQLPOINTER>(static_cast<intptr_t>(timeouts.login_seconds));
    SQLSetConnectAttr(link_->dbc->get(), SQL_ATTR_LOGIN_TIMEOUT, seconds, 0);
    SQLSetConnectAttr(link_->dbc->get(), SQL_ATTR_CONNECTION_TIMEOUT, seconds, 0);
    SQLWCHAR out[1024];
    SQLSMALLINT out_length = 0;
    link_->dbc->Check(SQLDriverConnectW(link_->dbc->get(), nullptr, W(text), SQL_NTS, out,
                                        static_cast<SQLSMALLINT>(std::size(out)), &out_length,
                                        SQL_DRIVER_NOPROMPT),
                      u"Connecting");
    link_->connected = true;
    dbms_ = ToLower(Info(SQL_DBMS_NAME));
    const String quote = Info(SQL_IDENTIFIER_QUOTE_CHAR);
    if (!quote.empty() && quote != u" ") quote_ = quote;
  }

  std::optional<Variant> Property(StringView name) override {
    static const std::pair<StringView, SQLUSMALLINT> kInfo[] = {
        {u"DBMS Name", SQL_DBMS_NAME},
        {u"DBMS Version", SQL_DBMS_VER},
        {u"Provider Name", SQL_DRIVER_NAME},
        {u"Provider Version", SQL_DRIVER_VER},
        {u"Driver Name", SQL_DRIVER_NAME},
        {u"Driver Version", SQL_DRIVER_VER},
        {u"Driver ODBC Version", SQL_DRIVER_ODBC_VER},
        {u"Data Source Name", SQL_DATA_SOURCE_NAME},
        {u"Current Catalog", SQL_DATABASE_NAME},
        {u"Server Name", SQL_SERVER_NAME},
        {u"User Name", SQL_USER_NAME},
    };
    for (const auto& [key, id] : kInfo) {
      if (EqualsNoCase(name, key)) return Variant(Info(id));
    }
    return std::nullopt;
  }

  std::vector<String> PropertyNames() override {
    return {u"DBMS Name",           u"DBMS Version",     u"Provider Name",
            u"Provider Version",    u"Driver Name",      u"Driver Version",
            u"Driver ODBC Version", u"Data Source Name", u"Current Catalog",
            u"Server Name",         u"User Name"};
  }

  std::pair<String, String> NameQuotes() const override { return {quote_, quote_}; }

  Rowset OpenSchema(int32_t schema_id, const std::vector<Variant>& restrictions) override {
    Rowset rowset = MakeSchemaRowset(schema_id);
    auto catalog = RestrictionText(restrictions, 0);
    const auto schema = RestrictionText(restrictions, 1);
    // To MySQL-family drivers each database is a catalogue, and no catalogue means all of the
    // server's: the connected database's tables would meet namesakes from every other one.
    if (!catalog && IsMysql()) {
      String current = Info(SQL_DATABASE_NAME);
      if (!current.empty()) catalog = std::move(current);
    }
    switch (schema_id) {
      case adSchemaTables:
        Tables(rowset, catalog, schema, RestrictionText(restrictions, 2));
        break;
      case adSchemaColumns:
        Columns(rowset, catalog, schema, RestrictionText(restrictions, 2));
        break;
      case adSchemaPrimaryKeys:
        for (const auto& [cat, sch, table] :
             KeyTargets(catalog, schema, RestrictionText(restrictions, 2))) {
          PrimaryKeys(rowset, cat, sch, table);
        }
        break;
      case adSchemaIndexes:
        for (const auto& [cat, sch, table] :
             KeyTargets(catalog, schema, RestrictionText(restrictions, 4))) {
          Indexes(rowset, cat, sch, table);
        }
        break;
    }
    return rowset;
  }

  StatementResult Run(StringView sql, std::span<const Variant> params) override {
    last_key_.reset();
    auto stmt = std::make_unique<Handle>(SQL_HANDLE_STMT, link_->dbc->get());
    SQLSetStmtAttr(stmt->get(), SQL_ATTR_QUERY_TIMEOUT,
                   reinterpret_cast<SQLPOINTER>(static_cast<intptr_t>(command_timeout_)), 0);
    const String text(sql);
    std::vector<BoundValue> bound(params.size());
    SQLRETURN rc;
    if (params.empty()) {
      rc = SQLExecDirectW(stmt->get(), W(text), SQL_NTS);
    } else {
      stmt->Check(SQLPrepareW(stmt->get(), W(text), SQL_NTS), u"Preparing the statement");
      for (size_t i = 0; i < params.size(); ++i) {
        BindParameter(stmt->get(), static_cast<SQLUSMALLINT>(i + 1), params[i], bound[i]);
      }
      rc = SQLExecute(stmt->get());
    }
    StatementResult result;
    if (rc == SQL_NO_DATA) {
      result.rows_affected = 0;  // a searched UPDATE or DELETE that matched nothing
      return result;
    }
    stmt->Check(rc, u"Running the statement");
    SQLSMALLINT count = 0;
    stmt->Check(SQLNumResultCols(stmt->get(), &count), u"Reading the columns");
    if (count == 0) {
      SQLLEN changed = -1;
      if (Succeeded(SQLRowCount(stmt->get(), &changed))) result.rows_affected = changed;
      return result;
    }
    std::vector<ColumnInfo> columns;
    for (SQLUSMALLINT i = 1; i <= static_cast<SQLUSMALLINT>(count); ++i) {
      columns.push_back(Describe(stmt->get(), i));
    }
    result.rows = std::make_unique<OdbcCursor>(link_, std::move(stmt), std::move(columns));
    return result;
  }

  StatementResult Call(StringView sql, std::span<CallParameter> params) override {
    const bool mysql = IsMysql();
    if (!params.empty() && params[0].direction == CallParameter::kReturnValue &&
        (mysql || IsPostgres())) {
      if (auto select = ReturnCallAsSelect(sql)) return CallForValue(*select, params);
    }
    last_key_.reset();
    auto stmt = std::make_unique<Handle>(SQL_HANDLE_STMT, link_->dbc->get());
    SQLSetStmtAttr(stmt->get(), SQL_ATTR_QUERY_TIMEOUT,
                   reinterpret_cast<SQLPOINTER>(static_cast<intptr_t>(command_timeout_)), 0);
    const String text(sql);
    stmt->Check(SQLPrepareW(stmt->get(), W(text), SQL_NTS), u"Preparing the statement");
    std::vector<BoundValue> bound(params.size());
    for (size_t i = 0; i < params.size(); ++i) {
      const auto index = static_cast<SQLUSMALLINT>(i + 1);
      if (params[i].Receives()) {
        BindReceiver(stmt->get(), index, params[i], bound[i]);
      } else {
        BindParameter(stmt->get(), index, params[i].value, bound[i]);
      }
    }
    const SQLRETURN rc = SQLExecute(stmt->get());
    if (rc != SQL_NO_DATA) stmt->Check(rc, u"Running the statement");
    StatementResult result;
    SQLSMALLINT count = 0;
    stmt->Check(SQLNumResultCols(stmt->get(), &count), u"Reading the columns");
    if (count == 0) {
      SQLLEN changed = -1;
      if (Succeeded(SQLRowCount(stmt->get(), &changed))) result.rows_affected = changed;
      // Some drivers hand the output values over only once every result of the call is read.
      while (Succeeded(SQLMoreResults(stmt->get()))) {
      }
    }
    for (size_t i = 0; i < params.size(); ++i) {
      if (params[i].Receives()) params[i].value = ReceivedValue(bound[i], mysql);
    }
    if (count == 0) return result;
    // The buffers go with this call; the rows outlive it.
    SQLFreeStmt(stmt->get(), SQL_RESET_PARAMS);
    std::vector<ColumnInfo> columns;
    for (SQLUSMALLINT i = 1; i <= static_cast<SQLUSMALLINT>(count); ++i) {
      columns.push_back(Describe(stmt->get(), i));
    }
    result.rows = std::make_unique<OdbcCursor>(link_, std::move(stmt), std::move(columns));
    return result;
  }

  bool IsMysql() const {
    return dbms_.view().find(u"mysql") != StringView::npos ||
           dbms_.view().find(u"maria") != StringView::npos;
  }
  bool IsPostgres() const { return dbms_.view().find(u"postgres") != StringView::npos; }

  // A function's value as the one value of a SELECT; the other parameters are inputs.
  StatementResult CallForValue(const String& select, std::span<CallParameter> params) {
    std::vector<Variant> inputs;
    for (const CallParameter& p : params.subspan(1)) {
      if (p.Receives()) {
        throw ProviderError(kErrNotSupported,
                            u"A function call with output parameters besides its value is not "
                            u"supported by this provider.",
                            String(kSource));
      }
      inputs.push_back(p.value);
    }
    StatementResult called = Run(select, inputs);
    std::vector<Variant> row;
    params[0].value =
        called.rows && called.rows->Fetch(row) && !row.empty() ? row[0] : Variant::Null();
    return StatementResult();
  }

  std::optional<int32_t> ParameterCount(StringView sql) override {
    Handle stmt(SQL_HANDLE_STMT, link_->dbc->get());
    const String text(sql);
    stmt.Check(SQLPrepareW(stmt.get(), W(text), SQL_NTS), u"Preparing the statement");
    SQLSMALLINT count = 0;
    if (!Succeeded(SQLNumParams(stmt.get(), &count))) return std::nullopt;
    return count;
  }

  Variant LastInsertKey() override {
    const StringView query =
        dbms_.view().find(u"postgres") != StringView::npos     ? u"SELECT lastval()"
        : dbms_.view().find(u"sql server") != StringView::npos ? u"SELECT SCOPE_IDENTITY()"
                                                               : u"SELECT LAST_INSERT_ID()";
    try {
      Rowset rowset = Execute(query);
      if (rowset.rows.empty() || rowset.rows[0].empty()) return Variant();
      const Variant& key = rowset.rows[0][0];
      if (key.is_string()) {
        if (auto number = ParseNumberText(key.as_string()))
          return IntegerValue(static_cast<int64_t>(*number));
      }
      return key;
    } catch (const ProviderError&) {
      return Variant();  // no key generated in this session yet
    }
  }

  void SetCommandTimeout(int32_t seconds) noexcept override { command_timeout_ = seconds; }

  void BeginTransaction() override {
    DrainOpenCursors();
    link_->dbc->Check(SQLSetConnectAttr(link_->dbc->get(), SQL_ATTR_AUTOCOMMIT,
                                        reinterpret_cast<SQLPOINTER>(SQL_AUTOCOMMIT_OFF), 0),
                      u"Starting a transaction");
  }
  void CommitTransaction() override { EndTransaction(SQL_COMMIT); }
  void RollbackTransaction() override { EndTransaction(SQL_ROLLBACK); }

  Rowset Execute(StringView sql) override {
    last_key_.reset();
    Handle stmt(SQL_HANDLE_STMT, link_->dbc->get());
    SQLSetStmtAttr(stmt.get(), SQL_ATTR_QUERY_TIMEOUT,
                   reinterpret_cast<SQLPOINTER>(static_cast<intptr_t>(command_timeout_)), 0);
    const String text(sql);
    stmt.Check(SQLExecDirectW(stmt.get(), W(text), SQL_NTS), u"Running the statement");
    Rowset rowset;
    SQLSMALLINT count = 0;
    stmt.Check(SQLNumResultCols(stmt.get(), &count), u"Reading the columns");
    for (SQLUSMALLINT i = 1; i <= static_cast<SQLUSMALLINT>(count); ++i) {
      rowset.columns.push_back(Describe(stmt.get(), i));
    }
    if (count == 0) return rowset;
    ForEachRow(stmt.get(), [&] {
      auto& row = rowset.rows.emplace_back();
      for (SQLUSMALLINT i = 1; i <= static_cast<SQLUSMALLINT>(count); ++i) {
        row.push_back(ReadValue(stmt.get(), i, rowset.columns[i - 1]));
      }
    });
    return rowset;
  }

 private:
  void DrainOpenCursors() {
    // Draining frees a cursor's statement, which takes it off the list.
    while (!link_->open_cursors.empty())
      link_->open_cursors.back()->Drain();
  }

  void EndTransaction(SQLSMALLINT how) {
    DrainOpenCursors();
    link_->dbc->Check(SQLEndTran(SQL_HANDLE_DBC, link_->dbc->get(), how),
                      how == SQL_COMMIT ? u"Committing" : u"Rolling back");
    link_->dbc->Check(SQLSetConnectAttr(link_->dbc->get(), SQL_ATTR_AUTOCOMMIT,
                                        reinterpret_cast<SQLPOINTER>(SQL_AUTOCOMMIT_ON), 0),
                      u"Ending the transaction");
  }

  using Target = std::tuple<std::optional<String>, std::optional<String>, String>;

  String Info(SQLUSMALLINT id) {
    SQLWCHAR buffer[512] = {};
    SQLSMALLINT length = 0;
    if (!Succeeded(SQLGetInfoW(link_->dbc->get(), id, buffer, sizeof buffer, &length))) return {};
    const size_t chars =
        std::min(static_cast<size_t>(std::max<SQLSMALLINT>(length, 0)) / sizeof(SQLWCHAR),
                 std::size(buffer) - 1);
    return FromW(buffer, chars);
  }

  // A catalogue argument: the text, or NULL for "any".
  static SQLWCHAR* Arg(const std::optional<String>& value) { return value ? W(*value) : nullptr; }
  static SQLSMALLINT Len(const std::optional<String>& value) {
    return value ? static_cast<SQLSMALLINT>(value->size()) : 0;
  }

  void Tables(Rowset& rowset, const std::optional<String>& catalog,
              const std::optional<String>& schema, const std::optional<String>& table) {
    Handle stmt(SQL_HANDLE_STMT, link_->dbc->get());
    stmt.Check(SQLTablesW(stmt.get(), Arg(catalog), Len(catalog), Arg(schema), Len(schema),
                          Arg(table), Len(table), nullptr, 0),
               u"Listing the tables");
    ForEachRow(stmt.get(), [&] {
      auto& row = rowset.AddRow();
      rowset.Set(row, u"TABLE_CATALOG", TextOrNull(stmt.get(), 1));
      rowset.Set(row, u"TABLE_SCHEMA", TextOrNull(stmt.get(), 2));
      rowset.Set(row, u"TABLE_NAME", TextOrNull(stmt.get(), 3));
      Variant type = TextOrNull(stmt.get(), 4);
      // MySQL-family drivers call base tables "BASE TABLE"; ADO's vocabulary is "TABLE".
      if (type.is_string() && type.as_string() == u"BASE TABLE") type = String(u"TABLE");
      rowset.Set(row, u"TABLE_TYPE", type);
      rowset.Set(row, u"DESCRIPTION", TextOrNull(stmt.get(), 5));
    });
  }

  void Columns(Rowset& rowset, const std::optional<String>& catalog,
               const std::optional<String>& schema, const std::optional<String>& table) {
    Handle stmt(SQL_HANDLE_STMT, link_->dbc->get());
    stmt.Check(SQLColumnsW(stmt.get(), Arg(catalog), Len(catalog), Arg(schema), Len(schema),
                           Arg(table), Len(table), nullptr, 0),
               u"Listing the columns");
    ForEachRow(stmt.get(), [&] {
      auto& row = rowset.AddRow();
      rowset.Set(row, u"TABLE_CATALOG", TextOrNull(stmt.get(), 1));
      rowset.Set(row, u"TABLE_SCHEMA", TextOrNull(stmt.get(), 2));
      rowset.Set(row, u"TABLE_NAME", TextOrNull(stmt.get(), 3));
      rowset.Set(row, u"COLUMN_NAME", TextOrNull(stmt.get(), 4));
      const auto sql_type = static_cast<int16_t>(IntOr(stmt.get(), 5, SQL_WVARCHAR));
      const int64_t size = IntOr(stmt.get(), 7, 0);
      const int64_t digits = IntOr(stmt.get(), 9, 0);
      const int64_t nullable = IntOr(stmt.get(), 11, SQL_NULLABLE_UNKNOWN);
      const Variant default_value = TextOrNull(stmt.get(), 13);
      const int64_t ordinal = IntOr(stmt.get(), 17, 0);
      const MappedType mapped = MapOdbcType(sql_type, size);
      const bool is_nullable = nullable != SQL_NO_NULLS;
      rowset.Set(row, u"ORDINAL_POSITION", static_cast<int32_t>(ordinal));
      rowset.Set(row, u"COLUMN_HASDEFAULT", !default_value.is_null());
      rowset.Set(row, u"COLUMN_DEFAULT", default_value);
      rowset.Set(row, u"IS_NULLABLE", is_nullable);
      rowset.Set(row, u"COLUMN_FLAGS", is_nullable ? adFldIsNullable | adFldMayBeNull : 0);
      rowset.Set(row, u"DATA_TYPE", static_cast<int32_t>(mapped.type));
      rowset.Set(row, u"CHARACTER_MAXIMUM_LENGTH", mapped.defined_size);
      rowset.Set(row, u"NUMERIC_PRECISION", static_cast<int32_t>(size));
      rowset.Set(row, u"NUMERIC_SCALE", static_cast<int32_t>(digits));
    });
  }

  // The tables a key or index request covers: the one named, or every base table.
  std::vector<Target> KeyTargets(const std::optional<String>& catalog,
                                 const std::optional<String>& schema,
                                 const std::optional<String>& table) {
    std::vector<Target> targets;
    // A named table needs no look-up: the driver resolves it through its own search path.
    if (table) {
      targets.emplace_back(catalog, schema, *table);
      return targets;
    }
    Rowset tables = MakeSchemaRowset(adSchemaTables);
    Tables(tables, catalog, schema, table);
    for (const auto& row : tables.rows) {
      if (!(row[3].is_string() && row[3].as_string() == u"TABLE")) continue;
      targets.emplace_back(
          row[0].is_string() ? std::optional<String>(row[0].as_string()) : std::nullopt,
          row[1].is_string() ? std::optional<String>(row[1].as_string()) : std::nullopt,
          row[2].is_string() ? row[2].as_string() : String());
    }
    return targets;
  }

  // The key's columns and name, in key order.
  using Key = std::pair<std::vector<String>, String>;

  // A reader asks for a table's key rowset and then for its index rowset, which needs the key
  // again; the last answer is kept until a statement runs (which could change the schema).
  Key KeyOf(const std::optional<String>& catalog, const std::optional<String>& schema,
            const String& table) {
    const Target target(catalog, schema, table);
    if (last_key_ && last_key_->first == target) return last_key_->second;
    Key key = ReadKey(catalog, schema, table);
    last_key_.emplace(target, key);
    return key;
  }

  Key ReadKey(const std::optional<String>& catalog, const std::optional<String>& schema,
              const String& table) {
    Handle stmt(SQL_HANDLE_STMT, link_->dbc->get());
    std::optional<String> name(table);
    stmt.Check(SQLPrimaryKeysW(stmt.get(), Arg(catalog), Len(catalog), Arg(schema), Len(schema),
                               Arg(name), Len(name)),
               u"Reading the primary key");
    std::vector<std::pair<int64_t, String>> columns;
    String key_name;
    ForEachRow(stmt.get(), [&] {
      const auto column = GetText(stmt.get(), 4);
      const int64_t seq = IntOr(stmt.get(), 5, 0);
      const auto pk = GetText(stmt.get(), 6);
      if (column) columns.emplace_back(seq, *column);
      if (pk) key_name = *pk;
    });
    std::sort(columns.begin(), columns.end(),
              [](const auto& a, const auto& b) { return a.first < b.first; });
    std::vector<String> names;
    for (auto& [seq, column] : columns)
      names.push_back(std::move(column));
    return {std::move(names), key_name};
  }

  void PrimaryKeys(Rowset& rowset, const std::optional<String>& catalog,
                   const std::optional<String>& schema, const String& table) {
    const auto [columns, key_name] = KeyOf(catalog, schema, table);
    for (size_t i = 0; i < columns.size(); ++i) {
      auto& row = rowset.AddRow();
      if (catalog) rowset.Set(row, u"TABLE_CATALOG", *catalog);
      if (schema) rowset.Set(row, u"TABLE_SCHEMA", *schema);
      rowset.Set(row, u"TABLE_NAME", table);
      rowset.Set(row, u"COLUMN_NAME", columns[i]);
      rowset.Set(row, u"ORDINAL", static_cast<int32_t>(i + 1));
      if (!key_name.empty()) rowset.Set(row, u"PK_NAME", key_name);
    }
  }

  void Indexes(Rowset& rowset, const std::optional<String>& catalog,
               const std::optional<String>& schema, const String& table) {
    const auto [key_columns, key_name] = KeyOf(catalog, schema, table);
    Handle stmt(SQL_HANDLE_STMT, link_->dbc->get());
    std::optional<String> name(table);
    stmt.Check(SQLStatisticsW(stmt.get(), Arg(catalog), Len(catalog), Arg(schema), Len(schema),
                              Arg(name), Len(name), SQL_INDEX_ALL, SQL_QUICK),
               u"Reading the indexes");
    struct Entry {
      String index;
      bool unique;
      int32_t ordinal;
      String column;
    };
    std::vector<Entry> entries;
    ForEachRow(stmt.get(), [&] {
      const int64_t type = IntOr(stmt.get(), 7, SQL_TABLE_STAT);
      if (type == SQL_TABLE_STAT) return;
      const bool non_unique = IntOr(stmt.get(), 4, 1) != 0;
      const auto index = GetText(stmt.get(), 6);
      const int64_t ordinal = IntOr(stmt.get(), 8, 0);
      const auto column = GetText(stmt.get(), 9);
      if (!index) return;
      entries.push_back(
          {*index, !non_unique, static_cast<int32_t>(ordinal), column.value_or(String())});
    });
    // ODBC does not say which index carries the primary key: it is the one named like the key,
    // or, without a key name, the unique one over exactly the key's columns.
    std::map<String, std::set<String>> columns_of;
    for (const Entry& e : entries)
      columns_of[e.index].insert(e.column);
    const std::set<String> key_set(key_columns.begin(), key_columns.end());
    for (const Entry& e : entries) {
      const bool primary =
          !key_set.empty() && e.unique &&
          (key_name.empty() ? columns_of[e.index] == key_set : e.index == key_name);
      auto& row = rowset.AddRow();
      if (catalog) rowset.Set(row, u"TABLE_CATALOG", *catalog);
      if (schema) rowset.Set(row, u"TABLE_SCHEMA", *schema);
      rowset.Set(row, u"TABLE_NAME", table);
      rowset.Set(row, u"INDEX_NAME", e.index);
      rowset.Set(row, u"PRIMARY_KEY", primary);
      rowset.Set(row, u"UNIQUE", e.unique);
      rowset.Set(row, u"CLUSTERED", false);
      rowset.Set(row, u"TYPE", static_cast<int16_t>(1));
      rowset.Set(row, u"ORDINAL_POSITION", e.ordinal);
      rowset.Set(row, u"COLUMN_NAME", e.column);
    }
  }

  ColumnInfo Describe(SQLHSTMT stmt, SQLUSMALLINT column) {
    SQLWCHAR name[512] = {};
    SQLSMALLINT name_length = 0;
    SQLSMALLINT sql_type = 0;
    SQLULEN size = 0;
    SQLSMALLINT digits = 0;
    SQLSMALLINT nullable = SQL_NULLABLE_UNKNOWN;
    if (!Succeeded(SQLDescribeColW(stmt, column, name, static_cast<SQLSMALLINT>(std::size(name)),
                                   &name_length, &sql_type, &size, &digits, &nullable))) {
      Fail(SQL_HANDLE_STMT, stmt, u"Describing a column");
    }
    ColumnInfo info;
    info.name =
        FromW(name, std::min<size_t>(static_cast<size_t>(std::max<SQLSMALLINT>(name_length, 0)),
                                     std::size(name) - 1));
    const MappedType mapped = MapOdbcType(sql_type, static_cast<int64_t>(size));
    info.type = mapped.type;
    info.defined_size = mapped.defined_size;
    SQLLEN auto_unique = 0;
    if (Succeeded(SQLColAttributeW(stmt, column, SQL_DESC_AUTO_UNIQUE_VALUE, nullptr, 0, nullptr,
                                   &auto_unique))) {
      info.auto_increment = auto_unique == SQL_TRUE;
    }
    SQLLEN updatable = SQL_ATTR_READWRITE_UNKNOWN;
    SQLColAttributeW(stmt, column, SQL_DESC_UPDATABLE, nullptr, 0, nullptr, &updatable);
    if (nullable != SQL_NO_NULLS) info.attributes |= adFldIsNullable | adFldMayBeNull;
    if (updatable == SQL_ATTR_WRITE) info.attributes |= adFldUpdatable;
    if (updatable == SQL_ATTR_READWRITE_UNKNOWN) info.attributes |= adFldUnknownUpdatable;
    if (info.type == adNumeric || info.type == adDecimal) {
      info.precision = static_cast<uint8_t>(std::min<SQLULEN>(size, 255));
      info.numeric_scale = static_cast<uint8_t>(std::clamp<SQLSMALLINT>(digits, 0, 255));
    }
    SQLWCHAR table[256] = {};
    SQLSMALLINT table_length = 0;
    if (Succeeded(SQLColAttributeW(stmt, column, SQL_DESC_BASE_TABLE_NAME, table, sizeof table,
                                   &table_length, nullptr))) {
      info.base_table = FromW(
          table, std::min<size_t>(
                     static_cast<size_t>(std::max<SQLSMALLINT>(table_length, 0)) / sizeof(SQLWCHAR),
                     std::size(table) - 1));
    }
    SQLWCHAR base[256] = {};
    SQLSMALLINT base_length = 0;
    if (Succeeded(SQLColAttributeW(stmt, column, SQL_DESC_BASE_COLUMN_NAME, base, sizeof base,
                                   &base_length, nullptr))) {
      info.base_column =
          FromW(base, std::min<size_t>(static_cast<size_t>(std::max<SQLSMALLINT>(base_length, 0)) /
                                           sizeof(SQLWCHAR),
                                       std::size(base) - 1));
    }
    if (info.type == adLongVarWChar || info.type == adLongVarChar || info.type == adLongVarBinary) {
      info.attributes |= adFldLong;
    } else if (info.type != adVarWChar && info.type != adVarChar && info.type != adVarBinary) {
      info.attributes |= adFldFixed;
    }
    return info;
  }

  std::shared_ptr<OdbcLink> link_;
  String dbms_;  // the DBMS name in lower case, for the few statements that differ by DBMS
  std::optional<std::pair<Target, Key>> last_key_;
  int32_t command_timeout_ = 30;
  String quote_ = u"\"";
};

}  // namespace

namespace {

// The driver a connection string names, directly or through its DSN, in lower case.
String DriverOf(const ConnectionString& cs) {
  String driver = cs.Get(u"Driver").value_or(String());
  if (driver.empty()) {
    if (auto dsn = cs.Get(u"DSN")) driver = ReadOdbcIniValue(*dsn, u"Driver");
  }
  return ToLower(driver);
}

bool Names(const String& driver, StringView part) {
  return driver.view().find(part) != StringView::npos;
}

// Both drivers read a whole result into memory before the first row unless told otherwise,
// which a forward-only walk over millions of rows cannot afford. Settings the caller gave win.
void StreamForwardOnlyResults(ConnectionString& cs, const String& driver) {
  if (Names(driver, u"postgres") || Names(driver, u"psql")) {
    // psqlODBC then reads through a server-side cursor, a batch of rows per round trip.
    if (!cs.Has(u"UseDeclareFetch")) cs.Set(u"UseDeclareFetch", u"1");
    if (!cs.Has(u"Fetch")) cs.Set(u"Fetch", u"1000");
    return;
  }
  if (!Names(driver, u"maria") && !Names(driver, u"mysql")) return;
  // Bit 1 (FOUND_ROWS): MySQL counts only the rows an UPDATE changed; this makes it count the
  // rows it matched, as every other DBMS does, so that rewriting a row with its own values is
  // not taken for a row that has gone. Bit 20 (NO_CACHE): forward-only results stream from
  // the server; Connector/ODBC reads it from 3.1.17 on and ignores it before.
  if (!cs.Has(u"OPTION")) cs.Set(u"OPTION", u"1048578");
}

}  // namespace

std::unique_ptr<Backend> OpenOdbcBackend(StringView connection_string, StringView user,
                                         StringView password, const OdbcTimeouts& timeouts) {
  ConnectionString cs = ConnectionString::Parse(connection_string);
  cs.Remove(u"Provider");
  // "dsn=x;uid=;pwd=" is how a DSN that stores its own login is named: an empty value must
  // not override the stored one.
  for (const StringView key : {u"UID", u"PWD"}) {
    if (auto value = cs.Get(key); value && value->empty()) cs.Remove(key);
  }
  if (!user.empty()) cs.Set(u"UID", user);
  if (!password.empty()) cs.Set(u"PWD", password);
  const String driver = DriverOf(cs);
  StreamForwardOnlyResults(cs, driver);
  const bool mysql = Names(driver, u"maria") || Names(driver, u"mysql");
  if (timeouts.login_seconds > 0 && !cs.Has(u"CONN_TIMEOUT") && mysql) {
    cs.Set(u"CONN_TIMEOUT", String::FromUtf8(std::to_string(timeouts.login_seconds)));
  }
  auto backend = std::make_unique<OdbcBackend>();
  backend->Connect(cs.ToText(), timeouts);
  return backend;
}

std::optional<String> FindOdbcDriver(StringView name_part) {
  char buffer[16384] = {};
  WORD length = 0;
  if (!SQLGetInstalledDrivers(buffer, sizeof buffer, &length)) return std::nullopt;
  const String wanted = ToLower(name_part);
  for (const char* p = buffer; p < buffer + sizeof buffer && *p;) {
    const std::string_view name(p);
    const String driver = String::FromUtf8(name);
    if (ToLower(driver).view().find(wanted) != StringView::npos) return driver;
    p += name.size() + 1;
  }
  return std::nullopt;
}

}  // namespace qv::data
