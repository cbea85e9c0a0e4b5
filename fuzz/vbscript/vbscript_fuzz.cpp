// Feeds arbitrary bytes to the engine as script source (UTF-8), first as a whole program,
// then as an expression. A short time limit turns endless loops into the time-out error.
// Mutated scripts must not reach the file system, so the file-system object (and the script
// control, whose own engine would offer it again) cannot be created here.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "vbscript/engine.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size > 4096) return 0;
  const qv::String code =
      qv::String::FromUtf8(std::string_view(reinterpret_cast<const char*>(data), size));
  qv::vbs::Engine engine;
  engine.SetTimeout(50);
  for (const char16_t* prog_id : {u"Scripting.FileSystemObject", u"MSScriptControl.ScriptControl"})
    engine.Registry().Register(prog_id, [] { return qv::Ref<qv::Object>(); });
  try {
    engine.AddCode(code);
  } catch (const qv::Error&) {
  }
  try {
    engine.Eval(code);
  } catch (const qv::Error&) {
  }
  return 0;
}
