// NamedList<T>: the keyed list with a current entry under TyxFields, TyxTables, TyxCharts and
// TyxExtensions. Entries are kept under their names in a text-mode collection; the order a
// user sees is each entry's own sequence number, which the list keeps contiguous on deletion
// but never derives from the collection's order. T names the entries of its bag that hold the
// name and the sequence number (kNameIndex, kSeqIndex) and offers Entry(index).
#pragma once

#include <cstdint>

#include "automation/convert.h"
#include "model/bag_accessors.h"
#include "model/super_collection.h"

namespace qv {

template <class T>
class NamedList {
 public:
  NamedList() : collection_(MakeRef<CSuperCollection>()) { collection_->SetCompareMode(1); }

  CSuperCollection& collection() const { return *collection_; }
  int32_t Count() const { return collection_->Count(); }
  const String& cur_name() const { return cur_name_; }
  int16_t cur_seq() const { return cur_seq_; }

  static String NameOf(const T& item) { return BagRead<String>(item.Entry(T::kNameIndex).Value()); }
  static int16_t SeqOf(const T& item) { return BagRead<int16_t>(item.Entry(T::kSeqIndex).Value()); }

  // True when the collection holds the name as a key (without regard to case).
  bool HasKey(StringView name) const { return collection_->KeyExists(name) != NoEntry; }

  // Creates an entry under `name`, appends it with the next sequence number, makes it current.
  Ref<T> Append(StringView name) {
    Ref<T> item = MakeRef<T>();
    item->Entry(T::kNameIndex).SetValue(Variant(String(name)));
    collection_->Add(Variant(item), name);
    item->Entry(T::kSeqIndex).SetValue(Variant(static_cast<int16_t>(Count())));
    MakeCurrent(*item);
    return item;
  }

  T* AtPosition(int32_t position) const {
    const Variant* v = collection_->SlotValue(collection_->SlotAt(position));
    return v && v->is_object() ? static_cast<T*>(v->as_object()) : nullptr;
  }
  T* ByKey(StringView name) const {
    const Variant* v = collection_->SlotValue(collection_->FindSlot(name));
    return v && v->is_object() ? static_cast<T*>(v->as_object()) : nullptr;
  }
  // The first entry, in list order, whose name equals `name` exactly. The key search answers
  // at once when the entry's name is its key, which is the usual case.
  T* ByName(StringView name) const {
    T* keyed = ByKey(name);
    if (keyed && NameOf(*keyed) == name) return keyed;
    T* found = nullptr;
    ForEach([&](T& item) {
      if (!found && NameOf(item) == name) found = &item;
    });
    return found;
  }
  // The first entry whose sequence number is `seq`.
  T* BySeq(int16_t seq) const {
    T* found = nullptr;
    ForEach([&](T& item) {
      if (!found && SeqOf(item) == seq) found = &item;
    });
    return found;
  }
  // An entry by a name (exact) or a position (any number); nullptr on a miss.
  T* ByIndex(const Variant& index) const {
    if (IsPositionIndex(index)) return AtPosition(ToLong(index));
    return ByName(ToString(index));
  }

  void MakeCurrent(const T& item) {
    cur_name_ = NameOf(item);
    cur_seq_ = SeqOf(item);
  }

  // Removes an entry by name and closes the gap in the sequence numbers: every entry whose
  // number is at least the removed one's (the removed one included) moves down by one.
  bool DeleteAndRenumber(StringView name) {
    if (name.empty()) return false;
    T* target = ByKey(name);
    if (!target) return false;
    const int16_t seq = SeqOf(*target);
    ForEach([&](T& item) {
      const int16_t s = SeqOf(item);
      if (s >= seq) item.Entry(T::kSeqIndex).SetValue(Variant(static_cast<int16_t>(s - 1)));
    });
    collection_->Remove(Variant(String(name)));
    return true;
  }

  // Renames through the collection's key change, which also sets the entry's name; a new name
  // in use raises 457. Returns the entry, or nullptr when `old_name` is no entry.
  T* Rename(StringView old_name, StringView new_name) {
    if (old_name.empty() || new_name.empty() || !HasKey(old_name)) return nullptr;
    collection_->ChangeKey(old_name, new_name);
    return ByKey(new_name);
  }

  template <class F>
  void ForEach(F&& f) const {
    const int32_t last = collection_->LastPosition();
    for (int32_t p = collection_->BaseIndex(); p <= last; ++p) {
      if (T* item = AtPosition(p)) f(*item);
    }
  }

 private:
  Ref<CSuperCollection> collection_;
  String cur_name_;
  int16_t cur_seq_ = 0;
};

}  // namespace qv
