// Scripting.Dictionary and VBScript.RegExp through the object interface, made by the class
// registry as CreateObject makes them.
#include <vector>

#include "automation/safe_array.h"
#include "vbscript/runtime_test_helpers.h"

namespace qv::vbs {
namespace {

using testing::Call;
using testing::I;
using testing::L;

int ErrorNumber(const std::function<void()>& action) {
  try {
    action();
  } catch (const Error& e) {
    return e.number();
  }
  return 0;
}

std::string Joined(const Variant& array) {
  std::string out;
  for (const Variant& v : array.as_array()->elements()) {
    if (!out.empty()) out += ",";
    out += ToString(v).ToUtf8();
  }
  return out;
}

std::vector<std::string> Enumerate(Object& o) {
  std::vector<std::string> out;
  const Ref<Enumerator> e = o.NewEnum();
  Variant item;
  while (e->Next(item))
    out.push_back(ToString(item).ToUtf8());
  return out;
}

TEST(RuntimeRegistry, CreatesTheStandardClassesByProgId) {
  const ClassRegistry registry = ClassRegistry::WithStandardClasses();
  EXPECT_TRUE(registry.Has(u"scripting.dictionary"));
  EXPECT_EQ(registry.Create(u"Scripting.Dictionary")->TypeName(), u"Dictionary");
  EXPECT_EQ(registry.Create(u"SCRIPTING.FILESYSTEMOBJECT")->TypeName(), u"FileSystemObject");
  EXPECT_EQ(registry.Create(u"VBScript.RegExp")->TypeName(), u"IRegExp2");
  EXPECT_EQ(registry.Create(u"Word.Application"), nullptr);
  ClassRegistry own = ClassRegistry::WithStandardClasses();
  own.Register(u"My.Thing", [] { return NewRegExp(); });
  EXPECT_TRUE(own.Has(u"my.thing"));
  EXPECT_FALSE(registry.Has(u"my.thing"));
  // Two creations are two objects.
  EXPECT_NE(registry.Create(u"Scripting.Dictionary").get(),
            registry.Create(u"Scripting.Dictionary").get());
}

TEST(RuntimeDictionary, KeysItemsAndOrder) {
  const Ref<Object> d = ClassRegistry::WithStandardClasses().Create(u"Scripting.Dictionary");
  d->Call(u"Add", {u"b", I(2)});
  d->Call(u"Add", {u"a", I(1)});
  d->Call(u"Add", {I(3), u"three"});
  EXPECT_EQ(ToLong(d->Get(u"Count")), 3);
  // Numbers are one key whatever their type; text is not a number.
  EXPECT_TRUE(ToBool(d->Call(u"Exists", {3.0})));
  EXPECT_TRUE(ToBool(d->Call(u"Exists", {L(3)})));
  EXPECT_FALSE(ToBool(d->Call(u"Exists", {u"3"})));
  EXPECT_FALSE(ToBool(d->Call(u"Exists", {u"A"})));
  EXPECT_EQ(ToString(d->Get(u"Item", {u"b"})), u"2");
  EXPECT_EQ(Joined(d->Call(u"Keys")), "b,a,3");
  EXPECT_EQ(Joined(d->Call(u"Items")), "2,1,three");
  EXPECT_EQ(Enumerate(*d), (std::vector<std::string>{"b", "a", "3"}));
  // Reading a missing key adds it with an Empty item.
  EXPECT_TRUE(d->Get(u"Item", {u"new"}).is_empty());
  EXPECT_EQ(ToLong(d->Get(u"Count")), 4);
  // The default member is Item, for reading and writing.
  Variant args[] = {Variant(u"a"), Variant(u"one")};
  d->Invoke(kDispIdValue, kInvokeLet, args);
  EXPECT_EQ(ToString(d->Invoke(kDispIdValue, kInvokeGet, std::span(args, 1))), u"one");
  d->Let(u"Key", Variant(u"z"), {u"a"});
  EXPECT_EQ(Joined(d->Call(u"Keys")), "b,z,3,new");
  d->Call(u"Remove", {u"b"});
  EXPECT_EQ(Joined(d->Call(u"Keys")), "z,3,new");
  d->Call(u"RemoveAll");
  EXPECT_EQ(ToLong(d->Get(u"Count")), 0);
  EXPECT_EQ(d->Call(u"Keys").as_array()->size(), 0u);
}

TEST(RuntimeDictionary, ErrorsAndCompareMode) {
  const Ref<Object> d = ClassRegistry::WithStandardClasses().Create(u"Scripting.Dictionary");
  d->Call(u"Add", {u"k", I(1)});
  EXPECT_EQ(ErrorNumber([&] { d->Call(u"Add", {u"k", I(2)}); }), 457);
  EXPECT_EQ(ErrorNumber([&] { d->Call(u"Remove", {u"missing"}); }), 32811);
  EXPECT_EQ(ErrorNumber([&] { d->Let(u"CompareMode", I(1)); }), 5);
  EXPECT_EQ(ErrorNumber([&] { d->Let(u"Key", Variant(u"k"), {u"k"}); }), 457);
  EXPECT_EQ(ErrorNumber([&] { d->Call(u"Add", {Call(u"Array", {}), I(1)}); }), 13);
  EXPECT_EQ(ErrorNumber([&] { d->Call(u"Add", {u"only-key"}); }), 450);
  EXPECT_EQ(ErrorNumber([&] { d->Call(u"NoSuchMember"); }), 438);
  d->Call(u"RemoveAll");
  d->Let(u"CompareMode", I(1));
  d->Call(u"Add", {u"Key", I(1)});
  EXPECT_TRUE(ToBool(d->Call(u"Exists", {u"KEY"})));
  EXPECT_EQ(ErrorNumber([&] { d->Call(u"Add", {u"kEy", I(2)}); }), 457);
  const int32_t hash = ToLong(d->Call(u"HashVal", {u"abc"}));
  EXPECT_GE(hash, 0);
  EXPECT_LT(hash, 1201);
}

TEST(RuntimeDictionary, ManyEntriesSurviveRemovalAndCompaction) {
  const Ref<Object> d = ClassRegistry::WithStandardClasses().Create(u"Scripting.Dictionary");
  for (int32_t i = 0; i < 1000; ++i)
    d->Call(u"Add", {L(i), L(i * 2)});
  for (int32_t i = 0; i < 1000; i += 2)
    d->Call(u"Remove", {L(i)});
  EXPECT_EQ(ToLong(d->Get(u"Count")), 500);
  EXPECT_EQ(ToLong(d->Get(u"Item", {L(999)})), 1998);
  const Variant keys = d->Call(u"Keys");
  ASSERT_EQ(keys.as_array()->size(), 500u);
  EXPECT_EQ(ToLong((*keys.as_array())[0]), 1);
  EXPECT_EQ(ToLong((*keys.as_array())[499]), 999);
  EXPECT_FALSE(ToBool(d->Call(u"Exists", {L(998)})));
}

// The enumerator follows the dictionary through removals and the compaction they trigger,
// sees keys added before it reaches the end, and stays at the end once there until Reset.
TEST(RuntimeDictionary, EnumeratorIsLive) {
  const Ref<Object> d = ClassRegistry::WithStandardClasses().Create(u"Scripting.Dictionary");
  const Ref<Enumerator> e = d->NewEnum();
  Variant key;
  d->Call(u"Add", {I(1), I(100)});
  d->Call(u"Add", {I(4000), I(200)});
  d->Call(u"Add", {I(0), I(300)});
  e->Reset();
  d->Call(u"Remove", {I(1)});
  ASSERT_TRUE(e->Next(key));
  EXPECT_EQ(ToLong(key), 4000);
  for (int32_t i = 10; i < 200; ++i)
    d->Call(u"Add", {L(i), L(i)});
  for (int32_t i = 10; i < 190; ++i)
    d->Call(u"Remove", {L(i)});  // enough holes to compact the entries
  std::vector<int32_t> rest;
  while (e->Next(key))
    rest.push_back(ToLong(key));
  EXPECT_EQ(rest, (std::vector<int32_t>{0, 190, 191, 192, 193, 194, 195, 196, 197, 198, 199}));
  d->Call(u"Add", {I(13), I(350)});
  EXPECT_FALSE(e->Next(key));
  e->Reset();
  ASSERT_TRUE(e->Next(key));
  EXPECT_EQ(ToLong(key), 4000);
}

Ref<Object> MakeRegExp(StringView pattern, bool global = false, bool ignore_case = false) {
  const Ref<Object> r = NewRegExp();
  r->Let(u"Pattern", Variant(pattern));
  r->Let(u"Global", Variant(global));
  r->Let(u"IgnoreCase", Variant(ignore_case));
  return r;
}

TEST(RuntimeRegExp, ExecuteGivesMatchesAndSubMatches) {
  const Ref<Object> r = MakeRegExp(u"(\\w+)@(\\w+)?\\.com", true);
  const Variant matches = r->Call(u"Execute", {u"mail ann@site.com and bob@.com"});
  Object& list = *matches.as_object();
  EXPECT_EQ(list.TypeName(), u"IMatchCollection2");
  ASSERT_EQ(ToLong(list.Get(u"Count")), 2);
  const Variant first = list.Get(u"Item", {I(0)});
  Object& m = *first.as_object();
  EXPECT_EQ(ToLong(m.Get(u"FirstIndex")), 5);
  EXPECT_EQ(ToLong(m.Get(u"Length")), 12);
  EXPECT_EQ(ToString(m.DefaultValue()), u"ann@site.com");
  const Variant subs = m.Get(u"SubMatches");
  EXPECT_EQ(ToLong(subs.as_object()->Get(u"Count")), 2);
  EXPECT_EQ(ToString(subs.as_object()->Get(u"Item", {I(1)})), u"site");
  // `m.SubMatches(1)` reads the collection's default member.
  EXPECT_EQ(ToString(m.Get(u"SubMatches", {I(1)})), u"site");
  // A group that took no part is Empty.
  const Variant second = list.Get(u"Item", {I(1)});
  const Variant subs2 = second.as_object()->Get(u"SubMatches");
  EXPECT_TRUE(subs2.as_object()->Get(u"Item", {I(1)}).is_empty());
  EXPECT_EQ(Enumerate(list), (std::vector<std::string>{"ann@site.com", "bob@.com"}));
  EXPECT_EQ(ErrorNumber([&] { list.Get(u"Item", {I(2)}); }), 5);
  // Without Global only the first match is found.
  r->Let(u"Global", Variant(false));
  EXPECT_EQ(ToLong(r->Call(u"Execute", {u"a@b.com c@d.com"}).as_object()->Get(u"Count")), 1);
}

TEST(RuntimeRegExp, OptionsFollowJavaScript) {
  EXPECT_TRUE(ToBool(MakeRegExp(u"^abc$", false, true)->Call(u"Test", {u"ABC"})));
  EXPECT_FALSE(ToBool(MakeRegExp(u"^abc$")->Call(u"Test", {u"ABC"})));
  // "$" without Multiline matches only at the very end, not before a final line end.
  EXPECT_FALSE(ToBool(MakeRegExp(u"abc$")->Call(u"Test", {u"abc\n"})));
  const Ref<Object> lines = MakeRegExp(u"^\\d+$", true);
  lines->Let(u"Multiline", Variant(true));
  EXPECT_EQ(ToLong(lines->Call(u"Execute", {u"12\nab\n345"}).as_object()->Get(u"Count")), 2);
  EXPECT_TRUE(ToBool(MakeRegExp(u"\\u0041\\x42")->Call(u"Test", {u"AB"})));
  EXPECT_TRUE(ToBool(MakeRegExp(u"a[^]b")->Call(u"Test", {u"a\nb"})));
  EXPECT_FALSE(ToBool(MakeRegExp(u"a[]b")->Call(u"Test", {u"ab"})));
  EXPECT_TRUE(ToBool(MakeRegExp(u"(a)?\\1b")->Call(u"Test", {u"b"})));
  // The faults with a name of their own, then the general syntax error for the rest.
  const std::pair<const char16_t*, int32_t> bad_patterns[] = {
      {u"*x", 5018},    {u"a|+", 5018},   {u"[ab", 5019},     {u"a[^x", 5019},   {u"(", 5020},
      {u"(a(b)", 5020}, {u"[b-a]", 5021}, {u"[\\d-z]", 5021}, {u"a{2,1}", 5017}, {u"a)", 5017}};
  for (const auto& [bad, number] : bad_patterns) {
    EXPECT_EQ(ErrorNumber([&] { MakeRegExp(bad)->Call(u"Test", {u"x"}); }), number)
        << String(bad).ToUtf8();
  }
}

TEST(RuntimeRegExp, ReplaceExpandsDollarForms) {
  auto replace = [](StringView pattern, StringView text, StringView with, bool global = true) {
    return ToString(MakeRegExp(pattern, global)->Call(u"Replace", {Variant(text), Variant(with)}))
        .ToUtf8();
  };
  EXPECT_EQ(replace(u"(\\w+) (\\w+)", u"John Smith", u"$2, $1"), "Smith, John");
  EXPECT_EQ(replace(u"b", u"abc", u"[$&|$`|$']"), "a[b|a|c]c");
  EXPECT_EQ(replace(u"b", u"abc", u"$$"), "a$c");
  EXPECT_EQ(replace(u"b", u"abc", u"$3$0$"), "a$3$0$c");
  EXPECT_EQ(replace(u"o", u"foo boo", u"0"), "f00 b00");
  EXPECT_EQ(replace(u"o", u"foo boo", u"0", false), "f0o boo");
  EXPECT_EQ(replace(u"x*", u"abc", u"-"), "-a-b-c-");
  EXPECT_EQ(replace(u"z", u"abc", u"-"), "abc");
  std::u16string twelve = u"(a)(b)(c)(d)(e)(f)(g)(h)(i)(j)(k)(l)";
  EXPECT_EQ(replace(twelve, u"abcdefghijkl", u"$12$10$1"), "lja");
}

}  // namespace
}  // namespace qv::vbs
