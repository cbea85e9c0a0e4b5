// The look-ups of TyxFilter over its (always empty) lists.
#include "templates/filter.h"

#include "automation/convert.h"

namespace qv {

const DispatchTable<TyxFilter>& TyxFilter::Table() {
  using F = TyxFilter;
  static const auto table = DispatchTable<F>(u"TyxFilter")
                                .Property<&F::GroupCount>(u"GroupCount")
                                .Property<&F::GroupName>(u"GroupName")
                                .Property<&F::OptionCount>(u"OptionCount")
                                .Property<&F::OptionName>(u"OptionName")
                                .Property<&F::Expression>(u"Expression")
                                .Method<&F::Load>(u"Load");
  return table;
}

String TyxFilter::GroupName(int32_t order) const {
  if (order < 1 || order > GroupCount()) return String();
  return groups_[order - 1];
}

int32_t TyxFilter::OptionCount(StringView group) const {
  int32_t count = 0;
  for (const Option& option : options_) {
    if (EqualsNoCase(option.group, group)) ++count;
  }
  return count;
}

const TyxFilter::Option* TyxFilter::FindOption(StringView group, int32_t order) const {
  for (const Option& option : options_) {
    if (option.order == order && EqualsNoCase(option.group, group)) return &option;
  }
  return nullptr;
}

String TyxFilter::OptionName(StringView group, int32_t order) const {
  const Option* option = FindOption(group, order);
  return option ? option->name : String();
}

String TyxFilter::Expression(StringView group, int32_t order) const {
  const Option* option = FindOption(group, order);
  return option ? option->expression : String();
}

}  // namespace qv
