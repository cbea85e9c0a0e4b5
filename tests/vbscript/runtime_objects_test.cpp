// The class registry as CreateObject uses it, and the dictionary's storage and enumerator under
// churn that a script cannot watch step by step (the scripts test the rest of both objects).
#include <vector>

#include "automation/safe_array.h"
#include "vbscript/runtime_test_helpers.h"

namespace qv::vbs {
namespace {

using testing::I;
using testing::L;

TEST(RuntimeRegistry, CreatesTheStandardClassesByProgId) {
  // Scripts check the classes by their ProgIDs (create_object.vbs); here a host's own class
  // stays in its own registry.
  const ClassRegistry registry = ClassRegistry::WithStandardClasses();
  EXPECT_EQ(registry.Create(u"Word.Application"), nullptr);
  ClassRegistry own = ClassRegistry::WithStandardClasses();
  own.Register(u"My.Thing", [] { return NewRegExp(); });
  EXPECT_TRUE(own.Has(u"my.thing"));
  EXPECT_FALSE(registry.Has(u"my.thing"));
  // Two creations are two objects.
  EXPECT_NE(registry.Create(u"Scripting.Dictionary").get(),
            registry.Create(u"Scripting.Dictionary").get());
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

}  // namespace
}  // namespace qv::vbs
