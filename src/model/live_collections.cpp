// The live-collection table: a vector of slots with a free list, so entering and leaving cost
// no allocation and no hashing (a project holds tens of thousands of collections). It is
// created on first use and never destroyed, so collections that end during static destruction
// still find it.
#include "model/live_collections.h"

#include <vector>

namespace qv {

namespace {
struct Slot {
  const CSuperCollection* collection = nullptr;
  uint64_t serial = 0;
};

struct LiveTable {
  std::vector<Slot> slots;
  std::vector<uint32_t> free;
  uint64_t next_serial = 1;
};

LiveTable& Table() {
  static LiveTable* table = new LiveTable();
  return *table;
}
}  // namespace

LiveTicket MValidatePointer::Add(const CSuperCollection* collection) {
  LiveTable& t = Table();
  LiveTicket ticket;
  ticket.serial = t.next_serial++;
  if (t.free.empty()) {
    ticket.slot = static_cast<uint32_t>(t.slots.size());
    t.slots.push_back(Slot{collection, ticket.serial});
  } else {
    ticket.slot = t.free.back();
    t.free.pop_back();
    t.slots[ticket.slot] = Slot{collection, ticket.serial};
  }
  return ticket;
}

void MValidatePointer::Remove(const LiveTicket& ticket) {
  LiveTable& t = Table();
  if (ticket.slot >= t.slots.size() || t.slots[ticket.slot].serial != ticket.serial) return;
  t.slots[ticket.slot] = Slot{};
  t.free.push_back(ticket.slot);
}

CSuperCollection* MValidatePointer::Find(const CSuperCollection* collection,
                                         const LiveTicket& ticket) {
  const LiveTable& t = Table();
  if (ticket.slot >= t.slots.size()) return nullptr;
  const Slot& s = t.slots[ticket.slot];
  if (s.collection != collection || s.serial != ticket.serial) return nullptr;
  return const_cast<CSuperCollection*>(collection);
}

}  // namespace qv
