// The object interface through a member table: names without regard to case, default member,
// property arguments, and lifetime by reference count.
#include "automation/dispatch.h"

#include <gtest/gtest.h>

#include "automation/convert.h"

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
            .Property(
                u"Value", [](Counter& c, Args) { return Variant(c.value); },
                [](Counter& c, Args, const Variant& v) { c.value = ToLong(v); })
            .Property(u"Item",
                      [](Counter& c, Args a) {
                        CheckArgCount(a, 1, 1);
                        return Variant(c.value * ToLong(a[0]));
                      })
            .Method(u"Bump",
                    [](Counter& c, Args a) {
                      CheckArgCount(a, 0, 1);
                      c.value += HasArg(a, 0) ? ToLong(a[0]) : 1;
                      return Variant();
                    })
            .Default(u"Value");
    return table;
  }
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

  try {
    c->Get(u"Item");
    FAIL();
  } catch (const Error& e) {
    EXPECT_EQ(e.number(), 450);
  }
  try {
    c->Get(u"Missing");
    FAIL();
  } catch (const Error& e) {
    EXPECT_EQ(e.number(), 438);
    EXPECT_EQ(e.description(), u"Object doesn't support this property or method");
  }
  try {
    c->NewEnum();
    FAIL();
  } catch (const Error& e) {
    EXPECT_EQ(e.number(), 451);
  }
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
  try {
    shelf->Get(u"Size", {Variant(1)});
    FAIL();
  } catch (const Error& e) {
    EXPECT_EQ(e.number(), 450);
  }
}

}  // namespace
}  // namespace qv
