// Figures of the project model: building a project of 1,000 tables with 30 fields each, every
// table and field with its defaults applied (time per project, and the process's peak
// resident memory), and reading one field setting by name through the object interface with
// the member id cached, as a script call site does.
#include <benchmark/benchmark.h>
#include <sys/resource.h>

#include "model/tyx.h"
#include "support/status.h"
#include "support/tyx_vars.h"

namespace {

constexpr int kTables = 1000;
constexpr int kFields = 30;
constexpr int16_t kTypes[] = {
    qv::adInteger, qv::adVarWChar,     qv::adVarWChar, qv::adDBTimeStamp, qv::adCurrency,
    qv::adBoolean, qv::adLongVarWChar, qv::adDouble,   qv::adGUID,        qv::adLongVarBinary};

std::vector<qv::String> Names(const char16_t* stem, int count) {
  std::vector<qv::String> out;
  for (int i = 0; i < count; ++i)
    out.push_back(qv::String(stem) + qv::NumberText(i));
  return out;
}

qv::Ref<qv::Tyx> BuildProject(const std::vector<qv::String>& tables,
                              const std::vector<qv::String>& fields) {
  qv::Ref<qv::Tyx> tyx = qv::MakeRef<qv::Tyx>();
  tyx->Databases().Add(u"DB");
  tyx->CurrentDbName = u"DB";
  qv::TyxTables& list = tyx->db()->Tables();
  for (const qv::String& name : tables) {
    list.Add(name);
    qv::TyxTable& table = *list.list().ByKey(name);
    table.SetTblType(u"TABLE");
    table.LoadTableDefault();
    qv::TyxFields& columns = table.Fields();
    int i = 0;
    for (const qv::String& column : fields) {
      columns.Add(column);
      qv::TyxField& field = *columns.list().ByKey(column);
      field.SetFieldSupport(kTypes[i++ % 10]);
      field.SetFldSize(50);
      field.LoadFldDefault();
    }
  }
  return tyx;
}

long PeakRssKiB() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_maxrss;
}

void BM_CreateProject1000x30(benchmark::State& state) {
  qv::Vars().Status = qv::MakeRef<qv::TyxStatus>(qv::StatusMode::kQuiet);
  qv::Vars().DefaultDateFormat = 5;
  const auto tables = Names(u"Table ", kTables);
  const auto fields = Names(u"FieldName", kFields);
  for (auto _ : state) {
    qv::Ref<qv::Tyx> tyx = BuildProject(tables, fields);
    benchmark::DoNotOptimize(tyx.get());
    state.PauseTiming();
    tyx.reset();
    state.ResumeTiming();
  }
  state.counters["peak_rss_MiB"] = static_cast<double>(PeakRssKiB()) / 1024.0;
  state.SetLabel("1,000 tables x 30 fields, defaults applied");
}
BENCHMARK(BM_CreateProject1000x30)->Unit(benchmark::kMillisecond)->Iterations(5);

void BM_FieldSettingByCachedId(benchmark::State& state) {
  qv::Ref<qv::TyxField> field = qv::MakeRef<qv::TyxField>();
  field->SetFldName(u"CustomerID");
  field->SetFieldSupport(qv::adInteger);
  field->LoadFldDefault();
  qv::Object& object = *field;
  // What a call site keeps after its first lookup of "FldCaption".
  const void* cached_key = object.MemberCacheKey();
  const qv::DispId cached_id = object.GetIdOfName(u"fldcaption");
  for (auto _ : state) {
    qv::DispId id = cached_id;
    if (object.MemberCacheKey() != cached_key) id = object.GetIdOfName(u"fldcaption");
    benchmark::DoNotOptimize(object.Invoke(id, qv::kInvokeGet | qv::kInvokeMethod, {}));
  }
}
BENCHMARK(BM_FieldSettingByCachedId)->Repetitions(5)->ReportAggregatesOnly(true);

void BM_FieldSettingByName(benchmark::State& state) {
  qv::Ref<qv::TyxField> field = qv::MakeRef<qv::TyxField>();
  field->SetFldName(u"CustomerID");
  qv::Object& object = *field;
  for (auto _ : state) {
    const qv::DispId id = object.GetIdOfName(u"FLDCAPTION");
    benchmark::DoNotOptimize(object.Invoke(id, qv::kInvokeGet | qv::kInvokeMethod, {}));
  }
}
BENCHMARK(BM_FieldSettingByName)->Repetitions(5)->ReportAggregatesOnly(true);

}  // namespace

BENCHMARK_MAIN();
