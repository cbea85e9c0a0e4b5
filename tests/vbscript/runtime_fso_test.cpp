// Scripting.FileSystemObject and its text streams on real files in a scratch folder.
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "vbscript/runtime_test_helpers.h"

namespace qv::vbs {
namespace {

namespace fs = std::filesystem;
using testing::I;

class RuntimeFso : public ::testing::Test {
 protected:
  void SetUp() override {
    const char* scratch = std::getenv("QV_TEST_SCRATCH");
    const fs::path base = scratch ? fs::path(scratch) : fs::temp_directory_path();
    root_ = base / ("fso-" + std::to_string(::getpid()) + "-" +
                    ::testing::UnitTest::GetInstance()->current_test_info()->name());
    fs::remove_all(root_);
    fs::create_directories(root_);
    fso_ = ClassRegistry::WithStandardClasses().Create(u"Scripting.FileSystemObject");
  }
  void TearDown() override {
    std::error_code ec;
    fs::permissions(root_ / "ro.txt", fs::perms::owner_all, ec);
    fs::remove_all(root_, ec);
  }

  // A path below the scratch folder, written with Windows separators as scripts often do.
  Variant P(const std::string& relative) const {
    std::string text = (root_ / relative).string();
    for (char& c : text) {
      if (c == '/') c = '\\';
    }
    return Variant(String::FromUtf8(text));
  }
  std::string Bytes(const std::string& relative) const {
    std::ifstream in(root_ / relative, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
  }
  void WriteBytes(const std::string& relative, const std::string& bytes) const {
    std::ofstream(root_ / relative, std::ios::binary) << bytes;
  }
  int ErrorOf(StringView member, std::initializer_list<Variant> args) {
    try {
      fso_->Call(member, args);
    } catch (const Error& e) {
      return e.number();
    }
    return 0;
  }

  fs::path root_;
  Ref<Object> fso_;
};

TEST_F(RuntimeFso, PathFunctionsWorkOnTextWithEitherSeparator) {
  auto call = [&](StringView m, std::initializer_list<Variant> a) {
    return ToString(fso_->Call(m, a)).ToUtf8();
  };
  EXPECT_EQ(call(u"GetFileName", {u"a\\b\\c.txt"}), "c.txt");
  EXPECT_EQ(call(u"GetFileName", {u"a/b/"}), "b");
  EXPECT_EQ(call(u"GetBaseName", {u"a/b/c.tar.gz"}), "c.tar");
  EXPECT_EQ(call(u"GetExtensionName", {u"a\\c.TXT"}), "TXT");
  EXPECT_EQ(call(u"GetExtensionName", {u"a\\c"}), "");
  EXPECT_EQ(call(u"GetParentFolderName", {u"a\\b\\c.txt"}), "a\\b");
  EXPECT_EQ(call(u"GetParentFolderName", {u"c.txt"}), "");
  EXPECT_EQ(call(u"GetParentFolderName", {u"/c.txt"}), "/");
  EXPECT_EQ(call(u"BuildPath", {u"a", u"b.txt"}), "a/b.txt");
  EXPECT_EQ(call(u"BuildPath", {u"a\\", u"b.txt"}), "a\\b.txt");
  EXPECT_EQ(call(u"GetAbsolutePathName", {u"/x/./y/../z\\"}), "/x/z");
  const std::string temp = call(u"GetTempName", {});
  EXPECT_EQ(temp.size(), 12u);
  EXPECT_EQ(temp.substr(0, 3), "rad");
  EXPECT_EQ(temp.substr(8), ".tmp");
}

TEST_F(RuntimeFso, TextStreamsWriteUtf8AndUnicodeAndReadBack) {
  const Variant out = fso_->Call(u"CreateTextFile", {P("a.txt")});
  out.as_object()->Call(u"WriteLine", {u"héllo"});
  out.as_object()->Call(u"Write", {u"x"});
  out.as_object()->Call(u"WriteBlankLines", {I(2)});
  out.as_object()->Call(u"Close");
  EXPECT_EQ(Bytes("a.txt"), "h\xC3\xA9llo\r\nx\r\n\r\n");
  const Variant in = fso_->Call(u"OpenTextFile", {P("a.txt")});
  Object& s = *in.as_object();
  EXPECT_EQ(ToString(s.Call(u"ReadLine")), u"héllo");
  EXPECT_EQ(ToLong(s.Get(u"Line")), 2);
  EXPECT_EQ(ToString(s.Call(u"Read", {I(1)})), u"x");
  EXPECT_EQ(ToLong(s.Get(u"Column")), 2);
  EXPECT_TRUE(ToBool(s.Get(u"AtEndOfLine")));
  s.Call(u"SkipLine");
  EXPECT_EQ(ToString(s.Call(u"ReadAll")), u"\r\n");
  EXPECT_TRUE(ToBool(s.Get(u"AtEndOfStream")));
  try {
    s.Call(u"ReadLine");
    ADD_FAILURE() << "read past the end";
  } catch (const Error& e) {
    EXPECT_EQ(e.number(), 62);
  }
  // Unicode: UTF-16LE with its BOM; appending adds no second BOM.
  fso_->Call(u"CreateTextFile", {P("u.txt"), Variant(true), Variant(true)})
      .as_object()
      ->Call(u"Write", {u"A\u4e2d"});
  EXPECT_EQ(Bytes("u.txt"), std::string("\xFF\xFE"
                                        "A\0\x2d\x4e",
                                        6));
  fso_->Call(u"OpenTextFile", {P("u.txt"), I(8), Variant(false), I(-1)})
      .as_object()
      ->Call(u"Write", {u"B"});
  EXPECT_EQ(Bytes("u.txt").size(), 8u);
  // A BOM decides the encoding whatever the format asked for.
  EXPECT_EQ(ToString(fso_->Call(u"OpenTextFile", {P("u.txt")}).as_object()->Call(u"ReadAll")),
            u"A\u4e2dB");
  WriteBytes("bom8.txt", "\xEF\xBB\xBFok\nnext");
  const Variant bom = fso_->Call(u"OpenTextFile", {P("bom8.txt")});
  Object& b = *bom.as_object();
  EXPECT_EQ(ToString(b.Call(u"ReadLine")), u"ok");
  EXPECT_EQ(ToString(b.Call(u"ReadLine")), u"next");
}

TEST_F(RuntimeFso, StreamModesAndOpenErrors) {
  EXPECT_EQ(ErrorOf(u"OpenTextFile", {P("missing.txt")}), 53);
  EXPECT_EQ(ErrorOf(u"OpenTextFile", {P("nodir/x.txt"), I(2), Variant(true)}), 76);
  EXPECT_EQ(ErrorOf(u"OpenTextFile", {P("x.txt"), I(3)}), 5);
  EXPECT_EQ(ErrorOf(u"CreateTextFile", {P("")}), 70);
  fso_->Call(u"CreateTextFile", {P("w.txt")}).as_object()->Call(u"Write", {u"1"});
  EXPECT_EQ(ErrorOf(u"CreateTextFile", {P("w.txt"), Variant(false)}), 58);
  const Variant reader = fso_->Call(u"OpenTextFile", {P("w.txt"), I(1)});
  Object& r = *reader.as_object();
  EXPECT_THROW(r.Call(u"Write", {u"x"}), Error);
  const Variant appender = fso_->Call(u"OpenTextFile", {P("w.txt"), I(8)});
  Object& w = *appender.as_object();
  EXPECT_THROW(w.Call(u"ReadLine"), Error);
  w.Call(u"Write", {u"2"});
  w.Call(u"Close");
  EXPECT_EQ(Bytes("w.txt"), "12");
  WriteBytes("empty.txt", "");
  const Variant empty = fso_->Call(u"OpenTextFile", {P("empty.txt")});
  Object& e = *empty.as_object();
  EXPECT_TRUE(ToBool(e.Get(u"AtEndOfStream")));
  EXPECT_THROW(e.Call(u"ReadAll"), Error);
}

TEST_F(RuntimeFso, FoldersFilesCopyMoveAndDelete) {
  const Variant folder = fso_->Call(u"CreateFolder", {P("sub")});
  EXPECT_EQ(ErrorOf(u"CreateFolder", {P("sub")}), 58);
  EXPECT_EQ(ErrorOf(u"CreateFolder", {P("no/such")}), 76);
  EXPECT_TRUE(ToBool(fso_->Call(u"FolderExists", {P("sub")})));
  EXPECT_FALSE(ToBool(fso_->Call(u"FileExists", {P("sub")})));
  WriteBytes("sub/one.txt", "1");
  WriteBytes("sub/two.log", "22");
  Object& f = *folder.as_object();
  EXPECT_EQ(ToString(f.Get(u"Name")), u"sub");
  EXPECT_EQ(ToLong(f.Get(u"Files").as_object()->Get(u"Count")), 2);
  EXPECT_EQ(ToLong(f.Get(u"Size")), 3);
  const Variant file = fso_->Call(u"GetFile", {P("sub/two.log")});
  EXPECT_EQ(ToLong(file.as_object()->Get(u"Size")), 2);
  EXPECT_EQ(ToString(file.as_object()->Get(u"Type")), u"Text Document");
  EXPECT_EQ(ToString(file.as_object()->Get(u"ParentFolder")), ToString(f.Get(u"Path")));
  EXPECT_EQ(ErrorOf(u"GetFile", {P("sub/none")}), 53);
  EXPECT_EQ(ErrorOf(u"GetFolder", {P("none")}), 76);
  // Wildcards copy into a folder; overwrite False refuses an existing target.
  fso_->Call(u"CreateFolder", {P("dest")});
  fso_->Call(u"CopyFile", {P("sub/*.txt"), P("dest")});
  EXPECT_TRUE(fs::exists(root_ / "dest/one.txt"));
  EXPECT_FALSE(fs::exists(root_ / "dest/two.log"));
  EXPECT_EQ(ErrorOf(u"CopyFile", {P("sub/one.txt"), P("dest/one.txt"), Variant(false)}), 58);
  EXPECT_EQ(ErrorOf(u"CopyFile", {P("sub/none.txt"), P("dest/")}), 53);
  EXPECT_EQ(ErrorOf(u"CopyFile", {P("sub/*.xyz"), P("dest/")}), 53);
  fso_->Call(u"MoveFile", {P("sub/two.log"), P("dest/")});
  EXPECT_TRUE(fs::exists(root_ / "dest/two.log"));
  EXPECT_EQ(ErrorOf(u"MoveFile", {P("dest/one.txt"), P("dest/two.log")}), 58);
  fso_->Call(u"CopyFolder", {P("dest"), P("copy")});
  EXPECT_TRUE(fs::exists(root_ / "copy/two.log"));
  fso_->Call(u"DeleteFile", {P("copy/*.log")});
  EXPECT_FALSE(fs::exists(root_ / "copy/two.log"));
  EXPECT_EQ(ErrorOf(u"DeleteFile", {P("copy/none.txt")}), 53);
  // Read-only files need force.
  WriteBytes("ro.txt", "r");
  fs::permissions(root_ / "ro.txt", fs::perms::owner_write, fs::perm_options::remove);
  if (::geteuid() != 0) {
    EXPECT_EQ(ErrorOf(u"DeleteFile", {P("ro.txt")}), 70);
  }
  fso_->Call(u"DeleteFile", {P("ro.txt"), Variant(true)});
  EXPECT_FALSE(fs::exists(root_ / "ro.txt"));
  fso_->Call(u"DeleteFolder", {P("copy")});
  EXPECT_FALSE(fs::exists(root_ / "copy"));
  EXPECT_EQ(ErrorOf(u"DeleteFolder", {P("copy")}), 76);
  std::vector<std::string> names;
  const Variant subfolders = fso_->Call(u"GetFolder", {P("")}).as_object()->Get(u"SubFolders");
  const Ref<Enumerator> e = subfolders.as_object()->NewEnum();
  Variant item;
  while (e->Next(item))
    names.push_back(ToString(item.as_object()->Get(u"Name")).ToUtf8());
  EXPECT_EQ(names, (std::vector<std::string>{"dest", "sub"}));
}

}  // namespace
}  // namespace qv::vbs
