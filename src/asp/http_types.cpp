// Header look-up for the runtime.
#include "asp/http_types.h"

#include <strings.h>

namespace qv::asp {

const std::string* HttpRequest::Header(std::string_view name) const {
  for (const auto& [n, v] : headers) {
    if (n.size() == name.size() && strncasecmp(n.data(), name.data(), name.size()) == 0) return &v;
  }
  return nullptr;
}

}  // namespace qv::asp
