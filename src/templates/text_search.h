// The searches the template syntax needs over large texts: the letter-free delimiters exactly,
// a delimiter followed by a keyword without regard to case, and the last occurrence of a word
// without regard to case. Positions are 0-based; npos when nothing is found.
#pragma once

#include <cstddef>
#include <cstdint>

#include "automation/string.h"

namespace qv::templates {

inline constexpr size_t kNotFound = StringView::npos;

// Exact search for one pattern. The scan looks for one anchor character of the pattern, eight
// characters at a time, and compares the whole pattern only where the anchor stands. The
// anchor is the pattern's first "#" (page text rarely holds one, every delimiter does), or its
// last character. Keeps a view of the pattern: give it text that outlives the finder.
class TextFinder {
 public:
  explicit TextFinder(StringView pattern);
  size_t Find(StringView text, size_t from) const;
  StringView pattern() const { return pattern_; }

 private:
  StringView pattern_;
  size_t anchor_ = 0;
};

// One-off exact search from `from`.
size_t FindText(StringView text, StringView pattern, size_t from);
// The finder's pattern (exact, letter-free) directly followed by `word` (without regard to
// case).
size_t FindTagWord(StringView text, const TextFinder& prefix, StringView word, size_t from);
// The last occurrence of `word` without regard to case, or kNotFound.
size_t FindLastNoCase(StringView text, StringView word);
// The last "\r\n" that lies wholly inside `text`.
size_t FindLastCrLf(StringView text);

}  // namespace qv::templates
