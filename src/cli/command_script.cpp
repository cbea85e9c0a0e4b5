// `quorvex script <file.vbs> [arguments...]`: runs a host script as cscript would, with the
// WScript object, the standard classes and the library's own ("TyxClass.Tyx" gives a new
// project root). The exit status is WScript.Quit's code, or 1 after an uncaught error, which
// is reported in cscript's form with the offending source line below it.
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "ado/classes.h"
#include "automation/error.h"
#include "cli/commands.h"
#include "cli/host_classes.h"
#include "cli/host_options.h"
#include "cli/wscript.h"
#include "vbscript/engine.h"

namespace qv::cli {

namespace {

struct ScriptOptions {
  std::string file;
  std::vector<std::string> arguments;
};

std::string FullPath(const std::string& path) {
  std::error_code ec;
  const auto full = std::filesystem::absolute(path, ec);
  return ec ? path : full.lexically_normal().string();
}

// The code of an error as Windows Script Host shows it: VBScript's own numbers inside the
// 800A facility, anything else (an object's HRESULT, the library's -1) as it is.
uint32_t HostErrorCode(int32_t number) {
  if (number >= 0 && number <= 0xFFFF) return 0x800A0000u | static_cast<uint32_t>(number);
  return static_cast<uint32_t>(number);
}

// cscript's report, then the line it points at and the error's code. An error raised without
// words shows its code in their place, as cscript does.
void ReportError(const std::string& path, const vbs::ScriptError& error) {
  std::fflush(stdout);
  char code[16];
  std::snprintf(code, sizeof code, "%08X", HostErrorCode(error.Number()));
  std::string report = ErrorReport(path, error);
  if (error.Description().empty()) report += std::string("0x") + code;
  std::fprintf(stderr, "%s\n", report.c_str());
  const std::string text = error.Text().ToUtf8();
  if (!text.empty()) std::fprintf(stderr, "    %s\n", text.c_str());
  std::fprintf(stderr, "    Code: %s\n", code);
}

int RunScript(const ScriptOptions& o) {
  const std::string full = FullPath(o.file);
  String code;
  if (!ReadScriptFile(o.file, code)) {
    std::fprintf(stderr, "Input Error: Can not find script file \"%s\".\n", full.c_str());
    return kExitFailure;
  }
  std::vector<String> arguments;
  for (const std::string& a : o.arguments)
    arguments.push_back(String::FromUtf8(a));

  vbs::Engine engine;
  engine.SetTimeout(-1);  // a host script runs as long as its work takes
  RegisterHostClasses(engine.Registry());
  ado::RegisterAdoClasses(engine.Registry());
  engine.AddObject(u"WScript",
                   MakeRef<WScriptObject>(engine, String::FromUtf8(full), std::move(arguments)));
  try {
    engine.AddCode(code);
  } catch (const ScriptQuit& quit) {
    std::fflush(stdout);
    return quit.code;
  } catch (const Error&) {
    ReportError(full, engine.Error());
    return kExitFailure;
  }
  std::fflush(stdout);
  return 0;
}

}  // namespace

void AddScriptCommand(CLI::App& app) {
  CLI::App* cmd = app.add_subcommand(
      "script", "Run a VBScript host script; CreateObject(\"TyxClass.Tyx\") gives a project root");
  cmd->footer(
      "Usage: quorvex [global options] script <file.vbs> [arguments...]\n"
      "Everything after the file, options included, goes to the script's WScript.Arguments.");
  // The file and what follows are left unparsed: the script's arguments are its own business,
  // even when they look like options of quorvex.
  cmd->prefix_command();
  cmd->fallthrough(false);
  cmd->callback([cmd] {
    std::vector<std::string> rest = cmd->remaining();
    if (!TakeLeadingHostOptions(*cmd, rest)) throw CLI::RuntimeError(kExitFailure);
    if (rest.empty()) {
      std::fputs("quorvex script: the script file is missing\n", stderr);
      throw CLI::RuntimeError(kExitFailure);
    }
    ScriptOptions options{rest.front(), std::vector<std::string>(rest.begin() + 1, rest.end())};
    const int status = RunScript(options);
    if (status != 0) throw CLI::RuntimeError(status);
  });
}

}  // namespace qv::cli
