// Modules: their slots by name and the procedures and classes compiled into them.
#include "vbscript/program.h"

#include "vbscript/vm.h"

namespace qv::vbs {

Module::Module(String name, Vm* vm, Module* global)
    : name_(std::move(name)), vm_(vm), global_(global) {}

Module::~Module() = default;

GlobalSlot* Module::Slot(StringView name) {
  const auto it = index_.find(name);
  if (it != index_.end()) return &slots_[it->second];
  slots_.emplace_back();
  slots_.back().name = String(name);
  index_.emplace(slots_.back().name, slots_.size() - 1);
  return &slots_.back();
}

GlobalSlot* Module::FindSlot(StringView name) const {
  const auto it = index_.find(name);
  return it == index_.end() ? nullptr : const_cast<GlobalSlot*>(&slots_[it->second]);
}

Proc* Module::AddProc(std::unique_ptr<Proc> proc) {
  procs_.push_back(std::move(proc));
  return procs_.back().get();
}

void Module::Define(const Proc* proc) {
  GlobalSlot* slot = Slot(proc->name);
  slot->kind = SlotKind::Procedure;
  slot->proc = proc;
  slot->value.Clear();
  for (auto& p : procedures_) {
    if (EqualsNoCase(p->name, proc->name)) {
      p = proc;
      return;
    }
  }
  procedures_.push_back(proc);
}

void Module::Clear() {
  ClearDefinitions();
  // Instances a host still holds keep their class, and through it this module's code.
  std::vector<Ref<ClassInfo>> classes = std::move(classes_);
  classes_.clear();
}

void Module::ClearDefinitions() {
  // Values go first, while classes and code are still there for Class_Terminate. The script's
  // variables go before host objects such as WScript, which Class_Terminate may still use.
  for (const bool variables : {true, false}) {
    for (auto& slot : slots_) {
      if ((slot.kind == SlotKind::Variable) != variables) continue;
      Variant gone = std::move(slot.value);
      slot.value.Clear();
      gone.Clear();
    }
  }
  for (auto& slot : slots_) {
    slot.kind = SlotKind::Undefined;
    slot.proc = nullptr;
    slot.cls = nullptr;
    slot.alias = nullptr;
  }
  procedures_.clear();
}

}  // namespace qv::vbs
