// The order of text under locale 1033 when case does not count (vbTextCompare): what Windows'
// CompareString gives with case, width and kana type ignored, not the order of code units.
#pragma once

#include "automation/string.h"

namespace qv {

// -1, 0 or 1. Letters compare by their base letter first and by their accents only when all
// base letters agree (so "é" < "f" but "é" > "e"); "ß" and "æ" count as "ss" and "ae";
// punctuation sorts before digits and digits before letters; control characters count for
// nothing; "-" and "'" only break ties ("coop" < "co-op"), as Windows' word sort does.
int CompareText(StringView a, StringView b);

}  // namespace qv
