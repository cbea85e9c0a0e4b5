// Turning a host's options into the prompter and the status mode of the process.
#include "platform/prompt_setup.h"

#include <unistd.h>

#include <memory>

#include "platform/prompter.h"
#include "support/status.h"

namespace qv {

void ApplyHostPromptOptions(const HostPromptOptions& options) {
  const StatusMode mode = options.quiet      ? StatusMode::kQuiet
                          : options.progress ? StatusMode::kPlain
                                             : StatusMode::kAuto;
  SharedStatus().SetMode(mode);
  const bool scripted = !options.answers.empty() || options.never_ask || !::isatty(STDIN_FILENO);
  if (!scripted) {
    SetCurrentPrompter(std::make_unique<InteractivePrompter>());
    return;
  }
  std::vector<String> answers;
  answers.reserve(options.answers.size());
  for (const std::string& answer : options.answers)
    answers.push_back(String::FromUtf8(answer));
  SetCurrentPrompter(
      std::make_unique<ScriptedPrompter>(std::move(answers), options.quiet ? nullptr : stderr));
}

}  // namespace qv
