// The engine as scripts create it: CreateObject("MSScriptControl.ScriptControl") gives an object
// with Language, AddCode, Eval, ExecuteStatement, Run, AddObject, Reset, Timeout, Error, Modules
// and Procedures over an Engine of its own.
#pragma once

#include "automation/object.h"

namespace qv::vbs {

// A new script control object.
Ref<Object> NewScriptControl();

}  // namespace qv::vbs
