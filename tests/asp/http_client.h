// A small HTTP/1.1 client over a loopback socket for the tests: it sends the bytes it is
// given (well-formed or not) and reads the reply until the server closes the connection.
#pragma once

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <strings.h>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace qv::asp::test {

struct Reply {
  int status = 0;  // 0: the server closed without a reply
  std::vector<std::pair<std::string, std::string>> headers;
  std::string body;

  std::string Header(const std::string& name) const {
    for (const auto& [n, v] : headers) {
      if (strcasecmp(n.c_str(), name.c_str()) == 0) return v;
    }
    return {};
  }
  std::vector<std::string> All(const std::string& name) const {
    std::vector<std::string> out;
    for (const auto& [n, v] : headers) {
      if (strcasecmp(n.c_str(), name.c_str()) == 0) out.push_back(v);
    }
    return out;
  }
};

inline Reply Parse(const std::string& raw) {
  Reply r;
  const size_t end = raw.find("\r\n\r\n");
  if (raw.compare(0, 5, "HTTP/") != 0 || end == std::string::npos) return r;
  r.status = std::atoi(raw.c_str() + raw.find(' ') + 1);
  size_t pos = raw.find("\r\n") + 2;
  while (pos < end) {
    const size_t eol = raw.find("\r\n", pos);
    const std::string line = raw.substr(pos, eol - pos);
    const size_t colon = line.find(':');
    if (colon != std::string::npos) {
      size_t v = colon + 1;
      while (v < line.size() && line[v] == ' ')
        ++v;
      r.headers.emplace_back(line.substr(0, colon), line.substr(v));
    }
    pos = eol + 2;
  }
  r.body = raw.substr(end + 4);
  if (r.Header("Transfer-Encoding") == "chunked") {
    std::string body;
    size_t at = 0;
    for (;;) {
      const size_t eol = r.body.find("\r\n", at);
      if (eol == std::string::npos) break;
      const size_t size = std::strtoul(r.body.c_str() + at, nullptr, 16);
      if (size == 0) break;
      body += r.body.substr(eol + 2, size);
      at = eol + 2 + size + 2;
    }
    r.body = std::move(body);
  }
  return r;
}

// A connection to the server on loopback, or -1.
inline int Connect(uint16_t port) {
  const int fd = socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in addr{};
  addr.sin_family = AF_INET;
  addr.sin_port = htons(port);
  addr.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  if (connect(fd, reinterpret_cast<sockaddr*>(&addr), sizeof addr) != 0) {
    close(fd);
    return -1;
  }
  return fd;
}

inline void SendAll(int fd, const std::string& bytes) {
  size_t sent = 0;
  while (sent < bytes.size()) {
    const ssize_t n = send(fd, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
    if (n <= 0) break;
    sent += static_cast<size_t>(n);
  }
}

// Reads into `out` until it holds `until` (true), or until the server closes or stays silent
// for `timeout_ms` (false); an empty `until` reads to the end.
inline bool ReadUntil(int fd, const std::string& until, std::string& out, int timeout_ms = 10000) {
  char buffer[65536];
  while (until.empty() || out.find(until) == std::string::npos) {
    pollfd p{fd, POLLIN, 0};
    if (poll(&p, 1, timeout_ms) <= 0) return false;
    const ssize_t n = recv(fd, buffer, sizeof buffer, 0);
    if (n <= 0) return false;
    out.append(buffer, static_cast<size_t>(n));
  }
  return true;
}

// Sends `request` as it is and returns what came back before the server closed, or before
// `timeout_ms` of silence.
inline std::string Exchange(uint16_t port, const std::string& request, int timeout_ms = 10000) {
  const int fd = Connect(port);
  if (fd < 0) return {};
  SendAll(fd, request);
  std::string out;
  ReadUntil(fd, {}, out, timeout_ms);
  close(fd);
  return out;
}

inline Reply Get(uint16_t port, const std::string& target, const std::string& headers = {}) {
  return Parse(Exchange(port, "GET " + target +
                                  " HTTP/1.1\r\nHost: 127.0.0.1\r\nConnection: close\r\n" +
                                  headers + "\r\n"));
}

inline Reply Post(uint16_t port, const std::string& target, const std::string& type,
                  const std::string& body, const std::string& headers = {}) {
  return Parse(Exchange(
      port, "POST " + target +
                " HTTP/1.1\r\nHost: 127.0.0.1\r\nConnection: close\r\nContent-Type: " + type +
                "\r\nContent-Length: " + std::to_string(body.size()) + "\r\n" + headers + "\r\n" +
                body));
}

// The value of "name=value" lines of a text body.
inline std::string Field(const std::string& body, const std::string& name) {
  const std::string key = name + "=";
  size_t pos = 0;
  while (pos < body.size()) {
    const size_t eol = body.find("\r\n", pos);
    std::string line = body.substr(pos, eol == std::string::npos ? std::string::npos : eol - pos);
    while (!line.empty() && line[0] == '\n')
      line.erase(0, 1);
    if (line.compare(0, key.size(), key) == 0) return line.substr(key.size());
    if (eol == std::string::npos) break;
    pos = eol + 2;
  }
  return "<none>";
}

}  // namespace qv::asp::test
