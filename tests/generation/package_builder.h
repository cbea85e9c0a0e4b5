// Writes zip files for tests with libzip: a template package from a list of (name, text)
// entries, and the hostile kinds (paths that climb out, links, bombs) that the unpacker must
// refuse.
#pragma once

#include <zip.h>

#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace qv::testing {

struct ZipEntry {
  std::string name;
  std::string bytes;
  bool symlink = false;  // stored as a Unix symbolic link whose target is `bytes`
};

inline void WriteZip(const std::string& path, const std::vector<ZipEntry>& entries) {
  int code = 0;
  zip_t* archive = zip_open(path.c_str(), ZIP_CREATE | ZIP_TRUNCATE, &code);
  if (!archive) throw std::runtime_error("zip_open failed");
  for (const ZipEntry& e : entries) {
    // libzip reads the buffer when the archive closes: it gets a copy that it frees itself
    // (an empty entry needs none, and libzip wouldn't free one).
    void* data = nullptr;
    if (!e.bytes.empty()) {
      data = std::malloc(e.bytes.size());
      std::memcpy(data, e.bytes.data(), e.bytes.size());
    }
    zip_source_t* source = zip_source_buffer(archive, data, e.bytes.size(), data ? 1 : 0);
    const zip_int64_t index = zip_file_add(archive, e.name.c_str(), source, ZIP_FL_OVERWRITE);
    if (index < 0) throw std::runtime_error("zip_file_add failed");
    if (e.symlink) {
      zip_file_set_external_attributes(archive, index, 0, ZIP_OPSYS_UNIX, (0120777u) << 16);
    }
  }
  if (zip_close(archive) != 0) throw std::runtime_error("zip_close failed");
}

}  // namespace qv::testing
