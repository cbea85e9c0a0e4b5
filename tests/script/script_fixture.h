// A clean world for the script host: a temporary HOME and data folder, quiet status, fresh
// shared variables, messages to the user caught in a file, and a project root to hand the
// host as PROJ.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <ostream>
#include <sstream>
#include <string>

#include "model/tyx.h"
#include "platform/prompter.h"
#include "root/create_tyx.h"
#include "script/script_host.h"
#include "support/status.h"
#include "support/tyx_vars.h"
#include "templates/controls.h"
#include "templates/language.h"

namespace qv {

// Failures show texts as UTF-8, not as bytes of the object.
inline void PrintTo(const String& text, std::ostream* out) {
  *out << '"';
  for (char c : text.ToUtf8()) {
    if (c == '\r')
      *out << "\\r";
    else if (c == '\n')
      *out << "\\n";
    else
      *out << c;
  }
  *out << '"';
}

class ScriptFixture : public ::testing::Test {
 protected:
  void SetUp() override {
    const char* scratch = std::getenv("QV_TEST_SCRATCH");
    const ::testing::TestInfo* info = ::testing::UnitTest::GetInstance()->current_test_info();
    dir_ = std::filesystem::path(scratch ? scratch : std::filesystem::temp_directory_path()) /
           "script" / (std::string(info->test_suite_name()) + "." + info->name());
    std::filesystem::remove_all(dir_);
    std::filesystem::create_directories(dir_ / "home");
    std::filesystem::create_directories(dir_ / "out");
    setenv("HOME", (dir_ / "home").c_str(), 1);
    unsetenv("XDG_CONFIG_HOME");
    unsetenv("XDG_DOCUMENTS_DIR");
    setenv("QUORVEX_DATA_DIR", QV_SOURCE_DIR "/share", 1);
    ResetVars();
    Vars().Status = MakeRef<TyxStatus>(StatusMode::kQuiet);
    messages_ = std::fopen((dir_ / "messages.txt").c_str(), "w+");
    SetCurrentPrompter(std::make_unique<ScriptedPrompter>(std::vector<String>{}, messages_));
    tyx_ = CreateTyx();
    Vars().Destination = Path("out/");
  }
  void TearDown() override {
    tyx_ = nullptr;
    ResetVars();
    SetCurrentPrompter(nullptr);
    std::fclose(messages_);
    unsetenv("QUORVEX_DATA_DIR");
  }

  String Path(const std::string& name) const { return String::FromUtf8((dir_ / name).string()); }
  String Write(const std::string& name, const std::string& text) const {
    std::filesystem::create_directories((dir_ / name).parent_path());
    std::ofstream(dir_ / name, std::ios::binary) << text;
    return Path(name);
  }
  std::string Read(const std::string& name) const {
    std::ifstream in(dir_ / name, std::ios::binary);
    std::stringstream s;
    s << in.rdbuf();
    return s.str();
  }
  std::string Messages() const {
    std::fflush(messages_);
    return Read("messages.txt");
  }

  // A host set up with these settings on the fixture's project, no database.
  Ref<TyScript> Start(ScriptSettings settings = {}) {
    Ref<TyScript> script = MakeRef<TyScript>(std::move(settings));
    script->Initialize(Ref<Object>(tyx_.get()), nullptr, MakeRef<TyxControls>(),
                       MakeRef<TyxLanguage>());
    return script;
  }

  static std::string ProjErr() { return Vars().ProjErr.ToUtf8(); }

  std::filesystem::path dir_;
  std::FILE* messages_ = nullptr;
  Ref<Tyx> tyx_;
};

}  // namespace qv
