// The script-control surface over the compiler and the virtual machine. Every entry clears
// the error object, runs under the time limit, and on failure fills the error object (with
// the line, column and text of the offending source line) before the error leaves.
#include "vbscript/engine.h"

#include <new>

#include "vbscript/compiler.h"
#include "vbscript/errors.h"
#include "vbscript/parser.h"
#include "vbscript/script_control.h"
#include "vbscript/vm.h"

namespace qv::vbs {
namespace {

constexpr std::u16string_view kGlobalModuleName = u"Global";

String LineText(StringView source, int32_t wanted) {
  int32_t line = 1;
  size_t start = 0;
  for (size_t i = 0; i < source.size() && line < wanted; ++i) {
    if (source[i] == '\r' || source[i] == '\n') {
      if (source[i] == '\r' && i + 1 < source.size() && source[i + 1] == '\n') ++i;
      ++line;
      start = i + 1;
    }
  }
  if (line < wanted || start > source.size()) return {};
  size_t end = start;
  while (end < source.size() && source[end] != '\r' && source[end] != '\n')
    ++end;
  return String(source.substr(start, end - start));
}

}  // namespace

// --- ScriptModule ----------------------------------------------------------------------------

// A compiled text and the names its procedures took as their own locals although nothing
// declared them there: the compiler made those locals because the module had no such name
// then. Once the module (or the global one) defines one of them, a fresh compile would bind
// the name to the module instead, so the kept form is stale.
struct ScriptModule::CachedCode {
  LinkedUnit linked;
  const Proc* top = nullptr;  // owned by the module, so that dropping an entry never frees
                              // module-level code that is still running
  std::vector<String> unbound_locals;
  String text;
  // A few other buffers of the same text (several controls of a package may share one
  // template), kept alive so that by_buffer_ can know them too; few, since a host that
  // hands in a fresh buffer every time would otherwise grow the list without end.
  std::vector<String> copies;
  static constexpr size_t kMaxCopies = 8;
};

ScriptModule::ScriptModule(Engine& engine, Ref<Module> module)
    : engine_(engine), module_(std::move(module)) {}

ScriptModule::~ScriptModule() = default;

const String& ScriptModule::Name() const {
  return module_->name();
}

void ScriptModule::AddCode(StringView code) {
  engine_.Guard(code, [&] {
    const String source(code);
    Program program = ParseProgram(source);
    CompiledUnit unit = CompileProgram(program, *module_, source, nullptr);
    auto top = Link(unit, *module_);
    module_->vm()->RunTop(*top);
    return 0;
  });
}

namespace {

bool DefinedIn(const Module* module, StringView name) {
  if (!module) return false;
  const GlobalSlot* slot = module->FindSlot(name);
  return slot && slot->kind != SlotKind::Undefined;
}

}  // namespace

bool ScriptModule::StillValid(const CachedCode& cached) const {
  for (const String& name : cached.unbound_locals) {
    if (DefinedIn(module_.get(), name) || DefinedIn(module_->global(), name)) return false;
  }
  return true;
}

void ScriptModule::AddCodeCached(const String& code) {
  // Pages are few and their texts come back thousands of times; a cap keeps a host that
  // never repeats a text from holding every text it ever added.
  constexpr size_t kMaxCachedTexts = 1024;
  engine_.Guard(code, [&] {
    CachedCode* hit = nullptr;
    if (const auto it = by_buffer_.find(code.data()); it != by_buffer_.end() && !code.empty()) {
      hit = it->second;
    } else if (const auto found = cache_.find(code.view()); found != cache_.end()) {
      hit = found->second.get();
      if (!code.empty() && hit->copies.size() < CachedCode::kMaxCopies) {
        hit->copies.push_back(code);
        by_buffer_[code.data()] = hit;
      }
    }
    if (hit && hit->text.size() == code.size() && StillValid(*hit)) {
      Relink(hit->linked, *module_);
      module_->vm()->RunTop(*hit->top);
      return 0;
    }
    Program program = ParseProgram(code);
    CompiledUnit unit = CompileProgram(program, *module_, code, nullptr);
    auto cached = std::make_unique<CachedCode>();
    auto note_unbound = [&](const Proc& proc) {
      for (const String& name : proc.local_names) {
        if (name.empty()) continue;
        if (!DefinedIn(module_.get(), name) && !DefinedIn(module_->global(), name))
          cached->unbound_locals.push_back(name);
      }
    };
    for (const auto& proc : unit.procs)
      note_unbound(*proc);
    for (const auto& proc : unit.class_procs)
      note_unbound(*proc);
    cached->linked = LinkKeeping(unit, *module_);
    const Proc* top = module_->AddProc(std::move(cached->linked.top));
    cached->top = top;
    cached->text = code;
    if (cache_.size() >= kMaxCachedTexts) {
      cache_.clear();
      by_buffer_.clear();
    }
    if (const auto stale = cache_.find(code.view()); stale != cache_.end()) {
      by_buffer_.erase(stale->first.data());
      for (const String& copy : stale->second->copies)
        by_buffer_.erase(copy.data());
      cache_.erase(stale);
    }
    by_buffer_[code.data()] = cached.get();
    cache_.emplace(code, std::move(cached));
    module_->vm()->RunTop(*top);
    return 0;
  });
}

Variant ScriptModule::Run(StringView procedure, std::span<Variant> args) {
  return engine_.Guard({}, [&] {
    GlobalSlot* slot = module_->FindSlot(procedure);
    Proc dummy;
    dummy.module = module_.get();
    if (!slot) slot = module_->Slot(procedure);
    GlobalSlot& s = module_->vm()->Resolve(*slot, dummy);
    if (s.kind != SlotKind::Procedure) {
      String text = StandardErrorText(kErrSubNotDefined);
      throw qv::Error(kErrSubNotDefined, text + u": '" + procedure + u"'");
    }
    return module_->vm()->Call(*s.proc, nullptr, args);
  });
}

Variant ScriptModule::Eval(StringView expression) {
  return engine_.Guard(expression, [&] { return module_->vm()->EvalIn(*module_, expression); });
}

void ScriptModule::ExecuteStatement(StringView code) {
  engine_.Guard(code, [&] {
    module_->vm()->ExecuteIn(*module_, code, true);
    return 0;
  });
}

std::vector<ProcedureInfo> ScriptModule::Procedures() const {
  std::vector<ProcedureInfo> out;
  for (const Proc* p : module_->procedures()) {
    out.push_back(ProcedureInfo{p->name, p->nparams, p->has_return_value()});
  }
  return out;
}

// --- Engine ----------------------------------------------------------------------------------

Engine::Engine() : registry_(ClassRegistry::WithStandardClasses()) {
  registry_.Register(u"MSScriptControl.ScriptControl", [] { return NewScriptControl(); });
  Start();
}

Engine::~Engine() {
  Stop();
}

void Engine::Start() {
  vm_ = MakeRef<Vm>();
  vm_->set_timeout(timeout_ms_);
  vm_->set_registry(&registry_);
  auto global = MakeRef<Module>(String(kGlobalModuleName), vm_.get(), nullptr);
  vm_->set_global_module(global.get());
  modules_.push_back(std::make_unique<ScriptModule>(*this, std::move(global)));
}

void Engine::Stop() {
  // Named modules first: they see the global one.
  for (auto it = modules_.rbegin(); it != modules_.rend(); ++it)
    (*it)->module().Clear();
  vm_->member_objects().clear();
  vm_->set_registry(nullptr);
  vm_->set_global_module(nullptr);
  modules_.clear();
  object_names_.clear();
  vm_.reset();
}

void Engine::Reset() {
  Stop();
  error_.Clear();
  Start();
}

int32_t Engine::LocaleId() const {
  return vm_->runtime().locale;
}

void Engine::SetLocaleId(int32_t lcid) {
  ChangeLocale(vm_->runtime(), lcid);
}

void Engine::Recycle() {
  for (size_t i = modules_.size(); i-- > 1;)
    modules_[i]->module().Clear();
  modules_.resize(1);
  GlobalModule().module().ClearDefinitions();
  vm_->member_objects().clear();
  vm_->err().Clear();
  vm_->error_site() = ErrorSite();
  vm_->runtime() = RuntimeState();
  object_names_.clear();
  error_.Clear();
}

void Engine::SetLanguage(StringView language) {
  if (!EqualsNoCase(language, u"VBScript")) throw qv::Error(kErrInvalidCall);
}

void Engine::SetTimeout(int32_t milliseconds) {
  timeout_ms_ = milliseconds;
  vm_->set_timeout(milliseconds);
}

void Engine::AddObject(StringView name, Ref<Object> object, bool add_members) {
  Module& global = GlobalModule().module();
  for (const auto& n : object_names_) {
    if (EqualsNoCase(n, name)) throw qv::Error(kErrKeyExists);
  }
  object_names_.emplace_back(name);
  GlobalSlot* slot = global.Slot(name);
  const Variant gone = global.Redefine(*slot, SlotKind::HostObject);
  slot->fixed = Variant(object.get());
  if (add_members && object) vm_->member_objects().push_back(object);
}

ScriptModule& Engine::AddModule(StringView name) {
  if (FindModule(name)) throw qv::Error(kErrKeyExists);
  auto module = MakeRef<Module>(String(name), vm_.get(), &GlobalModule().module());
  modules_.push_back(std::make_unique<ScriptModule>(*this, std::move(module)));
  return *modules_.back();
}

ScriptModule* Engine::FindModule(StringView name) {
  for (auto& m : modules_) {
    if (EqualsNoCase(m->Name(), name)) return m.get();
  }
  return nullptr;
}

ScriptModule& Engine::Modules(StringView name) {
  ScriptModule* m = FindModule(name);
  if (!m) throw qv::Error(kErrSubscript);
  return *m;
}

template <class F>
auto Engine::Guard(StringView code, F&& body) -> decltype(body()) {
  error_.Clear();
  Ref<Vm> vm = vm_;
  Vm::Entry entry(*vm);
  try {
    return body();
  } catch (const CompileError& e) {
    error_.number_ = e.number();
    error_.description_ = e.description();
    error_.source_ = e.source();
    error_.line_ = e.line();
    error_.column_ = e.column();
    error_.text_ = LineText(code, e.line());
    error_.code_ = String(code);
    throw;
  } catch (const qv::Error& e) {
    error_.number_ = e.number();
    error_.description_ = e.description();
    error_.source_ = e.source().empty() ? String(kRuntimeErrorSource) : e.source();
    const ErrorSite& site = vm->error_site();
    if (!site.subject.empty()) {
      // The report names the variable, as the everyday "Object required: 'name'" does.
      error_.description_.Append(u": '");
      error_.description_.Append(site.subject);
      error_.description_.Append(u"'");
    }
    if (site.set) {
      error_.line_ = site.line;
      error_.column_ = site.column;
      error_.text_ = site.text;
      error_.code_ = site.code;
    }
    vm->err().number = e.number();
    vm->err().description = error_.description_;
    vm->err().source = error_.source_;
    throw;
  } catch (const std::bad_alloc&) {
    error_.number_ = kErrOutOfMemory;
    error_.description_ = StandardErrorText(kErrOutOfMemory);
    error_.source_ = String(kRuntimeErrorSource);
    throw qv::Error(kErrOutOfMemory);
  }
}

}  // namespace qv::vbs
