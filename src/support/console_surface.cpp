// Drawing the status on a terminal line or as plain lines.
#include "support/console_surface.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <string>

#include "support/status.h"

namespace qv {

ConsoleSurface::ConsoleSurface(StatusMode mode, std::FILE* out) : mode_(mode), out_(out) {}

void ConsoleSurface::SetMode(StatusMode mode) {
  Suspend();
  mode_ = mode;
}

StatusMode ConsoleSurface::effective_mode() const {
  if (!out_) return StatusMode::kQuiet;
  if (mode_ != StatusMode::kAuto) return mode_;
  return ::isatty(::fileno(out_)) ? StatusMode::kTerminal : StatusMode::kTitles;
}

void ConsoleSurface::Open(int form, StringView title) {
  open_ = true;
  form_ = form;
  title_ = String(title);
  info_ = String();
  percent_ = 0;
  plain_decile_ = -1;
  switch (effective_mode()) {
    case StatusMode::kTerminal:
      Draw();
      break;
    case StatusMode::kPlain:
    case StatusMode::kTitles:
      PrintLine(title_);
      break;
    default:
      break;
  }
}

void ConsoleSurface::SetInfo(StringView text) {
  if (!open_) return;
  const bool changed = text != info_.view();
  info_ = String(text);
  switch (effective_mode()) {
    case StatusMode::kTerminal:
      Draw();
      break;
    case StatusMode::kPlain:
      if (changed && !text.empty()) PrintLine(u"  " + info_);
      break;
    default:
      break;
  }
}

void ConsoleSurface::SetProgress(int16_t percent) {
  if (!open_) return;
  percent_ = std::clamp<int16_t>(percent, 0, 100);
  switch (effective_mode()) {
    case StatusMode::kTerminal:
      Draw();
      break;
    case StatusMode::kPlain: {
      // A log gets a line per tenth of the way, not one per step.
      const int decile = percent_ / 10;
      if (decile != plain_decile_) {
        plain_decile_ = decile;
        PrintLine(u"  " + NumberText(percent_) + u"%");
      }
      break;
    }
    default:
      break;
  }
}

void ConsoleSurface::Close() {
  Suspend();
  open_ = false;
}

void ConsoleSurface::Suspend() {
  if (!drawn_) return;
  std::fputs("\r\x1b[K", out_);
  std::fflush(out_);
  drawn_ = false;
}

size_t ConsoleSurface::Width() const {
  winsize size{};
  if (::ioctl(::fileno(out_), TIOCGWINSZ, &size) == 0 && size.ws_col > 0) return size.ws_col;
  return 80;
}

void ConsoleSurface::Draw() {
  String line = title_;
  if (form_ == 3) {
    constexpr int kBarWidth = 20;
    const int filled = percent_ * kBarWidth / 100;
    line.Append(u" [");
    line.Append(String(static_cast<size_t>(filled), u'#').view());
    line.Append(String(static_cast<size_t>(kBarWidth - filled), u'.').view());
    line.Append(u"] ");
    line.Append(NumberText(percent_).view());
    line.Append(u"%");
  }
  if (!info_.empty()) {
    line.Append(u"  ");
    line.Append(info_.view());
  }
  // One terminal line only: a wrapped line could not be rewritten in place.
  StringView shown = line.view();
  const size_t width = Width();
  if (shown.size() >= width) shown = shown.substr(0, width - 1);
  std::string text = String::ToUtf8(shown);
  for (char& c : text) {
    if (static_cast<unsigned char>(c) < 0x20) c = ' ';  // a line break would end the line
  }
  // A run reports every page: a line that would show nothing new isn't sent again.
  if (drawn_ && text == shown_) return;
  std::fputs(("\r" + text + "\x1b[K").c_str(), out_);
  std::fflush(out_);
  shown_ = std::move(text);
  drawn_ = true;
}

void ConsoleSurface::PrintLine(StringView text) {
  std::fputs((String::ToUtf8(text) + "\n").c_str(), out_);
  std::fflush(out_);
}

}  // namespace qv
