// The in-memory store: a map of sessions by cookie under one mutex (held only for look-ups,
// never while a page runs), and the application's values.
#include "asp/state_store.h"

#include <sys/random.h>

#include <algorithm>
#include <cassert>

#include "asp/asp_error.h"
#include "vbscript/classes.h"

namespace qv::asp {

// --- StoredValue -------------------------------------------------------------------------------

StoredValue StoredValue::From(const Variant& value, bool objects_allowed) {
  StoredValue out;
  if (value.is_string()) {
    out.kind_ = Kind::Text;
    out.text_ = std::u16string(value.as_string().view());
  } else if (value.is_array()) {
    const SafeArray& array = *value.as_array();
    out.kind_ = Kind::Array;
    out.element_type_ = array.element_type();
    out.bounds_.assign(array.bounds().begin(), array.bounds().end());
    out.items_.reserve(array.size());
    for (const Variant& item : array.elements())
      out.items_.push_back(From(item, objects_allowed));
  } else if (value.is_object() && value.as_object()) {
    if (!objects_allowed) {
      RaiseAspError(
          "Application", "0197",
          "Cannot add object with apartment model behavior to the application intrinsic object.");
    }
    if (dynamic_cast<RequestScoped*>(value.as_object())) {
      RaiseAspError("Session", "0198",
                    "Cannot keep an object of the request in the Session object.");
    }
    if (dynamic_cast<vbs::ScriptObject*>(value.as_object())) {
      RaiseAspError("Session", "0198",
                    "Cannot keep an instance of a script class in the Session object.");
    }
    out.kind_ = Kind::Object;
    out.object_ = Ref<Object>(value.as_object());
  } else {
    out.plain_ = value;  // numbers, dates, Empty, Null, Nothing: plain bytes
  }
  return out;
}

Variant StoredValue::ToVariant() const {
  switch (kind_) {
    case Kind::Plain:
      return plain_;
    case Kind::Text:
      return Variant(String(StringView(text_)));
    case Kind::Object:
      return Variant(object_);
    case Kind::Array: {
      auto array = MakeRef<SafeArray>(element_type_, std::span<const ArrayBound>(bounds_));
      for (size_t i = 0; i < items_.size() && i < array->size(); ++i)
        (*array)[i] = items_[i].ToVariant();
      return Variant(array);
    }
  }
  return {};
}

// --- ValueTable --------------------------------------------------------------------------------

const StoredValue* ValueTable::Find(StringView name) const {
  for (const auto& [n, v] : entries_) {
    if (EqualsNoCase(n, name)) return &v;
  }
  return nullptr;
}

void ValueTable::Put(StringView name, StoredValue value) {
  for (auto& [n, v] : entries_) {
    if (EqualsNoCase(n, name)) {
      v = std::move(value);
      return;
    }
  }
  entries_.emplace_back(std::u16string(name), std::move(value));
}

void ValueTable::Remove(StringView name) {
  std::erase_if(entries_, [&](const auto& e) { return EqualsNoCase(e.first, name); });
}

void ValueTable::RemoveAt(size_t index) {
  if (index < entries_.size()) entries_.erase(entries_.begin() + static_cast<ptrdiff_t>(index));
}

// --- ApplicationState --------------------------------------------------------------------------

void ApplicationState::WaitForLock(std::unique_lock<std::mutex>& guard, const void* requester) {
  unlocked_.wait(guard, [&] { return owner_ == nullptr || owner_ == requester; });
}

Variant ApplicationState::Get(StringView name) const {
  std::lock_guard guard(mutex_);
  const StoredValue* v = contents_.Find(name);
  return v ? v->ToVariant() : Variant();
}

void ApplicationState::Put(StringView name, const Variant& value, const void* requester) {
  StoredValue stored = StoredValue::From(value, false);
  std::unique_lock guard(mutex_);
  WaitForLock(guard, requester);
  contents_.Put(name, std::move(stored));
}

void ApplicationState::Remove(StringView name, const void* requester) {
  std::unique_lock guard(mutex_);
  WaitForLock(guard, requester);
  contents_.Remove(name);
}

void ApplicationState::RemoveAll(const void* requester) {
  std::unique_lock guard(mutex_);
  WaitForLock(guard, requester);
  contents_.Clear();
}

size_t ApplicationState::Count() const {
  std::lock_guard guard(mutex_);
  return contents_.size();
}

std::u16string ApplicationState::NameAt(size_t index) const {
  std::lock_guard guard(mutex_);
  return index < contents_.size() ? contents_.NameAt(index) : std::u16string();
}

std::vector<std::u16string> ApplicationState::Names() const {
  std::lock_guard guard(mutex_);
  std::vector<std::u16string> out;
  for (size_t i = 0; i < contents_.size(); ++i)
    out.push_back(contents_.NameAt(i));
  return out;
}

void ApplicationState::Lock(const void* requester) {
  std::unique_lock guard(mutex_);
  WaitForLock(guard, requester);
  owner_ = requester;
  ++depth_;
}

void ApplicationState::Unlock(const void* requester) {
  std::lock_guard guard(mutex_);
  if (owner_ != requester) return;  // Unlock without Lock is harmless, as on Windows
  if (--depth_ == 0) {
    owner_ = nullptr;
    unlocked_.notify_all();
  }
}

void ApplicationState::ReleaseAll(const void* requester) {
  std::lock_guard guard(mutex_);
  if (owner_ != requester) return;
  owner_ = nullptr;
  depth_ = 0;
  unlocked_.notify_all();
}

// --- the memory store --------------------------------------------------------------------------

namespace {

class MemoryStateStore final : public StateStore {
 public:
  MemoryStateStore() {
    uint32_t seed = 0;
    if (getrandom(&seed, sizeof seed, 0) != sizeof seed) seed = 1;
    next_id_ = static_cast<int32_t>(seed % 900000000u) + 100000000;
  }

  std::shared_ptr<SessionState> FindSession(std::string_view cookie) override {
    std::lock_guard guard(mutex_);
    const auto it = sessions_.find(std::string(cookie));
    if (it == sessions_.end()) return nullptr;
    if (it->second->ExpiredAt(std::chrono::steady_clock::now())) return nullptr;
    return it->second;
  }

  std::shared_ptr<SessionState> NewSession(int32_t timeout_minutes) override {
    auto session = std::make_shared<SessionState>();
    session->timeout_minutes = timeout_minutes;
    session->Touch();
    std::lock_guard guard(mutex_);
    do {
      session->cookie = NewSessionCookie();
    } while (sessions_.count(session->cookie));
    session->id = next_id_++;
    sessions_.emplace(session->cookie, session);
    return session;
  }

  void RemoveSession(const SessionState& session) override {
    std::lock_guard guard(mutex_);
    sessions_.erase(session.cookie);
  }

  std::vector<std::shared_ptr<SessionState>> TakeExpired(bool all) override {
    const auto now = std::chrono::steady_clock::now();
    std::vector<std::shared_ptr<SessionState>> out;
    std::lock_guard guard(mutex_);
    for (auto it = sessions_.begin(); it != sessions_.end();) {
      if (all || it->second->ExpiredAt(now)) {
        out.push_back(std::move(it->second));
        it = sessions_.erase(it);
      } else {
        ++it;
      }
    }
    return out;
  }

  ApplicationState& Application() override { return application_; }

 private:
  std::mutex mutex_;
  std::unordered_map<std::string, std::shared_ptr<SessionState>> sessions_;
  int32_t next_id_;
  ApplicationState application_;
};

}  // namespace

std::unique_ptr<StateStore> NewMemoryStateStore() {
  return std::make_unique<MemoryStateStore>();
}

std::string NewSessionCookie() {
  unsigned char bytes[24];
  size_t got = 0;
  while (got < sizeof bytes) {
    const ssize_t n = getrandom(bytes + got, sizeof bytes - got, 0);
    if (n > 0) got += static_cast<size_t>(n);
  }
  std::string out;
  for (unsigned char b : bytes)
    out += static_cast<char>('A' + b % 26);  // 24 letters: about 112 bits
  return out;
}

}  // namespace qv::asp
