// The value moves and the inline Integer/Long/Double arithmetic that the dispatch loop and its
// helpers share. Everything here works on Variants in place, without a temporary: the loop's
// speed rests on these being inlined into it.
#pragma once

#include <bit>
#include <cassert>
#include <cmath>
#include <cstring>
#include <new>

#include "automation/convert.h"
#include "automation/variant.h"
#include "vbscript/opcodes.h"
#include "vbscript/runtime_lib.h"

namespace qv::vbs {

// The standard text of a run-time error, naming what it could not use: "Type mismatch: 'x'".
[[noreturn]] void RaiseNamed(int32_t number, StringView name);

// Truth of a condition (If, While, Until): Booleans inline, the rest by conversion.
bool SlowTruth(const Variant& v);
[[gnu::always_inline]] inline bool Truth(const Variant& v) {
  if (v.type() == VarType::Boolean) return v.as_bool();
  return SlowTruth(v);
}

// An array subscript: a whole number, or anything that converts to one.
int32_t IndexValue(const Variant& v);
// The value a Let assignment stores: an object stands for its default value.
Variant LetValue(Variant v);
// What a Set assignment accepts: objects (Nothing included) only.
void CheckSetValue(const Variant& v);
// A For header's start, end or step as a number (Empty is 0, numeric text is its number).
Variant ForOperand(Variant v);
// The counter's step by the general rules. Kept out of the dispatch loop: a throw written in
// the loop's own body changes how the compiler lays out the hot paths around it.
[[gnu::noinline, gnu::cold]] void StepCounter(Variant& var, const Variant& step);

// Moves between Variants that own nothing (numbers, Empty, Null...) are plain copies of their
// sixteen bytes; only strings, objects and arrays need the counted paths of Variant itself.
// Any type above Array counts as owning too: the marker of a module slot that holds no variable
// (kNoVariable, program.h) is one, so that no plain store goes over it.
[[gnu::always_inline]] inline bool IsPlain(const Variant& v) {
  const VarType t = v.type();
  return t != VarType::String && t != VarType::Object && t < VarType::Array;
}
// Copies the type word and the payload as they were stored (two stores, two loads): one
// 16-byte load of a value that two smaller stores just wrote would stall on store forwarding.
// The bytes between them are padding, so this is also a bitwise move of any Variant whose
// source is then forgotten.
[[gnu::always_inline]] inline void CopyPlain(Variant& dst, const Variant& src) {
  auto* d = reinterpret_cast<unsigned char*>(&dst);
  const auto* s = reinterpret_cast<const unsigned char*>(&src);
  std::memcpy(d, s, sizeof(VarType));
  std::memcpy(d + 8, s + 8, 8);
}
[[gnu::always_inline]] inline void MoveInto(Variant& dst, Variant& src) {
  if (IsPlain(dst)) {
    CopyPlain(dst, src);
    new (&src) Variant();
  } else {
    dst = std::move(src);
  }
}
// Copies into a slot known to be empty.
[[gnu::always_inline]] inline void PushCopy(Variant* slot, const Variant& src) {
  if (IsPlain(src)) {
    CopyPlain(*slot, src);
  } else {
    new (slot) Variant(src);
  }
}
[[gnu::always_inline]] inline void Drop(Variant& v) {
  if (IsPlain(v)) {
    new (&v) Variant();
  } else {
    v.Clear();
  }
}
// Numbers are written as a two-byte type and a full eight-byte payload, the way CopyPlain
// reads them, so a later copy never waits on two partial stores.
[[gnu::always_inline]] inline void RawSet(Variant& dst, VarType t, uint64_t bits) {
  auto* d = reinterpret_cast<unsigned char*>(&dst);
  std::memcpy(d, &t, sizeof t);
  std::memcpy(d + 8, &bits, 8);
}
// The operands of the inline arithmetic: Integer (2), Long (3) and Double (5).
[[gnu::always_inline]] inline unsigned TypeOf(const Variant& v) {
  return static_cast<unsigned>(v.type());
}
[[gnu::always_inline]] inline bool IsWhole(unsigned t) {
  return t - 2u <= 1u;
}
[[gnu::always_inline]] inline bool IsNumber(unsigned t) {
  return t <= 5 && ((0x2Cu >> t) & 1);
}
[[gnu::always_inline]] inline int32_t WholeOf(const Variant& v) {
  return v.type() == VarType::Integer ? v.as_integer() : v.as_long();
}
[[gnu::always_inline]] inline double DoubleOf(const Variant& v) {
  return v.type() == VarType::Double ? v.as_double() : static_cast<double>(WholeOf(v));
}
// Writes a number into a slot known to own nothing.
[[gnu::always_inline]] inline void PutDouble(Variant& dst, double r) {
  RawSet(dst, VarType::Double, std::bit_cast<uint64_t>(r));
}
[[gnu::always_inline]] inline void PutWhole(Variant& dst, int64_t r, bool integer) {
  if (integer && r == static_cast<int16_t>(r)) {
    RawSet(dst, VarType::Integer, static_cast<uint16_t>(r));
  } else if (r == static_cast<int32_t>(r)) {
    RawSet(dst, VarType::Long, static_cast<uint32_t>(r));
  } else {
    PutDouble(dst, static_cast<double>(r));
  }
}

// The two operands of the inline arithmetic as one key: both types below 8, else kNoPair.
constexpr unsigned kNoPair = 64;
[[gnu::always_inline]] inline unsigned PairOf(const Variant& a, const Variant& b) {
  const unsigned ta = TypeOf(a), tb = TypeOf(b);
  return (ta | tb) < 8 ? ta * 8 + tb : kNoPair;
}
constexpr unsigned Pair(VarType a, VarType b) {
  return static_cast<unsigned>(a) * 8 + static_cast<unsigned>(b);
}

// The operands of an Integer/Long/Double operation, as whole numbers or as Doubles.
struct Operands {
  int64_t wa, wb;
  double da, db;
};
// 0: not for the inline paths, 1: Integer and Integer, 2: whole numbers, 3: Doubles.
[[gnu::always_inline]] inline int LoadOperands(const Variant& a, const Variant& b, Operands& o) {
  switch (PairOf(a, b)) {
    case Pair(VarType::Integer, VarType::Integer):
      o.wa = a.as_integer();
      o.wb = b.as_integer();
      return 1;
    case Pair(VarType::Integer, VarType::Long):
      o.wa = a.as_integer();
      o.wb = b.as_long();
      return 2;
    case Pair(VarType::Long, VarType::Integer):
      o.wa = a.as_long();
      o.wb = b.as_integer();
      return 2;
    case Pair(VarType::Long, VarType::Long):
      o.wa = a.as_long();
      o.wb = b.as_long();
      return 2;
    case Pair(VarType::Double, VarType::Double):
      o.da = a.as_double();
      o.db = b.as_double();
      return 3;
    case Pair(VarType::Double, VarType::Integer):
      o.da = a.as_double();
      o.db = b.as_integer();
      return 3;
    case Pair(VarType::Double, VarType::Long):
      o.da = a.as_double();
      o.db = b.as_long();
      return 3;
    case Pair(VarType::Integer, VarType::Double):
      o.da = a.as_integer();
      o.db = b.as_double();
      return 3;
    case Pair(VarType::Long, VarType::Double):
      o.da = a.as_long();
      o.db = b.as_double();
      return 3;
    default:
      return 0;
  }
}

// The same with the right operand an Integer constant held in the instruction.
[[gnu::always_inline]] inline int LoadImmediate(const Variant& a, int32_t k, Operands& o) {
  switch (a.type()) {
    case VarType::Integer:
      o.wa = a.as_integer();
      o.wb = k;
      return 1;
    case VarType::Long:
      o.wa = a.as_long();
      o.wb = k;
      return 2;
    case VarType::Double:
      o.da = a.as_double();
      o.db = k;
      return 3;
    default:
      return 0;
  }
}

// Writes the result of an operation Load accepted. kOwned: dst may hold a string or an
// object, released once the result is known (an overflow leaves dst as it was).
template <bool kOwned, class F, class G>
[[gnu::always_inline]] inline void PutResult(Variant& dst, int kind, const Operands& o, F whole,
                                             G real) {
  if (kind != 3) {
    const int64_t r = whole(o.wa, o.wb);
    if (kOwned && !IsPlain(dst)) dst.Clear();
    PutWhole(dst, r, kind == 1);
    return;
  }
  const double r = real(o.da, o.db);
  if (!std::isfinite(r)) Raise(kErrOverflow);
  if (kOwned && !IsPlain(dst)) dst.Clear();
  PutDouble(dst, r);
}

// dst = a op b for Integer/Long/Double; false when another type asks for the general rules.
// Both operands are read before dst is written, so dst may be one of them.
template <class F, class G>
[[gnu::always_inline]] inline bool FastArithTo(Variant& dst, const Variant& a, const Variant& b,
                                               F whole, G real) {
  Operands o;
  const int kind = LoadOperands(a, b, o);
  if (!kind) return false;
  PutResult<false>(dst, kind, o, whole, real);
  return true;
}
template <class F, class G>
[[gnu::always_inline]] inline bool FastArith(Variant& a, const Variant& b, F whole, G real) {
  return FastArithTo(a, a, b, whole, real);
}

// An Integer, Long or Double held in registers between two operations, so that a value that
// only feeds the next operator never makes the round trip through a stack slot. `real` holds
// the value as a Double whatever its type, so that an operation with a Double operand reads
// both operands without asking which of them is whole.
struct Number {
  unsigned type;  // VarType::Integer, Long or Double
  int64_t whole;  // for Integer and Long
  double real;
};
[[gnu::always_inline]] inline bool NumberOf(const Variant& v, Number& n) {
  n.type = TypeOf(v);
  if (IsWhole(n.type)) {
    n.whole = WholeOf(v);
    n.real = static_cast<double>(n.whole);
    return true;
  }
  if (n.type != static_cast<unsigned>(VarType::Double)) return false;
  n.whole = 0;
  n.real = v.as_double();
  return true;
}
[[gnu::always_inline]] inline Number NumberOfInteger(int32_t k) {
  return Number{static_cast<unsigned>(VarType::Integer), k, static_cast<double>(k)};
}
// a op b, the operator given as 0 Add, 1 Sub, 2 Mul, by the rules of PutResult: Integer and
// Integer stay Integer while they fit, whole numbers widen to Long and then Double. A Double
// may come out infinite or NaN: a chain of these keeps it so, and FiniteNumber checks the
// chain's result once. All three results are computed and one is picked, rather than a branch
// per operator into a copy of the rest for each: a handler made of a chain of these
// (LoadGlobalLeft) then runs more instructions but measured faster, as a step of a loop jumps
// through fewer scattered blocks. Whole operands are at most 32 bits wide, so their product
// fits.
[[gnu::always_inline]] inline Number Compute(unsigned op, const Number& a, const Number& b) {
  constexpr unsigned kInteger = static_cast<unsigned>(VarType::Integer);
  constexpr unsigned kLong = static_cast<unsigned>(VarType::Long);
  constexpr unsigned kDouble = static_cast<unsigned>(VarType::Double);
  assert(op <= 2);
  // Both types are Integer (2), Long (3) or Double (5): only two whole ones make 2 or 3.
  if (IsWhole(a.type | b.type)) {
    assert(a.whole == static_cast<int32_t>(a.whole) && b.whole == static_cast<int32_t>(b.whole));
    const int64_t sum = a.whole + b.whole, difference = a.whole - b.whole;
    const int64_t product = a.whole * b.whole;
    const int64_t r = op == 0 ? sum : op == 1 ? difference : product;
    const double d = static_cast<double>(r);
    if ((a.type | b.type) == kInteger && r == static_cast<int16_t>(r))
      return Number{kInteger, r, d};
    if (r == static_cast<int32_t>(r)) return Number{kLong, r, d};
    return Number{kDouble, 0, d};
  }
  const double sum = a.real + b.real, difference = a.real - b.real, product = a.real * b.real;
  return Number{kDouble, 0, op == 0 ? sum : op == 1 ? difference : product};
}
// The result of a chain of Compute calls, which overflowed when it is no finite number.
[[gnu::always_inline]] inline const Number& FiniteNumber(const Number& n) {
  if (!std::isfinite(n.real)) Raise(kErrOverflow);
  return n;
}
// Writes a Number into a slot known to own nothing.
[[gnu::always_inline]] inline void PutNumber(Variant& dst, const Number& n) {
  if (n.type == static_cast<unsigned>(VarType::Double)) {
    PutDouble(dst, n.real);
  } else if (n.type == static_cast<unsigned>(VarType::Integer)) {
    RawSet(dst, VarType::Integer, static_cast<uint16_t>(n.whole));
  } else {
    RawSet(dst, VarType::Long, static_cast<uint32_t>(n.whole));
  }
}

// The operands of a fused instruction: x and its right operand, an Integer held in the
// instruction, a local or a constant.
[[gnu::always_inline]] inline int LoadFused(const Instr& in, int32_t operand, const Variant& x,
                                            const Variant* locals, const Variant* consts,
                                            Operands& o) {
  if (in.flags & kFusedImmediate) return LoadImmediate(x, operand, o);
  return LoadOperands(x, (in.flags & kFusedLocal) ? locals[operand] : consts[operand], o);
}

// The comparison of two Integer/Long/Double values; false in `handled` for other types.
template <class F>
[[gnu::always_inline]] inline bool FastTest(const Variant& a, const Variant& b, bool& handled,
                                            F cmp) {
  Operands o;
  const int kind = LoadOperands(a, b, o);
  handled = kind != 0;
  if (kind == 3) return cmp(o.da, o.db);
  return handled && cmp(o.wa, o.wb);
}

template <class F>
[[gnu::always_inline]] inline bool FastCompare(Variant& a, const Variant& b, F cmp) {
  bool handled;
  const bool r = FastTest(a, b, handled, cmp);
  if (handled) RawSet(a, VarType::Boolean, r ? 1 : 0);
  return handled;
}

// Whether a For loop goes on: the counter has not passed the end in the step's direction.
[[gnu::always_inline]] inline bool ForContinues(const Variant& var, const Variant& end,
                                                const Variant& step) {
  const unsigned tv = TypeOf(var), te = TypeOf(end), ts = TypeOf(step);
  if (IsWhole(tv) && IsWhole(te) && IsWhole(ts))
    return WholeOf(step) >= 0 ? WholeOf(var) <= WholeOf(end) : WholeOf(var) >= WholeOf(end);
  if (IsNumber(tv) && IsNumber(te) && IsNumber(ts))
    return DoubleOf(step) >= 0 ? DoubleOf(var) <= DoubleOf(end) : DoubleOf(var) >= DoubleOf(end);
  const double v = ToDouble(var), e = ToDouble(end), s = ToDouble(step);
  return s >= 0 ? v <= e : v >= e;
}

}  // namespace qv::vbs
