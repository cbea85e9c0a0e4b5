// The keyed, ordered collection under every list and property bag of the model. Positions and
// keys are kept apart: a position list maps positions to item slots, and a sorted array of key
// records maps keys to positions, searched by binary search. A running For Each survives
// additions and removals; only MoveItem refuses to run during one.
#pragma once

#include <cstdint>
#include <vector>

#include "automation/dispatch.h"
#include "automation/variant.h"
#include "model/live_collections.h"

namespace qv {

class CKeys;

// Marks an empty position and answers a failed key search.
inline constexpr int32_t NoEntry = 0x10000001;

// One stored item. Whether the slot is in use is kept in a parallel array, which keeps the
// record at three words.
struct ItemRecord {
  Variant Value;
  String Key;
};

// One key, at its sorted place, with the position of its item. In text mode `Folded` holds
// the key in lower case, so that a search folds only the probe, once.
struct KeyRecord {
  String Key;
  String Folded;
  int32_t Index = 0;
  bool Used = false;
};

class CSuperCollection : public DispatchObject<CSuperCollection> {
 public:
  CSuperCollection();
  ~CSuperCollection() override;
  static const DispatchTable<CSuperCollection>& Table();

  // 0 binary, 1 text (case-insensitive) comparison of keys; settable only while empty.
  int32_t CompareMode() const { return compare_mode_; }
  void SetCompareMode(int32_t mode);
  bool AllowItemAsignments() const { return allow_item_assignments_; }
  void SetAllowItemAsignments(bool allow) { allow_item_assignments_ = allow; }
  int32_t BaseIndex() const { return base_; }
  void SetBaseIndex(int32_t base);

  Ref<CKeys> Keys();
  String Key(int32_t index) const;
  // The position of the key, or NoEntry.
  int32_t KeyExists(StringView key) const;
  void ChangeKey(StringView old_key, StringView new_key);
  // The position comes as text, as the platform's callers pass it.
  void ChangeKeyForIndex(StringView index, StringView new_key);
  // position_type: 1 before `reference`, 2 after it, 3 at the start, 4 appended.
  void Add(const Variant& value, StringView key = {}, int32_t position_type = 4,
           int32_t reference = NoEntry);
  int32_t Count() const;
  // `index` is a position (any number) or a key (a string).
  void Remove(const Variant& index);
  // Empty for an unknown key, a position out of bounds or an empty position.
  Variant Item(const Variant& index) const;
  void SetItem(const Variant& index, const Variant& value);
  Ref<Enumerator> NewEnum() override;
  void Clear();
  int32_t MoveItem(const Variant& from, const Variant& to);

  // Fast paths for the model's own C++ code.
  // The slot of the item under `key`, or -1. Slots never change for the life of an item.
  int32_t FindSlot(StringView key) const;
  // The value in a slot, or nullptr when the slot is not in use.
  const Variant* SlotValue(int32_t slot) const {
    return slot >= 0 && static_cast<size_t>(slot) < slots_.size() && used_[slot]
               ? &slots_[slot].Value
               : nullptr;
  }
  // The slot at a position, or -1 outside the bounds or at an empty position.
  int32_t SlotAt(int32_t position) const;
  int32_t LastPosition() const { return base_ + static_cast<int32_t>(positions_.size()) - 1; }
  // Fills an empty collection with one value per item of `prototype`, taking over its keys,
  // positions and slot numbers. The key records are shared until either side changes them,
  // which is what keeps thousands of identically registered bags small.
  void AdoptLayout(const CSuperCollection& prototype, std::vector<Variant>&& values);
  // The key records in sorted order, for the key views.
  const std::vector<KeyRecord>& KeyRecords() const { return keys_->records; }
  // The number of iterations open on this collection.
  int32_t IterationCount() const { return iterations_; }
  // This collection's entry in MValidatePointer.
  const LiveTicket& Ticket() const { return ticket_; }

 private:
  friend class cEnumerationObject;

  struct KeyTable : RefCounted {
    std::vector<KeyRecord> records;
  };

  void ResetToEmpty();
  // The text that key records are ordered by: the key itself, or in text mode its fold.
  StringView OrderText(const KeyRecord& r) const { return compare_mode_ == 1 ? r.Folded : r.Key; }
  KeyRecord MakeRecord(StringView key, int32_t index) const;
  // Binary search of `probe` (already folded in text mode) over the used records.
  int32_t Search(StringView probe, int32_t* place) const;
  const std::vector<KeyRecord>& keys() const { return keys_->records; }
  std::vector<KeyRecord>& mutable_keys();
  bool KeysEmpty() const { return keys().size() == 1 && !keys()[0].Used; }
  bool PositionsEmpty() const { return positions_.size() == 1 && positions_[0] == NoEntry; }
  int32_t NewItemPosition() const;

  // The one key search. Returns the key's position or NoEntry; `place` receives the record
  // index where the search ended or, with `insert`, where the new record went.
  int32_t KeySearch(StringView key, bool insert, int32_t new_index, int32_t* place);
  int32_t KeySearchConst(StringView key, int32_t* place) const;
  // Inserts a key record for `index` at its sorted place; the key must not be present.
  void InsertKeyRecord(StringView key, int32_t index);
  void EraseKeyRecord(int32_t place);
  int32_t PositionOfIndex(const Variant& index) const;  // raises 9, 0x80000501, 0x80000503
  int32_t MoveItemAt(int32_t from, int32_t to);
  void RenameItem(int32_t position, StringView new_key);

  int32_t compare_mode_ = 0;
  bool allow_item_assignments_ = false;
  int32_t base_ = 1;
  std::vector<int32_t> positions_;
  std::vector<ItemRecord> slots_;
  std::vector<uint8_t> used_;
  Ref<KeyTable> keys_;
  int32_t pending_key_ = NoEntry;
  int32_t iterations_ = 0;
  LiveTicket ticket_;  // this collection's entry in MValidatePointer
};

// True when a Variant names a position (a number) rather than a key.
bool IsPositionIndex(const Variant& index);

}  // namespace qv
