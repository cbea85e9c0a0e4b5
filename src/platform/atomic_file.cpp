// Whole-file replacement through a temporary file and rename(2), which POSIX makes atomic
// within one file system; the temporary file therefore lives in the target's own folder.
#include "platform/atomic_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <string>

#include "automation/error.h"
#include "platform/fs.h"

namespace qv::fs {
namespace stdfs = std::filesystem;

namespace {

constexpr int32_t kErrDiskFull = 61;

[[noreturn]] void RaiseErrno(int err) {
  switch (err) {
    case ENOENT:
    case ENOTDIR:
      throw Error(kErrPathNotFound);
    case EACCES:
    case EPERM:
    case EROFS:
    case EISDIR:
      throw Error(kErrPermissionDenied);
    case ENOSPC:
    case EDQUOT:
      throw Error(kErrDiskFull);
    default:
      throw Error(kErrPathFileAccess);
  }
}

// An open temporary file that is removed unless it was renamed into place.
class TempFile {
 public:
  explicit TempFile(const stdfs::path& target) {
    name_ = target.parent_path() / ("." + target.filename().string() + ".qvtmp-XXXXXX");
    std::string pattern = name_.string();
    fd_ = ::mkstemp(pattern.data());
    if (fd_ < 0) RaiseErrno(errno);
    name_ = pattern;
  }
  ~TempFile() {
    if (fd_ >= 0) ::close(fd_);
    if (!committed_) ::unlink(name_.c_str());
  }
  TempFile(const TempFile&) = delete;
  TempFile& operator=(const TempFile&) = delete;

  void Write(std::string_view bytes) {
    while (!bytes.empty()) {
      const ssize_t n = ::write(fd_, bytes.data(), bytes.size());
      if (n < 0) {
        if (errno == EINTR) continue;
        RaiseErrno(errno);
      }
      bytes.remove_prefix(static_cast<size_t>(n));
    }
  }

  // mkstemp gives 0600, but a generated page is read by a web server under another account:
  // a replaced file keeps its mode, a new one gets 0644. (Asking for the umask would change
  // it for every thread of the process for a moment.)
  void Commit(const stdfs::path& target) {
    struct stat old {};
    ::fchmod(fd_, ::stat(target.c_str(), &old) == 0 ? (old.st_mode & 07777) : 0644);
    const int fd = fd_;
    fd_ = -1;
    if (::close(fd) != 0) RaiseErrno(errno);
    if (::rename(name_.c_str(), target.c_str()) != 0) RaiseErrno(errno);
    committed_ = true;
  }

 private:
  stdfs::path name_;
  int fd_ = -1;
  bool committed_ = false;
};

}  // namespace

void WriteFileAtomically(StringView path, std::string_view bytes) {
  const stdfs::path target = ToNative(path);
  if (stdfs::is_directory(target)) throw Error(kErrPermissionDenied);
  TempFile temp(target);
  temp.Write(bytes);
  temp.Commit(target);
}

void CopyFileAtomically(StringView from, StringView to) {
  const stdfs::path source = ToNative(from);
  const int in = ::open(source.c_str(), O_RDONLY | O_CLOEXEC);
  if (in < 0) {
    if (errno == ENOENT) throw Error(kErrFileNotFound);
    RaiseErrno(errno);
  }
  struct Closer {
    int fd;
    ~Closer() { ::close(fd); }
  } closer{in};
  const stdfs::path target = ToNative(to);
  if (stdfs::is_directory(target)) throw Error(kErrPermissionDenied);
  TempFile temp(target);
  char buffer[1 << 16];
  for (;;) {
    const ssize_t n = ::read(in, buffer, sizeof buffer);
    if (n < 0) {
      if (errno == EINTR) continue;
      RaiseErrno(errno);
    }
    if (n == 0) break;
    temp.Write(std::string_view(buffer, static_cast<size_t>(n)));
  }
  temp.Commit(target);
}

void CopyFolderAtomically(StringView from, StringView to) {
  const stdfs::path source = ToNative(from);
  if (!stdfs::is_directory(source)) throw Error(kErrPathNotFound);
  const stdfs::path target = ToNative(to);
  std::error_code ec;
  stdfs::create_directories(target, ec);
  if (ec) RaiseErrno(ec.value());
  try {
    for (const auto& entry : stdfs::recursive_directory_iterator(source)) {
      const stdfs::path rel = entry.path().lexically_relative(source);
      if (entry.is_directory()) {
        stdfs::create_directories(target / rel, ec);
        if (ec) RaiseErrno(ec.value());
      } else if (entry.is_regular_file()) {
        CopyFileAtomically(FromNative(entry.path()), FromNative(target / rel));
      }
    }
  } catch (const stdfs::filesystem_error& e) {
    RaiseErrno(e.code().value());
  }
}

}  // namespace qv::fs
