// A clean world for root tests: a temporary HOME (the user's settings tree), a data folder of
// the test's own (the machine tree), quiet status output, and fresh shared variables.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "support/status.h"
#include "support/tyx_vars.h"

namespace qv {

class RootFixture : public ::testing::Test {
 protected:
  void SetUp() override {
    const char* scratch = std::getenv("QV_TEST_SCRATCH");
    const ::testing::TestInfo* info = ::testing::UnitTest::GetInstance()->current_test_info();
    dir_ = std::filesystem::path(scratch ? scratch : std::filesystem::temp_directory_path()) /
           "root" / (std::string(info->test_suite_name()) + "." + info->name());
    std::filesystem::remove_all(dir_);
    std::filesystem::create_directories(dir_ / "home");
    std::filesystem::create_directories(dir_ / "data");
    setenv("HOME", (dir_ / "home").c_str(), 1);
    unsetenv("XDG_CONFIG_HOME");
    unsetenv("XDG_DOCUMENTS_DIR");
    setenv("QUORVEX_DATA_DIR", (dir_ / "data").c_str(), 1);
    ResetVars();
    Vars().Status = MakeRef<TyxStatus>(StatusMode::kQuiet);
  }
  void TearDown() override {
    ResetVars();
    unsetenv("QUORVEX_DATA_DIR");
  }

  void WriteMachineTree(const std::string& text) {
    std::ofstream(dir_ / "data" / "machine-settings") << text;
  }
  void WriteUserTree(const std::string& text) {
    const auto path = dir_ / "home" / ".config" / "quorvex" / "settings";
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path) << text;
  }
  std::string UserTree() const {
    std::ifstream in(dir_ / "home" / ".config" / "quorvex" / "settings");
    return std::string(std::istreambuf_iterator<char>(in), {});
  }
  void UseShippedMachineTree() { setenv("QUORVEX_DATA_DIR", QV_SOURCE_DIR "/share", 1); }

  std::filesystem::path dir_;
};

}  // namespace qv
