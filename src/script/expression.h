// Expressions in project settings: Parse runs a text with "<!--##=...##-->" tags through the
// script host and yields the finished text; FldSrchOprs lists the search operators that a
// column type offers. Both are entry points of the project root.
#pragma once

#include <cstdint>

#include "automation/string.h"

namespace qv {

class Tyx;

// The text with its tags evaluated. Starts a script host for this call alone when no run has
// one. A text that can't be cut into blocks comes back unchanged, with the parser's words in
// ProjErr; a script failure leaves its words there and gives "". ProjErr already set gives the
// text back unchanged.
String Parse(Tyx& tyx, StringView text);

// "USER SELECT" and the operators of the type's class, one a line (CR LF between them).
String FldSrchOprs(int16_t ado_type);

}  // namespace qv
