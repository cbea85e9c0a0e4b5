// The generation cache: keys without regard to case, date normalisation, the exact bytes of
// cache.xml, and files that can't be trusted (damaged, unescaped "&", a foreign root).
#include "generation/cache.h"

#include <gtest/gtest.h>

#include "automation/convert.h"
#include "generation_fixture.h"

namespace qv {
namespace {

using testing::GenerationFixture;

// 2006-03-09 07:05:01 as an OLE date.
Variant March9(int second = 1) {
  return Variant::Date(38785.0 + (7 * 3600 + 5 * 60 + second) / 86400.0);
}

class CacheTest : public GenerationFixture {
 protected:
  std::filesystem::path CacheFile() const {
    return documents() / "Quorvex" / "Templates" / "MyPack.zip" / "temp" / "cache.xml";
  }
};

TEST_F(CacheTest, EntriesAndTheirFile) {
  Vars().TemplateName = u"My Pack.zip";  // blanks and "/" are cleaned out of the folder name
  Ref<TyxCache> cache = MakeRef<TyxCache>();
  ASSERT_TRUE(std::filesystem::is_directory(CacheFile().parent_path()));
  EXPECT_EQ(cache->Count(), 0);

  EXPECT_TRUE(cache->AddCache(u"Template", u"template", March9(), Variant(int32_t{1234})));
  EXPECT_TRUE(cache->AddCache(u"temp", u"list.tmp", March9(), Variant(10.0)));
  EXPECT_TRUE(cache->AddCache(u"temp", u"view.tmp", Variant(u"not a date"), Variant(int16_t{7})));
  // Replacing keeps the place and the first spelling of the key.
  EXPECT_TRUE(cache->AddCache(u"TEMPLATE", u"Template", March9(), Variant(int32_t{1234})));
  EXPECT_EQ(cache->Count(), 3);

  EXPECT_EQ(cache->CheckCache(u"template", u"TEMPLATE", March9(), Variant(1234.0)), 0);
  EXPECT_EQ(cache->CheckCache(u"template", u"template", March9(2), Variant(1234.0)), 1);
  EXPECT_EQ(cache->CheckCache(u"template", u"template", March9(), Variant(1235.0)), 1);
  EXPECT_EQ(cache->CheckCache(u"template", u"other", March9(), Variant(1234.0)), 2);
  EXPECT_EQ(cache->CheckCache(u"temp", u"view.tmp", Variant(u"not a date"), Variant(7.0)), 0);

  const Variant date = cache->GetCacheDate(u"TEMP", u"LIST.TMP");
  EXPECT_EQ(date.type(), VarType::String);
  EXPECT_EQ(ToString(date), u"2006/03/09 07:05:01");
  const Variant none = cache->GetCacheDate(u"temp", u"gone.tmp");
  EXPECT_EQ(none.type(), VarType::Date);
  EXPECT_EQ(ToDate(none), 0.0);

  cache->WriteCacheFile();
  EXPECT_EQ(Read(CacheFile()),
            "<?xml version=\"1.0\" encoding=\"utf-8\" standalone=\"yes\"?>\r\n"
            "<Cache Product=\"Quorvex\" Version=\"5.3\" >\r\n"
            "<CacheEntry Group=\"Template\" Key=\"template\" DateTime=\"2006/03/09 07:05:01\" "
            "Size=\"1234\" />\r\n"
            "<CacheEntry Group=\"temp\" Key=\"list.tmp\" DateTime=\"2006/03/09 07:05:01\" "
            "Size=\"10\" />\r\n"
            "<CacheEntry Group=\"temp\" Key=\"view.tmp\" DateTime=\"not a date\" Size=\"7\" />\r\n"
            "</Cache>\r\n");

  // A new object reads the file back.
  Ref<TyxCache> again = MakeRef<TyxCache>();
  EXPECT_EQ(again->Count(), 3);
  EXPECT_EQ(again->CheckCache(u"temp", u"list.tmp", March9(), Variant(10.0)), 0);

  EXPECT_FALSE(again->DeleteCache(u"temp", u"gone.tmp"));
  EXPECT_TRUE(again->DeleteCache(u"TEMP", u"list.tmp"));
  EXPECT_EQ(ToString(again->GetCacheDate(u"temp", u"view.tmp")), u"not a date");
  EXPECT_TRUE(again->DeleteCacheGroup(u"Temp"));
  EXPECT_FALSE(again->DeleteCacheGroup(u"temp"));
  EXPECT_EQ(again->Count(), 1);
  EXPECT_FALSE(again->DeleteAllCache());  // it worked all the same
  EXPECT_EQ(again->Count(), 0);
  again->WriteCacheFile();
  EXPECT_EQ(Read(CacheFile()),
            "<?xml version=\"1.0\" encoding=\"utf-8\" standalone=\"yes\"?>\r\n"
            "<Cache Product=\"Quorvex\" Version=\"5.3\" >\r\n</Cache>\r\n");
}

TEST_F(CacheTest, FilesThatDoNotLoadGiveAnEmptyCache) {
  Vars().TemplateName = u"MyPack.zip";
  {
    Ref<TyxCache> cache = MakeRef<TyxCache>();
    cache->AddCache(u"temp", u"a&b.tmp", March9(), Variant(1.0));
    cache->AddCache(u"temp", u"ok.tmp", March9(), Variant(1.0));
    cache->WriteCacheFile();
  }
  EXPECT_NE(Read(CacheFile()).find("Key=\"a&b.tmp\""), std::string::npos);  // written unescaped
  EXPECT_EQ(MakeRef<TyxCache>()->Count(), 0);                               // and so no longer XML

  for (const char* text :
       {"", "<Cache><CacheEntry Group=\"t\"", "\xff\xfe\x00garbage",
        "<Other><CacheEntry Group=\"temp\" Key=\"k\" DateTime=\"d\" Size=\"1\" /></Other>"}) {
    Write(CacheFile(), text);
    EXPECT_EQ(MakeRef<TyxCache>()->Count(), 0) << text;
  }
  // Other children and missing attributes are taken as they come.
  Write(CacheFile(),
        "<Cache><Note/><CacheEntry Group=\"temp\" Key=\"k.tmp\" Extra=\"x\"/></Cache>");
  Ref<TyxCache> cache = MakeRef<TyxCache>();
  EXPECT_EQ(cache->Count(), 1);
  EXPECT_EQ(ToString(cache->GetCacheDate(u"temp", u"k.tmp")), u"");
}

TEST_F(CacheTest, DeclarationFollowsTheEncodingSetting) {
  WriteUserSettings("XMLEncodeCharSet = \"iso-8859-1\"\n");
  Vars().TemplateName = u"p.zip";
  Ref<TyxCache> cache = MakeRef<TyxCache>();
  cache->WriteCacheFile();
  EXPECT_EQ(
      Read(documents() / "Quorvex" / "Templates" / "p.zip" / "temp" / "cache.xml").substr(0, 60),
      "<?xml version=\"1.0\" encoding=\"iso-8859-1\" standalone=\"yes\"?>");
}

}  // namespace
}  // namespace qv
