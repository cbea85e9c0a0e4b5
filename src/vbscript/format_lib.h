// The number layout behind FormatNumber, FormatCurrency and FormatPercent, open to the
// benchmarks and to other parts of the library that print numbers the same way.
#pragma once

#include <string>

#include "automation/string.h"

namespace qv::vbs {

struct NumberStyle {
  int places = 2;
  bool leading_digit = true;
  bool parentheses = false;
  bool group_digits = true;
  Char decimal = u'.';
  Char group = u',';
};

// Lays out a decimal number given as its digits, of which `whole_digits` stand before the
// point (zero or negative for values below 0.1): rounded half away from zero to
// `style.places`, grouped by threes, with `prefix` and `suffix` inside the sign.
String FormatDecimal(bool negative, const std::string& digits, int whole_digits,
                     const NumberStyle& style, StringView prefix, StringView suffix);

// FormatNumber(value, places) with the 1033 defaults.
String FormatNumberText(double value, int places);

}  // namespace qv::vbs
