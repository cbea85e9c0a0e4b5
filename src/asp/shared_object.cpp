// A view keeps its own count on the object it shows (the instance itself, or an object that
// came out of it), taken and dropped under the instance's lock like every other use.
#include "asp/shared_object.h"

#include "asp/state_store.h"

namespace qv::asp {
namespace {

// A copy of a value that shares nothing with the engine it came from.
Variant Detached(const Variant& value) {
  return StoredValue::From(value, false).ToVariant();
}

class SharedView : public Object, public RequestScoped {
 public:
  // Called under the instance's lock.
  SharedView(std::shared_ptr<SharedInstance> instance, Object* target)
      : instance_(std::move(instance)), target_(target) {
    target_->AddRef();
  }
  ~SharedView() override {
    std::lock_guard lock(instance_->mutex);
    target_->Release();
  }

  String TypeName() const override {
    std::lock_guard lock(instance_->mutex);
    return String(target_->TypeName().view());
  }
  DispId GetIdOfName(StringView name) override {
    std::lock_guard lock(instance_->mutex);
    return target_->GetIdOfName(name);
  }
  Variant Invoke(DispId id, uint16_t flags, Args args) override {
    std::vector<Variant> outs(args.size());
    Variant out;
    {
      // Whatever touched the instance dies before the lock is let go.
      std::lock_guard lock(instance_->mutex);
      std::vector<Variant> copies;
      copies.reserve(args.size());
      for (const Variant& a : args)
        copies.push_back(Detached(a));
      const Variant result = target_->Invoke(id, flags, copies);
      // What a call hands back through its arguments comes back as copies too.
      for (size_t i = 0; i < args.size(); ++i)
        outs[i] = Out(copies[i]);
      out = Out(result);
    }
    for (size_t i = 0; i < args.size(); ++i)
      args[i] = std::move(outs[i]);
    return out;
  }
  Ref<Enumerator> NewEnum() override;

  // A value leaving the instance, under its lock.
  Variant Out(const Variant& value) {
    if (value.is_object() && value.as_object())
      return Variant(Ref<Object>(MakeRef<SharedView>(instance_, value.as_object())));
    if (value.is_array() || value.is_string()) return Detached(value);
    return value;
  }
  const std::shared_ptr<SharedInstance>& instance() const { return instance_; }

 private:
  std::shared_ptr<SharedInstance> instance_;
  Object* target_;
};

class SharedEnumerator : public Enumerator {
 public:
  // Called under the instance's lock.
  SharedEnumerator(Ref<SharedView> view, Ref<Enumerator> inner)
      : view_(std::move(view)), inner_(inner.get()) {
    inner_->AddRef();
  }
  ~SharedEnumerator() override {
    std::lock_guard lock(view_->instance()->mutex);
    inner_->Release();
  }
  bool Next(Variant& item) override {
    Variant out;
    {
      std::lock_guard lock(view_->instance()->mutex);
      Variant next;
      if (!inner_->Next(next)) return false;
      out = view_->Out(next);
    }
    item = std::move(out);
    return true;
  }
  void Reset() override {
    std::lock_guard lock(view_->instance()->mutex);
    inner_->Reset();
  }

 private:
  Ref<SharedView> view_;
  Enumerator* inner_;
};

Ref<Enumerator> SharedView::NewEnum() {
  std::lock_guard lock(instance_->mutex);
  Ref<Enumerator> inner = target_->NewEnum();
  auto out = MakeRef<SharedEnumerator>(Ref<SharedView>(this), inner);
  // The inner enumerator's count drops here, under the lock; the wrapper holds its own.
  inner = nullptr;
  return out;
}

}  // namespace

SharedInstance::~SharedInstance() = default;

Ref<Object> NewSharedView(std::shared_ptr<SharedInstance> instance) {
  std::lock_guard lock(instance->mutex);
  Object* target = instance->object.get();
  return MakeRef<SharedView>(std::move(instance), target);
}

}  // namespace qv::asp
