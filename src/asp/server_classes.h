// What Server.CreateObject and CreateObject can make in a page beyond the engine's standard
// classes, and the constants the ADO type library gives a page that names it.
#pragma once

#include <string_view>

#include "vbscript/runtime.h"

namespace qv::asp {

void RegisterServerClasses(vbs::ClassRegistry& registry);
// An object whose members are the ADO constants; added with its members as global names, it
// makes them known to a page without compiling a Const statement per request.
Ref<Object> AdoConstantsObject();

}  // namespace qv::asp
