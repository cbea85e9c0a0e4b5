// The look-ups of TyxFilter over its (always empty) lists.
#include "templates/filter.h"

#include "automation/convert.h"

namespace qv {

const DispatchTable<TyxFilter>& TyxFilter::Table() {
  static const auto table =
      DispatchTable<TyxFilter>(u"TyxFilter")
          .Property(u"GroupCount", [](TyxFilter& f, Args) { return Variant(f.GroupCount()); })
          .Property(u"GroupName",
                    [](TyxFilter& f, Args a) {
                      CheckArgCount(a, 1, 1);
                      return Variant(f.GroupName(ToLong(a[0])));
                    })
          .Property(u"OptionCount",
                    [](TyxFilter& f, Args a) {
                      CheckArgCount(a, 1, 1);
                      return Variant(f.OptionCount(ToString(a[0])));
                    })
          .Property(u"OptionName",
                    [](TyxFilter& f, Args a) {
                      CheckArgCount(a, 2, 2);
                      return Variant(f.OptionName(ToString(a[0]), ToLong(a[1])));
                    })
          .Property(u"Expression",
                    [](TyxFilter& f, Args a) {
                      CheckArgCount(a, 2, 2);
                      return Variant(f.Expression(ToString(a[0]), ToLong(a[1])));
                    })
          .Method(u"Load", [](TyxFilter& f, Args a) {
            CheckArgCount(a, 0, 0);
            f.Load();
            return Variant();
          });
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
