// Session and Application state behind one small interface. The store here keeps it in
// memory; a store shared by several processes can take its place, which is why values are
// kept as plain data rather than as the engine's own values.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
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
  static StoredValue From(const Variant& value, bool objects_allowed);
  Variant ToVariant() const;
  bool is_object() const { return kind_ == Kind::Object; }

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

// One session. A request holds `busy` while it runs, so that the requests of a session run one
// at a time, as on Windows.
struct SessionState {
  std::mutex busy;
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

  void Touch() { last_seen = std::chrono::steady_clock::now().time_since_epoch().count(); }
  bool ExpiredAt(std::chrono::steady_clock::time_point now) const {
    const std::chrono::steady_clock::duration idle(now.time_since_epoch().count() - last_seen);
    return idle > std::chrono::minutes(timeout_minutes);
  }
};

// Application state: values under a short internal guard, and the Lock/Unlock a script holds.
class ApplicationState {
 public:
  // The value of a name (Empty when there is none).
  Variant Get(StringView name) const;
  // Waits while another request holds the lock.
  void Put(StringView name, const Variant& value, const void* requester);
  void Remove(StringView name, const void* requester);
  void RemoveAll(const void* requester);
  size_t Count() const;
  // The name at an index from 0, or nothing.
  std::u16string NameAt(size_t index) const;
  std::vector<std::u16string> Names() const;

  void Lock(const void* requester);
  void Unlock(const void* requester);
  // Ends every hold of a request that is over.
  void ReleaseAll(const void* requester);

  ValueTable& static_objects() { return static_objects_; }

 private:
  void WaitForLock(std::unique_lock<std::mutex>& guard, const void* requester);

  mutable std::mutex mutex_;
  std::condition_variable unlocked_;
  const void* owner_ = nullptr;
  int depth_ = 0;
  ValueTable contents_;
  ValueTable static_objects_;
};

class StateStore {
 public:
  virtual ~StateStore() = default;
  // The live session of a cookie, or null for a cookie that is unknown, forged or expired.
  virtual std::shared_ptr<SessionState> FindSession(std::string_view cookie) = 0;
  virtual std::shared_ptr<SessionState> NewSession(int32_t timeout_minutes) = 0;
  virtual void RemoveSession(const SessionState& session) = 0;
  // Takes the sessions whose time ran out (or every session with `all`) out of the store.
  virtual std::vector<std::shared_ptr<SessionState>> TakeExpired(bool all) = 0;
  virtual ApplicationState& Application() = 0;
};

std::unique_ptr<StateStore> NewMemoryStateStore();

// 24 random capital letters from the system's secure source.
std::string NewSessionCookie();

}  // namespace qv::asp
