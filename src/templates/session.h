// TyxSession: one session of a control, a named piece of a template file with its condition
// and the extension it came from, read from a "session" element of the control file.
#pragma once

#include "automation/dispatch.h"
#include "platform/xml.h"

namespace qv {

class TyxSession : public DispatchObject<TyxSession> {
 public:
  static const DispatchTable<TyxSession>& Table();

  // Stores each known attribute (names without regard to case) in its property.
  void Load(const XmlNode& xml_session);

  String SessType;
  String SessValue;  // the key within the control, and the session id in the template
  String SessParm;
  String SessIFile;
  String SessCond;
  String SessExt;
  String SessAction;  // "add", "change" or "delete" in an extension's control file
  String SessLocation;
  String SessLocType;  // "after", or anything else for before
};

}  // namespace qv
