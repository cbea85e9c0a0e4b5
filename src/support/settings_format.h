// The text form of a settings tree, one file per tree. It reads like an INI file:
//
//   ; comment (also "#")
//   [Software\Quorvex\5.3\Settings]     a key, by its full path; "[]" is the root itself
//   BodyFont = "Arial"                  type 1, text
//   UploadPath = expand:"%HOME%/up"     type 2, text whose %VARIABLES% expand on reading
//   Blob = hex:01,ff,20                 type 3, bytes in hexadecimal
//   CodePage = dword:65001              type 4, a signed 32-bit number (0x... also reads)
//   Swapped = dword-be:16               type 5, the number; its bytes are stored reversed
//   Names = multi:"a","b"               type 7, texts ("multi:" alone holds none)
//   Odd = hex(11):01,02                 any other type number, as bytes
//   "Odd name=" = "x"                   a value name that is not a plain word, quoted
//   @ = "x"                             the key's default value (the empty name)
//
// In quoted texts: \\ \" \r \n \t, \0 for NUL and \uXXXX for any UTF-16 unit. Blanks around
// "=" and after "," don't count. Each key is written as a section of its own, parents first,
// so empty keys survive; value names and keys keep their order.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "support/settings_tree.h"

namespace qv {

// The lines of comment that describe the format, for the head of a written file.
std::string_view SettingsFormatHelp();

// Reads a settings file's text (UTF-8, a BOM allowed). On a fault: nothing, and `error` says
// where ("line 12: ...").
std::optional<SettingsTree> ParseSettings(std::string_view text, std::string* error);

// The text of a tree, after `header` (comment lines, each starting with ";").
std::string FormatSettings(const SettingsTree& tree, std::string_view header);

}  // namespace qv
