// Response: the buffered body in the response's code page, status, headers and cookies. A
// buffered response goes out when the page ends, in one write. Flush and unbuffered output
// send the head and what there is through the page's stream; a page that runs without one
// keeps its output to the end, but its headers are fixed all the same, so that changing them
// afterwards fails as it does on Windows.
#include <algorithm>
#include <cmath>
#include <ctime>

#include "asp/asp_error.h"
#include "asp/collections.h"
#include "asp/intrinsics.h"
#include "asp/text_codec.h"
#include "automation/convert.h"
#include "automation/safe_array.h"

namespace qv::asp {

void CheckHeadersOpen(const PageContext& c, const char* object) {
  if (c.headers_written) {
    RaiseAspError(object, "0156",
                  "The HTTP headers are already written to the client browser. Any HTTP header "
                  "modifications must be made before writing page content.");
  }
}
namespace {

constexpr double kUnixEpochAsDate = 25569.0;  // 1970-01-01 as a VBScript date

void CheckBuffering(const PageContext& c) {
  if (!c.buffer) RaiseAspError("Response", "0159", "Buffering must be on.");
}

void SendOutput(PageContext& c) {
  if (!c.stream) {
    c.headers_written = true;
    return;
  }
  if (!c.headers_written) c.stream->Start(ResponseHead(c));
  c.headers_written = true;
  // Output for a client that went away ends the page, as Response.End would: a long export
  // stops working for nobody, and the request's session and worker are free again.
  if (!c.stream->connected()) throw ResponseEnd{};
  c.stream->Offer(c.body);
}

std::string Utf8(const Variant& v) {
  return ToString(v).ToUtf8();
}

// The cookie object of Response.Cookies("name").
class WriteCookie : public DispatchObject<WriteCookie>, public RequestScoped {
 public:
  WriteCookie(PageContext& c, size_t index) : c_(c), index_(index) {}
  static const DispatchTable<WriteCookie>& Table();

 private:
  ResponseCookie& cookie() {
    CheckHeadersOpen(c_);
    return c_.cookies[index_];
  }
  PageContext& c_;
  size_t index_;
};

const DispatchTable<WriteCookie>& WriteCookie::Table() {
  using W = WriteCookie;
  static const auto table =
      DispatchTable<W>(u"IWriteCookie")
          .Property(u"Item", nullptr,
                    [](W& w, Args a, const Variant& v) {
                      CheckArgCount(a, 0, 1);
                      ResponseCookie& c = w.cookie();
                      if (!HasArg(a, 0)) {
                        c.value = ToString(v).view();
                        c.keys.clear();
                        return;
                      }
                      const std::u16string key(ToString(a[0]).view());
                      c.value.clear();
                      for (auto& kv : c.keys) {
                        if (EqualsNoCase(kv.first, key)) {
                          kv.second = ToString(v).view();
                          return;
                        }
                      }
                      c.keys.emplace_back(key, ToString(v).view());
                    })
          .Property(u"Expires", nullptr,
                    [](W& w, Args, const Variant& v) { w.cookie().expires = ToDate(v); })
          .Property(u"Domain", nullptr,
                    [](W& w, Args, const Variant& v) { w.cookie().domain = ToString(v).view(); })
          .Property(u"Path", nullptr,
                    [](W& w, Args, const Variant& v) { w.cookie().path = ToString(v).view(); })
          .Property(u"Secure", nullptr,
                    [](W& w, Args, const Variant& v) { w.cookie().secure = ToBool(v); })
          .Property(u"HttpOnly", nullptr,
                    [](W& w, Args, const Variant& v) { w.cookie().http_only = ToBool(v); })
          .Property(u"HasKeys",
                    [](W& w, Args) { return Variant(!w.c_.cookies[w.index_].keys.empty()); })
          .Default(u"Item");
  return table;
}

size_t CookieIndex(PageContext& c, StringView name) {
  for (size_t i = 0; i < c.cookies.size(); ++i) {
    if (EqualsNoCase(c.cookies[i].name, name)) return i;
  }
  CheckHeadersOpen(c);
  ResponseCookie cookie;
  cookie.name = name;
  c.cookies.push_back(std::move(cookie));
  return c.cookies.size() - 1;
}

class ResponseCookies : public DispatchObject<ResponseCookies>, public RequestScoped {
 public:
  explicit ResponseCookies(PageContext& c) : c_(c) {}
  static const DispatchTable<ResponseCookies>& Table() {
    using C = ResponseCookies;
    static const auto table =
        DispatchTable<C>(u"IRequestDictionary")
            .Property(
                u"Item",
                [](C& c, Args a) {
                  CheckArgCount(a, 1, 1);
                  return Variant(MakeRef<WriteCookie>(c.c_, CookieIndex(c.c_, ToString(a[0]))));
                },
                [](C& c, Args a, const Variant& v) {
                  CheckArgCount(a, 1, 1);
                  ResponseCookie& cookie = c.c_.cookies[CookieIndex(c.c_, ToString(a[0]))];
                  cookie.value = ToString(v).view();
                  cookie.keys.clear();
                })
            .Property(u"Count",
                      [](C& c, Args) { return Variant(static_cast<int32_t>(c.c_.cookies.size())); })
            .Default(u"Item");
    return table;
  }
  Ref<Enumerator> NewEnum() override {
    std::vector<Variant> names;
    for (const ResponseCookie& cookie : c_.cookies)
      names.emplace_back(String(StringView(cookie.name)));
    return MakeRef<ListEnumerator>(std::move(names));
  }

 private:
  PageContext& c_;
};

class Response : public DispatchObject<Response>, public RequestScoped {
 public:
  explicit Response(PageContext& context) : c_(context) {}
  static const DispatchTable<Response>& Table();

 private:
  void Write(const Variant& v) {
    if (v.is_null() || v.is_empty()) return;
    if (v.is_string()) {
      AppendEncoded(c_.body, v.as_string(), c_.code_page);
    } else {
      AppendEncoded(c_.body, ToString(v), c_.code_page);
    }
    if (!c_.buffer) SendOutput(c_);
  }

  void WriteBlock(int32_t index) {
    const CompiledPage& page = *c_.pages.back();
    if (index < 0 || static_cast<size_t>(index) >= page.blocks.size()) throw Error(kErrInvalidCall);
    const TextBlock& block = page.blocks[static_cast<size_t>(index)];
    if (c_.code_page == kUtf8CodePage) {
      c_.body += block.utf8;
    } else {
      AppendEncoded(c_.body, block.text, c_.code_page);
    }
    if (!c_.buffer) SendOutput(c_);
  }

  void BinaryWrite(const Variant& v) {
    BinaryAppend(v);
    if (!c_.buffer) SendOutput(c_);
  }

  void BinaryAppend(const Variant& v) {
    if (v.is_array()) {
      for (const Variant& item : v.as_array()->elements())
        c_.body += static_cast<char>(ToLong(item) & 0xFF);
      return;
    }
    if (v.is_null() || v.is_empty()) return;
    // This engine has no byte strings: ChrB and friends give one character per byte, and such
    // text goes out a byte per character. Other text goes out as its UTF-16 bytes, as the
    // wide characters of a string do on Windows.
    const String text = ToString(v);
    const bool bytes =
        std::all_of(text.view().begin(), text.view().end(), [](char16_t ch) { return ch <= 0xFF; });
    for (char16_t ch : text.view()) {
      c_.body += static_cast<char>(ch & 0xFF);
      if (!bytes) c_.body += static_cast<char>(ch >> 8);
    }
  }

  void Redirect(const Variant& url) {
    CheckHeadersOpen(c_);
    const std::string target = UrlPathEncode(Utf8(url));
    c_.body.clear();
    c_.status = 302;
    c_.reason = "Object moved";
    c_.headers.emplace_back("Location", target);
    c_.body =
        "<head><title>Object moved</title></head>\r\n<body><h1>Object Moved</h1>This object may be "
        "found <a HREF=\"" +
        target + "\">here</a>.</body>\r\n";
    throw ResponseEnd{};
  }

  void SetStatus(const Variant& v) {
    CheckHeadersOpen(c_);
    const std::string text = Utf8(v);
    char* end = nullptr;
    const long code = std::strtol(text.c_str(), &end, 10);
    if (code < 100 || code > 999) RaiseAspError("Response", "0103", "Invalid status value.");
    c_.status = static_cast<int>(code);
    std::string reason = end ? std::string(end) : std::string();
    while (!reason.empty() && reason.front() == ' ')
      reason.erase(0, 1);
    c_.reason = reason;
  }

  Variant Status() const {
    return Variant(String::FromUtf8(std::to_string(c_.status) + " " + c_.reason));
  }

  PageContext& c_;
};

const DispatchTable<Response>& Response::Table() {
  using R = Response;
  static const auto table =
      DispatchTable<R>(u"IResponse")
          .Method(u"Write",
                  [](R& r, Args a) {
                    CheckArgCount(a, 1, 1);
                    r.Write(a[0]);
                    return Variant();
                  })
          .Method(u"WriteBlock",
                  [](R& r, Args a) {
                    CheckArgCount(a, 1, 1);
                    r.WriteBlock(ToLong(a[0]));
                    return Variant();
                  })
          .Method(u"BinaryWrite",
                  [](R& r, Args a) {
                    CheckArgCount(a, 1, 1);
                    r.BinaryWrite(a[0]);
                    return Variant();
                  })
          .Method(u"Redirect",
                  [](R& r, Args a) {
                    CheckArgCount(a, 1, 1);
                    r.Redirect(a[0]);
                    return Variant();
                  })
          .Method(u"End", [](R&, Args) -> Variant { throw ResponseEnd{}; })
          .Method(u"Clear",
                  [](R& r, Args) {
                    CheckBuffering(r.c_);
                    r.c_.body.clear();
                    return Variant();
                  })
          .Method(u"Flush",
                  [](R& r, Args) {
                    CheckBuffering(r.c_);
                    SendOutput(r.c_);
                    return Variant();
                  })
          .Method(u"AddHeader",
                  [](R& r, Args a) {
                    CheckArgCount(a, 2, 2);
                    CheckHeadersOpen(r.c_);
                    std::string name = Utf8(a[0]), value = Utf8(a[1]);
                    // A header may not smuggle in another one.
                    if (name.find_first_of("\r\n:") != std::string::npos ||
                        value.find_first_of("\r\n") != std::string::npos)
                      throw Error(kErrInvalidCall);
                    r.c_.headers.emplace_back(std::move(name), std::move(value));
                    return Variant();
                  })
          .Method(u"AppendToLog",
                  [](R& r, Args a) {
                    CheckArgCount(a, 1, 1);
                    r.c_.log_text += Utf8(a[0]);
                    return Variant();
                  })
          .Property(
              u"Buffer", [](R& r, Args) { return Variant(r.c_.buffer); },
              [](R& r, Args, const Variant& v) {
                const bool on = ToBool(v);
                if (on && !r.c_.buffer && r.c_.headers_written) {
                  RaiseAspError("Response", "0157",
                                "Buffering cannot be turned on once it has been turned off.");
                }
                // What is buffered already goes with the next output, after the headers that
                // may still change until then.
                r.c_.buffer = on;
              })
          .Property(
              u"ContentType",
              [](R& r, Args) { return Variant(String::FromUtf8(r.c_.content_type)); },
              [](R& r, Args, const Variant& v) {
                CheckHeadersOpen(r.c_);
                r.c_.content_type = Utf8(v);
              })
          .Property(
              u"Charset", [](R& r, Args) { return Variant(String::FromUtf8(r.c_.charset)); },
              [](R& r, Args, const Variant& v) {
                CheckHeadersOpen(r.c_);
                r.c_.charset = Utf8(v);
              })
          .Property(
              u"CodePage", [](R& r, Args) { return Variant(static_cast<int32_t>(r.c_.code_page)); },
              [](R& r, Args, const Variant& v) {
                const int32_t cp = ToLong(v);
                if (!IsKnownCodePage(cp))
                  RaiseAspError("Response", "0204", "The specified code page is invalid.");
                r.c_.code_page = cp;
              })
          .Property(
              u"Status", [](R& r, Args) { return r.Status(); },
              [](R& r, Args, const Variant& v) { r.SetStatus(v); })
          .Property(
              u"Expires", [](R& r, Args) { return Variant(r.c_.expires_minutes.value_or(0)); },
              [](R& r, Args, const Variant& v) {
                CheckHeadersOpen(r.c_);
                r.c_.expires_minutes = ToLong(v);
              })
          .Property(
              u"ExpiresAbsolute",
              [](R& r, Args) {
                return r.c_.expires_absolute ? Variant::Date(*r.c_.expires_absolute) : Variant();
              },
              [](R& r, Args, const Variant& v) {
                CheckHeadersOpen(r.c_);
                r.c_.expires_absolute = ToDate(v);
              })
          .Property(
              u"CacheControl",
              [](R& r, Args) {
                return Variant(
                    String::FromUtf8(r.c_.cache_control.empty() ? "private" : r.c_.cache_control));
              },
              [](R& r, Args, const Variant& v) {
                CheckHeadersOpen(r.c_);
                r.c_.cache_control = Utf8(v);
              })
          .Property(u"PICS", nullptr,
                    [](R& r, Args, const Variant& v) {
                      CheckHeadersOpen(r.c_);
                      r.c_.headers.emplace_back("PICS-Label", Utf8(v));
                    })
          .Property(u"IsClientConnected",
                    [](R& r, Args) {
                      const HttpRequest* request = r.c_.request;
                      if (r.c_.stream && !r.c_.stream->connected()) return Variant(false);
                      return Variant(!request || !request->client_connected ||
                                     request->client_connected());
                    })
          .Property(
              u"Cookies",
              [](R& r, Args a) {
                CheckArgCount(a, 0, 1);
                if (a.empty()) return Variant(MakeRef<ResponseCookies>(r.c_));
                return Variant(MakeRef<WriteCookie>(r.c_, CookieIndex(r.c_, ToString(a[0]))));
              },
              [](R& r, Args a, const Variant& v) {
                CheckArgCount(a, 1, 1);
                ResponseCookie& cookie = r.c_.cookies[CookieIndex(r.c_, ToString(a[0]))];
                cookie.value = ToString(v).view();
                cookie.keys.clear();
              });
  return table;
}

}  // namespace

Ref<Object> NewResponseObject(PageContext& context) {
  return MakeRef<Response>(context);
}

HttpResponse ResponseHead(const PageContext& c) {
  HttpResponse r;
  r.status = c.status;
  r.reason = c.reason;
  std::string type = c.content_type;
  std::string charset = c.charset;
  if (charset.empty() && (type.starts_with("text/") || type.find("json") != std::string::npos ||
                          type.find("xml") != std::string::npos))
    charset = CharsetOfCodePage(c.code_page);
  if (!charset.empty()) type += "; charset=" + charset;
  r.headers.emplace_back("Content-Type", type);
  if (c.expires_minutes) {
    const auto when = std::chrono::system_clock::now() + std::chrono::minutes(*c.expires_minutes);
    r.headers.emplace_back("Expires", HttpDate(when));
  } else if (c.expires_absolute) {
    r.headers.emplace_back("Expires", HttpDate(*c.expires_absolute));
  }
  r.headers.emplace_back("Cache-Control", c.cache_control.empty() ? "private" : c.cache_control);
  for (const auto& h : c.headers)
    r.headers.push_back(h);
  for (const ResponseCookie& cookie : c.cookies)
    r.headers.emplace_back("Set-Cookie", CookieHeader(cookie));
  if (!c.session_cookie.empty() && !(c.session && c.session->abandoned))
    r.headers.emplace_back("Set-Cookie", c.session_cookie);
  return r;
}

std::string HttpDate(std::chrono::system_clock::time_point when) {
  const std::time_t t = std::chrono::system_clock::to_time_t(when);
  std::tm tm{};
  gmtime_r(&t, &tm);
  char buffer[64];
  std::strftime(buffer, sizeof buffer, "%a, %d %b %Y %H:%M:%S GMT", &tm);
  return buffer;
}

std::string HttpDate(double vb_date) {
  // Dates before 1899-12-30 count days back but hours forward; only later dates matter here.
  const double seconds = std::round((vb_date - kUnixEpochAsDate) * 86400.0);
  return HttpDate(
      std::chrono::system_clock::time_point(std::chrono::seconds(static_cast<int64_t>(seconds))));
}

std::string CookieHeader(const ResponseCookie& cookie) {
  std::string out = UrlEncode(String::ToUtf8(cookie.name)) + "=";
  if (cookie.keys.empty()) {
    out += UrlEncode(String::ToUtf8(cookie.value));
  } else {
    for (size_t i = 0; i < cookie.keys.size(); ++i) {
      if (i) out += '&';
      out += UrlEncode(String::ToUtf8(cookie.keys[i].first)) + "=" +
             UrlEncode(String::ToUtf8(cookie.keys[i].second));
    }
  }
  if (cookie.expires) out += "; expires=" + HttpDate(*cookie.expires);
  if (!cookie.domain.empty()) out += "; domain=" + String::ToUtf8(cookie.domain);
  if (!cookie.path.empty()) out += "; path=" + String::ToUtf8(cookie.path);
  if (cookie.secure) out += "; secure";
  if (cookie.http_only) out += "; HttpOnly";
  return out;
}

}  // namespace qv::asp
