// The chart list's operations and object interface.
#include "model/charts.h"

#include "support/tyx_functions.h"

namespace qv {

bool TyxCharts::Add(StringView name) {
  if (name.empty()) return false;
  if (TyxChart* existing = list_.ByKey(name)) {
    list_.MakeCurrent(*existing);
    return true;
  }
  Ref<TyxChart> chart = list_.Append(name);
  chart->SetChartVar(ToVarName(name, u""));
  return true;
}

bool TyxCharts::Change(StringView old_name, StringView new_name) {
  TyxChart* chart = list_.Rename(old_name, new_name);
  if (!chart) return false;
  chart->SetChartVar(ToVarName(new_name, u""));
  list_.MakeCurrent(*chart);
  return true;
}

bool TyxCharts::Delete(StringView name) {
  try {
    return list_.DeleteAndRenumber(name);
  } catch (const Error&) {
    return false;
  }
}

bool TyxCharts::ChartExist(const Variant& index) const {
  const String name = ToString(index);
  bool found = false;
  list_.ForEach([&](TyxChart& c) {
    if (!found && c.ChartName() == name) found = true;
  });
  return found;
}

Ref<TyxChart> TyxCharts::Item(const Variant& index) {
  try {
    TyxChart* c = list_.ByIndex(index);
    if (c) list_.MakeCurrent(*c);
    return Ref<TyxChart>(c);
  } catch (const Error&) {
    return nullptr;
  }
}

Ref<TyxChart> TyxCharts::Seq(int16_t seq) const {
  try {
    return Ref<TyxChart>(list_.BySeq(seq));
  } catch (const Error&) {
    return nullptr;
  }
}

const DispatchTable<TyxCharts>& TyxCharts::Table() {
  using L = TyxCharts;
  static const auto table =
      DispatchTable<L>(u"TyxCharts")
          .Property(u"Item",
                    [](L& l, Args a) {
                      CheckArgCount(a, 1, 1);
                      return Variant(l.Item(a[0]));
                    })
          .Default(u"Item")
          .Property(u"curName", [](L& l, Args) { return Variant(l.curName()); })
          .Property(u"curSeq", [](L& l, Args) { return Variant(l.curSeq()); })
          .Property(u"Count", [](L& l, Args) { return Variant(l.Count()); })
          .Method(u"Add",
                  [](L& l, Args a) {
                    CheckArgCount(a, 1, 1);
                    return Variant(l.Add(ToString(a[0])));
                  })
          .Method(u"Change",
                  [](L& l, Args a) {
                    CheckArgCount(a, 2, 2);
                    return Variant(l.Change(ToString(a[0]), ToString(a[1])));
                  })
          .Method(u"Delete",
                  [](L& l, Args a) {
                    CheckArgCount(a, 1, 1);
                    return Variant(l.Delete(ToString(a[0])));
                  })
          .Method(u"ChartExist",
                  [](L& l, Args a) {
                    CheckArgCount(a, 1, 1);
                    return Variant(l.ChartExist(a[0]));
                  })
          .Method(u"Seq", [](L& l, Args a) {
            CheckArgCount(a, 1, 1);
            return Variant(l.Seq(ToInteger(a[0])));
          });
  return table;
}

}  // namespace qv
