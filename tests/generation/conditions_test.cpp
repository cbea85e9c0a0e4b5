// The condition language over a real project: every object, the operators, alternatives and
// clauses, "%" references, and everything that makes a condition hold because it can't be
// judged.
#include "generation/conditions.h"

#include <gtest/gtest.h>

#include "automation/convert.h"
#include "generation/run_state.h"
#include "generation_fixture.h"
#include "model/field.h"
#include "model/table.h"

namespace qv {
namespace {

class ConditionTest : public testing::GenerationFixture {
 protected:
  void SetUp() override {
    GenerationFixture::SetUp();
    tyx_ = MakeRef<Tyx>();
    tyx_->Databases().Add(u"shop");
    tyx_->CurrentDbName = u"shop";
    Ref<TyxDatabase> db = tyx_->db();
    db->Tables().Add(u"Orders");
    table_ = db->Tables().Item(Variant(u"Orders"));
    table_->SetTblType(u"VIEW");
    table_->SetTblRecPerPage(20);
    table_->Fields().Add(u"Total");
    field_ = table_->Fields().Item(Variant(u"Total"));
    field_->SetFldAdd(true);
    field_->SetFldEdit(true);
    tyx_->SetUseCss(true);

    Ref<TyxControl> control = MakeRef<TyxControl>();
    control->CtrlID = u"list";
    control->CtrlGen = true;
    control->CtrlTagExt = u"It's";
    RunControlList().AddControl(*control);
    RunControlList().Item(1)->CtrlGen = true;  // the copy doesn't take the run's mark
  }
  void TearDown() override {
    field_.reset();
    table_.reset();
    tyx_.reset();
    GenerationFixture::TearDown();
  }
  bool Eval(StringView cond) { return EvalCondition(*tyx_, Variant(cond)); }

  Ref<Tyx> tyx_;
  Ref<TyxTable> table_;
  Ref<TyxField> field_;
};

TEST_F(ConditionTest, ObjectsOperatorsAndLists) {
  EXPECT_TRUE(Eval(u""));
  // Control members, with the given text unquoted and compared to a Boolean as a Boolean.
  EXPECT_TRUE(Eval(u"ctrl/ctrlgen/eq/True"));
  EXPECT_TRUE(Eval(u"ctrl/CTRLGEN/eq/ 'true' "));
  EXPECT_FALSE(Eval(u"ctrl/ctrlgen/eq/False"));
  RunControlList().Item(1)->CtrlGen = false;
  EXPECT_FALSE(Eval(u"ctrl/ctrlgen/eq/True"));
  EXPECT_TRUE(Eval(u"ctrl/ctrlgen/eq/FALSE|x"));
  EXPECT_TRUE(Eval(u"ctrl/ctrlid/eq/\"list\""));
  EXPECT_FALSE(Eval(u"ctrl/ctrlid/eq/List"));     // with case
  EXPECT_TRUE(Eval(u"ctrl/ctrltagext/eq/It's"));  // one quote mark stays

  // No table in the loop yet: a table clause holds, the next one still counts.
  EXPECT_TRUE(Eval(u"table/TblType/eq/TABLE"));
  EXPECT_FALSE(Eval(u"table/TblType/eq/TABLE,proj/UseCss/eq/False"));
  tyx_->CurTable = table_;
  EXPECT_TRUE(Eval(u"table/TblType/eq/TABLE|VIEW,proj/UseCss/eq/True"));
  EXPECT_FALSE(Eval(u"table/TblType/eq/TABLE|VIEW,proj/UseCss/eq/False"));
  EXPECT_FALSE(Eval(u"table/TblType/eq/TABLE|REPORT"));
  EXPECT_TRUE(Eval(u" table/TblType/EQ/VIEW "));
  EXPECT_FALSE(Eval(u" table/TblType/EQ/TABLE "));
  EXPECT_TRUE(Eval(u"table/TblType/in/ie|xx"));
  EXPECT_FALSE(Eval(u"table/TblType/ni/IE"));
  EXPECT_TRUE(Eval(u"table/TblType/ne/TABLE"));
  // Numbers compare by value, not as text.
  EXPECT_TRUE(Eval(u"table/TblRecPerPage/gt/9"));
  EXPECT_TRUE(Eval(u"table/TblRecPerPage/le/20,table/TblRecPerPage/ge/20"));
  EXPECT_FALSE(Eval(u"table/TblRecPerPage/lt/100|3,table/TblRecPerPage/gt/100"));
  tyx_->db()->SetDBName(u"shop");
  EXPECT_TRUE(Eval(u"db/DBName/eq/x|shop"));
  EXPECT_FALSE(Eval(u"db/DBName/eq/x|"));

  // "%" takes another property of the same object.
  tyx_->CurField = field_;
  EXPECT_TRUE(Eval(u"field/FldAdd/eq/%FldEdit"));
  field_->SetFldEdit(false);
  EXPECT_FALSE(Eval(u"field/FldAdd/eq/ %FldEdit"));
  EXPECT_TRUE(Eval(u"field/FldAdd/ne/%FldEdit"));
}

TEST_F(ConditionTest, WhatCantBeJudgedHolds) {
  tyx_->CurTable = table_;
  EXPECT_TRUE(Eval(u"table/TblType/eq"));             // three parts
  EXPECT_TRUE(Eval(u"table/TblType/eq/VIEW/extra"));  // five parts
  EXPECT_TRUE(Eval(u"page/TblType/eq/x"));            // unknown object
  EXPECT_TRUE(Eval(u"table/TblType/equals/TABLE"));   // misspelt operator: the clause holds
  EXPECT_FALSE(Eval(u"table/TblType/equals/x,proj/UseCss/eq/False"));
  EXPECT_TRUE(Eval(u"ctrl/ctrlname/eq/x"));  // unknown control member
  // A misspelt property, a field outside the field loop, "%" of nothing: the whole condition
  // holds, whatever the other clauses say.
  EXPECT_TRUE(Eval(u"table/TblTyp/eq/TABLE,proj/UseCss/eq/False"));
  EXPECT_TRUE(Eval(u"field/FldAdd/eq/True"));
  EXPECT_TRUE(Eval(u"table/TblType/eq/%NoSuch"));
  // ... but a clause that fails first decides before the error is reached.
  EXPECT_FALSE(Eval(u"proj/UseCss/eq/False,table/TblTyp/eq/TABLE"));
  // A value list can't hold "," or "/": they always split.
  EXPECT_FALSE(Eval(u"table/TblType/eq/TABLE,VIEW"));  // "VIEW" is a clause of its own
}

TEST_F(ConditionTest, CustomClausesWithoutScriptHost) {
  EXPECT_TRUE(Eval(u"custom:IsSecure/String/eq/"));
  EXPECT_TRUE(Eval(u"CUSTOM: IsSecure/String/eq/''"));
  EXPECT_FALSE(Eval(u"custom:IsSecure/Boolean/eq/True"));
  EXPECT_TRUE(Eval(u"custom:IsSecure/Boolean/xx/True"));
}

TEST(ConditionValues, ConvertUnquoteResolve) {
  EXPECT_EQ(ConvertValue(Variant(u"true"), Variant(u"Boolean")).type(), VarType::Boolean);
  EXPECT_TRUE(ConvertValue(Variant(u"yes"), Variant(u"boolean")).is_empty());
  EXPECT_EQ(ConvertValue(Variant(u" 12 "), Variant(u"INTEGER")).type(), VarType::Integer);
  EXPECT_TRUE(ConvertValue(Variant(u"40000"), Variant(u"Integer")).is_empty());
  EXPECT_EQ(ToLong(ConvertValue(Variant(u"40000"), Variant(u"Long"))), 40000);
  EXPECT_EQ(ToString(ConvertValue(Variant(u" \"'x'\" "), Variant(u"String"))), u"x");
  EXPECT_EQ(ConvertValue(Variant(int16_t{3}), Variant(u"Date")).type(), VarType::Integer);

  EXPECT_EQ(Unquote(u"  \" 'a b' \"  "), u"a b");
  EXPECT_EQ(Unquote(u"\"a'"), u"\"a'");
  EXPECT_EQ(Unquote(u"'"), u"'");
  EXPECT_EQ(Unquote(u"''"), u"");
  EXPECT_EQ(Unquote(u"\"\"\"\""), u"");

  EXPECT_EQ(CompareCondValues(Variant(true), Variant(u"TRUE")), 0);
  EXPECT_EQ(CompareCondValues(Variant(int32_t{10}), Variant(u"9")), 1);
  EXPECT_EQ(CompareCondValues(Variant(u"10"), Variant(u"9")), -1);  // two texts: as text
  EXPECT_NE(CompareCondValues(Variant(true), Variant(u"x")), 0);
}

}  // namespace
}  // namespace qv
