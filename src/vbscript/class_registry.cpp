// The classes CreateObject can make, by ProgID. The standard set is what every VBScript host
// offers; a host registers its own beside them.
#include "vbscript/dictionary.h"
#include "vbscript/filesystem.h"
#include "vbscript/regexp.h"
#include "vbscript/runtime.h"

namespace qv::vbs {

void ClassRegistry::Register(StringView prog_id, Factory factory) {
  factories_.insert_or_assign(String(prog_id), std::move(factory));
}

Ref<Object> ClassRegistry::Create(StringView prog_id) const {
  const auto it = factories_.find(prog_id);
  if (it == factories_.end()) return nullptr;
  return it->second();
}

bool ClassRegistry::Has(StringView prog_id) const {
  return factories_.find(prog_id) != factories_.end();
}

ClassRegistry ClassRegistry::WithStandardClasses() {
  ClassRegistry registry;
  registry.Register(u"Scripting.Dictionary", [] { return Ref<Object>(MakeRef<Dictionary>()); });
  registry.Register(u"Scripting.FileSystemObject",
                    [] { return Ref<Object>(MakeRef<FileSystemObject>()); });
  registry.Register(u"VBScript.RegExp", [] { return NewRegExp(); });
  return registry;
}

}  // namespace qv::vbs
