// The system script library: our own VBScript that the script host loads into the "System"
// module ("VB") and the "Validate" module ("VL"). The sources are the .vbs files of
// src/script/library/, embedded in the program when it is built.
#pragma once

#include "automation/string.h"

namespace qv {

// The library text for a two-character code: "VB" the system functions, "VL" the validation
// functions; "" for any other code.
String SystemLibraryText(StringView language);

// Makes TyxStatus.GetSysCode answer from this library (Vars().GetCode), unless a provider is
// already installed.
void InstallSystemLibrary();

}  // namespace qv
