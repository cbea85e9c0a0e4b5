// The options of `quorvex` that hold for every command: scripted answers for questions, never
// asking, and how much progress shows. They may stand before or after the command's name.
#pragma once

#include <CLI/CLI.hpp>

namespace qv::cli {

// Adds --answer, --no-input, --quiet and --progress to the application and applies them once
// parsing is complete, before any command runs. Call it before the commands are added, so that they
// pass these options on to the application.
void AddHostOptions(CLI::App& app);

}  // namespace qv::cli
