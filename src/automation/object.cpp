// Default behaviour of objects and enumerations, and the by-name conveniences.
#include "automation/object.h"

#include <vector>

namespace qv {

void Enumerator::Skip(uint32_t count) {
  Variant ignored;
  while (count-- && Next(ignored)) {
  }
}

void Enumerator::Reset() {
  throw Error(445);
}

Ref<Enumerator> Enumerator::Clone() {
  throw Error(445);
}

Ref<Enumerator> Object::NewEnum() {
  throw Error(kErrNotACollection);
}

DispId Object::RequireId(StringView name) {
  const DispId id = GetIdOfName(name);
  if (id == kDispIdUnknown) throw Error(kErrNotSupported);
  return id;
}

Variant Object::Get(StringView name, std::initializer_list<Variant> args) {
  std::vector<Variant> list(args);
  return Invoke(RequireId(name), kInvokeGet | kInvokeMethod, list);
}

void Object::Let(StringView name, const Variant& value, std::initializer_list<Variant> args) {
  std::vector<Variant> list(args);
  list.push_back(value);
  Invoke(RequireId(name), kInvokeLet, list);
}

void Object::Set(StringView name, const Variant& value, std::initializer_list<Variant> args) {
  std::vector<Variant> list(args);
  list.push_back(value);
  Invoke(RequireId(name), kInvokeSet, list);
}

Variant Object::Call(StringView name, std::initializer_list<Variant> args) {
  std::vector<Variant> list(args);
  return Invoke(RequireId(name), kInvokeMethod | kInvokeGet, list);
}

void CheckArgCount(Args args, size_t min, size_t max) {
  if (args.size() < min || args.size() > max) throw Error(kErrWrongArgCount);
}

}  // namespace qv
