// The Prompter: the one way the engine asks its user anything. Every message box and modal
// dialog goes through it: a message with OK, Yes/No/Cancel, a choice between two named buttons,
// the overwrite question, picking one name from a list, and mapping new names to old ones.
// A host installs the prompter it wants; without one, a terminal gets interactive questions and
// anything else gets scripted answers with safe defaults, so nothing ever waits in CI.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "automation/string.h"

namespace qv {

enum class PromptIcon : uint8_t { kNone, kInformation, kExclamation, kCritical, kQuestion };

enum class YesNoCancel : uint8_t { kYes, kNo, kCancel };

// The answer to "File ... already exists!": the button, and the "All" box that makes the
// choice hold for the rest of the run.
struct OverwriteAnswer {
  enum Choice : uint8_t { kOverwrite, kSkip, kCancel } choice = kSkip;
  bool all = false;
};

// One question as both kinds of prompter see it.
struct Prompt {
  enum Kind : uint8_t { kMessage, kButtons, kOverwrite, kPickName, kMapNames } kind = kMessage;
  String title;
  String text;
  PromptIcon icon = PromptIcon::kNone;
  std::vector<String> buttons;    // kMessage: "OK"; kButtons: the captions in order
  size_t default_button = 0;      // the answer that changes nothing, given when none comes
  std::vector<String> names;      // kPickName: the choices; kMapNames: the old names
  std::vector<String> new_names;  // kMapNames: the names to map
  String new_caption;             // kMapNames: headings of the two columns
  String old_caption;
};

// One answer. `cancelled` is set when a pick or a mapping was cancelled.
struct Reply {
  size_t button = 0;                       // kMessage, kButtons, kOverwrite
  bool all = false;                        // kOverwrite
  bool cancelled = false;                  // kPickName, kMapNames
  std::optional<size_t> pick;              // kPickName: index into names
  std::vector<std::optional<size_t>> map;  // kMapNames: per new name, index into names or none
};

class Prompter {
 public:
  virtual ~Prompter() = default;

  // Asks one question and waits for its answer.
  virtual Reply Ask(const Prompt& prompt) = 0;
  // False once only safe answers can come (a scripted list used up, a terminal's input at its
  // end): a form that insists on a choice must then stop asking.
  virtual bool CanAnswer() const { return true; }

  // ---- The questions of the engine, in terms of Ask ----
  // A message with an OK button.
  void ShowMessage(StringView title, StringView text, PromptIcon icon = PromptIcon::kNone);
  // Yes, No and Cancel; `safe` is the answer given when nobody can answer.
  YesNoCancel AskYesNoCancel(StringView title, StringView text, YesNoCancel safe,
                             PromptIcon icon = PromptIcon::kQuestion);
  // Two buttons with the given captions ("Keep" / "Update"): 0 for the first, 1 for the second.
  size_t ChooseButton(StringView title, StringView text, StringView first, StringView second,
                      size_t safe);
  // Overwrite, Skip or Cancel, with the "All" box; Skip alone when nobody can answer.
  OverwriteAnswer AskOverwrite(StringView title, StringView text);
  // One of `names`, or nothing when the user skips or cancels.
  std::optional<size_t> PickName(StringView title, StringView text,
                                 const std::vector<String>& names);
  // For each of `new_names` the index of the old name it maps to, or none. Nothing at all when
  // the user cancels: the caller then takes the names as they stand.
  std::optional<std::vector<std::optional<size_t>>> MapNames(StringView title, StringView text,
                                                             StringView new_caption,
                                                             StringView old_caption,
                                                             const std::vector<String>& new_names,
                                                             const std::vector<String>& old_names);
};

// Answers from a list the host gave (command-line options), in order, one per question; the
// safe answer of the question once the list is used up. Each question and its answer are
// echoed to `log` (stderr unless told otherwise; nullptr for silence).
//
// An answer is a text: a button's caption without regard to case ("yes", "Keep"), "ok" for a
// message; for the overwrite question "overwrite", "skip" or "cancel", with " all" behind for
// the All box; for a pick a name of the list or its number from 1, or "skip"/"cancel"; for a
// mapping the old names (or numbers) in the order of the new names, separated by ",", an empty
// entry mapping to none, or "cancel". An answer that fits none of these raises error 5 with
// words that name the question.
class ScriptedPrompter : public Prompter {
 public:
  explicit ScriptedPrompter(std::vector<String> answers = {}, std::FILE* log = stderr);
  Reply Ask(const Prompt& prompt) override;
  bool CanAnswer() const override { return next_ < answers_.size(); }
  // Answers not used yet.
  size_t remaining() const { return answers_.size() - next_; }

 private:
  std::vector<String> answers_;
  size_t next_ = 0;
  std::FILE* log_;
};

// Asks on a terminal: the question goes to `out`, the answer comes from `in` (by default the
// controlling terminal /dev/tty). At the end of input the safe answer is taken.
class InteractivePrompter : public Prompter {
 public:
  InteractivePrompter();  // /dev/tty, or stdin/stderr when that can't be opened
  InteractivePrompter(std::FILE* in, std::FILE* out);
  ~InteractivePrompter() override;
  Reply Ask(const Prompt& prompt) override;
  bool CanAnswer() const override { return !at_end_; }

 private:
  std::optional<std::string> ReadLine();
  std::FILE* in_;
  std::FILE* out_;
  bool owns_in_ = false;
  bool at_end_ = false;
};

// The prompter of the process. Until a host sets one: interactive when stdin is a terminal,
// scripted with safe answers otherwise.
Prompter& CurrentPrompter();
void SetCurrentPrompter(std::unique_ptr<Prompter> prompter);
// Hands the process's prompter over, so that a host can wrap it and set the wrapper.
std::unique_ptr<Prompter> TakeCurrentPrompter();

}  // namespace qv
