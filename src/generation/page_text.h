// The last touches on a page's text before it is written: compacting it (blank lines out,
// the generator tag in the head) or only cutting the blank lines in front; and the short form
// of a long path that fits the overwrite question.
#pragma once

#include "automation/string.h"

namespace qv {

// Drops lines of blanks and tabs and the CRs of the text, writes every line with CR LF, sets
// an empty line before a block of comment lines (lines opening with "'") and after a block of
// more than one, and puts the generator tag in front of every "</head>".
String StripBlankLines(StringView text);

// The text from behind the last line end among the white space it begins with: blank lines
// in front go, the indent of the first line with text stays.
String TrimLeadingLines(StringView text);

// `<meta name="generator" content="Quorvex v5.3.x.y" />` and CR LF.
String GeneratorTag();

// The path fitted into `limit` characters: the first part, "/...", and as many of the last
// parts as fit. A path no longer than the limit stays as it is.
String ShortPath(StringView path, size_t limit = 55);

}  // namespace qv
