// Any bytes as a control, language or keyword file. Loading may fail with a result or with the
// documented errors (13, 5, 94, 6); nothing else may escape and nothing may crash.
#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>

#include "automation/error.h"
#include "platform/xml.h"
#include "templates/controls.h"
#include "templates/keyword.h"
#include "templates/language.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const std::filesystem::path path =
      std::filesystem::temp_directory_path() / ("qv-fuzz-xml-" + std::to_string(getpid()) + ".xml");
  {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
  }
  const qv::String file = qv::String::FromUtf8(path.string());
  qv::TyxControls controls;
  try {
    if (controls.LoadControls(file)) {
      for (int32_t i = 1; i <= controls.Count(); ++i) {
        qv::TyxControl& control = *controls.Item(i);
        qv::TyxControls copy;
        copy.AddControl(control);
        qv::TyxSessions& sessions = control.Sessions();
        for (int32_t s = 1; s <= sessions.Count(); ++s) {
          const qv::Ref<qv::TyxSession> session = sessions.Item(s);
          sessions.AddSession(*session, session->SessLocation, session->SessLocType);
          sessions.ChangeSession(session->SessValue, *session);
        }
      }
    }
  } catch (const qv::Error&) {
  }
  try {
    qv::TyxLanguage lang;
    lang.Load(file);
    (void)lang.Phrase(u"a");
  } catch (const qv::Error&) {
  }
  try {
    qv::TyxKeyword words;
    words.Load(file);
  } catch (const qv::Error&) {
  }
  return 0;
}
