// The script-control surface as a host drives it: modules, objects, code replaced across
// AddCode calls, compile and run-time errors with their positions, the time limit, Reset,
// Class_Terminate at Reset and the guard against deep recursion.
#include "vbscript/engine.h"

#include <gtest/gtest.h>

#include <chrono>
#include <vector>

#include "automation/convert.h"
#include "automation/dispatch.h"
#include "automation/error_of.h"

namespace qv::vbs {
namespace {

std::string Utf8(const Variant& v) {
  return ToString(v).ToUtf8();
}

// A host object that records the calls a script makes on it and calls back into the engine.
class Probe : public DispatchObject<Probe> {
 public:
  explicit Probe(Engine* engine = nullptr) : engine(engine) {}
  static const DispatchTable<Probe>& Table() {
    static const auto table =
        DispatchTable<Probe>(u"Probe")
            .Property(
                u"Value", [](Probe& p, Args) { return Variant(p.value); },
                [](Probe& p, Args, const Variant& v) { p.value = ToLong(v); })
            .Method(u"Bump",
                    [](Probe& p, Args args) {
                      // Writes into its argument: ByRef back to the script's variable.
                      if (!args.empty()) args[0] = Variant(ToLong(args[0]) + 1);
                      return Variant(++p.calls);
                    })
            .Method(u"Reenter",
                    [](Probe& p, Args args) {
                      Variant a = args[0];
                      return p.engine->Run(u"Again", std::span<Variant>(&a, 1));
                    })
            .Default(u"Value");
    return table;
  }
  Engine* engine;
  int32_t value = 7;
  int32_t calls = 0;
};

TEST(EngineTest, ModulesSeeObjectsButKeepTheirOwnNames) {
  Engine engine;
  EXPECT_EQ(engine.Language(), u"VBScript");
  auto probe = MakeRef<Probe>();
  engine.AddObject(u"PROJ", probe);
  EXPECT_EQ(ErrorOf([&] { engine.AddObject(u"proj", probe); }), kErrKeyExists);

  ScriptModule& system = engine.AddModule(u"System");
  ScriptModule& user = engine.AddModule(u"$User");
  EXPECT_EQ(&engine.Modules(u"system"), &system);
  EXPECT_EQ(ErrorOf([&] { engine.AddModule(u"SYSTEM"); }), kErrKeyExists);

  system.AddCode(
      u"Dim counter\r\nFunction Twice(x)\r\n Twice = x * 2 + PROJ.Value\r\nEnd Function");
  user.AddCode(u"Function Twice(x) : Twice = -x : End Function\r\nSub Tick() : End Sub");
  Variant arg(int16_t{5});
  EXPECT_EQ(Utf8(system.Run(u"Twice", std::span<Variant>(&arg, 1))), "17");
  EXPECT_EQ(Utf8(user.Run(u"twice", std::span<Variant>(&arg, 1))), "-5");
  // The global module doesn't see a named module's procedures.
  EXPECT_EQ(ErrorOf([&] { engine.Run(u"Twice", std::span<Variant>(&arg, 1)); }), kErrSubNotDefined);

  const auto procs = user.Procedures();
  ASSERT_EQ(procs.size(), 2u);
  EXPECT_EQ(procs[0].Name, u"Twice");
  EXPECT_EQ(procs[0].NumArgs, 1);
  EXPECT_TRUE(procs[0].HasReturnValue);
  EXPECT_EQ(procs[1].Name, u"Tick");
  EXPECT_FALSE(procs[1].HasReturnValue);

  // Globals of the global module are visible from named modules, not the other way round.
  engine.AddCode(u"Dim shared : shared = 3");
  EXPECT_EQ(Utf8(system.Eval(u"shared + 1")), "4");
  EXPECT_EQ(Utf8(engine.Eval(u"IsEmpty(counter)")), "True");
}

TEST(EngineTest, LaterDefinitionReplacesEarlierAcrossAddCode) {
  Engine engine;
  ScriptModule& system = engine.AddModule(u"System");
  system.AddCode(u"Function qvScriptEngine()\r\n qvScriptEngine = \"first\"\r\nEnd Function");
  EXPECT_EQ(Utf8(system.Run(u"qvScriptEngine")), "first");
  system.AddCode(u"Function qvScriptEngine()\r\n qvScriptEngine = \"second\"\r\nEnd Function");
  EXPECT_EQ(Utf8(system.Run(u"qvScriptEngine")), "second");
  EXPECT_EQ(system.Procedures().size(), 1u);
  // Within one piece of code the last definition wins as well.
  system.AddCode(u"Function F() : F = 1 : End Function\r\nFunction F() : F = 2 : End Function");
  EXPECT_EQ(Utf8(system.Run(u"F")), "2");
}

TEST(EngineTest, CachedCodeComesBackAsCompiledAndFollowsNewModuleNames) {
  Engine engine;
  ScriptModule& system = engine.AddModule(u"System");
  const String first =
      u"Dim runs\r\nruns = runs + 1\r\nFunction qvScriptEngine() : x = \"first\" : "
      u"qvScriptEngine = x : End Function";
  const String second = u"Function qvScriptEngine() : qvScriptEngine = 2 : End Function";
  system.AddCodeCached(first);
  system.AddCodeCached(second);
  EXPECT_EQ(Utf8(system.Run(u"qvScriptEngine")), "2");
  // A text seen before takes its definitions back and runs its module-level code again.
  system.AddCodeCached(first);
  EXPECT_EQ(Utf8(system.Run(u"qvScriptEngine")), "first");
  EXPECT_EQ(Utf8(system.Eval(u"runs")), "2");
  EXPECT_EQ(system.Procedures().size(), 1u);
  // The same text in a buffer of its own is found by its content.
  system.AddCodeCached(String(second.view()));
  EXPECT_EQ(Utf8(system.Run(u"qvScriptEngine")), "2");
  EXPECT_EQ(Utf8(system.Eval(u"runs")), "2");

  // `x` was a local of the function because the module had no such name. Once the module
  // declares it, the kept compiled form is stale: the function must now write the module's x.
  system.AddCode(u"Dim x");
  system.AddCodeCached(first);
  system.Run(u"qvScriptEngine");
  EXPECT_EQ(Utf8(system.Eval(u"x")), "first");

  // A compile error leaves nothing behind and reports like AddCode.
  EXPECT_NE(ErrorOf([&] { system.AddCodeCached(u"Function qvScriptEngine()\r\nIf 1 Then"); }), 0);
  EXPECT_EQ(engine.Error().Line(), 2);
  EXPECT_EQ(Utf8(system.Run(u"qvScriptEngine")), "first");
}

TEST(EngineTest, CompileErrorsCarryPositionAndTextAndAddNothing) {
  Engine engine;
  const char16_t* code =
      u"Function Good()\r\n Good = 1\r\nEnd Function\r\nx = 1\r\nIf x Then\r\n y = (1 +\r\n";
  EXPECT_THROW(engine.AddCode(code), Error);
  EXPECT_EQ(engine.Error().Number(), 1023);
  EXPECT_EQ(engine.Error().Description(), u"Expected expression");
  EXPECT_EQ(engine.Error().Source(), u"Microsoft VBScript compilation error");
  EXPECT_EQ(engine.Error().Line(), 6);
  EXPECT_EQ(engine.Error().Text(), u" y = (1 +");
  EXPECT_TRUE(engine.Procedures().empty());
  EXPECT_EQ(ErrorOf([&] { engine.Run(u"Good"); }), kErrSubNotDefined);

  struct Case {
    const char16_t* code;
    int32_t number;
    int32_t line;
    int32_t column;  // 0: not checked
  };
  const Case cases[] = {
      {u"x = ", 1023, 1, 5},
      {u"If x Then\r\ny = 1\r\n", 1014, 3, 1},
      {u"x = 1 2", 1025, 1, 7},
      {u"Dim 5", 1010, 1, 5},
      {u"x = \"abc", 1033, 1, 5},
      {u"For i = 1\r\nNext", 1013, 1, 10},
      {u"Do\r\nx = 1\r\n", 1019, 3, 1},
      {u"While x\r\n", 1018, 2, 1},
      {u"x = 1 $ 2", 1032, 1, 7},
      {u"Exit Do", 1039, 1, 6},
      {u"Loop", 1038, 1, 1},
      {u"Next", 1055, 1, 1},
      {u"Sub A\r\nEnd Function", 1016, 2, 5},
      {u"Call F(1, 2) : F(1, 2)", 1044, 1, 0},
      {u"Class C\r\nProperty Let P()\r\nEnd Property\r\nEnd Class", 1054, 2, 0},
      {u"x = Me", 1037, 1, 5},
      {u"Select Case x\r\nEnd Select x", 1025, 2, 12},
      {u"x = 1\r\nOption Explicit", 1042, 2, 1},
      {u"Sub S(a, b, a)\r\nEnd Sub", 1041, 1, 13},
      {u"Class C\r\nProperty Get P(i)\r\nEnd Property\r\nProperty Let P(v)\r\nEnd Property\r\n"
       u"End Class",
       1051, 4, 1},
      {u"If True Then\r\n x = 0 End If", 1025, 2, 8},
      {u"Class C End Class", 1025, 1, 9},
      {u"x = 1 >< 2 =>", 1023, 1, 14},
  };
  for (const Case& c : cases) {
    EXPECT_THROW(engine.AddCode(c.code), Error) << String::ToUtf8(c.code);
    EXPECT_EQ(engine.Error().Number(), c.number) << String::ToUtf8(c.code);
    EXPECT_EQ(engine.Error().Line(), c.line) << String::ToUtf8(c.code);
    if (c.column) {
      EXPECT_EQ(engine.Error().Column(), c.column) << String::ToUtf8(c.code);
    }
  }
}

TEST(EngineTest, RuntimeErrorsReportTheInnermostLine) {
  Engine engine;
  engine.AddCode(
      u"Function Inner(d)\r\n  Inner = 1 / d\r\nEnd Function\r\n"
      u"Function Outer()\r\n  Outer = Inner(0)\r\nEnd Function");
  EXPECT_EQ(ErrorOf([&] { engine.Run(u"Outer"); }), kErrDivisionByZero);
  EXPECT_EQ(engine.Error().Line(), 2);
  EXPECT_EQ(engine.Error().Text(), u"  Inner = 1 / d");
  EXPECT_EQ(engine.Error().Description(), u"Division by zero");
  EXPECT_EQ(engine.Error().Source(), u"Microsoft VBScript runtime error");
  // A later success clears the error object.
  engine.Eval(u"1");
  EXPECT_EQ(engine.Error().Number(), 0);
}

// A failing condition is reported where its clause stands: the ElseIf, the Loop, the Select
// (for a Case value); a statement continued over lines where it starts; a library function's
// error names the function.
TEST(EngineTest, RuntimeErrorsInStatementHeadersReportTheirClause) {
  struct Case {
    const char16_t* code;
    int32_t line;
    int32_t column;
    const char16_t* description;
  };
  const Case cases[] = {
      {u"If False Then\r\n x = 1\r\n ElseIf 1 / 0 Then\r\n x = 2\r\nEnd If", 3, 2,
       u"Division by zero"},
      {u"Do\r\n x = 1\r\nLoop Until 1 / 0", 3, 1, u"Division by zero"},
      {u"\r\n  Select Case 3\r\n Case 2\r\n Case 1 / 0\r\n x = 1\r\nEnd Select", 2, 3,
       u"Division by zero"},
      {u"x = 1\r\n  y = CInt _\r\n (\"abc\")", 2, 3, u"Type mismatch: 'CInt'"},
      {u"If True Then x = Mid(\"a\", 0)", 1, 14, u"Invalid procedure call or argument: 'Mid'"},
  };
  for (const Case& c : cases) {
    Engine engine;
    EXPECT_NE(ErrorOf([&] { engine.AddCode(c.code); }), 0) << String::ToUtf8(c.code);
    EXPECT_EQ(engine.Error().Line(), c.line) << String::ToUtf8(c.code);
    EXPECT_EQ(engine.Error().Column(), c.column) << String::ToUtf8(c.code);
    EXPECT_EQ(engine.Error().Description(), c.description) << String::ToUtf8(c.code);
  }
  // Under On Error Resume Next the script's Err keeps the plain text.
  Engine engine;
  engine.AddCode(u"On Error Resume Next\r\nx = CInt(\"abc\")\r\nd = Err.Description");
  EXPECT_EQ(Utf8(engine.Eval(u"d")), "Type mismatch");
}

TEST(EngineTest, HostObjectsTakeByRefArgumentsAndReenterTheEngine) {
  Engine engine;
  auto probe = MakeRef<Probe>(&engine);
  engine.AddObject(u"P", probe);
  engine.AddCode(
      u"Function Again(n)\r\n If n > 0 Then Again = P.Reenter(n - 1) + 1 Else Again = 0\r\n"
      u"End Function\r\nDim k : k = 10 : P.Bump k");
  EXPECT_EQ(Utf8(engine.Eval(u"k")), "11");
  EXPECT_EQ(Utf8(engine.Eval(u"P")), "7");  // the default member
  EXPECT_EQ(Utf8(engine.Eval(u"Again(20)")), "20");
  // `P(i) = v` stores through the default member, from the global module and a named one,
  // as ASP pages write `Application("x") = v`; the name itself stays the host's.
  engine.ExecuteStatement(u"P(1) = 42");
  EXPECT_EQ(probe->value, 42);
  engine.AddModule(u"Other").ExecuteStatement(u"P(2) = 43");
  EXPECT_EQ(probe->value, 43);
  EXPECT_EQ(ErrorOf([&] { engine.ExecuteStatement(u"P = 1"); }), kErrIllegalAssignment);
  // Members at global level only when the host asks for it.
  EXPECT_EQ(ErrorOf([&] { engine.ExecuteStatement(u"Option Explicit\r\nBump"); }),
            kErrVariableUndefined);
  auto members = MakeRef<Probe>(&engine);
  engine.AddObject(u"Q", members, true);
  engine.ExecuteStatement(u"Value = 40 : Bump");
  EXPECT_EQ(members->value, 40);
  EXPECT_EQ(members->calls, 1);
}

TEST(EngineTest, TimeoutInterruptsAndTheEngineStaysUsable) {
  Engine engine;
  engine.SetTimeout(100);
  engine.AddCode(
      u"Sub Forever()\r\n On Error Resume Next\r\n Do\r\n x = x + 1\r\n Loop\r\nEnd Sub");
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(ErrorOf([&] { engine.Run(u"Forever"); }), kErrTimeout);
  const auto elapsed = std::chrono::steady_clock::now() - start;
  EXPECT_LT(elapsed, std::chrono::seconds(5));
  EXPECT_EQ(engine.Error().Number(), kErrTimeout);
  EXPECT_EQ(Utf8(engine.Eval(u"1 + 1")), "2");

  // Recursion alone, with no loop to jump back in, and a loop whose test and step run in
  // fused instructions are interrupted as well.
  engine.AddCode(
      u"Function Fib(n)\r\n If n < 2 Then\r\n Fib = n\r\n Else\r\n"
      u" Fib = Fib(n - 1) + Fib(n - 2)\r\n End If\r\nEnd Function\r\n"
      u"Sub Count()\r\n Dim i\r\n i = 0\r\n Do While i < 2000000000\r\n i = i + 1\r\n"
      u" Loop\r\nEnd Sub");
  std::vector<Variant> none;
  std::vector<Variant> deep{Variant(int16_t{45})};
  std::vector<Variant> small{Variant(int16_t{10})};
  for (bool recursive : {false, true}) {
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(ErrorOf([&] { engine.Run(recursive ? u"Fib" : u"Count", recursive ? deep : none); }),
              kErrTimeout)
        << (recursive ? "recursion" : "loop");
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(5));
  }
  EXPECT_EQ(Utf8(engine.Run(u"Fib", small)), "55");
}

TEST(EngineTest, ResetAndRecycleDropCodeModulesObjectsAndState) {
  // A page as a web server runs it on every request: a class, a function, module variables,
  // a locale of its own and an error left in Err.
  const String page =
      u"Dim runs : runs = runs + 1\r\nClass Box\r\n Public V\r\nEnd Class\r\n"
      u"Function Twice(n) : Twice = n * 2 : End Function\r\nSetLocale 1031\r\n"
      u"On Error Resume Next : Err.Raise 9";
  for (const bool recycle : {false, true}) {
    SCOPED_TRACE(recycle ? "Recycle" : "Reset");
    Engine engine;
    for (int run = 0; run < 3; ++run) {
      engine.AddObject(u"P", MakeRef<Probe>());
      engine.AddModule(u"System").AddCode(u"Sub S() : End Sub");
      engine.GlobalModule().AddCodeCached(page);
      EXPECT_EQ(Utf8(engine.Eval(u"runs & \"/\" & Twice(4) & \"/\" & TypeName(New Box)")),
                "1/8/Box");
      EXPECT_EQ(Utf8(engine.Eval(u"GetLocale() & \"/\" & Err.Number")), "1031/9");
      engine.ExecuteStatement(u"Set kept = New Box : kept.V = P");
      if (recycle) {
        engine.Recycle();
      } else {
        engine.Reset();
      }
      EXPECT_EQ(engine.FindModule(u"System"), nullptr);
      EXPECT_EQ(Utf8(engine.Eval(u"IsEmpty(runs) And IsEmpty(P) And IsEmpty(kept)")), "True");
      EXPECT_EQ(Utf8(engine.Eval(u"GetLocale() & \"/\" & Err.Number")), "1033/0");
      EXPECT_EQ(ErrorOf([&] { engine.Run(u"Twice"); }), kErrSubNotDefined);
      EXPECT_NE(ErrorOf([&] { engine.Eval(u"New Box"); }), 0);
    }
  }
}

TEST(EngineTest, ObjectRequiredNamesTheVariableOnlyWhenUncaught) {
  Engine engine;
  engine.AddCode(
      u"Dim p, q, log\r\nSet q = Nothing\r\nSub Store() : p.Name = 1 : End Sub\r\n"
      u"Sub Call2() : q.Go 1 : End Sub\r\nSub Indexed() : Dim a(1) : a(0).Go : End Sub\r\n"
      u"Sub Caught()\r\n On Error Resume Next\r\n p.Go\r\n log = Err.Description\r\nEnd Sub");
  const std::pair<const char16_t*, const char16_t*> cases[] = {
      {u"Store", u"Object required: 'p'"},
      {u"Call2", u"Object required: 'q'"},
      {u"Indexed", u"Object required"}};  // no plain name to give
  for (const auto& [proc, text] : cases) {
    EXPECT_EQ(ErrorOf([&] { engine.Run(proc); }), kErrObjectRequired);
    EXPECT_EQ(engine.Error().Description(), text);
  }
  // A script that handles the error sees the plain text in Err.
  engine.Run(u"Caught");
  EXPECT_EQ(Utf8(engine.Eval(u"log")), "Object required");
}

TEST(EngineTest, ResetEndsLiveObjectsWhileHostObjectsStillAnswer) {
  Engine engine;
  const auto probe = MakeRef<Probe>();
  // P is added before the variables, yet each Class_Terminate can still call it at Reset.
  engine.AddObject(u"P", probe);
  engine.AddCode(
      u"Class T\r\n Public Step\r\n Sub Class_Terminate()\r\n"
      u"  P.Value = P.Value * 10 + Step\r\n End Sub\r\nEnd Class\r\n"
      u"Set first = New T : first.Step = 1\r\nDim kept(0) : Set kept(0) = New T : kept(0).Step = "
      u"2");
  probe->value = 0;
  engine.Reset();
  EXPECT_EQ(probe->value, 12);
  // A Class_Terminate that fails at Reset does not stop the others.
  engine.AddObject(u"P", probe);
  engine.AddCode(
      u"Class F\r\n Sub Class_Terminate()\r\n  P.Bump\r\n  x = 1 / 0\r\n End Sub\r\nEnd Class\r\n"
      u"Set f1 = New F : Set f2 = New F");
  probe->calls = 0;
  engine.Reset();
  EXPECT_EQ(probe->calls, 2);
}

TEST(EngineTest, DeepRecursionIsOutOfStackSpace) {
  Engine engine;
  engine.SetTimeout(-1);
  engine.AddCode(u"Function Down(n)\r\n Down = Down(n + 1)\r\nEnd Function");
  EXPECT_EQ(ErrorOf([&] { engine.Run(u"Down", {}); }), kErrWrongArgCount);
  Variant zero(int16_t{0});
  EXPECT_EQ(ErrorOf([&] { engine.Run(u"Down", std::span<Variant>(&zero, 1)); }), kErrOutOfStack);
  // Recursion through a host object counts as well.
  auto probe = MakeRef<Probe>(&engine);
  engine.AddObject(u"P", probe);
  engine.AddCode(u"Function Again(n)\r\n Again = P.Reenter(n + 1)\r\nEnd Function");
  EXPECT_EQ(ErrorOf([&] { engine.Run(u"Again", std::span<Variant>(&zero, 1)); }), kErrOutOfStack);
  EXPECT_EQ(Utf8(engine.Eval(u"2 * 21")), "42");
}

TEST(EngineTest, GarbageInputIsAnErrorNeverACrash) {
  Engine engine;
  engine.SetTimeout(1000);
  const std::vector<std::u16string> inputs = {
      u"(((((((((((((((((((((((((((((((((((((((((((((((((((((",
      u"If If If",
      u"x = 1 +",
      u"\"",
      u"#",
      u"#1/2/",
      u"&H",
      u"[abc",
      u"Class",
      u"End",
      u"Sub A(ByVal) : End Sub",
      u"x.y.z(1)(2).w = ",
      u"With : End With",
      u"ReDim",
      u"Dim a(1,2,3",
      u"Case 1",
      u"Set = 1",
      u"Err.Raise",
      u"Execute \"Execute \"\"x = \"\"\"",
      std::u16string(5000, u'('),
      std::u16string(1, u'\0'),
      u"For Each In x : Next",
      u"Property Get P : End Property",
  };
  for (const auto& in : inputs) {
    EXPECT_THROW(engine.AddCode(in), Error) << String::ToUtf8(in);
    EXPECT_NE(engine.Error().Number(), 0);
  }
  std::u16string long_chain = u"x = 1";
  for (int i = 0; i < 20000; ++i)
    long_chain += u" + 1";
  EXPECT_NO_THROW(engine.AddCode(long_chain));
  EXPECT_EQ(Utf8(engine.Eval(u"x")), "20001");
}

}  // namespace
}  // namespace qv::vbs
