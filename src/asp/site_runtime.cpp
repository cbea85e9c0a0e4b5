// Requests to pages and files. A page runs on a worker's own engine with fresh intrinsic
// objects; the engine is recycled when the page ends, before the session is released, so that
// nothing of the page (and no count on a session's objects) outlives the request on that
// worker. What does outlive it is the page's compiled code: each worker compiles a page once.
#include "asp/site_runtime.h"

#include <cinttypes>
#include <cstdio>
#include <iostream>
#include <unordered_map>

#include "asp/asp_error.h"
#include "asp/intrinsics.h"
#include "asp/server_classes.h"
#include "asp/text_codec.h"
#include "automation/convert.h"
#include "vbscript/errors.h"
#include "vbscript/vm.h"

namespace qv::asp {
namespace fs = std::filesystem;
namespace {

constexpr std::string_view kSessionCookie = "ASPSESSIONID";
constexpr auto kSweepInterval = std::chrono::seconds(10);

std::string HtmlText(std::string_view text) {
  std::string out;
  for (char c : text) {
    switch (c) {
      case '<':
        out += "&lt;";
        break;
      case '>':
        out += "&gt;";
        break;
      case '&':
        out += "&amp;";
        break;
      case '"':
        out += "&quot;";
        break;
      default:
        out += c;
    }
  }
  return out;
}

std::string SessionCookieOf(const HttpRequest& request) {
  const std::string* header = request.Header("Cookie");
  if (!header) return {};
  std::string_view rest = *header;
  while (!rest.empty()) {
    const size_t semi = rest.find(';');
    std::string_view part = rest.substr(0, semi);
    rest = semi == std::string_view::npos ? std::string_view() : rest.substr(semi + 1);
    while (!part.empty() && part.front() == ' ')
      part.remove_prefix(1);
    if (part.starts_with(kSessionCookie) && part.size() > kSessionCookie.size() &&
        part[kSessionCookie.size()] == '=')
      return std::string(part.substr(kSessionCookie.size() + 1));
  }
  return {};
}

// The failure code of an error: VBScript's own numbers stand under facility 0x800A.
std::string Hex8(int32_t number) {
  char buffer[16];
  uint32_t code = static_cast<uint32_t>(number);
  if (number > 0 && number <= 0xFFFF) code |= 0x800A0000u;
  std::snprintf(buffer, sizeof buffer, "%08x", code);
  return buffer;
}

}  // namespace

std::string SessionCookieHeader(const SessionState& session) {
  return std::string(kSessionCookie) + "=" + session.cookie + "; path=/; HttpOnly; SameSite=Lax";
}

HttpResponse ErrorResponse(int status, std::string_view reason) {
  HttpResponse r;
  r.status = status;
  r.reason = std::string(reason);
  r.headers.emplace_back("Content-Type", "text/html; charset=utf-8");
  r.body = "<!DOCTYPE html><html><head><title>" + std::to_string(status) + " " +
           std::string(reason) + "</title></head><body><h1>" + std::to_string(status) + " " +
           std::string(reason) + "</h1></body></html>\r\n";
  return r;
}

// The page for a request that needs the shared state while it is out of reach: plain, with
// nothing of the site in it, and a hint for clients to come back.
HttpResponse UnavailableResponse() {
  HttpResponse r = ErrorResponse(503, "Service Unavailable");
  r.headers.emplace_back("Retry-After", "5");
  r.body =
      "<!DOCTYPE html><html><head><title>503 Service Unavailable</title></head><body><h1>503 "
      "Service Unavailable</h1><p>The server cannot reach the state it shares with the other "
      "servers of this site. Please try again in a moment.</p></body></html>\r\n";
  return r;
}

// --- Worker --------------------------------------------------------------------------------------

// A worker's engine and what it needs to run pages and global.asa events.
class Worker {
 public:
  explicit Worker(SiteRuntime& runtime) : runtime_(runtime) {
    RegisterServerClasses(engine_.Registry(), runtime.connections_);
  }

  // Runs a page: global.asa's Session_OnStart first when `new_session`.
  void RunPage(PageContext& c, bool new_session);
  // Runs an event of global.asa (Application_OnStart, Session_OnEnd, ...) with the objects
  // it may use; errors go to the log.
  void RunEvent(PageContext& c, StringView name, bool with_request);
  vbs::Engine& engine() { return engine_; }

 private:
  void AddObjects(PageContext& c, bool with_request);
  void AddIntrinsics(vbs::Engine& engine, PageContext& c, bool with_request);
  void Execute(PageContext& c, std::string_view url);
  void RecordError(PageContext& c, const vbs::Engine& engine, const CompiledPage& page,
                   const qv::Error& e);
  const String& ScriptOf(const std::shared_ptr<const CompiledPage>& page);

  SiteRuntime& runtime_;
  vbs::Engine engine_;
  // The worker's own copy of each page's script. The engine finds the compiled form of a text
  // it saw before by the text's buffer, so the same buffer must come back every time; and a
  // String's count is no atomic, so the buffer cannot be one that other workers share.
  struct OwnScript {
    std::shared_ptr<const CompiledPage> page;  // keeps the key's address from being reused
    String script;
  };
  std::unordered_map<const CompiledPage*, OwnScript> scripts_;
  // Engines for Server.Execute and Transfer, by level of nesting.
  std::vector<std::unique_ptr<vbs::Engine>> executes_;
  size_t execute_depth_ = 0;
};

const String& Worker::ScriptOf(const std::shared_ptr<const CompiledPage>& page) {
  // Pages replaced in the cache (changed on disk) are held by nobody else: forget them now and
  // then, not on every request.
  constexpr size_t kPrune = 256;
  if (auto it = scripts_.find(page.get()); it != scripts_.end()) return it->second.script;
  if (scripts_.size() >= kPrune)
    std::erase_if(scripts_, [](const auto& entry) { return entry.second.page.use_count() == 1; });
  OwnScript& own = scripts_[page.get()];
  own.page = page;
  own.script = String(StringView(page->script));
  return own.script;
}

void Worker::AddObjects(PageContext& c, bool with_request) {
  c.engine = &engine_;
  c.classes = &engine_.Registry();
  engine_.SetTimeout(c.script_timeout * 1000);
  AddIntrinsics(engine_, c, with_request);
}

void Worker::AddIntrinsics(vbs::Engine& engine, PageContext& c, bool with_request) {
  c.application_objects = &runtime_.application_objects_;
  if (with_request) {
    engine.AddObject(u"Request", NewRequestObject(c));
    engine.AddObject(u"Response", NewResponseObject(c));
  }
  engine.AddObject(u"Server", NewServerObject(c));
  engine.AddObject(u"Session", NewSessionObject(c));
  engine.AddObject(u"Application", NewApplicationObject(c));
  for (const ApplicationObject& o : runtime_.application_objects_)
    engine.AddObject(o.id, NewSharedView(o.instance));
}

void Worker::RecordError(PageContext& c, const vbs::Engine& engine, const CompiledPage& page,
                         const qv::Error& e) {
  if (c.last_error.number != 0) return;  // an Execute'd page recorded it where it happened
  vbs::Engine& eng = const_cast<vbs::Engine&>(engine);
  const vbs::ScriptError& se = eng.Error();
  const SourcePosition at = page.Origin(se.Line());
  c.last_error.number = e.number();
  c.last_error.description = e.description().view();
  c.last_error.source = (se.Source().empty() ? e.source() : se.Source()).view();
  c.last_error.file = String::FromUtf8(runtime_.site().UrlPathOf(page.files[at.file].path)).view();
  c.last_error.line = se.Line() ? at.line : 0;
  c.last_error.column = se.Column();
  if (e.number() == vbs::kErrTimeout) c.last_error.asp_code = u"ASP 0113";
}

void Worker::Execute(PageContext& c, std::string_view url) {
  std::string target(url);
  if (target.empty()) throw Error(kErrInvalidCall);
  if (const size_t q = target.find('?'); q != std::string::npos) target.resize(q);
  if (target[0] != '/') {
    std::string folder = runtime_.site().UrlPathOf(c.page_file.parent_path());
    if (folder.back() != '/') folder += '/';
    target = folder + target;
  }
  const auto file = runtime_.site().Resolve(target);
  std::error_code ec;
  if (!file || !fs::is_regular_file(*file, ec) || runtime_.site().IsHidden(*file) ||
      !Site::IsPage(*file) || runtime_.site().InUploadFolder(*file)) {
    RaiseAspError("Server", "0228",
                  "Invalid URL form or fully-qualified absolute URL was used. Use relative URLs.");
  }
  std::shared_ptr<const CompiledPage> page = runtime_.pages_.Get(*file);
  // The other page gets a namespace of its own but the same objects: an engine of the worker's
  // for each level of nesting, which keeps the page's compiled form as the worker's own does.
  if (executes_.size() <= execute_depth_) {
    executes_.push_back(std::make_unique<vbs::Engine>());
    RegisterServerClasses(executes_.back()->Registry(), runtime_.connections_);
  }
  vbs::Engine& inner = *executes_[execute_depth_];
  const fs::path saved = c.page_file;
  c.page_file = *file;
  c.pages.push_back(page);
  ++execute_depth_;
  struct Leave {
    Worker& w;
    PageContext& c;
    vbs::Engine& inner;
    const fs::path& saved;
    ~Leave() {
      inner.Recycle();
      --w.execute_depth_;
      c.pages.pop_back();
      c.page_file = saved;
    }
  } leave{*this, c, inner, saved};
  inner.SetTimeout(engine_.Timeout());
  inner.vm().runtime().locale = engine_.vm().runtime().locale;
  AddIntrinsics(inner, c, true);
  try {
    if (page->ado_constants) inner.AddObject(u"ADO Type Library", AdoConstantsObject(), true);
    inner.GlobalModule().AddCodeCached(ScriptOf(page));
  } catch (const qv::Error& e) {
    RecordError(c, inner, *page, e);
    throw;
  }
}

void Worker::RunPage(PageContext& c, bool new_session) {
  AddObjects(c, true);
  c.execute = [this, &c](std::string_view url) { Execute(c, url); };
  const CompiledPage& page = *c.pages.front();
  // The page's own @LCID wins over the session's; the compiler has checked the directive.
  if (page.directives.lcid) {
    SetPageLocale(engine_, page.directives.lcid);
  } else if (c.session && c.session->lcid) {
    SetPageLocale(engine_, c.session->lcid);
  }
  // A shared session keeps no objects, so its <object> tags are made anew for each request,
  // from global.asa as last read (looking for it on disk on every request would cost a folder
  // scan where there is none).
  std::shared_ptr<const GlobalAsa> global;
  if (new_session) {
    global = runtime_.CurrentGlobalAsa();
  } else if (c.session && runtime_.store_->shared()) {
    global = runtime_.LastGlobalAsa();
  }
  if (global && c.session) {
    for (const StaticObjectDecl& decl : global->objects) {
      if (decl.application_scope) continue;
      Ref<Object> object = engine_.Registry().Create(String::FromUtf8(decl.prog_id));
      if (object)
        c.session->static_objects.Put(String::FromUtf8(decl.id),
                                      StoredValue::From(Variant(object), true));
    }
  }
  // A session's <object> tags are names in every page of it.
  if (c.session) {
    for (size_t i = 0; i < c.session->static_objects.size(); ++i) {
      const Variant object = c.session->static_objects.ValueAt(i).ToVariant();
      if (object.is_object())
        engine_.AddObject(c.session->static_objects.NameAt(i), Ref<Object>(object.as_object()));
    }
  }
  try {
    if (global && new_session) {
      vbs::ScriptModule& module = engine_.AddModule(u"GlobalAsa");
      module.AddCode(global->page.script);
      for (const auto& p : module.Procedures()) {
        if (EqualsNoCase(p.Name, u"Session_OnStart")) module.Run(u"Session_OnStart");
      }
    }
  } catch (const qv::Error& e) {
    RecordError(c, engine_, global->page, e);
    throw;
  }
  try {
    if (page.ado_constants) engine_.AddObject(u"ADO Type Library", AdoConstantsObject(), true);
    engine_.GlobalModule().AddCodeCached(ScriptOf(c.pages.front()));
  } catch (const qv::Error& e) {
    RecordError(c, engine_, page, e);
    throw;
  }
}

void Worker::RunEvent(PageContext& c, StringView name, bool with_request) {
  std::shared_ptr<const GlobalAsa> global = runtime_.CurrentGlobalAsa();
  if (!global) return;
  try {
    AddObjects(c, with_request);
    vbs::ScriptModule& module = engine_.AddModule(u"GlobalAsa");
    module.AddCode(global->page.script);
    for (const auto& p : module.Procedures()) {
      if (EqualsNoCase(p.Name, name)) module.Run(name);
    }
  } catch (const ResponseEnd&) {
  } catch (const StateUnavailable& e) {
    std::cerr << "global.asa: " << String::ToUtf8(name) << ": state store: " << e.what() << "\n";
  } catch (const qv::Error& e) {
    const SourcePosition at = global->page.Origin(engine_.Error().Line());
    std::cerr << "global.asa, line " << at.line << ": " << String::ToUtf8(name) << ": "
              << e.description().ToUtf8() << "\n";
  }
  engine_.Recycle();
}

// --- SiteRuntime ---------------------------------------------------------------------------------

SiteRuntime::SiteRuntime(const fs::path& root, RuntimeOptions options,
                         std::unique_ptr<StateStore> store)
    : site_(root),
      options_(options),
      pages_(site_),
      store_(store ? std::move(store) : NewMemoryStateStore()) {}

SiteRuntime::~SiteRuntime() {
  threads_.Stop();
  std::unique_ptr<Worker> worker = AcquireWorker();
  try {
    EndSessions(*worker, true);
  } catch (const StateUnavailable&) {
  }
  // Shared state outlives any one of the servers that share it.
  bool started = false;
  if (!store_->shared()) {
    std::lock_guard guard(global_mutex_);
    started = global_asa_ != nullptr;
  }
  if (started) {
    PageContext c;
    c.site = &site_;
    c.store = store_.get();
    c.page_file = site_.root() / "global.asa";
    worker->RunEvent(c, u"Application_OnEnd", false);
  }
}

std::unique_ptr<Worker> SiteRuntime::AcquireWorker() {
  {
    std::lock_guard guard(workers_mutex_);
    if (!idle_.empty()) {
      std::unique_ptr<Worker> w = std::move(idle_.back());
      idle_.pop_back();
      return w;
    }
  }
  return std::make_unique<Worker>(*this);
}

void SiteRuntime::ReleaseWorker(std::unique_ptr<Worker> worker) {
  std::lock_guard guard(workers_mutex_);
  idle_.push_back(std::move(worker));
}

std::shared_ptr<const GlobalAsa> SiteRuntime::CurrentGlobalAsa() {
  std::lock_guard guard(global_mutex_);
  if (global_asa_ && global_asa_->page.IsCurrent()) return global_asa_;
  const auto file = site_.Resolve("/global.asa");
  std::error_code ec;
  if (!file || !fs::is_regular_file(*file, ec)) {
    global_asa_.reset();
    return nullptr;
  }
  try {
    global_asa_ = std::make_shared<const GlobalAsa>(CompileGlobalAsa(site_, *file));
  } catch (const PageError& e) {
    std::cerr << "global.asa, line " << e.line() << ": " << e.description() << "\n";
    global_asa_.reset();
  }
  return global_asa_;
}

std::shared_ptr<const GlobalAsa> SiteRuntime::LastGlobalAsa() {
  std::lock_guard guard(global_mutex_);
  return global_asa_;
}

void SiteRuntime::StartApplication(Worker& worker) {
  std::call_once(application_started_, [&] {
    const std::shared_ptr<const GlobalAsa> global = CurrentGlobalAsa();
    if (!global) return;
    // Every process has its own: objects do not travel between servers.
    for (const StaticObjectDecl& decl : global->objects) {
      if (!decl.application_scope) continue;
      Ref<Object> object = worker.engine().Registry().Create(String::FromUtf8(decl.prog_id));
      if (!object) {
        std::cerr << "global.asa: the object " << decl.id << " names an unknown PROGID, "
                  << decl.prog_id << "\n";
        continue;
      }
      application_objects_.push_back({std::u16string(String::FromUtf8(decl.id).view()),
                                      std::make_shared<SharedInstance>(std::move(object))});
    }
    if (!store_->ClaimApplicationStart()) return;
    PageContext c;
    c.site = &site_;
    c.store = store_.get();
    c.page_file = site_.root() / "global.asa";
    worker.RunEvent(c, u"Application_OnStart", false);
  });
}

void SiteRuntime::SweepSessions(Worker& worker) {
  const auto now = std::chrono::steady_clock::now();
  if (now.time_since_epoch().count() - last_sweep_ <=
          std::chrono::steady_clock::duration(kSweepInterval).count() ||
      !sweep_mutex_.try_lock())
    return;
  std::lock_guard guard(sweep_mutex_, std::adopt_lock);
  last_sweep_ = now.time_since_epoch().count();
  EndSessions(worker, false);
}

void SiteRuntime::EndSessions(Worker& worker, bool all) {
  for (const std::shared_ptr<SessionState>& session : store_->TakeExpired(all)) {
    std::lock_guard busy(session->busy);
    if (!session->started) continue;
    PageContext c;
    c.site = &site_;
    c.store = store_.get();
    c.session = session;
    c.page_file = site_.root() / "global.asa";
    worker.RunEvent(c, u"Session_OnEnd", false);
  }
}

std::unique_ptr<SessionOpening> SiteRuntime::OpenAhead(const HttpRequest& request,
                                                       std::string_view session) {
  if (session.empty()) return nullptr;
  {
    std::lock_guard guard(opens_at_once_mutex_);
    if (!opens_at_once_.contains(request.path)) return nullptr;
  }
  return store_->StartOpen(session);
}

std::string SiteRuntime::SharedSessionOf(const HttpRequest& request) const {
  return store_->shared() ? SessionCookieOf(request) : std::string();
}

void SiteRuntime::RememberOpensAtOnce(const std::string& path, bool opens_at_once) {
  // Paths that requests made up could grow the set without end: past this many, some pages
  // go without.
  constexpr size_t kMostPaths = 1000;
  if (!store_->shared()) return;
  std::lock_guard guard(opens_at_once_mutex_);
  if (!opens_at_once) {
    opens_at_once_.erase(path);
  } else if (opens_at_once_.size() < kMostPaths) {
    opens_at_once_.insert(path);
  }
}

HttpResponse SiteRuntime::Handle(const HttpRequest& request, bool can_stream) {
  return Handle(request, can_stream, OpenAhead(request, SharedSessionOf(request)));
}

HttpResponse SiteRuntime::Handle(const HttpRequest& request, bool can_stream,
                                 std::unique_ptr<SessionOpening> opening) {
  // `opening` is dropped unused on the ways out below that run no page.
  std::optional<Site::Found> found = site_.Find(request.path);
  if (!found) return ErrorResponse(404, "Not Found");
  fs::path file = std::move(found->path);
  bool regular = found->is_regular;
  if (found->is_directory) {
    if (request.path.empty() || request.path.back() != '/') {
      HttpResponse r = ErrorResponse(301, "Moved Permanently");
      r.headers.emplace_back(
          "Location", request.raw_path + "/" + (request.query.empty() ? "" : "?" + request.query));
      return r;
    }
    std::optional<Site::Found> document = site_.DefaultDocument(request.path);
    if (!document) return ErrorResponse(403, "Forbidden");
    file = std::move(document->path);
    regular = true;
  }
  if (!regular || site_.IsHidden(file)) return ErrorResponse(404, "Not Found");
  if (Site::IsPage(file)) {
    if (site_.InUploadFolder(file)) return ErrorResponse(403, "Forbidden");
    return RunPage(request, file, can_stream, std::move(opening));
  }
  if (request.method != "GET" && request.method != "HEAD") {
    HttpResponse r = ErrorResponse(405, "Method Not Allowed");
    r.headers.emplace_back("Allow", "GET, HEAD");
    return r;
  }
  return ServeFile(request, file);
}

HttpResponse SiteRuntime::ServeFile(const HttpRequest& request, const fs::path& file) {
  std::error_code ec;
  const uintmax_t size = fs::file_size(file, ec);
  const auto modified = fs::last_write_time(file, ec);
  if (ec) return ErrorResponse(404, "Not Found");
  const auto since_epoch = std::chrono::file_clock::to_sys(modified);
  const auto seconds = std::chrono::time_point_cast<std::chrono::seconds>(since_epoch);
  char etag[64];
  std::snprintf(etag, sizeof etag, "\"%" PRIxMAX "-%" PRIx64 "\"", size,
                static_cast<uint64_t>(since_epoch.time_since_epoch().count()));
  const std::string last_modified = HttpDate(seconds);
  HttpResponse r;
  r.headers.emplace_back("ETag", etag);
  r.headers.emplace_back("Last-Modified", last_modified);
  const std::string* none_match = request.Header("If-None-Match");
  const std::string* modified_since = request.Header("If-Modified-Since");
  const bool not_modified = none_match
                                ? none_match->find(etag) != std::string::npos || *none_match == "*"
                                : modified_since && *modified_since == last_modified;
  if (not_modified) {
    r.status = 304;
    r.reason = "Not Modified";
    return r;
  }
  r.headers.emplace_back("Content-Type", std::string(ContentTypeOf(file)));
  r.file = file;
  r.file_size = size;
  return r;
}

void SiteRuntime::OpenDeferredSession(PageContext& c, const std::string& cookie, bool& is_new) {
  c.session = store_->OpenSession(cookie, options_.session_timeout, is_new);
  // The page has run with the engine's defaults up to here: the session's own settings apply
  // from now on. A session that turned out to have ended starts without Session_OnStart, which
  // cannot run in the middle of a page.
  if (c.session->lcid && c.engine && !c.pages.front()->directives.lcid)
    SetPageLocale(*c.engine, c.session->lcid);
  if (c.session->code_page && !c.pages.front()->directives.code_page)
    c.code_page = c.session->code_page;
  if (is_new) c.session_cookie = SessionCookieHeader(*c.session);
}

// A page that may flush runs on a thread of its own, so that this one can send what it sends.
HttpResponse SiteRuntime::RunPage(const HttpRequest& request, const fs::path& file, bool can_stream,
                                  std::unique_ptr<SessionOpening> opening) {
  std::shared_ptr<const CompiledPage> page;
  std::optional<PageError> error;
  try {
    page = pages_.Get(file);
  } catch (const PageError& e) {
    error = e;
  }
  const bool opens_at_once = page && page->directives.enable_session_state && page->names_session;
  RememberOpensAtOnce(request.path, opens_at_once);
  if (!opens_at_once) opening.reset();
  if (!can_stream || !page)
    return RunCompiledPage(request, file, page, error ? &*error : nullptr, nullptr,
                           std::move(opening));
  // A page of a session that a streaming page holds must not wait for it here: that page may
  // be waiting for this very thread to send what it wrote. Such a page runs aside too (and
  // this thread saw the other's mark, if both came through it, before it came here).
  std::string cookie = page->directives.enable_session_state ? SessionCookieOf(request) : "";
  bool aside = page->streams;
  if (!cookie.empty()) {
    std::lock_guard lock(streaming_mutex_);
    aside = aside || streaming_sessions_.contains(cookie);
    if (aside) streaming_sessions_.insert(cookie);
  }
  if (!aside) return RunCompiledPage(request, file, page, nullptr, nullptr, std::move(opening));
  opening.reset();  // rare enough to open again on the page's own thread
  auto stream = std::make_shared<ResponseStream>();
  auto own = std::make_shared<const HttpRequest>(request);
  threads_.Run([this, own, file, page, stream, cookie = std::move(cookie)] {
    HttpResponse rest;
    try {
      rest = RunCompiledPage(*own, file, page, nullptr, stream.get());
    } catch (const std::exception& e) {
      std::fprintf(stderr, "%s: %s\n", own->path.c_str(), e.what());
      rest = ErrorResponse(500, "Internal Server Error");
    }
    if (!cookie.empty()) {
      std::lock_guard lock(streaming_mutex_);
      streaming_sessions_.erase(streaming_sessions_.find(cookie));
    }
    stream->Finish(std::move(rest));
  });
  HttpResponse r;
  r.stream = std::move(stream);
  return r;
}

HttpResponse SiteRuntime::RunCompiledPage(const HttpRequest& request, const fs::path& file,
                                          std::shared_ptr<const CompiledPage> page,
                                          const PageError* error, ResponseStream* stream,
                                          std::unique_ptr<SessionOpening> opening) {
  PageContext c;
  c.request = &request;
  c.site = &site_;
  c.store = store_.get();
  c.page_file = file;
  c.stream = stream;
  c.script_timeout = options_.script_timeout;
  if (error) {
    c.last_error.asp_code = String::FromUtf8(error->code()).view();
    c.last_error.description = String::FromUtf8(error->description()).view();
    c.last_error.source = u"Active Server Pages error";
    c.last_error.file = String::FromUtf8(site_.UrlPathOf(error->file())).view();
    c.last_error.line = error->line();
    c.last_error.number = kAspFailure;
  }

  std::unique_ptr<Worker> worker = AcquireWorker();
  bool new_session = false;
  bool unavailable = false;  // the shared state is out of reach: 503
  try {
    StartApplication(*worker);
    SweepSessions(*worker);
    const std::string cookie = SessionCookieOf(request);
    if (page && page->directives.enable_session_state) {
      if (!page->names_session && store_->MayDefer(cookie)) {
        c.open_session = [this, &c, &new_session, cookie] {
          OpenDeferredSession(c, cookie, new_session);
        };
      } else {
        c.session =
            store_->FinishOpen(std::move(opening), cookie, options_.session_timeout, new_session);
        if (c.session->code_page) c.code_page = c.session->code_page;
        if (new_session) c.session_cookie = SessionCookieHeader(*c.session);
      }
    }
  } catch (const StateUnavailable& e) {
    std::cerr << "state store: " << e.what() << "\n";
    unavailable = true;
  }
  if (page && !unavailable) {
    c.pages.push_back(page);
    if (page->directives.code_page) c.code_page = page->directives.code_page;
  }

  bool failed = !page;
  if (page && !unavailable) {
    try {
      worker->RunPage(c, new_session);
    } catch (const ResponseEnd&) {
    } catch (const qv::Error&) {
      failed = true;
    } catch (const StateUnavailable& e) {
      std::cerr << "state store: " << e.what() << "\n";
      unavailable = true;
    } catch (const std::exception& e) {
      failed = true;
      c.last_error.number = kAspFailure;
      c.last_error.description = String::FromUtf8(e.what()).view();
    }
  }
  if (c.session && !unavailable) c.session->started = true;
  if (!c.session && c.open_session && !unavailable) {
    try {
      store_->Touch(SessionCookieOf(request));
    } catch (const StateUnavailable&) {
    }
  }
  c.open_session = nullptr;
  worker->engine().Recycle();
  try {
    store_->Application().ReleaseAll(&c);
  } catch (const StateUnavailable&) {
    // The lock's lease frees it.
  }
  if (c.session) {
    try {
      if (!unavailable && c.session->abandoned && store_->EndSession(*c.session)) {
        PageContext end;
        end.site = &site_;
        end.store = store_.get();
        end.session = c.session;
        end.page_file = site_.root() / "global.asa";
        worker->RunEvent(end, u"Session_OnEnd", false);
      }
      const std::shared_ptr<const GlobalAsa> global = LastGlobalAsa();
      c.session->watch_end = global && global->session_on_end;
      store_->CloseSession(*c.session, !unavailable);
    } catch (const StateUnavailable& e) {
      std::cerr << "state store: " << e.what() << "\n";
      unavailable = true;
    }
  }
  ReleaseWorker(std::move(worker));
  // Once the head went out, whatever happens next can only add to the body.
  const bool sent = stream && c.headers_written;
  if (unavailable && !sent) return UnavailableResponse();
  if (!failed) {
    if (sent) {
      HttpResponse rest;
      rest.body = std::move(c.body);
      return rest;
    }
    HttpResponse r = ResponseHead(c);
    r.body = std::move(c.body);
    return r;
  }

  const auto& e = c.last_error;
  const bool timeout = e.asp_code == u"ASP 0113";
  std::string text = String::ToUtf8(e.description);
  std::string source = String::ToUtf8(e.source);
  if (timeout) {
    source = "Active Server Pages error";
    text =
        "The maximum amount of time for a script to execute was exceeded. You can change this "
        "limit by specifying a new value for the property Server.ScriptTimeout.";
  }
  const std::string where =
      String::ToUtf8(e.file) + (e.line ? ", line " + std::to_string(e.line) : std::string());
  const std::string code =
      "'" + (e.asp_code.empty() ? Hex8(e.number) : String::ToUtf8(e.asp_code)) + "'";
  std::cerr << where << ": " << source << " " << code << ": " << text << "\n";
  HttpResponse r = ErrorResponse(500, "Internal Server Error");
  if (options_.dev) {
    r.body =
        "<!DOCTYPE html><html><head><title>500 Internal Server Error</title></head><body>\r\n<p>" +
        HtmlText(source) + " <b>" + HtmlText(code) + "</b></p>\r\n<p>" + HtmlText(text) +
        "</p>\r\n<p>" + HtmlText(where) + "</p>\r\n</body></html>\r\n";
  } else {
    r.body =
        "<!DOCTYPE html><html><head><title>500 Internal Server Error</title></head><body><h1>500 "
        "Internal Server Error</h1><p>There is a problem with the page you are looking for, and "
        "it cannot be displayed.</p></body></html>\r\n";
  }
  if (sent) {
    // The page's status went out already: the error can only follow what it sent.
    HttpResponse rest;
    rest.body = std::move(c.body) + r.body;
    return rest;
  }
  if (!c.session_cookie.empty() && !c.session->abandoned)
    r.headers.emplace_back("Set-Cookie", c.session_cookie);
  return r;
}

}  // namespace qv::asp
