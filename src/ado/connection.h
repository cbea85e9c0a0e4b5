// ADODB.Connection: opens a data source through the data access layer and runs statements on
// it. Recordsets and commands share one connection object; closing it ends the recordsets that
// still stream from it.
#pragma once

#include <memory>
#include <vector>

#include "automation/dispatch.h"
#include "platform/data/connection.h"
#include "platform/data/connection_pool.h"
#include "platform/data/data_types.h"

namespace qv::ado {

class RecordsetObject;

class ConnectionObject : public DispatchObject<ConnectionObject> {
 public:
  static const DispatchTable<ConnectionObject>& Table();
  ConnectionObject();
  ~ConnectionObject() override;

  bool IsOpen() const { return cn_.State() == data::adStateOpen; }
  // Opens and closes through a pool of open connections that outlives this object.
  void UsePool(data::ConnectionPool* pool) { cn_.SetPool(pool); }
  // The data layer connection; raises 3704 when closed.
  data::Connection& Require();
  // Runs a statement for Execute and Command.Execute, with the errors a script sees.
  data::StatementResult Run(StringView sql, std::span<const Variant> params);
  data::StatementResult Call(StringView sql, std::span<data::CallParameter> params);
  // Opens a table by name or runs a statement as a command of `command_type`.
  String CommandTextFor(StringView text, int32_t command_type);
  int32_t CursorLocation() const { return cursor_location_; }
  int32_t CommandTimeout() const { return cn_.CommandTimeout(); }
  void SetCommandTimeout(int32_t seconds) { cn_.SetCommandTimeout(seconds); }
  int32_t ConnectionTimeout() const { return cn_.ConnectionTimeout(); }
  void SetConnectionTimeout(int32_t seconds) { cn_.SetConnectionTimeout(seconds); }

  // Recordsets that stream from this connection are told when it closes.
  void Attach(RecordsetObject* rs);
  void Detach(RecordsetObject* rs);

  // Raises `failure` as a script sees it, keeping the provider's records in Errors.
  [[noreturn]] void Raise(const Error& failure);
  // The same for a failure met while fetching rows.
  [[noreturn]] void Fail(const data::ProviderError& failure);

  // Members scripts call; public for the dispatch table.
  void Open(Args args);
  void Close();
  Variant Execute(Args args);
  Variant OpenSchema(Args args);
  int32_t BeginTrans();
  void EndTrans(bool commit);
  void SetConnectionString(const String& text);
  const String& ConnectionString() const { return connection_string_; }
  String Provider() const;
  void ClearErrors() { errors_.clear(); }
  const std::vector<data::ErrorRecord>& ErrorRecords() const { return errors_; }
  int32_t trans_level_ = 0;
  int32_t cursor_location_ = 2;  // adUseServer
  int32_t mode_ = 0;
  int32_t isolation_ = 0x1000;
  String default_database_;
  String provider_;

 private:
  data::Connection cn_;
  String connection_string_;
  std::vector<RecordsetObject*> recordsets_;
  std::vector<data::ErrorRecord> errors_;
};

// A connection string of a Windows page in the form the data layer opens: ODBC drivers named
// by their Windows names are matched to the installed driver of the same DBMS, Access drivers
// go to the Access reader, SQLite drivers to the embedded backend.
String TranslateConnectionString(StringView text);

}  // namespace qv::ado
