// Session and Application state in Redis, shared by several `quorvex serve` processes on one
// machine or many. A session is one key holding its whole image, with the session's time-out
// as the key's expiry; its requests take a hold with a lease, so that they run one at a time
// across processes and a dead process blocks nobody for longer than the lease.
#pragma once

#include <chrono>
#include <memory>

#include "asp/redis_client.h"
#include "asp/state_store.h"

namespace qv::asp {

struct RedisLeases {
  // How long a request's hold on its session, and a page's Application.Lock, outlive a
  // process that died or hangs holding them. A live process renews its holds, so a request
  // may run longer than this.
  std::chrono::milliseconds session{30000};
  std::chrono::milliseconds application{30000};
};

std::unique_ptr<StateStore> NewRedisStateStore(const RedisAddress& address,
                                               RedisLeases leases = {});

}  // namespace qv::asp
