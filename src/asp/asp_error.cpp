// The form of the intrinsic objects' errors.
#include "asp/asp_error.h"

#include <string>

namespace qv::asp {

void RaiseAspError(std::string_view object, std::string_view code, std::string_view description,
                   int32_t number) {
  char hex[16];
  std::snprintf(hex, sizeof hex, "%08X", static_cast<uint32_t>(number));
  const std::string source =
      std::string(object) + " object, ASP " + std::string(code) + " (0x" + hex + ")";
  throw Error(number, String::FromUtf8(description), String::FromUtf8(source));
}

}  // namespace qv::asp
