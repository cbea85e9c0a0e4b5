// TyxCharts: a list of charts with a current entry, which hosts fill for themselves. Adding an
// existing name counts as success and makes it current.
#pragma once

#include "model/chart.h"
#include "model/named_list.h"

namespace qv {

class TyxCharts final : public TyxList<TyxCharts, TyxChart, kChartListRules> {};

}  // namespace qv
