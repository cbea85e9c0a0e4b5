// The keyed collection: key search, insertion, removal, moves and key changes. Ranges of key
// records and positions move as raw blocks (one memmove per range): every property access of
// every definition object goes through this code.
#include "model/super_collection.h"

#include <cstring>
#include <optional>
#include <type_traits>

#include "automation/convert.h"
#include "model/collection_enumerator.h"
#include "model/collection_errors.h"
#include "model/collection_keys.h"
#include "model/live_collections.h"

namespace qv {

namespace {

// A String is one pointer to a counted buffer, so a KeyRecord may be relocated bitwise: the
// rotation below moves ownership, it never duplicates or drops a reference.
static_assert(sizeof(String) == sizeof(void*));
static_assert(std::is_standard_layout_v<KeyRecord>);

// Moves the record at `from` to `to`, shifting the records between them by one place.
void RotateKey(std::vector<KeyRecord>& records, size_t from, size_t to) {
  if (from == to) return;
  alignas(KeyRecord) unsigned char saved[sizeof(KeyRecord)];
  KeyRecord* base = records.data();
  std::memcpy(saved, static_cast<void*>(base + from), sizeof(KeyRecord));
  if (from < to) {
    std::memmove(static_cast<void*>(base + from), static_cast<void*>(base + from + 1),
                 (to - from) * sizeof(KeyRecord));
  } else {
    std::memmove(static_cast<void*>(base + to + 1), static_cast<void*>(base + to),
                 (from - to) * sizeof(KeyRecord));
  }
  std::memcpy(static_cast<void*>(base + to), saved, sizeof(KeyRecord));
}

void RotatePosition(std::vector<int32_t>& positions, size_t from, size_t to) {
  if (from == to) return;
  const int32_t saved = positions[from];
  int32_t* base = positions.data();
  if (from < to) {
    std::memmove(base + from, base + from + 1, (to - from) * sizeof(int32_t));
  } else {
    std::memmove(base + to + 1, base + to, (from - to) * sizeof(int32_t));
  }
  positions[to] = saved;
}

// The middle of a binary search step: (high - low) / 2 + low as a double, rounded half to
// even, so that 1.5 gives 2 and 2.5 gives 2. Worked in integers (the search runs on every
// property access): an odd span leaves a half, which goes to the even neighbour.
int32_t Middle(int32_t low, int32_t high) {
  const int32_t span = high - low;
  const int32_t floor = low + span / 2;
  if (span % 2 == 0) return floor;
  return (floor % 2 == 0) ? floor : floor + 1;
}

}  // namespace

bool IsPositionIndex(const Variant& index) {
  switch (index.type()) {
    case VarType::Integer:
    case VarType::Long:
    case VarType::Single:
    case VarType::Double:
    case VarType::Byte:
      return true;
    default:
      return false;
  }
}

CSuperCollection::CSuperCollection() : keys_(MakeRef<KeyTable>()) {
  ResetToEmpty();
  ticket_ = MValidatePointer::Add(this);
}

CSuperCollection::~CSuperCollection() {
  MValidatePointer::Remove(ticket_);
}

void CSuperCollection::ResetToEmpty() {
  positions_.assign(1, NoEntry);
  slots_.clear();
  slots_.emplace_back();
  used_.assign(1, 0);
  if (keys_->RefCount() > 1) keys_ = MakeRef<KeyTable>();
  keys_->records.assign(1, KeyRecord{});
  pending_key_ = NoEntry;
}

std::vector<KeyRecord>& CSuperCollection::mutable_keys() {
  if (keys_->RefCount() > 1) {
    Ref<KeyTable> own = MakeRef<KeyTable>();
    own->records = keys_->records;
    keys_ = std::move(own);
  }
  return keys_->records;
}

KeyRecord CSuperCollection::MakeRecord(StringView key, int32_t index) const {
  return KeyRecord{String(key), compare_mode_ == 1 ? ToLower(key) : String(), index, true};
}

void CSuperCollection::SetCompareMode(int32_t mode) {
  if (Count() > 0) RaiseCollectionError(kErrCollectionInitialized);
  if (mode != 0 && mode != 1) throw Error(kErrSubscript);
  compare_mode_ = mode;
}

void CSuperCollection::SetBaseIndex(int32_t base) {
  if (Count() > 0) RaiseCollectionError(kErrCollectionInitialized);
  base_ = base;
  ResetToEmpty();
}

int32_t CSuperCollection::Count() const {
  return PositionsEmpty() ? 0 : static_cast<int32_t>(positions_.size());
}

int32_t CSuperCollection::NewItemPosition() const {
  return PositionsEmpty() ? LastPosition() : LastPosition() + 1;
}

int32_t CSuperCollection::SlotAt(int32_t position) const {
  if (position < base_ || position > LastPosition()) return -1;
  const int32_t slot = positions_[position - base_];
  return slot == NoEntry ? -1 : slot;
}

// Folds a probe into a buffer on the stack (or a string for long keys), so that ordering by
// CompareNoCase becomes a plain comparison with the records' folded keys: the same order,
// since CompareNoCase compares the lower-case fold of each unit.
class FoldedProbe {
 public:
  FoldedProbe(StringView key, bool fold) {
    if (!fold) {
      view_ = key;
    } else if (key.size() <= kInline) {
      for (size_t i = 0; i < key.size(); ++i)
        buffer_[i] = ToLowerChar(key[i]);
      view_ = StringView(buffer_, key.size());
    } else {
      long_ = ToLower(key);
      view_ = long_.view();
    }
  }
  StringView view() const { return view_; }

 private:
  static constexpr size_t kInline = 96;
  Char buffer_[kInline];
  String long_;
  StringView view_;
};

int32_t CSuperCollection::Search(StringView probe, int32_t* place) const {
  const std::vector<KeyRecord>& records = keys();
  int32_t low = 0;
  int32_t high = static_cast<int32_t>(records.size()) - 1;
  if (!records[high].Used) --high;
  int32_t middle = 0;
  while (low <= high) {
    middle = Middle(low, high);
    const int c = probe.compare(OrderText(records[middle]));
    if (c < 0) {
      high = middle - 1;
    } else if (c > 0) {
      low = middle + 1;
    } else {
      if (place) *place = middle;
      return records[middle].Index;
    }
  }
  if (place) *place = middle;
  return NoEntry;
}

int32_t CSuperCollection::KeySearchConst(StringView key, int32_t* place) const {
  if (key.empty() || KeysEmpty()) return NoEntry;
  const FoldedProbe probe(key, compare_mode_ == 1);
  return Search(probe.view(), place);
}

int32_t CSuperCollection::KeySearch(StringView key, bool insert, int32_t new_index,
                                    int32_t* place) {
  if (key.empty()) return NoEntry;
  if (KeysEmpty()) {
    if (insert) {
      std::vector<KeyRecord>& records = mutable_keys();
      records[0] = MakeRecord(key, new_index);
      if (place) *place = 0;
    }
    return NoEntry;
  }
  const FoldedProbe probe(key, compare_mode_ == 1);
  int32_t ended = 0;
  const int32_t found = Search(probe.view(), &ended);
  if (found != NoEntry || !insert) {
    if (place) *place = ended;
    return found;
  }
  std::vector<KeyRecord>& records = mutable_keys();
  if (records.back().Used) records.emplace_back();
  const size_t last = records.size() - 1;
  records[last] = MakeRecord(key, new_index);
  const int c = probe.view().compare(OrderText(records[ended]));
  const int32_t at = c < 0 ? ended : ended + 1;
  RotateKey(records, last, static_cast<size_t>(at));
  if (place) *place = at;
  return NoEntry;
}

void CSuperCollection::InsertKeyRecord(StringView key, int32_t index) {
  KeySearch(key, true, index, nullptr);
}

void CSuperCollection::EraseKeyRecord(int32_t place) {
  std::vector<KeyRecord>& records = mutable_keys();
  if (records.size() == 1) {
    records[0] = KeyRecord{};
    return;
  }
  RotateKey(records, static_cast<size_t>(place), records.size() - 1);
  records.pop_back();
}

int32_t CSuperCollection::KeyExists(StringView key) const {
  return KeySearchConst(key, nullptr);
}

int32_t CSuperCollection::FindSlot(StringView key) const {
  const int32_t position = KeySearchConst(key, nullptr);
  return position == NoEntry ? -1 : SlotAt(position);
}

String CSuperCollection::Key(int32_t index) const {
  if (index < base_ || index > LastPosition()) throw Error(kErrSubscript);
  const int32_t slot = positions_[index - base_];
  if (slot == NoEntry) throw Error(kErrSubscript);  // the empty position has no slot at all
  return slots_[slot].Key;
}

void CSuperCollection::Add(const Variant& value, StringView key, int32_t position_type,
                           int32_t reference) {
  if (reference == NoEntry && (position_type == 1 || position_type == 2)) {
    RaiseCollectionError(kErrCollectionNoPosition);
  }
  if (reference != NoEntry) {
    if (reference < base_ || reference > LastPosition()) throw Error(kErrSubscript);
    if (position_type == 1 && reference == base_) position_type = 3;
    if (position_type == 2 && reference == LastPosition()) position_type = 4;
  }
  const bool moves = position_type >= 1 && position_type <= 3;
  // A move would be refused during an iteration; refuse before anything has changed.
  if (moves && iterations_ != 0 && Count() > 0) RaiseCollectionError(kErrCollectionMoveInLoop);
  int32_t place = NoEntry;
  if (!key.empty() && KeySearch(key, true, NewItemPosition(), &place) != NoEntry) {
    throw Error(kErrKeyExists);
  }
  if (positions_.back() != NoEntry) {
    positions_.push_back(NoEntry);
    if (used_.back()) {
      slots_.emplace_back();
      used_.push_back(0);
    }
  }
  const int32_t slot = static_cast<int32_t>(slots_.size()) - 1;
  positions_.back() = slot;
  used_[slot] = 1;
  slots_[slot].Value = value;
  slots_[slot].Key = String(key);
  pending_key_ = key.empty() ? NoEntry : place;
  const int32_t last = LastPosition();
  switch (position_type) {
    case 1:
      MoveItemAt(last, reference);
      break;
    case 2:
      MoveItemAt(last, reference + 1);
      break;
    case 3:
      MoveItemAt(last, base_);
      break;
    default:
      break;
  }
  pending_key_ = NoEntry;
}

int32_t CSuperCollection::PositionOfIndex(const Variant& index) const {
  if (IsPositionIndex(index)) {
    const int32_t position = ToLong(index);
    if (position < base_ || position > LastPosition() || PositionsEmpty()) {
      throw Error(kErrSubscript);
    }
    return position;
  }
  if (!index.is_string()) RaiseCollectionError(kErrCollectionDatatype);
  const int32_t position = KeySearchConst(index.as_string(), nullptr);
  if (position == NoEntry) RaiseCollectionError(kErrCollectionKeyNotFound);
  return position;
}

void CSuperCollection::Remove(const Variant& index) {
  const int32_t position = PositionOfIndex(index);
  const int32_t last = LastPosition();
  const int32_t slot = positions_[position - base_];
  int32_t place = NoEntry;
  const bool keyed = !slots_[slot].Key.empty();
  if (keyed) KeySearchConst(slots_[slot].Key, &place);

  RotatePosition(positions_, static_cast<size_t>(position - base_),
                 static_cast<size_t>(last - base_));
  for (KeyRecord& record : mutable_keys()) {
    if (record.Used && record.Index >= position && record.Index <= last) --record.Index;
  }
  // Take the value out before releasing it: an object's end may look at this collection.
  Variant released = std::move(slots_[slot].Value);
  used_[slot] = 0;
  slots_[slot].Key = String();
  slots_[slot].Value = released.is_object() ? Variant() : Variant(int16_t{0});
  if (positions_.size() == 1) {
    positions_[0] = NoEntry;
  } else {
    positions_.pop_back();
  }
  if (keyed) EraseKeyRecord(place);
  released.Clear();
}

Variant CSuperCollection::Item(const Variant& index) const {
  if (IsPositionIndex(index)) {
    const int32_t slot = SlotAt(ToLong(index));
    return slot < 0 ? Variant() : slots_[slot].Value;
  }
  if (!index.is_string()) RaiseCollectionError(kErrCollectionDatatype);
  const int32_t slot = FindSlot(index.as_string());
  return slot < 0 ? Variant() : slots_[slot].Value;
}

void CSuperCollection::SetItem(const Variant& index, const Variant& value) {
  if (!allow_item_assignments_) throw Error(kErrNotSupported);
  int32_t slot = -1;
  if (IsPositionIndex(index)) {
    slot = SlotAt(ToLong(index));
  } else if (index.is_string()) {
    slot = FindSlot(index.as_string());
  } else {
    RaiseCollectionError(kErrCollectionDatatype);
  }
  if (slot < 0) RaiseCollectionError(kErrCollectionKeyNotFound);
  slots_[slot].Value = value;
}

void CSuperCollection::Clear() {
  std::vector<ItemRecord> old;
  old.swap(slots_);
  ResetToEmpty();
  old.clear();  // objects end only after the collection is consistent again
}

int32_t CSuperCollection::MoveItem(const Variant& from, const Variant& to) {
  if (iterations_ != 0) RaiseCollectionError(kErrCollectionMoveInLoop);
  auto resolve = [this](const Variant& v) {
    if (IsPositionIndex(v)) return ToLong(v);
    if (!v.is_string()) RaiseCollectionError(kErrCollectionDatatype);
    const int32_t position = KeySearchConst(v.as_string(), nullptr);
    if (position == NoEntry) RaiseCollectionError(kErrCollectionKeyNotFound);
    return position;
  };
  const int32_t a = resolve(from);
  const int32_t b = resolve(to);
  const int32_t last = LastPosition();
  if (a < base_ || a > last || b < base_ || b > last || PositionsEmpty()) {
    throw Error(kErrSubscript);
  }
  if (a == b) return a;
  return MoveItemAt(a, b);
}

int32_t CSuperCollection::MoveItemAt(int32_t from, int32_t to) {
  if (from == to) return to;
  if (pending_key_ == NoEntry) {
    const String& key = slots_[positions_[from - base_]].Key;
    int32_t place = NoEntry;
    if (!key.empty() && KeySearchConst(key, &place) != NoEntry) pending_key_ = place;
  }
  std::vector<KeyRecord>& records = mutable_keys();
  if (from < to) {
    RotatePosition(positions_, static_cast<size_t>(from - base_), static_cast<size_t>(to - base_));
    // The record whose Index equals To is left alone: the item that stood at To keeps
    // answering with To. Callers have long lived with this, so it stays.
    int32_t left = to - from;
    for (KeyRecord& record : records) {
      if (left == 0) break;
      if (record.Used && record.Index >= from && record.Index < to) {
        --record.Index;
        --left;
      }
    }
  } else if (from > to) {
    RotatePosition(positions_, static_cast<size_t>(from - base_), static_cast<size_t>(to - base_));
    int32_t left = from - to;
    for (KeyRecord& record : records) {
      if (left == 0) break;
      if (record.Used && record.Index >= to && record.Index < from) {
        ++record.Index;
        --left;
      }
    }
  } else {
    RaiseCollectionError(kErrCollectionUndefined);
  }
  if (pending_key_ != NoEntry) records[pending_key_].Index = to;
  pending_key_ = NoEntry;
  return to;
}

void CSuperCollection::RenameItem(int32_t position, StringView new_key) {
  const int32_t slot = positions_[position - base_];
  Variant& value = slots_[slot].Value;
  // The object learns its new key first: should it refuse, nothing here has changed yet.
  if (value.is_object() && value.as_object()) {
    Ref<Object> object(value.as_object());
    object->Let(u"Key", Variant(String(new_key)));
  }
  slots_[slot].Key = String(new_key);
}

void CSuperCollection::ChangeKey(StringView old_key, StringView new_key) {
  if (KeySearchConst(new_key, nullptr) != NoEntry) throw Error(kErrKeyExists);
  int32_t place = NoEntry;
  const int32_t position = KeySearchConst(old_key, &place);
  if (position == NoEntry) RaiseCollectionError(kErrCollectionKeyNotFound);
  RenameItem(position, new_key);
  EraseKeyRecord(place);
  if (!new_key.empty()) InsertKeyRecord(new_key, position);
}

void CSuperCollection::ChangeKeyForIndex(StringView index, StringView new_key) {
  const int32_t position = ToLong(Variant(String(index)));
  if (position < base_ || position > LastPosition() || SlotAt(position) < 0) return;
  if (KeySearchConst(new_key, nullptr) != NoEntry) throw Error(kErrKeyExists);
  RenameItem(position, new_key);
  const std::vector<KeyRecord>& records = keys();
  for (size_t i = 0; i < records.size(); ++i) {
    if (records[i].Used && records[i].Index == position) {
      EraseKeyRecord(static_cast<int32_t>(i));
      break;
    }
  }
  if (!new_key.empty()) InsertKeyRecord(new_key, position);
}

Ref<CKeys> CSuperCollection::Keys() {
  return MakeRef<CKeys>(*this);
}

Ref<Enumerator> CSuperCollection::NewEnum() {
  const int32_t start = PositionsEmpty() ? LastPosition() + 1 : base_;
  return MakeRef<cEnumerationObject>(*this, start);
}

void CSuperCollection::AdoptLayout(const CSuperCollection& prototype,
                                   std::vector<Variant>&& values) {
  if (Count() > 0) RaiseCollectionError(kErrCollectionInitialized);
  compare_mode_ = prototype.compare_mode_;
  base_ = prototype.base_;
  positions_ = prototype.positions_;
  keys_ = prototype.keys_;
  slots_.resize(prototype.slots_.size());
  used_ = prototype.used_;
  for (size_t i = 0; i < slots_.size(); ++i) {
    slots_[i].Key = prototype.slots_[i].Key;
    slots_[i].Value = i < values.size() ? std::move(values[i]) : Variant();
  }
  pending_key_ = NoEntry;
}

const DispatchTable<CSuperCollection>& CSuperCollection::Table() {
  using C = CSuperCollection;
  constexpr auto add = [](C& c, const Variant& value, std::optional<String> key,
                          std::optional<int32_t> position_type, std::optional<int32_t> reference) {
    c.Add(value, key.value_or(String()), position_type.value_or(4), reference.value_or(NoEntry));
  };
  static const auto table =
      DispatchTable<C>(u"CSuperCollection")
          .Property<&C::Item, &C::SetItem, &C::SetItem>(u"Item")
          .Default(u"Item")
          .Property<&C::CompareMode, &C::SetCompareMode>(u"CompareMode")
          .Property<&C::AllowItemAsignments, &C::SetAllowItemAsignments>(u"AllowItemAsignments")
          .Property<&C::BaseIndex, &C::SetBaseIndex>(u"BaseIndex")
          .Property<&C::Keys>(u"Keys")
          .Property<&C::Key>(u"Key")
          .Method<&C::KeyExists>(u"KeyExists")
          .Method<&C::ChangeKey>(u"ChangeKey")
          .Method<&C::ChangeKeyForIndex>(u"ChangeKeyForIndex")
          .Method<add>(u"Add")
          .Property<&C::Count>(u"Count")
          .Method<&C::Remove>(u"Remove")
          .Method<&C::Clear>(u"Clear")
          .Method<&C::MoveItem>(u"MoveItem");
  return table;
}

}  // namespace qv
