// Scripting.Dictionary: entries in insertion order in a vector, a hash index from key to
// entry. Removing leaves a hole that later compaction closes, so Remove stays O(1) and the
// order of the rest is kept.
#include "vbscript/dictionary.h"

#include <cmath>
#include <functional>

#include "automation/convert.h"
#include "automation/safe_array.h"

namespace qv::vbs {

namespace {

// For Each walks a snapshot of the keys, so a loop that changes the dictionary is safe.
class KeyEnumerator : public Enumerator {
 public:
  explicit KeyEnumerator(std::vector<Variant> keys) : keys_(std::move(keys)) {}
  bool Next(Variant& item) override {
    if (at_ >= keys_.size()) return false;
    item = keys_[at_++];
    return true;
  }
  void Reset() override { at_ = 0; }

 private:
  std::vector<Variant> keys_;
  size_t at_ = 0;
};

}  // namespace

size_t Dictionary::KeyHash::operator()(const Key& k) const noexcept {
  switch (k.kind) {
    case Key::Number:
      return std::hash<double>()(k.number == 0 ? 0.0 : k.number);
    case Key::Text:
      return owner->text_keys() ? HashNoCase(k.text) : std::hash<StringView>()(k.text.view());
    case Key::Object:
      return std::hash<const void*>()(k.object);
    default:
      return k.kind;
  }
}

bool Dictionary::KeyEqual::operator()(const Key& a, const Key& b) const noexcept {
  if (a.kind != b.kind) return false;
  switch (a.kind) {
    case Key::Number:
      return a.number == b.number;
    case Key::Text:
      return owner->text_keys() ? EqualsNoCase(a.text, b.text) : a.text == b.text;
    case Key::Object:
      return a.object == b.object;
    default:
      return true;
  }
}

Dictionary::Key Dictionary::MakeKey(const Variant& key) {
  Key k;
  switch (key.type()) {
    case VarType::Empty:
      k.kind = Key::Empty;
      break;
    case VarType::Null:
      k.kind = Key::Null;
      break;
    case VarType::String:
      k.kind = Key::Text;
      k.text = key.as_string();
      break;
    case VarType::Object:
      k.kind = Key::Object;
      k.object = key.as_object();
      break;
    case VarType::Array:
    case VarType::Error:
      throw Error(kErrTypeMismatch);
    default:
      k.kind = Key::Number;
      k.number = key.type() == VarType::Currency ? key.as_currency() / 10000.0 : ToDouble(key);
  }
  return k;
}

size_t* Dictionary::Find(const Variant& key) {
  const auto it = index_.find(MakeKey(key));
  return it == index_.end() ? nullptr : &it->second;
}

const size_t* Dictionary::Find(const Variant& key) const {
  const auto it = index_.find(MakeKey(key));
  return it == index_.end() ? nullptr : &it->second;
}

size_t Dictionary::Append(const Variant& key, Key&& normal, const Variant& item) {
  entries_.push_back(Entry{key, item});
  const size_t at = entries_.size() - 1;
  index_.emplace(std::move(normal), at);
  return at;
}

void Dictionary::Add(const Variant& key, const Variant& item) {
  Key normal = MakeKey(key);
  if (index_.count(normal)) throw Error(kErrKeyExists);
  Append(key, std::move(normal), item);
}

bool Dictionary::Exists(const Variant& key) const {
  return Find(key) != nullptr;
}

Variant Dictionary::Item(const Variant& key) {
  if (const size_t* at = Find(key)) return entries_[*at].item;
  Append(key, MakeKey(key), Variant());
  return {};
}

void Dictionary::SetItem(const Variant& key, const Variant& item) {
  if (const size_t* at = Find(key)) {
    entries_[*at].item = item;
    return;
  }
  Append(key, MakeKey(key), item);
}

void Dictionary::RenameKey(const Variant& key, const Variant& new_key) {
  const auto it = index_.find(MakeKey(key));
  if (it == index_.end()) throw Error(kErrElementNotFound);
  Key normal = MakeKey(new_key);
  if (index_.count(normal)) throw Error(kErrKeyExists);
  const size_t at = it->second;
  index_.erase(it);
  entries_[at].key = new_key;
  index_.emplace(std::move(normal), at);
}

void Dictionary::Remove(const Variant& key) {
  const auto it = index_.find(MakeKey(key));
  if (it == index_.end()) throw Error(kErrElementNotFound);
  Entry& e = entries_[it->second];
  index_.erase(it);
  e = Entry{{}, {}, false};
  ++dead_;
  if (dead_ > 32 && dead_ > index_.size()) Compact();
}

void Dictionary::Compact() {
  std::vector<Entry> live;
  live.reserve(index_.size());
  for (Entry& e : entries_) {
    if (e.alive) live.push_back(std::move(e));
  }
  entries_ = std::move(live);
  dead_ = 0;
  index_.clear();
  for (size_t i = 0; i < entries_.size(); ++i)
    index_.emplace(MakeKey(entries_[i].key), i);
}

void Dictionary::RemoveAll() {
  entries_.clear();
  index_.clear();
  dead_ = 0;
}

void Dictionary::set_compare_mode(int32_t mode) {
  if (mode < 0) throw Error(kErrInvalidCall);
  if (!index_.empty()) throw Error(kErrInvalidCall);
  compare_mode_ = mode;
}

Variant Dictionary::Keys() const {
  std::vector<Variant> keys;
  keys.reserve(index_.size());
  for (const Entry& e : entries_) {
    if (e.alive) keys.push_back(e.key);
  }
  return Variant(SafeArray::FromValues(std::move(keys)));
}

Variant Dictionary::Items() const {
  std::vector<Variant> items;
  items.reserve(index_.size());
  for (const Entry& e : entries_) {
    if (e.alive) items.push_back(e.item);
  }
  return Variant(SafeArray::FromValues(std::move(items)));
}

int32_t Dictionary::HashVal(const Variant& key) const {
  return static_cast<int32_t>(KeyHash{this}(MakeKey(key)) % 1201);
}

Ref<Enumerator> Dictionary::NewEnum() {
  std::vector<Variant> keys;
  keys.reserve(index_.size());
  for (const Entry& e : entries_) {
    if (e.alive) keys.push_back(e.key);
  }
  return MakeRef<KeyEnumerator>(std::move(keys));
}

namespace {

const Variant& Arg(Args args, size_t i) {
  if (i >= args.size() || args[i].is_missing()) throw Error(kErrArgumentNotOptional);
  return args[i];
}

}  // namespace

const DispatchTable<Dictionary>& Dictionary::Table() {
  using D = Dictionary;
  static const auto table = DispatchTable<D>(u"Dictionary")
                                .Property(
                                    u"Item",
                                    [](D& d, Args a) {
                                      CheckArgCount(a, 1, 1);
                                      return d.Item(a[0]);
                                    },
                                    [](D& d, Args a, const Variant& v) {
                                      CheckArgCount(a, 1, 1);
                                      d.SetItem(a[0], v);
                                    })
                                .Default(u"Item")
                                .Method(u"Add",
                                        [](D& d, Args a) {
                                          CheckArgCount(a, 2, 2);
                                          d.Add(Arg(a, 0), Arg(a, 1));
                                          return Variant();
                                        })
                                .Method(u"Exists",
                                        [](D& d, Args a) {
                                          CheckArgCount(a, 1, 1);
                                          return Variant(d.Exists(Arg(a, 0)));
                                        })
                                .Property(u"Key", nullptr,
                                          [](D& d, Args a, const Variant& v) {
                                            CheckArgCount(a, 1, 1);
                                            d.RenameKey(a[0], v);
                                          })
                                .Method(u"Items",
                                        [](D& d, Args a) {
                                          CheckArgCount(a, 0, 0);
                                          return d.Items();
                                        })
                                .Method(u"Keys",
                                        [](D& d, Args a) {
                                          CheckArgCount(a, 0, 0);
                                          return d.Keys();
                                        })
                                .Method(u"Remove",
                                        [](D& d, Args a) {
                                          CheckArgCount(a, 1, 1);
                                          d.Remove(Arg(a, 0));
                                          return Variant();
                                        })
                                .Method(u"RemoveAll",
                                        [](D& d, Args a) {
                                          CheckArgCount(a, 0, 0);
                                          d.RemoveAll();
                                          return Variant();
                                        })
                                .Property(u"Count",
                                          [](D& d, Args a) {
                                            CheckArgCount(a, 0, 0);
                                            return Variant(d.Count());
                                          })
                                .Property(
                                    u"CompareMode",
                                    [](D& d, Args a) {
                                      CheckArgCount(a, 0, 0);
                                      return Variant(d.compare_mode());
                                    },
                                    [](D& d, Args a, const Variant& v) {
                                      CheckArgCount(a, 0, 0);
                                      d.set_compare_mode(ToLong(v));
                                    })
                                .Method(u"HashVal", [](D& d, Args a) {
                                  CheckArgCount(a, 1, 1);
                                  return Variant(d.HashVal(Arg(a, 0)));
                                });
  return table;
}

}  // namespace qv::vbs
