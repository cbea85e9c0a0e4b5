// File, Folder, Files, Folders and Drive over std::filesystem. Each object holds only its
// path and asks the file system afresh on every member, as the Windows objects do.
#include "vbscript/file_objects.h"

#include <sys/statvfs.h>

#include <algorithm>
#include <chrono>
#include <ctime>
#include <optional>

#include "automation/convert.h"
#include "automation/date_time.h"
#include "vbscript/runtime_lib.h"
#include "vbscript/text_stream.h"

namespace qv::vbs {

namespace fs = std::filesystem;

namespace {

// File attributes as scripts know them.
enum Attribute : int32_t {
  kReadOnly = 1,
  kHidden = 2,
  kDirectory = 16,
  kArchive = 32,
  kAlias = 1024,
};

int32_t AttributesOf(const fs::path& p) {
  std::error_code ec;
  const auto status = fs::symlink_status(p, ec);
  if (ec) Raise(kErrFileNotFound);
  int32_t a = fs::is_directory(fs::status(p, ec)) ? kDirectory : kArchive;
  if ((status.permissions() & fs::perms::owner_write) == fs::perms::none) a |= kReadOnly;
  const std::string name = p.filename().string();
  if (name.size() > 1 && name[0] == '.') a |= kHidden;
  if (fs::is_symlink(status)) a |= kAlias;
  return a;
}

void SetReadOnly(const fs::path& p, bool read_only) {
  std::error_code ec;
  fs::permissions(p, fs::perms::owner_write,
                  read_only ? fs::perm_options::remove : fs::perm_options::add, ec);
  if (ec) Raise(kErrPermissionDenied);
}

Variant SizeValue(uintmax_t size) {
  if (size <= static_cast<uintmax_t>(INT32_MAX)) return Variant(static_cast<int32_t>(size));
  return Variant(static_cast<double>(size));
}

uintmax_t TreeSize(const fs::path& folder) {
  uintmax_t total = 0;
  std::error_code ec;
  for (auto it = fs::recursive_directory_iterator(folder, ec); !ec && it != fs::end(it);
       it.increment(ec)) {
    std::error_code size_ec;
    if (it->is_regular_file(size_ec)) total += it->file_size(size_ec);
  }
  return total;
}

Variant DateOf(const fs::path& p) {
  std::error_code ec;
  const auto time = fs::last_write_time(p, ec);
  if (ec) Raise(kErrFileNotFound);
  return Variant::Date(FileTimeAsDate(time));
}

String NameOf(const fs::path& p) {
  if (p == p.root_path()) return {};
  return String::FromUtf8(p.filename().string());
}

// The type names a stock Windows installation registers; any other extension is "<EXT> File".
String TypeOf(const fs::path& p) {
  std::string ext = p.extension().string();
  if (ext.size() <= 1) return u"File";
  ext = ext.substr(1);
  std::transform(ext.begin(), ext.end(), ext.begin(),
                 [](unsigned char c) { return std::toupper(c); });
  static const std::pair<const char*, const char16_t*> kKnown[] = {
      {"TXT", u"Text Document"},
      {"LOG", u"Text Document"},
      {"VBS", u"VBScript Script File"},
      {"JS", u"JScript Script File"},
      {"BAT", u"Windows Batch File"},
      {"CMD", u"Windows Command Script"},
      {"EXE", u"Application"},
      {"DLL", u"Application extension"},
      {"INI", u"Configuration settings"},
      {"ZIP", u"Compressed (zipped) Folder"}};
  for (const auto& [known, name] : kKnown) {
    if (ext == known) return String(name);
  }
  return String::FromUtf8(ext) + u" File";
}

Variant ParentOf(const fs::path& p) {
  if (p == p.root_path()) return Variant::Nothing();
  return Variant(MakeRef<Folder>(p.parent_path()));
}

void Rename(fs::path& p, const Variant& v) {
  const String name = ToString(v);
  if (name.empty()) Raise(kErrInvalidCall);
  const fs::path target = p.parent_path() / NativePath(name);
  std::error_code ec;
  if (fs::exists(target, ec)) Raise(kErrFileExists);
  fs::rename(p, target, ec);
  if (ec) Raise(kErrPermissionDenied);
  p = target;
}

fs::path Destination(const String& text, const fs::path& source) {
  fs::path to = NativePath(text);
  const bool into_folder =
      !text.empty() && (text.view().back() == u'/' || text.view().back() == u'\\');
  if (into_folder) to /= source.filename();
  return to;
}

class PathEnumerator : public Enumerator {
 public:
  PathEnumerator(std::vector<fs::path> paths, bool folders)
      : paths_(std::move(paths)), folders_(folders) {}
  bool Next(Variant& item) override {
    if (at_ >= paths_.size()) return false;
    const fs::path& p = paths_[at_++];
    item = folders_ ? Variant(MakeRef<Folder>(p)) : Variant(MakeRef<File>(p));
    return true;
  }
  void Reset() override { at_ = 0; }

 private:
  std::vector<fs::path> paths_;
  bool folders_;
  size_t at_ = 0;
};

}  // namespace

fs::path NativePath(StringView path) {
  std::u16string text(path);
  std::replace(text.begin(), text.end(), u'\\', u'/');
  return fs::path(String::ToUtf8(text));
}

String ScriptPath(const fs::path& path) {
  std::error_code ec;
  fs::path p = fs::absolute(path, ec).lexically_normal();
  std::string text = p.string();
  while (text.size() > 1 && text.back() == '/')
    text.pop_back();
  return String::FromUtf8(text);
}

double FileTimeAsDate(fs::file_time_type time) {
  const auto system = std::chrono::file_clock::to_sys(time);
  const std::time_t t = std::chrono::system_clock::to_time_t(system);
  std::tm local{};
  localtime_r(&t, &local);
  const auto day = DateFromParts(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday);
  return day ? *day + TimeFromParts(local.tm_hour, local.tm_min, local.tm_sec) : 0.0;
}

void CopyItem(const fs::path& from, const fs::path& to, bool overwrite) {
  std::error_code ec;
  if (fs::is_directory(from, ec)) {
    if (fs::exists(to, ec) && !fs::is_directory(to, ec)) Raise(kErrFileExists);
    fs::create_directories(to, ec);
    if (ec) Raise(kErrPathNotFound);
    for (const auto& entry : fs::directory_iterator(from, ec))
      CopyItem(entry.path(), to / entry.path().filename(), overwrite);
    return;
  }
  if (!fs::exists(from, ec)) Raise(kErrFileNotFound);
  if (fs::is_directory(to, ec)) Raise(kErrPermissionDenied);
  if (fs::exists(to, ec) && !overwrite) Raise(kErrFileExists);
  if (!to.parent_path().empty() && !fs::is_directory(to.parent_path(), ec)) Raise(kErrPathNotFound);
  fs::copy_file(from, to, fs::copy_options::overwrite_existing, ec);
  if (ec) Raise(kErrPermissionDenied);
}

void MoveItem(const fs::path& from, const fs::path& to) {
  std::error_code ec;
  if (!fs::exists(from, ec))
    Raise(fs::is_directory(from.parent_path(), ec) ? kErrFileNotFound : kErrPathNotFound);
  if (fs::exists(to, ec)) Raise(kErrFileExists);
  if (!to.parent_path().empty() && !fs::is_directory(to.parent_path(), ec)) Raise(kErrPathNotFound);
  fs::rename(from, to, ec);
  if (!ec) return;
  // Across file systems: copy, then remove the original.
  CopyItem(from, to, false);
  fs::remove_all(from, ec);
  if (ec) Raise(kErrPermissionDenied);
}

void DeleteItem(const fs::path& path, bool force) {
  std::error_code ec;
  if (!force && (AttributesOf(path) & kReadOnly)) Raise(kErrPermissionDenied);
  fs::remove_all(path, ec);
  if (ec) Raise(kErrPermissionDenied);
}

const DispatchTable<File>& File::Table() {
  static const auto table =
      DispatchTable<File>(u"File")
          .Property(u"Path", [](File& f, Args) { return Variant(ScriptPath(f.path_)); })
          .Default(u"Path")
          .Property(
              u"Name", [](File& f, Args) { return Variant(NameOf(f.path_)); },
              [](File& f, Args, const Variant& v) { Rename(f.path_, v); })
          .Property(u"ShortName", [](File& f, Args) { return Variant(NameOf(f.path_)); })
          .Property(u"ShortPath", [](File& f, Args) { return Variant(ScriptPath(f.path_)); })
          .Property(u"ParentFolder", [](File& f, Args) { return ParentOf(f.path_); })
          .Property(u"Drive", [](File&, Args) { return Variant(MakeRef<Drive>()); })
          .Property(u"Size",
                    [](File& f, Args) {
                      std::error_code ec;
                      const auto size = fs::file_size(f.path_, ec);
                      if (ec) Raise(kErrFileNotFound);
                      return SizeValue(size);
                    })
          .Property(u"Type", [](File& f, Args) { return Variant(TypeOf(f.path_)); })
          .Property(
              u"Attributes", [](File& f, Args) { return Variant(AttributesOf(f.path_)); },
              [](File& f, Args, const Variant& v) { SetReadOnly(f.path_, ToLong(v) & kReadOnly); })
          .Property(u"DateCreated", [](File& f, Args) { return DateOf(f.path_); })
          .Property(u"DateLastModified", [](File& f, Args) { return DateOf(f.path_); })
          .Property(u"DateLastAccessed", [](File& f, Args) { return DateOf(f.path_); })
          .Method<[](File& f, String to, std::optional<bool> overwrite) {
            CopyItem(f.path_, Destination(to, f.path_), overwrite.value_or(true));
          }>(u"Copy")
          .Method<[](File& f, String to) {
            const fs::path target = Destination(to, f.path_);
            MoveItem(f.path_, target);
            f.path_ = target;
          }>(u"Move")
          .Method<[](File& f, std::optional<bool> force) {
            DeleteItem(f.path_, force.value_or(false));
          }>(u"Delete")
          .Method<[](File& f, std::optional<int32_t> mode, std::optional<int32_t> format) {
            return TextStream::Open(f.path_.string(), static_cast<IoMode>(mode.value_or(1)), false,
                                    static_cast<TextFormat>(format.value_or(0)));
          }>(u"OpenAsTextStream");
  return table;
}

const DispatchTable<Folder>& Folder::Table() {
  static const auto table =
      DispatchTable<Folder>(u"Folder")
          .Property(u"Path", [](Folder& f, Args) { return Variant(ScriptPath(f.path_)); })
          .Default(u"Path")
          .Property(
              u"Name", [](Folder& f, Args) { return Variant(NameOf(f.path_)); },
              [](Folder& f, Args, const Variant& v) { Rename(f.path_, v); })
          .Property(u"ShortName", [](Folder& f, Args) { return Variant(NameOf(f.path_)); })
          .Property(u"ShortPath", [](Folder& f, Args) { return Variant(ScriptPath(f.path_)); })
          .Property(u"ParentFolder", [](Folder& f, Args) { return ParentOf(f.path_); })
          .Property(u"Drive", [](Folder&, Args) { return Variant(MakeRef<Drive>()); })
          .Property(u"IsRootFolder",
                    [](Folder& f, Args) { return Variant(f.path_ == f.path_.root_path()); })
          .Property(u"Size", [](Folder& f, Args) { return SizeValue(TreeSize(f.path_)); })
          .Property(u"Type", [](Folder&, Args) { return Variant(String(u"File folder")); })
          .Property(
              u"Attributes", [](Folder& f, Args) { return Variant(AttributesOf(f.path_)); },
              [](Folder& f, Args, const Variant& v) {
                SetReadOnly(f.path_, ToLong(v) & kReadOnly);
              })
          .Property(u"DateCreated", [](Folder& f, Args) { return DateOf(f.path_); })
          .Property(u"DateLastModified", [](Folder& f, Args) { return DateOf(f.path_); })
          .Property(u"DateLastAccessed", [](Folder& f, Args) { return DateOf(f.path_); })
          .Property(u"Files",
                    [](Folder& f, Args a) {
                      return ApplyArgs(Variant(MakeRef<FileList>(f.path_, false)), a);
                    })
          .Property(u"SubFolders",
                    [](Folder& f, Args a) {
                      return ApplyArgs(Variant(MakeRef<FileList>(f.path_, true)), a);
                    })
          .Method<[](Folder& f, String to, std::optional<bool> overwrite) {
            CopyItem(f.path_, Destination(to, f.path_), overwrite.value_or(true));
          }>(u"Copy")
          .Method<[](Folder& f, String to) {
            const fs::path target = Destination(to, f.path_);
            MoveItem(f.path_, target);
            f.path_ = target;
          }>(u"Move")
          .Method<[](Folder& f, std::optional<bool> force) {
            DeleteItem(f.path_, force.value_or(false));
          }>(u"Delete")
          .Method<[](Folder& f, String name, std::optional<bool> overwrite,
                     std::optional<bool> unicode) {
            const fs::path p = f.path_ / NativePath(name);
            std::error_code ec;
            if (!overwrite.value_or(true) && fs::exists(p, ec)) Raise(kErrFileExists);
            const auto format = unicode.value_or(false) ? TextFormat::Unicode : TextFormat::Ascii;
            return TextStream::Open(p.string(), IoMode::Writing, true, format);
          }>(u"CreateTextFile");
  return table;
}

FileList::FileList(fs::path folder, bool folders) : folder_(std::move(folder)), folders_(folders) {}

std::vector<fs::path> FileList::Scan() const {
  std::vector<fs::path> entries;
  std::error_code ec;
  for (const auto& entry : fs::directory_iterator(folder_, ec)) {
    std::error_code type_ec;
    if (entry.is_directory(type_ec) == folders_) entries.push_back(entry.path());
  }
  // NTFS lists a folder in upper-case order, so "a.txt" comes before "B.txt".
  std::sort(entries.begin(), entries.end(), [](const fs::path& a, const fs::path& b) {
    const String x = NameOf(a), y = NameOf(b);
    const int order = CompareBinary(ToUpper(x), ToUpper(y));
    return order != 0 ? order < 0 : CompareBinary(x, y) < 0;
  });
  return entries;
}

Ref<Enumerator> FileList::NewEnum() {
  return MakeRef<PathEnumerator>(Scan(), folders_);
}

const DispatchTable<FileList>& FileList::Table() {
  static const auto table =
      DispatchTable<FileList>(u"Files")
          .Property<[](FileList& l, String name) {
            const fs::path p = l.folder_ / NativePath(name);
            std::error_code ec;
            if (fs::is_directory(p, ec) != l.folders_ || !fs::exists(p, ec))
              Raise(l.folders_ ? kErrPathNotFound : kErrFileNotFound);
            return l.folders_ ? Variant(MakeRef<Folder>(p)) : Variant(MakeRef<File>(p));
          }>(u"Item")
          .Default(u"Item")
          .Property(u"Count", [](FileList& l,
                                 Args) { return Variant(static_cast<int32_t>(l.Scan().size())); })
          .Method<[](FileList& l, String name) {
            if (!l.folders_) Raise(kErrNotSupported);
            const fs::path p = l.folder_ / NativePath(name);
            std::error_code ec;
            if (fs::exists(p, ec)) Raise(kErrFileExists);
            if (!fs::create_directory(p, ec)) Raise(kErrPermissionDenied);
            return MakeRef<Folder>(p);
          }>(u"Add");
  return table;
}

namespace {

Variant SpaceOf(bool free_only) {
  struct statvfs info {};
  if (statvfs("/", &info) != 0) return Variant(0.0);
  const double block = static_cast<double>(info.f_frsize);
  return Variant(block * static_cast<double>(free_only ? info.f_bavail : info.f_blocks));
}

}  // namespace

const DispatchTable<Drive>& Drive::Table() {
  static const auto table =
      DispatchTable<Drive>(u"Drive")
          .Property(u"Path", [](Drive&, Args) { return Variant(String(u"/")); })
          .Default(u"Path")
          .Property(u"DriveLetter", [](Drive&, Args) { return Variant(String()); })
          .Property(u"DriveType", [](Drive&, Args) { return Variant(int32_t{2}); })
          .Property(u"FileSystem", [](Drive&, Args) { return Variant(String(u"ext4")); })
          .Property(u"IsReady", [](Drive&, Args) { return Variant(true); })
          .Property(u"RootFolder", [](Drive&, Args) { return Variant(MakeRef<Folder>("/")); })
          .Property(u"VolumeName", [](Drive&, Args) { return Variant(String()); })
          .Property(u"ShareName", [](Drive&, Args) { return Variant(String()); })
          .Property(u"SerialNumber", [](Drive&, Args) { return Variant(int32_t{0}); })
          .Property(u"AvailableSpace", [](Drive&, Args) { return SpaceOf(true); })
          .Property(u"FreeSpace", [](Drive&, Args) { return SpaceOf(true); })
          .Property(u"TotalSize", [](Drive&, Args) { return SpaceOf(false); });
  return table;
}

namespace {

class DriveEnumerator : public Enumerator {
 public:
  bool Next(Variant& item) override {
    if (done_) return false;
    done_ = true;
    item = Variant(MakeRef<Drive>());
    return true;
  }
  void Reset() override { done_ = false; }

 private:
  bool done_ = false;
};

}  // namespace

Ref<Enumerator> DriveList::NewEnum() {
  return MakeRef<DriveEnumerator>();
}

const DispatchTable<DriveList>& DriveList::Table() {
  static const auto table =
      DispatchTable<DriveList>(u"Drives")
          .Property<[](DriveList&, String name) {
            if (name != u"/" && name != u"\\") Raise(68);  // "Device unavailable"
            return MakeRef<Drive>();
          }>(u"Item")
          .Default(u"Item")
          .Property(u"Count", [](DriveList&, Args) { return Variant(int32_t{1}); });
  return table;
}

}  // namespace qv::vbs
