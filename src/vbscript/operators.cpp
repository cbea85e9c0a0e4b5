// VBScript's operator semantics. Operands are first reduced to plain values (objects give
// their default value); arithmetic then picks the result type from the wider operand and
// widens once more when the result does not fit (Byte -> Integer -> Long -> Double).
#include "vbscript/operators.h"

#include <cmath>
#include <limits>

#include "automation/error.h"
#include "automation/object.h"

namespace qv::vbs {
namespace {

enum Kind : int {
  kByte = 1,
  kInt = 2,
  kLong = 3,
  kSingle = 4,
  kDouble = 5,
  kCurrency = 6,
  kDate = 7
};

[[noreturn]] void Raise(int32_t n) {
  throw Error(n);
}

// An operand reduced to a number: its kind and its value (Currency as a scaled integer).
struct Num {
  Kind kind;
  double d = 0;
  int64_t i = 0;  // whole kinds and Currency (scaled)
};

bool Reduce(const Variant& in, Num& out) {
  const Variant v = in.is_object() ? ValueOf(in) : in;
  switch (v.type()) {
    case VarType::Null:
      return false;
    case VarType::Empty:
      out = {kInt, 0, 0};
      return true;
    case VarType::Boolean:
      out = {kInt, 0, v.as_bool() ? -1 : 0};
      return true;
    case VarType::Byte:
      out = {kByte, 0, v.as_byte()};
      return true;
    case VarType::Integer:
      out = {kInt, 0, v.as_integer()};
      return true;
    case VarType::Long:
      out = {kLong, 0, v.as_long()};
      return true;
    case VarType::Single:
      out = {kSingle, v.as_single(), 0};
      return true;
    case VarType::Double:
      out = {kDouble, v.as_double(), 0};
      return true;
    case VarType::Currency:
      out = {kCurrency, 0, v.as_currency()};
      return true;
    case VarType::Date:
      out = {kDate, v.as_date(), 0};
      return true;
    case VarType::String: {
      const auto n = ParseNumberText(v.as_string(), CurrentLocale());
      if (!n) Raise(kErrTypeMismatch);
      out = {kDouble, *n, 0};
      return true;
    }
    default:
      Raise(kErrTypeMismatch);
  }
}

double AsDouble(const Num& n) {
  switch (n.kind) {
    case kByte:
    case kInt:
    case kLong:
      return static_cast<double>(n.i);
    case kCurrency:
      return static_cast<double>(n.i) / 10000.0;
    default:
      return n.d;
  }
}

Variant FromDouble(double d) {
  if (!std::isfinite(d)) Raise(kErrOverflow);
  return Variant(d);
}

Variant WholeResult(int64_t r, Kind k) {
  if (k == kByte && r >= 0 && r <= 255) return Variant(static_cast<uint8_t>(r));
  if (k <= kInt && r >= -32768 && r <= 32767) return Variant(static_cast<int16_t>(r));
  if (r >= std::numeric_limits<int32_t>::min() && r <= std::numeric_limits<int32_t>::max())
    return Variant(static_cast<int32_t>(r));
  return Variant(static_cast<double>(r));
}

Variant CurrencyResult(long double scaled) {
  if (scaled > 9.2233720368547758e18L || scaled < -9.2233720368547758e18L) Raise(kErrOverflow);
  return Variant::Currency(static_cast<int64_t>(std::llround(static_cast<double>(scaled))));
}

enum class Arith { Add, Sub, Mul };

Variant Arithmetic(Arith op, const Num& x, const Num& y) {
  if (x.kind == kDate || y.kind == kDate) {
    const double a = AsDouble(x), b = AsDouble(y);
    if (op == Arith::Add) return Variant::Date(a + b);
    if (op == Arith::Sub)
      return x.kind == kDate && y.kind == kDate ? FromDouble(a - b) : Variant::Date(a - b);
    return FromDouble(a * b);
  }
  if (x.kind == kCurrency || y.kind == kCurrency) {
    const Kind other = x.kind == kCurrency ? y.kind : x.kind;
    // Adding ranks Currency above Double; multiplying ranks Double above Currency (and
    // Single below it).
    if (other == kDouble && op == Arith::Mul) return FromDouble(AsDouble(x) * AsDouble(y));
    if (other == kSingle || other == kDouble) {
      const long double a = AsDouble(x) * 10000.0L, b = AsDouble(y) * 10000.0L;
      if (op == Arith::Add) return CurrencyResult(a + b);
      if (op == Arith::Sub) return CurrencyResult(a - b);
      return CurrencyResult(a * b / 10000.0L);
    }
    const long double a = x.kind == kCurrency ? x.i : x.i * 10000.0L;
    const long double b = y.kind == kCurrency ? y.i : y.i * 10000.0L;
    if (op == Arith::Add) return CurrencyResult(a + b);
    if (op == Arith::Sub) return CurrencyResult(a - b);
    return CurrencyResult(a * b / 10000.0L);
  }
  Kind k = std::max(x.kind, y.kind);
  if (k == kSingle && (x.kind == kLong || y.kind == kLong)) k = kDouble;
  if (k <= kLong) {
    const int64_t r = op == Arith::Add ? x.i + y.i : op == Arith::Sub ? x.i - y.i : x.i * y.i;
    return WholeResult(r, k);
  }
  const double a = AsDouble(x), b = AsDouble(y);
  const double r = op == Arith::Add ? a + b : op == Arith::Sub ? a - b : a * b;
  if (k == kSingle) {
    if (std::isfinite(r) && std::fabs(r) <= std::numeric_limits<float>::max())
      return Variant(static_cast<float>(r));
  }
  return FromDouble(r);
}

bool EitherNull(const Variant& a, const Variant& b) {
  return a.is_null() || b.is_null();
}

Variant ArithmeticOp(Arith op, const Variant& a, const Variant& b) {
  if (EitherNull(a, b)) return Variant::Null();
  Num x, y;
  const bool ok_a = Reduce(a, x);
  const bool ok_b = Reduce(b, y);
  if (!ok_a || !ok_b) return Variant::Null();
  return Arithmetic(op, x, y);
}

// Operands of \, Mod and the bitwise operators: whole numbers, rounded half to even.
struct Whole {
  Kind kind;
  int64_t v;
  bool boolean;
};

// Empty counts as an Integer 0 for \ and Mod but as a Long 0 for the logical operators.
bool ReduceWhole(const Variant& in, Whole& out, Kind empty_kind = kInt) {
  const Variant v = in.is_object() ? ValueOf(in) : in;
  switch (v.type()) {
    case VarType::Null:
      return false;
    case VarType::Empty:
      out = {empty_kind, 0, false};
      return true;
    case VarType::Boolean:
      out = {kInt, v.as_bool() ? -1 : 0, true};
      return true;
    case VarType::Byte:
      out = {kByte, v.as_byte(), false};
      return true;
    case VarType::Integer:
      out = {kInt, v.as_integer(), false};
      return true;
    case VarType::Long:
      out = {kLong, v.as_long(), false};
      return true;
    default:
      out = {kLong, ToLong(v), false};
      return true;
  }
}

Variant IntegerDivision(const Variant& a, const Variant& b, bool modulo) {
  if (a.is_null() || b.is_null()) return Variant::Null();
  Whole x, y;
  const bool ok_a = ReduceWhole(a, x);
  const bool ok_b = ReduceWhole(b, y);
  if (!ok_a || !ok_b) return Variant::Null();
  if (y.v == 0) Raise(kErrDivisionByZero);
  const int64_t r = modulo ? x.v % y.v : x.v / y.v;
  const Kind k = std::max(x.kind, y.kind);
  if (k == kLong && (r > std::numeric_limits<int32_t>::max())) Raise(kErrOverflow);
  if (k == kByte) return Variant(static_cast<uint8_t>(r));
  if (k == kInt && r >= -32768 && r <= 32767) return Variant(static_cast<int16_t>(r));
  return Variant(static_cast<int32_t>(r));
}

enum class Logic { And, Or, Xor, Eqv, Imp };

int64_t ApplyLogic(Logic op, int64_t a, int64_t b) {
  switch (op) {
    case Logic::And:
      return a & b;
    case Logic::Or:
      return a | b;
    case Logic::Xor:
      return a ^ b;
    case Logic::Eqv:
      return ~(a ^ b);
    case Logic::Imp:
      return ~a | b;
  }
  return 0;
}

Variant LogicResult(int64_t r, Kind k, bool boolean) {
  if (boolean) return Variant(r != 0);
  if (k == kByte) return Variant(static_cast<uint8_t>(r));
  if (k == kInt) return Variant(static_cast<int16_t>(r));
  return Variant(static_cast<int32_t>(r));
}

// Null in a logical operator: the result is known when the other side decides it alone
// (False And Null is False, True Or Null is True, Null Imp True is True, False Imp Null is
// True); otherwise it is Null.
Variant LogicOp(Logic op, const Variant& a, const Variant& b) {
  Whole x{kInt, 0, false}, y{kInt, 0, false};
  const bool has_a = ReduceWhole(a, x, kLong);
  const bool has_b = ReduceWhole(b, y, kLong);
  if (has_a && has_b) {
    return LogicResult(ApplyLogic(op, x.v, y.v), std::max(x.kind, y.kind), x.boolean && y.boolean);
  }
  const Whole& known = has_a ? x : y;
  const bool any = has_a || has_b;
  if (any && op == Logic::And && known.v == 0) return LogicResult(0, known.kind, known.boolean);
  if (any && op == Logic::Or && known.v == -1) return LogicResult(-1, known.kind, known.boolean);
  if (op == Logic::Imp) {
    if (has_b && !has_a && y.v == -1) return LogicResult(-1, y.kind, y.boolean);
    if (has_a && !has_b && x.v == 0) return LogicResult(-1, x.kind, x.boolean);
    // A Byte keeps its width: Windows gives the complement of the byte, not Null.
    if (has_a && !has_b && x.kind == kByte) return LogicResult(~x.v, kByte, false);
  }
  return Variant::Null();
}

}  // namespace

Variant OpAdd(const Variant& a, const Variant& b) {
  const Variant& x = a.is_object() ? ValueOf(a) : a;
  const Variant& y = b.is_object() ? ValueOf(b) : b;
  if (x.is_null() || y.is_null()) return Variant::Null();
  if (x.is_string() && y.is_string()) return Variant(x.as_string() + y.as_string());
  if (x.is_string() && y.is_empty()) return x;
  if (y.is_string() && x.is_empty()) return y;
  return ArithmeticOp(Arith::Add, x, y);
}

Variant OpSub(const Variant& a, const Variant& b) {
  return ArithmeticOp(Arith::Sub, a, b);
}

Variant OpMul(const Variant& a, const Variant& b) {
  return ArithmeticOp(Arith::Mul, a, b);
}

Variant OpDiv(const Variant& a, const Variant& b) {
  if (a.is_null() || b.is_null()) return Variant::Null();
  Num x, y;
  const bool ok_a = Reduce(a, x);
  const bool ok_b = Reduce(b, y);
  if (!ok_a || !ok_b) return Variant::Null();
  const double d = AsDouble(y);
  // 0 / 0 has no value at all: VBScript reports it as an overflow, not a division by zero.
  if (d == 0) Raise(AsDouble(x) == 0 ? kErrOverflow : kErrDivisionByZero);
  const double q = AsDouble(x) / d;
  // A Single divided by a Single, Integer or Byte (or they by it) stays a Single if it fits.
  const bool small_x = x.kind == kSingle || x.kind <= kInt;
  const bool small_y = y.kind == kSingle || y.kind <= kInt;
  if ((x.kind == kSingle || y.kind == kSingle) && small_x && small_y &&
      std::fabs(q) <= std::numeric_limits<float>::max()) {
    return Variant(static_cast<float>(q));
  }
  return FromDouble(q);
}

Variant OpIntDiv(const Variant& a, const Variant& b) {
  return IntegerDivision(a, b, false);
}

Variant OpMod(const Variant& a, const Variant& b) {
  return IntegerDivision(a, b, true);
}

Variant OpPow(const Variant& a, const Variant& b) {
  if (a.is_null() || b.is_null()) return Variant::Null();
  Num x, y;
  const bool ok_a = Reduce(a, x);
  const bool ok_b = Reduce(b, y);
  if (!ok_a || !ok_b) return Variant::Null();
  const double base = AsDouble(x), exp = AsDouble(y);
  if (base < 0 && exp != std::floor(exp)) Raise(kErrInvalidCall);
  if (base == 0 && exp < 0) Raise(kErrDivisionByZero);
  return FromDouble(std::pow(base, exp));
}

String ConcatText(const Variant& v) {
  if (v.is_string()) return v.as_string();
  if (v.is_null() || v.is_empty()) return {};
  const Variant plain = ValueOf(v);
  if (plain.is_null()) return {};
  return ToString(plain);
}

Variant OpConcat(const Variant& a, const Variant& b) {
  const Variant x = a.is_object() ? ValueOf(a) : a;
  const Variant y = b.is_object() ? ValueOf(b) : b;
  if (x.is_null() && y.is_null()) return Variant::Null();
  String text = ConcatText(x);
  const String right = ConcatText(y);
  if (text.byte_size() == 0) return Variant(right);
  text.AppendBytes(right);
  return Variant(std::move(text));
}

void AppendInPlace(Variant& target, const Variant& value) {
  if (target.is_string() && !value.is_object() && !value.is_array()) {
    if (value.is_string()) {
      if (target.as_string().byte_size() == 0) {
        target = value;
        return;
      }
      target.mutable_string().AppendBytes(value.as_string());
      return;
    }
    if (value.is_null() || value.is_empty()) return;
    target.mutable_string().Append(ToString(value).view());
    return;
  }
  target = OpConcat(target, value);
}

Variant OpNeg(const Variant& a) {
  Num x;
  if (!Reduce(a, x)) return Variant::Null();
  switch (x.kind) {
    case kByte:
    case kInt:
      return WholeResult(-x.i, kInt);
    case kLong:
      return WholeResult(-x.i, kLong);
    case kSingle:
      return Variant(static_cast<float>(-x.d));
    case kCurrency:
      return CurrencyResult(-static_cast<long double>(x.i));
    case kDate:
      return Variant::Date(-x.d);
    default:
      return Variant(-x.d);
  }
}

Variant OpNot(const Variant& a) {
  const Variant v = a.is_object() ? ValueOf(a) : a;
  if (v.is_null()) return v;
  if (v.is_string()) {
    if (const auto b = ParseBoolText(v.as_string(), CurrentLocale());
        b && !ParseNumberText(v.as_string(), CurrentLocale()))
      return Variant(!*b);
  }
  Whole x;
  ReduceWhole(v, x, kLong);
  return LogicResult(~x.v, x.kind, x.boolean);
}

Variant OpAnd(const Variant& a, const Variant& b) {
  return LogicOp(Logic::And, a, b);
}
Variant OpOr(const Variant& a, const Variant& b) {
  return LogicOp(Logic::Or, a, b);
}
Variant OpXor(const Variant& a, const Variant& b) {
  return LogicOp(Logic::Xor, a, b);
}
Variant OpEqv(const Variant& a, const Variant& b) {
  return LogicOp(Logic::Eqv, a, b);
}
Variant OpImp(const Variant& a, const Variant& b) {
  return LogicOp(Logic::Imp, a, b);
}

Variant OpCompare(int op, const Variant& a, const Variant& b, uint8_t hints) {
  const Comparison c = Compare(a, b, false, hints);
  if (c == Comparison::Null) return Variant::Null();
  const int r = static_cast<int>(c);
  switch (op) {
    case 0:
      return Variant(r == 0);
    case 1:
      return Variant(r != 0);
    case 2:
      return Variant(r < 0);
    case 3:
      return Variant(r <= 0);
    case 4:
      return Variant(r > 0);
    default:
      return Variant(r >= 0);
  }
}

bool OpIs(const Variant& a, const Variant& b) {
  if (!a.is_object() || !b.is_object()) Raise(kErrObjectRequired);
  return a.as_object() == b.as_object();
}

}  // namespace qv::vbs
