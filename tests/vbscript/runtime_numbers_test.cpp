// The number, array, format and locale families, called by name as the engine calls them.
#include "vbscript/runtime_test_helpers.h"

#include "automation/safe_array.h"

namespace qv::vbs {
namespace {

using testing::Call;
using testing::I;
using testing::L;
using testing::Show;

TEST(RuntimeNumbers, RoundingKeepsTypesAndRoundsHalvesToEven) {
  EXPECT_EQ(Show(u"Round", {0.125, I(2)}), "0.12");
  EXPECT_EQ(Call(u"Round", {Variant(2.6f)}).type(), VarType::Single);
  EXPECT_EQ(Call(u"Round", {Variant()}).type(), VarType::Integer);
  EXPECT_EQ(Show(u"Round", {Variant::Currency(125000), I(1)}), "12.5");
  EXPECT_EQ(Show(u"Round", {Variant::Currency(125500), I(2)}), "12.55");
  EXPECT_EQ(Show(u"Round", {Variant::Currency(126250), I(2)}), "12.62");
  EXPECT_EQ(Call(u"Int", {I(7)}).type(), VarType::Integer);
  EXPECT_EQ(Call(u"Fix", {u"7.9"}).type(), VarType::Double);
  EXPECT_EQ(Call(u"Int", {Variant::Date(1.75)}).type(), VarType::Date);
}

TEST(RuntimeNumbers, ArithmeticFunctionsAndTheirDomains) {
  EXPECT_EQ(Show(u"Abs", {I(-5)}), "5");
  EXPECT_EQ(Call(u"Abs", {I(-32768)}).type(), VarType::Long);
  EXPECT_EQ(Show(u"Sgn", {Variant()}), "0");
  EXPECT_EQ(Show(u"Exp", {I(1000)}), "Err 6");
  EXPECT_EQ(Show(u"Exp", {I(0)}), "1");
  EXPECT_EQ(Show(u"Sin", {Variant::Null()}), "Err 94");
  EXPECT_EQ(Show(u"RGB", {I(300), I(0), I(0)}), "255");
}

TEST(RuntimeNumbers, RndFollowsTheWindowsSequence) {
  RuntimeState state;
  const float expected[] = {0.7055475f, 0.533424f, 0.5795186f, 0.2895625f, 0.301948f};
  for (const float e : expected)
    EXPECT_NEAR(Call(state, u"Rnd", {}).as_single(), e, 1e-7);
  EXPECT_NEAR(Call(state, u"Rnd", {I(0)}).as_single(), 0.301948f, 1e-7);
  // A negative argument restarts a fixed sequence, whatever came before.
  const float first = Call(state, u"Rnd", {I(-1)}).as_single();
  EXPECT_NEAR(first, 0.224007f, 1e-6);
  const float second = Call(state, u"Rnd", {}).as_single();
  RuntimeState other;
  Call(other, u"Rnd", {});
  EXPECT_EQ(Call(other, u"Rnd", {I(-1)}).as_single(), first);
  EXPECT_EQ(Call(other, u"Rnd", {}).as_single(), second);
  // Randomize with a number gives the same run for the same seed state.
  RuntimeState a, b;
  Call(a, u"Randomize", {I(42)});
  Call(b, u"Randomize", {I(42)});
  EXPECT_EQ(Call(a, u"Rnd", {}).as_single(), Call(b, u"Rnd", {}).as_single());
  Call(b, u"Randomize", {I(43)});
  EXPECT_NE(Call(a, u"Rnd", {}).as_single(), Call(b, u"Rnd", {}).as_single());
  for (int i = 0; i < 1000; ++i) {
    const float r = Call(a, u"Rnd", {}).as_single();
    ASSERT_TRUE(r >= 0 && r < 1);
  }
}

TEST(RuntimeArrays, BuildingSplittingAndJoining) {
  const Variant a = Call(u"Array", {I(1), u"x", 2.5});
  EXPECT_EQ(Show(u"UBound", {a}), "2");
  EXPECT_EQ(Show(u"LBound", {a}), "0");
  EXPECT_EQ(Show(u"UBound", {a, I(2)}), "Err 9");
  EXPECT_EQ(Show(u"UBound", {u"x"}), "Err 13");
  EXPECT_EQ(Show(u"UBound", {Call(u"Array", {})}), "-1");
  EXPECT_EQ(Show(u"Join", {a, u"-"}), "1-x-2.5");
  EXPECT_EQ(Show(u"Join", {a}), "1 x 2.5");
  const Variant parts = Call(u"Split", {u"a,b,,c", u","});
  EXPECT_EQ(Show(u"UBound", {parts}), "3");
  EXPECT_EQ(Show(u"Join", {parts, u"|"}), "a|b||c");
  EXPECT_EQ(Show(u"UBound", {Call(u"Split", {u""})}), "-1");
  EXPECT_EQ(Show(u"Join", {Call(u"Split", {u"a b c", u" ", I(2)}), u"|"}), "a|b c");
  EXPECT_EQ(Show(u"Join", {Call(u"Split", {u"aXbxc", u"x", I(-1), I(1)}), u"|"}), "a|b|c");
  EXPECT_EQ(Show(u"Join", {Call(u"Split", {u"abc", u""}), u"|"}), "abc");
  EXPECT_EQ(Show(u"UBound", {Call(u"Split", {u"a b", u" ", I(0)})}), "-1");
  EXPECT_EQ(Show(u"Split", {Variant::Null()}), "Err 94");
  const Variant words = Call(u"Array", {u"Apple", u"banana", u"cherry"});
  EXPECT_EQ(Show(u"Join", {Call(u"Filter", {words, u"an"}), u","}), "banana");
  EXPECT_EQ(Show(u"Join", {Call(u"Filter", {words, u"A", Variant(false)}), u","}), "banana,cherry");
  EXPECT_EQ(Show(u"Join", {Call(u"Filter", {words, u"A", Variant(true), I(1)}), u","}),
            "Apple,banana");
}

TEST(RuntimeFormat, NumbersCurrencyAndPercent) {
  EXPECT_EQ(Show(u"FormatNumber", {0.5, I(2), I(0)}), ".50");
  EXPECT_EQ(Show(u"FormatNumber", {-0.5, I(2), I(-1), I(-1)}), "(0.50)");
  EXPECT_EQ(Show(u"FormatNumber", {1234.5, I(1), I(-2), I(-2), I(0)}), "1234.5");
  EXPECT_EQ(Show(u"FormatNumber", {999.996, I(2)}), "1,000.00");
  EXPECT_EQ(Show(u"FormatNumber", {-0.001, I(2)}), "-0.00");  // the sign survives rounding
  EXPECT_EQ(Show(u"FormatNumber", {1e-7, I(3)}), "0.000");
  EXPECT_EQ(Show(u"FormatNumber", {u"1e3"}), "1,000.00");
  EXPECT_EQ(Show(u"FormatNumber", {u"abc"}), "Err 13");
  EXPECT_EQ(Show(u"FormatNumber", {1.0, I(-3)}), "Err 5");
  EXPECT_EQ(Show(u"FormatCurrency", {-5, I(0), I(-2), I(0)}), "-$5");
  EXPECT_EQ(Show(u"FormatCurrency", {Variant::Currency(123455000)}), "$12,345.50");
  EXPECT_EQ(Show(u"FormatPercent", {12.5}), "1,250.00%");
}

TEST(RuntimeInfo, LocaleAndEngine) {
  RuntimeState state;
  EXPECT_EQ(Call(state, u"GetLocale", {}).as_long(), 1033);
  EXPECT_EQ(Call(state, u"SetLocale", {L(1031)}).as_long(), 1033);
  EXPECT_EQ(Call(state, u"SetLocale", {L(1033)}).as_long(), 1031);
  EXPECT_EQ(Call(state, u"SetLocale", {u"en-gb"}).as_long(), 1033);
  EXPECT_EQ(Call(state, u"SetLocale", {u" Fr-FR "}).as_long(), 2057);
  EXPECT_EQ(Call(state, u"SetLocale", {u"de"}).as_long(), 1036);  // a language alone
  // Unknown names and ids, and a bare language's id, raise 447 and change nothing.
  for (const Variant& unknown : {Variant(u"no-such-place"), L(12345), L(7)}) {
    try {
      Call(state, u"SetLocale", {unknown});
      ADD_FAILURE() << "no error";
    } catch (const Error& e) {
      EXPECT_EQ(e.number(), 447);
    }
  }
  EXPECT_EQ(Call(state, u"SetLocale", {L(0)}).as_long(), 1031);
  EXPECT_EQ(Call(state, u"GetLocale", {}).as_long(), 1033);
  // Outside a running engine the thread keeps converting under 1033.
  EXPECT_EQ(Call(state, u"SetLocale", {L(1031)}).as_long(), 1033);
  EXPECT_EQ(ToString(Variant(1.5)), u"1.5");
  EXPECT_EQ(Show(u"ScriptEngine", {}), "VBScript");
  EXPECT_EQ(Show(u"ScriptEngineMajorVersion", {}), "5");
  EXPECT_EQ(Show(u"ScriptEngineMinorVersion", {}), "8");
}

TEST(RuntimeConstants, NamesTypesAndValues) {
  EXPECT_EQ(FindConstant(u"VBCRLF")->as_string(), u"\r\n");
  EXPECT_EQ(FindConstant(u"vbNullChar")->as_string().size(), 1u);
  EXPECT_EQ(FindConstant(u"vbTextCompare")->type(), VarType::Integer);
  EXPECT_EQ(FindConstant(u"vbObjectError")->as_long(), -2147221504);
  EXPECT_EQ(FindConstant(u"vbRed")->type(), VarType::Long);
  EXPECT_EQ(FindConstant(u"vbBlue")->as_long(), 0xFF0000);
  EXPECT_EQ(FindConstant(u"vbUseDefault")->as_integer(), -2);
  EXPECT_EQ(FindConstant(u"vbFirstFourDays")->as_integer(), 2);
  EXPECT_EQ(FindConstant(u"vbArray")->as_integer(), 8192);
  EXPECT_FALSE(FindConstant(u"vbNoSuchThing").has_value());
}

}  // namespace
}  // namespace qv::vbs
