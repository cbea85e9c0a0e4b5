// `quorvex show <project-file> [table [field]]`: the settings of the project, of one table or
// of one field, one "name = value" line each in the order the project file keeps them. Line
// breaks inside a value are shown as "\n" so that each setting stays on one line.
#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

#include "automation/convert.h"
#include "automation/error.h"
#include "cli/commands.h"
#include "cli/host_project.h"
#include "persistence/project_file.h"
#include "root/create_tyx.h"
#include "support/status.h"
#include "support/tyx_vars.h"

namespace qv::cli {

namespace {

struct ShowOptions {
  std::string project_file;
  std::string table;
  std::string field;
};

void PrintBag(const TyProperties& bag) {
  SharedStatus().SetMode(StatusMode::kQuiet);  // dropping the project at exit isn't news
  size_t width = 0;
  bag.ForEach([&](TyProperty& p) { width = std::max(width, p.Name().ToUtf8().size()); });
  bag.ForEach([&](TyProperty& p) {
    const std::string name = p.Name().ToUtf8();
    std::printf("%s%s = %s\n", name.c_str(), std::string(width - name.size(), ' ').c_str(),
                ShownValue(p.Value()).c_str());
  });
}

void RunShow(const ShowOptions& o) {
  const String title = Vars().ProductTitle;
  try {
    Ref<Tyx> tyx = CreateTyx();
    // Showing a project never touches its database: no synchronisation check on loading.
    LoadProjectFile(*tyx, String::FromUtf8(o.project_file), [](Tyx&) {});
    if (!tyx->ProjErr().empty()) FailWith(tyx->ProjErr());
    if (o.table.empty()) {
      if (!o.field.empty()) FailWith(title + u": --field needs --table!");
      PrintBag(tyx->Properties());
      return;
    }
    TyxDatabase* db = tyx->Databases().Find(tyx->CurrentDbName);
    if (!db) FailWith(title + u": Database not loaded!");
    const String table_name = String::FromUtf8(o.table);
    TyxTable* table = db->Tables().list().ByName(table_name);
    if (!table) FailWith(title + u": Table " + table_name + u" not found!");
    if (o.field.empty()) {
      PrintBag(table->Properties());
      return;
    }
    const String field_name = String::FromUtf8(o.field);
    TyxField* field = table->Fields().list().ByName(field_name);
    if (!field) FailWith(title + u": Field " + field_name + u" not found in " + table_name + u"!");
    PrintBag(field->Properties());
  } catch (const Error& e) {
    FailWith(e.description());
  }
}

}  // namespace

void AddShowCommand(CLI::App& app) {
  auto options = std::make_shared<ShowOptions>();
  CLI::App* cmd =
      app.add_subcommand("show", "Show the settings of a project, one of its tables or a field");
  cmd->add_option("project-file", options->project_file, "The project file")->required();
  // Named as `set` names them too, so that `show P --table T --field F` reads back what
  // `set P --table T --field F ...` wrote.
  cmd->add_option("table,--table", options->table, "A table or view of the project");
  cmd->add_option("field,--field", options->field, "A field of that table");
  cmd->callback([options] { RunShow(*options); });
}

}  // namespace qv::cli
