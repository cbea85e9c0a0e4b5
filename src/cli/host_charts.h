// A project's charts, kept for the user in a companion file beside the project file
// ("shop.qvp" keeps them in "shop.charts.xml"): the project file has no place for them. The
// command line edits the file (`quorvex chart`), and a generation run hands its charts to the
// templates as the script object CHARTS, whose Item(table) is that table's TyxCharts.
#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "automation/dispatch.h"
#include "model/charts.h"

namespace qv::cli {

struct TableCharts {
  String table;
  Ref<TyxCharts> charts;
};

// The charts of every table that has any, in the order the file lists them.
using ProjectCharts = std::vector<TableCharts>;

// The companion file of a project file.
std::string ChartFilePath(const std::string& project_file);

// Reads a companion file; a missing file holds no charts. A file that is not ours, or a
// setting that no chart has, ends the command with the reason.
ProjectCharts LoadCharts(const std::string& path);

// Writes the file whole (a temporary file, then a rename), or removes it when no chart is left.
void SaveCharts(const std::string& path, const ProjectCharts& charts);

// The list of one table, made when `create` asks; null when there is none.
TyxCharts* ChartsOf(ProjectCharts& charts, StringView table, bool create);

// Calls `each` with the name and text of every setting of a chart that the file keeps, in
// the chart's order: neither its name nor its place, which the file writes as the chart's own
// attributes, nor empty values.
void ForEachSavedSetting(TyxChart& chart,
                         const std::function<void(const String& name, const String& text)>& each);

// The object scripts see as CHARTS: Item(table) gives the table's TyxCharts (an empty list for
// a table without charts), Count the number of tables with charts.
Ref<Object> ChartsObject(ProjectCharts charts);

}  // namespace qv::cli
