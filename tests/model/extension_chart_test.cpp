// Extensions and charts: adding an existing name is a success, sequence numbers stay
// contiguous on deletion, and chart variables come from the chart's name.
#include <gtest/gtest.h>

#include "model/charts.h"
#include "model/extensions.h"

namespace qv {
namespace {

TEST(Extensions, AddTwiceIsOneEntryAndDeleteRenumbers) {
  Ref<TyxExtensions> list = MakeRef<TyxExtensions>();
  EXPECT_TRUE(list->Add(u"Charts"));
  EXPECT_TRUE(list->Add(u"Audit"));
  EXPECT_TRUE(list->Add(u"Mail"));
  EXPECT_EQ(list->curName(), u"Mail");
  EXPECT_TRUE(list->Add(u"Charts"));
  EXPECT_EQ(list->Count(), 3);
  EXPECT_EQ(list->curName(), u"Charts");
  EXPECT_EQ(list->curSeq().type(), VarType::String);  // text, unlike the other lists
  EXPECT_EQ(ToString(list->curSeq()), u"1");
  EXPECT_FALSE(list->Add(u""));

  EXPECT_TRUE(list->Delete(u"Charts"));
  EXPECT_EQ(list->Seq(1)->Name(), u"Audit");
  EXPECT_EQ(list->Seq(2)->Name(), u"Mail");
  EXPECT_FALSE(list->Seq(3));
  EXPECT_FALSE(list->Delete(u"Charts"));
  EXPECT_TRUE(list->Exist(Variant(u"Mail")));
  EXPECT_FALSE(list->Exist(Variant(u"mail")));
  EXPECT_FALSE(list->Item(Variant(u"mail")));
  EXPECT_EQ(list->Item(Variant(u"Mail"))->Key(), u"Mail");
}

TEST(Charts, VariablesNamesAndSequence) {
  Ref<TyxCharts> charts = MakeRef<TyxCharts>();
  ASSERT_TRUE(charts->Add(u"Sales 2005"));
  Ref<TyxChart> sales = charts->Item(Variant(u"Sales 2005"));
  EXPECT_EQ(sales->ChartVar(), u"Sales_2005");
  EXPECT_EQ(sales->ChartSeq(), 1);
  EXPECT_EQ(sales->Properties().Count(), 35);
  EXPECT_TRUE(charts->Add(u"Costs"));
  EXPECT_TRUE(charts->Add(u"Sales 2005"));
  EXPECT_EQ(charts->Count(), 2);
  EXPECT_EQ(charts->curName(), u"Sales 2005");
  EXPECT_TRUE(charts->Change(u"Costs", u"Costs 2006"));
  EXPECT_EQ(charts->Item(Variant(u"Costs 2006"))->ChartVar(), u"Costs_2006");
  EXPECT_TRUE(charts->Delete(u"Sales 2005"));
  EXPECT_EQ(charts->Seq(1)->ChartName(), u"Costs 2006");
  EXPECT_TRUE(charts->Exist(Variant(u"Costs 2006")));
}

}  // namespace
}  // namespace qv
