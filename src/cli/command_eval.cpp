// `quorvex eval <project-file> <text>`: the text with its "<!--##=...##-->" tags evaluated
// against the saved project, as the engine evaluates a setting that holds tags. The result
// goes to stdout; a failure's words to stderr with a non-zero exit.
#include <cstdio>
#include <string>

#include "automation/error.h"
#include "cli/commands.h"
#include "cli/host_project.h"
#include "support/status.h"

namespace qv::cli {
namespace {

void RunEval(const std::string& project_file, const std::string& text) {
  Ref<Tyx> tyx = OpenProject(project_file);
  String result;
  try {
    result = tyx->Services().Parse(*tyx, Variant(String::FromUtf8(text)));
  } catch (const Error& e) {
    FailWith(tyx->ProjErr().empty() ? e.description() : tyx->ProjErr());
  }
  if (!tyx->ProjErr().empty()) FailWith(tyx->ProjErr());
  const std::string out = result.ToUtf8();
  std::fwrite(out.data(), 1, out.size(), stdout);
  if (out.empty() || out.back() != '\n') std::fputc('\n', stdout);
  SharedStatus().SetMode(StatusMode::kQuiet);  // dropping the project at exit isn't news
}

}  // namespace

void AddEvalCommand(CLI::App& app) {
  auto project_file = std::make_shared<std::string>();
  auto text = std::make_shared<std::string>();
  CLI::App* cmd = app.add_subcommand(
      "eval", "Evaluate a text with <!--##=...##--> tags against a project, as a setting is");
  cmd->add_option("project-file", *project_file, "The project file")->required();
  cmd->add_option("text", *text, "The text, e.g. \"<!--##=PROJ.ProjName##-->\"")->required();
  cmd->callback([project_file, text] { RunEval(*project_file, *text); });
}

}  // namespace qv::cli
