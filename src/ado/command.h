// ADODB.Command, ADODB.Parameter and the Parameters collection: a statement with `?`
// placeholders whose values are bound by type at Execute, never pasted into the text.
#pragma once

#include <span>
#include <vector>

#include "automation/dispatch.h"
#include "platform/data/backend.h"

namespace qv::ado {

class ConnectionObject;
class CommandObject;

class ParameterObject : public DispatchObject<ParameterObject> {
 public:
  static const DispatchTable<ParameterObject>& Table();
  // The value as the statement receives it: converted to Type, or 3421 when it does not convert.
  Variant BoundValue() const;

  String name_;
  int32_t type_ = 0;       // adEmpty
  int32_t direction_ = 1;  // adParamInput
  int32_t size_ = 0;
  int32_t attributes_ = 0;
  uint8_t precision_ = 0;
  uint8_t numeric_scale_ = 0;
  Variant value_;
};

class ParametersObject : public DispatchObject<ParametersObject> {
 public:
  static const DispatchTable<ParametersObject>& Table();
  explicit ParametersObject(CommandObject* owner) : owner_(owner) {}
  void Detach() { owner_ = nullptr; }
  Ref<Enumerator> NewEnum() override;
  // By position from 0 or by name; raises 3265.
  Ref<ParameterObject> Item(const Variant& index) const;
  void Refresh();

  std::vector<Ref<ParameterObject>> items_;

 private:
  CommandObject* owner_;
};

class CommandObject : public DispatchObject<CommandObject> {
 public:
  static const DispatchTable<CommandObject>& Table();
  CommandObject();
  ~CommandObject() override;

  // The connection to run on: the one set, or one opened from the connection string set.
  Variant ActiveConnection() const;
  void SetActiveConnection(const Variant& value);
  Ref<ConnectionObject> RequireConnection();
  // The values of the input parameters, in order.
  std::vector<Variant> ParameterValues() const;
  String StatementText();
  Variant Execute(Args args);
  Ref<ParametersObject> Parameters() { return parameters_; }

  String command_text_;
  int32_t command_type_ = 8;  // adCmdUnknown
  bool prepared_ = false;
  int32_t command_timeout_ = 30;
  String name_;

 private:
  bool Receives() const;
  data::StatementResult CallTimed(ConnectionObject& cn, const String& sql);
  data::StatementResult RunTimed(ConnectionObject& cn, const String& sql,
                                 std::span<const Variant> values);

  Ref<ConnectionObject> connection_;
  Ref<ParametersObject> parameters_;
};

}  // namespace qv::ado
