// The ADODB objects and constants come from the ado library.
#include "asp/server_classes.h"

#include <cctype>
#include <string>
#include <unordered_set>

#include "ado/classes.h"
#include "ado/constants.h"

namespace qv::asp {

void RegisterServerClasses(vbs::ClassRegistry& registry) {
  ado::RegisterAdoClasses(registry);
}

std::u16string_view AdoConstantsScript() {
  // Kept as plain text: every worker thread reads it, and a String's count is no atomic.
  static const std::u16string script = [] {
    std::u16string text;
    std::unordered_set<std::u16string> seen;
    for (const ado::AdoConstant& c : ado::AdoConstants()) {
      std::u16string name(c.name);
      std::u16string lower = name;
      for (char16_t& ch : lower)
        ch = ch < 128 ? static_cast<char16_t>(std::tolower(ch)) : ch;
      if (!seen.insert(lower).second) continue;  // a Const twice would not compile
      const std::string value = std::to_string(c.value);
      text += u"Const " + name + u" = " + std::u16string(value.begin(), value.end()) + u"\r\n";
    }
    return text;
  }();
  return script;
}

}  // namespace qv::asp
