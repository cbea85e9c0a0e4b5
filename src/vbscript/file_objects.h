// The objects Scripting.FileSystemObject hands out: File, Folder, the Files and Folders
// collections, and Drive (one drive, the root "/", since Linux has no drive letters). Paths
// are read with "\" or "/" and shown with "/".
#pragma once

#include <filesystem>
#include <string>

#include "automation/dispatch.h"

namespace qv::vbs {

// A script's path as the system's: "\" becomes "/", text becomes UTF-8.
std::filesystem::path NativePath(StringView path);
// A system path as scripts see it, absolute and without a trailing "/" (except the root).
String ScriptPath(const std::filesystem::path& path);
// The date value of a file time, in local time.
double FileTimeAsDate(std::filesystem::file_time_type time);

class Folder;

class File : public DispatchObject<File> {
 public:
  explicit File(std::filesystem::path path) : path_(std::move(path)) {}
  static const DispatchTable<File>& Table();
  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

class Folder : public DispatchObject<Folder> {
 public:
  explicit Folder(std::filesystem::path path) : path_(std::move(path)) {}
  static const DispatchTable<Folder>& Table();
  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

// The files (or sub-folders) of a folder, sorted by name. Like Windows, the collection reads the
// folder again each time it is counted or walked, so it sees files made after it.
class FileList : public DispatchObject<FileList> {
 public:
  FileList(std::filesystem::path folder, bool folders);
  static const DispatchTable<FileList>& Table();
  Ref<Enumerator> NewEnum() override;
  // Files and Folders show the same members under their own names.
  String TypeName() const override { return folders_ ? u"Folders" : u"Files"; }

 private:
  std::vector<std::filesystem::path> Scan() const;

  std::filesystem::path folder_;
  bool folders_;
};

class Drive : public DispatchObject<Drive> {
 public:
  static const DispatchTable<Drive>& Table();
};

class DriveList : public DispatchObject<DriveList> {
 public:
  static const DispatchTable<DriveList>& Table();
  Ref<Enumerator> NewEnum() override;
};

// Copies a file or folder tree onto `to`; raises 58 when the target exists and `overwrite` is
// false, 70 when the system refuses.
void CopyItem(const std::filesystem::path& from, const std::filesystem::path& to, bool overwrite);
void MoveItem(const std::filesystem::path& from, const std::filesystem::path& to);
void DeleteItem(const std::filesystem::path& path, bool force);

}  // namespace qv::vbs
