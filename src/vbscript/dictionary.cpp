// Scripting.Dictionary: entries in insertion order in a vector and an open-addressing index
// of entry numbers beside it (no allocation per key, one probe sequence per call). Removing
// leaves a hole that a later rebuild closes, so Remove stays O(1) and the order is kept.
#include "vbscript/dictionary.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "automation/convert.h"
#include "automation/safe_array.h"

namespace qv::vbs {

namespace {

// Walks the live dictionary by adding order. Once it has reported the end it stays there until
// Reset, even if keys are added afterwards.
class KeyEnumerator : public Enumerator {
 public:
  explicit KeyEnumerator(Ref<Dictionary> d) : d_(std::move(d)) {}
  bool Next(Variant& item) override {
    if (done_) return false;
    if (d_->KeyFrom(from_, item, from_)) return true;
    done_ = true;
    return false;
  }
  void Reset() override {
    from_ = 0;
    done_ = false;
  }

 private:
  Ref<Dictionary> d_;
  uint64_t from_ = 0;
  bool done_ = false;
};

}  // namespace

namespace {

enum class KeyKind { Empty, Null, Number, Text, Object };

KeyKind KindOf(const Variant& key) {
  switch (key.type()) {
    case VarType::Empty:
      return KeyKind::Empty;
    case VarType::Null:
      return KeyKind::Null;
    case VarType::String:
      return KeyKind::Text;
    case VarType::Object:
      return KeyKind::Object;
    case VarType::Array:
    case VarType::Error:
      throw Error(kErrTypeMismatch);
    default:
      return KeyKind::Number;
  }
}

double NumberOfKey(const Variant& key) {
  const double d = key.type() == VarType::Currency ? key.as_currency() / 10000.0 : ToDouble(key);
  return d == 0 ? 0.0 : d;  // -0 and 0 are one key
}

size_t Mix(uint64_t h) {
  h ^= h >> 33;
  h *= 0xff51afd7ed558ccdull;
  h ^= h >> 33;
  return static_cast<size_t>(h);
}

size_t HashBinary(StringView text) {
  uint64_t h = 1469598103934665603ull;
  for (const Char c : text) {
    h ^= c;
    h *= 1099511628211ull;
  }
  return static_cast<size_t>(h);
}

}  // namespace

size_t Dictionary::HashOf(const Variant& key) const {
  switch (KindOf(key)) {
    case KeyKind::Empty:
      return 0x1234;
    case KeyKind::Null:
      return 0x5678;
    case KeyKind::Text:
      return Mix(text_keys() ? HashNoCase(key.as_string()) : HashBinary(key.as_string()));
    case KeyKind::Object:
      return Mix(reinterpret_cast<uintptr_t>(key.as_object()));
    case KeyKind::Number: {
      const double d = NumberOfKey(key);
      uint64_t bits;
      std::memcpy(&bits, &d, sizeof bits);
      return Mix(bits);
    }
  }
  return 0;
}

bool Dictionary::SameKey(const Variant& a, const Variant& b) const {
  const KeyKind kind = KindOf(a);
  if (kind != KindOf(b)) return false;
  switch (kind) {
    case KeyKind::Text:
      return text_keys() ? EqualsNoCase(a.as_string(), b.as_string())
                         : a.as_string() == b.as_string();
    case KeyKind::Object:
      return a.as_object() == b.as_object();
    case KeyKind::Number:
      return NumberOfKey(a) == NumberOfKey(b);
    default:
      return true;
  }
}

size_t Dictionary::Probe(const Variant& key, size_t hash, bool& found) const {
  found = false;
  const size_t mask = slots_.size() - 1;
  size_t reuse = SIZE_MAX;
  for (size_t i = hash & mask;; i = (i + 1) & mask) {
    const uint32_t slot = slots_[i];
    if (slot == kFree) return reuse != SIZE_MAX ? reuse : i;
    if (slot == kGone) {
      if (reuse == SIZE_MAX) reuse = i;
      continue;
    }
    const Entry& e = entries_[slot - 1];
    if (e.hash == hash && SameKey(e.key, key)) {
      found = true;
      return i;
    }
  }
}

size_t Dictionary::FindEntry(const Variant& key) const {
  const size_t hash = HashOf(key);
  if (slots_.empty()) return SIZE_MAX;
  bool found;
  const size_t i = Probe(key, hash, found);
  return found ? slots_[i] - 1 : SIZE_MAX;
}

void Dictionary::Insert(const Variant& key, size_t hash, size_t slot, const Variant& item) {
  if (slots_[slot] == kFree) ++used_slots_;
  entries_.push_back(Entry{key, item, hash, true, next_sequence_++});
  slots_[slot] = static_cast<uint32_t>(entries_.size());
  ++live_;
}

void Dictionary::Rebuild(size_t capacity) {
  // Closes the holes of removed entries and lays the index out anew.
  std::vector<Entry> live;
  live.reserve(live_);
  for (Entry& e : entries_) {
    if (e.alive) live.push_back(std::move(e));
  }
  entries_ = std::move(live);
  slots_.assign(capacity, kFree);
  const size_t mask = capacity - 1;
  for (size_t n = 0; n < entries_.size(); ++n) {
    size_t i = entries_[n].hash & mask;
    while (slots_[i] != kFree)
      i = (i + 1) & mask;
    slots_[i] = static_cast<uint32_t>(n + 1);
  }
  used_slots_ = entries_.size();
}

size_t Dictionary::Prepare(const Variant& key, size_t& hash, bool& found) {
  hash = HashOf(key);
  if ((used_slots_ + 1) * 2 > slots_.size()) {
    size_t capacity = 16;
    while (capacity < (live_ + 1) * 4)
      capacity *= 2;
    Rebuild(capacity);
  }
  return Probe(key, hash, found);
}

void Dictionary::Add(const Variant& key, const Variant& item) {
  size_t hash;
  bool found;
  const size_t slot = Prepare(key, hash, found);
  if (found) throw Error(kErrKeyExists);
  Insert(key, hash, slot, item);
}

bool Dictionary::Exists(const Variant& key) const {
  return FindEntry(key) != SIZE_MAX;
}

Variant Dictionary::Item(const Variant& key) {
  const size_t at = FindEntry(key);
  if (at != SIZE_MAX) return entries_[at].item;
  SetItem(key, Variant());
  return {};
}

void Dictionary::SetItem(const Variant& key, const Variant& item) {
  size_t hash;
  bool found;
  const size_t slot = Prepare(key, hash, found);
  if (found) {
    entries_[slots_[slot] - 1].item = item;
    return;
  }
  Insert(key, hash, slot, item);
}

void Dictionary::RenameKey(const Variant& key, const Variant& new_key) {
  const size_t at = FindEntry(key);
  if (at == SIZE_MAX) throw Error(kErrElementNotFound);
  if (FindEntry(new_key) != SIZE_MAX) throw Error(kErrKeyExists);
  // Take the entry out of the index under its old key, then put it back under the new one.
  bool found;
  slots_[Probe(key, entries_[at].hash, found)] = kGone;
  entries_[at].key = new_key;
  entries_[at].hash = HashOf(new_key);
  const size_t slot = Probe(new_key, entries_[at].hash, found);
  if (slots_[slot] == kFree) ++used_slots_;
  slots_[slot] = static_cast<uint32_t>(at + 1);
}

void Dictionary::Remove(const Variant& key) {
  const size_t hash = HashOf(key);
  bool found = false;
  const size_t slot = slots_.empty() ? 0 : Probe(key, hash, found);
  if (!found) throw Error(kErrElementNotFound);
  Entry& e = entries_[slots_[slot] - 1];
  e.key = Variant();
  e.item = Variant();
  e.alive = false;
  slots_[slot] = kGone;
  --live_;
  if (entries_.size() > 32 && live_ * 2 < entries_.size()) Rebuild(slots_.size());
}

void Dictionary::RemoveAll() {
  entries_.clear();
  slots_.clear();
  live_ = 0;
  used_slots_ = 0;
}

void Dictionary::set_compare_mode(int32_t mode) {
  // Any mode from 0 up is taken (above 1 they compare as text), but only while empty.
  if (mode < 0) throw Error(kErrInvalidCall);
  if (live_ != 0) throw Error(kErrInvalidCall);
  compare_mode_ = mode;
}

Variant Dictionary::Keys() const {
  std::vector<Variant> keys;
  keys.reserve(live_);
  for (const Entry& e : entries_) {
    if (e.alive) keys.push_back(e.key);
  }
  return Variant(SafeArray::FromValues(std::move(keys)));
}

Variant Dictionary::Items() const {
  std::vector<Variant> items;
  items.reserve(live_);
  for (const Entry& e : entries_) {
    if (e.alive) items.push_back(e.item);
  }
  return Variant(SafeArray::FromValues(std::move(items)));
}

// The numbers Windows reports: a shift-and-add over the characters (folded to lower case
// under text compare), or the bits of the number as a single-precision float; modulo 1201.
int32_t Dictionary::HashVal(const Variant& key) const {
  constexpr uint32_t kBuckets = 1201;
  switch (key.type()) {
    case VarType::String: {
      uint32_t h = 0;
      for (const Char c : key.as_string().view())
        h += (h << 4) + (text_keys() ? ToLowerChar(c) : c);
      return static_cast<int32_t>(h % kBuckets);
    }
    case VarType::Byte:
    case VarType::Integer:
    case VarType::Long:
    case VarType::Single:
    case VarType::Double:
    case VarType::Date: {
      const float f = static_cast<float>(ToDouble(key));
      if (std::isnan(f)) throw Error(kErrInvalidCall);
      if (std::isinf(f)) return 0;
      uint32_t bits;
      std::memcpy(&bits, &f, sizeof bits);
      return static_cast<int32_t>(bits % kBuckets);
    }
    default:
      return static_cast<int32_t>(HashOf(key) % kBuckets);
  }
}

Ref<Enumerator> Dictionary::NewEnum() {
  return MakeRef<KeyEnumerator>(Ref<Dictionary>(this));
}

bool Dictionary::KeyFrom(uint64_t sequence, Variant& key, uint64_t& next) const {
  auto it = std::lower_bound(entries_.begin(), entries_.end(), sequence,
                             [](const Entry& e, uint64_t s) { return e.sequence < s; });
  for (; it != entries_.end(); ++it) {
    if (!it->alive) continue;
    key = it->key;
    next = it->sequence + 1;
    return true;
  }
  return false;
}

const DispatchTable<Dictionary>& Dictionary::Table() {
  using D = Dictionary;
  static const auto table = DispatchTable<D>(u"Dictionary")
                                .Property<&D::Item, &D::SetItem>(u"Item")
                                .Default(u"Item")
                                .Method<&D::Add>(u"Add")
                                .Method<&D::Exists>(u"Exists")
                                .Property(u"Key", nullptr,  // written only
                                          [](D& d, Args a, const Variant& v) {
                                            CheckArgCount(a, 1, 1);
                                            d.RenameKey(a[0], v);
                                          })
                                .Method<&D::Items>(u"Items")
                                .Method<&D::Keys>(u"Keys")
                                .Method<&D::Remove>(u"Remove")
                                .Method<&D::RemoveAll>(u"RemoveAll")
                                .Property<&D::Count>(u"Count")
                                .Property<&D::compare_mode, &D::set_compare_mode>(u"CompareMode")
                                .Method<&D::HashVal>(u"HashVal");
  return table;
}

}  // namespace qv::vbs
