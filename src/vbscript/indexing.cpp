// Arrays and default members as the machine indexes them: reading a(i, j) from an array or an
// object's default member, storing through one, and Dim, ReDim (Preserve) and Erase.
#include <vector>

#include "automation/safe_array.h"
#include "vbscript/values.h"
#include "vbscript/vm.h"

namespace qv::vbs {

Variant Vm::ApplyIndex(const Variant& target, Args args, bool want) {
  if (target.is_array()) {
    const SafeArray* array = target.as_array();
    if (args.size() == 1 && array->dimensions() == 1) {
      const ArrayBound& b = array->bounds()[0];
      const int64_t offset = int64_t{IndexValue(args[0])} - b.lower;
      if (offset < 0 || offset >= b.count) Raise(kErrSubscript);
      return (*array)[static_cast<size_t>(offset)];
    }
    // `a()` names no element: an array has no element without indexes.
    if (args.empty() || args.size() > static_cast<size_t>(kMaxArrayDimensions))
      Raise(kErrSubscript);
    int32_t idx[kMaxArrayDimensions];
    for (size_t i = 0; i < args.size(); ++i)
      idx[i] = IndexValue(args[i]);
    return array->At(std::span<const int32_t>(idx, args.size()));
  }
  if (target.is_object()) {
    Object* object = target.as_object();
    if (!object) Raise(kErrObjectNotSet);
    return object->Invoke(kDispIdValue, want ? (kInvokeMethod | kInvokeGet) : kInvokeMethod, args);
  }
  // A value that is neither an array nor an object cannot be called: `x()`, or `x` alone as a
  // statement, is a type mismatch, as calling a name that was never defined is.
  Raise(kErrTypeMismatch);
}

void Vm::StoreIndexed(Variant& target, Args indexes, Variant value, bool is_set) {
  if (is_set) {
    CheckSetValue(value);
  } else {
    value = LetValue(std::move(value));
  }
  if (target.is_array()) {
    SafeArray* array = target.mutable_array();
    if (indexes.size() > static_cast<size_t>(kMaxArrayDimensions)) Raise(kErrSubscript);
    int32_t idx[kMaxArrayDimensions];
    for (size_t i = 0; i < indexes.size(); ++i)
      idx[i] = IndexValue(indexes[i]);
    array->At(std::span<const int32_t>(idx, indexes.size())) = std::move(value);
    return;
  }
  if (target.is_object()) {
    Object* object = target.as_object();
    // Nothing has no element to store into: the store finds the wrong type of value.
    if (!object) Raise(kErrTypeMismatch);
    std::vector<Variant> args(indexes.begin(), indexes.end());
    args.push_back(std::move(value));
    object->Invoke(kDispIdValue, is_set ? kInvokeSet : kInvokeLet, args);
    return;
  }
  Raise(kErrTypeMismatch);
}

namespace {
std::vector<ArrayBound> BoundsOf(Args bounds) {
  std::vector<ArrayBound> out;
  if (bounds.size() > static_cast<size_t>(kMaxArrayDimensions)) Raise(kErrSubscript);
  for (const Variant& b : bounds) {
    const int64_t upper = IndexValue(b);
    if (upper < -1) Raise(kErrSubscript);
    out.push_back(ArrayBound{0, upper + 1});
  }
  return out;
}
}  // namespace

void Vm::DimArray(Variant& target, Args bounds) {
  const std::vector<ArrayBound> b = BoundsOf(bounds);
  Ref<SafeArray> array = MakeRef<SafeArray>(VarType::Variant, b);
  array->set_fixed(!bounds.empty());
  target = Variant(std::move(array));
}

void Vm::ReDimArray(Variant& target, Args bounds, bool preserve) {
  const auto locked = [&] {
    return target.is_array() && (target.as_array()->fixed() || target.as_array()->locked());
  };
  // A plain ReDim of a fixed array fails before its bounds are read; ReDim Preserve reads
  // them first, so ReDim Preserve a("x") on a fixed array is a type mismatch.
  if (!preserve && locked()) Raise(kErrArrayLocked);
  const std::vector<ArrayBound> b = BoundsOf(bounds);
  if (target.is_array()) {
    if (locked()) Raise(kErrArrayLocked);
    if (preserve) {
      target.mutable_array()->Redim(b, true);
      return;
    }
  }
  target = Variant(MakeRef<SafeArray>(VarType::Variant, b));
}

void Vm::EraseArray(Variant& target) {
  if (!target.is_array()) Raise(kErrTypeMismatch);
  if (target.as_array()->locked()) Raise(kErrArrayLocked);
  // A fixed array keeps its bounds and loses its values; a dynamic one loses both.
  if (target.as_array()->fixed()) {
    target.mutable_array()->ResetElements();
  } else {
    target = Variant(MakeRef<SafeArray>(VarType::Variant, std::span<const ArrayBound>()));
  }
}

}  // namespace qv::vbs
