// Scripting.TextStream: decoding on open for reading, encoding on each write, and the line
// and column counting that Line and Column report.
#include "vbscript/text_stream.h"

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>

#include "automation/convert.h"

namespace qv::vbs {

namespace {

namespace fs = std::filesystem;

[[noreturn]] void Raise(int32_t number) {
  throw Error(number);
}

// The error an open failed with, in VBScript's numbers.
[[noreturn]] void RaiseOpenFailure(const std::string& path) {
  std::error_code ec;
  const fs::path p(path);
  if (!p.parent_path().empty() && !fs::is_directory(p.parent_path(), ec)) Raise(kErrPathNotFound);
  if (fs::is_directory(p, ec)) Raise(kErrPermissionDenied);
  if (errno == ENOENT) Raise(kErrFileNotFound);
  Raise(kErrPermissionDenied);
}

std::u16string DecodeUtf16(const std::string& bytes, size_t from, bool big_endian) {
  std::u16string out;
  out.reserve((bytes.size() - from) / 2);
  for (size_t i = from; i + 1 < bytes.size(); i += 2) {
    const auto lo = static_cast<uint8_t>(bytes[i + (big_endian ? 1 : 0)]);
    const auto hi = static_cast<uint8_t>(bytes[i + (big_endian ? 0 : 1)]);
    out.push_back(static_cast<char16_t>(lo | (hi << 8)));
  }
  return out;
}

// Honours a BOM whatever was asked; without one, `unicode` chooses UTF-16LE over UTF-8.
std::u16string Decode(const std::string& bytes, bool unicode) {
  if (bytes.size() >= 3 && bytes.compare(0, 3, "\xEF\xBB\xBF") == 0) {
    return std::u16string(String::FromUtf8(std::string_view(bytes).substr(3)).view());
  }
  if (bytes.size() >= 2 && bytes.compare(0, 2, "\xFF\xFE") == 0)
    return DecodeUtf16(bytes, 2, false);
  if (bytes.size() >= 2 && bytes.compare(0, 2, "\xFE\xFF") == 0) return DecodeUtf16(bytes, 2, true);
  if (unicode) return DecodeUtf16(bytes, 0, false);
  return std::u16string(String::FromUtf8(bytes).view());
}

bool StartsWithUtf16Bom(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  char bom[2] = {};
  return in.read(bom, 2) && bom[0] == '\xFF' && bom[1] == '\xFE';
}

}  // namespace

TextStream::~TextStream() {
  if (file_ && !borrowed_) std::fclose(file_);
}

Ref<TextStream> TextStream::Standard(int32_t which) {
  auto stream = MakeRef<TextStream>();
  stream->borrowed_ = true;
  if (which == 0) {
    stream->mode_ = IoMode::Reading;
    stream->stdin_pending_ = true;
    return stream;
  }
  stream->mode_ = IoMode::Writing;
  stream->file_ = which == 1 ? stdout : stderr;
  return stream;
}

void TextStream::LoadStandardInput() {
  stdin_pending_ = false;
  std::string bytes;
  char buf[4096];
  size_t n;
  while ((n = std::fread(buf, 1, sizeof buf, stdin)) > 0)
    bytes.append(buf, n);
  text_ = Decode(bytes, false);
}

Ref<TextStream> TextStream::Open(const std::string& path, IoMode mode, bool create,
                                 TextFormat format) {
  auto stream = MakeRef<TextStream>();
  stream->mode_ = mode;
  stream->unicode_ = format == TextFormat::Unicode;
  std::error_code ec;
  const bool exists = fs::exists(path, ec);
  if (fs::is_directory(path, ec)) Raise(kErrPermissionDenied);
  if (mode == IoMode::Reading) {
    // With the create flag a missing file is made, empty, even for reading.
    if (!exists && create) {
      errno = 0;
      std::FILE* made = std::fopen(path.c_str(), "wb");
      if (!made) RaiseOpenFailure(path);
      std::fclose(made);
    }
    std::ifstream in(path, std::ios::binary);
    if (!in) RaiseOpenFailure(path);
    const std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    stream->text_ = Decode(bytes, stream->unicode_);
    return stream;
  }
  if (!exists && !create) Raise(kErrFileNotFound);
  const bool append = mode == IoMode::Appending;
  if (append && exists && format == TextFormat::Default)
    stream->unicode_ = StartsWithUtf16Bom(path);
  errno = 0;
  stream->file_ = std::fopen(path.c_str(), append ? "ab" : "wb");
  if (!stream->file_) RaiseOpenFailure(path);
  const bool empty = !append || std::ftell(stream->file_) == 0;
  if (stream->unicode_ && empty) std::fwrite("\xFF\xFE", 1, 2, stream->file_);
  return stream;
}

void TextStream::RequireReading() {
  if (mode_ != IoMode::Reading) Raise(kErrBadFileMode);
  if (file_ == nullptr && at_ == SIZE_MAX) Raise(kErrBadFileNameOrNumber);
  if (stdin_pending_) LoadStandardInput();
}

void TextStream::RequireWriting() const {
  if (mode_ == IoMode::Reading) Raise(kErrBadFileMode);
  if (!file_) Raise(kErrBadFileNameOrNumber);
}

void TextStream::Advance(size_t count) {
  for (size_t i = 0; i < count && at_ < text_.size(); ++i, ++at_) {
    if (text_[at_] == u'\n') {
      ++line_;
      column_ = 1;
    } else {
      ++column_;
    }
  }
}

bool TextStream::AtEndOfStream() {
  RequireReading();
  return at_ >= text_.size();
}

bool TextStream::AtEndOfLine() {
  RequireReading();
  return at_ >= text_.size() || text_[at_] == u'\r' || text_[at_] == u'\n';
}

String TextStream::Read(int32_t count) {
  RequireReading();
  if (count < 0) Raise(kErrInvalidCall);
  if (at_ >= text_.size() && count > 0) Raise(kErrInputPastEnd);
  const size_t n = std::min(static_cast<size_t>(count), text_.size() - at_);
  String out(StringView(text_).substr(at_, n));
  Advance(n);
  return out;
}

String TextStream::ReadLine() {
  RequireReading();
  if (at_ >= text_.size()) Raise(kErrInputPastEnd);
  // Only a line feed ends a line (a CR just before it goes with it); a lone CR is text.
  const size_t feed = StringView(text_).find(u'\n', at_);
  const size_t end = feed == StringView::npos ? text_.size() : feed;
  const size_t cut =
      (end > at_ && text_[end - 1] == u'\r' && feed != StringView::npos) ? end - 1 : end;
  String out(StringView(text_).substr(at_, cut - at_));
  Advance(end - at_ + (feed == StringView::npos ? 0 : 1));
  return out;
}

String TextStream::ReadAll() {
  RequireReading();
  if (at_ >= text_.size()) Raise(kErrInputPastEnd);
  String out(StringView(text_).substr(at_));
  Advance(text_.size() - at_);
  return out;
}

void TextStream::Skip(int32_t count) {
  RequireReading();
  if (count < 0) Raise(kErrInvalidCall);
  if (at_ >= text_.size() && count > 0) Raise(kErrInputPastEnd);
  Advance(static_cast<size_t>(count));
}

void TextStream::SkipLine() {
  ReadLine();
}

void TextStream::Write(StringView text) {
  RequireWriting();
  if (unicode_) {
    std::string bytes;
    bytes.reserve(text.size() * 2);
    for (const Char c : text) {
      bytes.push_back(static_cast<char>(c & 0xFF));
      bytes.push_back(static_cast<char>(c >> 8));
    }
    std::fwrite(bytes.data(), 1, bytes.size(), file_);
  } else {
    const std::string bytes = String::ToUtf8(text);
    std::fwrite(bytes.data(), 1, bytes.size(), file_);
  }
  for (const Char c : text) {
    if (c == u'\n') {
      ++line_;
      column_ = 1;
    } else {
      ++column_;
    }
  }
  if (std::ferror(file_)) Raise(kErrDeviceIo);
}

void TextStream::WriteLine(StringView text) {
  Write(text);
  Write(u"\r\n");
}

void TextStream::WriteBlankLines(int32_t count) {
  if (count < 0) Raise(kErrInvalidCall);
  for (int32_t i = 0; i < count; ++i)
    Write(u"\r\n");
}

void TextStream::Close() {
  if (file_) {
    const bool failed = borrowed_ ? std::fflush(file_) != 0 : std::fclose(file_) != 0;
    file_ = nullptr;
    mode_ = IoMode::Writing;
    if (failed) Raise(kErrDeviceIo);
    return;
  }
  text_.clear();
  at_ = SIZE_MAX;
}

const DispatchTable<TextStream>& TextStream::Table() {
  using T = TextStream;
  static const auto table =
      DispatchTable<T>(u"TextStream")
          .Method<&T::Read>(u"Read")
          .Method<&T::ReadLine>(u"ReadLine")
          .Method<&T::ReadAll>(u"ReadAll")
          .Method<&T::Skip>(u"Skip")
          .Method<&T::SkipLine>(u"SkipLine")
          .Method<&T::Write>(u"Write")
          .Method<[](T& t, std::optional<String> text) { t.WriteLine(text.value_or(String())); }>(
              u"WriteLine")
          .Method<&T::WriteBlankLines>(u"WriteBlankLines")
          .Method<&T::Close>(u"Close")
          .Property<&T::AtEndOfStream>(u"AtEndOfStream")
          .Property<&T::AtEndOfLine>(u"AtEndOfLine")
          .Property<&T::line>(u"Line")
          .Property<&T::column>(u"Column");
  return table;
}

}  // namespace qv::vbs
