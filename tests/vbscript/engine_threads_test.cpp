// Several engines on several threads at once, as the ASP runtime's workers run pages: each
// engine must give the result it gives alone. Run in the ThreadSanitizer build (preset `tsan`),
// this is also the check that the engine keeps no unguarded state shared between engines.
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
  SetLocale 1033
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
  On Error GoTo 0
  Work = s & c.N & UCase("straße") & Replace("a.b.c", ".", vbNullString)
End Function
)vbs";

std::string RunOnce(int seed) {
  Engine engine;
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
