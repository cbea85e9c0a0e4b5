// The text form of settings trees: what reads, what is refused (with its line), and that
// writing and reading again gives the same tree.
#include "support/settings_format.h"

#include <gtest/gtest.h>

namespace qv {
namespace {

std::optional<SettingsTree> Parse(std::string_view text, std::string* error = nullptr) {
  std::string ignored;
  return ParseSettings(text, error ? error : &ignored);
}

TEST(SettingsFormatTest, ReadsCommentsBlanksBomAndCrLf) {
  const auto tree = Parse(
      "\xEF\xBB\xBF; comment\r\n# another\r\n\r\n  [Top\\Inner]  \r\n  Name  =  \"v\"  \r\n"
      "Body Font = \"Arial\"\r\n[top]\r\nOther=dword:1\r\n");
  ASSERT_TRUE(tree);
  const SettingsNode* inner = tree->Find(u"top\\inner");
  ASSERT_NE(inner, nullptr);
  EXPECT_EQ(inner->FindValue(u"NAME")->text, u"v");
  EXPECT_EQ(inner->FindValue(u"Body Font")->text, u"Arial");
  // A repeated section adds to the same key.
  EXPECT_EQ(tree->Find(u"Top")->FindValue(u"other")->number, 1u);
  EXPECT_EQ(tree->root().children().size(), 1u);
}

TEST(SettingsFormatTest, RefusesBadLinesWithTheirNumber) {
  struct Case {
    const char* text;
    const char* where;
  };
  const Case cases[] = {
      {"Name = \"before any key\"\n", "line 1"},
      {"[K]\nName \"no equals\"\n", "line 2"},
      {"[K]\n\nName = unquoted\n", "line 3"},
      {"[K]\nName = \"open\n", "line 2"},
      {"[K]\nName = \"bad \\q escape\"\n", "line 2"},
      {"[K]\nName = \"\\u12\"\n", "line 2"},
      {"[K]\nName = dword:12x\n", "line 2"},
      {"[K]\nName = dword:4294967296\n", "line 2"},
      {"[K]\nName = hex:1,2g\n", "line 2"},
      {"[K]\nName = hex:123\n", "line 2"},
      {"[K]\nName = \"a\" trailing\n", "line 2"},
      {"[K\nName = \"a\"\n", "line 1"},
      {"[K]\n = \"no name\"\n", "line 2"},
      {"[K]\nName = multi:\"a\",\n", "line 2"},
      {"[K]\nName = hex(x):01\n", "line 2"},
      {"[K]\nName = hex(4):01,00,00,00\n", "line 2"},
  };
  for (const Case& c : cases) {
    std::string error;
    EXPECT_FALSE(Parse(c.text, &error)) << c.text;
    EXPECT_EQ(error.rfind(c.where, 0), 0u) << c.text << " -> " << error;
  }
}

TEST(SettingsFormatTest, WritingAndReadingGiveTheSameTree) {
  SettingsTree tree;
  SettingsNode& key = tree.Create(u"Software\\Quorvex\\5.3\\Settings");
  key.SetValue(u"Plain", RegistryValue::Text(1, u"a \"q\" \\ \r\n\t end"));
  key.SetValue(u"", RegistryValue::Text(1, u"default"));
  key.SetValue(u"@", RegistryValue::Text(1, u"an at sign"));
  key.SetValue(u"with = and blanks ", RegistryValue::Text(2, u"%X%"));
  key.SetValue(u" [a]; #\"b\"=@", RegistryValue::Text(1, u"[c]; #"));
  key.SetValue(u"Controls", RegistryValue::Text(1, std::u16string_view(u"\0\x01\x7f", 3)));
  key.SetValue(u"Surrogates", RegistryValue::Text(1, u"\U0001F600 \xD800 lone"));
  key.SetValue(u"Unicode \u00e9\u4e2d", RegistryValue::Text(1, u"\u00e9\u4e2d"));
  key.SetValue(u"Bytes", RegistryValue::Bytes(3, {0, 1, 254, 255}));
  key.SetValue(u"NoBytes", RegistryValue::Bytes(3, {}));
  key.SetValue(u"Min", RegistryValue::Number(4, 0x80000000u));
  key.SetValue(u"Be", RegistryValue::Number(5, 0x02000000u));
  key.SetValue(u"Multi", RegistryValue::Text(7, std::u16string_view(u"a\0\0b,c\0", 7)));
  key.SetValue(u"NoItems", RegistryValue::Text(7, u""));
  key.SetValue(u"Other", RegistryValue::Bytes(11, {9}));
  tree.Create(u"Software\\Quorvex\\5.3\\Extensions");  // empty keys survive
  tree.Create(u"Odd [k]; #=\" \u00e9\\x").SetValue(u"", RegistryValue::Number(5, 1));
  tree.root();
  SettingsTree with_root_value = tree;
  const_cast<SettingsNode&>(with_root_value.root())
      .SetValue(u"AtRoot", RegistryValue::Number(4, 3));

  for (const SettingsTree* t : {&tree, &with_root_value}) {
    const std::string text = FormatSettings(*t, "; head\n");
    EXPECT_EQ(text.rfind("; head\n", 0), 0u);
    std::string error;
    const auto back = Parse(text, &error);
    ASSERT_TRUE(back) << error << "\n" << text;
    EXPECT_EQ(FormatSettings(*back, "; head\n"), text);
    const SettingsNode* k = back->Find(u"Software\\Quorvex\\5.3\\Settings");
    ASSERT_NE(k, nullptr);
    ASSERT_EQ(k->values().size(), key.values().size());
    for (size_t i = 0; i < key.values().size(); ++i) {
      EXPECT_EQ(k->values()[i].first, key.values()[i].first);
      EXPECT_TRUE(k->values()[i].second == key.values()[i].second)
          << key.values()[i].first.ToUtf8();
    }
    EXPECT_NE(back->Find(u"Software\\Quorvex\\5.3\\Extensions"), nullptr);
    EXPECT_NE(back->Find(u"Odd [k]; #=\" \u00e9\\x"), nullptr);
  }
  // The readable forms a person would edit.
  const std::string text = FormatSettings(tree, "");
  EXPECT_NE(text.find("[Software\\Quorvex\\5.3\\Settings]\n"), std::string::npos) << text;
  EXPECT_NE(text.find("Min = dword:-2147483648\n"), std::string::npos) << text;
  EXPECT_NE(text.find("Be = dword-be:2\n"), std::string::npos) << text;
  EXPECT_NE(text.find("Bytes = hex:00,01,fe,ff\n"), std::string::npos) << text;
  EXPECT_NE(text.find("Multi = multi:\"a\",\"\",\"b,c\"\n"), std::string::npos) << text;
  EXPECT_NE(text.find("@ = \"default\"\n"), std::string::npos) << text;
  EXPECT_NE(text.find("\"@\" = \"an at sign\"\n"), std::string::npos) << text;
}

TEST(SettingsTreeTest, PathsKeysAndValues) {
  SettingsTree tree;
  EXPECT_TRUE(tree.empty());
  SettingsNode& c = tree.Create(u"\\A\\\\B\\C\\");
  EXPECT_EQ(&c, tree.Find(u"a\\b\\c"));
  EXPECT_EQ(tree.Find(u""), &tree.root());
  EXPECT_EQ(tree.Find(u"A\\X"), nullptr);
  EXPECT_FALSE(tree.Delete(u"A\\B"));  // has a subkey
  EXPECT_FALSE(tree.Delete(u""));      // the root stays
  EXPECT_FALSE(tree.Delete(u"A\\Nope"));
  EXPECT_TRUE(tree.Delete(u"A\\B\\C"));
  EXPECT_TRUE(tree.Delete(u"A\\B"));
  EXPECT_NE(tree.Find(u"A"), nullptr);

  SettingsTree copy = tree;
  copy.Create(u"A").SetValue(u"v", RegistryValue::Number(4, 1));
  EXPECT_EQ(tree.Find(u"A")->FindValue(u"v"), nullptr);  // copies are deep
  EXPECT_TRUE(copy.Find(u"A")->DeleteValue(u"V"));
  EXPECT_FALSE(copy.Find(u"A")->DeleteValue(u"V"));
}

}  // namespace
}  // namespace qv
