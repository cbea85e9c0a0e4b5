// A clean world for root tests: a private HOME (the user's settings tree) and data folder (the
// machine tree), quiet status output, and fresh shared variables.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "support/scratch_home.h"
#include "support/status.h"
#include "support/tyx_vars.h"

namespace qv {

class RootFixture : public ::testing::Test {
 protected:
  void SetUp() override { Vars().Status = MakeRef<TyxStatus>(StatusMode::kQuiet); }

  void WriteMachineTree(const std::string& text) { home_.WriteMachine(text); }
  void WriteUserTree(const std::string& text) { home_.WriteUser(text); }
  std::string UserTree() const { return testing::ScratchHome::Read(home_.user_file()); }
  void UseShippedMachineTree() { setenv("QUORVEX_DATA_DIR", QV_SOURCE_DIR "/share", 1); }

  testing::ScratchHome home_;
};

}  // namespace qv
