// VBScript's arrays: up to 60 dimensions, each with its own lower bound, elements laid out with
// the first index varying fastest (so ReDim Preserve of the last dimension only appends).
// Variants share an array by reference count and copy it before a write (copy on write), which
// gives VBScript's value semantics for `b = a` without copying on every assignment.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "automation/ref.h"
#include "automation/variant.h"

namespace qv {

inline constexpr int kMaxArrayDimensions = 60;

struct ArrayBound {
  int32_t lower = 0;
  int64_t count = 0;  // elements in this dimension; upper bound = lower + count - 1
  int64_t upper() const { return lower + count - 1; }
};

class SafeArray : public RefCounted {
 public:
  // Raises 9 for more than 60 dimensions and 7 when the elements would not fit in memory.
  SafeArray(VarType element_type, std::span<const ArrayBound> bounds);
  // A one-dimensional array from 0 holding the given values.
  static Ref<SafeArray> FromValues(std::vector<Variant> values,
                                   VarType element_type = VarType::Variant);

  VarType element_type() const { return element_type_; }
  int dimensions() const { return static_cast<int>(bounds_.size()); }
  // dimension counts from 1, as LBound/UBound do; raises 9 outside 1..dimensions.
  const ArrayBound& bound(int dimension) const;
  std::span<const ArrayBound> bounds() const { return bounds_; }
  size_t size() const { return data_.size(); }

  // The element at the given indexes; raises 9 for a wrong count or an index out of bounds.
  Variant& At(std::span<const int32_t> indexes);
  const Variant& At(std::span<const int32_t> indexes) const;
  Variant& operator[](size_t flat) { return data_[flat]; }
  const Variant& operator[](size_t flat) const { return data_[flat]; }
  std::span<Variant> elements() { return data_; }
  std::span<const Variant> elements() const { return data_; }

  // A declared array (`Dim a(3)`) may not be redimensioned: raises 10 when asked.
  bool fixed() const { return fixed_; }
  void set_fixed(bool fixed) { fixed_ = fixed; }
  // A lock (held during For Each) makes ReDim and Erase raise 10.
  void Lock() { ++locks_; }
  void Unlock() { --locks_; }
  bool locked() const { return locks_ > 0; }

  // ReDim: new bounds; with `preserve` only the last dimension may change and the elements
  // that still fit are kept (raises 9 otherwise).
  void Redim(std::span<const ArrayBound> bounds, bool preserve);
  // Erase of a fixed array: every element back to its empty value.
  void ResetElements();

  Ref<SafeArray> Clone() const;

 private:
  size_t FlatIndex(std::span<const int32_t> indexes) const;
  Variant EmptyElement() const;

  VarType element_type_;
  bool fixed_ = false;
  int locks_ = 0;
  std::vector<ArrayBound> bounds_;
  std::vector<Variant> data_;
};

}  // namespace qv
