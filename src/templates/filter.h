// TyxFilter: filter options by group. The interface stands ready for templates that may ask
// for it, but nothing fills it: a new object has no groups and no options.
#pragma once

#include <cstdint>
#include <vector>

#include "automation/dispatch.h"

namespace qv {

class TyxFilter : public DispatchObject<TyxFilter> {
 public:
  static const DispatchTable<TyxFilter>& Table();

  int32_t GroupCount() const { return static_cast<int32_t>(groups_.size()); }
  // "" outside 1..GroupCount.
  String GroupName(int32_t order) const;
  // Group names are compared without regard to case.
  int32_t OptionCount(StringView group) const;
  String OptionName(StringView group, int32_t order) const;
  String Expression(StringView group, int32_t order) const;
  // Reads nothing: the object has no source of options.
  void Load() {}

 private:
  struct Option {
    String group;
    String name;
    String expression;
    int32_t order = 0;
  };
  const Option* FindOption(StringView group, int32_t order) const;

  std::vector<Option> options_;
  std::vector<String> groups_;
};

}  // namespace qv
