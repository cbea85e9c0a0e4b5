// How VBScript turns a COM failure code into one of its own error numbers: Err.Raise of an
// HRESULT such as E_OUTOFMEMORY shows up as 7, a FACILITY_CONTROL code as its low word.
#pragma once

#include <cstdint>

namespace qv::vbs {

// The VBScript number for `hresult`, or `hresult` itself when VBScript keeps it as it is
// (vbObjectError + n and every other failure code it has no number for).
int32_t ErrorNumberOfHresult(int32_t hresult);

}  // namespace qv::vbs
