// A request as the HTTP layer hands it to the ASP runtime, and the response it gets back:
// plain data, so that the runtime never sees the HTTP library.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace qv::asp {

struct UploadedFile {
  std::string field;
  std::string file_name;
  std::string content_type;
  std::string data;
};

struct HttpRequest {
  std::string method;
  std::string version;   // "HTTP/1.1"
  std::string raw_path;  // as sent, still percent-encoded
  std::string path;      // decoded UTF-8
  std::string query;     // as sent, without "?"
  std::vector<std::pair<std::string, std::string>> headers;
  std::string body;
  // Fields of a url-encoded or multipart body, decoded to bytes, in order; files of a
  // multipart body.
  std::vector<std::pair<std::string, std::string>> form;
  std::vector<UploadedFile> files;
  std::string remote_addr;
  uint16_t remote_port = 0;
  std::string local_addr;
  uint16_t local_port = 0;
  // Whether the client is still there to take the response; null when nobody can tell.
  std::function<bool()> client_connected;

  // The value of a header (name without regard to case), or null.
  const std::string* Header(std::string_view name) const;
};

class ResponseStream;

struct HttpResponse {
  int status = 200;
  std::string reason = "OK";
  std::vector<std::pair<std::string, std::string>> headers;
  std::string body;
  // A static file sent from disk instead of `body`.
  std::filesystem::path file;
  uintmax_t file_size = 0;
  // A page still running, whose head and body come through this instead.
  std::shared_ptr<ResponseStream> stream;
};

}  // namespace qv::asp
