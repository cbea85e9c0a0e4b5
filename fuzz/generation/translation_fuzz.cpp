// Any bytes as the template of a control, translated into its stored function. The input's
// first byte picks the control's shape (no sessions, or key, include and repeated sessions),
// the rest is the template file. A run ends in a complete function, or in the hard failure
// whose words name the template file, or in an error the block parser documents.
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>

#include "automation/error.h"
#include "generation/translation.h"
#include "platform/fs.h"
#include "platform/text_file.h"
#include "support/status.h"
#include "support/tyx_vars.h"
#include "templates/language.h"

namespace {

struct World {
  qv::String folder;
  qv::String input;
  qv::String output;
  qv::Ref<qv::Tyx> tyx;
};

World& TheWorld() {
  static World world = [] {
    World w;
    const auto path = std::filesystem::temp_directory_path() /
                      ("qv-fuzz-translation-" + std::to_string(getpid()));
    std::filesystem::create_directories(path);
    w.folder = qv::String::FromUtf8(path.string());
    w.input = qv::fs::JoinPath(w.folder, u"t.htm");
    w.output = qv::fs::JoinPath(w.folder, u"t.tmp");
    qv::TyxVars& vars = qv::Vars();
    vars.TemplateFolder = vars.TempFolder = vars.ExtensionsFolder = w.folder;
    vars.Status = qv::MakeRef<qv::TyxStatus>(qv::StatusMode::kQuiet);
    const qv::String lang = qv::fs::JoinPath(w.folder, u"lang.xml");
    qv::WriteTextFile(lang,
                      u"<quorvex.language><phrase id=\"a\" value='x\"y'/></quorvex.language>");
    auto language = qv::MakeRef<qv::TyxLanguage>();
    language->Load(lang);
    vars.TheLang = language;
    w.tyx = qv::MakeRef<qv::Tyx>();
    return w;
  }();
  return world;
}

void AddSession(qv::TyxControl& control, std::u16string_view type, std::u16string_view value) {
  auto session = qv::MakeRef<qv::TyxSession>();
  session->SessType = qv::String(type);
  session->SessValue = qv::String(value);
  session->SessParm = u"p";
  control.Sessions().AddSession(*session, u"", u"");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  World& w = TheWorld();
  const std::string_view bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
  qv::WriteTextFile(w.input, qv::DecodeText(bytes));
  auto control = qv::MakeRef<qv::TyxControl>();
  control->CtrlID = u"t";
  control->CtrlIFiles = u"t.htm";
  if (data[0] & 1) {
    AddSession(*control, u"key", u"a");
    AddSession(*control, u"include", u"x\"y");
    AddSession(*control, u"again", u"b");
  }
  qv::Vars().ProjErr = qv::String();
  try {
    qv::TranslateControl(*w.tyx, *control, w.output);
    const qv::String function = qv::ReadTextFile(w.output);
    if (!function.view().starts_with(u"Function qvScriptEngine()\r\n") ||
        !function.view().ends_with(u"qvScriptEngine = qvOut\r\nEnd Function\r\n")) {
      std::abort();
    }
  } catch (const qv::Error& e) {
    switch (e.number()) {
      case qv::kErrCancelled:
        // A hard failure names the template file in front of the parser's words.
        if (!e.description().view().starts_with(w.input.view())) std::abort();
        break;
      case qv::kErrOverflow:
      case qv::kErrInvalidCall:
      case qv::kErrOutOfStack:
        break;
      default:
        std::abort();
    }
  }
  return 0;
}
