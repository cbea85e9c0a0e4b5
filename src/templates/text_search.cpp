// Horspool search with a skip table indexed by the low byte of a character. Characters that
// share a low byte share an entry holding the smallest of their skips, which keeps every skip
// safe for all of UTF-16 with a 256-entry table.
#include "templates/text_search.h"

#include <algorithm>
#include <array>

namespace qv::templates {

size_t FindText(StringView text, StringView pattern, size_t from) {
  const size_t m = pattern.size();
  if (m == 0) return from <= text.size() ? from : kNotFound;
  if (from >= text.size() || text.size() - from < m) return kNotFound;
  std::array<uint8_t, 256> skip;
  const size_t most = std::min<size_t>(m, 255);
  skip.fill(static_cast<uint8_t>(most));
  for (size_t i = 0; i + 1 < m; ++i) {
    uint8_t& entry = skip[pattern[i] & 0xFF];
    entry = static_cast<uint8_t>(std::min<size_t>(entry, m - 1 - i));
  }
  const Char last = pattern[m - 1];
  size_t i = from;
  const size_t stop = text.size() - m;
  while (i <= stop) {
    const Char c = text[i + m - 1];
    if (c == last && text.compare(i, m - 1, pattern, 0, m - 1) == 0) return i;
    i += std::max<size_t>(1, skip[c & 0xFF]);
  }
  return kNotFound;
}

size_t FindTagWord(StringView text, StringView prefix, StringView word, size_t from) {
  for (size_t at = FindText(text, prefix, from); at != kNotFound;
       at = FindText(text, prefix, at + 1)) {
    const size_t rest = at + prefix.size();
    if (text.size() - rest < word.size()) return kNotFound;
    if (EqualsNoCase(text.substr(rest, word.size()), word)) return at;
  }
  return kNotFound;
}

size_t FindLastNoCase(StringView text, StringView word) {
  if (word.empty() || text.size() < word.size()) return kNotFound;
  const Char first = ToLowerChar(word[0]);
  for (size_t i = text.size() - word.size() + 1; i-- > 0;) {
    if (ToLowerChar(text[i]) != first) continue;
    if (EqualsNoCase(text.substr(i, word.size()), word)) return i;
  }
  return kNotFound;
}

size_t FindLastCrLf(StringView text) {
  if (text.size() < 2) return kNotFound;
  for (size_t i = text.size() - 1; i-- > 0;) {
    if (text[i] == u'\r' && text[i + 1] == u'\n') return i;
  }
  return kNotFound;
}

}  // namespace qv::templates
