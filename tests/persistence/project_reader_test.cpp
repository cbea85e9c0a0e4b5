// Load: the round trip, what the reader derives instead of trusting the file, its skipping
// rules, the failures that end in the product's words without touching the file, the check
// against the live database when AutoSync is on, and progress.
#include <gtest/gtest.h>

#include <string>

#include "persistence/load_sync_check.h"
#include "persistence/project_file.h"
#include "project_fixture.h"
#include "support/temp_file.h"

namespace qv::testing {
namespace {

using LoadTest = ProjectFileTest;

constexpr const char* kHead = "<?xml version=\"1.0\" encoding=\"utf-8\" standalone=\"yes\"?>\r\n";

// A project file around `body`, with AutoSync off unless the body's project says otherwise.
std::string ProjectText(const std::string& project_attributes, const std::string& body) {
  return std::string(kHead) + "<Project Version=\"5.3.0.1\" " + project_attributes + ">\r\n" +
         body + "</Project>\r\n";
}

TyxTable& TableOf(Tyx& tyx, StringView name) {
  TyxTable* t = tyx.db()->Tables().list().ByKey(name);
  if (!t) throw std::runtime_error("no table " + String(name).ToUtf8());
  return *t;
}
TyxField& FieldOf(Tyx& tyx, StringView table, StringView name) {
  TyxField* f = TableOf(tyx, table).Fields().list().ByKey(name);
  if (!f) throw std::runtime_error("no field " + String(name).ToUtf8());
  return *f;
}

TEST_F(LoadTest, SmallProjectSurvivesSaveLoadSaveByteForByte) {
  BuildSmallProject(*tyx_);
  const String first = PathOf("first.qvp");
  SaveProjectFile(*tyx_, first);

  const Ref<Tyx> reopened = FreshRoot();
  LoadProjectFile(*reopened, first);
  ASSERT_EQ(reopened->ProjErr().ToUtf8(), "");
  const String second = PathOf("second.qvp");
  SaveProjectFile(*reopened, second);
  EXPECT_EQ(FirstDifference(Bytes(second), Bytes(first)), "");

  // The values come back in their types, the escaped ones decoded.
  EXPECT_EQ(reopened->ProjName(), u"Shop & <Co> \"Online\"");
  EXPECT_EQ(reopened->Properties().Find(u"RecPerPage")->Value().type(), VarType::Integer);
  EXPECT_EQ(reopened->Properties().Find(u"ExportCsv")->Value().type(), VarType::Boolean);
  EXPECT_EQ(reopened->Extensions().Seq(1)->Name(), u"Audit");
  EXPECT_EQ(FieldOf(*reopened, u"Customers", u"Active").FldTagValues(),
            u"\"1\",\"Yes\"\r\n\"0\",\"No\"");
  EXPECT_EQ(FieldOf(*reopened, u"Order Details", u"Note \"A&B\"").FldDefault().as_string(),
            u"<none>");
  EXPECT_EQ(reopened->DBCnt(), 1);
}

TEST_F(LoadTest, DerivedValuesReplaceWhatTheFileSays) {
  const std::string text = ProjectText(
      "ProjName=\"p\" SQLQuote=\"\" defaultDateFormat=\"7\" AutoSync=\"0\" Unknown=\"x\" ",
      "<Database DBName=\"acc\" DBDBMSName=\"ACCESS\" DBQuoteS=\"{\" DBQuoteE=\"}\" "
      "SecDefault=\"Admin\" >\r\n"
      "<Table TblSeq=\"2\" TblName=\"Order Lines\" TblKey=\"wrong\" TblVar=\"kept?\" >\r\n"
      "<Field FldSeq=\"1\" FldName=\"b\" FldType=\"3\" FldIsPrimaryKey=\"1\" FldQuoteS=\"x\" "
      "FldQuoteE=\"x\" FldAutoIncrement=\"1\" FldAdd=\"1\" FldErrMsg=\"one\r\ntwo\tthree\" />\r\n"
      "<Field FldSeq=\"2\" FldName=\"a%b\" FldType=\"7\" FldIsPrimaryKey=\"True\" FldQuoteS=\"x\" "
      "FldQuoteE=\"x\" FldAdd=\"1\" FldTagValues=\"&quot;1&quot;|&quot;2&quot;|\" />\r\n"
      "<Field FldSeq=\"3\" FldName=\"blob\" FldType=\"128\" FldQuoteS=\"x\" FldQuoteE=\"y\" />\r\n"
      "</Table>\r\n"
      "<Table TblSeq=\"1\" TblName=\"2nd\" >\r\n</Table>\r\n"
      "</Database>\r\n");
  const String path = PathOf("derived.qvp");
  WriteBytes(path, text);
  LoadProjectFile(*tyx_, path);
  ASSERT_EQ(tyx_->ProjErr().ToUtf8(), "");

  // The file's sequence numbers win over the order of the elements.
  const Ref<TyxDatabase> db = tyx_->db();
  EXPECT_EQ(db->Tables().Seq(1)->TblName(), u"2nd");
  EXPECT_EQ(db->Tables().Seq(2)->TblName(), u"Order Lines");

  // Variable names, field quotes by type and DBMS, the auto-increment rule, table keys.
  TyxTable& lines = TableOf(*tyx_, u"Order Lines");
  EXPECT_EQ(lines.TblVar(), u"Order_Lines");
  EXPECT_EQ(TableOf(*tyx_, u"2nd").TblVar(), u"x2nd");
  EXPECT_EQ(lines.TblKey(), u"a%b,b");
  TyxField& b = FieldOf(*tyx_, u"Order Lines", u"b");
  TyxField& ab = FieldOf(*tyx_, u"Order Lines", u"a%b");
  TyxField& blob = FieldOf(*tyx_, u"Order Lines", u"blob");
  EXPECT_EQ(b.FldVar(), u"x_b");
  EXPECT_EQ(ab.FldVar(), u"x_a25b");
  EXPECT_EQ(b.FldQuoteS(), u"");
  EXPECT_EQ(ab.FldQuoteS(), u"#");  // a date on Access
  EXPECT_EQ(ab.FldQuoteE(), u"#");
  EXPECT_EQ(blob.FldQuoteS(), u"x");  // a type the rule does not list keeps the file's pair
  EXPECT_EQ(blob.FldQuoteE(), u"y");
  EXPECT_FALSE(b.FldAdd());
  EXPECT_TRUE(ab.FldAdd());
  // Line breaks: FldTagValues' bars come back as CR LF; elsewhere the parser made blanks.
  EXPECT_EQ(ab.FldTagValues(), u"\"1\"\r\n\"2\"\r\n");
  EXPECT_EQ(b.FldErrMsg(), u"one two three");

  // The database's quotes come from SQLQuote and the DBMS, and the shared copies are fresh.
  EXPECT_EQ(db->DBQuoteS(), u"[");
  EXPECT_EQ(db->DBQuoteE(), u"]");
  const TyxVars& vars = Vars();
  EXPECT_EQ(vars.CurrentDbmsName, u"ACCESS");
  EXPECT_EQ(vars.DefaultDateFormat, 7);
  EXPECT_EQ(vars.SecDefault, u"Admin");
  EXPECT_EQ(vars.SqlQuoteStyle, u"");
  // No mail server in the file: the load fills in the local one.
  EXPECT_EQ(tyx_->SmtpServer(), u"localhost");
  EXPECT_EQ(tyx_->SmtpServerPort(), 25);

  // A server in the file stays; a date format that is no number leaves the shared copy 0.
  const Ref<Tyx> other = FreshRoot();
  WriteBytes(path, ProjectText("SmtpServer=\"mx\" SmtpServerPort=\"2525\" SQLQuote=\"Backquote\" "
                               "defaultDateFormat=\"abc\" AutoSync=\"0\" ",
                               "<Database DBName=\"\" DBDBMSName=\"MySQL\" />\r\n"));
  LoadProjectFile(*other, path);
  ASSERT_EQ(other->ProjErr().ToUtf8(), "");
  EXPECT_EQ(other->SmtpServer(), u"mx");
  EXPECT_EQ(other->SmtpServerPort(), 2525);
  EXPECT_EQ(vars.DefaultDateFormat, 0);
  EXPECT_EQ(other->CurrentDbName, u"qv_db");  // an empty DBName
  EXPECT_EQ(other->db()->DBQuoteS(), u"`");
}

TEST_F(LoadTest, SkippingAndMatchingRules) {
  // The host may extend the root's bag; "js" is kept only when it names an existing file.
  const std::string existing = (home_.root() / "extra.js").string();
  ScratchHome::Write(existing, "// script");
  tyx_->Properties().Add(u"js");
  tyx_->Properties().Find(u"js")->SetValue(Variant(u"before"));
  const std::string text = ProjectText(
      "ProjName=\"p\" projname=\"lower\" AutoSync=\"0\" js=\"/no/such/file.js\" ",
      "<Extension Seq=\"1\" Name=\"E\" Template=\"one\" />\r\n"
      "<Extension Template=\"nameless\" />\r\n"
      "<Extension Seq=\"1\" Name=\"E\" Template=\"two\" />\r\n"
      "<Database DBName=\"d\" >\r\n"
      "<Table TblName=\"A\" TblCaption=\"First A\" tblcaption=\"ignored\" FldName=\"x\" >\r\n"
      "<Field FldName=\"f1\" FldType=\"abc\" FldBold=\"Yes\" FldTagSize=\"99999\" />\r\n"
      "<Field fldname=\"wrong case\" />\r\n"
      "<Field FldName=\"\" />\r\n"
      "<Field FldName=\"f1\" FldCaption=\"duplicate\" />\r\n"
      "</Table>\r\n"
      "<Table TblCaption=\"no name\" >\r\n<Field FldName=\"orphan\" />\r\n</Table>\r\n"
      "<Table TblName=\"\" >\r\n<Field FldName=\"orphan2\" />\r\n</Table>\r\n"
      "<Table TblName=\"A\" TblCaption=\"Second A\" >\r\n<Field FldName=\"f2\" />\r\n</Table>\r\n"
      "<Other TblName=\"B\" />\r\n"
      "</Database>\r\n");
  const String path = PathOf("rules.qvp");
  WriteBytes(path, text);
  LoadProjectFile(*tyx_, path);
  ASSERT_EQ(tyx_->ProjErr().ToUtf8(), "");

  EXPECT_EQ(tyx_->ProjName(), u"p");  // "projname" matches nothing
  EXPECT_EQ(tyx_->Properties().Find(u"js")->Value().as_string(), u"before");
  // An extension read twice is one entry with the later attributes; one without a name is
  // skipped.
  ASSERT_EQ(tyx_->Extensions().Count(), 1);
  EXPECT_EQ(tyx_->Extensions().Seq(1)->Template(), u"two");

  // One table: the nameless ones are skipped with their fields, the duplicate is skipped
  // whole (its fields too), and an unknown element is no table.
  TyxTables& tables = tyx_->db()->Tables();
  ASSERT_EQ(tables.Count(), 1);
  TyxTable& a = TableOf(*tyx_, u"A");
  EXPECT_EQ(a.TblCaption(), u"First A");
  ASSERT_EQ(a.Fields().Count(), 1);
  TyxField& f1 = FieldOf(*tyx_, u"A", u"f1");
  EXPECT_EQ(f1.FldCaption(), u"");
  // Values that do not convert are stored empty, without an error.
  EXPECT_TRUE(f1.Properties().Find(u"FldType")->Value().is_empty());
  EXPECT_TRUE(f1.Properties().Find(u"FldBold")->Value().is_empty());
  EXPECT_TRUE(f1.Properties().Find(u"FldTagSize")->Value().is_empty());

  // With a file that exists, "js" is stored.
  const Ref<Tyx> other = FreshRoot();
  other->Properties().Add(u"js");
  WriteBytes(path,
             ProjectText("AutoSync=\"0\" js=\"" + existing + "\" ", "<Database DBName=\"d\"/>"));
  LoadProjectFile(*other, path);
  ASSERT_EQ(other->ProjErr().ToUtf8(), "");
  EXPECT_EQ(other->Properties().Find(u"js")->Value().as_string(), String::FromUtf8(existing));
}

TEST_F(LoadTest, FailuresEndInTheProductsWordsAndNeverTouchTheFile) {
  const std::u16string failed = u"Quorvex: Load Project File failed! Please check!";
  const std::u16string invalid = u"Quorvex: Invalid Project File!";
  const std::u16string no_db = u"Quorvex: No Database Information in Project File!";
  BuildSmallProject(*tyx_);
  const String good = PathOf("good.qvp");
  SaveProjectFile(*tyx_, good);
  const std::string saved = Bytes(good);

  struct Case {
    const char* what;
    std::string bytes;
    std::u16string words;
  };
  const Case cases[] = {
      {"empty file", "", failed},
      {"not XML", "Project file, version 5.3", failed},
      {"truncated", saved.substr(0, saved.size() / 2), failed},
      {"root other than Project", std::string(kHead) + "<Projekt Version=\"5.3.0.1\"/>", invalid},
      {"other root, no Version", std::string(kHead) + "<Projekt/>", failed},
      {"no Version",
       std::string(kHead) + "<Project ProjName=\"x\"><Database DBName=\"d\"/></Project>", failed},
      {"older than 5.0",
       ProjectText("AutoSync=\"0\" ", "<Database DBName=\"d\"/>")
           .replace(std::string(kHead).size() + 18, 7, "4.9.0.0"),
       failed},
      {"no Database", ProjectText("AutoSync=\"0\" ", "<Extension Name=\"e\"/>"), no_db},
      {"Database without DBName", ProjectText("AutoSync=\"0\" ", "<Database DBType=\"ODBC\"/>"),
       failed},
      {"Table outside Database", ProjectText("AutoSync=\"0\" ", "<Table TblName=\"t\"/>"), failed},
  };
  for (const Case& c : cases) {
    const Ref<Tyx> root = FreshRoot();
    const String path = PathOf("bad.qvp");
    WriteBytes(path, c.bytes);
    root->SetProjErr(u"an earlier text");
    LoadProjectFile(*root, path);
    EXPECT_EQ(root->ProjErr(), String(c.words)) << c.what;
    EXPECT_EQ(Bytes(path), c.bytes) << c.what;
  }

  // A missing file, and a version given as one number, which compares equal to "5.0".
  const Ref<Tyx> root = FreshRoot();
  LoadProjectFile(*root, PathOf("no-such-file.qvp"));
  EXPECT_EQ(root->ProjErr(), String(failed));
  EXPECT_FALSE(std::filesystem::exists(home_.root() / "no-such-file.qvp"));
  WriteBytes(good, ProjectText("AutoSync=\"0\" ", "<Database DBName=\"d\"/>")
                       .replace(std::string(kHead).size() + 18, 7, "5"));
  LoadProjectFile(*root, good);
  EXPECT_EQ(root->ProjErr().ToUtf8(), "");
}

TEST_F(LoadTest, LoadingTwiceKeepsTheFirstDatabase) {
  BuildSmallProject(*tyx_);
  const String path = PathOf("twice.qvp");
  SaveProjectFile(*tyx_, path);
  const Ref<Tyx> root = FreshRoot();
  LoadProjectFile(*root, path);
  ASSERT_EQ(root->ProjErr().ToUtf8(), "");
  TableOf(*root, u"Customers").SetTblCaption(u"Changed");
  LoadProjectFile(*root, path);
  EXPECT_EQ(root->ProjErr(), u"support 1 db only!");
  EXPECT_EQ(root->db()->Tables().Count(), 2);
  EXPECT_EQ(TableOf(*root, u"Customers").TblCaption(), u"Changed");  // the table was skipped
  EXPECT_EQ(root->Extensions().Count(), 2);
}

TEST_F(LoadTest, AutoSyncRunsTheDatabaseCheckBeforeTheKeysAreRebuilt) {
  BuildSmallProject(*tyx_);
  const String path = PathOf("sync.qvp");
  SaveProjectFile(*tyx_, path);  // AutoSync is on in the small project

  int runs = 0;
  const Ref<Tyx> root = FreshRoot();
  LoadProjectFile(*root, path, [&](Tyx& tyx) {
    ++runs;
    EXPECT_EQ(tyx.db()->Tables().Count(), 2);  // the check sees the whole project
    FieldOf(tyx, u"Customers", u"Active").SetFldIsPrimaryKey(true);
    tyx.SetProjErr(u"Unable to load database information!");
  });
  EXPECT_EQ(runs, 1);
  EXPECT_EQ(root->ProjErr(), u"Unable to load database information!");
  EXPECT_EQ(TableOf(*root, u"Customers").TblKey(), u"Active,CustomerID");

  // Without a check of its own the load runs the stand-in, which finds nothing to merge.
  const Ref<Tyx> plain = FreshRoot();
  LoadProjectFile(*plain, path);
  EXPECT_EQ(plain->ProjErr().ToUtf8(), "");
  EXPECT_EQ(Vars().StatusTitle, u"Quorvex - Database Synchronization Check...");

  // AutoSync off: no check, keys still rebuilt.
  const Ref<Tyx> off = FreshRoot();
  const std::string text = Bytes(path);
  std::string changed = text;
  changed.replace(changed.find("AutoSync=\"1\""), 12, "AutoSync=\"0\"");
  changed.replace(changed.find("TblKey=\"CustomerID\""), 19, "TblKey=\"stale\"     ");
  WriteBytes(path, changed);
  runs = 0;
  LoadProjectFile(*off, path, [&](Tyx&) { ++runs; });
  EXPECT_EQ(runs, 0);
  EXPECT_EQ(off->ProjErr().ToUtf8(), "");
  EXPECT_EQ(TableOf(*off, u"Customers").TblKey(), u"CustomerID");
}

TEST_F(LoadTest, ProgressNamesEachTable) {
  BuildSmallProject(*tyx_);
  const String path = PathOf("progress.qvp");
  SaveProjectFile(*tyx_, path);
  TempFile out;
  Vars().Status = MakeRef<TyxStatus>(StatusMode::kPlain, out.get());
  const Ref<Tyx> root = FreshRoot();
  LoadProjectFile(*root, path);
  ASSERT_EQ(root->ProjErr().ToUtf8(), "");
  EXPECT_EQ(SharedStatus().handle(), 0);  // the window is closed again
  const std::string shown = out.Text();
  Vars().Status = MakeRef<TyxStatus>(StatusMode::kQuiet);
  EXPECT_NE(shown.find("Loading Project File..."), std::string::npos) << shown;
  EXPECT_LT(shown.find("Loading TABLE/VIEW \"Customers\"..."),
            shown.find("Loading TABLE/VIEW \"Order Details\"..."))
      << shown;
}

TEST_F(LoadTest, AccentedNamesInEveryDeclaredEncoding) {
  struct Case {
    const char* encoding;
    std::string table;
    std::string field;
  };
  const Case cases[] = {
      {"utf-8", "Cr\xC3\xA8me", "Pr\xC3\xA9sent\xE2\x82\xAC"},
      {"iso-8859-1", "Cr\xE8me", "Pr\xE9sent\xA4"},
      {"windows-1252", "Cr\xE8me", "Pr\xE9sent\x80"},
  };
  const std::u16string euro_or_sign[] = {u"\u20ac", u"\u00a4", u"\u20ac"};
  int i = 0;
  for (const Case& c : cases) {
    const std::string text =
        std::string("<?xml version=\"1.0\" encoding=\"") + c.encoding +
        "\" standalone=\"yes\"?>\r\n<Project Version=\"5.3.0.1\" AutoSync=\"0\" >\r\n"
        "<Database DBName=\"d\" >\r\n<Table TblName=\"" +
        c.table +
        "\" >\r\n"
        "<Field FldName=\"" +
        c.field +
        "\" FldIsPrimaryKey=\"1\" />\r\n"
        "</Table>\r\n</Database>\r\n</Project>\r\n";
    const String path = PathOf("enc.qvp");
    WriteBytes(path, text);
    const Ref<Tyx> root = FreshRoot();
    LoadProjectFile(*root, path);
    ASSERT_EQ(root->ProjErr().ToUtf8(), "") << c.encoding;
    const String field = u"Pr\u00e9sent" + String(euro_or_sign[i++]);
    TyxTable& table = TableOf(*root, u"Cr\u00e8me");
    EXPECT_EQ(table.TblVar(), u"CrE8me") << c.encoding;
    EXPECT_EQ(table.TblKey(), field) << c.encoding;
    EXPECT_EQ(FieldOf(*root, u"Cr\u00e8me", field).FldName(), field) << c.encoding;
  }
}

// A project of tables and fields with varied values survives save, load and save.
TEST_F(LoadTest, LargeGeneratedProjectRoundTrips) {
  tyx_->AddProj(u"Large");
  tyx_->SetSmtpServer(u"localhost");
  tyx_->SetSmtpServerPort(25);
  tyx_->Databases().Add(u"big");
  tyx_->CurrentDbName = u"big";
  const Ref<TyxDatabase> db = tyx_->db();
  db->SetDBDBMSName(u"Microsoft SQL Server");
  db->SetDBQuoteS(u"[");
  db->SetDBQuoteE(u"]");
  const AdoType types[] = {adInteger,  adVarWChar, adBoolean, adDate,         adLongVarWChar,
                           adCurrency, adGUID,     adBigInt,  adLongVarBinary};
  constexpr int kTables = 24;  // size is the benchmark's business; variety is this test's
  constexpr int kFields = 20;
  for (int t = kTables; t >= 1; --t) {  // the list order is the reverse of the user's order
    const String name = u"Table " + NumberText(t) + u" \u00e9&<>";
    db->Tables().Add(name);
    const Ref<TyxTable> table = db->Tables().Item(Variant(name));
    table->SetTblSeq(static_cast<int16_t>(kTables - t + 1));
    table->SetTblType(t % 7 == 0 ? u"VIEW" : u"TABLE");
    table->LoadTableDefault();
    String key;
    for (int f = 1; f <= kFields; ++f) {
      const String fname = u"Field_" + NumberText(f) + (f % 5 == 0 ? u" \"q\"" : u"");
      table->Fields().Add(fname);
      const Ref<TyxField> field = table->Fields().Item(Variant(fname));
      field->SetFieldSupport(types[(t + f) % 9]);
      field->SetFldSize(f * 10);
      field->SetFldIsPrimaryKey(f == 1 || (t % 3 == 0 && f == 2));
      field->SetFldAutoIncrement(f == 1 && t % 2 == 0);
      field->LoadFldDefault();
      field->SetFldSeq(static_cast<int16_t>(kFields - f + 1));
      if (field->FldIsPrimaryKey()) key = key.empty() ? fname : key + u"," + fname;
    }
    table->SetTblKey(SortKeyList(key));
  }
  const String first = PathOf("large1.qvp");
  SaveProjectFile(*tyx_, first);
  const Ref<Tyx> reopened = FreshRoot();
  LoadProjectFile(*reopened, first);
  ASSERT_EQ(reopened->ProjErr().ToUtf8(), "");
  EXPECT_EQ(reopened->db()->Tables().Count(), kTables);
  const String second = PathOf("large2.qvp");
  SaveProjectFile(*reopened, second);
  EXPECT_EQ(FirstDifference(Bytes(second), Bytes(first)), "");
}

}  // namespace
}  // namespace qv::testing
