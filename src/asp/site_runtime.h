// One ASP application: its site folder, compiled pages, session and application state,
// global.asa, and the engines of the workers that run its pages. Handle() turns a request
// into a response and may be called from several threads at once.
#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <filesystem>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_set>
#include <vector>

#include "asp/http_types.h"
#include "asp/page_cache.h"
#include "asp/page_threads.h"
#include "asp/response_stream.h"
#include "asp/shared_object.h"
#include "asp/site.h"
#include "asp/state_store.h"
#include "platform/data/connection_pool.h"

namespace qv::asp {

struct RuntimeOptions {
  bool dev = false;              // script errors show file, line and text
  int32_t script_timeout = 90;   // seconds
  int32_t session_timeout = 20;  // minutes
};

class Worker;
struct PageContext;

class SiteRuntime {
 public:
  // Session and application state in memory unless a `store` is given.
  SiteRuntime(const std::filesystem::path& root, RuntimeOptions options,
              std::unique_ptr<StateStore> store = nullptr);
  // Ends every session and the application, running their OnEnd events.
  ~SiteRuntime();
  SiteRuntime(const SiteRuntime&) = delete;
  SiteRuntime& operator=(const SiteRuntime&) = delete;

  // With `can_stream`, the response of a page that may send output before it ends comes back
  // at once with only its `stream` set; the page runs on, on a thread of the runtime's own.
  HttpResponse Handle(const HttpRequest& request, bool can_stream = false);
  // Handle, for a request whose session OpenAhead asked for already (or null).
  HttpResponse Handle(const HttpRequest& request, bool can_stream,
                      std::unique_ptr<SessionOpening> opening);
  // A store in another process is asked for the session as the request comes in, when its
  // path led to a page that opens its session at once the last time, so that the round trip
  // runs while the request waits its turn or the page is found; the HTTP server may serve
  // other requests until the answer is in (SessionOpening::AnswerFd). Null otherwise.
  // `session` is what SharedSessionOf gave.
  std::unique_ptr<SessionOpening> OpenAhead(const HttpRequest& request, std::string_view session);
  // The session cookie a request came with, where the store is shared; empty otherwise.
  std::string SharedSessionOf(const HttpRequest& request) const;

  const Site& site() const { return site_; }
  const RuntimeOptions& options() const { return options_; }

 private:
  friend class Worker;
  HttpResponse ServeFile(const HttpRequest& request, const std::filesystem::path& file);
  HttpResponse RunPage(const HttpRequest& request, const std::filesystem::path& file,
                       bool can_stream, std::unique_ptr<SessionOpening> opening);
  // Runs a page (or reports `error`, its compile error); with `stream`, the response's head
  // may have gone out already, and the response returned holds only the rest of its body.
  // `opening` is the page's session asked for ahead, if it was.
  HttpResponse RunCompiledPage(const HttpRequest& request, const std::filesystem::path& file,
                               std::shared_ptr<const CompiledPage> page, const PageError* error,
                               ResponseStream* stream,
                               std::unique_ptr<SessionOpening> opening = nullptr);
  // `opens_at_once` remembers what the page of a path turned out to do, for OpenAhead.
  void RememberOpensAtOnce(const std::string& path, bool opens_at_once);
  // Opens the session a page left closed, when the page reaches it after all.
  void OpenDeferredSession(PageContext& c, const std::string& cookie, bool& is_new);
  std::unique_ptr<Worker> AcquireWorker();
  void ReleaseWorker(std::unique_ptr<Worker> worker);
  // global.asa as it is on disk now, or null when the site has none.
  std::shared_ptr<const GlobalAsa> CurrentGlobalAsa();
  // global.asa as it was when last read.
  std::shared_ptr<const GlobalAsa> LastGlobalAsa();
  void StartApplication(Worker& worker);
  // Ends the sessions whose time ran out, every few seconds.
  void SweepSessions(Worker& worker);
  void EndSessions(Worker& worker, bool all);

  Site site_;
  RuntimeOptions options_;
  // Before everything that may hold a connection object: sessions, application, workers.
  data::ConnectionPool connections_;
  PageCache pages_;
  std::unique_ptr<StateStore> store_;
  std::mutex global_mutex_;
  std::shared_ptr<const GlobalAsa> global_asa_;
  std::once_flag application_started_;
  // global.asa's application objects, made once as the application starts.
  std::vector<ApplicationObject> application_objects_;
  std::mutex workers_mutex_;
  std::vector<std::unique_ptr<Worker>> idle_;
  std::atomic<std::chrono::steady_clock::rep> last_sweep_{0};
  std::mutex sweep_mutex_;
  // The session cookies of the pages running on `threads_`, once per page.
  std::mutex streaming_mutex_;
  std::unordered_multiset<std::string> streaming_sessions_;
  std::mutex opens_at_once_mutex_;
  std::unordered_set<std::string> opens_at_once_;  // request paths
  // Last: its threads may still run pages that use everything above.
  PageThreads threads_;
};

// An HTTP error response with a short plain page.
HttpResponse ErrorResponse(int status, std::string_view reason);
HttpResponse UnavailableResponse();

}  // namespace qv::asp
