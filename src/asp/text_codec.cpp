// Code pages through glibc's iconv (no tables of our own); UTF-8, the everyday case, goes
// through the engine's own converters without iconv.
#include "asp/text_codec.h"

#include <iconv.h>

#include <cctype>
#include <cerrno>
#include <memory>

namespace qv::asp {
namespace {

std::string IconvName(int code_page) {
  if (code_page >= 28591 && code_page <= 28605)
    return "ISO-8859-" + std::to_string(code_page - 28590);
  switch (code_page) {
    case 20127:
      return "ASCII";
    case 20866:
      return "KOI8-R";
    case 21866:
      return "KOI8-U";
    case 932:
      return "SHIFT_JIS";
    case 936:
      return "GBK";
    case 949:
      return "CP949";
    case 950:
      return "BIG5";
    case 51932:
      return "EUC-JP";
    case 1200:
      return "UTF-16LE";
    default:
      return "CP" + std::to_string(code_page);
  }
}

struct IconvCloser {
  void operator()(void* cd) const { iconv_close(static_cast<iconv_t>(cd)); }
};
using IconvHandle = std::unique_ptr<void, IconvCloser>;

IconvHandle Open(const char* to, const char* from) {
  iconv_t cd = iconv_open(to, from);
  if (cd == reinterpret_cast<iconv_t>(-1)) return nullptr;
  return IconvHandle(cd);
}

int HexValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

constexpr char kHex[] = "0123456789ABCDEF";

void AppendEscape(std::string& out, unsigned char c) {
  out += '%';
  out += kHex[c >> 4];
  out += kHex[c & 15];
}

}  // namespace

bool IsKnownCodePage(int code_page) {
  if (code_page == kUtf8CodePage) return true;
  if (code_page <= 0) return false;
  return Open("UTF-16LE", IconvName(code_page).c_str()) != nullptr;
}

std::string CharsetOfCodePage(int code_page) {
  if (code_page == kUtf8CodePage) return "utf-8";
  if (code_page >= 1250 && code_page <= 1258) return "windows-" + std::to_string(code_page);
  std::string name = IconvName(code_page);
  for (char& c : name)
    c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return name;
}

String DecodeText(std::string_view bytes, int code_page) {
  if (code_page == kUtf8CodePage || bytes.empty()) return String::FromUtf8(bytes);
  IconvHandle cd = Open("UTF-16LE", IconvName(code_page).c_str());
  if (!cd) return String::FromUtf8(bytes);
  std::u16string out(bytes.size() * 2 + 4, u'\0');
  char* in = const_cast<char*>(bytes.data());
  size_t in_left = bytes.size();
  char* dst = reinterpret_cast<char*>(out.data());
  size_t dst_left = out.size() * sizeof(char16_t);
  while (in_left > 0) {
    if (iconv(static_cast<iconv_t>(cd.get()), &in, &in_left, &dst, &dst_left) !=
        static_cast<size_t>(-1))
      break;
    if (errno == E2BIG || dst_left < 2) break;
    // An undecodable byte: one replacement character, then go on after it.
    *reinterpret_cast<char16_t*>(dst) = 0xFFFD;
    dst += 2;
    dst_left -= 2;
    ++in;
    --in_left;
  }
  out.resize((out.size() * sizeof(char16_t) - dst_left) / sizeof(char16_t));
  return String(StringView(out));
}

void AppendEncoded(std::string& out, StringView text, int code_page) {
  if (text.empty()) return;
  if (code_page == kUtf8CodePage) {
    out += String::ToUtf8(text);
    return;
  }
  IconvHandle cd = Open(IconvName(code_page).c_str(), "UTF-16LE");
  if (!cd) {
    out += String::ToUtf8(text);
    return;
  }
  char* in = reinterpret_cast<char*>(const_cast<char16_t*>(text.data()));
  size_t in_left = text.size() * sizeof(char16_t);
  char buffer[1024];
  while (in_left > 0) {
    char* dst = buffer;
    size_t dst_left = sizeof buffer;
    const size_t r = iconv(static_cast<iconv_t>(cd.get()), &in, &in_left, &dst, &dst_left);
    out.append(buffer, dst - buffer);
    if (r != static_cast<size_t>(-1) || errno == E2BIG) continue;
    // A character the code page lacks (or a lone surrogate): "?" as Windows writes it.
    out += '?';
    const bool pair = in_left >= 4 && (*reinterpret_cast<char16_t*>(in) & 0xFC00) == 0xD800;
    const size_t skip = pair ? 4 : 2;
    in += skip;
    in_left -= skip;
  }
}

std::string EncodeText(StringView text, int code_page) {
  std::string out;
  AppendEncoded(out, text, code_page);
  return out;
}

bool IsValidUtf8(std::string_view bytes) {
  const auto* p = reinterpret_cast<const unsigned char*>(bytes.data());
  const auto* end = p + bytes.size();
  while (p < end) {
    const unsigned c = *p;
    if (c < 0x80) {
      ++p;
      continue;
    }
    int extra = c >= 0xC2 && c < 0xE0   ? 1
                : c >= 0xE0 && c < 0xF0 ? 2
                : c >= 0xF0 && c < 0xF5 ? 3
                                        : -1;
    if (extra < 0 || end - p <= extra) return false;
    uint32_t cp = c & (0x3F >> extra);
    for (int i = 1; i <= extra; ++i) {
      if ((p[i] & 0xC0) != 0x80) return false;
      cp = (cp << 6) | (p[i] & 0x3F);
    }
    if ((extra == 2 && cp < 0x800) || (extra == 3 && cp < 0x10000) || cp > 0x10FFFF ||
        (cp >= 0xD800 && cp <= 0xDFFF))
      return false;
    p += extra + 1;
  }
  return true;
}

namespace {

// %XX escapes, and + for a space with `plus_is_space`; a % that starts no escape stays as it
// is and sets `bad`.
std::string Unescape(std::string_view text, bool plus_is_space, bool& bad) {
  std::string out;
  out.reserve(text.size());
  for (size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (c == '+' && plus_is_space) {
      out += ' ';
      continue;
    }
    if (c == '%') {
      const int hi = i + 2 < text.size() ? HexValue(text[i + 1]) : -1;
      const int lo = i + 2 < text.size() ? HexValue(text[i + 2]) : -1;
      if (hi >= 0 && lo >= 0) {
        out += static_cast<char>(hi * 16 + lo);
        i += 2;
        continue;
      }
      bad = true;
    }
    out += c;
  }
  return out;
}

}  // namespace

std::optional<std::string> PercentDecode(std::string_view text, bool plus_is_space) {
  bool bad = false;
  std::string out = Unescape(text, plus_is_space, bad);
  if (bad) return std::nullopt;
  return out;
}

std::string PercentDecodeLenient(std::string_view text, bool plus_is_space) {
  bool bad = false;
  return Unescape(text, plus_is_space, bad);
}

std::string UrlEncode(std::string_view bytes) {
  std::string out;
  out.reserve(bytes.size() * 3 / 2);
  for (const char ch : bytes) {
    const auto c = static_cast<unsigned char>(ch);
    if (std::isalnum(c)) {
      out += ch;
    } else if (c == ' ') {
      out += '+';
    } else {
      AppendEscape(out, c);
    }
  }
  return out;
}

std::string UrlPathEncode(std::string_view bytes) {
  std::string out;
  out.reserve(bytes.size());
  bool in_query = false;
  for (const char ch : bytes) {
    const auto c = static_cast<unsigned char>(ch);
    if (ch == '?') in_query = true;
    // The query part is left alone: URLPathEncode only makes the path safe.
    if (!in_query && (c <= 0x20 || c >= 0x7F)) {
      AppendEscape(out, c);
    } else {
      out += ch;
    }
  }
  return out;
}

}  // namespace qv::asp
