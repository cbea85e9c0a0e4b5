// The subcommands of `quorvex`, one file each. Each Add...Command registers its options and its
// callback on the application; main() lists them in the order `--help` shows them.
#pragma once

#include <CLI/CLI.hpp>

namespace qv::cli {

// Exit status of a command that failed. A failing command prints its words (usually ProjErr)
// on stderr and throws CLI::RuntimeError(kExitFailure); main() turns that into the exit status.
inline constexpr int kExitFailure = 1;

void AddVersionCommand(CLI::App& app);
void AddNewCommand(CLI::App& app);
void AddShowCommand(CLI::App& app);
void AddTablesCommand(CLI::App& app);
void AddCustomViewCommand(CLI::App& app);
void AddReportCommand(CLI::App& app);
void AddScriptCommand(CLI::App& app);
void AddEvalCommand(CLI::App& app);
void AddSetCommand(CLI::App& app);
void AddDefaultsCommand(CLI::App& app);
void AddExtensionCommand(CLI::App& app);
void AddChartCommand(CLI::App& app);
void AddCheckCommand(CLI::App& app);
void AddSyncCommand(CLI::App& app);
void AddGenerateCommand(CLI::App& app);
void AddServeCommand(CLI::App& app);

}  // namespace qv::cli
