// Stored values and their byte image, and the in-memory store: a map of sessions by cookie
// under one mutex (held only for look-ups, never while a page runs), and the application's
// values.
#include "asp/state_store.h"

#include <sys/random.h>

#include <algorithm>
#include <bit>
#include <cassert>

#include "asp/asp_error.h"
#include "vbscript/classes.h"

namespace qv::asp {

// --- StoredValue -------------------------------------------------------------------------------

StoredValue StoredValue::From(const Variant& value, bool objects_allowed, std::string_view owner) {
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
      out.items_.push_back(From(item, objects_allowed, owner));
  } else if (value.is_object() && value.as_object()) {
    if (!objects_allowed && owner == "Application") {
      RaiseAspError(
          "Application", "0197",
          "Cannot add object with apartment model behavior to the application intrinsic object.");
    }
    if (!objects_allowed) {
      RaiseAspError(owner, "0197",
                    "Disallowed object use: the Session object is shared with other servers "
                    "and keeps only numbers, text, dates, Booleans, Empty, Null and arrays of "
                    "them.");
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

// --- the byte image ----------------------------------------------------------------------------

// A kind byte, then: nothing (Empty, Null, Nothing), 8 little-endian bytes for the numbers,
// dates and Booleans (the variant's own bits), UTF-16 units for text, or an array's element
// type, bounds and items.
namespace {

enum Tag : uint8_t { kTagPlain = 'p', kTagText = 't', kTagArray = 'a' };

void PutU64(std::string& out, uint64_t v) {
  for (int i = 0; i < 8; ++i)
    out += static_cast<char>(v >> (8 * i));
}

bool TakeU64(std::string_view& in, uint64_t& v) {
  if (in.size() < 8) return false;
  v = 0;
  for (int i = 0; i < 8; ++i)
    v |= static_cast<uint64_t>(static_cast<uint8_t>(in[i])) << (8 * i);
  in.remove_prefix(8);
  return true;
}

uint64_t BitsOf(const Variant& v) {
  switch (v.type()) {
    case VarType::Integer:
      return static_cast<uint64_t>(static_cast<int64_t>(v.as_integer()));
    case VarType::Long:
    case VarType::Error:
      return static_cast<uint64_t>(static_cast<int64_t>(v.as_long()));
    case VarType::Byte:
      return v.as_byte();
    case VarType::Boolean:
      return v.as_bool() ? 1 : 0;
    case VarType::Currency:
      return static_cast<uint64_t>(v.as_currency());
    case VarType::Single: {
      const double d = v.as_single();
      return std::bit_cast<uint64_t>(d);
    }
    case VarType::Double:
    case VarType::Date:
      return std::bit_cast<uint64_t>(v.as_double());
    default:
      return 0;
  }
}

bool PlainOf(VarType type, uint64_t bits, Variant& out) {
  switch (type) {
    case VarType::Empty:
      out = Variant();
      return true;
    case VarType::Null:
      out = Variant::Null();
      return true;
    case VarType::Object:
      out = Variant::Nothing();
      return true;
    case VarType::Integer:
      out = Variant(static_cast<int16_t>(bits));
      return true;
    case VarType::Long:
      out = Variant(static_cast<int32_t>(bits));
      return true;
    case VarType::Error:
      out = Variant::ErrorValue(static_cast<int32_t>(bits));
      return true;
    case VarType::Byte:
      out = Variant(static_cast<uint8_t>(bits));
      return true;
    case VarType::Boolean:
      out = Variant(bits != 0);
      return true;
    case VarType::Currency:
      out = Variant::Currency(static_cast<int64_t>(bits));
      return true;
    case VarType::Single:
      out = Variant(static_cast<float>(std::bit_cast<double>(bits)));
      return true;
    case VarType::Double:
      out = Variant(std::bit_cast<double>(bits));
      return true;
    case VarType::Date:
      out = Variant::Date(std::bit_cast<double>(bits));
      return true;
    default:
      return false;
  }
}

}  // namespace

void StoredValue::Encode(std::string& out) const {
  assert(kind_ != Kind::Object && "a shared store refuses objects when they are assigned");
  switch (kind_) {
    case Kind::Plain:
      out += static_cast<char>(kTagPlain);
      PutU64(out, static_cast<uint64_t>(plain_.type()));
      PutU64(out, BitsOf(plain_));
      return;
    case Kind::Text:
      out += static_cast<char>(kTagText);
      PutU64(out, text_.size());
      for (const char16_t unit : text_) {
        out += static_cast<char>(unit & 0xFF);
        out += static_cast<char>(unit >> 8);
      }
      return;
    case Kind::Array:
      out += static_cast<char>(kTagArray);
      PutU64(out, static_cast<uint64_t>(element_type_));
      PutU64(out, bounds_.size());
      for (const ArrayBound& b : bounds_) {
        PutU64(out, static_cast<uint64_t>(static_cast<int64_t>(b.lower)));
        PutU64(out, static_cast<uint64_t>(b.count));
      }
      for (const StoredValue& item : items_)
        item.Encode(out);
      return;
    case Kind::Object:
      return;
  }
}

bool StoredValue::Decode(std::string_view& in, StoredValue& out) {
  if (in.empty()) return false;
  const char tag = in.front();
  in.remove_prefix(1);
  out = StoredValue();
  uint64_t a = 0, b = 0;
  switch (tag) {
    case kTagPlain:
      return TakeU64(in, a) && TakeU64(in, b) && PlainOf(static_cast<VarType>(a), b, out.plain_);
    case kTagText: {
      if (!TakeU64(in, a) || a > in.size() / 2) return false;
      out.kind_ = Kind::Text;
      out.text_.resize(a);
      for (size_t i = 0; i < a; ++i) {
        out.text_[i] = static_cast<char16_t>(static_cast<uint8_t>(in[2 * i]) |
                                             static_cast<uint8_t>(in[2 * i + 1]) << 8);
      }
      in.remove_prefix(2 * a);
      return true;
    }
    case kTagArray: {
      // Every item takes at least 17 bytes, which bounds what a damaged image can ask for.
      if (!TakeU64(in, a) || !TakeU64(in, b) || b == 0 || b > 60) return false;
      out.kind_ = Kind::Array;
      out.element_type_ = static_cast<VarType>(a);
      uint64_t total = 1;
      for (uint64_t d = 0; d < b; ++d) {
        uint64_t lower = 0, count = 0;
        if (!TakeU64(in, lower) || !TakeU64(in, count) || count > in.size()) return false;
        total *= count;
        if (total > in.size()) return false;
        out.bounds_.push_back({static_cast<int32_t>(lower), static_cast<int64_t>(count)});
      }
      out.items_.resize(total);
      for (StoredValue& item : out.items_) {
        if (!Decode(in, item)) return false;
      }
      return true;
    }
    default:
      return false;
  }
}

// --- the memory store --------------------------------------------------------------------------

namespace {

class MemoryApplication final : public ApplicationState {
 public:
  Variant Get(StringView name, const void*, std::chrono::steady_clock::time_point) override {
    std::lock_guard guard(mutex_);
    const StoredValue* v = contents_.Find(name);
    return v ? v->ToVariant() : Variant();
  }

  void Put(StringView name, const Variant& value, const void* requester) override {
    StoredValue stored = StoredValue::From(value, false);
    std::unique_lock guard(mutex_);
    WaitForLock(guard, requester);
    contents_.Put(name, std::move(stored));
  }

  void Remove(StringView name, const void* requester) override {
    std::unique_lock guard(mutex_);
    WaitForLock(guard, requester);
    contents_.Remove(name);
  }

  void RemoveAll(const void* requester) override {
    std::unique_lock guard(mutex_);
    WaitForLock(guard, requester);
    contents_.Clear();
  }

  size_t Count() override {
    std::lock_guard guard(mutex_);
    return contents_.size();
  }

  std::u16string NameAt(size_t index) override {
    std::lock_guard guard(mutex_);
    return index < contents_.size() ? contents_.NameAt(index) : std::u16string();
  }

  std::vector<std::u16string> Names() override {
    std::lock_guard guard(mutex_);
    std::vector<std::u16string> out;
    for (size_t i = 0; i < contents_.size(); ++i)
      out.push_back(contents_.NameAt(i));
    return out;
  }

  void Lock(const void* requester) override {
    std::unique_lock guard(mutex_);
    WaitForLock(guard, requester);
    owner_ = requester;
    ++depth_;
  }

  void Unlock(const void* requester) override {
    std::lock_guard guard(mutex_);
    if (owner_ != requester) return;  // Unlock without Lock is harmless, as on Windows
    if (--depth_ == 0) {
      owner_ = nullptr;
      unlocked_.notify_all();
    }
  }

  void ReleaseAll(const void* requester) override {
    std::lock_guard guard(mutex_);
    if (owner_ != requester) return;
    owner_ = nullptr;
    depth_ = 0;
    unlocked_.notify_all();
  }

 private:
  void WaitForLock(std::unique_lock<std::mutex>& guard, const void* requester) {
    unlocked_.wait(guard, [&] { return owner_ == nullptr || owner_ == requester; });
  }

  std::mutex mutex_;
  std::condition_variable unlocked_;
  const void* owner_ = nullptr;
  int depth_ = 0;
  ValueTable contents_;
};

class MemoryStateStore final : public StateStore {
 public:
  MemoryStateStore() {
    uint32_t seed = 0;
    if (getrandom(&seed, sizeof seed, 0) != sizeof seed) seed = 1;
    next_id_ = static_cast<int32_t>(seed % 900000000u) + 100000000;
  }

  std::shared_ptr<SessionState> OpenSession(std::string_view cookie, int32_t timeout_minutes,
                                            bool& is_new) override {
    std::shared_ptr<SessionState> session = Find(cookie);
    if (session) {
      session->busy.lock();
      // Renewed by the request this one waited for: the old cookie no longer reaches it.
      if (session->cookie != cookie) {
        session->busy.unlock();
        session = nullptr;
      }
    }
    is_new = !session;
    if (!session) {
      session = NewSession(timeout_minutes);
      session->busy.lock();
    }
    session->Touch();
    return session;
  }

  void RenewSession(SessionState& session) override {
    std::lock_guard guard(mutex_);
    const auto it = sessions_.find(session.cookie);
    if (it == sessions_.end()) return;  // ended already (the sweep took it)
    std::shared_ptr<SessionState> held = std::move(it->second);
    assert(held.get() == &session);
    sessions_.erase(it);
    do {
      session.cookie = NewSessionCookie();
    } while (sessions_.count(session.cookie));
    session.id = next_id_++;
    sessions_.emplace(session.cookie, std::move(held));
  }

  void CloseSession(SessionState& session, bool) override {
    session.Touch();
    session.busy.unlock();
  }

  bool EndSession(SessionState& session) override {
    std::lock_guard guard(mutex_);
    return sessions_.erase(session.cookie) > 0;
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
  std::shared_ptr<SessionState> Find(std::string_view cookie) {
    std::lock_guard guard(mutex_);
    const auto it = sessions_.find(std::string(cookie));
    if (it == sessions_.end()) return nullptr;
    if (it->second->ExpiredAt(std::chrono::steady_clock::now())) return nullptr;
    return it->second;
  }

  std::shared_ptr<SessionState> NewSession(int32_t timeout_minutes) {
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

  std::mutex mutex_;
  std::unordered_map<std::string, std::shared_ptr<SessionState>> sessions_;
  int32_t next_id_;
  MemoryApplication application_;
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
