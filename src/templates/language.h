// TyxLanguage: the phrases of the generated application's user interface, read from the
// package's language files and seen by scripts as `LANG`. A later file overrides the phrases
// of an earlier one and keeps the rest; ids are compared without regard to case.
#pragma once

#include <cstdint>
#include <unordered_map>
#include <vector>

#include "automation/dispatch.h"

namespace qv {

class TyxLanguage : public DispatchObject<TyxLanguage> {
 public:
  static const DispatchTable<TyxLanguage>& Table();

  // Adds the phrases of the file. False when it is no XML or its root is not
  // "<product>.language"; the list then stays as it was.
  bool Load(StringView path);
  // The phrase of this id, or "".
  String Phrase(StringView id) const;
  int32_t Count() const { return static_cast<int32_t>(phrases_.size()); }
  int16_t curIndex() const { return 0; }

 private:
  struct Pair {
    String id;  // as first spelled
    String text;
  };

  std::vector<Pair> phrases_;  // in order of first appearance
  std::unordered_map<String, size_t, NoCaseHash, NoCaseEqual> index_;
  String error_;
};

}  // namespace qv
