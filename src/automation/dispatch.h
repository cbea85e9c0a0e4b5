// A static member table that turns a C++ class into a script-visible Object: each member is a
// name with a getter, a let, a set and a method slot. Names are found without regard to case,
// and ids are stable for the class, so call sites may cache them.
//
// Most members are bound straight to member functions: the signature says how many arguments
// a script must pass and how each converts, so one line states what a script sees.
//
//   class Point : public DispatchObject<Point> {
//    public:
//     static const DispatchTable<Point>& Table() {
//       static const auto table = DispatchTable<Point>(u"Point")
//                                     .Property<&Point::X, &Point::SetX>(u"X")
//                                     .Method<&Point::MoveBy>(u"MoveBy")  // dy may be left out
//                                     .Default(u"X");
//       return table;
//     }
//     int32_t X() const;
//     void SetX(int32_t x);
//     void MoveBy(int32_t dx, std::optional<int32_t> dy);
//   };
//
// Members without a fixed signature take the raw form, (T&, Args), and check their arguments.
#pragma once

#include <functional>
#include <optional>
#include <tuple>
#include <type_traits>
#include <unordered_map>
#include <utility>
#include <vector>

#include "automation/convert.h"
#include "automation/object.h"

namespace qv {

namespace bind {

// What a bound function's parameters (those a script passes) and result look like. A member
// function of the class is called on the object; a plain function or a lambda without captures
// takes the object as its first parameter.
template <class F>
struct Signature;
template <class C, class R, class... P>
struct Signature<R (C::*)(P...)> {
  using Result = R;
  using Params = std::tuple<P...>;
};
template <class C, class R, class... P>
struct Signature<R (C::*)(P...) const> : Signature<R (C::*)(P...)> {};
template <class C, class R, class... P>
struct Signature<R (C::*)(P...) noexcept> : Signature<R (C::*)(P...)> {};
template <class C, class R, class... P>
struct Signature<R (C::*)(P...) const noexcept> : Signature<R (C::*)(P...)> {};
template <class R, class S, class... P>
struct Signature<R (*)(S&, P...)> : Signature<R (S::*)(P...)> {};
template <class F>
struct LambdaSignature;
template <class L, class R, class S, class... P>
struct LambdaSignature<R (L::*)(S&, P...) const> : Signature<R (S::*)(P...)> {};
template <class F>
requires std::is_class_v<F>
struct Signature<F> : LambdaSignature<decltype(&F::operator())> {
};

// A member that takes the raw argument list checks its arguments itself.
template <class Params>
inline constexpr bool kIsRaw = false;
template <>
inline constexpr bool kIsRaw<std::tuple<Args>> = true;

template <class P>
inline constexpr bool kIsOptional = false;
template <class P>
inline constexpr bool kIsOptional<std::optional<P>> = true;
template <class P>
struct RefTarget {
  using type = void;
};
template <class P>
struct RefTarget<Ref<P>> {
  using type = P;
};

// Parameters at the end that are std::optional may be left out by the script.
template <class Params>
constexpr size_t RequiredCount() {
  constexpr size_t n = std::tuple_size_v<Params>;
  size_t required = 0;
  [&]<size_t... I>(std::index_sequence<I...>) {
    ((required =
          kIsOptional<std::remove_cvref_t<std::tuple_element_t<I, Params>>> ? required : I + 1),
     ...);
  }
  (std::make_index_sequence<n>{});
  return required;
}

// One argument converted to a parameter type with the conversions a script's own assignment
// uses. A `Variant&` parameter gets the argument itself, so it can hand a value back (ByRef).
// An object parameter taken by reference must be given an object of its class (else 13); one
// taken as Ref<> is Nothing for anything else. A parameter type with a static FromScript(const
// Variant&) converts through it, for arguments with rules of their own (paths, say).
template <class P>
decltype(auto) Convert(Variant& v) {
  using D = std::remove_cvref_t<P>;
  if constexpr (std::is_same_v<P, Variant&> || std::is_same_v<D, Variant>) {
    return (v);
  } else if constexpr (std::is_same_v<D, bool>) {
    return ToBool(v);
  } else if constexpr (std::is_same_v<D, uint8_t>) {
    return ToByte(v);
  } else if constexpr (std::is_same_v<D, int16_t>) {
    return ToInteger(v);
  } else if constexpr (std::is_same_v<D, int32_t>) {
    return ToLong(v);
  } else if constexpr (std::is_same_v<D, double>) {
    return ToDouble(v);
  } else if constexpr (std::is_same_v<D, String> || std::is_same_v<D, StringView>) {
    return ToString(v);  // a view binds to this temporary, which outlives the call
  } else if constexpr (kIsOptional<D>) {
    using Inner = typename D::value_type;
    return v.is_missing() ? D() : D(Convert<Inner>(v));
  } else if constexpr (!std::is_void_v<typename RefTarget<D>::type>) {
    using Class = typename RefTarget<D>::type;
    return D(v.is_object() ? dynamic_cast<Class*>(v.as_object()) : nullptr);
  } else if constexpr (requires { D::FromScript(v); }) {
    return D::FromScript(v);  // a type with a conversion of its own
  } else if constexpr (std::is_base_of_v<Object, D>) {
    D* object = v.is_object() ? dynamic_cast<D*>(v.as_object()) : nullptr;
    if (!object) throw Error(kErrTypeMismatch);
    return (*object);
  } else {
    static_assert(sizeof(P) == 0, "no conversion from a script value to this parameter type");
  }
}

// The argument for a parameter. A script may leave out (`x.M(, b)`) only what the function
// takes as std::optional; anything else is 449, as for a required parameter of a COM method.
template <class P>
decltype(auto) ArgAt(Args args, size_t i) {
  using D = std::remove_cvref_t<P>;
  if constexpr (kIsOptional<D>) {
    if (i >= args.size()) return D();
  } else {
    if (args[i].is_missing()) throw Error(kErrArgumentNotOptional);
  }
  return Convert<P>(args[i]);
}

// A result as a script value: references to objects and raw object pointers are handed out
// as objects (Nothing for null), everything else through Variant's own constructors.
template <class R>
Variant Result(R&& r) {
  using D = std::remove_cvref_t<R>;
  if constexpr (std::is_pointer_v<D>) {
    return Variant(static_cast<Object*>(r));
  } else if constexpr (std::is_base_of_v<Object, D>) {
    return Variant(static_cast<Object*>(&r));
  } else {
    return Variant(std::forward<R>(r));
  }
}

// Calls `Fn` on `self` with `args` converted; `value`, when given, becomes the last parameter
// (the right-hand side of a property assignment).
template <auto Fn, class T>
Variant Invoke(T& self, Args args, const Variant* value) {
  using Sig = Signature<decltype(Fn)>;
  using Params = typename Sig::Params;
  constexpr size_t n = std::tuple_size_v<Params>;
  if constexpr (kIsRaw<Params>) {
    static_assert(std::is_same_v<typename Sig::Result, Variant>, "a raw member answers a Variant");
    return std::invoke(Fn, self, args);  // the member checks its own arguments
  } else {
    const size_t given = n - (value ? 1 : 0);
    CheckArgCount(args, std::min(RequiredCount<Params>(), given), given);
    Variant last = value ? *value : Variant();
    return [&]<size_t... I>(std::index_sequence<I...>)->Variant {
      auto arg = [&]<size_t K>() -> decltype(auto) {
        using P = std::tuple_element_t<K, Params>;
        if (value && K == n - 1) return Convert<P>(last);
        return ArgAt<P>(args, K);
      };
      // Converted left to right, as a script sees its arguments checked: a braced list fixes
      // the order that a call's argument list leaves open.
      std::tuple<decltype(arg.template operator()<I>())...> converted{
          arg.template operator()<I>()...};
      const auto call = [&](auto&&... p) -> decltype(auto) {
        return std::invoke(Fn, self, std::forward<decltype(p)>(p)...);
      };
      if constexpr (std::is_void_v<typename Sig::Result>) {
        std::apply(call, std::move(converted));
        return Variant();
      } else {
        return Result(std::apply(call, std::move(converted)));
      }
    }
    (std::make_index_sequence<n>{});
  }
}

}  // namespace bind

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
  // Bound forms: member functions of T (or of a base of T), or functions and captureless
  // lambdas whose first parameter is the object. A getter's parameters are the property's
  // indexes; a let or set function takes the indexes and then the value.
  template <auto Get, auto Let = nullptr, auto Set = nullptr>
  DispatchTable& Property(StringView name) {
    return Property(name, &BoundCall<Get>, BoundPut<Let>(), BoundPut<Set>());
  }
  template <auto Fn>
  DispatchTable& Method(StringView name) {
    return Method(name, &BoundCall<Fn>);
  }
  // A property that reads and writes a public data member of T.
  template <auto Member>
  DispatchTable& Field(StringView name) {
    return Property(name, &FieldGet<Member>, &FieldLet<Member>);
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
  template <auto Fn>
  static Variant BoundCall(T& self, Args args) {
    return bind::Invoke<Fn>(self, args, nullptr);
  }
  template <auto Fn>
  static void BoundPutFn(T& self, Args args, const Variant& value) {
    bind::Invoke<Fn>(self, args, &value);
  }
  template <auto Member>
  static Variant FieldGet(T& self, Args args) {
    CheckArgCount(args, 0, 0);
    return bind::Result(self.*Member);
  }
  template <auto Member>
  static void FieldLet(T& self, Args args, const Variant& value) {
    CheckArgCount(args, 0, 0);
    Variant v = value;
    self.*Member = bind::Convert<decltype(self.*Member)>(v);
  }
  template <auto Fn>
  static constexpr PutFn BoundPut() {
    if constexpr (std::is_null_pointer_v<decltype(Fn)>) {
      return nullptr;
    } else {
      return &BoundPutFn<Fn>;
    }
  }

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
