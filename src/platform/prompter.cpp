// The questions of the engine over one Ask, the scripted and interactive prompters, and the
// prompter of the process.
#include "platform/prompter.h"

#include <unistd.h>

#include <cstdio>
#include <string>

#include "automation/convert.h"
#include "automation/error.h"
#include "platform/prompt_answers.h"
#include "support/status.h"
#include "support/tyx_vars.h"

namespace qv {

// ------------------------------------------------------------------ the questions

void Prompter::ShowMessage(StringView title, StringView text, PromptIcon icon) {
  Prompt p;
  p.kind = Prompt::kMessage;
  p.title = String(title);
  p.text = String(text);
  p.icon = icon;
  p.buttons = {String(u"OK")};
  Ask(p);
}

YesNoCancel Prompter::AskYesNoCancel(StringView title, StringView text, YesNoCancel safe,
                                     PromptIcon icon) {
  Prompt p;
  p.kind = Prompt::kButtons;
  p.title = String(title);
  p.text = String(text);
  p.icon = icon;
  p.buttons = {String(u"Yes"), String(u"No"), String(u"Cancel")};
  p.default_button = static_cast<size_t>(safe);
  const Reply reply = Ask(p);
  return reply.button < 3 ? static_cast<YesNoCancel>(reply.button) : safe;
}

size_t Prompter::ChooseButton(StringView title, StringView text, StringView first,
                              StringView second, size_t safe) {
  Prompt p;
  p.kind = Prompt::kButtons;
  p.title = String(title);
  p.text = String(text);
  p.icon = PromptIcon::kQuestion;
  p.buttons = {String(first), String(second)};
  p.default_button = safe < 2 ? safe : 0;
  const Reply reply = Ask(p);
  return reply.button < 2 ? reply.button : p.default_button;
}

OverwriteAnswer Prompter::AskOverwrite(StringView title, StringView text) {
  Prompt p;
  p.kind = Prompt::kOverwrite;
  p.title = String(title);
  p.text = String(text);
  p.icon = PromptIcon::kQuestion;
  p.buttons = {String(u"Overwrite"), String(u"Skip"), String(u"Cancel")};
  p.default_button = OverwriteAnswer::kSkip;
  const Reply reply = Ask(p);
  OverwriteAnswer answer;
  answer.choice = reply.button < 3 ? static_cast<OverwriteAnswer::Choice>(reply.button)
                                   : OverwriteAnswer::kSkip;
  answer.all = reply.all && answer.choice != OverwriteAnswer::kCancel;
  return answer;
}

std::optional<size_t> Prompter::PickName(StringView title, StringView text,
                                         const std::vector<String>& names) {
  Prompt p;
  p.kind = Prompt::kPickName;
  p.title = String(title);
  p.text = String(text);
  p.names = names;
  const Reply reply = Ask(p);
  if (reply.cancelled || !reply.pick || *reply.pick >= names.size()) return std::nullopt;
  return reply.pick;
}

std::optional<std::vector<std::optional<size_t>>> Prompter::MapNames(
    StringView title, StringView text, StringView new_caption, StringView old_caption,
    const std::vector<String>& new_names, const std::vector<String>& old_names) {
  Prompt p;
  p.kind = Prompt::kMapNames;
  p.title = String(title);
  p.text = String(text);
  p.new_caption = String(new_caption);
  p.old_caption = String(old_caption);
  p.new_names = new_names;
  p.names = old_names;
  Reply reply = Ask(p);
  if (reply.cancelled) return std::nullopt;
  reply.map.resize(new_names.size());
  for (auto& entry : reply.map) {
    if (entry && *entry >= old_names.size()) entry.reset();
  }
  return std::move(reply.map);
}

// ------------------------------------------------------------------ scripted answers

ScriptedPrompter::ScriptedPrompter(std::vector<String> answers, std::FILE* log)
    : answers_(std::move(answers)), log_(log) {}

Reply ScriptedPrompter::Ask(const Prompt& prompt) {
  std::optional<String> given;
  // A message has nothing to choose: it takes an answer only when that answer is "ok", so a
  // list written for the real questions isn't thrown off by a message that comes in between.
  const bool takes_answer =
      next_ < answers_.size() &&
      (prompt.kind != Prompt::kMessage || EqualsNoCase(TrimBlanks(answers_[next_]), u"ok"));
  if (takes_answer) given = answers_[next_++];
  const Reply reply = given ? ParseAnswer(prompt, *given) : SafeReply(prompt);
  if (log_) {
    std::string text = DescribePrompt(prompt);
    text += "  answer: " + DescribeReply(prompt, reply).ToUtf8() +
            (given ? "\n" : " (no answer given: the safe choice)\n");
    std::fputs(text.c_str(), log_);
    std::fflush(log_);
  }
  return reply;
}

// ------------------------------------------------------------------ interactive

InteractivePrompter::InteractivePrompter() {
  if (std::FILE* tty = std::fopen("/dev/tty", "r+")) {
    in_ = out_ = tty;
    owns_in_ = true;
  } else {
    in_ = stdin;
    out_ = stderr;
  }
}

InteractivePrompter::InteractivePrompter(std::FILE* in, std::FILE* out) : in_(in), out_(out) {}

InteractivePrompter::~InteractivePrompter() {
  if (owns_in_) std::fclose(in_);
}

std::optional<std::string> InteractivePrompter::ReadLine() {
  std::string line;
  int c;
  while ((c = std::fgetc(in_)) != EOF) {
    if (c == '\n') return line;
    line.push_back(static_cast<char>(c));
  }
  at_end_ = true;
  if (line.empty()) return std::nullopt;
  return line;
}

namespace {

void Put(std::FILE* out, const std::string& text) {
  std::fputs(text.c_str(), out);
  std::fflush(out);
}

}  // namespace

Reply InteractivePrompter::Ask(const Prompt& prompt) {
  // The status line sits on the same terminal: take it away before asking.
  if (auto* status = dynamic_cast<TyxStatus*>(Vars().Status.get())) status->SuspendLine();
  Put(out_, "\n" + DescribePrompt(prompt));
  if (prompt.kind == Prompt::kMapNames) {
    Reply reply;
    for (size_t i = 0; i < prompt.new_names.size(); ++i) {
      while (true) {
        Put(out_, "  " + prompt.new_names[i].ToUtf8() +
                      " -> old name or number (Enter for none, \"cancel\" to cancel): ");
        const std::optional<std::string> line = ReadLine();
        if (!line) return SafeReply(prompt);
        const String answer = String::FromUtf8(*line);
        if (EqualsNoCase(TrimBlanks(answer), u"cancel")) return SafeReply(prompt);
        std::optional<std::optional<size_t>> entry = MatchMapEntry(prompt, answer);
        if (entry) {
          reply.map.push_back(*entry);
          break;
        }
        Put(out_, "  Please give one of the numbers or names above, or nothing.\n");
      }
    }
    return reply;
  }
  while (true) {
    Put(out_, AnswerHint(prompt));
    const std::optional<std::string> line = ReadLine();
    if (!line) {
      Put(out_, "\n");
      return SafeReply(prompt);
    }
    const String answer = String::FromUtf8(*line);
    if (TrimBlanks(answer).empty()) return SafeReply(prompt);
    if (std::optional<Reply> reply = TryParseAnswer(prompt, answer, /*allow_prefix=*/true)) {
      return *reply;
    }
    Put(out_, "  That is none of the choices.\n");
  }
}

// ------------------------------------------------------------------ the prompter of the process

namespace {

std::unique_ptr<Prompter>& CurrentSlot() {
  static std::unique_ptr<Prompter> current;
  return current;
}

}  // namespace

Prompter& CurrentPrompter() {
  std::unique_ptr<Prompter>& slot = CurrentSlot();
  if (!slot) {
    if (::isatty(STDIN_FILENO)) {
      slot = std::make_unique<InteractivePrompter>();
    } else {
      slot = std::make_unique<ScriptedPrompter>();
    }
  }
  return *slot;
}

void SetCurrentPrompter(std::unique_ptr<Prompter> prompter) {
  CurrentSlot() = std::move(prompter);
}

std::unique_ptr<Prompter> TakeCurrentPrompter() {
  CurrentPrompter();  // the default one, when none was set
  return std::move(CurrentSlot());
}

}  // namespace qv
