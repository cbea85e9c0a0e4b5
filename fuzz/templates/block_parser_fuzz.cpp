// Any bytes as a template: decoding, Parse with a walk over every block, and GetSession with
// includes read from a small folder that holds a self-including file. The only way out is a
// qv::Error the parser documents (overflow, invalid call, out of stack).
#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

#include "automation/error.h"
#include "platform/text_file.h"
#include "templates/block_parser.h"

namespace {

const qv::String& IncludeFolder() {
  static const qv::String folder =
      [] {
        const auto path = std::filesystem::temp_directory_path() /
                          ("qv-fuzz-include-" + std::to_string(getpid()));
        std::filesystem::create_directories(path);
        std::ofstream(path / "a.txt")
            << "<!--##session a##-->A<!--##include a.txt/a##--><!--##/session##-->"
               "<!--##session b##-->B\n<!--##include b.txt/x##--><!--##/session##-->";
        std::ofstream(path / "b.txt") << "<!--##session x##-->X<!--##/session##-->";
        return qv::String::FromUtf8(path.string());
      }();
  return folder;
}

// The enclosing-function rule transcribed step by step, without the parser's shortcuts: the
// parser's BlockName of every script block must agree with it.
qv::StringView PlainEnclosingFunction(qv::StringView source, qv::StringView work) {
  for (;;) {
    size_t found = qv::StringView::npos;
    for (size_t i = work.size() >= 9 ? work.size() - 9 + 1 : 0; i-- > 0;) {
      if (qv::EqualsNoCase(work.substr(i, 9), u"Function ")) {
        found = i;
        break;
      }
    }
    if (found == qv::StringView::npos) return {};
    const qv::StringView head = work.substr(0, found + 1);
    const size_t crlf = head.rfind(u"\r\n");
    const qv::StringView prefix =
        crlf == qv::StringView::npos ? head : work.substr(crlf + 2, found - crlf - 2);
    const qv::StringView trimmed = qv::TrimBlanks(prefix);
    if (trimmed.empty()) {
      const size_t paren = work.find(u'(', found);
      if (paren == qv::StringView::npos) return {};
      return qv::TrimBlanks(work.substr(found + 8, paren - found - 8));
    }
    if (trimmed.front() != u'\'' && prefix.back() == u' ') return {};
    work = source.substr(0, found + 1);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  // Include names may climb out of the folder; keep the fuzzer away from device-like files.
  if (bytes.find("..") != std::string_view::npos) return 0;
  const qv::String text = qv::DecodeText(bytes, qv::LineEnds::kCrLf);
  qv::TyParser parser;
  parser.set_include_folder(IncludeFolder());
  try {
    parser.Parse(text);
  } catch (const qv::Error&) {
  }
  try {
    for (int32_t i = 1; i <= parser.Count(); ++i) {
      parser.SetBlockID(i);
      const qv::StringView value = parser.BlockValueView();
      if (parser.BlockType() == qv::tyc_Block_Script &&
          parser.BlockName() != PlainEnclosingFunction(text.view(), value)) {
        __builtin_trap();
      }
      (void)parser.BlockIndent();
    }
  } catch (const qv::Error&) {
  }
  const qv::StringView view = text.view();
  for (const qv::StringView id : {qv::StringView(u"a"), view.substr(0, 3)}) {
    try {
      (void)parser.GetSession(view, id);
    } catch (const qv::Error&) {
    }
  }
  return 0;
}
