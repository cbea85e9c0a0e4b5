// The control file: loading (names in any case, defaults, folder normalising, Booleans), its
// failures, and every list operation, including the deliberate last-slot write of AddSession.
#include "templates/controls.h"

#include <gtest/gtest.h>

#include "automation/error.h"
#include "automation/error_of.h"
#include "support/tyx_vars.h"
#include "templates/scratch_folder.h"

namespace qv {
namespace {

using testing::ScratchFolder;

constexpr std::string_view kControlFile = R"(<?xml version="1.0" encoding="windows-1252"?>
<!-- a package for tests -->
<QuorvexControl date="2026-11-01" version="5.3" desc="Caf)"
                                          "\xE9"
                                          R"( &amp; more" author="QA">
  <control id="list" type="table" ifiles="list.htm,extra.htm" ifolder="/a/b" ofile="x"
           oext="asp" ofolder="out\pages" cond="TABLE.TblList" tagext="_l" parm="p1"
           space="False" extension="" action="" overwrite="0" unknown="ignored">
    <session type="key" value="head" parm="hp" ifile="h.htm" cond="c" extension="e"
             action="add" location="body" loctype="after"/>
    <!-- comment -->
    <SESSION TYPE="key" VALUE="body"/>
    <other value="skipped"/>
  </control>
  <Control ID="css" IFOLDER="a\" OFOLDER="\\a" SPACE=" TRUE " OVERWRITE="-1"/>
  <note id="not a control"/>
  <CONTROL id="list" cond="second with the same id"/>
</QuorvexControl>
)";

String Values(TyxSessions& sessions) {
  String out;
  for (int32_t i = 1; i <= sessions.Count(); ++i) {
    if (i > 1) out.Append(u',');
    out.Append(sessions.Item(i)->SessValue.view());
  }
  return out;
}

String Ids(TyxControls& controls) {
  String out;
  for (int32_t i = 1; i <= controls.Count(); ++i) {
    if (i > 1) out.Append(u',');
    out.Append(controls.Item(i)->CtrlID.view());
  }
  return out;
}

Ref<TyxSession> NewSession(StringView value, StringView ifile = u"", StringView ext = u"") {
  auto s = MakeRef<TyxSession>();
  s->SessType = u"key";
  s->SessValue = String(value);
  s->SessIFile = String(ifile);
  s->SessExt = String(ext);
  s->SessParm = u"parm";
  s->SessLocation = u"loc";
  s->SessLocType = u"after";
  return s;
}

String Wrap(std::string_view attributes, std::string_view body) {
  return Str(std::string("<QuorvexControl date=\"d\" version=\"v\" desc=\"x\" author=\"a\">") +
             "<control id=\"c\" " + std::string(attributes) + ">" + std::string(body) +
             "</control></QuorvexControl>");
}

TEST(Controls, LoadsARepresentativeFile) {
  ScratchFolder scratch;
  TyxControls controls;
  ASSERT_TRUE(controls.LoadControls(scratch.Write("control.xml", kControlFile)));
  EXPECT_EQ(controls.ProdDate, u"2026-11-01");
  EXPECT_EQ(controls.ProdVersion, u"5.3");
  EXPECT_EQ(controls.ProdDesc, u"Caf\u00e9 & more");
  EXPECT_EQ(controls.ProdAuthor, u"QA");
  EXPECT_EQ(Ids(controls), u"list,css,list");  // duplicates kept in file order

  const Ref<TyxControl> list = controls.Item(1);
  EXPECT_EQ(list->CtrlType, u"table");
  EXPECT_EQ(list->CtrlIFiles, u"list.htm,extra.htm");
  EXPECT_EQ(list->CtrlIFolder, u"a/b/");
  EXPECT_EQ(list->CtrlOFile, u"x");
  EXPECT_EQ(list->CtrlOExt, u"asp");
  EXPECT_EQ(list->CtrlOFolder, u"out/pages/");
  EXPECT_EQ(list->CtrlCond, u"TABLE.TblList");
  EXPECT_EQ(list->CtrlTagExt, u"_l");
  EXPECT_EQ(list->CtrlParm, u"p1");
  EXPECT_FALSE(list->CtrlSpace);
  EXPECT_FALSE(list->CtrlOverwrite);
  EXPECT_FALSE(list->CtrlGen);
  ASSERT_EQ(list->Sessions().Count(), 2);
  const Ref<TyxSession> head = list->Sessions().Item(1);
  EXPECT_EQ(head->SessType, u"key");
  EXPECT_EQ(head->SessValue, u"head");
  EXPECT_EQ(head->SessParm, u"hp");
  EXPECT_EQ(head->SessIFile, u"h.htm");
  EXPECT_EQ(head->SessCond, u"c");
  EXPECT_EQ(head->SessExt, u"e");
  EXPECT_EQ(head->SessAction, u"add");
  EXPECT_EQ(head->SessLocation, u"body");
  EXPECT_EQ(head->SessLocType, u"after");
  EXPECT_EQ(list->Sessions().Item(2)->SessValue, u"body");

  const Ref<TyxControl> css = controls.Item(2);
  EXPECT_EQ(css->CtrlIFolder, u"a/");
  EXPECT_EQ(css->CtrlOFolder, u"/a/");  // only one leading separator goes
  EXPECT_EQ(css->CtrlCond, u"");
  EXPECT_TRUE(css->CtrlSpace);
  EXPECT_TRUE(css->CtrlOverwrite);
  EXPECT_EQ(css->Sessions().Count(), 0);
  EXPECT_TRUE(controls.Item(3)->CtrlSpace);  // defaults when the attributes are absent

  // A second load replaces the list.
  ASSERT_TRUE(controls.LoadControls(scratch.Write("one.xml", Wrap("", "").ToUtf8())));
  EXPECT_EQ(Ids(controls), u"c");
}

TEST(Controls, BadFilesGiveTheirTextsOrErrors) {
  ScratchFolder scratch;
  TyxVars& vars = Vars();
  TyxControls controls;
  ASSERT_TRUE(controls.LoadControls(scratch.Write("good.xml", kControlFile)));

  vars.ProjErr = String();
  ::testing::internal::CaptureStderr();
  EXPECT_FALSE(controls.LoadControls(scratch.Write("bad.xml", "<QuorvexControl><control>")));
  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
  EXPECT_EQ(vars.ProjErr,
            u"Quorvex: Load control file failed! Please check if the correct template file is in "
            u"use!");
  EXPECT_EQ(controls.Count(), 3);  // the list that was there stays
  EXPECT_FALSE(controls.LoadControls(scratch.Path("missing.xml")));
  EXPECT_EQ(controls.Count(), 3);

  vars.ProjErr = String();
  EXPECT_FALSE(controls.LoadControls(scratch.Write(
      "root.xml",
      "<control date=\"d\" version=\"v\" desc=\"x\" author=\"a\"><control id=\"c\"/></control>")));
  EXPECT_EQ(vars.ProjErr,
            u"Quorvex: Control file is invalid! Please check if the correct template file is in "
            u"use!");
  EXPECT_EQ(controls.Count(), 0);  // emptied before the root was checked
  // Only the start of the root's base name counts, in any case, prefix or not.
  EXPECT_TRUE(controls.LoadControls(scratch.Write(
      "prefixed.xml",
      "<p:QUORVEXanything xmlns:p=\"u\" DATE=\"d\" version=\"v\" desc=\"x\" author=\"a\"/>")));
  EXPECT_FALSE(controls.LoadControls(
      scratch.Write("short.xml", "<Quorve date=\"d\" version=\"v\" desc=\"x\" author=\"a\"/>")));

  EXPECT_EQ(ErrorOf([&] {
              controls.LoadControls(scratch.Write(
                  "noattr.xml", "<QuorvexControl date=\"d\" desc=\"x\" author=\"a\"/>"));
            }),
            kErrInvalidUseOfNull);
  EXPECT_EQ(ErrorOf([&] {
              controls.LoadControls(scratch.Write("bool.xml", Wrap("space=\"yes\"", "").ToUtf8()));
            }),
            kErrTypeMismatch);
  EXPECT_EQ(
      ErrorOf([&] {
        controls.LoadControls(scratch.Write("empty.xml", Wrap("overwrite=\"\"", "").ToUtf8()));
      }),
      kErrTypeMismatch);
  EXPECT_EQ(
      ErrorOf([&] {
        controls.LoadControls(scratch.Write("folder.xml", Wrap("ofolder=\"/\"", "").ToUtf8()));
      }),
      kErrInvalidCall);
  EXPECT_EQ(ErrorOf([&] { NormalizeControlFolder(u""); }), kErrInvalidCall);
}

TEST(Controls, ItemCursorAndDeletion) {
  ScratchFolder scratch;
  TyxControls controls;
  ASSERT_TRUE(controls.LoadControls(scratch.Write("control.xml", kControlFile)));
  EXPECT_EQ(controls.curIndex(), 0);
  EXPECT_FALSE(controls.Item(0));
  EXPECT_EQ(controls.curIndex(), 0);
  EXPECT_TRUE(controls.Item(2));
  EXPECT_EQ(controls.curIndex(), 2);
  EXPECT_FALSE(controls.Item(4));
  EXPECT_EQ(controls.curIndex(), 2);

  EXPECT_TRUE(controls.ControlExist(u"css"));
  EXPECT_FALSE(controls.ControlExist(u"CSS"));   // keys keep their case
  EXPECT_TRUE(controls.DeleteControl(u"list"));  // the first of the two
  EXPECT_EQ(Ids(controls), u"css,list");
  EXPECT_EQ(controls.Item(2)->CtrlCond, u"second with the same id");
  EXPECT_FALSE(controls.DeleteControl(u"none"));
  EXPECT_EQ(controls.Count(), 2);
}

TEST(Controls, AddControlCopiesAndStampsTheExtension) {
  TyxControls controls;
  auto given = MakeRef<TyxControl>();
  given->CtrlID = u"ext1";
  given->CtrlType = u"other";
  given->CtrlIFiles = u"a.htm";
  given->CtrlIFolder = u"in/";
  given->CtrlOFile = u"o";
  given->CtrlOExt = u"asp";
  given->CtrlOFolder = u"out/";
  given->CtrlCond = u"c";
  given->CtrlTagExt = u"_t";
  given->CtrlParm = u"p";
  given->CtrlSpace = true;
  given->CtrlGen = true;
  given->CtrlExt = u"myext";
  given->CtrlAction = u"add";
  given->CtrlOverwrite = true;
  given->Sessions().AddSession(*NewSession(u"s1", u"f1", u"old"), u"", u"");
  given->Sessions().AddSession(*NewSession(u"s2"), u"", u"");

  ASSERT_TRUE(controls.AddControl(*given));
  const Ref<TyxControl> added = controls.Item(1);
  ASSERT_NE(added.get(), given.get());
  EXPECT_EQ(added->CtrlID, u"ext1");
  EXPECT_EQ(added->CtrlType, u"other");
  EXPECT_EQ(added->CtrlIFiles, u"a.htm");
  EXPECT_EQ(added->CtrlIFolder, u"in/");
  EXPECT_EQ(added->CtrlOFile, u"o");
  EXPECT_EQ(added->CtrlOExt, u"asp");
  EXPECT_EQ(added->CtrlOFolder, u"out/");
  EXPECT_EQ(added->CtrlCond, u"c");
  EXPECT_EQ(added->CtrlTagExt, u"_t");
  EXPECT_EQ(added->CtrlParm, u"p");
  EXPECT_TRUE(added->CtrlSpace);
  EXPECT_FALSE(added->CtrlGen);  // a run-time mark is not copied
  EXPECT_EQ(added->CtrlExt, u"myext");
  EXPECT_EQ(added->CtrlAction, u"add");
  EXPECT_TRUE(added->CtrlOverwrite);
  EXPECT_EQ(Values(added->Sessions()), u"s1,s2");
  EXPECT_EQ(added->Sessions().Item(1)->SessIFile, u"f1");
  EXPECT_EQ(added->Sessions().Item(1)->SessParm, u"");  // not copied by AddSession
  for (int32_t i = 1; i <= 2; ++i) {
    EXPECT_EQ(added->Sessions().Item(i)->SessExt, u"myext");
    EXPECT_EQ(given->Sessions().Item(i)->SessExt, u"myext");  // the originals too
  }

  // A second control with the same key changes nothing, not even the given sessions.
  auto same = MakeRef<TyxControl>();
  same->CtrlID = u"ext1";
  same->CtrlExt = u"other";
  same->Sessions().AddSession(*NewSession(u"x", u"", u"keep"), u"", u"");
  EXPECT_FALSE(controls.AddControl(*same));
  EXPECT_EQ(controls.Count(), 1);
  EXPECT_EQ(same->Sessions().Item(1)->SessExt, u"keep");
}

TEST(Sessions, PlacementKeepsItsLastSlotWrite) {
  auto three = [] {
    auto s = MakeRef<TyxSessions>();
    for (StringView v : {u"A", u"B", u"C"})
      s->AddSession(*NewSession(v), u"", u"");
    return s;
  };
  {
    auto s = three();
    EXPECT_TRUE(s->AddSession(*NewSession(u"N", u"nf"), u"nowhere", u""));  // appends
    EXPECT_EQ(Values(*s), u"A,B,C,N");
    EXPECT_EQ(s->Item(4)->SessIFile, u"nf");
    EXPECT_FALSE(s->AddSession(*NewSession(u"B"), u"", u""));  // the key exists
    EXPECT_EQ(s->Count(), 4);
  }
  {
    auto s = three();
    EXPECT_TRUE(s->AddSession(*NewSession(u"N"), u"C", u""));  // before the last = behind it
    EXPECT_EQ(Values(*s), u"A,B,C,N");
  }
  {
    auto s = three();
    const Ref<TyxSession> old_third = s->Item(3);
    EXPECT_TRUE(s->AddSession(*NewSession(u"N", u"nf"), u"A", u"after"));
    // The old first, an empty session, the old second, and the new values in fourth place:
    // the old third is overwritten.
    EXPECT_EQ(Values(*s), u"A,,B,N");
    EXPECT_EQ(s->Item(2)->SessType, u"");
    EXPECT_EQ(s->Item(4).get(), old_third.get());
    EXPECT_EQ(old_third->SessIFile, u"nf");
    EXPECT_EQ(old_third->SessType, u"key");
  }
  {
    auto s = three();
    EXPECT_TRUE(s->AddSession(*NewSession(u"N"), u"A", u"before"));  // anything but "after"
    EXPECT_EQ(Values(*s), u",A,B,N");
  }
  for (const StringView loc : {StringView(u"B"), StringView(u"C")}) {
    auto s = three();
    EXPECT_TRUE(s->AddSession(*NewSession(u"N"), loc, u"after"));
    EXPECT_EQ(Values(*s), u"A,B,C,N");
  }
  {
    auto s = three();
    EXPECT_TRUE(s->AddSession(*NewSession(u"N"), u"A", u"AFTER"));  // "after" exactly
    EXPECT_EQ(Values(*s), u",A,B,N");
  }
  {
    TyxSessions empty;
    EXPECT_TRUE(empty.AddSession(*NewSession(u"N"), u"", u"after"));
    EXPECT_EQ(Values(empty), u"N");
    // A session of the list itself may be given.
    EXPECT_FALSE(empty.AddSession(*empty.Item(1), u"", u""));
  }
}

TEST(Sessions, ChangeAndDelete) {
  TyxSessions s;
  for (StringView v : {u"A", u"B", u"C"})
    s.AddSession(*NewSession(v, u"file", u"ext"), u"", u"");
  s.Item(2)->SessCond = u"cond";
  s.Item(2)->SessAction = u"x";

  auto change = NewSession(u"ignored");
  change->SessExt = u"";
  change->SessAction = u"change";
  EXPECT_TRUE(s.ChangeSession(u"B", *change));
  const Ref<TyxSession> b = s.Item(2);
  EXPECT_EQ(b->SessValue, u"B");
  EXPECT_EQ(b->SessIFile, u"file");  // an empty file keeps the old one
  EXPECT_EQ(b->SessCond, u"cond");   // and so does an empty condition
  EXPECT_EQ(b->SessExt, u"");        // an empty extension clears the old one
  EXPECT_EQ(b->SessAction, u"change");
  change->SessIFile = u"new";
  change->SessCond = u"c2";
  EXPECT_TRUE(s.ChangeSession(u"B", *change));
  EXPECT_EQ(b->SessIFile, u"new");
  EXPECT_EQ(b->SessCond, u"c2");
  EXPECT_FALSE(s.ChangeSession(u"b", *change));

  EXPECT_TRUE(s.SessionExist(u"C"));
  EXPECT_FALSE(s.SessionExist(u"c"));
  EXPECT_TRUE(s.DeleteSession(u"A"));
  EXPECT_EQ(Values(s), u"B,C");
  EXPECT_FALSE(s.DeleteSession(u"A"));
  EXPECT_FALSE(s.Item(0));
  EXPECT_FALSE(s.Item(3));
}

TEST(Controls, ScriptSurface) {
  ScratchFolder scratch;
  Ref<TyxControls> controls = MakeRef<TyxControls>();
  const String path = scratch.Write("control.xml", kControlFile);
  ASSERT_TRUE(controls->Call(u"loadcontrols", {Variant(path)}).as_bool());
  EXPECT_EQ(controls->Get(u"Count").as_long(), 3);
  // Item is the default member, and it moves curIndex.
  Variant index(int16_t{2});
  const Variant second = controls->Invoke(kDispIdValue, kInvokeGet | kInvokeMethod, {&index, 1});
  ASSERT_TRUE(second.is_object());
  EXPECT_EQ(second.as_object()->Get(u"ctrlid").as_string(), u"css");
  EXPECT_EQ(controls->Get(u"curIndex").as_integer(), 2);
  EXPECT_TRUE(controls->Get(u"Item", {Variant(int32_t{9})}).is_nothing());
  EXPECT_EQ(controls->Get(u"ProdAuthor").as_string(), u"QA");

  // For Each walks the controls in order.
  int count = 0;
  Variant item;
  for (Ref<Enumerator> e = controls->NewEnum(); e->Next(item);)
    ++count;
  EXPECT_EQ(count, 3);

  const Variant first = controls->Get(u"Item", {Variant(int32_t{1})});
  Object& control = *first.as_object();
  control.Let(u"CtrlGen", Variant(u"True"));
  EXPECT_TRUE(control.Get(u"CtrlGen").as_bool());
  const Variant sessions = control.Get(u"Sessions");
  Object& list = *sessions.as_object();
  EXPECT_EQ(list.Get(u"Count").as_long(), 2);
  EXPECT_EQ(list.Get(u"Item", {Variant(int32_t{1})}).as_object()->Get(u"SessValue").as_string(),
            u"head");
  const Variant added = Variant(NewSession(u"new"));
  EXPECT_TRUE(list.Call(u"AddSession", {added, Variant(u""), Variant(u"")}).as_bool());
  EXPECT_TRUE(list.Call(u"SessionExist", {Variant(u"new")}).as_bool());
  EXPECT_EQ(ErrorOf([&] {
              list.Call(u"AddSession", {Variant(u"x"), Variant(u""), Variant(u"")});
            }),
            kErrTypeMismatch);
  EXPECT_TRUE(controls->Call(u"ControlExist", {Variant(u"css")}).as_bool());
  EXPECT_FALSE(controls->Call(u"AddControl", {first}).as_bool());
  EXPECT_TRUE(controls->Call(u"DeleteControl", {Variant(u"css")}).as_bool());
  EXPECT_EQ(ErrorOf([&] { controls->Get(u"NoSuchMember"); }), kErrNotSupported);
}

}  // namespace
}  // namespace qv
