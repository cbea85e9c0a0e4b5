// Zip unpacking over libzip, into a staging folder beside the target.
#include "platform/zip.h"

#include <sys/stat.h>
#include <zip.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "automation/error.h"
#include "platform/fs.h"

namespace qv {

namespace {

namespace sfs = std::filesystem;

[[noreturn]] void Refuse(StringView zip_file, std::string_view why) {
  throw Error::Failure(u"Package \"" + String(zip_file) + u"\" can't be unpacked: " +
                       String::FromUtf8(why));
}

struct ZipCloser {
  void operator()(zip_t* z) const { zip_discard(z); }
};
struct ZipFileCloser {
  void operator()(zip_file_t* f) const { zip_fclose(f); }
};

// The entry's path below the target, or nothing when it would leave the target. Backslashes
// count as separators, since packages made on Windows use them.
std::optional<sfs::path> SafeRelativePath(std::string name) {
  for (char& c : name) {
    if (c == '\\') c = '/';
  }
  if (name.empty() || name[0] == '/') return std::nullopt;
  if (name.size() >= 2 && name[1] == ':') return std::nullopt;  // a drive letter
  sfs::path relative;
  size_t start = 0;
  while (start <= name.size()) {
    size_t end = name.find('/', start);
    if (end == std::string::npos) end = name.size();
    const std::string part = name.substr(start, end - start);
    if (part == "..") return std::nullopt;
    if (part.find('\0') != std::string::npos) return std::nullopt;
    if (!part.empty() && part != ".") relative /= part;
    start = end + 1;
  }
  return relative;
}

bool IsSymbolicLink(zip_t* archive, zip_uint64_t index) {
  zip_uint8_t opsys = 0;
  zip_uint32_t attributes = 0;
  if (zip_file_get_external_attributes(archive, index, 0, &opsys, &attributes) != 0) return false;
  if (opsys != ZIP_OPSYS_UNIX) return false;
  return S_ISLNK(attributes >> 16);
}

sfs::path StagingFolder(const sfs::path& target) {
  std::random_device random;
  const sfs::path parent = target.parent_path();
  for (;;) {
    sfs::path candidate =
        parent / (".unpack-" + target.filename().string() + "-" + std::to_string(random()));
    if (!sfs::exists(candidate)) return candidate;
  }
}

// Moves every file of `from` into `to`, replacing files of the same name, creating folders.
void MoveInto(const sfs::path& from, const sfs::path& to) {
  sfs::create_directories(to);
  for (const sfs::directory_entry& item : sfs::directory_iterator(from)) {
    const sfs::path dest = to / item.path().filename();
    if (item.is_directory()) {
      if (sfs::exists(dest) && !sfs::is_directory(dest)) sfs::remove(dest);
      MoveInto(item.path(), dest);
    } else {
      if (sfs::is_directory(dest)) sfs::remove_all(dest);
      sfs::rename(item.path(), dest);
    }
  }
}

class Unpacker {
 public:
  Unpacker(StringView zip_file, const UnzipLimits& limits) : zip_file_(zip_file), limits_(limits) {}

  UnzipStats Run(const sfs::path& target) {
    Open();
    std::vector<std::pair<zip_uint64_t, sfs::path>> plan = Plan();
    const sfs::path staging = StagingFolder(target);
    try {
      sfs::create_directories(staging);
      for (const auto& [index, relative] : plan)
        Extract(index, staging, relative);
      MoveInto(staging, target);
    } catch (...) {
      std::error_code ignored;
      sfs::remove_all(staging, ignored);
      throw;
    }
    std::error_code ignored;
    sfs::remove_all(staging, ignored);
    return stats_;
  }

 private:
  void Open() {
    int code = 0;
    zip_t* archive = zip_open(fs::ToNative(zip_file_).c_str(), ZIP_RDONLY | ZIP_CHECKCONS, &code);
    if (!archive) {
      zip_error_t error;
      zip_error_init_with_code(&error, code);
      const std::string why = zip_error_strerror(&error);
      zip_error_fini(&error);
      Refuse(zip_file_, why);
    }
    archive_.reset(archive);
  }

  // Checks every entry before anything is written; an empty path means a folder entry.
  std::vector<std::pair<zip_uint64_t, sfs::path>> Plan() {
    const zip_int64_t count = zip_get_num_entries(archive_.get(), 0);
    if (count < 0) Refuse(zip_file_, "its directory can't be read");
    if (static_cast<uint64_t>(count) > limits_.max_entries) {
      Refuse(zip_file_, "it holds more than " + std::to_string(limits_.max_entries) + " entries");
    }
    std::vector<std::pair<zip_uint64_t, sfs::path>> plan;
    for (zip_uint64_t i = 0; i < static_cast<zip_uint64_t>(count); ++i) {
      const char* raw = zip_get_name(archive_.get(), i, ZIP_FL_ENC_GUESS);
      const std::string name = raw ? raw : "";
      const std::optional<sfs::path> relative = SafeRelativePath(name);
      if (!relative) Refuse(zip_file_, "the entry \"" + name + "\" points outside its folder");
      if (IsSymbolicLink(archive_.get(), i)) {
        Refuse(zip_file_, "the entry \"" + name + "\" is a link");
      }
      plan.emplace_back(i, name.ends_with('/') || name.ends_with('\\') ? sfs::path() : *relative);
      if (plan.back().second.empty() && !relative->empty()) {
        folders_.push_back(*relative);
      }
    }
    return plan;
  }

  void Extract(zip_uint64_t index, const sfs::path& staging, const sfs::path& relative) {
    if (relative.empty()) return;  // folders come with their files, or below
    const sfs::path out_path = staging / relative;
    sfs::create_directories(out_path.parent_path());
    std::unique_ptr<zip_file_t, ZipFileCloser> in(zip_fopen_index(archive_.get(), index, 0));
    if (!in)
      Refuse(zip_file_, std::string("an entry can't be read: ") + zip_strerror(archive_.get()));
    std::ofstream out(out_path, std::ios::binary | std::ios::trunc);
    if (!out) throw Error(kErrPermissionDenied);
    char buffer[64 * 1024];
    for (;;) {
      const zip_int64_t got = zip_fread(in.get(), buffer, sizeof buffer);
      if (got < 0) {
        Refuse(zip_file_, "the entry \"" + relative.generic_string() +
                              "\" is damaged: " + zip_file_strerror(in.get()));
      }
      if (got == 0) break;
      stats_.bytes += static_cast<uint64_t>(got);
      if (stats_.bytes > limits_.max_total_bytes) {
        Refuse(zip_file_,
               "it unpacks to more than " + std::to_string(limits_.max_total_bytes >> 20) + " MB");
      }
      out.write(buffer, got);
      if (!out) throw Error(kErrDeviceIo);
    }
    ++stats_.files;
  }

 public:
  void MakeFolders(const sfs::path& target) const {
    for (const sfs::path& folder : folders_)
      sfs::create_directories(target / folder);
  }

 private:
  String zip_file_;
  UnzipLimits limits_;
  std::unique_ptr<zip_t, ZipCloser> archive_;
  std::vector<sfs::path> folders_;
  UnzipStats stats_;
};

}  // namespace

UnzipStats UnpackZip(StringView zip_file, StringView folder, const UnzipLimits& limits) {
  if (!fs::FileExists(zip_file)) throw Error(kErrFileNotFound);
  const sfs::path target = fs::ToNative(folder);
  Unpacker unpacker(zip_file, limits);
  try {
    const UnzipStats stats = unpacker.Run(target);
    unpacker.MakeFolders(target);
    return stats;
  } catch (const sfs::filesystem_error& e) {
    Refuse(zip_file, e.what());
  }
}

}  // namespace qv
