// What scripts see: lists with Item as default member and For Each, settings by name in any
// case through the bag with their types, member ids that a call site may cache across objects
// of a class, and the conversion errors of typed settings.
#include <gtest/gtest.h>

#include <vector>

#include "automation/convert.h"
#include "model/databases.h"
#include "support/tyx_vars.h"

namespace qv {
namespace {

Variant Get(const Variant& object, StringView name, std::initializer_list<Variant> args = {}) {
  return object.as_object()->Get(name, args);
}

Variant Default(const Variant& object, Variant arg) {
  return object.as_object()->Invoke(kDispIdValue, kInvokeGet | kInvokeMethod, {&arg, 1});
}

class ObjectInterface : public ::testing::Test {
 protected:
  void SetUp() override {
    ResetVars();
    db_ = MakeRef<TyxDatabase>();
    db_->SetDBName(u"Shop");
    for (auto* table : {u"Orders", u"Customers"}) {
      db_->Tables().Add(table);
      Ref<TyxTable> t = db_->Tables().Item(Variant(String(table)));
      for (auto* field : {u"ID", u"Name", u"CreatedAt"}) {
        t->Fields().Add(field);
        Ref<TyxField> f = t->Fields().Item(Variant(String(field)));
        f->SetFieldSupport(adVarWChar);
        f->LoadFldDefault();
      }
    }
  }
  void TearDown() override {
    Vars().Status = nullptr;
    ResetVars();
  }

  Ref<TyxDatabase> db_;
};

TEST_F(ObjectInterface, ChainsDefaultMembersAndForEach) {
  const Variant db(db_);
  const Variant tables = Get(db, u"Tables");
  const Variant orders = Default(tables, Variant(u"Orders"));
  const Variant fields = Get(orders, u"fields");
  const Variant second = Default(fields, Variant(int32_t{2}));
  EXPECT_EQ(ToString(Get(second, u"fldcaption")), u"Name");
  EXPECT_EQ(ToString(Get(Default(fields, Variant(u"CreatedAt")), u"FldCaption")), u"Created At");
  EXPECT_EQ(ToString(Get(tables, u"curName")), u"Orders");

  std::vector<String> names;
  Ref<Enumerator> e = tables.as_object()->NewEnum();
  for (Variant t; e->Next(t);)
    names.push_back(ToString(Get(t, u"TblName")));
  ASSERT_EQ(names.size(), 2u);
  EXPECT_EQ(names[1], u"Customers");

  // A miss gives Nothing; Properties and Key are members of their own.
  EXPECT_TRUE(Default(fields, Variant(u"name")).is_nothing());
  EXPECT_EQ(ToLong(Get(Get(second, u"Properties"), u"Count")), 101);
  EXPECT_EQ(ToString(Get(second, u"Key")), u"Name");
  EXPECT_EQ(ToString(Get(db, u"DBName")), u"Shop");
}

TEST_F(ObjectInterface, SettingsConvertThroughTheirTypes) {
  Ref<TyxField> f = db_->Tables().Item(Variant(u"Orders"))->Fields().Item(Variant(u"ID"));
  f->Let(u"FldTagSize", Variant(u"12"));
  EXPECT_EQ(f->Properties().Find(u"FldTagSize")->Value().type(), VarType::Integer);
  EXPECT_EQ(f->Get(u"FLDTAGSIZE").type(), VarType::Integer);
  f->Let(u"FldBold", Variant(int32_t{1}));
  EXPECT_TRUE(f->FldBold());
  EXPECT_EQ(f->Get(u"FldBold").type(), VarType::Boolean);
  f->Let(u"FldMin", Variant(u"abc"));  // a Variant setting keeps what it is given
  EXPECT_EQ(f->Get(u"FldMin").type(), VarType::String);

  auto error_of = [](auto&& fn) {
    try {
      fn();
    } catch (const Error& e) {
      return e.number();
    }
    return 0;
  };
  EXPECT_EQ(error_of([&] { f->Let(u"FldTagSize", Variant(int32_t{70000})); }), kErrOverflow);
  EXPECT_EQ(error_of([&] { f->Let(u"FldSize", Variant(u"wide")); }), kErrTypeMismatch);
  // A stored value that no longer fits raises when read, in C++ as in scripts.
  f->Properties().Find(u"FldTagSize")->SetValue(Variant(int32_t{70000}));
  EXPECT_EQ(error_of([&] { f->FldTagSize(); }), kErrOverflow);
  EXPECT_EQ(error_of([&] { f->Get(u"FldTagSize"); }), kErrOverflow);
  EXPECT_EQ(error_of([&] { f->Get(u"NoSuchSetting"); }), kErrNotSupported);
  // What loaders write through the bag is read-only by name.
  EXPECT_EQ(error_of([&] { db_->Let(u"DBDBMSName", Variant(u"x")); }), kErrNotSupported);
}

TEST_F(ObjectInterface, MemberIdsAreSharedByObjectsOfAClass) {
  Ref<TyxField> a = db_->Tables().Item(Variant(u"Orders"))->Fields().Item(Variant(u"ID"));
  Ref<TyxField> b = db_->Tables().Item(Variant(u"Customers"))->Fields().Item(Variant(u"Name"));
  ASSERT_NE(a->MemberCacheKey(), nullptr);
  EXPECT_EQ(a->MemberCacheKey(), b->MemberCacheKey());
  EXPECT_NE(a->MemberCacheKey(), db_->Tables().Item(Variant(u"Orders"))->MemberCacheKey());
  const DispId id = a->GetIdOfName(u"fldcaption");
  EXPECT_EQ(b->GetIdOfName(u"FldCaption"), id);
  EXPECT_EQ(ToString(b->Invoke(id, kInvokeGet, {})), u"Name");
  // A bag that changed its entries no longer offers its ids for caching.
  b->Properties().Add(u"FldExtra");
  EXPECT_EQ(b->MemberCacheKey(), nullptr);
  EXPECT_EQ(ToString(b->Get(u"FldCaption")), u"Name");
  b->Properties().Delete(Variant(u"FldCaption"));
  EXPECT_EQ(b->GetIdOfName(u"FldCaption"), kDispIdUnknown);
}

}  // namespace
}  // namespace qv
