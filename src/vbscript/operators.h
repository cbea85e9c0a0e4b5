// VBScript's operators on Variants: the type each arithmetic operator yields (Integer
// overflowing into Long, Long into Double, Byte, Currency and Date arithmetic), string
// concatenation, Null propagation, the logical/bitwise operators and comparisons.
#pragma once

#include "automation/convert.h"
#include "automation/variant.h"

namespace qv::vbs {

Variant OpAdd(const Variant& a, const Variant& b);
Variant OpSub(const Variant& a, const Variant& b);
Variant OpMul(const Variant& a, const Variant& b);
Variant OpDiv(const Variant& a, const Variant& b);
Variant OpIntDiv(const Variant& a, const Variant& b);
Variant OpMod(const Variant& a, const Variant& b);
Variant OpPow(const Variant& a, const Variant& b);
Variant OpConcat(const Variant& a, const Variant& b);
Variant OpNeg(const Variant& a);
Variant OpNot(const Variant& a);
Variant OpAnd(const Variant& a, const Variant& b);
Variant OpOr(const Variant& a, const Variant& b);
Variant OpXor(const Variant& a, const Variant& b);
Variant OpEqv(const Variant& a, const Variant& b);
Variant OpImp(const Variant& a, const Variant& b);
// `=`, `<>`, `<`...: Boolean, or Null when either side is Null. `op` counts from Eq as
// BinOp does (0 Eq, 1 Ne, 2 Lt, 3 Le, 4 Gt, 5 Ge).
Variant OpCompare(int op, const Variant& a, const Variant& b, uint8_t hints);
// `Is`: both sides objects (Nothing included); raises 424 otherwise.
bool OpIs(const Variant& a, const Variant& b);

// `s & x` where `s` is a variable: appends in place when nothing else shares the text.
void AppendInPlace(Variant& target, const Variant& value);

// The text of a value as `&` uses it (Null and Empty give "").
String ConcatText(const Variant& v);

}  // namespace qv::vbs
