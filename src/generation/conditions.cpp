// The condition language.
#include "generation/conditions.h"

#include <optional>
#include <vector>

#include "automation/convert.h"
#include "generation/run_state.h"
#include "generation/split.h"
#include "model/field.h"
#include "model/table.h"
#include "support/tyx_vars.h"

namespace qv {

namespace {

bool StartsWithNoCase(StringView text, StringView prefix) {
  return text.size() >= prefix.size() && EqualsNoCase(text.substr(0, prefix.size()), prefix);
}

// A member of the control by its lower-case name, or nothing for a name the language lacks.
std::optional<Variant> ControlMember(const TyxControl& c, StringView name) {
  if (name == u"ctrlid") return Variant(c.CtrlID);
  if (name == u"ctrltype") return Variant(c.CtrlType);
  if (name == u"ctrlofile") return Variant(c.CtrlOFile);
  if (name == u"ctrloext") return Variant(c.CtrlOExt);
  if (name == u"ctrlofolder") return Variant(c.CtrlOFolder);
  if (name == u"ctrlifiles") return Variant(c.CtrlIFiles);
  if (name == u"ctrlifolder") return Variant(c.CtrlIFolder);
  if (name == u"ctrlcond") return Variant(c.CtrlCond);
  if (name == u"ctrltagext") return Variant(c.CtrlTagExt);
  if (name == u"ctrlparm") return Variant(c.CtrlParm);
  if (name == u"ctrlspace") return Variant(c.CtrlSpace);
  if (name == u"ctrlgen") return Variant(c.CtrlGen);
  if (name == u"ctrlext") return Variant(c.CtrlExt);
  if (name == u"ctrlaction") return Variant(c.CtrlAction);
  if (name == u"ctrloverwrite") return Variant(c.CtrlOverwrite);
  return std::nullopt;
}

bool IsNumeric(const Variant& v) {
  switch (v.type()) {
    case VarType::Boolean:
    case VarType::Integer:
    case VarType::Long:
    case VarType::Byte:
    case VarType::Single:
    case VarType::Double:
    case VarType::Currency:
      return true;
    default:
      return false;
  }
}

// A number from a value, or nothing for a text that reads as no number. A Boolean on the other
// side lets "True" and "False" read as -1 and 0.
std::optional<double> NumberOf(const Variant& v, bool booleans) {
  if (IsNumeric(v)) return ToDouble(v);
  if (v.is_empty()) return 0.0;
  if (v.type() != VarType::String) return std::nullopt;
  const String text = ToString(v);
  if (booleans) {
    if (EqualsNoCase(TrimBlanks(text), u"true")) return -1.0;
    if (EqualsNoCase(TrimBlanks(text), u"false")) return 0.0;
  }
  return ParseNumberText(text);
}

bool Passes(StringView op, const Variant& left, const Variant& right) {
  if (op == u"in" || op == u"ni") {
    const String l = ToLower(ToString(left));
    const bool found = l.view().find(ToLower(ToString(right)).view()) != StringView::npos;
    return op == u"in" ? found : !found;
  }
  const int order = CompareCondValues(left, right);
  if (op == u"eq") return order == 0;
  if (op == u"ne") return order != 0;
  if (op == u"gt") return order > 0;
  if (op == u"ge") return order >= 0;
  if (op == u"lt") return order < 0;
  return order <= 0;  // "le"
}

bool KnownOperator(StringView op) {
  for (StringView known : {u"eq", u"ne", u"gt", u"ge", u"lt", u"le", u"in", u"ni"}) {
    if (op == known) return true;
  }
  return false;
}

// The bag behind an object name, or null when its object isn't there. Raises for a field
// clause outside the field loop, which makes the whole condition true.
const TyProperties* BagOf(Tyx& tyx, StringView object, bool& no_table) {
  if (object == u"proj") return &tyx.Properties();
  if (object == u"db") {
    const Ref<TyxDatabase> db = FirstDatabase(tyx);
    if (!db) throw Error(kErrObjectRequired);
    return &db->Properties();
  }
  if (object == u"table") {
    if (!tyx.CurTable) {
      no_table = true;
      return nullptr;
    }
    return &tyx.CurTable->Properties();
  }
  if (!tyx.CurField) throw Error(kErrObjectRequired);
  return &tyx.CurField->Properties();
}

// One clause; true when it passes (or can't be judged).
bool ClauseHolds(Tyx& tyx, StringView clause_text) {
  StringView clause = TrimBlanks(clause_text);
  const bool custom = StartsWithNoCase(clause, u"custom:");
  if (custom) clause = TrimBlanks(clause.substr(7));
  const std::vector<StringView> parts = SplitAt(clause, u'/');
  if (parts.size() != 4) return true;
  const String object = ToLower(parts[0]);
  const String op = ToLower(parts[2]);
  const std::vector<StringView> values = SplitAt(parts[3], u'|');

  if (custom) {
    if (!KnownOperator(op)) return true;
    const Variant type(parts[1]);
    const Variant left = ConvertValue(Variant(EvalCustomModule(tyx, parts[0])), type);
    for (StringView value : values) {
      if (Passes(op, left, ConvertValue(Variant(value), type))) return true;
    }
    return false;
  }

  if (object == u"ctrl") {
    Ref<TyxControl> control = RunControlList().Item(RunControlList().curIndex());
    if (!control) throw Error(kErrObjectRequired);
    const std::optional<Variant> left = ControlMember(*control, ToLower(parts[1]));
    if (!left || !KnownOperator(op)) return true;
    for (StringView value : values) {
      if (Passes(op, *left, Variant(Unquote(value)))) return true;
    }
    return false;
  }

  if (object != u"proj" && object != u"db" && object != u"table" && object != u"field") {
    return true;
  }
  bool no_table = false;
  const TyProperties* bag = BagOf(tyx, object, no_table);
  if (no_table) return true;
  const TyProperty* property = bag->Find(parts[1]);
  if (!property) throw Error(kErrObjectRequired);  // a misspelt property: the condition holds
  if (!KnownOperator(op)) return true;
  const Variant type(property->DataType());
  for (StringView value : values) {
    const Variant right = ResolveCondValue(*bag, Variant(value), type);
    if (Passes(op, property->Value(), right)) return true;
  }
  return false;
}

}  // namespace

bool EvalCondition(Tyx& tyx, const Variant& cond) {
  try {
    const String text = ToString(cond);
    if (text.empty()) return true;
    for (StringView clause : SplitAt(text, u',')) {
      if (!ClauseHolds(tyx, clause)) return false;
    }
    return true;
  } catch (const Error&) {
    return true;  // what can't be evaluated doesn't hold a page back
  }
}

Variant ResolveCondValue(const TyProperties& props, const Variant& text, const Variant& type) {
  const String given = ToString(text);
  const StringView trimmed = TrimBlanks(given);
  Variant value(given);
  if (!trimmed.empty() && trimmed[0] == u'%') {
    const TyProperty* other = props.Find(trimmed.substr(1));
    if (!other) throw Error(kErrObjectRequired);
    value = other->Value();
  }
  return ConvertValue(value, type);
}

Variant ConvertValue(const Variant& value, const Variant& type) {
  try {
    const String kind = ToLower(ToString(type));
    if (kind == u"boolean") return Variant(ToBool(value));
    if (kind == u"integer") return Variant(ToInteger(value));
    if (kind == u"long") return Variant(ToLong(value));
    if (kind == u"string") return Variant(Unquote(ToString(value)));
  } catch (const Error&) {
    return Variant();
  }
  return value;
}

String EvalCustomModule(Tyx& tyx, StringView module) {
  const Ref<Object> script = Vars().TheScript;
  if (!script) return String();
  const Variant table = tyx.CurTable ? Variant(tyx.CurTable) : Variant::Nothing();
  // A failing function raises on through EvalCondition, whose clause then holds.
  const Variant result = script->Call(u"BuildCode", {Variant(module), table});
  if (!Vars().ProjErr.empty()) return String();
  return ToString(result);
}

String Unquote(StringView text) {
  StringView rest = TrimBlanks(text);
  while (rest.size() >= 2 && (rest.front() == u'"' || rest.front() == u'\'') &&
         rest.back() == rest.front()) {
    rest = TrimBlanks(rest.substr(1, rest.size() - 2));
  }
  return String(rest);
}

int CompareCondValues(const Variant& left, const Variant& right) {
  const bool booleans = left.type() == VarType::Boolean || right.type() == VarType::Boolean;
  if (IsNumeric(left) || IsNumeric(right)) {
    const std::optional<double> l = NumberOf(left, booleans);
    const std::optional<double> r = NumberOf(right, booleans);
    if (l && r) return *l < *r ? -1 : (*l > *r ? 1 : 0);
  }
  const int order = CompareBinary(ToString(left), ToString(right));
  return order < 0 ? -1 : (order > 0 ? 1 : 0);
}

}  // namespace qv
