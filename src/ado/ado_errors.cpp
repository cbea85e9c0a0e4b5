// ADO's error texts and the mapping of data layer failures to script error numbers.
#include "ado/ado_errors.h"

namespace qv::ado {

String AdoErrorText(int32_t number) {
  switch (number) {
    case adErrInvalidArgument:
      return u"Arguments are of the wrong type, are out of acceptable range, or are in conflict "
             u"with one another.";
    case adErrNoCurrentRecord:
      return u"Either BOF or EOF is True, or the current record has been deleted. Requested "
             u"operation requires a current record.";
    case adErrIllegalOperation:
      return u"Operation is not allowed in this context.";
    case adErrFeatureNotAvailable:
      return u"Current Recordset does not support updating. This may be a limitation of the "
             u"provider, or of the selected locktype.";
    case adErrItemNotFound:
      return u"Item cannot be found in the collection corresponding to the requested name or "
             u"ordinal.";
    case adErrObjectInCollection:
      return u"Object is already in collection. Cannot append.";
    case adErrDataConversion:
      return u"Application uses a value of the wrong type for the current operation.";
    case adErrObjectClosed:
      return u"Operation is not allowed when the object is closed.";
    case adErrObjectOpen:
      return u"Operation is not allowed when the object is open.";
    case adErrProviderNotFound:
      return u"Provider cannot be found. It may not be properly installed.";
    case adErrInvalidConnection:
      return u"The connection cannot be used to perform this operation. It is either closed or "
             u"invalid in this context.";
    case adErrUnsafeOperation:
      return u"Safety settings on this computer prohibit accessing a data source on another "
             u"domain.";
    case kErrMultipleStep:
      return u"Multiple-step operation generated errors. Check each status value.";
    case kErrRowNotFound:
      return u"Row cannot be located for updating. Some values may have been changed since it "
             u"was last read.";
    case kErrCannotFetchBackward:
      return u"Rowset does not support fetching backward.";
    default:
      return {};
  }
}

Error AdoError(int32_t number, StringView source) {
  return Error(number, AdoErrorText(number), String(source));
}

Error AdoError(int32_t number, StringView source, StringView text) {
  return Error(number, String(text), String(source));
}

Error ScriptError(const Error& failure) {
  const auto code = static_cast<uint32_t>(failure.number());
  if ((code & 0xFFFF0000u) != 0x800A0000u) return failure;
  const auto number = static_cast<int32_t>(code & 0xFFFFu);
  String text = failure.description();
  if (text.empty()) text = AdoErrorText(number);
  return Error(number, std::move(text), failure.source());
}

}  // namespace qv::ado
