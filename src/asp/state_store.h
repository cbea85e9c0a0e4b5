// Session and Application state behind one small interface, with two stores: in memory (one
// process) and Redis (several processes, see redis_store.h). Values are kept as plain data
// rather than as the engine's own values, so that either store can hold them.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "automation/object.h"
#include "automation/safe_array.h"

namespace qv::asp {

// Objects that live as long as one request (the intrinsic objects); a session refuses them.
class RequestScoped {
 public:
  virtual ~RequestScoped() = default;
};

// A value between requests. Text and arrays are copied out of the engine's shared buffers,
// whose counts are not safe to touch from two threads; objects are kept only where one request
// at a time can reach them (a session), and never script class instances, which die with the
// engine that made them.
class StoredValue {
 public:
  StoredValue() = default;
  // Raises the ASP error for an object where `objects_allowed` is false, or a script instance.
  // `owner` names the object refusing it ("Application", or "Session" for a shared session).
  static StoredValue From(const Variant& value, bool objects_allowed,
                          std::string_view owner = "Application");
  Variant ToVariant() const;
  bool is_object() const { return kind_ == Kind::Object; }

  // A byte image of a value without objects, for a store outside this process; Decode takes
  // one value off the front of `in` and returns false on bytes it did not write.
  void Encode(std::string& out) const;
  static bool Decode(std::string_view& in, StoredValue& out);

 private:
  enum class Kind : uint8_t { Plain, Text, Array, Object };
  Kind kind_ = Kind::Plain;
  Variant plain_;  // neither text, array nor object
  std::u16string text_;
  VarType element_type_ = VarType::Variant;
  std::vector<ArrayBound> bounds_;
  std::vector<StoredValue> items_;
  Ref<Object> object_;
};

// Named values in the order they were added, names without regard to case.
class ValueTable {
 public:
  const StoredValue* Find(StringView name) const;
  void Put(StringView name, StoredValue value);
  void Remove(StringView name);
  void RemoveAt(size_t index);
  void Clear() { entries_.clear(); }
  size_t size() const { return entries_.size(); }
  const std::u16string& NameAt(size_t i) const { return entries_[i].first; }
  const StoredValue& ValueAt(size_t i) const { return entries_[i].second; }

 private:
  std::vector<std::pair<std::u16string, StoredValue>> entries_;
};

// One session as a request sees it. The store holds it for one request at a time between
// OpenSession and CloseSession, as Windows runs the requests of a session one by one.
struct SessionState {
  std::mutex busy;     // the memory store's hold; the sweep takes it too
  std::string cookie;  // the random text of the session cookie
  int32_t id = 0;      // Session.SessionID
  // Read by the store's sweep while the session's request may change them.
  std::atomic<int32_t> timeout_minutes{20};
  std::atomic<std::chrono::steady_clock::rep> last_seen{0};
  int32_t lcid = 0;
  int32_t code_page = 0;
  bool abandoned = false;
  bool started = false;  // Session_OnStart has run
  ValueTable contents;
  ValueTable static_objects;
  // A shared store's own: the image the session was loaded as (empty for a new session), so
  // that it writes back only a session that changed, and the token of its hold.
  std::string loaded_image;
  std::string hold_token;
  // When the request asked for its session, by this process's clock: the hold's lease runs
  // from a moment after this, so the hold is surely still the request's while the lease is not
  // nearly over.
  std::chrono::steady_clock::time_point hold_asked;
  // The cookie the session had when this request opened it, once RenewSession gave it another:
  // a shared store moves the session from the old key to the new one when it closes.
  std::string renewed_from;
  // Whether a shared store keeps track of when the session ends: only a Session_OnEnd needs it.
  bool watch_end = true;

  void Touch() { last_seen = std::chrono::steady_clock::now().time_since_epoch().count(); }
  bool ExpiredAt(std::chrono::steady_clock::time_point now) const {
    const std::chrono::steady_clock::duration idle(now.time_since_epoch().count() - last_seen);
    return idle > std::chrono::minutes(timeout_minutes);
  }
};

// Application state: named values, and the Lock/Unlock a script holds. `requester` tells the
// requests apart (a request's page context); a request that holds no lock waits to write
// while another holds it.
class ApplicationState {
 public:
  virtual ~ApplicationState() = default;
  // The value of a name (Empty when there is none), at least as new as at `since`: a store
  // outside this process may answer from what it read since then. The request of `requester`
  // sees what its own writes and Lock leave.
  virtual Variant Get(StringView name, const void* requester,
                      std::chrono::steady_clock::time_point since) = 0;
  virtual void Put(StringView name, const Variant& value, const void* requester) = 0;
  virtual void Remove(StringView name, const void* requester) = 0;
  virtual void RemoveAll(const void* requester) = 0;
  virtual size_t Count() = 0;
  // The name at an index from 0, or nothing.
  virtual std::u16string NameAt(size_t index) = 0;
  virtual std::vector<std::u16string> Names() = 0;

  virtual void Lock(const void* requester) = 0;
  virtual void Unlock(const void* requester) = 0;
  // Ends every hold of a request that is over.
  virtual void ReleaseAll(const void* requester) = 0;
};

// Raised when a store outside this process cannot be reached: the request answers 503 and the
// server carries on, so that it recovers when the store is back.
class StateUnavailable : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// A session's opening that a store started ahead of the request's need (StateStore::StartOpen).
// One that is dropped without FinishOpen lets the session go again.
class SessionOpening {
 public:
  virtual ~SessionOpening() = default;
  // A descriptor that turns readable when the answer may have come, so that a caller with
  // other requests to serve can do so meanwhile instead of sleeping in FinishOpen; -1 when
  // there is nothing to wait for. Readable is a hint: FinishOpen still waits if need be.
  virtual int AnswerFd() const { return -1; }
  // For such a caller, once AnswerFd is readable: takes in what came, without waiting. Nothing
  // while some of the answer is still to come (wait on AnswerFd again). Where the answer says
  // that another request holds the session, the opening drops it and gives the pause to make
  // before AskAgain, so that the caller need not sleep either; zero when FinishOpen may go on.
  virtual std::optional<std::chrono::milliseconds> Settle() { return std::chrono::milliseconds{}; }
  virtual void AskAgain() {}
  // For such a caller that waited as long as a store may take to answer: FinishOpen then
  // raises StateUnavailable at once, instead of waiting for a store that hangs once more.
  virtual void GiveUp() {}
};

class StateStore {
 public:
  virtual ~StateStore() = default;
  // The session of a cookie, held for this request until CloseSession (waiting while another
  // request holds it); a new session, with `is_new` set, for a cookie that is unknown, forged
  // or expired.
  virtual std::shared_ptr<SessionState> OpenSession(std::string_view cookie,
                                                    int32_t timeout_minutes, bool& is_new) = 0;
  // Where the store is in another process: sends for the session of `cookie` already, so that
  // the round trip runs while the request finds and prepares its page, and FinishOpen picks up
  // the answer. Nothing where that gains nothing, or the cookie could not be a session's; never
  // raises (FinishOpen does).
  virtual std::unique_ptr<SessionOpening> StartOpen(std::string_view /*cookie*/) { return nullptr; }
  // OpenSession, for the same cookie as a StartOpen that gave `opening` (or none).
  virtual std::shared_ptr<SessionState> FinishOpen(std::unique_ptr<SessionOpening> /*opening*/,
                                                   std::string_view cookie, int32_t timeout_minutes,
                                                   bool& is_new) {
    return OpenSession(cookie, timeout_minutes, is_new);
  }
  // Keeps what the request changed (unless the session was abandoned, or `keep` is false for
  // a request that failed half way) and lets the next request of the session in.
  virtual void CloseSession(SessionState& session, bool keep) = 0;
  // Gives the session that this request holds a new cookie and SessionID, keeping its values:
  // from now on the old cookie reaches nothing, so that a cookie somebody planted or read
  // before a login is worthless after it. Raises StateUnavailable as OpenSession does.
  virtual void RenewSession(SessionState& session) = 0;
  // Takes an abandoned session out of the store; false when it has ended already, so that
  // Session_OnEnd runs once at most.
  virtual bool EndSession(SessionState& session) = 0;
  // Takes the sessions whose time ran out (or every session of this process with `all`) out
  // of the store, for their Session_OnEnd.
  virtual std::vector<std::shared_ptr<SessionState>> TakeExpired(bool all) = 0;
  virtual ApplicationState& Application() = 0;

  // True when other processes share the state: session objects cannot be kept, and the
  // application starts once for all of them and never ends with one of them.
  virtual bool shared() const { return false; }
  // True for the one caller that is to run Application_OnStart.
  virtual bool ClaimApplicationStart() { return true; }
  // Raises StateUnavailable when the store cannot be reached now.
  virtual void Check() {}
  // True when a page that does not name Session may leave the session of `cookie` closed, to
  // save the store the work; the store then keeps the session from timing out with Touch.
  virtual bool MayDefer(std::string_view /*cookie*/) const { return false; }
  virtual void Touch(std::string_view /*cookie*/) {}
};

std::unique_ptr<StateStore> NewMemoryStateStore();

// 24 random capital letters from the system's secure source.
std::string NewSessionCookie();

}  // namespace qv::asp
