// For Each over a snapshot of values taken when the loop starts: a loop body that changes the
// collection still sees each original item once. Most collections of the object libraries
// enumerate this way.
#pragma once

#include <algorithm>
#include <vector>

#include "automation/object.h"

namespace qv {

class ListEnumerator : public Enumerator {
 public:
  explicit ListEnumerator(std::vector<Variant> items) : items_(std::move(items)) {}

  bool Next(Variant& item) override {
    if (next_ >= items_.size()) return false;
    item = items_[next_++];
    return true;
  }
  void Skip(uint32_t count) override { next_ = std::min(items_.size(), next_ + count); }
  void Reset() override { next_ = 0; }
  Ref<Enumerator> Clone() override {
    auto copy = MakeRef<ListEnumerator>(items_);
    copy->next_ = next_;
    return copy;
  }

 private:
  std::vector<Variant> items_;
  size_t next_ = 0;
};

}  // namespace qv
