// Translating a control's templates into its stored function.
#include "generation/translation.h"

#include "generation/conditions.h"
#include "generation/preparation.h"
#include "generation/split.h"
#include "platform/fs.h"
#include "platform/text_file.h"
#include "script/translator.h"
#include "support/common.h"
#include "support/status.h"
#include "support/tyx_vars.h"
#include "templates/block_parser.h"

namespace qv {

namespace {

String BaseFolder(StringView ext) {
  const TyxVars& vars = Vars();
  return ext.empty() ? vars.TemplateFolder : fs::JoinPath(vars.ExtensionsFolder, ext);
}

// The function around the translated body.
String AssembleFunction(const TranslatorState& state) {
  String code;
  code.Append(u"Function qvScriptEngine()\r\nOn Error Resume Next\r\nDim qvAr(");
  code.Append(NumberText(state.ArrayCount));
  code.Append(u")\r\nDim qvOut\r\n");
  code.Append(state.ArrayInit);
  code.Append(state.ScriptCode);
  code.Append(u"qvScriptEngine = qvOut\r\nEnd Function\r\n");
  return code;
}

// Reads a merged input; a missing one ends the run with the names that were asked for.
String ReadMerged(StringView path, StringView names) {
  if (!fs::FileExists(path)) {
    Vars().ProjErr = u"Error in merging " + String(names) + u". Generation aborted.";
    RaiseGenError();
  }
  return ReadSourceFile(path);
}

}  // namespace

String ResolveSource(StringView folder, StringView name) {
  const String path = fs::JoinPath(folder, name);
  if (fs::FileExists(path) || fs::FolderExists(path)) return path;
  SharedStatus().CloseStatus();
  return String();
}

String MergeInputFiles(StringView files, StringView ext) {
  const String base = BaseFolder(ext);
  if (files.find(u',') == StringView::npos) return fs::JoinPath(base, TrimBlanks(files));
  const String merged = fs::JoinPath(Vars().TempFolder, u"~tmp.temp");
  String text;
  for (StringView name : SplitAt(files, u',')) {
    // Names are trimmed as the rebuild check trims them: "a.htm, b.htm" names two files.
    const String path = ResolveSource(base, TrimBlanks(name));
    if (!path.empty() && fs::FileExists(path)) text.Append(ReadSourceFile(path));
  }
  WriteTextFile(merged, text);
  return merged;
}

void TranslateControl(Tyx& tyx, TyxControl& control, StringView tmp_file) {
  TyxVars& vars = Vars();
  WriteTextFile(tmp_file, u"");
  const String main_file = MergeInputFiles(control.CtrlIFiles, control.CtrlExt);
  const String main_text = ReadMerged(main_file, control.CtrlIFiles);

  TranslatorState state;
  state.Reset();
  TyxSessions& sessions = control.Sessions();
  String text;  // the text being translated, kept for the report of a failure
  const auto translate = [&](const String& piece) {
    text = piece;
    TranslateText(state, piece);
    if (vars.ProjErr.empty()) return;
    WriteTextFile(tmp_file, text + u"\r\n" + vars.ProjErr);
    vars.ProjErr = main_file + u": " + vars.ProjErr;
    RaiseGenError();
  };

  if (sessions.Count() == 0) {
    translate(main_text);
  } else {
    const Ref<TyParser> parser = MakeRef<TyParser>();
    String session_text;
    for (int32_t i = 1; i <= sessions.Count(); ++i) {
      const Ref<TyxSession> session = sessions.Item(i);
      if (!EvalCondition(tyx, Variant(session->SessCond))) continue;
      if (session->SessType == u"key") {
        String source = main_text;
        if (!session->SessIFile.empty()) {
          source =
              ReadMerged(MergeInputFiles(session->SessIFile, session->SessExt), session->SessIFile);
        }
        session_text = parser->GetSession(source, session->SessValue);
      } else if (session->SessType == u"include") {
        session_text = u"<!--##=Include_File(\"" + session->SessValue + u"\",\"" +
                       session->SessParm + u"\")##-->\r\n";
      }
      // Any other kind translates the text of the session before it once more.
      translate(session_text);
      ++vars.SessionsDone;
      SharedStatus().SetStatus(Variant(PercentOf(vars.SessionsDone, vars.SessionsTotal)));
    }
  }
  state.Flush();
  WriteTextFile(tmp_file, AssembleFunction(state));
}

}  // namespace qv
