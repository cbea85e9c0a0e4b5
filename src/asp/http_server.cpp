// libmicrohttpd calls the access handler several times per request: once when the headers are
// in, once per piece of the body, and once at the end, when the request is handed to the
// runtime. The raw URI comes from the library's URI log hook, before the library decodes it:
// the runtime decodes the path itself, strictly, and keeps the query string as it was sent.
//
// A page that streams runs on a thread of the runtime while its connection is suspended; the
// page's stream resumes it when there is a head or a piece of the body to send, and the body
// goes out through a content reader that suspends the connection again when it has nothing.
//
// Each worker thread drives a daemon of the library of its own, all on one listening socket,
// from a loop of ours rather than the library's, so that it can wait for more than the
// library's sockets: a request whose session lives in another process (Redis) sends for it,
// suspends its connection and lets the thread serve other requests until the answer is in.
// A thread that slept on each of those round trips would pay two context switches a request,
// which cost more than the round trip itself on a busy machine.
#include "asp/http_server.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <microhttpd.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <cassert>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <stdexcept>
#include <thread>
#include <unordered_map>
#include <unordered_set>

#include "asp/multipart.h"
#include "asp/response_stream.h"
#include "asp/site_runtime.h"
#include "asp/text_codec.h"

namespace qv::asp {
namespace {

// One request on its way through the library.
struct Exchange {
  HttpRequest request;
  MHD_PostProcessor* post = nullptr;
  std::shared_ptr<ResponseStream> stream;   // of a page that streams
  std::unique_ptr<SessionOpening> opening;  // the session asked for ahead
  std::string session;                      // its cookie, where the store is shared
  bool headers_read = false;
  bool split = false;      // the target is split into path and query
  bool asked = false;      // OpenAhead ran
  bool in_flight = false;  // `session` is in its loop's in_flight
  bool too_large = false;
  bool streamed = false;  // the body came through `stream`
  int status = 0;
  size_t bytes = 0;

  ~Exchange() {
    if (post) MHD_destroy_post_processor(post);
  }
};

std::string AddressText(const sockaddr* addr, uint16_t& port) {
  char buffer[INET6_ADDRSTRLEN] = "";
  port = 0;
  if (!addr) return {};
  if (addr->sa_family == AF_INET) {
    const auto* in = reinterpret_cast<const sockaddr_in*>(addr);
    inet_ntop(AF_INET, &in->sin_addr, buffer, sizeof buffer);
    port = ntohs(in->sin_port);
  } else if (addr->sa_family == AF_INET6) {
    const auto* in = reinterpret_cast<const sockaddr_in6*>(addr);
    inet_ntop(AF_INET6, &in->sin6_addr, buffer, sizeof buffer);
    port = ntohs(in->sin6_port);
  }
  return buffer;
}

MHD_Result CollectHeader(void* cls, MHD_ValueKind, const char* key, const char* value) {
  static_cast<HttpRequest*>(cls)->headers.emplace_back(key, value ? value : "");
  return MHD_YES;
}

MHD_Result CollectPost(void* cls, MHD_ValueKind, const char* key, const char* filename,
                       const char* content_type, const char*, const char* data, uint64_t off,
                       size_t size) {
  auto& request = static_cast<Exchange*>(cls)->request;
  if (filename) {
    if (off == 0 || request.files.empty() || request.files.back().field != key) {
      request.files.push_back({key, filename, content_type ? content_type : "", {}});
    }
    request.files.back().data.append(data, size);
  } else {
    if (off == 0 || request.form.empty()) request.form.emplace_back(key, std::string());
    request.form.back().second.append(data, size);
  }
  return MHD_YES;
}

// A multipart body whose boundary the library refused (one character) is split here.
void SplitRefusedMultipart(HttpRequest& request) {
  const std::string* type = request.Header("Content-Type");
  if (!type || type->find("multipart/form-data") == std::string::npos) return;
  if (const std::optional<std::string> boundary = MultipartBoundary(*type))
    SplitMultipart(request.body, *boundary, request);
}

// A peer that closed its end shows as a hang-up or as a readable socket with nothing to read;
// a next request already sent (keep-alive) is data, so the client is still there.
bool ClientConnected(int fd) {
  pollfd p{fd, POLLIN | POLLRDHUP, 0};
  if (poll(&p, 1, 0) <= 0) return true;
  if (p.revents & (POLLRDHUP | POLLHUP | POLLERR | POLLNVAL)) return false;
  char byte;
  return recv(fd, &byte, 1, MSG_PEEK | MSG_DONTWAIT) != 0;
}

std::string LogTime() {
  const std::time_t now = std::time(nullptr);
  std::tm tm{};
  gmtime_r(&now, &tm);
  char buffer[40];
  std::strftime(buffer, sizeof buffer, "%d/%b/%Y:%H:%M:%S +0000", &tm);
  return buffer;
}

// The body of a streamed response, as libmicrohttpd asks for it.
ssize_t ReadBody(void* cls, uint64_t, char* buffer, size_t size) {
  auto& stream = *static_cast<std::shared_ptr<ResponseStream>*>(cls);
  bool gone = false;
  const std::optional<size_t> n = stream->Read(buffer, size, gone);
  if (!n) return gone ? MHD_CONTENT_READER_END_WITH_ERROR : MHD_CONTENT_READER_END_OF_STREAM;
  return static_cast<ssize_t>(*n);
}

void FreeBody(void* cls) {
  delete static_cast<std::shared_ptr<ResponseStream>*>(cls);
}

}  // namespace

// As long as a store may take to answer (RedisClient's command time-out).
constexpr auto kMostWait = std::chrono::seconds(3);

struct HttpServer::Impl {
  // One worker thread and the daemon it drives. The library's sockets are all behind one
  // descriptor (its epoll set), polled together with the descriptors of the session answers
  // that suspended connections wait for.
  struct Loop {
    explicit Loop(Impl& server) : server(server) {}
    ~Loop() {
      if (wake >= 0) close(wake);
    }
    struct Waiting;
    void Run();
    int Timeout(std::chrono::steady_clock::time_point now) const;
    static bool Due(Waiting& w, bool answered, std::chrono::steady_clock::time_point now);
    void Wake() const {
      const uint64_t one = 1;
      [[maybe_unused]] const ssize_t n = write(wake, &one, sizeof one);
    }

    Impl& server;
    MHD_Daemon* daemon = nullptr;
    int wake = -1;  // an eventfd that Stop writes to
    std::thread thread;
    // A suspended connection and what it waits for: the answer to its session's opening, the
    // end of a pause before it asks again (the session was held), or its turn (Finished).
    struct Waiting {
      enum class For : uint8_t { Answer, Pause, Turn };
      MHD_Connection* connection;
      Exchange* ex;
      For what;
      int fd;  // an Answer's
      // An Answer past this gives up: a store that answers nothing must not hold a request
      // for ever (and the request answers 503). A Pause ends here.
      std::chrono::steady_clock::time_point until;
    };
    // Touched by this loop's thread only, and by Stop once the thread has ended.
    std::vector<Waiting> waiting;
    // The sessions of this loop's requests between asking for their session and their end.
    // Another request of one of them waits its turn here, so that a request that waits for a
    // session's hold can never be waiting for a request that this very thread has suspended.
    std::unordered_set<std::string> in_flight;

    void Suspend(MHD_Connection* connection, Exchange& ex, Waiting::For what, int fd = -1) {
      assert(what != Waiting::For::Turn || in_flight.contains(ex.session));
      assert(what == Waiting::For::Turn || (ex.opening && fd >= 0));
      MHD_suspend_connection(connection);
      waiting.push_back({connection, &ex, what, fd, std::chrono::steady_clock::now() + kMostWait});
    }
    // A request is over, or leaves this loop: where no other request of its session is in
    // flight now, the next one that waits its turn goes on (and looks again). Called for every
    // request, and twice for some, which is harmless: a request that went on too early waits
    // its turn again.
    void Finished(Exchange& ex) {
      if (ex.in_flight) {
        in_flight.erase(ex.session);
        ex.in_flight = false;
      }
      if (ex.session.empty() || in_flight.contains(ex.session)) return;
      for (auto it = waiting.begin(); it != waiting.end(); ++it) {
        if (it->what != Waiting::For::Turn || it->ex->session != ex.session) continue;
        MHD_resume_connection(it->connection);
        waiting.erase(it);
        return;
      }
    }
  };

  Impl(SiteRuntime& runtime, HttpOptions options) : runtime(runtime), options(std::move(options)) {}

  SiteRuntime& runtime;
  HttpOptions options;
  std::vector<std::unique_ptr<Loop>> loops;
  uint16_t port = 0;
  // Streams of pages still running, whose connections may be suspended: Stop must wake them,
  // and the loops run until they are gone, before the library may stop.
  std::mutex streams_mutex;
  std::unordered_map<const ResponseStream*, std::shared_ptr<ResponseStream>> streams;
  bool stopping = false;  // under streams_mutex
  std::atomic<bool> stop_loops{false};

  bool Quiet() {
    std::lock_guard lock(streams_mutex);
    return streams.empty();
  }

  static void* Begin(void*, const char* uri, MHD_Connection*) {
    auto* ex = new Exchange;
    ex->request.raw_path = uri ? uri : "";
    return ex;
  }

  static void Completed(void* cls, MHD_Connection*, void** con_cls, MHD_RequestTerminationCode) {
    Loop& loop = *static_cast<Loop*>(cls);
    Impl* self = &loop.server;
    auto* ex = static_cast<Exchange*>(*con_cls);
    if (!ex) return;
    loop.Finished(*ex);
    if (ex->stream) {
      // A page still running for a client that went away runs to its end for nobody.
      ex->stream->Cancel();
      if (ex->streamed) ex->bytes = ex->stream->bytes_sent();
      std::lock_guard lock(self->streams_mutex);
      self->streams.erase(ex->stream.get());
    }
    if (self->options.access_log && ex->status) {
      const HttpRequest& r = ex->request;
      std::string line = r.remote_addr + " - - [" + LogTime() + "] \"" + r.method + " " +
                         r.raw_path + (r.query.empty() ? "" : "?" + r.query) + " " + r.version +
                         "\" " + std::to_string(ex->status) + " " + std::to_string(ex->bytes) +
                         "\n";
      // One write per line keeps lines of parallel requests whole.
      [[maybe_unused]] const ssize_t n = write(STDERR_FILENO, line.data(), line.size());
    }
    delete ex;
    *con_cls = nullptr;
  }

  static MHD_Result Send(MHD_Connection* connection, Exchange& ex, HttpResponse&& r) {
    MHD_Response* response = nullptr;
    if (!r.file.empty()) {
      const int fd = open(r.file.c_str(), O_RDONLY | O_CLOEXEC);
      if (fd < 0) return Send(connection, ex, ErrorResponse(404, "Not Found"));
      response = MHD_create_response_from_fd64(r.file_size, fd);
      ex.bytes = r.file_size;
    } else {
      response =
          MHD_create_response_from_buffer(r.body.size(), r.body.data(), MHD_RESPMEM_MUST_COPY);
      ex.bytes = r.body.size();
    }
    if (!response) return MHD_NO;
    for (const auto& [name, value] : r.headers)
      MHD_add_response_header(response, name.c_str(), value.c_str());
    ex.status = r.status;
    const MHD_Result result =
        MHD_queue_response(connection, static_cast<unsigned>(r.status), response);
    MHD_destroy_response(response);
    return result;
  }

  // Sends the head of a page that streams, once there is one.
  static MHD_Result SendStream(MHD_Connection* connection, Exchange& ex) {
    HttpResponse head;
    switch (ex.stream->TakeHead(head)) {
      case ResponseStream::Head::kWait:
        return MHD_YES;
      case ResponseStream::Head::kGone:
        return MHD_NO;
      case ResponseStream::Head::kWhole:
        return Send(connection, ex, std::move(head));
      case ResponseStream::Head::kStream:
        break;
    }
    auto* holder = new std::shared_ptr<ResponseStream>(ex.stream);
    MHD_Response* response = MHD_create_response_from_callback(MHD_SIZE_UNKNOWN, 32 * 1024,
                                                               &ReadBody, holder, &FreeBody);
    if (!response) {
      delete holder;
      return MHD_NO;
    }
    for (const auto& [name, value] : head.headers)
      MHD_add_response_header(response, name.c_str(), value.c_str());
    ex.status = head.status;
    ex.streamed = true;
    const MHD_Result result =
        MHD_queue_response(connection, static_cast<unsigned>(head.status), response);
    MHD_destroy_response(response);
    return result;
  }

  // The page's thread resumes the connection; the library does not wake a loop that polls
  // for it by itself, so the resume wakes the loop too.
  MHD_Result StartStream(Loop& loop, MHD_Connection* connection, Exchange& ex,
                         std::shared_ptr<ResponseStream> stream) {
    ex.stream = std::move(stream);
    ex.stream->Attach([connection] { MHD_suspend_connection(connection); },
                      [connection, &loop] {
                        MHD_resume_connection(connection);
                        loop.Wake();
                      });
    bool refused = false;
    {
      std::lock_guard lock(streams_mutex);
      refused = stopping;
      if (!refused) streams.emplace(ex.stream.get(), ex.stream);
    }
    if (refused) {
      ex.stream->Cancel();
      return MHD_NO;
    }
    return SendStream(connection, ex);
  }

  void ReadHeaders(MHD_Connection* connection, Exchange& ex, const char* method,
                   const char* version) {
    HttpRequest& r = ex.request;
    r.method = method;
    r.version = version;
    MHD_get_connection_values(connection, MHD_HEADER_KIND, CollectHeader, &r);
    if (const auto* info = MHD_get_connection_info(connection, MHD_CONNECTION_INFO_CLIENT_ADDRESS))
      r.remote_addr = AddressText(info->client_addr, r.remote_port);
    if (const auto* info = MHD_get_connection_info(connection, MHD_CONNECTION_INFO_CONNECTION_FD)) {
      const int fd = info->connect_fd;
      r.client_connected = [fd] { return ClientConnected(fd); };
      sockaddr_storage local{};
      socklen_t length = sizeof local;
      if (getsockname(info->connect_fd, reinterpret_cast<sockaddr*>(&local), &length) == 0)
        r.local_addr = AddressText(reinterpret_cast<sockaddr*>(&local), r.local_port);
    }
    if (const std::string* length = r.Header("Content-Length")) {
      if (std::strtoull(length->c_str(), nullptr, 10) > options.max_body) ex.too_large = true;
    }
    const std::string* type = r.Header("Content-Type");
    if (!ex.too_large && type &&
        (type->find("application/x-www-form-urlencoded") != std::string::npos ||
         type->find("multipart/form-data") != std::string::npos)) {
      ex.post = MHD_create_post_processor(connection, 64 * 1024, CollectPost, &ex);
    }
  }

  // Splits the raw target into its path (decoded) and query; false for a path that does not
  // decode to UTF-8 text without NUL.
  static bool SplitTarget(HttpRequest& r) {
    const size_t q = r.raw_path.find('?');
    if (q != std::string::npos) {
      r.query = r.raw_path.substr(q + 1);
      r.raw_path.resize(q);
    }
    if (const size_t hash = r.query.find('#'); hash != std::string::npos) r.query.resize(hash);
    std::optional<std::string> path = PercentDecode(r.raw_path, false);
    if (!path || path->find('\0') != std::string::npos || !IsValidUtf8(*path)) return false;
    if (path->empty() || (*path)[0] != '/') return false;
    r.path = std::move(*path);
    return true;
  }

  MHD_Result Access(Loop& loop, MHD_Connection* connection, const char* method, const char* version,
                    const char* upload_data, size_t* upload_data_size, void** con_cls) {
    auto* ex = static_cast<Exchange*>(*con_cls);
    if (!ex) return MHD_NO;
    if (!ex->headers_read) {
      ex->headers_read = true;
      ReadHeaders(connection, *ex, method, version);
      if (ex->too_large) return Send(connection, *ex, ErrorResponse(413, "Payload Too Large"));
      return MHD_YES;
    }
    if (*upload_data_size > 0) {
      const size_t size = *upload_data_size;
      *upload_data_size = 0;
      if (ex->too_large) return MHD_YES;
      if (ex->request.body.size() + size > options.max_body) {
        // A chunked body gave no length up front: stop keeping it once it is too large.
        ex->too_large = true;
        ex->request.body.clear();
        ex->request.body.shrink_to_fit();
        return MHD_YES;
      }
      ex->request.body.append(upload_data, size);
      if (ex->post) MHD_post_process(ex->post, upload_data, size);
      return MHD_YES;
    }
    if (ex->stream) return SendStream(connection, *ex);
    if (ex->status) return MHD_YES;  // answered already
    if (ex->too_large) return Send(connection, *ex, ErrorResponse(413, "Payload Too Large"));
    if (!ex->split) {
      ex->split = true;
      if (!SplitTarget(ex->request))
        return Send(connection, *ex, ErrorResponse(400, "Bad Request"));
      if (!ex->post) SplitRefusedMultipart(ex->request);
      ex->session = runtime.SharedSessionOf(ex->request);
    }
    if (!ex->asked) {
      if (!ex->session.empty() && loop.in_flight.contains(ex->session)) {
        loop.Suspend(connection, *ex, Loop::Waiting::For::Turn);
        return MHD_YES;
      }
      ex->asked = true;
      ex->opening = runtime.OpenAhead(ex->request, ex->session);
      if (const int fd = ex->opening ? ex->opening->AnswerFd() : -1; fd >= 0) {
        ex->in_flight = loop.in_flight.insert(ex->session).second;
        assert(ex->in_flight);
        loop.Suspend(connection, *ex, Loop::Waiting::For::Answer, fd);
        return MHD_YES;
      }
    }
    // Resumed by a server that is stopping: the request is dropped, and with it its opening,
    // which lets its session go.
    if (stop_loops) return MHD_NO;
    HttpResponse response;
    try {
      response = runtime.Handle(ex->request, true, std::move(ex->opening));
    } catch (const std::exception& e) {
      std::fprintf(stderr, "%s: %s\n", ex->request.path.c_str(), e.what());
      response = ErrorResponse(500, "Internal Server Error");
    }
    loop.Finished(*ex);
    if (response.stream) return StartStream(loop, connection, *ex, std::move(response.stream));
    return Send(connection, *ex, std::move(response));
  }

  static MHD_Result AccessThunk(void* cls, MHD_Connection* connection, const char*,
                                const char* method, const char* version, const char* upload_data,
                                size_t* upload_data_size, void** con_cls) {
    Loop& loop = *static_cast<Loop*>(cls);
    return loop.server.Access(loop, connection, method, version, upload_data, upload_data_size,
                              con_cls);
  }
};

HttpServer::HttpServer(SiteRuntime& runtime, HttpOptions options)
    : impl_(std::make_unique<Impl>(runtime, std::move(options))) {}

HttpServer::~HttpServer() {
  Stop();
}

// The socket all the daemons accept on, made here so that each daemon gets a copy of its own
// and the port is known before they start.
static int Listen(const sockaddr_storage& address, bool v6, const std::string& where) {
  const int fd = socket(v6 ? AF_INET6 : AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
  if (fd < 0) throw std::runtime_error("cannot listen on " + where + ": " + std::strerror(errno));
  // Reuse of the address (SO_REUSEADDR) lets a server start again at once on the port it just
  // left; asking for more (SO_REUSEPORT) would let a second server take its share of a busy
  // port's connections without a word.
  const int on = 1;
  setsockopt(fd, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
  if (v6) setsockopt(fd, IPPROTO_IPV6, IPV6_V6ONLY, &on, sizeof on);
  const socklen_t length = v6 ? sizeof(sockaddr_in6) : sizeof(sockaddr_in);
  if (bind(fd, reinterpret_cast<const sockaddr*>(&address), length) != 0 ||
      listen(fd, SOMAXCONN) != 0) {
    const int error = errno;
    close(fd);
    throw std::runtime_error("cannot listen on " + where + " (" +
                             (error == EADDRINUSE ? std::string("the port is in use")
                                                  : std::string(std::strerror(error))) +
                             ")");
  }
  return fd;
}

int HttpServer::Impl::Loop::Timeout(std::chrono::steady_clock::time_point now) const {
  long long ms = -1;
  MHD_UNSIGNED_LONG_LONG library = 0;
  if (MHD_get_timeout(daemon, &library) == MHD_YES)
    ms = static_cast<long long>(std::min<MHD_UNSIGNED_LONG_LONG>(library, 60'000));
  for (const Waiting& w : waiting) {
    if (w.what == Waiting::For::Turn) continue;
    const long long left =
        std::max<long long>(0, std::chrono::ceil<std::chrono::milliseconds>(w.until - now).count());
    ms = ms < 0 ? left : std::min(ms, left);
  }
  return static_cast<int>(ms);
}

// Moves a waiting connection on; true when it is to be resumed.
bool HttpServer::Impl::Loop::Due(Waiting& w, bool answered,
                                 std::chrono::steady_clock::time_point now) {
  switch (w.what) {
    case Waiting::For::Turn:
      return false;  // Finished lets it on
    case Waiting::For::Answer: {
      SessionOpening& opening = *w.ex->opening;
      if (answered) {
        const std::optional<std::chrono::milliseconds> pause = opening.Settle();
        if (pause && pause->count() > 0) {
          w.what = Waiting::For::Pause;
          w.until = now + *pause;
          return false;
        }
        if (pause) return true;
      }
      if (now < w.until) return false;
      opening.GiveUp();
      return true;
    }
    case Waiting::For::Pause:
      if (now < w.until) return false;
      w.ex->opening->AskAgain();
      w.fd = w.ex->opening->AnswerFd();
      if (w.fd < 0) return true;  // out of reach: FinishOpen tells
      w.what = Waiting::For::Answer;
      w.until = now + kMostWait;
      return false;
  }
  return true;
}

void HttpServer::Impl::Loop::Run() {
  const MHD_DaemonInfo* info = MHD_get_daemon_info(daemon, MHD_DAEMON_INFO_EPOLL_FD);
  assert(info);
  const int library = info->epoll_fd;
  std::vector<pollfd> fds;
  for (;;) {
    const bool stopping = server.stop_loops;
    // A stopping server's loop runs on until no connection of its daemon is suspended, which
    // the library requires before it stops.
    if (stopping && waiting.empty() && server.Quiet()) return;
    fds.clear();
    fds.push_back({library, POLLIN, 0});
    fds.push_back({wake, POLLIN, 0});
    for (const Waiting& w : waiting)
      fds.push_back({w.what == Waiting::For::Answer ? w.fd : -1, POLLIN, 0});
    const int timeout = stopping ? 10 : Timeout(std::chrono::steady_clock::now());
    if (poll(fds.data(), fds.size(), timeout) < 0 && errno != EINTR) {
      std::fprintf(stderr, "quorvex serve: poll: %s\n", std::strerror(errno));
      continue;
    }
    if (fds[1].revents) {
      uint64_t count = 0;
      [[maybe_unused]] const ssize_t n = read(wake, &count, sizeof count);
    }
    const auto now = std::chrono::steady_clock::now();
    size_t kept = 0;
    for (size_t i = 0; i < waiting.size(); ++i) {
      Waiting& w = waiting[i];
      if (!stopping && !Due(w, fds[i + 2].revents != 0, now)) {
        waiting[kept++] = w;
        continue;
      }
      MHD_resume_connection(w.connection);
    }
    waiting.resize(kept);
    MHD_run(daemon);
  }
}

void HttpServer::Start() {
  Impl& s = *impl_;
  sockaddr_storage address{};
  const bool v6 = s.options.bind.find(':') != std::string::npos;
  if (v6) {
    auto* in = reinterpret_cast<sockaddr_in6*>(&address);
    in->sin6_family = AF_INET6;
    in->sin6_port = htons(s.options.port);
    if (inet_pton(AF_INET6, s.options.bind.c_str(), &in->sin6_addr) != 1)
      throw std::runtime_error("not an address to listen on: " + s.options.bind);
  } else {
    auto* in = reinterpret_cast<sockaddr_in*>(&address);
    in->sin_family = AF_INET;
    in->sin_port = htons(s.options.port);
    if (inet_pton(AF_INET, s.options.bind.c_str(), &in->sin_addr) != 1)
      throw std::runtime_error("not an address to listen on: " + s.options.bind);
  }
  const int listener = Listen(address, v6, s.options.bind + ":" + std::to_string(s.options.port));
  sockaddr_storage bound{};
  socklen_t length = sizeof bound;
  getsockname(listener, reinterpret_cast<sockaddr*>(&bound), &length);
  AddressText(reinterpret_cast<const sockaddr*>(&bound), s.port);

  const unsigned threads =
      s.options.threads ? s.options.threads : std::max(1u, std::thread::hardware_concurrency());
  const unsigned limit = std::max(1u, (s.options.connection_limit + threads - 1) / threads);
  unsigned flags = MHD_USE_EPOLL | MHD_USE_TURBO | MHD_ALLOW_SUSPEND_RESUME;
  if (v6) flags |= MHD_USE_IPv6;
  for (unsigned i = 0; i < threads; ++i) {
    auto loop = std::make_unique<Impl::Loop>(s);
    loop->wake = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    const int own = fcntl(listener, F_DUPFD_CLOEXEC, 0);
    if (loop->wake >= 0 && own >= 0) {
      loop->daemon = MHD_start_daemon(
          flags, 0, nullptr, nullptr, &Impl::AccessThunk, loop.get(), MHD_OPTION_LISTEN_SOCKET, own,
          MHD_OPTION_CONNECTION_LIMIT, limit, MHD_OPTION_CONNECTION_TIMEOUT,
          s.options.connection_timeout, MHD_OPTION_CONNECTION_MEMORY_LIMIT, s.options.header_memory,
          MHD_OPTION_URI_LOG_CALLBACK, &Impl::Begin, &s, MHD_OPTION_NOTIFY_COMPLETED,
          &Impl::Completed, loop.get(), MHD_OPTION_END);
    }
    if (!loop->daemon) {
      if (own >= 0) close(own);
      close(listener);
      Stop();
      throw std::runtime_error("cannot serve on " + s.options.bind + ":" + std::to_string(s.port) +
                               ": the HTTP library did not start");
    }
    s.loops.push_back(std::move(loop));
  }
  close(listener);
  for (const auto& loop : s.loops)
    loop->thread = std::thread([l = loop.get()] { l->Run(); });
}

void HttpServer::Stop() {
  if (!impl_ || impl_->loops.empty()) return;
  Impl& s = *impl_;
  // Suspended connections must be resumed before the library stops: pages that stream run
  // on, for nobody, and the runtime waits for them; requests waiting for their session are
  // dropped.
  std::vector<std::shared_ptr<ResponseStream>> running;
  {
    std::lock_guard lock(s.streams_mutex);
    s.stopping = true;
    for (auto& [key, stream] : s.streams)
      running.push_back(stream);
  }
  for (const auto& stream : running)
    stream->Cancel();
  s.stop_loops = true;
  for (const auto& loop : s.loops) {
    if (!loop->thread.joinable()) continue;
    loop->Wake();
    loop->thread.join();
  }
  for (const auto& loop : s.loops) {
    if (loop->daemon) MHD_stop_daemon(loop->daemon);
  }
  s.loops.clear();
}

uint16_t HttpServer::port() const {
  return impl_->loops.empty() ? 0 : impl_->port;
}

}  // namespace qv::asp
