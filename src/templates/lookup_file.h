// The common shape of the language and keyword files: an XML document whose root is named
// for the product plus a suffix (".language", ".keyword"), with one kind of child element
// carrying two attributes. Names are compared in lower case; an absent attribute reads "".
#pragma once

#include <functional>

#include "automation/string.h"

namespace qv::templates {

enum class LookupLoad {
  kLoaded,
  kNotXml,     // the document could not be loaded or parsed
  kWrongRoot,  // the root is not CleanName(ProductName) + suffix
};

// Calls `take(first, second)` for each child named `child` (in lower case), in file order,
// with the values of the attributes `first_name` and `second_name` (given in lower case).
LookupLoad ReadLookupFile(StringView path, StringView suffix, StringView child,
                          StringView first_name, StringView second_name,
                          const std::function<void(const String&, const String&)>& take);

}  // namespace qv::templates
