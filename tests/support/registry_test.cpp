// cRegistry over real settings files in a private HOME: every value type, the write rules,
// the 26001 failures, enumeration, the read-only machine tree, atomic saves and damaged files.
#include "support/registry.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "automation/error.h"
#include "automation/safe_array.h"
#include "scratch_home.h"
#include "support/common.h"
#include "support/data_folder.h"
#include "support/settings_file.h"
#include "support/settings_format.h"
#include "support/tyx_vars.h"

namespace qv {
namespace {

using testing::ScratchHome;

constexpr std::u16string_view kKey = u"Software\\Quorvex\\5.3\\Settings";

cRegistry Cursor(int32_t root, StringView section, StringView value) {
  cRegistry reg;
  reg.ClassKey = root;
  reg.SectionKey = String(section);
  reg.ValueKey = String(value);
  return reg;
}

Variant ByteArray(std::vector<uint8_t> bytes) {
  std::vector<Variant> values;
  for (const uint8_t b : bytes)
    values.emplace_back(b);
  return Variant(SafeArray::FromValues(std::move(values), VarType::Byte));
}

std::vector<uint8_t> BytesOf(const Variant& v) {
  std::vector<uint8_t> out;
  if (!v.is_array()) return out;
  for (const Variant& b : v.as_array()->elements())
    out.push_back(b.as_byte());
  return out;
}

// Runs `f`, which must raise 26001; returns the description.
template <class F>
std::string Raises26001(F f) {
  try {
    f();
  } catch (const Error& e) {
    EXPECT_EQ(e.number(), 26001);
    EXPECT_EQ(e.source(), u"TyxClass.cRegistry");
    return e.description().ToUtf8();
  }
  ADD_FAILURE() << "no error raised";
  return {};
}

ino_t InodeOf(const std::filesystem::path& path) {
  struct stat st;
  return ::stat(path.c_str(), &st) == 0 ? st.st_ino : 0;
}

TEST(RegistryTest, EveryTypeReadsFromTheFile) {
  ScratchHome home;
  ::setenv("QV_REG_TEST_VAR", "expanded", 1);
  home.WriteUser(
      "[Software\\Quorvex\\5.3\\Settings]\n"
      "Text = \"Arial, \\\"bold\\\"\\r\\nnext\"\n"
      "Path = expand:\"%QV_REG_TEST_VAR%/x/%NOT_SET_ANYWHERE%\"\n"
      "Blob = hex:00,7f,ff\n"
      "InData = expand:\"%QUORVEX_DATA_DIR%/templates/default.zip\"\n"
      "Count = dword:-5\n"
      "Swapped = dword-be:0x01020304\n"
      "List = multi:\"a\",\"\",\"b\"\n"
      "Odd = hex(11):01\n"
      "@ = \"default value\"\n"
      "\"With = sign\" = \"q\"\n"
      "[Software\\Quorvex\\5.3\\Settings\\Sub Key]\n");
  cRegistry reg = Cursor(kHkeyCurrentUser, kKey, u"text");  // names ignore case
  Variant v = reg.Value();
  EXPECT_EQ(reg.ValueType, 1);
  EXPECT_EQ(v.as_string(), u"Arial, \"bold\"\r\nnext");

  reg.ValueKey = u"Path";
  EXPECT_EQ(reg.Value().as_string(), u"expanded/x/%NOT_SET_ANYWHERE%");
  EXPECT_EQ(reg.ValueType, 2);

  // The data folder is always known, set in the environment or not.
  reg.ValueKey = u"InData";
  EXPECT_EQ(reg.Value().as_string().ToUtf8(), home.data().string() + "/templates/default.zip");
  ::unsetenv("QUORVEX_DATA_DIR");
  EXPECT_EQ(reg.Value().as_string().ToUtf8(), (DataFolder() / "templates/default.zip").string());
  ::setenv("QUORVEX_DATA_DIR", home.data().c_str(), 1);

  reg.ValueKey = u"Blob";
  v = reg.Value();
  EXPECT_EQ(reg.ValueType, 3);
  EXPECT_EQ(BytesOf(v), (std::vector<uint8_t>{0x00, 0x7f, 0xff}));
  EXPECT_EQ(v.as_array()->element_type(), VarType::Byte);

  reg.ValueKey = u"Count";
  v = reg.Value();
  EXPECT_EQ(v.type(), VarType::Long);
  EXPECT_EQ(v.as_long(), -5);
  EXPECT_EQ(reg.ValueType, 4);

  reg.ValueKey = u"Swapped";
  EXPECT_EQ(reg.Value().as_long(), 0x01020304);
  EXPECT_EQ(reg.ValueType, 5);

  reg.ValueKey = u"List";
  EXPECT_EQ(reg.Value().as_string(), StringView(u"a\0\0b\0", 5));
  EXPECT_EQ(reg.ValueType, 7);

  reg.ValueKey = u"Odd";
  EXPECT_EQ(BytesOf(reg.Value()), std::vector<uint8_t>{1});
  EXPECT_EQ(reg.ValueType, 11);

  reg.ValueKey = u"";
  EXPECT_EQ(reg.Value().as_string(), u"default value");
  reg.ValueKey = u"With = sign";
  EXPECT_EQ(reg.Value().as_string(), u"q");
  ::unsetenv("QV_REG_TEST_VAR");

  // A write saves the whole tree again: every value of every type, and the subkey, survive.
  std::string error;
  const auto before = ParseSettings(ScratchHome::Read(home.user_file()), &error);
  reg.ValueKey = u"Added";
  reg.ValueType = 1;
  reg.SetValue(Variant(String(u"new")));
  const auto after = ParseSettings(ScratchHome::Read(home.user_file()), &error);
  ASSERT_TRUE(before && after) << error;
  const SettingsNode* b = before->Find(kKey);
  const SettingsNode* a = after->Find(kKey);
  ASSERT_EQ(a->values().size(), b->values().size() + 1);
  for (size_t i = 0; i < b->values().size(); ++i)
    EXPECT_TRUE(a->values()[i].second == b->values()[i].second) << a->values()[i].first.ToUtf8();
  EXPECT_NE(after->Find(u"software\\quorvex\\5.3\\settings\\sub key"), nullptr);
}

TEST(RegistryTest, WriteRulesByType) {
  ScratchHome home;
  cRegistry reg = Cursor(kHkeyCurrentUser, kKey, u"v");
  auto read_back = [&](StringView name) {
    cRegistry r = Cursor(kHkeyCurrentUser, kKey, name);
    r.ValueType = -99;
    Variant v = r.Value();
    return std::make_pair(v, r.ValueType);
  };

  // Text: a Boolean goes in as its text; two "%" make type 2 whatever the caller set.
  reg.ValueKey = u"Flag";
  reg.ValueType = 1;
  reg.SetValue(Variant(true));
  EXPECT_EQ(read_back(u"Flag").first.as_string(), u"True");
  EXPECT_EQ(reg.ValueType, 1);  // the cursor keeps what the caller set

  reg.ValueKey = u"One";
  reg.SetValue(Variant(String(u"100%")));
  EXPECT_EQ(read_back(u"One").second, 1);
  reg.ValueKey = u"Two";
  reg.SetValue(Variant(String(u"%A%B")));
  EXPECT_EQ(read_back(u"Two").second, 2);
  reg.ValueKey = u"Expandable";
  reg.ValueType = 2;
  reg.SetValue(Variant(String(u"plain")));
  EXPECT_EQ(read_back(u"Expandable").second, 1);

  // Numbers: Integer and Long only; type 5 is written as type 4.
  reg.ValueKey = u"Int";
  reg.ValueType = 4;
  reg.SetValue(Variant(int16_t{-7}));
  EXPECT_EQ(read_back(u"Int").first.as_long(), -7);
  reg.ValueKey = u"Be";
  reg.ValueType = 5;
  reg.SetValue(Variant(int32_t{0x01020304}));
  const auto be = read_back(u"Be");
  EXPECT_EQ(be.second, 4);
  EXPECT_EQ(be.first.as_long(), 0x01020304);

  // Bytes from the lower bound.
  reg.ValueKey = u"Bytes";
  reg.ValueType = 3;
  reg.SetValue(ByteArray({1, 2, 3}));
  EXPECT_EQ(BytesOf(read_back(u"Bytes").first), (std::vector<uint8_t>{1, 2, 3}));

  // Any other type writes nothing, silently, but the key is made.
  reg.SectionKey = String(kKey) + u"\\Made";
  reg.ValueKey = u"Multi";
  reg.ValueType = 7;
  reg.SetValue(Variant(String(u"x")));
  EXPECT_TRUE(reg.KeyExists());
  reg.Default = Variant(String(u"absent"));
  EXPECT_EQ(reg.Value().as_string(), u"absent");
}

TEST(RegistryTest, RefusedValuesRaise26001WithTheirText) {
  ScratchHome home;
  cRegistry reg = Cursor(kHkeyCurrentUser, kKey, u"SmtpServerPort");
  reg.ValueType = 4;
  EXPECT_EQ(Raises26001([&] { reg.SetValue(Variant()); }),
            "Failed to set registry value Key: '-2147483647',Section: "
            "'Software\\Quorvex\\5.3\\Settings',Key: 'SmtpServerPort' to value: ''");
  EXPECT_EQ(Raises26001([&] { reg.SetValue(Variant(String(u"25"))); }),
            "Failed to set registry value Key: '-2147483647',Section: "
            "'Software\\Quorvex\\5.3\\Settings',Key: 'SmtpServerPort' to value: '25'");
  EXPECT_EQ(Raises26001([&] { reg.SetValue(Variant(2.5)); }),
            "Failed to set registry value Key: '-2147483647',Section: "
            "'Software\\Quorvex\\5.3\\Settings',Key: 'SmtpServerPort' to value: '2.5'");
  reg.ValueType = 5;
  Raises26001([&] { reg.SetValue(Variant(true)); });
  reg.ValueType = 3;
  Raises26001([&] { reg.SetValue(Variant(String(u"bytes"))); });
  reg.ValueType = 1;
  Raises26001([&] { reg.SetValue(Variant::Null()); });
  // Nothing of that reached the file.
  EXPECT_FALSE(std::filesystem::exists(home.user_file()));
}

TEST(RegistryTest, MissingValuesGiveDefaultAndKeepValueType) {
  ScratchHome home;
  cRegistry reg = Cursor(kHkeyCurrentUser, u"No\\Such\\Key", u"x");
  reg.ValueType = 4;
  EXPECT_TRUE(reg.Value().is_empty());
  EXPECT_EQ(reg.ValueType, 4);
  reg.Default = Variant(int32_t{42});
  EXPECT_EQ(reg.Value().as_long(), 42);
  EXPECT_FALSE(reg.KeyExists());

  reg.SectionKey = String(kKey);
  reg.ValueKey = u"Missing";
  EXPECT_EQ(reg.Value().as_long(), 42);
  EXPECT_EQ(reg.ValueType, 4);
}

TEST(RegistryTest, KeysAndEnumeration) {
  ScratchHome home;
  cRegistry reg = Cursor(kHkeyCurrentUser, u"A\\B\\C", u"");
  std::vector<String> names{String(u"stale")};
  int32_t count = 9;
  EXPECT_TRUE(reg.EnumerateValues(names, count));
  EXPECT_TRUE(names.empty());
  EXPECT_EQ(count, 0);

  reg.CreateKey();
  EXPECT_TRUE(reg.KeyExists());
  reg.SectionKey = u"a\\b";  // case does not matter, keys above exist too
  EXPECT_TRUE(reg.KeyExists());
  reg.SectionKey = u"";
  EXPECT_TRUE(reg.KeyExists());

  reg.SectionKey = u"A\\B";
  reg.ValueType = 1;
  for (const char16_t* name : {u"Zeta", u"alpha", u"Mid"}) {
    reg.ValueKey = name;
    reg.SetValue(Variant(String(u"v")));
  }
  reg.ValueKey = u"ALPHA";  // replaces in place
  reg.SetValue(Variant(String(u"w")));
  reg.SectionKey = u"A\\B\\D";
  reg.CreateKey();
  reg.CreateKey();  // a second time is no failure

  reg.SectionKey = u"A\\B";
  EXPECT_TRUE(reg.EnumerateValues(names, count));
  EXPECT_EQ(count, 3);
  EXPECT_EQ(names, (std::vector<String>{u"Zeta", u"alpha", u"Mid"}));
  EXPECT_TRUE(reg.EnumerateSections(names, count));
  EXPECT_EQ(count, 2);
  EXPECT_EQ(names, (std::vector<String>{u"C", u"D"}));

  // Deleting: a key with subkeys stays, a leaf goes, a missing one fails.
  EXPECT_EQ(Raises26001([&] { reg.DeleteKey(); }),
            "Failed to delete registry Key: '-2147483647',Section: 'A\\B'");
  reg.SectionKey = u"A\\B\\D";
  reg.DeleteKey();
  EXPECT_FALSE(reg.KeyExists());
  EXPECT_EQ(Raises26001([&] { reg.DeleteKey(); }),
            "Failed to delete registry Key: '-2147483647',Section: 'A\\B\\D'");

  reg.SectionKey = u"A\\B";
  reg.ValueKey = u"mid";
  reg.DeleteValue();
  EXPECT_TRUE(reg.Value().is_empty());
  EXPECT_EQ(Raises26001([&] { reg.DeleteValue(); }),
            "Failed to delete registry Key: '-2147483647',Section: 'A\\B',Key: 'mid'");
  reg.SectionKey = u"A\\Gone";
  EXPECT_EQ(Raises26001([&] { reg.DeleteValue(); }),
            "Failed to open key '-2147483647',Section: 'A\\Gone' for delete access");
  reg.SectionKey = u"A\\B";
  reg.EnumerateValues(names, count);
  EXPECT_EQ(count, 2);

  // Key names that a line-based file could not hold are refused.
  reg.SectionKey = u"bad\nname";
  EXPECT_EQ(Raises26001([&] { reg.CreateKey(); }),
            "Failed to create registry Key: '-2147483647',Section: 'bad\nname'");
  reg.SectionKey = String(std::u16string_view(u"half\xD800", 5));
  Raises26001([&] { reg.CreateKey(); });
  reg.ValueType = 1;
  Raises26001([&] { reg.SetValue(Variant(String(u"x"))); });
  reg.SectionKey = u"emoji \U0001F600 ok";
  reg.CreateKey();
  EXPECT_TRUE(reg.KeyExists());
}

TEST(RegistryTest, MachineTreeIsReadOnly) {
  ScratchHome home;
  const std::string machine =
      "[Software\\Quorvex\\5.3\\Settings]\nBodyFont = \"Verdana\"\nRecPerPage = dword:20\n"
      "[Software\\Quorvex\\5.3\\Extensions]\nChart = \"chart.zip\"\n";
  home.WriteMachine(machine);
  cRegistry reg = Cursor(kHkeyLocalMachine, kKey, u"BodyFont");
  EXPECT_EQ(reg.Value().as_string(), u"Verdana");
  reg.ValueType = 1;
  EXPECT_EQ(Raises26001([&] { reg.SetValue(Variant(String(u"Arial"))); }),
            "Failed to set registry value Key: '-2147483646',Section: "
            "'Software\\Quorvex\\5.3\\Settings',Key: 'BodyFont' to value: 'Arial'");
  EXPECT_EQ(Raises26001([&] { reg.CreateKey(); }),
            "Failed to create registry Key: '-2147483646',Section: "
            "'Software\\Quorvex\\5.3\\Settings'");
  EXPECT_EQ(Raises26001([&] { reg.DeleteKey(); }),
            "Failed to delete registry Key: '-2147483646',Section: "
            "'Software\\Quorvex\\5.3\\Settings'");
  EXPECT_EQ(Raises26001([&] { reg.DeleteValue(); }),
            "Failed to open key '-2147483646',Section: 'Software\\Quorvex\\5.3\\Settings' for "
            "delete access");
  EXPECT_EQ(ScratchHome::Read(home.machine_file()), machine);

  // The short-root helpers: "HKLM" is the machine tree, anything else the user's.
  EXPECT_EQ(ReadRegValue(u"HKLM", kKey, u"RecPerPage").as_long(), 20);
  EXPECT_EQ(Vars().RegValueType, 4);
  // A setting missing from the user's tree (one seeded by an older version) reads as shipped;
  // the user's extensions don't fall back, and a missing value leaves the last type.
  EXPECT_EQ(ReadRegValue(u"HKCU", kKey, u"RecPerPage").as_long(), 20);
  EXPECT_EQ(Vars().RegValueType, 4);
  EXPECT_TRUE(ReadRegValue(u"HKCU", u"Software\\Quorvex\\5.3\\Extensions", u"Chart").is_empty());
  EXPECT_TRUE(ReadRegValue(u"HKCU", kKey, u"NoSuchSetting").is_empty());
  EXPECT_EQ(Vars().RegValueType, 4);
  WriteRegValue(u"whatever", kKey, u"RecPerPage", 4, Variant(int32_t{50}));
  EXPECT_EQ(ReadRegValue(u"", kKey, u"RecPerPage").as_long(), 50);
  try {
    WriteRegValue(u"HKLM", kKey, u"RecPerPage", 4, Variant(int32_t{50}));
    ADD_FAILURE() << "the machine tree took a write";
  } catch (const Error& e) {
    EXPECT_EQ(e.number(), 26001);
  }
  EXPECT_EQ(ReadRegValue(u"HKLM", kKey, u"RecPerPage").as_long(), 20);
}

TEST(RegistryTest, SavesAreAtomicAndSeenAtOnce) {
  ScratchHome home;
  cRegistry reg = Cursor(kHkeyCurrentUser, kKey, u"Language");
  reg.ValueType = 1;
  reg.SetValue(Variant(String(u"English")));
  const ino_t first = InodeOf(home.user_file());
  reg.ValueKey = u"BackupFile";
  reg.SetValue(Variant(String(u"True")));
  // Each save is a new file renamed over the old one, never a rewrite in place.
  EXPECT_NE(InodeOf(home.user_file()), first);
  // Nothing but the tree is left in its folder.
  std::vector<std::string> entries;
  for (const auto& entry : std::filesystem::directory_iterator(home.user_file().parent_path())) {
    entries.push_back(entry.path().filename().string());
  }
  EXPECT_EQ(entries, std::vector<std::string>{"settings"});
  EXPECT_EQ((std::filesystem::status(home.user_file()).permissions() &
             std::filesystem::perms::others_read),
            std::filesystem::perms::none);

  // A change made by someone else is read at the next use.
  const std::string edited = ScratchHome::Read(home.user_file()) + "Added = \"by hand\"\n";
  const std::filesystem::path temp = home.user_file().string() + ".edit";
  ScratchHome::Write(temp, edited);
  std::filesystem::rename(temp, home.user_file());
  reg.ValueKey = u"Added";
  EXPECT_EQ(reg.Value().as_string(), u"by hand");
  reg.ValueKey = u"Language";
  EXPECT_EQ(reg.Value().as_string(), u"English");
}

TEST(RegistryTest, AFailedSaveLeavesNothingBehind) {
  ScratchHome home;
  // ~/.config is a file: the tree's folder can't be made.
  ScratchHome::Write(home.root() / ".config", "not a folder");
  cRegistry reg = Cursor(kHkeyCurrentUser, kKey, u"Language");
  reg.ValueType = 1;
  ::testing::internal::CaptureStderr();
  EXPECT_EQ(Raises26001([&] { reg.SetValue(Variant(String(u"English"))); }),
            "Failed to set registry value Key: '-2147483647',Section: "
            "'Software\\Quorvex\\5.3\\Settings',Key: 'Language' to value: 'English'");
  const std::string err = ::testing::internal::GetCapturedStderr();
  EXPECT_NE(err.find(home.user_file().string()), std::string::npos) << err;
  EXPECT_EQ(ScratchHome::Read(home.root() / ".config"), "not a folder");
  EXPECT_TRUE(reg.Value().is_empty());
}

TEST(RegistryTest, DamagedFileIsReportedOnceReadAsEmptyAndKeptUntilAWrite) {
  ScratchHome home;
  const std::string damaged =
      "[Software\\Quorvex\\5.3\\Settings]\nLanguage = \"English\"\nthis line is no value\n";
  home.WriteUser(damaged);
  cRegistry reg = Cursor(kHkeyCurrentUser, kKey, u"Language");
  ::testing::internal::CaptureStderr();
  EXPECT_TRUE(reg.Value().is_empty());
  EXPECT_FALSE(reg.KeyExists());
  std::vector<String> names;
  int32_t count = 0;
  reg.EnumerateValues(names, count);
  EXPECT_EQ(count, 0);
  const std::string err = ::testing::internal::GetCapturedStderr();
  EXPECT_NE(err.find(home.user_file().string()), std::string::npos) << err;
  EXPECT_NE(err.find("line 3"), std::string::npos) << err;
  EXPECT_EQ(err.find(home.user_file().string()), err.rfind(home.user_file().string()))
      << "reported more than once: " << err;
  EXPECT_EQ(ScratchHome::Read(home.user_file()), damaged);

  // A write replaces it, and the damaged text is kept aside.
  ::testing::internal::CaptureStderr();
  reg.ValueType = 1;
  reg.SetValue(Variant(String(u"German")));
  ::testing::internal::GetCapturedStderr();
  EXPECT_EQ(reg.Value().as_string(), u"German");
  EXPECT_EQ(ScratchHome::Read(home.user_file().string() + ".damaged"), damaged);
  std::string error;
  EXPECT_TRUE(ParseSettings(ScratchHome::Read(home.user_file()), &error)) << error;
}

TEST(RegistryTest, UnreadableTreeIsReportedAndReadAsEmpty) {
  ScratchHome home;
  // A folder where the file should be can't be read as a file.
  std::filesystem::create_directories(home.user_file());
  cRegistry reg = Cursor(kHkeyCurrentUser, kKey, u"Language");
  ::testing::internal::CaptureStderr();
  EXPECT_TRUE(reg.Value().is_empty());
  const std::string err = ::testing::internal::GetCapturedStderr();
  EXPECT_NE(err.find("cannot read"), std::string::npos) << err;
}

TEST(RegistryTest, UserTreeFollowsXdgConfigHome) {
  ScratchHome home;
  const std::filesystem::path config = home.root() / "xdg";
  ::setenv("XDG_CONFIG_HOME", config.c_str(), 1);
  EXPECT_EQ(UserSettingsPath(), config / "quorvex" / "settings");
  WriteRegValue(u"HKCU", kKey, u"Language", 1, Variant(String(u"English")));
  EXPECT_TRUE(std::filesystem::exists(config / "quorvex" / "settings"));
  EXPECT_FALSE(std::filesystem::exists(home.user_file()));
  ::unsetenv("XDG_CONFIG_HOME");
  EXPECT_EQ(UserSettingsPath(), home.user_file());
  EXPECT_TRUE(ReadRegValue(u"HKCU", kKey, u"Language").is_empty());
  EXPECT_EQ(MachineSettingsPath(), home.machine_file());
}

}  // namespace
}  // namespace qv
