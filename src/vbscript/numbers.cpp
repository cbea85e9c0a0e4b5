// The number family of the runtime library: truncation and rounding that keep the argument's
// type, the arithmetic functions, RGB, and VBScript's own random number generator, whose
// 24-bit linear congruential sequence and seeding match Windows value for value.
#include <cfloat>
#include <chrono>
#include <cmath>
#include <cstring>
#include <ctime>

#include "automation/date_time.h"
#include "vbscript/runtime_lib.h"

namespace qv::vbs {

namespace {

// The generator: x' = (x * 0x43FD43FD + 0xC39EC3) mod 2^24, each value x / 2^24.
constexpr uint32_t kRndMultiplier = 0x43FD43FD;
constexpr uint32_t kRndIncrement = 0xC39EC3;
constexpr uint32_t kRndMask = 0xFFFFFF;

// The generator keeps no value apart from its seed: Rnd(0) repeats the seed as a fraction, so
// before any other call it gives 0x50000 / 2^24.
float SeedFraction(const RuntimeState& state) {
  return static_cast<float>(state.rnd_seed) / 16777216.0f;
}

float NextRnd(RuntimeState& state) {
  state.rnd_seed = (state.rnd_seed * kRndMultiplier + kRndIncrement) & kRndMask;
  return SeedFraction(state);
}

Variant Rnd(RuntimeState& state, Args a) {
  if (!Given(a, 0)) return Variant(NextRnd(state));
  const Variant v = ValueOf(a[0]);
  if (v.is_null()) Raise(kErrInvalidUseOfNull);
  const float n = ToSingle(v);
  if (n == 0) return Variant(SeedFraction(state));
  if (n < 0) {
    // A negative argument seeds from its own bits, so Rnd(-x) always starts the same run.
    uint32_t bits;
    std::memcpy(&bits, &n, sizeof bits);
    state.rnd_seed = (bits + (bits >> 24)) & kRndMask;
  }
  return Variant(NextRnd(state));
}

double SecondsSinceMidnight() {
  // The whole seconds and the fraction come from one reading of the clock: from two, the
  // value would step back a second whenever the second turned between them.
  const auto now = std::chrono::system_clock::now();
  const auto ms = std::chrono::duration_cast<std::chrono::milliseconds>(now.time_since_epoch());
  const std::time_t whole = static_cast<std::time_t>(ms.count() / 1000);
  std::tm local{};
  localtime_r(&whole, &local);
  return local.tm_hour * 3600.0 + local.tm_min * 60.0 + local.tm_sec +
         static_cast<double>(ms.count() % 1000) / 1000.0;
}

Variant Randomize(RuntimeState& state, Args a) {
  double seed_value;
  if (Given(a, 0)) {
    const Variant v = ValueOf(a[0]);
    if (v.is_null()) Raise(kErrInvalidUseOfNull);
    seed_value = ToDouble(v);
  } else {
    seed_value = static_cast<float>(SecondsSinceMidnight());
  }
  // The upper half of the double, folded to 16 bits, replaces the middle of the seed.
  uint64_t bits;
  std::memcpy(&bits, &seed_value, sizeof bits);
  const uint32_t high = static_cast<uint32_t>(bits >> 32);
  const uint32_t folded = (high ^ (high >> 16)) & 0xFFFF;
  state.rnd_seed = (state.rnd_seed & 0xFF0000FF) | (folded << 8);
  return {};
}

// Applies a rounding of doubles to a value, keeping its type as Int, Fix and Round do.
// Int and Fix turn a Boolean into an Integer; Round gives the Boolean back.
template <class RoundFn>
Variant KeepingType(const Variant& raw, RoundFn round, bool keep_boolean = false) {
  const Variant v = ValueOf(raw);
  switch (v.type()) {
    case VarType::Null:
      return Variant::Null();
    case VarType::Empty:
      return Variant(int16_t{0});
    case VarType::Boolean:
      if (keep_boolean) return v;
      return Variant(static_cast<int16_t>(v.as_bool() ? -1 : 0));
    case VarType::Byte:
    case VarType::Integer:
    case VarType::Long:
      return v;
    case VarType::Single:
      return Variant(static_cast<float>(round(v.as_single())));
    case VarType::Currency: {
      const double whole = round(static_cast<double>(v.as_currency()) / 10000.0);
      if (!(std::fabs(whole) < 922337203685477.0)) Raise(kErrOverflow);
      return Variant::Currency(static_cast<int64_t>(whole) * 10000);
    }
    case VarType::Date:
      return Variant::Date(round(v.as_date()));
    default:
      return Variant(round(ToDouble(v)));
  }
}

Variant Int(RuntimeState&, Args a) {
  return KeepingType(a[0], [](double d) { return std::floor(d); });
}

Variant Fix(RuntimeState&, Args a) {
  return KeepingType(a[0], [](double d) { return std::trunc(d); });
}

double RoundTo(double value, int32_t places) {
  if (places == 0) return RoundHalfEven(value);
  if (places > 22) return value;
  const double scale = std::pow(10.0, places);
  const double scaled = value * scale;
  if (!std::isfinite(scaled)) return value;
  return RoundHalfEven(scaled) / scale;
}

Variant Round(RuntimeState&, Args a) {
  const int32_t places = OptionalLong(a, 1, 0);
  if (places < 0) Raise(kErrInvalidCall);
  const Variant v = ValueOf(a[0]);
  if (v.type() == VarType::Currency) {
    // Exact on the ten-thousandths, which a double would blur.
    if (places >= 4) return v;
    int64_t unit = 1;
    for (int i = places; i < 4; ++i)
      unit *= 10;
    const int64_t c = v.as_currency();
    int64_t q = c / unit;
    const int64_t r = c % unit;
    if (2 * r > unit || (2 * r == unit && (q & 1))) ++q;
    if (2 * r < -unit || (2 * r == -unit && (q & 1))) --q;
    if (q > INT64_MAX / unit || q < INT64_MIN / unit) Raise(kErrOverflow);
    return Variant::Currency(q * unit);
  }
  return KeepingType(
      v, [places](double d) { return RoundTo(d, places); }, true);
}

Variant Abs(RuntimeState&, Args a) {
  const Variant v = ValueOf(a[0]);
  switch (v.type()) {
    case VarType::Null:
      return Variant::Null();
    case VarType::Empty:
      return Variant(int16_t{0});
    case VarType::Boolean:
      return Variant(static_cast<int16_t>(v.as_bool() ? 1 : 0));
    case VarType::Byte:
      return v;
    case VarType::Integer:
      if (v.as_integer() == INT16_MIN) return Variant(int32_t{32768});
      return Variant(static_cast<int16_t>(std::abs(v.as_integer())));
    case VarType::Long:
      if (v.as_long() == INT32_MIN) return Variant(2147483648.0);
      return Variant(static_cast<int32_t>(std::abs(v.as_long())));
    case VarType::Single:
      return Variant(std::fabs(v.as_single()));
    case VarType::Currency:
      if (v.as_currency() == INT64_MIN) Raise(kErrOverflow);
      return Variant::Currency(v.as_currency() < 0 ? -v.as_currency() : v.as_currency());
    case VarType::Date:
      return Variant::Date(std::fabs(v.as_date()));
    default:
      return Variant(std::fabs(ToDouble(v)));
  }
}

double MathArg(const Variant& raw) {
  const Variant v = ValueOf(raw);
  if (v.is_null()) Raise(kErrInvalidUseOfNull);
  return ToDouble(v);
}

Variant Sgn(RuntimeState&, Args a) {
  const double d = MathArg(a[0]);
  return Variant(static_cast<int16_t>(d > 0 ? 1 : (d < 0 ? -1 : 0)));
}

Variant Sqr(RuntimeState&, Args a) {
  const double d = MathArg(a[0]);
  if (d < 0) Raise(kErrInvalidCall);
  return Variant(std::sqrt(d));
}

Variant Exp(RuntimeState&, Args a) {
  const double r = std::exp(MathArg(a[0]));
  if (!std::isfinite(r)) Raise(kErrOverflow);
  return Variant(r);
}

Variant Log(RuntimeState&, Args a) {
  const double d = MathArg(a[0]);
  if (d <= 0) Raise(kErrInvalidCall);
  return Variant(std::log(d));
}

Variant Sin(RuntimeState&, Args a) {
  return Variant(std::sin(MathArg(a[0])));
}
Variant Cos(RuntimeState&, Args a) {
  return Variant(std::cos(MathArg(a[0])));
}
Variant Tan(RuntimeState&, Args a) {
  return Variant(std::tan(MathArg(a[0])));
}
Variant Atn(RuntimeState&, Args a) {
  return Variant(std::atan(MathArg(a[0])));
}

int32_t ColourPart(const Variant& raw) {
  const Variant v = ValueOf(raw);
  if (v.is_null()) Raise(kErrInvalidUseOfNull);
  const int32_t n = ToLong(v);
  if (n < 0) Raise(kErrInvalidCall);
  return n > 255 ? 255 : n;
}

Variant RGB(RuntimeState&, Args a) {
  return Variant(ColourPart(a[0]) + ColourPart(a[1]) * 256 + ColourPart(a[2]) * 65536);
}

constexpr BuiltinFunction kNumberFunctions[] = {
    {u"Abs", Abs, 1, 1},     {u"Atn", Atn, 1, 1},
    {u"Cos", Cos, 1, 1},     {u"Exp", Exp, 1, 1},
    {u"Fix", Fix, 1, 1},     {u"Int", Int, 1, 1},
    {u"Log", Log, 1, 1},     {u"Randomize", Randomize, 0, 1, BuiltinUse::StatementOnly},
    {u"RGB", RGB, 3, 3},     {u"Rnd", Rnd, 0, 1},
    {u"Round", Round, 1, 2}, {u"Sgn", Sgn, 1, 1},
    {u"Sin", Sin, 1, 1},     {u"Sqr", Sqr, 1, 1},
    {u"Tan", Tan, 1, 1},
};

}  // namespace

double TimerSeconds() {
  return SecondsSinceMidnight();
}

std::span<const BuiltinFunction> NumberFunctions() {
  return kNumberFunctions;
}

}  // namespace qv::vbs
