// Error numbers and words of the keyed collection. The numbers sit in the range that the
// collection reserves for itself (0x80000500 and up, read as signed 32-bit numbers); the other
// failures use VBScript's own numbers and texts.
#pragma once

#include <cstdint>

#include "automation/error.h"

namespace qv {

inline constexpr int32_t kErrCollectionInitialized = static_cast<int32_t>(0x80000500u);
inline constexpr int32_t kErrCollectionKeyNotFound = static_cast<int32_t>(0x80000501u);
inline constexpr int32_t kErrCollectionMoveInLoop = static_cast<int32_t>(0x80000502u);
inline constexpr int32_t kErrCollectionDatatype = static_cast<int32_t>(0x80000503u);
inline constexpr int32_t kErrCollectionNoPosition = static_cast<int32_t>(0x80000504u);
inline constexpr int32_t kErrCollectionUndefined = static_cast<int32_t>(0x80000505u);

// Raises one of the collection's own errors with its fixed words.
[[noreturn]] void RaiseCollectionError(int32_t number);

}  // namespace qv
