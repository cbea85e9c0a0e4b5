// The quorvex command: the host that drives the engine from a terminal or from scripts.
// Results go to stdout, progress and failures to stderr; a failed command exits non-zero.
#include <CLI/CLI.hpp>

#include <cstdio>

#include "cli/commands.h"
#include "cli/host_options.h"
#include "cli/version_text.h"

int main(int argc, char** argv) {
  CLI::App app{
      "Quorvex: generates a database-driven web application from a live database and a template "
      "package.\nRun 'quorvex <command> --help' for the options of a command."};
  app.set_version_flag("--version", qv::cli::EngineVersionText(), "Print the engine version");
  app.require_subcommand(0, 1);
  qv::cli::AddHostOptions(app);  // before the commands, which pass these options on
  qv::cli::AddVersionCommand(app);
  qv::cli::AddNewCommand(app);
  qv::cli::AddShowCommand(app);
  qv::cli::AddTablesCommand(app);
  qv::cli::AddCustomViewCommand(app);
  qv::cli::AddReportCommand(app);
  qv::cli::AddCheckCommand(app);
  qv::cli::AddSyncCommand(app);
  qv::cli::AddSetCommand(app);
  qv::cli::AddDefaultsCommand(app);
  qv::cli::AddExtensionCommand(app);
  qv::cli::AddChartCommand(app);
  qv::cli::AddGenerateCommand(app);
  qv::cli::AddEvalCommand(app);
  qv::cli::AddScriptCommand(app);
  qv::cli::AddServeCommand(app);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& e) {
    return app.exit(e);
  }
  if (app.get_subcommands().empty()) {
    std::fputs(app.help().c_str(), stdout);
  }
  return 0;
}
