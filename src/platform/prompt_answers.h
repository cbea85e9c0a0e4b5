// Reading an answer text against a question, the safe answer of each question, and the words
// that show a question and its answer on a terminal or in a log. Shared by both prompters.
#pragma once

#include <optional>
#include <string>

#include "platform/prompter.h"

namespace qv {

// The answer that changes nothing: the question's default button, Skip, no pick, no mapping.
Reply SafeReply(const Prompt& prompt);

// The reply an answer text stands for, or nothing when it fits no choice. Numbers count from
// 1; names and captions match without regard to case, and with `allow_prefix` by a unique
// beginning too ("y" for Yes).
std::optional<Reply> TryParseAnswer(const Prompt& prompt, StringView answer, bool allow_prefix);
// The same; an answer that fits no choice raises error 5 with words naming the question.
Reply ParseAnswer(const Prompt& prompt, StringView answer);

// One entry of a mapping: an old name (or its number) for one new name; "" maps to none.
// Nothing when the entry fits no old name.
std::optional<std::optional<size_t>> MatchMapEntry(const Prompt& prompt, StringView entry);

// The question as lines of text, ending with a line break.
std::string DescribePrompt(const Prompt& prompt);
// The line that asks for the answer on a terminal.
std::string AnswerHint(const Prompt& prompt);
// The reply in words: the button, the name, the mapping.
String DescribeReply(const Prompt& prompt, const Reply& reply);

}  // namespace qv
