// Request: the query string, form, cookies and server variables of the request, each read the
// first time a script asks for it, in the code page the response uses (as Windows decodes
// them), and the raw body for TotalBytes and BinaryRead.
#include <algorithm>
#include <cctype>
#include <optional>

#include "asp/asp_error.h"
#include "asp/collections.h"
#include "asp/intrinsics.h"
#include "asp/text_codec.h"
#include "automation/convert.h"
#include "automation/safe_array.h"

namespace qv::asp {
namespace {

String Text(std::string_view bytes, int code_page) {
  return DecodeText(bytes, code_page);
}

std::vector<RequestDictionary::Entry> ParsePairs(std::string_view text, int code_page) {
  std::vector<RequestDictionary::Entry> out;
  size_t pos = 0;
  while (pos <= text.size() && !text.empty()) {
    size_t amp = text.find('&', pos);
    if (amp == std::string_view::npos) amp = text.size();
    const std::string_view pair = text.substr(pos, amp - pos);
    pos = amp + 1;
    if (pair.empty()) {
      if (amp >= text.size()) break;
      continue;
    }
    const size_t eq = pair.find('=');
    const std::string name = PercentDecodeLenient(pair.substr(0, eq), true);
    const std::string value = eq == std::string_view::npos
                                  ? std::string()
                                  : PercentDecodeLenient(pair.substr(eq + 1), true);
    RequestDictionary::Add(out, Text(name, code_page), Text(value, code_page));
    if (amp >= text.size()) break;
  }
  return out;
}

std::string Upper(std::string_view text) {
  std::string out(text);
  for (char& c : out) {
    c = c == '-' ? '_' : static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  }
  return out;
}

class Request : public DispatchObject<Request>, public RequestScoped {
 public:
  explicit Request(PageContext& context) : c_(context) {}
  static const DispatchTable<Request>& Table();

 private:
  const HttpRequest& http() const { return *c_.request; }

  RequestDictionary& QueryString() {
    if (!query_) {
      query_ = MakeRef<RequestDictionary>(ParsePairs(http().query, c_.code_page),
                                          Variant(Text(http().query, c_.code_page)));
    }
    return *query_;
  }

  RequestDictionary& Form() {
    if (read_binary_) {
      RaiseAspError("Request", "0206",
                    "Cannot use the generic Request collection after calling BinaryRead.");
    }
    if (!form_) {
      std::vector<RequestDictionary::Entry> entries;
      for (const auto& [name, value] : http().form)
        RequestDictionary::Add(entries, Text(name, c_.code_page), Text(value, c_.code_page));
      for (const UploadedFile& f : http().files)
        RequestDictionary::Add(entries, Text(f.field, c_.code_page),
                               Text(f.file_name, c_.code_page));
      const std::string* type = http().Header("Content-Type");
      const bool url_encoded = type && type->find("urlencoded") != std::string::npos;
      form_ = MakeRef<RequestDictionary>(
          std::move(entries), Variant(url_encoded ? Text(http().body, c_.code_page) : String()));
      used_form_ = true;
    }
    return *form_;
  }

  RequestDictionary& Cookies() {
    if (!cookies_) {
      std::vector<RequestDictionary::Entry> entries;
      if (const std::string* header = http().Header("Cookie")) {
        std::string_view rest = *header;
        while (!rest.empty()) {
          size_t semi = rest.find(';');
          std::string_view part = rest.substr(0, semi);
          rest = semi == std::string_view::npos ? std::string_view() : rest.substr(semi + 1);
          while (!part.empty() && part.front() == ' ')
            part.remove_prefix(1);
          const size_t eq = part.find('=');
          if (part.empty() || eq == 0) continue;
          const std::string name = PercentDecodeLenient(part.substr(0, eq), false);
          const std::string value = eq == std::string_view::npos
                                        ? std::string()
                                        : PercentDecodeLenient(part.substr(eq + 1), true);
          RequestDictionary::Add(entries, Text(name, c_.code_page), Text(value, c_.code_page));
        }
      }
      cookies_ = MakeRef<RequestDictionary>(std::move(entries), Variant(String()));
    }
    return *cookies_;
  }

  // Request.Cookies("name") is a cookie object whose keys split "k1=v1&k2=v2".
  Variant Cookie(const Variant& which) {
    RequestDictionary& all = Cookies();
    const RequestDictionary::Entry* e = nullptr;
    if (which.is_numeric_type() && !which.is_string()) {
      Variant arg = which;
      const String name = ToString(all.Invoke(all.GetIdOfName(u"Key"), kInvokeGet, Args(&arg, 1)));
      e = all.Find(name);
    } else {
      e = all.Find(ToString(which));
    }
    String value = e && !e->values.empty() ? e->values[0] : String();
    std::vector<std::pair<String, String>> keys;
    if (value.view().find(u'=') != StringView::npos) {
      for (const auto& entry : ParsePairs(String::ToUtf8(value), kUtf8CodePage))
        keys.emplace_back(entry.name, entry.values.empty() ? String() : entry.values[0]);
    }
    return Variant(MakeRef<ReadCookie>(std::move(value), std::move(keys)));
  }

  RequestDictionary& ServerVariables() {
    if (!variables_) {
      std::vector<RequestDictionary::Entry> v;
      const HttpRequest& r = http();
      auto add = [&](std::string_view name, std::string_view value) {
        RequestDictionary::Add(v, String::FromUtf8(name), Text(value, c_.code_page));
      };
      const std::string script = c_.site->UrlPathOf(c_.page_file);
      std::string all_http, all_raw;
      for (const auto& [name, value] : r.headers) {
        all_http += "HTTP_" + Upper(name) + ":" + value + "\r\n";
        all_raw += name + ": " + value + "\r\n";
      }
      const std::string* host = r.Header("Host");
      std::string server_name = host ? *host : r.local_addr;
      if (const size_t colon = server_name.rfind(':');
          colon != std::string::npos && server_name.find(']') == std::string::npos)
        server_name.resize(colon);
      const std::string* type = r.Header("Content-Type");
      add("ALL_HTTP", all_http);
      add("ALL_RAW", all_raw);
      add("APPL_MD_PATH", "/LM/W3SVC/1/ROOT");
      add("APPL_PHYSICAL_PATH", c_.site->root().string() + "/");
      add("AUTH_PASSWORD", "");
      add("AUTH_TYPE", "");
      add("AUTH_USER", "");
      add("CONTENT_LENGTH", std::to_string(r.body.size()));
      add("CONTENT_TYPE", type ? *type : "");
      add("GATEWAY_INTERFACE", "CGI/1.1");
      add("HTTPS", "off");
      add("INSTANCE_ID", "1");
      add("LOCAL_ADDR", r.local_addr);
      add("LOGON_USER", "");
      add("PATH_INFO", script);
      add("PATH_TRANSLATED", c_.page_file.string());
      add("QUERY_STRING", r.query);
      add("REMOTE_ADDR", r.remote_addr);
      add("REMOTE_HOST", r.remote_addr);
      add("REMOTE_PORT", std::to_string(r.remote_port));
      add("REMOTE_USER", "");
      add("REQUEST_METHOD", r.method);
      add("SCRIPT_NAME", script);
      add("SERVER_NAME", server_name);
      add("SERVER_PORT", std::to_string(r.local_port));
      add("SERVER_PORT_SECURE", "0");
      add("SERVER_PROTOCOL", r.version);
      add("SERVER_SOFTWARE", "Quorvex");
      add("URL", script);
      add("HTTP_URL", r.raw_path + (r.query.empty() ? "" : "?" + r.query));
      for (const auto& [name, value] : r.headers)
        add("HTTP_" + Upper(name), value);
      variables_ = MakeRef<RequestDictionary>(std::move(v), Variant(String()));
    }
    return *variables_;
  }

  // Request("x"): the query string, then the form, then the cookies, then the server variables.
  Variant Search(Args args) {
    CheckArgCount(args, 1, 1);
    const String name = ToString(args[0]);
    for (RequestDictionary* d : {&QueryString(), &Form()}) {
      if (const auto* e = d->Find(name)) return Variant(MakeRef<StringList>(e->values));
    }
    if (const auto* e = Cookies().Find(name)) return Variant(MakeRef<StringList>(e->values));
    if (const auto* e = ServerVariables().Find(name))
      return Variant(MakeRef<StringList>(e->values));
    return Variant(MakeRef<StringList>());
  }

  Variant BinaryRead(Args args) {
    CheckArgCount(args, 1, 1);
    if (used_form_) {
      RaiseAspError("Request", "0207",
                    "Cannot call BinaryRead after using Request.Form collection.");
    }
    read_binary_ = true;
    const size_t left = http().body.size() - read_offset_;
    const int32_t asked = ToLong(args[0]);
    const size_t count = asked < 0 ? 0 : std::min(left, static_cast<size_t>(asked));
    std::vector<Variant> bytes;
    bytes.reserve(count);
    for (size_t i = 0; i < count; ++i)
      bytes.emplace_back(static_cast<uint8_t>(http().body[read_offset_ + i]));
    read_offset_ += count;
    args[0] = Variant(static_cast<int32_t>(count));  // ByRef: how many were read
    std::vector<Variant> values = std::move(bytes);
    return Variant(SafeArray::FromValues(std::move(values), VarType::Byte));
  }

  static Variant Collection(RequestDictionary& d, Args args) {
    if (args.empty()) return Variant(Ref<Object>(&d));
    return d.Item(args);
  }

  PageContext& c_;
  Ref<RequestDictionary> query_, form_, cookies_, variables_;
  bool used_form_ = false;
  bool read_binary_ = false;
  size_t read_offset_ = 0;
};

const DispatchTable<Request>& Request::Table() {
  using R = Request;
  static const auto table =
      DispatchTable<R>(u"IRequest")
          .Property(u"Item", [](R& r, Args a) { return r.Search(a); })
          .Property(u"QueryString", [](R& r, Args a) { return Collection(r.QueryString(), a); })
          .Property(u"Form", [](R& r, Args a) { return Collection(r.Form(), a); })
          .Property(u"ServerVariables",
                    [](R& r, Args a) { return Collection(r.ServerVariables(), a); })
          .Property(u"Cookies",
                    [](R& r, Args a) {
                      CheckArgCount(a, 0, 1);
                      if (a.empty()) return Variant(Ref<Object>(&r.Cookies()));
                      return r.Cookie(a[0]);
                    })
          .Property(u"ClientCertificate",
                    [](R&, Args a) {
                      if (a.empty())
                        return Variant(MakeRef<RequestDictionary>(
                            std::vector<RequestDictionary::Entry>{}, Variant(String())));
                      return Variant(MakeRef<StringList>());
                    })
          .Property(u"TotalBytes",
                    [](R& r, Args a) {
                      CheckArgCount(a, 0, 0);
                      return Variant(static_cast<int32_t>(r.http().body.size()));
                    })
          .Method(u"BinaryRead", [](R& r, Args a) { return r.BinaryRead(a); })
          .Default(u"Item");
  return table;
}

}  // namespace

Ref<Object> NewRequestObject(PageContext& context) {
  return MakeRef<Request>(context);
}

}  // namespace qv::asp
