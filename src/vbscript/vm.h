// The virtual machine: a value stack shared by all frames, a dispatch loop per script call,
// VBScript's Err state, On Error Resume Next, the time limit and the guard against running
// out of stack. Its parts: vm.cpp (calls and the dispatch loop), err.cpp (Err and error
// handling), eval.cpp (Eval and Execute), indexing.cpp (arrays, ReDim), values.h (value moves
// and inline arithmetic).
#pragma once

#include <chrono>
#include <memory>
#include <vector>

#include "vbscript/classes.h"
#include "vbscript/program.h"
#include "vbscript/runtime.h"

namespace qv::vbs {

// What VBScript's Err object holds.
struct ErrState {
  int32_t number = 0;
  String description;
  String source;
  String help_file;
  int32_t help_context = 0;
  void Clear() { *this = ErrState(); }
};

// Where the last error that left the script happened (the innermost script frame).
struct ErrorSite {
  bool set = false;
  int32_t line = 0;
  int32_t column = 0;
  String text;     // the source line
  String code;     // the whole text that line belongs to, as it was added
  String subject;  // for "Object required": the variable that held no object
};

class Vm : public RefCounted {
 public:
  Vm();
  ~Vm() override;

  // Runs a procedure with arguments; ByRef parameters write back into `args`.
  Variant Call(const Proc& proc, ScriptObject* me, Args args);
  // Runs the module-level code of a unit.
  void RunTop(const Proc& top);
  // Eval of an expression and Execute of statements from the host, at module level.
  Variant EvalIn(Module& module, StringView expression);
  void ExecuteIn(Module& module, StringView code, bool global);

  // Brackets an entry from the host: starts the clock for the time limit on the outermost
  // entry, clears the error site, and makes the engine's locale the thread's until it ends.
  class Entry {
   public:
    explicit Entry(Vm& vm);
    ~Entry();

   private:
    Vm& vm_;
    LocaleScope locale_;
  };

  ErrState& err() { return err_; }
  void MarkRaisedHelp() { help_from_raise_ = true; }
  Object* err_object();
  ErrorSite& error_site() { return site_; }
  RuntimeState& runtime() { return runtime_; }
  const RuntimeState& runtime() const { return runtime_; }
  // A new limit while a call runs counts from the start of the outermost entry, as a page's
  // Server.ScriptTimeout counts from the start of the page.
  void set_timeout(int32_t ms) {
    timeout_ms_ = ms;
    if (entries_ == 0) return;
    has_deadline_ = ms > 0;
    deadline_ = started_ + std::chrono::milliseconds(ms);
  }
  int32_t timeout() const { return timeout_ms_; }
  void set_registry(const ClassRegistry* registry) { registry_ = registry; }
  void set_global_module(Module* module) { global_ = module; }
  Module* global_module() const { return global_; }
  // Objects whose members scripts see as global names.
  std::vector<Ref<Object>>& member_objects() { return member_objects_; }

  // Resolves an undefined or aliased slot to what the name means now.
  GlobalSlot& Resolve(GlobalSlot& slot, const Proc& proc);
  // Instantiates a script class, running Class_Initialize.
  Ref<ScriptObject> NewInstance(ClassInfo& cls);
  // Runs Class_Terminate of an instance that is going away; swallows its errors.
  void Terminate(ScriptObject& object) noexcept;
  // Unlocks the arrays whose elements were passed ByRef from these stack slots.
  void ReleaseLocks(Variant* from, Variant* to);
  // Makes every running reference to a variable (a ByRef argument) the argument's own copy.
  void DetachRefs(const Variant& variable);

 private:
  struct Frame {
    const Proc* proc;
    Variant* locals;
    Variant** refs;
    ScriptObject* me;
    bool resume_next = false;
    const Instr* ip = nullptr;  // the instruction after the one running
  };

  // Clears a callee's slots and restores the machine's top when the call ends, thrown or not.
  struct FrameGuard {
    FrameGuard(Vm& vm, Variant* base, Variant* end);
    ~FrameGuard() {
      if (!done) Unwind();
    }
    FrameGuard(const FrameGuard&) = delete;
    FrameGuard& operator=(const FrameGuard&) = delete;
    // The ordinary end of a call, inline: `end` has been narrowed to the slots still in use.
    void Finish();
    [[gnu::noinline]] void Unwind();

    Vm& vm;
    Variant* base;
    Variant* end;
    Variant* saved_top;
    bool done = false;
  };

  // Runs a procedure whose arguments stand at base; leaves its result (Empty for a Sub) at
  // base[0] and every other slot from base on Empty.
  void CallInPlace(const Proc& proc, ScriptObject* me, Variant* base, uint32_t argc, uint32_t mask);
  Variant CallOnStack(const Proc& proc, ScriptObject* me, Variant* base, uint32_t argc,
                      uint32_t mask);
  void Run(Frame& f);
  // Run for the callers off the hot call path (snippets), which can't inline it.
  void RunOutOfLine(Frame& f);
  [[gnu::noinline]] void Execute(Frame& f);
  size_t HandleError(Frame& f, size_t pc, const Error& e);
  void RecordSite(const Frame& f, size_t pc, int32_t number);
  void CheckStack(const Proc& proc, Variant* base);
  [[gnu::always_inline]] void CheckTime() {
    if (--budget_ <= 0) CheckClock();
  }
  void CheckClock();

  Variant& VarRef(Frame& f, uint8_t kind, int32_t slot);
  // The target of `name(i) = v`: like VarRef, but an object the host added may stand there,
  // since the store goes to its default member and leaves the name as it is.
  Variant& IndexTarget(Frame& f, uint8_t kind, int32_t slot);
  Variant LoadVar(Frame& f, uint8_t kind, int32_t slot);
  void StoreVar(Frame& f, uint8_t kind, int32_t slot, Variant value, bool is_set);
  Variant LoadGlobalSlot(Frame& f, GlobalSlot& slot);
  void StoreGlobalSlot(Frame& f, GlobalSlot& slot, Variant value, bool is_set);
  Variant CallSlot(Frame& f, GlobalSlot& slot, Variant* args, uint32_t argc, uint32_t mask,
                   bool want);
  Variant CallIntrinsic(Frame& f, Intrinsic which, Args args, bool want);
  Variant EvalSnippet(Frame& f, Args args);
  void ExecuteSnippet(Frame& f, Args args, bool global);
  Variant CallBuiltin(const BuiltinFunction& fn, Args args);
  Variant CallMember(Frame& f, const Instr& in, Variant* base);
  Variant CallMethod(Frame& f, int32_t member, Variant* args, uint32_t argc, uint32_t mask,
                     bool want);
  Variant ApplyIndex(const Variant& target, Args args, bool want);
  void StoreIndexed(Variant& target, Args indexes, Variant value, bool is_set);
  void DimArray(Variant& target, Args bounds);
  void ReDimArray(Variant& target, Args bounds, bool preserve);
  void EraseArray(Variant& target);
  void WriteBack(Variant* args, uint32_t argc, uint32_t mask);
  Variant NewObject(Frame& f, GlobalSlot& slot);
  Variant RunSnippet(Frame& caller, StringView code, bool expression, bool global);
  // A name Execute created in the frame's procedure call, or null.
  static Variant* ScopeName(const Frame& f, StringView name);

  Variant* stack_ = nullptr;
  Variant** refs_ = nullptr;
  SafeArray** locks_ = nullptr;  // arrays locked while an element is passed ByRef
  size_t active_locks_ = 0;
  size_t capacity_ = 0;
  Variant* top_ = nullptr;  // first free slot above every running frame
  int depth_ = 0;
  const char* stack_limit_ = nullptr;

  ErrState err_;
  // Set by Err.Raise, whose help file and context outlive the throw; any other error caught by
  // On Error Resume Next clears them.
  bool help_from_raise_ = false;
  Ref<Object> err_object_;
  ErrorSite site_;
  RuntimeState runtime_;
  int32_t timeout_ms_ = -1;
  std::chrono::steady_clock::time_point started_;
  std::chrono::steady_clock::time_point deadline_;
  bool has_deadline_ = false;
  int32_t budget_ = 0;
  int entries_ = 0;
  const ClassRegistry* registry_ = nullptr;
  Module* global_ = nullptr;
  std::vector<Ref<Object>> member_objects_;
};

}  // namespace qv::vbs
