// The run-time errors the intrinsic objects raise, in the form scripts see on Windows:
// the number is the failure code and the source names the object and the ASP error code.
#pragma once

#include <cstdint>
#include <string_view>

#include "automation/error.h"

namespace qv::asp {

inline constexpr int32_t kAspFailure = static_cast<int32_t>(0x80004005);
inline constexpr int32_t kAspInvalidClass = static_cast<int32_t>(0x800401F3);

// Raises an error whose source reads "<object> object, ASP <code>".
[[noreturn]] void RaiseAspError(std::string_view object, std::string_view code,
                                std::string_view description, int32_t number = kAspFailure);

}  // namespace qv::asp
