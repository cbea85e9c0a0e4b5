// Figures of the keyed collection and the property bag: looking a property up by name in a
// bag of 103 entries, in another case of letters than it was registered with; and adding
// 1,000 keyed items to a collection, then looking each one up, as one timed unit.
#include <benchmark/benchmark.h>

#include <vector>

#include "automation/convert.h"
#include "model/properties.h"
#include "model/super_collection.h"

namespace {

std::vector<qv::String> Names(int count, const char16_t* stem) {
  std::vector<qv::String> out;
  for (int i = 0; i < count; ++i)
    out.push_back(qv::String(stem) + qv::NumberText(i * 7919 % 1000));
  return out;
}

void BM_BagLookupAnyCase(benchmark::State& state) {
  qv::Ref<qv::TyProperties> bag = qv::MakeRef<qv::TyProperties>();
  const std::vector<qv::String> names = Names(103, u"FldSetting");
  for (const qv::String& n : names)
    bag->Add(n);
  std::vector<qv::String> probes;
  for (const qv::String& n : names)
    probes.push_back(qv::ToUpper(n));
  size_t i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(bag->Find(probes[i]));
    if (++i == probes.size()) i = 0;
  }
}
BENCHMARK(BM_BagLookupAnyCase)->Repetitions(5)->ReportAggregatesOnly(true);

void BM_AddThousandKeysThenFindEach(benchmark::State& state) {
  const std::vector<qv::String> keys = Names(1000, u"Table");
  std::vector<qv::String> unique;
  for (size_t i = 0; i < keys.size(); ++i)
    unique.push_back(keys[i] + u"_" + qv::NumberText(i));
  for (auto _ : state) {
    qv::Ref<qv::CSuperCollection> c = qv::MakeRef<qv::CSuperCollection>();
    c->SetCompareMode(1);
    for (const qv::String& k : unique)
      c->Add(qv::Variant(k), k);
    int32_t sum = 0;
    for (const qv::String& k : unique)
      sum += c->KeyExists(k);
    benchmark::DoNotOptimize(sum);
  }
  state.SetLabel("one iteration = 1,000 adds + 1,000 lookups");
}
BENCHMARK(BM_AddThousandKeysThenFindEach)
    ->Unit(benchmark::kMicrosecond)
    ->Repetitions(5)
    ->ReportAggregatesOnly(true);

}  // namespace

BENCHMARK_MAIN();
