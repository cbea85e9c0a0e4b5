// Opening and saving a project for the editing commands.
#include "cli/host_project.h"

#include <CLI/CLI.hpp>

#include <cstdio>
#include <filesystem>

#include "automation/convert.h"
#include "automation/error.h"
#include "cli/commands.h"
#include "persistence/project_file.h"
#include "root/create_tyx.h"
#include "schema/project_loader.h"
#include "support/status.h"
#include "support/tyx_vars.h"

namespace qv::cli {

void FailWith(const String& words) {
  std::fflush(stdout);
  std::fprintf(stderr, "%s\n", words.ToUtf8().c_str());
  // The command is over: dropping its project on the way out must not bury the words above.
  SharedStatus().SetMode(StatusMode::kQuiet);
  throw CLI::RuntimeError(kExitFailure);
}

String ProductMessage(StringView words) {
  String text = Vars().ProductTitle;
  text.Append(u": ");
  text.Append(words);
  return text;
}

void RequireName(const std::string& name, StringView what) {
  if (name.find_first_not_of(" \t") != std::string::npos) return;
  String words(what);
  words.Append(u" needs a name!");
  FailWith(ProductMessage(words));
}

std::string ShownValue(const Variant& value) {
  std::string text;
  try {
    text = value.is_empty() || value.is_null() ? std::string() : ToString(value).ToUtf8();
  } catch (const Error&) {
    text = "(" + TypeNameOf(value).ToUtf8() + ")";
  }
  std::string shown;
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n') continue;
    shown += text[i] == '\n' || text[i] == '\r' ? std::string("\\n") : std::string(1, text[i]);
  }
  return shown;
}

Ref<Tyx> OpenProject(const std::string& project_file) {
  Ref<Tyx> tyx;
  try {
    tyx = CreateTyx();
    LoadProjectFile(*tyx, String::FromUtf8(project_file), [](Tyx&) {});
  } catch (const Error& e) {
    FailWith(e.description());
  }
  if (!tyx->ProjErr().empty()) FailWith(tyx->ProjErr());
  ShareProjectSettings(*tyx);
  return tyx;
}

// The project is written beside its file and then put in its place: a save that fails half
// way (a value that won't convert, a table missing from the order) leaves the file as it was,
// where the library's own Save leaves what it wrote so far.
void SaveProject(Tyx& tyx, const std::string& project_file) {
  namespace fs = std::filesystem;
  std::error_code ec;
  fs::path target(project_file);
  if (fs::is_symlink(target, ec)) target = fs::canonical(target, ec);
  if (ec) target = project_file;
  const fs::path temporary = target.string() + ".saving";
  try {
    SaveProjectFile(tyx, String::FromUtf8(temporary.string()));
    fs::rename(temporary, target, ec);
    if (ec) throw Error(kErrPermissionDenied);
  } catch (const Error& e) {
    fs::remove(temporary, ec);
    // The platform's words alone ("Path not found") leave the user guessing which file.
    FailWith(ProductMessage(u"Saving project file \"" + String::FromUtf8(project_file) +
                            u"\" failed! " + e.description()));
  }
}

}  // namespace qv::cli
