// Array storage, bounds checking and redimensioning.
#include "automation/safe_array.h"

#include "automation/error.h"

namespace qv {

namespace {

// Elements of 16 bytes; keep well inside what a process can hold.
constexpr int64_t kMaxElements = int64_t{1} << 27;

int64_t ElementCount(std::span<const ArrayBound> bounds) {
  if (bounds.size() > static_cast<size_t>(kMaxArrayDimensions)) throw Error(kErrSubscript);
  if (bounds.empty()) return 0;  // `Dim a()`: an array with no dimensions yet
  int64_t total = 1;
  for (const ArrayBound& b : bounds) {
    if (b.count < 0) throw Error(kErrSubscript);
    if (b.count && total > kMaxElements / b.count) throw Error(kErrOutOfMemory);
    total *= b.count;
  }
  if (total > kMaxElements) throw Error(kErrOutOfMemory);
  return total;
}

}  // namespace

SafeArray::SafeArray(VarType element_type, std::span<const ArrayBound> bounds)
    : element_type_(element_type), bounds_(bounds.begin(), bounds.end()) {
  data_.resize(static_cast<size_t>(ElementCount(bounds)), EmptyElement());
}

Ref<SafeArray> SafeArray::FromValues(std::vector<Variant> values, VarType element_type) {
  const ArrayBound b{0, static_cast<int64_t>(values.size())};
  Ref<SafeArray> array = MakeRef<SafeArray>(element_type, std::span<const ArrayBound>(&b, 1));
  array->data_ = std::move(values);
  return array;
}

Variant SafeArray::EmptyElement() const {
  switch (element_type_) {
    case VarType::Byte:
      return Variant(uint8_t{0});
    case VarType::String:
      return Variant(String());
    default:
      return Variant();
  }
}

const ArrayBound& SafeArray::bound(int dimension) const {
  if (dimension < 1 || dimension > dimensions()) throw Error(kErrSubscript);
  return bounds_[dimension - 1];
}

size_t SafeArray::FlatIndex(std::span<const int32_t> indexes) const {
  if (indexes.size() != bounds_.size()) throw Error(kErrSubscript);
  size_t flat = 0, stride = 1;
  for (size_t d = 0; d < bounds_.size(); ++d) {
    const int64_t offset = int64_t{indexes[d]} - bounds_[d].lower;
    if (offset < 0 || offset >= bounds_[d].count) throw Error(kErrSubscript);
    flat += static_cast<size_t>(offset) * stride;
    stride *= static_cast<size_t>(bounds_[d].count);
  }
  return flat;
}

Variant& SafeArray::At(std::span<const int32_t> indexes) {
  return data_[FlatIndex(indexes)];
}

const Variant& SafeArray::At(std::span<const int32_t> indexes) const {
  return data_[FlatIndex(indexes)];
}

void SafeArray::Redim(std::span<const ArrayBound> bounds, bool preserve) {
  if (fixed_ || locked()) throw Error(kErrArrayLocked);
  const int64_t total = ElementCount(bounds);
  if (!preserve || bounds_.empty()) {
    bounds_.assign(bounds.begin(), bounds.end());
    data_.assign(static_cast<size_t>(total), EmptyElement());
    return;
  }
  if (bounds.size() != bounds_.size()) throw Error(kErrSubscript);
  for (size_t d = 0; d + 1 < bounds.size(); ++d) {
    if (bounds[d].lower != bounds_[d].lower || bounds[d].count != bounds_[d].count) {
      throw Error(kErrSubscript);
    }
  }
  // Only the last dimension changes: with the first index varying fastest, its elements form
  // one contiguous run at the end, so keeping them is a resize.
  if (!bounds.empty() && bounds.back().lower != bounds_.back().lower) throw Error(kErrSubscript);
  bounds_.assign(bounds.begin(), bounds.end());
  data_.resize(static_cast<size_t>(total), EmptyElement());
}

void SafeArray::ResetElements() {
  if (locked()) throw Error(kErrArrayLocked);
  for (Variant& v : data_)
    v = EmptyElement();
}

Ref<SafeArray> SafeArray::Clone() const {
  Ref<SafeArray> copy = MakeRef<SafeArray>(element_type_, std::span<const ArrayBound>());
  copy->bounds_ = bounds_;
  copy->data_ = data_;
  copy->fixed_ = false;
  return copy;
}

}  // namespace qv
