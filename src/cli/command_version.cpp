// `quorvex version`: the engine version, the same text as `quorvex --version`.
#include <cstdio>

#include "cli/commands.h"
#include "cli/version_text.h"

namespace qv::cli {

void AddVersionCommand(CLI::App& app) {
  CLI::App* cmd = app.add_subcommand("version", "Print the engine version");
  cmd->callback([] { std::printf("%s\n", EngineVersionText().c_str()); });
}

}  // namespace qv::cli
