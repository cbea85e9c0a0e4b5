// Cuts VBScript source into tokens: comments, line continuations, ':' separators, number
// literals typed as VBScript types them, "" escapes, #date# literals and [bracketed] names.
#pragma once

#include <vector>

#include "vbscript/token.h"

namespace qv::vbs {

// The whole token list, ending with NewLine and End. Raises CompileError on bad input.
std::vector<Token> Tokenize(StringView source);

// The reserved word kind of an identifier, or Tok::Ident.
Tok KeywordKind(StringView word);

}  // namespace qv::vbs
