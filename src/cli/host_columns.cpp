// Measuring and padding columns. The Unicode width tables are glibc's (wcwidth); it answers only
// under a UTF-8 character type, so measuring switches this thread to C.UTF-8 for the moment
// and leaves the process's locale alone.
#include "cli/host_columns.h"

#include <locale.h>

#include <algorithm>
#include <cwchar>

namespace qv::cli {

namespace {

// The C.UTF-8 character type for the calling thread while it lives.
class Utf8Ctype {
 public:
  Utf8Ctype() : utf8_(::newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr)) {
    if (utf8_) previous_ = ::uselocale(utf8_);
  }
  ~Utf8Ctype() {
    if (!utf8_) return;
    ::uselocale(previous_);
    ::freelocale(utf8_);
  }
  Utf8Ctype(const Utf8Ctype&) = delete;
  Utf8Ctype& operator=(const Utf8Ctype&) = delete;
  bool ok() const { return utf8_ != nullptr; }

 private:
  locale_t utf8_;
  locale_t previous_ = nullptr;
};

}  // namespace

size_t DisplayWidth(std::string_view utf8) {
  const Utf8Ctype ctype;
  if (!ctype.ok()) return utf8.size();
  std::mbstate_t state{};
  size_t width = 0;
  for (size_t i = 0; i < utf8.size();) {
    wchar_t c = 0;
    const size_t n = std::mbrtowc(&c, utf8.data() + i, utf8.size() - i, &state);
    if (n == static_cast<size_t>(-1) || n == static_cast<size_t>(-2) || n == 0) {
      state = std::mbstate_t{};
      ++width;
      ++i;
      continue;
    }
    width += static_cast<size_t>(std::max(::wcwidth(c), 0));
    i += n;
  }
  return width;
}

std::string FormatColumns(const std::vector<std::vector<std::string>>& rows) {
  std::vector<size_t> widths;
  for (const auto& row : rows) {
    widths.resize(std::max(widths.size(), row.size()));
    for (size_t i = 0; i < row.size(); ++i)
      widths[i] = std::max(widths[i], DisplayWidth(row[i]));
  }
  std::string text;
  for (const auto& row : rows) {
    for (size_t i = 0; i < row.size(); ++i) {
      text += row[i];
      if (i + 1 < row.size()) text.append(widths[i] - DisplayWidth(row[i]) + 2, ' ');
    }
    text += '\n';
  }
  return text;
}

}  // namespace qv::cli
