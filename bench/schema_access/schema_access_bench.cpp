// How long an Access file takes to load: LoadDB of Northwind (9 tables, the select queries as
// views, every field read, each view's SQL analysed for its key), which must stay under a
// second; and the two SQL analysers on a typical Access query, which every view goes through.
#include <benchmark/benchmark.h>

#include <memory>
#include <vector>

#include "model/tyx.h"
#include "platform/prompter.h"
#include "schema/custom_sql_parser.h"
#include "schema/project_loader.h"
#include "schema/view_sql_parser.h"
#include "support/status.h"
#include "support/tyx_vars.h"

namespace {

using qv::String;

constexpr const char16_t* kQuery =
    u"SELECT DISTINCTROW Orders.OrderID, Orders.CustomerID, [Order Details].ProductID, "
    u"Products.ProductName, [Order Details].UnitPrice * [Order Details].Quantity AS Amount\r\n"
    u"FROM Products INNER JOIN (Orders INNER JOIN [Order Details] ON Orders.OrderID = "
    u"[Order Details].OrderID) ON Products.ProductID = [Order Details].ProductID\r\n"
    u"WHERE (((Orders.ShippedDate) Between #1/1/1995# And #12/31/1995#));";

void BM_LoadDB_NorthwindAllFields(benchmark::State& state) {
  qv::ResetVars();
  qv::SharedStatus().SetMode(qv::StatusMode::kQuiet);
  qv::SetCurrentPrompter(std::make_unique<qv::ScriptedPrompter>(std::vector<String>{}, nullptr));
  const String file = String::FromUtf8(QV_SHARED_DATA "/access/nwind.mdb");
  for (auto _ : state) {
    state.PauseTiming();
    qv::Ref<qv::Tyx> tyx = qv::MakeRef<qv::Tyx>();
    qv::LoadDbRequest request;
    request.db_type = u"ACCESS";
    request.path = file;
    request.phy_path = file;
    state.ResumeTiming();
    qv::LoadDB(*tyx, request);
    state.PauseTiming();
    const int loaded = tyx->Databases().Count() ? tyx->db()->Tables().Count() : 0;
    if (!qv::Vars().ProjErr.empty() || loaded < 9) {
      state.SkipWithError(("load failed: " + qv::Vars().ProjErr.ToUtf8()).c_str());
    }
    tyx = nullptr;  // unloading is not part of the figure
    state.ResumeTiming();
  }
}
BENCHMARK(BM_LoadDB_NorthwindAllFields)->Unit(benchmark::kMillisecond)->Iterations(5);

void BM_ViewSqlParser_AccessJoin(benchmark::State& state) {
  for (auto _ : state) {
    qv::ViewSqlParser p;
    p.SetSql(kQuery);
    benchmark::DoNotOptimize(p.JoinCount());
  }
}
BENCHMARK(BM_ViewSqlParser_AccessJoin);

void BM_CustomSqlParser_AccessJoin(benchmark::State& state) {
  for (auto _ : state) {
    qv::CustomSqlParser p;
    benchmark::DoNotOptimize(p.Parse(kQuery, 1));
    String name, table, field;
    bool alias = false;
    p.FieldOrigin(u"Amount", name, table, field, alias);
    benchmark::DoNotOptimize(field);
  }
}
BENCHMARK(BM_CustomSqlParser_AccessJoin);

}  // namespace
