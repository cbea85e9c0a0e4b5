// Resolution walks the path one segment at a time so that every step can fall back to a
// case-insensitive match; the canonical result is then checked to lie inside the root, which
// is what keeps symbolic links from leading out. A request's path that was walked before is
// only checked to name the same file still (see Find), since the walk costs a look at every
// folder from the file system's root on.
#include "asp/site.h"

#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <system_error>

#include "support/common.h"

namespace qv::asp {
namespace fs = std::filesystem;
namespace {

bool EqualsAsciiNoCase(std::string_view a, std::string_view b) {
  return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
           return std::tolower(static_cast<unsigned char>(x)) ==
                  std::tolower(static_cast<unsigned char>(y));
         });
}

std::string LowerExtension(const fs::path& file) {
  std::string ext = file.extension().string();
  for (char& c : ext)
    c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return ext;
}

// The entry of `folder` named `name` in any case; the exact name wins when it exists.
std::optional<fs::path> FindEntry(const fs::path& folder, std::string_view name) {
  std::error_code ec;
  fs::path exact = folder / std::string(name);
  if (fs::exists(fs::symlink_status(exact, ec))) return exact;
  for (fs::directory_iterator it(folder, ec), end; !ec && it != end; it.increment(ec)) {
    const std::string entry = it->path().filename().string();
    if (EqualsAsciiNoCase(entry, name)) return it->path();
  }
  return std::nullopt;
}

}  // namespace

Site::Site(const fs::path& root) : root_(fs::canonical(root)) {}

bool Site::Inside(const fs::path& canonical) const {
  auto r = root_.begin();
  auto c = canonical.begin();
  for (; r != root_.end(); ++r, ++c) {
    if (c == canonical.end() || *r != *c) return false;
  }
  return true;
}

std::optional<fs::path> Site::Walk(fs::path at, std::string_view relative, bool must_exist,
                                   bool* plain) const {
  if (relative.find('\0') != std::string_view::npos) return std::nullopt;
  bool exact = true;
  size_t pos = 0;
  while (pos <= relative.size()) {
    size_t next = relative.find_first_of("/\\", pos);
    if (next == std::string_view::npos) next = relative.size();
    const std::string_view segment = relative.substr(pos, next - pos);
    pos = next + 1;
    if (segment.empty() || segment == ".") continue;
    if (segment == "..") {
      if (at == root_) return std::nullopt;  // never above the root
      at = at.parent_path();
      exact = false;
      continue;
    }
    std::optional<fs::path> entry = FindEntry(at, segment);
    if (!entry) {
      if (must_exist) return std::nullopt;
      at /= std::string(segment);
      continue;
    }
    if (entry->filename() != segment) exact = false;
    at = std::move(*entry);
  }
  std::error_code ec;
  fs::path canonical = must_exist ? fs::canonical(at, ec) : fs::weakly_canonical(at, ec);
  if (ec || !Inside(canonical)) return std::nullopt;
  if (plain) *plain = exact && canonical == at;
  return canonical;
}

std::optional<Site::Found> Site::Find(std::string_view url_path) const {
  // The map only grows with paths that exist, but a client can spell one path in endless ways
  // ("/./a", "//a"): past this many, it starts over.
  constexpr size_t kMaxKnown = 4096;
  const std::string key(url_path);
  std::optional<Known> known;
  {
    std::lock_guard guard(known_mutex_);
    if (auto it = known_.find(key); it != known_.end()) known = it->second;
  }
  struct stat st;
  if (known) {
    // A file removed, or replaced, or reached now through a folder that became a link, has
    // another identity or none: then the path is walked again.
    if (::stat(known->path.c_str(), &st) == 0 && st.st_dev == known->device &&
        st.st_ino == known->inode)
      return Found{std::move(known->path), S_ISDIR(st.st_mode), S_ISREG(st.st_mode)};
    std::lock_guard guard(known_mutex_);
    known_.erase(key);
  }
  bool plain = false;
  std::optional<fs::path> path = Walk(root_, url_path, true, &plain);
  if (!path || ::stat(path->c_str(), &st) != 0) return std::nullopt;
  if (plain) {
    std::lock_guard guard(known_mutex_);
    if (known_.size() >= kMaxKnown) known_.clear();
    known_.insert_or_assign(key, Known{*path, st.st_dev, st.st_ino});
  }
  return Found{std::move(*path), S_ISDIR(st.st_mode), S_ISREG(st.st_mode)};
}

std::optional<fs::path> Site::Resolve(std::string_view url_path) const {
  std::optional<Found> found = Find(url_path);
  if (!found) return std::nullopt;
  return std::move(found->path);
}

std::optional<fs::path> Site::ResolveRelative(const fs::path& base,
                                              std::string_view relative) const {
  if (!relative.empty() && (relative[0] == '/' || relative[0] == '\\'))
    return Walk(root_, relative, true);
  return Walk(base, relative, true);
}

std::optional<fs::path> Site::MapPath(std::string_view url_path) const {
  return Walk(root_, url_path, false);
}

std::optional<Site::Found> Site::DefaultDocument(std::string_view folder_url) const {
  static constexpr std::array<std::string_view, 4> kNames = {"default.asp", "index.asp",
                                                             "index.html", "index.htm"};
  // Through Find, so that a folder's page costs what any other page does; the names before
  // the one found are looked for again each time, so that one made later takes over.
  for (std::string_view name : kNames) {
    std::optional<Found> found = Find(std::string(folder_url) + std::string(name));
    if (found && found->is_regular) return found;
  }
  return std::nullopt;
}

std::string Site::UrlPathOf(const fs::path& file) const {
  std::string out;
  for (const fs::path& part : file.lexically_relative(root_)) {
    if (part == ".") continue;
    out += '/';
    out += part.string();
  }
  return out.empty() ? "/" : out;
}

bool Site::IsHidden(const fs::path& file) const {
  static constexpr std::array<std::string_view, 16> kExtensions = {
      ".asa",     ".inc", ".qvp", ".mdb",  ".accdb",  ".ldb", ".db", ".sqlite",
      ".sqlite3", ".bak", ".old", ".orig", ".config", ".cs",  ".vb", ".log"};
  for (const fs::path& part : file.lexically_relative(root_)) {
    const std::string name = part.string();
    if (name.size() > 1 && name[0] == '.' && name != "..") return true;
  }
  const std::string ext = LowerExtension(file);
  if (std::find(kExtensions.begin(), kExtensions.end(), ext) != kExtensions.end()) return true;
  const std::string name = file.filename().string();
  return !name.empty() && name.back() == '~';
}

bool Site::InUploadFolder(const fs::path& file) const {
  // A few stats per page request; kept uncached, so that a marker put into a folder holds
  // from the next request on.
  std::error_code ec;
  for (fs::path folder = file.parent_path(); folder != root_ && Inside(folder);
       folder = folder.parent_path()) {
    if (fs::exists(folder / kUploadFolderMarker, ec)) return true;
  }
  return false;
}

bool Site::IsPage(const fs::path& file) {
  return LowerExtension(file) == ".asp";
}

std::string_view ContentTypeOf(const fs::path& file) {
  static constexpr std::pair<std::string_view, std::string_view> kTypes[] = {
      {".html", "text/html; charset=utf-8"},
      {".htm", "text/html; charset=utf-8"},
      {".css", "text/css; charset=utf-8"},
      {".js", "text/javascript; charset=utf-8"},
      {".mjs", "text/javascript; charset=utf-8"},
      {".json", "application/json"},
      {".txt", "text/plain; charset=utf-8"},
      {".xml", "application/xml"},
      {".csv", "text/csv; charset=utf-8"},
      {".svg", "image/svg+xml"},
      {".png", "image/png"},
      {".jpg", "image/jpeg"},
      {".jpeg", "image/jpeg"},
      {".gif", "image/gif"},
      {".webp", "image/webp"},
      {".ico", "image/x-icon"},
      {".bmp", "image/bmp"},
      {".avif", "image/avif"},
      {".woff", "font/woff"},
      {".woff2", "font/woff2"},
      {".ttf", "font/ttf"},
      {".otf", "font/otf"},
      {".eot", "application/vnd.ms-fontobject"},
      {".pdf", "application/pdf"},
      {".zip", "application/zip"},
      {".gz", "application/gzip"},
      {".mp3", "audio/mpeg"},
      {".mp4", "video/mp4"},
      {".webm", "video/webm"},
      {".wasm", "application/wasm"},
      {".map", "application/json"},
      {".xsl", "application/xml"},
  };
  const std::string ext = LowerExtension(file);
  for (const auto& [e, type] : kTypes) {
    if (e == ext) return type;
  }
  return "application/octet-stream";
}

}  // namespace qv::asp
