// The runtime library's figures, each one the same work as runtime_bench.py does in Python:
// 100,000 Dictionary insertions and look-ups, 100,000 Replace calls on a 1 KB text and
// 100,000 FormatNumber calls, all through the name look-up and the object interface that a
// script's calls take.
#include <benchmark/benchmark.h>

#include <vector>

#include "automation/convert.h"
#include "vbscript/runtime.h"

namespace qv::vbs {
namespace {

constexpr int kCalls = 100000;

Variant CallBuiltin(RuntimeState& state, const BuiltinFunction& f, std::vector<Variant>& args) {
  return f.fn(state, Args(args));
}

void BM_DictionaryInsertAndLookup(benchmark::State& state) {
  const ClassRegistry registry = ClassRegistry::WithStandardClasses();
  std::vector<Variant> keys;
  keys.reserve(kCalls);
  for (int i = 0; i < kCalls; ++i)
    keys.emplace_back(u"key" + NumberText(i));
  for (auto _ : state) {
    const Ref<Object> d = registry.Create(u"Scripting.Dictionary");
    const DispId add = d->GetIdOfName(u"Add");
    const DispId item = d->GetIdOfName(u"Item");
    for (int i = 0; i < kCalls; ++i) {
      Variant args[] = {keys[i], Variant(static_cast<int32_t>(i))};
      d->Invoke(add, kInvokeMethod, args);
    }
    int64_t sum = 0;
    for (int i = 0; i < kCalls; ++i) {
      Variant args[] = {keys[i]};
      sum += d->Invoke(item, kInvokeGet | kInvokeMethod, args).as_long();
    }
    benchmark::DoNotOptimize(sum);
  }
}
BENCHMARK(BM_DictionaryInsertAndLookup)->Unit(benchmark::kMillisecond);

void BM_Replace1KText(benchmark::State& state) {
  RuntimeState runtime;
  const BuiltinFunction& replace = *FindBuiltin(u"Replace");
  String text;
  while (text.size() < 1024)
    text.Append(u"The quick brown fox jumps over the lazy dog. ");
  std::vector<Variant> args = {Variant(text), Variant(u"fox"), Variant(u"cat")};
  for (auto _ : state) {
    for (int i = 0; i < kCalls; ++i)
      benchmark::DoNotOptimize(CallBuiltin(runtime, replace, args));
  }
}
BENCHMARK(BM_Replace1KText)->Unit(benchmark::kMillisecond);

void BM_FormatNumber(benchmark::State& state) {
  RuntimeState runtime;
  const BuiltinFunction& format = *FindBuiltin(u"FormatNumber");
  for (auto _ : state) {
    for (int i = 0; i < kCalls; ++i) {
      std::vector<Variant> args = {Variant(i * 1.2345), Variant(int16_t{2})};
      benchmark::DoNotOptimize(CallBuiltin(runtime, format, args));
    }
  }
}
BENCHMARK(BM_FormatNumber)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace qv::vbs
