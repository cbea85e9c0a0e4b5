// The number of the Error that an action raises, 0 when it raises none: how the tests of the
// object interface check a refusal without a try block each.
#pragma once

#include <cstdint>

#include "automation/error.h"

namespace qv {

template <class F>
int32_t ErrorOf(F&& action) {
  try {
    action();
  } catch (const Error& e) {
    return e.number();
  }
  return 0;
}

}  // namespace qv
