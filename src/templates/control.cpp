// Loading and script access of one control. Attribute names are matched in lower case, and
// unknown attributes are passed over, so newer packages still load.
#include "templates/control.h"

#include "automation/convert.h"
#include "platform/fs.h"

namespace qv {
namespace {

template <String TyxControl::*Member>
void AddText(DispatchTable<TyxControl>& table, StringView name) {
  table.Property(
      name, [](TyxControl& c, Args) { return Variant(c.*Member); },
      [](TyxControl& c, Args, const Variant& v) { c.*Member = ToString(v); });
}

template <bool TyxControl::*Member>
void AddFlag(DispatchTable<TyxControl>& table, StringView name) {
  table.Property(
      name, [](TyxControl& c, Args) { return Variant(c.*Member); },
      [](TyxControl& c, Args, const Variant& v) { c.*Member = ToBool(v); });
}

}  // namespace

const DispatchTable<TyxControl>& TyxControl::Table() {
  static const auto table = [] {
    DispatchTable<TyxControl> t(u"TyxControl");
    AddText<&TyxControl::CtrlID>(t, u"CtrlID");
    AddText<&TyxControl::CtrlType>(t, u"CtrlType");
    AddText<&TyxControl::CtrlOFile>(t, u"CtrlOFile");
    AddText<&TyxControl::CtrlOExt>(t, u"CtrlOExt");
    AddText<&TyxControl::CtrlOFolder>(t, u"CtrlOFolder");
    AddText<&TyxControl::CtrlIFiles>(t, u"CtrlIFiles");
    AddText<&TyxControl::CtrlIFolder>(t, u"CtrlIFolder");
    AddText<&TyxControl::CtrlCond>(t, u"CtrlCond");
    AddText<&TyxControl::CtrlTagExt>(t, u"CtrlTagExt");
    AddText<&TyxControl::CtrlParm>(t, u"CtrlParm");
    AddFlag<&TyxControl::CtrlSpace>(t, u"CtrlSpace");
    AddFlag<&TyxControl::CtrlGen>(t, u"CtrlGen");
    AddText<&TyxControl::CtrlExt>(t, u"CtrlExt");
    AddText<&TyxControl::CtrlAction>(t, u"CtrlAction");
    AddFlag<&TyxControl::CtrlOverwrite>(t, u"CtrlOverwrite");
    t.Property(u"Sessions",
               [](TyxControl& c, Args) { return Variant(Ref<Object>(&c.Sessions())); });
    return t;
  }();
  return table;
}

TyxSessions& TyxControl::Sessions() {
  if (!sessions_) sessions_ = MakeRef<TyxSessions>();
  return *sessions_;
}

void TyxControl::Load(const XmlNode& xml_control) {
  CtrlCond = String();
  CtrlSpace = true;
  CtrlOverwrite = true;
  for (const XmlAttribute& attribute : xml_control.attributes()) {
    const String name = ToLower(attribute.nodeName);
    const String& value = attribute.nodeValue;
    if (name == u"id") {
      CtrlID = value;
    } else if (name == u"type") {
      CtrlType = value;
    } else if (name == u"ifiles") {
      CtrlIFiles = value;
    } else if (name == u"ifolder") {
      CtrlIFolder = NormalizeControlFolder(value);
    } else if (name == u"ofile") {
      CtrlOFile = value;
    } else if (name == u"oext") {
      CtrlOExt = value;
    } else if (name == u"ofolder") {
      CtrlOFolder = NormalizeControlFolder(value);
    } else if (name == u"cond") {
      CtrlCond = value;
    } else if (name == u"tagext") {
      CtrlTagExt = value;
    } else if (name == u"parm") {
      CtrlParm = value;
    } else if (name == u"space") {
      CtrlSpace = ControlBoolean(value);
    } else if (name == u"extension") {
      CtrlExt = value;
    } else if (name == u"action") {
      CtrlAction = value;
    } else if (name == u"overwrite") {
      CtrlOverwrite = ControlBoolean(value);
    }
  }
  Sessions().Load(xml_control);
}

String NormalizeControlFolder(StringView folder) {
  String out = fs::NormalizeSeparators(folder);
  StringView view = out.view();
  if (!view.empty() && view.front() == u'/') view.remove_prefix(1);
  // The last character of an empty folder is asked for at position 0.
  if (view.empty()) throw Error(kErrInvalidCall);
  String result(view);
  if (view.back() != u'/') result.Append(u'/');
  return result;
}

bool ControlBoolean(StringView value) {
  const auto flag = ParseBoolText(value);
  if (!flag) throw Error(kErrTypeMismatch);
  return *flag;
}

}  // namespace qv
