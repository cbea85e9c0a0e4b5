// The live-collection table. It is created on first use and never destroyed, so collections
// that end during static destruction still find it.
#include "model/live_collections.h"

#include <unordered_map>

namespace qv {

namespace {
struct LiveTable {
  std::unordered_map<const CSuperCollection*, uint64_t> entries;
  uint64_t next_serial = 1;
};

LiveTable& Table() {
  static LiveTable* table = new LiveTable();
  return *table;
}
}  // namespace

uint64_t MValidatePointer::Add(const CSuperCollection* collection) {
  LiveTable& t = Table();
  const uint64_t serial = t.next_serial++;
  t.entries[collection] = serial;
  return serial;
}

void MValidatePointer::Remove(const CSuperCollection* collection) {
  Table().entries.erase(collection);
}

CSuperCollection* MValidatePointer::Find(const CSuperCollection* collection, uint64_t serial) {
  const LiveTable& t = Table();
  const auto it = t.entries.find(collection);
  if (it == t.entries.end() || it->second != serial) return nullptr;
  return const_cast<CSuperCollection*>(collection);
}

}  // namespace qv
