// Save and Load of a project of 500 tables with 20 fields each (some 10 MB of XML). Load is
// timed from the file to a project with every table, field and derived value in place; the
// fresh root it loads into is made, and afterwards dropped, outside the timed part.
#include <benchmark/benchmark.h>

#include "large_project.h"
#include "persistence/project_file.h"
#include "platform/fs.h"

namespace {

void BM_SaveProject500x20(benchmark::State& state) {
  const qv::Ref<qv::Tyx> tyx = qv::bench::BuildLargeProject();
  const qv::String path = qv::bench::BenchFile("save.qvp");
  for (auto _ : state) {
    qv::SaveProjectFile(*tyx, path);
  }
  state.counters["file_MB"] = static_cast<double>(qv::fs::FileSize(path)) / 1e6;
}
BENCHMARK(BM_SaveProject500x20)->Unit(benchmark::kMillisecond)->MinTime(2.0);

void BM_LoadProject500x20(benchmark::State& state) {
  const qv::String path = qv::bench::BenchFile("load.qvp");
  qv::SaveProjectFile(*qv::bench::BuildLargeProject(), path);
  for (auto _ : state) {
    state.PauseTiming();
    qv::Ref<qv::Tyx> tyx = qv::CreateTyx();
    state.ResumeTiming();
    qv::LoadProjectFile(*tyx, path);
    state.PauseTiming();
    if (!tyx->ProjErr().empty()) state.SkipWithError("the load failed");
    tyx.reset();
    state.ResumeTiming();
  }
  state.counters["file_MB"] = static_cast<double>(qv::fs::FileSize(path)) / 1e6;
}
BENCHMARK(BM_LoadProject500x20)->Unit(benchmark::kMillisecond)->MinTime(2.0);

}  // namespace
