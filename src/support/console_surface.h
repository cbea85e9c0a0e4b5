// The console stand-in for the progress window: on a terminal one line on stderr, rewritten in
// place (with a bar in the third form); on anything else the title of each stage as a line of
// its own, or in plain mode every new text too; nothing at all in quiet mode.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>

#include "automation/string.h"

namespace qv {

enum class StatusMode : uint8_t;

class ConsoleSurface {
 public:
  ConsoleSurface(StatusMode mode, std::FILE* out);

  void SetMode(StatusMode mode);
  StatusMode mode() const { return mode_; }
  // The mode in use: Auto resolved to Terminal or Titles.
  StatusMode effective_mode() const;

  // form 1, 2 or 3 (3 shows a bar).
  void Open(int form, StringView title);
  void SetInfo(StringView text);
  void SetProgress(int16_t percent);
  void Close();
  // Takes the line off a terminal; the next change draws it again.
  void Suspend();

 private:
  void Draw();
  void PrintLine(StringView text);
  size_t Width() const;

  StatusMode mode_;
  std::FILE* out_;
  bool open_ = false;
  int form_ = 0;
  String title_;
  String info_;
  int16_t percent_ = 0;
  bool drawn_ = false;     // a terminal line is showing
  std::string shown_;      // the terminal line as last drawn
  int plain_decile_ = -1;  // the last tenth of the bar written as a plain line
};

}  // namespace qv
