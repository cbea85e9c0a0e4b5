// `quorvex serve <site-folder>`: runs a classic ASP site on HTTP until Ctrl-C or SIGTERM.
#include <signal.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <thread>

#include "asp/http_server.h"
#include "asp/redis_store.h"
#include "asp/site_runtime.h"
#include "cli/commands.h"

namespace qv::cli {
namespace {

struct ServeArgs {
  std::string site;
  std::string bind = "127.0.0.1";
  uint16_t port = 8080;
  unsigned workers = 0;
  bool dev = false;
  bool quiet_log = false;
  size_t max_body_mb = 16;
  unsigned connections = 1024;
  unsigned timeout = 30;
  int32_t script_timeout = 90;
  std::string state = "memory";
  double state_lease = 30;  // seconds
};

// The store of --state: memory, or redis://... with the password from the address or from
// QUORVEX_REDIS_PASSWORD. Redis need not be up yet: pages answer 503 until it is.
std::unique_ptr<asp::StateStore> StateStoreOf(const std::string& state, double lease_seconds) {
  if (state == "memory") return nullptr;
  asp::RedisAddress address;
  try {
    address = asp::RedisAddress::Parse(state);
  } catch (const std::invalid_argument& e) {
    std::fprintf(stderr, "quorvex serve: --state: %s\n", e.what());
    throw CLI::RuntimeError(kExitFailure);
  }
  if (address.password.empty()) {
    if (const char* password = std::getenv("QUORVEX_REDIS_PASSWORD")) address.password = password;
  }
  asp::RedisLeases leases;
  leases.session = leases.application =
      std::chrono::milliseconds(static_cast<int64_t>(lease_seconds * 1000));
  std::unique_ptr<asp::StateStore> store = asp::NewRedisStateStore(address, leases);
  try {
    store->Check();
  } catch (const asp::StateUnavailable& e) {
    std::fprintf(stderr, "quorvex serve: %s; pages with state answer 503 until it can be reached\n",
                 e.what());
  }
  return store;
}

void Serve(const ServeArgs& a) {
  std::error_code ec;
  if (!std::filesystem::is_directory(a.site, ec)) {
    std::fprintf(stderr, "quorvex serve: the site folder '%s' does not exist\n", a.site.c_str());
    throw CLI::RuntimeError(kExitFailure);
  }
  // Wait for the stop signals in this thread rather than in a handler.
  sigset_t stop;
  sigemptyset(&stop);
  sigaddset(&stop, SIGINT);
  sigaddset(&stop, SIGTERM);
  pthread_sigmask(SIG_BLOCK, &stop, nullptr);
  // A peer that went away (a browser, or Redis restarting) is an error to handle on that
  // connection, never a reason for the server to die.
  signal(SIGPIPE, SIG_IGN);

  asp::RuntimeOptions options;
  options.dev = a.dev;
  options.script_timeout = a.script_timeout;
  auto runtime =
      std::make_unique<asp::SiteRuntime>(a.site, options, StateStoreOf(a.state, a.state_lease));
  asp::HttpOptions http;
  http.bind = a.bind;
  http.port = a.port;
  http.threads = a.workers;
  http.max_body = a.max_body_mb << 20;
  http.connection_limit = a.connections;
  http.connection_timeout = a.timeout;
  http.access_log = !a.quiet_log;
  asp::HttpServer server(*runtime, http);
  try {
    server.Start();
  } catch (const std::exception& e) {
    std::fprintf(stderr, "quorvex serve: %s\n", e.what());
    throw CLI::RuntimeError(kExitFailure);
  }
  const unsigned workers =
      a.workers ? a.workers : std::max(1u, std::thread::hardware_concurrency());
  // An IPv6 address goes in brackets, so that the line is an address a browser takes.
  const std::string host = a.bind.find(':') == std::string::npos ? a.bind : "[" + a.bind + "]";
  std::fprintf(stderr, "Serving %s on http://%s:%u/ with %u workers%s%s (Ctrl-C stops)\n",
               runtime->site().root().c_str(), host.c_str(), server.port(), workers,
               a.dev ? " in dev mode" : "", a.state == "memory" ? "" : ", state in Redis");
  int signal = 0;
  sigwait(&stop, &signal);
  std::fprintf(stderr, "Stopping\n");
  server.Stop();
  runtime.reset();  // ends the sessions and the application (global.asa's OnEnd events)
}

}  // namespace

void AddServeCommand(CLI::App& app) {
  auto args = std::make_shared<ServeArgs>();
  CLI::App* cmd = app.add_subcommand("serve", "Serve a classic ASP site over HTTP");
  cmd->add_option("site", args->site, "The site folder")->required();
  cmd->add_option("--port", args->port, "Port to listen on (0: any free port)")
      ->capture_default_str();
  cmd->add_option("--bind", args->bind, "Address to listen on")->capture_default_str();
  cmd->add_option("--workers", args->workers, "Worker threads (default: the number of cores)");
  cmd->add_flag("--dev", args->dev, "Show script errors with file, line and text in the browser");
  cmd->add_option("--max-body", args->max_body_mb, "Largest request body in MiB")
      ->capture_default_str();
  cmd->add_option("--max-connections", args->connections, "Most connections at once")
      ->capture_default_str();
  cmd->add_option("--timeout", args->timeout, "Seconds a silent connection stays open")
      ->capture_default_str();
  cmd->add_option("--script-timeout", args->script_timeout,
                  "Default Server.ScriptTimeout in seconds")
      ->capture_default_str()
      ->check(CLI::PositiveNumber);
  cmd->add_option("--state", args->state,
                  "Where sessions and Application live: memory (this server only), or "
                  "redis://[[user]:password@]host[:port][/db] to share them between servers (the "
                  "password may come from QUORVEX_REDIS_PASSWORD instead)")
      ->type_name("STORE")
      ->capture_default_str();
  CLI::Option* lease =
      cmd->add_option("--state-lease", args->state_lease,
                      "With --state redis://: seconds a server that died holding a session or "
                      "Application.Lock blocks the others (0.1 to 3600)")
          ->type_name("SECONDS")
          ->capture_default_str()
          ->check(CLI::Range(0.1, 3600.0).description(""));
  cmd->add_flag("--no-access-log", args->quiet_log, "Do not log each request on stderr");
  cmd->callback([args, lease] {
    // A lease taken for granted where nothing is shared would mislead: say so.
    if (lease->count() > 0 && args->state == "memory") {
      std::fprintf(stderr,
                   "quorvex serve: --state-lease applies to state shared through Redis: give "
                   "--state redis://host:port as well\n");
      throw CLI::RuntimeError(kExitFailure);
    }
    Serve(*args);
  });
}

}  // namespace qv::cli
