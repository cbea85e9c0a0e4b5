// The registration list of a chart, in order. No operation walks a chart's bag, so its
// registry flags have no effect.
// X(Name, Type, Registry, File, Sync); see bag_accessors.h.
#pragma once

#include "model/bag_accessors.h"

// clang-format off
#define QV_CHART_PROPERTIES(X) \
  X(ChartSeq, Integer, QV_REG_NONE, 1, 0) \
  X(ChartName, String, QV_REG_NONE, 1, 0) \
  X(ChartVar, String, QV_REG_NONE, 0, 0) \
  X(ShowChart, Boolean, QV_REG_TEXT, 1, 1) \
  X(ChartXFldName, String, QV_REG_NONE, 1, 1) \
  X(ChartYFldName, String, QV_REG_NONE, 1, 1) \
  X(ChartType, Integer, QV_REG_NUMBER, 1, 1) \
  X(ChartWidth, Integer, QV_REG_NUMBER, 1, 1) \
  X(ChartHeight, Integer, QV_REG_NUMBER, 1, 1) \
  X(ChartBgColor, String, QV_REG_TEXT, 1, 1) \
  X(ChartCaption, String, QV_REG_NONE, 1, 1) \
  X(ChartBorderLeftColor, String, QV_REG_TEXT, 1, 1) \
  X(ChartBorderTopColor, String, QV_REG_TEXT, 1, 1) \
  X(ChartBorderBottomColor, String, QV_REG_TEXT, 1, 1) \
  X(ChartBorderRightColor, String, QV_REG_TEXT, 1, 1) \
  X(ChartChartBgColor, String, QV_REG_TEXT, 1, 1) \
  X(ChartChartBorderColor, String, QV_REG_TEXT, 1, 1) \
  X(ChartNumGridLines, Integer, QV_REG_NUMBER, 1, 1) \
  X(ChartGridColor, String, QV_REG_TEXT, 1, 1) \
  X(ChartXAxisName, String, QV_REG_NONE, 1, 1) \
  X(ChartXAxisNameRotated, Boolean, QV_REG_TEXT, 1, 1) \
  X(ChartXAxisValueMaxChar, Integer, QV_REG_NUMBER, 1, 1) \
  X(ChartXAxisValueRotation, Integer, QV_REG_NUMBER, 1, 1) \
  X(ChartYAxisName, String, QV_REG_NONE, 1, 1) \
  X(ChartYAxisNameRotated, Boolean, QV_REG_TEXT, 1, 1) \
  X(ChartYAxisMinValue, Long, QV_REG_NUMBER, 1, 1) \
  X(ChartYAxisMaxValue, Long, QV_REG_NUMBER, 1, 1) \
  X(ChartShowNames, Boolean, QV_REG_TEXT, 1, 1) \
  X(ChartShowValues, Boolean, QV_REG_TEXT, 1, 1) \
  X(ChartShowHover, Boolean, QV_REG_TEXT, 1, 1) \
  X(ChartAlpha, Integer, QV_REG_NUMBER, 1, 1) \
  X(ChartColorPalette, String, QV_REG_TEXT, 1, 1) \
  X(ChartUseGlobalCss, Boolean, QV_REG_TEXT, 1, 1) \
  X(ChartSortType, Integer, QV_REG_NUMBER, 1, 1) \
  X(ChartPosition, Integer, QV_REG_NUMBER, 1, 1)
// clang-format on
