// The collections of the intrinsic objects: a list of the values of one name (IStringList),
// a collection of names with their value lists (IRequestDictionary), a request cookie with
// its keys (IReadCookie).
#pragma once

#include <vector>

#include "automation/dispatch.h"
#include "automation/list_enumerator.h"

namespace qv::asp {

// The values one name has in a query string, a form or the server variables. Its default value
// is the values joined by ", ", or Empty when there are none.
class StringList : public DispatchObject<StringList> {
 public:
  explicit StringList(std::vector<String> values = {}) : values_(std::move(values)) {}
  static const DispatchTable<StringList>& Table();
  Ref<Enumerator> NewEnum() override;
  Variant Joined() const;
  const std::vector<String>& values() const { return values_; }

 private:
  std::vector<String> values_;
};

// Names with their values, in the order they came; the default member takes a name or an index
// from 1. With no argument it gives `raw`, the text the collection was read from.
class RequestDictionary : public DispatchObject<RequestDictionary> {
 public:
  struct Entry {
    String name;
    std::vector<String> values;
  };
  RequestDictionary(std::vector<Entry> entries, Variant raw)
      : entries_(std::move(entries)), raw_(std::move(raw)) {}
  static const DispatchTable<RequestDictionary>& Table();
  Ref<Enumerator> NewEnum() override;
  // The entry of a name, or null.
  const Entry* Find(StringView name) const;
  Variant Item(Args args);

  static void Add(std::vector<Entry>& entries, String name, String value);

 private:
  std::vector<Entry> entries_;
  Variant raw_;
};

// A cookie the browser sent: its value, or its keys when it holds "k1=v1&k2=v2".
class ReadCookie : public DispatchObject<ReadCookie> {
 public:
  ReadCookie(String value, std::vector<std::pair<String, String>> keys)
      : value_(std::move(value)), keys_(std::move(keys)) {}
  static const DispatchTable<ReadCookie>& Table();
  Ref<Enumerator> NewEnum() override;
  Variant Item(Args args) const;
  const String& value() const { return value_; }

 private:
  String value_;
  std::vector<std::pair<String, String>> keys_;
};

}  // namespace qv::asp
