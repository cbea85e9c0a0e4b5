// The fixed words of the collection's own errors. "Undifined error" keeps its spelling: hosts
// compare the text.
#include "model/collection_errors.h"

namespace qv {

namespace {
const char16_t* WordsOf(int32_t number) {
  switch (number) {
    case kErrCollectionInitialized:
      return u"Collection already initialized";
    case kErrCollectionKeyNotFound:
      return u"Key not found.";
    case kErrCollectionMoveInLoop:
      return u"Move not allowed while in For...Each loop.";
    case kErrCollectionDatatype:
      return u"Invalid datatype";
    case kErrCollectionNoPosition:
      return u"No position supplied.";
    default:
      return u"Undifined error";
  }
}
}  // namespace

void RaiseCollectionError(int32_t number) {
  throw Error(number, WordsOf(number), u"CSuperCollection");
}

}  // namespace qv
