// The upload object and its files. The object copies the request's files when the page makes
// it, so that one kept beyond its request (in Session, say) never reads a request that is gone.
#include "asp/upload_object.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <memory>
#include <vector>

#include "asp/asp_error.h"
#include "asp/intrinsics.h"
#include "asp/site.h"
#include "asp/text_codec.h"
#include "automation/convert.h"
#include "platform/data/type_mapping.h"
#include "support/common.h"

namespace qv::asp {
namespace fs = std::filesystem;

namespace {

constexpr size_t kMaxNameBytes = 120;

[[noreturn]] void Refuse(std::string_view why) {
  RaiseAspError("Quorvex.Upload", "0001", why);
}

char Lower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

// The extension without its dot, in lower case; "" for a name without one.
std::string ExtensionOf(std::string_view name) {
  const size_t dot = name.rfind('.');
  if (dot == std::string_view::npos) return {};
  std::string ext(name.substr(dot + 1));
  std::transform(ext.begin(), ext.end(), ext.begin(), Lower);
  return ext;
}

bool IsNameChar(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '.' ||
         c == '-' || c == '_';
}

class UploadedFileObject : public DispatchObject<UploadedFileObject> {
 public:
  UploadedFileObject(std::shared_ptr<const UploadedFile> file, fs::path site_root, int code_page)
      : file_(std::move(file)), site_root_(std::move(site_root)), code_page_(code_page) {}

  static const DispatchTable<UploadedFileObject>& Table() {
    using F = UploadedFileObject;
    static const auto table =
        DispatchTable<F>(u"UploadedFile")
            .Property(u"Field", [](F& f, Args) { return f.Text(f.file_->field); })
            .Property(u"FileName", [](F& f, Args) { return f.Text(f.LastPart()); })
            .Property(u"SafeName", [](F& f, Args) { return f.Text(SafeFileName(f.LastPart())); })
            .Property(u"Extension",
                      [](F& f, Args) { return f.Text(ExtensionOf(SafeFileName(f.LastPart()))); })
            .Property(u"ContentType", [](F& f, Args) { return f.Text(f.file_->content_type); })
            .Property(u"Size",
                      [](F& f, Args) { return Variant(static_cast<double>(f.file_->data.size())); })
            .Property(u"Bytes",
                      [](F& f, Args) {
                        const auto* begin = reinterpret_cast<const uint8_t*>(f.file_->data.data());
                        return data::ByteArray({begin, f.file_->data.size()});
                      })
            .Method(u"SaveIn", [](F& f, Args a) {
              CheckArgCount(a, 1, 1);
              const fs::path folder(ToString(a[0]).ToUtf8());
              return f.Text(StoreUpload(f.site_root_, folder, f.LastPart(), f.file_->data));
            });
    return table;
  }

 private:
  Variant Text(std::string_view bytes) const { return Variant(DecodeText(bytes, code_page_)); }

  // Old browsers send the whole path of the file on the client.
  std::string_view LastPart() const {
    std::string_view name = file_->file_name;
    const size_t slash = name.find_last_of("/\\");
    return slash == std::string_view::npos ? name : name.substr(slash + 1);
  }

  std::shared_ptr<const UploadedFile> file_;
  fs::path site_root_;
  int code_page_;
};

class UploadObject : public DispatchObject<UploadObject> {
 public:
  UploadObject(const PageContext& c) : site_root_(c.site ? c.site->root() : fs::path()) {
    code_page_ = c.code_page;
    if (!c.request) return;
    for (const UploadedFile& f : c.request->files) {
      // A file input left empty still sends its part, with no name and no bytes.
      if (f.file_name.empty() && f.data.empty()) continue;
      files_.push_back(std::make_shared<const UploadedFile>(f));
    }
  }

  static const DispatchTable<UploadObject>& Table() {
    using U = UploadObject;
    static const auto table =
        DispatchTable<U>(u"Upload")
            .Property(u"Count",
                      [](U& u, Args) { return Variant(static_cast<int32_t>(u.files_.size())); })
            .Method(u"File", [](U& u, Args a) {
              CheckArgCount(a, 1, 1);
              return u.Find(a[0]);
            });
    return table;
  }

 private:
  // By the field's name (without regard to case, as Request.Form), or by place from 1.
  Variant Find(const Variant& which) {
    if (which.is_string()) {
      const String name = which.as_string();
      for (const auto& f : files_) {
        if (EqualsNoCase(DecodeText(f->field, code_page_), name)) return Make(f);
      }
      return Variant::Nothing();
    }
    const int32_t index = ToLong(which);
    if (index < 1 || static_cast<size_t>(index) > files_.size()) throw Error(kErrSubscript);
    return Make(files_[static_cast<size_t>(index - 1)]);
  }

  Variant Make(const std::shared_ptr<const UploadedFile>& f) const {
    return Variant(MakeRef<UploadedFileObject>(f, site_root_, code_page_));
  }

  std::vector<std::shared_ptr<const UploadedFile>> files_;
  fs::path site_root_;
  int code_page_ = PageContext::kUtf8CodePageDefault;
};

// Creates `path` only if nothing is there yet; false when the name is taken.
bool WriteNew(const fs::path& path, std::string_view data) {
  const int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
  if (fd < 0) {
    if (errno == EEXIST) return false;
    Refuse("Cannot create the file " + path.filename().string() + ": " + std::strerror(errno));
  }
  size_t done = 0;
  while (done < data.size()) {
    const ssize_t n = ::write(fd, data.data() + done, data.size() - done);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) {
      const int error = errno;
      ::close(fd);
      ::unlink(path.c_str());  // half a file is worse than none
      Refuse("Cannot write the file " + path.filename().string() + ": " + std::strerror(error));
    }
    done += static_cast<size_t>(n);
  }
  ::close(fd);
  return true;
}

}  // namespace

Ref<Object> NewUploadObject(const PageContext& context) {
  return MakeRef<UploadObject>(context);
}

std::string SafeFileName(std::string_view sent) {
  const size_t slash = sent.find_last_of("/\\");
  if (slash != std::string_view::npos) sent.remove_prefix(slash + 1);
  std::string out;
  for (const char c : sent) {
    if (IsNameChar(c)) {
      out += c;
    } else if (out.empty() || out.back() != '_') {
      out += '_';
    }
  }
  const size_t start = out.find_first_not_of(".-_");
  if (start == std::string::npos) return {};
  out.erase(0, start);
  while (!out.empty() && (out.back() == '.' || out.back() == '_'))
    out.pop_back();
  if (out.size() > kMaxNameBytes) {
    const std::string ext = ExtensionOf(out);
    const size_t keep = ext.size() + 1 < kMaxNameBytes / 2 ? ext.size() + 1 : 0;
    out = out.substr(0, kMaxNameBytes - keep) + (keep ? "." + ext : std::string());
  }
  return out;
}

bool IsServerFileName(std::string_view name) {
  // Every extension counts, not only the last: "shell.asp.jpg" is harmless here, but some
  // servers run it, and a name is stored once and may be served by anything later.
  static constexpr std::string_view kServerTypes[] = {
      "asp",    "asa",      "aspx", "asax", "ascx", "ashx", "asmx",  "axd",  "cer",  "cdx",
      "config", "htaccess", "htr",  "idc",  "inc",  "jsp",  "php",   "php3", "php4", "php5",
      "phtml",  "pl",       "py",   "cgi",  "sh",   "shtm", "shtml", "stm"};
  std::string lower(name);
  std::transform(lower.begin(), lower.end(), lower.begin(), Lower);
  size_t at = lower.find('.');
  while (at != std::string::npos) {
    const size_t next = lower.find('.', at + 1);
    const std::string_view part = std::string_view(lower).substr(
        at + 1, next == std::string::npos ? std::string::npos : next - at - 1);
    for (const std::string_view type : kServerTypes) {
      if (part == type) return true;
    }
    at = next;
  }
  return false;
}

namespace {

// Marks a folder below the root as one that receives uploads, so that the server runs no page
// that lands there by another way; the root itself never, which would stop every page.
void MarkUploadFolder(const fs::path& root, const fs::path& folder) {
  if (folder.lexically_normal() == root.lexically_normal()) return;
  const fs::path marker = folder / kUploadFolderMarker;
  std::error_code ec;
  if (fs::exists(marker, ec)) return;
  std::ofstream(marker) << "quorvex serve runs no page in this folder: it holds uploads.\n";
}

}  // namespace

std::string StoreUpload(const fs::path& site_root, const fs::path& folder, std::string_view sent,
                        std::string_view data) {
  const std::string name = SafeFileName(sent);
  if (name.empty()) Refuse("The file has no usable name.");
  if (IsServerFileName(name)) Refuse("Files of this type are never stored: " + name);
  std::error_code ec;
  const fs::path where = fs::weakly_canonical(folder, ec);
  const fs::path root = fs::weakly_canonical(site_root, ec);
  if (ec) Refuse("The upload folder does not exist.");
  const auto [end, _] = std::mismatch(root.begin(), root.end(), where.begin(), where.end());
  if (root.empty() || end != root.end()) Refuse("The upload folder lies outside the site.");
  // A folder of the site that nobody has stored into yet is made on the first upload.
  fs::create_directories(where, ec);
  if (!fs::is_directory(where, ec)) Refuse("The upload folder does not exist.");
  MarkUploadFolder(root, where);
  const size_t dot = name.rfind('.');
  const std::string stem = dot == std::string::npos ? name : name.substr(0, dot);
  const std::string ext = dot == std::string::npos ? std::string() : name.substr(dot);
  for (int n = 0; n < 10000; ++n) {
    const std::string candidate = n == 0 ? name : stem + "-" + std::to_string(n) + ext;
    if (WriteNew(where / candidate, data)) return candidate;
  }
  Refuse("Too many files of the name " + name + ".");
}

}  // namespace qv::asp
