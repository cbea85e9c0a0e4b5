// `quorvex tables <project-file>`: the tables and views of a project, one line each, in the
// order of the project (TblSeq): name, type, key, number of fields and whether pages are
// generated for it.
#include <cstdio>
#include <string>
#include <vector>

#include "automation/error.h"
#include "cli/commands.h"
#include "cli/host_columns.h"
#include "cli/host_project.h"
#include "persistence/project_file.h"
#include "root/create_tyx.h"
#include "support/status.h"
#include "support/tyx_vars.h"

namespace qv::cli {

namespace {

void RunTables(const std::string& project_file) {
  try {
    Ref<Tyx> tyx = CreateTyx();
    // Listing a project never touches its database: no synchronisation check on loading.
    LoadProjectFile(*tyx, String::FromUtf8(project_file), [](Tyx&) {});
    if (!tyx->ProjErr().empty()) FailWith(tyx->ProjErr());
    TyxDatabase* db = tyx->Databases().Find(tyx->CurrentDbName);
    if (!db) FailWith(Vars().ProductTitle + u": Database not loaded!");
    std::vector<std::vector<std::string>> rows = {{"Seq", "Name", "Type", "Key", "Fields", "Gen"}};
    TyxTables& tables = db->Tables();
    for (int16_t seq = 1; seq <= tables.Count(); ++seq) {
      Ref<TyxTable> t = tables.Seq(seq);
      if (!t) continue;
      rows.push_back({std::to_string(seq), t->TblName().ToUtf8(), t->TblType().ToUtf8(),
                      t->TblKey().ToUtf8(), std::to_string(t->Fields().Count()),
                      t->TblGen() ? "yes" : "no"});
    }
    std::fputs(FormatColumns(rows).c_str(), stdout);
    SharedStatus().SetMode(StatusMode::kQuiet);  // dropping the project at exit isn't news
  } catch (const Error& e) {
    FailWith(e.description());
  }
}

}  // namespace

void AddTablesCommand(CLI::App& app) {
  auto project_file = std::make_shared<std::string>();
  CLI::App* cmd = app.add_subcommand("tables", "List the tables and views of a project");
  cmd->add_option("project-file", *project_file, "The project file")->required();
  cmd->callback([project_file] { RunTables(*project_file); });
}

}  // namespace qv::cli
