// The script host's figures. A generation adds the same few page functions thousands of times
// (one per control, run for every table): BuildNewCode of a text it has compiled before must
// cost little beyond the function's own run (goal: under 50 µs a call for 20 KB functions).
// Also the first BuildNewCode of a 200 KB function, compile and run together.
//
//   BM_PageRunOnly           the function's own run: LoadCurrent and qvScriptEngine alone
//   BM_BuildNewCodeRepeated  5,000 BuildNewCode calls over 10 distinct 20 KB functions
//   BM_AddCodeEveryTime      the same calls compiling every text (what the cache saves)
//   BM_BuildNewCodeFirst200K a 200 KB function never seen before
#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "automation/convert.h"
#include "model/tyx.h"
#include "script/script_host.h"
#include "support/status.h"
#include "support/tyx_vars.h"
#include "templates/controls.h"
#include "templates/language.h"
#include "vbscript/engine.h"

namespace qv {
namespace {

// A page function shaped like a translated template: the literals in the array first, then
// output lines that reference them between expressions on the project objects.
String PageFunction(int variant, size_t size) {
  String literals;
  String body;
  int count = 0;
  const StringView literal =
      u"<tr><td class=\"\"qvHeader\"\">Cell text of the generated page</td>\"&vbCrLf&\"<td>";
  while (literals.size() + body.size() < size) {
    ++count;
    const String n = ToString(Variant(count));
    literals.Append(u"qvAr(" + n + u") = \"" + String(literal) + u"\"\r\n");
    body.Append(u"qvOut = qvOut & qvAr(" + n + u") & PROJ.ProjName & \"" +
                ToString(Variant(variant)) + u"\"\r\n");
    if (count % 10 == 0) body.Append(u"If qvOut = \"\" Then qvOut = \"-\"\r\n");
  }
  String code = u"Function qvScriptEngine()\r\nOn Error Resume Next\r\nDim qvAr(";
  code.Append(ToString(Variant(count)));
  code.Append(u")\r\nDim qvOut\r\n");
  code.Append(literals);
  code.Append(body);
  code.Append(u"qvScriptEngine = qvOut\r\nEnd Function\r\n");
  return code;
}

struct Host {
  Host() {
    ResetVars();
    Vars().Status = MakeRef<TyxStatus>(StatusMode::kQuiet);
    project = MakeRef<Tyx>();
    project->SetProjName(u"Bench");
    script = MakeRef<TyScript>(ScriptSettings{});
    script->Initialize(Ref<Object>(project.get()), nullptr, MakeRef<TyxControls>(),
                       MakeRef<TyxLanguage>());
    for (int i = 0; i < 10; ++i)
      pages.push_back(PageFunction(i, 20 * 1024));
  }
  ~Host() {
    script->Reset();
    ResetVars();
  }
  Ref<Tyx> project;
  Ref<TyScript> script;
  std::vector<String> pages;
};

void BM_PageRunOnly(benchmark::State& state) {
  Host host;
  vbs::ScriptModule& system = host.script->engine().ModuleAt(1);
  system.AddCode(host.pages[0]);
  size_t bytes = 0;
  for (auto _ : state) {
    Variant args[] = {Variant(int16_t{0})};
    system.Run(u"LoadCurrent", args);
    bytes += ToString(system.Run(u"qvScriptEngine")).size();
  }
  benchmark::DoNotOptimize(bytes);
}
BENCHMARK(BM_PageRunOnly)->Iterations(5000)->Unit(benchmark::kMicrosecond);

void BM_BuildNewCodeRepeated(benchmark::State& state) {
  Host host;
  size_t i = 0;
  size_t bytes = 0;
  for (auto _ : state)
    bytes += host.script->BuildNewCode(host.pages[i++ % 10], 0, 0).size();
  if (!Vars().ProjErr.empty()) state.SkipWithError(Vars().ProjErr.ToUtf8().c_str());
  benchmark::DoNotOptimize(bytes);
}
BENCHMARK(BM_BuildNewCodeRepeated)->Iterations(5000)->Unit(benchmark::kMicrosecond);

void BM_AddCodeEveryTime(benchmark::State& state) {
  Host host;
  vbs::ScriptModule& system = host.script->engine().ModuleAt(1);
  size_t i = 0;
  size_t bytes = 0;
  for (auto _ : state) {
    system.AddCode(host.pages[i++ % 10]);
    Variant args[] = {Variant(int16_t{0})};
    system.Run(u"LoadCurrent", args);
    bytes += ToString(system.Run(u"qvScriptEngine")).size();
  }
  benchmark::DoNotOptimize(bytes);
}
BENCHMARK(BM_AddCodeEveryTime)->Iterations(500)->Unit(benchmark::kMicrosecond);

void BM_BuildNewCodeFirst200K(benchmark::State& state) {
  Host host;
  int variant = 100;
  size_t bytes = 0;
  for (auto _ : state) {
    state.PauseTiming();
    const String page = PageFunction(variant++, 200 * 1024);
    state.ResumeTiming();
    bytes += host.script->BuildNewCode(page, 0, 0).size();
  }
  benchmark::DoNotOptimize(bytes);
}
BENCHMARK(BM_BuildNewCodeFirst200K)->Iterations(20)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace qv
