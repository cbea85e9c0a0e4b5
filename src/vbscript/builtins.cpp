// The one table of the runtime library's functions, joined from the family files, and the
// name look-up the engine uses when it resolves a call: a case-insensitive hash, built once.
#include <unordered_map>
#include <vector>

#include "vbscript/runtime_lib.h"

namespace qv::vbs {

namespace {

struct BuiltinIndex {
  std::vector<BuiltinFunction> all;
  std::unordered_map<StringView, const BuiltinFunction*, NoCaseHash, NoCaseEqual> by_name;

  BuiltinIndex() {
    for (const auto family : {StringFunctions, ConversionFunctions, NumberFunctions, ArrayFunctions,
                              DateFunctions, FormatFunctions, InfoFunctions}) {
      const auto functions = family();
      all.insert(all.end(), functions.begin(), functions.end());
    }
    by_name.reserve(all.size() * 2);
    for (const BuiltinFunction& f : all)
      by_name.emplace(f.name, &f);
  }
};

const BuiltinIndex& Index() {
  static const BuiltinIndex index;
  return index;
}

}  // namespace

std::span<const BuiltinFunction> BuiltinFunctions() {
  return Index().all;
}

const BuiltinFunction* FindBuiltin(StringView name) {
  const auto& map = Index().by_name;
  const auto it = map.find(name);
  return it == map.end() ? nullptr : it->second;
}

}  // namespace qv::vbs
