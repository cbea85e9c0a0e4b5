// Unpacking zip packages (templates and extensions) with libzip. A package is untrusted input:
// an entry whose path would leave the target folder (absolute, "..", a symbolic link) refuses
// the whole package, and so does one that unpacks to more than the limits allow. Everything is
// unpacked into a staging folder first and moved into place only when the whole package came
// out, so a refused or damaged package leaves the target folder as it was.
#pragma once

#include <cstdint>

#include "automation/string.h"

namespace qv {

struct UnzipLimits {
  // What one package may unpack to, counted in real bytes written, not in what the package
  // claims: a template package is a few megabytes, so these only stop a zip bomb.
  uint64_t max_total_bytes = uint64_t{512} << 20;
  uint32_t max_entries = 50000;
};

struct UnzipStats {
  uint32_t files = 0;  // files written
  uint64_t bytes = 0;  // their bytes
};

// Unpacks `zip_file` into `folder` (created when missing), overwriting files of the same name
// and creating sub-folders. Raises an Error of number -1 whose words say what was wrong with the
// package; nothing in `folder` changes then.
UnzipStats UnpackZip(StringView zip_file, StringView folder, const UnzipLimits& limits = {});

}  // namespace qv
