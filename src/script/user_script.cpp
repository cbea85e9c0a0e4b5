// The user's procedure names and their script-visible members.
#include "script/user_script.h"

#include "automation/convert.h"

namespace qv {

const DispatchTable<TyUserScript>& TyUserScript::Table() {
  static const auto table = DispatchTable<TyUserScript>(u"TyUserScript")
                                .Method(u"AddUserModule",
                                        [](TyUserScript& s, Args a) {
                                          if (a.size() != 1) throw Error(kErrWrongArgCount);
                                          s.AddUserModule(ToString(a[0]));
                                          return Variant();
                                        })
                                .Method(u"UserModuleExist", [](TyUserScript& s, Args a) {
                                  if (a.size() != 1) throw Error(kErrWrongArgCount);
                                  return Variant(s.UserModuleExist(ToString(a[0])));
                                });
  return table;
}

void TyUserScript::AddUserModule(StringView name) {
  names_.emplace_back(name);
}

bool TyUserScript::UserModuleExist(StringView name) const {
  for (const String& n : names_) {
    if (EqualsNoCase(n, name)) return true;
  }
  return false;
}

}  // namespace qv
