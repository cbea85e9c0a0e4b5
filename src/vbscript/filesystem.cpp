// Scripting.FileSystemObject: the path functions work on text alone; everything else goes to
// std::filesystem through the objects of file_objects.h.
#include "vbscript/filesystem.h"

#include <fnmatch.h>

#include <cstdlib>
#include <optional>
#include <random>

#include "automation/convert.h"
#include "vbscript/file_objects.h"
#include "vbscript/runtime_lib.h"
#include "vbscript/text_stream.h"

namespace qv::vbs {

namespace fs = std::filesystem;

namespace {

bool IsSeparator(Char c) {
  return c == u'/' || c == u'\\';
}

// The path without trailing separators, but never less than a lone root separator.
StringView StripTrailing(StringView p) {
  while (p.size() > 1 && IsSeparator(p.back()))
    p.remove_suffix(1);
  return p;
}

size_t LastSeparator(StringView p) {
  for (size_t i = p.size(); i > 0; --i) {
    if (IsSeparator(p[i - 1])) return i - 1;
  }
  return StringView::npos;
}

// "C:" and the like: a drive name, which paths written for Windows may start with.
bool IsDriveName(StringView p) {
  return p.size() == 2 && p[1] == u':' &&
         ((p[0] >= u'A' && p[0] <= u'Z') || (p[0] >= u'a' && p[0] <= u'z'));
}

String FileNameOf(StringView path) {
  const StringView p = StripTrailing(path);
  if (p.size() == 1 && IsSeparator(p[0])) return {};
  if (IsDriveName(p)) return {};
  const size_t at = LastSeparator(p);
  return String(at == StringView::npos ? p : p.substr(at + 1));
}

// The path up to its last name, with the separators it was written with; a drive keeps the
// separator after it ("C:\a" gives "C:\").
String ParentOf(StringView path) {
  const StringView p = StripTrailing(path);
  size_t end = LastSeparator(p);
  if (end == StringView::npos || p.size() == 1) return {};
  while (end > 0 && IsSeparator(p[end - 1]))
    --end;
  if (end == 0) return String(p.substr(0, 1));
  if (IsDriveName(p.substr(0, end))) return String(p.substr(0, end + 1));
  return String(p.substr(0, end));
}

// "C:" of "C:\x", "\\server\share" of a network path, else nothing: Linux has no drives.
String DriveNameOf(StringView p) {
  if (p.size() >= 2 && IsDriveName(p.substr(0, 2))) return String(p.substr(0, 2));
  if (p.size() < 3 || !IsSeparator(p[0]) || !IsSeparator(p[1])) return {};
  size_t at = 2;
  while (at < p.size() && !IsSeparator(p[at]))
    ++at;
  if (at >= p.size()) return {};
  ++at;
  while (at < p.size() && !IsSeparator(p[at]))
    ++at;
  return String(p.substr(0, at));
}

String BaseNameOf(StringView path) {
  const String name = FileNameOf(path);
  const size_t dot = name.view().rfind(u'.');
  return dot == StringView::npos ? name : String(name.view().substr(0, dot));
}

String ExtensionOf(StringView path) {
  const String name = FileNameOf(path);
  const size_t dot = name.view().rfind(u'.');
  return dot == StringView::npos ? String() : String(name.view().substr(dot + 1));
}

// Joins with one separator between: the kind the path already uses ("/" when it has none),
// none after a bare drive name, and one fewer when both sides bring their own.
String BuildPath(StringView path, StringView name) {
  if (path.empty()) return String(name);
  if (name.empty()) return String(path);
  const bool path_ends = IsSeparator(path.back());
  const bool name_starts = IsSeparator(name[0]);
  if (path_ends && name_starts) return path + name.substr(1);
  if (path_ends || name_starts || IsDriveName(path)) return path + name;
  const size_t last = LastSeparator(path);
  const StringView separator = last != StringView::npos && path[last] == u'\\' ? u"\\" : u"/";
  return path + separator + name;
}

bool HasWildcard(const fs::path& p) {
  const std::string name = p.filename().string();
  return name.find_first_of("*?") != std::string::npos;
}

// The paths a source names: itself, or with "*" and "?" in its last part every match in its
// folder. Raises `missing` when nothing matches.
std::vector<fs::path> Sources(const fs::path& source, bool folders, int32_t missing) {
  std::error_code ec;
  std::vector<fs::path> out;
  if (!HasWildcard(source)) {
    const bool found = folders ? fs::is_directory(source, ec)
                               : fs::exists(source, ec) && !fs::is_directory(source, ec);
    if (!found) {
      const fs::path parent = source.parent_path();
      if (!parent.empty() && !fs::is_directory(parent, ec)) Raise(kErrPathNotFound);
      Raise(missing);
    }
    out.push_back(source);
    return out;
  }
  const fs::path folder = source.parent_path().empty() ? fs::path(".") : source.parent_path();
  const std::string pattern = source.filename().string();
  if (!fs::is_directory(folder, ec)) Raise(kErrPathNotFound);
  for (const auto& entry : fs::directory_iterator(folder, ec)) {
    std::error_code type_ec;
    if (entry.is_directory(type_ec) != folders) continue;
    if (fnmatch(pattern.c_str(), entry.path().filename().c_str(), 0) == 0)
      out.push_back(entry.path());
  }
  if (out.empty()) Raise(missing);
  return out;
}

// Where a source goes: into `dest` when it ends with a separator or the source had wildcards
// (the destination is then a folder), else onto `dest` itself.
fs::path Target(const String& dest, const fs::path& source, bool many) {
  const fs::path d = NativePath(dest);
  const bool folder = !dest.empty() && IsSeparator(dest.view().back());
  if (folder || many) return d / source.filename();
  return d;
}

void CopyFiles(StringView from, const String& dest, bool overwrite, bool folders) {
  const fs::path source = NativePath(from);
  const auto sources = Sources(source, folders, folders ? kErrPathNotFound : kErrFileNotFound);
  const bool many = HasWildcard(source);
  std::error_code folder_ec;
  // Wildcards copy into a folder that must already be there.
  if (many && !fs::is_directory(NativePath(dest), folder_ec)) Raise(kErrPathNotFound);
  for (const fs::path& s : sources) {
    const fs::path to = Target(dest, s, many);
    std::error_code ec;
    if (!folders && fs::is_directory(to, ec)) Raise(kErrPermissionDenied);
    CopyItem(s, to, overwrite);
  }
}

void MoveFiles(StringView from, const String& dest, bool folders) {
  const fs::path source = NativePath(from);
  const auto sources = Sources(source, folders, folders ? kErrPathNotFound : kErrFileNotFound);
  const bool many = HasWildcard(source);
  std::error_code folder_ec;
  if (many && !fs::is_directory(NativePath(dest), folder_ec)) Raise(kErrPathNotFound);
  for (const fs::path& s : sources)
    MoveItem(s, Target(dest, s, many));
}

void DeleteFiles(StringView path, bool force, bool folders) {
  const fs::path source = NativePath(path);
  for (const fs::path& p : Sources(source, folders, folders ? kErrPathNotFound : kErrFileNotFound))
    DeleteItem(p, force);
}

Variant OpenTextFile(StringView path, std::optional<int32_t> io_mode, std::optional<bool> create,
                     std::optional<int32_t> text_format) {
  const fs::path p = NativePath(path);
  const int32_t mode = io_mode.value_or(1);
  if (mode != 1 && mode != 2 && mode != 8) Raise(kErrInvalidCall);
  const int32_t format = text_format.value_or(0);
  if (format < -2 || format > 0) Raise(kErrInvalidCall);
  return Variant(TextStream::Open(p.string(), static_cast<IoMode>(mode), create.value_or(false),
                                  static_cast<TextFormat>(format)));
}

Variant CreateTextFile(StringView path, std::optional<bool> overwrite,
                       std::optional<bool> unicode) {
  const fs::path p = NativePath(path);
  std::error_code ec;
  if (!overwrite.value_or(true) && fs::exists(p, ec)) Raise(kErrFileExists);
  const auto format = unicode.value_or(false) ? TextFormat::Unicode : TextFormat::Ascii;
  return Variant(TextStream::Open(p.string(), IoMode::Writing, true, format));
}

Variant CreateFolder(StringView path) {
  const fs::path p = NativePath(path);
  std::error_code ec;
  if (fs::exists(p, ec)) Raise(kErrFileExists);
  const fs::path parent = p.parent_path();
  if (!parent.empty() && !fs::is_directory(parent, ec)) Raise(kErrPathNotFound);
  if (!fs::create_directory(p, ec)) Raise(kErrPermissionDenied);
  return Variant(MakeRef<Folder>(p));
}

String TempFolder() {
  const char* tmp = std::getenv("TMPDIR");
  return String::FromUtf8(tmp && *tmp ? tmp : "/tmp");
}

Variant SpecialFolder(int32_t which) {
  switch (which) {
    case 0:  // the system's own folder
      return Variant(MakeRef<Folder>("/usr"));
    case 1:  // its libraries
      return Variant(MakeRef<Folder>("/usr/lib"));
    case 2:
      return Variant(MakeRef<Folder>(NativePath(TempFolder())));
    default:
      Raise(kErrInvalidCall);
  }
}

String TempName() {
  static std::minstd_rand generator(std::random_device{}());
  const uint32_t n = generator() & 0xFFFFF;
  char buf[16];
  std::snprintf(buf, sizeof buf, "rad%05X.tmp", n);
  return String::FromUtf8(buf);
}

bool DriveNameOk(const String& name) {
  return name == u"/" || name == u"\\";
}

}  // namespace

const DispatchTable<FileSystemObject>& FileSystemObject::Table() {
  using F = FileSystemObject;
  static const auto table =
      DispatchTable<F>(u"FileSystemObject")
          .Method<[](F&, String path, String name) { return BuildPath(path, name); }>(u"BuildPath")
          .Method<[](F&, String path) { return ScriptPath(NativePath(path)); }>(
              u"GetAbsolutePathName")
          .Method<[](F&, String path) { return BaseNameOf(path); }>(u"GetBaseName")
          .Method<[](F&, String path) { return ExtensionOf(path); }>(u"GetExtensionName")
          .Method<[](F&, String path) { return FileNameOf(path); }>(u"GetFileName")
          .Method<[](F&, String path) { return ParentOf(path); }>(u"GetParentFolderName")
          .Method<[](F&, String path) { return DriveNameOf(path); }>(u"GetDriveName")
          .Method<[](F&, String path) {
            // Version resources belong to Windows executables; other files have none.
            std::error_code ec;
            const fs::path p = NativePath(path);
            if (!fs::exists(p, ec) || fs::is_directory(p, ec)) Raise(kErrFileNotFound);
            return String();
          }>(u"GetFileVersion")
          .Method<[](F&, int32_t which, std::optional<Variant> /*unicode*/) {
            if (which < 0 || 2 < which) Raise(kErrInvalidCall);
            return TextStream::Standard(which);
          }>(u"GetStandardStream")
          .Method<[](F&) { return TempName(); }>(u"GetTempName")
          .Method<[](F&, String path) {
            std::error_code ec;
            const fs::path p = NativePath(path);
            return fs::exists(p, ec) && !fs::is_directory(p, ec);
          }>(u"FileExists")
          .Method<[](F&, String path) {
            std::error_code ec;
            return fs::is_directory(NativePath(path), ec);
          }>(u"FolderExists")
          .Method<[](F&, String path) { return DriveNameOk(path); }>(u"DriveExists")
          .Method<[](F&, String path) {
            const fs::path p = NativePath(path);
            std::error_code ec;
            if (!fs::exists(p, ec) || fs::is_directory(p, ec)) Raise(kErrFileNotFound);
            return MakeRef<File>(fs::absolute(p, ec));
          }>(u"GetFile")
          .Method<[](F&, String path) {
            const fs::path p = NativePath(path);
            std::error_code ec;
            if (!fs::is_directory(p, ec)) Raise(kErrPathNotFound);
            return MakeRef<Folder>(fs::absolute(p, ec).lexically_normal());
          }>(u"GetFolder")
          .Method<[](F&, String path) {
            if (!DriveNameOk(path)) Raise(68);  // "Device unavailable"
            return MakeRef<Drive>();
          }>(u"GetDrive")
          .Property(u"Drives",
                    [](F&, Args a) { return ApplyArgs(Variant(MakeRef<DriveList>()), a); })
          .Method<[](F&, int32_t which) { return SpecialFolder(which); }>(u"GetSpecialFolder")
          .Method<[](F&, String path) { return CreateFolder(path); }>(u"CreateFolder")
          .Method<[](F&, String path, std::optional<bool> overwrite, std::optional<bool> unicode) {
            return CreateTextFile(path, overwrite, unicode);
          }>(u"CreateTextFile")
          .Method<[](F&, String path, std::optional<int32_t> mode, std::optional<bool> create,
                     std::optional<int32_t> format) {
            return OpenTextFile(path, mode, create, format);
          }>(u"OpenTextFile")
          .Method<[](F&, String from, String to, std::optional<bool> overwrite) {
            CopyFiles(from, to, overwrite.value_or(true), false);
          }>(u"CopyFile")
          .Method<[](F&, String from, String to, std::optional<bool> overwrite) {
            CopyFiles(from, to, overwrite.value_or(true), true);
          }>(u"CopyFolder")
          .Method<[](F&, String from, String to) { MoveFiles(from, to, false); }>(u"MoveFile")
          .Method<[](F&, String from, String to) { MoveFiles(from, to, true); }>(u"MoveFolder")
          .Method<[](F&, String path, std::optional<bool> force) {
            DeleteFiles(path, force.value_or(false), false);
          }>(u"DeleteFile")
          .Method<[](F&, String path, std::optional<bool> force) {
            DeleteFiles(path, force.value_or(false), true);
          }>(u"DeleteFolder");
  return table;
}

}  // namespace qv::vbs
