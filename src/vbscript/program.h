// What the compiler produces and the virtual machine runs: procedures with their bytecode,
// the module-level slots that link table entries point at, and the modules that own both.
#pragma once

#include <cassert>
#include <cstring>
#include <deque>
#include <memory>
#include <unordered_map>
#include <utility>
#include <vector>

#include "automation/object.h"
#include "vbscript/ast.h"
#include "vbscript/opcodes.h"
#include "vbscript/runtime.h"

namespace qv::vbs {

class Module;
class Vm;
struct ClassInfo;
struct GlobalSlot;

// A member access site with the member id it found last time, keyed by the object's
// MemberCacheKey.
struct MemberSite {
  String name;
  String subject;  // the variable the member is taken from, when it is a plain name
  const void* key = nullptr;
  DispId id = kDispIdUnknown;
};

struct Proc {
  String name;
  ProcKind kind = ProcKind::Sub;
  bool is_public = true;
  bool is_top_level = false;
  bool option_explicit = false;
  uint16_t nparams = 0;
  uint16_t nlocals = 0;  // parameters, the result, declared and hidden locals
  int32_t result_slot = -1;
  uint32_t max_stack = 0;
  std::vector<uint8_t> byref;       // per parameter
  std::vector<String> local_names;  // per local; empty for hidden ones
  std::vector<Instr> code;
  std::vector<int32_t> lines;       // per instruction: line of its statement
  std::vector<int32_t> columns;     // per instruction: column of its statement
  std::vector<uint8_t> stmt_start;  // per instruction: first of a statement
  std::vector<Variant> consts;
  std::vector<GlobalSlot*> globals;  // the link table
  mutable std::vector<MemberSite> sites;
  Module* module = nullptr;
  ClassInfo* cls = nullptr;
  String source;  // the code it came from, for the text of an error's line
  int32_t line_offset = 0;
  // A procedure that calls Execute keeps the names its snippets create in this hidden local;
  // a snippet lists the names it created (and the locals holding them) for its caller to keep.
  int32_t scope_slot = -1;
  std::vector<std::pair<String, int32_t>> created_names;

  bool has_return_value() const {
    return kind == ProcKind::Function || kind == ProcKind::PropertyGet;
  }
};

enum class SlotKind : uint8_t {
  Undefined,
  Variable,
  Constant,
  Procedure,
  Class,
  Builtin,
  Intrinsic,
  Alias,       // a name of the global module, seen from a named module
  HostObject,  // an object added by the host
  HostMember,  // a member of an object added with its members at global level
};

enum class Intrinsic : uint8_t {
  Eval,
  Execute,
  ExecuteGlobal,
  GetRef,
  CreateObject,
  GetObject,
  Err,
};

// The value of a module slot that holds no variable: a type no value has, above Array. The
// dispatch loop's number checks reject it and IsPlain counts it as owning, so its fast paths
// take a module variable's value as they take a local's, asking only the value's type, and
// never read the marker as a number nor store over it; what they turn down goes to the general
// paths, which look at the slot's kind.
inline constexpr VarType kNoVariable = static_cast<VarType>(0x4000);
[[gnu::always_inline]] inline bool HoldsVariable(const Variant& v) {
  return v.type() != kNoVariable;
}
inline Variant NoVariable() {
  Variant v;
  auto* bytes = reinterpret_cast<unsigned char*>(&v);
  std::memcpy(bytes, &kNoVariable, sizeof kNoVariable);
  return v;
}

struct GlobalSlot {
  String name;
  SlotKind kind = SlotKind::Undefined;
  // A variable's value, and kNoVariable for every other kind: the two always agree (every
  // change of kind goes through SetKind, MakeVariable or Module::Redefine, which keep them so).
  Variant value = NoVariable();
  Variant fixed;  // a constant's value, the object of a host object or of a host member
  const Proc* proc = nullptr;
  ClassInfo* cls = nullptr;
  const BuiltinFunction* builtin = nullptr;
  Intrinsic intrinsic = Intrinsic::Eval;
  GlobalSlot* alias = nullptr;
  DispId member = kDispIdUnknown;

  bool consistent() const {
    const bool has_fixed =
        kind == SlotKind::Constant || kind == SlotKind::HostObject || kind == SlotKind::HostMember;
    return (kind == SlotKind::Variable) == HoldsVariable(value) && (has_fixed || fixed.is_empty());
  }
  // A name that held no variable becomes another that holds none (a name resolved).
  void SetKind(SlotKind to) {
    assert(kind != SlotKind::Variable && to != SlotKind::Variable && consistent());
    kind = to;
  }
  // A name that held no variable becomes one, Empty.
  void MakeVariable() {
    assert(kind != SlotKind::Variable && consistent());
    kind = SlotKind::Variable;
    value = Variant();
  }
};

// One member of a script class: a field, a Sub/Function, or a property's accessors.
struct ClassMember {
  String name;
  bool is_public = true;
  int32_t field = -1;
  const Proc* method = nullptr;
  const Proc* get = nullptr;
  const Proc* let = nullptr;
  const Proc* set = nullptr;
};

struct FieldInit {
  bool is_array = false;
  std::vector<int32_t> uppers;
};

struct ClassInfo : RefCounted {
  String name;
  std::vector<ClassMember> members;
  std::unordered_map<String, int32_t, NoCaseHash, NoCaseEqual> index;
  std::vector<FieldInit> fields;
  int32_t default_member = -1;
  const Proc* initialize = nullptr;
  const Proc* terminate = nullptr;
  Ref<Module> module;

  int32_t Find(StringView n) const {
    const auto it = index.find(n);
    return it == index.end() ? -1 : it->second;
  }
};

// A namespace of code: its module-level slots, every procedure compiled into it (kept until
// the module ends, so a running procedure never loses its code when redefined), its classes.
class Module : public RefCounted {
 public:
  // `global` is the engine's global module, whose names a named module sees; null for the
  // global module itself.
  Module(String name, Vm* vm, Module* global);
  ~Module() override;

  const String& name() const { return name_; }
  Vm* vm() const { return vm_.get(); }
  Module* global() const { return global_.get(); }

  // The slot of a name, made (undefined) on first use.
  GlobalSlot* Slot(StringView name);
  GlobalSlot* FindSlot(StringView name) const;

  Proc* AddProc(std::unique_ptr<Proc> proc);
  void AddClass(Ref<ClassInfo> cls) { classes_.push_back(std::move(cls)); }
  // Makes a procedure the current one of its name, replacing an earlier definition.
  void Define(const Proc* proc);
  // Gives a slot of this module any other kind: a new variable starts Empty, every other kind
  // holds the marker. Returns what a variable held, for the caller to release once the slot is
  // in order, as its release may run a Class_Terminate that uses the name. A variable that
  // stops being one may still be an argument passed ByRef to a running procedure: that
  // reference becomes the argument's own copy, so that nothing reads the marker as a value or
  // writes over it.
  [[nodiscard]] Variant Redefine(GlobalSlot& slot, SlotKind to);
  const std::vector<const Proc*>& procedures() const { return procedures_; }

  // Drops values and classes, breaking the cycles between objects and the module.
  void Clear();
  // Drops values and definitions but keeps the compiled procedures and classes, so that code
  // compiled into the module earlier can be linked again (an engine reused run after run).
  void ClearDefinitions();

 private:
  String name_;
  Ref<Vm> vm_;
  Ref<Module> global_;
  std::deque<GlobalSlot> slots_;
  std::unordered_map<String, size_t, NoCaseHash, NoCaseEqual> index_;
  std::vector<std::unique_ptr<Proc>> procs_;
  std::vector<Ref<ClassInfo>> classes_;
  std::vector<const Proc*> procedures_;
};

}  // namespace qv::vbs
