// `quorvex script` and the editing commands end to end: host scripts that drive the project
// root and the library's classes, exit statuses and error reports, the global options, and
// set / defaults / extension on a real project file made from the Chinook sample.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>

#include "cli/run_quorvex.h"

namespace qv {
namespace {

using cli_testing::FreshDir;
using cli_testing::Has;
using cli_testing::Quorvex;
using cli_testing::Slurp;

const std::string kHostScripts = std::string(QV_SOURCE_DIR) + "/tests/host";
const std::string kChinook = std::string(QV_SHARED_DATA) + "/sqlite/chinook.sqlite";

void Write(const std::filesystem::path& file, const std::string& text) {
  std::ofstream(file, std::ios::binary) << text;
}

// A project file made from Chinook, as a user would start one.
std::filesystem::path ChinookProject(const std::filesystem::path& dir) {
  const auto made = Quorvex(dir, {"new", "app.qvp", "--db", "sqlite:" + kChinook});
  EXPECT_EQ(made.status, 0) << made.err;
  return dir / "app.qvp";
}

TEST(HostScript, DrivesTheProjectRootAndTheLibraryClasses) {
  const auto dir = FreshDir("host-root");
  const auto root = Quorvex(dir, {"--quiet", "script", kHostScripts + "/project_root.vbs",
                                  kHostScripts, kChinook, (dir / "shop.qvp").string()});
  EXPECT_EQ(root.status, 0) << root.out << root.err;
  EXPECT_EQ(root.out, "project root ok\n") << root.err;

  const auto classes =
      Quorvex(dir, {"script", kHostScripts + "/library_classes.vbs", kHostScripts});
  EXPECT_EQ(classes.status, 0) << classes.out << classes.err;
  EXPECT_EQ(classes.out, "library classes ok\n") << classes.err;

  // The project the script saved is one the other commands read.
  const auto shown = Quorvex(dir, {"show", "shop.qvp", "Invoice"});
  EXPECT_EQ(shown.status, 0) << shown.err;
  EXPECT_TRUE(Has(shown.out, "= Bills\n")) << shown.out;
}

TEST(HostScript, ExitStatusArgumentsAndErrorReports) {
  const auto dir = FreshDir("host-exit");
  Write(dir / "quit.vbs",
        "WScript.Echo WScript.Arguments.Count, WScript.Arguments(1)\n"
        "WScript.Quit 7\nWScript.Echo \"not reached\"\n");
  // Options after the file, even ones `quorvex` knows, belong to the script.
  const auto quit = Quorvex(dir, {"script", "quit.vbs", "--quiet", "two words"});
  EXPECT_EQ(quit.status, 7);
  EXPECT_EQ(quit.out, "2 two words\n");

  Write(dir / "fine.vbs", "Dim x\r\nx = 1\r\n");
  const auto fine = Quorvex(dir, {"script", "fine.vbs"});
  EXPECT_EQ(fine.status, 0) << fine.err;
  EXPECT_EQ(fine.out + fine.err, "");

  Write(dir / "runtime.vbs", "WScript.Echo \"before\"\nDim t\nt = \"a\" * 2\n");
  const auto runtime = Quorvex(dir, {"script", "runtime.vbs"});
  EXPECT_EQ(runtime.status, 1);
  EXPECT_EQ(runtime.out, "before\n");
  EXPECT_TRUE(Has(runtime.err, (dir / "runtime.vbs").string() +
                                   "(3, 1) Microsoft VBScript runtime error: Type mismatch"))
      << runtime.err;
  EXPECT_TRUE(Has(runtime.err, "    t = \"a\" * 2\n    Code: 800A000D\n")) << runtime.err;

  // A failure of the library reaches the script as a raised error with the engine's words.
  Write(dir / "library.vbs",
        "Set t = CreateObject(\"TyxClass.Tyx\")\nt.Load \"" + (dir / "none.qvp").string() +
            "\"\nIf t.ProjErr <> \"\" Then Err.Raise 1000, \"host\", t.ProjErr\n");
  const auto library = Quorvex(dir, {"script", "library.vbs"});
  EXPECT_EQ(library.status, 1);
  EXPECT_TRUE(Has(library.err, "(3, 25) host: Quorvex: Load Project File failed!")) << library.err;

  // A failure raised inside the library stops the script at the line that called it.
  Write(dir / "hard.vbs",
        "Set t = CreateObject(\"TyxClass.Tyx\")\nt.AddProj \"a\"\n"
        "t.Save \"" +
            (dir / "no" / "such" / "x.qvp").string() +
            "\"\n"
            "WScript.Echo \"not reached\"\n");
  const auto hard = Quorvex(dir, {"--quiet", "script", "hard.vbs"});
  EXPECT_EQ(hard.status, 1);
  EXPECT_TRUE(Has(hard.err, "hard.vbs(3, 1) Microsoft VBScript runtime error: Path not found\n"))
      << hard.err;
  EXPECT_TRUE(Has(hard.err, "    Code: 800A004C\n")) << hard.err;
  EXPECT_EQ(hard.out, "");
  EXPECT_FALSE(std::filesystem::exists(dir / "no")) << hard.err;

  for (const char* file : {"absent.vbs", "."}) {  // a folder is no script either
    const auto absent = Quorvex(dir, {"script", file});
    EXPECT_EQ(absent.status, 1);
    EXPECT_TRUE(Has(absent.err, "Can not find script file")) << absent.err;
  }
}

TEST(HostOptions, StandBeforeOrAfterTheCommand) {
  const auto dir = FreshDir("host-options");
  const std::string db = "sqlite:" + kChinook;
  // Progress goes to stderr unless --quiet, wherever the option stands; into a pipe only the
  // title of each stage, every line with --progress.
  const auto loud = Quorvex(dir, {"new", "a.qvp", "--db", db});
  ASSERT_EQ(loud.status, 0) << loud.err;
  EXPECT_TRUE(Has(loud.err, "Quorvex - Loading Database...")) << loud.err;
  EXPECT_FALSE(Has(loud.err, "Loading TABLE")) << loud.err;
  const auto every = Quorvex(dir, {"new", "e.qvp", "--db", db, "--progress"});
  ASSERT_EQ(every.status, 0) << every.err;
  EXPECT_TRUE(Has(every.err, "Loading TABLE")) << every.err;
  EXPECT_NE(Quorvex(dir, {"--quiet", "--progress", "new", "f.qvp", "--db", db}).status, 0);
  const auto after = Quorvex(dir, {"new", "b.qvp", "--quiet", "--db", db});
  ASSERT_EQ(after.status, 0) << after.err;
  EXPECT_EQ(after.err, "");
  const auto before = Quorvex(dir, {"--quiet", "--no-input", "--answer", "Yes", "--answer", "No",
                                    "new", "c.qvp", "--db", db});
  ASSERT_EQ(before.status, 0) << before.err;
  EXPECT_EQ(before.err, "");
  const auto mixed = Quorvex(dir, {"extension", "list", "--answer", "Yes", "a.qvp", "--no-input"});
  EXPECT_EQ(mixed.status, 0) << mixed.err;

  EXPECT_NE(Quorvex(dir, {"--answer"}).status, 0);
  EXPECT_NE(Quorvex(dir, {"--answer", "new", "d.qvp", "--db", db}).status, 0);
  EXPECT_FALSE(std::filesystem::exists(dir / "d.qvp"));
}

TEST(EditingCommands, SetChangesProjectTableAndFieldSettings) {
  const auto dir = FreshDir("host-set");
  const auto project = ChinookProject(dir);

  const auto set =
      Quorvex(dir, {"set", "app.qvp", "RecPerPage=40", "ExportCsv=true", "CSS=shop.css"});
  ASSERT_EQ(set.status, 0) << set.err;
  EXPECT_EQ(set.out, "RecPerPage = 40\nExportCsv = True\nCSS = shop.css\n");
  const auto table = Quorvex(dir, {"set", "app.qvp", "--table", "Invoice", "TblCaption=Bills"});
  ASSERT_EQ(table.status, 0) << table.err;
  const auto field = Quorvex(
      dir, {"set", "app.qvp", "--table", "Invoice", "--field", "Total", "FldCaption=Sum due"});
  ASSERT_EQ(field.status, 0) << field.err;
  const auto db = Quorvex(dir, {"set", "app.qvp", "--database", "SecUserLevelFld=Level"});
  EXPECT_EQ(db.out, "SecUserLevelFld = Level\n") << db.err;
  EXPECT_TRUE(Has(Slurp(project), "SecUserLevelFld=\"Level\""));

  EXPECT_TRUE(Has(Quorvex(dir, {"show", "app.qvp"}).out, "= shop.css\n"));
  EXPECT_TRUE(Has(Quorvex(dir, {"show", "app.qvp", "Invoice"}).out, "= Bills\n"));
  EXPECT_TRUE(Has(Quorvex(dir, {"show", "app.qvp", "Invoice", "Total"}).out, "= Sum due\n"));
  EXPECT_TRUE(Has(Quorvex(dir, {"show", "app.qvp", "--table", "Invoice", "--field", "Total"}).out,
                  "= Sum due\n"));
  EXPECT_TRUE(Has(Quorvex(dir, {"show", "app.qvp", "--field", "Total"}).err,
                  "Quorvex: --field needs --table!"));

  // Each failure names its cause, exits non-zero and leaves the file exactly as it was.
  const std::string before = Slurp(project);
  const struct {
    std::initializer_list<std::string> args;
    const char* words;
  } failures[] = {
      {{"set", "app.qvp", "RecPerPage=12", "Colour=red"},
       "Quorvex: Unknown setting Colour of the project!"},
      {{"set", "app.qvp", "RecPerPage=lots"}, "Quorvex: Cannot set RecPerPage of the project"},
      {{"set", "app.qvp", "AddProj=x"}, "Unknown setting AddProj"},
      {{"set", "app.qvp", "=x"}, "Expected NAME=VALUE"},
      {{"set", "app.qvp", "--table", "Nope", "TblCaption=x"}, "Table Nope not found!"},
      {{"set", "app.qvp", "--table", "Invoice", "--field", "Nope", "FldCaption=x"},
       "Field Nope not found in Invoice!"},
      {{"set", "app.qvp", "--field", "Total", "FldCaption=x"}, "--field needs --table"},
      {{"set", "app.qvp", "--database", "--table", "Invoice", "TblCaption=x"},
       "--database and --table can't go together!"},
      {{"set", "app.qvp", "--database", "TblCaption=x"},
       "Unknown setting TblCaption of the database"},
      {{"set", "missing.qvp", "CSS=x"}, "Quorvex: "},
      {{"set", "app.qvp", "--table", "Invoice", "TblSeq=99"},
       "TblSeq of table Invoice is its place in the list: give a number from 1 to 11, not '99'!"},
  };
  for (const auto& f : failures) {
    const auto run = Quorvex(dir, f.args);
    EXPECT_NE(run.status, 0) << f.words;
    ASSERT_TRUE(Has(run.err, f.words)) << run.err;
    // The error stands last, after a few stage titles at most: never drowned in progress.
    const size_t last_line = run.err.rfind('\n', run.err.size() - 2);
    EXPECT_TRUE(Has(run.err.substr(last_line == std::string::npos ? 0 : last_line), f.words))
        << run.err;
    EXPECT_LE(std::count(run.err.begin(), run.err.end(), '\n'), 4) << run.err;
  }
  EXPECT_EQ(Slurp(project), before);
  // A new place moves the tables between the old one and it, and the project still saves
  // every table, in the new order.
  ASSERT_EQ(Quorvex(dir, {"set", "app.qvp", "--table", "Track", "TblSeq=2"}).status, 0);
  const std::string order = Quorvex(dir, {"tables", "app.qvp"}).out;
  EXPECT_TRUE(Has(order, "\n1    Album ")) << order;
  EXPECT_TRUE(Has(order, "\n2    Track ")) << order;
  EXPECT_TRUE(Has(order, "\n3    Artist ")) << order;
  EXPECT_TRUE(Has(order, "\n11   PlaylistTrack ")) << order;

  // A project that loads tables on demand reads a table's fields when one of them is set.
  ASSERT_EQ(Quorvex(dir, {"new", "dyn.qvp", "--dynamic", "--db", "sqlite:" + kChinook}).status, 0);
  const auto dynamic =
      Quorvex(dir, {"set", "dyn.qvp", "--table", "Invoice", "--field", "Total", "FldCaption=Due"});
  ASSERT_EQ(dynamic.status, 0) << dynamic.err;
  EXPECT_TRUE(Has(Quorvex(dir, {"show", "dyn.qvp", "Invoice", "Total"}).out, "= Due\n"));
  EXPECT_NE(
      Quorvex(dir, {"set", "dyn.qvp", "--table", "Invoice", "--field", "Nope", "FldCaption=x"})
          .status,
      0);
  // ...and when generation is switched on for it, so that it has pages to generate; the
  // settings given with it stand.
  ASSERT_EQ(
      Quorvex(dir, {"set", "dyn.qvp", "--table", "Genre", "TblGen=1", "TblCaption=Styles"}).status,
      0);
  const std::string genre = Quorvex(dir, {"show", "dyn.qvp", "Genre"}).out;
  EXPECT_TRUE(Has(genre, "TblLoaded            = True\n")) << genre;
  EXPECT_TRUE(Has(genre, "TblCaption           = Styles\n")) << genre;
}

TEST(EditingCommands, ExtensionsAndSavedDefaults) {
  const auto dir = FreshDir("host-ext");
  ChinookProject(dir);
  ASSERT_EQ(Quorvex(dir, {"extension", "add", "app.qvp", "Charts", "/packs/charts.zip"}).status, 0);
  ASSERT_EQ(Quorvex(dir, {"extension", "add", "app.qvp", "Maps", "/packs/maps.zip"}).status, 0);
  ASSERT_EQ(Quorvex(dir, {"extension", "add", "app.qvp", "Charts", "/packs/c2.zip"}).status, 0);
  EXPECT_EQ(Quorvex(dir, {"extension", "list", "app.qvp"}).out,
            "Charts = /packs/c2.zip\nMaps = /packs/maps.zip\n");
  ASSERT_EQ(Quorvex(dir, {"extension", "remove", "app.qvp", "Charts"}).status, 0);
  EXPECT_EQ(Quorvex(dir, {"extension", "list", "app.qvp"}).out, "Maps = /packs/maps.zip\n");
  const auto gone = Quorvex(dir, {"extension", "remove", "app.qvp", "Charts"});
  EXPECT_NE(gone.status, 0);
  EXPECT_TRUE(Has(gone.err, "Quorvex: Extension Charts not found!")) << gone.err;
  EXPECT_NE(Quorvex(dir, {"extension", "add", "app.qvp", ""}).status, 0);
  EXPECT_NE(Quorvex(dir, {"extension"}).status, 0);
  // A shipped extension is found by its name alone; an unknown name says which there are.
  ASSERT_EQ(Quorvex(dir, {"extension", "add", "app.qvp", "api"}).status, 0);
  EXPECT_TRUE(Has(Quorvex(dir, {"extension", "list", "app.qvp"}).out, "api = api.zip\n"));
  const auto unknown = Quorvex(dir, {"extension", "add", "app.qvp", "nope"});
  EXPECT_NE(unknown.status, 0);
  EXPECT_TRUE(Has(unknown.err, "No extension \"nope\" is shipped!")) << unknown.err;
  EXPECT_TRUE(Has(unknown.err, "api")) << unknown.err;
  ASSERT_EQ(Quorvex(dir, {"extension", "remove", "app.qvp", "Maps"}).status, 0);
  // The second run reuses the scripts of the first, and checks the extension's files for that.
  for (int run = 1; run <= 2; ++run) {
    const auto generated =
        Quorvex(dir, {"generate", "app.qvp", "--dest", "site", "--overwrite", "all"});
    EXPECT_EQ(generated.status, 0) << "run " << run << ": " << generated.err;
  }
  EXPECT_TRUE(std::filesystem::exists(dir / "site" / "Albumapi.asp"));
  // A package named from the current folder is kept with its full path.
  std::filesystem::copy_file(dir / "site" / "default.asp", dir / "mine.zip");
  ASSERT_EQ(Quorvex(dir, {"extension", "add", "app.qvp", "Mine", "mine.zip"}).status, 0);
  EXPECT_TRUE(Has(Quorvex(dir, {"extension", "list", "app.qvp"}).out,
                  "Mine = " + (dir / "mine.zip").string() + "\n"));
  ASSERT_EQ(Quorvex(dir, {"extension", "remove", "app.qvp", "Mine"}).status, 0);
  ASSERT_EQ(Quorvex(dir, {"extension", "remove", "app.qvp", "api"}).status, 0);
  ASSERT_EQ(Quorvex(dir, {"extension", "add", "app.qvp", "Maps", "/packs/maps.zip"}).status, 0);

  // Saved defaults: a project's registry-backed settings and its extensions become what new
  // projects start from; settings that never go to the store stay out.
  ASSERT_EQ(
      Quorvex(dir, {"set", "app.qvp", "RecPerPage=33", "CSS=house.css", "SecType=Fixed"}).status,
      0);
  const auto saved = Quorvex(dir, {"defaults", "save", "app.qvp"});
  ASSERT_EQ(saved.status, 0) << saved.err;
  const auto shown = Quorvex(dir, {"defaults", "show"});
  ASSERT_EQ(shown.status, 0) << shown.err;
  EXPECT_TRUE(Has(shown.out, "[Settings]\n")) << shown.out;
  EXPECT_TRUE(Has(shown.out, "\nRecPerPage = 33\n")) << shown.out;
  EXPECT_TRUE(Has(shown.out, "\nCSS = house.css\n")) << shown.out;
  EXPECT_FALSE(Has(shown.out, "SecType")) << shown.out;
  EXPECT_TRUE(Has(shown.out, "[Extensions]\nMaps = /packs/maps.zip\n")) << shown.out;

  const auto fresh = Quorvex(dir, {"new", "next.qvp", "--db", "sqlite:" + kChinook});
  ASSERT_EQ(fresh.status, 0) << fresh.err;
  const auto next = Quorvex(dir, {"show", "next.qvp"});
  EXPECT_TRUE(Has(next.out, "= house.css\n")) << next.out;

  EXPECT_NE(Quorvex(dir, {"defaults", "save", "missing.qvp"}).status, 0);
}

// Charts live beside the project file, never in it: added with defaults, changed in place,
// refused with the reason for a wrong field or setting, listed, and removed (the last one
// takes the file with it).
TEST(EditingCommands, ChartsBesideTheProject) {
  const auto dir = FreshDir("host-charts");
  ChinookProject(dir);
  const auto project_before = Slurp(dir / "app.qvp");
  const auto added = Quorvex(dir, {"chart", "add", "app.qvp", "Invoice", "By country",
                                   "ChartXFldName=BillingCountry", "ChartYFldName=Total"});
  ASSERT_EQ(added.status, 0) << added.err;
  ASSERT_EQ(
      Quorvex(dir, {"chart", "add", "app.qvp", "Invoice", "By country", "ChartType=5"}).status, 0);
  ASSERT_EQ(
      Quorvex(dir, {"chart", "add", "app.qvp", "Genre", "Names", "ChartXFldName=Name"}).status, 0);
  EXPECT_EQ(Slurp(dir / "app.qvp"), project_before);
  const std::string file = Slurp(dir / "app.charts.xml");
  EXPECT_TRUE(Has(file, "<Table Name=\"Invoice\">")) << file;
  EXPECT_TRUE(Has(file, "ChartName=\"By country\"")) << file;
  const std::string listed = Quorvex(dir, {"chart", "list", "app.qvp"}).out;
  EXPECT_TRUE(Has(listed,
                  "Invoice / By country: ShowChart=True ChartXFldName=BillingCountry "
                  "ChartYFldName=Total ChartType=5 ChartWidth=600"))
      << listed;
  EXPECT_TRUE(Has(listed, "Genre / Names:")) << listed;

  const auto wrong_field =
      Quorvex(dir, {"chart", "add", "app.qvp", "Invoice", "X", "ChartXFldName=Nope"});
  EXPECT_TRUE(Has(wrong_field.err, "ChartXFldName: field Nope not found in Invoice!"))
      << wrong_field.err;
  const auto no_x = Quorvex(dir, {"chart", "add", "app.qvp", "Invoice", "Y"});
  EXPECT_TRUE(Has(no_x.err, "needs ChartXFldName")) << no_x.err;
  const auto bad =
      Quorvex(dir, {"chart", "add", "app.qvp", "Invoice", "By country", "ChartWidth=wide"});
  EXPECT_TRUE(Has(bad.err, "Cannot set ChartWidth to 'wide'")) << bad.err;
  EXPECT_TRUE(Has(Quorvex(dir, {"chart", "add", "app.qvp", "Invoice", "Z", "ChartVar=x"}).err,
                  "Unknown chart setting ChartVar!"));
  EXPECT_TRUE(
      Has(Quorvex(dir, {"chart", "add", "app.qvp", "Nope", "Z"}).err, "Table Nope not found!"));
  EXPECT_EQ(Slurp(dir / "app.charts.xml"), file);  // a refused change leaves the file alone

  std::ofstream(dir / "broken.charts.xml") << "<Other/>";
  std::filesystem::copy_file(dir / "app.qvp", dir / "broken.qvp");
  EXPECT_TRUE(Has(Quorvex(dir, {"chart", "list", "broken.qvp"}).err, "it is no charts file."));

  EXPECT_TRUE(Has(Quorvex(dir, {"chart", "remove", "app.qvp", "Invoice", "Nope"}).err,
                  "Chart Nope of Invoice not found!"));
  ASSERT_EQ(Quorvex(dir, {"chart", "remove", "app.qvp", "Invoice", "By country"}).status, 0);
  ASSERT_EQ(Quorvex(dir, {"chart", "remove", "app.qvp", "Genre", "Names"}).status, 0);
  EXPECT_FALSE(std::filesystem::exists(dir / "app.charts.xml"));
  EXPECT_EQ(Quorvex(dir, {"chart", "list", "app.qvp"}).out, "");
}
}  // namespace
}  // namespace qv
