// Connection: opening, statements, transactions, schema rowsets and the Errors collection.
#include "ado/connection.h"

#include <algorithm>

#include "ado/ado_errors.h"
#include "ado/properties.h"
#include "ado/recordset.h"
#include "automation/convert.h"
#include "automation/safe_array.h"
#include "platform/data/connection_string.h"
#include "platform/data/data_types.h"
#include "platform/data/odbc_backend.h"
#include "platform/data/recordset.h"

namespace qv::ado {

using namespace qv::data;

namespace {

constexpr StringView kSource = u"ADODB.Connection";
constexpr int32_t adExecuteNoRecords = 0x80;
constexpr int32_t adUseClient = 3;
constexpr int32_t kErrNoTransaction = static_cast<int32_t>(0x8004D00E);

bool Contains(const String& lower, StringView part) {
  return lower.view().find(part) != StringView::npos;
}

// The installed ODBC driver of the DBMS a Windows driver name stands for.
std::optional<String> InstalledDriverFor(const String& lower) {
  if (Contains(lower, u"mysql") || Contains(lower, u"maria")) {
    if (auto found = FindOdbcDriver(u"MariaDB")) return found;
    return FindOdbcDriver(u"MySQL");
  }
  if (Contains(lower, u"postgres")) return FindOdbcDriver(u"PostgreSQL");
  if (Contains(lower, u"sql server") || Contains(lower, u"sql native")) {
    if (auto found = FindOdbcDriver(u"SQL Server")) return found;
    return FindOdbcDriver(u"FreeTDS");
  }
  return std::nullopt;
}

// A source that names a table rather than holding a statement.
bool LooksLikeTableName(StringView source) {
  const StringView text = TrimBlanks(source);
  if (text.empty()) return false;
  if (text.front() == u'[' && text.back() == u']') return true;
  return text.find_first_of(u" \t\r\n(;") == StringView::npos;
}

}  // namespace

String TranslateConnectionString(StringView text) {
  const String expanded = ExpandShortUrl(text);
  ConnectionString cs = ConnectionString::Parse(expanded);
  const auto driver = cs.Get(u"Driver");
  if (cs.Kind() != ProviderKind::Odbc || !driver) return expanded;
  const String lower = ToLower(*driver);
  if (Contains(lower, u"access driver") || Contains(lower, u"microsoft access")) {
    return u"Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" +
           cs.GetAny({u"DBQ", u"Data Source", u"Database"}).value_or(String());
  }
  if (Contains(lower, u"sqlite")) {
    return u"Provider=SQLite;Data Source=" +
           cs.GetAny({u"Database", u"Data Source", u"DBQ"}).value_or(String());
  }
  if (auto installed = FindOdbcDriver(*driver); installed && EqualsNoCase(*installed, *driver)) {
    return expanded;
  }
  if (auto installed = InstalledDriverFor(lower)) {
    cs.Set(u"Driver", *installed);
    return cs.ToText();
  }
  return expanded;
}

ConnectionObject::ConnectionObject() = default;

ConnectionObject::~ConnectionObject() {
  for (RecordsetObject* rs : std::vector<RecordsetObject*>(recordsets_))
    rs->ConnectionClosing();
}

data::Connection& ConnectionObject::Require() {
  if (!IsOpen()) throw AdoError(adErrObjectClosed, kSource);
  return cn_;
}

void ConnectionObject::Raise(const Error& failure) {
  errors_.assign(cn_.GetErrors().begin(), cn_.GetErrors().end());
  throw ScriptError(failure);
}

void ConnectionObject::Fail(const ProviderError& failure) {
  try {
    cn_.Fail(failure);
  } catch (const Error& error) {
    Raise(error);
  }
}

data::StatementResult ConnectionObject::Run(StringView sql, std::span<const Variant> params) {
  data::Connection& cn = Require();
  try {
    return cn.Run(sql, params);
  } catch (const Error& failure) {
    Raise(failure);
  }
}

data::StatementResult ConnectionObject::Call(StringView sql,
                                             std::span<data::CallParameter> params) {
  data::Connection& cn = Require();
  try {
    return cn.Call(sql, params);
  } catch (const Error& failure) {
    Raise(failure);
  }
}

String ConnectionObject::CommandTextFor(StringView text, int32_t command_type) {
  const int32_t kind = command_type < 0 ? 8 : (command_type & ~adExecuteNoRecords);
  const bool table =
      kind == 2 || kind == 512 || ((kind == 8 || kind == 0) && LooksLikeTableName(text));
  if (kind == 4) return u"{call " + String(TrimBlanks(text)) + u"}";
  if (!table) return String(text);
  StringView name = TrimBlanks(text);
  if (name.size() >= 2 && name.front() == u'[' && name.back() == u']') {
    name = name.substr(1, name.size() - 2);
  } else if (name.find_first_of(u"\"`.") != StringView::npos) {
    return u"SELECT * FROM " + String(name);
  }
  const auto [open, close] = Require().NameQuotes();
  String quoted(open);
  for (const Char c : name) {
    quoted.Append(c);
    if (!close.empty() && c == close[0]) quoted.Append(c);
  }
  quoted.Append(close);
  return u"SELECT * FROM " + quoted;
}

void ConnectionObject::Attach(RecordsetObject* rs) {
  if (std::find(recordsets_.begin(), recordsets_.end(), rs) == recordsets_.end()) {
    recordsets_.push_back(rs);
  }
}

void ConnectionObject::Detach(RecordsetObject* rs) {
  recordsets_.erase(std::remove(recordsets_.begin(), recordsets_.end(), rs), recordsets_.end());
}

void ConnectionObject::SetConnectionString(const String& text) {
  if (IsOpen()) throw AdoError(adErrObjectOpen, kSource);
  connection_string_ = text;
}

String ConnectionObject::Provider() const {
  if (!provider_.empty()) return provider_;
  const String provider =
      data::ConnectionString::Parse(ExpandShortUrl(connection_string_)).Provider();
  return provider.empty() ? String(u"MSDASQL") : provider;
}

void ConnectionObject::Open(Args args) {
  CheckArgCount(args, 0, 4);
  if (IsOpen()) throw AdoError(adErrObjectOpen, kSource);
  if (HasArg(args, 0)) connection_string_ = ToString(args[0]);
  const String user = HasArg(args, 1) ? ToString(args[1]) : String();
  const String password = HasArg(args, 2) ? ToString(args[2]) : String();
  errors_.clear();
  if (!provider_.empty() && !ConnectionString::Parse(connection_string_).Has(u"Provider")) {
    connection_string_ = u"Provider=" + provider_ + u";" + connection_string_;
  }
  try {
    cn_.Open(TranslateConnectionString(connection_string_), user, password);
  } catch (const Error& failure) {
    Raise(failure);
  }
  trans_level_ = 0;
}

void ConnectionObject::Close() {
  if (!IsOpen()) throw AdoError(adErrObjectClosed, kSource);
  for (RecordsetObject* rs : std::vector<RecordsetObject*>(recordsets_))
    rs->ConnectionClosing();
  recordsets_.clear();
  if (trans_level_ > 0) {
    try {
      cn_.RollbackTransaction();
    } catch (const Error&) {
      // The connection goes anyway; the server drops what was not committed.
    }
  }
  trans_level_ = 0;
  cn_.Close();
}

Variant ConnectionObject::Execute(Args args) {
  CheckArgCount(args, 1, 3);
  Require();
  const String text = ToString(args[0]);
  const int32_t options = HasArg(args, 2) ? ToLong(args[2]) : -1;
  const String sql = CommandTextFor(text, options);
  data::StatementResult result = Run(sql, {});
  if (args.size() > 1) args[1] = Variant(static_cast<int32_t>(result.rows_affected));
  if (options != -1 && (options & adExecuteNoRecords)) return Variant::Nothing();
  auto rs = MakeRef<RecordsetObject>();
  rs->cursor_location_ = cursor_location_;
  const int32_t cursor_type = cursor_location_ == adUseClient ? 3 : 0;
  rs->OpenOnResult(Ref<ConnectionObject>(this), Variant(text), std::move(result), cursor_type, 1);
  return Variant(rs);
}

Variant ConnectionObject::OpenSchema(Args args) {
  CheckArgCount(args, 1, 3);
  data::Connection& cn = Require();
  const int32_t id = ToLong(args[0]);
  std::vector<Variant> restrictions;
  if (HasArg(args, 1)) {
    if (!args[1].is_array()) throw AdoError(adErrInvalidArgument, kSource);
    for (const Variant& r : args[1].as_array()->elements())
      restrictions.push_back(r);
  }
  std::unique_ptr<data::Recordset> schema;
  try {
    schema = cn.OpenSchema(id, restrictions);
  } catch (const Error& failure) {
    Raise(failure);
  }
  auto rs = MakeRef<RecordsetObject>();
  rs->OpenOnRowset(Ref<ConnectionObject>(this), schema->Data());
  return Variant(rs);
}

int32_t ConnectionObject::BeginTrans() {
  data::Connection& cn = Require();
  if (trans_level_ > 0) {
    throw AdoError(adErrFeatureNotAvailable, kSource, kNotCapableText);
  }
  try {
    cn.BeginTransaction();
  } catch (const Error& failure) {
    Raise(failure);
  }
  trans_level_ = 1;
  return trans_level_;
}

void ConnectionObject::EndTrans(bool commit) {
  data::Connection& cn = Require();
  if (trans_level_ == 0) {
    throw Error(kErrNoTransaction, u"No transaction is active.", String(kSource));
  }
  try {
    if (commit) {
      cn.CommitTransaction();
    } else {
      cn.RollbackTransaction();
    }
  } catch (const Error& failure) {
    Raise(failure);
  }
  trans_level_ = 0;
}

}  // namespace qv::ado
