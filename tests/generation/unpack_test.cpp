// Unpacking packages: folders and overwriting, and every kind of package that must be refused
// without a single file written (paths that leave the folder, links, bombs, damage).
#include <gtest/gtest.h>

#include <algorithm>

#include "automation/error.h"
#include "generation_fixture.h"
#include "package_builder.h"
#include "platform/zip.h"

namespace qv {
namespace {

using testing::GenerationFixture;
using testing::WriteZip;
namespace sfs = std::filesystem;

class UnpackTest : public GenerationFixture {
 protected:
  String Zip(const std::vector<testing::ZipEntry>& entries) {
    const sfs::path file = root() / "pack.zip";
    WriteZip(file.string(), entries);
    return String::FromUtf8(file.string());
  }
  String Target() const { return String::FromUtf8((root() / "out").string()); }
  // Every path below the scratch root, so that nothing written anywhere goes unseen.
  std::vector<std::string> Tree() const {
    std::vector<std::string> paths;
    for (const auto& e : sfs::recursive_directory_iterator(root())) {
      paths.push_back(sfs::relative(e.path(), root()).generic_string());
    }
    std::sort(paths.begin(), paths.end());
    return paths;
  }
  // Unpacks and gives the words of the refusal ("" when it worked).
  std::string Refusal(const String& zip, const UnzipLimits& limits = {}) {
    try {
      UnpackZip(zip, Target(), limits);
      return "";
    } catch (const Error& e) {
      EXPECT_EQ(e.number(), -1);
      return e.description().ToUtf8();
    }
  }
};

TEST_F(UnpackTest, FoldersAndOverwriting) {
  Write(root() / "out" / "control.xml", "old");
  Write(root() / "out" / "keep.txt", "mine");
  const String zip = Zip({{"control.xml", "new"},
                          {"sub/", ""},
                          {"sub/deep/page.htm", "<p>"},
                          {"win\\style.css", "css"},
                          {"empty/", ""}});
  const UnzipStats stats = UnpackZip(zip, Target());
  EXPECT_EQ(stats.files, 3u);
  EXPECT_EQ(stats.bytes, 9u);
  EXPECT_EQ(Read(root() / "out" / "control.xml"), "new");
  EXPECT_EQ(Read(root() / "out" / "keep.txt"), "mine");
  EXPECT_EQ(Read(root() / "out" / "sub" / "deep" / "page.htm"), "<p>");
  EXPECT_EQ(Read(root() / "out" / "win" / "style.css"), "css");
  EXPECT_TRUE(sfs::is_directory(root() / "out" / "empty"));
  // No staging folder is left behind.
  for (const auto& e : sfs::directory_iterator(root())) {
    EXPECT_EQ(e.path().filename().string().rfind(".unpack", 0), std::string::npos);
  }
}

TEST_F(UnpackTest, HostilePackagesWriteNothing) {
  Write(root() / "out" / "keep.txt", "mine");
  const struct {
    std::vector<testing::ZipEntry> entries;
    const char* words;
  } cases[] = {
      {{{"ok.txt", "x"}, {"../evil.txt", "x"}}, "\"../evil.txt\" points outside its folder"},
      {{{"a/../../evil.txt", "x"}}, "points outside its folder"},
      {{{"/tmp/evil.txt", "x"}}, "points outside its folder"},
      {{{"..\\evil.txt", "x"}}, "points outside its folder"},
      {{{"C:/evil.txt", "x"}}, "points outside its folder"},
      {{{"ok.txt", "x"}, {"link", "/etc/passwd", true}}, "\"link\" is a link"},
  };
  for (const auto& c : cases) {
    const String zip = Zip(c.entries);
    const std::vector<std::string> before = Tree();
    const std::string words = Refusal(zip);
    EXPECT_NE(words.find(c.words), std::string::npos) << words;
    EXPECT_NE(words.find("pack.zip\" can't be unpacked"), std::string::npos) << words;
    EXPECT_EQ(Tree(), before) << c.words;
  }
}

TEST_F(UnpackTest, BombsAndDamage) {
  const std::vector<std::string> before = Tree();
  UnzipLimits small;
  small.max_total_bytes = 1 << 20;
  small.max_entries = 3;
  // A megabyte and a bit of zeros packs into a few kilobytes; it stops at the limit.
  String zip = Zip({{"a.txt", "abc"}, {"zeros.bin", std::string((1 << 20) + 1, '\0')}});
  EXPECT_LT(sfs::file_size(root() / "pack.zip"), 10000u);
  EXPECT_NE(Refusal(zip, small).find("unpacks to more than 1 MB"), std::string::npos);
  zip = Zip({{"1", ""}, {"2", ""}, {"3", ""}, {"4", ""}});
  EXPECT_NE(Refusal(zip, small).find("more than 3 entries"), std::string::npos);

  // Truncated, garbage and empty files.
  zip = Zip({{"a.txt", std::string(5000, 'a')}, {"b.txt", "b"}});
  const std::string bytes = Read(root() / "pack.zip");
  for (const std::string& damaged :
       {bytes.substr(0, bytes.size() / 2), std::string("PK\3\4junk"), std::string()}) {
    Write(root() / "pack.zip", damaged);
    EXPECT_NE(Refusal(zip).find("can't be unpacked"), std::string::npos);
  }
  // A package whose stored data no longer matches its checksum.
  std::string flipped = bytes;
  flipped[40] = static_cast<char>(flipped[40] ^ 0x55);
  Write(root() / "pack.zip", flipped);
  EXPECT_NE(Refusal(zip).find("can't be unpacked"), std::string::npos);
  sfs::remove(root() / "pack.zip");
  EXPECT_EQ(Tree(), before);
}

}  // namespace
}  // namespace qv
