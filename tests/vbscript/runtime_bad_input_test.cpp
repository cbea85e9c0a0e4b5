// Every function of the library against every kind of odd argument, in every count it takes:
// each call returns a value or raises the library's Error, never anything else (sanitizer
// builds also catch undefined behaviour and stray memory use here).
#include <cmath>
#include <limits>

#include "automation/date_time.h"
#include "automation/safe_array.h"
#include "vbscript/runtime_test_helpers.h"

namespace qv::vbs {
namespace {

std::vector<Variant> OddValues() {
  std::vector<Variant> values = {
      Variant(),
      Variant::Null(),
      Variant(int16_t{-32768}),
      Variant(int32_t{2147483647}),
      Variant(int32_t{-2147483647 - 1}),
      Variant(0.5),
      Variant(-1e300),
      Variant(std::numeric_limits<double>::quiet_NaN()),
      Variant(std::numeric_limits<double>::infinity()),
      Variant(1e-320),
      Variant(3.0f),
      Variant::Currency(INT64_MIN),
      Variant::Date(kMaxDate),
      Variant::Date(kMinDate - 5),
      Variant(true),
      Variant(uint8_t{255}),
      Variant(u""),
      Variant(u"x"),
      Variant(u"12/31/9999 23:59:59"),
      Variant(u"\xD800\xFFFF%u%"),
      Variant(u"&HFFFFFFFF"),
      Variant(u"1e400"),
      Variant::Nothing(),
      Variant(NewRegExp()),
      Variant(SafeArray::FromValues({Variant(u"a"), Variant::Null()})),
      Variant::Missing(),
  };
  return values;
}

TEST(RuntimeBadInput, EveryFunctionRaisesOnlyTheLibrarysErrors) {
  const std::vector<Variant> odd = OddValues();
  const Variant small = Variant(int16_t{2});
  size_t calls = 0;
  for (const BuiltinFunction& f : BuiltinFunctions()) {
    // Randomize and Timer-like functions are cheap; none of them may hang or crash.
    const size_t max_args = std::min<size_t>(f.max_args, 6);
    for (size_t count = f.min_args; count <= max_args; ++count) {
      for (size_t slot = 0; slot < std::max<size_t>(count, 1); ++slot) {
        for (const Variant& value : odd) {
          std::vector<Variant> args(count, small);
          if (count > 0) args[slot] = value;
          RuntimeState state;
          try {
            f.fn(state, Args(args));
          } catch (const Error&) {
          } catch (const std::exception& e) {
            ADD_FAILURE() << String(f.name).ToUtf8() << " threw " << e.what();
          }
          ++calls;
        }
      }
    }
  }
  EXPECT_GT(calls, 1000u);
}

TEST(RuntimeBadInput, HugeCountsAreRefusedInWords) {
  EXPECT_EQ(testing::ErrorOf(u"Space", {Variant(1e10)}), 7);
  EXPECT_EQ(testing::ErrorOf(u"String", {Variant(2147483647), Variant(u"x")}), 7);
  EXPECT_EQ(testing::ErrorOf(u"Left", {Variant(u"x"), Variant(1e10)}), 6);
  EXPECT_EQ(testing::ErrorOf(u"FormatNumber", {Variant(1.0), Variant(int16_t{256})}), 5);
  EXPECT_EQ(testing::ErrorOf(u"DateAdd", {Variant(u"yyyy"), Variant(1e9), Variant::Date(0)}), 5);
  EXPECT_EQ(testing::ErrorOf(u"DateAdd", {Variant(u"s"), Variant(1e300), Variant::Date(0)}), 5);
  EXPECT_EQ(testing::Show(u"FormatNumber", {Variant(1e300), Variant(int16_t{0})}).size(), 401u);
}

}  // namespace
}  // namespace qv::vbs
