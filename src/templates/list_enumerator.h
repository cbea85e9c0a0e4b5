// For Each over the template system's lists, whose slot 0 stays empty.
#pragma once

#include <vector>

#include "automation/list_enumerator.h"

namespace qv::templates {

// Items 1..n of a list whose slot 0 stays empty.
template <class T>
Ref<Enumerator> EnumerateSlots(const std::vector<Ref<T>>& slots) {
  std::vector<Variant> items;
  for (size_t i = 1; i < slots.size(); ++i)
    items.emplace_back(slots[i]);
  return MakeRef<ListEnumerator>(std::move(items));
}

}  // namespace qv::templates
