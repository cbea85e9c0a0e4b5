// The HTTP side of `quorvex serve`, over libmicrohttpd: worker threads with keep-alive, each
// serving other requests while one waits for its session from a shared store, bodies read as
// they stream in (forms and multipart uploads through the library's post processor), limits
// against hostile clients, and an access log line per request.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace qv::asp {

class SiteRuntime;

struct HttpOptions {
  std::string bind = "127.0.0.1";
  uint16_t port = 8080;  // 0: any free port
  unsigned threads = 0;  // 0: one per core
  size_t max_body = 16u << 20;
  // Each connection's memory in the library. About half of it holds the request line and
  // headers (64 KB take a 32 KB cookie). The library clears all of it before every request
  // of a kept-alive connection, some 7 % of a trivial page's time; but a smaller size would
  // refuse headers that browsers send and that other servers take.
  size_t header_memory = 64u << 10;
  unsigned connection_limit = 1024;
  unsigned connection_timeout = 30;  // seconds of silence before a connection is closed
  bool access_log = true;
};

class HttpServer {
 public:
  HttpServer(SiteRuntime& runtime, HttpOptions options);
  ~HttpServer();
  HttpServer(const HttpServer&) = delete;
  HttpServer& operator=(const HttpServer&) = delete;

  // Starts listening; throws std::runtime_error with the reason when it cannot.
  void Start();
  void Stop();
  // The port it listens on (the one chosen when asked for 0).
  uint16_t port() const;

  struct Impl;

 private:
  std::unique_ptr<Impl> impl_;
};

}  // namespace qv::asp
