// Eval, Execute and ExecuteGlobal: code compiled while the script runs, and the scope it runs
// in. Inside a procedure a snippet sees the call's locals and keeps the names it creates in
// that call; ExecuteGlobal and code at module level work on the module's names.
#include <deque>

#include "vbscript/compiler.h"
#include "vbscript/errors.h"
#include "vbscript/parser.h"
#include "vbscript/values.h"
#include "vbscript/vm.h"

namespace qv::vbs {

Variant Vm::EvalIn(Module& module, StringView expression) {
  const String source(expression);
  ExprPtr e = ParseExpression(source);
  auto proc = CompileExpression(*e, module, source, nullptr);
  return Call(*proc, nullptr, {});
}

void Vm::ExecuteIn(Module& module, StringView code, bool global) {
  (void)global;
  const String source(code);
  Program program = ParseProgram(source);
  CompiledUnit unit = CompileProgram(program, module, source, nullptr);
  auto top = Link(unit, module);
  RunTop(*top);
}

namespace {
// The names Execute created inside one call of a procedure: they live as long as that call,
// in a hidden local of its frame. Values stay where they are, so snippets can refer to them.
class ScopeNames : public Object {
 public:
  String TypeName() const override { return u"Object"; }
  DispId GetIdOfName(StringView) override { return kDispIdUnknown; }
  Variant Invoke(DispId, uint16_t, Args) override { Raise(kErrNotSupported); }

  std::vector<String> names;
  std::deque<Variant> values;

  Variant* Find(StringView name) {
    for (size_t i = 0; i < names.size(); ++i)
      if (EqualsNoCase(names[i], name)) return &values[i];
    return nullptr;
  }
};

// Hands the names a snippet created to its caller's scope, also when the snippet fails halfway.
struct KeepCreatedNames {
  ScopeNames* scope;
  const Proc& proc;
  Variant* base;
  ~KeepCreatedNames() {
    if (!scope) return;
    for (const auto& [name, local] : proc.created_names) {
      scope->names.push_back(name);
      scope->values.push_back(std::move(base[local]));
    }
  }
};

ScopeNames* ScopeOf(Variant& slot, bool create) {
  if (!slot.is_object()) {
    if (!create) return nullptr;
    slot = Variant(static_cast<Object*>(MakeRef<ScopeNames>().get()));
  }
  return static_cast<ScopeNames*>(slot.as_object());
}
}  // namespace

Variant* Vm::ScopeName(const Frame& f, StringView name) {
  if (f.proc->scope_slot < 0) return nullptr;
  ScopeNames* scope = ScopeOf(f.locals[f.proc->scope_slot], false);
  return scope ? scope->Find(name) : nullptr;
}

Variant Vm::RunSnippet(Frame& caller, StringView code, bool expression, bool global) {
  Module& module = *caller.proc->module;
  const String source(code);
  const Proc* outer = global ? nullptr : caller.proc;
  ScopeNames* scope =
      outer && outer->scope_slot >= 0 ? ScopeOf(caller.locals[outer->scope_slot], true) : nullptr;
  const std::vector<String>* scope_names = scope ? &scope->names : nullptr;
  std::unique_ptr<Proc> proc;
  try {
    if (expression) {
      ExprPtr e = ParseExpression(source);
      proc = CompileExpression(*e, module, source, outer, scope_names);
    } else {
      Program program = ParseProgram(source);
      CompiledUnit unit = CompileProgram(program, module, source, outer, scope_names);
      proc = Link(unit, module);
    }
  } catch (const CompileError& e) {
    // Raised at run time, but Err still tells the script the code never compiled.
    throw Error(e.number(), e.description(), String(kCompileErrorSource));
  }
  Variant* base = top_;
  CheckStack(*proc, base);
  Frame f{proc.get(), base, refs_ + (base - stack_), global ? nullptr : caller.me, false};
  if (outer) {
    const uint32_t own = static_cast<uint32_t>(caller.proc->local_names.size());
    for (uint32_t i = 0; i < proc->nparams && i < own; ++i) {
      const bool by_ref = i < caller.proc->nparams && caller.proc->byref[i];
      f.refs[i] = by_ref ? caller.refs[i] : &caller.locals[i];
    }
    for (uint32_t i = own; i < proc->nparams; ++i)
      f.refs[i] = &scope->values[i - own];
  }
  Variant* const end = base + proc->nlocals + proc->max_stack;
  FrameGuard guard(*this, base, end);
  const KeepCreatedNames keep{scope, *proc, base};
  RunOutOfLine(f);
  if (proc->result_slot >= 0) return std::move(base[proc->result_slot]);
  return Variant();
}

namespace {
// The code given to Eval or Execute: an object stands for its default value (Nothing has none).
Variant SnippetArg(const Variant& arg) {
  if (!arg.is_object()) return arg;
  if (!arg.as_object()) Raise(kErrObjectNotSet);
  return ValueOf(arg);
}
}  // namespace

Variant Vm::EvalSnippet(Frame& f, Args args) {
  CheckArgCount(args, 1, 1);
  // Only text is code: any other value, an object's default value included, is the result.
  Variant code = SnippetArg(args[0]);
  if (!code.is_string()) return code;
  return RunSnippet(f, code.as_string(), true, false);
}

void Vm::ExecuteSnippet(Frame& f, Args args, bool global) {
  CheckArgCount(args, 1, 1);
  const Variant code = SnippetArg(args[0]);
  if (!code.is_string()) Raise(kErrTypeMismatch);
  RunSnippet(f, code.as_string(), false, global);
}

}  // namespace qv::vbs
