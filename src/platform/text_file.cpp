// Reading and writing whole text files: byte order marks, the windows-1252 fallback for bytes
// that are no UTF-8, and the CR LF rule for sources and generated pages.
#include "platform/text_file.h"

#include <cerrno>
#include <cstdio>
#include <memory>

#include "automation/error.h"
#include "platform/fs.h"

namespace qv {
namespace {

// windows-1252 differs from Latin-1 only in 0x80..0x9F. The table is written out because iconv
// refuses the five unassigned bytes there, which Windows passes through as U+0081 and so on;
// doing the same keeps every byte of a file.
constexpr char16_t kCp1252High[32] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

bool IsValidUtf8(std::string_view bytes) {
  const auto* p = reinterpret_cast<const unsigned char*>(bytes.data());
  const auto* end = p + bytes.size();
  while (p < end) {
    const unsigned c = *p;
    if (c < 0x80) {
      ++p;
      continue;
    }
    int extra = 0;
    uint32_t min = 0;
    if (c >= 0xC2 && c < 0xE0) {
      extra = 1;
      min = 0x80;
    } else if (c >= 0xE0 && c < 0xF0) {
      extra = 2;
      min = 0x800;
    } else if (c >= 0xF0 && c < 0xF5) {
      extra = 3;
      min = 0x10000;
    } else {
      return false;
    }
    if (end - p <= extra) return false;
    uint32_t cp = c & (0x3F >> extra);
    for (int i = 1; i <= extra; ++i) {
      if ((p[i] & 0xC0) != 0x80) return false;
      cp = (cp << 6) | (p[i] & 0x3F);
    }
    if (cp < min || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) return false;
    p += extra + 1;
  }
  return true;
}

String DecodeCp1252(std::string_view bytes) {
  std::u16string out;
  out.reserve(bytes.size());
  for (const char b : bytes) {
    const auto c = static_cast<unsigned char>(b);
    out.push_back(c >= 0x80 && c < 0xA0 ? kCp1252High[c - 0x80] : static_cast<char16_t>(c));
  }
  return String(out);
}

String DecodeUtf16(std::string_view bytes, bool big_endian) {
  std::u16string out;
  out.reserve(bytes.size() / 2 + 1);
  for (size_t i = 0; i + 1 < bytes.size(); i += 2) {
    const auto a = static_cast<unsigned char>(bytes[i]);
    const auto b = static_cast<unsigned char>(bytes[i + 1]);
    out.push_back(static_cast<char16_t>(big_endian ? (a << 8) | b : (b << 8) | a));
  }
  if (bytes.size() % 2 != 0) out.push_back(0xFFFD);  // a cut-off last unit
  return String(out);
}

bool StartsWith(std::string_view bytes, std::string_view mark) {
  return bytes.substr(0, mark.size()) == mark;
}

size_t CountLoneLf(StringView text) {
  size_t lone = 0;
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] == u'\n' && (i == 0 || text[i - 1] != u'\r')) ++lone;
  }
  return lone;
}

String WithCrLf(StringView view, size_t lone) {
  String out;
  out.Reserve(view.size() + lone);
  size_t from = 0;
  for (size_t i = 0; i < view.size(); ++i) {
    if (view[i] != u'\n' || (i > 0 && view[i - 1] == u'\r')) continue;
    out.Append(view.substr(from, i - from));
    out.Append(u"\r\n");
    from = i + 1;
  }
  out.Append(view.substr(from));
  return out;
}

String WithCrLf(String text) {
  const size_t lone = CountLoneLf(text);
  return lone == 0 ? text : WithCrLf(text.view(), lone);
}

struct FileCloser {
  void operator()(std::FILE* f) const { std::fclose(f); }
};
using FilePtr = std::unique_ptr<std::FILE, FileCloser>;

[[noreturn]] void RaiseOpenError(bool writing) {
  if (errno == ENOENT || errno == ENOTDIR) {
    throw Error(writing ? kErrPathNotFound : kErrFileNotFound);
  }
  throw Error(kErrPermissionDenied);
}

void WriteBytes(StringView path, const std::string& bytes, const char* mode) {
  const FilePtr file(std::fopen(fs::ToNative(path).c_str(), mode));
  if (!file) RaiseOpenError(true);
  if (std::fwrite(bytes.data(), 1, bytes.size(), file.get()) != bytes.size()) {
    throw Error(kErrDeviceIo);
  }
}

}  // namespace

String DecodeText(std::string_view bytes, LineEnds line_ends) {
  String text;
  if (StartsWith(bytes, "\xEF\xBB\xBF")) {
    text = String::FromUtf8(bytes.substr(3));
  } else if (StartsWith(bytes, "\xFF\xFE")) {
    text = DecodeUtf16(bytes.substr(2), false);
  } else if (StartsWith(bytes, "\xFE\xFF")) {
    text = DecodeUtf16(bytes.substr(2), true);
  } else if (IsValidUtf8(bytes)) {
    text = String::FromUtf8(bytes);
  } else {
    text = DecodeCp1252(bytes);
  }
  return line_ends == LineEnds::kCrLf ? WithCrLf(std::move(text)) : text;
}

std::string EncodeText(StringView text, LineEnds line_ends) {
  // Pages come here already in CR LF: they are encoded straight from the caller's text.
  const size_t lone = line_ends == LineEnds::kCrLf ? CountLoneLf(text) : 0;
  if (lone != 0) return String::ToUtf8(WithCrLf(text, lone).view());
  return String::ToUtf8(text);
}

String WithCrLfLineEnds(StringView text) {
  const size_t lone = CountLoneLf(text);
  return lone == 0 ? String(text) : WithCrLf(text, lone);
}

String ReadTextFile(StringView path, LineEnds line_ends) {
  if (fs::FolderExists(path)) throw Error(kErrPermissionDenied);
  const FilePtr file(std::fopen(fs::ToNative(path).c_str(), "rb"));
  if (!file) RaiseOpenError(false);
  std::string bytes;
  char buffer[65536];
  size_t got = 0;
  while ((got = std::fread(buffer, 1, sizeof buffer, file.get())) > 0)
    bytes.append(buffer, got);
  if (std::ferror(file.get())) throw Error(kErrDeviceIo);
  return DecodeText(bytes, line_ends);
}

void WriteTextFile(StringView path, StringView text, LineEnds line_ends) {
  WriteBytes(path, EncodeText(text, line_ends), "wb");
}

void AppendTextFile(StringView path, StringView text, LineEnds line_ends) {
  WriteBytes(path, EncodeText(text, line_ends), "ab");
}

}  // namespace qv
