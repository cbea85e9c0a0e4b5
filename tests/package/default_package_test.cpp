// The default template package on Chinook (SQLite): the application it generates answers on
// every page, lists page, sort and search, and one record goes through add, a refused save,
// edit, copy and delete with the form token checked each time.
#include <gtest/gtest.h>

#include <unistd.h>

#include <fstream>
#include <string>

#include "package/served_app.h"

namespace qv::package_testing {
namespace {

namespace sfs = std::filesystem;
using cli_testing::Has;

class ChinookApp : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    // CTest runs each test of this file as its own process, side by side: one folder each.
    dir_ = new sfs::path(cli_testing::FreshDir("package-chinook-" + std::to_string(getpid())));
    const sfs::path& dir = *dir_;
    using cli_testing::Quorvex;
    const std::string chinook = std::string(QV_SHARED_DATA) + "/sqlite/chinook.sqlite";
    ASSERT_EQ(Quorvex(dir, {"new", "app.qvp", "--db", "sqlite:" + chinook}).status, 0);
    // A lookup, a field's own values, a money format and editing in the list.
    ASSERT_EQ(Quorvex(dir, {"set", "app.qvp", "--table", "Track", "--field", "AlbumId",
                            "FldHtmlTag=SELECT", "FldTagLnkTbl=Album", "FldTagLnkFld=AlbumId",
                            "FldTagLnkDisplay=Title"})
                  .status,
              0);
    ASSERT_EQ(Quorvex(dir, {"set", "app.qvp", "--table", "Track", "--field", "MediaTypeId",
                            "FldHtmlTag=RADIO", "FldTagValues=\"1\",\"MPEG\"\r\n\"2\",\"AAC\""})
                  .status,
              0);
    ASSERT_EQ(Quorvex(dir, {"set", "app.qvp", "--table", "Track", "--field", "UnitPrice",
                            "FldFmtType=Currency", "FldNumDigits=2"})
                  .status,
              0);
    ASSERT_EQ(Quorvex(dir, {"set", "app.qvp", "--table", "Track", "TblInlineEdit=True"}).status, 0);
    // A lookup that follows another field: representatives of the customer's country.
    ASSERT_EQ(Quorvex(dir, {"set", "app.qvp", "--table", "Customer", "--field", "SupportRepId",
                            "FldHtmlTag=SELECT", "FldTagLnkTbl=Employee", "FldTagLnkFld=EmployeeId",
                            "FldTagLnkDisplay=LastName", "FldParentSelect=Country",
                            "FldSelectFilterFld=Country"})
                  .status,
              0);
    ASSERT_EQ(
        Quorvex(dir, {"set", "app.qvp", "--table", "Customer", "--field", "Country", "FldEdit=0"})
            .status,
        0);
    // The user's code file replaces the footer of the layout.
    std::ofstream(dir / "user.vbs") << "Function USER_qvFooter(text)\r\n"
                                       "  USER_qvFooter = \"Chinook &amp; \" & text\r\n"
                                       "End Function\r\n";
    const sfs::path settings = dir / "home/.config/quorvex/settings";
    std::string tree = cli_testing::Slurp(settings);
    const size_t at = tree.find("USERCODE = ");
    ASSERT_NE(at, std::string::npos);
    tree.replace(at, tree.find('\n', at) - at,
                 "USERCODE = \"" + (dir / "user.vbs").string() + "\"");
    std::ofstream(settings) << tree;
    const cli_testing::Run run =
        Quorvex(dir, {"generate", "app.qvp", "--dest", "site", "--overwrite", "all"});
    ASSERT_EQ(run.status, 0) << run.err;
    app_ = new ServedApp(*dir_ / "site");
  }
  static void TearDownTestSuite() {
    delete app_;
    delete dir_;
  }
  static inline sfs::path* dir_ = nullptr;
  static inline ServedApp* app_ = nullptr;
};

TEST_F(ChinookApp, EveryPageAnswersAndListsPageSortAndSearch) {
  for (const char* file : {"default.asp", "inc/db.inc", "inc/qvlib.inc", "app.css", "js/qv.js",
                           "images/logo.svg", "chinook.sqlite", "Tracklist.asp",
                           "InvoiceLineview.asp", "PlaylistTrackedit.asp", "Genredelete.asp"}) {
    EXPECT_TRUE(sfs::exists(*dir_ / "site" / file)) << file;
  }
  // The application reaches its own copy of the database, by a path from its root.
  EXPECT_TRUE(
      Has(cli_testing::Slurp(*dir_ / "site/inc/db.inc"), "Server.MapPath(\"chinook.sqlite\")"));

  size_t visited = 0;
  const std::vector<std::string> failures = Crawl(*app_, visited);
  EXPECT_TRUE(failures.empty()) << failures.size() << " failed, first: " << failures.front();
  EXPECT_GT(visited, 120u);

  Reply r = app_->Get("/Tracklist.asp");
  EXPECT_TRUE(Has(r.body, "Records 1 to 20 of 3503")) << r.body;
  EXPECT_TRUE(Has(r.body, "<small class=\"qvKind\">Tables</small>"));
  EXPECT_TRUE(Has(r.body, "<footer class=\"qvFooter\">Chinook &amp; Made with Quorvex</footer>"));
  // The lookup's display through one join, the values' labels, the money format.
  EXPECT_TRUE(Has(r.body, "data-label=\"Album Id\">Balls to the Wall<"));
  EXPECT_TRUE(Has(r.body, "data-label=\"Media Type Id\">AAC<"));
  EXPECT_TRUE(Has(r.body, "data-label=\"Unit Price\">$0.99<"));
  r = app_->Get("/Trackedit.asp?key=2");
  EXPECT_TRUE(Has(r.body, "<option value=\"2\" selected>Balls to the Wall</option>"));
  EXPECT_TRUE(Has(r.body, "value=\"2\" checked required> AAC"));
  // Editing in place: the row's controls belong to the form that posts to the edit page.
  r = app_->Get("/Tracklist.asp?edit=2");
  EXPECT_TRUE(Has(r.body, "<input form=\"qvInline\" type=\"text\" id=\"qv_x_Name\""));
  EXPECT_TRUE(Has(r.body, "<form id=\"qvInline\" method=\"post\" action=\"Trackedit.asp\">"));
  EXPECT_TRUE(Has(r.body, "href=\"Trackadd.asp?copy=1\""));
  r = app_->Get("/Tracklist.asp?start=3501&size=ALL");
  EXPECT_TRUE(Has(r.body, "Records 1 to 3503 of 3503"));
  r = app_->Get("/Tracklist.asp?start=3501");
  EXPECT_TRUE(Has(r.body, "Records 3501 to 3503 of 3503"));
  const std::regex first_name(R"re(data-label="Name">([^<]+)<)re");
  std::smatch up, down;
  const std::string ascending = app_->Get("/Tracklist.asp?order=x_Name&dir=ASC").body;
  const std::string descending = app_->Get("/Tracklist.asp?order=x_Name&dir=DESC").body;
  ASSERT_TRUE(std::regex_search(ascending, up, first_name));
  ASSERT_TRUE(std::regex_search(descending, down, first_name));
  EXPECT_LT(up[1].str(), down[1].str());
  EXPECT_TRUE(Has(descending, "&#9660;"));
  // The search text is a parameter: quotes and wildcards find nothing and break nothing.
  r = app_->Get("/Artistlist.asp?q=AC%2FDC");
  EXPECT_TRUE(Has(r.body, "Records 1 to 1 of 1"));
  r = app_->Get("/Artistexport.asp?q=AC%2FDC&export=csv");
  EXPECT_EQ(r.Header("Content-Type").substr(0, 8), "text/csv");
  EXPECT_EQ(r.body, "Artist Id,Name\r\n1,AC/DC\r\n");
  r = app_->Get("/Artistlist.asp?q=%27%20OR%201%3D1%20--");
  EXPECT_TRUE(Has(r.body, "No records match your search.")) << r.body;
  EXPECT_FALSE(Broken(r));
  // Keys of two columns, and keys that fit no record.
  EXPECT_TRUE(Has(app_->Get("/PlaylistTrackview.asp?key=1,3402").body, "3402"));
  r = app_->Get("/Trackview.asp?key=abc");
  EXPECT_EQ(r.status, 404);
  EXPECT_TRUE(Has(r.body, "The record was not found."));
  EXPECT_EQ(app_->Get("/PlaylistTrackview.asp?key=1").status, 404);
}

TEST_F(ChinookApp, AddRefuseEditCopyDeleteAGenre) {
  Reply form = app_->Get("/Genreadd.asp");
  const std::string token = TokenOf(form.body);
  ASSERT_EQ(token.size(), 32u);
  EXPECT_TRUE(std::regex_match(token, std::regex("[A-Za-z0-9]+")));

  // Without the session's token nothing is written.
  Reply r = app_->Post("/Genreadd.asp", "qvtoken=forged&x_Name=Forged");
  EXPECT_TRUE(Has(r.body, "The form has expired.")) << r.body;

  // Script in a value is stored as typed and shown as text.
  r = app_->Post("/Genreadd.asp", "qvtoken=" + token + "&x_Name=%3Cscript%3Ex%3C%2Fscript%3E+Jazz");
  ASSERT_EQ(r.status, 302) << r.body;
  EXPECT_EQ(r.Header("Location"), "Genrelist.asp");
  r = app_->Get("/Genrelist.asp?q=jazz");
  EXPECT_TRUE(Has(r.body, "The record was added."));
  EXPECT_TRUE(Has(r.body, "&lt;script&gt;x&lt;/script&gt; Jazz"));
  EXPECT_FALSE(Has(r.body, "<script>x"));
  std::smatch m;
  ASSERT_TRUE(std::regex_search(r.body, m, std::regex(R"(Genreedit\.asp\?key=(\d+))")));
  const std::string key = m[1].str();

  // A refused save keeps what was typed and says why beside the field.
  r = app_->Post("/Genreedit.asp",
                 "qvtoken=" + token + "&key=" + key + "&x_Name=" + std::string(121, 'x'));
  EXPECT_EQ(r.status, 200);
  EXPECT_TRUE(Has(r.body, "Please correct the marked fields."));
  EXPECT_TRUE(Has(r.body, "Name may have at most 120 characters.")) << r.body;
  r = app_->Post(
      "/Trackedit.asp",
      "qvtoken=" + token + "&key=5&x_Name=Kept&x_MediaTypeId=x&x_Milliseconds=1&x_UnitPrice=");
  EXPECT_TRUE(Has(r.body, "value=\"Kept\""));
  EXPECT_TRUE(Has(r.body, "Please enter Unit Price."));
  EXPECT_TRUE(Has(r.body, "Media Type Id must be a whole number."));

  // The server holds a dependent lookup to its parent's choice as the browser does.
  const std::string customer =
      "qvtoken=" + token + "&x_FirstName=Ann&x_LastName=Lee&x_Email=a%40b.c";
  r = app_->Post("/Customeradd.asp", customer + "&x_Country=USA&x_SupportRepId=3");
  EXPECT_TRUE(Has(r.body, "Support Rep Id is not valid.")) << r.body;
  EXPECT_TRUE(Has(app_->Get("/Customerlist.asp?q=Lee").body, "No records match"));
  EXPECT_EQ(app_->Post("/Customeradd.asp", customer + "&x_Country=Canada&x_SupportRepId=3").status,
            302);
  EXPECT_EQ(app_->Post("/Customeradd.asp", customer + "&x_Country=&x_SupportRepId=3").status, 302);
  // Where the edit form leaves the parent out, the record's own value holds the lookup: on the
  // server, and in the browser through a stand-in that is never sent.
  const std::string rep = "qvtoken=" + token +
                          "&x_FirstName=Jennifer&x_LastName=Peterson&x_Email=j%40r.ca"
                          "&x_SupportRepId=3&key=";
  EXPECT_TRUE(Has(app_->Post("/Customeredit.asp", rep + "1").body, "Support Rep Id is not valid."));
  EXPECT_EQ(app_->Post("/Customeredit.asp", rep + "15").status, 302);
  EXPECT_TRUE(Has(app_->Get("/Customeredit.asp?key=1").body,
                  "<input type=\"hidden\" id=\"qv_x_Country\" value=\"Brazil\">"));

  r = app_->Post("/Genreedit.asp", "qvtoken=" + token + "&key=" + key + "&x_Name=Cool+Jazz");
  EXPECT_EQ(r.status, 302);
  EXPECT_TRUE(Has(app_->Get("/Genreview.asp?key=" + key).body, "Cool Jazz"));

  // A copy starts from the record's values and becomes a record of its own.
  EXPECT_TRUE(Has(app_->Get("/Genreadd.asp?copy=" + key).body, "value=\"Cool Jazz\""));
  r = app_->Post("/Genreadd.asp?copy=" + key, "qvtoken=" + token + "&x_Name=Cool+Jazz+2");
  EXPECT_EQ(r.status, 302);
  r = app_->Get("/Genrelist.asp?q=cool");
  EXPECT_TRUE(Has(r.body, "Records 1 to 2 of 2"));
  std::vector<std::string> keys;
  const std::regex delete_link(R"(Genredelete\.asp\?key=(\d+))");
  for (auto it = std::sregex_iterator(r.body.begin(), r.body.end(), delete_link);
       it != std::sregex_iterator(); ++it)
    keys.push_back((*it)[1].str());
  ASSERT_EQ(keys.size(), 2u);

  // Delete asks first; a GET deletes nothing, the confirming POST deletes both.
  r = app_->Get("/Genredelete.asp?key=" + keys[0] + "&key=" + keys[1]);
  EXPECT_TRUE(Has(r.body, "Do you really want to delete the selected records?"));
  EXPECT_TRUE(Has(app_->Get("/Genrelist.asp?q=cool").body, "of 2"));
  r = app_->Post("/Genredelete.asp",
                 "qvtoken=" + token + "&qvconfirm=1&key=" + keys[0] + "&key=" + keys[1]);
  EXPECT_EQ(r.status, 302);
  r = app_->Get("/Genrelist.asp?q=cool");
  EXPECT_TRUE(Has(r.body, "2 records were deleted."));
  EXPECT_TRUE(Has(r.body, "No records match your search."));
}

}  // namespace
}  // namespace qv::package_testing
