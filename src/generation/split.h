// Splitting the separated lists of control files and conditions ("a,b", "x/y/z", "p|q").
#pragma once

#include <vector>

#include "automation/string.h"

namespace qv {

// The pieces between the separators, empty pieces included; "" gives one empty piece.
inline std::vector<StringView> SplitAt(StringView text, Char separator) {
  std::vector<StringView> parts;
  size_t start = 0;
  for (;;) {
    const size_t end = text.find(separator, start);
    if (end == StringView::npos) {
      parts.push_back(text.substr(start));
      return parts;
    }
    parts.push_back(text.substr(start, end - start));
    start = end + 1;
  }
}

}  // namespace qv
