// The searches the template syntax needs over large texts: the letter-free delimiters exactly,
// a delimiter followed by a keyword without regard to case, and the last occurrence of a word
// without regard to case. Positions are 0-based; npos when nothing is found.
#pragma once

#include <cstddef>

#include "automation/string.h"

namespace qv::templates {

inline constexpr size_t kNotFound = StringView::npos;

// Exact search from `from`, skipping ahead Horspool-style so that a megabyte of page text
// costs a fraction of a pass.
size_t FindText(StringView text, StringView pattern, size_t from);
// `prefix` (exact, letter-free) directly followed by `word` (without regard to case).
size_t FindTagWord(StringView text, StringView prefix, StringView word, size_t from);
// The last occurrence of `word` without regard to case, or kNotFound.
size_t FindLastNoCase(StringView text, StringView word);
// The last "\r\n" that lies wholly inside `text`.
size_t FindLastCrLf(StringView text);

}  // namespace qv::templates
