// Parse wraps the translation of one text in a page function of its own and runs it at once.
#include "script/expression.h"

#include "automation/convert.h"
#include "model/tyx.h"
#include "persistence/saved_defaults.h"
#include "platform/text_file.h"
#include "script/script_host.h"
#include "script/translator.h"
#include "support/common.h"
#include "support/tyx_functions.h"
#include "support/tyx_vars.h"
#include "templates/controls.h"
#include "templates/language.h"

namespace qv {
namespace {

constexpr StringView kCrLf = u"\r\n";

// Drops the host that one Parse call started, however the call ends.
class OwnedScript {
 public:
  explicit OwnedScript(bool owns) : owns_(owns) {}
  ~OwnedScript() {
    if (owns_) DropScriptHost();
  }
  OwnedScript(const OwnedScript&) = delete;
  OwnedScript& operator=(const OwnedScript&) = delete;

 private:
  bool owns_;
};

void StartScript(Tyx& tyx) {
  TyxVars& vars = Vars();
  const Variant timeout =
      ToSettingValue(ReadRegValue(u"HKCU", vars.SettingsKey, u"ScriptEngineTimeout"), u"Long");
  vars.ScriptEngineTimeout = timeout.is_empty() ? 0 : ToLong(timeout);
  Ref<TyScript> script = MakeRef<TyScript>();
  vars.TheScript = script;
  Ref<Object> db(tyx.Databases().Find(tyx.CurrentDbName));
  if (!vars.TheLang) vars.TheLang = MakeRef<TyxLanguage>();
  if (!vars.TheControls) vars.TheControls = MakeRef<TyxControls>();
  script->Initialize(Ref<Object>(&tyx), std::move(db), vars.TheControls, vars.TheLang);
}

}  // namespace

String Parse(Tyx& tyx, StringView text) {
  TyxVars& vars = Vars();
  const bool owns = !CurrentScript();
  if (owns) vars.TheScript = nullptr;
  OwnedScript owner(owns);
  if (owns) StartScript(tyx);

  TranslatorState state;
  TranslateText(state, WithCrLfLineEnds(text));
  if (!vars.ProjErr.empty()) return String(text);

  if (!state.PendingExpr.empty())
    state.ScriptCode.Append(u"qvOut = qvOut" + state.PendingExpr + kCrLf);
  // The second line stays a comment: an expression that fails should say so, not give a
  // text with a piece missing.
  String code = u"Function qvScriptEngine()\r\n'On Error Resume Next\r\nDim qvAr(";
  code.Append(ToString(Variant(state.ArrayCount)));
  code.Append(u")\r\nDim qvOut\r\n");
  code.Append(state.ArrayInit);
  code.Append(state.ScriptCode);
  code.Append(u"qvScriptEngine = qvOut\r\nEnd Function\r\n");
  TyScript* script = CurrentScript();
  return script->BuildNewCode(code, 0, vars.ScriptEngineTimeout);
}

String FldSrchOprs(int16_t ado_type) {
  static constexpr StringView kBoolean[] = {u"=", u"<>"};
  static constexpr StringView kText[] = {u"=",  u"<>",      u"<",    u"<=",       u">",
                                         u">=", u"BETWEEN", u"LIKE", u"NOT LIKE", u"STARTS WITH"};
  static constexpr StringView kOther[] = {u"=", u"<>", u"<", u"<=", u">", u">=", u"BETWEEN"};
  std::span<const StringView> operators = kOther;
  switch (FieldTypeClass(ado_type)) {
    case kFieldClassBoolean:
      operators = kBoolean;
      break;
    case kFieldClassText:
      operators = kText;
      break;
    default:
      break;
  }
  String list = u"USER SELECT";
  for (StringView op : operators) {
    list.Append(kCrLf);
    list.Append(op);
  }
  return list;
}

}  // namespace qv
