// The Redis store. A request costs one round trip: opening its session (take the hold and read
// the image, commands sent together). Closing it (write the image only when it changed, renew
// the expiry, drop the hold) is plain commands while the hold is surely the request's own, else
// one script that checks the hold first; nobody waits for either, which go along with the
// server's next call. Each Application write is one script, which waits while another request
// holds Application.Lock; the values a server read it keeps while nobody writes (see
// ApplicationCache). Scripts go by their hash.
//
// Holds carry a token and a lease. While a request runs, a thread of its process renews the
// leases it holds, so only a process that died or hangs loses them; a request whose hold was
// lost all the same (taken over after its lease ran out) finds that out when it closes, and
// writes nothing over the session's new holder.
//
// Keys, all under "quorvex:":
//   session:<cookie>       the session's image; expires with the session's time-out
//   session-hold:<cookie>  the token of the request that holds the session, with a lease
//   session-ends           sorted set of cookies by when each session is due to end (ms,
//                          by the clock of the server that last saw it): only its key's
//                          expiry in Redis says that it ended
//   session-last           hash of the last image by cookie, for Session_OnEnd after expiry
//   session-id             the last SessionID given to a server, which takes them in blocks
//   application            hash of the values by name in lower case
//   application-names      hash of each name as it was first written, by name in lower case
//   application-order      sorted set of the names in lower case by when they were added
//   application-version    counts the writes to Application, for the servers' copies of it
//   application-lock       the token of the request in Application.Lock, with a lease
//   application-started    set by the process that ran Application_OnStart
#include "asp/redis_store.h"

#include <algorithm>
#include <atomic>
#include <cassert>
#include <charconv>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <thread>
#include <unordered_map>

namespace qv::asp {
namespace {

const std::string kPrefix = "quorvex:";
const std::string kSessionEnds = kPrefix + "session-ends";
const std::string kSessionLast = kPrefix + "session-last";
const std::string kSessionId = kPrefix + "session-id";
const std::string kApplication = kPrefix + "application";
const std::string kApplicationNames = kPrefix + "application-names";
const std::string kApplicationOrder = kPrefix + "application-order";
const std::string kApplicationSeq = kPrefix + "application-seq";
const std::string kApplicationLock = kPrefix + "application-lock";
const std::string kApplicationVersion = kPrefix + "application-version";
const std::string kApplicationStarted = kPrefix + "application-started";

// KEYS: session, hold, ends, last, and the session's key under the cookie it had before the
// request renewed it (or the session's key again). ARGV: token (empty for a session made by
// this request, which nobody else knows yet), time-out in s, cookie, mode, image, whether to
// keep track of when the session ends (for a Session_OnEnd), SessionID, the cookie before the
// renewal ('' for none). Mode s writes the image, t renews the expiry of an unchanged one, d
// deletes an abandoned session, n leaves it as it is. A request whose hold is no longer its
// own changes nothing, and gets an error unless it had nothing to keep. A renewed session
// leaves its old key here, so the old cookie reaches nothing once the request is over.
constexpr std::string_view kCloseScript = R"lua(
local mode = ARGV[4]
if ARGV[1] ~= '' and redis.call('get', KEYS[2]) ~= ARGV[1] then
  if mode == 'n' then return 0 end
  return redis.error_reply('session ' .. ARGV[7] .. ' was held past its lease and taken ' ..
                           'over by another request: what its request changed is not kept')
end
if ARGV[8] ~= '' and mode ~= 'n' then
  redis.call('del', KEYS[5])
  redis.call('zrem', KEYS[3], ARGV[8])
  redis.call('hdel', KEYS[4], ARGV[8])
end
if mode == 's' then
  redis.call('set', KEYS[1], ARGV[5], 'EX', ARGV[2])
  if ARGV[6] == '1' then redis.call('hset', KEYS[4], ARGV[3], ARGV[5]) end
elseif mode == 't' then
  redis.call('expire', KEYS[1], ARGV[2])
elseif mode == 'd' then
  redis.call('del', KEYS[1])
  redis.call('zrem', KEYS[3], ARGV[3])
  redis.call('hdel', KEYS[4], ARGV[3])
end
if ARGV[6] == '1' and (mode == 's' or mode == 't') then
  local now = redis.call('time')
  redis.call('zadd', KEYS[3], now[1] * 1000 + math.floor(now[2] / 1000) + ARGV[2] * 1000, ARGV[3])
end
if ARGV[1] ~= '' then redis.call('del', KEYS[2]) end
return 1
)lua";

// The close of a held session kept under the cookie it came with, once its request ran long
// enough that its hold may have been lost (see HoldIsSure), by a script of its own with fewer
// keys and arguments than kCloseScript's, each of which Redis puts in a table on every call.
// KEYS: session, hold, ends, last. ARGV: token, time-out in s, SessionID, image ('' for one that
// did not change, whose expiry is renewed), cookie ('' where no Session_OnEnd needs to know when
// sessions end).
constexpr std::string_view kKeepScript = R"lua(
if redis.call('get', KEYS[2]) ~= ARGV[1] then
  return redis.error_reply('session ' .. ARGV[3] .. ' was held past its lease and taken ' ..
                           'over by another request: what its request changed is not kept')
end
if ARGV[4] == '' then
  redis.call('expire', KEYS[1], ARGV[2])
else
  redis.call('set', KEYS[1], ARGV[4], 'EX', ARGV[2])
end
redis.call('del', KEYS[2])
if ARGV[5] ~= '' then
  if ARGV[4] ~= '' then redis.call('hset', KEYS[4], ARGV[5], ARGV[4]) end
  local now = redis.call('time')
  redis.call('zadd', KEYS[3], now[1] * 1000 + math.floor(now[2] / 1000) + ARGV[2] * 1000, ARGV[5])
end
return 1
)lua";

// KEYS: ends, last. ARGV: cookie. 1 for the one caller that ends the session.
constexpr std::string_view kEndScript = R"lua(
local ended = redis.call('zrem', KEYS[1], ARGV[1])
redis.call('hdel', KEYS[2], ARGV[1])
return ended
)lua";

// KEYS: ends, last. ARGV: the prefix of session keys. {cookie, last image, ...} of sessions
// whose time ran out, each handed to one caller only. A session is over only once its key
// expired, which Redis decides by its own clock: one that is due by the servers' clocks but
// whose key still lives is put back for when the key expires.
constexpr std::string_view kSweepScript = R"lua(
local now = redis.call('time')
local ms = now[1] * 1000 + math.floor(now[2] / 1000)
local due = redis.call('zrangebyscore', KEYS[1], '-inf', ms, 'LIMIT', 0, 100)
local out = {}
for _, cookie in ipairs(due) do
  local left = redis.call('pttl', ARGV[1] .. cookie)
  if left > 0 then
    redis.call('zadd', KEYS[1], ms + left, cookie)
  else
    redis.call('zrem', KEYS[1], cookie)
    out[#out + 1] = cookie
    out[#out + 1] = redis.call('hget', KEYS[2], cookie) or ''
    redis.call('hdel', KEYS[2], cookie)
  end
end
return out
)lua";

// KEYS: lock, values, names, order, seq, version. ARGV: token, op (put, remove, clear), key,
// name, value. {0, the version this write made} when done; {ms to wait (what is left of the
// lock's lease), 0} while another request holds the lock. Versions count on from the time in
// microseconds at which the first write found none, so that after a Redis that lost its data
// (a restart) they never repeat one that a server's copy may be of.
constexpr std::string_view kApplicationWriteScript = R"lua(
local owner = redis.call('get', KEYS[1])
if owner and owner ~= ARGV[1] then return {math.max(redis.call('pttl', KEYS[1]), 1), 0} end
if ARGV[2] == 'put' then
  redis.call('hset', KEYS[2], ARGV[3], ARGV[5])
  if redis.call('hsetnx', KEYS[3], ARGV[3], ARGV[4]) == 1 then
    redis.call('zadd', KEYS[4], redis.call('incr', KEYS[5]), ARGV[3])
  end
elseif ARGV[2] == 'remove' then
  redis.call('hdel', KEYS[2], ARGV[3])
  redis.call('hdel', KEYS[3], ARGV[3])
  redis.call('zrem', KEYS[4], ARGV[3])
else
  redis.call('del', KEYS[2], KEYS[3], KEYS[4])
end
if redis.call('exists', KEYS[6]) == 0 then
  local now = redis.call('time')
  redis.call('set', KEYS[6], now[1] .. string.format('%06d', tonumber(now[2])))
end
return {0, redis.call('incr', KEYS[6])}
)lua";

// KEYS: names, order. The names as first written, in the order they were added.
constexpr std::string_view kApplicationListScript = R"lua(
local order = redis.call('zrange', KEYS[2], 0, -1)
if #order == 0 then return {} end
return redis.call('hmget', KEYS[1], unpack(order))
)lua";

// KEYS: lock. ARGV: token. Drops the lock only when it is still ours.
constexpr std::string_view kReleaseScript = R"lua(
if redis.call('get', KEYS[1]) == ARGV[1] then return redis.call('del', KEYS[1]) end
return 0
)lua";

// KEYS: session, hold, ends. ARGV: cookie, time-out in s. Renews the expiry of a session that
// no request holds (one that does renews it when it closes).
constexpr std::string_view kTouchScript = R"lua(
if redis.call('exists', KEYS[2]) == 1 or redis.call('expire', KEYS[1], ARGV[2]) == 0 then
  return 0
end
local now = redis.call('time')
redis.call('zadd', KEYS[3], now[1] * 1000 + math.floor(now[2] / 1000) + ARGV[2] * 1000, ARGV[1])
return 1
)lua";

// KEYS: lock. ARGV: token, lease in ms. Renews the lease only when the lock is still ours.
constexpr std::string_view kRenewScript = R"lua(
if redis.call('get', KEYS[1]) == ARGV[1] then return redis.call('pexpire', KEYS[1], ARGV[2]) end
return 0
)lua";

// Waits a little longer each time, never past what is left of a lease.
class Backoff {
 public:
  void Wait(long long lease_left_ms) {
    auto pause = Next();
    if (lease_left_ms > 0) pause = std::min(pause, std::chrono::milliseconds(lease_left_ms));
    std::this_thread::sleep_for(pause);
  }
  // The next pause, for a caller that waits in its own way.
  std::chrono::milliseconds Next() {
    return std::exchange(step_, std::min(step_ * 2, std::chrono::milliseconds(8)));
  }

 private:
  std::chrono::milliseconds step_{1};
};

// Renews the leases of the holds this process has, a few times per lease, from a thread of its
// own: a request that runs longer than the lease keeps its session and its Application.Lock.
// The same thread runs the store's other work that can wait (`also`).
class LeaseKeeper {
 public:
  // Renews every `interval`, which must be well under the shortest lease.
  LeaseKeeper(RedisClient& redis, std::chrono::milliseconds interval, std::function<void()> also)
      : redis_(redis), interval_(interval), also_(std::move(also)), thread_([this] { Run(); }) {}
  ~LeaseKeeper() {
    {
      std::lock_guard guard(mutex_);
      stopping_ = true;
    }
    wake_.notify_all();
    thread_.join();
  }
  LeaseKeeper(const LeaseKeeper&) = delete;
  LeaseKeeper& operator=(const LeaseKeeper&) = delete;

  void Hold(const std::string& key, const std::string& token, std::chrono::milliseconds lease) {
    std::lock_guard guard(mutex_);
    holds_[token] = {key, std::to_string(lease.count())};
  }
  void Drop(const std::string& token) {
    std::lock_guard guard(mutex_);
    holds_.erase(token);
  }

 private:
  struct Held {
    std::string key;
    std::string lease;  // ms
  };

  void Run() {
    std::unique_lock guard(mutex_);
    while (!wake_.wait_for(guard, interval_, [this] { return stopping_; })) {
      const std::map<std::string, Held> holds = holds_;
      guard.unlock();
      for (const auto& [token, held] : holds) {
        try {
          redis_.Eval(kRenewScript, {held.key}, {token, held.lease});
        } catch (const StateUnavailable&) {
          break;  // the next round tries again; a request finds a lost hold when it closes
        }
      }
      also_();
      guard.lock();
    }
  }

  RedisClient& redis_;
  const std::chrono::milliseconds interval_;
  const std::function<void()> also_;
  std::mutex mutex_;
  std::condition_variable wake_;
  bool stopping_ = false;
  std::map<std::string, Held> holds_;  // by token
  std::thread thread_;                 // last: starts when the rest is ready
};

// --- images ------------------------------------------------------------------------------------

// A session's image is a sequence of stored values: its id, time-out, LCID, code page,
// whether it started, the count of values, then each name and value.
void PutLong(std::string& out, int32_t v) {
  StoredValue::From(Variant(v), false).Encode(out);
}

void PutText(std::string& out, StringView text) {
  StoredValue::From(Variant(String(text)), false).Encode(out);
}

bool TakeLong(std::string_view& in, int32_t& v) {
  StoredValue stored;
  if (!StoredValue::Decode(in, stored)) return false;
  const Variant value = stored.ToVariant();
  if (value.type() != VarType::Long) return false;
  v = value.as_long();
  return true;
}

bool TakeText(std::string_view& in, std::u16string& text) {
  StoredValue stored;
  if (!StoredValue::Decode(in, stored)) return false;
  const Variant value = stored.ToVariant();
  if (!value.is_string()) return false;
  text = std::u16string(value.as_string().view());
  return true;
}

std::string SessionImage(const SessionState& s) {
  std::string out;
  PutLong(out, s.id);
  PutLong(out, s.timeout_minutes);
  PutLong(out, s.lcid);
  PutLong(out, s.code_page);
  PutLong(out, s.started ? 1 : 0);
  PutLong(out, static_cast<int32_t>(s.contents.size()));
  for (size_t i = 0; i < s.contents.size(); ++i) {
    PutText(out, s.contents.NameAt(i));
    s.contents.ValueAt(i).Encode(out);
  }
  return out;
}

bool ReadSessionImage(std::string_view in, SessionState& s) {
  int32_t id = 0, timeout = 0, started = 0, count = 0;
  if (!TakeLong(in, id) || !TakeLong(in, timeout) || !TakeLong(in, s.lcid) ||
      !TakeLong(in, s.code_page) || !TakeLong(in, started) || !TakeLong(in, count) || count < 0)
    return false;
  s.id = id;
  s.timeout_minutes = timeout;
  s.started = started != 0;
  for (int32_t i = 0; i < count; ++i) {
    std::u16string name;
    StoredValue value;
    if (!TakeText(in, name) || !StoredValue::Decode(in, value)) return false;
    s.contents.Put(name, std::move(value));
  }
  return in.empty();
}

std::string FieldOf(StringView name) {
  return String::ToUtf8(ToLower(name).view());
}

// --- Application -------------------------------------------------------------------------------

using Clock = std::chrono::steady_clock;

// The Application values this process read, so that reading them again costs no round trip
// while nobody changed Application. Every write counts up Application's version in Redis, and
// reads of the version come along with calls a request makes anyway (its session's opening).
//
// What makes an answer from here right: the last version read, `version_`, was read by a
// command sent at `seen_`, so Redis ran it after that moment, and every write that had ended
// before it has a version up to `version_`. Each value kept was read after a version that equals
// `version_`, so it is at least that new. A request that came in before `seen_` may take them.
// Of two readings of the version, the one sent later holds, whichever Redis ran first.
class ApplicationCache {
 public:
  // The image of `field` (none for a name without a value), when it is known as new as at
  // `since`.
  bool Find(const std::string& field, Clock::time_point since, std::optional<std::string>& image) {
    std::lock_guard guard(mutex_);
    if (seen_ < since) return false;
    const auto it = values_.find(field);
    if (it == values_.end()) return false;
    image = it->second;
    return true;
  }

  // Redis held `version` when a command sent at `asked` read it.
  void Saw(long long version, Clock::time_point asked) {
    std::lock_guard guard(mutex_);
    See(version, asked);
  }

  // A value read right after reading `version` with a command sent at `asked`.
  void Keep(long long version, Clock::time_point asked, const std::string& field,
            std::optional<std::string> image) {
    // Names made up by requests could grow the copy without end.
    constexpr size_t kMostValues = 10000;
    std::lock_guard guard(mutex_);
    if (!See(version, asked)) return;
    if (values_.size() >= kMostValues) values_.clear();
    values_[field] = std::move(image);
  }

  // A write of this process made `version`: when it is the only write since the version the
  // values are of, they stay right with it applied; else they are dropped. `field` empty
  // means every value was removed; no `image`, that the value was.
  void Wrote(long long version, const std::string& field, std::optional<std::string> image) {
    std::lock_guard guard(mutex_);
    if (version != version_ + 1 || version_ < 0) {
      values_.clear();
      version_ = -1;
      return;
    }
    version_ = version;
    if (field.empty()) {
      values_.clear();
    } else {
      values_[field] = std::move(image);
    }
  }

 private:
  // False when the reading is older than the one the values go by and disagrees with it.
  bool See(long long version, Clock::time_point asked) {
    if (asked < seen_) return version == version_;
    if (version != version_) values_.clear();
    version_ = version;
    seen_ = asked;
    return true;
  }

  std::mutex mutex_;
  long long version_ = -1;  // none yet
  Clock::time_point seen_;
  std::unordered_map<std::string, std::optional<std::string>> values_;  // images by field
};

long long VersionOf(const RedisReply& r) {
  if (r.is_error()) throw StateUnavailable("Redis: " + r.text);
  long long version = 0;  // none written yet, or lost with a Redis that restarted
  if (!r.is_nil()) std::from_chars(r.text.data(), r.text.data() + r.text.size(), version);
  return version;
}

class RedisApplication final : public ApplicationState {
 public:
  RedisApplication(RedisClient& redis, LeaseKeeper& keeper, std::string process_token,
                   std::chrono::milliseconds lease)
      : redis_(redis), keeper_(keeper), process_token_(std::move(process_token)), lease_(lease) {}

  // A request in Application.Lock reads from Redis: it must see every write made before its
  // Lock, and the copy promises only those made before the request came in.
  Variant Get(StringView name, const void* requester, Clock::time_point since) override {
    read_ = true;
    const std::string field = FieldOf(name);
    std::optional<std::string> image;
    if (InLock(requester) || !cache_.Find(field, since, image)) {
      const Clock::time_point asked = Clock::now();
      const std::vector<RedisReply> r =
          redis_.Pipeline({{"GET", kApplicationVersion}, {"HGET", kApplication, field}});
      if (r[1].is_error()) throw StateUnavailable("Redis: " + r[1].text);
      if (!r[1].is_nil()) image = r[1].text;
      cache_.Keep(VersionOf(r[0]), asked, field, image);
    }
    if (!image) return {};
    std::string_view in = *image;
    StoredValue value;
    if (!StoredValue::Decode(in, value)) return {};
    return value.ToVariant();
  }

  // Whether a request of this process read Application yet: until then, openings of sessions
  // need not read its version.
  bool read() const { return read_; }
  ApplicationCache& cache() { return cache_; }

  void Put(StringView name, const Variant& value, const void* requester) override {
    std::string image;
    StoredValue::From(value, false).Encode(image);
    const std::string field = FieldOf(name);
    cache_.Wrote(Write("put", field, String::ToUtf8(name), image, requester), field, image);
  }

  void Remove(StringView name, const void* requester) override {
    const std::string field = FieldOf(name);
    cache_.Wrote(Write("remove", field, {}, {}, requester), field, std::nullopt);
  }

  void RemoveAll(const void* requester) override {
    cache_.Wrote(Write("clear", {}, {}, {}, requester), {}, std::nullopt);
  }

  size_t Count() override {
    return static_cast<size_t>(std::max(0LL, redis_.Run({"HLEN", kApplication}).integer));
  }

  std::u16string NameAt(size_t index) override {
    const std::vector<std::u16string> names = Names();
    return index < names.size() ? names[index] : std::u16string();
  }

  std::vector<std::u16string> Names() override {
    const RedisReply r =
        redis_.Eval(kApplicationListScript, {kApplicationNames, kApplicationOrder}, {});
    std::vector<std::u16string> out;
    for (const RedisReply& item : r.items) {
      if (!item.is_nil()) out.emplace_back(String::FromUtf8(item.text).view());
    }
    return out;
  }

  void Lock(const void* requester) override {
    {
      std::lock_guard guard(mutex_);
      if (auto it = depth_.find(requester); it != depth_.end()) {
        ++it->second;
        return;
      }
    }
    const std::string token = TokenOf(requester);
    const std::string lease = std::to_string(lease_.count());
    Backoff backoff;
    while (redis_.Run({"SET", kApplicationLock, token, "NX", "PX", lease}).is_nil())
      backoff.Wait(0);
    keeper_.Hold(kApplicationLock, token, lease_);
    std::lock_guard guard(mutex_);
    depth_[requester] = 1;
  }

  void Unlock(const void* requester) override {
    {
      std::lock_guard guard(mutex_);
      const auto it = depth_.find(requester);
      if (it == depth_.end()) return;  // Unlock without Lock is harmless, as on Windows
      if (--it->second > 0) return;
      depth_.erase(it);
    }
    Release(requester);
  }

  void ReleaseAll(const void* requester) override {
    {
      std::lock_guard guard(mutex_);
      if (depth_.erase(requester) == 0) return;
    }
    Release(requester);
  }

 private:
  void Release(const void* requester) {
    const std::string token = TokenOf(requester);
    keeper_.Drop(token);
    redis_.Eval(kReleaseScript, {kApplicationLock}, {token});
  }

  bool InLock(const void* requester) {
    std::lock_guard guard(mutex_);
    return depth_.contains(requester);
  }

  std::string TokenOf(const void* requester) const {
    return process_token_ + ":" + std::to_string(reinterpret_cast<uintptr_t>(requester));
  }

  // Returns the version the write made.
  long long Write(std::string_view op, std::string_view field, std::string_view name,
                  std::string_view image, const void* requester) {
    const std::string token = TokenOf(requester);
    Backoff backoff;
    for (;;) {
      const RedisReply r = redis_.Eval(kApplicationWriteScript,
                                       {kApplicationLock, kApplication, kApplicationNames,
                                        kApplicationOrder, kApplicationSeq, kApplicationVersion},
                                       {token, op, field, name, image});
      if (r.items.size() != 2) throw StateUnavailable("Redis: an unexpected answer to a write");
      if (r.items[0].integer == 0) return r.items[1].integer;
      backoff.Wait(r.items[0].integer);
    }
  }

  RedisClient& redis_;
  LeaseKeeper& keeper_;
  const std::string process_token_;
  const std::chrono::milliseconds lease_;
  std::mutex mutex_;
  std::unordered_map<const void*, int> depth_;  // the requests of this process in Lock
  ApplicationCache cache_;
  std::atomic<bool> read_{false};
};

// --- the store ---------------------------------------------------------------------------------

// A session's hold and image asked for ahead. Dropped unused (the page turned out not to want
// its session at once), it reads the answer and gives back a hold it got, so that the session's
// next request does not wait for the lease.
class RedisOpening final : public SessionOpening {
 public:
  RedisOpening(RedisClient& redis, std::string cookie, std::string token)
      : redis(redis),
        cookie(std::move(cookie)),
        key(kPrefix + "session:" + this->cookie),
        hold(kPrefix + "session-hold:" + this->cookie),
        token(std::move(token)) {}
  ~RedisOpening() override {
    try {
      if (call.active()) answer = redis.Finish(call);
      if (answer && !(*answer)[0].is_nil() && !(*answer)[0].is_error())
        redis.EvalNoWait(kReleaseScript, {hold}, {token}, true);
    } catch (const StateUnavailable&) {
      // The lease frees the hold.
    }
  }

  int AnswerFd() const override { return call.fd(); }

  std::optional<std::chrono::milliseconds> Settle() override {
    if (!call.active()) return std::chrono::milliseconds{};
    if (!redis.TakeIn(call)) return std::nullopt;
    try {
      answer = redis.Finish(call);
    } catch (const StateUnavailable&) {
      return std::chrono::milliseconds{};  // FinishOpen asks again, and tells
    }
    const RedisReply& hold_reply = (*answer)[0];
    if (hold_reply.is_error() || !hold_reply.is_nil()) return std::chrono::milliseconds{};
    answer.reset();
    return backoff.Next();
  }

  void AskAgain() override { ask(*this); }

  // The question may still reach Redis and take the hold: the release queued behind it on
  // the same connection gives the hold back then, so that the session's next request does not
  // wait out the lease.
  void GiveUp() override {
    if (call.active()) redis.Abandon(call, kReleaseScript, {hold}, {token});
    gave_up = true;
    redis.Silent();
  }

  RedisClient& redis;
  const std::string cookie;
  const std::string key;   // the session's image
  const std::string hold;  // its hold
  const std::string token;
  RedisClient::Started call;
  // The answer Settle read, for FinishOpen; it had the hold, or an error.
  std::optional<std::vector<RedisReply>> answer;
  std::chrono::steady_clock::time_point asked;  // when the hold was last asked for
  bool version = false;                         // Application's version was asked for too
  Backoff backoff;                              // between Settle's refusals
  bool gave_up = false;                         // GiveUp: no answer in time
  // Sends the opening's commands (again), leaving `call` inactive when Redis is out of reach.
  std::function<void(RedisOpening&)> ask;
};

class RedisStateStore final : public StateStore {
 public:
  RedisStateStore(const RedisAddress& address, RedisLeases leases)
      : redis_(address),
        process_token_(NewSessionCookie().substr(0, 16)),
        leases_(leases),
        keeper_(redis_, std::min(leases.session, leases.application) / 3,
                [this] { FlushTouches(); }),
        application_(redis_, keeper_, process_token_, leases.application) {}

  std::shared_ptr<SessionState> OpenSession(std::string_view cookie, int32_t timeout_minutes,
                                            bool& is_new) override {
    return Open(cookie, timeout_minutes, is_new, nullptr);
  }

  std::unique_ptr<SessionOpening> StartOpen(std::string_view cookie) override {
    if (!IsCookie(cookie)) return nullptr;
    auto opening = std::make_unique<RedisOpening>(redis_, std::string(cookie), NewToken());
    opening->ask = [this](RedisOpening& o) {
      try {
        o.asked = std::chrono::steady_clock::now();
        o.call = redis_.Start(OpenCommands(o));
      } catch (const StateUnavailable&) {
        // FinishOpen asks again, and tells.
      }
    };
    opening->ask(*opening);
    if (!opening->call.active()) return nullptr;  // OpenSession tells
    return opening;
  }

  std::shared_ptr<SessionState> FinishOpen(std::unique_ptr<SessionOpening> opening,
                                           std::string_view cookie, int32_t timeout_minutes,
                                           bool& is_new) override {
    auto* started = dynamic_cast<RedisOpening*>(opening.get());
    if (started && started->cookie != cookie) {
      opening.reset();
      started = nullptr;
    }
    return Open(cookie, timeout_minutes, is_new, started);
  }

  // The request does not wait for the reply, nor, mostly, sends the script by itself: it goes
  // with the next call on the connection, or a moment later. The hold keeps the session's next
  // request out until then, wherever it comes; a new or renewed cookie has no hold, so its
  // session goes out at once, before the cookie can come back, and so does the rare
  // abandoned one, whose key then goes as the page ends. Should the hold have been lost, the
  // script writes nothing and the log tells.
  void CloseSession(SessionState& session, bool keep) override {
    std::string image;
    std::string_view mode = "n";
    if (session.abandoned) {
      mode = "d";
    } else if (keep) {
      image = SessionImage(session);
      // A renewed session has no image under its new cookie yet.
      mode = image == session.loaded_image && session.renewed_from.empty() ? "t" : "s";
      if (mode == "t") image.clear();
    }
    if (!session.hold_token.empty()) keeper_.Drop(session.hold_token);
    const std::string timeout = std::to_string(int64_t{session.timeout_minutes} * 60);
    // A new session has no hold to check: nobody else knows its cookie yet.
    if ((mode == "s" || mode == "t") && session.renewed_from.empty() &&
        (session.hold_token.empty() || HoldIsSure(session))) {
      CloseWithoutCheck(session, image, timeout);
      return;
    }
    if ((mode == "s" || mode == "t") && session.renewed_from.empty()) {
      redis_.EvalNoWait(
          kKeepScript,
          {SessionKey(session.cookie), HoldKey(session.cookie), kSessionEnds, kSessionLast},
          {session.hold_token, timeout, std::to_string(session.id), image,
           session.watch_end ? std::string_view(session.cookie) : std::string_view()});
      return;
    }
    // The hold was taken under the cookie the request came with.
    const std::string& opened_as =
        session.renewed_from.empty() ? session.cookie : session.renewed_from;
    redis_.EvalNoWait(
        kCloseScript,
        {SessionKey(session.cookie), HoldKey(opened_as), kSessionEnds, kSessionLast,
         SessionKey(opened_as)},
        {session.hold_token, timeout, session.cookie, mode, image, session.watch_end ? "1" : "0",
         std::to_string(session.id), session.renewed_from},
        session.hold_token.empty() || !session.renewed_from.empty() || session.abandoned);
  }

  // The new cookie is known to nobody until the response carries it, so it needs no hold; the
  // session moves to its key when the request closes it.
  void RenewSession(SessionState& session) override {
    const int32_t id = NewId();
    if (session.renewed_from.empty()) session.renewed_from = session.cookie;
    session.cookie = NewSessionCookie();
    session.id = id;
  }

  bool EndSession(SessionState& session) override {
    // A session abandoned in its first request was never written: it ends here.
    if (session.loaded_image.empty()) return true;
    const std::string& stored_as =
        session.renewed_from.empty() ? session.cookie : session.renewed_from;
    return redis_.Eval(kEndScript, {kSessionEnds, kSessionLast}, {stored_as}).integer == 1;
  }

  std::vector<std::shared_ptr<SessionState>> TakeExpired(bool all) override {
    std::vector<std::shared_ptr<SessionState>> out;
    if (all) return out;  // the other servers carry on with the sessions
    const RedisReply r =
        redis_.Eval(kSweepScript, {kSessionEnds, kSessionLast}, {kPrefix + "session:"});
    for (size_t i = 0; i + 1 < r.items.size(); i += 2) {
      auto session = std::make_shared<SessionState>();
      session->cookie = r.items[i].text;
      if (ReadSessionImage(r.items[i + 1].text, *session)) out.push_back(std::move(session));
    }
    return out;
  }

  ApplicationState& Application() override { return application_; }
  bool shared() const override { return true; }

  void Check() override { redis_.Run({"PING"}); }

  // A page that does not name Session costs no round trip: its session's expiry is renewed
  // with the others seen lately, by the lease thread, a few seconds later.
  bool MayDefer(std::string_view cookie) const override { return IsCookie(cookie); }
  void Touch(std::string_view cookie) override {
    constexpr size_t kMostPending = 100000;
    std::lock_guard guard(touch_mutex_);
    if (touched_.size() < kMostPending) touched_.emplace(cookie);
  }

  bool ClaimApplicationStart() override {
    return !redis_.Run({"SET", kApplicationStarted, process_token_, "NX"}).is_nil();
  }

 private:
  std::shared_ptr<SessionState> Open(std::string_view cookie, int32_t timeout_minutes, bool& is_new,
                                     RedisOpening* started) {
    auto session = std::make_shared<SessionState>();
    is_new = true;
    if (IsCookie(cookie) && Load(cookie, *session, started)) {
      is_new = false;
      return session;
    }
    session->id = NewId();
    session->cookie = NewSessionCookie();
    session->timeout_minutes = timeout_minutes;
    return session;
  }

  // The close of a session whose hold is surely the request's own, or of a new one, in plain
  // commands, which cost Redis a fraction of a script's call. The time the session is due to end
  // comes from this server's clock, which may differ from the others' and Redis's: the sweep goes
  // by the key's expiry in Redis all the same. An empty `image` renews the expiry of an unchanged
  // one.
  void CloseWithoutCheck(const SessionState& session, const std::string& image,
                         const std::string& timeout) {
    const std::string key = SessionKey(session.cookie);
    std::vector<RedisCommand> commands;
    if (image.empty()) {
      commands.push_back({"EXPIRE", key, timeout});
    } else {
      commands.push_back({"SET", key, image, "EX", timeout});
    }
    std::string ends_at;
    if (session.watch_end) {
      if (!image.empty()) commands.push_back({"HSET", kSessionLast, session.cookie, image});
      const auto now = std::chrono::duration_cast<std::chrono::milliseconds>(
          std::chrono::system_clock::now().time_since_epoch());
      ends_at = std::to_string(now.count() + int64_t{session.timeout_minutes} * 60000);
      commands.push_back({"ZADD", kSessionEnds, ends_at, session.cookie});
    }
    // The cookie of a new session may come back at once, to another server: it goes out now.
    if (session.hold_token.empty()) {
      redis_.SendNoWait(commands, true);
      return;
    }
    const std::string hold = HoldKey(session.cookie);
    commands.push_back({"DEL", hold});
    redis_.SendNoWait(commands);
  }

  // Whether the request's hold on its session is surely still its own, so that it may write
  // the session and drop the hold without the script that checks the hold's token first.
  //
  // Nobody else takes a hold before its lease runs out, and nobody but its request drops it.
  // The lease starts when Redis sets the hold, which is after `hold_asked` by this process's
  // steady clock. So while less than half the lease has passed since then, the hold is ours,
  // and the other half covers what could still delay the commands: the wait of a queued close
  // for a call to ride along with (a few milliseconds at most, see RedisClient::kSendDelay),
  // the trip to Redis, and a Redis host's clock running faster than ours. Past half the lease
  // the request may have been stalled long enough to lose its hold, and the checked script
  // decides. What this cannot cover is this process frozen between the check and the write for
  // half a lease, or Redis's clock stepped forward by as much: with the default lease, 15 s.
  bool HoldIsSure(const SessionState& session) const {
    return std::chrono::steady_clock::now() - session.hold_asked < leases_.session / 2;
  }

  static bool IsCookie(std::string_view cookie) {
    return cookie.size() == 24 &&
           std::all_of(cookie.begin(), cookie.end(), [](char c) { return c >= 'A' && c <= 'Z'; });
  }
  static std::string SessionKey(std::string_view cookie) {
    return kPrefix + "session:" + std::string(cookie);
  }
  static std::string HoldKey(std::string_view cookie) {
    return kPrefix + "session-hold:" + std::string(cookie);
  }
  // SessionIDs come from a counter in Redis a block at a time, so that a new session costs its
  // request no round trip of its own (a worker thread waits for that one); each server hands
  // out the numbers of its own block.
  int32_t NewId() {
    constexpr long long kBlock = 64;
    std::lock_guard guard(id_mutex_);
    if (next_id_ == id_end_) {
      const long long last = redis_.Run({"INCRBY", kSessionId, std::to_string(kBlock)}).integer;
      next_id_ = last - kBlock + 1;
      id_end_ = last + 1;
    }
    // SessionID is a Long: the counter wraps before it leaves one.
    return static_cast<int32_t>(next_id_++ % 2147483647);
  }

  std::string NewToken() { return process_token_ + ":" + std::to_string(++requests_); }

  // Takes the hold and reads the image in one round trip. The image comes along even while
  // another request holds the session: the common case costs one round trip, and the image of
  // a miss is thrown away.
  // Application's version comes along once this process reads Application, so that the
  // request can read it from the process's copy.
  std::vector<RedisCommand> OpenCommands(RedisOpening& opening) {
    opening.version = application_.read();
    std::vector<RedisCommand> out{{"SET", opening.hold, opening.token, "NX", "PX", lease_text_},
                                  {"GET", opening.key}};
    if (opening.version) out.push_back({"GET", kApplicationVersion});
    return out;
  }

  // Takes the session's hold (waiting while another request has it) and reads its image;
  // false, holding nothing, for a session that is unknown or unreadable. The first answer is
  // that of `started` when the request asked ahead.
  bool Load(std::string_view cookie, SessionState& session, RedisOpening* started) {
    std::unique_ptr<RedisOpening> own;
    if (!started) {
      own = std::make_unique<RedisOpening>(redis_, std::string(cookie), NewToken());
      started = own.get();
    }
    RedisOpening& opening = *started;
    const std::string& hold = opening.hold;
    const std::string& token = opening.token;
    Backoff backoff;
    for (;;) {
      if (opening.gave_up) redis_.FailNoAnswer();
      std::vector<RedisReply> r;
      if (opening.answer) {
        r = std::move(*opening.answer);
        opening.answer.reset();
      } else if (opening.call.active()) {
        r = redis_.Finish(opening.call);
      } else {
        opening.asked = std::chrono::steady_clock::now();
        r = redis_.Pipeline(OpenCommands(opening));
      }
      for (const RedisReply& each : r) {
        if (each.is_error()) throw StateUnavailable("Redis: " + each.text);
      }
      if (opening.version) application_.cache().Saw(VersionOf(r[2]), opening.asked);
      session.hold_asked = opening.asked;
      if (r[0].is_nil()) {
        backoff.Wait(0);
        continue;
      }
      if (!r[1].is_nil() && ReadSessionImage(r[1].text, session)) {
        session.cookie = std::string(cookie);
        session.loaded_image = std::move(r[1].text);
        session.hold_token = token;
        keeper_.Hold(hold, token, leases_.session);
        return true;
      }
      // Gone (expired, abandoned, lost with a Redis restart), or an image of another version.
      session.contents.Clear();
      session.lcid = session.code_page = 0;
      session.started = false;
      redis_.Eval(kReleaseScript, {hold}, {token});
      return false;
    }
  }

  // The time-out is in the image; sessions gone since are skipped.
  void FlushTouches() {
    std::set<std::string> cookies;
    {
      std::lock_guard guard(touch_mutex_);
      cookies.swap(touched_);
    }
    if (cookies.empty()) return;
    try {
      std::vector<std::string> keys;
      for (const std::string& cookie : cookies)
        keys.push_back(SessionKey(cookie));
      std::vector<RedisCommand> gets;
      for (const std::string& key : keys)
        gets.push_back({"GET", key});
      const std::vector<RedisReply> images = redis_.Pipeline(gets);
      size_t i = 0;
      for (const std::string& cookie : cookies) {
        SessionState session;
        const RedisReply& image = images[i++];
        if (image.is_nil() || image.is_error() || !ReadSessionImage(image.text, session)) continue;
        const std::string timeout = std::to_string(int64_t{session.timeout_minutes} * 60);
        redis_.Eval(kTouchScript, {SessionKey(cookie), HoldKey(cookie), kSessionEnds},
                    {cookie, timeout});
      }
    } catch (const StateUnavailable&) {
      // Redis is away: the sessions may time out, as they would have without the pages.
    }
  }

  RedisClient redis_;
  const std::string process_token_;
  const RedisLeases leases_;
  const std::string lease_text_ = std::to_string(leases_.session.count());  // ms
  std::atomic<uint64_t> requests_{0};
  std::mutex id_mutex_;
  long long next_id_ = 0;  // the next SessionID of this server's block, up to id_end_
  long long id_end_ = 0;
  std::mutex touch_mutex_;
  std::set<std::string> touched_;  // cookies of sessions a deferring page left closed
  LeaseKeeper keeper_;
  RedisApplication application_;
};

}  // namespace

std::unique_ptr<StateStore> NewRedisStateStore(const RedisAddress& address, RedisLeases leases) {
  return std::make_unique<RedisStateStore>(address, leases);
}

}  // namespace qv::asp
