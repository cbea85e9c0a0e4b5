// Builds the syntax tree of a piece of VBScript source, raising CompileError with VBScript's
// number and the position of the offending token.
#pragma once

#include "vbscript/ast.h"

namespace qv::vbs {

// A whole program: module-level code, procedures and classes.
Program ParseProgram(StringView source);

// A single expression, as Eval takes it.
ExprPtr ParseExpression(StringView source);

}  // namespace qv::vbs
