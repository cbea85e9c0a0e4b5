// `quorvex defaults save <project-file>` stores a project's settings as the user's defaults
// (SaveDefault), which every new project then starts from; `quorvex defaults show` lists what
// the user's tree holds: the saved settings and the saved extension list, one "name = value"
// line each under a heading.
#include <cstdio>
#include <string>
#include <vector>

#include "automation/convert.h"
#include "automation/error.h"
#include "cli/commands.h"
#include "cli/host_project.h"
#include "root/create_tyx.h"
#include "support/registry.h"
#include "support/tyx_vars.h"

namespace qv::cli {

namespace {

void SaveDefaults(const std::string& project_file) {
  Ref<Tyx> tyx = OpenProject(project_file);
  try {
    tyx->SaveDefault();
  } catch (const Error& e) {
    FailWith(e.description());
  }
  std::printf("%s: its settings are now the defaults of new projects\n", project_file.c_str());
}

void PrintKey(const char* heading, const String& key) {
  cRegistry reg;
  reg.ClassKey = kHkeyCurrentUser;
  reg.SectionKey = key;
  std::vector<String> names;
  int32_t count = 0;
  reg.EnumerateValues(names, count);
  std::printf("[%s]\n", heading);
  for (const String& name : names) {
    reg.ValueKey = name;
    const Variant value = reg.Value();
    std::string text;
    try {
      text = ToString(value).ToUtf8();
    } catch (const Error&) {
      text = "(" + TypeNameOf(value).ToUtf8() + ")";
    }
    std::printf("%s = %s\n", name.ToUtf8().c_str(), text.c_str());
  }
}

void ShowDefaults() {
  try {
    // Creating a root seeds a first-time user's tree from the machine's, as any host would.
    const Ref<Tyx> tyx = CreateTyx();
    PrintKey("Settings", Vars().SettingsKey);
    PrintKey("Extensions", Vars().ExtensionsKey);
  } catch (const Error& e) {
    FailWith(e.description());
  }
}

}  // namespace

void AddDefaultsCommand(CLI::App& app) {
  CLI::App* cmd = app.add_subcommand("defaults", "Save or list the user's default settings");
  cmd->require_subcommand(1);
  auto file = std::make_shared<std::string>();
  CLI::App* save =
      cmd->add_subcommand("save", "Make a project's settings the defaults of new projects");
  save->add_option("project-file", *file, "The project file")->required();
  save->callback([file] { SaveDefaults(*file); });
  CLI::App* show = cmd->add_subcommand("show", "List the saved default settings and extensions");
  show->callback(ShowDefaults);
}

}  // namespace qv::cli
