// The object interface through a member table: names without regard to case, default member,
// property arguments, and lifetime by reference count.
#include "automation/dispatch.h"

#include <gtest/gtest.h>

#include <optional>
#include <utility>
#include <vector>

#include "automation/convert.h"
#include "automation/error_of.h"

namespace qv {
namespace {

int g_alive = 0;

class Counter : public DispatchObject<Counter> {
 public:
  Counter() { ++g_alive; }
  ~Counter() override { --g_alive; }
  static const DispatchTable<Counter>& Table() {
    static const auto table =
        DispatchTable<Counter>(u"Counter")
            .Property<&Counter::Value, &Counter::SetValue>(u"Value")
            .Property<&Counter::Item>(u"Item")
            .Method<&Counter::Bump>(u"Bump")
            .Method<&Counter::Describe>(u"Describe")
            .Method<&Counter::Swap>(u"Swap")
            .Property<&Counter::Self>(u"Self")
            .Field<&Counter::value>(u"Stored")
            .Property<[](Counter& c) { return c.value * 2; }>(u"Twice")
            .Method(u"Raw",
                    [](Counter&, Args a) { return Variant(static_cast<int32_t>(a.size())); })
            .Default(u"Value");
    return table;
  }
  int32_t Value() const { return value; }
  void SetValue(int32_t v) { value = v; }
  int32_t Item(int32_t factor) const { return value * factor; }
  void Bump(std::optional<int32_t> by) { value += by.value_or(1); }
  String Describe(StringView name, int16_t times, bool loud) {
    String text;
    for (int16_t i = 0; i < times; ++i)
      text.Append(name);
    return loud ? text + u"!" : text;
  }
  // Hands a value back through its argument, as a ByRef parameter does.
  void Swap(Variant& slot) { slot = Variant(std::exchange(value, ToLong(slot))); }
  Counter& Self() { return *this; }
  int32_t value = 0;
};

TEST(Dispatch, MembersAnswerByNameInAnyCase) {
  Ref<Counter> c = MakeRef<Counter>();
  EXPECT_EQ(c->GetIdOfName(u"VALUE"), c->GetIdOfName(u"value"));
  EXPECT_EQ(c->GetIdOfName(u"nope"), kDispIdUnknown);
  c->Let(u"vAlUe", Variant(5));
  c->Call(u"bump");
  c->Call(u"Bump", {Variant(10)});
  EXPECT_EQ(c->value, 16);
  EXPECT_EQ(ToLong(c->Get(u"Item", {Variant(2)})), 32);
  EXPECT_EQ(ToLong(c->DefaultValue()), 16);
  EXPECT_EQ(ToLong(ValueOf(Variant(c))), 16);
  EXPECT_EQ(c->TypeName(), u"Counter");
  EXPECT_NE(c->MemberCacheKey(), nullptr);

  EXPECT_EQ(ErrorOf([&] { c->Get(u"Item"); }), 450);
  try {
    c->Get(u"Missing");
    FAIL();
  } catch (const Error& e) {
    EXPECT_EQ(e.number(), 438);
    EXPECT_EQ(e.description(), u"Object doesn't support this property or method");
  }
  EXPECT_EQ(ErrorOf([&] { c->NewEnum(); }), 451);
}

// Bound members take their argument count and conversions from the C++ signature.
TEST(Dispatch, BoundMembersConvertArgumentsAndResults) {
  Ref<Counter> c = MakeRef<Counter>();
  EXPECT_EQ(ToString(c->Call(u"Describe", {Variant(u"ab"), Variant(u"2"), Variant(int32_t{1})})),
            u"abab!");
  const auto error_of = [&](StringView name, std::initializer_list<Variant> args) {
    return ErrorOf([&] { c->Call(name, args); });
  };
  EXPECT_EQ(error_of(u"Describe", {Variant(u"a"), Variant(u"x"), Variant(true)}), 13);
  EXPECT_EQ(error_of(u"Describe", {Variant(u"a"), Variant(int32_t{1})}), 450);
  EXPECT_EQ(error_of(u"Item", {Variant(1), Variant(2)}), 450);
  EXPECT_EQ(error_of(u"Bump", {Variant(1), Variant(2)}), 450);
  EXPECT_EQ(error_of(u"Value", {Variant(1)}), 450);
  EXPECT_EQ(error_of(u"Item", {Variant::Missing()}), 449);  // only optional ones may be left out
  // Arguments convert left to right: the first bad one names the error.
  EXPECT_EQ(error_of(u"Describe", {Variant::Null(), Variant::Missing(), Variant(true)}), 94);
  // A left-out optional argument, given or missing, takes the function's default.
  c->Call(u"Bump", {Variant::Missing()});
  EXPECT_EQ(c->value, 1);
  // A raw member sees all of its arguments; a setter given too many indexes is refused.
  EXPECT_EQ(ToLong(c->Call(u"Raw", {Variant(1), Variant(2), Variant(3)})), 3);
  std::vector<Variant> let_args{Variant(1), Variant(7)};
  EXPECT_THROW(c->Invoke(c->GetIdOfName(u"Value"), kInvokeLet, let_args), Error);

  std::vector<Variant> slot{Variant(u"9")};
  c->Invoke(c->GetIdOfName(u"Swap"), kInvokeMethod, slot);
  EXPECT_EQ(slot[0].type(), VarType::Long);
  EXPECT_EQ(ToLong(slot[0]), 1);
  EXPECT_EQ(c->value, 9);
  EXPECT_EQ(ToLong(c->Get(u"Twice")), 18);
  c->Let(u"Stored", Variant(u"12"));
  EXPECT_EQ(c->value, 12);
  EXPECT_EQ(c->Get(u"Stored").type(), VarType::Long);
  const Variant self = c->Get(u"Self");
  EXPECT_EQ(self.as_object(), c.get());
}

TEST(Dispatch, LastReferenceEndsTheObjectAtOnce) {
  {
    Variant v(MakeRef<Counter>());
    Variant w = v;
    EXPECT_EQ(g_alive, 1);
    v.Clear();
    EXPECT_EQ(g_alive, 1);
  }
  EXPECT_EQ(g_alive, 0);
}

}  // namespace
}  // namespace qv

namespace qv {
namespace {

// A list whose default member takes an index, and a holder that hands it out without parameters.
class Row : public DispatchObject<Row> {
 public:
  static const DispatchTable<Row>& Table() {
    static const auto table = DispatchTable<Row>(u"Row")
                                  .Property(
                                      u"Item",
                                      [](Row& r, Args a) {
                                        CheckArgCount(a, 1, 1);
                                        return Variant(r.cells[ToLong(a[0])]);
                                      },
                                      [](Row& r, Args a, const Variant& v) {
                                        CheckArgCount(a, 1, 1);
                                        r.cells[ToLong(a[0])] = ToLong(v);
                                      })
                                  .Default(u"Item");
    return table;
  }
  int32_t cells[4] = {0, 10, 20, 30};
};

class Shelf : public DispatchObject<Shelf> {
 public:
  static const DispatchTable<Shelf>& Table() {
    static const auto table = DispatchTable<Shelf>(u"Shelf")
                                  .Property(u"Rows", [](Shelf& s, Args) { return Variant(s.row); })
                                  .Property(u"Size", [](Shelf&, Args) { return Variant(3); })
                                  .Parameterless({u"Rows", u"Size"});
    return table;
  }
  Ref<Row> row = MakeRef<Row>();
};

TEST(Dispatch, ArgumentsOfAParameterlessPropertyIndexItsValue) {
  Ref<Shelf> shelf = MakeRef<Shelf>();
  // Shelf.Rows(2) reads Shelf.Rows.Item(2); without arguments the list itself comes back.
  EXPECT_EQ(ToLong(shelf->Get(u"Rows", {Variant(2)})), 20);
  EXPECT_TRUE(shelf->Get(u"Rows").is_object());
  // Shelf.Rows(1) = 7 writes through the list's default member.
  std::vector<Variant> let_args{Variant(1), Variant(7)};
  shelf->Invoke(shelf->GetIdOfName(u"Rows"), kInvokeLet, let_args);
  EXPECT_EQ(shelf->row->cells[1], 7);
  // A plain value cannot be indexed.
  EXPECT_EQ(ErrorOf([&] { shelf->Get(u"Size", {Variant(1)}); }), 450);
}

}  // namespace
}  // namespace qv
