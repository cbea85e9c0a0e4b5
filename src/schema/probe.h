// The probing statement of the readers: it names the table (and its owner, when the source
// reports one) in the chosen quotes and never returns a row; only its column list matters.
#pragma once

#include "automation/string.h"

namespace qv {

String ProbeStatement(StringView owner, StringView table);

}  // namespace qv
