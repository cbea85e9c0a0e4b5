// Cuts a named session out of a multi-session template text and expands the include tags in
// it, reading included files from a template folder. Nothing is reported for a missing session,
// file or malformed tag: the result is simply shorter. A chain of includes that comes back to
// a file and session it is already expanding raises error 28 instead of recursing for ever.
#pragma once

#include <vector>

#include "automation/string.h"

namespace qv::templates {

class SessionReader {
 public:
  explicit SessionReader(String folder) : folder_(std::move(folder)) {}

  // The body of the first session whose identifier equals `id` (lower case against lower
  // case), includes expanded; "" if there is none or it is not closed.
  String GetSession(StringView source, StringView id);

 private:
  String ExpandIncludes(StringView body);
  // The text an include tag stands for, or "" when the tag is dropped.
  String IncludedText(StringView inner);

  String folder_;
  std::vector<String> chain_;  // "path/id" of each include being expanded, outermost first
};

}  // namespace qv::templates
