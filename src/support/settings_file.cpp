// A settings tree file: cached parsing, change detection and atomic saving.
#include "support/settings_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <system_error>

#include "support/settings_format.h"
#include "support/status.h"
#include "support/tyx_vars.h"

namespace qv {

namespace {

void Report(const std::string& message) {
  // A status line on the terminal would run into the message: take it away first.
  if (auto* status = dynamic_cast<TyxStatus*>(Vars().Status.get())) status->SuspendLine();
  std::fprintf(stderr, "Quorvex: %s\n", message.c_str());
}

// The file's bytes; the result is 0 or the errno of the failure.
int ReadWholeFile(const std::filesystem::path& path, std::string& text) {
  const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) return errno;
  char buffer[16384];
  int error = 0;
  while (true) {
    const ssize_t n = ::read(fd, buffer, sizeof buffer);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) error = errno;
    if (n <= 0) break;
    text.append(buffer, static_cast<size_t>(n));
  }
  ::close(fd);
  return error;
}

}  // namespace

SettingsFile::SettingsFile(std::filesystem::path path, bool read_only, std::string header)
    : path_(std::move(path)), read_only_(read_only), header_(std::move(header)) {}

SettingsFile::Stamp SettingsFile::CurrentStamp() const {
  struct stat st;
  Stamp stamp;
  if (::stat(path_.c_str(), &st) != 0) return stamp;
  stamp.exists = true;
  stamp.device = st.st_dev;
  stamp.inode = st.st_ino;
  stamp.size = st.st_size;
  stamp.mtime_ns = static_cast<int64_t>(st.st_mtim.tv_sec) * 1000000000 + st.st_mtim.tv_nsec;
  stamp.ctime_ns = static_cast<int64_t>(st.st_ctim.tv_sec) * 1000000000 + st.st_ctim.tv_nsec;
  return stamp;
}

const SettingsTree& SettingsFile::Tree() {
  const Stamp stamp = CurrentStamp();
  if (!loaded_ || !(stamp == stamp_)) Load(stamp);
  return tree_;
}

void SettingsFile::Load(const Stamp& stamp) {
  loaded_ = true;
  stamp_ = stamp;
  tree_ = SettingsTree();
  damaged_ = false;
  if (!stamp.exists) return;
  std::string text;
  if (const int error = ReadWholeFile(path_, text); error != 0) {
    damaged_ = true;
    Report("cannot read the settings file " + path_.string() + " (" + std::strerror(error) +
           "); its settings are taken as empty.");
    return;
  }
  std::string error;
  std::optional<SettingsTree> tree = ParseSettings(text, &error);
  if (!tree) {
    damaged_ = true;
    Report("the settings file " + path_.string() + " is damaged (" + error +
           "); its settings are taken as empty, and the file is left as it is until settings "
           "are saved.");
    return;
  }
  tree_ = std::move(*tree);
}

SettingsFile::SaveResult SettingsFile::Update(const std::function<bool(SettingsTree&)>& change) {
  if (read_only_) return SaveResult::kRefused;
  SettingsTree next = Tree();
  if (!change(next)) return SaveResult::kUnchanged;
  if (damaged_) {
    std::filesystem::path aside = path_;
    aside += ".damaged";
    std::error_code ec;
    std::filesystem::rename(path_, aside, ec);
    if (ec) {
      Report("cannot keep the damaged settings file " + path_.string() + " aside (" + ec.message() +
             "); nothing is saved.");
      return SaveResult::kRefused;
    }
    Report("the damaged settings file is kept as " + aside.string() + ".");
    damaged_ = false;
  }
  if (!WriteAtomically(FormatSettings(next, header_))) return SaveResult::kRefused;
  tree_ = std::move(next);
  stamp_ = CurrentStamp();
  return SaveResult::kSaved;
}

bool SettingsFile::WriteAtomically(const std::string& text) {
  std::error_code ec;
  std::filesystem::create_directories(path_.parent_path(), ec);
  std::string temp = path_.string() + ".XXXXXX";
  const int fd = ::mkstemp(temp.data());
  if (fd < 0) {
    Report("cannot write the settings file " + path_.string() + " (" + std::strerror(errno) + ").");
    return false;
  }
  size_t written = 0;
  bool ok = true;
  while (ok && written < text.size()) {
    const ssize_t n = ::write(fd, text.data() + written, text.size() - written);
    if (n < 0 && errno == EINTR) continue;
    ok = n > 0;
    if (ok) written += static_cast<size_t>(n);
  }
  // No fsync: it made each save cost ~10 ms (SaveDefault writes ~80 values). The rename alone
  // keeps a crash of the program from leaving a mix of old and new, and ext4 flushes a file
  // that replaces another by rename before the rename itself reaches the disk.
  const int saved_errno = errno;
  ok = (::close(fd) == 0) && ok;
  if (ok && ::rename(temp.c_str(), path_.c_str()) == 0) return true;
  Report("cannot write the settings file " + path_.string() + " (" +
         std::strerror(ok ? errno : saved_errno) + ").");
  ::unlink(temp.c_str());
  return false;
}

}  // namespace qv
