// A generated application served by the ASP runtime in the test's own process, and a small
// browser without a browser: a cookie jar, form tokens, and a crawl over every link.
#pragma once

#include <deque>
#include <filesystem>
#include <map>
#include <memory>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include "asp/http_client.h"
#include "asp/http_server.h"
#include "asp/site_runtime.h"
#include "cli/run_quorvex.h"

namespace qv::package_testing {

using asp::test::Reply;

struct ServedApp {
  explicit ServedApp(const std::filesystem::path& root) {
    asp::RuntimeOptions options;
    options.dev = true;
    runtime = std::make_unique<asp::SiteRuntime>(root, options);
    asp::HttpOptions http;
    http.port = 0;
    http.threads = 2;
    http.access_log = false;
    server = std::make_unique<asp::HttpServer>(*runtime, http);
    server->Start();
  }
  uint16_t port() const { return server->port(); }

  Reply Get(const std::string& target) { return Keep(asp::test::Get(port(), target, Cookie())); }
  Reply Post(const std::string& target, const std::string& form) {
    return Keep(
        asp::test::Post(port(), target, "application/x-www-form-urlencoded", form, Cookie()));
  }

  std::unique_ptr<asp::SiteRuntime> runtime;
  std::unique_ptr<asp::HttpServer> server;
  std::string cookie;

 private:
  std::string Cookie() const { return cookie.empty() ? "" : "Cookie: " + cookie + "\r\n"; }
  Reply Keep(Reply r) {
    for (const std::string& c : r.All("Set-Cookie"))
      cookie = c.substr(0, c.find(';'));
    return r;
  }
};

inline std::string HtmlDecode(std::string s) {
  for (const auto& [from, to] : std::vector<std::pair<std::string, std::string>>{
           {"&amp;", "&"}, {"&quot;", "\""}, {"&lt;", "<"}, {"&gt;", ">"}}) {
    for (size_t at = s.find(from); at != std::string::npos; at = s.find(from, at + 1))
      s.replace(at, from.size(), to);
  }
  return s;
}

// The value of a form's hidden token on a page.
inline std::string TokenOf(const std::string& body) {
  std::smatch m;
  static const std::regex token(R"re(name="qvtoken" value="([^"]+)")re");
  return std::regex_search(body, m, token) ? m[1].str() : std::string();
}

// A failed page: a server error, or the words of a script error in the text.
inline bool Broken(const Reply& r) {
  return r.status == 0 || r.status >= 500 || r.body.find("VBScript") != std::string::npos ||
         r.body.find("ADODB") != std::string::npos;
}

// Follows every link of the application from its home page; a link to a page that is not
// there fails too. A page's variants (another page of a list, another sort, another record)
// are taken a few times each, not all. Gives the pages that failed with the start of their
// text, and how many were requested.
inline std::vector<std::string> Crawl(ServedApp& app, size_t& visited, size_t limit = 400) {
  std::vector<std::string> failures;
  std::deque<std::string> queue = {"/"};
  std::set<std::string> seen;
  std::map<std::string, int> variants;
  static const std::regex href(R"re(href="([^"#]+)")re");
  visited = 0;
  while (!queue.empty() && visited < limit) {
    const std::string target = queue.front();
    queue.pop_front();
    if (!seen.insert(target).second) continue;
    ++visited;
    const Reply r = app.Get(target);
    if (Broken(r) || r.status == 404) failures.push_back(target + ": " + r.body.substr(0, 400));
    for (auto it = std::sregex_iterator(r.body.begin(), r.body.end(), href);
         it != std::sregex_iterator(); ++it) {
      std::string link = HtmlDecode((*it)[1].str());
      if (link.find(".asp") == std::string::npos || link.find("://") != std::string::npos) continue;
      if (link[0] != '/') link = "/" + link;
      const size_t q = link.find('?');
      if (q != std::string::npos) {
        const std::string kind = link.substr(0, q) + link.substr(q, link.find('=', q) - q);
        if (++variants[kind] > 2) continue;
      }
      if (!seen.count(link)) queue.push_back(link);
    }
  }
  return failures;
}

// Generates the application of a fresh project on `db` into `dir`/site.
inline cli_testing::Run Generate(const std::filesystem::path& dir, const std::string& db,
                                 const std::string& env = "") {
  cli_testing::Run run = cli_testing::Quorvex(dir, {"new", "app.qvp", "--db", db}, env);
  if (run.status != 0) return run;
  return cli_testing::Quorvex(dir, {"generate", "app.qvp", "--dest", "site", "--overwrite", "all"},
                              env);
}

}  // namespace qv::package_testing
