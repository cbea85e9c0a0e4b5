// Scripting.Dictionary: keys and items in the order they were added, found by key in constant
// time. Numbers are one key whatever their type (1, 1.0 and CLng(1) are the same key), text
// keys compare exactly or, with CompareMode 1, without regard to case, and objects by identity.
#pragma once

#include <cstdint>
#include <unordered_map>
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
  int32_t Count() const { return static_cast<int32_t>(index_.size()); }
  int32_t compare_mode() const { return compare_mode_; }
  void set_compare_mode(int32_t mode);
  Variant Keys() const;
  Variant Items() const;
  int32_t HashVal(const Variant& key) const;

  Ref<Enumerator> NewEnum() override;

 private:
  // A key reduced to what identifies it.
  struct Key {
    enum Kind : uint8_t { Empty, Null, Number, Text, Object } kind = Empty;
    double number = 0;
    String text;
    const void* object = nullptr;
  };
  struct KeyHash {
    const Dictionary* owner;
    size_t operator()(const Key& k) const noexcept;
  };
  struct KeyEqual {
    const Dictionary* owner;
    bool operator()(const Key& a, const Key& b) const noexcept;
  };
  struct Entry {
    Variant key;
    Variant item;
    bool alive = true;
  };
  using Map = std::unordered_map<Key, size_t, KeyHash, KeyEqual>;

  static Key MakeKey(const Variant& key);
  bool text_keys() const { return compare_mode_ >= 1; }
  size_t* Find(const Variant& key);
  const size_t* Find(const Variant& key) const;
  size_t Append(const Variant& key, Key&& normal, const Variant& item);
  void Compact();

  int32_t compare_mode_ = 0;
  std::vector<Entry> entries_;
  size_t dead_ = 0;
  Map index_{16, KeyHash{this}, KeyEqual{this}};
};

}  // namespace qv::vbs
