// The script control object. Its helpers (Error, Modules, a Module, Procedures) are made anew on
// each read and hold the control, never the other way round, so no reference cycle keeps a
// control alive after the script lets it go.
#include "vbscript/script_control.h"

#include <memory>
#include <optional>
#include <vector>

#include "automation/convert.h"
#include "automation/dispatch.h"
#include "vbscript/engine.h"

namespace qv::vbs {
namespace {

class ScriptControl : public DispatchObject<ScriptControl> {
 public:
  static const DispatchTable<ScriptControl>& Table();
  Engine& engine() { return *engine_; }

 private:
  std::unique_ptr<Engine> engine_ = std::make_unique<Engine>();
  String language_;
  bool allow_ui_ = true;
  bool safe_subset_ = false;
};

class ControlError : public DispatchObject<ControlError> {
 public:
  explicit ControlError(Ref<ScriptControl> control) : control_(std::move(control)) {}
  static const DispatchTable<ControlError>& Table();
  const ScriptError& error() { return control_->engine().Error(); }
  void Clear() { control_->engine().Error().Clear(); }

 private:
  Ref<ScriptControl> control_;
};

class ProcedureObject : public DispatchObject<ProcedureObject> {
 public:
  explicit ProcedureObject(ProcedureInfo info) : info(std::move(info)) {}
  static const DispatchTable<ProcedureObject>& Table();
  ProcedureInfo info;
};

class ProcedureList : public DispatchObject<ProcedureList> {
 public:
  explicit ProcedureList(std::vector<ProcedureInfo> items) : items(std::move(items)) {}
  static const DispatchTable<ProcedureList>& Table();
  std::vector<ProcedureInfo> items;
};

class ModuleObject : public DispatchObject<ModuleObject> {
 public:
  ModuleObject(Ref<ScriptControl> control, String name)
      : control_(std::move(control)), name_(std::move(name)) {}
  static const DispatchTable<ModuleObject>& Table();
  const String& name() const { return name_; }
  // The module itself; 9 when a Reset has dropped it since.
  ScriptModule& module() { return control_->engine().Modules(name_); }

 private:
  Ref<ScriptControl> control_;
  String name_;
};

class ModuleList : public DispatchObject<ModuleList> {
 public:
  explicit ModuleList(Ref<ScriptControl> control) : control_(std::move(control)) {}
  static const DispatchTable<ModuleList>& Table();
  Engine& engine() { return control_->engine(); }
  Ref<Object> Wrap(const ScriptModule& m) { return MakeRef<ModuleObject>(control_, m.Name()); }

 private:
  Ref<ScriptControl> control_;
};

// Run's first argument names the procedure; the rest are its arguments.
Variant RunIn(ScriptModule& module, Args args) {
  if (args.empty()) throw Error(kErrArgumentNotOptional);
  const String name = ToString(args[0]);
  std::vector<Variant> rest(args.begin() + 1, args.end());
  return module.Run(name, std::span<Variant>(rest.data(), rest.size()));
}

// The module's procedures; with an argument, the one at that place or of that name.
Variant ProceduresOf(const ScriptModule& module, Args args) {
  auto list = MakeRef<ProcedureList>(module.Procedures());
  if (args.empty()) return Variant(list);
  return list->Invoke(kDispIdValue, kInvokeGet, args);
}

const DispatchTable<ScriptControl>& ScriptControl::Table() {
  using SC = ScriptControl;
  static const auto table =
      DispatchTable<SC>(u"ScriptControl")
          .Property(
              u"Language", [](SC& c, Args) { return Variant(c.language_); },
              [](SC& c, Args, const Variant& v) {
                const String language = ToString(v);
                c.engine_->SetLanguage(language);
                c.language_ = language;
              })
          .Property(
              u"Timeout", [](SC& c, Args) { return Variant(c.engine_->Timeout()); },
              [](SC& c, Args, const Variant& v) { c.engine_->SetTimeout(ToLong(v)); })
          .Property(
              u"AllowUI", [](SC& c, Args) { return Variant(c.allow_ui_); },
              [](SC& c, Args, const Variant& v) { c.allow_ui_ = ToBool(v); })
          .Property(
              u"UseSafeSubset", [](SC& c, Args) { return Variant(c.safe_subset_); },
              [](SC& c, Args, const Variant& v) { c.safe_subset_ = ToBool(v); })
          .Property(u"State", [](SC&, Args) { return Variant(int32_t{1}); })
          .Method<[](SC& c, String code) { c.engine_->AddCode(code); }>(u"AddCode")
          .Method<[](SC& c, String expression) { return c.engine_->Eval(expression); }>(u"Eval")
          .Method<[](SC& c, String statement) { c.engine_->ExecuteStatement(statement); }>(
              u"ExecuteStatement")
          .Method(u"Run", [](SC& c, Args args) { return RunIn(c.engine_->GlobalModule(), args); })
          .Method<[](SC& c, String name, const Variant& object, std::optional<bool> members) {
            if (!object.is_object() || !object.as_object()) throw Error(kErrObjectRequired);
            c.engine_->AddObject(name, Ref<Object>(object.as_object()), members.value_or(false));
          }>(u"AddObject")
          .Method<[](SC& c) { c.engine_->Reset(); }>(u"Reset")
          .Property(u"Error",
                    [](SC& c, Args) { return Variant(MakeRef<ControlError>(Ref<SC>(&c))); })
          .Property(u"Modules",
                    [](SC& c, Args args) {
                      auto list = MakeRef<ModuleList>(Ref<SC>(&c));
                      if (args.empty()) return Variant(list);
                      return list->Invoke(kDispIdValue, kInvokeGet, args);
                    })
          .Property(u"Procedures",
                    [](SC& c, Args args) { return ProceduresOf(c.engine_->GlobalModule(), args); });
  return table;
}

const DispatchTable<ControlError>& ControlError::Table() {
  using E = ControlError;
  static const auto table =
      DispatchTable<E>(u"Error")
          .Property(u"Number", [](E& e, Args) { return Variant(e.error().Number()); })
          .Property(u"Description", [](E& e, Args) { return Variant(e.error().Description()); })
          .Property(u"Source", [](E& e, Args) { return Variant(e.error().Source()); })
          .Property(u"Line", [](E& e, Args) { return Variant(e.error().Line()); })
          .Property(u"Column", [](E& e, Args) { return Variant(e.error().Column()); })
          .Property(u"Text", [](E& e, Args) { return Variant(e.error().Text()); })
          .Property(u"HelpFile", [](E&, Args) { return Variant(String()); })
          .Property(u"HelpContext", [](E&, Args) { return Variant(int32_t{0}); })
          .Method(u"Clear",
                  [](E& e, Args) {
                    e.Clear();
                    return Variant();
                  })
          .Default(u"Number");
  return table;
}

const DispatchTable<ProcedureObject>& ProcedureObject::Table() {
  using P = ProcedureObject;
  static const auto table =
      DispatchTable<P>(u"Procedure")
          .Property(u"Name", [](P& p, Args) { return Variant(p.info.Name); })
          .Property(u"NumArgs", [](P& p, Args) { return Variant(p.info.NumArgs); })
          .Property(u"HasReturnValue", [](P& p, Args) { return Variant(p.info.HasReturnValue); })
          .Default(u"Name");
  return table;
}

const DispatchTable<ProcedureList>& ProcedureList::Table() {
  using L = ProcedureList;
  static const auto table =
      DispatchTable<L>(u"Procedures")
          .Property(u"Count",
                    [](L& l, Args) { return Variant(static_cast<int32_t>(l.items.size())); })
          .Method<[](L& l, const Variant& index) {
            if (index.is_string()) {
              for (const auto& p : l.items) {
                if (EqualsNoCase(p.Name, index.as_string())) return MakeRef<ProcedureObject>(p);
              }
              throw Error(kErrSubscript);
            }
            const int32_t i = ToLong(index);
            if (i < 1 || l.items.size() < static_cast<size_t>(i)) throw Error(kErrSubscript);
            return MakeRef<ProcedureObject>(l.items[i - 1]);
          }>(u"Item")
          .Default(u"Item");
  return table;
}

const DispatchTable<ModuleObject>& ModuleObject::Table() {
  using M = ModuleObject;
  static const auto table =
      DispatchTable<M>(u"Module")
          .Property(u"Name", [](M& m, Args) { return Variant(m.name()); })
          .Method<[](M& m, String code) { m.module().AddCode(code); }>(u"AddCode")
          .Method<[](M& m, String expression) { return m.module().Eval(expression); }>(u"Eval")
          .Method<[](M& m, String statement) { m.module().ExecuteStatement(statement); }>(
              u"ExecuteStatement")
          .Method(u"Run", [](M& m, Args args) { return RunIn(m.module(), args); })
          .Property(u"Procedures", [](M& m, Args args) { return ProceduresOf(m.module(), args); })
          .Default(u"Name");
  return table;
}

const DispatchTable<ModuleList>& ModuleList::Table() {
  using L = ModuleList;
  static const auto table =
      DispatchTable<L>(u"Modules")
          .Property(
              u"Count",
              [](L& l, Args) { return Variant(static_cast<int32_t>(l.engine().ModuleCount())); })
          .Method<[](L& l, const Variant& index) {
            if (index.is_string()) return l.Wrap(l.engine().Modules(index.as_string()));
            const int32_t i = ToLong(index);
            if (i < 1 || l.engine().ModuleCount() < static_cast<size_t>(i))
              throw Error(kErrSubscript);
            return l.Wrap(l.engine().ModuleAt(static_cast<size_t>(i - 1)));
          }>(u"Item")
          .Method<[](L& l, String name, std::optional<Variant> /*visibility*/) {
            return l.Wrap(l.engine().AddModule(name));
          }>(u"Add")
          .Default(u"Item");
  return table;
}

}  // namespace

Ref<Object> NewScriptControl() {
  return MakeRef<ScriptControl>();
}

}  // namespace qv::vbs
