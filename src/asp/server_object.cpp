// Server: paths, encodings, objects by ProgID, running other pages, the last error and the
// page's time limit (which is the engine's own Timeout, so a runaway page ends with the
// engine's time-out error wherever it loops).
#include "asp/asp_error.h"
#include "asp/intrinsics.h"
#include "asp/text_codec.h"
#include "asp/upload_object.h"
#include "automation/convert.h"

namespace qv::asp {
namespace {

String HtmlEncode(StringView text) {
  String out;
  out.Reserve(text.size() + 16);
  size_t plain = 0;
  auto flush = [&](size_t i) {
    if (i > plain) out.Append(text.substr(plain, i - plain));
  };
  for (size_t i = 0; i < text.size(); ++i) {
    const char16_t c = text[i];
    const char16_t* entity = c == u'<'   ? u"&lt;"
                             : c == u'>' ? u"&gt;"
                             : c == u'&' ? u"&amp;"
                             : c == u'"' ? u"&quot;"
                                         : nullptr;
    if (!entity) continue;
    flush(i);
    out.Append(entity);
    plain = i + 1;
  }
  if (plain == 0) return String(text);
  flush(text.size());
  return out;
}

class AspError : public DispatchObject<AspError>, public RequestScoped {
 public:
  explicit AspError(PageContext::LastError e) : e_(std::move(e)) {}
  static const DispatchTable<AspError>& Table() {
    using E = AspError;
    static const auto table =
        DispatchTable<E>(u"IASPError")
            .Property(u"ASPCode",
                      [](E& e, Args) { return Variant(String(StringView(e.e_.asp_code))); })
            .Property(u"Number", [](E& e, Args) { return Variant(e.e_.number); })
            .Property(u"Source",
                      [](E& e, Args) { return Variant(String(StringView(e.e_.source))); })
            .Property(u"Category",
                      [](E& e, Args) { return Variant(String(StringView(e.e_.source))); })
            .Property(u"File", [](E& e, Args) { return Variant(String(StringView(e.e_.file))); })
            .Property(u"Line", [](E& e, Args) { return Variant(e.e_.line); })
            .Property(u"Column", [](E& e, Args) { return Variant(e.e_.column); })
            .Property(u"Description",
                      [](E& e, Args) { return Variant(String(StringView(e.e_.description))); })
            .Property(u"ASPDescription",
                      [](E& e, Args) { return Variant(String(StringView(e.e_.description))); });
    return table;
  }

 private:
  PageContext::LastError e_;
};

class Server : public DispatchObject<Server>, public RequestScoped {
 public:
  explicit Server(PageContext& context) : c_(context) {}
  static const DispatchTable<Server>& Table();

 private:
  Variant MapPath(const Variant& v) {
    const std::string path = ToString(v).ToUtf8();
    std::string url = path;
    if (url.empty() || (url[0] != '/' && url[0] != '\\')) {
      std::string folder = c_.site->UrlPathOf(c_.page_file.parent_path());
      if (folder.back() != '/') folder += '/';
      url = folder + url;
    }
    const auto mapped = c_.site->MapPath(url);
    if (!mapped) {
      RaiseAspError(
          "Server", "0175",
          "The Path parameter for the MapPath method must be a virtual path inside the site.");
    }
    return Variant(String::FromUtf8(mapped->string()));
  }

  Variant CreateObject(const Variant& v) {
    const String prog_id = ToString(v);
    // The upload object reads the request, which the engine's class registry never sees.
    if (EqualsNoCase(prog_id, u"Quorvex.Upload")) return Variant(NewUploadObject(c_));
    Ref<Object> object = c_.classes ? c_.classes->Create(prog_id) : nullptr;
    if (!object) RaiseAspError("Server", "0177", "Invalid class string", kAspInvalidClass);
    return Variant(object);
  }

  PageContext& c_;
};

const DispatchTable<Server>& Server::Table() {
  using S = Server;
  static const auto table =
      DispatchTable<S>(u"IServer")
          .Method(u"MapPath",
                  [](S& s, Args a) {
                    CheckArgCount(a, 1, 1);
                    return s.MapPath(a[0]);
                  })
          .Method(u"HTMLEncode",
                  [](S&, Args a) {
                    CheckArgCount(a, 1, 1);
                    if (a[0].is_null() || a[0].is_empty()) return Variant(String());
                    if (a[0].is_string()) return Variant(HtmlEncode(a[0].as_string()));
                    return Variant(HtmlEncode(ToString(a[0])));
                  })
          .Method(u"URLEncode",
                  [](S& s, Args a) {
                    CheckArgCount(a, 1, 1);
                    return Variant(
                        String::FromUtf8(UrlEncode(EncodeText(ToString(a[0]), s.c_.code_page))));
                  })
          .Method(u"URLPathEncode",
                  [](S& s, Args a) {
                    CheckArgCount(a, 1, 1);
                    return Variant(String::FromUtf8(
                        UrlPathEncode(EncodeText(ToString(a[0]), s.c_.code_page))));
                  })
          .Method(u"CreateObject",
                  [](S& s, Args a) {
                    CheckArgCount(a, 1, 1);
                    return s.CreateObject(a[0]);
                  })
          .Method(u"Execute",
                  [](S& s, Args a) {
                    CheckArgCount(a, 1, 1);
                    s.c_.execute(ToString(a[0]).ToUtf8());
                    return Variant();
                  })
          .Method(u"Transfer",
                  [](S& s, Args a) -> Variant {
                    CheckArgCount(a, 1, 1);
                    s.c_.execute(ToString(a[0]).ToUtf8());
                    throw ResponseEnd{};
                  })
          .Method(u"GetLastError",
                  [](S& s, Args) { return Variant(MakeRef<AspError>(s.c_.last_error)); })
          .Property(
              u"ScriptTimeout", [](S& s, Args) { return Variant(s.c_.script_timeout); },
              [](S& s, Args, const Variant& v) {
                const int32_t seconds = ToLong(v);
                if (seconds <= 0) throw Error(kErrInvalidCall);
                s.c_.script_timeout = seconds;
                s.c_.engine->SetTimeout(seconds > 2000000 ? 2000000000 : seconds * 1000);
              });
  return table;
}

}  // namespace

Ref<Object> NewServerObject(PageContext& context) {
  return MakeRef<Server>(context);
}

}  // namespace qv::asp
