// A part is "--boundary", optional blanks, CRLF, header lines, an empty line, then the content
// up to the CRLF before the next "--boundary"; "--boundary--" closes the body.
#include "asp/multipart.h"

#include <algorithm>
#include <cctype>

namespace qv::asp {
namespace {

bool StartsWithNoCase(std::string_view text, std::string_view prefix) {
  return text.size() >= prefix.size() &&
         std::equal(prefix.begin(), prefix.end(), text.begin(), [](char a, char b) {
           return std::tolower(static_cast<unsigned char>(a)) ==
                  std::tolower(static_cast<unsigned char>(b));
         });
}

std::string_view TrimBlanks(std::string_view s) {
  while (!s.empty() && (s.front() == ' ' || s.front() == '\t'))
    s.remove_prefix(1);
  while (!s.empty() && (s.back() == ' ' || s.back() == '\t'))
    s.remove_suffix(1);
  return s;
}

// The value of parameter `name` in a header's value ("form-data; name=\"a\"; filename=x"),
// unquoted; nothing when the parameter is missing.
std::optional<std::string> Parameter(std::string_view header, std::string_view name) {
  size_t at = header.find(';');
  while (at != std::string_view::npos) {
    std::string_view rest = TrimBlanks(header.substr(at + 1));
    if (StartsWithNoCase(rest, name) && rest.size() > name.size() &&
        TrimBlanks(rest.substr(name.size())).starts_with('=')) {
      rest = TrimBlanks(rest.substr(rest.find('=') + 1));
      std::string value;
      if (!rest.starts_with('"')) return std::string(TrimBlanks(rest.substr(0, rest.find(';'))));
      for (size_t i = 1; i < rest.size() && rest[i] != '"'; ++i) {
        if (rest[i] == '\\' && i + 1 < rest.size()) ++i;
        value += rest[i];
      }
      return value;
    }
    // The next ";" outside quotes.
    bool quoted = false;
    size_t next = std::string_view::npos;
    for (size_t i = at + 1; i < header.size(); ++i) {
      if (header[i] == '"') quoted = !quoted;
      if (header[i] == ';' && !quoted) {
        next = i;
        break;
      }
    }
    at = next;
  }
  return std::nullopt;
}

void AddPart(std::string_view headers, std::string_view content, HttpRequest& request) {
  std::string_view disposition, type;
  while (!headers.empty()) {
    const size_t end = headers.find("\r\n");
    const std::string_view line = headers.substr(0, end);
    headers = end == std::string_view::npos ? std::string_view() : headers.substr(end + 2);
    const size_t colon = line.find(':');
    if (colon == std::string_view::npos) continue;
    const std::string_view name = TrimBlanks(line.substr(0, colon));
    const std::string_view value = TrimBlanks(line.substr(colon + 1));
    if (name.size() == 19 && StartsWithNoCase(name, "content-disposition")) disposition = value;
    if (name.size() == 12 && StartsWithNoCase(name, "content-type")) type = value;
  }
  const std::optional<std::string> field = Parameter(disposition, "name");
  if (!field) return;  // not a form field
  if (std::optional<std::string> file = Parameter(disposition, "filename")) {
    request.files.push_back({*field, std::move(*file), std::string(type), std::string(content)});
  } else {
    request.form.emplace_back(*field, std::string(content));
  }
}

}  // namespace

std::optional<std::string> MultipartBoundary(std::string_view content_type) {
  std::optional<std::string> boundary = Parameter(content_type, "boundary");
  if (!boundary || boundary->empty() || boundary->size() > 70) return std::nullopt;
  return boundary;
}

void SplitMultipart(std::string_view body, std::string_view boundary, HttpRequest& request) {
  const std::string delimiter = "\r\n--" + std::string(boundary);
  // The first delimiter may open the body without a line end before it.
  size_t at = body.starts_with(std::string_view(delimiter).substr(2)) ? 0 : body.find(delimiter);
  if (at == std::string_view::npos) return;
  at += at == 0 && !body.starts_with(delimiter) ? delimiter.size() - 2 : delimiter.size();
  for (;;) {
    if (body.substr(at, 2) == "--") return;  // the close delimiter
    while (at < body.size() && (body[at] == ' ' || body[at] == '\t'))
      ++at;
    if (body.substr(at, 2) != "\r\n") return;
    at += 2;
    // A part without header lines starts with its empty line.
    const size_t headers_end = body.substr(at, 2) == "\r\n" ? at : body.find("\r\n\r\n", at);
    if (headers_end == std::string_view::npos) return;
    const size_t content = headers_end + (headers_end == at ? 2 : 4);
    const size_t next = body.find(delimiter, content);
    if (next == std::string_view::npos) return;
    AddPart(body.substr(at, headers_end - at), body.substr(content, next - content), request);
    at = next + delimiter.size();
  }
}

}  // namespace qv::asp
