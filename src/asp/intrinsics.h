// The objects every page sees by name: Request, Response, Server, Session and Application,
// with the page context they share for one request.
#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "asp/http_types.h"
#include "asp/page_compiler.h"
#include "asp/response_stream.h"
#include "asp/shared_object.h"
#include "asp/state_store.h"
#include "automation/dispatch.h"
#include "vbscript/engine.h"

namespace qv::asp {

// Thrown by Response.End (and Redirect, Transfer): leaves the page at once, past any On Error
// Resume Next, since it is no script error.
struct ResponseEnd {};

struct ResponseCookie {
  std::u16string name;
  std::u16string value;
  std::vector<std::pair<std::u16string, std::u16string>> keys;
  std::optional<double> expires;  // a VBScript date
  std::u16string domain;
  std::u16string path = u"/";
  bool secure = false;
  bool http_only = false;
};

// What the objects of one request share.
struct PageContext {
  const HttpRequest* request = nullptr;
  const Site* site = nullptr;
  std::filesystem::path page_file;  // the page running now (changes inside Server.Execute)
  std::vector<std::shared_ptr<const CompiledPage>> pages;  // the page, then Execute'd ones
  std::shared_ptr<SessionState> session;  // null when the page runs without session state
  // Set while the session is left closed for a page that does not name it: opens it when the
  // page reaches it after all (through Server.Execute, or code it builds).
  std::function<void()> open_session;
  StateStore* store = nullptr;
  const std::vector<ApplicationObject>* application_objects = nullptr;  // global.asa's
  vbs::Engine* engine = nullptr;
  const vbs::ClassRegistry* classes = nullptr;
  // Runs another page of the site for Server.Execute/Transfer.
  std::function<void(std::string_view url)> execute;

  // Response state. `body` holds the output not yet sent; it leaves before the page ends only
  // through `stream`, which is null for pages that run where they cannot stream.
  std::string body;
  ResponseStream* stream = nullptr;
  bool headers_written = false;  // after Flush or unbuffered output
  bool buffer = true;
  int status = 200;
  std::string reason = "OK";
  std::string content_type = "text/html";
  std::string charset;
  int code_page = kUtf8CodePageDefault;
  std::vector<std::pair<std::string, std::string>> headers;
  std::vector<ResponseCookie> cookies;
  std::optional<int32_t> expires_minutes;
  std::optional<double> expires_absolute;
  std::string cache_control;
  std::string log_text;
  std::string session_cookie;   // the Set-Cookie value of a session this request began or renewed
  int32_t script_timeout = 90;  // seconds
  std::chrono::steady_clock::time_point started = std::chrono::steady_clock::now();

  // The last error of a page, for Server.GetLastError.
  struct LastError {
    int32_t number = 0;
    std::u16string description, source, file, asp_code;
    int32_t line = 0, column = 0;
  } last_error;

  static constexpr int kUtf8CodePageDefault = 65001;  // UTF-8
};

Ref<Object> NewRequestObject(PageContext& context);
Ref<Object> NewResponseObject(PageContext& context);
Ref<Object> NewServerObject(PageContext& context);
Ref<Object> NewSessionObject(PageContext& context);
Ref<Object> NewApplicationObject(PageContext& context);

// Sets the locale of the page's engine (Session.LCID, @LCID) through the engine's own
// SetLocale, so that the same ids are taken and refused as in a script. False when refused.
bool SetPageLocale(vbs::Engine& engine, int32_t lcid);

// Raises ASP 0156 (from `object`) once the page's head has gone out.
void CheckHeadersOpen(const PageContext& c, const char* object = "Response");

// The status and headers of the page's response as they stand (no body).
HttpResponse ResponseHead(const PageContext& c);

// The Set-Cookie value of a response cookie, and of the session's cookie.
std::string CookieHeader(const ResponseCookie& cookie);
std::string SessionCookieHeader(const SessionState& session);
// A VBScript date as an HTTP date ("Wed, 25 Nov 2026 13:45:00 GMT").
std::string HttpDate(double vb_date);
std::string HttpDate(std::chrono::system_clock::time_point when);

}  // namespace qv::asp
