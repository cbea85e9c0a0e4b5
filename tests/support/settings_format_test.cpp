// The text form of settings trees: what reads, what is refused (with its line), and that
// writing and reading again gives the same tree.
#include "support/settings_format.h"

#include <gtest/gtest.h>

#include <iterator>
#include <random>

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

namespace qv {
namespace {

// Random trees with awkward names and values: writing and reading must give them back, and
// damaged texts must be refused cleanly, never crash.
class RandomTrees {
 public:
  explicit RandomTrees(uint32_t seed) : rng_(seed) {}

  SettingsTree Tree() {
    SettingsTree tree;
    const int keys = Pick(1, 6);
    for (int k = 0; k < keys; ++k) {
      String path;
      const int depth = Pick(1, 3);
      for (int d = 0; d < depth; ++d) {
        if (d > 0) path.Append(u'\\');
        path.Append(Name(/*for_key=*/true).view());
      }
      SettingsNode& key = tree.Create(path);
      const int values = Pick(0, 5);
      for (int v = 0; v < values; ++v)
        key.SetValue(Name(false), Value());
    }
    return tree;
  }

 private:
  int Pick(int low, int high) { return std::uniform_int_distribution<int>(low, high)(rng_); }

  Char Unit(bool for_key) {
    static constexpr Char kKeyUnits[] = {u'a', u'Z', u'5', u' ', u'=', u'"',   u';', u'#',
                                         u'[', u']', u'@', u'%', 0xE9, 0x4E2D, u'-', u'.'};
    static constexpr Char kValueUnits[] = {u'\\', u'\r',  u'\n',  u'\t',  0,   0x01,
                                           0x7F,  0xD800, 0xDC00, 0xFFFF, u','};
    const size_t key_count = std::size(kKeyUnits);
    const size_t count = for_key ? key_count : key_count + std::size(kValueUnits);
    const size_t i = static_cast<size_t>(Pick(0, static_cast<int>(count) - 1));
    return i < key_count ? kKeyUnits[i] : kValueUnits[i - key_count];
  }

  String Text(bool for_key, int max_length) {
    String text;
    const int length = Pick(for_key ? 1 : 0, max_length);
    for (int i = 0; i < length; ++i)
      text.Append(Unit(for_key));
    return text;
  }

  String Name(bool for_key) {
    if (!for_key && Pick(0, 9) == 0) return String();  // the default value
    return Text(for_key, 8);
  }

  RegistryValue Value() {
    switch (Pick(0, 6)) {
      case 0:
        return RegistryValue::Text(1, Text(false, 12));
      case 1:
        return RegistryValue::Text(2, Text(false, 12));
      case 2:
        return RegistryValue::Number(4, static_cast<uint32_t>(rng_()));
      case 3:
        return RegistryValue::Number(5, static_cast<uint32_t>(rng_()));
      case 4: {
        String items;
        const int n = Pick(0, 3);
        for (int i = 0; i < n; ++i) {
          String item = Text(false, 5);
          String clean;
          for (const Char c : item) {
            if (c != 0) clean.Append(c);  // a NUL inside an item would end it
          }
          items.Append(clean.view());
          items.Append(Char{0});
        }
        return RegistryValue::Text(7, items);
      }
      case 5: {
        std::vector<uint8_t> bytes(static_cast<size_t>(Pick(0, 6)));
        for (uint8_t& b : bytes)
          b = static_cast<uint8_t>(rng_());
        return RegistryValue::Bytes(3, std::move(bytes));
      }
      default: {
        std::vector<uint8_t> bytes(static_cast<size_t>(Pick(0, 3)));
        for (uint8_t& b : bytes)
          b = static_cast<uint8_t>(rng_());
        const int types[] = {0, 6, 8, 11, 1000};
        return RegistryValue::Bytes(types[Pick(0, 4)], std::move(bytes));
      }
    }
  }

  std::mt19937 rng_;
};

void ExpectSameNode(const SettingsNode& a, const SettingsNode& b) {
  EXPECT_EQ(a.name(), b.name());
  ASSERT_EQ(a.values().size(), b.values().size()) << a.name().ToUtf8();
  for (size_t i = 0; i < a.values().size(); ++i) {
    EXPECT_EQ(a.values()[i].first, b.values()[i].first);
    EXPECT_TRUE(a.values()[i].second == b.values()[i].second) << a.values()[i].first.ToUtf8();
  }
  ASSERT_EQ(a.children().size(), b.children().size()) << a.name().ToUtf8();
  for (size_t i = 0; i < a.children().size(); ++i) {
    ExpectSameNode(*a.children()[i], *b.children()[i]);
  }
}

TEST(SettingsFormatTest, RandomTreesComeBackAsTheyWere) {
  RandomTrees random(20261122);
  for (int round = 0; round < 300; ++round) {
    const SettingsTree tree = random.Tree();
    const std::string text = FormatSettings(tree, "; random\n");
    std::string error;
    const auto back = ParseSettings(text, &error);
    ASSERT_TRUE(back) << error << "\n" << text;
    ExpectSameNode(tree.root(), back->root());
    if (::testing::Test::HasFailure()) {
      ADD_FAILURE() << "round " << round << ":\n" << text;
      return;
    }
  }
}

TEST(SettingsFormatTest, DamagedTextsAreRefusedOrReadNeverCrash) {
  RandomTrees random(7);
  std::mt19937 rng(99);
  int refused = 0;
  for (int round = 0; round < 2000; ++round) {
    std::string text = FormatSettings(random.Tree(), "");
    const int edits = 1 + static_cast<int>(rng() % 4);
    for (int e = 0; e < edits && !text.empty(); ++e) {
      const size_t at = rng() % text.size();
      switch (rng() % 3) {
        case 0:
          text[at] = static_cast<char>(rng());
          break;
        case 1:
          text.erase(at, 1 + rng() % 8);
          break;
        default:
          text.insert(at, 1, "\"\\[]=:,\n\r\0x"[rng() % 12]);
          break;
      }
    }
    std::string error;
    const auto tree = ParseSettings(text, &error);
    if (!tree) {
      ++refused;
      EXPECT_EQ(error.rfind("line ", 0), 0u) << error;
      continue;
    }
    // What reads must also write and read again to the same text.
    const std::string again = FormatSettings(*tree, "");
    const auto reread = ParseSettings(again, &error);
    ASSERT_TRUE(reread) << error;
    EXPECT_EQ(FormatSettings(*reread, ""), again);
  }
  EXPECT_GT(refused, 100);
}

}  // namespace
}  // namespace qv
