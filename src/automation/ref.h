// Intrusive reference counting for objects that scripts and the model share. The count is
// plain (the engine runs on one thread), and releasing the last reference ends the object at
// once, so end-of-life work such as a class's Class_Terminate runs deterministically.
#pragma once

#include <cstdint>
#include <utility>

namespace qv {

class RefCounted {
 public:
  RefCounted() = default;
  RefCounted(const RefCounted&) = delete;
  RefCounted& operator=(const RefCounted&) = delete;

  void AddRef() const noexcept { ++refs_; }
  void Release() const noexcept {
    if (--refs_ == 0) const_cast<RefCounted*>(this)->Destroy();
  }
  uint32_t RefCount() const noexcept { return refs_; }

 protected:
  virtual ~RefCounted() = default;
  // Called when the last reference goes. An override may run end-of-life work first, but must
  // not let an exception escape: it runs inside destructors.
  virtual void Destroy() noexcept { delete this; }

 private:
  mutable uint32_t refs_ = 0;
};

template <class T>
class Ref {
 public:
  Ref() noexcept = default;
  Ref(std::nullptr_t) noexcept {}  // NOLINT(google-explicit-constructor)
  Ref(T* p) noexcept : p_(p) {     // NOLINT(google-explicit-constructor)
    if (p_) p_->AddRef();
  }
  Ref(const Ref& o) noexcept : Ref(o.p_) {}
  Ref(Ref&& o) noexcept : p_(std::exchange(o.p_, nullptr)) {}
  template <class U>
  Ref(const Ref<U>& o) noexcept : Ref(o.get()) {}  // NOLINT(google-explicit-constructor)
  template <class U>
  Ref(Ref<U>&& o) noexcept : p_(o.Detach()) {}  // NOLINT(google-explicit-constructor)
  ~Ref() {
    if (p_) p_->Release();
  }
  Ref& operator=(const Ref& o) noexcept {
    Ref(o).swap(*this);
    return *this;
  }
  Ref& operator=(Ref&& o) noexcept {
    Ref(std::move(o)).swap(*this);
    return *this;
  }

  T* get() const noexcept { return p_; }
  T* operator->() const noexcept { return p_; }
  T& operator*() const noexcept { return *p_; }
  explicit operator bool() const noexcept { return p_ != nullptr; }
  void swap(Ref& o) noexcept { std::swap(p_, o.p_); }
  void reset() noexcept { Ref().swap(*this); }
  // Hands over the reference without releasing it.
  T* Detach() noexcept { return std::exchange(p_, nullptr); }

  friend bool operator==(const Ref& a, const Ref& b) noexcept { return a.p_ == b.p_; }

 private:
  T* p_ = nullptr;
};

template <class T, class... Args>
Ref<T> MakeRef(Args&&... args) {
  return Ref<T>(new T(std::forward<Args>(args)...));
}

}  // namespace qv
