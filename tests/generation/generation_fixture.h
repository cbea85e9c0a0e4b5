// A private world for generation tests: a scratch HOME with its documents folder, a data
// folder of the test's own, quiet status output and a prompter that answers from a list.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "platform/prompter.h"
#include "support/scratch_home.h"
#include "support/status.h"
#include "support/tyx_vars.h"

namespace qv::testing {

class GenerationFixture : public ::testing::Test {
 protected:
  void SetUp() override {
    home_ = std::make_unique<ScratchHome>();
    Vars().PersonalFolder = String::FromUtf8((home_->root() / "Documents").string());
    std::filesystem::create_directories(home_->root() / "Documents");
    Vars().Status = MakeRef<TyxStatus>(StatusMode::kQuiet);
    Answer({});
  }
  void TearDown() override {
    SetCurrentPrompter(nullptr);
    home_.reset();
  }

  // The answers the next questions get, in order; the safe answer after them.
  void Answer(std::vector<String> answers) {
    SetCurrentPrompter(std::make_unique<ScriptedPrompter>(std::move(answers), nullptr));
  }

  // Settings of the user's tree, below the product's Settings key.
  void WriteUserSettings(const std::string& lines) const {
    home_->WriteUser("[Software\\Quorvex\\5.3\\Settings]\n" + lines);
  }

  std::filesystem::path root() const { return home_->root(); }
  std::filesystem::path documents() const { return home_->root() / "Documents"; }
  std::filesystem::path data() const { return home_->data(); }

  static void Write(const std::filesystem::path& path, const std::string& bytes) {
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary | std::ios::trunc) << bytes;
  }
  static std::string Read(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
  }
  // Sets a file's modification time `seconds` away from now.
  static void Age(const std::filesystem::path& path, int seconds) {
    std::filesystem::last_write_time(
        path, std::filesystem::file_time_type::clock::now() + std::chrono::seconds(seconds));
  }

 private:
  std::unique_ptr<ScratchHome> home_;
};

}  // namespace qv::testing
