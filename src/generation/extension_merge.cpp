// Merging extension control files.
#include "generation/extension_merge.h"

#include "generation/run_state.h"
#include "platform/fs.h"
#include "platform/prompter.h"
#include "support/status.h"
#include "support/tyx_vars.h"

namespace qv {

void MergeExtension(StringView name) {
  const TyxVars& vars = Vars();
  const String path = fs::JoinPath(fs::JoinPath(vars.ExtensionsFolder, name), u"control.xml");
  if (!fs::FileExists(path)) return;
  Ref<TyxControls> ext_controls = MakeRef<TyxControls>();
  bool loaded = false;
  try {
    loaded = ext_controls->LoadControls(path);
  } catch (const Error&) {
    loaded = false;  // a broken attribute is as bad as broken XML: the extension is skipped
  }
  if (!loaded) {
    SharedStatus().SuspendLine();
    CurrentPrompter().ShowMessage(vars.ProductName,
                                  vars.ProductName + u": Load extension control file " + path +
                                      u" failed. Processing skipped!",
                                  PromptIcon::kExclamation);
    return;
  }
  TyxControls& controls = RunControlList();
  for (int32_t i = 1; i <= ext_controls->Count(); ++i) {
    const Ref<TyxControl> control = ext_controls->Item(i);
    control->CtrlExt = String(name);
    const String& action = control->CtrlAction;
    if (action == u"add") {
      controls.AddControl(*control);
    } else if (action == u"change") {
      for (int32_t j = 1; j <= controls.Count(); ++j) {
        const Ref<TyxControl> existing = controls.Item(j);
        if (existing->CtrlID != control->CtrlID) continue;
        MergeSessions(*existing, *control);
        break;
      }
    } else if (action == u"delete") {
      controls.DeleteControl(control->CtrlID);
    }
  }
}

void MergeSessions(TyxControl& target, TyxControl& source) {
  TyxSessions& from = source.Sessions();
  TyxSessions& into = target.Sessions();
  for (int32_t i = 1; i <= from.Count(); ++i) {
    const Ref<TyxSession> session = from.Item(i);
    session->SessExt = source.CtrlExt;
    const String& action = session->SessAction;
    if (action == u"add") {
      into.AddSession(*session, session->SessLocation, session->SessLocType);
    } else if (action == u"change") {
      if (into.SessionExist(session->SessValue)) into.ChangeSession(session->SessValue, *session);
    } else if (action == u"delete") {
      into.DeleteSession(session->SessValue);
    }
  }
}

}  // namespace qv
