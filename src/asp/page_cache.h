// Compiled pages shared by every worker, read-only once made; a page is compiled again when
// it or one of its includes changed on disk.
#pragma once

#include <filesystem>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>

#include "asp/page_compiler.h"

namespace qv::asp {

class PageCache {
 public:
  explicit PageCache(const Site& site) : site_(site) {}
  // The compiled page of a file of the site. Raises PageError.
  std::shared_ptr<const CompiledPage> Get(const std::filesystem::path& file);

 private:
  const Site& site_;
  std::mutex mutex_;
  std::unordered_map<std::string, std::shared_ptr<const CompiledPage>> pages_;
};

}  // namespace qv::asp
