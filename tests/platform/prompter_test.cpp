// The Prompter: scripted answers and their safe defaults, the log of questions and answers,
// refused answers, and the interactive prompter reading a terminal's lines. Which prompter a
// host option chooses is the command tests' (--answer, --no-input, --quiet).
#include "platform/prompter.h"

#include <gtest/gtest.h>

#include <string>

#include "automation/error.h"
#include "support/temp_file.h"

namespace qv {
namespace {

using testing::TempFile;

std::vector<String> Strings(std::initializer_list<const char16_t*> items) {
  std::vector<String> out;
  for (const char16_t* item : items)
    out.emplace_back(item);
  return out;
}

TEST(ScriptedPrompterTest, AnswersInOrderThenSafeDefaults) {
  TempFile log;
  ScriptedPrompter p(Strings({u"yes", u"UPDATE", u"skip all", u"Orders", u"2,,x"}), log.get());
  EXPECT_EQ(p.AskYesNoCancel(u"Quorvex", u"Overwrite?", YesNoCancel::kNo), YesNoCancel::kYes);
  // A message in between takes no answer from the list.
  p.ShowMessage(u"Quorvex", u"Just so you know", PromptIcon::kExclamation);
  EXPECT_EQ(p.ChooseButton(u"Quorvex", u"Keep or update?", u"Keep", u"Update", 0), 1u);
  const OverwriteAnswer over = p.AskOverwrite(u"Quorvex", u"File a.asp already exists!");
  EXPECT_EQ(over.choice, OverwriteAnswer::kSkip);
  EXPECT_TRUE(over.all);
  EXPECT_EQ(p.PickName(u"New table found", u"Rename from?", Strings({u"Customers", u"orders"})),
            std::optional<size_t>(1));
  const auto map = p.MapNames(u"New fields found", u"Map them", u"New field", u"Old field",
                              Strings({u"a", u"b", u"c"}), Strings({u"w", u"x"}));
  ASSERT_TRUE(map);
  EXPECT_EQ(*map, (std::vector<std::optional<size_t>>{1, std::nullopt, 1}));
  EXPECT_EQ(p.remaining(), 0u);

  // The list is used up: every question gets the answer that changes nothing.
  EXPECT_EQ(p.AskYesNoCancel(u"T", u"?", YesNoCancel::kNo), YesNoCancel::kNo);
  EXPECT_EQ(p.AskYesNoCancel(u"T", u"?", YesNoCancel::kCancel), YesNoCancel::kCancel);
  EXPECT_EQ(p.ChooseButton(u"T", u"?", u"Keep", u"Overwrite", 0), 0u);
  const OverwriteAnswer safe = p.AskOverwrite(u"T", u"?");
  EXPECT_EQ(safe.choice, OverwriteAnswer::kSkip);
  EXPECT_FALSE(safe.all);
  EXPECT_EQ(p.PickName(u"T", u"?", Strings({u"a"})), std::nullopt);
  EXPECT_EQ(p.MapNames(u"T", u"?", u"", u"", Strings({u"a"}), Strings({u"b"})), std::nullopt);

  // Every question and its answer is in the log.
  const std::string text = log.Text();
  EXPECT_NE(text.find("Quorvex asks (question): Quorvex\n  Overwrite?\n  choices: 1) Yes  2) No  "
                      "3) Cancel\n  answer: Yes\n"),
            std::string::npos)
      << text;
  EXPECT_NE(
      text.find("Quorvex asks (warning): Quorvex\n  Just so you know\n  answer: OK (no answer "
                "given: the safe choice)\n"),
      std::string::npos)
      << text;
  EXPECT_NE(text.find("answer: Skip All\n"), std::string::npos) << text;
  EXPECT_NE(text.find("answer: orders\n"), std::string::npos) << text;
  EXPECT_NE(text.find("New field: a, b, c\n  Old field: 1) w  2) x\n"), std::string::npos) << text;
  EXPECT_NE(text.find("answer: a <- x, b <- (none), c <- x\n"), std::string::npos) << text;
  EXPECT_NE(text.find("answer: (cancelled: the names stay as they are) (no answer given"),
            std::string::npos)
      << text;
}

TEST(ScriptedPrompterTest, OverwriteFormsAndCancel) {
  ScriptedPrompter p(
      Strings({u"Overwrite", u"overwrite-all", u"cancel all", u"cancel", u"ok", u" 3 "}), nullptr);
  OverwriteAnswer a = p.AskOverwrite(u"T", u"F");
  EXPECT_EQ(a.choice, OverwriteAnswer::kOverwrite);
  EXPECT_FALSE(a.all);
  a = p.AskOverwrite(u"T", u"F");
  EXPECT_EQ(a.choice, OverwriteAnswer::kOverwrite);
  EXPECT_TRUE(a.all);
  a = p.AskOverwrite(u"T", u"F");
  EXPECT_EQ(a.choice, OverwriteAnswer::kCancel);
  EXPECT_FALSE(a.all);  // All means nothing with Cancel
  EXPECT_EQ(p.PickName(u"T", u"?", Strings({u"a", u"b"})), std::nullopt);  // "cancel"
  p.ShowMessage(u"T", u"an ok in the list is taken by a message");
  EXPECT_EQ(p.AskYesNoCancel(u"T", u"?", YesNoCancel::kNo), YesNoCancel::kCancel);  // " 3 "
  EXPECT_EQ(p.remaining(), 0u);
}

TEST(ScriptedPrompterTest, AnswersThatFitNothingRaiseWithTheQuestionNamed) {
  auto expect_refused = [](std::initializer_list<const char16_t*> answers, auto ask,
                           const std::string& part) {
    ScriptedPrompter p(Strings(answers), nullptr);
    try {
      ask(p);
      ADD_FAILURE() << "accepted";
    } catch (const Error& e) {
      EXPECT_EQ(e.number(), kErrInvalidCall);
      EXPECT_NE(e.description().ToUtf8().find(part), std::string::npos) << e.description().ToUtf8();
    }
  };
  expect_refused(
      {u"maybe"}, [](Prompter& p) { p.AskYesNoCancel(u"Copy", u"?", YesNoCancel::kNo); },
      "Quorvex: the answer \"maybe\" fits none of the choices of \"Copy\": Yes, No, "
      "Cancel");
  // Scripted answers must be whole words: no prefixes.
  expect_refused(
      {u"y"}, [](Prompter& p) { p.AskYesNoCancel(u"Copy", u"?", YesNoCancel::kNo); }, "\"y\"");
  expect_refused(
      {u"4"}, [](Prompter& p) { p.AskYesNoCancel(u"Copy", u"?", YesNoCancel::kNo); }, "\"4\"");
  expect_refused(
      {u"all"}, [](Prompter& p) { p.AskOverwrite(u"T", u"F"); }, "Overwrite, Skip or Cancel");
  expect_refused(
      {u"Nope"},
      [](Prompter& p) {
        p.PickName(u"T", u"?", Strings({u"a", u"b"}));
      },
      "a, b, or skip");
  expect_refused(
      {u"a,b,a"},
      [](Prompter& p) {
        p.MapNames(u"T", u"?", u"", u"", Strings({u"n1", u"n2"}), Strings({u"a", u"b"}));
      },
      "for each of n1, n2");
  expect_refused(
      {u"zz"},
      [](Prompter& p) { p.MapNames(u"T", u"?", u"", u"", Strings({u"n1"}), Strings({u"a"})); },
      "\"zz\"");
}

TEST(InteractivePrompterTest, ReadsLinesWithPrefixesNumbersAndRetries) {
  TempFile in;
  TempFile out;
  in.Fill("maybe\ny\n\n2\nsk all\nO\n\nb\nnone\n3\n1\n\n");
  InteractivePrompter p(in.get(), out.get());
  // "maybe" fits nothing and is asked again; "y" is Yes.
  EXPECT_EQ(p.AskYesNoCancel(u"Quorvex", u"Overwrite?", YesNoCancel::kNo), YesNoCancel::kYes);
  // An empty line takes the safe answer.
  EXPECT_EQ(p.AskYesNoCancel(u"Quorvex", u"Again?", YesNoCancel::kNo), YesNoCancel::kNo);
  EXPECT_EQ(p.ChooseButton(u"Quorvex", u"Keep?", u"Keep", u"Update", 0), 1u);
  OverwriteAnswer a = p.AskOverwrite(u"Quorvex", u"File x already exists!");
  EXPECT_EQ(a.choice, OverwriteAnswer::kSkip);
  EXPECT_TRUE(a.all);
  a = p.AskOverwrite(u"Quorvex", u"File y already exists!");
  EXPECT_EQ(a.choice, OverwriteAnswer::kOverwrite);
  EXPECT_FALSE(a.all);
  p.ShowMessage(u"Quorvex", u"Press on");  // takes the empty line
  EXPECT_EQ(p.PickName(u"T", u"?", Strings({u"a", u"b"})), std::optional<size_t>(1));
  // Mapping: "none" is no old name and is asked again; "3" is out of range, "1" is a.
  const auto map =
      p.MapNames(u"T", u"?", u"New", u"Old", Strings({u"n1", u"n2"}), Strings({u"a", u"b"}));
  ASSERT_TRUE(map);
  EXPECT_EQ(*map, (std::vector<std::optional<size_t>>{0, std::nullopt}));
  // The end of input answers safely and never waits.
  EXPECT_EQ(p.AskYesNoCancel(u"T", u"?", YesNoCancel::kCancel), YesNoCancel::kCancel);
  EXPECT_EQ(p.PickName(u"T", u"?", Strings({u"a"})), std::nullopt);

  const std::string text = out.Text();
  EXPECT_NE(text.find("Quorvex asks (question): Quorvex\n  Overwrite?\n"), std::string::npos)
      << text;
  EXPECT_NE(text.find("That is none of the choices."), std::string::npos) << text;
  EXPECT_NE(text.find("(Enter for No)"), std::string::npos) << text;
  EXPECT_NE(text.find("n1 -> old name or number"), std::string::npos) << text;
}

}  // namespace
}  // namespace qv
