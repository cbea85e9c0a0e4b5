// Replacing a file in one step: the new bytes go to a temporary file beside the target, which
// is then renamed over it. A crash, a full disk or a failed copy leaves either the old file or
// the new one, never a file cut short; the temporary file is removed on failure.
#pragma once

#include <string_view>

#include "automation/string.h"

namespace qv::fs {

// Writes `bytes` as the whole content of `path`. Raises 76 when the folder is missing, 70 when
// the folder or file may not be written, 61 when the disk is full, 75 for anything else; the
// target is untouched then.
void WriteFileAtomically(StringView path, std::string_view bytes);

// Copies the file `from` over `to` the same way. Raises 53 when `from` is missing.
void CopyFileAtomically(StringView from, StringView to);

// Copies the folder `from` with all it holds into `to` (created as needed), each file replaced
// as above; files in `to` that `from` lacks stay.
void CopyFolderAtomically(StringView from, StringView to);

}  // namespace qv::fs
