// Open connections kept for reuse, as OLE DB's resource pooling keeps them for a web server: a
// page that opens and closes the same data source on every request gets an open connection
// back instead of paying for the open (for SQLite: the file, its locks and its catalogue).
// Only a backend that says it is back in its opening state (Backend::Reusable) is kept.
//
//   data::ConnectionPool pool;
//   data::Connection cn;
//   cn.SetPool(&pool);   // the pool outlives the connections that use it
//   cn.Open(u"Provider=SQLite;Data Source=/srv/shop.db");
//   cn.Close();          // the backend waits in the pool for the next Open of that string
#pragma once

#include <chrono>
#include <cstddef>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>
#include <vector>

#include "platform/data/backend.h"

namespace qv::data {

class ConnectionPool {
 public:
  using Clock = std::chrono::steady_clock;

  // A connection idle longer than `idle_limit` is closed instead of handed out; at most
  // `per_source` wait for each connection string.
  explicit ConnectionPool(std::chrono::seconds idle_limit = std::chrono::seconds(60),
                          size_t per_source = 16);
  ~ConnectionPool();
  ConnectionPool(const ConnectionPool&) = delete;
  ConnectionPool& operator=(const ConnectionPool&) = delete;

  // An idle connection opened with exactly this key, or null.
  std::unique_ptr<Backend> Take(std::u16string_view key);
  // Keeps a closed connection for the next Take of its key, or closes it when it cannot be
  // reused or the pool is full.
  void Give(std::u16string_view key, std::unique_ptr<Backend> backend) noexcept;
  // Connections waiting now, over every key.
  size_t IdleCount() const;

 private:
  struct Idle {
    std::unique_ptr<Backend> backend;
    Clock::time_point since;
  };

  const std::chrono::seconds idle_limit_;
  const size_t per_source_;
  mutable std::mutex mutex_;
  // Plain u16string keys: the pool is shared by threads and qv::String counts are no atomics.
  std::unordered_map<std::u16string, std::vector<Idle>> idle_;
};

}  // namespace qv::data
