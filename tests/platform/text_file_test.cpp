// Text files: byte order marks, the windows-1252 fallback, the CR LF rule for sources, and
// UTF-8 without a mark on writing, all through real files.
#include "platform/text_file.h"

#include <gtest/gtest.h>

#include "automation/error.h"
#include "templates/scratch_folder.h"

namespace qv {
namespace {

using testing::ScratchFolder;

TEST(TextFileDecode, MarksEncodingsAndFallback) {
  EXPECT_EQ(DecodeText("\xEF\xBB\xBF"
                       "caf\xC3\xA9"),
            u"caf\u00e9");
  EXPECT_EQ(DecodeText(std::string("\xFF\xFE"
                                   "a\0\xAC\x20",
                                   6)),
            u"a\u20ac");
  EXPECT_EQ(DecodeText(std::string("\xFE\xFF\0a\x20\xAC", 6)), u"a\u20ac");
  EXPECT_EQ(DecodeText(std::string("\xFF\xFE"
                                   "a\0b",
                                   5)),
            u"a\ufffd");  // cut-off last unit
  // Without a mark, valid UTF-8 is UTF-8, a character outside the BMP being two units.
  EXPECT_EQ(DecodeText("x\xF0\x9F\x98\x80"), u"x\U0001F600");
  // One invalid byte makes the whole text windows-1252, so no byte becomes U+FFFD.
  EXPECT_EQ(DecodeText("caf\xC3\xA9 \x80\x81\xE9"), u"caf\u00c3\u00a9 \u20ac\u0081\u00e9");
  EXPECT_EQ(DecodeText("\xED\xA0\x80"), u"\u00ed\u00a0\u20ac");  // an encoded surrogate is no UTF-8
  EXPECT_EQ(DecodeText("\xC0\xAF"), u"\u00c0\u00af");            // nor is an overlong form
  EXPECT_EQ(DecodeText(""), u"");
}

TEST(TextFileDecode, OnlyLoneLineFeedsBecomeCrLf) {
  EXPECT_EQ(DecodeText("a\nb\r\nc\rd\n\n", LineEnds::kCrLf), u"a\r\nb\r\nc\rd\r\n\r\n");
  EXPECT_EQ(DecodeText("a\nb\r\n", LineEnds::kAsIs), u"a\nb\r\n");
  EXPECT_EQ(DecodeText(std::string("\xFF\xFE\n\0", 4), LineEnds::kCrLf), u"\r\n");
  EXPECT_EQ(EncodeText(u"a\nb\r\n\n", LineEnds::kCrLf), "a\r\nb\r\n\r\n");
  EXPECT_EQ(EncodeText(u"\u20ac\n"), "\xE2\x82\xAC\n");
}

TEST(TextFile, ReadWriteAppendAndErrors) {
  ScratchFolder scratch;
  const String page = scratch.Path("page.asp");
  WriteTextFile(page, u"<p>\u00e9</p>\n<p>x</p>\r\n", LineEnds::kCrLf);
  EXPECT_EQ(scratch.Read("page.asp"), "<p>\xC3\xA9</p>\r\n<p>x</p>\r\n");  // no mark in front
  AppendTextFile(page, u"tail\n");
  EXPECT_EQ(ReadTextFile(page), u"<p>\u00e9</p>\r\n<p>x</p>\r\ntail\n");
  WriteTextFile(page, u"new");
  EXPECT_EQ(ReadTextFile(page), u"new");

  const String source = scratch.Write("sub/t.txt", "\xEF\xBB\xBFline1\nline2");
  EXPECT_EQ(ReadSourceFile(source), u"line1\r\nline2");
  EXPECT_EQ(ReadTextFile(scratch.Write("w.txt", "\x93q\x94\n")), u"\u201cq\u201d\n");

  auto error_of = [](auto action) {
    try {
      action();
    } catch (const Error& e) {
      return e.number();
    }
    return 0;
  };
  EXPECT_EQ(error_of([&] { ReadTextFile(scratch.Path("missing.txt")); }), kErrFileNotFound);
  EXPECT_EQ(error_of([&] { ReadTextFile(scratch.Path()); }), kErrPermissionDenied);
  EXPECT_EQ(error_of([&] { WriteTextFile(scratch.Path("none/x.txt"), u"x"); }), kErrPathNotFound);
}

}  // namespace
}  // namespace qv
