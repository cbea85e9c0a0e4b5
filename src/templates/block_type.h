// The kinds of block a template is cut into, by the sign that follows the opening delimiter.
#pragma once

#include <cstdint>

namespace qv {

// NOLINTBEGIN(readability-identifier-naming): the names scripts and consumers know.
enum tyc_Block_Type : int32_t {
  tyc_Block_Script = 1,           // no sign: statements passed on as they stand
  tyc_Block_Function = 2,         // "=": an expression written to the output
  tyc_Block_FunctionIndent = 3,   // "~": the same, indented to the tag's column
  tyc_Block_Language = 4,         // "@": a phrase id resolved at translation time
  tyc_Block_LanguageDynamic = 5,  // "$": an expression giving a phrase id at run time
  tyc_Block_Content = 6,          // literal text between tags
};
// NOLINTEND(readability-identifier-naming)

}  // namespace qv
