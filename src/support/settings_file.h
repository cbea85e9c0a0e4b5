// One settings tree kept in a file: parsed once, kept in memory, and read again only when the
// file changes (its identity, size or time). Saving writes a temporary file beside it and
// renames it over the old one, so the file is always either the old or the new tree.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>

#include "support/settings_tree.h"

namespace qv {

class SettingsFile {
 public:
  // `header` heads every file this object writes (comment lines starting with ";").
  SettingsFile(std::filesystem::path path, bool read_only, std::string header);

  const std::filesystem::path& path() const { return path_; }
  bool read_only() const { return read_only_; }

  // The tree as the file holds it now. A missing file is an empty tree. A file that can't be
  // read or parsed is reported once on stderr, with its path, and reads as empty; it is left as
  // it is until a save is asked for.
  const SettingsTree& Tree();

  enum class SaveResult : uint8_t { kSaved, kUnchanged, kRefused };
  // Applies `change` to the current tree and saves the result. `change` returns false to
  // leave everything as it is (kUnchanged). kRefused: the tree is read-only or the file could
  // not be written (the reason goes to stderr). A damaged file is first kept aside as
  // "<name>.damaged".
  SaveResult Update(const std::function<bool(SettingsTree&)>& change);

 private:
  struct Stamp {
    bool exists = false;
    uint64_t device = 0;
    uint64_t inode = 0;
    int64_t size = 0;
    int64_t mtime_ns = 0;
    int64_t ctime_ns = 0;
    friend bool operator==(const Stamp&, const Stamp&) = default;
  };
  Stamp CurrentStamp() const;
  void Load(const Stamp& stamp);
  bool WriteAtomically(const std::string& text);

  std::filesystem::path path_;
  bool read_only_;
  std::string header_;
  SettingsTree tree_;
  Stamp stamp_;
  bool loaded_ = false;
  bool damaged_ = false;  // the file on disk could not be read: never overwrite it silently
};

}  // namespace qv
