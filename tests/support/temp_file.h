// A temporary FILE* for the tests of what a surface writes (status lines, the prompter's log)
// or reads (a terminal's lines): filled or read back whole, closed when the test ends.
#pragma once

#include <cstdio>
#include <string>

namespace qv::testing {

class TempFile {
 public:
  TempFile() : file_(std::tmpfile()) {}
  ~TempFile() { std::fclose(file_); }
  TempFile(const TempFile&) = delete;
  TempFile& operator=(const TempFile&) = delete;

  std::FILE* get() const { return file_; }
  std::string Text() const {
    std::fflush(file_);
    std::rewind(file_);
    std::string text;
    for (int c; (c = std::fgetc(file_)) != EOF;)
      text.push_back(static_cast<char>(c));
    return text;
  }
  void Fill(const std::string& text) const {
    std::fputs(text.c_str(), file_);
    std::fflush(file_);
    std::rewind(file_);
  }

 private:
  std::FILE* file_;
};

}  // namespace qv::testing
