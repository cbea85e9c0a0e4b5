// The default package with a login, on a copy of Chinook with a user table: no page without a
// login, levels that see different things, no other user's record through any address, the
// stored passwords hashed, failed logins slowed down, and the audit trail's lines.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <string>

#include "package/served_app.h"

namespace qv::package_testing {
namespace {

namespace sfs = std::filesystem;
using cli_testing::Has;

class SecureApp : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    dir_ = new sfs::path(cli_testing::FreshDir("package-security-" + std::to_string(getpid())));
    const sfs::path& dir = *dir_;
    // Users whose passwords were stored before the application hashed them: the first good
    // login of each replaces the text by its hash. RepId is what Customer.SupportRepId holds.
    sfs::copy_file(std::string(QV_SHARED_DATA) + "/sqlite/chinook.sqlite", dir / "chinook.sqlite");
    const std::string sql =
        "CREATE TABLE AppUser (UserId INTEGER PRIMARY KEY, Login TEXT NOT NULL UNIQUE, "
        "Password TEXT, Email TEXT, Level TEXT DEFAULT 'Agent', RepId INTEGER);"
        "INSERT INTO AppUser VALUES (1, 'andrew', 'manager-pw', 'andrew@x.org', 'Manager', 1),"
        "(2, 'jane', 'jane-pw-3', 'jane@x.org', 'Agent', 3),"
        "(3, 'margaret', 'margaret-pw', 'margaret@x.org', 'Agent', 4);"
        // Customer 3 can't be deleted: a deletion of several that includes it rolls back.
        "CREATE TRIGGER keep3 BEFORE DELETE ON Customer WHEN OLD.CustomerId = 3 "
        "BEGIN SELECT RAISE(ABORT, 'kept'); END;";
    ASSERT_EQ(
        std::system(("sqlite3 " + (dir / "chinook.sqlite").string() + " \"" + sql + "\"").c_str()),
        0);
    using cli_testing::Quorvex;
    ASSERT_EQ(
        Quorvex(dir, {"new", "app.qvp", "--db", "sqlite:" + (dir / "chinook.sqlite").string()})
            .status,
        0);
    ASSERT_EQ(Quorvex(dir, {"set", "app.qvp", "SecType=Both", "SecLoginID=admin",
                            "SecPasswd=admin-pw", "SecTbl=AppUser", "SecLoginIDFld=Login",
                            "SecPasswdFld=Password", "SecEmailFld=Email", "SecRegisterPage=True",
                            "SecChangePwdPage=True", "SecForgetPwdPage=True", "SessTimeOut=15"})
                  .status,
              0);
    ASSERT_EQ(Quorvex(dir, {"set", "app.qvp", "--database", "SecUserLevelFld=Level",
                            "SecuUserIDFld=RepId"})
                  .status,
              0);
    // Agents list, view and edit their own customers; managers do everything with all of
    // them; only managers see employees. Invoices pick their customer from a lookup.
    ASSERT_EQ(Quorvex(dir, {"set", "app.qvp", "--table", "Customer", "TblUserIDFld=SupportRepId",
                            "TblSecurity=Manager:*;Agent:LVE", "TblAuditTrail=True"})
                  .status,
              0);
    ASSERT_EQ(
        Quorvex(dir, {"set", "app.qvp", "--table", "Employee", "TblSecurity=Manager:*"}).status, 0);
    ASSERT_EQ(Quorvex(dir, {"set", "app.qvp", "--table", "Invoice", "--field", "CustomerId",
                            "FldHtmlTag=SELECT", "FldTagLnkTbl=Customer", "FldTagLnkFld=CustomerId",
                            "FldTagLnkDisplay=LastName"})
                  .status,
              0);
    const cli_testing::Run run =
        Quorvex(dir, {"generate", "app.qvp", "--dest", "site", "--overwrite", "all"});
    ASSERT_EQ(run.status, 0) << run.err;
    app_ = new ServedApp(dir / "site");
  }
  static void TearDownTestSuite() {
    delete app_;
    delete dir_;
  }

  // Logs in with a fresh session; gives the login page's answer.
  static Reply Login(const std::string& name, const std::string& password) {
    app_->cookie.clear();
    const std::string token = TokenOf(app_->Get("/login.asp").body);
    return app_->Post("/login.asp", "qvtoken=" + token + "&username=" + name +
                                        "&password=" + password + "&return=default.asp");
  }
  static std::string Sql(const std::string& query) {
    const std::string cmd =
        "sqlite3 " + (*dir_ / "site/chinook.sqlite").string() + " \"" + query + "\"";
    std::string out;
    if (FILE* p = popen(cmd.c_str(), "r")) {
      char buf[512];
      while (fgets(buf, sizeof buf, p))
        out += buf;
      pclose(p);
    }
    while (!out.empty() && out.back() == '\n')
      out.pop_back();
    return out;
  }
  static inline sfs::path* dir_ = nullptr;
  static inline ServedApp* app_ = nullptr;
};

TEST_F(SecureApp, NoPageWithoutLoginAndEachUserSeesOnlyWhatTheLevelAllows) {
  // Every page of the application but the login pages sends a stranger to the login, with
  // none of its data, however it is asked.
  size_t pages = 0;
  Reply r;
  for (const auto& entry : sfs::directory_iterator(*dir_ / "site")) {
    const std::string name = entry.path().filename().string();
    if (entry.path().extension() != ".asp") continue;
    if (name == "login.asp" || name == "register.asp" || name == "forgotpwd.asp" ||
        name == "resetpwd.asp" || name == "logout.asp" || name == "denied.asp")
      continue;
    ++pages;
    for (const Reply& r : {app_->Get("/" + name + "?key=1&export=csv"),
                           app_->Post("/" + name, "key=1&qvconfirm=1")}) {
      EXPECT_EQ(r.status, 302) << name;
      EXPECT_TRUE(Has(r.Header("Location"), "login.asp?return=")) << name;
      EXPECT_FALSE(Has(r.body, "Gonçalves") || Has(r.body, "qvGrid")) << name;
    }
  }
  EXPECT_GT(pages, 50u);
  EXPECT_TRUE(sfs::exists(*dir_ / "site/upload/.quorvex-uploads"));  // no page runs there
  // Every page works for the administrator, who may do everything.
  ASSERT_EQ(Login("admin", "admin-pw").status, 302);
  for (const auto& entry : sfs::directory_iterator(*dir_ / "site")) {
    const std::string name = entry.path().filename().string();
    if (entry.path().extension() != ".asp" || name == "logout.asp") continue;
    r = app_->Get("/" + name + "?key=1");
    EXPECT_FALSE(Broken(r)) << name << ": " << r.body.substr(0, 400);
  }
  EXPECT_TRUE(Has(Login("jane", "wrong").body, "The login name or the password is wrong."));

  // A manager sees every customer and the employees; an agent only her own customers, and
  // no employee list, no delete and no export.
  ASSERT_EQ(Login("andrew", "manager-pw").status, 302);
  EXPECT_TRUE(Has(app_->Get("/Customerlist.asp").body, "Records 1 to 20 of 59"));
  EXPECT_EQ(app_->Get("/Employeelist.asp").status, 200);
  EXPECT_TRUE(Has(app_->Get("/default.asp").body, "Employeelist.asp"));
  ASSERT_EQ(Login("jane", "jane-pw-3").status, 302);
  r = app_->Get("/Customerlist.asp");
  EXPECT_TRUE(Has(r.body, "Records 1 to 20 of 21")) << r.body;
  EXPECT_TRUE(Has(r.body, "<span class=\"qvUser\">jane</span>"));
  EXPECT_FALSE(Has(r.body, "Customerdelete.asp"));
  EXPECT_FALSE(Has(app_->Get("/default.asp").body, "Employeelist.asp"));
  r = app_->Get("/Employeelist.asp");
  EXPECT_EQ(r.status, 403);
  EXPECT_TRUE(Has(r.body, "You are not allowed to see this page."));
  EXPECT_FALSE(Has(r.body, "andrew@chinookcorp.com"));
  EXPECT_EQ(app_->Get("/Customerlist.asp?export=csv").status, 403);
  EXPECT_EQ(app_->Get("/AppUserlist.asp").status, 403);
  EXPECT_EQ(app_->Get("/Customerdelete.asp?key=1").status, 403);

  // Customer 1 is hers; customer 2 is another agent's, and no address reaches it.
  ASSERT_EQ(Sql("SELECT SupportRepId FROM Customer WHERE CustomerId IN (1, 2)"), "3\n5");
  EXPECT_EQ(app_->Get("/Customerview.asp?key=1").status, 200);
  for (const char* target : {"/Customerview.asp?key=2", "/Customeredit.asp?key=2"}) {
    r = app_->Get(target);
    EXPECT_EQ(r.status, 404) << target;
    EXPECT_FALSE(Has(r.body, "Köhler")) << target;
  }
  EXPECT_TRUE(Has(app_->Get("/Customerlist.asp?q=K%C3%B6hler").body, "No records match"));
  const std::string token = TokenOf(app_->Get("/Customeredit.asp?key=1").body);
  app_->Post("/Customeredit.asp",
             "qvtoken=" + token + "&key=2&x_FirstName=Taken&x_LastName=Over&x_Email=a%40b.c");
  EXPECT_EQ(Sql("SELECT FirstName FROM Customer WHERE CustomerId = 2"), "Leonie");
  // Her own record keeps its owner whatever the form sends.
  r = app_->Post("/Customeredit.asp", "qvtoken=" + token +
                                          "&key=1&x_FirstName=Luis&x_LastName=Goncalves&x_Email="
                                          "luisg%40embraer.com.br&x_SupportRepId=4");
  EXPECT_EQ(r.status, 302) << r.body;
  EXPECT_EQ(Sql("SELECT FirstName, SupportRepId FROM Customer WHERE CustomerId = 1"), "Luis|3");
  // A lookup offers only her own customers.
  r = app_->Get("/Invoiceadd.asp");
  const std::regex option("<option value=\"[0-9]+\"");
  EXPECT_EQ(std::distance(std::sregex_iterator(r.body.begin(), r.body.end(), option),
                          std::sregex_iterator()),
            21);

  // A login and a logout each give the session a new cookie: one known before (planted by
  // somebody, or read off the wire) reaches neither the logged-in session nor the next one.
  app_->cookie.clear();
  const std::string form = TokenOf(app_->Get("/login.asp").body);
  const std::string planted = app_->cookie;
  ASSERT_EQ(
      app_->Post("/login.asp", "qvtoken=" + form + "&username=jane&password=jane-pw-3").status,
      302);
  const std::string in = app_->cookie;
  EXPECT_NE(in, planted);
  app_->cookie = planted;
  EXPECT_EQ(app_->Get("/Customerlist.asp").status, 302);
  app_->cookie = in;
  EXPECT_EQ(app_->Get("/Customerlist.asp").status, 200);
  EXPECT_EQ(app_->Get("/logout.asp").status, 302);
  EXPECT_NE(app_->cookie, in);
  EXPECT_EQ(app_->Get("/Customerlist.asp").status, 302);
  app_->cookie = in;
  EXPECT_EQ(app_->Get("/Customerlist.asp").status, 302);
}

TEST_F(SecureApp, PasswordsAreHashedAndFailedLoginsSlowDown) {
  // The first good login replaces a stored password by its salted hash, which keeps working.
  ASSERT_EQ(Login("margaret", "margaret-pw").status, 302);
  const std::string hash = Sql("SELECT Password FROM AppUser WHERE Login = 'margaret'");
  EXPECT_EQ(hash.substr(0, 10), "$argon2id$");
  EXPECT_EQ(Login("margaret", "margaret-pw").status, 302);
  EXPECT_EQ(Sql("SELECT Password FROM AppUser WHERE Login = 'margaret'"), hash);
  // The fixed login's password is in no file of the application, only its hash.
  for (const auto& entry : sfs::recursive_directory_iterator(*dir_ / "site")) {
    if (entry.is_regular_file() && entry.path().extension() != ".sqlite") {
      EXPECT_FALSE(Has(cli_testing::Slurp(entry.path()), "admin-pw")) << entry.path();
    }
  }
  EXPECT_TRUE(Has(cli_testing::Slurp(*dir_ / "site/inc/qvlib.inc"),
                  "Const qvSecFixedPasswd = \"$argon2id$"));
  EXPECT_EQ(Login("admin", "admin-pw").status, 302);
  EXPECT_TRUE(Has(Login("admin", "admin-pw2").body, "is wrong"));

  // Three failures of a name are free; then even the right password waits.
  for (int i = 0; i < 3; ++i)
    EXPECT_TRUE(Has(Login("margaret", "guess" + std::to_string(i)).body, "is wrong"));
  Reply r = Login("margaret", "margaret-pw");
  EXPECT_EQ(r.status, 200);
  EXPECT_TRUE(Has(r.body, "Too many failed logins. Please try again in ")) << r.body;

  // The counters expire after an hour and stay at most 1000, the least recently failed going
  // first. A page of the test's own fills them with 1000, the first `old` of them two hours
  // old, and tells how many there are and whether x0 and x2 are among them.
  std::ofstream(*dir_ / "site/counters.asp") << R"(<%
Dim t, i, lines(), fails
t = DateDiff("s", #1/1/2000#, Now())
If Request("old") <> "" Then
  ReDim lines(999)
  For i = 0 To 999
    lines(i) = "n:x" & i & "|1|" & (t - 7200 * Abs(i < CInt(Request("old"))))
  Next
  Application("qvFails") = Join(lines, vbLf)
End If
fails = vbLf & Application("qvFails")
Response.Write UBound(Split(fails, vbLf)) & "|" & (InStr(fails, vbLf & "n:x0|") > 0) & "|" & _
  (InStr(fails, vbLf & "n:x2|") > 0)
%>)";
  app_->Get("/counters.asp?old=400");
  EXPECT_TRUE(Has(Login("nobody", "x").body, "is wrong"));
  EXPECT_EQ(app_->Get("/counters.asp").body, "602|False|False");
  app_->Get("/counters.asp?old=0");
  EXPECT_TRUE(Has(Login("nobody", "x").body, "is wrong"));
  EXPECT_EQ(app_->Get("/counters.asp").body, "1000|False|True");

  // A registered user's password is stored hashed; the name can't be taken twice.
  app_->cookie.clear();
  std::string token = TokenOf(app_->Get("/register.asp").body);
  r = app_->Post("/register.asp", "qvtoken=" + token +
                                      "&username=zoe&email=zoe%40x.org&password=zoe-secret"
                                      "&password2=zoe-secret");
  EXPECT_EQ(r.Header("Location"), "login.asp") << r.body;
  EXPECT_EQ(Sql("SELECT substr(Password, 1, 10), Level FROM AppUser WHERE Login = 'zoe'"),
            "$argon2id$|Agent");
  r = app_->Post("/register.asp", "qvtoken=" + token +
                                      "&username=zoe&email=zoe%40x.org&password=other-secret"
                                      "&password2=other-secret");
  EXPECT_TRUE(Has(r.body, "This login name is taken."));

  // Changing it asks for the old one; a reset link goes to the administrator's file and
  // works once.
  ASSERT_EQ(Login("zoe", "zoe-secret").status, 302);
  token = TokenOf(app_->Get("/changepwd.asp").body);
  r = app_->Post("/changepwd.asp",
                 "qvtoken=" + token + "&oldpassword=nope&password=zoe-second&password2=zoe-second");
  EXPECT_TRUE(Has(r.body, "The current password is wrong."));
  r = app_->Post(
      "/changepwd.asp",
      "qvtoken=" + token + "&oldpassword=zoe-secret&password=zoe-second&password2=zoe-second");
  EXPECT_EQ(r.status, 302);
  EXPECT_EQ(Login("zoe", "zoe-second").status, 302);
  app_->cookie.clear();
  token = TokenOf(app_->Get("/forgotpwd.asp").body);
  r = app_->Post("/forgotpwd.asp", "qvtoken=" + token + "&username=zoe%40x.org");
  EXPECT_TRUE(Has(r.body, "the administrator has been given a link"));
  const std::string resets = cli_testing::Slurp(*dir_ / "site/audit/password-resets.log");
  std::smatch m;
  ASSERT_TRUE(
      std::regex_search(resets, m, std::regex("\tzoe\t.*\tresetpwd\\.asp\\?token=(\\w{32})")))
      << resets;
  EXPECT_EQ(app_->Get("/audit/password-resets.log").status, 404);
  const std::string link = "/resetpwd.asp?token=" + m[1].str();
  token = TokenOf(app_->Get(link).body);
  r = app_->Post("/resetpwd.asp", "qvtoken=" + token + "&token=" + m[1].str() +
                                      "&password=zoe-third&password2=zoe-third");
  EXPECT_EQ(r.status, 302);
  EXPECT_EQ(Login("zoe", "zoe-third").status, 302);
  EXPECT_TRUE(Has(app_->Get(link).body, "This link is not valid any more."));
}

TEST_F(SecureApp, AuditTrailHasOneWholeLinePerChange) {
  ASSERT_EQ(Login("admin", "admin-pw").status, 302);
  std::string token = TokenOf(app_->Get("/Customeradd.asp").body);
  Reply r = app_->Post("/Customeradd.asp", "qvtoken=" + token +
                                               "&x_FirstName=Ada&x_LastName=Tab%09Line%0D%0ANext"
                                               "&x_Email=ada%40x.org&x_SupportRepId=4");
  ASSERT_EQ(r.status, 302) << r.body;
  const std::string key = Sql("SELECT max(CustomerId) FROM Customer");
  token = TokenOf(app_->Get("/Customeredit.asp?key=" + key).body);
  r = app_->Post("/Customeredit.asp", "qvtoken=" + token + "&key=" + key +
                                          "&x_FirstName=Ada&x_LastName=Lovelace&x_Email=ada%40x.org"
                                          "&x_SupportRepId=4");
  ASSERT_EQ(r.status, 302) << r.body;
  // Deleting it with a customer that can't go deletes neither and writes no line.
  r = app_->Post("/Customerdelete.asp", "qvtoken=" + token + "&qvconfirm=1&key=" + key + "&key=3");
  EXPECT_EQ(r.status, 200);
  EXPECT_EQ(Sql("SELECT LastName FROM Customer WHERE CustomerId = " + key), "Lovelace");
  r = app_->Post("/Customerdelete.asp", "qvtoken=" + token + "&qvconfirm=1&key=" + key);
  ASSERT_EQ(r.status, 302) << r.body;
  // A table without an audit trail writes none.
  token = TokenOf(app_->Get("/Genreadd.asp").body);
  ASSERT_EQ(app_->Post("/Genreadd.asp", "qvtoken=" + token + "&x_Name=Polka").status, 302);

  std::vector<std::string> lines;
  for (const auto& entry : sfs::directory_iterator(*dir_ / "site/audit")) {
    if (entry.path().filename().string().rfind("audit-", 0) != 0) continue;
    std::ifstream in(entry.path());
    for (std::string line; std::getline(in, line);)
      if (Has(line, "\tadmin\t")) lines.push_back(line);
  }
  ASSERT_EQ(lines.size(), 3u);
  const std::string when =
      "\\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d\tadmin\t127\\.0\\.0\\.1\tCustomer\t";
  EXPECT_TRUE(std::regex_search(
      lines[0],
      std::regex(
          "^" + when +
          "add\t" + key + "\t.*FirstName=Ada; LastName=Tab\\\\tLine\\\\r\\\\nNext;.*SupportRepId=4\r$")))
      << lines[0];
  EXPECT_TRUE(std::regex_search(
      lines[1], std::regex("^" + when + "edit\t" + key +
                           "\tLastName: Tab\\\\tLine\\\\r\\\\nNext -> Lovelace\r$")))
      << lines[1];
  EXPECT_TRUE(
      std::regex_search(lines[2], std::regex("^" + when + "delete\t" + key + "\tCustomerId=" + key +
                                             "; FirstName=Ada; LastName=Lovelace;")))
      << lines[2];
}

TEST_F(SecureApp, DynamicUserLevelsTakeTheirRightsFromATable) {
  // The same application with the rights in a table of the database: letters for agents, a
  // number (all seven rights) for managers, no row for albums.
  const sfs::path dir = *dir_ / "dynamic";
  sfs::create_directories(dir / "home");
  sfs::copy_file(*dir_ / "chinook.sqlite", dir / "chinook.sqlite");
  const std::string sql =
      "CREATE TABLE Priv (TableName TEXT, Level TEXT, Rights TEXT);"
      "INSERT INTO Priv VALUES ('Customer', 'Agent', 'LV'), ('Customer', 'Manager', 127);";
  ASSERT_EQ(
      std::system(("sqlite3 " + (dir / "chinook.sqlite").string() + " \"" + sql + "\"").c_str()),
      0);
  using cli_testing::Quorvex;
  ASSERT_EQ(Quorvex(dir, {"new", "app.qvp", "--db", "sqlite:" + (dir / "chinook.sqlite").string()})
                .status,
            0);
  ASSERT_EQ(Quorvex(dir, {"set", "app.qvp", "SecType=Use Table", "SecTbl=AppUser",
                          "SecLoginIDFld=Login", "SecPasswdFld=Password"})
                .status,
            0);
  ASSERT_EQ(Quorvex(dir, {"set", "app.qvp", "--database", "SecUserLevelFld=Level",
                          "SecuUserIDFld=RepId", "UseDynamicUserLevel=True",
                          "UserLevelPrivTbl=Priv", "UserLevelPrivTblNameFld=TableName",
                          "UserLevelPrivUserLevelFld=Level", "UserLevelPrivPrivFld=Rights"})
                .status,
            0);
  ASSERT_EQ(
      Quorvex(dir, {"set", "app.qvp", "--table", "Customer", "TblUserIDFld=SupportRepId"}).status,
      0);
  ASSERT_EQ(Quorvex(dir, {"generate", "app.qvp", "--dest", "site", "--overwrite", "all"}).status,
            0);
  ServedApp app(dir / "site");
  const auto login = [&app](const std::string& name, const std::string& password) {
    const std::string token = TokenOf(app.Get("/login.asp").body);
    return app.Post("/login.asp", "qvtoken=" + token + "&username=" + name +
                                      "&password=" + password + "&return=default.asp");
  };
  ASSERT_EQ(login("jane", "jane-pw-3").status, 302);
  EXPECT_TRUE(Has(app.Get("/Customerlist.asp").body, "Records 1 to 20 of 21"));
  EXPECT_EQ(app.Get("/Customeredit.asp?key=1").status, 403);
  EXPECT_EQ(app.Get("/Albumlist.asp").status, 403);
  app.cookie.clear();
  ASSERT_EQ(login("andrew", "manager-pw").status, 302);
  EXPECT_TRUE(Has(app.Get("/Customerlist.asp").body, "Records 1 to 20 of 59"));
  EXPECT_EQ(app.Get("/Customeredit.asp?key=2").status, 200);
}

}  // namespace
}  // namespace qv::package_testing
