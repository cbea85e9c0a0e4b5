// `quorvex generate` and `quorvex gencheck` end to end: a project from the Chinook database and a
// template package that the test writes, generated into a pinned tree, again with the same
// bytes, under each overwrite option, and with one setting changed.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include "cli/run_quorvex.h"
#include "generation/package_builder.h"

namespace qv::cli_testing {
namespace {

namespace sfs = std::filesystem;

const std::vector<testing::ZipEntry> kPackage = {
    {"control.xml",
     "<QuorvexControl date=\"2026/11/25\" version=\"5.3\" desc=\"Test\" author=\"Tests\">\r\n"
     " <control id=\"list\" type=\"table\" ifiles=\"list.htm\" ofile=\"list\" oext=\"*\"/>\r\n"
     " <control id=\"edit\" type=\"table\" ifiles=\"edit.htm\" ofile=\"edit\" oext=\"*\" "
     "ofolder=\"edit\" space=\"false\" cond=\"table/TblEdit/eq/True\"/>\r\n"
     " <control id=\"rpt\" type=\"report\" ifiles=\"rpt.htm\" ofile=\"rpt\" oext=\"*\">\r\n"
     "  <session type=\"key\" value=\"rows\"/>\r\n"
     " </control>\r\n"
     " <control id=\"key\" type=\"field\" ifiles=\"key.htm\" ofile=\"key\" oext=\"inc\" "
     "cond=\"field/FldIsPrimaryKey/eq/True\"/>\r\n"
     " <control id=\"home\" type=\"other\" ifiles=\"home.htm\" ofile=\"default\" oext=\"*\"/>\r\n"
     " <control id=\"cfg\" type=\"simple\" ifiles=\"cfg.htm\" ofile=\"web\" oext=\"config\"/>\r\n"
     " <control id=\"img\" type=\"copy\" ifiles=\"images/logo.gif\" ofolder=\"static\"/>\r\n"
     " <control id=\"js\" type=\"copy\" ifolder=\"js\"/>\r\n"
     "</QuorvexControl>\r\n"},
    {"list.htm",
     "<html><head><title><!--##=TABLE.TblCaption##--></title></head>\n\n<body>\n"
     "<!--## For Each f In TABLE.Fields ##-->\n"
     "<td><!--##=f.FldName##--></td>\n<!--## Next ##-->\n</body></html>\n"},
    {"rpt.htm", "<!--##session rows##-->rows<!--##/session##-->"},
    {"edit.htm", "\n\n  <%' edit <!--##=TABLE.TblName##--> %>\n"},
    {"key.htm", "<% key = \"<!--##=FIELD.FldName##-->\" %>"},
    {"home.htm", "<html><head></head><body><!--##=PROJ.ProjName##--></body></html>"},
    {"cfg.htm", "<configuration/>"},
    {"images/logo.gif", "GIF89a"},
    {"js/app.js", "var x = 1;"},
};

// An extension package: a table control of its own, the phrase its page shows and a function
// of its user code that the page calls.
const std::vector<testing::ZipEntry> kExtension = {
    {"control.xml",
     "<QuorvexControl date=\"2026/11/25\" version=\"5.3\" desc=\"Stamp\" author=\"Tests\">\r\n"
     " <control id=\"stamp\" type=\"table\" action=\"add\" ifiles=\"stamp.htm\" "
     "ofile=\"stamp\" oext=\"txt\"/>\r\n"
     "</QuorvexControl>\r\n"},
    {"stamp.htm", "<!--##@Stamped##--> <!--##=StampOf(TABLE.TblName)##-->"},
    {"usercode.vbs",
     "Function StampOf(name)\n  StampOf = \"[\" & UCase(name) & \"]\"\nEnd Function\n"},
    {"lang.xml",
     "<quorvex.language><phrase id=\"Stamped\" value=\"Made for\"/></quorvex.language>"},
};

// Every file below `root` with its bytes, by its path relative to `root`.
std::map<std::string, std::string> Tree(const sfs::path& root) {
  std::map<std::string, std::string> files;
  for (const auto& e : sfs::recursive_directory_iterator(root)) {
    if (e.is_regular_file())
      files[e.path().lexically_relative(root).generic_string()] = Slurp(e.path());
  }
  return files;
}

std::vector<std::string> Names(const std::map<std::string, std::string>& tree) {
  std::vector<std::string> names;
  for (const auto& [name, bytes] : tree)
    names.push_back(name);
  return names;
}

TEST(GenerateCommand, ChinookTreeTwiceThenWithAChangedSetting) {
  const sfs::path dir = FreshDir("generate");
  testing::WriteZip((dir / "pack.zip").string(), kPackage);
  testing::WriteZip((dir / "stamp.zip").string(), kExtension);
  const std::string chinook = std::string(QV_SHARED_DATA) + "/sqlite/chinook.sqlite";
  ASSERT_EQ(Quorvex(dir, {"new", "chin.qvp", "--db", "sqlite:" + chinook}).status, 0);
  ASSERT_EQ(
      Quorvex(dir, {"extension", "add", "chin.qvp", "Stamp", (dir / "stamp.zip").string()}).status,
      0);
  // Album, Artist and Genre only.
  for (const char* table : {"Customer", "Employee", "Invoice", "InvoiceLine", "MediaType",
                            "Playlist", "PlaylistTrack", "Track"}) {
    ASSERT_EQ(Quorvex(dir, {"set", "chin.qvp", "--table", table, "TblGen=False"}).status, 0);
  }
  ASSERT_EQ(Quorvex(dir, {"set", "chin.qvp", "--table", "Genre", "TblEdit=False"}).status, 0);

  const std::initializer_list<std::string> generate = {
      "generate", "chin.qvp", "--dest", "site", "--template", "pack.zip", "--refresh-template"};
  cli_testing::Run check =
      Quorvex(dir, {"gencheck", "chin.qvp", "--dest", "site", "--template", "pack.zip"});
  EXPECT_EQ(check.status, 0) << check.err;
  EXPECT_TRUE(Has(check.out, "No existing output would be touched")) << check.out;
  EXPECT_FALSE(sfs::exists(dir / "site"));

  cli_testing::Run run = Quorvex(dir, generate);
  ASSERT_EQ(run.status, 0) << run.err;
  EXPECT_TRUE(Has(run.out, "14 pages written, 3 files copied, 0 skipped, 0 backed up")) << run.out;
  EXPECT_TRUE(Has(run.err, "Quorvex - Generating ASP Scripts...")) << run.err;
  const auto first = Tree(dir / "site");
  const std::vector<std::string> expected = {"Album_AlbumIdkey.inc",
                                             "Albumlist.asp",
                                             "Albumstamp.txt",
                                             "Artist_ArtistIdkey.inc",
                                             "Artistlist.asp",
                                             "Artiststamp.txt",
                                             "Genre_GenreIdkey.inc",
                                             "Genrelist.asp",
                                             "Genrestamp.txt",
                                             "chin.css",
                                             "chinook.sqlite",
                                             "default.asp",
                                             "edit/Albumedit.asp",
                                             "edit/Artistedit.asp",
                                             "js/app.js",
                                             "static/images/logo.gif",
                                             "upload/.quorvex-uploads",
                                             "web.config"};
  EXPECT_EQ(Names(first), expected);
  const std::string tag = "<meta name=\"generator\" content=\"Quorvex v";
  const std::string& list = first.at("Albumlist.asp");
  EXPECT_EQ(list.substr(0, list.find(tag)), "<html><head><title>Album</title>");
  EXPECT_TRUE(Has(list,
                  "</head>\r\n<body>\r\n<td>AlbumId</td>\r\n<td>Title</td>\r\n"
                  "<td>ArtistId</td>\r\n</body></html>\r\n"))
      << list;
  EXPECT_EQ(first.at("edit/Albumedit.asp"), "  <%' edit Album %>\r\n");
  EXPECT_EQ(first.at("Album_AlbumIdkey.inc"), "<% key = \"AlbumId\" %>\r\n");
  EXPECT_EQ(first.at("Genrestamp.txt"), "Made for [GENRE]\r\n");
  EXPECT_TRUE(Has(first.at("default.asp"), "</head><body>chin</body></html>"));
  EXPECT_EQ(first.at("chinook.sqlite"), Slurp(chinook));
  EXPECT_TRUE(Has(first.at("chin.css"), "--qv-font: Verdana"));

  // The project asks before overwriting; with nobody to answer, existing files are kept.
  run = Quorvex(dir, generate);
  ASSERT_EQ(run.status, 0) << run.err;
  EXPECT_TRUE(Has(run.out, "0 pages written")) << run.out;
  check = Quorvex(dir, {"gencheck", "chin.qvp", "--dest", "site", "--template", "pack.zip"});
  EXPECT_EQ(check.status, 1);

  // Overwrite all: the same bytes again, each old file kept as ".bak".
  run = Quorvex(dir, {"generate", "chin.qvp", "--dest", "site", "--template", "pack.zip",
                      "--overwrite", "all"});
  ASSERT_EQ(run.status, 0) << run.err;
  EXPECT_TRUE(Has(run.out, "14 pages written, 3 files copied, 0 skipped, 16 backed up")) << run.out;
  auto second = Tree(dir / "site");
  EXPECT_EQ(second.at("Albumlist.asp.bak"), first.at("Albumlist.asp"));
  std::erase_if(second, [](const auto& e) {
    return e.first.ends_with(".bak") || e.first.starts_with("js.bak/");
  });
  EXPECT_EQ(Names(second), Names(first));
  for (const auto& [name, bytes] : first)
    EXPECT_TRUE(second[name] == bytes) << name;

  // One setting changed: the naming rule puts "_" between the table's part and the page's.
  ASSERT_EQ(Quorvex(dir, {"set", "chin.qvp", "OutputNameExt=_"}).status, 0);
  run = Quorvex(dir, generate);
  ASSERT_EQ(run.status, 0) << run.err;
  EXPECT_TRUE(sfs::exists(dir / "site/Album_list.asp"));
  EXPECT_TRUE(sfs::exists(dir / "site/Album_AlbumId_key.inc"));
  EXPECT_EQ(Slurp(dir / "site/Album_list.asp"), first.at("Albumlist.asp"));
}

TEST(GenerateCommand, BadInputEndsWithTheEnginesWords) {
  const sfs::path dir = FreshDir("generate-bad");
  testing::WriteZip((dir / "pack.zip").string(), kPackage);
  const std::string chinook = std::string(QV_SHARED_DATA) + "/sqlite/chinook.sqlite";
  ASSERT_EQ(Quorvex(dir, {"new", "chin.qvp", "--db", "sqlite:" + chinook}).status, 0);

  cli_testing::Run run = Quorvex(dir, {"generate", "chin.qvp", "--template", "pack.zip"});
  EXPECT_EQ(run.status, 1);
  EXPECT_TRUE(Has(run.err, "Quorvex: No destination folder!")) << run.err;

  // A destination that is a file: a hard failure that names the path; the file stays.
  Quorvex(dir, {"version"});
  std::ofstream(dir / "taken") << "mine";
  run = Quorvex(dir, {"generate", "chin.qvp", "--dest", "taken", "--template", "pack.zip",
                      "--refresh-template"});
  EXPECT_EQ(run.status, 1);
  EXPECT_TRUE(Has(run.err, "/taken/upload/\" failed! Path not found (" + (dir / "taken").string() +
                               " is a file)\n"))
      << run.err;
  EXPECT_EQ(Slurp(dir / "taken"), "mine");
  // So is a documents folder that is a file: the work folder below it is named.
  run = Quorvex(dir, {"generate", "chin.qvp", "--dest", "site", "--template", "pack.zip"},
                "XDG_DOCUMENTS_DIR=" + (dir / "taken").string());
  EXPECT_EQ(run.status, 1);
  EXPECT_TRUE(Has(run.err, "Path not found: " + (dir / "taken").string() + "/Quorvex/Templates/"))
      << run.err;

  run = Quorvex(dir, {"gencheck", "chin.qvp", "--dest", "site", "--template", "none.zip"});
  EXPECT_EQ(run.status, 2);
  EXPECT_TRUE(Has(run.err, "Quorvex: Template file not found! Generation aborted!")) << run.err;
  run = Quorvex(dir, {"generate", "chin.qvp", "--dest", "site", "--overwrite", "maybe"});
  EXPECT_NE(run.status, 0);

  // A lookup of a table or column the project doesn't have stops the run before any page.
  for (const auto& [table, display, missing] :
       {std::tuple{"Artists", "Name", "the table Artists"},
        std::tuple{"artist", "Title", "the column Title of Artist"}}) {
    ASSERT_EQ(Quorvex(dir, {"set", "chin.qvp", "--table", "Album", "--field", "ArtistId",
                            std::string("FldTagLnkTbl=") + table, "FldTagLnkFld=ArtistId",
                            std::string("FldTagLnkDisplay=") + display})
                  .status,
              0);
    run = Quorvex(dir, {"generate", "chin.qvp", "--dest", "lookup", "--template", "pack.zip"});
    EXPECT_EQ(run.status, 1);
    EXPECT_TRUE(Has(run.err, std::string("Quorvex: The lookup of field ArtistId of Album names ") +
                                 missing + ", which the project doesn't have!"))
        << run.err;
    EXPECT_FALSE(sfs::exists(dir / "lookup" / "default.asp"));
  }
}

// The phrase ids of a language file of ours, with their texts.
std::map<std::string, std::string> Phrases(const sfs::path& file) {
  const std::string xml = Slurp(file);
  static const std::regex phrase(R"re(<phrase id="([^"]*)" value="([^"]*)"/>)re");
  std::map<std::string, std::string> phrases;
  for (std::sregex_iterator it(xml.begin(), xml.end(), phrase), end; it != end; ++it) {
    phrases[(*it)[1]] = (*it)[2];
  }
  return phrases;
}

TEST(GenerateCommand, LanguageOfOneRunAndTheShippedLanguages) {
  // Every shipped language says everything that English says: a missing phrase would show as
  // an empty label in the generated application.
  const sfs::path languages = sfs::path(QV_SOURCE_DIR) / "share/languages";
  const auto english = Phrases(languages / "English.xml");
  ASSERT_GT(english.size(), 50u);
  int others = 0;
  for (const auto& entry : sfs::directory_iterator(languages)) {
    if (entry.path().filename() == "English.xml") continue;
    ++others;
    auto phrases = Phrases(entry.path());
    for (const auto& [id, text] : english) {
      EXPECT_TRUE(phrases.contains(id)) << entry.path().filename() << " lacks " << id;
      EXPECT_TRUE(text.empty() || !phrases[id].empty()) << entry.path().filename() << ": " << id;
    }
    EXPECT_NE(phrases["LocaleId"], english.at("LocaleId")) << entry.path().filename();
  }
  EXPECT_GE(others, 1);

  const sfs::path dir = FreshDir("generate-language");
  testing::WriteZip(
      (dir / "pack.zip").string(),
      {{"control.xml",
        "<QuorvexControl date=\"2026/11/25\" version=\"5.3\" desc=\"Test\" author=\"Tests\">\n"
        " <control id=\"home\" type=\"other\" ifiles=\"home.htm\" ofile=\"default\" oext=\"*\">\n"
        "  <session type=\"key\" value=\"k\"/>\n </control>\n</QuorvexControl>\n"},
       {"home.htm",
        "<!--##session k##--><!--##@Home##--> <!--##@LocaleId##--><!--##/session##-->"}});
  const std::string chinook = std::string(QV_SHARED_DATA) + "/sqlite/chinook.sqlite";
  ASSERT_EQ(Quorvex(dir, {"new", "chin.qvp", "--db", "sqlite:" + chinook}).status, 0);
  const auto generate = [&](const std::string& language) {
    return Quorvex(dir, {"generate", "chin.qvp", "--dest", "site", "--template", "pack.zip",
                         "--overwrite", "all", "--language", language});
  };
  // Names are matched without regard to case; a change of language translates the pages anew.
  cli_testing::Run run = generate("german");
  ASSERT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(Slurp(dir / "site/default.asp"), "Startseite 1031\r\n");
  run = generate("English");
  ASSERT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(Slurp(dir / "site/default.asp"), "Home 1033\r\n");

  run = generate("Klingon");
  EXPECT_EQ(run.status, 1);
  EXPECT_TRUE(Has(run.err,
                  "Quorvex: Unknown language \"Klingon\"! Available languages: "
                  "English, German."))
      << run.err;
  EXPECT_EQ(Slurp(dir / "site/default.asp"), "Home 1033\r\n");
  run = generate("../languages/English");
  EXPECT_EQ(run.status, 1);
}

}  // namespace
}  // namespace qv::cli_testing
