// The embedded system script library and the provider behind TyxStatus.GetSysCode.
#include "script/system_library.h"

#include <cstring>

#include "platform/text_file.h"
#include "support/tyx_vars.h"

namespace qv {
namespace embedded {
extern const char kSystemLibraryVB[];
extern const char kSystemLibraryVL[];
}  // namespace embedded

namespace {

// The sources are edited on Linux: their line ends become CR LF, the only line end the
// engine's rules count, as for every script file it reads.
String Decode(const char* text) {
  return DecodeText(std::string_view(text, std::strlen(text)), LineEnds::kCrLf);
}

}  // namespace

String SystemLibraryText(StringView language) {
  if (language == u"VB") {
    static const String text = Decode(embedded::kSystemLibraryVB);
    return text;
  }
  if (language == u"VL") {
    static const String text = Decode(embedded::kSystemLibraryVL);
    return text;
  }
  return {};
}

void InstallSystemLibrary() {
  TyxVars& vars = Vars();
  if (!vars.GetCode) vars.GetCode = [](StringView language) { return SystemLibraryText(language); };
}

}  // namespace qv
