// Two passes. The merge pass splices includes into one text, recording where each stretch of
// it came from; the script pass cuts that text at the delimiters and writes the program. A
// cursor that only moves forward maps offsets of the merged text back to files and lines, so
// the whole compile is linear in the size of the page.
#include "asp/page_compiler.h"

#include <sys/stat.h>

#include <algorithm>
#include <cassert>
#include <cctype>
#include <fstream>
#include <iterator>
#include <optional>
#include <sstream>

#include "asp/text_codec.h"
#include "vbscript/errors.h"
#include "vbscript/lexer.h"

namespace qv::asp {
namespace fs = std::filesystem;
namespace {

constexpr int kMaxIncludeDepth = 32;
constexpr int kWindowsLatinCodePage = 1252;

bool StartsWithNoCase(std::string_view text, size_t at, std::string_view word) {
  if (at + word.size() > text.size()) return false;
  for (size_t i = 0; i < word.size(); ++i) {
    if (std::tolower(static_cast<unsigned char>(text[at + i])) != word[i]) return false;
  }
  return true;
}

size_t FindNoCase(std::string_view text, std::string_view word, size_t from) {
  for (size_t i = from; i + word.size() <= text.size(); ++i) {
    if (StartsWithNoCase(text, i, word)) return i;
  }
  return std::string_view::npos;
}

int32_t CountLines(std::string_view text) {
  int32_t n = 0;
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\n') {
      ++n;
    } else if (text[i] == '\r' && (i + 1 == text.size() || text[i + 1] != '\n')) {
      ++n;
    }
  }
  return n;
}

void SkipSpace(std::string_view text, size_t& i) {
  while (i < text.size() && std::isspace(static_cast<unsigned char>(text[i])))
    ++i;
}

// The attributes of a tag or directive: NAME=value, NAME="value" or NAME='value'; names
// lower-cased.
std::vector<std::pair<std::string, std::string>> ParseAttributes(std::string_view text) {
  std::vector<std::pair<std::string, std::string>> out;
  size_t i = 0;
  for (;;) {
    SkipSpace(text, i);
    const size_t name_start = i;
    while (i < text.size() &&
           (std::isalnum(static_cast<unsigned char>(text[i])) || text[i] == '_' || text[i] == '-'))
      ++i;
    if (i == name_start) {
      if (i >= text.size()) break;
      ++i;  // a stray character
      continue;
    }
    std::string name(text.substr(name_start, i - name_start));
    for (char& c : name)
      c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    SkipSpace(text, i);
    std::string value;
    if (i < text.size() && text[i] == '=') {
      ++i;
      SkipSpace(text, i);
      if (i < text.size() && (text[i] == '"' || text[i] == '\'')) {
        const char quote = text[i++];
        const size_t end = text.find(quote, i);
        value = std::string(
            text.substr(i, end == std::string_view::npos ? std::string_view::npos : end - i));
        i = end == std::string_view::npos ? text.size() : end + 1;
      } else {
        const size_t start = i;
        while (i < text.size() && !std::isspace(static_cast<unsigned char>(text[i])))
          ++i;
        value = std::string(text.substr(start, i - start));
      }
    }
    out.emplace_back(std::move(name), std::move(value));
  }
  return out;
}

const std::string* Attribute(const std::vector<std::pair<std::string, std::string>>& attrs,
                             std::string_view name) {
  for (const auto& [n, v] : attrs) {
    if (n == name) return &v;
  }
  return nullptr;
}

bool ContainsNoCase(std::string_view text, std::string_view lower_word) {
  return FindNoCase(text, lower_word, 0) != std::string_view::npos;
}

// When the file was last written, and its size: one stat, as the check for changes before
// every request makes it. False when the file is gone.
bool StatSource(const fs::path& file, int64_t& modified, uintmax_t& size) {
  struct stat st;
  if (::stat(file.c_str(), &st) != 0) return false;
  modified = static_cast<int64_t>(st.st_mtim.tv_sec) * 1'000'000'000 + st.st_mtim.tv_nsec;
  size = static_cast<uintmax_t>(st.st_size);
  return true;
}

// A file's bytes as UTF-8: a UTF-8 byte-order mark goes, UTF-16 with a mark is converted, and
// bytes that are no UTF-8 are read in the page's code page (Windows Latin when it names none).
std::string LoadSource(const fs::path& file, int code_page, SourceFile& info) {
  std::ifstream in(file, std::ios::binary);
  if (!in)
    throw PageError("ASP 0126", "The file '" + file.filename().string() + "' cannot be read.", file,
                    0);
  std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  info.path = file;
  uintmax_t size = 0;
  StatSource(file, info.modified, size);
  info.size = bytes.size();
  if (bytes.starts_with("\xEF\xBB\xBF")) return bytes.substr(3);
  if (bytes.starts_with("\xFF\xFE"))
    return DecodeText(std::string_view(bytes).substr(2), 1200).ToUtf8();
  if (IsValidUtf8(bytes)) return bytes;
  const int from = code_page && code_page != kUtf8CodePage ? code_page : kWindowsLatinCodePage;
  return DecodeText(bytes, from).ToUtf8();
}

struct Segment {
  size_t offset;  // in the merged text
  uint32_t file;
  int32_t line;  // of the file, at `offset`
};

// Splices includes into one text.
class Merger {
 public:
  Merger(const Site& site, int code_page) : site_(site), code_page_(code_page) {}

  void Add(const fs::path& file, int depth) {
    if (std::find(stack_.begin(), stack_.end(), file) != stack_.end() || depth > kMaxIncludeDepth) {
      throw PageError("ASP 0127",
                      "The include file '" + file.filename().string() + "' includes itself.",
                      stack_.empty() ? file : stack_.back(), include_line_);
    }
    stack_.push_back(file);
    const auto index = static_cast<uint32_t>(files.size());
    files.emplace_back();
    const std::string source = LoadSource(file, code_page_, files.back());
    size_t pos = 0;
    int32_t line = 1;
    segments.push_back({text.size(), index, line});
    for (;;) {
      const size_t at = source.find("<!--", pos);
      if (at == std::string::npos) break;
      const size_t close = source.find("-->", at + 4);
      if (close == std::string::npos) break;
      const std::string_view comment = std::string_view(source).substr(at + 4, close - at - 4);
      size_t i = 0;
      SkipSpace(comment, i);
      const bool include = StartsWithNoCase(comment, i, "#include");
      const bool metadata = StartsWithNoCase(comment, i, "metadata");
      if (!include && !metadata) {
        text.append(source, pos, at + 4 - pos);
        line += CountLines(std::string_view(source).substr(pos, at + 4 - pos));
        pos = at + 4;
        continue;
      }
      text.append(source, pos, at - pos);
      line += CountLines(std::string_view(source).substr(pos, at - pos));
      const int32_t directive_line = line;
      line += CountLines(std::string_view(source).substr(at, close + 3 - at));
      pos = close + 3;
      const auto attrs = ParseAttributes(comment.substr(i + 8));
      if (include) {
        include_line_ = directive_line;
        Include(file, attrs, directive_line, depth);
      } else {
        NoteMetadata(attrs);
      }
      segments.push_back({text.size(), index, line});
    }
    text.append(source, pos);
    stack_.pop_back();
  }

  std::string text;
  std::vector<Segment> segments;
  std::vector<SourceFile> files;
  bool ado_constants = false;

 private:
  void Include(const fs::path& from, const std::vector<std::pair<std::string, std::string>>& attrs,
               int32_t line, int depth) {
    const std::string* file = Attribute(attrs, "file");
    const std::string* virt = Attribute(attrs, "virtual");
    if (!file && !virt) {
      throw PageError("ASP 0126", "An include directive names neither a file nor a virtual path.",
                      from, line);
    }
    std::optional<fs::path> target;
    if (file) {
      target = site_.ResolveRelative(from.parent_path(), *file);
    } else {
      target = site_.Resolve(*virt);
    }
    std::error_code ec;
    if (!target || !fs::is_regular_file(*target, ec)) {
      throw PageError("ASP 0126",
                      "The include file '" + (file ? *file : *virt) + "' was not found.", from,
                      line);
    }
    Add(*target, depth + 1);
  }

  // <!-- METADATA TYPE="TypeLib" ... --> naming ADO (by name, file or type library id).
  void NoteMetadata(const std::vector<std::pair<std::string, std::string>>& attrs) {
    const std::string* type = Attribute(attrs, "type");
    if (!type || !ContainsNoCase(*type, "typelib")) return;
    const std::string* name = Attribute(attrs, "name");
    const std::string* file = Attribute(attrs, "file");
    const std::string* uuid = Attribute(attrs, "uuid");
    if ((name && ContainsNoCase(*name, "activex data objects")) ||
        (file && ContainsNoCase(*file, "msado")) ||
        (uuid && ContainsNoCase(*uuid, "-0000-0010-8000-00aa006d2ea4") &&
         ContainsNoCase(*uuid, "{000002"))) {
      ado_constants = true;
    }
  }

  const Site& site_;
  int code_page_;
  std::vector<fs::path> stack_;
  int32_t include_line_ = 0;
};

// Offsets of the merged text to files and lines, for offsets that never go back.
class OriginCursor {
 public:
  OriginCursor(const std::string& text, const std::vector<Segment>& segments)
      : text_(text), segments_(segments) {}

  SourcePosition At(size_t offset) {
    assert(offset >= offset_);
    while (segment_ + 1 < segments_.size() && segments_[segment_ + 1].offset <= offset) {
      ++segment_;
      offset_ = segments_[segment_].offset;
      line_ = segments_[segment_].line;
    }
    // Offsets stand at delimiters, never between the CR and LF of a line end.
    line_ += CountLines(std::string_view(text_).substr(offset_, offset - offset_));
    offset_ = offset;
    return {segments_[segment_].file, line_};
  }

 private:
  const std::string& text_;
  const std::vector<Segment>& segments_;
  size_t segment_ = 0;
  size_t offset_ = 0;
  int32_t line_ = 1;
};

// Writes the program.
class ScriptWriter {
 public:
  explicit ScriptWriter(CompiledPage& page) : page_(page) {}

  void Text(std::string_view text, SourcePosition at) {
    if (text.empty()) return;
    TextBlock block;
    block.utf8 = std::string(text);
    block.text = String::FromUtf8(text).view();
    page_.blocks.push_back(std::move(block));
    Line("Response.WriteBlock " + std::to_string(page_.blocks.size() - 1), at);
  }

  // Code as written, line by line; `prefix` goes before its first line.
  void Code(std::string_view code, SourcePosition at, std::string_view prefix = {}) {
    std::string line(prefix);
    for (size_t i = 0; i < code.size(); ++i) {
      const char c = code[i];
      if (c != '\r' && c != '\n') {
        line += c;
        continue;
      }
      if (c == '\r' && i + 1 < code.size() && code[i + 1] == '\n') ++i;
      Line(line, at);
      line.clear();
      ++at.line;
    }
    Line(line, at);
  }

  void Finish() { page_.script = String::FromUtf8(out_).view(); }

 private:
  void Line(std::string_view text, SourcePosition at) {
    out_ += text;
    out_ += "\r\n";
    page_.lines.push_back(at);
  }

  CompiledPage& page_;
  std::string out_;
};

void ApplyDirective(std::string_view body, PageDirectives& d, const fs::path& file, int32_t line) {
  for (const auto& [name, value] : ParseAttributes(body)) {
    if (name == "language") {
      if (!ContainsNoCase(value, "vbs")) {
        throw PageError("ASP 0129",
                        "The scripting language '" + value + "' is not found on the server.", file,
                        line);
      }
    } else if (name == "codepage") {
      const int cp = std::atoi(value.c_str());
      if (!IsKnownCodePage(cp))
        throw PageError("ASP 0203", "The specified code page is invalid.", file, line);
      d.code_page = cp;
    } else if (name == "lcid") {
      d.lcid = std::atoi(value.c_str());
      if (d.lcid <= 0) throw PageError("ASP 0204", "The specified LCID is invalid.", file, line);
    } else if (name == "enablesessionstate") {
      d.enable_session_state = !ContainsNoCase(value, "false");
    } else if (name != "transaction") {
      throw PageError("ASP 0221", "The specified '" + name + "' option is unknown or invalid.",
                      file, line);
    }
  }
}

// The code page a page declares before anything else, which decides how its bytes are read.
int DeclaredCodePage(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  std::string head(4096, '\0');
  in.read(head.data(), static_cast<std::streamsize>(head.size()));
  head.resize(static_cast<size_t>(in.gcount()));
  const size_t at = head.find("<%@");
  if (at == std::string::npos || head.find("<%") < at) return 0;
  const size_t close = head.find("%>", at);
  if (close == std::string::npos) return 0;
  const auto attrs = ParseAttributes(std::string_view(head).substr(at + 3, close - at - 3));
  const std::string* cp = Attribute(attrs, "codepage");
  return cp ? std::atoi(cp->c_str()) : 0;
}

bool IsServerScriptTag(std::string_view tag) {
  const auto attrs = ParseAttributes(tag);
  const std::string* runat = Attribute(attrs, "runat");
  return runat && ContainsNoCase(*runat, "server");
}

// Cuts the merged text into text, code and server script blocks. In global.asa (`global`)
// text is dropped and <object runat=server> tags are collected.
void WriteScript(const Merger& merged, CompiledPage& page, bool global,
                 std::vector<StaticObjectDecl>* objects) {
  const std::string_view text = merged.text;
  OriginCursor cursor(merged.text, merged.segments);
  ScriptWriter writer(page);
  struct Deferred {
    std::string code;
    SourcePosition at;
  };
  std::vector<Deferred> deferred;
  auto file_of = [&](SourcePosition p) { return merged.files[p.file].path; };
  size_t pos = 0;
  while (pos < text.size()) {
    size_t code_at = text.find("<%", pos);
    size_t tag_at = pos;
    size_t script_at = std::string_view::npos;
    size_t object_at = std::string_view::npos;
    for (;;) {
      tag_at = text.find('<', tag_at);
      if (tag_at == std::string_view::npos || tag_at >= code_at) break;
      if (StartsWithNoCase(text, tag_at, "<script") ||
          (global && StartsWithNoCase(text, tag_at, "<object"))) {
        const size_t end = text.find('>', tag_at);
        constexpr size_t kTagName = 7;  // "<script" and "<object"
        if (end != std::string_view::npos &&
            IsServerScriptTag(text.substr(tag_at + kTagName, end - tag_at - kTagName))) {
          (StartsWithNoCase(text, tag_at, "<script") ? script_at : object_at) = tag_at;
          break;
        }
      }
      ++tag_at;
    }
    const size_t next = std::min({code_at, script_at, object_at});
    const SourcePosition text_at = cursor.At(pos);
    if (!global)
      writer.Text(
          text.substr(pos, next == std::string_view::npos ? std::string_view::npos : next - pos),
          text_at);
    if (next == std::string_view::npos) break;
    const SourcePosition at = cursor.At(next);
    if (next == code_at) {
      const size_t close = text.find("%>", code_at + 2);
      if (close == std::string_view::npos) {
        throw PageError("ASP 0116", "The script block lacks the close of script tag (%>).",
                        file_of(at), at.line);
      }
      const std::string_view body = text.substr(code_at + 2, close - code_at - 2);
      if (global) {
        // global.asa holds no page code; its delimiters are ignored as IIS ignores them.
      } else if (!body.empty() && body[0] == '@') {
        ApplyDirective(body.substr(1), page.directives, file_of(at), at.line);
        // The line break after the directive is no output, so that `<% Option Explicit %>` on
        // the next line still comes before any statement.
        pos = close + 2;
        const size_t eol = text.find_first_not_of(" \t", pos);
        if (eol != std::string_view::npos && text.compare(eol, 2, "\r\n") == 0) {
          pos = eol + 2;
        } else if (eol != std::string_view::npos && text[eol] == '\n') {
          pos = eol + 1;
        }
        continue;
      } else if (!body.empty() && body[0] == '=') {
        writer.Code(body.substr(1), at, "Response.Write ");
      } else {
        writer.Code(body, at);
      }
      pos = close + 2;
      continue;
    }
    const size_t tag_end = text.find('>', next);
    if (next == object_at) {
      const auto attrs = ParseAttributes(text.substr(next + 7, tag_end - next - 7));
      const std::string* id = Attribute(attrs, "id");
      const std::string* prog_id = Attribute(attrs, "progid");
      const std::string* scope = Attribute(attrs, "scope");
      if (id && prog_id && objects) {
        objects->push_back({*id, *prog_id, scope && ContainsNoCase(*scope, "application")});
      }
      const size_t close = FindNoCase(text, "</object>", tag_end);
      pos = close == std::string_view::npos ? tag_end + 1 : close + 9;
      continue;
    }
    const auto attrs = ParseAttributes(text.substr(next + 7, tag_end - next - 7));
    const std::string* language = Attribute(attrs, "language");
    if (language && !ContainsNoCase(*language, "vbs")) {
      throw PageError("ASP 0129",
                      "The scripting language '" + *language + "' is not found on the server.",
                      file_of(at), at.line);
    }
    const size_t close = FindNoCase(text, "</script>", tag_end);
    if (close == std::string_view::npos) {
      throw PageError("ASP 0116", "The script block lacks the close of script tag (</script>).",
                      file_of(at), at.line);
    }
    // Server script blocks hold procedures that the whole page sees; they run after the page's
    // own code, as IIS places them.
    const SourcePosition body_at = cursor.At(tag_end + 1);
    deferred.push_back({std::string(text.substr(tag_end + 1, close - tag_end - 1)), body_at});
    pos = close + 9;
  }
  for (const Deferred& d : deferred)
    writer.Code(d.code, d.at);
  writer.Finish();
}

}  // namespace

PageError::PageError(std::string code, std::string description, fs::path file, int32_t line)
    : code_(std::move(code)),
      description_(std::move(description)),
      file_(std::move(file)),
      line_(line) {}

SourcePosition CompiledPage::Origin(int32_t line) const {
  if (line < 1 || static_cast<size_t>(line) > lines.size()) return {0, 1};
  return lines[static_cast<size_t>(line) - 1];
}

bool CompiledPage::IsCurrent() const {
  for (const SourceFile& f : files) {
    int64_t modified = 0;
    uintmax_t size = 0;
    if (!StatSource(f.path, modified, size) || modified != f.modified || size != f.size)
      return false;
  }
  return true;
}

// Whether `text` has `lower` in it, without regard to the case of ASCII letters.
bool MentionsNoCase(std::u16string_view text, std::u16string_view lower) {
  for (size_t i = 0; i + lower.size() <= text.size(); ++i) {
    size_t n = 0;
    while (n < lower.size() &&
           (text[i + n] == lower[n] ||
            (text[i + n] >= u'A' && text[i + n] <= u'Z' && (text[i + n] | 0x20) == lower[n])))
      ++n;
    if (n == lower.size()) return true;
  }
  return false;
}

namespace {

// Whether the page's code may send output before it ends: it names Flush or Buffer, or it runs
// code made from strings that name them. Such a page costs a thread of its own per request, so
// the words in comments, and in strings that stay text, must not count. Code that does not
// even tokenize fails when it is compiled; its text decides until then.
bool MayStream(const std::u16string& script) {
  std::vector<vbs::Token> tokens;
  try {
    tokens = vbs::Tokenize(script);
  } catch (const Error&) {
    return MentionsNoCase(script, u"flush") || MentionsNoCase(script, u"buffer");
  }
  bool runs_strings = false;
  bool strings_name = false;
  for (const vbs::Token& t : tokens) {
    if (t.kind == vbs::Tok::Text) {
      strings_name =
          strings_name || MentionsNoCase(t.text, u"flush") || MentionsNoCase(t.text, u"buffer");
      continue;
    }
    if (t.kind != vbs::Tok::Ident) continue;
    if (EqualsNoCase(t.text, u"flush") || EqualsNoCase(t.text, u"buffer")) return true;
    runs_strings = runs_strings || EqualsNoCase(t.text, u"execute") ||
                   EqualsNoCase(t.text, u"executeglobal") || EqualsNoCase(t.text, u"eval");
  }
  return runs_strings && strings_name;
}

}  // namespace

CompiledPage CompilePage(const Site& site, const fs::path& file) {
  Merger merged(site, DeclaredCodePage(file));
  merged.Add(file, 0);
  CompiledPage page;
  page.ado_constants = merged.ado_constants;
  WriteScript(merged, page, false, nullptr);
  page.names_session = MentionsNoCase(page.script, u"session");
  page.files = std::move(merged.files);
  page.streams = MayStream(page.script);
  return page;
}

GlobalAsa CompileGlobalAsa(const Site& site, const fs::path& file) {
  Merger merged(site, 0);
  merged.Add(file, 0);
  GlobalAsa out;
  out.page.ado_constants = merged.ado_constants;
  WriteScript(merged, out.page, true, &out.objects);
  out.session_on_end = MentionsNoCase(out.page.script, u"session_onend");
  out.page.files = std::move(merged.files);
  return out;
}

}  // namespace qv::asp
