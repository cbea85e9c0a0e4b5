// The script control object. Its helpers (Error, Modules, a Module, Procedures) are made anew on
// each read and hold the control, never the other way round, so no reference cycle keeps a
// control alive after the script lets it go.
#include "vbscript/script_control.h"

#include <memory>
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
          .Method(u"AddCode",
                  [](SC& c, Args args) {
                    CheckArgCount(args, 1, 1);
                    c.engine_->AddCode(ToString(args[0]));
                    return Variant();
                  })
          .Method(u"Eval",
                  [](SC& c, Args args) {
                    CheckArgCount(args, 1, 1);
                    return c.engine_->Eval(ToString(args[0]));
                  })
          .Method(u"ExecuteStatement",
                  [](SC& c, Args args) {
                    CheckArgCount(args, 1, 1);
                    c.engine_->ExecuteStatement(ToString(args[0]));
                    return Variant();
                  })
          .Method(u"Run", [](SC& c, Args args) { return RunIn(c.engine_->GlobalModule(), args); })
          .Method(u"AddObject",
                  [](SC& c, Args args) {
                    CheckArgCount(args, 2, 3);
                    if (!args[1].is_object() || !args[1].as_object())
                      throw Error(kErrObjectRequired);
                    const bool members = args.size() > 2 && ToBool(args[2]);
                    c.engine_->AddObject(ToString(args[0]), Ref<Object>(args[1].as_object()),
                                         members);
                    return Variant();
                  })
          .Method(u"Reset",
                  [](SC& c, Args args) {
                    CheckArgCount(args, 0, 0);
                    c.engine_->Reset();
                    return Variant();
                  })
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
          .Method(u"Item",
                  [](L& l, Args args) {
                    CheckArgCount(args, 1, 1);
                    if (args[0].is_string()) {
                      for (const auto& p : l.items) {
                        if (EqualsNoCase(p.Name, args[0].as_string()))
                          return Variant(MakeRef<ProcedureObject>(p));
                      }
                      throw Error(kErrSubscript);
                    }
                    const int32_t i = ToLong(args[0]);
                    if (i < 1 || static_cast<size_t>(i) > l.items.size())
                      throw Error(kErrSubscript);
                    return Variant(MakeRef<ProcedureObject>(l.items[i - 1]));
                  })
          .Default(u"Item");
  return table;
}

const DispatchTable<ModuleObject>& ModuleObject::Table() {
  using M = ModuleObject;
  static const auto table =
      DispatchTable<M>(u"Module")
          .Property(u"Name", [](M& m, Args) { return Variant(m.name()); })
          .Method(u"AddCode",
                  [](M& m, Args args) {
                    CheckArgCount(args, 1, 1);
                    m.module().AddCode(ToString(args[0]));
                    return Variant();
                  })
          .Method(u"Eval",
                  [](M& m, Args args) {
                    CheckArgCount(args, 1, 1);
                    return m.module().Eval(ToString(args[0]));
                  })
          .Method(u"ExecuteStatement",
                  [](M& m, Args args) {
                    CheckArgCount(args, 1, 1);
                    m.module().ExecuteStatement(ToString(args[0]));
                    return Variant();
                  })
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
          .Method(u"Item",
                  [](L& l, Args args) {
                    CheckArgCount(args, 1, 1);
                    if (args[0].is_string())
                      return Variant(l.Wrap(l.engine().Modules(args[0].as_string())));
                    const int32_t i = ToLong(args[0]);
                    if (i < 1 || static_cast<size_t>(i) > l.engine().ModuleCount())
                      throw Error(kErrSubscript);
                    return Variant(l.Wrap(l.engine().ModuleAt(static_cast<size_t>(i - 1))));
                  })
          .Method(u"Add",
                  [](L& l, Args args) {
                    CheckArgCount(args, 1, 2);
                    return Variant(l.Wrap(l.engine().AddModule(ToString(args[0]))));
                  })
          .Default(u"Item");
  return table;
}

}  // namespace

Ref<Object> NewScriptControl() {
  return MakeRef<ScriptControl>();
}

}  // namespace qv::vbs
