// The Redis connection pool over hiredis (Debian's libhiredis), and the redis:// address.
#include "asp/redis_client.h"

#include <hiredis/hiredis.h>

#include <algorithm>
#include <cassert>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <stdexcept>
#include <utility>

#include "asp/state_store.h"

namespace qv::asp {
namespace {

constexpr auto kConnectTimeout = std::chrono::milliseconds(1000);
constexpr auto kQuietAfterFailure = std::chrono::milliseconds(250);
// After a call that had no answer in kCommandTimeout: a Redis that hangs (or a network that
// drops everything) would otherwise cost every request that long.
constexpr auto kQuietAfterSilence = std::chrono::milliseconds(500);
constexpr size_t kMostIdle = 64;

timeval TimeVal(std::chrono::milliseconds ms) {
  return {static_cast<time_t>(ms.count() / 1000),
          static_cast<suseconds_t>(ms.count() % 1000 * 1000)};
}

bool ParseNumber(std::string_view text, int low, int high, int& out) {
  const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), out);
  return ec == std::errc() && end == text.data() + text.size() && out >= low && out <= high;
}

// %XX escapes, for a password with ':' or '@' in it.
std::string Unescape(std::string_view text) {
  std::string out;
  for (size_t i = 0; i < text.size(); ++i) {
    int code = 0;
    if (text[i] == '%' && i + 2 < text.size() &&
        std::from_chars(text.data() + i + 1, text.data() + i + 3, code, 16).ptr ==
            text.data() + i + 3) {
      out += static_cast<char>(code);
      i += 2;
    } else {
      out += text[i];
    }
  }
  return out;
}

RedisReply Copy(const redisReply& r) {
  RedisReply out;
  switch (r.type) {
    case REDIS_REPLY_INTEGER:
      out.type = RedisReply::Type::Integer;
      out.integer = r.integer;
      break;
    case REDIS_REPLY_STRING:
    case REDIS_REPLY_STATUS:
    case REDIS_REPLY_ERROR:
      out.type = r.type == REDIS_REPLY_STRING   ? RedisReply::Type::Text
                 : r.type == REDIS_REPLY_STATUS ? RedisReply::Type::Status
                                                : RedisReply::Type::Error;
      out.text.assign(r.str, r.len);
      break;
    case REDIS_REPLY_ARRAY:
      out.type = RedisReply::Type::Array;
      out.items.reserve(r.elements);
      for (size_t i = 0; i < r.elements; ++i)
        out.items.push_back(Copy(*r.element[i]));
      break;
    default:
      break;
  }
  return out;
}

}  // namespace

// --- the address -------------------------------------------------------------------------------

RedisAddress RedisAddress::Parse(std::string_view url) {
  constexpr std::string_view kScheme = "redis://";
  if (url.starts_with("rediss://"))
    throw std::invalid_argument("TLS to Redis (rediss://) is not supported");
  if (!url.starts_with(kScheme))
    throw std::invalid_argument("'" + std::string(url) +
                                "' is no Redis address: use redis://host:port[/db]");
  RedisAddress a;
  std::string_view rest = url.substr(kScheme.size());
  if (const size_t at = rest.rfind('@'); at != std::string_view::npos) {
    const std::string_view credentials = rest.substr(0, at);
    rest.remove_prefix(at + 1);
    const size_t colon = credentials.find(':');
    if (colon == std::string_view::npos) {
      a.password = Unescape(credentials);  // redis://secret@host, as redis-cli reads it
    } else {
      a.user = Unescape(credentials.substr(0, colon));
      a.password = Unescape(credentials.substr(colon + 1));
    }
  }
  std::string_view host_port = rest;
  if (const size_t slash = rest.find('/'); slash != std::string_view::npos) {
    host_port = rest.substr(0, slash);
    const std::string_view db = rest.substr(slash + 1);
    if (!db.empty() && !ParseNumber(db, 0, 1 << 20, a.db))
      throw std::invalid_argument("the Redis database '" + std::string(db) +
                                  "' is no number from 0 up");
  }
  std::string_view host = host_port;
  std::string_view port;
  if (host.starts_with('[')) {  // [::1]:6379
    const size_t close = host.find(']');
    if (close == std::string_view::npos)
      throw std::invalid_argument("the Redis host '" + std::string(host_port) + "' lacks its ']'");
    port = host.substr(close + 1);
    host = host.substr(1, close - 1);
    if (!port.empty() && port.front() != ':')
      throw std::invalid_argument("unexpected text after the Redis host: '" + std::string(port) +
                                  "'");
    if (!port.empty()) port.remove_prefix(1);
  } else if (const size_t colon = host.rfind(':'); colon != std::string_view::npos) {
    port = host.substr(colon + 1);
    host = host.substr(0, colon);
  }
  if (host.empty()) throw std::invalid_argument("the Redis address names no host");
  a.host = std::string(host);
  if (!port.empty() && !ParseNumber(port, 1, 65535, a.port))
    throw std::invalid_argument("the Redis port '" + std::string(port) +
                                "' is no number from 1 to 65535");
  return a;
}

std::string RedisAddress::Text() const {
  const bool v6 = host.find(':') != std::string::npos;
  return (v6 ? "[" + host + "]" : host) + ":" + std::to_string(port) + "/" + std::to_string(db);
}

// --- the pool ----------------------------------------------------------------------------------

RedisClient::RedisClient(RedisAddress address)
    : address_(std::move(address)), sender_([this] { SendLater(); }) {}

RedisClient::~RedisClient() {
  {
    std::lock_guard guard(mutex_);
    stopping_ = true;
  }
  send_wake_.notify_all();
  sender_.join();
  // Queued scripts are a request's last word on its session: they go out before the end.
  for (Connection& c : idle_) {
    if (c.unsent) Send(c);
    redisFree(c.context);
  }
}

void RedisClient::Fail(const std::string& why) {
  throw StateUnavailable("Redis at " + address_.Text() + ": " + why);
}

void RedisClient::FailNoAnswer() {
  Fail("no answer within " + std::to_string(kCommandTimeout.count() / 1000) + " s");
}

redisContext* RedisClient::Dial() {
  const auto now = std::chrono::steady_clock::now().time_since_epoch().count();
  if (now < quiet_until_) Fail("not reachable a moment ago");
  redisContext* c =
      redisConnectWithTimeout(address_.host.c_str(), address_.port, TimeVal(kConnectTimeout));
  std::string why;
  if (!c) {
    why = "out of memory";
  } else if (c->err) {
    why = c->errstr;
  } else {
    redisSetTimeout(c, TimeVal(RedisClient::kCommandTimeout));
    // AUTH and SELECT come with each new connection; their replies tell whether the
    // address is right.
    std::vector<std::string> steps;
    if (!address_.password.empty()) {
      std::vector<const char*> argv{"AUTH"};
      std::vector<size_t> lens{4};
      if (!address_.user.empty()) {
        argv.push_back(address_.user.c_str());
        lens.push_back(address_.user.size());
      }
      argv.push_back(address_.password.c_str());
      lens.push_back(address_.password.size());
      auto* r = static_cast<redisReply*>(
          redisCommandArgv(c, static_cast<int>(argv.size()), argv.data(), lens.data()));
      if (!r) {
        why = c->errstr;
      } else if (r->type == REDIS_REPLY_ERROR) {
        why = std::string("AUTH: ") + r->str;
      }
      if (r) freeReplyObject(r);
    }
    if (why.empty() && address_.db != 0) {
      auto* r = static_cast<redisReply*>(redisCommand(c, "SELECT %d", address_.db));
      if (!r) {
        why = c->errstr;
      } else if (r->type == REDIS_REPLY_ERROR) {
        why = std::string("SELECT: ") + r->str;
      }
      if (r) freeReplyObject(r);
    }
  }
  if (why.empty()) return c;
  if (c) redisFree(c);
  quiet_until_ = (std::chrono::steady_clock::now() + kQuietAfterFailure).time_since_epoch().count();
  Fail(why);
}

RedisClient::Connection RedisClient::Acquire(bool& pooled) {
  {
    std::lock_guard guard(mutex_);
    pooled = !idle_.empty();
    if (pooled) {
      Connection c = std::move(idle_.back());
      idle_.pop_back();
      return c;
    }
  }
  Connection c;
  c.context = Dial();
  return c;
}

void RedisClient::Release(Connection connection) {
  bool pooled = false;
  bool wake = false;
  {
    std::lock_guard guard(mutex_);
    if (idle_.size() < kMostIdle) {
      pooled = true;
      wake = connection.unsent && sender_asleep_;
      if (wake) sender_asleep_ = false;
      idle_.push_back(std::move(connection));
    }
  }
  if (wake) send_wake_.notify_one();
  if (pooled) return;
  // Replies still to come are those of calls that asked for none: dropping them is no loss,
  // but their commands must go out first.
  if (connection.unsent) Send(connection);
  redisFree(connection.context);
}

// Writes what is queued on a connection without reading anything; false when it failed.
bool RedisClient::Send(Connection& connection) {
  int done = 0;
  while (!done) {
    if (redisBufferWrite(connection.context, &done) != REDIS_OK) return false;
  }
  connection.unsent = false;
  return true;
}

// Scripts queued on a connection that no call took up within kSendDelay go out from here. Busy
// workers seldom leave it any, since their next call takes the connection first: while they
// take them all, it looks less and less often (up to 8 kSendDelay), and costs a busy server
// few wakeups.
void RedisClient::SendLater() {
  constexpr int kRoundsBeforeSleep = 100;
  constexpr int kMostBackoff = 3;
  int quiet_rounds = 0;
  int backoff = 0;
  std::unique_lock guard(mutex_);
  for (;;) {
    if (quiet_rounds == kRoundsBeforeSleep) {
      sender_asleep_ = true;
      send_wake_.wait(guard, [this] { return !sender_asleep_ || stopping_; });
      quiet_rounds = backoff = 0;
    }
    send_wake_.wait_for(guard, kSendDelay * (1 << backoff), [this] { return stopping_; });
    if (stopping_) return;
    // Only scripts that waited their time: a worker about to call takes the others along.
    const auto due = std::chrono::steady_clock::now() - kSendDelay;
    std::vector<Connection> waiting;
    bool any = false;
    for (auto it = idle_.begin(); it != idle_.end();) {
      any = any || it->unsent;
      if (!it->unsent || it->queued_at > due) {
        ++it;
        continue;
      }
      waiting.push_back(std::move(*it));
      it = idle_.erase(it);
    }
    quiet_rounds = any ? 0 : quiet_rounds + 1;
    backoff = waiting.empty() ? std::min(backoff + 1, kMostBackoff) : 0;
    if (waiting.empty()) continue;
    guard.unlock();
    for (Connection& c : waiting) {
      if (Send(c)) continue;
      std::fprintf(stderr, "state store: Redis at %s: %s\n", address_.Text().c_str(),
                   c.context->errstr[0] ? c.context->errstr : "connection lost");
      redisFree(c.context);
      c.context = nullptr;
    }
    guard.lock();
    for (Connection& c : waiting) {
      if (c.context) idle_.push_back(std::move(c));
    }
  }
}

namespace {

// Writes the command in Redis's wire form here rather than through hiredis's own formatting,
// which grows its buffer a piece at a time through a printf of its own and showed in the
// profile of every request; hiredis then only copies it to the connection's output.
void AppendWire(std::string& wire, const RedisCommand& command) {
  assert(!command.empty());
  size_t size = wire.size() + 16;
  for (std::string_view a : command)
    size += a.size() + 16;
  wire.reserve(size);
  char digits[24];
  const auto number = [&](char lead, size_t n) {
    wire += lead;
    wire.append(digits, std::to_chars(digits, digits + sizeof digits, n).ptr);
    wire += "\r\n";
  };
  number('*', command.size());
  for (std::string_view a : command) {
    number('$', a.size());
    wire += a;
    wire += "\r\n";
  }
}

// EVAL or EVALSHA (`how`) of a script's text or hash with its keys and arguments; `count`
// holds the number of keys, and must outlive the command.
RedisCommand ScriptCall(std::string_view how, std::string_view script, const std::string& count,
                        const std::vector<std::string_view>& keys,
                        const std::vector<std::string_view>& args) {
  RedisCommand all{how, script, count};
  all.insert(all.end(), keys.begin(), keys.end());
  all.insert(all.end(), args.begin(), args.end());
  return all;
}

}  // namespace

RedisClient::Started& RedisClient::Started::operator=(Started&& other) noexcept {
  if (this == &other) return *this;
  if (client_ && connection_.context) redisFree(connection_.context);
  client_ = std::exchange(other.client_, nullptr);
  connection_ = std::move(other.connection_);
  other.connection_.context = nullptr;
  pooled_ = other.pooled_;
  sent_ = other.sent_;
  wire_ = std::move(other.wire_);
  count_ = other.count_;
  replies_ = std::move(other.replies_);
  return *this;
}

int RedisClient::Started::fd() const {
  return client_ && connection_.context ? connection_.context->fd : -1;
}

RedisClient::Started::~Started() {
  if (client_ && connection_.context) redisFree(connection_.context);
}

// Takes a connection and writes the call's commands, with whatever the connection had queued,
// in one piece; a failed write shows when Finish reads.
void RedisClient::Launch(Started& call) {
  call.connection_ = Acquire(call.pooled_);
  call.sent_ = redisAppendFormattedCommand(call.connection_.context, call.wire_.data(),
                                           call.wire_.size()) == REDIS_OK &&
               Send(call.connection_);
}

void RedisClient::Silent() {
  quiet_until_ = (std::chrono::steady_clock::now() + kQuietAfterSilence).time_since_epoch().count();
}

RedisClient::Started RedisClient::Start(const std::vector<RedisCommand>& commands) {
  assert(!commands.empty());
  if (std::chrono::steady_clock::now().time_since_epoch().count() < quiet_until_)
    Fail("not answering a moment ago");
  Started call;
  for (const RedisCommand& command : commands)
    AppendWire(call.wire_, command);
  call.count_ = commands.size();
  Launch(call);
  call.client_ = this;
  return call;
}

// The replies owed to earlier calls that did not wait come first, mostly in the same read; a
// failure among them goes to the log, as nobody waits for it.
bool RedisClient::Collect(Started& call, bool& ok) {
  Connection& c = call.connection_;
  while (call.replies_.size() < call.count_) {
    void* raw = nullptr;
    if (c.context->err || redisGetReplyFromReader(c.context, &raw) != REDIS_OK) {
      ok = false;
      return false;
    }
    if (!raw) return false;
    auto* r = static_cast<redisReply*>(raw);
    if (c.pending == 0) {
      call.replies_.push_back(Copy(*r));
    } else {
      --c.pending;
      if (r->type == REDIS_REPLY_ERROR) {
        std::fprintf(stderr, "state store: Redis: %.*s\n", static_cast<int>(r->len), r->str);
        // Scripts flushed by hand: the next ones go by their text again.
        if (std::string_view(r->str, r->len).starts_with("NOSCRIPT")) c.scripts.clear();
      }
    }
    freeReplyObject(r);
  }
  return true;
}

bool RedisClient::TakeIn(Started& call) {
  assert(call.active());
  bool ok = call.sent_;
  if (!ok || Collect(call, ok) || !ok) return true;
  // Readable, so one read does not wait.
  if (redisBufferRead(call.connection_.context) != REDIS_OK) return true;
  return Collect(call, ok) || !ok;
}

std::vector<RedisReply> RedisClient::Finish(Started& call) {
  assert(call.active());
  // A pooled connection may have died with a Redis that went away since: such a call is
  // tried once more on a new connection before it counts as a failure. Only a connection that
  // failed before any reply came back is retried, so no command runs twice.
  for (int attempt = 0;; ++attempt) {
    Connection& c = call.connection_;
    bool ok = call.sent_;
    bool silent = false;  // the read timed out: Redis is there but does not answer
    while (ok && !Collect(call, ok)) {
      if (!ok) break;
      ok = redisBufferRead(c.context) == REDIS_OK;
      silent = !ok && (errno == EAGAIN || errno == EWOULDBLOCK);
    }
    if (ok) {
      call.client_ = nullptr;
      Release(std::move(c));
      return std::move(call.replies_);
    }
    const std::string why = c.context->errstr[0] ? c.context->errstr : "connection lost";
    redisFree(c.context);
    c.context = nullptr;
    if (silent) {
      call.client_ = nullptr;
      Silent();
      FailNoAnswer();
    }
    if (!call.pooled_ || attempt > 0 || !call.replies_.empty()) {
      call.client_ = nullptr;
      Fail(why);
    }
    try {
      Launch(call);
    } catch (...) {
      call.client_ = nullptr;
      throw;
    }
  }
}

std::vector<RedisReply> RedisClient::Exchange(const std::vector<RedisCommand>& commands) {
  Started call = Start(commands);
  return Finish(call);
}

template <typename Wire>
void RedisClient::Queue(size_t replies, bool at_once, const Wire& wire) {
  // A write to a pooled connection that died with a Redis that went away since is tried once
  // more on a new one, as in Exchange.
  for (int attempt = 0;; ++attempt) {
    bool pooled = false;
    Connection c = Acquire(pooled);
    const std::string text = wire(c);
    bool queued = redisAppendFormattedCommand(c.context, text.data(), text.size()) == REDIS_OK;
    if (queued) {
      c.pending += replies;
      if (!c.unsent) c.queued_at = std::chrono::steady_clock::now();
      c.unsent = true;
      queued = !at_once || Send(c);
    }
    if (queued) {
      Release(std::move(c));
      return;
    }
    const std::string why = c.context->errstr[0] ? c.context->errstr : "connection lost";
    redisFree(c.context);
    if (pooled && attempt == 0) continue;
    Fail(why);
  }
}

void RedisClient::EvalNoWait(std::string_view script, const std::vector<std::string_view>& keys,
                             const std::vector<std::string_view>& args, bool at_once) {
  const std::string hash = HashOf(script, false);
  const std::string count = std::to_string(keys.size());
  Queue(1, at_once, [&](Connection& c) {
    // Nobody waits to load the script again should the server refuse the hash: a connection
    // that has not run it yet sends its text, which the server keeps by the hash too. (A
    // connection whose write fails is dropped, so noting the script early does no harm.)
    const bool known =
        std::find(c.scripts.begin(), c.scripts.end(), script.data()) != c.scripts.end();
    if (!known) c.scripts.push_back(script.data());
    std::string text;
    AppendWire(text, ScriptCall(known ? "EVALSHA" : "EVAL", known ? std::string_view(hash) : script,
                                count, keys, args));
    return text;
  });
}

void RedisClient::Abandon(Started& call, std::string_view script,
                          const std::vector<std::string_view>& keys,
                          const std::vector<std::string_view>& args) {
  assert(call.active());
  Connection c = std::move(call.connection_);
  call.connection_.context = nullptr;
  call.client_ = nullptr;
  if (!call.sent_ || c.context->err) {
    redisFree(c.context);
    return;
  }
  // The script goes by its text: asking for its hash could wait for the very Redis that did
  // not answer.
  const std::string count = std::to_string(keys.size());
  std::string text;
  AppendWire(text, ScriptCall("EVAL", script, count, keys, args));
  if (redisAppendFormattedCommand(c.context, text.data(), text.size()) != REDIS_OK) {
    redisFree(c.context);
    return;
  }
  c.pending += call.count_ - call.replies_.size() + 1;
  if (std::find(c.scripts.begin(), c.scripts.end(), script.data()) == c.scripts.end())
    c.scripts.push_back(script.data());
  if (!c.unsent) c.queued_at = std::chrono::steady_clock::now();
  c.unsent = true;
  Release(std::move(c));
}

void RedisClient::SendNoWait(const std::vector<RedisCommand>& commands, bool at_once) {
  assert(!commands.empty());
  std::string text;
  for (const RedisCommand& command : commands)
    AppendWire(text, command);
  Queue(commands.size(), at_once, [&](Connection&) { return text; });
}

RedisReply RedisClient::Run(const RedisCommand& args) {
  RedisReply r = std::move(Exchange({args}).front());
  if (r.is_error()) Fail(r.text);
  return r;
}

std::vector<RedisReply> RedisClient::Pipeline(const std::vector<RedisCommand>& commands) {
  return Exchange(commands);
}

std::string RedisClient::HashOf(std::string_view script, bool reload) {
  if (!reload) {
    std::lock_guard guard(mutex_);
    if (const auto it = hashes_.find(script.data()); it != hashes_.end()) return it->second;
  }
  std::string hash = Run({"SCRIPT", "LOAD", script}).text;
  std::lock_guard guard(mutex_);
  hashes_[script.data()] = hash;
  return hash;
}

RedisReply RedisClient::Eval(std::string_view script, const std::vector<std::string_view>& keys,
                             const std::vector<std::string_view>& args) {
  const std::string count = std::to_string(keys.size());
  // A Redis that restarted since has forgotten the script: load it again and run it once more.
  for (int attempt = 0;; ++attempt) {
    const std::string hash = HashOf(script, attempt > 0);
    RedisReply r = std::move(Exchange({ScriptCall("EVALSHA", hash, count, keys, args)}).front());
    if (r.is_error() && attempt == 0 && r.text.starts_with("NOSCRIPT")) continue;
    if (r.is_error()) Fail(r.text);
    return r;
  }
}

}  // namespace qv::asp
