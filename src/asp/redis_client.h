// A small pool of hiredis connections to one Redis server, shared by the worker threads; a
// connection stays open for the next call, so a worker that is busy keeps using the same one.
// Each call is one round trip: one command, several commands sent together (Pipeline), or a
// script, which the server keeps by its hash after the first call, so that later calls send
// the hash instead of the text. A connection that fails is dropped and the call raises
// StateUnavailable, so the next call dials again and the server recovers by itself when Redis
// is back.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>
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
  enum class Type : uint8_t { Nil, Integer, Text, Array, Status, Error };
  Type type = Type::Nil;
  long long integer = 0;
  std::string text;
  std::vector<RedisReply> items;

  bool is_nil() const { return type == Type::Nil; }
  bool is_error() const { return type == Type::Error; }
};

using RedisCommand = std::vector<std::string_view>;

class RedisClient {
 public:
  explicit RedisClient(RedisAddress address);
  ~RedisClient();
  RedisClient(const RedisClient&) = delete;
  RedisClient& operator=(const RedisClient&) = delete;

  // Runs one command; an error reply, like a lost connection, raises StateUnavailable.
  RedisReply Run(const RedisCommand& args);
  // Runs commands in one round trip, a reply for each; error replies are returned, not raised.
  std::vector<RedisReply> Pipeline(const std::vector<RedisCommand>& commands);
  // Runs a script with its keys and arguments. `script` must outlive the client: its address
  // finds the hash the server knows it by.
  RedisReply Eval(std::string_view script, const std::vector<std::string_view>& keys,
                  const std::vector<std::string_view>& args);
  // Sends a script and returns without waiting for its reply, which the connection's next
  // call reads on the way; an error reply then goes to the log. Raises StateUnavailable only
  // when the script cannot be sent.
  void EvalNoWait(std::string_view script, const std::vector<std::string_view>& keys,
                  const std::vector<std::string_view>& args);

  const RedisAddress& address() const { return address_; }

 private:
  struct Connection {
    redisContext* context;
    size_t pending;  // replies owed to calls that did not wait for them
  };

  std::vector<RedisReply> Exchange(const std::vector<RedisCommand>& commands);
  std::string HashOf(std::string_view script, bool reload);
  Connection Acquire(bool& pooled);
  void Release(Connection connection);
  redisContext* Dial();
  [[noreturn]] void Fail(const std::string& why);

  const RedisAddress address_;
  std::mutex mutex_;
  std::vector<Connection> idle_;
  std::unordered_map<const char*, std::string> hashes_;  // by the script text's address
  // After a failed dial, calls fail at once for a moment instead of each waiting for its own
  // connect to time out while the server is away.
  std::atomic<std::chrono::steady_clock::rep> quiet_until_{0};
};

}  // namespace qv::asp
