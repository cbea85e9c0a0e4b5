// A fresh folder per test below QV_TEST_SCRATCH (or the system's temporary folder), removed
// again at the end, with helpers to put files into it.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <ostream>
#include <string>
#include <string_view>

#include "automation/string.h"

namespace qv {

// Failure messages show engine text as UTF-8.
inline void PrintTo(const String& text, std::ostream* os) {
  *os << '"' << text.ToUtf8() << '"';
}

}  // namespace qv

namespace qv::testing {

class ScratchFolder {
 public:
  ScratchFolder() {
    const char* base = std::getenv("QV_TEST_SCRATCH");
    const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
    std::string name = info ? std::string(info->test_suite_name()) + "." + info->name() : "test";
    name += "-" + std::to_string(::getpid());
    path_ = std::filesystem::path(base && *base ? base
                                                : std::filesystem::temp_directory_path().string()) /
            name;
    std::filesystem::remove_all(path_);
    std::filesystem::create_directories(path_);
  }
  ~ScratchFolder() {
    std::error_code ec;
    std::filesystem::remove_all(path_, ec);
  }
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;

  const std::filesystem::path& path() const { return path_; }
  std::string Native(std::string_view name = {}) const {
    return name.empty() ? path_.string() : (path_ / name).string();
  }
  // The folder or a file in it as the engine writes paths.
  String Path(std::string_view name = {}) const { return String::FromUtf8(Native(name)); }

  // Writes raw bytes, creating folders on the way.
  String Write(std::string_view name, std::string_view bytes) const {
    const std::filesystem::path file = path_ / name;
    std::filesystem::create_directories(file.parent_path());
    std::ofstream out(file, std::ios::binary);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    return String::FromUtf8(file.string());
  }
  std::string Read(std::string_view name) const {
    std::ifstream in(path_ / name, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
  }

 private:
  std::filesystem::path path_;
};

}  // namespace qv::testing
