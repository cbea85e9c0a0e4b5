// Session and Application as scripts see them: named values (Contents, the default member),
// StaticObjects, and each one's own members. Values go through StoredValue both ways, so a
// page always works on its own copy of text and arrays.
#include <cassert>

#include "asp/asp_error.h"
#include "asp/collections.h"
#include "asp/intrinsics.h"
#include "asp/text_codec.h"
#include "automation/convert.h"
#include "vbscript/vm.h"

namespace qv::asp {
namespace {

// Contents and StaticObjects of a session: a view of one of its value tables.
class SessionValues : public DispatchObject<SessionValues>, public RequestScoped {
 public:
  SessionValues(PageContext& c, bool statics) : c_(c), statics_(statics) {}
  static const DispatchTable<SessionValues>& Table();
  Ref<Enumerator> NewEnum() override {
    std::vector<Variant> names;
    for (size_t i = 0; i < table().size(); ++i)
      names.emplace_back(String(StringView(table().NameAt(i))));
    return MakeRef<ValueEnumerator>(std::move(names));
  }

  Variant Get(Args a) {
    CheckArgCount(a, 1, 1);
    if (a[0].is_numeric_type() && !a[0].is_string()) {
      const int32_t i = ToLong(a[0]);
      if (i < 1 || static_cast<size_t>(i) > table().size()) throw Error(kErrSubscript);
      return table().ValueAt(static_cast<size_t>(i - 1)).ToVariant();
    }
    const StoredValue* v = table().Find(ToString(a[0]));
    return v ? v->ToVariant() : Variant();
  }
  void Put(Args a, const Variant& v) {
    CheckArgCount(a, 1, 1);
    if (statics_) throw Error(kErrNotSupported);
    // A session other servers share keeps data only; the error comes at the assignment.
    table().Put(ToString(a[0]), StoredValue::From(v, !c_.store->shared(), "Session"));
  }

 private:
  ValueTable& table() { return statics_ ? c_.session->static_objects : c_.session->contents; }
  PageContext& c_;
  bool statics_;
};

const DispatchTable<SessionValues>& SessionValues::Table() {
  using V = SessionValues;
  static const auto table =
      DispatchTable<V>(u"IVariantDictionary")
          .Property(
              u"Item", [](V& v, Args a) { return v.Get(a); },
              [](V& v, Args a, const Variant& x) { v.Put(a, x); },
              [](V& v, Args a, const Variant& x) { v.Put(a, x); })
          .Property(u"Count",
                    [](V& v, Args) { return Variant(static_cast<int32_t>(v.table().size())); })
          .Property(
              u"Key",
              [](V& v, Args a) {
                CheckArgCount(a, 1, 1);
                const int32_t i = ToLong(a[0]);
                if (i < 1 || static_cast<size_t>(i) > v.table().size()) throw Error(kErrSubscript);
                return Variant(String(StringView(v.table().NameAt(static_cast<size_t>(i - 1)))));
              })
          .Method(u"Remove",
                  [](V& v, Args a) {
                    CheckArgCount(a, 1, 1);
                    if (a[0].is_numeric_type() && !a[0].is_string()) {
                      v.table().RemoveAt(static_cast<size_t>(ToLong(a[0]) - 1));
                    } else {
                      v.table().Remove(ToString(a[0]));
                    }
                    return Variant();
                  })
          .Method(u"RemoveAll",
                  [](V& v, Args) {
                    v.table().Clear();
                    return Variant();
                  })
          .Default(u"Item");
  return table;
}

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
          .Method(u"Abandon",
                  [](S& s, Args) {
                    RequireSession(s.c_);
                    s.c_.session->abandoned = true;
                    return Variant();
                  })
          .Default(u"Value");
  return table;
}

// Application.Contents and StaticObjects.
class ApplicationValues : public DispatchObject<ApplicationValues>, public RequestScoped {
 public:
  ApplicationValues(PageContext& c, bool statics) : c_(c), statics_(statics) {}
  static const DispatchTable<ApplicationValues>& Table();
  Ref<Enumerator> NewEnum() override {
    std::vector<Variant> names;
    for (const auto& n : state().Names())
      names.emplace_back(String(StringView(n)));
    return MakeRef<ValueEnumerator>(std::move(names));
  }
  ApplicationState& state() { return c_.store->Application(); }
  const void* requester() const { return &c_; }

  Variant Get(Args a) {
    CheckArgCount(a, 1, 1);
    if (statics_) {
      const StoredValue* v = state().static_objects().Find(ToString(a[0]));
      return v ? v->ToVariant() : Variant();
    }
    if (a[0].is_numeric_type() && !a[0].is_string()) {
      const int32_t i = ToLong(a[0]);
      if (i < 1 || static_cast<size_t>(i) > state().Count()) throw Error(kErrSubscript);
      return state().Get(state().NameAt(static_cast<size_t>(i - 1)));
    }
    return state().Get(ToString(a[0]));
  }
  void Put(Args a, const Variant& v) {
    CheckArgCount(a, 1, 1);
    if (statics_) throw Error(kErrNotSupported);
    state().Put(ToString(a[0]), v, requester());
  }

 private:
  PageContext& c_;
  bool statics_;
};

const DispatchTable<ApplicationValues>& ApplicationValues::Table() {
  using V = ApplicationValues;
  static const auto table =
      DispatchTable<V>(u"IVariantDictionary")
          .Property(
              u"Item", [](V& v, Args a) { return v.Get(a); },
              [](V& v, Args a, const Variant& x) { v.Put(a, x); },
              [](V& v, Args a, const Variant& x) { v.Put(a, x); })
          .Property(u"Count",
                    [](V& v, Args) { return Variant(static_cast<int32_t>(v.state().Count())); })
          .Property(
              u"Key",
              [](V& v, Args a) {
                CheckArgCount(a, 1, 1);
                const int32_t i = ToLong(a[0]);
                if (i < 1 || static_cast<size_t>(i) > v.state().Count()) throw Error(kErrSubscript);
                return Variant(String(StringView(v.state().NameAt(static_cast<size_t>(i - 1)))));
              })
          .Method(u"Remove",
                  [](V& v, Args a) {
                    CheckArgCount(a, 1, 1);
                    std::u16string name =
                        a[0].is_numeric_type() && !a[0].is_string()
                            ? v.state().NameAt(static_cast<size_t>(ToLong(a[0]) - 1))
                            : std::u16string(ToString(a[0]).view());
                    v.state().Remove(name, v.requester());
                    return Variant();
                  })
          .Method(u"RemoveAll",
                  [](V& v, Args) {
                    v.state().RemoveAll(v.requester());
                    return Variant();
                  })
          .Default(u"Item");
  return table;
}

class Application : public DispatchObject<Application>, public RequestScoped {
 public:
  explicit Application(PageContext& c) : contents_(MakeRef<ApplicationValues>(c, false)), c_(c) {}
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
                                            auto statics = MakeRef<ApplicationValues>(s.c_, true);
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
