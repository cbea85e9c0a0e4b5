// libmicrohttpd calls the access handler several times per request: once when the headers are
// in, once per piece of the body, and once at the end, when the request is handed to the
// runtime. The raw URI comes from the library's URI log hook, before the library decodes it:
// the runtime decodes the path itself, strictly, and keeps the query string as it was sent.
//
// A page that streams runs on a thread of the runtime while its connection is suspended; the
// page's stream resumes it when there is a head or a piece of the body to send, and the body
// goes out through a content reader that suspends the connection again when it has nothing.
#include "asp/http_server.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <microhttpd.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <ctime>
#include <stdexcept>
#include <thread>
#include <unordered_map>

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
  std::shared_ptr<ResponseStream> stream;  // of a page that streams
  bool headers_read = false;
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

struct HttpServer::Impl {
  Impl(SiteRuntime& runtime, HttpOptions options) : runtime(runtime), options(std::move(options)) {}

  SiteRuntime& runtime;
  HttpOptions options;
  MHD_Daemon* daemon = nullptr;
  // Streams of pages still running, whose connections may be suspended: Stop must wake them
  // before the library may stop.
  std::mutex streams_mutex;
  std::unordered_map<const ResponseStream*, std::shared_ptr<ResponseStream>> streams;
  bool stopping = false;

  static void* Begin(void*, const char* uri, MHD_Connection*) {
    auto* ex = new Exchange;
    ex->request.raw_path = uri ? uri : "";
    return ex;
  }

  static void Completed(void* cls, MHD_Connection*, void** con_cls, MHD_RequestTerminationCode) {
    auto* self = static_cast<Impl*>(cls);
    auto* ex = static_cast<Exchange*>(*con_cls);
    if (!ex) return;
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

  MHD_Result StartStream(MHD_Connection* connection, Exchange& ex,
                         std::shared_ptr<ResponseStream> stream) {
    ex.stream = std::move(stream);
    ex.stream->Attach([connection] { MHD_suspend_connection(connection); },
                      [connection] { MHD_resume_connection(connection); });
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

  MHD_Result Access(MHD_Connection* connection, const char* method, const char* version,
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
    if (!SplitTarget(ex->request)) return Send(connection, *ex, ErrorResponse(400, "Bad Request"));
    if (!ex->post) SplitRefusedMultipart(ex->request);
    HttpResponse response;
    try {
      response = runtime.Handle(ex->request, true);
    } catch (const std::exception& e) {
      std::fprintf(stderr, "%s: %s\n", ex->request.path.c_str(), e.what());
      response = ErrorResponse(500, "Internal Server Error");
    }
    if (response.stream) return StartStream(connection, *ex, std::move(response.stream));
    return Send(connection, *ex, std::move(response));
  }

  static MHD_Result AccessThunk(void* cls, MHD_Connection* connection, const char*,
                                const char* method, const char* version, const char* upload_data,
                                size_t* upload_data_size, void** con_cls) {
    return static_cast<Impl*>(cls)->Access(connection, method, version, upload_data,
                                           upload_data_size, con_cls);
  }
};

HttpServer::HttpServer(SiteRuntime& runtime, HttpOptions options)
    : impl_(std::make_unique<Impl>(runtime, std::move(options))) {}

HttpServer::~HttpServer() {
  Stop();
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
  unsigned threads =
      s.options.threads ? s.options.threads : std::max(1u, std::thread::hardware_concurrency());
  // The library's default reuse (SO_REUSEADDR) lets a server start again at once on the port
  // it just left; asking for more (SO_REUSEPORT) would let a second server take its share of
  // a busy port's connections without a word.
  unsigned flags =
      MHD_USE_INTERNAL_POLLING_THREAD | MHD_USE_EPOLL | MHD_USE_TURBO | MHD_ALLOW_SUSPEND_RESUME;
  if (v6) flags |= MHD_USE_IPv6;
  s.daemon = MHD_start_daemon(
      flags, s.options.port, nullptr, nullptr, &Impl::AccessThunk, &s, MHD_OPTION_SOCK_ADDR,
      reinterpret_cast<sockaddr*>(&address), MHD_OPTION_THREAD_POOL_SIZE, threads,
      MHD_OPTION_CONNECTION_LIMIT, s.options.connection_limit, MHD_OPTION_CONNECTION_TIMEOUT,
      s.options.connection_timeout, MHD_OPTION_CONNECTION_MEMORY_LIMIT, s.options.header_memory,
      MHD_OPTION_URI_LOG_CALLBACK, &Impl::Begin, &s, MHD_OPTION_NOTIFY_COMPLETED, &Impl::Completed,
      &s, MHD_OPTION_END);
  if (!s.daemon) {
    throw std::runtime_error("cannot listen on " + s.options.bind + ":" +
                             std::to_string(s.options.port) + " (the port may be in use)");
  }
}

void HttpServer::Stop() {
  if (impl_ && impl_->daemon) {
    // Suspended connections must be resumed before the library stops; their pages run on,
    // for nobody, and the runtime waits for them.
    std::vector<std::shared_ptr<ResponseStream>> running;
    {
      std::lock_guard lock(impl_->streams_mutex);
      impl_->stopping = true;
      for (auto& [key, stream] : impl_->streams)
        running.push_back(stream);
    }
    for (const auto& stream : running)
      stream->Cancel();
    MHD_stop_daemon(impl_->daemon);
    impl_->daemon = nullptr;
  }
}

uint16_t HttpServer::port() const {
  if (!impl_->daemon) return 0;
  const MHD_DaemonInfo* info = MHD_get_daemon_info(impl_->daemon, MHD_DAEMON_INFO_BIND_PORT);
  return info ? info->port : impl_->options.port;
}

}  // namespace qv::asp
