// What a host does with its command-line options about questions and progress: which prompter
// answers (scripted answers from --answer, interactive on a terminal) and whether the status
// surface speaks, and how much (--quiet, --progress).
#pragma once

#include <string>
#include <vector>

namespace qv {

struct HostPromptOptions {
  std::vector<std::string> answers;  // the answers to give, in order (UTF-8)
  bool quiet = false;                // no progress output and no echo of questions
  bool progress = false;             // every line of progress, not only the stage titles
  bool never_ask = false;            // never read a terminal, even when there is one
};

// Installs the process's prompter and sets the shared status surface's mode. With answers,
// with never_ask, or without a terminal on stdin, questions are answered from the list (then
// safely); otherwise they are asked on the terminal.
void ApplyHostPromptOptions(const HostPromptOptions& options);

}  // namespace qv
