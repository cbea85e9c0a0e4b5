// A private HOME for one test: a fresh folder with a user tree location, a documents folder
// and a data folder of its own, so that tests never touch the real settings and may run side
// by side. Everything is put back when the test ends.
#pragma once

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <optional>
#include <string>

#include "support/tyx_vars.h"

namespace qv::testing {

class ScratchHome {
 public:
  ScratchHome() {
    const char* scratch = std::getenv("QV_TEST_SCRATCH");
    std::filesystem::path base =
        scratch && *scratch ? scratch : std::filesystem::temp_directory_path();
    std::filesystem::create_directories(base);
    std::string pattern = (base / "home-XXXXXX").string();
    root_ = ::mkdtemp(pattern.data());
    Save("HOME");
    Save("XDG_CONFIG_HOME");
    Save("XDG_DOCUMENTS_DIR");
    Save("QUORVEX_DATA_DIR");
    ::setenv("HOME", root_.c_str(), 1);
    ::unsetenv("XDG_CONFIG_HOME");
    ::unsetenv("XDG_DOCUMENTS_DIR");
    std::filesystem::create_directories(data());
    ::setenv("QUORVEX_DATA_DIR", data().c_str(), 1);
    WriteMachine("[Software\\Quorvex\\5.3\\Settings]\n");
    ResetVars();
  }
  ~ScratchHome() {
    for (const auto& [name, value] : saved_) {
      if (value) {
        ::setenv(name.c_str(), value->c_str(), 1);
      } else {
        ::unsetenv(name.c_str());
      }
    }
    std::error_code ec;
    std::filesystem::remove_all(root_, ec);
    ResetVars();
  }
  ScratchHome(const ScratchHome&) = delete;
  ScratchHome& operator=(const ScratchHome&) = delete;

  const std::filesystem::path& root() const { return root_; }
  std::filesystem::path data() const { return root_ / "data"; }
  std::filesystem::path user_file() const { return root_ / ".config" / "quorvex" / "settings"; }
  std::filesystem::path machine_file() const { return data() / "machine-settings"; }

  void WriteMachine(const std::string& text) const { Write(machine_file(), text); }
  void WriteUser(const std::string& text) const {
    std::filesystem::create_directories(user_file().parent_path());
    Write(user_file(), text);
  }

  static void Write(const std::filesystem::path& path, const std::string& text) {
    std::ofstream(path, std::ios::binary | std::ios::trunc) << text;
  }
  static std::string Read(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
  }

 private:
  void Save(const char* name) {
    const char* value = std::getenv(name);
    saved_[name] = value ? std::optional<std::string>(value) : std::nullopt;
  }

  std::filesystem::path root_;
  std::map<std::string, std::optional<std::string>> saved_;
};

}  // namespace qv::testing
