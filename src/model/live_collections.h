// MValidatePointer: the table of live collections. A collection enters it at creation and
// leaves at its end; iterations and key views look their collection up before every step, so
// they never touch one that is gone. An entry is a slot of the table plus a serial number, so a
// new collection that reuses a dead one's slot or address is not mistaken for it.
#pragma once

#include <cstdint>

namespace qv {

class CSuperCollection;

// What a collection's weak link holds.
struct LiveTicket {
  uint32_t slot = 0;
  uint64_t serial = 0;
};

class MValidatePointer {
 public:
  static LiveTicket Add(const CSuperCollection* collection);
  static void Remove(const LiveTicket& ticket);
  // The collection when it is still alive under that ticket, else nullptr.
  static CSuperCollection* Find(const CSuperCollection* collection, const LiveTicket& ticket);
};

}  // namespace qv
