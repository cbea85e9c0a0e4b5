// Error numbers and VBScript's English texts for them.
#include "automation/error.h"

#include <algorithm>
#include <iterator>

namespace qv {

namespace {

struct ErrorText {
  int32_t number;
  const char16_t* text;
};

// Sorted by number for a binary search.
constexpr ErrorText kTexts[] = {
    {5, u"Invalid procedure call or argument"},
    {6, u"Overflow"},
    {7, u"Out of memory"},
    {9, u"Subscript out of range"},
    {10, u"This array is fixed or temporarily locked"},
    {11, u"Division by zero"},
    {13, u"Type mismatch"},
    {14, u"Out of string space"},
    {17, u"Can't perform requested operation"},
    {28, u"Out of stack space"},
    {35, u"Sub or Function not defined"},
    {48, u"Error in loading DLL"},
    {51, u"Internal error"},
    {52, u"Bad file name or number"},
    {53, u"File not found"},
    {54, u"Bad file mode"},
    {55, u"File already open"},
    {57, u"Device I/O error"},
    {58, u"File already exists"},
    {61, u"Disk full"},
    {62, u"Input past end of file"},
    {67, u"Too many files"},
    {68, u"Device unavailable"},
    {70, u"Permission denied"},
    {71, u"Disk not ready"},
    {74, u"Can't rename with different drive"},
    {75, u"Path/File access error"},
    {76, u"Path not found"},
    {91, u"Object variable not set"},
    {92, u"For loop not initialized"},
    {94, u"Invalid use of Null"},
    {322, u"Can't create necessary temporary file"},
    {424, u"Object required"},
    {429, u"ActiveX component can't create object"},
    {430, u"Class doesn't support Automation"},
    {432, u"File name or class name not found during Automation operation"},
    {438, u"Object doesn't support this property or method"},
    {440, u"Automation error"},
    {445, u"Object doesn't support this action"},
    {446, u"Object doesn't support named arguments"},
    {447, u"Object doesn't support current locale setting"},
    {448, u"Named argument not found"},
    {449, u"Argument not optional"},
    {450, u"Wrong number of arguments or invalid property assignment"},
    {451, u"Object not a collection"},
    {453, u"Specified DLL function not found"},
    {455, u"Code resource lock error"},
    {457, u"This key is already associated with an element of this collection"},
    {458, u"Variable uses an Automation type not supported in VBScript"},
    {462, u"The remote server machine does not exist or is unavailable"},
    {481, u"Invalid picture"},
    {500, u"Variable is undefined"},
    {501, u"Illegal assignment"},
    {502, u"Object not safe for scripting"},
    {503, u"Object not safe for initializing"},
    {504, u"Object not safe for creating"},
    {505, u"Invalid or unqualified reference"},
    {506, u"Class not defined"},
    {507, u"An exception occurred"},
    {5016, u"Regular Expression object expected"},
    {5017, u"Syntax error in regular expression"},
    {5018, u"Unexpected quantifier"},
    {5019, u"Expected ']' in regular expression"},
    {5020, u"Expected ')' in regular expression"},
    {5021, u"Invalid range in character set"},
    {32811, u"Element not found"},
    {32812, u"The specified date is not available in the current locale's calendar"},
};

}  // namespace

String StandardErrorText(int32_t number) {
  const auto* it = std::lower_bound(std::begin(kTexts), std::end(kTexts), number,
                                    [](const ErrorText& e, int32_t n) { return e.number < n; });
  if (it == std::end(kTexts) || it->number != number) return {};
  return String(it->text);
}

Error::Error(int32_t number) : Error(number, StandardErrorText(number)) {
  if (description_.empty()) set_description(u"Unknown runtime error");
}

Error::Error(int32_t number, String description, String source)
    : number_(number), description_(std::move(description)), source_(std::move(source)) {
  what_ = description_.ToUtf8();
}

void Error::set_description(String description) {
  description_ = std::move(description);
  what_ = description_.ToUtf8();
}

}  // namespace qv
