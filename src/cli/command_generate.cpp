// `quorvex generate <project-file>`: the whole generation run into the destination folder,
// with progress on stderr and a summary on stdout; `quorvex gencheck <project-file>`: whether
// a run would touch output that exists (exit 0 no, 1 yes, 2 on error). The project file itself
// is left as it is: what a run changes in the project (tables without a key lose their edit
// pages) is redone by every run.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "automation/convert.h"
#include "automation/error.h"
#include "cli/commands.h"
#include "cli/host_charts.h"
#include "cli/host_project.h"
#include "platform/prompter.h"
#include "support/data_folder.h"
#include "support/status.h"
#include "support/tyx_vars.h"

namespace qv::cli {
namespace {

struct GenerateOptions {
  std::string project_file;
  std::string dest;
  std::string template_file;
  std::string overwrite;  // "", "ask", "all" or "skip"
  std::string language;   // a language file of the data folder, in place of the saved Language
  bool keep_template = false;
  bool refresh_template = false;
};

// Answers the question about a changed template package as the command line said, and hands
// every other question on.
class TemplateChoicePrompter : public Prompter {
 public:
  TemplateChoicePrompter(std::unique_ptr<Prompter> inner, size_t button)
      : inner_(std::move(inner)), button_(button) {}
  Reply Ask(const Prompt& prompt) override {
    const bool is_template_question = prompt.kind == Prompt::kButtons &&
                                      prompt.buttons.size() == 2 && prompt.buttons[0] == u"Keep" &&
                                      prompt.buttons[1] == u"Overwrite";
    if (!is_template_question) return inner_->Ask(prompt);
    Reply reply;
    reply.button = button_;
    return reply;
  }

 private:
  std::unique_ptr<Prompter> inner_;
  size_t button_;
};

// The languages the data folder offers: the names of its languages/*.xml, sorted.
std::vector<std::string> AvailableLanguages() {
  std::vector<std::string> names;
  std::error_code ec;
  for (const auto& entry : std::filesystem::directory_iterator(DataFolder() / "languages", ec)) {
    const std::filesystem::path& path = entry.path();
    if (entry.is_regular_file(ec) && path.extension() == ".xml") {
      names.push_back(path.stem().string());
    }
  }
  std::sort(names.begin(), names.end());
  return names;
}

// The language as its file spells it: "german" finds German.xml, since a user types the name
// of a language, not of a file. An unknown name fails, listing the ones there are.
String LanguageName(const std::string& wanted) {
  const std::vector<std::string> names = AvailableLanguages();
  for (const std::string& name : names) {
    if (EqualsNoCase(String::FromUtf8(name), String::FromUtf8(wanted))) {
      return String::FromUtf8(name);
    }
  }
  std::string list;
  for (const std::string& name : names)
    list += (list.empty() ? "" : ", ") + name;
  FailWith(
      ProductMessage(String::FromUtf8("Unknown language \"" + wanted + "\"! Available languages: " +
                                      (list.empty() ? std::string("none") : list) + ".")));
}

String AbsolutePath(const std::string& path) {
  std::error_code ec;
  const std::filesystem::path full = std::filesystem::absolute(path, ec);
  return String::FromUtf8((ec ? std::filesystem::path(path) : full.lexically_normal()).string());
}

Ref<Tyx> PrepareProject(const GenerateOptions& options) {
  Ref<Tyx> tyx = OpenProject(options.project_file);
  if (!options.dest.empty()) tyx->SetDestination(AbsolutePath(options.dest));
  if (!options.template_file.empty()) tyx->SetTemplate(AbsolutePath(options.template_file));
  if (!options.language.empty()) tyx->Language = LanguageName(options.language);
  if (TrimBlanks(tyx->Destination()).empty()) {
    FailWith(
        ProductMessage(u"No destination folder! Set Destination in the project or give "
                       u"--dest."));
  }
  return tyx;
}

std::string Seconds(std::chrono::steady_clock::duration elapsed) {
  char text[32];
  std::snprintf(text, sizeof text, "%.2f s", std::chrono::duration<double>(elapsed).count());
  return text;
}

void RunGenerate(const GenerateOptions& options) {
  Ref<Tyx> tyx = PrepareProject(options);
  TyxVars& vars = Vars();
  vars.HostCharts = ChartsObject(LoadCharts(ChartFilePath(options.project_file)));
  // The charts go with the run, not with the process's last destructors.
  struct DropCharts {
    ~DropCharts() { Vars().HostCharts = nullptr; }
  } drop_charts;
  if (options.overwrite == "ask") tyx->SetPromptOnOverwrite(true);
  if (options.overwrite == "all") vars.OverwritePreset = u"O";
  if (options.overwrite == "skip") vars.OverwritePreset = u"S";
  if (options.keep_template || options.refresh_template) {
    SetCurrentPrompter(std::make_unique<TemplateChoicePrompter>(TakeCurrentPrompter(),
                                                                options.keep_template ? 0 : 1));
  }
  const auto start = std::chrono::steady_clock::now();
  try {
    tyx->Services().GenScript(*tyx);
  } catch (const Error& e) {
    SharedStatus().CloseStatus();
    FailWith(tyx->ProjErr().empty() ? e.description() : tyx->ProjErr());
  }
  SharedStatus().CloseStatus();
  if (!tyx->ProjErr().empty()) FailWith(tyx->ProjErr());
  std::printf("%d pages written, %d files copied, %d skipped, %d backed up in %s: %s\n",
              vars.FilesWritten, vars.FilesCopied, vars.FilesSkipped, vars.FilesBackedUp,
              Seconds(std::chrono::steady_clock::now() - start).c_str(),
              tyx->Destination().ToUtf8().c_str());
  SharedStatus().SetMode(StatusMode::kQuiet);  // dropping the project at exit isn't news
}

constexpr int kExitCheckError = 2;

void RunGenCheck(const GenerateOptions& options) {
  Ref<Tyx> tyx;
  int16_t count = 0;
  try {
    tyx = PrepareProject(options);
    count = ToInteger(tyx->Services().GenCheck(*tyx));
  } catch (const CLI::RuntimeError&) {
    throw CLI::RuntimeError(kExitCheckError);
  } catch (const Error& e) {
    std::fprintf(
        stderr, "%s\n",
        (tyx && !tyx->ProjErr().empty() ? tyx->ProjErr() : e.description()).ToUtf8().c_str());
    throw CLI::RuntimeError(kExitCheckError);
  }
  SharedStatus().SetMode(StatusMode::kQuiet);
  if (!tyx->ProjErr().empty()) {
    std::fprintf(stderr, "%s\n", tyx->ProjErr().ToUtf8().c_str());
    throw CLI::RuntimeError(kExitCheckError);
  }
  if (count == 0) {
    std::printf("No existing output would be touched: %s\n", tyx->Destination().ToUtf8().c_str());
    return;
  }
  std::printf("Existing output would be touched: %s\n", tyx->Destination().ToUtf8().c_str());
  throw CLI::RuntimeError(kExitFailure);
}

void AddCommonOptions(CLI::App* cmd, GenerateOptions& options) {
  cmd->add_option("project-file", options.project_file, "The project file")->required();
  cmd->add_option("--dest", options.dest,
                  "The output folder, in place of the project's Destination");
  cmd->add_option("--template", options.template_file,
                  "The template package (zip), in place of the project's Template");
}

}  // namespace

void AddGenerateCommand(CLI::App& app) {
  auto options = std::make_shared<GenerateOptions>();
  CLI::App* cmd = app.add_subcommand(
      "generate", "Generate the application of a project into its destination folder");
  AddCommonOptions(cmd, *options);
  cmd->add_option("--overwrite", options->overwrite,
                  "Existing files: ask for each, replace all, or skip all (default: as the "
                  "project's PromptOnOverwrite and OtherOverwrite say)")
      ->check(CLI::IsMember({"ask", "all", "skip"}));
  CLI::Option* keep = cmd->add_flag("--keep-template", options->keep_template,
                                    "Keep the unpacked template when its package changed");
  CLI::Option* refresh =
      cmd->add_flag("--refresh-template", options->refresh_template,
                    "Unpack a changed template package again, over the unpacked one");
  keep->excludes(refresh);
  cmd->add_option("--language", options->language,
                  "The language of the application's texts for this run (a file of the data "
                  "folder's languages/, such as English or German), in place of the saved "
                  "Language");
  cmd->callback([options] { RunGenerate(*options); });

  auto check_options = std::make_shared<GenerateOptions>();
  CLI::App* check = app.add_subcommand(
      "gencheck",
      "Tell whether generating would touch existing output (exit 0 no, 1 yes, 2 error)");
  AddCommonOptions(check, *check_options);
  check->callback([check_options] { RunGenCheck(*check_options); });
}

}  // namespace qv::cli
