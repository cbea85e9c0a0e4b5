// A static member table that turns a C++ class into a script-visible Object: each member is a
// name with a getter, a let, a set and a method slot. Names are found without regard to case,
// and ids are stable for the class, so call sites may cache them.
//
//   class Point : public DispatchObject<Point> {
//    public:
//     static const DispatchTable<Point>& Table() {
//       static const auto table = DispatchTable<Point>(u"Point")
//           .Property(u"X", [](Point& p, Args) { return Variant(p.x); },
//                           [](Point& p, Args, const Variant& v) { p.x = ToLong(v); })
//           .Default(u"X");
//       return table;
//     }
//     int32_t x = 0;
//   };
#pragma once

#include <unordered_map>
#include <vector>

#include "automation/object.h"

namespace qv {

template <class T>
class DispatchTable {
 public:
  using GetFn = Variant (*)(T& self, Args args);
  using PutFn = void (*)(T& self, Args args, const Variant& value);
  using CallFn = Variant (*)(T& self, Args args);

  struct Member {
    String name;
    GetFn get = nullptr;
    PutFn let = nullptr;
    PutFn set = nullptr;
    CallFn call = nullptr;
    bool parameterless = false;
  };

  explicit DispatchTable(String type_name) : type_name_(std::move(type_name)) {}

  // A property; `let` takes `x.Name = v`, `set` takes `Set x.Name = o`. Indexed properties
  // receive their indexes in `args`.
  DispatchTable& Property(StringView name, GetFn get, PutFn let = nullptr, PutFn set = nullptr) {
    Member& m = Slot(name);
    m.get = get;
    m.let = let;
    m.set = set;
    return *this;
  }
  DispatchTable& Method(StringView name, CallFn call) {
    Slot(name).call = call;
    return *this;
  }
  // Marks properties that take no parameters. Arguments given to one of them index its value's
  // default member, the way VBScript reads `db.Tables("Orders")` as `db.Tables.Item("Orders")`
  // on objects made in Visual Basic; a plain value given arguments raises 450.
  DispatchTable& Parameterless(std::initializer_list<StringView> names) {
    for (StringView name : names) {
      const DispId id = Find(name);
      if (id != kDispIdUnknown) members_[id - 1].parameterless = true;
    }
    return *this;
  }
  // Makes an existing member the default member (id 0).
  DispatchTable& Default(StringView name) {
    default_id_ = Find(name);
    return *this;
  }

  const String& type_name() const { return type_name_; }
  DispId Find(StringView name) const {
    const auto it = ids_.find(name);
    return it == ids_.end() ? kDispIdUnknown : it->second;
  }
  const Member* At(DispId id) const {
    if (id == kDispIdValue) id = default_id_;
    if (id < 1 || static_cast<size_t>(id) > members_.size()) return nullptr;
    return &members_[id - 1];
  }
  size_t size() const { return members_.size(); }

  // Runs a member by the use that `flags` names. Returns false when the id is not in the table,
  // so that an object may answer further names of its own.
  bool Invoke(T& self, DispId id, uint16_t flags, Args args, Variant& result) const {
    const Member* m = At(id);
    if (!m) {
      if (id == kDispIdValue) throw Error(kErrNotSupported);
      return false;
    }
    const bool indexes_value =
        m->parameterless && m->get && args.size() > ((flags & (kInvokeLet | kInvokeSet)) ? 1u : 0u);
    if (indexes_value) {
      result = IndexValue(m->get(self, {}), flags, args);
      return true;
    }
    if (flags & (kInvokeLet | kInvokeSet)) {
      if (args.empty()) throw Error(kErrWrongArgCount);
      PutFn put = (flags & kInvokeSet) ? (m->set ? m->set : m->let) : (m->let ? m->let : m->set);
      if (!put) throw Error(kErrNotSupported);
      put(self, args.first(args.size() - 1), args.back());
      return true;
    }
    const bool prefer_get = (flags & kInvokeGet) != 0;
    if (prefer_get && m->get) {
      result = m->get(self, args);
    } else if (m->call) {
      result = m->call(self, args);
    } else if (m->get) {
      result = m->get(self, args);
    } else {
      throw Error(kErrNotSupported);
    }
    return true;
  }

 private:
  static Variant IndexValue(const Variant& value, uint16_t flags, Args args) {
    if (!value.is_object() || !value.as_object()) throw Error(kErrWrongArgCount);
    return value.as_object()->Invoke(kDispIdValue, flags, args);
  }

  Member& Slot(StringView name) {
    const DispId id = Find(name);
    if (id != kDispIdUnknown) return members_[id - 1];
    members_.push_back(Member{String(name)});
    ids_.emplace(members_.back().name, static_cast<DispId>(members_.size()));
    return members_.back();
  }

  String type_name_;
  std::vector<Member> members_;
  std::unordered_map<String, DispId, NoCaseHash, NoCaseEqual> ids_;
  DispId default_id_ = kDispIdUnknown;
};

// Base for classes whose members all stand in one static table: `static const
// DispatchTable<T>& Table()`. Override GetIdOfName/Invoke to add members beyond the table.
template <class T>
class DispatchObject : public Object {
 public:
  // A copy of its own: the table is shared by every thread, and a String's count is no atomic.
  String TypeName() const override { return String(T::Table().type_name().view()); }
  DispId GetIdOfName(StringView name) override { return T::Table().Find(name); }
  Variant Invoke(DispId id, uint16_t flags, Args args) override {
    Variant result;
    if (!T::Table().Invoke(static_cast<T&>(*this), id, flags, args, result)) {
      throw Error(kErrNotSupported);
    }
    return result;
  }
  const void* MemberCacheKey() const noexcept override { return &T::Table(); }
};

}  // namespace qv
