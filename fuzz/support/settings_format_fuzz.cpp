// Any bytes as a settings file: the reader refuses them with the line it stopped at, or reads
// a tree that the writer gives back as text that reads again to the same text. A hand-edited
// file is damaged in exactly these ways, and a save must never turn it into one that no longer
// loads.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "support/settings_format.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  std::string error;
  const auto tree = qv::ParseSettings(text, &error);
  if (!tree) {
    if (error.rfind("line ", 0) != 0) std::abort();
    return 0;
  }
  const std::string again = qv::FormatSettings(*tree, "");
  const auto reread = qv::ParseSettings(again, &error);
  if (!reread || qv::FormatSettings(*reread, "") != again) std::abort();
  return 0;
}
