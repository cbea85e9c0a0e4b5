// Loading and script access of one control. Attribute names are matched in lower case, and
// unknown attributes are passed over, so newer packages still load.
#include "templates/control.h"

#include "automation/convert.h"
#include "platform/fs.h"

namespace qv {

const DispatchTable<TyxControl>& TyxControl::Table() {
  using C = TyxControl;
  static const auto table = DispatchTable<C>(u"TyxControl")
                                .Field<&C::CtrlID>(u"CtrlID")
                                .Field<&C::CtrlType>(u"CtrlType")
                                .Field<&C::CtrlOFile>(u"CtrlOFile")
                                .Field<&C::CtrlOExt>(u"CtrlOExt")
                                .Field<&C::CtrlOFolder>(u"CtrlOFolder")
                                .Field<&C::CtrlIFiles>(u"CtrlIFiles")
                                .Field<&C::CtrlIFolder>(u"CtrlIFolder")
                                .Field<&C::CtrlCond>(u"CtrlCond")
                                .Field<&C::CtrlTagExt>(u"CtrlTagExt")
                                .Field<&C::CtrlParm>(u"CtrlParm")
                                .Field<&C::CtrlSpace>(u"CtrlSpace")
                                .Field<&C::CtrlGen>(u"CtrlGen")
                                .Field<&C::CtrlExt>(u"CtrlExt")
                                .Field<&C::CtrlAction>(u"CtrlAction")
                                .Field<&C::CtrlOverwrite>(u"CtrlOverwrite")
                                .Property<&C::Sessions>(u"Sessions");
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
