// The keyed collection: key search and insertion, positions apart from keys, removal and
// moves (with the kept asymmetry of MoveItem), key changes, errors, and iterations that
// survive additions and removals.
#include "model/super_collection.h"

#include <gtest/gtest.h>

#include <vector>

#include "automation/convert.h"
#include "automation/error_of.h"
#include "model/collection_errors.h"
#include "model/collection_keys.h"

namespace qv {
namespace {

std::vector<std::string> Walk(CSuperCollection& c) {
  std::vector<std::string> out;
  Ref<Enumerator> e = c.NewEnum();
  Variant v;
  while (e->Next(v))
    out.push_back(ToString(v).ToUtf8());
  return out;
}

std::vector<std::string> Texts(std::initializer_list<const char16_t*> list) {
  std::vector<std::string> out;
  for (auto* s : list)
    out.push_back(String(s).ToUtf8());
  return out;
}

TEST(SuperCollection, NewCollectionIsEmptyEverywhere) {
  Ref<CSuperCollection> hold = MakeRef<CSuperCollection>();
  CSuperCollection& c = *hold;
  EXPECT_EQ(c.Count(), 0);
  EXPECT_EQ(c.Keys()->Count(), 0);
  EXPECT_TRUE(Walk(c).empty());
  EXPECT_TRUE(c.Item(Variant(u"any")).is_empty());
  EXPECT_TRUE(c.Item(Variant(int32_t{1})).is_empty());
  EXPECT_EQ(c.KeyExists(u"any"), NoEntry);
  EXPECT_EQ(ErrorOf([&] { c.Remove(Variant(int32_t{1})); }), kErrSubscript);
  EXPECT_EQ(ErrorOf([&] { c.Key(1); }), kErrSubscript);
  // A list without keys still yields one key record, with an empty name.
  Ref<Enumerator> keys = c.Keys()->NewEnum();
  Variant k;
  ASSERT_TRUE(keys->Next(k));
  EXPECT_EQ(ToString(k), u"");
  EXPECT_FALSE(keys->Next(k));
}

TEST(SuperCollection, KeysAndPositionsStayApart) {
  Ref<CSuperCollection> c = MakeRef<CSuperCollection>();
  c->Add(Variant(u"no key"));
  EXPECT_EQ(ToString(c->Item(Variant(int16_t{1}))), u"no key");
  EXPECT_EQ(c->KeyExists(u""), NoEntry);
  // Insert many keys out of order; each must be found at its own position afterwards.
  const char16_t* names[] = {u"m", u"c", u"x", u"a", u"q", u"b", u"z", u"k", u"d", u"e"};
  for (auto* n : names)
    c->Add(Variant(String(n) + u"!"), n);
  for (int i = 0; i < 10; ++i) {
    EXPECT_EQ(c->KeyExists(names[i]), i + 2) << i;
    EXPECT_EQ(ToString(c->Item(Variant(names[i]))), String(names[i]) + u"!");
  }
  // The key records are sorted.
  std::vector<std::string> sorted;
  Ref<Enumerator> e = c->Keys()->NewEnum();
  for (Variant k; e->Next(k);)
    sorted.push_back(ToString(k).ToUtf8());
  EXPECT_EQ(sorted, Texts({u"a", u"b", u"c", u"d", u"e", u"k", u"m", u"q", u"x", u"z"}));
  EXPECT_EQ(c->Key(1), u"");
  EXPECT_EQ(c->Key(2), u"m");
  EXPECT_EQ(ErrorOf([&] { c->Add(Variant(1.0), u"q"); }), kErrKeyExists);
  EXPECT_EQ(c->Count(), 11);
  // A position given as a double is a position; a Boolean is neither.
  EXPECT_EQ(ToString(c->Item(Variant(3.0))), u"c!");
  EXPECT_EQ(ErrorOf([&] { c->Item(Variant(true)); }), kErrCollectionDatatype);
  EXPECT_EQ(ErrorOf([&] { c->Remove(Variant()); }), kErrCollectionDatatype);
}

TEST(SuperCollection, CompareModeDecidesWhatIsTheSameKey) {
  Ref<CSuperCollection> binary = MakeRef<CSuperCollection>();
  binary->Add(Variant(1), u"Name");
  binary->Add(Variant(2), u"NAME");
  EXPECT_EQ(binary->Count(), 2);
  EXPECT_EQ(binary->KeyExists(u"name"), NoEntry);

  Ref<CSuperCollection> text = MakeRef<CSuperCollection>();
  text->SetCompareMode(1);
  text->Add(Variant(1), u"Name");
  EXPECT_EQ(ErrorOf([&] { text->Add(Variant(2), u"NAME"); }), kErrKeyExists);
  EXPECT_EQ(text->KeyExists(u"nAmE"), 1);
  EXPECT_EQ(text->Count(), 1);

  EXPECT_EQ(ErrorOf([&] { text->SetCompareMode(0); }), kErrCollectionInitialized);
  EXPECT_EQ(ErrorOf([&] { text->SetBaseIndex(0); }), kErrCollectionInitialized);
  Ref<CSuperCollection> empty = MakeRef<CSuperCollection>();
  EXPECT_EQ(ErrorOf([&] { empty->SetCompareMode(2); }), kErrSubscript);
  empty->SetBaseIndex(0);
  empty->Add(Variant(u"first"), u"f");
  EXPECT_EQ(empty->KeyExists(u"f"), 0);
  EXPECT_EQ(ToString(empty->Item(Variant(int32_t{0}))), u"first");
}

TEST(SuperCollection, InsertByPositionType) {
  Ref<CSuperCollection> c = MakeRef<CSuperCollection>();
  c->Add(Variant(u"b"), u"b");
  c->Add(Variant(u"c"), u"c");
  c->Add(Variant(u"a"), u"a", 1, 1);  // before the first
  c->Add(Variant(u"d"), u"d", 2, 3);  // after the last
  c->Add(Variant(u"bb"), u"bb", 2, 2);
  c->Add(Variant(u"0"), u"0", 3);
  EXPECT_EQ(Walk(*c), Texts({u"0", u"a", u"b", u"bb", u"c", u"d"}));
  for (int32_t p = 1; p <= c->Count(); ++p)
    EXPECT_EQ(c->KeyExists(c->Key(p)), p) << p;
  EXPECT_EQ(ErrorOf([&] { c->Add(Variant(1), u"x", 1); }), kErrCollectionNoPosition);
  EXPECT_EQ(ErrorOf([&] { c->Add(Variant(1), u"x", 2, 9); }), kErrSubscript);
  EXPECT_EQ(c->KeyExists(u"x"), NoEntry);
  EXPECT_EQ(c->Count(), 6);
}

TEST(SuperCollection, RemoveRenumbersAndEmptiesCleanly) {
  Ref<CSuperCollection> c = MakeRef<CSuperCollection>();
  for (auto* n : {u"a", u"b", u"c", u"d"})
    c->Add(Variant(n), n);
  EXPECT_EQ(ErrorOf([&] { c->Remove(Variant(u"B")); }), kErrCollectionKeyNotFound);
  EXPECT_EQ(ErrorOf([&] { c->Remove(Variant(int32_t{5})); }), kErrSubscript);
  c->Remove(Variant(u"b"));
  EXPECT_EQ(c->KeyExists(u"a"), 1);
  EXPECT_EQ(c->KeyExists(u"c"), 2);
  EXPECT_EQ(c->KeyExists(u"d"), 3);
  EXPECT_EQ(c->KeyExists(u"b"), NoEntry);
  c->Remove(Variant(int32_t{1}));
  EXPECT_EQ(Walk(*c), Texts({u"c", u"d"}));
  EXPECT_EQ(c->KeyExists(u"c"), 1);
  c->Remove(Variant(u"d"));
  c->Remove(Variant(u"c"));
  EXPECT_EQ(c->Count(), 0);
  EXPECT_EQ(c->Keys()->Count(), 0);
  // The empty form is back, and the collection works as new.
  c->Add(Variant(u"again"), u"k");
  c->Add(Variant(u"more"));
  EXPECT_EQ(c->Count(), 2);
  EXPECT_EQ(c->KeyExists(u"k"), 1);
  EXPECT_EQ(Walk(*c), Texts({u"again", u"more"}));
}

TEST(SuperCollection, RemovedSlotsReleaseObjectsAndKeepOthersSlots) {
  Ref<CSuperCollection> c = MakeRef<CSuperCollection>();
  Ref<CSuperCollection> inner = MakeRef<CSuperCollection>();
  c->Add(Variant(inner), u"obj");
  c->Add(Variant(u"x"), u"x");
  const int32_t slot_x = c->FindSlot(u"x");
  EXPECT_EQ(inner->RefCount(), 2u);
  c->Remove(Variant(u"obj"));
  EXPECT_EQ(inner->RefCount(), 1u);
  EXPECT_EQ(c->FindSlot(u"x"), slot_x);
  c->Add(Variant(u"y"), u"y");
  EXPECT_EQ(c->FindSlot(u"x"), slot_x);
  EXPECT_NE(c->FindSlot(u"y"), slot_x);
}

TEST(SuperCollection, MoveItemKeepsItsAsymmetry) {
  Ref<CSuperCollection> c = MakeRef<CSuperCollection>();
  for (auto* n : {u"a", u"b", u"c", u"d"})
    c->Add(Variant(n), n);
  // Downwards (from a higher to a lower position) every key follows its item.
  EXPECT_EQ(c->MoveItem(Variant(int32_t{4}), Variant(int32_t{2})), 2);
  EXPECT_EQ(Walk(*c), Texts({u"a", u"d", u"b", u"c"}));
  EXPECT_EQ(c->KeyExists(u"d"), 2);
  EXPECT_EQ(c->KeyExists(u"b"), 3);
  EXPECT_EQ(c->KeyExists(u"c"), 4);
  // Upwards the item that stood at To keeps answering with To.
  EXPECT_EQ(c->MoveItem(Variant(u"a"), Variant(u"b")), 3);
  EXPECT_EQ(Walk(*c), Texts({u"d", u"b", u"a", u"c"}));
  EXPECT_EQ(c->KeyExists(u"a"), 3);
  EXPECT_EQ(c->KeyExists(u"b"), 3);
  EXPECT_EQ(c->KeyExists(u"d"), 1);
  EXPECT_EQ(c->MoveItem(Variant(int32_t{2}), Variant(int32_t{2})), 2);
  EXPECT_EQ(ErrorOf([&] { c->MoveItem(Variant(u"zz"), Variant(int32_t{1})); }),
            kErrCollectionKeyNotFound);
  EXPECT_EQ(ErrorOf([&] { c->MoveItem(Variant(int32_t{0}), Variant(int32_t{1})); }), kErrSubscript);
  EXPECT_EQ(ErrorOf([&] { c->MoveItem(Variant(true), Variant(int32_t{1})); }),
            kErrCollectionDatatype);
}

TEST(SuperCollection, ItemAssignmentAndKeyChanges) {
  Ref<CSuperCollection> c = MakeRef<CSuperCollection>();
  c->Add(Variant(u"one"), u"a");
  c->Add(Variant(u"two"), u"b");
  EXPECT_EQ(ErrorOf([&] { c->SetItem(Variant(u"a"), Variant(1)); }), kErrNotSupported);
  c->SetAllowItemAsignments(true);
  c->SetItem(Variant(u"a"), Variant(u"uno"));
  c->SetItem(Variant(int32_t{2}), Variant(u"dos"));
  EXPECT_EQ(Walk(*c), Texts({u"uno", u"dos"}));
  EXPECT_EQ(ErrorOf([&] { c->SetItem(Variant(u"zz"), Variant(1)); }), kErrCollectionKeyNotFound);
  EXPECT_EQ(ErrorOf([&] { c->SetItem(Variant(int32_t{7}), Variant(1)); }),
            kErrCollectionKeyNotFound);

  EXPECT_EQ(ErrorOf([&] { c->ChangeKey(u"a", u"b"); }), kErrKeyExists);
  EXPECT_EQ(ErrorOf([&] { c->ChangeKey(u"zz", u"y"); }), kErrCollectionKeyNotFound);
  c->ChangeKey(u"a", u"z");
  EXPECT_EQ(c->KeyExists(u"z"), 1);
  EXPECT_EQ(c->KeyExists(u"a"), NoEntry);
  EXPECT_EQ(c->Key(1), u"z");
  c->ChangeKey(u"z", u"");  // the key record goes away altogether
  EXPECT_EQ(c->Keys()->Count(), 1);
  EXPECT_EQ(c->Key(1), u"");
  c->ChangeKeyForIndex(u"1", u"a");  // no record for the position: a new one
  EXPECT_EQ(c->KeyExists(u"a"), 1);
  c->ChangeKeyForIndex(u"2", u"c");
  EXPECT_EQ(c->KeyExists(u"c"), 2);
  EXPECT_EQ(c->KeyExists(u"b"), NoEntry);
  c->ChangeKeyForIndex(u"9", u"q");  // out of bounds: silently nothing
  EXPECT_EQ(c->KeyExists(u"q"), NoEntry);
  EXPECT_EQ(ErrorOf([&] { c->ChangeKeyForIndex(u"1", u"c"); }), kErrKeyExists);
}

TEST(SuperCollection, IterationSurvivesAddAndRemoveButRefusesMoves) {
  Ref<CSuperCollection> c = MakeRef<CSuperCollection>();
  for (auto* n : {u"a", u"b", u"c"})
    c->Add(Variant(n), n);
  std::vector<std::string> seen;
  {
    // An item appended during the loop is visited: the live list has grown past the copy.
    Ref<Enumerator> e = c->NewEnum();
    for (Variant v; e->Next(v);) {
      seen.push_back(ToString(v).ToUtf8());
      if (seen.size() == 1) {
        c->Add(Variant(u"d"), u"d");
        EXPECT_EQ(ErrorOf([&] { c->MoveItem(Variant(int32_t{1}), Variant(int32_t{2})); }),
                  kErrCollectionMoveInLoop);
      }
    }
  }
  EXPECT_EQ(seen, Texts({u"a", u"b", u"c", u"d"}));
  seen.clear();
  {
    // A removal and an addition together leave the list as long as the copy: the copy stays,
    // the removed item is passed over and the new one is not reached.
    Ref<Enumerator> e = c->NewEnum();
    for (Variant v; e->Next(v);) {
      seen.push_back(ToString(v).ToUtf8());
      if (seen.size() == 1) {
        c->Remove(Variant(u"b"));
        c->Add(Variant(u"e"), u"e");
      }
    }
  }
  EXPECT_EQ(seen, Texts({u"a", u"c", u"d"}));
  EXPECT_EQ(c->IterationCount(), 0);
  EXPECT_EQ(c->MoveItem(Variant(int32_t{4}), Variant(int32_t{1})), 1);
  EXPECT_EQ(Walk(*c), Texts({u"e", u"a", u"c", u"d"}));

  // Deleting every entry during a walk (a class's clearing step) is safe.
  Ref<Enumerator> e = c->NewEnum();
  for (Variant v; e->Next(v);)
    c->Remove(Variant(ToString(v)));
  EXPECT_EQ(c->Count(), 0);

  // Skip, Reset and Clone.
  for (auto* n : {u"a", u"b", u"c", u"d"})
    c->Add(Variant(n), n);
  Ref<Enumerator> s = c->NewEnum();
  s->Skip(2);
  Variant v;
  ASSERT_TRUE(s->Next(v));
  EXPECT_EQ(ToString(v), u"c");
  Ref<Enumerator> clone = s->Clone();
  ASSERT_TRUE(clone->Next(v));
  EXPECT_EQ(ToString(v), u"d");
  EXPECT_EQ(c->IterationCount(), 3);
  s->Reset();
  ASSERT_TRUE(s->Next(v));
  EXPECT_EQ(ToString(v), u"a");
  s->Skip(0xFFFFFFFFu);  // far past the end is simply the end
  EXPECT_FALSE(s->Next(v));
}

TEST(SuperCollection, IterationOutlivesItsCollection) {
  Ref<Enumerator> e;
  Ref<CKeys> keys;
  {
    Ref<CSuperCollection> c = MakeRef<CSuperCollection>();
    c->Add(Variant(u"a"), u"a");
    e = c->NewEnum();
    keys = c->Keys();
  }
  Variant v;
  EXPECT_FALSE(e->Next(v));
  EXPECT_EQ(keys->Count(), 0);
  EXPECT_FALSE(keys->NewEnum()->Next(v));
  EXPECT_FALSE(e->Clone()->Next(v));
}

TEST(SuperCollection, ObjectInterfaceServesScripts) {
  Ref<CSuperCollection> c = MakeRef<CSuperCollection>();
  c->Call(u"add", {Variant(u"v1"), Variant(u"k1")});
  c->Call(u"ADD", {Variant(u"v0"), Variant(u"k0"), Variant(int32_t{3})});
  EXPECT_EQ(ToLong(c->Get(u"count")), 2);
  Variant arg(u"k1");
  EXPECT_EQ(ToString(c->Invoke(kDispIdValue, kInvokeGet, {&arg, 1})), u"v1");
  EXPECT_EQ(ToLong(c->Call(u"KeyExists", {Variant(u"k0")})), 1);
  try {
    c->Call(u"MoveItem", {Variant(u"nope"), Variant(int32_t{1})});
    FAIL();
  } catch (const Error& e) {
    EXPECT_EQ(e.number(), static_cast<int32_t>(0x80000501u));
    EXPECT_EQ(e.description(), u"Key not found.");
  }
  Ref<Object> keys(c->Get(u"Keys").as_object());
  EXPECT_EQ(ToLong(keys->Get(u"Count")), 2);
  Variant first;
  ASSERT_TRUE(keys->NewEnum()->Next(first));
  EXPECT_EQ(ToString(first.as_object()->Get(u"Name")), u"k0");
  EXPECT_EQ(ToLong(first.as_object()->Get(u"AssociatedIndex")), 1);
}

}  // namespace
}  // namespace qv
