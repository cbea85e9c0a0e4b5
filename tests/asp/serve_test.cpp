// The runtime through real HTTP on loopback: the test site under tests/asp/site served by the
// runtime and the HTTP server in this process, one server in dev mode and one without.
#include <gtest/gtest.h>

#include <unistd.h>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <future>
#include <regex>
#include <thread>

#include <unistd.h>

#include "asp/http_server.h"
#include "asp/page_compiler.h"
#include "asp/site_runtime.h"
#include "asp/upload_object.h"
#include "http_client.h"

namespace qv::asp {
namespace {
namespace fs = std::filesystem;
using test::Field;
using test::Get;
using test::Post;
using test::Reply;

const fs::path kSite = fs::path(QV_SOURCE_DIR) / "tests/asp/site";

struct Served {
  Served(const fs::path& root, bool dev, size_t max_body = 1 << 20) {
    RuntimeOptions options;
    options.dev = dev;
    runtime = std::make_unique<SiteRuntime>(root, options);
    HttpOptions http;
    http.port = 0;
    http.threads = 2;
    http.max_body = max_body;
    http.header_memory = 16 * 1024;
    http.connection_timeout = 2;
    http.access_log = false;
    server = std::make_unique<HttpServer>(*runtime, http);
    server->Start();
    port = server->port();
  }
  std::unique_ptr<SiteRuntime> runtime;
  std::unique_ptr<HttpServer> server;
  uint16_t port = 0;
};

class ServeTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    dev_ = new Served(kSite, true);
    plain_ = new Served(kSite, false);
  }
  static void TearDownTestSuite() {
    delete dev_;
    delete plain_;
  }
  static uint16_t port() { return dev_->port; }
  static inline Served* dev_ = nullptr;
  static inline Served* plain_ = nullptr;
};

std::string SessionCookie(const Reply& r) {
  for (const std::string& c : r.All("Set-Cookie")) {
    if (c.rfind("ASPSESSIONID=", 0) == 0) return c.substr(0, c.find(';'));
  }
  return {};
}

TEST_F(ServeTest, StaticFilesWithValidatorsAndNothingHiddenOrOutside) {
  Reply css = Get(port(), "/style.css");
  EXPECT_EQ(css.status, 200);
  EXPECT_EQ(css.Header("Content-Type"), "text/css; charset=utf-8");
  EXPECT_EQ(css.body, "body { color: black; }\n");
  const std::string etag = css.Header("ETag");
  ASSERT_FALSE(etag.empty());
  EXPECT_EQ(Get(port(), "/style.css", "If-None-Match: " + etag + "\r\n").status, 304);
  EXPECT_EQ(Get(port(), "/style.css", "If-Modified-Since: " + css.Header("Last-Modified") + "\r\n")
                .status,
            304);
  EXPECT_EQ(Get(port(), "/style.css", "If-None-Match: \"other\"\r\n").status, 200);
  // Names in any case, as a site written on Windows expects; default documents; no listings.
  EXPECT_EQ(Get(port(), "/STYLE.CSS").status, 200);
  EXPECT_EQ(Get(port(), "/sub/").body, "sub default");
  Reply folder = Get(port(), "/Sub?x=1");
  EXPECT_EQ(folder.status, 301);
  EXPECT_EQ(folder.Header("Location"), "/Sub/?x=1");
  EXPECT_EQ(Get(port(), "/inc/").status, 403);
  for (const char* hidden :
       {"/global.asa", "/inc/header.inc", "/old.bak", "/shop.mdb", "/.env", "/GLOBAL.ASA"})
    EXPECT_EQ(Get(port(), hidden).status, 404) << hidden;
  for (const char* out : {"/../../etc/passwd", "/%2e%2e/%2e%2e/etc/passwd",
                          "/inc/..%2f..%2f..%2fetc/passwd", "/..\\..\\etc\\passwd"}) {
    const Reply r = Get(port(), out);
    EXPECT_TRUE(r.status == 404 || r.status == 400) << out << " " << r.status;
    EXPECT_EQ(r.body.find("root:"), std::string::npos);
  }
  EXPECT_EQ(Get(port(), "/bad%zzescape").status, 400);
  EXPECT_EQ(Get(port(), "/nul%00.asp").status, 400);
  EXPECT_EQ(Get(port(), "/%ff%fe.asp").status, 400);
  EXPECT_EQ(Post(port(), "/style.css", "text/plain", "x").status, 405);
  EXPECT_EQ(Get(port(), "/missing.asp").status, 404);
}

TEST_F(ServeTest, SymbolicLinksOutOfTheSiteAreNotFollowed) {
  const fs::path root =
      fs::path(std::getenv("QV_TEST_SCRATCH") ? std::getenv("QV_TEST_SCRATCH") : "/tmp") /
      "asp-links";
  fs::remove_all(root);
  fs::create_directories(root / "site");
  std::ofstream(root / "outside.txt") << "private";
  std::ofstream(root / "site/inside.txt") << "public";
  fs::create_symlink(root / "outside.txt", root / "site/link.txt");
  fs::create_directory_symlink(root, root / "site/up");
  fs::create_symlink(root / "site/inside.txt", root / "site/alias.txt");
  fs::create_directories(root / "site/folder");
  fs::create_directories(root / "elsewhere");
  std::ofstream(root / "site/folder/page.txt") << "in folder";
  std::ofstream(root / "elsewhere/page.txt") << "private";
  std::ofstream(root / "site/Mixed.txt") << "any case";
  Served s(root / "site", false);
  EXPECT_EQ(Get(s.port, "/inside.txt").body, "public");
  EXPECT_EQ(Get(s.port, "/alias.txt").body, "public");
  EXPECT_EQ(Get(s.port, "/link.txt").status, 404);
  EXPECT_EQ(Get(s.port, "/up/outside.txt").status, 404);
  // A path served before is looked at again as the folder changes under it: a removed file is
  // gone, a new one in its place is served, a folder turned into a link that leads out leads
  // nowhere, and a name found in another case gives way to the exact name once that exists.
  EXPECT_EQ(Get(s.port, "/folder/page.txt").body, "in folder");
  EXPECT_EQ(Get(s.port, "/mixed.txt").body, "any case");
  fs::remove(root / "site/inside.txt");
  EXPECT_EQ(Get(s.port, "/inside.txt").status, 404);
  std::ofstream(root / "site/inside.txt") << "new";
  EXPECT_EQ(Get(s.port, "/inside.txt").body, "new");
  fs::remove_all(root / "site/folder");
  fs::create_directory_symlink(root / "elsewhere", root / "site/folder");
  EXPECT_EQ(Get(s.port, "/folder/page.txt").status, 404);
  std::ofstream(root / "site/mixed.txt") << "exact";
  EXPECT_EQ(Get(s.port, "/mixed.txt").body, "exact");
  // A folder's default document made later takes over from the one it served.
  std::ofstream(root / "site/index.htm") << "index";
  EXPECT_EQ(Get(s.port, "/").body, "index");
  std::ofstream(root / "site/default.asp") << "default";
  EXPECT_EQ(Get(s.port, "/").body, "default");
}

TEST_F(ServeTest, RequestCollections) {
  Reply r = Post(port(), "/request.asp?a=1&a=2&b=%C3%A9t%C3%A9+x&bad=%zz",
                 "application/x-www-form-urlencoded", "name=J%C3%BCrgen+%E2%82%AC&other=2",
                 "Cookie: plain=hello%20there; keyed=k1=v1&k2=v2\r\nUser-Agent: "
                 "tester/1.0\r\nX-Custom-Thing: yes\r\n");
  ASSERT_EQ(r.status, 200) << r.body;
  const std::string& b = r.body;
  EXPECT_EQ(Field(b, "q.a"), "1, 2");
  EXPECT_EQ(Field(b, "q.a.count"), "2");
  EXPECT_EQ(Field(b, "q.a.2"), "2");
  EXPECT_EQ(Field(b, "q.raw"), "a=1&a=2&b=%C3%A9t%C3%A9+x&bad=%zz");
  EXPECT_EQ(Field(b, "q.missing.empty"), "True");
  EXPECT_EQ(Field(b, "q.keys"), "a;b;bad;");
  EXPECT_EQ(Field(b, "f.name"), "Jürgen €");
  EXPECT_EQ(Field(b, "len.name"), "8");
  EXPECT_EQ(Field(b, "f.count"), "2");
  EXPECT_EQ(Field(b, "f.keys"), "name;other;");
  EXPECT_EQ(Field(b, "default.a"), "1, 2");
  EXPECT_EQ(Field(b, "default.name"), "Jürgen €");
  EXPECT_EQ(Field(b, "c.plain"), "hello there");
  EXPECT_EQ(Field(b, "c.keyed.k1"), "v1");
  EXPECT_EQ(Field(b, "c.keyed.haskeys"), "True");
  EXPECT_EQ(Field(b, "sv.method"), "POST");
  EXPECT_EQ(Field(b, "sv.script"), "/request.asp");
  EXPECT_EQ(Field(b, "sv.agent"), "tester/1.0");
  EXPECT_EQ(Field(b, "sv.x"), "yes");
  EXPECT_EQ(Field(b, "sv.remote"), "127.0.0.1");
  EXPECT_EQ(Field(b, "sv.port"), std::to_string(port()));
  EXPECT_EQ(Field(b, "total"), "34");

  // Multipart: fields and the names of uploaded files.
  const std::string body =
      "--XyZ\r\nContent-Disposition: form-data; name=\"name\"\r\n\r\nÅsa\r\n"
      "--XyZ\r\nContent-Disposition: form-data; name=\"file\"; "
      "filename=\"notes.txt\"\r\nContent-Type: text/plain\r\n\r\n"
      "file body\r\n--XyZ--\r\n";
  Reply m = Post(port(), "/request.asp", "multipart/form-data; boundary=XyZ", body);
  EXPECT_EQ(Field(m.body, "f.name"), "Åsa");
  EXPECT_EQ(Field(m.body, "f.keys"), "name;file;");
  EXPECT_EQ(Field(m.body, "total"), std::to_string(body.size()));
  // The file's own bytes, cut out of the raw body as upload pages do: NUL, high bytes, a line
  // break and an odd length.
  const std::string upload =
      "--XyZ\r\nContent-Disposition: form-data; name=\"t\"\r\n\r\nx\r\n--XyZ\r\n"
      "Content-Disposition: form-data; name=\"f\"; filename=\"a.bin\"\r\n\r\n" +
      std::string("a\0\xff\r\nbc", 7) + "\r\n--XyZ--\r\n";
  EXPECT_EQ(Post(port(), "/upload_bytes.asp", "multipart/form-data; boundary=XyZ", upload).body,
            "7|6100FF0D0A6263");

  // BinaryRead in pieces, and Form refused after it.
  Reply raw = Post(port(), "/binary.asp", "application/octet-stream", std::string("ab\0cdef", 7));
  EXPECT_EQ(raw.body, std::string("read=3;rest=4;ab\0cdef;form=-2147467259", 38));
}

TEST_F(ServeTest, ResponseMembers) {
  Reply status = Get(port(), "/response.asp?case=status");
  EXPECT_EQ(status.status, 404);
  EXPECT_EQ(status.body, "gone");
  Reply headers = Get(port(), "/response.asp?case=headers");
  EXPECT_EQ(headers.Header("Content-Type"), "application/json; charset=utf-8");
  EXPECT_EQ(headers.Header("X-Thing"), "one");
  EXPECT_EQ(headers.Header("Cache-Control"), "no-cache");
  EXPECT_FALSE(headers.Header("Expires").empty());
  Reply cookies = Get(port(), "/response.asp?case=cookies");
  std::string all;
  for (const auto& c : cookies.All("Set-Cookie"))
    all += c + "\n";
  EXPECT_NE(all.find("plain=a+b%26c; path=/\n"), std::string::npos) << all;
  EXPECT_NE(all.find("keyed=k1=v1&k2=v2; expires=Wed, 02 Jan 2030 03:04:05 GMT; path=/\n"),
            std::string::npos)
      << all;
  EXPECT_NE(all.find("secure=s; domain=example.com; path=/; secure; HttpOnly\n"), std::string::npos)
      << all;
  Reply redirect = Get(port(), "/response.asp?case=redirect");
  EXPECT_EQ(redirect.status, 302);
  EXPECT_EQ(redirect.Header("Location"), "hello.asp?name=moved");
  EXPECT_EQ(redirect.body.find("never seen"), std::string::npos);
  EXPECT_EQ(Get(port(), "/response.asp?case=end").body, "before");
  EXPECT_EQ(Get(port(), "/response.asp?case=clear").body, "kept");
  Reply flushed = Get(port(), "/response.asp?case=flush");
  EXPECT_NE(flushed.body.find("x|-2147467259|Response object, ASP 0156"), std::string::npos)
      << flushed.body;
  EXPECT_EQ(Get(port(), "/response.asp?case=binary").body, std::string("\0\xff", 2));
  EXPECT_EQ(Get(port(), "/response.asp?case=props").body, "True|text/html|200 OK|True|65001");
}

TEST_F(ServeTest, FlushedAndUnbufferedOutputLeavesBeforeThePageEnds) {
  // The page goes on only once the test has seen its first part arrive. Meanwhile another
  // page of its session comes to the server's only HTTP thread, which must not wait there for
  // the session while the first page waits for that thread to send its next 200 KB.
  Served one(kSite, false);
  one.server.reset();
  HttpOptions http;
  http.port = 0;
  http.threads = 1;
  http.access_log = false;
  one.server = std::make_unique<HttpServer>(*one.runtime, http);
  one.server->Start();
  const uint16_t at = one.server->port();
  const std::string cookie =
      "Cookie: " + SessionCookie(Get(at, "/session.asp?case=count")) + "\r\n";
  const fs::path go = fs::path(::testing::TempDir()) / ("asp-go-" + std::to_string(getpid()));
  fs::remove(go);
  const int fd = test::Connect(at);
  ASSERT_GE(fd, 0);
  test::SendAll(fd, "GET /stream.asp?case=wait&go=" + go.string() +
                        " HTTP/1.1\r\nHost: x\r\nConnection: close\r\n" + cookie + "\r\n");
  std::string raw;
  ASSERT_TRUE(test::ReadUntil(fd, "first|", raw)) << raw;
  EXPECT_EQ(raw.find("second"), std::string::npos);
  auto other =
      std::async(std::launch::async, [&] { return Get(at, "/session.asp?case=count", cookie); });
  std::ofstream(go).put('x');
  test::ReadUntil(fd, {}, raw);
  close(fd);
  fs::remove(go);
  Reply waited = test::Parse(raw);
  EXPECT_TRUE(waited.body == "first|second" + std::string(200000, 'x') + "\r\n")
      << waited.body.size() << " bytes: " << waited.body.substr(0, 20);
  EXPECT_EQ(waited.Header("Content-Type"), "text/plain; charset=utf-8");
  EXPECT_EQ(other.get().body.substr(0, 2), "2|");

  // Once the head went out it stays as it was; Flush and Clear need the buffer.
  Reply rules = Get(port(), "/stream.asp?case=rules");
  EXPECT_EQ(rules.status, 200);
  EXPECT_EQ(rules.body,
            "a|Response object, ASP 0156 (0x80004005)|Response object, ASP 0159 "
            "(0x80004005)|Response object, ASP 0159 (0x80004005)|Response object, ASP 0157 "
            "(0x80004005)");
  // An error after that can only follow what was sent.
  Reply late = Get(port(), "/stream.asp?case=late");
  EXPECT_EQ(late.status, 200);
  EXPECT_EQ(late.body.rfind("sent<!DOCTYPE", 0), 0u) << late.body;
  EXPECT_NE(late.body.find("/stream.asp, line 29"), std::string::npos) << late.body;
  // Unbuffered output sends the head it has when it first writes.
  Reply unbuffered = Get(port(), "/stream.asp?case=buffered");
  EXPECT_EQ(unbuffered.status, 201);
  EXPECT_EQ(unbuffered.Header("X-Before"), "1");
  EXPECT_EQ(unbuffered.body, "row\r\n");
}

TEST_F(ServeTest, APortInUseIsRefusedNotShared) {
  HttpOptions http;
  http.port = port();
  http.threads = 1;
  http.access_log = false;
  HttpServer second(*plain_->runtime, http);
  EXPECT_THROW(second.Start(), std::runtime_error);  // else it would take half the requests
}

TEST_F(ServeTest, ServerMembers) {
  const std::string encode = Get(port(), "/server.asp?case=encode").body;
  EXPECT_EQ(encode,
            "&lt;a "
            "href=&quot;x&quot;&gt;&amp;amp;&lt;/a&gt;\r\na+b%2Fc%3Fd%3D%C3%A9\r\n/a%20b/"
            "c%20d.asp?x=y z\r\n[]");
  const std::string map = Get(port(), "/server.asp?case=mappath").body;
  EXPECT_EQ(map, fs::canonical(kSite).string() + "/hello.asp\r\n" + fs::canonical(kSite).string() +
                     "/inc/header.inc\r\n|-2147467259");
  EXPECT_EQ(Get(port(), "/server.asp?case=create").body, "Dictionaryv|800401F3");
  EXPECT_EQ(Get(port(), "/server.asp?case=execute").body,
            "before|child:child:execute|after|parent");
  EXPECT_EQ(Get(port(), "/server.asp?case=transfer").body, "before|child:child:transfer");
  EXPECT_EQ(Get(port(), "/server.asp?case=timeout").body, "90|120");
  EXPECT_EQ(Get(port(), "/server.asp?case=lasterror").body, "IASPError|0");
  // Salted: one password, two hashes, both verify; a wrong or empty password, or a text that
  // is no hash, never does.
  EXPECT_EQ(Get(port(), "/server.asp?case=password").body,
            "$argon2id$|True|True|False|False|False|False|True|5");
}

TEST_F(ServeTest, JournalLinesStayWholeUnderConcurrentWriters) {
  const fs::path dir =
      fs::path(std::getenv("QV_TEST_SCRATCH") ? std::getenv("QV_TEST_SCRATCH") : "/tmp") /
      ("journal-" + std::to_string(getpid()));
  fs::remove_all(dir);
  const std::string file = (dir / "sub/audit.log").string();
  std::vector<std::future<std::string>> writers;
  for (const char* who : {"a", "b", "c"})
    writers.push_back(std::async(std::launch::async, [&, who] {
      return Get(port(), "/server.asp?case=journal&who=" + std::string(who) + "&file=" + file).body;
    }));
  for (auto& w : writers)
    EXPECT_EQ(w.get(), "5|52");
  std::ifstream in(file);
  std::string line;
  size_t lines = 0;
  const std::regex whole("[abc]x{300}[0-9]+\r");
  while (std::getline(in, line)) {
    ++lines;
    EXPECT_TRUE(std::regex_match(line, whole)) << line.substr(0, 40);
  }
  EXPECT_EQ(lines, 75u);
  fs::remove_all(dir);
}

TEST_F(ServeTest, SessionsApplicationAndGlobalAsa) {
  Reply first = Get(port(), "/session.asp?case=count");
  const std::string cookie = SessionCookie(first);
  ASSERT_EQ(cookie.size(), std::string("ASPSESSIONID=").size() + 24) << cookie;
  bool http_only = false;
  for (const auto& c : first.All("Set-Cookie"))
    http_only |= c.find("; HttpOnly; SameSite=Lax") != std::string::npos;
  EXPECT_TRUE(http_only);
  // count | Session_OnStart's greeting | SessionID | sessions started so far
  EXPECT_NE(first.body.find("1|welcome|"), std::string::npos) << first.body;
  Reply second = Get(port(), "/session.asp?case=count", "Cookie: " + cookie + "\r\n");
  EXPECT_EQ(second.body.substr(0, 10), "2|welcome|");
  EXPECT_TRUE(SessionCookie(second).empty());
  // A forged cookie gets a new session, not an error.
  Reply forged =
      Get(port(), "/session.asp?case=count", "Cookie: ASPSESSIONID=FORGEDFORGEDFORGEDFORGED\r\n");
  EXPECT_EQ(forged.body.substr(0, 2), "1|");
  EXPECT_NE(SessionCookie(forged), "ASPSESSIONID=FORGEDFORGEDFORGEDFORGED");

  const std::string with = "Cookie: " + cookie + "\r\n";
  EXPECT_EQ(Get(port(), "/session.asp?case=props", with).body, "5|2057|65001|Dictionary|2057");
  // The session's locale holds for its later pages, a page's @LCID for that page; others keep
  // the default.
  EXPECT_EQ(Get(port(), "/session.asp?case=locale", with).body, "2057");
  EXPECT_EQ(Get(port(), "/lcid.asp", with).body, "1031");
  EXPECT_EQ(Get(port(), "/session.asp?case=locale").body, "1033");
  EXPECT_EQ(Get(port(), "/session.asp?case=contents", with).body, "greeting;count;b;a;|3|two");
  EXPECT_EQ(Get(port(), "/session.asp?case=store-class", with).body, "True");
  // Renew keeps the values under a new cookie and SessionID; the old cookie reaches nothing.
  const std::string counted = Get(port(), "/session.asp?case=count", with).body;  // 3|welcome|id|n
  const std::string id = counted.substr(10, counted.find('|', 10) - 10);
  const Reply renewed = Get(port(), "/session.asp?case=renew", with);
  const std::string moved = SessionCookie(renewed);
  ASSERT_EQ(moved.size(), cookie.size()) << moved;
  EXPECT_NE(moved, cookie);
  EXPECT_EQ(renewed.body.substr(0, 2), "4|");
  EXPECT_NE(renewed.body.substr(2), id);
  EXPECT_FALSE(id.empty());
  EXPECT_EQ(Get(port(), "/session.asp?case=count", with).body.substr(0, 2), "1|");
  EXPECT_EQ(Get(port(), "/session.asp?case=count", "Cookie: " + moved + "\r\n").body.substr(0, 2),
            "5|");
  EXPECT_EQ(Get(port(), "/session.asp?case=abandon", "Cookie: " + moved + "\r\n").body,
            "abandoned");
  EXPECT_EQ(Get(port(), "/session.asp?case=count", "Cookie: " + moved + "\r\n").body.substr(0, 2),
            "1|");

  // started | contents | objects of a page refused | hits | hits in global.asa's own object
  const std::string application = Get(port(), "/application.asp").body;
  EXPECT_EQ(application.substr(0, 14), "yes|True|True|");
  EXPECT_TRUE(application.ends_with("|Dictionary1")) << application;
}

TEST_F(ServeTest, RequestsOfOneSessionRunOneAtATimeAndApplicationLockHolds) {
  const std::string cookie = SessionCookie(Get(port(), "/session.asp?case=count"));
  const int before = std::stoi(Get(port(), "/application.asp").body.substr(14));
  std::vector<std::future<void>> runs;
  for (int i = 0; i < 8; ++i) {
    runs.push_back(std::async(std::launch::async, [&] {
      for (int j = 0; j < 10; ++j) {
        Get(port(), "/session.asp?case=count", "Cookie: " + cookie + "\r\n");
        Get(port(), "/application.asp");
      }
    }));
  }
  for (auto& r : runs)
    r.get();
  // Without one-at-a-time sessions increments would be lost.
  EXPECT_EQ(Get(port(), "/session.asp?case=count", "Cookie: " + cookie + "\r\n").body.substr(0, 3),
            "82|");
  const std::string after = Get(port(), "/application.asp").body;
  EXPECT_EQ(std::stoi(after.substr(14)), before + 81);
  // global.asa's application object is one for all workers, its values as safe as the rest.
  const size_t bar = after.find('|', 14);
  EXPECT_EQ(after.substr(14, bar - 14), after.substr(bar + 1, bar - 14)) << after;
}

TEST_F(ServeTest, PageCompilation) {
  EXPECT_EQ(Get(port(), "/include.asp").body,
            "<header>h</header>body<footer>ünïcode</footer>\r\nX!\r\n");
  EXPECT_EQ(Get(port(), "/scriptblock.asp").body, "\r\n42");
  EXPECT_EQ(Get(port(), "/metadata.asp").body, "\r\n3|1");
  Reply latin = Get(port(), "/codepage.asp");
  EXPECT_EQ(latin.body, "caf\xe9|1252");
  EXPECT_EQ(latin.Header("Content-Type"), "text/html; charset=windows-1252");
  // Errors name the file and line where they stand, not the merged text's.
  Reply inc = Get(port(), "/error_inc.asp");
  EXPECT_EQ(inc.status, 500);
  EXPECT_NE(inc.body.find("/inc/raise.inc, line 4"), std::string::npos) << inc.body;
  EXPECT_NE(inc.body.find("Invalid procedure call or argument"), std::string::npos);
  EXPECT_NE(inc.body.find("800a0005"), std::string::npos);
  Reply compile = Get(port(), "/compile_error.asp");
  EXPECT_EQ(compile.status, 500);
  EXPECT_NE(compile.body.find("/compile_error.asp, line 4"), std::string::npos) << compile.body;
  Reply cycle = Get(port(), "/cycle.asp");
  EXPECT_EQ(cycle.status, 500);
  EXPECT_NE(cycle.body.find("ASP 0127"), std::string::npos) << cycle.body;
  // Without --dev nothing of the source, paths or text leaks.
  for (const char* page : {"/error_inc.asp", "/compile_error.asp", "/cycle.asp"}) {
    Reply plain = Get(plain_->port, page);
    EXPECT_EQ(plain.status, 500);
    EXPECT_EQ(plain.body.find(".inc"), std::string::npos) << plain.body;
    EXPECT_EQ(plain.body.find("line"), std::string::npos) << plain.body;
    EXPECT_EQ(plain.body.find("Invalid"), std::string::npos) << plain.body;
  }
}

TEST_F(ServeTest, OnlyPagesWhoseCodeFlushesRunAside) {
  const fs::path root =
      fs::path(std::getenv("QV_TEST_SCRATCH") ? std::getenv("QV_TEST_SCRATCH") : "/tmp") /
      "asp-streams";
  fs::remove_all(root);
  fs::create_directories(root);
  const std::pair<const char*, bool> pages[] = {
      {"<% ' Response.Flush would send it now\r\nx = \"Buffer\" %>flush, buffer", false},
      {"<% Response.Write \"Response.Flush\" %>", false},
      {"<% Response.Flush %>", true},
      {"<% response.BUFFER = False %>", true},
      {"<% With Response\r\n.Flush\r\nEnd With %>", true},
      {"<% Execute \"Response.\" & \"Flush\" %>", true},
      {"<!--#include file=\"flush.inc\"-->", true},
      {"<% x = \"flush %>", true},  // no code to read: the text decides
  };
  std::ofstream(root / "flush.inc") << "<% Response.Flush %>";
  const Site site(root);
  int n = 0;
  for (const auto& [text, streams] : pages) {
    const fs::path file = root / ("p" + std::to_string(n++) + ".asp");
    std::ofstream(file) << text;
    EXPECT_EQ(CompilePage(site, file).streams, streams) << text;
  }
}

TEST_F(ServeTest, PagesAreCompiledAgainWhenAnIncludeChanges) {
  const fs::path root =
      fs::path(std::getenv("QV_TEST_SCRATCH") ? std::getenv("QV_TEST_SCRATCH") : "/tmp") /
      "asp-change";
  fs::remove_all(root);
  fs::create_directories(root);
  std::ofstream(root / "page.asp") << "<!--#include file=\"part.inc\"-->";
  std::ofstream(root / "part.inc") << "<%= \"one\" %>";
  Served s(root, true);
  EXPECT_EQ(Get(s.port, "/page.asp").body, "one");
  std::ofstream(root / "part.inc") << "<%= \"second\" %>";
  EXPECT_EQ(Get(s.port, "/page.asp").body, "second");
  fs::remove(root / "part.inc");
  EXPECT_EQ(Get(s.port, "/page.asp").status, 500);
}

TEST_F(ServeTest, ListPageThroughAdodbOnSeveralWorkers) {
  const fs::path root =
      fs::path(std::getenv("QV_TEST_SCRATCH") ? std::getenv("QV_TEST_SCRATCH") : "/tmp") /
      "asp-ado";
  fs::remove_all(root);
  fs::create_directories(root);
  std::ofstream(root / "shop.db");  // an empty file is an empty database
  std::ofstream(root / "setup.asp") << R"asp(<%
Set conn = Server.CreateObject("ADODB.Connection")
conn.Open "Provider=SQLite;Data Source=" & Server.MapPath("shop.db")
conn.Execute "CREATE TABLE item (id INTEGER PRIMARY KEY, name TEXT)"
For i = 1 To 50
  conn.Execute "INSERT INTO item VALUES (" & i & ", 'Item <" & i & "> & co')"
Next
conn.Close
%>done)asp";
  std::ofstream(root / "list.asp")
      << R"asp(<!-- METADATA TYPE="TypeLib" NAME="Microsoft ActiveX Data Objects 2.8 Library" -->
<%
Set conn = Server.CreateObject("ADODB.Connection")
conn.Open "Provider=SQLite;Data Source=" & Server.MapPath("shop.db")
Set rs = Server.CreateObject("ADODB.Recordset")
rs.Open "SELECT id, name FROM item WHERE id > " & CLng(Request("from")) & " ORDER BY id LIMIT 3", conn, adOpenForwardOnly, adLockReadOnly, adCmdText
Do While Not rs.EOF
  Response.Write rs("id") & "=" & Server.HTMLEncode(rs("name")) & ";"
  rs.MoveNext
Loop
rs.Close
conn.Close
%>)asp";
  Served s(root, true);
  ASSERT_EQ(Get(s.port, "/setup.asp").body, "done");
  EXPECT_EQ(
      Get(s.port, "/list.asp?from=10").body,
      "\n11=Item &lt;11&gt; &amp; co;12=Item &lt;12&gt; &amp; co;13=Item &lt;13&gt; &amp; co;");
  std::vector<std::future<int>> runs;
  for (int t = 0; t < 4; ++t) {
    runs.push_back(std::async(std::launch::async, [&, t] {
      int wrong = 0;
      for (int i = 0; i < 15; ++i) {
        const int from = (t * 15 + i) % 40;
        const std::string want =
            "\n" + std::to_string(from + 1) + "=Item &lt;" + std::to_string(from + 1);
        if (Get(s.port, "/list.asp?from=" + std::to_string(from)).body.rfind(want, 0) != 0) ++wrong;
      }
      return wrong;
    }));
  }
  for (auto& r : runs)
    EXPECT_EQ(r.get(), 0);
}

TEST_F(ServeTest, RunawayPageTimesOutWhileOthersGoOn) {
  const auto start = std::chrono::steady_clock::now();
  auto loop = std::async(std::launch::async, [] { return Get(port(), "/loop.asp"); });
  std::this_thread::sleep_for(std::chrono::milliseconds(100));
  EXPECT_EQ(Get(port(), "/hello.asp?name=x").status, 200);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(900));
  Reply r = loop.get();
  EXPECT_EQ(r.status, 500);
  EXPECT_NE(r.body.find("ASP 0113"), std::string::npos) << r.body;
}

TEST_F(ServeTest, APageSeesItsClientGo) {
  // The client hangs up right after asking; the page notices well before its own limit.
  test::Exchange(port(), "GET /gone.asp?case=wait HTTP/1.1\r\nHost: x\r\n\r\n", 1);
  std::string seen;
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(2);
  while ((seen = Get(port(), "/gone.asp?case=seen").body) != "True|True" &&
         std::chrono::steady_clock::now() < deadline)
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  EXPECT_EQ(seen, "True|True");
}

TEST_F(ServeTest, HostileRequestsGetCleanErrors) {
  Served small(kSite, false, 1024);
  EXPECT_EQ(Post(small.port, "/request.asp", "text/plain", std::string(4096, 'x')).status, 413);
  // A chunked body with no length up front is cut off at the limit too.
  Reply chunked = test::Parse(test::Exchange(small.port,
                                             "POST /request.asp HTTP/1.1\r\nHost: x\r\nConnection: "
                                             "close\r\nTransfer-Encoding: chunked\r\n\r\n800\r\n" +
                                                 std::string(2048, 'y') + "\r\n0\r\n\r\n"));
  EXPECT_EQ(chunked.status, 413);
  const Reply huge = Get(port(), "/hello.asp", "X-Big: " + std::string(64 * 1024, 'h') + "\r\n");
  EXPECT_TRUE(huge.status == 431 || huge.status == 413 || huge.status == 400 || huge.status == 0)
      << huge.status;
  const int garbage = test::Parse(test::Exchange(port(), "GARBAGE\r\n\r\n")).status;
  EXPECT_TRUE(garbage == 0 || garbage / 100 == 4) << garbage;
  // A truncated multipart body and a body longer than announced.
  Reply truncated = Post(port(), "/request.asp", "multipart/form-data; boundary=B",
                         "--B\r\nContent-Disposition: form-data; name=\"name\"\r\n\r\nhalf");
  EXPECT_EQ(truncated.status, 200);
  const std::string longer =
      test::Exchange(port(),
                     "POST /request.asp HTTP/1.1\r\nHost: x\r\nContent-Length: 3\r\nContent-Type: "
                     "text/plain\r\n\r\nabcdefgh",
                     2000);
  EXPECT_EQ(test::Parse(longer).status, 200);
  // A client that sends half a request and goes quiet is closed, and nobody else waits.
  auto slow = std::async(std::launch::async, [] {
    return test::Exchange(port(), "GET /hello.asp HTTP/1.1\r\nHost:", 5000);
  });
  EXPECT_EQ(Get(port(), "/hello.asp").status, 200);
  const auto started = std::chrono::steady_clock::now();
  slow.get();
  EXPECT_LT(std::chrono::steady_clock::now() - started, std::chrono::seconds(5));
  EXPECT_EQ(Get(port(), "/hello.asp").status, 200);
}

// Storing an upload: the page gets each file whole, names are made harmless, a server page is
// never stored, a taken name gets a number, and nothing lands outside the site.
TEST_F(ServeTest, UploadObjectStoresFilesSafely) {
  EXPECT_EQ(SafeFileName("C:\\Users\\me\\My Photo (1).JPG"), "My_Photo_1_.JPG");
  EXPECT_EQ(SafeFileName("../../etc/passwd"), "passwd");
  EXPECT_EQ(SafeFileName(".htaccess"), "htaccess");
  EXPECT_EQ(SafeFileName("..."), "");
  EXPECT_EQ(SafeFileName("Müller.png"), "M_ller.png");
  EXPECT_EQ(SafeFileName(std::string(300, 'a') + ".pdf").size(), 120u);
  EXPECT_TRUE(SafeFileName(std::string(300, 'a') + ".pdf").ends_with(".pdf"));
  for (const char* bad : {"x.asp", "X.ASA", "shell.asp.jpg", "web.config", "a.inc", "b.PHP"})
    EXPECT_TRUE(IsServerFileName(bad)) << bad;
  for (const char* good : {"photo.jpg", "aspen.png", "notes.txt", "noext"})
    EXPECT_FALSE(IsServerFileName(good)) << good;

  const fs::path root = fs::temp_directory_path() / ("qv-upload-" + std::to_string(::getpid()));
  fs::remove_all(root);
  fs::create_directories(root / "up");
  std::ofstream(root / "store.asp") << R"(<%@ ENABLESESSIONSTATE=False %><%
Dim up, f, name
Set up = Server.CreateObject("Quorvex.Upload")
Response.Write "note=" & Request.Form("note") & ";count=" & up.Count & ";"
If up.File("empty") Is Nothing Then Response.Write "empty=none;"
Set f = up.File("PIC")
Response.Write "name=" & f.FileName & ";safe=" & f.SafeName & ";ext=" & f.Extension & ";type=" & _
  f.ContentType & ";size=" & f.Size & ";bytes=" & (UBound(f.Bytes) + 1) & ";"
On Error Resume Next
name = f.SaveIn(Request.QueryString("dir"))
If Err.Number <> 0 Then Response.Write "err=" & Err.Description Else Response.Write "saved=" & name
%>)";
  Served site(root, false);
  const std::string up = (root / "up").string();
  // Boundaries of any length from 1 to 70 characters, quoted or not.
  const auto post = [&](const std::string& file_name, const std::string& dir,
                        const std::string& b = "XyZ", const std::string& sent = "XyZ") {
    const std::string body =
        "--" + b + "\r\nContent-Disposition: form-data; name=\"empty\"; filename=\"\"\r\n" +
        "Content-Type: application/octet-stream\r\n\r\n\r\n--" + b +
        "\r\nContent-Disposition: form-data; name=\"note\"\r\n\r\na-b\r\n--" + b +
        "\r\nContent-Disposition: form-data; name=\"pic\"; filename=\"" + file_name +
        "\"\r\nContent-Type: image/png\r\n\r\n" + std::string("\x89PNG\0\r\n", 7) + "\r\n--" + b +
        "--\r\n";
    return Post(site.port, "/store.asp?dir=" + dir, "multipart/form-data; boundary=" + sent, body)
        .body;
  };
  EXPECT_EQ(post("C:\\pics\\Cat.PNG", up),
            "note=a-b;count=1;empty=none;name=Cat.PNG;safe=Cat.PNG;ext=png;type=image/png;size=7;"
            "bytes=7;saved=Cat.PNG");
  EXPECT_TRUE(post("Cat.PNG", up).ends_with("saved=Cat-1.PNG"));
  for (const auto& [b, sent] : std::vector<std::pair<std::string, std::string>>{
           {"-", "-"}, {"Q", "\"Q\""}, {std::string(70, 'b'), std::string(70, 'b')}}) {
    EXPECT_TRUE(
        post("Dog.png", up, b, sent).starts_with("note=a-b;count=1;empty=none;name=Dog.png"))
        << sent;
  }
  std::ifstream stored(root / "up" / "Cat-1.PNG", std::ios::binary);
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(stored), {}),
            std::string("\x89PNG\0\r\n", 7));
  EXPECT_TRUE(post("evil.asp", up).ends_with("err=Files of this type are never stored: evil.asp"));
  EXPECT_TRUE(post("x.png", root.parent_path().string())
                  .ends_with("err=The upload folder lies outside the site."));
  EXPECT_TRUE(post("x.png", (root / "store.asp").string())
                  .ends_with("err=The upload folder does not exist."));
  EXPECT_FALSE(fs::exists(root / "up" / "evil.asp"));
  EXPECT_EQ(Get(site.port, "/up/Cat.PNG").status, 200);
  // A folder that took an upload runs no page, nor do the folders inside it, however the page
  // got there; the rest of the site runs as before.
  fs::create_directories(root / "up/sub");
  for (const char* planted : {"up/run.asp", "up/sub/run.asp", "run.asp"})
    std::ofstream(root / planted) << "<% Response.Write \"ran\" %>";
  for (const char* target : {"/up/run.asp", "/UP/Run.asp", "/up/sub/run.asp"}) {
    const Reply r = Get(site.port, target);
    EXPECT_EQ(r.status, 403) << target;
    EXPECT_EQ(r.body.find("ran"), std::string::npos) << target;
  }
  EXPECT_EQ(Get(site.port, "/run.asp").body, "ran");
  EXPECT_EQ(Get(site.port, "/up/.quorvex-uploads").status, 404);
  fs::remove_all(root);
}

}  // namespace
}  // namespace qv::asp
