// The host-wide options, kept by the application and handed to the prompter and the status
// surface before the command's own callback runs.
#include "cli/host_options.h"

#include <cstddef>
#include <cstdio>
#include <memory>

#include "platform/prompt_setup.h"

namespace qv::cli {

void AddHostOptions(CLI::App& app) {
  auto options = std::make_shared<HostPromptOptions>();
  app.add_option("--answer", options->answers,
                 "An answer for a question the engine would ask (repeat for later questions, in "
                 "order)")
      ->expected(1)
      ->allow_extra_args(false)
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
  app.add_flag("--no-input", options->never_ask,
               "Never ask on the terminal: unanswered questions take their safe default");
  CLI::Option* quiet = app.add_flag("--quiet", options->quiet, "Show no progress");
  app.add_flag("--progress", options->progress,
               "Show every line of progress on stderr (when it is no terminal, only the title "
               "of each stage shows otherwise)")
      ->excludes(quiet);
  // Commands may stand before or after these options.
  app.fallthrough();
  app.parse_complete_callback([options] { ApplyHostPromptOptions(*options); });
}

bool TakeLeadingHostOptions(const CLI::App& command, std::vector<std::string>& args) {
  const CLI::App& app = *command.get_parent();
  HostPromptOptions options;
  options.quiet = app.get_option("--quiet")->count() > 0;
  options.progress = app.get_option("--progress")->count() > 0;
  options.never_ask = app.get_option("--no-input")->count() > 0;
  if (app.get_option("--answer")->count() > 0)
    options.answers = app.get_option("--answer")->as<std::vector<std::string>>();
  size_t taken = 0;
  while (taken < args.size() && args[taken].starts_with("-")) {
    const std::string& arg = args[taken];
    if (arg == "--quiet") {
      options.quiet = true;
    } else if (arg == "--progress") {
      options.progress = true;
    } else if (arg == "--no-input") {
      options.never_ask = true;
    } else if (arg.starts_with("--answer=")) {
      options.answers.push_back(arg.substr(9));
    } else if (arg == "--answer" && taken + 1 < args.size()) {
      options.answers.push_back(args[++taken]);
    } else {
      std::fprintf(stderr, "quorvex %s: unknown option before the file: %s\n",
                   command.get_name().c_str(), arg.c_str());
      return false;
    }
    ++taken;
  }
  if (taken == 0) return true;
  if (options.quiet && options.progress) {
    std::fprintf(stderr, "quorvex %s: --quiet excludes --progress\n", command.get_name().c_str());
    return false;
  }
  args.erase(args.begin(), args.begin() + static_cast<std::ptrdiff_t>(taken));
  ApplyHostPromptOptions(options);
  return true;
}

}  // namespace qv::cli
