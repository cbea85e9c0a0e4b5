// `quorvex extension add|remove|list <project-file> [name] [template]`: the project's
// extension packages. add and remove change the list through AddExtension and DeleteExtension
// and write the project back; list prints "name = template" per extension, in order.
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "automation/error.h"
#include "cli/commands.h"
#include "cli/host_project.h"
#include "model/extension.h"
#include "support/data_folder.h"

namespace qv::cli {

namespace {

struct ExtensionOptions {
  std::string project_file;
  std::string name;
  std::string template_path;
};

// The package of an extension added without one: the data folder's extensions/<name>.zip,
// which a run finds by that relative path. An unknown name fails, listing the shipped ones.
std::string ShippedPackage(const std::string& name) {
  const std::filesystem::path folder = DataFolder() / "extensions";
  std::error_code ec;
  if (std::filesystem::is_regular_file(folder / (name + ".zip"), ec)) return name + ".zip";
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(folder, ec)) {
    if (entry.path().extension() == ".zip") names.push_back(entry.path().stem().string());
  }
  std::sort(names.begin(), names.end());
  std::string list;
  for (const std::string& n : names)
    list += (list.empty() ? "" : ", ") + n;
  FailWith(ProductMessage(String::FromUtf8("No extension \"" + name +
                                           "\" is shipped! Give its package, or one of: " +
                                           (list.empty() ? std::string("none") : list) + ".")));
}

// A package given by the user: a run looks for a relative path in the data folder's
// extensions/, so a file found from the current folder is kept with its full path.
std::string GivenPackage(const std::string& path) {
  namespace fs = std::filesystem;
  std::error_code ec;
  if (!fs::path(path).is_relative() || !fs::is_regular_file(path, ec)) return path;
  const fs::path full = fs::absolute(path, ec).lexically_normal();
  return ec ? path : full.string();
}

void AddExtension(const ExtensionOptions& o) {
  Ref<Tyx> tyx = OpenProject(o.project_file);
  const String name = String::FromUtf8(o.name);
  const std::string package =
      o.template_path.empty() ? ShippedPackage(o.name) : GivenPackage(o.template_path);
  bool added = false;
  try {
    added = tyx->AddExtension(name, String::FromUtf8(package));
  } catch (const Error& e) {
    FailWith(e.description());
  }
  if (!added) FailWith(ProductMessage(u"Cannot add the extension '" + name + u"'!"));
  SaveProject(*tyx, o.project_file);
}

void RemoveExtension(const ExtensionOptions& o) {
  Ref<Tyx> tyx = OpenProject(o.project_file);
  const String name = String::FromUtf8(o.name);
  bool removed = false;
  try {
    removed = tyx->DeleteExtension(name);
  } catch (const Error& e) {
    FailWith(e.description());
  }
  if (!removed) FailWith(ProductMessage(u"Extension " + name + u" not found!"));
  SaveProject(*tyx, o.project_file);
}

void ListExtensions(const ExtensionOptions& o) {
  Ref<Tyx> tyx = OpenProject(o.project_file);
  TyxExtensions& list = tyx->Extensions();
  for (int16_t seq = 1; seq <= list.Count(); ++seq) {
    const Ref<TyxExtension> e = list.Seq(seq);
    if (!e) continue;
    std::printf("%s = %s\n", e->Name().ToUtf8().c_str(), e->Template().ToUtf8().c_str());
  }
}

}  // namespace

void AddExtensionCommand(CLI::App& app) {
  auto o = std::make_shared<ExtensionOptions>();
  CLI::App* cmd = app.add_subcommand("extension", "Add, remove or list a project's extensions");
  cmd->require_subcommand(1);
  CLI::App* add = cmd->add_subcommand("add", "Add an extension, or change its template");
  add->add_option("project-file", o->project_file, "The project file")->required();
  add->add_option("name", o->name, "The extension's name")->required();
  add->add_option("template", o->template_path,
                  "The extension package (a zip file); without it, the shipped one of that name");
  add->callback([o] { AddExtension(*o); });
  CLI::App* remove = cmd->add_subcommand("remove", "Remove an extension");
  remove->add_option("project-file", o->project_file, "The project file")->required();
  remove->add_option("name", o->name, "The extension's name")->required();
  remove->callback([o] { RemoveExtension(*o); });
  CLI::App* list = cmd->add_subcommand("list", "List the extensions and their templates");
  list->add_option("project-file", o->project_file, "The project file")->required();
  list->callback([o] { ListExtensions(*o); });
}

}  // namespace qv::cli
