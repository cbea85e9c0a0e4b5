// `quorvex new <project-file> --db <source>`: a new project from a live database. The source
// is a short URL (sqlite:file, odbc:DSN, access:file.mdb) or a raw connection string; the
// project is started (AddProj), the database loaded (LoadDB) and the file written (Save). A
// load that fails writes no file and leaves its words on stderr.
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "automation/error.h"
#include "cli/commands.h"
#include "cli/host_project.h"
#include "platform/data/connection.h"
#include "platform/data/connection_string.h"
#include "root/create_tyx.h"
#include "support/status.h"
#include "support/tyx_functions.h"
#include "support/tyx_vars.h"

namespace qv::cli {

namespace {

struct NewOptions {
  std::string project_file;
  std::string source;
  std::string user;
  std::string password;
  std::string schema;
  std::string name;
  std::string quote;
  bool dynamic = false;
  bool force = false;
};

// The nine arguments of Tyx.LoadDB. "odbc:NAME" names a data source whose user and password
// come from the options, "access:FILE" an Access file read through DAO (with --password for a
// protected file); everything else is a connection string once the short forms are expanded.
// An Access file is read from its physical path; its DBPath, the folder of the application
// that the generated pages find the copy in, stays empty: the copy goes beside the pages, as
// a SQLite file's does, not into the application below a copy of the source's own folders.
// A file named by a short URL is kept with its full path: the project is used from other
// folders than the one it was made in (check, sync and generate find the file, and the copy
// that goes with the application, from it).
std::string WithFullPath(const std::string& source) {
  for (const char* scheme : {"sqlite:", "access:"}) {
    const size_t n = std::char_traits<char>::length(scheme);
    if (source.rfind(scheme, 0) != 0) continue;
    const std::string file = source.substr(n);
    if (file.empty() || file == ":memory:") return source;
    std::error_code ec;
    const std::filesystem::path full = std::filesystem::absolute(file, ec).lexically_normal();
    return ec ? source : scheme + full.string();
  }
  return source;
}

std::vector<Variant> LoadDbArguments(const NewOptions& o) {
  const bool odbc = o.source.rfind("odbc:", 0) == 0;
  const bool access = o.source.rfind("access:", 0) == 0;
  const String rest = String::FromUtf8(WithFullPath(o.source).substr(odbc ? 5 : access ? 7 : 0));
  const StringView type = odbc ? u"ODBC" : access ? u"ACCESS" : u"CONNECTIONSTRING";
  return {
      Variant(odbc ? rest : String()),
      Variant(String(type)),
      Variant(String()),
      Variant(access ? rest : String()),
      Variant(false),
      Variant(String::FromUtf8(o.user)),
      Variant(String::FromUtf8(o.password)),
      Variant(odbc || access ? String() : data::ExpandShortUrl(rest)),
      Variant(String::FromUtf8(o.schema)),
  };
}

constexpr const char* kQuoteStyles[] = {"Double Quote", "Backquote", "Square Bracket",
                                        "Single Quote", "None"};

// The quotes a DBMS reads names in: names like keywords, mixed case and odd characters can
// then be read. Without a style of its own a source of the "other" kind gets no quotes at all.
String QuoteStyleOf(StringView dbms) {
  switch (DatabaseKind(dbms)) {
    case kDbAccess:
    case kDbSqlServer:
      return u"Square Bracket";
    case kDbMySql:
      return u"Backquote";
    default:
      break;
  }
  const std::string name = ToUpper(String(dbms)).ToUtf8();
  if (name.find("ACCESS") != std::string::npos || name.find("JET") != std::string::npos) {
    return u"Square Bracket";
  }
  return u"Double Quote";  // SQLite, PostgreSQL, Oracle and the SQL standard
}

// The DBMS behind the source, asked of the driver before the load; "" when it can't be
// reached (the load then reports why).
String ProbeDbmsName(const NewOptions& o, const std::vector<Variant>& args) {
  if (o.source.rfind("access:", 0) == 0) return u"ACCESS";
  if (o.source.rfind("sqlite:", 0) == 0) return u"SQLite";
  const bool odbc = o.source.rfind("odbc:", 0) == 0;
  try {
    data::Connection cn;
    const String name = ToString(args[0]);
    cn.Open(odbc ? u"dsn=" + name + u";uid=" + ToString(args[5]) + u";pwd=" + ToString(args[6])
                 : ToString(args[7]));
    const String dbms = ToString(cn.Properties(u"DBMS Name"));
    cn.Close();
    return dbms;
  } catch (const Error&) {
    return String();
  }
}

String ChooseQuoteStyle(const NewOptions& o, const std::vector<Variant>& args) {
  if (!o.quote.empty()) {
    for (const char* style : kQuoteStyles) {
      if (o.quote == style) return String::FromUtf8(o.quote);
    }
    FailWith(Vars().ProductTitle + u": --quote " + String::FromUtf8(o.quote) +
             u" is no quote style: use \"Double Quote\", \"Backquote\", \"Square Bracket\", "
             u"\"Single Quote\" or \"None\"");
  }
  const String dbms = ProbeDbmsName(o, args);
  return dbms.empty() ? String() : QuoteStyleOf(dbms);
}

// The tables and views whose columns could not be read, with the reason.
void ListUnreadable(const TyxDatabase& db, bool dynamic) {
  if (dynamic) return;  // only listed: nothing was read yet
  db.Tables().list().ForEach([](TyxTable& t) {
    std::string why;
    if (!t.TblLoaded()) {
      // The reader keeps no reason: name what refuses a query most often.
      why = t.TblType() == u"VIEW"
                ? "the database refused to read its columns (a view of a table that is gone, "
                  "or a name that needs another --quote style)"
                : "the database refused to read its columns (try another --quote style)";
    } else if (!t.TblGen() && !t.TblError().empty()) {
      why = t.TblError().ToUtf8();
    } else if (t.Fields().Count() == 0) {
      why = "the database names none of its columns";
    } else {
      return;
    }
    std::printf("  could not read %s %s: %s\n", t.TblType() == u"VIEW" ? "view" : "table",
                t.TblName().ToUtf8().c_str(), why.c_str());
  });
}

// An Access file is read through mdbtools, which reads its tables but cannot run its saved
// queries: their pages would show nothing but that error. They stay in the project, fields
// and all, for a user who moves the file to where they run; their pages are not generated.
// Returns how many were left out.
int LeaveOutAccessQueries(TyxDatabase& db) {
  if (db.DBDBMSName() != u"ACCESS") return 0;
  int left_out = 0;
  db.Tables().list().ForEach([&](TyxTable& t) {
    if (t.TblType() != u"VIEW" || !t.TblGen()) return;
    t.SetTblGen(false);
    ++left_out;
  });
  return left_out;
}

void RunNew(const NewOptions& o) {
  namespace fs = std::filesystem;
  const fs::path file(o.project_file);
  const String title = Vars().ProductTitle;
  if (fs::exists(file) && !o.force) {
    FailWith(title + u": " + String::FromUtf8(o.project_file) +
             u" already exists! Use --force to replace it.");
  }
  // Found out before the load, which may take long on a large database.
  std::error_code ec;
  const fs::path folder = file.parent_path().empty() ? fs::path(".") : file.parent_path();
  if (!fs::is_directory(folder, ec) || fs::is_directory(file, ec)) {
    FailWith(title + u": Saving project file \"" + String::FromUtf8(o.project_file) +
             u"\" failed! " + StandardErrorText(kErrPathNotFound));
  }
  try {
    Ref<Tyx> tyx = CreateTyx();
    tyx->AddProj(String::FromUtf8(o.name.empty() ? file.stem().string() : o.name));
    if (o.dynamic) tyx->SetDynamicLoadDB(true);
    std::vector<Variant> args = LoadDbArguments(o);
    tyx->SetSQLQuote(ChooseQuoteStyle(o, args));
    tyx->Services().LoadDB(*tyx, args);
    if (!tyx->ProjErr().empty()) FailWith(tyx->ProjErr());
    TyxDatabase* db = tyx->Databases().Find(tyx->CurrentDbName);
    const int left_out = db ? LeaveOutAccessQueries(*db) : 0;
    SaveProject(*tyx, o.project_file);
    std::printf("%s: %d tables and views from %s\n", o.project_file.c_str(),
                db ? db->Tables().Count() : 0, db ? db->DBDBMSName().ToUtf8().c_str() : "");
    if (db) ListUnreadable(*db, o.dynamic);
    if (left_out > 0) {
      std::printf(
          "  %d saved queries get no pages: mdbtools reads an Access file's tables but "
          "cannot run its queries (quorvex set %s --table NAME TblGen=1 generates one "
          "all the same)\n",
          left_out, o.project_file.c_str());
    }
  } catch (const Error& e) {
    FailWith(e.description());
  }
}

}  // namespace

void AddNewCommand(CLI::App& app) {
  auto options = std::make_shared<NewOptions>();
  CLI::App* cmd = app.add_subcommand("new", "Create a project from a live database");
  cmd->add_option("project-file", options->project_file, "The project file to write")->required();
  cmd->add_option("--db", options->source,
                  "The database: sqlite:FILE, odbc:DSN, access:FILE.mdb (the project keeps the "
                  "file's full path) or a connection string")
      ->required();
  cmd->add_option("--user", options->user, "User name for odbc:DSN and access:FILE");
  cmd->add_option("--password", options->password, "Password for odbc:DSN and access:FILE");
  cmd->add_option("--schema", options->schema, "The Oracle owner whose tables are read");
  cmd->add_option("--name", options->name, "Project name (default: the file name)");
  cmd->add_option("--quote", options->quote,
                  "How names are quoted in SQL (SQLQuote): \"Double Quote\", \"Backquote\", "
                  "\"Square Bracket\", \"Single Quote\" or \"None\"; default: the style of "
                  "the DBMS");
  cmd->add_flag("--dynamic", options->dynamic,
                "List the tables only; their fields are loaded when needed (DynamicLoadDB)");
  cmd->add_flag("--force", options->force, "Replace an existing project file");
  cmd->callback([options] { RunNew(*options); });
}

}  // namespace qv::cli
