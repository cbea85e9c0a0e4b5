// Scripting.FileSystemObject: path arithmetic, existence questions, copying, moving and
// deleting files and folders (with "*" and "?" in the last part of a source), and opening
// text streams. Errors carry VBScript's numbers (53 file not found, 58 file already exists,
// 70 permission denied, 76 path not found).
#pragma once

#include "automation/dispatch.h"

namespace qv::vbs {

class FileSystemObject : public DispatchObject<FileSystemObject> {
 public:
  static const DispatchTable<FileSystemObject>& Table();
};

}  // namespace qv::vbs
