// What the synchronisation tests share: a project root in a private HOME, a prompter that
// records every question and answers from a list, and a way to change a database between
// two loads.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "model/tyx.h"
#include "platform/prompter.h"
#include "root/create_tyx.h"
#include "support/scratch_home.h"
#include "support/status.h"
#include "support/tyx_vars.h"

namespace qv::sync_testing {

// Answers in order, like the host's scripted answers, and keeps each question it was asked.
class RecordingPrompter : public Prompter {
 public:
  RecordingPrompter(std::vector<Prompt>& asked, std::vector<String> answers)
      : asked_(asked), scripted_(std::move(answers), nullptr) {}
  Reply Ask(const Prompt& prompt) override {
    asked_.push_back(prompt);
    return scripted_.Ask(prompt);
  }
  bool CanAnswer() const override { return scripted_.CanAnswer(); }

 private:
  std::vector<Prompt>& asked_;
  ScriptedPrompter scripted_;
};

class SyncTest : public ::testing::Test {
 protected:
  void SetUp() override {
    SharedStatus().SetMode(StatusMode::kQuiet);
    Answer({});
    tyx_ = CreateTyx();
  }
  void Answer(std::vector<String> answers) {
    asked_.clear();
    SetCurrentPrompter(std::make_unique<RecordingPrompter>(asked_, std::move(answers)));
  }
  // LoadDB through the root, as a host does; the load must succeed.
  void Load(Tyx& tyx, StringView conn_str) {
    std::vector<Variant> args = {Variant(String()), Variant(String(u"CONNECTIONSTRING")),
                                 Variant(String()), Variant(String()),
                                 Variant(false),    Variant(String()),
                                 Variant(String()), Variant(String(conn_str)),
                                 Variant(String())};
    tyx.Services().LoadDB(tyx, args);
    ASSERT_EQ(tyx.ProjErr().ToUtf8(), "");
  }
  TyxDatabase& Db() const { return *tyx_->db(); }
  TyxTable* Table(StringView name) const { return Db().Tables().list().ByName(name); }
  TyxField* Field(StringView table, StringView field) const {
    TyxTable* t = Table(table);
    return t ? t->Fields().list().ByName(field) : nullptr;
  }

  testing::ScratchHome home_;
  Ref<Tyx> tyx_;
  std::vector<Prompt> asked_;
};

}  // namespace qv::sync_testing
