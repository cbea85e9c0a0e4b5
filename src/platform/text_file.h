// Text files read and written whole. Reading honours a UTF-8 or UTF-16 byte order mark, takes
// text without one as UTF-8, and falls back to windows-1252 for bytes that are no UTF-8, so no
// character is lost. Writing gives UTF-8 without a mark.
#pragma once

#include <string>
#include <string_view>

#include "automation/string.h"

namespace qv {

// How line ends come out. Only CR LF counts as a line end in the engine's rules, so template
// and script sources edited on Linux get every lone LF turned into CR LF.
enum class LineEnds {
  kAsIs,
  kCrLf,
};

// Bytes of a file to text. A lone CR is left alone either way.
String DecodeText(std::string_view bytes, LineEnds line_ends = LineEnds::kAsIs);
// The text with every lone LF as CR LF, as the engine's line rules expect of text typed or
// edited on Linux.
String WithCrLfLineEnds(StringView text);
// Text to UTF-8 bytes, optionally with every lone LF written as CR LF.
std::string EncodeText(StringView text, LineEnds line_ends = LineEnds::kAsIs);

// Raises 53 when the file is missing, 70 when it can't be read.
String ReadTextFile(StringView path, LineEnds line_ends = LineEnds::kAsIs);
// Template and script sources: ReadTextFile with CR LF line ends.
inline String ReadSourceFile(StringView path) {
  return ReadTextFile(path, LineEnds::kCrLf);
}
// Creates or replaces the file; raises 76 when its folder is missing, 70 when it can't be
// written. Generated pages pass kCrLf.
void WriteTextFile(StringView path, StringView text, LineEnds line_ends = LineEnds::kAsIs);
void AppendTextFile(StringView path, StringView text, LineEnds line_ends = LineEnds::kAsIs);

}  // namespace qv
