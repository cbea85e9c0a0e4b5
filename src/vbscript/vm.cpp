// The dispatch loop and what it calls. Frames live on one value stack: a call's arguments
// become the callee's first locals where the caller pushed them, and a parallel array of
// pointers tells which of them stand for a caller's variable (ByRef). Integer, Long and
// Double arithmetic and comparisons run inline; everything else goes through operators.cpp.
#include "vbscript/vm.h"

#include <pthread.h>

#include <algorithm>
#include <cassert>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <new>

#include "automation/safe_array.h"
#include "vbscript/errors.h"
#include "vbscript/operators.h"
#include "vbscript/values.h"

namespace qv::vbs {
namespace {

constexpr size_t kStackSlots = size_t{1} << 18;
constexpr int32_t kTimeBudget = 4096;
#if defined(QV_SANITIZE) || defined(__SANITIZE_ADDRESS__)
constexpr size_t kStackMargin = size_t{3} << 20;
#else
constexpr size_t kStackMargin = size_t{512} << 10;
#endif

const char* FindStackLimit() {
  pthread_attr_t attr;
  if (pthread_getattr_np(pthread_self(), &attr) == 0) {
    void* addr = nullptr;
    size_t size = 0;
    pthread_attr_getstack(&attr, &addr, &size);
    pthread_attr_destroy(&attr);
    if (addr && size > kStackMargin * 2) return static_cast<const char*>(addr) + kStackMargin;
  }
  const char* here = static_cast<const char*>(__builtin_frame_address(0));
  return here - (size_t{1} << 20);
}

// A thread's stack never moves, and asking for it reads /proc/self/maps for the main thread:
// once per thread is enough.
const char* StackLimit() {
  thread_local const char* const limit = FindStackLimit();
  return limit;
}

// Enumerators are no Objects; For Each keeps one in a hidden local through this holder.
class EnumHolder : public Object {
 public:
  explicit EnumHolder(Ref<Enumerator> e) : e(std::move(e)) {}
  String TypeName() const override { return u"Enumerator"; }
  DispId GetIdOfName(StringView) override { return kDispIdUnknown; }
  Variant Invoke(DispId, uint16_t, Args) override { Raise(kErrNotSupported); }
  Ref<Enumerator> e;
};

struct IntrinsicName {
  std::u16string_view name;
  Intrinsic which;
};
constexpr IntrinsicName kIntrinsics[] = {
    {u"Eval", Intrinsic::Eval},
    {u"Execute", Intrinsic::Execute},
    {u"ExecuteGlobal", Intrinsic::ExecuteGlobal},
    {u"GetRef", Intrinsic::GetRef},
    {u"CreateObject", Intrinsic::CreateObject},
    {u"GetObject", Intrinsic::GetObject},
    {u"Err", Intrinsic::Err},
};

// The operands of a fused instruction on a module variable x: the right operand may be a
// module variable too. A slot that holds no variable fails the number check by its marker.
[[gnu::always_inline]] inline int LoadFusedGlobal(const Instr& in, const Variant& x,
                                                  const Variant* locals, const Variant* consts,
                                                  GlobalSlot* const* globals, Operands& o) {
  if (!(in.flags & kFusedGlobal)) return LoadFused(in, in.b, x, locals, consts, o);
  return LoadOperands(x, globals[in.b]->value, o);
}

// The right operand of a fused instruction as a Number: an Integer held in the instruction, a
// local, a constant or a module variable; false when it is no Integer, Long or Double.
[[gnu::always_inline]] inline bool OperandNumber(const Instr& in, const Variant* locals,
                                                 const Variant* consts, GlobalSlot* const* globals,
                                                 Number& n) {
  if (in.flags & kFusedImmediate) {
    n = NumberOfInteger(in.b);
    return true;
  }
  if (in.flags & kFusedLocal) return NumberOf(locals[in.b], n);
  if (in.flags & kFusedGlobal) return NumberOf(globals[in.b]->value, n);
  return NumberOf(consts[in.b], n);
}

// The member a site names on an object, from the site's cache while the object's kind is the
// one it saw last.
[[gnu::always_inline]] inline DispId MemberId(MemberSite& site, Object& object) {
  const void* key = object.MemberCacheKey();
  if (key && site.key == key) return site.id;
  const DispId id = object.GetIdOfName(site.name);
  if (id == kDispIdUnknown) RaiseNamed(kErrNotSupported, site.name);
  site.key = key;
  site.id = id;
  return id;
}

// Pops the two numbers of a sum into dst, a slot that may own a value; false, with nothing
// done, when they are no Integer, Long or Double.
[[gnu::always_inline]] inline bool PopSum(Variant& dst, Variant*& sp) {
  Operands o;
  const int kind = LoadOperands(sp[-2], sp[-1], o);
  if (!kind) return false;
  PutResult<true>(
      dst, kind, o, [](int64_t p, int64_t q) { return p + q; },
      [](double p, double q) { return p + q; });
  sp -= 2;
  new (sp) Variant();
  new (sp + 1) Variant();
  return true;
}

}  // namespace

// --- set-up ----------------------------------------------------------------------------------

Vm::Vm() {
  // An Empty Variant is all zero bytes, so zeroed pages are a stack of Empty values: calloc
  // hands them out lazily instead of touching megabytes per engine.
  static_assert(static_cast<int>(VarType::Empty) == 0);
  stack_ = static_cast<Variant*>(std::calloc(kStackSlots, sizeof(Variant)));
  refs_ = static_cast<Variant**>(std::calloc(kStackSlots, sizeof(Variant*)));
  locks_ = static_cast<SafeArray**>(std::calloc(kStackSlots, sizeof(SafeArray*)));
  if (!stack_ || !refs_ || !locks_) throw std::bad_alloc();
  capacity_ = kStackSlots;
  top_ = stack_;
  stack_limit_ = StackLimit();
}

Vm::~Vm() {
  // Every slot is Empty again once no frame runs, so there is nothing to destroy.
  assert(top_ == stack_ && depth_ == 0 && active_locks_ == 0);
  std::free(stack_);
  std::free(refs_);
  std::free(locks_);
}

void Vm::ReleaseLocks(Variant* from, Variant* to) {
  if (active_locks_ == 0) return;
  for (size_t i = from - stack_, end = to - stack_; i < end; ++i) {
    if (SafeArray* array = locks_[i]) {
      assert(active_locks_ > 0);
      --active_locks_;
      locks_[i] = nullptr;
      array->Unlock();
      array->Release();
    }
  }
}

void Vm::DetachRefs(const Variant& variable) {
  // The argument's own stack slot: a callee's ByRef parameter holds Empty there, which is what
  // a name that no longer is a variable reads, and an argument not passed yet holds its copy.
  for (size_t i = 0, end = top_ - stack_; i < end; ++i) {
    if (refs_[i] == &variable) refs_[i] = stack_ + i;
  }
}

Vm::Entry::Entry(Vm& vm) : vm_(vm), locale_(vm.runtime_.locale_data) {
  if (vm.entries_++ > 0) return;
  vm.site_ = ErrorSite();
  vm.stack_limit_ = StackLimit();
  vm.budget_ = kTimeBudget;
  vm.has_deadline_ = vm.timeout_ms_ > 0;
  vm.started_ = std::chrono::steady_clock::now();
  if (vm.has_deadline_) vm.deadline_ = vm.started_ + std::chrono::milliseconds(vm.timeout_ms_);
}

Vm::Entry::~Entry() {
  --vm_.entries_;
}

void Vm::CheckClock() {
  budget_ = kTimeBudget;
  if (has_deadline_ && std::chrono::steady_clock::now() > deadline_)
    throw Error(kErrTimeout, u"Script execution timed out", u"Microsoft VBScript runtime error");
}

void Vm::CheckStack(const Proc& proc, Variant* base) {
  const char* here = static_cast<const char*>(__builtin_frame_address(0));
  if (here < stack_limit_) Raise(kErrOutOfStack);
  if (base + proc.nlocals + proc.max_stack + 8 > stack_ + capacity_) Raise(kErrOutOfStack);
}

// --- calls -----------------------------------------------------------------------------------

Vm::FrameGuard::FrameGuard(Vm& vm, Variant* base, Variant* end)
    : vm(vm), base(base), end(end), saved_top(vm.top_) {
  ++vm.depth_;
  vm.top_ = end;
}

[[gnu::always_inline]] inline void Vm::FrameGuard::Finish() {
  assert(vm.depth_ > 0 && vm.top_ >= end);
  vm.ReleaseLocks(base, end);
  for (Variant* p = base; p < end; ++p)
    Drop(*p);
  vm.top_ = saved_top;
  --vm.depth_;
  done = true;
}

void Vm::FrameGuard::Unwind() {
  assert(vm.depth_ > 0);
  vm.ReleaseLocks(base, end);
  for (Variant* p = base; p < end; ++p)
    Drop(*p);
  vm.top_ = saved_top;
  --vm.depth_;
}

void Vm::CallInPlace(const Proc& proc, ScriptObject* me, Variant* base, uint32_t argc,
                     uint32_t mask) {
  if (argc != proc.nparams) Raise(kErrWrongArgCount);
  CheckStack(proc, base);
  // Recursion without loops never jumps backwards: calls count towards the time limit too.
  CheckTime();
  Frame f{&proc, base, refs_ + (base - stack_), me, false};
  // Read once: the stores to the frame's references below could otherwise alias them.
  const uint8_t* const byref = proc.byref.data();
  Variant** const refs = f.refs;
  for (uint32_t i = 0; i < argc; ++i) {
    if (!byref[i]) continue;
    if (i < 32 && (mask >> i & 1) && refs[i]) {
      base[i].Clear();
    } else {
      refs[i] = &base[i];
    }
    // A ByRef parameter is either the caller's variable or its own copy, never nothing.
    assert(refs[i]);
  }
  // The result travels bit for bit, so that no count changes hands, and as the type word and
  // the payload that the procedure's last store wrote: one 16-byte copy of them would stall.
  alignas(Variant) unsigned char result[sizeof(Variant)] = {};
  Variant& held = *reinterpret_cast<Variant*>(result);
  const int32_t slot = proc.result_slot;
  {
    FrameGuard guard(*this, base, base + proc.nlocals + proc.max_stack);
    Ref<ScriptObject> keep(me);
    Run(f);
    // A finished procedure leaves its stack area empty: only the locals need clearing.
    assert(
        std::all_of(base + proc.nlocals, guard.end, [](const Variant& v) { return v.is_empty(); }));
    guard.end = base + proc.nlocals;
    if (slot >= 0) {
      CopyPlain(held, base[slot]);
      new (base + slot) Variant();
    }
    guard.Finish();
  }
  if (slot >= 0) CopyPlain(base[0], held);
}

Variant Vm::CallOnStack(const Proc& proc, ScriptObject* me, Variant* base, uint32_t argc,
                        uint32_t mask) {
  CallInPlace(proc, me, base, argc, mask);
  Variant r = std::move(base[0]);
  return r;
}

Variant Vm::Call(const Proc& proc, ScriptObject* me, Args args) {
  Variant* base = top_;
  if (base + args.size() + proc.nlocals + proc.max_stack + 8 > stack_ + capacity_)
    Raise(kErrOutOfStack);
  if (args.size() != proc.nparams) Raise(kErrWrongArgCount);
  uint32_t mask = 0;
  for (size_t i = 0; i < args.size(); ++i) {
    base[i] = args[i];
    refs_[base - stack_ + i] = &args[i];
    if (i < 32) mask |= 1u << i;
  }
  return CallOnStack(proc, me, base, static_cast<uint32_t>(args.size()), mask);
}

void Vm::RunTop(const Proc& top) {
  Variant* base = top_;
  CheckStack(top, base);
  Frame f{&top, base, refs_ + (base - stack_), nullptr, false};
  Variant* const end = base + top.nlocals + top.max_stack;
  FrameGuard guard(*this, base, end);
  Run(f);
}

Ref<ScriptObject> Vm::NewInstance(ClassInfo& cls) {
  Ref<ScriptObject> object = ScriptObject::Create(cls);
  if (cls.initialize) Call(*cls.initialize, object.get(), {});
  return object;
}

void Vm::Terminate(ScriptObject& object) noexcept {
  const Proc* terminate = object.cls().terminate;
  if (!terminate) return;
  const ErrState saved = err_;
  try {
    Call(*terminate, &object, {});
  } catch (...) {
    // Class_Terminate may not fail its caller: the error is dropped as VBScript drops it.
  }
  err_ = saved;
}

// --- variables -------------------------------------------------------------------------------

GlobalSlot& Vm::Resolve(GlobalSlot& slot, const Proc& proc) {
  if (slot.kind == SlotKind::Alias) {
    if (slot.alias->kind != SlotKind::Undefined) return *slot.alias;
    slot.SetKind(SlotKind::Undefined);
    slot.alias = nullptr;
  }
  if (slot.kind != SlotKind::Undefined) return slot;
  Module* module = proc.module;
  if (Module* g = module ? module->global() : nullptr) {
    if (GlobalSlot* gs = g->FindSlot(slot.name); gs && gs->kind != SlotKind::Undefined) {
      if (gs->kind == SlotKind::Alias) return *gs;
      slot.SetKind(SlotKind::Alias);
      slot.alias = gs;
      return *gs;
    }
  }
  for (const auto& object : member_objects_) {
    const DispId id = object->GetIdOfName(slot.name);
    if (id != kDispIdUnknown) {
      slot.SetKind(SlotKind::HostMember);
      slot.fixed = Variant(object.get());
      slot.member = id;
      return slot;
    }
  }
  for (const auto& i : kIntrinsics) {
    if (EqualsNoCase(i.name, slot.name)) {
      slot.SetKind(SlotKind::Intrinsic);
      slot.intrinsic = i.which;
      return slot;
    }
  }
  if (const BuiltinFunction* fn = FindBuiltin(slot.name)) {
    slot.SetKind(SlotKind::Builtin);
    slot.builtin = fn;
    return slot;
  }
  if (auto value = FindConstant(slot.name)) {
    slot.SetKind(SlotKind::Constant);
    slot.fixed = std::move(*value);
  }
  return slot;
}

Variant& Vm::VarRef(Frame& f, uint8_t kind, int32_t slot) {
  switch (kind & kVarKindMask) {
    case kVarLocal:
      return f.locals[slot];
    case kVarRef:
      return *f.refs[slot];
    case kVarField:
      return f.me->fields()[slot];
    default:
      break;
  }
  GlobalSlot& s = Resolve(*f.proc->globals[slot], *f.proc);
  assert(s.consistent());
  if (s.kind == SlotKind::Variable) return s.value;
  if (s.kind == SlotKind::Undefined) {
    if (f.proc->option_explicit) RaiseNamed(kErrVariableUndefined, s.name);
    s.MakeVariable();
    return s.value;
  }
  Raise(kErrIllegalAssignment);
}

Variant& Vm::IndexTarget(Frame& f, uint8_t kind, int32_t slot) {
  if ((kind & kVarKindMask) == kVarGlobal) {
    GlobalSlot& s = Resolve(*f.proc->globals[slot], *f.proc);
    if (s.kind == SlotKind::HostObject) return s.fixed;
  }
  return VarRef(f, kind, slot);
}

Variant Vm::LoadGlobalSlot(Frame& f, GlobalSlot& slot) {
  GlobalSlot& s = Resolve(slot, *f.proc);
  assert(s.consistent());
  switch (s.kind) {
    case SlotKind::Variable:
      return s.value;
    case SlotKind::Constant:
    case SlotKind::HostObject:
      return s.fixed;
    case SlotKind::Procedure:
      return Call(*s.proc, nullptr, {});
    case SlotKind::Builtin: {
      Variant r = CallBuiltin(*s.builtin, {});
      if (s.builtin->use == BuiltinUse::StatementOnly) Raise(kErrTypeMismatch);
      return r;
    }
    case SlotKind::Intrinsic:
      return CallIntrinsic(f, s.intrinsic, {}, true);
    case SlotKind::HostMember:
      return s.fixed.as_object()->Invoke(s.member, kInvokeGet | kInvokeMethod, {});
    case SlotKind::Class:
      Raise(kErrTypeMismatch);
    default:
      break;
  }
  if (const Variant* v = ScopeName(f, s.name)) return *v;
  if (f.proc->option_explicit) RaiseNamed(kErrVariableUndefined, s.name);
  return Variant();
}

void Vm::StoreGlobalSlot(Frame& f, GlobalSlot& slot, Variant value, bool is_set) {
  GlobalSlot& s = Resolve(slot, *f.proc);
  assert(s.consistent());
  if (s.kind == SlotKind::HostMember) {
    Variant arg = std::move(value);
    s.fixed.as_object()->Invoke(s.member, is_set ? kInvokeSet : kInvokeLet, Args(&arg, 1));
    return;
  }
  if (s.kind == SlotKind::Undefined) {
    if (f.proc->option_explicit) RaiseNamed(kErrVariableUndefined, s.name);
    s.MakeVariable();
  }
  if (s.kind != SlotKind::Variable) Raise(kErrIllegalAssignment);
  s.value = std::move(value);
}

// --- calls by kind ---------------------------------------------------------------------------

Variant Vm::CallBuiltin(const BuiltinFunction& fn, Args args) {
  if (args.size() < fn.min_args || args.size() > fn.max_args) Raise(kErrWrongArgCount);
  return fn.fn(runtime_, args);
}

void Vm::WriteBack(Variant* args, uint32_t argc, uint32_t mask) {
  if (!mask) return;
  const size_t at = args - stack_;
  for (uint32_t i = 0; i < argc && i < 32; ++i) {
    if ((mask >> i & 1) && refs_[at + i]) *refs_[at + i] = args[i];
  }
}

Variant Vm::CallSlot(Frame& f, GlobalSlot& slot, Variant* args, uint32_t argc, uint32_t mask,
                     bool want) {
  GlobalSlot& s = Resolve(slot, *f.proc);
  const Args span(args, argc);
  switch (s.kind) {
    case SlotKind::Procedure:
      return CallOnStack(*s.proc, nullptr, args, argc, mask);
    case SlotKind::Builtin: {
      Variant r = CallBuiltin(*s.builtin, span);
      if (s.builtin->use != BuiltinUse::Any) {
        if (!want && s.builtin->use == BuiltinUse::ValueOnly) Raise(kErrUnsupportedAutomationType);
        if (want && s.builtin->use == BuiltinUse::StatementOnly) Raise(kErrTypeMismatch);
      }
      return r;
    }
    case SlotKind::Intrinsic:
      return CallIntrinsic(f, s.intrinsic, span, want);
    case SlotKind::Variable:
    case SlotKind::Constant:
    case SlotKind::HostObject: {
      const Variant& held = s.kind == SlotKind::Variable ? s.value : s.fixed;
      Variant r = ApplyIndex(held, span, want);
      if (held.is_object()) WriteBack(args, argc, mask);
      return r;
    }
    case SlotKind::HostMember: {
      Variant r = s.fixed.as_object()->Invoke(
          s.member, want ? (kInvokeMethod | kInvokeGet) : kInvokeMethod, span);
      WriteBack(args, argc, mask);
      return r;
    }
    case SlotKind::Class:
      Raise(kErrTypeMismatch);
    default:
      break;
  }
  if (Variant* v = ScopeName(f, s.name)) {
    Variant r = ApplyIndex(*v, span, want);
    if (v->is_object()) WriteBack(args, argc, mask);
    return r;
  }
  if (f.proc->option_explicit) RaiseNamed(kErrVariableUndefined, s.name);
  RaiseNamed(kErrTypeMismatch, s.name);
}

Variant Vm::CallMethod(Frame& f, int32_t member, Variant* args, uint32_t argc, uint32_t mask,
                       bool want) {
  if (!f.me) Raise(kErrObjectRequired);
  const ClassMember& m = f.me->cls().members[member];
  if (m.method) return CallOnStack(*m.method, f.me, args, argc, mask);
  if (m.get) return CallOnStack(*m.get, f.me, args, argc, mask);
  (void)want;
  Raise(kErrNotSupported);
}

Variant Vm::CallMember(Frame& f, const Instr& in, Variant* base) {
  const Variant& target = base[0];
  if (!target.is_object()) Raise(kErrObjectRequired);
  Object* object = target.as_object();
  if (!object) Raise(kErrObjectRequired);
  const DispId id = MemberId(f.proc->sites[in.a], *object);
  const bool get = (in.flags & kWantResult) && !(in.flags & kEmptyParens);
  Variant r =
      object->Invoke(id, get ? (kInvokeMethod | kInvokeGet) : kInvokeMethod, Args(base + 1, in.n));
  WriteBack(base + 1, in.n, static_cast<uint32_t>(in.b));
  return r;
}

Variant Vm::NewObject(Frame& f, GlobalSlot& slot) {
  GlobalSlot& s = Resolve(slot, *f.proc);
  // New RegExp makes the built-in object even where the script declares a class of that name.
  if (EqualsNoCase(s.name, u"RegExp")) return Variant(NewRegExp());
  if (s.kind == SlotKind::Class) return Variant(NewInstance(*s.cls));
  // Under Option Explicit the unknown name is first of all an undeclared one.
  RaiseNamed(f.proc->option_explicit ? kErrVariableUndefined : kErrClassNotDefined, s.name);
}

Variant Vm::CallIntrinsic(Frame& f, Intrinsic which, Args args, bool want) {
  (void)want;
  switch (which) {
    case Intrinsic::Err:
      if (!args.empty()) return err_object()->Invoke(kDispIdValue, kInvokeGet, args);
      return Variant(err_object());
    case Intrinsic::Eval:
      return EvalSnippet(f, args);
    case Intrinsic::Execute:
    case Intrinsic::ExecuteGlobal:
      ExecuteSnippet(f, args, which == Intrinsic::ExecuteGlobal);
      return Variant();
    case Intrinsic::GetRef: {
      CheckArgCount(args, 1, 1);
      const Variant text = ValueOf(args[0]);
      if (!text.is_string()) Raise(kErrTypeMismatch);
      const String name = text.as_string();
      GlobalSlot* slot = f.proc->module->FindSlot(name);
      if (slot) slot = &Resolve(*slot, *f.proc);
      if (!slot || slot->kind != SlotKind::Procedure) Raise(kErrInvalidCall);
      Module* owner = slot->proc->module;
      return Variant(MakeRef<ProcRef>(*owner, *slot->proc));
    }
    case Intrinsic::CreateObject: {
      CheckArgCount(args, 1, 2);
      const String id = ToString(args[0]);
      // Objects live on this machine only: naming another server is an unreachable one.
      if (HasArg(args, 1) && !ToString(args[1]).empty())
        Raise(462);  // "The remote server machine does not exist or is unavailable"
      Ref<Object> object = registry_ ? registry_->Create(id) : Ref<Object>();
      if (!object) RaiseNamed(kErrCannotCreateObject, id);
      return Variant(object);
    }
    case Intrinsic::GetObject: {
      CheckArgCount(args, 0, 2);
      // An empty path with a class makes a new object; there are no running objects or
      // monikers to find, so anything else fails as a missing class does.
      const bool empty_path = HasArg(args, 0) && ToString(args[0]).empty();
      if (empty_path && HasArg(args, 1) && registry_) {
        Ref<Object> object = registry_->Create(ToString(args[1]));
        if (object) return Variant(object);
      }
      RaiseNamed(kErrCannotCreateObject, u"GetObject");
    }
  }
  return Variant();
}

// --- the dispatch loop -----------------------------------------------------------------------

[[gnu::always_inline]] inline void Vm::Run(Frame& f) {
  const Instr* const code = f.proc->code.data();
  f.ip = code;
  for (;;) {
    try {
      Execute(f);
      return;
    } catch (const Error& e) {
      f.ip = code + HandleError(f, static_cast<size_t>(f.ip - code) - 1, e);
    } catch (const std::bad_alloc&) {
      f.ip = code + HandleError(f, static_cast<size_t>(f.ip - code) - 1, Error(kErrOutOfMemory));
    }
  }
}

void Vm::RunOutOfLine(Frame& f) {
  Run(f);
}

// No handler lives in here, so the instruction pointer stays in a register; it is published
// to the frame at each dispatch for Run's handler to know where an error happened.
void Vm::Execute(Frame& f) {
  const Proc& proc = *f.proc;
  const Instr* const code = proc.code.data();
  const Instr* ip = f.ip;
  Variant* const locals = f.locals;
  Variant* sp = locals + proc.nlocals;
  const Variant* const consts = proc.consts.data();
  GlobalSlot* const* const globals = proc.globals.data();
  // Filled at compile time from the opcode list: a HOT opcode's entry is the label of its
  // name in this function, a COLD one's the switch.
#define QV_COLD_TARGET(name) &&generic,
#define QV_HOT_TARGET(name) &&L_##name,
  static void* const targets[] = {QV_OPCODES(QV_COLD_TARGET, QV_HOT_TARGET)};
#undef QV_COLD_TARGET
#undef QV_HOT_TARGET
  static_assert(std::size(targets) == kOpCount);
  // Hot operations end by jumping straight to the next one's code (computed goto);
  // the others go back through the switch.
  // The frame's evaluation stack stays within what the compiler reserved for it, and is empty
  // where a statement starts (Resume Next and the end of a call rely on that).
  [[maybe_unused]] Variant* const floor = locals + proc.nlocals;
  assert(!proc.code.empty() && proc.code.back().op == Op::Return);
  assert(proc.stmt_start.size() == proc.code.size());
#define QV_NEXT()                                                                \
  do {                                                                           \
    f.ip = ++ip;                                                                 \
    assert(sp >= floor && sp <= floor + proc.max_stack);                         \
    assert(!proc.stmt_start[static_cast<size_t>(ip - code) - 1] || sp == floor); \
    goto* targets[static_cast<uint8_t>(ip[-1].op)];                              \
  } while (0)
  Variant* counter;  // a For loop's, between the two entries to its step and the step
  QV_NEXT();
  // Handlers that differ only in their operator come from one macro per family (QV_ARITH,
  // QV_COMPARE, QV_BINARY...), which expands to the code written out by hand. The short ones
  // that remain look alike only in their case label, jump label and QV_NEXT around a line of
  // their own.
  for (;;) {
  generic:
    switch (ip[-1].op) {
      case Op::Nop:
        break;
      case Op::PushConst:
      L_PushConst:
        PushCopy(sp++, consts[ip[-1].a]);
        QV_NEXT();
      case Op::PushEmpty:
        ++sp;
        break;
      case Op::PushMe:
        *sp++ = Variant(static_cast<Object*>(f.me));
        break;
      case Op::Pop:
        Drop(*--sp);
        break;
      case Op::LoadLocal:
      L_LoadLocal:
        PushCopy(sp++, locals[ip[-1].a]);
        QV_NEXT();
      case Op::LoadRef:
      L_LoadRef:
        PushCopy(sp++, *f.refs[ip[-1].a]);
        QV_NEXT();
      case Op::LoadField:
        new (sp++) Variant(f.me->fields()[ip[-1].a]);
        break;
      case Op::LoadGlobal:
      L_LoadGlobal : {
        GlobalSlot& s = *globals[ip[-1].a];
        assert(s.consistent());
        if (HoldsVariable(s.value)) {
          PushCopy(sp++, s.value);
        } else {
          *sp = LoadGlobalSlot(f, s);
          ++sp;
        }
        break;
      }
      case Op::StoreLocal:
      L_StoreLocal:
        if (!(ip[-1].flags & kSetFlag) && IsPlain(sp[-1])) {
          MoveInto(locals[ip[-1].a], *--sp);
          QV_NEXT();
        }
        [[fallthrough]];
      case Op::StoreRef:
      case Op::StoreField:
      case Op::StoreGlobal: {
        Variant v = std::move(*--sp);
        if (ip[-1].flags & kSetFlag) {
          CheckSetValue(v);
        } else if (v.is_object() && !(ip[-1].flags & kRawStore)) {
          v = ValueOf(v);
        }
        switch (ip[-1].op) {
          case Op::StoreLocal:
            locals[ip[-1].a] = std::move(v);
            break;
          case Op::StoreRef:
            *f.refs[ip[-1].a] = std::move(v);
            break;
          case Op::StoreField:
            f.me->fields()[ip[-1].a] = std::move(v);
            break;
          default: {
            GlobalSlot& s = *globals[ip[-1].a];
            if (HoldsVariable(s.value)) {
              s.value = std::move(v);
            } else {
              StoreGlobalSlot(f, s, std::move(v), ip[-1].flags & kSetFlag);
            }
          }
        }
        break;
      }
      case Op::ArgLocal:
      L_ArgLocal:
        *sp = locals[ip[-1].a];
        refs_[sp - stack_] = &locals[ip[-1].a];
        ++sp;
        break;
      case Op::ArgRef:
        *sp = *f.refs[ip[-1].a];
        refs_[sp - stack_] = f.refs[ip[-1].a];
        ++sp;
        break;
      case Op::ArgField:
        *sp = f.me->fields()[ip[-1].a];
        refs_[sp - stack_] = &f.me->fields()[ip[-1].a];
        ++sp;
        break;
      case Op::ArgElem: {
        Variant* base = sp - ip[-1].n;
        // A global name may be a function: then this is a call, and its result goes by value,
        // as does what the indexes pick from anything but an array.
        GlobalSlot* const s = (ip[-1].flags & kVarKindMask) == kVarGlobal
                                  ? &Resolve(*globals[ip[-1].a], proc)
                                  : nullptr;
        const bool call = s && s->kind != SlotKind::Variable;
        Variant* const target = call ? nullptr : &VarRef(f, ip[-1].flags, ip[-1].a);
        if (call || !target->is_array()) {
          Variant value =
              call ? CallSlot(f, *s, base, ip[-1].n, static_cast<uint32_t>(ip[-1].b), true)
                   : ApplyIndex(*target, Args(base, ip[-1].n), true);
          if (ip[-1].b) ReleaseLocks(base, sp);
          while (sp > base)
            Drop(*--sp);
          *sp = std::move(value);
          refs_[sp - stack_] = nullptr;
          ++sp;
          break;
        }
        SafeArray* array = target->mutable_array();
        if (ip[-1].n > kMaxArrayDimensions) Raise(kErrSubscript);
        int32_t idx[kMaxArrayDimensions];
        for (uint32_t i = 0; i < ip[-1].n; ++i)
          idx[i] = IndexValue(base[i]);
        Variant& element = array->At(std::span<const int32_t>(idx, ip[-1].n));
        if (ip[-1].b) ReleaseLocks(base, sp);
        while (sp > base)
          Drop(*--sp);
        *sp = element;
        refs_[sp - stack_] = &element;
        array->AddRef();
        array->Lock();
        locks_[sp - stack_] = array;
        ++active_locks_;
        ++sp;
        QV_NEXT();
      }
      case Op::ArgGlobal:
      L_ArgGlobal : {
        if (GlobalSlot& v = *globals[ip[-1].a]; HoldsVariable(v.value)) {
          PushCopy(sp, v.value);
          refs_[sp - stack_] = &v.value;
          ++sp;
          QV_NEXT();
        }
        GlobalSlot& s = Resolve(*globals[ip[-1].a], proc);
        if (s.kind == SlotKind::Undefined) {
          if (Variant* v = ScopeName(f, s.name)) {
            *sp = *v;
            refs_[sp - stack_] = v;
            ++sp;
            break;
          }
          if (!proc.option_explicit) s.MakeVariable();
        }
        if (s.kind == SlotKind::Variable) {
          *sp = s.value;
          refs_[sp - stack_] = &s.value;
        } else {
          *sp = LoadGlobalSlot(f, s);
          refs_[sp - stack_] = nullptr;
        }
        ++sp;
        break;
      }
      case Op::Append:
      L_Append : {
        Variant v = std::move(*--sp);
        AppendInPlace(VarRef(f, ip[-1].flags, ip[-1].a), v);
        break;
      }
#define QV_ARITH(NAME, OP)                                       \
  case Op::NAME:                                                 \
    L_##NAME : {                                                 \
      Variant& a = sp[-2];                                       \
      const Variant& b = sp[-1];                                 \
      if (!FastArith(                                            \
              a, b, [](int64_t x, int64_t y) { return x OP y; }, \
              [](double x, double y) { return x OP y; }))        \
        a = Op##NAME(a, b);                                      \
      Drop(*--sp);                                               \
      QV_NEXT();                                                 \
    }
        QV_ARITH(Add, +)
        QV_ARITH(Sub, -)
        QV_ARITH(Mul, *)
#undef QV_ARITH
      case Op::Div: {
        // Integer, Long and Double always divide to a Double; zero divisors, Singles and
        // everything else take the general rules with their errors.
        Number x{}, y{};
        if (NumberOf(sp[-2], x) && NumberOf(sp[-1], y)) {
          const double n = x.type == static_cast<unsigned>(VarType::Double)
                               ? x.real
                               : static_cast<double>(x.whole);
          const double d = y.type == static_cast<unsigned>(VarType::Double)
                               ? y.real
                               : static_cast<double>(y.whole);
          const double q = n / d;
          if (d != 0 && std::isfinite(q)) {
            new (&sp[-2]) Variant(q);
            Drop(*--sp);
            break;
          }
        }
        sp[-2] = OpDiv(sp[-2], sp[-1]);
        Drop(*--sp);
        break;
      }
// The operators without an inline path: the general rules on the two values on the stack.
#define QV_BINARY(NAME)                \
  case Op::NAME:                       \
    sp[-2] = Op##NAME(sp[-2], sp[-1]); \
    (--sp)->Clear();                   \
    break;
        QV_BINARY(IntDiv)
        QV_BINARY(Mod)
        QV_BINARY(Pow)
      case Op::Concat:
      L_Concat:
        // a & b & c: the text made by the first & is the stack's alone, so the next ones
        // append to it instead of copying it again, which keeps a long chain linear.
        if (sp[-2].is_string() && sp[-2].as_string().IsUnique()) {
          AppendInPlace(sp[-2], sp[-1]);
        } else {
          sp[-2] = OpConcat(sp[-2], sp[-1]);
        }
        Drop(*--sp);
        break;
#define QV_COMPARE(NAME, INDEX, OP)                                                              \
  case Op::NAME:                                                                                 \
    L_##NAME : if (!FastCompare(sp[-2], sp[-1], [](auto x, auto y) { return x OP y; })) sp[-2] = \
                   OpCompare(INDEX, sp[-2], sp[-1], ip[-1].flags);                               \
    Drop(*--sp);                                                                                 \
    break;
        QV_COMPARE(Eq, 0, ==)
        QV_COMPARE(Ne, 1, !=)
        QV_COMPARE(Lt, 2, <)
        QV_COMPARE(Le, 3, <=)
        QV_COMPARE(Gt, 4, >)
        QV_COMPARE(Ge, 5, >=)
#undef QV_COMPARE
      case Op::Is:
        sp[-2] = Variant(OpIs(sp[-2], sp[-1]));
        (--sp)->Clear();
        break;
        QV_BINARY(And)
        QV_BINARY(Or)
        QV_BINARY(Xor)
        QV_BINARY(Eqv)
        QV_BINARY(Imp)
#undef QV_BINARY
      case Op::Neg:
        sp[-1] = OpNeg(sp[-1]);
        break;
      case Op::Not:
        sp[-1] = OpNot(sp[-1]);
        break;
// The same with the right operand a constant or a local.
#define QV_ARITH_KL(NAME, OP)                                                            \
  case Op::NAME##K:                                                                      \
  case Op::NAME##L:                                                                      \
    L_##NAME##K : L_##NAME##L : {                                                        \
      Variant& a = sp[-1];                                                               \
      const Variant& b = ip[-1].op == Op::NAME##K ? consts[ip[-1].a] : locals[ip[-1].a]; \
      if (!FastArith(                                                                    \
              a, b, [](int64_t x, int64_t y) { return x OP y; },                         \
              [](double x, double y) { return x OP y; }))                                \
        a = Op##NAME(a, b);                                                              \
      QV_NEXT();                                                                         \
    }
        QV_ARITH_KL(Add, +)
        QV_ARITH_KL(Sub, -)
        QV_ARITH_KL(Mul, *)
#undef QV_ARITH_KL
#define QV_FUSED_COMPARE(K, L, INDEX, EXPR)                                        \
  case Op::K:                                                                      \
  case Op::L:                                                                      \
    L_##K : L_##L : {                                                              \
      Variant& a = sp[-1];                                                         \
      const Variant& b = ip[-1].op == Op::K ? consts[ip[-1].a] : locals[ip[-1].a]; \
      if (!FastCompare(a, b, [](auto x, auto y) { return EXPR; }))                 \
        a = OpCompare(INDEX, a, b, ip[-1].flags);                                  \
      QV_NEXT();                                                                   \
    }
        QV_FUSED_COMPARE(EqK, EqL, 0, x == y)
        QV_FUSED_COMPARE(NeK, NeL, 1, x != y)
        QV_FUSED_COMPARE(LtK, LtL, 2, x < y)
        QV_FUSED_COMPARE(LeK, LeL, 3, x <= y)
        QV_FUSED_COMPARE(GtK, GtL, 4, x > y)
        QV_FUSED_COMPARE(GeK, GeL, 5, x >= y)
#undef QV_FUSED_COMPARE
      case Op::Jmp:
      L_Jmp:
        if (ip[-1].a < ip - code) CheckTime();
        ip = code + ip[-1].a;
        QV_NEXT();
#define QV_JUMP_IF(NAME, WHEN)                 \
  case Op::NAME:                               \
    L_##NAME : {                               \
      const bool t = Truth(sp[-1]);            \
      Drop(*--sp);                             \
      if (t == (WHEN)) {                       \
        if (ip[-1].a < ip - code) CheckTime(); \
        ip = code + ip[-1].a;                  \
      }                                        \
      QV_NEXT();                               \
    }
        QV_JUMP_IF(JmpFalse, false)
        QV_JUMP_IF(JmpTrue, true)
#undef QV_JUMP_IF
// The end of a call whose arguments stand from `from` on: they go, arrays passed by their
// elements are unlocked, and the result stays when the caller uses it.
#define QV_END_CALL(from, result)                              \
  do {                                                         \
    if (ip[-1].b) ReleaseLocks(from, sp);                      \
    while (sp > (from))                                        \
      (--sp)->Clear();                                         \
    if (ip[-1].flags & kWantResult) *sp++ = std::move(result); \
  } while (0)
      case Op::CallGlobal:
      L_CallGlobal : {
        Variant* args = sp - ip[-1].n;
        GlobalSlot& s = *globals[ip[-1].a];
        if (s.kind == SlotKind::Procedure) {
          // The callee's frame starts at the arguments and leaves its result there.
          CallInPlace(*s.proc, nullptr, args, ip[-1].n, ip[-1].b);
          sp = args;
          if (ip[-1].flags & kWantResult) {
            ++sp;
          } else {
            Drop(*sp);
          }
          QV_NEXT();
        }
        Variant r = CallSlot(f, s, args, ip[-1].n, ip[-1].b, ip[-1].flags & kWantResult);
        QV_END_CALL(args, r);
        break;
      }
      case Op::CallMethod: {
        Variant* args = sp - ip[-1].n;
        Variant r = CallMethod(f, ip[-1].a, args, ip[-1].n, ip[-1].b, ip[-1].flags & kWantResult);
        QV_END_CALL(args, r);
        break;
      }
      case Op::CallMember:
      L_CallMember : {
        Variant* base = sp - ip[-1].n - 1;
        Variant r = CallMember(f, ip[-1], base);
        QV_END_CALL(base, r);
        break;
      }
#undef QV_END_CALL
      case Op::Index:
      L_Index : {
        Variant* args = sp - ip[-1].n;
        // An element of a local or module one-dimensional array by a whole-number index: no
        // script code can run meanwhile, so the array is read where it stands.
        if (ip[-1].n == 1 && (ip[-1].flags & kWantResult) && IsWhole(TypeOf(args[0]))) {
          const uint8_t kind = ip[-1].flags & kVarKindMask;
          const Variant* held = kind == kVarLocal    ? &locals[ip[-1].a]
                                : kind == kVarGlobal ? &globals[ip[-1].a]->value
                                                     : nullptr;
          const SafeArray* array = held && held->is_array() ? held->as_array() : nullptr;
          if (array && array->dimensions() == 1) {
            const ArrayBound& bound = array->bounds()[0];
            const int64_t offset = int64_t{WholeOf(args[0])} - bound.lower;
            if (offset >= 0 && offset < bound.count) {
              if (ip[-1].b) ReleaseLocks(args, sp);
              PushCopy(args, (*array)[static_cast<size_t>(offset)]);
              QV_NEXT();
            }
          }
        }
        const Variant target = VarRef(f, ip[-1].flags, ip[-1].a);
        Variant r = ApplyIndex(target, Args(args, ip[-1].n), ip[-1].flags & kWantResult);
        if (ip[-1].b) {
          // An object's default member (a GetRef, a host object) takes variables ByRef.
          if (target.is_object()) WriteBack(args, ip[-1].n, ip[-1].b);
          ReleaseLocks(args, sp);
        }
        while (sp > args)
          (--sp)->Clear();
        if (ip[-1].flags & kWantResult) *sp++ = std::move(r);
        break;
      }
      case Op::IndexValue: {
        Variant* base = sp - ip[-1].n - 1;
        Variant r = ApplyIndex(base[0], Args(base + 1, ip[-1].n), true);
        if (ip[-1].b) ReleaseLocks(base, sp);
        while (sp > base)
          (--sp)->Clear();
        *sp++ = std::move(r);
        break;
      }
      case Op::New:
        *sp = NewObject(f, *globals[ip[-1].a]);
        ++sp;
        break;
      case Op::StoreIndex: {
        Variant* base = sp - ip[-1].n - 1;
        Variant value = std::move(sp[-1]);
        StoreIndexed(IndexTarget(f, ip[-1].flags, ip[-1].a), Args(base, ip[-1].n), std::move(value),
                     ip[-1].flags & kSetFlag);
        while (sp > base)
          (--sp)->Clear();
        break;
      }
      case Op::StoreMember: {
        Variant* base = sp - ip[-1].n - 2;
        const Variant& target = base[0];
        if (!target.is_object() || !target.as_object()) Raise(kErrObjectRequired);
        Object* object = target.as_object();
        const DispId id = MemberId(proc.sites[ip[-1].a], *object);
        const bool is_set = ip[-1].flags & kSetFlag;
        if (is_set) {
          CheckSetValue(sp[-1]);
        } else if (sp[-1].is_object() && !dynamic_cast<ScriptObject*>(object)) {
          // A script class's Property Let receives the object itself; its fields take the
          // default value, which the class sees to.
          sp[-1] = ValueOf(sp[-1]);
        }
        object->Invoke(id, is_set ? kInvokeSet : kInvokeLet, Args(base + 1, ip[-1].n + 1));
        while (sp > base)
          (--sp)->Clear();
        break;
      }
      case Op::StoreIndexValue: {
        Variant* base = sp - ip[-1].n - 2;
        Variant* element = ip[-1].b ? refs_[base - stack_] : nullptr;
        if (element && element->is_array() && base[0].is_array()) {
          base[0].Clear();  // the copy would only make the store copy the array
          StoreIndexed(*element, Args(base + 1, ip[-1].n), std::move(sp[-1]),
                       ip[-1].flags & kSetFlag);
        } else {
          Variant target = base[0];
          StoreIndexed(target, Args(base + 1, ip[-1].n), std::move(sp[-1]),
                       ip[-1].flags & kSetFlag);
        }
        if (ip[-1].b) ReleaseLocks(base, sp);
        while (sp > base)
          (--sp)->Clear();
        break;
      }
      case Op::ArgElemOf: {
        Variant* base = sp - ip[-1].n - 1;
        Variant* outer = refs_[base - stack_];
        if (!outer || !outer->is_array() || !base[0].is_array()) {
          Variant value = ApplyIndex(base[0], Args(base + 1, ip[-1].n), true);
          ReleaseLocks(base, sp);
          while (sp > base)
            Drop(*--sp);
          *sp = std::move(value);
          refs_[sp - stack_] = nullptr;
          ++sp;
          break;
        }
        if (ip[-1].n > kMaxArrayDimensions) Raise(kErrSubscript);
        int32_t idx[kMaxArrayDimensions];
        for (uint32_t i = 0; i < ip[-1].n; ++i)
          idx[i] = IndexValue(base[i + 1]);
        // Our copy of the inner array would only make it copy itself on the write below; the
        // reference added here keeps it alive once the lock on the outer array is gone.
        base[0].Clear();
        SafeArray* array = outer->mutable_array();
        Variant& element = array->At(std::span<const int32_t>(idx, ip[-1].n));
        array->AddRef();
        array->Lock();
        ReleaseLocks(base, sp);
        while (sp > base)
          Drop(*--sp);
        *sp = element;
        refs_[sp - stack_] = &element;
        locks_[sp - stack_] = array;
        ++active_locks_;
        ++sp;
        break;
      }
      case Op::DimArray: {
        Variant* base = sp - ip[-1].n;
        Variant& target = VarRef(f, ip[-1].flags, ip[-1].a);
        if (ip[-1].b && target.is_array()) Raise(kErrTypeMismatch);
        DimArray(target, Args(base, ip[-1].n));
        while (sp > base)
          (--sp)->Clear();
        break;
      }
      case Op::ReDim: {
        Variant* base = sp - ip[-1].n;
        ReDimArray(VarRef(f, ip[-1].flags, ip[-1].a), Args(base, ip[-1].n), ip[-1].b != 0);
        while (sp > base)
          (--sp)->Clear();
        break;
      }
      case Op::ReDimMember: {
        Variant* base = sp - ip[-1].n - 1;
        if (!base[0].is_object() || !base[0].as_object()) Raise(kErrObjectRequired);
        Object* object = base[0].as_object();
        const DispId id = object->GetIdOfName(proc.sites[ip[-1].a].name);
        if (id == kDispIdUnknown) RaiseNamed(kErrNotSupported, proc.sites[ip[-1].a].name);
        Variant value = object->Invoke(id, kInvokeGet, {});
        ReDimArray(value, Args(base + 1, ip[-1].n), ip[-1].b != 0);
        object->Invoke(id, kInvokeLet, Args(&value, 1));
        while (sp > base)
          (--sp)->Clear();
        break;
      }
      case Op::Erase:
        EraseArray(VarRef(f, ip[-1].flags, ip[-1].a));
        break;
      case Op::ForInit: {
        Variant step = ForOperand(std::move(sp[-1]));
        Variant end = ForOperand(std::move(sp[-2]));
        Variant start = ForOperand(std::move(sp[-3]));
        sp[-1].Clear();
        sp[-2].Clear();
        sp[-3].Clear();
        sp -= 3;
        locals[ip[-1].n] = std::move(end);
        locals[ip[-1].n + 1] = std::move(step);
        Variant& var = VarRef(f, ip[-1].flags, ip[-1].a);
        var = std::move(start);
        if (!ForContinues(var, locals[ip[-1].n], locals[ip[-1].n + 1])) ip = code + ip[-1].b;
        break;
      }
      case Op::ForNextGlobal:
      L_ForNextGlobal:
        // A slot that holds no variable fails the number checks below by its marker.
        counter = &globals[ip[-1].a]->value;
        assert(globals[ip[-1].a]->consistent());
        goto for_next;
      case Op::ForNext:
      L_ForNext:
        counter = (ip[-1].flags & kVarKindMask) == kVarLocal ? &locals[ip[-1].a]
                                                             : &VarRef(f, ip[-1].flags, ip[-1].a);
      for_next : {
        Variant& var = *counter;
        const Variant& step = locals[ip[-1].n + 1];
        const Variant& end = locals[ip[-1].n];
        // The common loop: an Integer or Long counter with whole-number end and step, which
        // stays of its type while it fits (the general path below widens it).
        if (const unsigned tv = TypeOf(var);
            IsWhole(tv) && IsWhole(TypeOf(step)) && IsWhole(TypeOf(end))) {
          const int32_t by = WholeOf(step);
          const int64_t next = int64_t{WholeOf(var)} + by;
          const bool integer = (tv | TypeOf(step)) == 2;
          if (integer ? next == static_cast<int16_t>(next) : next == static_cast<int32_t>(next)) {
            if (integer) {
              RawSet(var, VarType::Integer, static_cast<uint16_t>(next));
            } else {
              RawSet(var, VarType::Long, static_cast<uint32_t>(next));
            }
            const int32_t limit = WholeOf(end);
            if (by >= 0 ? next <= limit : next >= limit) {
              CheckTime();
              ip = code + ip[-1].b;
            }
            QV_NEXT();
          }
        }
        // A module slot that holds no variable goes by what its name is now: an undefined one
        // becomes a variable (Option Explicit permitting), anything else is refused.
        Variant& general = HoldsVariable(var) ? var : VarRef(f, ip[-1].flags, ip[-1].a);
        if (!FastArith(
                general, step, [](int64_t x, int64_t y) { return x + y; },
                [](double x, double y) { return x + y; }))
          StepCounter(general, step);
        if (ForContinues(general, locals[ip[-1].n], step)) {
          CheckTime();
          ip = code + ip[-1].b;
        }
        QV_NEXT();
      }
      case Op::ForEachInit: {
        Variant group = std::move(*--sp);
        if (group.is_array()) {
          locals[ip[-1].n] = std::move(group);
          locals[ip[-1].n + 1] = Variant(int32_t{0});
        } else if (group.is_object() && group.as_object()) {
          Ref<Enumerator> e = group.as_object()->NewEnum();
          if (!e) Raise(kErrNotACollection);
          locals[ip[-1].n] = Variant(MakeRef<EnumHolder>(std::move(e)));
        } else if (group.is_object()) {
          Raise(kErrObjectRequired);
        } else {
          Raise(kErrNotACollection);
        }
        break;
      }
      case Op::ForEachNext: {
        CheckTime();
        Variant& state = locals[ip[-1].n];
        if (state.is_array()) {
          const int32_t i = locals[ip[-1].n + 1].as_long();
          const SafeArray* array = state.as_array();
          if (static_cast<size_t>(i) >= array->size()) {
            // A loop that runs out leaves its variable Empty (Exit For keeps the last item).
            VarRef(f, ip[-1].flags, ip[-1].a) = Variant();
            ip = code + ip[-1].b;
            break;
          }
          Variant item = (*array)[i];
          locals[ip[-1].n + 1] = Variant(i + 1);
          VarRef(f, ip[-1].flags, ip[-1].a) = std::move(item);
          break;
        }
        if (!state.is_object() || !state.as_object()) {
          // The group failed to evaluate under On Error Resume Next: the loop ends.
          ip = code + ip[-1].b;
          break;
        }
        auto* holder = static_cast<EnumHolder*>(state.as_object());
        Variant item;
        if (!holder->e->Next(item)) {
          VarRef(f, ip[-1].flags, ip[-1].a) = Variant();
          ip = code + ip[-1].b;
          break;
        }
        VarRef(f, ip[-1].flags, ip[-1].a) = std::move(item);
        break;
      }
      case Op::OnError:
        f.resume_next = ip[-1].a != 0;
        err_.Clear();
        break;
      case Op::Raise:
        Raise(ip[-1].a);
      case Op::Return:
      L_Return:
        return;
        // The fused forms: the fast path when every operand is a plain number, else the first
        // instruction's own work, after which the covered ones run as compiled.
#define QV_FUSED_X() ((ip[-1].flags & kFusedRef) ? *f.refs[ip[-1].a] : locals[ip[-1].a])
#define QV_WHOLE(OP) [](int64_t p, int64_t q) { return p OP q; }
#define QV_REAL(OP) [](double p, double q) { return p OP q; }
#define QV_LOAD_ARITH(NAME, OP)                                                            \
  case Op::Load##NAME:                                                                     \
    L_Load##NAME : {                                                                       \
      const Variant& x = QV_FUSED_X();                                                     \
      Operands o;                                                                          \
      if (const int kind = LoadFused(ip[-1], ip[-1].b, x, locals, consts, o)) {            \
        PutResult<false>(*sp, kind, o, QV_WHOLE(OP), QV_REAL(OP));                         \
        ++sp;                                                                              \
        ++ip;                                                                              \
        QV_NEXT();                                                                         \
      }                                                                                    \
      PushCopy(sp++, x);                                                                   \
      QV_NEXT();                                                                           \
    }                                                                                      \
  case Op::Load##NAME##Store:                                                              \
    L_Load##NAME##Store : {                                                                \
      const Variant& x = QV_FUSED_X();                                                     \
      Operands o;                                                                          \
      if (const int kind = LoadFused(ip[-1], ip[-1].b, x, locals, consts, o)) {            \
        PutResult<true>(locals[ip[-1].n], kind, o, QV_WHOLE(OP), QV_REAL(OP));             \
        ip += 2;                                                                           \
        QV_NEXT();                                                                         \
      }                                                                                    \
      PushCopy(sp++, x);                                                                   \
      QV_NEXT();                                                                           \
    }                                                                                      \
  case Op::NAME##Store:                                                                    \
    L_##NAME##Store : {                                                                    \
      Variant& a = sp[-1];                                                                 \
      Operands o;                                                                          \
      if (const int kind = LoadFused(ip[-1], ip[-1].b, a, locals, consts, o)) {            \
        PutResult<true>(locals[ip[-1].n], kind, o, QV_WHOLE(OP), QV_REAL(OP));             \
        new (--sp) Variant();                                                              \
        ++ip;                                                                              \
        QV_NEXT();                                                                         \
      }                                                                                    \
      a = Op##NAME(a, (ip[-1].flags & kFusedLocal) ? locals[ip[-1].a] : consts[ip[-1].a]); \
      QV_NEXT();                                                                           \
    }
#define QV_LEFT_ARITH(NAME, OP)                                                 \
  case Op::NAME##Left:                                                          \
    L_##NAME##Left : {                                                          \
      Variant& b = sp[-1];                                                      \
      const Variant& a = locals[ip[-1].a];                                      \
      if (!FastArithTo(b, a, b, QV_WHOLE(OP), QV_REAL(OP))) b = Op##NAME(a, b); \
      QV_NEXT();                                                                \
    }
        QV_LEFT_ARITH(Add, +)
        QV_LEFT_ARITH(Sub, -)
        QV_LEFT_ARITH(Mul, *)
#undef QV_LEFT_ARITH
        QV_LOAD_ARITH(Add, +)
        QV_LOAD_ARITH(Sub, -)
        QV_LOAD_ARITH(Mul, *)
#undef QV_LOAD_ARITH
#define QV_LOAD_JUMP(NAME, OP)                                            \
  case Op::Load##NAME##Jmp:                                               \
    L_Load##NAME##Jmp : {                                                 \
      const Variant& x = QV_FUSED_X();                                    \
      Operands o;                                                         \
      const int kind = LoadFused(ip[-1], ip[-1].b, x, locals, consts, o); \
      if (!kind) {                                                        \
        PushCopy(sp++, x);                                                \
        QV_NEXT();                                                        \
      }                                                                   \
      if (kind == 3 ? o.da OP o.db : o.wa OP o.wb) {                      \
        ip += 2;                                                          \
        QV_NEXT();                                                        \
      }                                                                   \
      /* The JmpFalse two instructions on holds the target. */            \
      const int32_t target = ip[1].a;                                     \
      if (target < ip - code + 2) CheckTime();                            \
      ip = code + target;                                                 \
      QV_NEXT();                                                          \
    }
        QV_LOAD_JUMP(Eq, ==)
        QV_LOAD_JUMP(Ne, !=)
        QV_LOAD_JUMP(Lt, <)
        QV_LOAD_JUMP(Le, <=)
        QV_LOAD_JUMP(Gt, >)
        QV_LOAD_JUMP(Ge, >=)
#undef QV_LOAD_JUMP
        // The same on module variables, read as locals are: a slot that holds no variable
        // (a constant too) has the marker for its value, which no number check accepts and
        // IsPlain counts as owning. Then the LoadGlobal the instruction stands for runs as
        // compiled (a procedure of that name is called, Option Explicit is checked...).
#define QV_GLOBAL_X(x) const Variant* const x = &globals[ip[-1].a]->value
// Where a fused instruction stores: a local, or a module variable while it owns nothing.
// Releasing a module variable's object may run a Class_Terminate that assigns to the same
// variable, so that store keeps to the general path.
#define QV_STORE_TARGET(dst)              \
  Variant* dst = &locals[ip[-1].n];       \
  if (ip[-1].flags & kFusedStoreGlobal) { \
    dst = &globals[ip[-1].n]->value;      \
    if (!IsPlain(*dst)) [[unlikely]]      \
      goto L_LoadGlobal;                  \
  }
#define QV_COVERED() ((ip[-1].flags & kFusedGlobal) ? 1 : 0)
#define QV_LOAD_GLOBAL_ARITH(NAME, OP)                                                     \
  case Op::LoadGlobal##NAME:                                                               \
    L_LoadGlobal##NAME : {                                                                 \
      Operands o;                                                                          \
      QV_GLOBAL_X(x);                                                                      \
      if (const int kind = LoadFusedGlobal(ip[-1], *x, locals, consts, globals, o)) {      \
        PutResult<false>(*sp, kind, o, QV_WHOLE(OP), QV_REAL(OP));                         \
        ++sp;                                                                              \
        ip += 1 + QV_COVERED();                                                            \
        QV_NEXT();                                                                         \
      }                                                                                    \
      goto L_LoadGlobal;                                                                   \
    }                                                                                      \
  case Op::LoadGlobal##NAME##Op:                                                           \
    L_LoadGlobal##NAME##Op : {                                                             \
      Operands o;                                                                          \
      QV_GLOBAL_X(x);                                                                      \
      const int kind = LoadFusedGlobal(ip[-1], *x, locals, consts, globals, o);            \
      if (!kind) goto L_LoadGlobal;                                                        \
      /* The value has no side effects to order: it joins the one below as Add..Mul do. */ \
      const uint16_t outer = ip[-1].n;                                                     \
      ip += 2 + QV_COVERED();                                                              \
      f.ip = ip;                                                                           \
      Variant& y = *sp;                                                                    \
      PutResult<false>(y, kind, o, QV_WHOLE(OP), QV_REAL(OP));                             \
      Variant& left = sp[-1];                                                              \
      if (outer == 0   ? FastArith(left, y, QV_WHOLE(+), QV_REAL(+))                       \
          : outer == 1 ? FastArith(left, y, QV_WHOLE(-), QV_REAL(-))                       \
                       : FastArith(left, y, QV_WHOLE(*), QV_REAL(*))) {                    \
        new (&y) Variant();                                                                \
        QV_NEXT();                                                                         \
      }                                                                                    \
      ++sp;                                                                                \
      switch (outer) {                                                                     \
        case 0:                                                                            \
          goto L_Add;                                                                      \
        case 1:                                                                            \
          goto L_Sub;                                                                      \
        default:                                                                           \
          goto L_Mul;                                                                      \
      }                                                                                    \
    }                                                                                      \
  case Op::LoadGlobal##NAME##Store:                                                        \
    L_LoadGlobal##NAME##Store : {                                                          \
      Operands o;                                                                          \
      if ((ip[-1].flags & kFusedStoreGlobal) && ip[-1].n == ip[-1].a) {                    \
        /* s = s + k: a value that passes as an operand is a variable's number, so the */  \
        /* store has nothing to release. */                                                \
        Variant& v = globals[ip[-1].a]->value;                                             \
        if (const int kind = LoadFusedGlobal(ip[-1], v, locals, consts, globals, o)) {     \
          PutResult<false>(v, kind, o, QV_WHOLE(OP), QV_REAL(OP));                         \
          ip += 2 + QV_COVERED();                                                          \
          QV_NEXT();                                                                       \
        }                                                                                  \
        goto L_LoadGlobal;                                                                 \
      }                                                                                    \
      QV_GLOBAL_X(x);                                                                      \
      QV_STORE_TARGET(dst);                                                                \
      if (const int kind = LoadFusedGlobal(ip[-1], *x, locals, consts, globals, o)) {      \
        PutResult<true>(*dst, kind, o, QV_WHOLE(OP), QV_REAL(OP));                         \
        ip += 2 + QV_COVERED();                                                            \
        QV_NEXT();                                                                         \
      }                                                                                    \
      goto L_LoadGlobal;                                                                   \
    }                                                                                      \
  case Op::NAME##StoreGlobal:                                                              \
    L_##NAME##StoreGlobal : {                                                              \
      Variant& a = sp[-1];                                                                 \
      GlobalSlot& s = *globals[ip[-1].n];                                                  \
      Operands o;                                                                          \
      if (const int kind =                                                                 \
              IsPlain(s.value) ? LoadFused(ip[-1], ip[-1].b, a, locals, consts, o) : 0) {  \
        PutResult<true>(s.value, kind, o, QV_WHOLE(OP), QV_REAL(OP));                      \
        new (--sp) Variant();                                                              \
        ++ip;                                                                              \
        QV_NEXT();                                                                         \
      }                                                                                    \
      a = Op##NAME(a, (ip[-1].flags & kFusedLocal) ? locals[ip[-1].a] : consts[ip[-1].a]); \
      QV_NEXT();                                                                           \
    }
        QV_LOAD_GLOBAL_ARITH(Add, +)
        QV_LOAD_GLOBAL_ARITH(Sub, -)
        QV_LOAD_GLOBAL_ARITH(Mul, *)
#undef QV_LOAD_GLOBAL_ARITH
#define QV_LOAD_GLOBAL_JUMP(NAME, OP)                                           \
  case Op::LoadGlobal##NAME##Jmp:                                               \
    L_LoadGlobal##NAME##Jmp : {                                                 \
      Operands o;                                                               \
      QV_GLOBAL_X(x);                                                           \
      const int kind = LoadFusedGlobal(ip[-1], *x, locals, consts, globals, o); \
      if (!kind) goto L_LoadGlobal;                                             \
      const int covered = QV_COVERED();                                         \
      if (kind == 3 ? o.da OP o.db : o.wa OP o.wb) {                            \
        ip += 2 + covered;                                                      \
        QV_NEXT();                                                              \
      }                                                                         \
      /* The JmpFalse at the end of the sequence holds the target. */           \
      const int32_t target = ip[1 + covered].a;                                 \
      if (target < ip - code + 2 + covered) CheckTime();                        \
      ip = code + target;                                                       \
      QV_NEXT();                                                                \
    }
        QV_LOAD_GLOBAL_JUMP(Eq, ==)
        QV_LOAD_GLOBAL_JUMP(Ne, !=)
        QV_LOAD_GLOBAL_JUMP(Lt, <)
        QV_LOAD_GLOBAL_JUMP(Le, <=)
        QV_LOAD_GLOBAL_JUMP(Gt, >)
        QV_LOAD_GLOBAL_JUMP(Ge, >=)
#undef QV_LOAD_GLOBAL_JUMP
#undef QV_GLOBAL_X
#undef QV_COVERED
      case Op::LoadGlobalLeft:
      L_LoadGlobalLeft : {
        // Both operands are variables' values, so reading the left one here rather than first
        // changes nothing the script can see. The sum stays in registers, and goes straight
        // into the variable when the statement ends by storing it with one more operator.
        const Instr& right = ip[0];
        GlobalSlot& left_slot = *globals[ip[-1].a];
        const GlobalSlot& x_slot = *globals[right.a];
        assert(left_slot.consistent() && x_slot.consistent());
        // Each operand is read just before its operator, which keeps fewer values alive at once.
        const unsigned shape = ip[-1].n;
        Number xv, k, l;
        if (!NumberOf(x_slot.value, xv) || !OperandNumber(right, locals, consts, globals, k))
          goto L_LoadGlobal;
        const Number y = Compute(shape >> kLeftInner & 3, xv, k);
        if (!NumberOf(left_slot.value, l)) goto L_LoadGlobal;
        const Number sum = Compute(shape >> kLeftOuter & 3, l, y);
        const int32_t covered = ip[-1].b;
        if (const unsigned store = shape >> kLeftStore; store != kLeftNoStore) {
          const Instr& after = ip[covered];
          // Stored back to the left variable, which held a number (so it is a variable): no
          // value to release.
          GlobalSlot* target = &left_slot;
          bool plain = true;
          if (!(ip[-1].flags & kLeftStoresBack)) {
            target = globals[after.n];
            plain = IsPlain(target->value);
          }
          if (plain && OperandNumber(after, locals, consts, globals, k)) {
            PutNumber(target->value, FiniteNumber(Compute(store, sum, k)));
            ip += covered + 2;
            QV_NEXT();
          }
        }
        PutNumber(*sp++, FiniteNumber(sum));
        ip += covered;
        QV_NEXT();
      }
#undef QV_WHOLE
#undef QV_REAL
      case Op::AddPopStoreGlobal:
      L_AddPopStoreGlobal : {
        GlobalSlot& s = *globals[ip[-1].n];
        if (IsPlain(s.value) && PopSum(s.value, sp)) {
          ++ip;
          QV_NEXT();
        }
        goto L_Add;
      }
      case Op::LoadGlobalStore:
      L_LoadGlobalStore : {
        const Variant* x = &globals[ip[-1].a]->value;
        QV_STORE_TARGET(dst);
        if (IsPlain(*x) && IsPlain(*dst)) {
          CopyPlain(*dst, *x);
          ++ip;
          QV_NEXT();
        }
        goto L_LoadGlobal;
      }
#undef QV_STORE_TARGET
#undef QV_FUSED_X
      case Op::AddPopStore:
      L_AddPopStore : {
        if (PopSum(locals[ip[-1].n], sp)) {
          ++ip;
          QV_NEXT();
        }
        goto L_Add;
      }
      case Op::LoadStore:
      L_LoadStore : {
        const Variant& x = (ip[-1].flags & kFusedRef) ? *f.refs[ip[-1].a] : locals[ip[-1].a];
        Variant* dst = &locals[ip[-1].n];
        if (ip[-1].flags & kFusedStoreGlobal) {
          // A procedure's result handed to a module variable: only a plain variable slot
          // takes the short way; anything else runs the StoreGlobal that follows.
          dst = &globals[ip[-1].n]->value;
        }
        if (IsPlain(x) && IsPlain(*dst)) {
          CopyPlain(*dst, x);
          ++ip;
          QV_NEXT();
        }
        PushCopy(sp++, x);
        QV_NEXT();
      }
      // A module variable's value that owns nothing, stored with Let: a move; everything else
      // goes through the general store.
      L_StoreGlobal : {
        GlobalSlot& s = *globals[ip[-1].a];
        if (HoldsVariable(s.value) && !(ip[-1].flags & kSetFlag) && IsPlain(sp[-1])) {
          MoveInto(s.value, *--sp);
          QV_NEXT();
        }
        goto generic;
      }
    }
    QV_NEXT();
  }
#undef QV_NEXT
}

}  // namespace qv::vbs
