// TyUserScript: the names of the user's script procedures, seen by scripts as `SCRPT`. Generated
// code asks it whether a "USER_" override exists before it hands a value through one.
#pragma once

#include <vector>

#include "automation/dispatch.h"

namespace qv {

class TyUserScript : public DispatchObject<TyUserScript> {
 public:
  static const DispatchTable<TyUserScript>& Table();

  // Appends without a check: a name added twice stands twice.
  void AddUserModule(StringView name);
  // True when a name added so far equals `name`, ignoring case.
  bool UserModuleExist(StringView name) const;

 private:
  std::vector<String> names_;
};

}  // namespace qv
