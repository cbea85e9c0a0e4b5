// Template text to the statements and literals of a page function. Every piece of literal text
// costs one array element and one short reference in the body, so a page function stays small
// to compile however long its template is.
#include "script/translator.h"

#include "automation/convert.h"
#include "script/script_host.h"
#include "support/tyx_functions.h"
#include "support/tyx_vars.h"
#include "templates/block_parser.h"
#include "templates/language.h"

namespace qv {
namespace {

constexpr StringView kCrLf = u"\r\n";

String Doubled(StringView text) {
  String out;
  size_t start = 0;
  for (size_t at = text.find(u'"'); at != StringView::npos; at = text.find(u'"', start)) {
    out.Append(text.substr(start, at + 1 - start));
    out.Append(u'"');
    start = at + 1;
  }
  out.Append(text.substr(start));
  return out;
}

// An output expression, handed through the user's "USER_" function of the same name when
// there is one and no system function of the plain name. The argument keeps its dots.
String OutputExpression(StringView expr) {
  const TyScript* script = CurrentScript();
  if (!script) return String(expr);
  String name(expr);
  if (expr.find(u'.') != StringView::npos) {
    name = String();
    for (Char c : expr)
      name.Append(c == u'.' ? u'_' : c);
  }
  const String user_name = u"USER_" + name;
  if (script->UserModuleExist(user_name) && !script->ModuleExist(name))
    return user_name + u"(" + expr + u")";
  return String(expr);
}

String Phrase(StringView id) {
  const auto* lang = dynamic_cast<const TyxLanguage*>(Vars().TheLang.get());
  return lang ? lang->Phrase(id) : String();
}

}  // namespace

void TranslatorState::Reset() {
  ArrayCount = 0;
  ArrayInit = String();
  PendingExpr = String();
  ScriptCode = String();
}

void TranslatorState::Flush() {
  if (PendingExpr.empty()) return;
  ScriptCode.Append(OutVar);
  ScriptCode.Append(u" = ");
  ScriptCode.Append(OutVar);
  ScriptCode.Append(PendingExpr);
  ScriptCode.Append(kCrLf);
  PendingExpr = String();
}

void TranslateText(TranslatorState& state, StringView text) {
  state.OutVar = u"qvOut";
  state.ArrayVar = u"qvAr";
  Ref<TyParser> parser = MakeRef<TyParser>();
  parser->Parse(String(text));
  if (!Vars().ProjErr.empty()) return;
  for (int32_t id = 1; id <= parser->Count(); ++id) {
    parser->SetBlockID(id);
    switch (parser->BlockType()) {
      case tyc_Block_Content: {
        const String literal = QuoteLiteral(parser->BlockValueView(), u"");
        if (literal.empty()) break;
        ++state.ArrayCount;
        const String element = state.ArrayVar + u"(" + ToString(Variant(state.ArrayCount)) + u")";
        state.ArrayInit.Append(element);
        state.ArrayInit.Append(u" = ");
        state.ArrayInit.Append(literal);
        state.ArrayInit.Append(kCrLf);
        state.PendingExpr.Append(u" & ");
        state.PendingExpr.Append(element);
        break;
      }
      case tyc_Block_Script:
        state.Flush();
        state.ScriptCode.Append(parser->BlockValueView());
        state.ScriptCode.Append(kCrLf);
        break;
      case tyc_Block_FunctionIndent:
        state.Flush();
        // The indent holds only tabs and blanks, so it needs no quoting.
        state.ScriptCode.Append(kIndentVar);
        state.ScriptCode.Append(u" = \"");
        state.ScriptCode.Append(parser->BlockIndent());
        state.ScriptCode.Append(u"\"");
        state.ScriptCode.Append(kCrLf);
        [[fallthrough]];
      case tyc_Block_Function:
        state.PendingExpr.Append(u" & ");
        state.PendingExpr.Append(OutputExpression(parser->BlockName()));
        break;
      case tyc_Block_Language:
        state.PendingExpr.Append(u" & \"");
        state.PendingExpr.Append(Doubled(Phrase(parser->BlockName())));
        state.PendingExpr.Append(u"\"");
        break;
      case tyc_Block_LanguageDynamic:
        state.PendingExpr.Append(u" & LANG.Phrase(");
        state.PendingExpr.Append(parser->BlockName());
        state.PendingExpr.Append(u")");
        break;
      default:
        break;
    }
  }
}

}  // namespace qv
