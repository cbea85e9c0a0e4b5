// `quorvex chart add|remove|list <project-file> ...`: the project's charts, one list per table,
// kept in the companion file beside the project file (host_charts.h). A new chart starts as a
// column chart of its X field against the sum of its Y field (or the count of rows when it has
// no Y field); add on an existing chart changes only the settings it is given.
#include <cstdio>
#include <string>
#include <vector>

#include "automation/convert.h"
#include "automation/error.h"
#include "cli/commands.h"
#include "cli/host_charts.h"
#include "cli/host_project.h"
#include "model/chart.h"
#include "model/database.h"
#include "model/databases.h"
#include "model/field.h"
#include "model/fields.h"
#include "model/table.h"
#include "model/tables.h"

namespace qv::cli {

namespace {

struct ChartOptions {
  std::string project_file;
  std::string table;
  std::string name;
  std::vector<std::string> assignments;
};

TyxTable& FindTable(Tyx& tyx, const String& name) {
  TyxDatabase* db = tyx.Databases().Find(tyx.CurrentDbName);
  if (!db) FailWith(ProductMessage(u"Database not loaded!"));
  TyxTable* table = db->Tables().list().ByName(name);
  if (!table) FailWith(ProductMessage(u"Table " + name + u" not found!"));
  return *table;
}

void CheckField(TyxTable& table, const String& field, StringView setting) {
  if (field.empty() || table.Fields().list().ByName(field)) return;
  FailWith(ProductMessage(String(setting) + u": field " + field + u" not found in " +
                          table.TblName() + u"!"));
}

void Assign(TyxChart& chart, const std::string& assignment) {
  const size_t eq = assignment.find('=');
  if (eq == std::string::npos || eq == 0) {
    FailWith(ProductMessage(u"Expected NAME=VALUE, not '" + String::FromUtf8(assignment) + u"'!"));
  }
  const String name = String::FromUtf8(assignment.substr(0, eq));
  const String value = String::FromUtf8(assignment.substr(eq + 1));
  TyProperty* p = chart.Properties().Find(name);
  // The name, its place and its variable follow from the command, not from settings.
  if (!p || !p->FileSave() || EqualsNoCase(name, u"ChartName") || EqualsNoCase(name, u"ChartSeq")) {
    FailWith(ProductMessage(u"Unknown chart setting " + name + u"!"));
  }
  try {
    p->SetTypedValue(Variant(value));
  } catch (const Error& e) {
    FailWith(ProductMessage(u"Cannot set " + name + u" to '" + value + u"': " + e.description()));
  }
}

void SetNewChartDefaults(TyxChart& chart) {
  const std::pair<StringView, Variant> defaults[] = {
      {u"ShowChart", Variant(true)},
      {u"ChartType", Variant(int16_t{1})},
      {u"ChartWidth", Variant(int16_t{600})},
      {u"ChartHeight", Variant(int16_t{320})},
      {u"ChartNumGridLines", Variant(int16_t{4})},
      {u"ChartShowNames", Variant(true)},
      {u"ChartShowHover", Variant(true)},
      {u"ChartAlpha", Variant(int16_t{100})},
      {u"ChartXAxisValueMaxChar", Variant(int16_t{16})},
      {u"ChartPosition", Variant(int16_t{1})},
      {u"ChartUseGlobalCss", Variant(true)},
  };
  for (const auto& [name, value] : defaults) {
    if (TyProperty* p = chart.Properties().Find(name)) p->SetTypedValue(value);
  }
}

void AddChart(const ChartOptions& o) {
  Ref<Tyx> tyx = OpenProject(o.project_file);
  TyxTable& table = FindTable(*tyx, String::FromUtf8(o.table));
  const String name = String::FromUtf8(o.name);
  if (TrimBlanks(name).empty()) FailWith(ProductMessage(u"A chart needs a name!"));
  const std::string path = ChartFilePath(o.project_file);
  ProjectCharts charts = LoadCharts(path);
  TyxCharts& list = *ChartsOf(charts, table.TblName(), true);
  const bool is_new = !list.Exist(Variant(name));
  list.Add(name);
  Ref<TyxChart> chart = list.Item(Variant(name));
  if (is_new) SetNewChartDefaults(*chart);
  for (const std::string& assignment : o.assignments)
    Assign(*chart, assignment);
  if (chart->ChartXFldName().empty()) {
    FailWith(
        ProductMessage(u"Chart " + name + u" needs ChartXFldName, the field of its categories!"));
  }
  CheckField(table, chart->ChartXFldName(), u"ChartXFldName");
  CheckField(table, chart->ChartYFldName(), u"ChartYFldName");
  SaveCharts(path, charts);
}

void RemoveChart(const ChartOptions& o) {
  const std::string path = ChartFilePath(o.project_file);
  ProjectCharts charts = LoadCharts(path);
  const String table = String::FromUtf8(o.table);
  const String name = String::FromUtf8(o.name);
  TyxCharts* list = ChartsOf(charts, table, false);
  if (!list || !list->Exist(Variant(name))) {
    FailWith(ProductMessage(u"Chart " + name + u" of " + table + u" not found!"));
  }
  list->Delete(name);
  SaveCharts(path, charts);
}

void ListCharts(const ChartOptions& o) {
  OpenProject(o.project_file);  // a wrong project file says so, as the other commands do
  const ProjectCharts charts = LoadCharts(ChartFilePath(o.project_file));
  for (const TableCharts& t : charts) {
    for (int16_t seq = 1; seq <= t.charts->Count(); ++seq) {
      const Ref<TyxChart> chart = t.charts->Seq(seq);
      if (!chart) continue;
      std::string line = t.table.ToUtf8() + " / " + chart->ChartName().ToUtf8() + ":";
      ForEachSavedSetting(*chart, [&](const String& name, const String& text) {
        line += " " + name.ToUtf8() + "=" + text.ToUtf8();
      });
      std::printf("%s\n", line.c_str());
    }
  }
}

}  // namespace

void AddChartCommand(CLI::App& app) {
  auto o = std::make_shared<ChartOptions>();
  CLI::App* cmd = app.add_subcommand(
      "chart", "Add, change, remove or list a project's charts (kept beside the project file)");
  cmd->require_subcommand(1);
  CLI::App* add =
      cmd->add_subcommand("add", "Add a chart to a table's list and list pages, or change one");
  add->add_option("project-file", o->project_file, "The project file")->required();
  add->add_option("table", o->table, "The table, view or report the chart belongs to")->required();
  add->add_option("name", o->name, "The chart's name")->required();
  add->add_option("settings", o->assignments,
                  "NAME=VALUE pairs, e.g. ChartXFldName=Country ChartYFldName=Total ChartType=5");
  add->callback([o] { AddChart(*o); });
  CLI::App* remove = cmd->add_subcommand("remove", "Remove a chart");
  remove->add_option("project-file", o->project_file, "The project file")->required();
  remove->add_option("table", o->table, "The table the chart belongs to")->required();
  remove->add_option("name", o->name, "The chart's name")->required();
  remove->callback([o] { RemoveChart(*o); });
  CLI::App* list = cmd->add_subcommand("list", "List the charts and their settings");
  list->add_option("project-file", o->project_file, "The project file")->required();
  list->callback([o] { ListCharts(*o); });
}

}  // namespace qv::cli
