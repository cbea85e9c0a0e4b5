// TyxKeyword: the reserved words of the target languages, read from keyword files, so that
// generated names can steer clear of them. Language and word are compared without regard to
// case.
#pragma once

#include <cstdint>
#include <unordered_map>
#include <vector>

#include "automation/dispatch.h"

namespace qv {

class TyxKeyword : public DispatchObject<TyxKeyword> {
 public:
  static const DispatchTable<TyxKeyword>& Table();

  // Adds the words of the file. False when it is no XML or its root is not
  // "<product>.keyword"; the list then stays as it was.
  bool Load(StringView path);
  bool IsKeyword(StringView language, StringView word) const;
  int32_t Count() const { return static_cast<int32_t>(words_.size()); }
  int16_t curIndex() const { return 0; }

 private:
  struct Pair {
    String language;
    String word;
  };
  static String KeyOf(StringView language, StringView word);

  std::vector<Pair> words_;
  std::unordered_map<String, size_t> index_;  // lower-case "language\0word"
  String error_;
};

}  // namespace qv
