// The check for changes is a stat of each file of the page per request: cheap next to running
// it, and a changed include is picked up at once.
#include "asp/page_cache.h"

namespace qv::asp {

std::shared_ptr<const CompiledPage> PageCache::Get(const std::filesystem::path& file) {
  const std::string key = file.string();
  std::shared_ptr<const CompiledPage> page;
  {
    std::lock_guard guard(mutex_);
    if (auto it = pages_.find(key); it != pages_.end()) page = it->second;
  }
  if (page && page->IsCurrent()) return page;
  // Two workers may compile the same change at once; both results are equal, the last stays.
  page = std::make_shared<const CompiledPage>(CompilePage(site_, file));
  std::lock_guard guard(mutex_);
  pages_[key] = page;
  return page;
}

}  // namespace qv::asp
