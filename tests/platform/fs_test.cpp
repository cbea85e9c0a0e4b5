// Paths and folders: the "/" rule for paths from outside, folder life cycle on a real disk,
// and the VBScript error numbers of failed file operations.
#include "platform/fs.h"

#include <gtest/gtest.h>

#include <cmath>

#include "automation/date_time.h"
#include "automation/error.h"
#include "automation/error_of.h"
#include "templates/scratch_folder.h"

namespace qv {
namespace {

using testing::ScratchFolder;

TEST(FsPaths, BackslashesAndSlashesMeanTheSame) {
  EXPECT_EQ(fs::NormalizeSeparators(u"\\a\\b/c"), u"/a/b/c");
  EXPECT_EQ(fs::WithTrailingSlash(u"a\\b"), u"a/b/");
  EXPECT_EQ(fs::WithTrailingSlash(u"a/b/"), u"a/b/");
  EXPECT_EQ(fs::WithTrailingSlash(u""), u"");
  EXPECT_EQ(fs::JoinPath(u"root/", u"\\sub\\x.txt"), u"root/sub/x.txt");
  EXPECT_EQ(fs::JoinPath(u"root", u"x.txt"), u"root/x.txt");
  EXPECT_EQ(fs::JoinPath(u"", u"a\\x.txt"), u"a/x.txt");
  EXPECT_EQ(fs::FileNameOf(u"a\\b\\c.asp"), u"c.asp");
  EXPECT_EQ(fs::FileNameOf(u"plain"), u"plain");
  EXPECT_EQ(fs::ParentFolderOf(u"/a/b/c.asp"), u"/a/b");
  EXPECT_EQ(fs::ParentFolderOf(u"/a/b/"), u"/a");
  EXPECT_EQ(fs::ParentFolderOf(u"/x"), u"/");
  EXPECT_EQ(fs::ParentFolderOf(u"x"), u"");
  EXPECT_EQ(fs::ExtensionOf(u"x.tar.gz"), u"gz");
  EXPECT_EQ(fs::ExtensionOf(u"dir.d/noext"), u"");
  EXPECT_EQ(fs::ExtensionOf(u"~tmp.temp"), u"temp");
}

TEST(FsFolders, CreateListCopyMoveDelete) {
  ScratchFolder scratch;
  const String root = scratch.Path();
  const String deep = fs::JoinPath(root, u"a\\b\\c");
  EXPECT_EQ(ErrorOf([&] { fs::CreateFolder(deep); }), kErrPathNotFound);
  fs::CreateFolders(deep);
  fs::CreateFolders(deep);  // existing is fine
  EXPECT_TRUE(fs::FolderExists(deep));
  EXPECT_FALSE(fs::FileExists(deep));
  EXPECT_EQ(ErrorOf([&] { fs::CreateFolder(deep); }), kErrFileExists);

  scratch.Write("a/z.txt", "zz");
  scratch.Write("a/\xC3\xA9t\xC3\xA9.txt", "ete");  // a non-ASCII name survives the round trip
  const String a = fs::JoinPath(root, u"a");
  const std::vector<String> files = fs::ListFiles(a);
  ASSERT_EQ(files.size(), 2u);
  EXPECT_EQ(files[0], fs::JoinPath(a, u"z.txt"));
  EXPECT_EQ(fs::FileNameOf(files[1]), u"\u00e9t\u00e9.txt");
  EXPECT_TRUE(fs::FileExists(files[1]));
  ASSERT_EQ(fs::ListFolders(a).size(), 1u);
  EXPECT_EQ(fs::ListFolders(a)[0], fs::JoinPath(a, u"b"));
  EXPECT_EQ(ErrorOf([&] { fs::ListFiles(fs::JoinPath(root, u"none")); }), kErrPathNotFound);

  const String z = files[0];
  EXPECT_EQ(fs::FileSize(z), 2);
  EXPECT_LT(std::fabs(fs::DateLastModified(z) - NowAsDate()), 2.0 / 1440);  // within 2 minutes

  const String copy = fs::JoinPath(a, u"copy.txt");
  fs::CopyFile(z, copy, false);
  EXPECT_EQ(ErrorOf([&] { fs::CopyFile(z, copy, false); }), kErrFileExists);
  fs::CopyFile(files[1], copy, true);
  EXPECT_EQ(scratch.Read("a/copy.txt"), "ete");
  EXPECT_EQ(ErrorOf([&] { fs::CopyFile(fs::JoinPath(a, u"none"), copy, true); }), kErrFileNotFound);

  const String moved = fs::JoinPath(a, u"moved.txt");
  fs::MoveFile(copy, moved);
  EXPECT_FALSE(fs::FileExists(copy));
  EXPECT_EQ(ErrorOf([&] { fs::MoveFile(z, moved); }), kErrFileExists);

  fs::DeleteFile(moved);
  EXPECT_EQ(ErrorOf([&] { fs::DeleteFile(moved); }), kErrFileNotFound);
  EXPECT_EQ(ErrorOf([&] { fs::FileSize(moved); }), kErrFileNotFound);
  fs::DeleteFolder(a);
  EXPECT_FALSE(fs::FolderExists(a));
  EXPECT_EQ(ErrorOf([&] { fs::DeleteFolder(a); }), kErrPathNotFound);
  EXPECT_FALSE(fs::FileExists(u""));
  EXPECT_FALSE(fs::FolderExists(u""));
}

}  // namespace
}  // namespace qv
