// The host-wide options, kept by the application and handed to the prompter and the status
// surface before the command's own callback runs.
#include "cli/host_options.h"

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

}  // namespace qv::cli
