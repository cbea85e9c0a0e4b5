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
#include "persistence/project_file.h"
#include "platform/data/connection_string.h"
#include "root/create_tyx.h"
#include "support/status.h"
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
  bool dynamic = false;
  bool force = false;
};

[[noreturn]] void Fail(const String& words) {
  std::fprintf(stderr, "%s\n", words.ToUtf8().c_str());
  throw CLI::RuntimeError(kExitFailure);
}

// The nine arguments of Tyx.LoadDB. "odbc:NAME" names a data source whose user and password
// come from the options, "access:FILE" an Access file read through DAO (with --password for a
// protected file); everything else is a connection string once the short forms are expanded.
std::vector<Variant> LoadDbArguments(const NewOptions& o) {
  const bool odbc = o.source.rfind("odbc:", 0) == 0;
  const bool access = o.source.rfind("access:", 0) == 0;
  const String rest = String::FromUtf8(o.source.substr(odbc ? 5 : access ? 7 : 0));
  const StringView type = odbc ? u"ODBC" : access ? u"ACCESS" : u"CONNECTIONSTRING";
  return {
      Variant(odbc ? rest : String()),
      Variant(String(type)),
      Variant(access ? rest : String()),
      Variant(access ? rest : String()),
      Variant(false),
      Variant(String::FromUtf8(o.user)),
      Variant(String::FromUtf8(o.password)),
      Variant(odbc || access ? String() : data::ExpandShortUrl(rest)),
      Variant(String::FromUtf8(o.schema)),
  };
}

void RunNew(const NewOptions& o) {
  namespace fs = std::filesystem;
  const fs::path file(o.project_file);
  const String title = Vars().ProductTitle;
  if (fs::exists(file) && !o.force) {
    Fail(title + u": " + String::FromUtf8(o.project_file) +
         u" already exists! Use --force to replace it.");
  }
  try {
    Ref<Tyx> tyx = CreateTyx();
    tyx->AddProj(String::FromUtf8(o.name.empty() ? file.stem().string() : o.name));
    if (o.dynamic) tyx->SetDynamicLoadDB(true);
    std::vector<Variant> args = LoadDbArguments(o);
    tyx->Services().LoadDB(*tyx, args);
    if (!tyx->ProjErr().empty()) Fail(tyx->ProjErr());
    SaveProjectFile(*tyx, String::FromUtf8(o.project_file));
    const TyxDatabase* db = tyx->Databases().Find(tyx->CurrentDbName);
    std::printf("%s: %d tables and views from %s\n", o.project_file.c_str(),
                db ? db->Tables().Count() : 0, db ? db->DBDBMSName().ToUtf8().c_str() : "");
  } catch (const Error& e) {
    Fail(e.description());
  }
}

}  // namespace

void AddNewCommand(CLI::App& app) {
  auto options = std::make_shared<NewOptions>();
  CLI::App* cmd = app.add_subcommand("new", "Create a project from a live database");
  cmd->add_option("project-file", options->project_file, "The project file to write")->required();
  cmd->add_option("--db", options->source,
                  "The database: sqlite:FILE, odbc:DSN, access:FILE.mdb or a connection string")
      ->required();
  cmd->add_option("--user", options->user, "User name for odbc:DSN and access:FILE");
  cmd->add_option("--password", options->password, "Password for odbc:DSN and access:FILE");
  cmd->add_option("--schema", options->schema, "The Oracle owner whose tables are read");
  cmd->add_option("--name", options->name, "Project name (default: the file name)");
  cmd->add_flag("--dynamic", options->dynamic,
                "List the tables only; their fields are loaded when needed (DynamicLoadDB)");
  cmd->add_flag("--force", options->force, "Replace an existing project file");
  cmd->callback([options] { RunNew(*options); });
}

}  // namespace qv::cli
