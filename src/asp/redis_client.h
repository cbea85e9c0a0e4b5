// A small pool of hiredis connections to one Redis server, shared by the worker threads; a
// connection stays open for the next call, so a worker that is busy keeps using the same one.
// Each call is one round trip: one command, several commands sent together (Pipeline), or a
// script, which the server keeps by its hash after the first call, so that later calls send
// the hash instead of the text. A call that waits for no reply (EvalNoWait) costs no round
// trip of its own: it rides along with the connection's next call, or goes out alone a moment
// later when none comes. A connection that fails is dropped and the call raises
// StateUnavailable, so the next call dials again and the server recovers by itself when Redis
// is back.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
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
  struct Connection {
    redisContext* context = nullptr;
    size_t pending = 0;   // replies owed to calls that did not wait for them
    bool unsent = false;  // such calls still in the output buffer, since `queued_at`
    std::chrono::steady_clock::time_point queued_at;
    // Scripts this connection ran or sent by their text: its server knows their hash, since a
    // server that restarted would have closed the connection.
    std::vector<const char*> scripts;
  };

 public:
  // Commands that went out and whose replies are still to be read (Finish), so that the caller
  // can do other work during the round trip. It keeps its connection until then; one that is
  // never finished closes its connection, and Redis still runs what it was sent.
  class Started {
   public:
    Started() = default;
    Started(Started&& other) noexcept { *this = std::move(other); }
    Started& operator=(Started&& other) noexcept;
    ~Started();
    bool active() const { return client_ != nullptr; }
    // The socket the replies come in on, -1 when the call is over.
    int fd() const;

   private:
    friend class RedisClient;
    RedisClient* client_ = nullptr;
    Connection connection_;
    bool pooled_ = false;
    bool sent_ = false;
    std::string wire_;  // the commands, to send again on a new connection
    size_t count_ = 0;
    std::vector<RedisReply> replies_;  // those in so far
  };

  explicit RedisClient(RedisAddress address);
  ~RedisClient();
  RedisClient(const RedisClient&) = delete;
  RedisClient& operator=(const RedisClient&) = delete;

  // Runs one command; an error reply, like a lost connection, raises StateUnavailable.
  RedisReply Run(const RedisCommand& args);
  // Runs commands in one round trip, a reply for each; error replies are returned, not raised.
  std::vector<RedisReply> Pipeline(const std::vector<RedisCommand>& commands);
  // Pipeline in two halves: Start sends, Finish reads the replies (and raises as Pipeline).
  Started Start(const std::vector<RedisCommand>& commands);
  std::vector<RedisReply> Finish(Started& call);
  // For a caller that polls the call's fd() and found it readable: takes in what has come
  // without waiting for more. True once Finish need not wait (the replies are in, or the
  // connection failed, which Finish then tells).
  bool TakeIn(Started& call);
  // Runs a script with its keys and arguments. `script` must outlive the client: its address
  // finds the hash the server knows it by.
  RedisReply Eval(std::string_view script, const std::vector<std::string_view>& keys,
                  const std::vector<std::string_view>& args);
  // Queues a script on a connection and returns without waiting: it goes out with that
  // connection's next call, or a few kSendDelay later when there is none (before returning
  // with `at_once`), and its reply is read by a later call on the way; an error reply then goes to
  // the log. Raises StateUnavailable only when the script cannot be queued.
  void EvalNoWait(std::string_view script, const std::vector<std::string_view>& keys,
                  const std::vector<std::string_view>& args, bool at_once = false);
  // Commands queued the same way, replies unread.
  void SendNoWait(const std::vector<RedisCommand>& commands, bool at_once = false);
  // Stops waiting for a started call, whose commands may still run: its connection goes back
  // to the pool with a script queued after them, which Redis runs after them (one connection
  // keeps its order), and their replies are dropped as they come.
  void Abandon(Started& call, std::string_view script, const std::vector<std::string_view>& keys,
               const std::vector<std::string_view>& args);

  const RedisAddress& address() const { return address_; }
  // Redis did not answer a call in time: calls that wait for a reply fail at once for a moment,
  // so that a Redis that hangs costs one request the time-out, not each of them.
  void Silent();
  // Raises StateUnavailable for a call that had no answer in kCommandTimeout.
  [[noreturn]] void FailNoAnswer();

  // How long a queued script waits at least for a call to ride along with before it goes out
  // alone.
  static constexpr std::chrono::microseconds kSendDelay{1000};
  // How long a call waits for its reply before the connection counts as lost.
  static constexpr std::chrono::milliseconds kCommandTimeout{3000};

 private:
  std::vector<RedisReply> Exchange(const std::vector<RedisCommand>& commands);
  // Takes the call's replies out of what the connection has read; false while some are still
  // to come, or, with `ok` cleared, when the connection failed.
  static bool Collect(Started& call, bool& ok);
  // The common part of EvalNoWait and SendNoWait: `wire` gives a connection's commands.
  template <typename Wire>
  void Queue(size_t replies, bool at_once, const Wire& wire);
  void Launch(Started& call);
  std::string HashOf(std::string_view script, bool reload);
  Connection Acquire(bool& pooled);
  void Release(Connection connection);
  static bool Send(Connection& connection);
  void SendLater();
  redisContext* Dial();
  [[noreturn]] void Fail(const std::string& why);

  const RedisAddress address_;
  std::mutex mutex_;
  std::vector<Connection> idle_;
  std::unordered_map<const char*, std::string> hashes_;  // by the script text's address
  // After a failed dial, calls fail at once for a moment instead of each waiting for its own
  // connect to time out while the server is away.
  std::atomic<std::chrono::steady_clock::rep> quiet_until_{0};
  // The sender of queued scripts that found no call to ride along with. It looks every few
  // kSendDelay while there are any, and sleeps (`sender_asleep_`) once there have been none for
  // a while, so that a busy server's calls never have to wake it.
  std::condition_variable send_wake_;
  bool sender_asleep_ = false;
  bool stopping_ = false;
  std::thread sender_;  // last: starts when the rest is ready
};

}  // namespace qv::asp
