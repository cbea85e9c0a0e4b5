// The two conversions of values read from the settings store.
#include "persistence/saved_defaults.h"

#include <gtest/gtest.h>

namespace qv {
namespace {

TEST(SavedDefaultsConversions, StripQuotes) {
  EXPECT_EQ(StripQuotes(u" 'abc' "), u"abc");
  EXPECT_EQ(StripQuotes(u"'a\""), u"'a\"");
  EXPECT_EQ(StripQuotes(u"\" 'x' \""), u"x");
  EXPECT_EQ(StripQuotes(u"''"), u"");
  EXPECT_EQ(StripQuotes(u"'"), u"'");
  EXPECT_EQ(StripQuotes(u"it's"), u"it's");
}

TEST(SavedDefaultsConversions, ToSettingValueByTypeWithoutErrors) {
  EXPECT_EQ(ToSettingValue(Variant(u"True"), u"BOOLEAN").type(), VarType::Boolean);
  EXPECT_FALSE(ToSettingValue(Variant(), u"Boolean").as_bool());
  EXPECT_EQ(ToSettingValue(Variant(int32_t{12}), u"Integer").type(), VarType::Integer);
  EXPECT_EQ(ToSettingValue(Variant(), u"Integer").as_integer(), 0);
  EXPECT_EQ(ToSettingValue(Variant(u"70000"), u"long").as_long(), 70000);
  EXPECT_EQ(ToSettingValue(Variant(u" 'Arial' "), u"String").as_string(), u"Arial");
  EXPECT_EQ(ToSettingValue(Variant(), u"String").as_string(), u"");
  // Failed conversions give Empty, not an error.
  EXPECT_TRUE(ToSettingValue(Variant(u"70000"), u"Integer").is_empty());
  EXPECT_TRUE(ToSettingValue(Variant(u"yes"), u"Boolean").is_empty());
  EXPECT_TRUE(ToSettingValue(Variant::Null(), u"String").is_empty());
  // Other types keep the value as it is.
  EXPECT_EQ(ToSettingValue(Variant(u"x"), u"Variant").as_string(), u"x");
}

}  // namespace
}  // namespace qv
