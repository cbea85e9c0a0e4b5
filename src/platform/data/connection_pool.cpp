// Backends are closed outside the lock: closing one may take a while (a network goodbye), and
// other threads should not wait for it.
#include "platform/data/connection_pool.h"

#include <cassert>

namespace qv::data {

ConnectionPool::ConnectionPool(std::chrono::seconds idle_limit, size_t per_source)
    : idle_limit_(idle_limit), per_source_(per_source) {}

ConnectionPool::~ConnectionPool() = default;

std::unique_ptr<Backend> ConnectionPool::Take(std::u16string_view key) {
  std::vector<std::unique_ptr<Backend>> expired;
  std::unique_ptr<Backend> found;
  {
    std::lock_guard guard(mutex_);
    const auto it = idle_.find(std::u16string(key));
    if (it == idle_.end()) return nullptr;
    std::vector<Idle>& list = it->second;
    const Clock::time_point now = Clock::now();
    // The most recently used is the likeliest to be warm; older ones past the limit go.
    while (!list.empty() && !found) {
      Idle last = std::move(list.back());
      list.pop_back();
      if (now - last.since > idle_limit_) {
        expired.push_back(std::move(last.backend));
      } else {
        found = std::move(last.backend);
      }
    }
    if (list.empty()) idle_.erase(it);
  }
  // A file replaced or a server gone while it waited: open afresh instead.
  if (found && !found->Reusable()) expired.push_back(std::move(found));
  return found;
}

void ConnectionPool::Give(std::u16string_view key, std::unique_ptr<Backend> backend) noexcept {
  assert(backend);
  try {
    if (!backend->Reusable()) return;
    std::lock_guard guard(mutex_);
    std::vector<Idle>& list = idle_[std::u16string(key)];
    if (list.size() >= per_source_) return;
    list.push_back(Idle{std::move(backend), Clock::now()});
  } catch (...) {
    // Out of memory for the list: the backend is closed like any other.
  }
}

size_t ConnectionPool::IdleCount() const {
  std::lock_guard guard(mutex_);
  size_t count = 0;
  for (const auto& [key, list] : idle_)
    count += list.size();
  return count;
}

}  // namespace qv::data
