// For Each over the template system's lists: a snapshot of the items taken when the loop
// starts, so a loop body that changes the list still sees each original item once.
#pragma once

#include <vector>

#include "automation/object.h"

namespace qv::templates {

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

// Items 1..n of a list whose slot 0 stays empty.
template <class T>
Ref<Enumerator> EnumerateSlots(const std::vector<Ref<T>>& slots) {
  std::vector<Variant> items;
  for (size_t i = 1; i < slots.size(); ++i)
    items.emplace_back(slots[i]);
  return MakeRef<ListEnumerator>(std::move(items));
}

}  // namespace qv::templates
