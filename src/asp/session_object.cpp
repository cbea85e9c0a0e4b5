// Session and Application as scripts see them: named values (Contents, the default member),
// StaticObjects, and each one's own members. Values go through StoredValue both ways, so a
// page always works on its own copy of text and arrays.
#include <algorithm>
#include <cassert>
#include <chrono>

#include "asp/asp_error.h"
#include "asp/collections.h"
#include "asp/intrinsics.h"
#include "asp/shared_object.h"
#include "asp/text_codec.h"
#include "automation/convert.h"
#include "vbscript/vm.h"

namespace qv::asp {
namespace {

// Contents and StaticObjects of Session and Application: names with values, by name or by
// position from 1, over what V gives: Count, NameAt and ValueAt (from 0), ValueOf, Store,
// RemoveName and RemoveAll.
template <class V>
class Contents : public DispatchObject<V>, public RequestScoped {
 public:
  static const DispatchTable<V>& Table() {
    static const auto table =
        DispatchTable<V>(u"IVariantDictionary")
            .Property(
                u"Item", [](V& v, Args a) { return v.Get(a); },
                [](V& v, Args a, const Variant& x) { v.Put(a, x); },
                [](V& v, Args a, const Variant& x) { v.Put(a, x); })
            .Property(u"Count", [](V& v, Args) { return Variant(static_cast<int32_t>(v.Count())); })
            .Property(u"Key",
                      [](V& v, Args a) {
                        CheckArgCount(a, 1, 1);
                        return Variant(String(StringView(v.NameAt(v.Position(a[0])))));
                      })
            .Method(u"Remove",
                    [](V& v, Args a) {
                      CheckArgCount(a, 1, 1);
                      if (!IsPosition(a[0])) {
                        v.RemoveName(ToString(a[0]));
                      } else if (const int32_t i = ToLong(a[0]);
                                 i >= 1 && static_cast<size_t>(i) <= v.Count()) {
                        v.RemoveName(v.NameAt(static_cast<size_t>(i - 1)));
                      }
                      return Variant();
                    })
            .Method(u"RemoveAll",
                    [](V& v, Args) {
                      v.RemoveAll();
                      return Variant();
                    })
            .Default(u"Item");
    return table;
  }

  Ref<Enumerator> NewEnum() override {
    std::vector<Variant> names;
    for (size_t i = 0, n = self().Count(); i < n; ++i)
      names.emplace_back(String(StringView(self().NameAt(i))));
    return MakeRef<ListEnumerator>(std::move(names));
  }

  Variant Get(Args a) {
    CheckArgCount(a, 1, 1);
    if (IsPosition(a[0])) return self().ValueAt(Position(a[0]));
    return self().ValueOf(ToString(a[0]));
  }
  void Put(Args a, const Variant& v) {
    CheckArgCount(a, 1, 1);
    self().Store(ToString(a[0]), v);
  }

 private:
  static bool IsPosition(const Variant& index) {
    return index.is_numeric_type() && !index.is_string();
  }
  // The index from 0 of a position from 1; raises 9 past either end.
  size_t Position(const Variant& index) {
    const int32_t i = ToLong(index);
    if (i < 1 || static_cast<size_t>(i) > self().Count()) throw Error(kErrSubscript);
    return static_cast<size_t>(i - 1);
  }
  V& self() { return static_cast<V&>(*this); }
};

// A view of one of a session's value tables.
class SessionValues : public Contents<SessionValues> {
 public:
  SessionValues(PageContext& c, bool statics) : c_(c), statics_(statics) {}

  size_t Count() { return table().size(); }
  std::u16string NameAt(size_t i) { return table().NameAt(i); }
  Variant ValueAt(size_t i) { return table().ValueAt(i).ToVariant(); }
  Variant ValueOf(StringView name) {
    const StoredValue* v = table().Find(name);
    return v ? v->ToVariant() : Variant();
  }
  void Store(StringView name, const Variant& v) {
    if (statics_) throw Error(kErrNotSupported);
    // A session other servers share keeps data only; the error comes at the assignment.
    table().Put(name, StoredValue::From(v, !c_.store->shared(), "Session"));
  }
  void RemoveName(StringView name) {
    if (statics_) throw Error(kErrNotSupported);
    table().Remove(name);
  }
  void RemoveAll() {
    if (statics_) throw Error(kErrNotSupported);
    table().Clear();
  }

 private:
  ValueTable& table() { return statics_ ? c_.session->static_objects : c_.session->contents; }
  PageContext& c_;
  bool statics_;
};

}  // namespace

bool SetPageLocale(vbs::Engine& engine, int32_t lcid) {
  const vbs::BuiltinFunction* set_locale = vbs::FindBuiltin(u"SetLocale");
  assert(set_locale);
  Variant id(lcid);
  try {
    set_locale->fn(engine.vm().runtime(), Args(&id, 1));
  } catch (const qv::Error&) {
    return false;
  }
  return true;
}

namespace {

void RequireSession(PageContext& c) {
  if (!c.session && c.open_session) {
    const std::function<void()> open = std::move(c.open_session);
    c.open_session = nullptr;
    open();
  }
  if (!c.session) {
    RaiseAspError("Session", "0164",
                  "Session state is disabled for this page (EnableSessionState=False).");
  }
}

class Session : public DispatchObject<Session>, public RequestScoped {
 public:
  explicit Session(PageContext& c) : c_(c) {}
  static const DispatchTable<Session>& Table();

 private:
  SessionValues& contents() {
    RequireSession(c_);
    if (!contents_) contents_ = MakeRef<SessionValues>(c_, false);
    return *contents_;
  }
  PageContext& c_;
  Ref<SessionValues> contents_;
};

const DispatchTable<Session>& Session::Table() {
  using S = Session;
  static const auto table =
      DispatchTable<S>(u"ISessionObject")
          .Property(
              u"Value", [](S& s, Args a) { return s.contents().Get(a); },
              [](S& s, Args a, const Variant& v) { s.contents().Put(a, v); },
              [](S& s, Args a, const Variant& v) { s.contents().Put(a, v); })
          .Property(
              u"Contents",
              [](S& s, Args a) {
                if (!a.empty()) return s.contents().Get(a);
                return Variant(Ref<Object>(&s.contents()));
              },
              [](S& s, Args a, const Variant& v) { s.contents().Put(a, v); },
              [](S& s, Args a, const Variant& v) { s.contents().Put(a, v); })
          .Property(u"StaticObjects",
                    [](S& s, Args a) {
                      RequireSession(s.c_);
                      auto statics = MakeRef<SessionValues>(s.c_, true);
                      if (!a.empty()) return statics->Get(a);
                      return Variant(statics);
                    })
          .Property(u"SessionID",
                    [](S& s, Args) {
                      RequireSession(s.c_);
                      return Variant(s.c_.session->id);
                    })
          .Property(
              u"Timeout",
              [](S& s, Args) {
                RequireSession(s.c_);
                return Variant(s.c_.session->timeout_minutes.load());
              },
              [](S& s, Args, const Variant& v) {
                RequireSession(s.c_);
                const int32_t minutes = ToLong(v);
                if (minutes < 1 || minutes > 1440) throw Error(kErrInvalidCall);
                s.c_.session->timeout_minutes = minutes;
              })
          .Property(
              u"LCID",
              [](S& s, Args) {
                RequireSession(s.c_);
                return Variant(s.c_.session->lcid ? s.c_.session->lcid : 1033);
              },
              [](S& s, Args, const Variant& v) {
                RequireSession(s.c_);
                const int32_t lcid = ToLong(v);
                if (lcid <= 0 || (s.c_.engine && !SetPageLocale(*s.c_.engine, lcid)))
                  RaiseAspError("Session", "0204", "The specified LCID is invalid.");
                s.c_.session->lcid = lcid;
              })
          .Property(
              u"CodePage",
              [](S& s, Args) {
                RequireSession(s.c_);
                return Variant(s.c_.session->code_page ? s.c_.session->code_page : s.c_.code_page);
              },
              [](S& s, Args, const Variant& v) {
                RequireSession(s.c_);
                const int32_t cp = ToLong(v);
                if (!IsKnownCodePage(cp))
                  RaiseAspError("Session", "0204", "The specified code page is invalid.");
                s.c_.session->code_page = cp;
                s.c_.code_page = cp;
              })
          // Not in classic ASP: a new cookie and SessionID for the same session, for a page
          // to call when its user logs in or out (see the README).
          .Method(u"Renew",
                  [](S& s, Args a) {
                    CheckArgCount(a, 0, 0);
                    RequireSession(s.c_);
                    CheckHeadersOpen(s.c_, "Session");
                    s.c_.store->RenewSession(*s.c_.session);
                    s.c_.session_cookie = SessionCookieHeader(*s.c_.session);
                    return Variant();
                  })
          .Method(u"Abandon",
                  [](S& s, Args) {
                    RequireSession(s.c_);
                    s.c_.session->abandoned = true;
                    return Variant();
                  })
          .Default(u"Value");
  return table;
}

// Application.Contents, in the store.
class ApplicationValues : public Contents<ApplicationValues> {
 public:
  explicit ApplicationValues(PageContext& c) : c_(c) {}
  ApplicationState& state() { return c_.store->Application(); }
  const void* requester() const { return &c_; }
  // Values as new as when the request came in are new enough for it. Its session, asked for
  // as it came in, may have been asked for before the page's context was made.
  std::chrono::steady_clock::time_point since() const {
    const auto& session = c_.session;
    if (session && session->hold_asked != std::chrono::steady_clock::time_point())
      return std::min(c_.started, session->hold_asked);
    return c_.started;
  }

  size_t Count() { return state().Count(); }
  std::u16string NameAt(size_t i) { return state().NameAt(i); }
  Variant ValueAt(size_t i) { return ValueOf(NameAt(i)); }
  Variant ValueOf(StringView name) { return state().Get(name, requester(), since()); }
  void Store(StringView name, const Variant& v) { state().Put(name, v, requester()); }
  void RemoveName(StringView name) { state().Remove(name, requester()); }
  void RemoveAll() { state().RemoveAll(requester()); }

 private:
  PageContext& c_;
};

// Application.StaticObjects: global.asa's application objects, in this process, each through a
// view of this request's own.
class ApplicationStatics : public Contents<ApplicationStatics> {
 public:
  explicit ApplicationStatics(const PageContext& c) : objects_(c.application_objects) {}

  size_t Count() { return objects_ ? objects_->size() : 0; }
  std::u16string NameAt(size_t i) { return (*objects_)[i].id; }
  Variant ValueAt(size_t i) { return Variant(NewSharedView((*objects_)[i].instance)); }
  Variant ValueOf(StringView name) {
    for (size_t i = 0; i < Count(); ++i) {
      if (EqualsNoCase((*objects_)[i].id, name)) return ValueAt(i);
    }
    return Variant();
  }
  void Store(StringView, const Variant&) { throw Error(kErrNotSupported); }
  void RemoveName(StringView) { throw Error(kErrNotSupported); }
  void RemoveAll() { throw Error(kErrNotSupported); }

 private:
  const std::vector<ApplicationObject>* objects_;
};

class Application : public DispatchObject<Application>, public RequestScoped {
 public:
  explicit Application(PageContext& c) : contents_(MakeRef<ApplicationValues>(c)), c_(c) {}
  static const DispatchTable<Application>& Table();

 private:
  Ref<ApplicationValues> contents_;
  PageContext& c_;
};

const DispatchTable<Application>& Application::Table() {
  using A = Application;
  static const auto table = DispatchTable<A>(u"IApplicationObject")
                                .Property(
                                    u"Value", [](A& s, Args a) { return s.contents_->Get(a); },
                                    [](A& s, Args a, const Variant& v) { s.contents_->Put(a, v); },
                                    [](A& s, Args a, const Variant& v) { s.contents_->Put(a, v); })
                                .Property(
                                    u"Contents",
                                    [](A& s, Args a) {
                                      if (!a.empty()) return s.contents_->Get(a);
                                      return Variant(s.contents_);
                                    },
                                    [](A& s, Args a, const Variant& v) { s.contents_->Put(a, v); },
                                    [](A& s, Args a, const Variant& v) { s.contents_->Put(a, v); })
                                .Property(u"StaticObjects",
                                          [](A& s, Args a) {
                                            auto statics = MakeRef<ApplicationStatics>(s.c_);
                                            if (!a.empty()) return statics->Get(a);
                                            return Variant(statics);
                                          })
                                .Method(u"Lock",
                                        [](A& s, Args) {
                                          s.contents_->state().Lock(s.contents_->requester());
                                          return Variant();
                                        })
                                .Method(u"Unlock",
                                        [](A& s, Args) {
                                          s.contents_->state().Unlock(s.contents_->requester());
                                          return Variant();
                                        })
                                .Default(u"Value");
  return table;
}

}  // namespace

Ref<Object> NewSessionObject(PageContext& context) {
  return MakeRef<Session>(context);
}

Ref<Object> NewApplicationObject(PageContext& context) {
  return MakeRef<Application>(context);
}

}  // namespace qv::asp
