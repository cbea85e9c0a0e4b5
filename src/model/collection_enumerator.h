// cEnumerationObject: one For Each over a CSuperCollection. It walks its own copy of the
// position list, refreshes the copy when items were appended, and passes over items removed
// during the loop. While it lives the collection refuses MoveItem.
#pragma once

#include <cstdint>
#include <vector>

#include "automation/object.h"
#include "model/live_collections.h"

namespace qv {

class CSuperCollection;

class cEnumerationObject : public Enumerator {
 public:
  // Starts at `position` (a position number of the collection).
  cEnumerationObject(CSuperCollection& collection, int32_t position);
  ~cEnumerationObject() override;

  bool Next(Variant& item) override;
  void Skip(uint32_t count) override;
  void Reset() override;
  Ref<Enumerator> Clone() override;

 private:
  CSuperCollection* Live() const;
  int32_t CopyLast() const { return base_ + static_cast<int32_t>(copy_.size()) - 1; }

  const CSuperCollection* collection_;
  LiveTicket ticket_;
  std::vector<int32_t> copy_;
  int32_t base_;
  int32_t start_;
  int32_t position_;
};

}  // namespace qv
