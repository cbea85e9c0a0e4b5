// VBScript's conversions between Variant types and its comparison of two values. The script
// engine, the model's accessors and the project file all convert through these, so a value
// reads the same everywhere. Conversions of Variants follow the thread's current locale (1033
// unless a running engine chose another); the text functions below take theirs as an argument
// and default to 1033, the fixed form of files and queries.
#pragma once

#include <cstdint>
#include <optional>

#include "automation/locale.h"
#include "automation/string.h"
#include "automation/variant.h"

namespace qv {

// Each raises VBScript's error where VBScript does: 13 for text that is no number (or no
// Boolean, or no date), 6 when the value does not fit, 94 for Null, 424/438 for objects without
// a default member. Objects convert through their default member.
bool ToBool(const Variant& v);
uint8_t ToByte(const Variant& v);
int16_t ToInteger(const Variant& v);
int32_t ToLong(const Variant& v);
float ToSingle(const Variant& v);
double ToDouble(const Variant& v);
int64_t ToCurrency(const Variant& v);  // ten-thousandths
double ToDate(const Variant& v);
String ToString(const Variant& v);

// The value an object stands for in an expression (its default member, taken with no
// arguments); other values come back as they are. Nothing raises 91.
Variant ValueOf(const Variant& v);

// Numbers as VBScript's CStr writes them: 15 significant digits for Double, 7 for Single,
// exponents as "1E+20" / "1E-05", "True"/"False" for Booleans.
String DoubleText(double value, const Locale& locale = DefaultLocale());
String SingleText(float value, const Locale& locale = DefaultLocale());
String CurrencyText(int64_t scaled, const Locale& locale = DefaultLocale());

// Text as VBScript reads numbers: blanks around, a sign, the currency symbol ("$"), group
// separators (",") between digits of the whole part, a decimal point ("."), an exponent,
// parentheses for a negative value, and the &H / &O forms. Returns nothing for text that is
// no number.
std::optional<double> ParseNumberText(StringView text, const Locale& locale = DefaultLocale());
// "True"/"False" in any case, or any number (non-zero is True).
std::optional<bool> ParseBoolText(StringView text, const Locale& locale = DefaultLocale());

// Rounds half to even, as every VBScript conversion to a whole number does.
double RoundHalfEven(double value);

enum class Comparison : int8_t { Less = -1, Equal = 0, Greater = 1, Null = 2 };

// Tells Compare that an operand was written as a literal in the script. VBScript types
// literals hard: a number literal makes a string operand convert to a number, and a string
// literal makes a number operand convert to text.
enum CompareHints : uint8_t { kCompareNoHints = 0, kLeftIsLiteral = 1, kRightIsLiteral = 2 };

// VBScript's comparison: Null with anything gives Null; numbers compare as numbers, strings as
// strings (binary, or without regard to case when `text_compare`); a number is less than a
// string; Empty is 0 against a number and "" against a string.
Comparison Compare(const Variant& a, const Variant& b, bool text_compare = false,
                   uint8_t hints = kCompareNoHints);

// VBScript's TypeName() of a value.
String TypeNameOf(const Variant& v);

}  // namespace qv
