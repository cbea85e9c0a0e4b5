// Quorvex.Journal: appends whole lines to a log file that several requests, workers and
// processes write at once, such as an application's audit trail.
//
//   Append(path, line)   adds `line` and a CR LF at the end of the file at `path` (a full path,
//                        as Server.MapPath gives it), making the file and its folder if needed
//
// Each line is one write() of the whole line on a descriptor opened with O_APPEND, then
// fdatasync. The kernel places such a write at the end of the file as one piece, so lines of
// concurrent writers never interleave, and a page or process that dies mid-way leaves the line
// whole or absent, never half. FileSystemObject's text streams can promise neither: they write
// through a buffer, in as many pieces as it takes. (Rewriting a temporary copy and renaming it
// would be whole too, but costs a copy of the log per line and loses lines of racing writers.)
//
// A line may not hold CR or LF (error 5): one change is one line, whatever it carries, so the
// caller escapes line ends itself.
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <string>

#include "asp/server_classes.h"
#include "automation/dispatch.h"

namespace qv::asp {

namespace {

class JournalObject : public DispatchObject<JournalObject> {
 public:
  static const DispatchTable<JournalObject>& Table() {
    static const auto table =
        DispatchTable<JournalObject>(u"Journal").Method<&JournalObject::Append>(u"Append");
    return table;
  }

  void Append(StringView path, StringView line) const {
    for (const char16_t c : line)
      if (c == u'\r' || c == u'\n') throw Error(kErrInvalidCall);
    const std::filesystem::path file(String::ToUtf8(path));
    if (file.empty() || !file.is_absolute() || !file.has_filename())
      throw Error(kErrBadFileNameOrNumber);
    std::error_code ec;
    std::filesystem::create_directories(file.parent_path(), ec);
    const int fd = open(file.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0640);
    if (fd < 0) throw Error(errno == EACCES ? kErrPermissionDenied : kErrPathFileAccess);
    const std::string bytes = String::ToUtf8(line) + "\r\n";
    ssize_t written;
    do {
      written = write(fd, bytes.data(), bytes.size());
    } while (written < 0 && errno == EINTR);
    const bool whole = written == static_cast<ssize_t>(bytes.size()) && fdatasync(fd) == 0;
    close(fd);
    // A short write happens only on a full disk; the page learns of it as of any failed write.
    if (!whole) throw Error(kErrDeviceIo);
  }
};

}  // namespace

void RegisterJournalClass(vbs::ClassRegistry& registry) {
  registry.Register(u"Quorvex.Journal", [] { return Ref<Object>(MakeRef<JournalObject>()); });
}

}  // namespace qv::asp
