// TyxControl: one entry of the control file: input files and folder, output file and folder,
// the condition on which it runs, and its sessions.
#pragma once

#include "automation/dispatch.h"
#include "platform/xml.h"
#include "templates/sessions.h"

namespace qv {

class TyxControl : public DispatchObject<TyxControl> {
 public:
  static const DispatchTable<TyxControl>& Table();

  // Fills the control from a "control" element: CtrlCond, CtrlSpace and CtrlOverwrite start
  // from their defaults, then every known attribute (names without regard to case) is stored;
  // sessions are appended to those there are. Raises 13 for a Boolean value that is neither
  // True, False nor a number, and 5 for an empty folder.
  void Load(const XmlNode& xml_control);
  // Created on first use.
  TyxSessions& Sessions();

  String CtrlID;  // the key in the list, compared exactly
  String CtrlType;
  String CtrlOFile;
  String CtrlOExt;
  String CtrlOFolder;  // stored as "a/b/": see NormalizeControlFolder
  String CtrlIFiles;
  String CtrlIFolder;
  String CtrlCond;
  String CtrlTagExt;
  String CtrlParm;
  bool CtrlSpace = false;
  bool CtrlGen = false;  // a mark of the generation run, not in the file
  String CtrlExt;
  String CtrlAction;
  bool CtrlOverwrite = false;

 private:
  Ref<TyxSessions> sessions_;
};

// A folder of the control file in the form that joins behind a root folder: separators
// become "/", one leading "/" goes, and a trailing "/" is added. Raises 5 for "".
String NormalizeControlFolder(StringView folder);

// The value of a Boolean attribute: True, False in any case, or a number (0 is False).
// Raises 13 for anything else.
bool ControlBoolean(StringView value);

}  // namespace qv
