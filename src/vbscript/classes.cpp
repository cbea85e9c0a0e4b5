// Script class instances: member ids are the class's member numbers plus one (0 is the
// default member), fields live in the instance, code runs in the class's virtual machine.
#include "vbscript/classes.h"

#include "automation/convert.h"
#include "automation/safe_array.h"
#include "vbscript/vm.h"

namespace qv::vbs {

ScriptObject::ScriptObject(ClassInfo& cls) : cls_(&cls), fields_(cls.fields.size()) {
  for (size_t i = 0; i < cls.fields.size(); ++i) {
    const FieldInit& init = cls.fields[i];
    if (!init.is_array) continue;
    std::vector<ArrayBound> bounds;
    for (int32_t upper : init.uppers)
      bounds.push_back(ArrayBound{0, int64_t{upper} + 1});
    Ref<SafeArray> array = MakeRef<SafeArray>(VarType::Variant, bounds);
    array->set_fixed(!bounds.empty());
    fields_[i] = Variant(std::move(array));
  }
}

Ref<ScriptObject> ScriptObject::Create(ClassInfo& cls) {
  return Ref<ScriptObject>(new ScriptObject(cls));
}

DispId ScriptObject::GetIdOfName(StringView name) {
  const int32_t m = cls_->Find(name);
  if (m < 0 || !cls_->members[m].is_public) return kDispIdUnknown;
  return m + 1;
}

Variant ScriptObject::Invoke(DispId id, uint16_t flags, Args args) {
  int32_t member = id - 1;
  if (id == kDispIdValue) {
    member = cls_->default_member;
    if (member < 0) throw Error(kErrNotSupported);
  }
  if (member < 0 || static_cast<size_t>(member) >= cls_->members.size())
    throw Error(kErrNotSupported);
  return InvokeMember(member, flags, args);
}

Variant ScriptObject::InvokeMember(int32_t member, uint16_t flags, Args args) {
  const ClassMember& m = cls_->members[member];
  Module* module = cls_->module.get();
  if (!module) throw Error(kErrObjectRequired);
  Vm& vm = *module->vm();
  Ref<ScriptObject> keep(this);
  const bool put = flags & (kInvokeLet | kInvokeSet);
  if (m.field >= 0) {
    Variant& field = fields_[m.field];
    if (!put) {
      if (args.empty()) {
        // A variable is read, not called: `obj.Field()` or `obj.Field` as a statement.
        if (!(flags & kInvokeGet)) throw Error(kErrInvalidCall);
        return field;
      }
      if (field.is_array() || field.is_object()) {
        const Variant target = field;
        if (target.is_object()) {
          return target.as_object()->Invoke(kDispIdValue, flags, args);
        }
        std::vector<int32_t> idx;
        for (const Variant& a : args)
          idx.push_back(ToLong(a));
        return target.as_array()->At(idx);
      }
      // From outside, indexing a field that holds neither an array nor an object is an
      // unsupported use of the member, not a type mismatch.
      throw Error(kErrNotSupported);
    }
    if (args.empty()) throw Error(kErrWrongArgCount);
    Variant value = args.back();
    if (flags & kInvokeSet) {
      if (!value.is_object()) throw Error(kErrObjectRequired);
    } else if (value.is_object()) {
      value = ValueOf(value);
    }
    if (args.size() == 1) {
      field = std::move(value);
      return Variant();
    }
    if (!field.is_array()) throw Error(kErrNotSupported);
    std::vector<int32_t> idx;
    for (size_t i = 0; i + 1 < args.size(); ++i)
      idx.push_back(ToLong(args[i]));
    field.mutable_array()->At(idx) = std::move(value);
    return Variant();
  }
  if (put) {
    // Set needs a Property Set; a Property Let alone does not take one.
    const Proc* accessor = (flags & kInvokeSet) ? m.set : (m.let ? m.let : m.set);
    if (!accessor) throw Error(kErrNotSupported);
    vm.Call(*accessor, this, args);
    return Variant();
  }
  if (m.method) return vm.Call(*m.method, this, args);
  if (m.get) return vm.Call(*m.get, this, args);
  throw Error(kErrNotSupported);
}

void ScriptObject::Destroy() noexcept {
  Module* module = cls_->module.get();
  if (!terminated_ && cls_->terminate && module) {
    terminated_ = true;
    AddRef();
    module->vm()->Terminate(*this);
    Release();  // ends the object, unless Class_Terminate stored a reference somewhere
    return;
  }
  delete this;
}

Variant ProcRef::Invoke(DispId id, uint16_t flags, Args args) {
  (void)flags;
  if (id != kDispIdValue) throw Error(kErrNotSupported);
  return module_->vm()->Call(*proc_, nullptr, args);
}

}  // namespace qv::vbs
