// The tokens of VBScript source: reserved words get kinds of their own so the parser can
// switch on them; soft words (Property, Get, Step, Default, Preserve, Error...) stay identifiers.
#pragma once

#include <cstdint>

#include "automation/string.h"
#include "automation/variant.h"

namespace qv::vbs {

enum class Tok : uint8_t {
  End,
  NewLine,  // a line end or ':'
  Ident,
  Number,  // value holds an Integer, Long or Double
  Text,    // a string literal
  DateLit,
  Dot,
  Comma,
  LParen,
  RParen,
  Plus,
  Minus,
  Star,
  Slash,
  Backslash,
  Caret,
  Amp,
  Eq,
  Ne,
  Lt,
  Le,
  Gt,
  Ge,
  // Reserved words.
  And,
  ByRef,
  ByVal,
  Call,
  Case,
  Class,
  Const,
  Dim,
  Do,
  Each,
  Else,
  ElseIf,
  Empty,
  End_,
  Eqv,
  Erase,
  Exit,
  False,
  For,
  Function,
  GoTo,
  If,
  Imp,
  In,
  Is,
  Let,
  Loop,
  Me,
  Mod,
  New,
  Next,
  Not,
  Nothing,
  Null,
  On,
  Option,
  Or,
  Private,
  Public,
  ReDim,
  Resume,
  Select,
  Set,
  Sub,
  Then,
  To,
  True,
  Until,
  Wend,
  While,
  With,
  Xor,
};

struct Token {
  Tok kind = Tok::End;
  bool space_before = false;  // blank before the token (tells `a .b` from `a.b`)
  int32_t line = 1;
  int32_t column = 1;
  String text;    // identifier (as written) or string literal
  Variant value;  // number or date literal
};

}  // namespace qv::vbs
