// The quorvex command: the host that drives the engine from a terminal or a script.
#include <CLI/CLI.hpp>

#include <cstdio>
#include <string>

namespace {

std::string VersionText() {
  return std::to_string(QV_VERSION_MAJOR) + "." + std::to_string(QV_VERSION_MINOR) + "." +
         std::to_string(QV_VERSION_PATCH) + "." + std::to_string(QV_VERSION_BUILD);
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app{"Quorvex: generates a database-driven web application from a live database and a "
               "template package."};
  app.set_version_flag("--version", VersionText(), "Print the engine version and exit");
  app.require_subcommand(0);
  CLI11_PARSE(app, argc, argv);
  if (argc == 1) {
    std::fputs(app.help().c_str(), stdout);
  }
  return 0;
}
