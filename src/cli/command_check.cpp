// `quorvex check <project-file>`: compares the project with its live database and lists the
// differences: tables and views added, removed or changed, fields added, removed or changed
// (old → new), custom views that no longer run, reports whose source is gone, and tables the
// reader could not read. Exit 0 with no differences, 1 with some (a custom view or report that
// no longer runs is one), 2 when the schema can't be read. Nothing is written.
#include <cstdio>
#include <memory>
#include <string>

#include "automation/error.h"
#include "cli/commands.h"
#include "cli/host_differences.h"
#include "cli/host_project.h"
#include "support/status.h"
#include "sync/difference_check.h"

namespace qv::cli {

namespace {

void RunCheck(const std::string& project_file) {
  Ref<Tyx> tyx = OpenProject(project_file);
  DifferenceList found;
  int16_t count = 0;
  try {
    count = CheckDB(*tyx, &found);
  } catch (const Error& e) {
    FailWith(e.description());
  }
  SharedStatus().CloseStatus();
  if (count < 0) {
    std::fflush(stdout);
    std::fprintf(stderr, "%s\n", tyx->ProjErr().ToUtf8().c_str());
    throw CLI::RuntimeError(kExitSchemaUnreadable);
  }
  PrintDifferences(found, stdout);
  const int listed = CountListed(found);
  int broken = 0;  // counted 0 by the check, yet they won't generate until mended
  for (const SchemaDifference& d : found) {
    if (d.kind == SchemaDifference::kCustomViewBroken ||
        d.kind == SchemaDifference::kReportBroken) {
      ++broken;
    }
  }
  if (count == 0 && listed == 0) {
    std::printf("%s: no differences\n", project_file.c_str());
    return;
  }
  if (count == 0 && listed == broken) {
    std::printf("%s: the tables agree, but %d custom views or reports no longer run\n",
                project_file.c_str(), broken);
    throw CLI::RuntimeError(kExitFailure);
  }
  std::printf("%s: %s, listed above one per line (run 'quorvex sync' to merge them)\n",
              project_file.c_str(), DifferencesText(listed).c_str());
  throw CLI::RuntimeError(kExitFailure);
}

}  // namespace

void AddCheckCommand(CLI::App& app) {
  auto project_file = std::make_shared<std::string>();
  CLI::App* cmd =
      app.add_subcommand("check", "List how the live database differs from the project");
  cmd->add_option("project-file", *project_file, "The project file")->required();
  cmd->footer(
      "Exit status: 0 no differences, 1 differences found, 2 the database could not be read.");
  cmd->callback([project_file] { RunCheck(*project_file); });
}

}  // namespace qv::cli
