// Text helpers of the string family that other parts of the library share: the core of
// Replace and the ANSI code page of locale 1033 behind Asc, Chr and String.
#pragma once

#include <cstdint>

#include "automation/string.h"

namespace qv::vbs {

// The first position of `needle` in `hay` at or after `from`, or npos; several times faster
// than std::u16string_view::find, which scans unit by unit.
size_t FindText(StringView hay, StringView needle, size_t from);

// Replace's work once its arguments are checked: `start` is 1-based and at least 1, `count`
// -1 for all. Returns the text from `start` on, as Replace does.
String ReplaceText(StringView expr, StringView find, StringView with, int32_t start, int32_t count,
                   bool text_compare);

// Windows-1252 codes and characters; characters outside the code page give "?" (63).
Char AnsiToChar(uint8_t code);
int CharToAnsi(Char c);

}  // namespace qv::vbs
