// Reference handling of shared payloads and the type queries of Variant.
#include "automation/variant.h"

#include "automation/object.h"
#include "automation/safe_array.h"

namespace qv {

Variant::Variant(Object* object) noexcept : type_(VarType::Object) {
  u_.i64 = 0;
  u_.obj = object;
  if (object) object->AddRef();
}

Variant::Variant(Ref<SafeArray> array) noexcept : type_(VarType::Array) {
  u_.i64 = 0;
  u_.arr = array.Detach();
  if (!u_.arr) type_ = VarType::Empty;
}

void Variant::CopyShared(const Variant& other) noexcept {
  switch (type_) {
    case VarType::String:
      new (&u_.s) String(other.u_.s);
      break;
    case VarType::Object:
      if (u_.obj) u_.obj->AddRef();
      break;
    case VarType::Array:
      u_.arr->AddRef();
      break;
    default:
      break;
  }
}

void Variant::ReleaseShared() noexcept {
  switch (type_) {
    case VarType::String:
      u_.s.~String();
      break;
    case VarType::Object:
      if (u_.obj) u_.obj->Release();
      break;
    case VarType::Array:
      u_.arr->Release();
      break;
    default:
      break;
  }
}

uint16_t Variant::VarTypeCode() const noexcept {
  if (type_ != VarType::Array) return static_cast<uint16_t>(type_);
  return static_cast<uint16_t>(VarType::Array) | static_cast<uint16_t>(u_.arr->element_type());
}

bool Variant::is_numeric_type() const noexcept {
  switch (type_) {
    case VarType::Integer:
    case VarType::Long:
    case VarType::Single:
    case VarType::Double:
    case VarType::Currency:
    case VarType::Date:
    case VarType::Boolean:
    case VarType::Byte:
      return true;
    default:
      return false;
  }
}

SafeArray* Variant::mutable_array() {
  if (u_.arr->RefCount() > 1) {
    Ref<SafeArray> copy = u_.arr->Clone();
    copy->set_fixed(u_.arr->fixed());
    u_.arr->Release();
    u_.arr = copy.Detach();
  }
  return u_.arr;
}

}  // namespace qv
