// What the tests of the generation output share: a project over a scratch folder with fresh
// shared variables, a quiet status surface and scripted answers, and a small stand-in for the
// script host that runs a stored page function on the real VBScript engine.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "automation/object.h"
#include "model/tyx.h"
#include "platform/prompter.h"
#include "support/status.h"
#include "support/tyx_vars.h"
#include "templates/scratch_folder.h"
#include "vbscript/script_control.h"

namespace qv::testing {

// Runs the code of a page: binds TABLE and FIELD (the table and field of the moment), adds the
// code and returns what qvScriptEngine gives. A script error leaves its words in ProjErr.
class PageHost : public Object {
 public:
  explicit PageHost(Tyx& tyx) : tyx_(tyx) {}
  String TypeName() const override { return u"TyScript"; }
  DispId GetIdOfName(StringView name) override {
    return EqualsNoCase(name, u"BuildNewCode") ? 1 : kDispIdUnknown;
  }
  Variant Invoke(DispId id, uint16_t, Args args) override {
    if (id != 1) throw Error(kErrNotSupported);
    ++calls;
    Ref<Object> sc = vbs::NewScriptControl();
    sc->Let(u"Language", Variant(String(u"VBScript")));
    if (tyx_.CurTable) sc->Call(u"AddObject", {Variant(String(u"TABLE")), Variant(tyx_.CurTable)});
    if (tyx_.CurField) sc->Call(u"AddObject", {Variant(String(u"FIELD")), Variant(tyx_.CurField)});
    try {
      sc->Call(u"AddCode", {args[0]});
      return sc->Call(u"Run", {Variant(String(u"qvScriptEngine"))});
    } catch (const Error& e) {
      Vars().ProjErr = e.description();
      return Variant(String());
    }
  }
  int calls = 0;

 private:
  Tyx& tyx_;
};

class OutputTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ResetVars();
    setenv("HOME", scratch_.Native("home").c_str(), 1);
    setenv("XDG_CONFIG_HOME", scratch_.Native("home/.config").c_str(), 1);
    SharedStatus().SetMode(StatusMode::kQuiet);
    SharedStatus().ClearCancel();
    Answer({});
    tyx_ = MakeRef<Tyx>();
    tyx_->PrepareRoot();
    tyx_->SetProjName(u"shop");
    tyx_->SetDestination(Dest());
    tyx_->SetOutputNameType(u"infix");
    tyx_->SetOtherGen(true);
    tyx_->SetOtherOverwrite(true);
    tyx_->SetPromptOnOverwrite(false);
    tyx_->BackupFile = false;
  }
  void TearDown() override {
    Vars().TheScript = nullptr;
    Vars().TheControls = nullptr;
  }

  void Answer(std::vector<String> answers) {
    SetCurrentPrompter(std::make_unique<ScriptedPrompter>(std::move(answers), nullptr));
  }
  String Dest() const { return scratch_.Path("site"); }
  std::string Out(std::string_view name) const {
    return scratch_.Read("site/" + std::string(name));
  }
  bool OutExists(std::string_view name) const {
    return std::filesystem::exists(scratch_.path() / "site" / name);
  }

  ScratchFolder scratch_;
  Ref<Tyx> tyx_;
};

}  // namespace qv::testing
