// TyxChart: the definition of one chart, which hosts create for themselves; nothing in the
// root, the project file or the generator refers to it. Its data lives in its bag.
#pragma once

#include "model/bag_object.h"
#include "model/chart_properties.h"

namespace qv {

class TyxChart : public BagObject<TyxChart> {
 public:
  enum PropertyIndex : int32_t { QV_CHART_PROPERTIES(QV_BAG_INDEX) kPropertyCount };
  static constexpr int32_t kNameIndex = kChartName;
  static constexpr int32_t kSeqIndex = kChartSeq;
  static constexpr int32_t kVarIndex = kChartVar;

  TyxChart();
  static const DispatchTable<TyxChart>& Table();
  static const PropertyLayout& Layout();

  TyProperties& Properties() const { return *properties_; }
  TyProperty& Entry(int32_t index) const { return properties_->Entry(Layout(), index); }
  void AfterSet(int32_t) {}

  QV_CHART_PROPERTIES(QV_BAG_ACCESSORS)

  String Key() const { return ChartName(); }
  void SetKey(const String& key) { SetChartName(key); }

 private:
  Ref<TyProperties> properties_;
};

}  // namespace qv
