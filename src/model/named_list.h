// The keyed lists with a current entry: TyxFields, TyxTables, TyxCharts and TyxExtensions.
// NamedList<T> keeps the entries under their names in a text-mode collection; the order a
// user sees is each entry's own sequence number, which the list keeps contiguous on deletion
// but never derives from the collection's order. T names the entries of its bag that hold the
// name and the sequence number (kNameIndex, kSeqIndex) and offers Entry(index).
//
// TyxList is the object scripts see over a NamedList. Everything the four lists share lives
// there, members and their object interface alike; a list states only how it differs, as a
// ListRules value in list_rules.h, where the four stand side by side.
#pragma once

#include <cassert>
#include <cstdint>

#include "automation/convert.h"
#include "automation/dispatch.h"
#include "model/bag_accessors.h"
#include "model/list_rules.h"
#include "model/super_collection.h"
#include "support/tyx_functions.h"

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

// The members every list of the model answers, in the order scripts find them: Item (the
// default member), curName, curSeq and Count. L offers these as member functions.
template <class L>
DispatchTable<L> ListMembers(StringView type_name) {
  return DispatchTable<L>(String(type_name))
      .template Property<&L::Item>(u"Item")
      .Default(u"Item")
      .template Property<&L::curName>(u"curName")
      .template Property<&L::curSeq>(u"curSeq")
      .template Property<&L::Count>(u"Count");
}

// The object scripts see over a NamedList: Self is the concrete list (whose member table this
// builds), T its entries and kRules where it differs from the other lists.
template <class Self, class T, const ListRules& kRules>
class TyxList : public DispatchObject<Self> {
 public:
  static const DispatchTable<Self>& Table() {
    static const DispatchTable<Self> table = MakeTable();
    return table;
  }

  const String& curName() const { return list_.cur_name(); }
  // The current entry's sequence number; some lists answer it as text.
  Variant curSeq() const {
    if (kRules.seq_as_text) return Variant(NumberText(list_.cur_seq()));
    return Variant(list_.cur_seq());
  }
  int32_t Count() const { return list_.Count(); }

  // False for an empty name. A name in use is refused, or made current where the rules say
  // so; a new entry is appended with the next sequence number and made current.
  bool Add(StringView name) {
    if (name.empty()) return false;
    if (T* existing = list_.ByKey(name)) {
      if (!kRules.add_selects_existing) return false;
      list_.MakeCurrent(*existing);
      return true;
    }
    Ref<T> item = list_.Append(name);
    if (kRules.var_on_add) SetVar(*item, name);
    return true;
  }
  // Renames (457 when the new name is taken), derives the variable name from the new one and
  // makes the entry current.
  bool Change(StringView old_name, StringView new_name) {
    T* item = list_.Rename(old_name, new_name);
    if (!item) return false;
    SetVar(*item, new_name);
    list_.MakeCurrent(*item);
    return true;
  }
  // Removes an entry and closes the gap in the sequence numbers. Delete, Item and Seq swallow
  // failures of their steps, as the hosts expect: a bad sequence value in one entry must not
  // stop a lookup of another.
  bool Delete(StringView name) {
    try {
      return list_.DeleteAndRenumber(name);
    } catch (const Error&) {
      return false;
    }
  }
  // Whether an entry's name equals the text exactly (unlike the key search, case counts).
  bool Exist(const Variant& index) const { return list_.ByName(ToString(index)) != nullptr; }
  // By exact name (text) or by position (number); a hit becomes current. nullptr on a miss.
  Ref<T> Item(const Variant& index) {
    try {
      T* item = list_.ByIndex(index);
      if (item) list_.MakeCurrent(*item);
      return Ref<T>(item);
    } catch (const Error&) {
      return nullptr;
    }
  }
  // By sequence number, leaving the current entry alone.
  Ref<T> Seq(int16_t seq) const {
    try {
      return Ref<T>(list_.BySeq(seq));
    } catch (const Error&) {
      return nullptr;
    }
  }
  void SetItem(const Variant& index) {
    if (T* item = list_.ByName(ToString(index))) list_.MakeCurrent(*item);
  }
  void SetSeq(int16_t seq) {
    if (T* item = list_.BySeq(seq)) list_.MakeCurrent(*item);
  }

  Ref<Enumerator> NewEnum() override { return list_.collection().NewEnum(); }
  NamedList<T>& list() { return list_; }
  const NamedList<T>& list() const { return list_; }

 private:
  static void SetVar(T& item, StringView name) {
    if constexpr (requires { T::kVarIndex; }) {
      item.Entry(T::kVarIndex).SetValue(Variant(ToVarName(name, kRules.var_prefix)));
      item.AfterSet(T::kVarIndex);
    } else {
      assert(!"a list that derives variable names needs entries with kVarIndex");
    }
  }

  static DispatchTable<Self> MakeTable() {
    using L = TyxList;
    auto table = ListMembers<Self>(kRules.type_name);
    table.template Method<&L::Add>(u"Add");
    if (kRules.has_change) table.template Method<&L::Change>(u"Change");
    table.template Method<&L::Delete>(u"Delete")
        .template Method<&L::Exist>(kRules.exist_member)
        .template Method<&L::Seq>(u"Seq");
    if (kRules.has_set_members) {
      table.template Method<&L::SetItem>(u"SetItem").template Method<&L::SetSeq>(u"SetSeq");
    }
    return table;
  }

  NamedList<T> list_;
};

}  // namespace qv
