// Copy costs of Variants: a 1 MB string is shared, never copied, and never allocates.
#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdlib>

#include "automation/convert.h"
#include "automation/variant.h"

namespace {
size_t g_allocations = 0;
}

extern "C" void* __real_malloc(size_t size);
extern "C" void* __wrap_malloc(size_t size) {
  ++g_allocations;
  return __real_malloc(size);
}

static void BM_CopyMegabyteStringVariant(benchmark::State& state) {
  const qv::Variant big(qv::String(size_t{1} << 20, u'x'));
  size_t before = g_allocations;
  for (auto _ : state) {
    qv::Variant copy = big;
    benchmark::DoNotOptimize(copy);
  }
  state.counters["allocs_per_copy"] =
      static_cast<double>(g_allocations - before) / static_cast<double>(state.iterations());
}
BENCHMARK(BM_CopyMegabyteStringVariant);

static void BM_DoubleToText(benchmark::State& state) {
  double x = 0.1;
  for (auto _ : state) {
    benchmark::DoNotOptimize(qv::ToString(qv::Variant(x)));
    x += 1.25;
  }
}
BENCHMARK(BM_DoubleToText);

static void BM_CompareTextNoCase(benchmark::State& state) {
  const qv::Variant a(u"FldCaptionOfSomeField"), b(u"fldcaptionofsomefield");
  for (auto _ : state) benchmark::DoNotOptimize(qv::Compare(a, b, true));
}
BENCHMARK(BM_CompareTextNoCase);

BENCHMARK_MAIN();
