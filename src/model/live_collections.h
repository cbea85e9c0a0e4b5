// MValidatePointer: the table of live collections. A collection enters it at creation and
// leaves at its end; iterations and key views look their collection up before every step, so
// they never touch one that is gone. Each entry carries a serial number, so a new collection
// that happens to reuse a dead one's address is not mistaken for it.
#pragma once

#include <cstdint>

namespace qv {

class CSuperCollection;

class MValidatePointer {
 public:
  // Adds a collection and returns its serial number.
  static uint64_t Add(const CSuperCollection* collection);
  static void Remove(const CSuperCollection* collection);
  // The collection when it is still alive under that serial number, else nullptr.
  static CSuperCollection* Find(const CSuperCollection* collection, uint64_t serial);
};

}  // namespace qv
