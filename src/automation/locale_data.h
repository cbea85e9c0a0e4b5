// How a locale other than 1033 is made: from ICU's data for the Windows id, corrected where
// Windows writes differently. Used by the locale cache only.
#pragma once

#include <cstdint>
#include <memory>

#include "automation/locale.h"

namespace qv {

// The locale of a Windows id, or nullptr when the id names no country's locale.
std::unique_ptr<const Locale> BuildLocale(int32_t id);

}  // namespace qv
