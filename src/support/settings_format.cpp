// Reading and writing the text form of a settings tree.
#include "support/settings_format.h"

#include <charconv>
#include <cstdio>

namespace qv {

std::string_view SettingsFormatHelp() {
  return "; Format: [Key\\Path] starts a key; then one value a line, name = typed value:\n"
         ";   \"text\" (type 1)   expand:\"text\" (2)   hex:01,ff (3)   dword:-5 (4)\n"
         ";   dword-be:5 (5)   multi:\"a\",\"b\" (7)   hex(N):.. (other type N)\n"
         "; Names that are not plain words are quoted; @ is the key's default value.\n"
         "; In quotes: \\\\ \\\" \\r \\n \\t \\0 \\uXXXX. Lines starting with ; or # are "
         "comments.\n";
}

namespace {

// ---------------------------------------------------------------- reading

class LineReader {
 public:
  explicit LineReader(std::string_view line) : s_(line) {}

  void SkipBlanks() {
    while (pos_ < s_.size() && (s_[pos_] == ' ' || s_[pos_] == '\t'))
      ++pos_;
  }
  bool AtEnd() {
    SkipBlanks();
    return pos_ >= s_.size();
  }
  bool Take(char c) {
    SkipBlanks();
    if (pos_ < s_.size() && s_[pos_] == c) {
      ++pos_;
      return true;
    }
    return false;
  }
  bool TakeWord(std::string_view word) {
    SkipBlanks();
    if (s_.substr(pos_, word.size()) != word) return false;
    pos_ += word.size();
    return true;
  }
  char Peek() {
    SkipBlanks();
    return pos_ < s_.size() ? s_[pos_] : '\0';
  }
  // A name up to "=", without the blanks around it.
  std::string_view BareName() {
    SkipBlanks();
    const size_t start = pos_;
    while (pos_ < s_.size() && s_[pos_] != '=')
      ++pos_;
    size_t end = pos_;
    while (end > start && (s_[end - 1] == ' ' || s_[end - 1] == '\t'))
      --end;
    return s_.substr(start, end - start);
  }
  // A run of characters up to "," or the end, without blanks.
  std::string_view Token() {
    SkipBlanks();
    const size_t start = pos_;
    while (pos_ < s_.size() && s_[pos_] != ',' && s_[pos_] != ' ' && s_[pos_] != '\t')
      ++pos_;
    return s_.substr(start, pos_ - start);
  }

  // Steps back over the last `count` characters read.
  void Rewind(size_t count) { pos_ -= count; }

  // A quoted text with its escapes, as UTF-16.
  std::optional<String> Quoted(std::string* error) {
    if (!Take('"')) return Fail(error, "a quoted text was expected");
    std::string utf8;
    String out;
    auto flush = [&] {
      if (!utf8.empty()) out.Append(String::FromUtf8(utf8).view());
      utf8.clear();
    };
    while (pos_ < s_.size()) {
      const char c = s_[pos_++];
      if (c == '"') {
        flush();
        return out;
      }
      if (c != '\\') {
        utf8.push_back(c);
        continue;
      }
      if (pos_ >= s_.size()) break;
      const char e = s_[pos_++];
      Char unit = 0;
      switch (e) {
        case '\\':
          unit = u'\\';
          break;
        case '"':
          unit = u'"';
          break;
        case 'r':
          unit = u'\r';
          break;
        case 'n':
          unit = u'\n';
          break;
        case 't':
          unit = u'\t';
          break;
        case '0':
          unit = 0;
          break;
        case 'u': {
          unsigned value = 0;
          const auto hex = s_.substr(pos_, 4);
          const auto [end, ec] = std::from_chars(hex.data(), hex.data() + hex.size(), value, 16);
          if (hex.size() != 4 || ec != std::errc() || end != hex.data() + 4) {
            return Fail(error, "\\u needs four hexadecimal digits");
          }
          pos_ += 4;
          unit = static_cast<Char>(value);
          break;
        }
        default:
          return Fail(error, std::string("unknown escape \\") + e);
      }
      flush();
      out.Append(unit);
    }
    return Fail(error, "the quoted text has no closing quote");
  }

 private:
  static std::nullopt_t Fail(std::string* error, std::string what) {
    *error = std::move(what);
    return std::nullopt;
  }

  std::string_view s_;
  size_t pos_ = 0;
};

// Value type numbers as the file knows them (the registry's own numbering).
enum : int32_t {
  kTypeText = 1,
  kTypeExpand = 2,
  kTypeBinary = 3,
  kTypeDword = 4,
  kTypeDwordBe = 5,
  kTypeMulti = 7,
};

std::optional<int64_t> ParseInteger(std::string_view token) {
  bool negative = false;
  if (!token.empty() && (token[0] == '-' || token[0] == '+')) {
    negative = token[0] == '-';
    token.remove_prefix(1);
  }
  int base = 10;
  if (token.size() > 2 && token[0] == '0' && (token[1] == 'x' || token[1] == 'X')) {
    base = 16;
    token.remove_prefix(2);
  }
  int64_t value = 0;
  const auto [end, ec] = std::from_chars(token.data(), token.data() + token.size(), value, base);
  if (token.empty() || ec != std::errc() || end != token.data() + token.size()) return std::nullopt;
  return negative ? -value : value;
}

std::optional<uint32_t> ParseDword(std::string_view token) {
  const std::optional<int64_t> value = ParseInteger(token);
  if (!value || *value < INT32_MIN || *value > int64_t{UINT32_MAX}) return std::nullopt;
  return static_cast<uint32_t>(*value);
}

uint32_t ReverseBytes(uint32_t v) {
  return (v >> 24) | ((v >> 8) & 0xFF00u) | ((v << 8) & 0xFF0000u) | (v << 24);
}

std::optional<std::vector<uint8_t>> ParseBytes(LineReader& in, std::string* error) {
  std::vector<uint8_t> bytes;
  if (in.AtEnd()) return bytes;
  do {
    const std::string_view token = in.Token();
    unsigned value = 0;
    const auto [end, ec] = std::from_chars(token.data(), token.data() + token.size(), value, 16);
    if (token.empty() || token.size() > 2 || ec != std::errc() ||
        end != token.data() + token.size()) {
      *error = "bytes are written as two hexadecimal digits, separated by \",\"";
      return std::nullopt;
    }
    bytes.push_back(static_cast<uint8_t>(value));
  } while (in.Take(','));
  return bytes;
}

// "hex(N):" with the type number N.
std::optional<int32_t> TakeHexType(LineReader& in) {
  if (!in.TakeWord("hex(")) return std::nullopt;
  const std::string_view token = in.Token();
  const size_t close = token.find("):");
  if (close == std::string_view::npos) return std::nullopt;
  const std::optional<int64_t> type = ParseInteger(token.substr(0, close));
  if (!type || *type < 0 || *type > INT32_MAX) return std::nullopt;
  in.Rewind(token.size() - close - 2);
  return static_cast<int32_t>(*type);
}

std::optional<RegistryValue> ParseTypedValue(LineReader& in, std::string* error) {
  if (in.Peek() == '"') {
    std::optional<String> text = in.Quoted(error);
    if (!text) return std::nullopt;
    return RegistryValue::Text(kTypeText, *text);
  }
  if (in.TakeWord("expand:")) {
    std::optional<String> text = in.Quoted(error);
    if (!text) return std::nullopt;
    return RegistryValue::Text(kTypeExpand, *text);
  }
  const bool big_endian = in.TakeWord("dword-be:");
  if (big_endian || in.TakeWord("dword:")) {
    const std::optional<uint32_t> n = ParseDword(in.Token());
    if (!n) {
      *error = "a dword needs a 32-bit number";
      return std::nullopt;
    }
    return big_endian ? RegistryValue::Number(kTypeDwordBe, ReverseBytes(*n))
                      : RegistryValue::Number(kTypeDword, *n);
  }
  if (in.TakeWord("multi:")) {
    String text;
    if (in.AtEnd()) return RegistryValue::Text(kTypeMulti, text);
    do {
      std::optional<String> item = in.Quoted(error);
      if (!item) return std::nullopt;
      text.Append(item->view());
      text.Append(Char{0});
    } while (in.Take(','));
    return RegistryValue::Text(kTypeMulti, text);
  }
  std::optional<int32_t> type;
  if (in.TakeWord("hex:")) {
    type = kTypeBinary;
  } else if (in.Peek() == 'h') {
    type = TakeHexType(in);
  }
  if (!type) {
    *error = "unknown kind of value";
    return std::nullopt;
  }
  // Texts and numbers have forms of their own; as bytes they could not be read back.
  const bool has_own_form = *type == kTypeText || *type == kTypeExpand || *type == kTypeDword ||
                            *type == kTypeDwordBe || *type == kTypeMulti;
  if (has_own_form) {
    *error = "hex(" + std::to_string(*type) + ") is written in the type's own form";
    return std::nullopt;
  }
  std::optional<std::vector<uint8_t>> bytes = ParseBytes(in, error);
  if (!bytes) return std::nullopt;
  return RegistryValue::Bytes(*type, std::move(*bytes));
}

// "[path]": the key path between the first "[" and the last "]".
std::optional<std::string_view> SectionName(std::string_view line) {
  const size_t close = line.rfind(']');
  if (close == std::string_view::npos) return std::nullopt;
  for (size_t i = close + 1; i < line.size(); ++i) {
    if (line[i] != ' ' && line[i] != '\t') return std::nullopt;
  }
  return line.substr(1, close - 1);
}

std::string_view TrimLine(std::string_view line) {
  while (!line.empty() && (line.back() == '\r' || line.back() == ' ' || line.back() == '\t')) {
    line.remove_suffix(1);
  }
  while (!line.empty() && (line.front() == ' ' || line.front() == '\t'))
    line.remove_prefix(1);
  return line;
}

// One "name = value" line into `key`.
bool ParseValueLine(std::string_view line, SettingsNode& key, std::string* error) {
  LineReader in(line);
  String name;
  if (in.Peek() == '"') {
    std::optional<String> quoted = in.Quoted(error);
    if (!quoted) return false;
    name = *quoted;
  } else {
    const std::string_view bare = in.BareName();
    if (bare.empty()) {
      *error = "a value line starts with its name";
      return false;
    }
    if (bare != "@") name = String::FromUtf8(bare);
  }
  if (!in.Take('=')) {
    *error = "\"=\" was expected after the value name";
    return false;
  }
  std::optional<RegistryValue> value = ParseTypedValue(in, error);
  if (!value) return false;
  if (!in.AtEnd()) {
    *error = "unexpected text after the value";
    return false;
  }
  key.SetValue(name, std::move(*value));
  return true;
}

// ---------------------------------------------------------------- writing

bool IsPlainName(StringView name) {
  if (name.empty() || name == u"@") return false;
  for (const Char c : name) {
    const bool plain = (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') ||
                       (c >= u'0' && c <= u'9') || c == u'_' || c == u'.' || c == u'-' || c == u'$';
    if (!plain) return false;
  }
  return true;
}

void AppendQuoted(std::string& out, StringView text) {
  out.push_back('"');
  size_t run_start = 0;
  auto flush = [&](size_t end) {
    if (end > run_start) out += String::ToUtf8(text.substr(run_start, end - run_start));
  };
  for (size_t i = 0; i < text.size(); ++i) {
    const Char c = text[i];
    const char* escape = nullptr;
    switch (c) {
      case u'\\':
        escape = "\\\\";
        break;
      case u'"':
        escape = "\\\"";
        break;
      case u'\r':
        escape = "\\r";
        break;
      case u'\n':
        escape = "\\n";
        break;
      case u'\t':
        escape = "\\t";
        break;
      case 0:
        escape = "\\0";
        break;
      default:
        break;
    }
    // Other control characters and lone surrogates would not survive UTF-8: \uXXXX keeps them.
    const bool lone_surrogate =
        (c >= 0xD800 && c <= 0xDBFF &&
         (i + 1 >= text.size() || text[i + 1] < 0xDC00 || text[i + 1] > 0xDFFF)) ||
        (c >= 0xDC00 && c <= 0xDFFF && (i == 0 || text[i - 1] < 0xD800 || text[i - 1] > 0xDBFF));
    if (!escape && c >= 0x20 && c != 0x7F && !lone_surrogate) continue;
    flush(i);
    if (escape) {
      out += escape;
    } else {
      char buffer[8];
      std::snprintf(buffer, sizeof buffer, "\\u%04X", static_cast<unsigned>(c));
      out += buffer;
    }
    run_start = i + 1;
  }
  flush(text.size());
  out.push_back('"');
}

void AppendBytes(std::string& out, const std::vector<uint8_t>& bytes) {
  char buffer[4];
  for (size_t i = 0; i < bytes.size(); ++i) {
    std::snprintf(buffer, sizeof buffer, "%02x", bytes[i]);
    if (i > 0) out.push_back(',');
    out += buffer;
  }
}

void AppendValue(std::string& out, const RegistryValue& value) {
  switch (value.type) {
    case kTypeText:
      AppendQuoted(out, value.text);
      return;
    case kTypeExpand:
      out += "expand:";
      AppendQuoted(out, value.text);
      return;
    case kTypeDword:
      out += "dword:" + std::to_string(static_cast<int32_t>(value.number));
      return;
    case kTypeDwordBe:
      out += "dword-be:" + std::to_string(static_cast<int32_t>(ReverseBytes(value.number)));
      return;
    case kTypeMulti: {
      out += "multi:";
      StringView rest = value.text;
      if (!rest.empty() && rest.back() == 0) rest.remove_suffix(1);
      if (value.text.empty()) return;
      size_t start = 0;
      while (true) {
        const size_t nul = rest.find(Char{0}, start);
        if (start > 0) out.push_back(',');
        AppendQuoted(out,
                     rest.substr(start, nul == StringView::npos ? StringView::npos : nul - start));
        if (nul == StringView::npos) break;
        start = nul + 1;
      }
      return;
    }
    case kTypeBinary:
      out += "hex:";
      AppendBytes(out, value.bytes);
      return;
    default:
      out += "hex(" + std::to_string(value.type) + "):";
      AppendBytes(out, value.bytes);
      return;
  }
}

void AppendKey(std::string& out, const SettingsNode& key, const std::string& path) {
  if (!path.empty() || !key.values().empty()) {
    out += "\n[" + path + "]\n";
    for (const auto& [name, value] : key.values()) {
      if (name.empty()) {
        out += "@";
      } else if (IsPlainName(name)) {
        out += name.ToUtf8();
      } else {
        AppendQuoted(out, name);
      }
      out += " = ";
      AppendValue(out, value);
      out += "\n";
    }
  }
  for (const auto& child : key.children()) {
    const std::string name = child->name().ToUtf8();
    AppendKey(out, *child, path.empty() ? name : path + "\\" + name);
  }
}

}  // namespace

std::optional<SettingsTree> ParseSettings(std::string_view text, std::string* error) {
  if (text.substr(0, 3) == "\xEF\xBB\xBF") text.remove_prefix(3);
  SettingsTree tree;
  SettingsNode* key = nullptr;
  size_t line_number = 0;
  while (!text.empty()) {
    ++line_number;
    const size_t end = text.find('\n');
    const std::string_view line = TrimLine(text.substr(0, end));
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    if (line.empty() || line[0] == ';' || line[0] == '#') continue;
    std::string what;
    if (line[0] == '[') {
      const std::optional<std::string_view> path = SectionName(line);
      if (path) {
        key = &tree.Create(String::FromUtf8(*path));
        continue;
      }
      what = "a key line ends with \"]\"";
    } else if (!key) {
      what = "a value comes before the first [key] line";
    } else if (ParseValueLine(line, *key, &what)) {
      continue;
    }
    *error = "line " + std::to_string(line_number) + ": " + what;
    return std::nullopt;
  }
  return tree;
}

std::string FormatSettings(const SettingsTree& tree, std::string_view header) {
  std::string out(header);
  AppendKey(out, tree.root(), std::string());
  return out;
}

}  // namespace qv
