// Compile errors of the VBScript front end: VBScript's numbers and English texts, and the
// exception that carries one out of the lexer, parser or compiler with its position.
#pragma once

#include <cstdint>

#include "automation/error.h"

namespace qv::vbs {

enum CompileErrorNumber : int32_t {
  kCeOutOfMemory = 1001,
  kCeSyntax = 1002,
  kCeExpectedColon = 1003,
  kCeExpectedLParen = 1005,
  kCeExpectedRParen = 1006,
  kCeExpectedRBracket = 1007,
  kCeExpectedIdentifier = 1010,
  kCeExpectedEqual = 1011,
  kCeExpectedIf = 1012,
  kCeExpectedTo = 1013,
  kCeExpectedEnd = 1014,
  kCeExpectedFunction = 1015,
  kCeExpectedSub = 1016,
  kCeExpectedThen = 1017,
  kCeExpectedWend = 1018,
  kCeExpectedLoop = 1019,
  kCeExpectedNext = 1020,
  kCeExpectedCase = 1021,
  kCeExpectedSelect = 1022,
  kCeExpectedExpression = 1023,
  kCeExpectedStatement = 1024,
  kCeExpectedEndOfStatement = 1025,
  kCeExpectedInteger = 1026,
  kCeExpectedWhileUntil = 1027,
  kCeExpectedWhileUntilEnd = 1028,
  kCeExpectedWith = 1029,
  kCeIdentifierTooLong = 1030,
  kCeInvalidNumber = 1031,
  kCeInvalidCharacter = 1032,
  kCeUnterminatedString = 1033,
  kCeUnterminatedComment = 1034,
  kCeInvalidMe = 1037,
  kCeLoopWithoutDo = 1038,
  kCeInvalidExit = 1039,
  kCeInvalidForVariable = 1040,
  kCeNameRedefined = 1041,
  kCeMustBeFirst = 1042,
  kCeAssignNonByVal = 1043,
  kCeParensCallingSub = 1044,
  kCeExpectedLiteral = 1045,
  kCeExpectedIn = 1046,
  kCeExpectedClass = 1047,
  kCeInsideClass = 1048,
  kCeExpectedLetSetGet = 1049,
  kCeExpectedProperty = 1050,
  kCeInconsistentArgs = 1051,
  kCeMultipleDefault = 1052,
  kCeInitTermArgs = 1053,
  kCeLetSetArgs = 1054,
  kCeUnexpectedNext = 1055,
  kCeDefaultPlacement = 1056,
  kCeDefaultPublic = 1057,
  kCeDefaultGetOnly = 1058,
};

// The run-time error a time limit raises (0x80004004, as the script control reports an
// aborted script). On Error Resume Next does not catch it.
inline constexpr int32_t kErrTimeout = -2147467260;

inline constexpr std::u16string_view kCompileErrorSource = u"Microsoft VBScript compilation error";

// VBScript's text for a compile error number ("Syntax error" for unknown numbers).
String CompileErrorText(int32_t number);

// A compile error at a 1-based line and column of the code being compiled.
class CompileError : public Error {
 public:
  CompileError(int32_t number, int32_t line, int32_t column)
      : Error(number, CompileErrorText(number), String(kCompileErrorSource)),
        line_(line),
        column_(column) {}
  int32_t line() const { return line_; }
  int32_t column() const { return column_; }

 private:
  int32_t line_;
  int32_t column_;
};

}  // namespace qv::vbs
