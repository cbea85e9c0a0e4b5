// Modules: their slots by name and the procedures and classes compiled into them.
#include "vbscript/program.h"

#include <cassert>
#include <utility>

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

Variant Module::Redefine(GlobalSlot& slot, SlotKind to) {
  assert(slot.consistent());
  const bool was = slot.kind == SlotKind::Variable;
  slot.kind = to;
  if (!was) {
    if (to == SlotKind::Variable) slot.value = Variant();
    // A constant's value or a host object, which the name no longer stands for.
    return std::exchange(slot.fixed, Variant());
  }
  if (to == SlotKind::Variable) return Variant();
  if (vm_) vm_->DetachRefs(slot.value);
  return std::exchange(slot.value, NoVariable());
}

void Module::Define(const Proc* proc) {
  GlobalSlot* slot = Slot(proc->name);
  const Variant gone = Redefine(*slot, SlotKind::Procedure);
  slot->proc = proc;
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
  // By index: a Class_Terminate may add a slot, and a deque's iterators do not survive that.
  for (size_t i = 0; i < slots_.size(); ++i) {
    GlobalSlot& slot = slots_[i];
    if (slot.kind == SlotKind::Variable) {
      const Variant gone = std::exchange(slot.value, Variant());
    }
  }
  for (size_t i = 0; i < slots_.size(); ++i) {
    const Variant gone = std::move(slots_[i].fixed);
  }
  for (size_t i = 0; i < slots_.size(); ++i) {
    GlobalSlot& slot = slots_[i];
    const Variant gone = Redefine(slot, SlotKind::Undefined);
    slot.proc = nullptr;
    slot.cls = nullptr;
    slot.alias = nullptr;
  }
  procedures_.clear();
}

}  // namespace qv::vbs
