// Command, Parameters and Parameter.
#include "ado/command.h"

#include "ado/ado_errors.h"
#include "ado/connection.h"
#include "ado/properties.h"
#include "ado/recordset.h"
#include "ado/values.h"
#include "automation/convert.h"
#include "automation/safe_array.h"

namespace qv::ado {
namespace {

constexpr StringView kSource = u"ADODB.Command";
constexpr int32_t adExecuteNoRecords = 0x80;
constexpr int32_t adCmdStoredProc = 4;
constexpr int32_t adParamInput = 1;
constexpr int32_t adParamOutput = 2;
constexpr int32_t adParamInputOutput = 3;
constexpr int32_t adParamReturnValue = 4;

Variant None() {
  return Variant();
}

}  // namespace

// Parameter

Variant ParameterObject::BoundValue() const {
  try {
    return ConvertToType(value_, type_);
  } catch (const Error&) {
    throw AdoError(adErrDataConversion, kSource);
  }
}

const DispatchTable<ParameterObject>& ParameterObject::Table() {
  using P = ParameterObject;
  static const auto table =
      DispatchTable<P>(u"Parameter")
          .Property(
              u"Value", [](P& p, Args) { return p.value_; },
              [](P& p, Args, const Variant& v) { p.value_ = v.is_object() ? ValueOf(v) : v; })
          .Property(
              u"Name", [](P& p, Args) { return Variant(p.name_); },
              [](P& p, Args, const Variant& v) { p.name_ = ToString(v); })
          .Property(
              u"Type", [](P& p, Args) { return Variant(p.type_); },
              [](P& p, Args, const Variant& v) { p.type_ = ToLong(v); })
          .Property(
              u"Direction", [](P& p, Args) { return Variant(p.direction_); },
              [](P& p, Args, const Variant& v) { p.direction_ = ToLong(v); })
          .Property(
              u"Size", [](P& p, Args) { return Variant(p.size_); },
              [](P& p, Args, const Variant& v) {
                const int32_t size = ToLong(v);
                if (size < 0) throw AdoError(adErrInvalidArgument, u"ADODB.Parameter");
                p.size_ = size;
              })
          .Property(
              u"Attributes", [](P& p, Args) { return Variant(p.attributes_); },
              [](P& p, Args, const Variant& v) { p.attributes_ = ToLong(v); })
          .Property(
              u"Precision", [](P& p, Args) { return Variant(p.precision_); },
              [](P& p, Args, const Variant& v) { p.precision_ = ToByte(v); })
          .Property(
              u"NumericScale", [](P& p, Args) { return Variant(p.numeric_scale_); },
              [](P& p, Args, const Variant& v) { p.numeric_scale_ = ToByte(v); })
          .Method(u"AppendChunk",
                  [](P& p, Args args) {
                    CheckArgCount(args, 1, 1);
                    if (p.value_.is_null() || p.value_.is_empty()) {
                      p.value_ = args[0];
                    } else if (p.value_.is_string()) {
                      p.value_ = Variant(p.value_.as_string() + ToString(args[0]));
                    } else {
                      throw AdoError(adErrDataConversion, u"ADODB.Parameter");
                    }
                    return None();
                  })
          .Default(u"Value");
  return table;
}

// Parameters

Ref<ParameterObject> ParametersObject::Item(const Variant& index) const {
  if (const auto ordinal = ItemOrdinal(index)) {
    if (*ordinal < 0 || static_cast<size_t>(*ordinal) >= items_.size()) {
      throw AdoError(adErrItemNotFound, u"ADODB.Parameters");
    }
    return items_[static_cast<size_t>(*ordinal)];
  }
  const String name = ToString(index);
  for (const auto& item : items_) {
    if (EqualsNoCase(item->name_, name)) return item;
  }
  throw AdoError(adErrItemNotFound, u"ADODB.Parameters");
}

Ref<Enumerator> ParametersObject::NewEnum() {
  return MakeRef<ListEnumerator>(std::vector<Variant>(items_.begin(), items_.end()));
}

// Asks the data source how many placeholders the statement has; it cannot tell their types,
// so each parameter takes the type of the value given it.
void ParametersObject::Refresh() {
  if (!owner_) throw AdoError(adErrObjectClosed, u"ADODB.Parameters");
  Ref<ConnectionObject> cn = owner_->RequireConnection();
  std::optional<int32_t> count;
  try {
    count = cn->Require().ParameterCount(owner_->StatementText());
  } catch (const Error& failure) {
    cn->Raise(failure);
  }
  if (!count) throw AdoError(adErrFeatureNotAvailable, u"ADODB.Parameters", kNotCapableText);
  items_.clear();
  for (int32_t i = 0; i < *count; ++i) {
    auto p = MakeRef<ParameterObject>();
    p->name_ = u"Param" + NumberText(i + 1);
    p->type_ = 12;  // adVariant
    items_.push_back(p);
  }
}

const DispatchTable<ParametersObject>& ParametersObject::Table() {
  using Ps = ParametersObject;
  static const auto table =
      DispatchTable<Ps>(u"Parameters")
          .Property(
              u"Item",
              [](Ps& ps, Args args) {
                CheckArgCount(args, 1, 1);
                return Variant(ps.Item(args[0]));
              },
              [](Ps& ps, Args args, const Variant& v) {
                CheckArgCount(args, 1, 1);
                ps.Item(args[0])->value_ = v.is_object() ? ValueOf(v) : v;
              })
          .Property(u"Count",
                    [](Ps& ps, Args) { return Variant(static_cast<int32_t>(ps.items_.size())); })
          .Method(u"Append",
                  [](Ps& ps, Args args) {
                    CheckArgCount(args, 1, 1);
                    auto* p = args[0].is_object()
                                  ? dynamic_cast<ParameterObject*>(args[0].as_object())
                                  : nullptr;
                    if (!p) throw Error(kErrTypeMismatch);
                    for (const auto& item : ps.items_) {
                      if (item.get() == p)
                        throw AdoError(adErrObjectInCollection, u"ADODB.Parameters");
                    }
                    ps.items_.emplace_back(p);
                    return None();
                  })
          .Method(u"Delete",
                  [](Ps& ps, Args args) {
                    CheckArgCount(args, 1, 1);
                    const Ref<ParameterObject> p = ps.Item(args[0]);
                    std::erase(ps.items_, p);
                    return None();
                  })
          .Method(u"Refresh",
                  [](Ps& ps, Args) {
                    ps.Refresh();
                    return None();
                  })
          .Default(u"Item");
  return table;
}

// Command

CommandObject::CommandObject() : parameters_(MakeRef<ParametersObject>(this)) {}

CommandObject::~CommandObject() {
  parameters_->Detach();
}

Variant CommandObject::ActiveConnection() const {
  if (connection_) return Variant(connection_);
  return Variant::Nothing();
}

void CommandObject::SetActiveConnection(const Variant& value) {
  if (value.is_nothing() || value.is_empty()) {
    connection_ = nullptr;
    return;
  }
  if (value.is_object()) {
    auto* cn = dynamic_cast<ConnectionObject*>(value.as_object());
    if (!cn) throw AdoError(adErrInvalidConnection, kSource);
    connection_ = Ref<ConnectionObject>(cn);
    return;
  }
  // A connection string: the command opens a connection of its own, as ADO does.
  auto cn = MakeRef<ConnectionObject>();
  Variant open_args[] = {Variant(ToString(value))};
  cn->Open(open_args);
  connection_ = cn;
}

Ref<ConnectionObject> CommandObject::RequireConnection() {
  if (!connection_ || !connection_->IsOpen()) throw AdoError(adErrInvalidConnection, kSource);
  return connection_;
}

std::vector<Variant> CommandObject::ParameterValues() const {
  std::vector<Variant> values;
  for (const auto& p : parameters_->items_) {
    if (p->direction_ == adParamInput || p->direction_ == adParamInputOutput ||
        p->direction_ == 0) {
      values.push_back(p->BoundValue());
    }
  }
  return values;
}

String CommandObject::StatementText() {
  if (command_type_ != adCmdStoredProc) {
    return RequireConnection()->CommandTextFor(command_text_, command_type_);
  }
  String marks;
  bool returns = false;
  for (const auto& p : parameters_->items_) {
    if (p->direction_ == adParamReturnValue) {
      returns = true;  // its placeholder leads the call: {? = call name(...)}
      continue;
    }
    if (!marks.empty()) marks.Append(u", ");
    marks.Append(u"?");
  }
  return String(returns ? u"{? = call " : u"{call ") + String(TrimBlanks(command_text_)) +
         (marks.empty() ? String() : u"(" + marks + u")") + u"}";
}

namespace {

// The command's own timeout holds for its statement; the connection's for everything else.
class Timeout {
 public:
  Timeout(ConnectionObject& cn, int32_t seconds) : cn_(cn), before_(cn.CommandTimeout()) {
    cn_.SetCommandTimeout(seconds);
  }
  ~Timeout() { cn_.SetCommandTimeout(before_); }
  Timeout(const Timeout&) = delete;
  Timeout& operator=(const Timeout&) = delete;

 private:
  ConnectionObject& cn_;
  const int32_t before_;
};

}  // namespace

data::StatementResult CommandObject::RunTimed(ConnectionObject& cn, const String& sql,
                                              std::span<const Variant> values) {
  const Timeout timeout(cn, command_timeout_);
  return cn.Run(sql, values);
}

bool CommandObject::Receives() const {
  for (const auto& p : parameters_->items_) {
    if (p->direction_ == adParamOutput || p->direction_ == adParamInputOutput ||
        p->direction_ == adParamReturnValue) {
      return true;
    }
  }
  return false;
}

// A call whose output, input-output and return-value parameters get their values back, in
// the order of the placeholders: the return value's first.
data::StatementResult CommandObject::CallTimed(ConnectionObject& cn, const String& sql) {
  using data::CallParameter;
  std::vector<Ref<ParameterObject>> order;
  for (const auto& p : parameters_->items_) {
    if (p->direction_ == adParamReturnValue) order.insert(order.begin(), p);
  }
  for (const auto& p : parameters_->items_) {
    if (p->direction_ != adParamReturnValue) order.push_back(p);
  }
  std::vector<CallParameter> params;
  for (const auto& p : order) {
    CallParameter call;
    call.direction = p->direction_ >= adParamOutput && p->direction_ <= adParamReturnValue
                         ? static_cast<CallParameter::Direction>(p->direction_)
                         : CallParameter::kInput;
    if (call.direction != CallParameter::kOutput && call.direction != CallParameter::kReturnValue)
      call.value = p->BoundValue();
    call.size = p->size_;
    params.push_back(std::move(call));
  }
  const Timeout timeout(cn, command_timeout_);
  data::StatementResult result = cn.Call(sql, params);
  for (size_t i = 0; i < order.size(); ++i) {
    if (!params[i].Receives()) continue;
    try {
      order[i]->value_ = ConvertToType(params[i].value, order[i]->type_);
    } catch (const Error&) {
      order[i]->value_ = params[i].value;  // kept as the text the database gave
    }
  }
  return result;
}

Variant CommandObject::Execute(Args args) {
  CheckArgCount(args, 0, 3);
  Ref<ConnectionObject> cn = RequireConnection();
  if (TrimBlanks(command_text_).empty()) {
    throw AdoError(adErrInvalidConnection, kSource,
                   u"Command text was not set for the command object.");
  }
  const int32_t options = HasArg(args, 2) ? ToLong(args[2]) : -1;
  if (options != -1 && (options & 0xFF7F) != 0 && (options & 0xFF7F) != 8)
    command_type_ = options & 0xFF7F;
  std::vector<Variant> values;
  if (HasArg(args, 1)) {
    // Values given to Execute stand in for those of the Parameters, in order.
    std::vector<Variant> given;
    if (args[1].is_array()) {
      for (const Variant& v : args[1].as_array()->elements())
        given.push_back(v);
    } else {
      given.push_back(args[1]);
    }
    for (size_t i = 0; i < given.size(); ++i) {
      if (i < parameters_->items_.size()) {
        parameters_->items_[i]->value_ = given[i];
        values.push_back(parameters_->items_[i]->BoundValue());
      } else {
        values.push_back(given[i]);
      }
    }
  } else {
    values = ParameterValues();
  }
  const String sql = StatementText();
  data::StatementResult result =
      Receives() && !HasArg(args, 1) ? CallTimed(*cn, sql) : RunTimed(*cn, sql, values);
  if (args.size() > 0) args[0] = Variant(static_cast<int32_t>(result.rows_affected));
  if (options != -1 && (options & adExecuteNoRecords)) return Variant::Nothing();
  auto rs = MakeRef<RecordsetObject>();
  rs->cursor_location_ = cn->CursorLocation();
  const int32_t cursor_type = cn->CursorLocation() == 3 ? 3 : 0;
  rs->OpenOnResult(cn, Variant(command_text_), std::move(result), cursor_type, 1);
  return Variant(rs);
}

const DispatchTable<CommandObject>& CommandObject::Table() {
  using C = CommandObject;
  static const auto table =
      DispatchTable<C>(u"Command")
          .Property(u"Parameters", [](C& c, Args) { return Variant(c.Parameters()); })
          .Property(
              u"ActiveConnection", [](C& c, Args) { return c.ActiveConnection(); },
              [](C& c, Args, const Variant& v) { c.SetActiveConnection(v); },
              [](C& c, Args, const Variant& v) { c.SetActiveConnection(v); })
          .Property(
              u"CommandText", [](C& c, Args) { return Variant(c.command_text_); },
              [](C& c, Args, const Variant& v) { c.command_text_ = ToString(v); })
          .Property(
              u"CommandType", [](C& c, Args) { return Variant(c.command_type_); },
              [](C& c, Args, const Variant& v) { c.command_type_ = ToLong(v); })
          .Property(
              u"Prepared", [](C& c, Args) { return Variant(c.prepared_); },
              [](C& c, Args, const Variant& v) { c.prepared_ = ToBool(v); })
          .Property(
              u"CommandTimeout", [](C& c, Args) { return Variant(c.command_timeout_); },
              [](C& c, Args, const Variant& v) { c.command_timeout_ = ToLong(v); })
          .Property(
              u"Name", [](C& c, Args) { return Variant(c.name_); },
              [](C& c, Args, const Variant& v) { c.name_ = ToString(v); })
          .Property(u"State", [](C&, Args) { return Variant(int32_t{0}); })
          .Method(u"Execute", [](C& c, Args args) { return c.Execute(args); })
          .Method(u"Cancel", [](C&, Args) { return None(); })
          .Method(u"CreateParameter",
                  [](C&, Args args) {
                    CheckArgCount(args, 0, 5);
                    auto p = MakeRef<ParameterObject>();
                    if (HasArg(args, 0)) p->name_ = ToString(args[0]);
                    if (HasArg(args, 1)) p->type_ = ToLong(args[1]);
                    if (HasArg(args, 2)) p->direction_ = ToLong(args[2]);
                    if (HasArg(args, 3)) {
                      p->size_ = ToLong(args[3]);
                      if (p->size_ < 0) throw AdoError(adErrInvalidArgument, kSource);
                    }
                    if (HasArg(args, 4))
                      p->value_ = args[4].is_object() ? ValueOf(args[4]) : args[4];
                    return Variant(p);
                  })
          .Parameterless({u"Parameters", u"ActiveConnection"})
          .Default(u"Parameters");
  return table;
}

}  // namespace qv::ado
