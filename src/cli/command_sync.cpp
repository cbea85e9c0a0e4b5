// `quorvex sync <project-file> [--map NEW=OLD ...] [--keep-keys|--update-keys] [--dry-run]`:
// merges the live database's changes into the project and keeps the user's settings. The
// questions of the merge are answered from the options: --map names renamed tables, views
// (NEW=OLD) and fields (TABLE.NEW=OLD); a changed primary key is kept or updated. Without
// options a terminal is asked; elsewhere nothing is mapped and keys are updated. The project
// file is replaced atomically; --dry-run shows the changes and writes nothing.
#include <cstdio>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "automation/error.h"
#include "cli/commands.h"
#include "cli/host_differences.h"
#include "cli/host_project.h"
#include "platform/prompter.h"
#include "support/status.h"
#include "support/tyx_vars.h"
#include "sync/difference_check.h"
#include "sync/live_schema.h"
#include "sync/table_sync.h"

namespace qv::cli {

namespace {

struct SyncOptions {
  std::string project_file;
  std::vector<std::string> maps;
  bool keep_keys = false;
  bool update_keys = false;
  bool dry_run = false;
};

// New name to old name, per table for fields; tables and views under the scope "".
using RenameMap = std::map<std::pair<String, String>, String>;

// What the mapping dialogs were answered, from --map or on the terminal, in the order asked:
// the list of differences shows an added and a removed name, and this says they were one.
struct Rename {
  String scope;  // the table of a renamed field, "" for a table or view
  String old_name;
  String new_name;
};
using RenameLog = std::vector<Rename>;

// Answers the mapping dialog from --map and the key question from --keep-keys/--update-keys,
// and leaves every other question to the prompter it wraps. A mapping cancelled on the
// terminal maps nothing: taken as it stands it would pair old and new names by position.
class SyncPrompter : public Prompter {
 public:
  SyncPrompter(std::unique_ptr<Prompter> base, RenameMap renames, std::optional<bool> keep_keys,
               std::shared_ptr<RenameLog> log)
      : base_(std::move(base)),
        renames_(std::move(renames)),
        keep_keys_(keep_keys),
        log_(std::move(log)) {}

  Reply Ask(const Prompt& prompt) override {
    if (prompt.kind == Prompt::kMapNames) return AskMap(prompt);
    if (prompt.kind == Prompt::kButtons && keep_keys_ &&
        prompt.text.view().starts_with(u"Primary key for")) {
      Reply reply;
      reply.button = *keep_keys_ ? 1 : 0;  // the buttons are Update, Keep
      return reply;
    }
    return base_->Ask(prompt);
  }
  bool CanAnswer() const override { return base_->CanAnswer(); }

 private:
  Reply AskMap(const Prompt& prompt) {
    Reply reply = PickMap(prompt);
    const String scope = ScopeOf(prompt.title);
    for (size_t i = 0; i < reply.map.size() && i < prompt.new_names.size(); ++i) {
      if (reply.map[i] && *reply.map[i] < prompt.names.size())
        log_->push_back({scope, prompt.names[*reply.map[i]], prompt.new_names[i]});
    }
    return reply;
  }
  Reply PickMap(const Prompt& prompt) {
    if (renames_.empty()) {
      Reply reply = base_->Ask(prompt);
      if (!reply.cancelled) return reply;
      reply = Reply();
      reply.map.resize(prompt.new_names.size());
      return reply;
    }
    const String scope = ScopeOf(prompt.title);
    Reply reply;
    for (const String& name : prompt.new_names) {
      std::optional<size_t> pick;
      if (auto it = renames_.find({scope, name}); it != renames_.end()) {
        for (size_t i = 0; i < prompt.names.size(); ++i) {
          if (prompt.names[i] == it->second) pick = i;
        }
      }
      reply.map.push_back(pick);
    }
    return reply;
  }
  // The table of a field mapping ("Table: NAME - New fields found in schema"), or "".
  static String ScopeOf(const String& title) {
    constexpr StringView kHead = u"Table: ";
    constexpr StringView kTail = u" - New fields found in schema";
    const StringView t = title.view();
    if (!t.starts_with(kHead) || !t.ends_with(kTail)) return String();
    return String(t.substr(kHead.size(), t.size() - kHead.size() - kTail.size()));
  }

  std::unique_ptr<Prompter> base_;
  RenameMap renames_;
  std::optional<bool> keep_keys_;
  std::shared_ptr<RenameLog> log_;
};

void PrintRenames(const RenameLog& log) {
  for (const Rename& r : log) {
    const std::string what = r.scope.empty() ? std::string() : "field " + r.scope.ToUtf8() + ".";
    std::printf("= %s%s renamed to %s (its settings kept)\n", what.c_str(),
                r.old_name.ToUtf8().c_str(), r.new_name.ToUtf8().c_str());
  }
}

bool Listed(const DifferenceList& found, SchemaDifference::Kind kind, StringView table,
            StringView field = {}) {
  for (const SchemaDifference& d : found) {
    if (d.kind == kind && d.table == table && d.field == field) return true;
  }
  return false;
}

// The type of a table the check lists as `kind`, or "".
String TypeListed(const DifferenceList& found, SchemaDifference::Kind kind, StringView table) {
  for (const SchemaDifference& d : found) {
    if (d.kind == kind && d.table == table) return d.table_type;
  }
  return String();
}

// Whether the project has a field `name` in its table `table` that the database has lost.
bool LostField(const DifferenceList& found, StringView table, StringView name) {
  return Listed(found, SchemaDifference::kFieldRemoved, table, name);
}

// Whether the schema's table or view `table` has a column `name`.
bool HasColumn(const TyxSchema& schema, StringView table, StringView name) {
  for (const TySchemaTable& record : schema.db().tables.Tbl) {
    if (record.TblName != table) continue;
    for (int16_t i = 0; i < record.TblFldCnt; ++i) {
      if (record.TblFields.fld[static_cast<size_t>(i)].FldName == name) return true;
    }
  }
  return false;
}

// Whether the project's table or view `table` has a field `name`.
bool HasField(Tyx& tyx, StringView table, StringView name) {
  TyxDatabase* db = CurrentDatabase(tyx);
  TyxTable* t = db ? db->Tables().list().ByName(table) : nullptr;
  return t && t->Fields().list().ByName(name);
}

// Reads --map against what the check found: NEW must be a table or view the database added
// and OLD one of the same kind it lost, or NEW is TABLE.FIELD for a field added to a table
// both still have and OLD (or TABLE.OLD) a field that table lost. Inside a table renamed by
// another --map, TABLE is the new name, FIELD one of its columns and OLD a field of the old
// table.
RenameMap ParseMaps(const std::vector<std::string>& maps, const DifferenceList& found,
                    const TyxSchema& schema, Tyx& tyx) {
  RenameMap renames;
  std::vector<std::pair<std::string, std::pair<String, String>>> fields;  // entry, NEW, OLD
  for (const std::string& entry : maps) {
    const size_t eq = entry.find('=');
    if (eq == std::string::npos || eq == 0 || eq + 1 == entry.size()) {
      FailWith(ProductMessage(u"--map " + String::FromUtf8(entry) +
                              u": give it as NEW=OLD (a table or view) or TABLE.NEW=OLD (a "
                              u"field)"));
    }
    const String new_name = String::FromUtf8(entry.substr(0, eq));
    const String old_name = String::FromUtf8(entry.substr(eq + 1));
    const String new_type = TypeListed(found, SchemaDifference::kTableAdded, new_name);
    if (new_type.empty()) {
      fields.push_back({entry, {new_name, old_name}});
      continue;
    }
    if (TypeListed(found, SchemaDifference::kTableRemoved, old_name) != new_type) {
      FailWith(ProductMessage(u"--map " + String::FromUtf8(entry) + u": the project has no " +
                              (new_type == u"VIEW" ? u"view " : u"table ") + old_name +
                              u" that the database has lost"));
    }
    renames[{String(), new_name}] = old_name;
  }
  // Fields after tables, so that a field map may name a table renamed by a later --map.
  for (const auto& [entry, names] : fields) {
    const auto& [new_name, old_name] = names;
    const size_t dot = new_name.view().rfind(u'.');
    const String table =
        dot == StringView::npos ? String() : String(new_name.view().substr(0, dot));
    const String field =
        dot == StringView::npos ? String() : String(new_name.view().substr(dot + 1));
    const auto renamed = renames.find({String(), table});
    const bool added = renamed != renames.end()
                           ? HasColumn(schema, table, field)
                           : Listed(found, SchemaDifference::kFieldAdded, table, field);
    if (table.empty() || !added) {
      FailWith(ProductMessage(u"--map " + String::FromUtf8(entry) +
                              u": the database has no new table or view " + new_name +
                              u", and no table with a new field of that name"));
    }
    String old_field = old_name;
    if (old_field.view().starts_with(table.view()) && old_field.size() > table.size() &&
        old_field.view()[table.size()] == u'.') {
      old_field = String(old_field.view().substr(table.size() + 1));
    }
    const bool lost = renamed != renames.end() ? HasField(tyx, renamed->second, old_field)
                                               : LostField(found, table, old_field);
    if (!lost) {
      const String old_table = renamed != renames.end() ? renamed->second : table;
      FailWith(ProductMessage(u"--map " + String::FromUtf8(entry) + u": table " + old_table +
                              u" has no field " + old_field + u" that the database has lost"));
    }
    renames[{table, field}] = old_field;
  }
  return renames;
}

void RunSync(const SyncOptions& o) {
  if (o.keep_keys && o.update_keys) {
    FailWith(ProductMessage(u"--keep-keys and --update-keys exclude each other"));
  }
  Ref<Tyx> tyx = OpenProject(o.project_file);
  DifferenceList found;
  const auto renamed = std::make_shared<RenameLog>();
  try {
    // One read of the schema: the check lists it, the options are judged against it, and the
    // synchronisation applies it.
    TyxSchema schema;
    if (!ReadLiveSchema(*tyx, schema, Vars().ProductName + u" - Database Synchronization...") ||
        CheckDB(*tyx, schema, &found) < 0) {
      std::fflush(stdout);
      std::fprintf(stderr, "%s\n", tyx->ProjErr().ToUtf8().c_str());
      throw CLI::RuntimeError(kExitSchemaUnreadable);
    }
    RenameMap renames = ParseMaps(o.maps, found, schema, *tyx);
    std::optional<bool> keep_keys;
    if (o.keep_keys || o.update_keys) keep_keys = o.keep_keys;
    SetCurrentPrompter(std::make_unique<SyncPrompter>(TakeCurrentPrompter(), std::move(renames),
                                                      keep_keys, renamed));
    SynchronizeDB(*tyx, schema);
  } catch (const Error& e) {
    FailWith(e.description());
  }
  SharedStatus().CloseStatus();
  if (!tyx->ProjErr().empty()) {
    std::fflush(stdout);
    std::fprintf(stderr, "%s\n", tyx->ProjErr().ToUtf8().c_str());
    throw CLI::RuntimeError(kExitSchemaUnreadable);
  }
  PrintDifferences(found, stdout);
  PrintRenames(*renamed);
  const int listed = CountListed(found);
  const std::string summary =
      listed == 0 ? std::string("no differences")
                  : DifferencesText(listed) + (o.dry_run ? " to merge" : "") + ", listed above";
  if (o.dry_run) {
    std::printf("%s: dry run, nothing written (%s)\n", o.project_file.c_str(), summary.c_str());
    return;
  }
  SaveProject(*tyx, o.project_file);
  std::printf("%s: synchronised with the database (%s)\n", o.project_file.c_str(), summary.c_str());
}

}  // namespace

void AddSyncCommand(CLI::App& app) {
  auto options = std::make_shared<SyncOptions>();
  CLI::App* cmd = app.add_subcommand("sync", "Merge the live database's changes into the project");
  cmd->add_option("project-file", options->project_file, "The project file")->required();
  cmd->add_option("--map", options->maps,
                  "A renamed table or view NEW=OLD, or a renamed field TABLE.NEW=OLD; repeat it");
  cmd->add_flag("--keep-keys", options->keep_keys, "Keep a primary key the database changed");
  cmd->add_flag("--update-keys", options->update_keys,
                "Take a primary key the database changed (the default)");
  cmd->add_flag("--dry-run", options->dry_run, "Show what would change and write nothing");
  cmd->footer("Exit status: 0 done, 1 a failure, 2 the database could not be read.");
  cmd->callback([options] { RunSync(*options); });
}

}  // namespace qv::cli
