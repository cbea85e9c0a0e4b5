// `quorvex set <project-file> [--database | --table T [--field F]] NAME=VALUE...`: changes
// settings of the project, of its database (the user table's level and user ID fields, ...),
// of one table or of one field, by name through the object interface, so each value
// is converted as the setting's accessor converts it. Every assignment is made before the file
// is written: one that fails leaves the file as it was.
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

#include "automation/convert.h"
#include "automation/error.h"
#include "cli/commands.h"
#include "cli/host_project.h"
#include "model/database.h"
#include "model/field.h"
#include "model/table.h"

namespace qv::cli {

namespace {

struct SetOptions {
  std::string project_file;
  std::string table;
  std::string field;
  bool database = false;
  std::vector<std::string> assignments;
};

// The object whose settings change and the words that name it in messages. A table or a
// field also has its place in its list (TblSeq, FldSeq), which `move` changes.
struct Target {
  Object* object = nullptr;
  TyProperties* bag = nullptr;
  String label;
  StringView seq_name;
  std::function<void(int16_t)> move;
  int32_t count = 0;
};

// Gives an entry a new place in its list's order. The entries between its old place and the
// new one shift by one, so that the places stay 1 to Count, each once: a project is saved, and
// its pages made, by walking the places, and a gap or a twin would lose an entry.
template <class T>
void MoveTo(const NamedList<T>& list, T& moved, int16_t place) {
  const int16_t from = NamedList<T>::SeqOf(moved);
  list.ForEach([&](T& item) {
    const int16_t s = NamedList<T>::SeqOf(item);
    int16_t to = s;
    if (&item == &moved) {
      to = place;
    } else if (from < place && s > from && s <= place) {
      to = static_cast<int16_t>(s - 1);
    } else if (place < from && s >= place && s < from) {
      to = static_cast<int16_t>(s + 1);
    }
    if (to != s) item.Entry(T::kSeqIndex).SetValue(Variant(to));
  });
}

Target FindTarget(Tyx& tyx, const SetOptions& o) {
  if (o.database && !o.table.empty())
    FailWith(ProductMessage(u"--database and --table can't go together!"));
  if (o.table.empty() && !o.database) {
    if (!o.field.empty()) FailWith(ProductMessage(u"--field needs --table!"));
    return {&tyx, &tyx.Properties(), u"the project", {}, {}, 0};
  }
  TyxDatabase* db = tyx.Databases().Find(tyx.CurrentDbName);
  if (!db) FailWith(ProductMessage(u"Database not loaded!"));
  if (o.database) {
    if (!o.field.empty()) FailWith(ProductMessage(u"--field needs --table!"));
    return {db, &db->Properties(), u"the database", {}, {}, 0};
  }
  const String table_name = String::FromUtf8(o.table);
  TyxTable* table = db->Tables().list().ByName(table_name);
  if (!table) FailWith(ProductMessage(u"Table " + table_name + u" not found!"));
  if (o.field.empty()) {
    return {table,
            &table->Properties(),
            u"table " + table_name,
            u"TblSeq",
            [list = &db->Tables().list(), table](int16_t place) { MoveTo(*list, *table, place); },
            db->Tables().Count()};
  }
  const String field_name = String::FromUtf8(o.field);
  TyxField* field = table->Fields().list().ByName(field_name);
  if (!field && table->Fields().Count() == 0 && tyx.DynamicLoadDB()) {
    // A project that loads its tables on demand has not read this one's fields yet.
    try {
      tyx.Services().LoadTable(tyx, Variant(table_name));
    } catch (const Error& e) {
      FailWith(e.description());
    }
    if (!tyx.ProjErr().empty()) FailWith(tyx.ProjErr());
    table = db->Tables().list().ByName(table_name);
    field = table ? table->Fields().list().ByName(field_name) : nullptr;
  }
  if (!field) {
    FailWith(ProductMessage(u"Field " + field_name + u" not found in " + table_name + u"!"));
  }
  return {field,
          &field->Properties(),
          u"field " + table_name + u"." + field_name,
          u"FldSeq",
          [list = &table->Fields().list(), field](int16_t place) { MoveTo(*list, *field, place); },
          table->Fields().Count()};
}

// Sets one NAME=VALUE and returns the value as the setting now reads.
Variant Assign(const Target& target, const std::string& assignment) {
  const size_t eq = assignment.find('=');
  if (eq == std::string::npos || eq == 0) {
    FailWith(ProductMessage(u"Expected NAME=VALUE, not '" + String::FromUtf8(assignment) + u"'!"));
  }
  const String name = String::FromUtf8(assignment.substr(0, eq));
  const String value = String::FromUtf8(assignment.substr(eq + 1));
  // Only settings, not the object's operations or its other members, are edited here.
  if (target.move && EqualsNoCase(name, target.seq_name)) {
    const std::string text = assignment.substr(eq + 1);
    char* end = nullptr;
    const long place = std::strtol(text.c_str(), &end, 10);
    if (text.empty() || *end != '\0' || place < 1 || place > target.count) {
      FailWith(ProductMessage(name + u" of " + target.label + u" is its place in the list: give " +
                              u"a number from 1 to " +
                              String::FromUtf8(std::to_string(target.count)) + u", not '" + value +
                              u"'!"));
    }
    target.move(static_cast<int16_t>(place));
    return Variant(static_cast<int16_t>(place));
  }
  const DispId id =
      target.bag->SlotOf(name) < 0 ? kDispIdUnknown : target.object->GetIdOfName(name);
  if (id == kDispIdUnknown) {
    FailWith(ProductMessage(u"Unknown setting " + name + u" of " + target.label + u"!"));
  }
  try {
    Variant arg(value);
    target.object->Invoke(id, kInvokeLet, Args(&arg, 1));
    return target.object->Invoke(id, kInvokeGet, {});
  } catch (const Error& e) {
    FailWith(ProductMessage(u"Cannot set " + name + u" of " + target.label + u" to '" + value +
                            u"': " + e.description()));
  }
}

// Whether the assignments switch generation on, the value read as the setting reads it.
bool SwitchesGenerationOn(const std::vector<std::string>& assignments) {
  for (const std::string& a : assignments) {
    const size_t eq = a.find('=');
    if (eq == std::string::npos || !EqualsNoCase(String::FromUtf8(a.substr(0, eq)), u"TblGen"))
      continue;
    try {
      if (ToBool(Variant(String::FromUtf8(a.substr(eq + 1))))) return true;
    } catch (const Error&) {
      // Not a Boolean: the assignment itself says so.
    }
  }
  return false;
}

// A project that loads its tables on demand has only listed a table until its fields are read:
// switched on as it stands, it would generate nothing. Its fields are read first, since reading
// gives the table its defaults and would undo the settings given with it.
void LoadListedTable(Tyx& tyx, const SetOptions& o) {
  if (o.table.empty() || !o.field.empty() || o.database || !tyx.DynamicLoadDB()) return;
  if (!SwitchesGenerationOn(o.assignments)) return;
  TyxDatabase* db = tyx.Databases().Find(tyx.CurrentDbName);
  const TyxTable* table = db ? db->Tables().list().ByName(String::FromUtf8(o.table)) : nullptr;
  if (!table || table->TblLoaded()) return;
  try {
    tyx.Services().LoadTable(tyx, Variant(String::FromUtf8(o.table)));
  } catch (const Error& e) {
    FailWith(e.description());
  }
  if (!tyx.ProjErr().empty()) FailWith(tyx.ProjErr());
}

void RunSet(const SetOptions& o) {
  Ref<Tyx> tyx = OpenProject(o.project_file);
  LoadListedTable(*tyx, o);
  const Target target = FindTarget(*tyx, o);
  std::vector<std::string> lines;
  for (const std::string& assignment : o.assignments) {
    const Variant now = Assign(target, assignment);
    lines.push_back(assignment.substr(0, assignment.find('=')) + " = " + ShownValue(now));
  }
  SaveProject(*tyx, o.project_file);
  for (const std::string& line : lines)
    std::printf("%s\n", line.c_str());
}

}  // namespace

void AddSetCommand(CLI::App& app) {
  auto options = std::make_shared<SetOptions>();
  CLI::App* cmd =
      app.add_subcommand("set", "Change settings of a project, one of its tables or a field");
  cmd->add_option("project-file", options->project_file, "The project file")->required();
  cmd->add_flag("--database", options->database,
                "Change a setting of the project's database (SecUserLevelFld, ...)");
  cmd->add_option("--table", options->table, "Change a setting of this table or view");
  cmd->add_option("--field", options->field, "Change a setting of this field of the table");
  cmd->add_option("settings", options->assignments,
                  "NAME=VALUE pairs, e.g. RecPerPage=25; TblSeq=N or FldSeq=N moves the "
                  "table or field to place N of its list")
      ->required();
  cmd->callback([options] { RunSet(*options); });
}

}  // namespace qv::cli
