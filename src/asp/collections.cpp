// Collections answer by name without regard to case and by index from 1, as on Windows; an
// index beyond the end raises 9 ("Subscript out of range").
#include "asp/collections.h"

#include "automation/convert.h"

namespace qv::asp {
namespace {

bool IsIndex(const Variant& v) {
  return v.is_numeric_type() && !v.is_string();
}

size_t IndexFrom(const Variant& v, size_t count) {
  const int32_t i = ToLong(v);
  if (i < 1 || static_cast<size_t>(i) > count) throw Error(kErrSubscript);
  return static_cast<size_t>(i - 1);
}

}  // namespace

// --- StringList --------------------------------------------------------------------------------

Variant StringList::Joined() const {
  if (values_.empty()) return Variant();
  if (values_.size() == 1) return Variant(values_[0]);
  String out = values_[0];
  for (size_t i = 1; i < values_.size(); ++i) {
    out.Append(u", ");
    out.Append(values_[i]);
  }
  return Variant(out);
}

Ref<Enumerator> StringList::NewEnum() {
  std::vector<Variant> items(values_.begin(), values_.end());
  return MakeRef<ListEnumerator>(std::move(items));
}

const DispatchTable<StringList>& StringList::Table() {
  static const auto table =
      DispatchTable<StringList>(u"IStringList")
          .Property(u"Item",
                    [](StringList& s, Args a) {
                      CheckArgCount(a, 0, 1);
                      if (!HasArg(a, 0)) return s.Joined();
                      return Variant(s.values_[IndexFrom(a[0], s.values_.size())]);
                    })
          .Property(u"Count",
                    [](StringList& s, Args a) {
                      CheckArgCount(a, 0, 0);
                      return Variant(static_cast<int32_t>(s.values_.size()));
                    })
          .Default(u"Item");
  return table;
}

// --- RequestDictionary -------------------------------------------------------------------------

void RequestDictionary::Add(std::vector<Entry>& entries, String name, String value) {
  for (Entry& e : entries) {
    if (EqualsNoCase(e.name, name)) {
      e.values.push_back(std::move(value));
      return;
    }
  }
  entries.push_back({std::move(name), {std::move(value)}});
}

const RequestDictionary::Entry* RequestDictionary::Find(StringView name) const {
  for (const Entry& e : entries_) {
    if (EqualsNoCase(e.name, name)) return &e;
  }
  return nullptr;
}

Variant RequestDictionary::Item(Args args) {
  CheckArgCount(args, 0, 1);
  if (!HasArg(args, 0)) return raw_;
  if (IsIndex(args[0]))
    return Variant(MakeRef<StringList>(entries_[IndexFrom(args[0], entries_.size())].values));
  const Entry* e = Find(ToString(args[0]));
  return Variant(MakeRef<StringList>(e ? e->values : std::vector<String>{}));
}

Ref<Enumerator> RequestDictionary::NewEnum() {
  std::vector<Variant> names;
  for (const Entry& e : entries_)
    names.emplace_back(e.name);
  return MakeRef<ListEnumerator>(std::move(names));
}

const DispatchTable<RequestDictionary>& RequestDictionary::Table() {
  using D = RequestDictionary;
  static const auto table =
      DispatchTable<D>(u"IRequestDictionary")
          .Property(u"Item", [](D& d, Args a) { return d.Item(a); })
          .Property(u"Count",
                    [](D& d, Args a) {
                      CheckArgCount(a, 0, 0);
                      return Variant(static_cast<int32_t>(d.entries_.size()));
                    })
          .Property(u"Key",
                    [](D& d, Args a) {
                      CheckArgCount(a, 1, 1);
                      if (IsIndex(a[0]))
                        return Variant(d.entries_[IndexFrom(a[0], d.entries_.size())].name);
                      const Entry* e = d.Find(ToString(a[0]));
                      return e ? Variant(e->name) : Variant(String());
                    })
          .Default(u"Item");
  return table;
}

// --- ReadCookie --------------------------------------------------------------------------------

Variant ReadCookie::Item(Args args) const {
  CheckArgCount(args, 0, 1);
  if (!HasArg(args, 0)) return Variant(value_);
  if (IsIndex(args[0])) {
    if (keys_.empty()) return Variant(String());
    return Variant(keys_[IndexFrom(args[0], keys_.size())].second);
  }
  const String key = ToString(args[0]);
  for (const auto& [k, v] : keys_) {
    if (EqualsNoCase(k, key)) return Variant(v);
  }
  return Variant(String());
}

Ref<Enumerator> ReadCookie::NewEnum() {
  std::vector<Variant> names;
  for (const auto& kv : keys_)
    names.emplace_back(kv.first);
  return MakeRef<ListEnumerator>(std::move(names));
}

const DispatchTable<ReadCookie>& ReadCookie::Table() {
  static const auto table = DispatchTable<ReadCookie>(u"IReadCookie")
                                .Property(u"Item", [](ReadCookie& c, Args a) { return c.Item(a); })
                                .Property(u"HasKeys",
                                          [](ReadCookie& c, Args a) {
                                            CheckArgCount(a, 0, 0);
                                            return Variant(!c.keys_.empty());
                                          })
                                .Property(u"Count",
                                          [](ReadCookie& c, Args a) {
                                            CheckArgCount(a, 0, 0);
                                            return Variant(static_cast<int32_t>(c.keys_.size()));
                                          })
                                .Default(u"Item");
  return table;
}

}  // namespace qv::asp
