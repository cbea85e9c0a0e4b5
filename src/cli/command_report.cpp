// `quorvex report <project-file> <name> --from <table>`: adds a report, a second definition
// of a loaded table or view whose fields are copies of the source's. The project file is
// written only when the report was made.
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

struct ReportOptions {
  std::string project_file;
  std::string name;
  std::string from;
};

void RunReport(const ReportOptions& o) {
  RequireName(o.name, u"A report");
  try {
    Ref<Tyx> tyx = OpenProject(o.project_file);
    const bool made = tyx->Services().LoadReport(*tyx, Variant(String::FromUtf8(o.name)),
                                                 Variant(String::FromUtf8(o.from)));
    if (!made || !tyx->ProjErr().empty()) {
      FailWith(tyx->ProjErr().empty() ? Vars().ProductTitle + u": Report not made!"
                                      : tyx->ProjErr());
    }
    SaveProject(*tyx, o.project_file);
    std::printf("%s: report %s of %s\n", o.project_file.c_str(), o.name.c_str(), o.from.c_str());
    SharedStatus().SetMode(StatusMode::kQuiet);
  } catch (const Error& e) {
    FailWith(e.description());
  }
}

}  // namespace

void AddReportCommand(CLI::App& app) {
  auto options = std::make_shared<ReportOptions>();
  CLI::App* cmd = app.add_subcommand("report", "Add a report of a loaded table or view");
  cmd->add_option("project-file", options->project_file, "The project file")->required();
  cmd->add_option("name", options->name, "The name of the new report")->required();
  cmd->add_option("--from", options->from, "The table or view the report shows")->required();
  cmd->callback([options] { RunReport(*options); });
}

}  // namespace qv::cli
