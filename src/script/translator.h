// The translator of template text into the body of a page function. A template becomes one
// VBScript function: its literal pieces go into an array filled once at the top, and the body
// holds only short references to them, the statements of script tags and the output
// expressions, in template order.
//
//   TranslatorState state;            // fresh for each function
//   TranslateText(state, text);       // as often as the function has pieces
//   state.Flush();                    // then wrap ArrayInit and ScriptCode in the function
#pragma once

#include <cstdint>

#include "automation/string.h"

namespace qv {

// The working state of one function being built.
struct TranslatorState {
  String OutVar = u"qvOut";   // the output variable of generated code
  String ArrayVar = u"qvAr";  // the array of literals of generated code
  int32_t ArrayCount = 0;     // elements of ArrayVar used so far, numbered from 1
  String ArrayInit;           // the assignments to the array, one line each
  String PendingExpr;         // the output expression building up: "" or " & a & b"
  String ScriptCode;          // the statements of the body, one line each

  // Back to the start of a function (ArrayCount 0, the three texts empty).
  void Reset();
  // Writes a pending output expression as the line "qvOut = qvOut & ..." and clears it.
  void Flush();
};

// The indent variable of generated code; the system library declares it.
inline constexpr std::u16string_view kIndentVar = u"qvIndentWrk";

// Cuts `text` into blocks and adds them to `state`. Phrases of "@" tags are looked up now in
// the shared language (Vars().TheLang); "=" and "~" tags go through a user's "USER_" function
// when the running script host has one and no system function of the plain name. A broken text
// leaves the parser's words in ProjErr and adds nothing.
void TranslateText(TranslatorState& state, StringView text);

}  // namespace qv
