// Multipart form bodies that libmicrohttpd's post processor refuses: it wants a boundary of at
// least two characters, while RFC 2046 (and RFC 7578 for forms) allow one to seventy. Such a
// body is split here, into the same fields and files the library would have given.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "asp/http_types.h"

namespace qv::asp {

// The boundary a multipart Content-Type names (quotes taken off), or nothing when it names
// none or one outside RFC 2046's 1 to 70 characters.
std::optional<std::string> MultipartBoundary(std::string_view content_type);

// Adds the fields and files of a multipart `body` to `request`. A body cut short keeps the
// parts before the cut, as the library does.
void SplitMultipart(std::string_view body, std::string_view boundary, HttpRequest& request);

}  // namespace qv::asp
