// Connection: picks the backend for a connection string and turns backend failures into the
// Errors collection plus one qv::Error.
#include "platform/data/connection.h"

#include "automation/error.h"
#include "platform/data/access_backend.h"
#include "platform/data/backend.h"
#include "platform/data/connection_pool.h"
#include "platform/data/connection_string.h"
#include "platform/data/data_types.h"
#include "platform/data/odbc_backend.h"
#include "platform/data/recordset.h"
#include "platform/data/scripted_backend.h"
#include "platform/data/sqlite_backend.h"

namespace qv::data {
namespace {

constexpr StringView kLayerSource = u"Quorvex data access";

ProviderError ProviderMissing(StringView provider, StringView why) {
  return ProviderError(kErrProviderNotFound,
                       u"Provider cannot be found. It may not be properly installed. (\"" +
                           String(provider) + u"\": " + String(why) + u")",
                       String(kLayerSource));
}

// SQL Server and Oracle provider strings name an OLE DB provider that Linux lacks; they open
// through an installed ODBC driver for that DBMS when there is one.
std::unique_ptr<Backend> OpenThroughOdbcDriver(const ConnectionString& cs, ProviderKind kind,
                                               StringView user, StringView password,
                                               const OdbcTimeouts& timeout) {
  const bool sql_server = kind == ProviderKind::SqlServer;
  auto driver = FindOdbcDriver(sql_server ? u"SQL Server" : u"Oracle");
  if (!driver && sql_server) driver = FindOdbcDriver(u"FreeTDS");
  if (!driver) {
    throw ProviderMissing(cs.Provider(), sql_server ? u"no ODBC driver for SQL Server is installed"
                                                    : u"no ODBC driver for Oracle is installed");
  }
  ConnectionString odbc;
  odbc.Set(u"Driver", *driver);
  if (auto server = cs.GetAny({u"Data Source", u"Server"})) {
    odbc.Set(sql_server ? u"Server" : u"DBQ", *server);
  }
  if (auto database = cs.GetAny({u"Initial Catalog", u"Database"}))
    odbc.Set(u"Database", *database);
  if (auto uid = cs.GetAny({u"User ID", u"UID"})) odbc.Set(u"UID", *uid);
  if (auto pwd = cs.GetAny({u"Password", u"PWD"})) odbc.Set(u"PWD", *pwd);
  if (auto trusted = cs.Get(u"Integrated Security"); trusted && EqualsNoCase(*trusted, u"SSPI")) {
    odbc.Set(u"Trusted_Connection", u"Yes");
  }
  return OpenOdbcBackend(odbc.ToText(), user, password, timeout);
}

std::unique_ptr<Backend> OpenBackend(StringView text, StringView user, StringView password,
                                     const OdbcTimeouts& timeout) {
  const ConnectionString cs = ConnectionString::Parse(text);
  const ProviderKind kind = cs.Kind();
  switch (kind) {
    case ProviderKind::Odbc:
      if (!cs.Has(u"DSN") && !cs.Has(u"Driver") && !cs.Has(u"FileDSN")) {
        throw ProviderError(kErrProviderFailure,
                            u"The connection string names no data source: give DSN=, Driver=, "
                            u"or Provider=SQLite;Data Source=<file>.",
                            String(kLayerSource));
      }
      return OpenOdbcBackend(text, user, password, timeout);
    case ProviderKind::Sqlite:
      return OpenSqliteBackend(cs.GetAny({u"Data Source", u"DBQ"}).value_or(String()));
    case ProviderKind::Jet: {
      const auto file = cs.GetAny({u"Data Source", u"DBQ"}).value_or(String());
      return OpenAccessBackend(file);
    }
    case ProviderKind::SqlServer:
    case ProviderKind::Oracle:
      return OpenThroughOdbcDriver(cs, kind, user, password, timeout);
    case ProviderKind::Scripted:
      return OpenScriptedBackend(cs.Get(u"Data Source").value_or(String()));
    case ProviderKind::Unknown:
      break;
  }
  throw ProviderMissing(cs.Provider(),
                        u"this system reads SQLite files, ODBC data sources and "
                        u"Access files only");
}

}  // namespace

Connection::Connection() = default;
Connection::~Connection() {
  Close();
}

template <class F>
auto Connection::Guard(F&& call) -> decltype(call()) {
  try {
    if constexpr (std::is_void_v<decltype(call())>) {
      call();
      errors_.Clear();
    } else {
      auto result = call();
      errors_.Clear();
      return result;
    }
  } catch (const ProviderError& failure) {
    errors_.Assign(failure.records());
    throw failure.ToError();
  }
}

void Connection::Open(StringView connection_string, StringView user, StringView password) {
  if (backend_) {
    throw Error(static_cast<int32_t>(0x800A0E79),
                u"Operation is not allowed when the object is open.", u"ADODB.Connection");
  }
  const String text = ExpandShortUrl(connection_string);
  if (pool_) {
    // NUL cannot occur in any of the three, so the key is unambiguous.
    pool_key_.assign(text.view());
    pool_key_.append(1, u'\0').append(user).append(1, u'\0').append(password);
    if ((backend_ = pool_->Take(pool_key_))) {
      backend_->SetCommandTimeout(command_timeout_seconds_);
      connection_string_ = text;
      errors_.Clear();
      return;
    }
  }
  const OdbcTimeouts timeouts{login_timeout_seconds_, command_timeout_seconds_};
  backend_ = Guard([&] { return OpenBackend(text, user, password, timeouts); });
  backend_->SetCommandTimeout(command_timeout_seconds_);
  connection_string_ = text;
}

void Connection::OpenWith(std::unique_ptr<Backend> backend, StringView connection_string) {
  backend_ = std::move(backend);
  backend_->SetCommandTimeout(command_timeout_seconds_);
  connection_string_ = String(connection_string);
  errors_.Clear();
}

void Connection::Close() noexcept {
  if (pool_ && backend_) pool_->Give(pool_key_, std::move(backend_));
  backend_.reset();
}

int32_t Connection::State() const noexcept {
  return backend_ ? adStateOpen : adStateClosed;
}

void Connection::SetCommandTimeout(int32_t seconds) noexcept {
  command_timeout_seconds_ = seconds;
  if (backend_) backend_->SetCommandTimeout(seconds);
}

String Connection::Version() const {
  return u"2.8";
}

Backend& Connection::RequireOpen() const {
  if (!backend_) {
    throw Error(kErrObjectClosed, u"Operation is not allowed when the object is closed.",
                u"ADODB.Connection");
  }
  return *backend_;
}

Variant Connection::Properties(StringView name) const {
  auto value = RequireOpen().Property(name);
  if (!value) throw ItemNotFound(name);
  return *value;
}

std::vector<String> Connection::PropertyNames() const {
  return RequireOpen().PropertyNames();
}

std::unique_ptr<Recordset> Connection::OpenSchema(int32_t schema_id,
                                                  const std::vector<Variant>& restrictions) {
  Backend& backend = RequireOpen();
  Rowset rowset = Guard([&] { return backend.OpenSchema(schema_id, restrictions); });
  ApplyRestrictions(rowset, schema_id, restrictions);
  return std::make_unique<Recordset>(std::move(rowset));
}

std::unique_ptr<Recordset> Connection::Execute(StringView sql) {
  Backend& backend = RequireOpen();
  return std::make_unique<Recordset>(Guard([&] { return backend.Execute(sql); }));
}

StatementResult Connection::Run(StringView sql, std::span<const Variant> params) {
  Backend& backend = RequireOpen();
  return Guard([&] { return backend.Run(sql, params); });
}

StatementResult Connection::Call(StringView sql, std::span<CallParameter> params) {
  Backend& backend = RequireOpen();
  return Guard([&] { return backend.Call(sql, params); });
}

std::optional<int32_t> Connection::ParameterCount(StringView sql) {
  Backend& backend = RequireOpen();
  return Guard([&] { return backend.ParameterCount(sql); });
}

Variant Connection::LastInsertKey() {
  Backend& backend = RequireOpen();
  return Guard([&] { return backend.LastInsertKey(); });
}

void Connection::BeginTransaction() {
  Backend& backend = RequireOpen();
  Guard([&] { backend.BeginTransaction(); });
}

void Connection::CommitTransaction() {
  Backend& backend = RequireOpen();
  Guard([&] { backend.CommitTransaction(); });
}

void Connection::RollbackTransaction() {
  Backend& backend = RequireOpen();
  Guard([&] { backend.RollbackTransaction(); });
}

std::pair<String, String> Connection::NameQuotes() const {
  return RequireOpen().NameQuotes();
}

void Connection::Fail(const ProviderError& failure) {
  errors_.Assign(failure.records());
  throw failure.ToError();
}

namespace {

// A source without blanks, brackets or quotes that isn't a statement names a table.
bool LooksLikeTableName(StringView source) {
  if (source.empty()) return false;
  if (source.front() == u'[' && source.back() == u']') return true;
  return source.find_first_of(u" \t\r\n(") == StringView::npos;
}

}  // namespace

std::unique_ptr<Recordset> Connection::OpenSource(StringView source) {
  Backend& backend = RequireOpen();
  if (!LooksLikeTableName(source)) return Execute(source);
  String name(source);
  if (source.front() == u'[') name = String(source.substr(1, source.size() - 2));
  const auto [open, close] = backend.NameQuotes();
  return Execute(u"SELECT * FROM " + open + name + close);
}

}  // namespace qv::data
