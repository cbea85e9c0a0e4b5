// The property bag: registration and its refusals, exact versus case-blind lookups, deletion
// (also during a walk), typed conversion, and bags registered from a shared layout.
#include "model/properties.h"

#include <gtest/gtest.h>

#include "automation/convert.h"
#include "automation/error_of.h"

namespace qv {
namespace {

TEST(Properties, AddRefusesDuplicatesAndKeepsOldFlags) {
  Ref<TyProperties> bag = MakeRef<TyProperties>();
  EXPECT_TRUE(bag->Add(u"Plain"));
  TyProperty* plain = bag->Find(u"plain");
  ASSERT_NE(plain, nullptr);
  EXPECT_EQ(plain->DataType(), u"String");
  EXPECT_TRUE(plain->FileSave());
  EXPECT_TRUE(plain->Sync());
  EXPECT_FALSE(plain->RegSave());
  EXPECT_EQ(plain->RegFormat(), 0);
  EXPECT_TRUE(plain->Value().is_empty());
  EXPECT_EQ(plain->Key(), u"");

  EXPECT_TRUE(bag->Add(u"Size", u"Long", true, 4, false, false));
  EXPECT_FALSE(bag->Add(u"Size", u"String"));
  EXPECT_FALSE(bag->Add(u""));
  EXPECT_EQ(bag->Find(u"SIZE")->DataType(), u"Long");
  EXPECT_EQ(bag->Find(u"SIZE")->RegFormat(), 4);
  // PropertyExist compares exactly, so a case variant gets past it and the collection refuses.
  EXPECT_FALSE(bag->PropertyExist(Variant(u"size")));
  EXPECT_EQ(ErrorOf([&] { bag->Add(u"size"); }), kErrKeyExists);
  EXPECT_EQ(bag->Count(), 2);
  EXPECT_FALSE(bag->PropertyExist(Variant(int32_t{1})));
}

TEST(Properties, DeleteTellsByItsResultAndIsSafeDuringAWalk) {
  Ref<TyProperties> bag = MakeRef<TyProperties>();
  for (auto* n : {u"A", u"B", u"C", u"D"})
    bag->Add(n);
  EXPECT_EQ(bag->Delete(Variant(u"")).type(), VarType::Boolean);
  EXPECT_FALSE(ToBool(bag->Delete(Variant(u""))));
  EXPECT_FALSE(ToBool(bag->Delete(Variant(u"Z"))));
  EXPECT_FALSE(ToBool(bag->Delete(Variant(u"b"))));  // exact names only
  EXPECT_TRUE(ToBool(bag->Delete(Variant(u"B"))));
  EXPECT_EQ(bag->Count(), 3);
  EXPECT_TRUE(bag->Item(Variant(u"B")).is_empty());

  Ref<Enumerator> e = bag->NewEnum();
  int seen = 0;
  for (Variant v; e->Next(v);) {
    ++seen;
    const String name = static_cast<TyProperty*>(v.as_object())->Name();
    EXPECT_TRUE(ToBool(bag->Delete(Variant(name))));
  }
  EXPECT_EQ(seen, 3);
  EXPECT_EQ(bag->Count(), 0);
  EXPECT_TRUE(bag->Add(u"A"));
}

TEST(Properties, TypedValuesConvertOrRaise) {
  Ref<TyProperties> bag = MakeRef<TyProperties>();
  bag->Add(u"S");
  bag->Add(u"L", u"Long");
  bag->Add(u"I", u"Integer");
  bag->Add(u"B", u"Boolean");
  bag->Add(u"V", u"Variant");
  EXPECT_EQ(bag->Find(u"S")->TypedValue().as_string(), u"");
  EXPECT_EQ(bag->Find(u"L")->TypedValue().type(), VarType::Long);
  EXPECT_EQ(bag->Find(u"I")->TypedValue().type(), VarType::Integer);
  EXPECT_FALSE(bag->Find(u"B")->TypedValue().as_bool());
  EXPECT_TRUE(bag->Find(u"V")->TypedValue().is_empty());

  bag->Find(u"I")->SetValue(Variant(int32_t{40000}));
  EXPECT_EQ(ErrorOf([&] { bag->Find(u"I")->TypedValue(); }), kErrOverflow);
  bag->Find(u"L")->SetValue(Variant(u"abc"));
  EXPECT_EQ(ErrorOf([&] { bag->Find(u"L")->TypedValue(); }), kErrTypeMismatch);
  bag->Find(u"B")->SetTypedValue(Variant(u"true"));
  EXPECT_EQ(bag->Find(u"B")->Value().type(), VarType::Boolean);
  bag->Find(u"S")->SetTypedValue(Variant(int16_t{12}));
  EXPECT_EQ(bag->Find(u"S")->Value().as_string(), u"12");
}

TEST(Properties, LayoutBagsShareKeysButNotValuesOrFlags) {
  static const PropertyLayout* layout = new PropertyLayout({
      {u"First", u"String", false, 0, true, true},
      {u"Second", u"Long", true, 4, true, false},
      {u"Third", u"Boolean", true, 1, false, false},
  });
  Ref<TyProperties> a = MakeRef<TyProperties>();
  Ref<TyProperties> b = MakeRef<TyProperties>();
  a->Register(*layout);
  b->Register(*layout);
  EXPECT_EQ(a->layout(), layout);
  a->Entry(*layout, 1).SetValue(Variant(int32_t{7}));
  EXPECT_TRUE(b->Entry(*layout, 1).Value().is_empty());
  a->Find(u"third")->SetRegSave(false);
  EXPECT_TRUE(b->Find(u"Third")->RegSave());
  EXPECT_EQ(a->SlotOf(u"second"), 1);

  // Changing one bag's keys leaves the other's intact.
  a->Collection().ChangeKey(u"First", u"Renamed");
  EXPECT_EQ(a->Find(u"Renamed")->Key(), u"Renamed");
  EXPECT_EQ(b->Find(u"First")->Key(), u"");
  EXPECT_EQ(b->Find(u"Renamed"), nullptr);
  EXPECT_TRUE(ToBool(b->Delete(Variant(u"Second"))));
  EXPECT_EQ(b->layout(), nullptr);
  EXPECT_EQ(ErrorOf([&] { b->Entry(*layout, 1); }), kErrObjectRequired);
  EXPECT_EQ(ToLong(a->Entry(*layout, 1).Value()), 7);
  std::vector<String> order;
  a->ForEach([&](TyProperty& p) { order.push_back(p.Name()); });
  ASSERT_EQ(order.size(), 3u);
  EXPECT_EQ(order[2], u"Third");

  // A bag emptied entry by entry takes the layout again as new.
  for (auto* n : {u"First", u"Third"})
    b->Delete(Variant(n));
  b->Register(*layout);
  EXPECT_EQ(b->layout(), layout);
  EXPECT_EQ(b->Count(), 3);
}

TEST(Properties, ObjectInterface) {
  Ref<TyProperties> bag = MakeRef<TyProperties>();
  EXPECT_TRUE(ToBool(bag->Call(u"Add", {Variant(u"Caption")})));
  EXPECT_FALSE(ToBool(bag->Call(u"add", {Variant(u"Caption")})));
  Variant name(u"CAPTION");
  Variant item = bag->Invoke(kDispIdValue, kInvokeGet, {&name, 1});
  ASSERT_TRUE(item.is_object());
  item.as_object()->Let(u"Value", Variant(u"Hello"));
  EXPECT_EQ(ToString(item.as_object()->DefaultValue()), u"Hello");
  EXPECT_EQ(ToString(item.as_object()->Get(u"DataType")), u"String");
  EXPECT_TRUE(ToBool(bag->Call(u"PropertyExist", {Variant(u"Caption")})));
  EXPECT_EQ(ToLong(bag->Get(u"Count")), 1);
}

}  // namespace
}  // namespace qv
