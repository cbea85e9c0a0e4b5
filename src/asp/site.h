// The site folder as the web sees it: a URL path to a file inside the folder, found without
// regard to case when the exact name is missing (sites written on Windows name their files in
// any case), never a file outside it, and never one that holds code or data.
#pragma once

#include <sys/types.h>

#include <filesystem>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace qv::asp {

class Site {
 public:
  // What a URL path names: the canonical path of a file or folder inside the site.
  struct Found {
    std::filesystem::path path;
    bool is_directory = false;
    bool is_regular = false;
  };

  // `root` must be an existing folder.
  explicit Site(const std::filesystem::path& root);

  const std::filesystem::path& root() const { return root_; }

  // The file or folder a decoded URL path names ("/shop/Default.ASP"), or nothing when there is
  // none inside the site. ".." segments, NUL bytes and symbolic links that lead out all count
  // as none. Safe to call from several threads.
  std::optional<Found> Find(std::string_view url_path) const;
  std::optional<std::filesystem::path> Resolve(std::string_view url_path) const;
  // A path relative to a folder of the site, as an include names it ("../inc/x.inc"), resolved
  // the same way; `base` is a folder inside the site.
  std::optional<std::filesystem::path> ResolveRelative(const std::filesystem::path& base,
                                                       std::string_view relative) const;
  // The file a folder serves for its URL (which ends in "/"): default.asp, index.asp,
  // index.html, index.htm.
  std::optional<Found> DefaultDocument(std::string_view folder_url) const;
  // The site-relative URL path of a file inside the site ("/shop/list.asp").
  std::string UrlPathOf(const std::filesystem::path& file) const;
  // Where Server.MapPath points: like Resolve, but the file need not exist.
  std::optional<std::filesystem::path> MapPath(std::string_view url_path) const;

  // Files never served: global.asa, includes, project and database files, backups, and
  // anything inside the site whose name starts with a dot.
  bool IsHidden(const std::filesystem::path& file) const;
  static bool IsPage(const std::filesystem::path& file);
  // Whether a file lies in a folder that receives uploads (one below the root holding the
  // marker file, or any folder inside such a one): no page there is ever run.
  bool InUploadFolder(const std::filesystem::path& file) const;

 private:
  // A path found before, with the identity of the file it named then.
  struct Known {
    std::filesystem::path path;
    dev_t device;
    ino_t inode;
  };

  // `plain`, when given, is set when every segment named an entry exactly and no symbolic link
  // or ".." took part: only such a result stays right for as long as its file is the same.
  std::optional<std::filesystem::path> Walk(std::filesystem::path at, std::string_view relative,
                                            bool must_exist, bool* plain = nullptr) const;
  bool Inside(const std::filesystem::path& canonical) const;

  std::filesystem::path root_;  // canonical
  // URL paths resolved before. Walking a path costs a look at every segment and every folder
  // above the root on each request; a path in here costs one stat, which also tells whether
  // the file it named is still there and still the same file.
  mutable std::mutex known_mutex_;
  mutable std::unordered_map<std::string, Known> known_;
};

// The Content-Type of a static file, from its extension.
std::string_view ContentTypeOf(const std::filesystem::path& file);

}  // namespace qv::asp
