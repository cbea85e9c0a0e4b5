// Turns an ASP page and its includes into one VBScript program: text between the script
// delimiters becomes numbered blocks that the program writes by number, `<%= %>` becomes a
// Response.Write, and a line map leads every line of the program back to its file and line.
#pragma once

#include <cstdint>
#include <exception>
#include <filesystem>
#include <string>
#include <vector>

#include "asp/site.h"

namespace qv::asp {

// A file a page was made from, as it was when the page was compiled.
struct SourceFile {
  std::filesystem::path path;
  int64_t modified = 0;  // nanoseconds since the epoch
  uintmax_t size = 0;
};

struct SourcePosition {
  uint32_t file = 0;  // index into CompiledPage::files
  int32_t line = 0;
};

// What `<%@ ... %>` declares; 0 means not declared.
struct PageDirectives {
  int code_page = 0;
  int lcid = 0;
  bool enable_session_state = true;
};

// A block of the page's text, ready for the wire: its UTF-8 bytes (the usual code page) and
// its text for any other.
struct TextBlock {
  std::string utf8;
  std::u16string text;
};

struct CompiledPage {
  std::vector<SourceFile> files;      // the page first, then its includes
  std::u16string script;              // VBScript, lines separated by CR LF
  std::vector<SourcePosition> lines;  // per line of `script`, from line 1
  std::vector<TextBlock> blocks;
  PageDirectives directives;
  bool ado_constants = false;  // the page names the ADO type library
  // The page's code uses Flush or Buffer (not merely mentions them in a comment or a text):
  // its output may leave before it ends.
  bool streams = false;
  // The word "Session" is somewhere in the script (code, text or a string): a page without it
  // can only reach the session through a page it runs with Server.Execute or code it builds.
  bool names_session = true;

  // Where line `line` (from 1) of the script came from; the page's first line when unknown.
  SourcePosition Origin(int32_t line) const;
  // True while no file of the page changed on disk since it was compiled.
  bool IsCurrent() const;
};

// A failure to compile a page, before the script engine sees it: a missing or cyclic
// include, an unclosed delimiter, a bad directive.
class PageError : public std::exception {
 public:
  PageError(std::string code, std::string description, std::filesystem::path file, int32_t line);
  const std::string& code() const { return code_; }  // "ASP 0126"
  const std::string& description() const { return description_; }
  const std::filesystem::path& file() const { return file_; }
  int32_t line() const { return line_; }
  const char* what() const noexcept override { return description_.c_str(); }

 private:
  std::string code_;
  std::string description_;
  std::filesystem::path file_;
  int32_t line_;
};

// Compiles the page at `file` (a file inside the site). Raises PageError.
CompiledPage CompilePage(const Site& site, const std::filesystem::path& file);

// The text of the `<script runat="server">` blocks of global.asa, as one VBScript program with
// its line map, and the `<object runat="server">` declarations it holds.
struct StaticObjectDecl {
  std::string id;
  std::string prog_id;
  bool application_scope = false;
};
struct GlobalAsa {
  CompiledPage page;
  std::vector<StaticObjectDecl> objects;
  bool session_on_end = true;  // it may define Session_OnEnd
};
GlobalAsa CompileGlobalAsa(const Site& site, const std::filesystem::path& file);

}  // namespace qv::asp
