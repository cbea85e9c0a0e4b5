// A chart's registration and object interface.
#include "model/chart.h"

namespace qv {

TyxChart::TyxChart() : properties_(MakeRef<TyProperties>()) {
  properties_->Register(Layout());
}

const PropertyLayout& TyxChart::Layout() {
  static const PropertyLayout* layout = new PropertyLayout({QV_CHART_PROPERTIES(QV_BAG_SPEC)});
  return *layout;
}

const DispatchTable<TyxChart>& TyxChart::Table() {
  using E = TyxChart;
  static const auto table =
      DispatchTable<E>(u"TyxChart")
          .Property(u"Properties",
                    [](E& e, Args) { return Variant(Ref<TyProperties>(&e.Properties())); })
          .Property(
              u"Key", [](E& e, Args) { return Variant(e.Key()); },
              [](E& e, Args, const Variant& v) { e.SetKey(ToString(v)); })
          .Parameterless({u"Properties"});
  return table;
}

}  // namespace qv
