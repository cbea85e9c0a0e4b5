// `quorvex customview <project-file> <name> --sql <text> [--copy-fields]`: adds a custom view
// to a project. The SQL runs against the project's database to learn its columns; with
// --copy-fields each column takes the settings of the table column it comes from. The project
// file is written only when the view was made.
#include <cstdio>
#include <memory>
#include <string>

#include "automation/error.h"
#include "cli/commands.h"
#include "cli/host_project.h"
#include "root/create_tyx.h"
#include "support/status.h"
#include "support/tyx_vars.h"

namespace qv::cli {

namespace {

struct CustomViewOptions {
  std::string project_file;
  std::string name;
  std::string sql;
  bool copy_fields = false;
};

void RunCustomView(const CustomViewOptions& o) {
  RequireName(o.name, u"A custom view");
  try {
    Ref<Tyx> tyx = OpenProject(o.project_file);
    tyx->Services().LoadCustomView(*tyx, Variant(String::FromUtf8(o.name)),
                                   Variant(String::FromUtf8(o.sql)), Variant(o.copy_fields));
    if (!tyx->ProjErr().empty()) FailWith(tyx->ProjErr());
    SaveProject(*tyx, o.project_file);
    const TyxDatabase* db = tyx->Databases().Find(tyx->CurrentDbName);
    const TyxTable* view = db ? db->Tables().list().ByName(String::FromUtf8(o.name)) : nullptr;
    std::printf("%s: custom view %s with %d fields\n", o.project_file.c_str(), o.name.c_str(),
                view ? view->Fields().Count() : 0);
    SharedStatus().SetMode(StatusMode::kQuiet);
  } catch (const Error& e) {
    FailWith(e.description());
  }
}

}  // namespace

void AddCustomViewCommand(CLI::App& app) {
  auto options = std::make_shared<CustomViewOptions>();
  CLI::App* cmd = app.add_subcommand("customview", "Add a custom view (a SELECT of your own)");
  cmd->add_option("project-file", options->project_file, "The project file")->required();
  cmd->add_option("name", options->name, "The name of the new view")->required();
  cmd->add_option("--sql", options->sql, "The SELECT text of the view")->required();
  cmd->add_flag("--copy-fields", options->copy_fields,
                "Give each column the settings of the table column it comes from");
  cmd->callback([options] { RunCustomView(*options); });
}

}  // namespace qv::cli
