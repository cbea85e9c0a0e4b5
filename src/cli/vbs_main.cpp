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

// The files added so far, each with its text: an error raised inside a prelude's procedure,
// called from the script, is reported under the prelude's name and line.
struct LoadedFile {
  std::string shown;
  qv::String code;
};

const std::string& NameOfError(const std::vector<LoadedFile>& loaded, const qv::String& code) {
  for (const LoadedFile& file : loaded) {
    if (file.code == code) return file.shown;
  }
  return loaded.back().shown;  // code built at run time (Execute, Eval): the file that ran it
}

// Adds a file's code; false (after printing the report) when it fails.
bool RunFile(qv::vbs::Engine& engine, const std::string& path, const std::string& shown,
             std::vector<LoadedFile>& loaded) {
  qv::String code;
  if (!qv::cli::ReadScriptFile(path, code)) {
    std::fprintf(stderr, "Input Error: Can not find script file \"%s\".\n", shown.c_str());
    return false;
  }
  loaded.push_back({shown, code});
  try {
    engine.AddCode(code);
  } catch (const qv::Error&) {
    std::fflush(stdout);
    const qv::vbs::ScriptError& error = engine.Error();
    std::fprintf(stderr, "%s\n",
                 qv::cli::ErrorReport(NameOfError(loaded, error.Code()), error).c_str());
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
    if (arg == "--prelude") {
      if (i + 1 >= argc) return Usage();  // not a script named "--prelude"
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
  std::vector<LoadedFile> loaded;
  try {
    for (const auto& p : preludes) {
      if (!RunFile(engine, p, FullPath(p), loaded)) return 1;
    }
    if (!RunFile(engine, script, full, loaded)) return 1;
  } catch (const qv::cli::ScriptQuit& quit) {
    std::fflush(stdout);
    return quit.code;
  }
  std::fflush(stdout);
  return 0;
}
