// A small pool of hiredis connections to one Redis server, shared by the worker threads. Each
// call is one command and one round trip; what needs several steps runs as a script on the
// server. A connection that fails is dropped and the call raises StateUnavailable, so the next
// call dials again and the server recovers by itself when Redis is back.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

struct redisContext;

namespace qv::asp {

// Where the shared state lives: redis://[[user]:password@]host[:port][/db].
struct RedisAddress {
  std::string host = "127.0.0.1";
  int port = 6379;
  int db = 0;
  std::string user;
  std::string password;

  // Raises std::invalid_argument with the reason in its text.
  static RedisAddress Parse(std::string_view url);
  std::string Text() const;  // host:port/db, never the password
};

// A reply, copied out of hiredis's own.
struct RedisReply {
  enum class Type : uint8_t { Nil, Integer, Text, Array, Status };
  Type type = Type::Nil;
  long long integer = 0;
  std::string text;
  std::vector<RedisReply> items;

  bool is_nil() const { return type == Type::Nil; }
};

class RedisClient {
 public:
  explicit RedisClient(RedisAddress address);
  ~RedisClient();
  RedisClient(const RedisClient&) = delete;
  RedisClient& operator=(const RedisClient&) = delete;

  // Runs one command; an error reply, like a lost connection, raises StateUnavailable.
  RedisReply Run(const std::vector<std::string_view>& args);
  // Runs a script with its keys and arguments (EVAL).
  RedisReply Eval(std::string_view script, const std::vector<std::string_view>& keys,
                  const std::vector<std::string_view>& args);

  const RedisAddress& address() const { return address_; }

 private:
  redisContext* Acquire(bool& pooled);
  void Release(redisContext* context);
  redisContext* Dial();
  [[noreturn]] void Fail(const std::string& why);

  const RedisAddress address_;
  std::mutex mutex_;
  std::vector<redisContext*> idle_;
  // After a failed dial, calls fail at once for a moment instead of each waiting for its own
  // connect to time out while the server is away.
  std::atomic<std::chrono::steady_clock::rep> quiet_until_{0};
};

}  // namespace qv::asp
