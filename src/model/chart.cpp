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
  static const auto table = DispatchTable<E>(u"TyxChart")
                                .Property<&E::Properties>(u"Properties")
                                .Property<&E::Key, &E::SetKey>(u"Key")
                                .Parameterless({u"Properties"});
  return table;
}

}  // namespace qv
