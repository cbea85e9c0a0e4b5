// What the tests of the generation output share: a project over a scratch folder with fresh
// shared variables, a quiet status surface and scripted answers, and the script host of a run.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "generation/run_state.h"
#include "model/tyx.h"
#include "platform/prompter.h"
#include "script/script_host.h"
#include "support/status.h"
#include "support/tyx_vars.h"
#include "templates/scratch_folder.h"

namespace qv::testing {

class OutputTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ResetVars();
    setenv("HOME", scratch_.Native("home").c_str(), 1);
    setenv("XDG_CONFIG_HOME", scratch_.Native("home/.config").c_str(), 1);
    SharedStatus().SetMode(StatusMode::kQuiet);
    SharedStatus().ClearCancel();
    Answer({});
    tyx_ = MakeRef<Tyx>();
    tyx_->PrepareRoot();
    tyx_->SetProjName(u"shop");
    tyx_->SetDestination(Dest());
    tyx_->SetOutputNameType(u"infix");
    tyx_->SetOtherGen(true);
    tyx_->SetOtherOverwrite(true);
    tyx_->SetPromptOnOverwrite(false);
    tyx_->BackupFile = false;
  }
  void TearDown() override {
    if (TyScript* script = CurrentScript()) script->Reset();
    Vars().TheScript = nullptr;
    Vars().TheControls = nullptr;
  }

  // Starts the script host of a run over the project as it stands.
  void StartScript() {
    Ref<TyScript> script = MakeRef<TyScript>(ScriptSettings{});
    Vars().TheScript = script;
    script->Initialize(tyx_, FirstDatabase(*tyx_), Ref<Object>(&RunControlList()),
                       Ref<Object>(&RunLanguage()));
    ASSERT_EQ(Vars().ProjErr, u"");
  }

  void Answer(std::vector<String> answers) {
    SetCurrentPrompter(std::make_unique<ScriptedPrompter>(std::move(answers), nullptr));
  }
  String Dest() const { return scratch_.Path("site"); }
  std::string Out(std::string_view name) const {
    return scratch_.Read("site/" + std::string(name));
  }
  bool OutExists(std::string_view name) const {
    return std::filesystem::exists(scratch_.path() / "site" / name);
  }

  ScratchFolder scratch_;
  Ref<Tyx> tyx_;
};

}  // namespace qv::testing
