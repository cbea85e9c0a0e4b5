// Text at the edges of the ASP runtime: request bytes to engine text and engine text to the
// bytes of a response, in the code page a page or session asks for (65001, UTF-8, unless told
// otherwise), and the percent-encoding of URLs and forms.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "automation/string.h"

namespace qv::asp {

inline constexpr int kUtf8CodePage = 65001;

// True for the code pages this runtime can read and write (UTF-8 and what iconv knows as CP<n>,
// plus the ISO-8859 family under their Windows numbers 28591..28605).
bool IsKnownCodePage(int code_page);
// The charset name a browser knows for a code page ("utf-8", "windows-1252", ...).
std::string CharsetOfCodePage(int code_page);

// Bytes in a code page to engine text; bytes that do not decode become U+FFFD.
String DecodeText(std::string_view bytes, int code_page);
// Engine text to bytes in a code page; characters the code page lacks become "?".
std::string EncodeText(StringView text, int code_page);
void AppendEncoded(std::string& out, StringView text, int code_page);

bool IsValidUtf8(std::string_view bytes);

// %XX escapes (and "+" for a space when `plus_is_space`); nothing when an escape is malformed.
std::optional<std::string> PercentDecode(std::string_view text, bool plus_is_space);
// The same, but a malformed escape stays as it was written, as form fields are read.
std::string PercentDecodeLenient(std::string_view text, bool plus_is_space);

// Server.URLEncode: letters and digits stay, a space becomes "+", everything else %XX.
std::string UrlEncode(std::string_view bytes);
// Server.URLPathEncode: only what may not stand in a path is escaped.
std::string UrlPathEncode(std::string_view bytes);

}  // namespace qv::asp
