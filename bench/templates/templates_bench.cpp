// The template system's figures: parsing a 1 MB template of 20,000 blocks (target under
// 10 ms), GetSession on the same text (under 1 ms a call), and loading a control file of
// 500 controls with 10 sessions each (under 50 ms).
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

#include "templates/block_parser.h"
#include "templates/controls.h"

namespace qv {
namespace {

// About 1 MB of page text in 100 sessions, 10,000 tags of every kind and 10,000 content
// blocks between them, script blocks with functions and comments among them.
String MakeTemplate() {
  String text;
  const StringView tags[] = {
      u"<!--##=TABLE.TblName##-->",
      u"<!--##~ ShowField(FIELD) ##-->",
      u"<!--##@ LangPhrase ##-->",
      u"<!--##$ \"Msg\" & n ##-->",
      u"<!--##\r\nFunction Helper(x)\r\n  ' Function not(this)\r\n  Helper = x\r\n##-->",
  };
  const StringView filler =
      u"<tr><td class=\"ewTableHeader\">Cell text of the page</td></tr>\r\n\t\t";
  int tag = 0;
  for (int session = 0; session < 100; ++session) {
    text.Append(u"<!--##session s");
    text.Append(NumberText(session).view());
    text.Append(u"##-->");
    for (int i = 0; i < 100; ++i, ++tag) {
      text.Append(filler);
      text.Append(tags[tag % 5]);
    }
    text.Append(u"<!--##/session##-->");
  }
  return text;
}

const String& Template() {
  static const String text = MakeTemplate();
  return text;
}

void BM_Parse1MB(benchmark::State& state) {
  const String& text = Template();
  TyParser parser;
  for (auto _ : state) {
    parser.Parse(text);
    benchmark::DoNotOptimize(parser.Count());
  }
  state.counters["blocks"] = parser.Count();
  state.counters["chars"] = static_cast<double>(text.size());
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * text.size() * 2));
}
BENCHMARK(BM_Parse1MB)->Unit(benchmark::kMillisecond);

void BM_GetSessionLast(benchmark::State& state) {
  const String& text = Template();
  TyParser parser;
  size_t size = 0;
  for (auto _ : state) {
    const String body = parser.GetSession(text, u"S99");  // the last one: a scan of it all
    size = body.size();
    benchmark::DoNotOptimize(size);
  }
  state.counters["body_chars"] = static_cast<double>(size);
}
BENCHMARK(BM_GetSessionLast)->Unit(benchmark::kMicrosecond);

std::string MakeControlFile() {
  std::string xml =
      "<?xml version=\"1.0\" encoding=\"utf-8\"?>\r\n"
      "<QuorvexControl date=\"2026-11-22\" version=\"5.3\" desc=\"bench\" author=\"qv\">\r\n";
  for (int c = 0; c < 500; ++c) {
    const std::string id = "ctrl" + std::to_string(c);
    xml += "  <control id=\"" + id + "\" type=\"table\" ifiles=\"" + id +
           ".htm\" ifolder=\"/in/\" ofile=\"x\" oext=\"asp\" ofolder=\"out\\\\sub\" "
           "cond=\"TABLE.TblList\" tagext=\"_" +
           id + "\" space=\"True\" overwrite=\"0\">\r\n";
    for (int s = 0; s < 10; ++s) {
      xml += "    <session type=\"key\" value=\"s" + std::to_string(s) + "\" ifile=\"" + id +
             ".htm\" cond=\"FIELD.FldList\" location=\"\" loctype=\"\"/>\r\n";
    }
    xml += "  </control>\r\n";
  }
  return xml + "</QuorvexControl>\r\n";
}

void BM_LoadControls500x10(benchmark::State& state) {
  const std::filesystem::path path = std::filesystem::temp_directory_path() /
                                     ("qv-bench-control-" + std::to_string(getpid()) + ".xml");
  std::ofstream(path, std::ios::binary) << MakeControlFile();
  const String file = String::FromUtf8(path.string());
  TyxControls controls;
  for (auto _ : state) {
    if (!controls.LoadControls(file)) state.SkipWithError("load failed");
    benchmark::DoNotOptimize(controls.Count());
  }
  state.counters["controls"] = controls.Count();
  std::filesystem::remove(path);
}
BENCHMARK(BM_LoadControls500x10)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace qv
