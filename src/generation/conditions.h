// The condition language of control files: clauses separated by ",", each of the form
// object/property/operator/values with alternatives separated by "|", or
// custom:module/type/operator/values to ask a system script function. One control file serves
// very different projects through these conditions.
//
//   EvalCondition(tyx, u"table/TblType/eq/TABLE|VIEW,proj/UseCss/eq/True")
//
// A condition never fails: whatever can't be evaluated (a misspelt property, a missing object)
// counts as true, so a template bug shows up as too much output, never as a lost page.
#pragma once

#include "model/properties.h"
#include "model/tyx.h"

namespace qv {

// True when every clause passes. The control is the one at curIndex of RunControlList(); the
// table and field are tyx.CurTable and tyx.CurField.
bool EvalCondition(Tyx& tyx, const Variant& cond);

// The trimmed text converted to `type`; a text beginning with "%" names another property of
// `props` whose value is taken instead.
Variant ResolveCondValue(const TyProperties& props, const Variant& text, const Variant& type);

// The value as "boolean", "integer", "long" or "string" (unquoted), any case; any other type
// leaves it as it is. A value that doesn't convert gives Empty.
Variant ConvertValue(const Variant& value, const Variant& type);

// The text that the system script function `module` gives for the current table, or "" when
// no script host runs or the function failed.
String EvalCustomModule(Tyx& tyx, StringView module);

// The trimmed text without any pairs of matching quotes (" or ') around it.
String Unquote(StringView text);

// How two condition values compare: numbers (Booleans as -1 and 0) by value, a number against
// a text that reads as one by value, a Boolean against "True"/"False" as Booleans, anything else
// by its text with case. -1, 0 or 1.
int CompareCondValues(const Variant& left, const Variant& right);

}  // namespace qv
