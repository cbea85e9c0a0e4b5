// The one error type of the system: a number, a description and a source, exactly what
// VBScript's Err object shows and what a hard failure carries to the host.
#pragma once

#include <cstdint>
#include <exception>
#include <string>

#include "automation/string.h"

namespace qv {

// VBScript's run-time error numbers that the platform code raises.
enum ErrorNumber : int32_t {
  kErrCancelled = -1,  // a cancel, or a hard failure whose words are in the description
  kErrInvalidCall = 5,
  kErrOverflow = 6,
  kErrOutOfMemory = 7,
  kErrSubscript = 9,
  kErrArrayLocked = 10,
  kErrDivisionByZero = 11,
  kErrTypeMismatch = 13,
  kErrOutOfStringSpace = 14,
  kErrOutOfStack = 28,
  kErrSubNotDefined = 35,
  kErrBadFileNameOrNumber = 52,
  kErrFileNotFound = 53,
  kErrBadFileMode = 54,
  kErrFileAlreadyOpen = 55,
  kErrDeviceIo = 57,
  kErrFileExists = 58,
  kErrInputPastEnd = 62,
  kErrPermissionDenied = 70,
  kErrPathFileAccess = 75,
  kErrPathNotFound = 76,
  kErrObjectNotSet = 91,
  kErrInvalidUseOfNull = 94,
  kErrObjectRequired = 424,
  kErrCannotCreateObject = 429,
  kErrNotSupported = 438,
  kErrNamedArgs = 446,
  kErrLocaleNotSupported = 447,
  kErrArgumentNotOptional = 449,
  kErrWrongArgCount = 450,
  kErrNotACollection = 451,
  kErrKeyExists = 457,
  kErrVariableUndefined = 500,
  kErrIllegalAssignment = 501,
  kErrUnqualifiedReference = 505,
  kErrClassNotDefined = 506,
  kErrRegExpSyntax = 5017,
  kErrElementNotFound = 32811,
};

// The source text of errors raised by the run time, as VBScript names them.
inline constexpr std::u16string_view kRuntimeErrorSource = u"Microsoft VBScript runtime error";

class Error : public std::exception {
 public:
  // An error with VBScript's standard English text for its number.
  explicit Error(int32_t number);
  Error(int32_t number, String description, String source = {});

  int32_t number() const noexcept { return number_; }
  const String& description() const noexcept { return description_; }
  const String& source() const noexcept { return source_; }
  void set_source(String source) { source_ = std::move(source); }
  void set_description(String description);

  const char* what() const noexcept override { return what_.c_str(); }

  // A hard failure of the system: number -1 with the words as description.
  static Error Failure(String words) { return Error(kErrCancelled, std::move(words)); }

 private:
  int32_t number_;
  String description_;
  String source_;
  std::string what_;
};

// VBScript's English text for a run-time error number; the empty text when it has none.
String StandardErrorText(int32_t number);

}  // namespace qv
