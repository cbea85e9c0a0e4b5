// The engine version as text: 5.3.<patch>.<build>, fixed by the build.
#pragma once

#include <string>

namespace qv::cli {

inline std::string EngineVersionText() {
  return std::to_string(QV_VERSION_MAJOR) + "." + std::to_string(QV_VERSION_MINOR) + "." +
         std::to_string(QV_VERSION_PATCH) + "." + std::to_string(QV_VERSION_BUILD);
}

}  // namespace qv::cli
