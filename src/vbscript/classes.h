// Instances of script classes as objects that scripts and hosts see: public members by name,
// the default member, and Class_Terminate run the moment the last reference goes.
#pragma once

#include <vector>

#include "vbscript/program.h"

namespace qv::vbs {

class ScriptObject : public Object {
 public:
  // Makes the instance, its fields and arrays; Class_Initialize is run by Create.
  static Ref<ScriptObject> Create(ClassInfo& cls);

  String TypeName() const override { return cls_->name; }
  DispId GetIdOfName(StringView name) override;
  Variant Invoke(DispId id, uint16_t flags, Args args) override;
  const void* MemberCacheKey() const noexcept override { return cls_.get(); }

  // Uses a member from inside the class, where private members are visible too.
  Variant InvokeMember(int32_t member, uint16_t flags, Args args);

  ClassInfo& cls() const { return *cls_; }
  std::vector<Variant>& fields() { return fields_; }

 protected:
  void Destroy() noexcept override;

 private:
  explicit ScriptObject(ClassInfo& cls);
  Ref<ClassInfo> cls_;
  std::vector<Variant> fields_;
  bool terminated_ = false;
};

// The object GetRef makes: calling its default member runs the procedure.
class ProcRef : public Object {
 public:
  ProcRef(Module& module, const Proc& proc) : module_(&module), proc_(&proc) {}
  String TypeName() const override { return u"Object"; }
  DispId GetIdOfName(StringView) override { return kDispIdUnknown; }
  Variant Invoke(DispId id, uint16_t flags, Args args) override;

 private:
  Ref<Module> module_;
  const Proc* proc_;
};

}  // namespace qv::vbs
