// Several engines on several threads at once, as the ASP runtime's workers run pages: each
// engine must give the result it gives alone. Run in the ThreadSanitizer build (preset `tsan`),
// this is also the check that the engine keeps no unguarded state shared between engines. Each
// thread's engine runs under its own locale.
#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "automation/convert.h"
#include "vbscript/engine.h"

namespace qv::vbs {
namespace {

// Touches what an engine could share by accident: constants, the runtime library, locale and
// random state, the standard objects, classes, errors and the time limit's clock.
constexpr char16_t kScript[] =
    uR"vbs(
Class Counter
  Public N
  Sub Bump() : N = N + 1 : End Sub
End Class
Function Work(seed)
  Dim d, re, c, i, s, m
  Rnd -1 : Randomize seed
  Set d = CreateObject("Scripting.Dictionary")
  Set re = New RegExp
  re.Pattern = "(\d+)-(\w+)" : re.Global = True
  Set c = New Counter
  For i = 1 To 50
    d(CStr(i)) = Int(Rnd * 1000)
    c.Bump
  Next
  s = TypeName(d) & vbCrLf & TypeName(re) & vbTab & Join(d.Items, ",")
  For Each m In re.Execute("12-ab 34-cd")
    s = s & m.SubMatches(1)
  Next
  On Error Resume Next
  Err.Raise 5
  s = s & Err.Number & Err.Description & FormatNumber(1234.5, 2) & FormatDateTime(#2024-02-29#, 1)
  s = s & "|" & CStr(1.5) & "|" & CDbl("1,5") & "|" & Month("3/4/2026") & "|" & MonthName(5)
  On Error GoTo 0
  Work = s & c.N & UCase("straße") & Replace("a.b.c", ".", vbNullString)
End Function
)vbs";

constexpr int32_t kLocales[] = {1033, 1031, 1036, 1041};

std::string RunOnce(int seed) {
  Engine engine;
  engine.SetLocaleId(kLocales[seed % 4]);
  engine.AddCode(kScript);
  Variant arg(seed);
  return ToString(engine.Run(u"Work", std::span<Variant>(&arg, 1))).ToUtf8();
}

TEST(EngineThreadsTest, EnginesOnSeveralThreadsShareNothing) {
  constexpr int kThreads = 4;
  constexpr int kRounds = 25;
  std::vector<std::string> expected;
  for (int t = 0; t < kThreads; ++t)
    expected.push_back(RunOnce(t));
  ASSERT_NE(expected[0], expected[1]);  // the seed shows in the result
  EXPECT_NE(expected[0].find("1,234.50Thursday, February 29, 2024|1.5|15|3|May"), std::string::npos)
      << expected[0];
  EXPECT_NE(expected[1].find("1.234,50Donnerstag, 29. Februar 2024|1,5|1,5|4|Mai"),
            std::string::npos)
      << expected[1];
  // The engines' locales never reach the thread that called them.
  EXPECT_EQ(ToString(Variant(1.5)), u"1.5");

  std::vector<int> mismatches(kThreads, 0);
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&, t] {
      for (int r = 0; r < kRounds; ++r) {
        if (RunOnce(t) != expected[t]) ++mismatches[t];
      }
    });
  }
  for (auto& th : threads)
    th.join();
  for (int t = 0; t < kThreads; ++t)
    EXPECT_EQ(mismatches[t], 0) << "thread " << t;
}

}  // namespace
}  // namespace qv::vbs
