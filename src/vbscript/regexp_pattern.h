// Reads a RegExp pattern by VBScript's own rules (JavaScript's first edition of regular
// expressions) and writes the PCRE2 pattern that matches exactly the same texts. Syntax that
// PCRE2 knows but VBScript does not (named groups, look-behind, possessive quantifiers,
// inline options, \p{...}) is refused or read literally, as VBScript reads it.
#pragma once

#include <string>

#include "automation/string.h"

namespace qv::vbs {

struct PatternTranslation {
  std::u16string pcre;  // the pattern for pcre2_compile, valid when error is 0
  int32_t error = 0;    // 5017-5021 for a pattern VBScript refuses
};

// `ignore_case` widens each letter beyond ASCII to its other case (PCRE2 folds ASCII itself);
// `multiline` lets "^" and "$" also match next to CR and LF.
PatternTranslation TranslatePattern(StringView pattern, bool ignore_case, bool multiline);

}  // namespace qv::vbs
