// What Server.CreateObject and CreateObject can make in a page beyond the engine's standard
// classes, and the constants the ADO type library gives a page that names it.
#pragma once

#include <string_view>

#include "vbscript/runtime.h"

namespace qv::asp {

void RegisterServerClasses(vbs::ClassRegistry& registry);
// VBScript Const statements for the ADO constants.
std::u16string_view AdoConstantsScript();

}  // namespace qv::asp
