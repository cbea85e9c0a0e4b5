// The generation run's figures: translating one control of 200 KB of template text with 2,000
// tags (target under 20 ms), and a second GenScript over a package of 50 controls in which
// nothing changed, so that nothing is unpacked or translated (the time is reported).
#include <benchmark/benchmark.h>
#include <stdlib.h>
#include <unistd.h>
#include <zip.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "generation/driver.h"
#include "generation/translation.h"
#include "model/table.h"
#include "platform/fs.h"
#include "platform/prompter.h"
#include "platform/text_file.h"
#include "root/create_tyx.h"
#include "support/status.h"
#include "support/tyx_vars.h"

namespace qv {
namespace {

namespace sfs = std::filesystem;

// A scratch folder that lives as long as the process.
const sfs::path& Scratch() {
  static const sfs::path path = [] {
    sfs::path p = sfs::temp_directory_path() / ("qv-bench-generation-" + std::to_string(getpid()));
    sfs::remove_all(p);
    sfs::create_directories(p);
    std::atexit([] { sfs::remove_all(Scratch()); });
    return p;
  }();
  return path;
}

void WriteFile(const sfs::path& path, const std::string& text) {
  sfs::create_directories(path.parent_path());
  std::ofstream(path, std::ios::binary | std::ios::trunc) << text;
}

// Page text with `tags` tags of every kind, about `bytes` long.
std::string MakeTemplate(size_t bytes, int tags) {
  static const char* kinds[] = {"<!--##=TABLE.TblName##-->", "<!--##~ ShowField(FIELD) ##-->",
                                "<!--##@ Phrase ##-->", "<!--##$ \"Msg\" & n ##-->",
                                "<!--## If x Then y = 1 ##-->"};
  const size_t filler = bytes / static_cast<size_t>(tags) - 24;  // a tag is about 24 characters
  std::string text;
  for (int i = 0; i < tags; ++i) {
    std::string piece = "<tr><td class=\"cell\">\"Quoted\" text</td></tr>\r\n\t";
    while (piece.size() < filler)
      piece += "<td>more cell text of the page</td>\r\n";
    text += piece.substr(0, filler);
    text += kinds[i % 5];
  }
  return text;
}

void BM_TranslateControl200KB(benchmark::State& state) {
  ResetVars();
  TyxVars& vars = Vars();
  vars.Status = MakeRef<TyxStatus>(StatusMode::kQuiet);
  const sfs::path folder = Scratch() / "translate";
  const std::string text = MakeTemplate(200 * 1024, 2000);
  WriteFile(folder / "page.htm", text);
  vars.TemplateFolder = vars.TempFolder = String::FromUtf8(folder.string());
  Ref<Tyx> tyx = MakeRef<Tyx>();
  Ref<TyxControl> control = MakeRef<TyxControl>();
  control->CtrlID = u"page";
  control->CtrlIFiles = u"page.htm";
  const String out = String::FromUtf8((folder / "page.tmp").string());
  for (auto _ : state)
    TranslateControl(*tyx, *control, out);
  state.counters["template_bytes"] = static_cast<double>(text.size());
  state.counters["function_bytes"] = static_cast<double>(sfs::file_size(folder / "page.tmp"));
}
BENCHMARK(BM_TranslateControl200KB)->Unit(benchmark::kMillisecond);

// A package of 50 controls, each with its own 8 KB template of 50 tags, half of them with three
// sessions.
void WritePackage(const sfs::path& zip_file) {
  std::vector<std::pair<std::string, std::string>> files;
  std::string control =
      "<QuorvexControl date=\"d\" version=\"5.3\" desc=\"bench\" author=\"bench\">\r\n";
  for (int i = 0; i < 50; ++i) {
    const std::string name = "c" + std::to_string(i);
    control += "<control id=\"" + name + "\" type=\"table\" ifiles=\"" + name + ".htm\" ofile=\"" +
               name + "\">";
    std::string text = MakeTemplate(8 * 1024, 50);
    if (i % 2) {
      for (const char* s : {"head", "body", "foot"}) {
        control += std::string("<session type=\"key\" value=\"") + s + "\"/>";
        text += std::string("<!--##session ") + s + "##-->" + MakeTemplate(2048, 10) +
                "<!--##/session##-->";
      }
    }
    control += "</control>\r\n";
    files.emplace_back(name + ".htm", text);
  }
  control += "</QuorvexControl>\r\n";
  files.emplace_back("control.xml", control);
  files.emplace_back("lang.xml",
                     "<quorvex.language><phrase id=\"Phrase\" value=\"P\"/>"
                     "</quorvex.language>");
  int code = 0;
  zip_t* archive = zip_open(zip_file.c_str(), ZIP_CREATE | ZIP_TRUNCATE, &code);
  for (const auto& [name, text] : files) {
    void* data = std::malloc(text.size() + 1);
    std::memcpy(data, text.data(), text.size());
    zip_file_add(archive, name.c_str(), zip_source_buffer(archive, data, text.size(), 1), 0);
  }
  zip_close(archive);
}

void BM_SecondRunOf50Controls(benchmark::State& state) {
  // The library calls a benchmark more than once: each call starts from an empty home.
  const sfs::path home = Scratch() / "home";
  sfs::remove_all(home);
  sfs::create_directories(home / "Documents");
  sfs::create_directories(home / "data");
  setenv("HOME", home.c_str(), 1);
  setenv("QUORVEX_DATA_DIR", (home / "data").c_str(), 1);
  unsetenv("XDG_CONFIG_HOME");
  unsetenv("XDG_DOCUMENTS_DIR");
  WriteFile(home / "data" / "machine-settings", "[Software\\Quorvex\\5.3\\Settings]\n");
  WriteFile(home / ".config" / "quorvex" / "settings",
            "[Software\\Quorvex\\5.3\\Settings]\nLanguage = \"English\"\n");
  ResetVars();
  Vars().Status = MakeRef<TyxStatus>(StatusMode::kQuiet);
  // Pages of the first run exist in the second: the overwrite question gets its safe answer,
  // Skip, without a word on the terminal.
  SetCurrentPrompter(std::make_unique<ScriptedPrompter>(std::vector<String>{}, nullptr));
  WritePackage(home / "bench.zip");

  Ref<Tyx> tyx = CreateTyx();
  tyx->Databases().Add(u"shop");
  tyx->CurrentDbName = u"shop";
  tyx->db()->Tables().Add(u"Orders");
  Ref<TyxTable> orders = tyx->db()->Tables().Item(Variant(u"Orders"));
  orders->SetTblType(u"TABLE");
  orders->SetTblGen(true);
  orders->Fields().Add(u"Total");
  tyx->SetDestination(String::FromUtf8((home / "site").string()));
  tyx->SetTemplate(String::FromUtf8((home / "bench.zip").string()));
  GenScript(*tyx);  // the first run unpacks and translates everything
  if (!Vars().ProjErr.empty() || Vars().ControlsTranslated != 50) {
    const std::string why = "first run: " + Vars().ProjErr.ToUtf8() + " translated " +
                            std::to_string(Vars().ControlsTranslated);
    state.SkipWithError(why.c_str());
    return;
  }
  for (auto _ : state)
    GenScript(*tyx);
  state.counters["files_unpacked"] = Vars().FilesUnpacked;
  state.counters["controls_translated"] = Vars().ControlsTranslated;
}
BENCHMARK(BM_SecondRunOf50Controls)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace qv
