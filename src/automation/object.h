// The object interface that scripts and hosts see: members found by name without regard to
// case, a member id that a call site may cache, property get/let/set with arguments, method
// calls, a default member (id 0) and enumeration for For Each.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <span>

#include "automation/error.h"
#include "automation/ref.h"
#include "automation/string.h"
#include "automation/variant.h"

namespace qv {

using DispId = int32_t;
inline constexpr DispId kDispIdValue = 0;  // the default member
inline constexpr DispId kDispIdUnknown = -1;
inline constexpr DispId kDispIdNewEnum = -4;

// How a member is used. A script's `x.Name` and `x.Name(a)` as values ask for Method|Get;
// a statement call asks for Method; `x.Name = v` is Let and `Set x.Name = o` is Set.
enum InvokeFlags : uint16_t {
  kInvokeMethod = 1,
  kInvokeGet = 2,
  kInvokeLet = 4,
  kInvokeSet = 8,
};

// Arguments in source order. For Let and Set the value stands last. A callee may write into
// an argument: that is how ByRef parameters of host methods hand values back.
using Args = std::span<Variant>;

// One iteration over an object, item by item.
class Enumerator : public RefCounted {
 public:
  // Fetches the next item; false at the end.
  virtual bool Next(Variant& item) = 0;
  virtual void Skip(uint32_t count);
  virtual void Reset();
  virtual Ref<Enumerator> Clone();
};

class Object : public RefCounted {
 public:
  // What VBScript's TypeName() shows for the object.
  virtual String TypeName() const = 0;
  // The id of a member, found without regard to case, or kDispIdUnknown.
  virtual DispId GetIdOfName(StringView name) = 0;
  // Uses a member. Raises Error: 438 for a member the object lacks, 450 for a wrong use.
  virtual Variant Invoke(DispId id, uint16_t flags, Args args) = 0;
  // A new iteration; objects that are no collection raise 451.
  virtual Ref<Enumerator> NewEnum();
  // Objects that return the same non-null key give the same id for the same name, so a call
  // site may remember (key, id) and skip GetIdOfName next time.
  virtual const void* MemberCacheKey() const noexcept { return nullptr; }

  // Conveniences for C++ callers; each looks the name up and raises 438 when it is unknown.
  Variant Get(StringView name, std::initializer_list<Variant> args = {});
  void Let(StringView name, const Variant& value, std::initializer_list<Variant> args = {});
  void Set(StringView name, const Variant& value, std::initializer_list<Variant> args = {});
  Variant Call(StringView name, std::initializer_list<Variant> args = {});
  // The value of the default member with no arguments.
  Variant DefaultValue() { return Invoke(kDispIdValue, kInvokeGet | kInvokeMethod, {}); }

 protected:
  DispId RequireId(StringView name);
};

// Argument checking for member implementations.
void CheckArgCount(Args args, size_t min, size_t max);  // raises 450 outside [min, max]
inline bool HasArg(Args args, size_t i) {
  return i < args.size() && !args[i].is_missing();
}

}  // namespace qv
