// ADO over an Access file (placeholder until the Access reader lands).
#include "platform/data/access_backend.h"

#include "platform/data/data_types.h"
#include "platform/data/provider_error.h"

namespace qv::data {

std::unique_ptr<Backend> OpenAccessBackend(StringView path) {
  throw ProviderError(kErrProviderNotFound,
                      u"Access files cannot be opened through ADO yet (\"" + String(path) + u"\").",
                      u"Quorvex Access");
}

}  // namespace qv::data
