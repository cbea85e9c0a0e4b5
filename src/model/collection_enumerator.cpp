// One iteration over a CSuperCollection, step by step as the collection's users rely on:
// appended items are visited, removed items are passed over, and a collection that ends
// during the loop simply ends the loop.
#include "model/collection_enumerator.h"

#include <algorithm>

#include "model/live_collections.h"
#include "model/super_collection.h"

namespace qv {

namespace {
// What a clone of an iteration over a collection that is gone becomes.
class EndedEnumerator : public Enumerator {
 public:
  bool Next(Variant&) override { return false; }
  void Reset() override {}
  Ref<Enumerator> Clone() override { return MakeRef<EndedEnumerator>(); }
};
}  // namespace

cEnumerationObject::cEnumerationObject(CSuperCollection& collection, int32_t position)
    : collection_(&collection),
      ticket_(collection.Ticket()),
      copy_(collection.positions_),
      base_(collection.base_),
      start_(position),
      position_(position) {
  ++collection.iterations_;
}

cEnumerationObject::~cEnumerationObject() {
  if (CSuperCollection* live = Live()) --live->iterations_;
}

CSuperCollection* cEnumerationObject::Live() const {
  return MValidatePointer::Find(collection_, ticket_);
}

bool cEnumerationObject::Next(Variant& item) {
  CSuperCollection* live = Live();
  if (!live) return false;
  if (position_ > CopyLast() || position_ < base_) return false;
  const size_t at = static_cast<size_t>(position_ - base_);
  if (live->positions_.size() > copy_.size() && live->positions_[at] == copy_[at]) {
    copy_ = live->positions_;
  }
  for (size_t i = at; i < copy_.size(); ++i) {
    const int32_t slot = copy_[i];
    if (slot == NoEntry || !live->SlotValue(slot)) continue;
    item = live->slots_[slot].Value;
    position_ = base_ + static_cast<int32_t>(i) + 1;
    return true;
  }
  position_ = CopyLast() + 1;
  return false;
}

void cEnumerationObject::Skip(uint32_t count) {
  // Past the end is past the end; clamping keeps a huge count from overflowing the position.
  const int64_t target = static_cast<int64_t>(position_) + count;
  position_ = static_cast<int32_t>(std::min<int64_t>(target, int64_t{CopyLast()} + 1));
}

void cEnumerationObject::Reset() {
  position_ = start_;
}

Ref<Enumerator> cEnumerationObject::Clone() {
  CSuperCollection* live = Live();
  if (!live) return MakeRef<EndedEnumerator>();
  Ref<cEnumerationObject> clone = MakeRef<cEnumerationObject>(*live, start_);
  clone->copy_ = copy_;
  clone->base_ = base_;
  clone->position_ = position_;
  return clone;
}

}  // namespace qv
