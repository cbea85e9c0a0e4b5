// Scripting.Dictionary: keys and items in the order they were added, found by key in constant
// time. Numbers are one key whatever their type (1, 1.0 and CLng(1) are the same key), text
// keys compare exactly or, with CompareMode 1, without regard to case, and objects by identity.
#pragma once

#include <cstdint>
#include <vector>

#include "automation/dispatch.h"

namespace qv::vbs {

class Dictionary : public DispatchObject<Dictionary> {
 public:
  static const DispatchTable<Dictionary>& Table();

  // The operations behind the members, for C++ callers too.
  void Add(const Variant& key, const Variant& item);
  bool Exists(const Variant& key) const;
  // Item as a script reads it: a missing key is added with an Empty item.
  Variant Item(const Variant& key);
  void SetItem(const Variant& key, const Variant& item);
  void RenameKey(const Variant& key, const Variant& new_key);
  void Remove(const Variant& key);
  void RemoveAll();
  int32_t Count() const { return static_cast<int32_t>(live_); }
  int32_t compare_mode() const { return compare_mode_; }
  void set_compare_mode(int32_t mode);
  Variant Keys() const;
  Variant Items() const;
  int32_t HashVal(const Variant& key) const;

  // For Each sees the dictionary as it is at each step: keys added during the loop come up
  // in turn, removed ones are passed over.
  Ref<Enumerator> NewEnum() override;
  // The first live key added at or after `sequence`, and the sequence after it; false when
  // there is none.
  bool KeyFrom(uint64_t sequence, Variant& key, uint64_t& next) const;

 private:
  struct Entry {
    Variant key;
    Variant item;
    size_t hash = 0;
    bool alive = true;
    uint64_t sequence = 0;  // order of adding, kept across index rebuilds
  };
  static constexpr uint32_t kFree = 0;
  static constexpr uint32_t kGone = UINT32_MAX;

  bool text_keys() const { return compare_mode_ >= 1; }
  // Raises 13 for keys that cannot be keys (arrays).
  size_t HashOf(const Variant& key) const;
  bool SameKey(const Variant& a, const Variant& b) const;
  // The slot holding the key, or the free slot where it would go (`found` tells which).
  size_t Probe(const Variant& key, size_t hash, bool& found) const;
  size_t FindEntry(const Variant& key) const;  // SIZE_MAX when absent
  // Probe after growing the index when it is half full.
  size_t Prepare(const Variant& key, size_t& hash, bool& found);
  void Insert(const Variant& key, size_t hash, size_t slot, const Variant& item);
  void Rebuild(size_t capacity);

  int32_t compare_mode_ = 0;
  std::vector<Entry> entries_;   // insertion order, with holes where keys were removed
  std::vector<uint32_t> slots_;  // open addressing: entry index + 1, kFree or kGone
  size_t live_ = 0;
  size_t used_slots_ = 0;  // live entries and tombstones
  uint64_t next_sequence_ = 0;
};

}  // namespace qv::vbs
