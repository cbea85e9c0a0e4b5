// VBScript's compile error table.
#include "vbscript/errors.h"

#include <algorithm>
#include <iterator>

namespace qv::vbs {
namespace {

struct Text {
  int32_t number;
  std::u16string_view text;
};

constexpr Text kTexts[] = {
    {1001, u"Out of memory"},
    {1002, u"Syntax error"},
    {1003, u"Expected ':'"},
    {1005, u"Expected '('"},
    {1006, u"Expected ')'"},
    {1007, u"Expected ']'"},
    {1010, u"Expected identifier"},
    {1011, u"Expected '='"},
    {1012, u"Expected 'If'"},
    {1013, u"Expected 'To'"},
    {1014, u"Expected 'End'"},
    {1015, u"Expected 'Function'"},
    {1016, u"Expected 'Sub'"},
    {1017, u"Expected 'Then'"},
    {1018, u"Expected 'Wend'"},
    {1019, u"Expected 'Loop'"},
    {1020, u"Expected 'Next'"},
    {1021, u"Expected 'Case'"},
    {1022, u"Expected 'Select'"},
    {1023, u"Expected expression"},
    {1024, u"Expected statement"},
    {1025, u"Expected end of statement"},
    {1026, u"Expected integer constant"},
    {1027, u"Expected 'While' or 'Until'"},
    {1028, u"Expected 'While', 'Until' or end of statement"},
    {1029, u"Expected 'With'"},
    {1030, u"Identifier too long"},
    {1031, u"Invalid number"},
    {1032, u"Invalid character"},
    {1033, u"Unterminated string constant"},
    {1034, u"Unterminated comment"},
    {1037, u"Invalid use of 'Me' keyword"},
    {1038, u"'loop' without 'do'"},
    {1039, u"Invalid 'exit' statement"},
    {1040, u"Invalid 'for' loop control variable"},
    {1041, u"Name redefined"},
    {1042, u"Must be first statement on the line"},
    {1043, u"Cannot assign to non-ByVal argument"},
    {1044, u"Cannot use parentheses when calling a Sub"},
    {1045, u"Expected literal constant"},
    {1046, u"Expected 'In'"},
    {1047, u"Expected 'Class'"},
    {1048, u"Must be defined inside a Class"},
    {1049, u"Expected Let or Set or Get in property declaration"},
    {1050, u"Expected 'Property'"},
    {1051, u"Number of arguments must be consistent across properties specification"},
    {1052, u"Cannot have multiple default property/method in a Class"},
    {1053, u"Class initialize or terminate do not have arguments"},
    {1054, u"Property Set or Let must have at least one argument"},
    {1055, u"Unexpected 'Next'"},
    {1056, u"'Default' can be specified only on 'Property' or 'Function' or 'Sub'"},
    {1057, u"'Default' specification must also specify 'Public'"},
    {1058, u"'Default' specification can only be on Property Get"},
};

}  // namespace

String CompileErrorText(int32_t number) {
  const auto* it = std::lower_bound(std::begin(kTexts), std::end(kTexts), number,
                                    [](const Text& t, int32_t n) { return t.number < n; });
  if (it == std::end(kTexts) || it->number != number) return String(u"Syntax error");
  return String(it->text);
}

}  // namespace qv::vbs
