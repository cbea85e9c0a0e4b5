// The members of ADODB.Connection that scripts see, and its Errors collection and Error objects.
#include "ado/ado_errors.h"
#include "ado/connection.h"
#include "ado/properties.h"
#include "automation/convert.h"

namespace qv::ado {
namespace {

using Cn = ConnectionObject;

class ErrorObject : public DispatchObject<ErrorObject> {
 public:
  static const DispatchTable<ErrorObject>& Table() {
    static const auto table =
        DispatchTable<ErrorObject>(u"Error")
            .Property(u"Description",
                      [](ErrorObject& e, Args) { return Variant(e.record.description); })
            .Property(u"Number", [](ErrorObject& e, Args) { return Variant(e.record.number); })
            .Property(u"Source", [](ErrorObject& e, Args) { return Variant(e.record.source); })
            .Property(u"SQLState", [](ErrorObject& e, Args) { return Variant(e.record.sql_state); })
            .Property(u"NativeError",
                      [](ErrorObject& e, Args) { return Variant(e.record.native_error); })
            .Property(u"HelpFile", [](ErrorObject&, Args) { return Variant(String()); })
            .Property(u"HelpContext", [](ErrorObject&, Args) { return Variant(int32_t{0}); })
            .Default(u"Description");
    return table;
  }
  explicit ErrorObject(data::ErrorRecord r) : record(std::move(r)) {}
  data::ErrorRecord record;
};

class ErrorsObject : public DispatchObject<ErrorsObject> {
 public:
  static const DispatchTable<ErrorsObject>& Table() {
    static const auto table =
        DispatchTable<ErrorsObject>(u"Errors")
            .Property(u"Item",
                      [](ErrorsObject& e, Args args) {
                        CheckArgCount(args, 1, 1);
                        const auto& records = e.cn->ErrorRecords();
                        const auto index = ItemOrdinal(args[0]);
                        if (!index || *index < 0 || static_cast<size_t>(*index) >= records.size()) {
                          throw AdoError(adErrItemNotFound, u"ADODB.Errors");
                        }
                        return Variant(MakeRef<ErrorObject>(records[static_cast<size_t>(*index)]));
                      })
            .Property(u"Count",
                      [](ErrorsObject& e, Args) {
                        return Variant(static_cast<int32_t>(e.cn->ErrorRecords().size()));
                      })
            .Method(u"Clear",
                    [](ErrorsObject& e, Args) {
                      e.cn->ClearErrors();
                      return Variant();
                    })
            .Method(u"Refresh", [](ErrorsObject&, Args) { return Variant(); })
            .Default(u"Item");
    return table;
  }
  explicit ErrorsObject(Ref<Cn> c) : cn(std::move(c)) {}
  Ref<Enumerator> NewEnum() override {
    std::vector<Variant> items;
    for (const auto& record : cn->ErrorRecords())
      items.emplace_back(MakeRef<ErrorObject>(record));
    return MakeRef<ListEnumerator>(std::move(items));
  }
  Ref<Cn> cn;
};

Variant None() {
  return Variant();
}

Variant PropertiesOf(Cn& cn, Args) {
  std::vector<std::pair<String, Variant>> entries;
  if (cn.IsOpen()) {
    data::Connection& data = cn.Require();
    for (const String& name : data.PropertyNames()) {
      try {
        entries.emplace_back(name, data.Properties(name));
      } catch (const Error&) {
        // A property the driver cannot answer is left out, as a provider leaves it unset.
      }
    }
  }
  return Variant(MakeRef<PropertiesObject>(std::move(entries)));
}

}  // namespace

const DispatchTable<ConnectionObject>& ConnectionObject::Table() {
  static const auto table =
      DispatchTable<Cn>(u"Connection")
          .Property(
              u"ConnectionString", [](Cn& cn, Args) { return Variant(cn.ConnectionString()); },
              [](Cn& cn, Args, const Variant& v) { cn.SetConnectionString(ToString(v)); })
          .Method(u"Open",
                  [](Cn& cn, Args args) {
                    cn.Open(args);
                    return None();
                  })
          .Method(u"Close",
                  [](Cn& cn, Args args) {
                    CheckArgCount(args, 0, 0);
                    cn.Close();
                    return None();
                  })
          .Method(u"Execute", [](Cn& cn, Args args) { return cn.Execute(args); })
          .Method(u"OpenSchema", [](Cn& cn, Args args) { return cn.OpenSchema(args); })
          .Method(u"BeginTrans", [](Cn& cn, Args) { return Variant(cn.BeginTrans()); })
          .Method(u"CommitTrans",
                  [](Cn& cn, Args) {
                    cn.EndTrans(true);
                    return None();
                  })
          .Method(u"RollbackTrans",
                  [](Cn& cn, Args) {
                    cn.EndTrans(false);
                    return None();
                  })
          .Method(u"Cancel", [](Cn&, Args) { return None(); })
          .Property(u"State", [](Cn& cn, Args) { return Variant(int32_t{cn.IsOpen() ? 1 : 0}); })
          .Property(u"Errors",
                    [](Cn& cn, Args) { return Variant(MakeRef<ErrorsObject>(Ref<Cn>(&cn))); })
          .Property(u"Properties", PropertiesOf)
          .Property(u"Version", [](Cn&, Args) { return Variant(String(u"2.8")); })
          .Property(
              u"Provider", [](Cn& cn, Args) { return Variant(cn.Provider()); },
              [](Cn& cn, Args, const Variant& v) {
                if (cn.IsOpen()) throw AdoError(adErrObjectOpen, u"ADODB.Connection");
                cn.provider_ = ToString(v);
              })
          .Property(
              u"ConnectionTimeout", [](Cn& cn, Args) { return Variant(cn.ConnectionTimeout()); },
              [](Cn& cn, Args, const Variant& v) { cn.SetConnectionTimeout(ToLong(v)); })
          .Property(
              u"CommandTimeout", [](Cn& cn, Args) { return Variant(cn.CommandTimeout()); },
              [](Cn& cn, Args, const Variant& v) { cn.SetCommandTimeout(ToLong(v)); })
          .Property(
              u"CursorLocation", [](Cn& cn, Args) { return Variant(cn.cursor_location_); },
              [](Cn& cn, Args, const Variant& v) {
                const int32_t location = ToLong(v);
                if (location != 2 && location != 3)
                  throw AdoError(adErrInvalidArgument, u"ADODB.Connection");
                cn.cursor_location_ = location;
              })
          .Property(
              u"DefaultDatabase",
              [](Cn& cn, Args) {
                if (!cn.default_database_.empty() || !cn.IsOpen())
                  return Variant(cn.default_database_);
                try {
                  return Variant(ToString(cn.Require().Properties(u"Current Catalog")));
                } catch (const Error&) {
                  return Variant(String());
                }
              },
              [](Cn& cn, Args, const Variant& v) { cn.default_database_ = ToString(v); })
          .Property(
              u"Mode", [](Cn& cn, Args) { return Variant(cn.mode_); },
              [](Cn& cn, Args, const Variant& v) { cn.mode_ = ToLong(v); })
          .Property(
              u"IsolationLevel", [](Cn& cn, Args) { return Variant(cn.isolation_); },
              [](Cn& cn, Args, const Variant& v) { cn.isolation_ = ToLong(v); })
          .Property(
              u"Attributes", [](Cn&, Args) { return Variant(int32_t{0}); },
              [](Cn&, Args, const Variant&) {})
          .Parameterless({u"Errors", u"Properties"})
          .Default(u"ConnectionString");
  return table;
}

}  // namespace qv::ado
