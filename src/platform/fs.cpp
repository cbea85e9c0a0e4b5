// Paths and folders over std::filesystem, with std::error_code results turned into the file
// errors that VBScript's FileSystemObject raises.
#include "platform/fs.h"

#include <algorithm>
#include <chrono>
#include <ctime>
#include <system_error>

#include "automation/date_time.h"
#include "automation/error.h"

namespace qv::fs {
namespace stdfs = std::filesystem;

namespace {

[[noreturn]] void Raise(const std::error_code& ec, int32_t missing_number) {
  if (ec == std::errc::no_such_file_or_directory || ec == std::errc::not_a_directory) {
    throw Error(missing_number);
  }
  if (ec == std::errc::permission_denied || ec == std::errc::operation_not_permitted) {
    throw Error(kErrPermissionDenied);
  }
  if (ec == std::errc::file_exists) throw Error(kErrFileExists);
  throw Error(kErrPathFileAccess);
}

std::vector<String> ListEntries(StringView folder, bool want_folders) {
  std::error_code ec;
  stdfs::directory_iterator it(ToNative(folder), ec);
  if (ec) Raise(ec, kErrPathNotFound);
  std::vector<String> out;
  for (const stdfs::directory_entry& entry : it) {
    std::error_code type_ec;
    const bool is_folder = entry.is_directory(type_ec);
    if (type_ec || is_folder != want_folders) continue;
    if (!want_folders && !entry.is_regular_file(type_ec)) continue;
    out.push_back(FromNative(entry.path()));
  }
  std::sort(out.begin(), out.end());
  return out;
}

}  // namespace

String NormalizeSeparators(StringView path) {
  String out(path);
  if (path.find(u'\\') == StringView::npos) return out;
  std::u16string copy(path);
  std::replace(copy.begin(), copy.end(), u'\\', u'/');
  return String(copy);
}

String WithTrailingSlash(StringView folder) {
  String out = NormalizeSeparators(folder);
  if (out.empty() || out.view().back() == u'/') return out;
  out.Append(u'/');
  return out;
}

String JoinPath(StringView folder, StringView name) {
  if (folder.empty()) return NormalizeSeparators(name);
  String out = WithTrailingSlash(folder);
  const String tail = NormalizeSeparators(name);
  StringView rest = tail.view();
  while (!rest.empty() && rest.front() == u'/')
    rest.remove_prefix(1);
  out.Append(rest);
  return out;
}

String FileNameOf(StringView path) {
  const String normal = NormalizeSeparators(path);
  const size_t slash = normal.view().rfind(u'/');
  return slash == StringView::npos ? normal : String(normal.view().substr(slash + 1));
}

String ParentFolderOf(StringView path) {
  const String normal = NormalizeSeparators(path);
  StringView view = normal.view();
  while (view.size() > 1 && view.back() == u'/')
    view.remove_suffix(1);
  const size_t slash = view.rfind(u'/');
  if (slash == StringView::npos) return String();
  if (slash == 0) return String(u"/");
  return String(view.substr(0, slash));
}

String ExtensionOf(StringView path) {
  const String name = FileNameOf(path);
  const size_t dot = name.view().rfind(u'.');
  return dot == StringView::npos ? String() : String(name.view().substr(dot + 1));
}

stdfs::path ToNative(StringView path) {
  return stdfs::path(NormalizeSeparators(path).ToUtf8());
}

String FromNative(const stdfs::path& path) {
  return String::FromUtf8(path.generic_string());
}

bool FileExists(StringView path) {
  if (path.empty()) return false;
  std::error_code ec;
  return stdfs::is_regular_file(ToNative(path), ec);
}

bool FolderExists(StringView path) {
  if (path.empty()) return false;
  std::error_code ec;
  return stdfs::is_directory(ToNative(path), ec);
}

void CreateFolder(StringView path) {
  const stdfs::path native = ToNative(path);
  std::error_code ec;
  if (stdfs::exists(native, ec)) throw Error(kErrFileExists);
  stdfs::create_directory(native, ec);
  if (ec) Raise(ec, kErrPathNotFound);
}

void CreateFolders(StringView path) {
  std::error_code ec;
  stdfs::create_directories(ToNative(path), ec);
  if (ec) Raise(ec, kErrPathNotFound);
}

void DeleteFile(StringView path) {
  if (!FileExists(path)) throw Error(kErrFileNotFound);
  std::error_code ec;
  stdfs::remove(ToNative(path), ec);
  if (ec) Raise(ec, kErrFileNotFound);
}

void DeleteFolder(StringView path) {
  if (!FolderExists(path)) throw Error(kErrPathNotFound);
  std::error_code ec;
  stdfs::remove_all(ToNative(path), ec);
  if (ec) Raise(ec, kErrPathNotFound);
}

void CopyFile(StringView from, StringView to, bool overwrite) {
  if (!FileExists(from)) throw Error(kErrFileNotFound);
  if (!overwrite && FileExists(to)) throw Error(kErrFileExists);
  std::error_code ec;
  stdfs::copy_file(ToNative(from), ToNative(to), stdfs::copy_options::overwrite_existing, ec);
  if (ec) Raise(ec, kErrPathNotFound);
}

void MoveFile(StringView from, StringView to) {
  if (!FileExists(from)) throw Error(kErrFileNotFound);
  if (FileExists(to) || FolderExists(to)) throw Error(kErrFileExists);
  std::error_code ec;
  stdfs::rename(ToNative(from), ToNative(to), ec);
  if (ec) Raise(ec, kErrPathNotFound);
}

int64_t FileSize(StringView path) {
  std::error_code ec;
  const auto size = stdfs::file_size(ToNative(path), ec);
  if (ec) Raise(ec, kErrFileNotFound);
  return static_cast<int64_t>(size);
}

double DateLastModified(StringView path) {
  std::error_code ec;
  const auto stamp = stdfs::last_write_time(ToNative(path), ec);
  if (ec) Raise(ec, kErrFileNotFound);
  const auto system = std::chrono::file_clock::to_sys(stamp);
  const std::time_t seconds = std::chrono::system_clock::to_time_t(system);
  std::tm local{};
  localtime_r(&seconds, &local);
  const auto day = DateFromParts(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday);
  if (!day) throw Error(kErrOverflow);
  return CombineDateTime(*day, TimeFromParts(local.tm_hour, local.tm_min, local.tm_sec));
}

std::vector<String> ListFiles(StringView folder) {
  return ListEntries(folder, false);
}

std::vector<String> ListFolders(StringView folder) {
  return ListEntries(folder, true);
}

}  // namespace qv::fs
