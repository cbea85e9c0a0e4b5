// How script text gets into the host's three modules: the system text (built in, or the
// syscode file list with its prefix, suffix and override statements), the validation text (built
// in, or its own file list) and the user's text. The system and user loaders carry on past a
// failing engine call and report it in ProjErr; the validation loader lets it raise.
#include <cassert>
#include <optional>

#include "automation/convert.h"
#include "platform/fs.h"
#include "platform/text_file.h"
#include "platform/xml.h"
#include "script/script_host.h"
#include "script/translator.h"
#include "support/status.h"
#include "support/tyx_functions.h"
#include "support/tyx_vars.h"
#include "templates/block_parser.h"
#include "vbscript/engine.h"

namespace qv {
namespace {

constexpr StringView kCrLf = u"\r\n";

// Adds code to a module; false when the engine refused it (its error object tells why).
bool TryAddCode(vbs::ScriptModule& module, StringView code) {
  try {
    module.AddCode(code);
    return true;
  } catch (const Error&) {
    return false;
  }
}

void AppendProcedureNames(const vbs::ScriptModule& module, std::vector<String>& list) {
  for (const vbs::ProcedureInfo& p : module.Procedures())
    list.push_back(p.Name);
}

// The folder part of a list file's path, with its separator; "" when it has none.
String FolderOf(StringView path) {
  const String normal = fs::NormalizeSeparators(path);
  const size_t slash = normal.view().rfind(u'/');
  if (slash == StringView::npos) return {};
  return String(normal.view().substr(0, slash + 1));
}

// A Boolean attribute of a list file. Left out, or anything but a true value, reads False;
// "True" (any case), "yes" and a non-zero number read True, as hand-written lists spell it.
bool BoolAttribute(const XmlNode& node, StringView name) {
  const std::optional<String> value = node.getAttribute(name);
  if (!value) return false;
  const StringView text = TrimBlanks(*value);
  if (EqualsNoCase(text, u"true") || EqualsNoCase(text, u"yes")) return true;
  try {
    return ToDouble(Variant(text)) != 0;
  } catch (const Error&) {
    return false;
  }
}

String StringAttribute(const XmlNode& node, StringView name) {
  std::optional<String> value = node.getAttribute(name);
  return value ? std::move(*value) : String();
}

// The <file> children of a list's root element, compared in lower case.
std::vector<XmlNode> FileElements(const XmlDocument& doc) {
  std::vector<XmlNode> files;
  for (const XmlNode& child : doc.documentElement().childNodes()) {
    if (child.IsElement() && EqualsNoCase(child.nodeName(), u"file")) files.push_back(child);
  }
  return files;
}

String ReplaceAll(StringView text, StringView what, StringView with) {
  String out;
  size_t start = 0;
  for (size_t at = text.find(what); at != StringView::npos; at = text.find(what, start)) {
    out.Append(text.substr(start, at - start));
    out.Append(with);
    start = at + what.size();
  }
  out.Append(text.substr(start));
  return out;
}

// The dump files are a developer's aid; a destination that can't take them costs nothing.
void WriteDump(StringView path, StringView text) {
  try {
    WriteTextFile(path, text);
  } catch (const Error&) {
  }
}

}  // namespace

// ---- The System module -----------------------------------------------------------------------

void TyScript::LoadSystemModule(StringView lang) {
  system_ = &engine_->AddModule(u"System");
  common_code_ =
      settings_.COMMONCODE.empty() ? BuildCommonCode() : ReadScriptFile(settings_.COMMONCODE);
  static constexpr StringView kStartUp =
      u"Sub qvSetLocale()\r\n"
      u"On Error Resume Next\r\n"
      u"SetLocale(1033)\r\n"
      u"End Sub\r\n"
      u"Call qvSetLocale()\r\n";
  const bool started = TryAddCode(*system_, kStartUp);
  const bool common = TryAddCode(*system_, common_code_);
  if (!started || !common) {
    ReportSyntaxError(u"");
    return;
  }
  if (!settings_.SYSCODE.empty()) {
    LoadSysCodeList();
    return;
  }
  code_ = SharedStatus().GetSysCode(Variant(String(lang)));
  if (!TryAddCode(*system_, code_)) {
    ReportSyntaxError(u"");
    return;
  }
  system_functions_.assign(1, String());
  AppendProcedureNames(*system_, system_functions_);
}

void TyScript::LoadSysCodeList() {
  TyxVars& vars = Vars();
  const String& path = settings_.SYSCODE;
  XmlDocument doc;
  if (!doc.Load(path)) {
    vars.ProjErr = u"Load syscode file " + path + u" failed!";
    return;
  }
  syscode_prefix_ =
      settings_.SYSCODEPREFIX.empty() ? String() : ReadScriptFile(settings_.SYSCODEPREFIX);
  syscode_suffix_ =
      settings_.SYSCODESUFFIX.empty() ? String() : ReadScriptFile(settings_.SYSCODESUFFIX);
  const String folder = FolderOf(path);
  const std::vector<XmlNode> files = FileElements(doc);

  // Only the functions a user may override count as system functions in this mode.
  system_functions_.assign(1, String());
  for (const XmlNode& file : files) {
    if (StringAttribute(file, u"value").empty()) continue;
    if (BoolAttribute(file, u"function") && BoolAttribute(file, u"override"))
      system_functions_.push_back(String(TrimBlanks(StringAttribute(file, u"id"))));
  }

  String collected;
  for (const XmlNode& file : files) {
    const String value = StringAttribute(file, u"value");
    if (value.empty()) continue;
    const bool is_function = BoolAttribute(file, u"function");
    const String name = is_function ? String(TrimBlanks(StringAttribute(file, u"id"))) : String();
    code_ = ReadScriptFile(folder + value);
    code_ = TranslateSysCode(code_, BoolAttribute(file, u"multiline"),
                             BoolAttribute(file, u"indent"), name);
    if (is_function) {
      const String parm = String(TrimBlanks(StringAttribute(file, u"parm")));
      String head = ReplaceAll(ReplaceAll(syscode_prefix_, u"<name>", name), u"<parm>", parm);
      head.Append(u"Function " + name + u"(" + parm + u")" + kCrLf);
      String tail = ReplaceAll(ReplaceAll(syscode_suffix_, u"<name>", name), u"<parm>", parm);
      if (BoolAttribute(file, u"override")) {
        tail.Append(kCrLf);
        tail.Append(u"If SCRPT.UserModuleExist(\"USER_" + name + u"\") Then " + name + u"=USER_" +
                    name + u"(" + name + u")");
        tail.Append(kCrLf);
      }
      tail.Append(u"End Function");
      tail.Append(kCrLf);
      code_ = head + code_ + tail;
    }
    if (!vars.ProjErr.empty()) {
      vars.ProjErr = value + u": " + vars.ProjErr;
      code_ = code_ + kCrLf + vars.ProjErr;
      WriteDump(vars.Destination + value, code_);
      return;
    }
    collected.Append(code_);
    if (!TryAddCode(*system_, code_)) {
      WriteDump(vars.Destination + value, code_);
      WriteDump(vars.Destination + u"syscode.txt", collected);
      ReportSyntaxError(value);
      return;
    }
  }
  if (settings_.SYSCODEPREFIX.empty() || settings_.SYSCODESUFFIX.empty())
    collected = u"'missing syscodeprefix or syscodesuffix";
  WriteDump(vars.Destination + u"/syscode.txt", collected);
}

String TranslateSysCode(StringView code, bool multiline, bool indent, StringView name) {
  Ref<TyParser> parser = MakeRef<TyParser>();
  parser->Parse(String(code));
  if (!Vars().ProjErr.empty()) return String(code);
  const String adds = name.empty() ? String() : String(name) + u"=" + name + u"&";
  String out;
  for (int32_t id = 1; id <= parser->Count(); ++id) {
    parser->SetBlockID(id);
    switch (parser->BlockType()) {
      case tyc_Block_Script:
        out.Append(parser->BlockValueView());
        break;
      case tyc_Block_Function:
        out.Append(String(name) + u"=" + name + u"&" + parser->BlockName());
        break;
      case tyc_Block_FunctionIndent:
        continue;  // nothing, not even the line end
      case tyc_Block_Language:
        out.Append(String(name) + u"=" + name + u"&LANG.Phrase(" +
                   QuoteScriptText(parser->BlockName(), 1) + u")");
        break;
      case tyc_Block_LanguageDynamic:
        out.Append(String(name) + u"=" + name + u"&LANG.Phrase(" + parser->BlockName() + u")");
        break;
      case tyc_Block_Content: {
        String text(parser->BlockValueView());
        if (!multiline) text = ReplaceAll(text, kCrLf, u"");
        const String expr = QuoteLiteral(text, indent ? kIndentVar : StringView());
        if (expr.empty()) continue;
        out.Append(adds);
        out.Append(expr);
        break;
      }
      default:
        continue;
    }
    out.Append(kCrLf);
  }
  return out;
}

// ---- The Validate module ---------------------------------------------------------------------

void TyScript::LoadValidateModule() {
  validate_ = &engine_->AddModule(u"Validate");
  if (!settings_.VALIDATECODE.empty()) {
    LoadValidateList();
    return;
  }
  validate_code_ = SharedStatus().GetSysCode(Variant(String(u"VL")));
  try {
    validate_->AddCode(validate_code_);
  } catch (const Error&) {
    ReportSyntaxError(u"");
    throw;
  }
  validate_functions_.assign(1, String());
  AppendProcedureNames(*validate_, validate_functions_);
}

void TyScript::LoadValidateList() {
  TyxVars& vars = Vars();
  const String& path = settings_.VALIDATECODE;
  XmlDocument doc;
  if (!doc.Load(path)) {
    vars.ProjErr = u"Load validate file " + path + u" failed!";
    return;
  }
  const String folder = FolderOf(path);
  validate_code_ = String();
  for (const XmlNode& file : FileElements(doc)) {
    const String value = StringAttribute(file, u"value");
    if (value.empty()) continue;
    const String text = ReadScriptFile(folder + value);
    if (!vars.ProjErr.empty()) {
      vars.ProjErr = value + u": " + vars.ProjErr;
      return;
    }
    validate_code_.Append(kCrLf);
    validate_code_.Append(text);
    try {
      validate_->AddCode(text);
    } catch (const Error&) {
      ReportSyntaxError(value);
      throw;
    }
  }
  WriteDump(vars.Destination + u"validatecode.txt", validate_code_);
  validate_functions_.assign(1, String());
  AppendProcedureNames(*validate_, validate_functions_);
}

// ---- The user module -------------------------------------------------------------------------

void TyScript::LoadUserModule(StringView name) {
  user_code_ = settings_.USERCODE.empty() ? String(u"'Please enter your script here\r\n")
                                          : ReadScriptFile(settings_.USERCODE);
  user_ = &engine_->AddModule(u"$" + String(name));
  if (!TryAddCode(*user_, user_code_)) {
    ReportSyntaxError(settings_.USERCODE);
    return;
  }
  TryAddCode(*system_, user_code_);
  user_functions_.assign(1, String());
  CollectUserProcedures();
}

void TyScript::CollectUserProcedures() {
  for (const vbs::ProcedureInfo& p : user_->Procedures()) {
    user_functions_.push_back(p.Name);
    UserScript().AddUserModule(p.Name);
  }
}

void TyScript::AddUserCode(StringView file) {
  if (!user_ || !system_) return;
  const String text = ReadScriptFile(file);
  if (!TryAddCode(*user_, text)) {
    ReportSyntaxError(file);
    return;
  }
  TryAddCode(*system_, text);
  CollectUserProcedures();
}

}  // namespace qv
