// The options of `quorvex` that hold for every command: scripted answers for questions, never
// asking, and how much progress shows. They may stand before or after the command's name.
#pragma once

#include <CLI/CLI.hpp>

#include <string>
#include <vector>

namespace qv::cli {

// Adds --answer, --no-input, --quiet and --progress to the application and applies them once
// parsing is complete, before any command runs. Call it before the commands are added, so that they
// pass these options on to the application.
void AddHostOptions(CLI::App& app);

// A command that leaves its arguments unparsed (`script`) takes the host options that stand
// before its first other argument here: they are removed from `args` and applied together
// with those given before the command's name. False, with the words on stderr, for an
// unknown option in that place or --quiet with --progress.
bool TakeLeadingHostOptions(const CLI::App& command, std::vector<std::string>& args);

}  // namespace qv::cli
