// Reading and writing the companion file of charts. Each chart keeps the settings that a
// project file would keep (the bag's file flag), as attributes named like the settings:
//
//   <QuorvexCharts>
//     <Table Name="Invoice">
//       <Chart ChartName="Sales by country" ChartXFldName="BillingCountry" .../>
//     </Table>
//   </QuorvexCharts>
#include "cli/host_charts.h"

#include <filesystem>

#include "automation/convert.h"
#include "automation/error.h"
#include "cli/host_project.h"
#include "model/chart.h"
#include "persistence/project_values.h"
#include "platform/atomic_file.h"
#include "platform/xml.h"

namespace qv::cli {
namespace {

constexpr StringView kRoot = u"QuorvexCharts";

[[noreturn]] void BadFile(const std::string& path, StringView why) {
  FailWith(ProductMessage(u"Cannot read the charts file " + String::FromUtf8(path) + u": " +
                          String(why)));
}

void ReadChart(const std::string& path, const XmlNode& node, TyxCharts& list) {
  const std::optional<String> name = node.getAttribute(u"ChartName");
  if (!name || name->empty()) BadFile(path, u"a chart without a ChartName.");
  list.Add(*name);
  const Ref<TyxChart> chart = list.Item(Variant(*name));
  for (const XmlAttribute& a : node.attributes()) {
    if (EqualsNoCase(a.nodeName, u"ChartName")) continue;
    TyProperty* p = chart->Properties().Find(a.nodeName);
    if (!p || !p->FileSave()) BadFile(path, u"no chart has the setting " + a.nodeName + u".");
    try {
      p->SetTypedValue(ToPropertyValue(a.nodeValue, p->DataType()));
    } catch (const Error& e) {
      BadFile(path, a.nodeName + u" of " + *name + u": " + e.description());
    }
  }
}

class ChartsByTable : public DispatchObject<ChartsByTable> {
 public:
  explicit ChartsByTable(ProjectCharts charts) : charts_(std::move(charts)) {}
  static const DispatchTable<ChartsByTable>& Table() {
    using C = ChartsByTable;
    static const auto table =
        DispatchTable<C>(u"ProjectCharts")
            .Property(u"Item",
                      [](C& c, Args a) {
                        CheckArgCount(a, 1, 1);
                        TyxCharts* list = ChartsOf(c.charts_, ToString(a[0]), true);
                        return Variant(Ref<Object>(list));
                      })
            .Default(u"Item")
            .Property(u"Count",
                      [](C& c, Args) { return Variant(static_cast<int32_t>(c.charts_.size())); });
    return table;
  }

 private:
  ProjectCharts charts_;
};

}  // namespace

std::string ChartFilePath(const std::string& project_file) {
  std::filesystem::path path(project_file);
  path.replace_extension(".charts.xml");
  return path.string();
}

TyxCharts* ChartsOf(ProjectCharts& charts, StringView table, bool create) {
  for (TableCharts& t : charts) {
    if (EqualsNoCase(t.table, table)) return t.charts.get();
  }
  if (!create) return nullptr;
  charts.push_back({String(table), MakeRef<TyxCharts>()});
  return charts.back().charts.get();
}

ProjectCharts LoadCharts(const std::string& path) {
  ProjectCharts charts;
  std::error_code ec;
  if (!std::filesystem::exists(path, ec)) return charts;
  XmlDocument doc;
  if (!doc.Load(String::FromUtf8(path))) BadFile(path, doc.error());
  const XmlNode root = doc.documentElement();
  if (root.nodeName() != kRoot) BadFile(path, u"it is no charts file.");
  for (const XmlNode& t : root.childNodes()) {
    if (!t.IsElement()) continue;
    const std::optional<String> table = t.getAttribute(u"Name");
    if (t.nodeName() != u"Table" || !table || table->empty()) {
      BadFile(path, u"a <Table Name=\"...\"> was expected, not <" + t.nodeName() + u">.");
    }
    TyxCharts* list = ChartsOf(charts, *table, true);
    for (const XmlNode& c : t.childNodes()) {
      if (c.IsElement()) ReadChart(path, c, *list);
    }
  }
  return charts;
}

void SaveCharts(const std::string& path, const ProjectCharts& charts) {
  XmlWriter w;
  w.Declaration(u"utf-8");
  w.Start(kRoot);
  bool any = false;
  for (const TableCharts& t : charts) {
    if (t.charts->Count() == 0) continue;
    any = true;
    w.Start(u"Table");
    w.Attribute(u"Name", t.table);
    for (int16_t seq = 1; seq <= t.charts->Count(); ++seq) {
      const Ref<TyxChart> chart = t.charts->Seq(seq);
      if (!chart) continue;
      w.Start(u"Chart");
      w.Attribute(u"ChartName", chart->ChartName());
      ForEachSavedSetting(*chart,
                          [&](const String& name, const String& text) { w.Attribute(name, text); });
      w.End();
    }
    w.End();
  }
  std::error_code ec;
  if (!any) {
    std::filesystem::remove(path, ec);
    return;
  }
  try {
    fs::WriteFileAtomically(String::FromUtf8(path), (w.Finish() + u"\r\n").ToUtf8());
  } catch (const Error& e) {
    FailWith(e.description());
  }
}

Ref<Object> ChartsObject(ProjectCharts charts) {
  return MakeRef<ChartsByTable>(std::move(charts));
}

void ForEachSavedSetting(TyxChart& chart,
                         const std::function<void(const String& name, const String& text)>& each) {
  chart.Properties().ForEach([&](TyProperty& p) {
    if (!p.FileSave() || EqualsNoCase(p.Name(), u"ChartName") ||
        EqualsNoCase(p.Name(), u"ChartSeq"))
      return;
    const Variant v = p.TypedValue();
    if (v.is_empty() || v.is_null()) return;
    const String text = ToString(v);
    if (!text.empty()) each(p.Name(), text);
  });
}

}  // namespace qv::cli
