// Reading of language and keyword files through the XML layer.
#include "templates/lookup_file.h"

#include "platform/xml.h"
#include "support/common.h"
#include "support/tyx_vars.h"

namespace qv::templates {

LookupLoad ReadLookupFile(StringView path, StringView suffix, StringView child,
                          StringView first_name, StringView second_name,
                          const std::function<void(const String&, const String&)>& take) {
  XmlDocument document;
  if (!document.Load(path)) return LookupLoad::kNotXml;
  const XmlNode root = document.documentElement();
  const String expected = ToLower((CleanName(Vars().ProductName) + suffix).view());
  if (ToLower(root.baseName()) != expected) return LookupLoad::kWrongRoot;
  for (const XmlNode& node : root.childNodes()) {
    if (ToLower(node.nodeName()) != child) continue;
    String first;
    String second;
    for (const XmlAttribute& attribute : node.attributes()) {
      const String name = ToLower(attribute.nodeName);
      if (name == first_name) first = attribute.nodeValue;
      if (name == second_name) second = attribute.nodeValue;
    }
    take(first, second);
  }
  return LookupLoad::kLoaded;
}

}  // namespace qv::templates
