// Printing the differences of a check.
#include "cli/host_differences.h"

#include <string>

namespace qv::cli {

namespace {

std::string Kind(const SchemaDifference& d) {
  if (d.table_type == u"VIEW") return "view";
  if (d.table_type == u"CUSTOMVIEW") return "custom view";
  if (d.table_type == u"REPORT") return "report";
  return "table";
}

std::string Line(const SchemaDifference& d) {
  const std::string table = d.table.ToUtf8();
  const std::string field = table + "." + d.field.ToUtf8();
  const std::string before = d.before.ToUtf8();
  const std::string after = d.after.ToUtf8();
  switch (d.kind) {
    case SchemaDifference::kTableAdded:
      return "+ " + Kind(d) + " " + table + " (" + after + ")";
    case SchemaDifference::kTableRemoved:
      return "- " + Kind(d) + " " + table;
    case SchemaDifference::kTableChanged:
      return "~ " + Kind(d) + " " + table + ": " + before + " → " + after;
    case SchemaDifference::kFieldAdded:
      return "+ field " + field + ": " + after;
    case SchemaDifference::kFieldRemoved:
      return "- field " + field + ": " + before;
    case SchemaDifference::kFieldChanged:
      return "~ field " + field + ": " + before + " → " + after;
    case SchemaDifference::kCustomViewBroken:
      return "! custom view " + table + " no longer runs: " + after;
    case SchemaDifference::kCustomViewChanged:
      return "~ custom view " + table + ": its columns changed";
    case SchemaDifference::kReportBroken:
      return "! report " + table + ": " + after;
    case SchemaDifference::kReportChanged:
      return "~ report " + table + ": its source's fields changed";
    case SchemaDifference::kUnreadable:
      return "? " + Kind(d) + " " + table + " could not be read: " + after;
  }
  return {};
}

}  // namespace

void PrintDifferences(const DifferenceList& found, std::FILE* out) {
  for (const SchemaDifference& d : found) {
    if (d.kind != SchemaDifference::kUnreadable) std::fprintf(out, "%s\n", Line(d).c_str());
  }
  for (const SchemaDifference& d : found) {
    if (d.kind == SchemaDifference::kUnreadable) std::fprintf(out, "%s\n", Line(d).c_str());
  }
}

int CountListed(const DifferenceList& found) {
  int count = 0;
  for (const SchemaDifference& d : found) {
    if (d.kind != SchemaDifference::kUnreadable) ++count;
  }
  return count;
}

std::string DifferencesText(int count) {
  return std::to_string(count) + (count == 1 ? " difference" : " differences");
}

}  // namespace qv::cli
