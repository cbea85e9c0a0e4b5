// Answer texts against questions, and the words of questions and answers.
#include "platform/prompt_answers.h"

#include "automation/convert.h"
#include "automation/error.h"
#include "support/tyx_vars.h"

namespace qv {

namespace {

std::optional<size_t> MatchChoice(StringView answer, const std::vector<String>& choices,
                                  bool allow_prefix) {
  const StringView text = TrimBlanks(answer);
  if (text.empty()) return std::nullopt;
  for (size_t i = 0; i < choices.size(); ++i) {
    if (EqualsNoCase(TrimBlanks(choices[i]), text)) return i;
  }
  if (const std::optional<double> number = ParseNumberText(text)) {
    if (*number >= 1 && *number <= static_cast<double>(choices.size()) &&
        *number == static_cast<double>(static_cast<size_t>(*number))) {
      return static_cast<size_t>(*number) - 1;
    }
    return std::nullopt;
  }
  if (!allow_prefix) return std::nullopt;
  std::optional<size_t> found;
  for (size_t i = 0; i < choices.size(); ++i) {
    const StringView choice = TrimBlanks(choices[i]);
    if (choice.size() >= text.size() && EqualsNoCase(choice.substr(0, text.size()), text)) {
      if (found) return std::nullopt;  // more than one fits
      found = i;
    }
  }
  return found;
}

bool IsWord(StringView answer, StringView word) {
  return EqualsNoCase(TrimBlanks(answer), word);
}

// "skip all", "skip-all", "Skip+All": the choice and the All box.
std::optional<Reply> ParseOverwrite(const Prompt& prompt, StringView answer, bool allow_prefix) {
  StringView text = TrimBlanks(answer);
  Reply reply;
  if (text.size() > 3 && EqualsNoCase(text.substr(text.size() - 3), u"all")) {
    const Char separator = text[text.size() - 4];
    if (separator == u' ' || separator == u'-' || separator == u'_' || separator == u'+') {
      reply.all = true;
      text = TrimBlanks(text.substr(0, text.size() - 4));
    }
  }
  const std::optional<size_t> button = MatchChoice(text, prompt.buttons, allow_prefix);
  if (!button) return std::nullopt;
  reply.button = *button;
  return reply;
}

String JoinChoices(const std::vector<String>& choices) {
  String out;
  for (size_t i = 0; i < choices.size(); ++i) {
    if (i > 0) out.Append(u", ");
    out.Append(choices[i].view());
  }
  return out;
}

const char* IconWord(PromptIcon icon) {
  switch (icon) {
    case PromptIcon::kInformation:
      return " (information)";
    case PromptIcon::kExclamation:
      return " (warning)";
    case PromptIcon::kCritical:
      return " (error)";
    case PromptIcon::kQuestion:
      return " (question)";
    default:
      return "";
  }
}

std::string Numbered(const std::vector<String>& items, const char* separator) {
  std::string out;
  for (size_t i = 0; i < items.size(); ++i) {
    if (i > 0) out += separator;
    out += std::to_string(i + 1) + ") " + items[i].ToUtf8();
  }
  return out;
}

}  // namespace

Reply SafeReply(const Prompt& prompt) {
  Reply reply;
  switch (prompt.kind) {
    case Prompt::kMessage:
      break;
    case Prompt::kButtons:
    case Prompt::kOverwrite:
      reply.button = prompt.default_button;
      break;
    case Prompt::kPickName:
    case Prompt::kMapNames:
      reply.cancelled = true;
      break;
  }
  return reply;
}

std::optional<std::optional<size_t>> MatchMapEntry(const Prompt& prompt, StringView entry) {
  if (TrimBlanks(entry).empty()) return std::optional<size_t>();
  const std::optional<size_t> old = MatchChoice(entry, prompt.names, false);
  if (!old) return std::nullopt;
  return old;
}

std::optional<Reply> TryParseAnswer(const Prompt& prompt, StringView answer, bool allow_prefix) {
  Reply reply;
  switch (prompt.kind) {
    case Prompt::kMessage:
      return reply;
    case Prompt::kButtons: {
      const std::optional<size_t> button = MatchChoice(answer, prompt.buttons, allow_prefix);
      if (!button) return std::nullopt;
      reply.button = *button;
      return reply;
    }
    case Prompt::kOverwrite:
      return ParseOverwrite(prompt, answer, allow_prefix);
    case Prompt::kPickName: {
      if (IsWord(answer, u"skip") || IsWord(answer, u"cancel")) {
        reply.cancelled = true;
        return reply;
      }
      reply.pick = MatchChoice(answer, prompt.names, false);
      if (!reply.pick) return std::nullopt;
      return reply;
    }
    case Prompt::kMapNames: {
      if (IsWord(answer, u"cancel")) {
        reply.cancelled = true;
        return reply;
      }
      size_t start = 0;
      while (true) {
        const size_t comma = answer.find(u',', start);
        const StringView entry =
            answer.substr(start, comma == StringView::npos ? StringView::npos : comma - start);
        const std::optional<std::optional<size_t>> old = MatchMapEntry(prompt, entry);
        if (!old) return std::nullopt;
        reply.map.push_back(*old);
        if (comma == StringView::npos) break;
        start = comma + 1;
      }
      if (reply.map.size() > prompt.new_names.size()) return std::nullopt;
      reply.map.resize(prompt.new_names.size());
      return reply;
    }
  }
  return std::nullopt;
}

Reply ParseAnswer(const Prompt& prompt, StringView answer) {
  if (std::optional<Reply> reply = TryParseAnswer(prompt, answer, false)) return *reply;
  String words = Vars().ProductTitle + u": the answer \"" + answer +
                 u"\" fits none of the choices of \"" + prompt.title + u"\": ";
  switch (prompt.kind) {
    case Prompt::kOverwrite:
      words.Append(u"Overwrite, Skip or Cancel, with \" all\" behind to keep the choice");
      break;
    case Prompt::kPickName:
      words.Append(JoinChoices(prompt.names).view());
      words.Append(u", or skip");
      break;
    case Prompt::kMapNames:
      words.Append(u"one old name (");
      words.Append(JoinChoices(prompt.names).view());
      words.Append(u") or nothing for each of ");
      words.Append(JoinChoices(prompt.new_names).view());
      words.Append(u", separated by \",\", or cancel");
      break;
    default:
      words.Append(JoinChoices(prompt.buttons).view());
      break;
  }
  throw Error(kErrInvalidCall, words);
}

std::string DescribePrompt(const Prompt& prompt) {
  std::string out = Vars().ProductTitle.ToUtf8() + " asks" + IconWord(prompt.icon) + ": " +
                    prompt.title.ToUtf8() + "\n";
  // The text may hold CR LF line ends; each line is indented on its own.
  std::string text = prompt.text.ToUtf8();
  size_t start = 0;
  while (start <= text.size()) {
    size_t end = text.find('\n', start);
    if (end == std::string::npos) end = text.size();
    std::string line = text.substr(start, end - start);
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (!line.empty()) out += "  " + line + "\n";
    start = end + 1;
  }
  switch (prompt.kind) {
    case Prompt::kMessage:
      break;
    case Prompt::kButtons:
    case Prompt::kOverwrite:
      out += "  choices: " + Numbered(prompt.buttons, "  ") + "\n";
      break;
    case Prompt::kPickName:
      out += "  choices: " + Numbered(prompt.names, "  ") + "\n";
      break;
    case Prompt::kMapNames:
      out += "  " +
             (prompt.new_caption.empty() ? std::string("new") : prompt.new_caption.ToUtf8()) +
             ": " + JoinChoices(prompt.new_names).ToUtf8() + "\n";
      out += "  " +
             (prompt.old_caption.empty() ? std::string("old") : prompt.old_caption.ToUtf8()) +
             ": " + Numbered(prompt.names, "  ") + "\n";
      break;
  }
  return out;
}

std::string AnswerHint(const Prompt& prompt) {
  switch (prompt.kind) {
    case Prompt::kMessage:
      return "  Press Enter to go on. ";
    case Prompt::kButtons:
      return "  Answer with a number or a name (Enter for " +
             prompt.buttons[prompt.default_button].ToUtf8() + "): ";
    case Prompt::kOverwrite:
      return "  Overwrite, Skip or Cancel; add \"all\" to keep the choice for the rest of the run "
             "(Enter for Skip): ";
    case Prompt::kPickName:
      return "  Number or name (Enter to skip): ";
    case Prompt::kMapNames:
      return "";
  }
  return "";
}

String DescribeReply(const Prompt& prompt, const Reply& reply) {
  switch (prompt.kind) {
    case Prompt::kMessage:
      return u"OK";
    case Prompt::kButtons:
      return reply.button < prompt.buttons.size() ? prompt.buttons[reply.button] : String();
    case Prompt::kOverwrite: {
      String out = reply.button < prompt.buttons.size() ? prompt.buttons[reply.button] : String();
      if (reply.all) out.Append(u" All");
      return out;
    }
    case Prompt::kPickName:
      if (reply.cancelled || !reply.pick) return u"(skipped)";
      return prompt.names[*reply.pick];
    case Prompt::kMapNames: {
      if (reply.cancelled) return u"(cancelled: the names stay as they are)";
      String out;
      for (size_t i = 0; i < prompt.new_names.size(); ++i) {
        if (i > 0) out.Append(u", ");
        out.Append(prompt.new_names[i].view());
        out.Append(u" <- ");
        const std::optional<size_t> old = i < reply.map.size() ? reply.map[i] : std::nullopt;
        out.Append(old ? prompt.names[*old].view() : StringView(u"(none)"));
      }
      return out;
    }
  }
  return String();
}

}  // namespace qv
