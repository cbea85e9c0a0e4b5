// The settings store under the load of saved defaults: LoadDefault reads about 80 values from
// the cached tree, SaveDefault writes them back one by one (each write an atomic save).
#include <benchmark/benchmark.h>
#include <stdlib.h>

#include <filesystem>
#include <string>

#include "support/common.h"
#include "support/tyx_vars.h"

namespace {

constexpr std::u16string_view kKey = u"Software\\Quorvex\\5.3\\Settings";
constexpr int kValues = 80;

// A private HOME with a user tree of kValues values.
struct BenchHome {
  BenchHome() {
    std::string pattern = (std::filesystem::temp_directory_path() / "qv-bench-XXXXXX").string();
    root = ::mkdtemp(pattern.data());
    ::setenv("HOME", root.c_str(), 1);
    ::unsetenv("XDG_CONFIG_HOME");
    for (int i = 0; i < kValues; ++i) {
      qv::WriteRegValue(u"HKCU", kKey, qv::NumberText(i), 1, qv::Variant(qv::String(u"value")));
    }
  }
  ~BenchHome() { std::filesystem::remove_all(root); }
  std::filesystem::path root;
};

void BM_LoadDefaultReads(benchmark::State& state) {
  BenchHome home;
  for (auto _ : state) {
    for (int i = 0; i < kValues; ++i) {
      benchmark::DoNotOptimize(qv::ReadRegValue(u"HKCU", kKey, qv::NumberText(i)));
    }
  }
  state.SetItemsProcessed(state.iterations() * kValues);
}
BENCHMARK(BM_LoadDefaultReads);

void BM_SaveDefaultWrites(benchmark::State& state) {
  BenchHome home;
  for (auto _ : state) {
    for (int i = 0; i < kValues; ++i) {
      qv::WriteRegValue(u"HKCU", kKey, qv::NumberText(i), 4, qv::Variant(int32_t{i}));
    }
  }
  state.SetItemsProcessed(state.iterations() * kValues);
}
BENCHMARK(BM_SaveDefaultWrites)->Unit(benchmark::kMillisecond);

}  // namespace
