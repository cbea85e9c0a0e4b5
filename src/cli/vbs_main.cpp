// quorvex-vbs: runs a VBScript file the way `cscript //nologo` does. Options before the file:
// --prelude <file> loads a helper script first (the conformance suite's assertions).
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "ado/classes.h"
#include "cli/wscript.h"
#include "vbscript/engine.h"

namespace {

int Usage() {
  std::fputs("usage: quorvex-vbs [--prelude file.vbs] script.vbs [arguments...]\n", stderr);
  return 2;
}

// Adds a file's code; false (after printing the report) when it fails.
bool RunFile(qv::vbs::Engine& engine, const std::string& path, const std::string& shown) {
  qv::String code;
  if (!qv::cli::ReadScriptFile(path, code)) {
    std::fprintf(stderr, "Input Error: Can not find script file \"%s\".\n", shown.c_str());
    return false;
  }
  try {
    engine.AddCode(code);
  } catch (const qv::Error&) {
    std::fflush(stdout);
    std::fprintf(stderr, "%s\n", qv::cli::ErrorReport(shown, engine.Error()).c_str());
    return false;
  }
  return true;
}

std::string FullPath(const std::string& path) {
  std::error_code ec;
  const auto full = std::filesystem::absolute(path, ec);
  return ec ? path : full.lexically_normal().string();
}

}  // namespace

int main(int argc, char** argv) {
  std::vector<std::string> preludes;
  int i = 1;
  for (; i < argc; ++i) {
    const std::string arg = argv[i];
    if (arg == "--prelude" && i + 1 < argc) {
      preludes.push_back(argv[++i]);
    } else if (arg == "//nologo" || arg == "//NoLogo") {
      continue;
    } else if (arg == "--help" || arg == "-h") {
      Usage();
      return 0;
    } else {
      break;
    }
  }
  if (i >= argc) return Usage();
  const std::string script = argv[i++];
  std::vector<qv::String> arguments;
  for (; i < argc; ++i)
    arguments.push_back(qv::String::FromUtf8(argv[i]));

  const std::string full = FullPath(script);
  qv::vbs::Engine engine;
  engine.SetTimeout(-1);
  qv::ado::RegisterAdoClasses(engine.Registry());
  engine.Registry().Register(u"QuorvexVbs.Counter", [] {
    return qv::Ref<qv::Object>(qv::MakeRef<qv::cli::CounterObject>());
  });
  auto wscript =
      qv::MakeRef<qv::cli::WScriptObject>(engine, qv::String::FromUtf8(full), std::move(arguments));
  engine.AddObject(u"WScript", wscript);
  try {
    for (const auto& p : preludes) {
      if (!RunFile(engine, p, FullPath(p))) return 1;
    }
    if (!RunFile(engine, script, full)) return 1;
  } catch (const qv::cli::ScriptQuit& quit) {
    std::fflush(stdout);
    return quit.code;
  }
  std::fflush(stdout);
  return 0;
}
