// ADO's Connection over every backend of this layer. The readers of the schema subsystem use
// it exactly as they would use ADO:
//
//   qv::data::Connection cn;
//   cn.Open(u"Provider=SQLite;Data Source=/tmp/shop.db");      // or "dsn=qv_pg;uid=..;pwd=.."
//   String dbms = ToString(cn.Properties(u"DBMS Name"));
//   auto tables = cn.OpenSchema(qv::data::adSchemaTables);     // a Recordset
//   for (; !tables->Eof(); tables->MoveNext()) ... tables->Fields(u"TABLE_NAME").Value() ...
//
// Connection strings accepted (see connection_string.h): ODBC strings ("DSN=..", "Driver=.."),
// "Provider=SQLite;Data Source=file", Jet/ACE provider strings (the Access file through
// mdbtools), SQLOLEDB / Oracle provider strings (through a configured ODBC driver), and
// "Provider=Scripted;Data Source=name" for catalogues that tests describe in code.
// Every failure raises qv::Error with the ADO-style number and the provider's words, and
// leaves the diagnostic records in GetErrors() (ADO's Errors).
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "automation/string.h"
#include "automation/variant.h"
#include "platform/data/backend.h"
#include "platform/data/provider_error.h"

namespace qv::data {

class Backend;
class ConnectionPool;
class Recordset;

class Connection {
 public:
  Connection();
  ~Connection();
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  // Opens the data source. user and password, when not empty, override those in the string.
  // ODBC logins time out after ConnectionTimeout seconds (15 by default) and statements after
  // CommandTimeout seconds (30 by default, 0 for none); both are read when Open runs.
  void Open(StringView connection_string, StringView user = {}, StringView password = {});
  // Opens on a backend made elsewhere (the scripted backend of tests, for instance).
  void OpenWith(std::unique_ptr<Backend> backend, StringView connection_string = {});
  void Close() noexcept;
  // Opens take an idle backend of the same string from `pool` and closes give it back there;
  // null (the default) opens and closes for real. The pool must outlive the connection.
  void SetPool(ConnectionPool* pool) noexcept { pool_ = pool; }
  // adStateOpen (1) when open, adStateClosed (0) otherwise.
  int32_t State() const noexcept;
  // The ADO revision whose interface this layer offers.
  String Version() const;
  const String& ConnectionString() const noexcept { return connection_string_; }
  int32_t ConnectionTimeout() const noexcept { return login_timeout_seconds_; }
  void SetConnectionTimeout(int32_t seconds) noexcept { login_timeout_seconds_ = seconds; }
  int32_t CommandTimeout() const noexcept { return command_timeout_seconds_; }
  // Also applies to the statements of an open connection from the next one on.
  void SetCommandTimeout(int32_t seconds) noexcept;

  // Properties(name).Value; raises kErrItemNotFound for a name the provider lacks.
  Variant Properties(StringView name) const;
  std::vector<String> PropertyNames() const;

  // The diagnostics of the last failed call (cleared when a call succeeds).
  const Errors& GetErrors() const noexcept { return errors_; }

  // One of adSchemaTables, adSchemaPrimaryKeys, adSchemaColumns, adSchemaIndexes, narrowed by
  // the restrictions (Empty entries mean no restriction). Column lookups ignore case, so the
  // readers' "index_name" and "Unique" find INDEX_NAME and UNIQUE.
  std::unique_ptr<Recordset> OpenSchema(int32_t schema_id,
                                        const std::vector<Variant>& restrictions = {});
  // Runs a statement; rows, if any, are in the returned Recordset.
  std::unique_ptr<Recordset> Execute(StringView sql);

  // For Recordset::Open: runs a statement or opens a table by name.
  std::unique_ptr<Recordset> OpenSource(StringView source);

  // Runs a statement with `?` placeholders bound to `params`; rows stream through the cursor.
  StatementResult Run(StringView sql, std::span<const Variant> params = {});
  // A procedure call with output and return-value parameters (Backend::Call).
  StatementResult Call(StringView sql, std::span<CallParameter> params);
  // Placeholders of a statement, when the backend can tell.
  std::optional<int32_t> ParameterCount(StringView sql);
  // The key the last INSERT generated (Empty when unknown).
  Variant LastInsertKey();
  void BeginTransaction();
  void CommitTransaction();
  void RollbackTransaction();
  // The characters that quote a name in the backend's SQL.
  std::pair<String, String> NameQuotes() const;
  // Records a failure met outside a call of this class (a cursor's fetch) in the Errors and
  // raises it as the error scripts see.
  [[noreturn]] void Fail(const ProviderError& failure);

 private:
  Backend& RequireOpen() const;
  template <class F>
  auto Guard(F&& call) -> decltype(call());

  std::unique_ptr<Backend> backend_;
  ConnectionPool* pool_ = nullptr;
  std::u16string pool_key_;  // the string, user and password the backend was opened with
  String connection_string_;
  int32_t login_timeout_seconds_ = 15;
  int32_t command_timeout_seconds_ = 30;
  Errors errors_;
};

}  // namespace qv::data
