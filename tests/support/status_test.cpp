// TyxStatus on the console: what reaches the surface, the edge cases of the window handle,
// the length mark, Ctrl-C, the version numbers, the system script text and the script names.
#include "support/status.h"

#include <gtest/gtest.h>
#include <signal.h>

#include <cstdio>
#include <string>

#include "automation/convert.h"
#include "automation/error.h"
#include "support/common.h"
#include "support/temp_file.h"
#include "support/tyx_vars.h"

namespace qv {
namespace {

// A surface whose output lands in a temporary file that the test reads back.
class StatusTest : public ::testing::Test {
 protected:
  void SetUp() override { ResetVars(); }
  void TearDown() override { ResetVars(); }
  std::string Output() const { return file_.Text(); }

  testing::TempFile file_;
  std::FILE* const out_ = file_.get();
};

TEST_F(StatusTest, PlainLinesShowTitleTextAndTenthsOfTheBar) {
  TyxStatus status(StatusMode::kPlain, out_);
  status.ShowStatus3(Variant(int32_t{0}), Variant(LengthMarked(u"Quorvex - Generating...")));
  EXPECT_NE(status.handle(), 0);
  status.DispStatus(Variant(String(u"Customers")));
  status.DispStatus(Variant(String(u"Customers")));  // the same text once only
  for (int done = 0; done <= 40; ++done)
    status.SetStatus(Variant(PercentOf(done, 40)));
  status.CloseStatus();
  EXPECT_EQ(status.handle(), 0);
  EXPECT_EQ(Output(),
            "Quorvex - Generating...\n  Customers\n  0%\n  10%\n  20%\n  30%\n  40%\n  50%\n"
            "  60%\n  70%\n  80%\n  90%\n  100%\n");
}

TEST_F(StatusTest, ALogGetsTheStageTitlesOnly) {
  TyxStatus status(StatusMode::kAuto, out_);  // a file, not a terminal
  status.ShowStatus3(Variant(int32_t{0}), Variant(LengthMarked(u"Quorvex - Loading Database...")));
  status.DispStatus(Variant(String(u"Loading TABLE Customers...")));
  status.SetStatus(Variant(int16_t{50}));
  status.CloseStatus();
  status.ShowStatus2(Variant(int32_t{0}), Variant(LengthMarked(u"Quorvex - Saving...")));
  status.DispStatus(Variant(String(u"Orders")));
  EXPECT_EQ(Output(), "Quorvex - Loading Database...\nQuorvex - Saving...\n");
}

TEST_F(StatusTest, OnlyAnOpenWindowInAShowingModeWrites) {
  TyxStatus status(StatusMode::kQuiet, out_);
  status.ShowStatus3(Variant(), Variant(LengthMarked(u"quiet")));
  status.DispStatus(Variant(String(u"x")));
  status.CloseStatus();
  status.SetMode(StatusMode::kPlain);
  EXPECT_EQ(status.mode(), StatusMode::kPlain);
  // No window: nothing shows, and SetStatus doesn't even convert its value.
  status.DispStatus(Variant(String(u"ignored")));
  status.SetStatus(Variant(String(u"not even a number")));
  status.CloseStatus();
  EXPECT_EQ(Output(), "");

  // A new window replaces the handle; a second close does nothing.
  status.ShowStatus(Variant(), Variant(LengthMarked(u"one")));
  const int32_t first = status.handle();
  status.ShowStatus2(Variant(), Variant(LengthMarked(u"two")));
  EXPECT_NE(status.handle(), first);
  EXPECT_NE(status.handle(), 0);
  status.CloseStatus();
  status.CloseStatus();
  status.DispStatus(Variant(String(u"after close")));
  EXPECT_EQ(Output(), "one\ntwo\n");
  EXPECT_EQ(status.handle(), 0);
}

TEST_F(StatusTest, TheLengthMarkCutsLongTexts) {
  EXPECT_EQ(LengthMarked(u"abc"), String(u"\x03"
                                         u"abc"));
  EXPECT_EQ(LengthMarked(u""), String(std::u16string_view(u"\0", 1)));
  TyxStatus status(StatusMode::kPlain, out_);
  // Titles come marked by their callers; an unmarked title shows as given.
  status.ShowStatus2(Variant(), Variant(String(u"Unmarked title")));
  const std::string exact(255, 'a');
  status.DispStatus(Variant(String::FromUtf8(exact)));
  // 300 characters: the one-byte mark says 44, so 44 characters are shown.
  const std::string long_text = std::string(44, 'b') + std::string(256, 'c');
  status.DispStatus(Variant(String::FromUtf8(long_text)));
  // 256 characters: the mark says 0 and the line shows nothing.
  status.DispStatus(Variant(String::FromUtf8(std::string(256, 'd'))));
  status.CloseStatus();
  EXPECT_EQ(Output(), "Unmarked title\n  " + exact + "\n  " + std::string(44, 'b') + "\n");
}

TEST_F(StatusTest, TerminalLineIsRewrittenAndCleared) {
  TyxStatus status(StatusMode::kTerminal, out_);
  status.ShowStatus3(Variant(), Variant(LengthMarked(u"Quorvex - Loading Database...")));
  status.SetStatus(Variant(int16_t{50}));
  status.DispStatus(Variant(String(u"Orders\r\nnext")));
  status.CloseStatus();
  const std::string out = Output();
  EXPECT_NE(out.find("\rQuorvex - Loading Database... [..........."), std::string::npos) << out;
  EXPECT_NE(out.find("[##########..........] 50%  Orders  next\x1b[K"), std::string::npos) << out;
  EXPECT_EQ(out.substr(out.size() - 4), "\r\x1b[K");
  EXPECT_EQ(out.find('\n'), std::string::npos);
}

TEST_F(StatusTest, SetStatusConvertsAsA16BitInteger) {
  TyxStatus status(StatusMode::kPlain, out_);
  status.ShowStatus3(Variant(), Variant(LengthMarked(u"T")));
  status.SetStatus(Variant(String(u"45")));
  status.SetStatus(Variant(54.5));  // rounds to the even 54
  EXPECT_THROW(status.SetStatus(Variant(String(u"abc"))), Error);
  EXPECT_THROW(status.SetStatus(Variant(int32_t{70000})), Error);
  status.CloseStatus();
  EXPECT_EQ(Output(), "T\n  45%\n  54%\n");
}

TEST_F(StatusTest, CtrlCSetsTheCancelFlagAndRaiseCancelledEndsTheRun) {
  TyxStatus& status = SharedStatus();
  EXPECT_EQ(&status, &SharedStatus());
  status.SetMode(StatusMode::kQuiet);
  EXPECT_FALSE(status.StatusIsCancelled());
  status.ShowStatus3(Variant(), Variant(LengthMarked(u"T")));  // installs the handler
  ::raise(SIGINT);
  EXPECT_TRUE(status.StatusIsCancelled());
  try {
    RaiseCancelled();
    FAIL() << "RaiseCancelled returned";
  } catch (const Error& e) {
    EXPECT_EQ(e.number(), -1);
    EXPECT_EQ(e.description(), u"Generation cancelled by user!");
  }
  EXPECT_EQ(Vars().ProjErr, u"Generation cancelled by user!");
  EXPECT_EQ(status.handle(), 0);  // the window is closed already
  EXPECT_FALSE(status.StatusIsCancelled());
}

TEST_F(StatusTest, VersionAndSystemCode) {
  TyxStatus status(StatusMode::kQuiet, out_);
  status.GetVer(Variant(String(u"tyxclass.dll")));
  EXPECT_EQ(status.mj1, QV_VERSION_MAJOR);
  EXPECT_EQ(status.mj2, QV_VERSION_MINOR);
  EXPECT_EQ(status.mn1, QV_VERSION_PATCH);
  EXPECT_EQ(status.mn2, QV_VERSION_BUILD);
  EXPECT_EQ(NumberText(status.mj1) + u"." + NumberText(status.mj2) + u"." + NumberText(status.mn1) +
                u"." + NumberText(status.mn2),
            Vars().LibVersion);

  EXPECT_EQ(status.GetSysCode(Variant(String(u"VB"))), u"");  // no provider yet
  std::u16string asked;
  Vars().GetCode = [&](StringView language) {
    asked = std::u16string(language);
    return String(std::u16string_view(u"Function F()\r\nEnd Function\0garbage", 35));
  };
  EXPECT_EQ(status.GetSysCode(Variant(String(u"V"))), u"Function F()\r\nEnd Function");
  EXPECT_EQ(asked, u"V ");
  status.GetSysCode(Variant(String(u"VLX")));
  EXPECT_EQ(asked, u"VL");
  status.GetSysCode(Variant());
  EXPECT_EQ(asked, u"  ");
}

TEST_F(StatusTest, ScriptsReachEveryMemberByName) {
  Ref<TyxStatus> status = MakeRef<TyxStatus>(StatusMode::kPlain, out_);
  Object& object = *status;
  EXPECT_EQ(object.TypeName(), u"TyxStatus");
  object.Call(u"showstatus3", {Variant(int32_t{0}), Variant(LengthMarked(u"Title"))});
  object.Call(u"DISPSTATUS", {Variant(String(u"line"))});
  object.Call(u"SetStatus", {Variant(int16_t{100})});
  EXPECT_FALSE(ToBool(object.Call(u"StatusIsCancelled")));
  object.Call(u"CloseStatus");
  object.Call(u"GetVer", {Variant(String(u"tyxclass.dll"))});
  EXPECT_EQ(ToLong(object.Get(u"mj1")), QV_VERSION_MAJOR);
  EXPECT_EQ(ToLong(object.Get(u"MN2")), QV_VERSION_BUILD);
  EXPECT_EQ(object.Call(u"GetSysCode", {Variant(String(u"VB"))}).as_string(), u"");
  try {
    object.Call(u"DispStatus");
    FAIL() << "a missing argument must raise";
  } catch (const Error& e) {
    EXPECT_EQ(e.number(), kErrWrongArgCount);
  }
  EXPECT_EQ(Output(), "Title\n  line\n  100%\n");
}

}  // namespace
}  // namespace qv
